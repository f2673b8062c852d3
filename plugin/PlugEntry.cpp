// The module's factory and the set-up of what all instances share.

#include "Plug.h"
#include "PlugController.h"
#include "PlugIds.h"
#include "Version.h"
#include "sdk/PluginFactory.h"
#include "sdk/main/ModuleEntry.h"

#include "pluginterfaces/vst/ivstaudioprocessor.h"
#include "pluginterfaces/vst/ivstcomponent.h"
#include "pluginterfaces/vst/ivsteditcontroller.h"

#include <new>

#include "EditorLink.h"

using namespace Steinberg;
using namespace Steinberg::Vst;
using namespace Steinberg::Vst::Velmoran;

namespace
{

constexpr const char* kVendor = "Varnholt Ltd";
constexpr const char* kVendorUrl = "https://www.varnholt.co.uk";
constexpr const char* kVendorEmail = "mailto:support@varnholt.co.uk";
constexpr const char* kSdkVersion = "VST 3.5.2";

const PFactoryInfo& factoryInfo()
{
    static const PFactoryInfo info(kVendor, kVendorUrl, kVendorEmail, PFactoryInfo::kUnicode);
    return info;
}

const PClassInfo2& processorClassInfo()
{
    static const PClassInfo2 info(kPlugProcessorUID.toTUID(), PClassInfo::kManyInstances,
                                  kVstAudioEffectClass, "Velmoran", kDistributable, "Fx|EQ", nullptr,
                                  VELMORAN_CLASS_VERSION, kSdkVersion);
    return info;
}

const PClassInfo2& controllerClassInfo()
{
    static const PClassInfo2 info(kPlugControllerUID.toTUID(), PClassInfo::kManyInstances,
                                  kVstComponentControllerClass, "VelmoranController", 0, "", nullptr,
                                  VELMORAN_CLASS_VERSION, kSdkVersion);
    return info;
}

} // namespace

// Module-wide objects that all instances share are made here, before any factory call, and
// released in DeinitModule: the window kit that owns the editors' windows, the message-box manager
// (whose boxes have windows of their own on Windows) and the images all editors share.
bool InitModule()
{
    startEditorModule(kProductIdentityToken);
    return true;
}

bool DeinitModule()
{
    stopEditorModule();
    return true;
}

extern "C" SMTG_EXPORT_SYMBOL IPluginFactory* PLUGIN_API GetPluginFactory()
{
    if (gPluginFactory)
    {
        gPluginFactory->addRef();
        return gPluginFactory;
    }
    auto* factory = new (std::nothrow) CPluginFactory(factoryInfo());
    if (!factory)
    {
        return nullptr;
    }
    try
    {
        factory->registerClass(&processorClassInfo(), CPlug::createInstance);
        factory->registerClass(&controllerClassInfo(), CPlugController::createInstance);
    }
    catch (...)
    {
        factory->release();
        return nullptr;
    }
    gPluginFactory = factory;
    return factory;
}
