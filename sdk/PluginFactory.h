#pragma once

#include "pluginterfaces/base/ipluginbase.h"

#include <vector>

namespace Steinberg
{

// Creates one instance of a registered class; context is the value given at registration.
using FactoryCreateFunction = FUnknown* (*)(void* context);

// The module's class factory: a list of registered classes, each with its class information and
// the function that creates it. The module keeps the one instance in gPluginFactory, which the
// factory clears when its last reference goes.
class CPluginFactory : public IPluginFactory3
{
public:
    explicit CPluginFactory(const PFactoryInfo& info);
    virtual ~CPluginFactory();

    // Registers a class with the basic class information; true when it was added.
    bool registerClass(const PClassInfo* info, FactoryCreateFunction createFunc, void* context = nullptr);
    // Registers a class with the extended class information; true when it was added.
    bool registerClass(const PClassInfo2* info, FactoryCreateFunction createFunc, void* context = nullptr);
    // Registers a class with the unicode class information; true when it was added.
    bool registerClass(const PClassInfoW* info, FactoryCreateFunction createFunc, void* context = nullptr);
    // True when a class with this identifier is registered.
    bool isRegistered(const FUID& cid) const;

    DECLARE_FUNKNOWN_METHODS

    tresult PLUGIN_API getFactoryInfo(PFactoryInfo* info) SMTG_OVERRIDE;
    int32 PLUGIN_API countClasses() SMTG_OVERRIDE;
    tresult PLUGIN_API getClassInfo(int32 index, PClassInfo* info) SMTG_OVERRIDE;
    tresult PLUGIN_API createInstance(FIDString cid, FIDString _iid, void** obj) SMTG_OVERRIDE;
    tresult PLUGIN_API getClassInfo2(int32 index, PClassInfo2* info) SMTG_OVERRIDE;
    tresult PLUGIN_API getClassInfoUnicode(int32 index, PClassInfoW* info) SMTG_OVERRIDE;
    tresult PLUGIN_API setHostContext(FUnknown* context) SMTG_OVERRIDE;

protected:
    struct ClassEntry
    {
        PClassInfo2 info2;
        PClassInfoW infoW;
        FactoryCreateFunction createFunc = nullptr;
        void* context = nullptr;
    };

    const ClassEntry* findEntry(int32 index) const;

    PFactoryInfo factoryInfo;
    std::vector<ClassEntry> classes;
    FUnknown* hostContext = nullptr;
};

// The module's single factory, null until it is made and again after its last release.
extern IPluginFactory* gPluginFactory;

} // namespace Steinberg
