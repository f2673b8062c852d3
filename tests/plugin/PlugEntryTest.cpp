// The module as a host first meets it: entry points, factory information and class list.

#include "PluginHost.h"

#include "plugin/PlugIds.h"

#include "pluginterfaces/base/ipluginbase.h"

#include <gtest/gtest.h>

#include <string>

namespace velmoran::test
{
namespace
{

// Runs first: the module is opened but never entered, so nothing exists that exit could undo.
TEST(PlugEntry, ExitWithoutEntryReturnsTrue)
{
    std::string error;
    auto module = VST3::Hosting::Module::load(modulePath(), error, false);
    ASSERT_NE(module, nullptr) << error;
    EXPECT_TRUE(module->exit());
}

// Entered, the module gives a factory with the vendor's information and exactly two classes.
TEST(PlugEntry, EntersAndGivesTheFactoryInformation)
{
    ASSERT_NE(sharedModule(), nullptr) << modulePath();
    IPtr<IPluginFactory> factory = sharedModule()->factory();
    ASSERT_NE(factory, nullptr);
    PFactoryInfo info;
    ASSERT_EQ(factory->getFactoryInfo(&info), kResultOk);
    EXPECT_STREQ(info.vendor, "Varnholt Ltd");
    EXPECT_EQ(info.flags, PFactoryInfo::kUnicode);
    EXPECT_EQ(factory->getFactoryInfo(nullptr), kInvalidArgument);
    ASSERT_EQ(factory->countClasses(), 2);
    PClassInfo classInfo;
    EXPECT_NE(factory->getClassInfo(2, &classInfo), kResultOk);
    EXPECT_NE(factory->getClassInfo(-1, &classInfo), kResultOk);
}

struct ExpectedClass
{
    int32 index;
    const FUID* cid;
    const char* category;
    const char* name;
    uint32 classFlags;
    const char* subCategories;
};

using PlugClassInfo = testing::TestWithParam<ExpectedClass>;

TEST_P(PlugClassInfo, EveryFieldAsRegistered)
{
    const ExpectedClass& expected = GetParam();
    IPtr<IPluginFactory> factory = sharedModule()->factory();
    FUnknownPtr<IPluginFactory2> factory2(factory);
    ASSERT_TRUE(factory2);
    PClassInfo2 info;
    ASSERT_EQ(factory2->getClassInfo2(expected.index, &info), kResultOk);
    EXPECT_EQ(FUID::fromTUID(info.cid), *expected.cid);
    EXPECT_EQ(info.cardinality, PClassInfo::kManyInstances);
    EXPECT_STREQ(info.category, expected.category);
    EXPECT_STREQ(info.name, expected.name);
    EXPECT_EQ(info.classFlags, expected.classFlags);
    EXPECT_STREQ(info.subCategories, expected.subCategories);

    PClassInfo basic;
    ASSERT_EQ(factory->getClassInfo(expected.index, &basic), kResultOk);
    EXPECT_STREQ(basic.name, expected.name);
    PClassInfoW unicode;
    FUnknownPtr<IPluginFactory3> factory3(factory);
    ASSERT_TRUE(factory3);
    ASSERT_EQ(factory3->getClassInfoUnicode(expected.index, &unicode), kResultOk);
    EXPECT_EQ(asciiOf(unicode.name), expected.name);
}

INSTANTIATE_TEST_SUITE_P(ProcessorThenController, PlugClassInfo,
                         testing::Values(ExpectedClass{0, &Vst::Velmoran::kPlugProcessorUID,
                                                       "Audio Module Class", "Velmoran", 1, "Fx|EQ"},
                                         ExpectedClass{1, &Vst::Velmoran::kPlugControllerUID,
                                                       "Component Controller Class", "VelmoranController", 0,
                                                       ""}));

// A host may ask for the factory more than once; the module hands out its one factory each time.
TEST(PlugEntry, SecondFactoryCallGivesTheSameObjectWithOneMoreReference)
{
    VST3::Hosting::Module* module = sharedModule();
    IPluginFactory* first = module->factoryFunction()();
    ASSERT_NE(first, nullptr);
    const uint32 referencesBefore = first->addRef() - 1;
    first->release();
    IPluginFactory* second = module->factoryFunction()();
    EXPECT_EQ(second, first);
    EXPECT_EQ(first->addRef() - 1, referencesBefore + 1);
    first->release();
    second->release();
    first->release();
}

TEST(PlugEntry, CreateInstanceAnswersForEveryInterfaceAndRefusesUnknownClasses)
{
    IPtr<IPluginFactory> factory = sharedModule()->factory();
    TUID processorId;
    Vst::Velmoran::kPlugProcessorUID.toTUID(processorId);
    void* object = nullptr;
    ASSERT_EQ(factory->createInstance(processorId, IAudioProcessor::iid, &object), kResultOk);
    ASSERT_NE(object, nullptr);
    IPtr<IAudioProcessor> processor = owned(static_cast<IAudioProcessor*>(object));
    // The processor names its controller.
    FUnknownPtr<IComponent> component(processor);
    TUID controllerId;
    ASSERT_TRUE(component);
    ASSERT_EQ(component->getControllerClassId(controllerId), kResultOk);
    EXPECT_EQ(FUID::fromTUID(controllerId), Vst::Velmoran::kPlugControllerUID);

    object = reinterpret_cast<void*>(1);
    EXPECT_NE(factory->createInstance(processorId, IEditController::iid, &object), kResultOk);
    EXPECT_EQ(object, nullptr);

    TUID unknownId = {};
    object = reinterpret_cast<void*>(1);
    EXPECT_NE(factory->createInstance(unknownId, IComponent::iid, &object), kResultOk);
    EXPECT_EQ(object, nullptr);
    EXPECT_EQ(factory->createInstance(processorId, IComponent::iid, nullptr), kInvalidArgument);
}

} // namespace
} // namespace velmoran::test
