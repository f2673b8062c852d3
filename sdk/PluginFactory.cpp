#include "PluginFactory.h"

#include "pluginterfaces/base/ustring.h"

#include <cstring>
#include <new>

namespace Steinberg
{

IPluginFactory* gPluginFactory = nullptr;

namespace
{

// The basic class information as the start of the extended record, the rest left empty.
PClassInfo2 extendedFrom(const PClassInfo& info)
{
    PClassInfo2 extended;
    std::memcpy(extended.cid, info.cid, sizeof(TUID));
    extended.cardinality = info.cardinality;
    std::memcpy(extended.category, info.category, sizeof(extended.category));
    std::memcpy(extended.name, info.name, sizeof(extended.name));
    return extended;
}

// The unicode record reduced to single-byte text (characters above 0x7F become '?').
PClassInfo2 extendedFrom(const PClassInfoW& info)
{
    auto narrow = [](char8* target, const char16* source, size_t size)
    {
        size_t index = 0;
        for (; index + 1 < size && source[index] != 0; ++index)
        {
            target[index] = source[index] < 0x80 ? static_cast<char8>(source[index]) : '?';
        }
        target[index] = 0;
    };
    PClassInfo2 extended;
    std::memcpy(extended.cid, info.cid, sizeof(TUID));
    extended.cardinality = info.cardinality;
    std::memcpy(extended.category, info.category, sizeof(extended.category));
    narrow(extended.name, info.name, PClassInfo::kNameSize);
    extended.classFlags = info.classFlags;
    std::memcpy(extended.subCategories, info.subCategories, sizeof(extended.subCategories));
    narrow(extended.vendor, info.vendor, PClassInfo2::kVendorSize);
    narrow(extended.version, info.version, PClassInfo2::kVersionSize);
    narrow(extended.sdkVersion, info.sdkVersion, PClassInfo2::kVersionSize);
    return extended;
}

} // namespace

CPluginFactory::CPluginFactory(const PFactoryInfo& info) : factoryInfo(info)
{
    FUNKNOWN_CTOR;
}

CPluginFactory::~CPluginFactory()
{
    if (gPluginFactory == this)
    {
        gPluginFactory = nullptr;
    }
    if (hostContext)
    {
        hostContext->release();
    }
    FUNKNOWN_DTOR;
}

IMPLEMENT_REFCOUNT(CPluginFactory)

tresult PLUGIN_API CPluginFactory::queryInterface(const TUID _iid, void** obj)
{
    QUERY_INTERFACE(_iid, obj, IPluginFactory::iid, IPluginFactory)
    QUERY_INTERFACE(_iid, obj, IPluginFactory2::iid, IPluginFactory2)
    QUERY_INTERFACE(_iid, obj, IPluginFactory3::iid, IPluginFactory3)
    QUERY_INTERFACE(_iid, obj, FUnknown::iid, IPluginFactory)
    if (obj)
    {
        *obj = nullptr;
    }
    return kNoInterface;
}

bool CPluginFactory::registerClass(const PClassInfo* info, FactoryCreateFunction createFunc, void* context)
{
    if (!info || !createFunc)
    {
        return false;
    }
    PClassInfo2 extended = extendedFrom(*info);
    return registerClass(&extended, createFunc, context);
}

bool CPluginFactory::registerClass(const PClassInfo2* info, FactoryCreateFunction createFunc, void* context)
{
    if (!info || !createFunc)
    {
        return false;
    }
    ClassEntry entry;
    entry.info2 = *info;
    entry.infoW.fromAscii(*info);
    entry.createFunc = createFunc;
    entry.context = context;
    classes.push_back(entry);
    return true;
}

bool CPluginFactory::registerClass(const PClassInfoW* info, FactoryCreateFunction createFunc, void* context)
{
    if (!info || !createFunc)
    {
        return false;
    }
    PClassInfo2 extended = extendedFrom(*info);
    if (!registerClass(&extended, createFunc, context))
    {
        return false;
    }
    classes.back().infoW = *info;
    return true;
}

bool CPluginFactory::isRegistered(const FUID& cid) const
{
    for (const ClassEntry& entry : classes)
    {
        if (FUnknownPrivate::iidEqual(entry.info2.cid, cid.toTUID()))
        {
            return true;
        }
    }
    return false;
}

const CPluginFactory::ClassEntry* CPluginFactory::findEntry(int32 index) const
{
    if (index < 0 || index >= static_cast<int32>(classes.size()))
    {
        return nullptr;
    }
    return &classes[static_cast<size_t>(index)];
}

tresult PLUGIN_API CPluginFactory::getFactoryInfo(PFactoryInfo* info)
{
    if (!info)
    {
        return kInvalidArgument;
    }
    *info = factoryInfo;
    return kResultOk;
}

int32 PLUGIN_API CPluginFactory::countClasses()
{
    return static_cast<int32>(classes.size());
}

tresult PLUGIN_API CPluginFactory::getClassInfo(int32 index, PClassInfo* info)
{
    const ClassEntry* entry = findEntry(index);
    if (!info || !entry)
    {
        return info ? kResultFalse : kInvalidArgument;
    }
    std::memcpy(info->cid, entry->info2.cid, sizeof(TUID));
    info->cardinality = entry->info2.cardinality;
    std::memcpy(info->category, entry->info2.category, sizeof(info->category));
    std::memcpy(info->name, entry->info2.name, sizeof(info->name));
    return kResultOk;
}

tresult PLUGIN_API CPluginFactory::getClassInfo2(int32 index, PClassInfo2* info)
{
    const ClassEntry* entry = findEntry(index);
    if (!info || !entry)
    {
        return info ? kResultFalse : kInvalidArgument;
    }
    *info = entry->info2;
    return kResultOk;
}

tresult PLUGIN_API CPluginFactory::getClassInfoUnicode(int32 index, PClassInfoW* info)
{
    const ClassEntry* entry = findEntry(index);
    if (!info || !entry)
    {
        return info ? kResultFalse : kInvalidArgument;
    }
    *info = entry->infoW;
    return kResultOk;
}

tresult PLUGIN_API CPluginFactory::createInstance(FIDString cid, FIDString _iid, void** obj)
{
    if (!obj)
    {
        return kInvalidArgument;
    }
    *obj = nullptr;
    if (!cid || !_iid)
    {
        return kInvalidArgument;
    }
    for (const ClassEntry& entry : classes)
    {
        if (!FUnknownPrivate::iidEqual(entry.info2.cid, cid))
        {
            continue;
        }
        FUnknown* instance = nullptr;
        try
        {
            instance = entry.createFunc(entry.context);
        }
        catch (...)
        {
            instance = nullptr;
        }
        if (!instance)
        {
            return kOutOfMemory;
        }
        // The new object starts with one reference; queryInterface adds the caller's.
        tresult result = instance->queryInterface(_iid, obj);
        instance->release();
        return result == kResultOk ? kResultOk : kNoInterface;
    }
    return kNoInterface;
}

tresult PLUGIN_API CPluginFactory::setHostContext(FUnknown* context)
{
    if (context)
    {
        context->addRef();
    }
    if (hostContext)
    {
        hostContext->release();
    }
    hostContext = context;
    return kResultOk;
}

} // namespace Steinberg
