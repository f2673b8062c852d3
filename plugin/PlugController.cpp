#include "PlugController.h"

#include "PlugParameters.h"
#include "PlugState.h"
#include "PlugValueText.h"

#include "pluginterfaces/base/fstrdefs.h"
#include "pluginterfaces/base/ustring.h"
#include "pluginterfaces/vst/ivstmessage.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

#include "platform/window/WindowKit.h"

namespace Steinberg
{
namespace Vst
{
namespace Velmoran
{

namespace
{

constexpr ProgramListID kFactoryProgramListId = kPresetTag;
// Tags kept free for the editor's own use: never parameters, never stored; a host that sends them
// changes nothing.
constexpr ParamID kFirstReservedEditorTag = 98;
constexpr ParamID kLastReservedEditorTag = 99;
constexpr float kEditorDesignWidth = 998.0f;
constexpr float kEditorDesignHeight = 634.0f;

// The factory program a "Preset" value selects; the seventh step (1.0) selects the last program.
int ProgramIndexOf(ParamValue value)
{
    const double steps = kPresetStepCount;
    const double step = std::floor(std::min(steps, std::clamp(value, 0.0, 1.0) * (steps + 1.0)));
    return std::clamp(static_cast<int>(step), 0, kFactoryProgramCount - 1);
}

} // namespace

FUnknown* CPlugController::createInstance(void* /*context*/)
{
    try
    {
        return static_cast<IEditController*>(new CPlugController());
    }
    catch (...)
    {
        return nullptr;
    }
}

tresult PLUGIN_API CPlugController::initialize(FUnknown* context)
{
    mSampleRate = 44100.0;
    tresult result = EditControllerEx1::initialize(context);
    if (result != kResultOk)
    {
        return result;
    }
    try
    {
        addUnit(new Unit(STR16("Root"), kRootUnitId, kNoParentUnitId, kFactoryProgramListId));
        registerParameters();
        mPrograms = std::make_unique<std::array<CPlugProgram, kFactoryProgramCount>>(makeFactoryPrograms());
        addFactoryProgramList();
        mEditorWidth = kEditorDesignWidth;
        mEditorHeight = kEditorDesignHeight;
        mDisplayScale = 1.0f;
        if (auto* windows = velmoran::platform::CPlatformWindows::instance(false))
            mDisplayScale = windows->displayScale();
        std::lock_guard<std::mutex> guard(mFrameLock);
        mSpectrumFrame = makeSpectrumFrame();
        mFrameSequence = 0;
    }
    catch (...)
    {
        return kOutOfMemory;
    }
    acquireEditorImages();
    mHoldsEditorShared = true;
    return kResultOk;
}

tresult PLUGIN_API CPlugController::terminate()
{
    if (mHoldsEditorShared)
    {
        releaseEditorImages();
        mHoldsEditorShared = false;
    }
    {
        std::lock_guard<std::mutex> guard(mFrameLock);
        mSpectrumFrame.reset();
    }
    return EditControllerEx1::terminate();
}

void CPlugController::registerParameters()
{
    for (const ParameterDefinition& parameter : parameterTable())
    {
        UString128 title(parameter.title.c_str());
        parameters.addParameter(title, STR16(""), parameter.stepCount, parameter.defaultValue,
                                parameter.flags, parameter.tag, kRootUnitId);
    }
}

void CPlugController::addFactoryProgramList()
{
    auto* list = new ProgramList(STR16("Factory Presets"), kFactoryProgramListId, kRootUnitId);
    for (int index = 0; index < kFactoryProgramCount; ++index)
    {
        // Hosts list these names; the editor shows the programs' own names.
        char name[64];
        if (index == 0)
        {
            std::snprintf(name, sizeof(name), "Factory Defaults");
        }
        else
        {
            std::snprintf(name, sizeof(name), "Factory Preset %02d", index);
        }
        list->addProgram(UString128(name));
    }
    addProgramList(list);
}

const CPlugProgram* CPlugController::program(int index) const
{
    if (!mPrograms || index < 0 || index >= kFactoryProgramCount)
    {
        return nullptr;
    }
    return &(*mPrograms)[static_cast<size_t>(index)];
}

void CPlugController::loadProgram(int index)
{
    const CPlugProgram* source = program(index);
    if (!source)
    {
        return;
    }
    // Every value goes to the host as an edit, so the processor receives it as a parameter
    // change; "EQ" (tag 0) follows the bands so that the effect switches on fully set up.
    auto loadValue = [this, source](ParamID tag)
    {
        if (!getParameterObject(tag))
        {
            return;
        }
        const ParamValue value = source->values[tag];
        setValueAndShow(tag, value);
        beginEdit(tag);
        performEdit(tag, value);
        endEdit(tag);
    };
    for (ParamID tag = 1; tag < static_cast<ParamID>(kProgramValueCount); ++tag)
    {
        loadValue(tag);
    }
    loadValue(kEqTag);
    mReportedProgram = index;
}

void CPlugController::reportRestoredValues(const StateValues& restored)
{
    const CPlugProgram* reported = program(mReportedProgram);
    if (!reported)
    {
        return;
    }
    const auto& tags = stateTags();
    auto reportValue = [&](int index)
    {
        const ParamID tag = tags[static_cast<size_t>(index)];
        const float value = restored.values[static_cast<size_t>(index)];
        // A program holds no host bypass, so the load reported none and the state's stands.
        if (tag >= static_cast<ParamID>(kProgramValueCount) || value == reported->values[tag])
        {
            return;
        }
        beginEdit(tag);
        performEdit(tag, value);
        endEdit(tag);
    };
    // "EQ" last, as in a program load, so that the effect switches on fully set up.
    int eqIndex = -1;
    for (int index = 0; index < restored.count; ++index)
    {
        if (tags[static_cast<size_t>(index)] == kEqTag)
        {
            eqIndex = index;
            continue;
        }
        reportValue(index);
    }
    if (eqIndex >= 0)
    {
        reportValue(eqIndex);
    }
}

tresult PLUGIN_API CPlugController::setParamNormalized(ParamID tag, ParamValue value)
{
    // A value that is no number would be kept as it is and shown to the host and the editor.
    if (!std::isfinite(value))
    {
        return kInvalidArgument;
    }
    if (tag >= kFirstReservedEditorTag && tag <= kLastReservedEditorTag)
    {
        return kResultFalse;
    }
    if (tag != kPresetTag)
    {
        // A host replaying a restored project sends the values the state already holds; a value
        // that changes is the user at work, and the restore is over.
        if (value != getParamNormalized(tag))
        {
            mExpectedPresetReplay = -1;
        }
        return setValueAndShow(tag, value);
    }
    const tresult result = EditControllerEx1::setParamNormalized(tag, value);
    if (result != kResultOk)
    {
        return result;
    }
    const int index = ProgramIndexOf(value);
    const bool replayAfterRestore = index == mExpectedPresetReplay;
    mExpectedPresetReplay = -1;
    // A host that restores this controller's state and then replays the saved "Preset" value must
    // not load the program over the restored values; a user choosing a program always loads it.
    if (!replayAfterRestore)
    {
        loadProgram(index);
    }
    // The editors name the program after its values, so the name is the last thing they show.
    showToEditors(kPresetTag);
    return result;
}

tresult PLUGIN_API CPlugController::setComponentState(IBStream* state)
{
    StateValues read;
    if (!readState(state, read))
    {
        return kResultFalse;
    }
    const auto& tags = stateTags();
    for (int index = 0; index < read.count; ++index)
    {
        setValueAndShow(tags[static_cast<size_t>(index)], read.values[static_cast<size_t>(index)]);
    }
    // The order matters. Ardour 7 sets "Preset" to its saved value before it hands over the saved
    // state, so the edits of that program load reach the processor after its restored state and
    // would override what the user saved. Reported again now, the restored values come after the
    // program's in the host's queue: the saved state has the last word.
    reportRestoredValues(read);
    mReportedProgram = -1;
    return kResultOk;
}

tresult PLUGIN_API CPlugController::setState(IBStream* state)
{
    float preset = 0.0f;
    int32 bytesRead = 0;
    if (!state || state->read(&preset, sizeof(preset), &bytesRead) != kResultOk ||
        bytesRead != static_cast<int32>(sizeof(preset)) || !(preset >= 0.0f && preset <= 1.0f))
    {
        return kResultFalse;
    }
    const int index = ProgramIndexOf(preset);
    // A host that replays parameters after the state sends this program again: it is a reminder of
    // the choice, not a new one. When the controller already shows it, the replay came first.
    if (index != ProgramIndexOf(getParamNormalized(kPresetTag)))
    {
        mExpectedPresetReplay = index;
    }
    return setValueAndShow(kPresetTag, preset);
}

tresult PLUGIN_API CPlugController::getState(IBStream* state)
{
    auto preset = static_cast<float>(getParamNormalized(kPresetTag));
    int32 bytesWritten = 0;
    if (!state || state->write(&preset, sizeof(preset), &bytesWritten) != kResultOk ||
        bytesWritten != static_cast<int32>(sizeof(preset)))
    {
        return kResultFalse;
    }
    return kResultOk;
}

tresult PLUGIN_API CPlugController::getParamStringByValue(ParamID tag, ParamValue valueNormalized,
                                                          String128 string)
{
    if (!string || !std::isfinite(valueNormalized))
    {
        return kInvalidArgument;
    }
    // Codes and counts are taken from the value: outside 0..1 they would not fit their types.
    valueNormalized = std::clamp(valueNormalized, 0.0, 1.0);
    std::string text;
    if (tag < kTagTableSize && valueText(tag, static_cast<float>(valueNormalized), text))
    {
        UString(string, 128).fromAscii(text.c_str());
        return kResultOk;
    }
    return EditControllerEx1::getParamStringByValue(tag, valueNormalized, string);
}

tresult PLUGIN_API CPlugController::getParamValueByString(ParamID tag, TChar* string,
                                                          ParamValue& valueNormalized)
{
    if (!string)
    {
        return kInvalidArgument;
    }
    char8 text[128] = {};
    UString(string, 128).toAscii(text, sizeof(text));
    // A tag with texts of its own reads only those; the others read the default way.
    std::string shown;
    if (tag < kTagTableSize && valueText(tag, 0.0f, shown))
    {
        ParamValue value = 0.0;
        if (!valueFromText(tag, text, value))
        {
            return kResultFalse;
        }
        valueNormalized = value;
        return kResultOk;
    }
    // The SDK reads "nan" and "inf" as numbers, and any number as a normalised value.
    ParamValue value = 0.0;
    if (EditControllerEx1::getParamValueByString(tag, string, value) != kResultOk || !std::isfinite(value))
    {
        return kResultFalse;
    }
    valueNormalized = std::clamp(value, 0.0, 1.0);
    return kResultOk;
}

tresult PLUGIN_API CPlugController::notify(IMessage* message)
{
    if (!message)
    {
        return kInvalidArgument;
    }
    FIDString id = message->getMessageID();
    IAttributeList* attributes = message->getAttributes();
    if (id && attributes && std::strcmp(id, "BinaryMessage") == 0)
    {
        const void* data = nullptr;
        uint32 size = 0;
        if (attributes->getBinary("FFTData", data, size) == kResultOk)
        {
            // A frame larger than ours is dropped, not cut; a shorter one overwrites its own length.
            std::lock_guard<std::mutex> guard(mFrameLock);
            if (data && mSpectrumFrame && size <= static_cast<uint32>(kSpectrumFrameBytes))
            {
                std::memcpy(mSpectrumFrame.get(), data, size);
                ++mFrameSequence;
            }
            return kResultOk;
        }
    }
    if (id && attributes && std::strcmp(id, "setActive") == 0)
    {
        double rate = 0.0;
        if (attributes->getFloat("sampleRate", rate) == kResultOk)
        {
            mSampleRate = rate;
        }
        // A processor activated again, or one that missed the news, hears whether to analyse.
        setEditorOpen(!mOpenViews.empty());
        return kResultOk;
    }
    // The SDK reads the attributes of a "TextMessage" without asking whether there are any.
    if (!attributes)
    {
        return kResultFalse;
    }
    return EditControllerEx1::notify(message);
}

tresult PLUGIN_API CPlugController::connect(IConnectionPoint* other)
{
    const tresult result = EditControllerEx1::connect(other);
    if (result == kResultOk)
    {
        setEditorOpen(!mOpenViews.empty());
    }
    return result;
}

tresult PLUGIN_API CPlugController::getParameterInfo(int32 paramIndex, ParameterInfo& info)
{
    // The SDK's containers throw for an index out of range; a host gets a refusal instead.
    if (paramIndex < 0 || paramIndex >= getParameterCount())
    {
        return kInvalidArgument;
    }
    return EditControllerEx1::getParameterInfo(paramIndex, info);
}

tresult PLUGIN_API CPlugController::getUnitInfo(int32 unitIndex, UnitInfo& info)
{
    if (unitIndex < 0 || unitIndex >= getUnitCount())
    {
        return kInvalidArgument;
    }
    return EditControllerEx1::getUnitInfo(unitIndex, info);
}

tresult CPlugController::setValueAndShow(ParamID tag, ParamValue value)
{
    const tresult result = EditControllerEx1::setParamNormalized(tag, value);
    if (result == kResultOk)
    {
        showToEditors(tag);
    }
    return result;
}

void CPlugController::showToEditors(ParamID tag)
{
    // A copy: an editor may close while it follows the change (a message box, for example). Without
    // memory for it the editors miss this change; the host's setter still succeeds.
    std::vector<EditorListener*> views;
    try
    {
        views = mOpenViews;
    }
    catch (...)
    {
        return;
    }
    for (EditorListener* view : views)
    {
        view->parameterChanged(tag, getParamNormalized(tag));
    }
}

bool CPlugController::copySpectrumFrame(SpectrumFrame& frame, uint64_t& sequence)
{
    std::lock_guard<std::mutex> guard(mFrameLock);
    if (!mSpectrumFrame || sequence == mFrameSequence)
    {
        return false;
    }
    std::memcpy(&frame, mSpectrumFrame.get(), sizeof(SpectrumFrame));
    sequence = mFrameSequence;
    return true;
}

IPlugView* PLUGIN_API CPlugController::createView(FIDString name)
{
    if (name && std::strcmp(name, ViewType::kEditor) == 0)
    {
        // The view's construction allocates beyond the object itself; no exception reaches the host.
        try
        {
            return createEditorView(*this);
        }
        catch (...)
        {
            return nullptr;
        }
    }
    return nullptr;
}

void CPlugController::editorOpened(EditorListener* view)
{
    if (std::find(mOpenViews.begin(), mOpenViews.end(), view) != mOpenViews.end())
    {
        return;
    }
    mOpenViews.push_back(view);
    if (mOpenViews.size() == 1)
    {
        setEditorOpen(true);
    }
}

void CPlugController::editorClosed(EditorListener* view)
{
    const auto found = std::find(mOpenViews.begin(), mOpenViews.end(), view);
    if (found == mOpenViews.end())
    {
        return;
    }
    mOpenViews.erase(found);
    if (mOpenViews.empty())
    {
        setEditorOpen(false);
    }
}

tresult PLUGIN_API CPlugController::getMidiControllerAssignment(int32 /*busIndex*/, int16 /*channel*/,
                                                                CtrlNumber /*midiControllerNumber*/,
                                                                ParamID& /*id*/)
{
    // No MIDI controller drives a parameter: automation comes through the host's lanes.
    return kResultFalse;
}

void CPlugController::setEditorOpen(bool open)
{
    IMessage* message = allocateMessage();
    if (!message)
    {
        return;
    }
    message->setMessageID("EditorOpen");
    if (IAttributeList* attributes = message->getAttributes())
    {
        attributes->setInt("open", open ? 1 : 0);
        sendMessage(message);
    }
    message->release();
}

} // namespace Velmoran
} // namespace Vst
} // namespace Steinberg
