// notify on both sides with made-up messages: any identifier (or none), attributes of any name,
// type and size (binary ones from none up to 64 KiB), or no attribute list at all. The
// controller keeps a received frame of up to 32776 bytes byte for byte and drops larger ones.

#include "FuzzHost.h"

#include "plugin/PlugController.h"

#include <fuzzer/FuzzedDataProvider.h>

#include "base/source/fobject.h"
#include "pluginterfaces/vst/ivstmessage.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <map>
#include <string>

using namespace velmoran::fuzz;

namespace
{

constexpr uint32 kFrameBytes = 32776;

// An attribute list that answers exactly what the fuzzer put into it, including a binary
// attribute whose data pointer is null.
class FuzzAttributes : public IAttributeList
{
public:
    struct Value
    {
        enum Kind
        {
            integer,
            floating,
            text,
            binary,
            nullBinary
        } kind;
        int64 integerValue = 0;
        double floatValue = 0.0;
        std::vector<TChar> textValue;
        std::vector<uint8_t> bytes;
        uint32 claimedSize = 0;
    };

    FuzzAttributes() { FUNKNOWN_CTOR }
    virtual ~FuzzAttributes(){FUNKNOWN_DTOR}

    std::map<std::string, Value> values;

    tresult PLUGIN_API setInt(AttrID, int64) SMTG_OVERRIDE { return kResultFalse; }
    tresult PLUGIN_API setFloat(AttrID, double) SMTG_OVERRIDE { return kResultFalse; }
    tresult PLUGIN_API setString(AttrID, const TChar*) SMTG_OVERRIDE { return kResultFalse; }
    tresult PLUGIN_API setBinary(AttrID, const void*, uint32) SMTG_OVERRIDE { return kResultFalse; }

    tresult PLUGIN_API getInt(AttrID id, int64& value) SMTG_OVERRIDE
    {
        const Value* found = find(id, Value::integer);
        if (found)
        {
            value = found->integerValue;
        }
        return found ? kResultOk : kResultFalse;
    }
    tresult PLUGIN_API getFloat(AttrID id, double& value) SMTG_OVERRIDE
    {
        const Value* found = find(id, Value::floating);
        if (found)
        {
            value = found->floatValue;
        }
        return found ? kResultOk : kResultFalse;
    }
    tresult PLUGIN_API getString(AttrID id, TChar* string, uint32 sizeInBytes) SMTG_OVERRIDE
    {
        const Value* found = find(id, Value::text);
        if (!found || !string || sizeInBytes < sizeof(TChar))
        {
            return kResultFalse;
        }
        const size_t count = std::min(found->textValue.size(), sizeInBytes / sizeof(TChar) - 1);
        std::copy_n(found->textValue.begin(), count, string);
        string[count] = 0;
        return kResultOk;
    }
    tresult PLUGIN_API getBinary(AttrID id, const void*& data, uint32& sizeInBytes) SMTG_OVERRIDE
    {
        if (const Value* found = find(id, Value::binary))
        {
            data = found->bytes.data();
            sizeInBytes = static_cast<uint32>(found->bytes.size());
            return kResultOk;
        }
        if (const Value* found = find(id, Value::nullBinary))
        {
            data = nullptr;
            sizeInBytes = found->claimedSize;
            return kResultOk;
        }
        return kResultFalse;
    }

    DECLARE_FUNKNOWN_METHODS

private:
    const Value* find(AttrID id, Value::Kind kind) const
    {
        if (!id)
        {
            return nullptr;
        }
        auto found = values.find(id);
        return found != values.end() && found->second.kind == kind ? &found->second : nullptr;
    }
};

IMPLEMENT_FUNKNOWN_METHODS(FuzzAttributes, IAttributeList, IAttributeList::iid)

// A message with any identifier, or none, and any attribute list, or none.
class FuzzMessage : public IMessage
{
public:
    FuzzMessage() { FUNKNOWN_CTOR }
    virtual ~FuzzMessage() { FUNKNOWN_DTOR }

    bool hasId = true;
    std::string id;
    IPtr<FuzzAttributes> attributes;

    FIDString PLUGIN_API getMessageID() SMTG_OVERRIDE { return hasId ? id.c_str() : nullptr; }
    void PLUGIN_API setMessageID(FIDString) SMTG_OVERRIDE {}
    IAttributeList* PLUGIN_API getAttributes() SMTG_OVERRIDE { return attributes; }

    DECLARE_FUNKNOWN_METHODS
};

IMPLEMENT_FUNKNOWN_METHODS(FuzzMessage, IMessage, IMessage::iid)

std::string anyName(FuzzedDataProvider& input, std::initializer_list<const char* const> known)
{
    if (input.ConsumeBool())
    {
        return input.PickValueInArray<const char*>(known);
    }
    return input.ConsumeRandomLengthString(40);
}

FuzzAttributes::Value anyAttribute(FuzzedDataProvider& input)
{
    FuzzAttributes::Value value{};
    value.kind = static_cast<FuzzAttributes::Value::Kind>(input.ConsumeIntegralInRange(0, 4));
    switch (value.kind)
    {
    case FuzzAttributes::Value::integer:
        value.integerValue = input.ConsumeIntegral<int64>();
        break;
    case FuzzAttributes::Value::floating:
        value.floatValue = input.ConsumeBool()
                               ? input.ConsumeFloatingPoint<double>()
                               : input.PickValueInArray<double>({std::nan(""), -48000.0, 0.0, 1e300});
        break;
    case FuzzAttributes::Value::text:
        for (char character : input.ConsumeRandomLengthString(300))
        {
            value.textValue.push_back(static_cast<TChar>(character));
        }
        break;
    case FuzzAttributes::Value::binary:
    {
        // Sizes cluster round the frame size, where the decisions are.
        const uint32 size =
            input.ConsumeBool()
                ? input.PickValueInArray<uint32>({0, 1, 8, kFrameBytes - 1, kFrameBytes, kFrameBytes + 1})
                : input.ConsumeIntegralInRange<uint32>(0, 65536);
        value.bytes = input.ConsumeBytes<uint8_t>(size);
        value.bytes.resize(size, static_cast<uint8_t>(size));
        break;
    }
    case FuzzAttributes::Value::nullBinary:
        value.claimedSize = input.ConsumeIntegral<uint32>();
        break;
    }
    return value;
}

IPtr<FuzzMessage> anyMessage(FuzzedDataProvider& input)
{
    auto message = owned(new FuzzMessage());
    message->hasId = input.ConsumeIntegralInRange(0, 15) != 0;
    message->id =
        anyName(input, {"BinaryMessage", "setActive", "TextMessage", "EditorOpen", "", "BinaryMessag"});
    if (input.ConsumeIntegralInRange(0, 15) != 0)
    {
        message->attributes = owned(new FuzzAttributes());
        const int count = input.ConsumeIntegralInRange(0, 4);
        for (int index = 0; index < count; ++index)
        {
            const std::string name = anyName(input, {"FFTData", "MyData", "sampleRate", "Text", "open", ""});
            message->attributes->values[name] = anyAttribute(input);
        }
    }
    return message;
}

// The controller's frame buffer as it is now.
std::vector<uint8_t> currentFrame(Vst::Velmoran::CPlugController& controller)
{
    auto frame = Vst::Velmoran::makeSpectrumFrame();
    uint64_t neverSeen = ~uint64_t{0};
    require(controller.copySpectrumFrame(*frame, neverSeen), "the controller keeps its frame buffer");
    const auto* bytes = reinterpret_cast<const uint8_t*>(frame.get());
    return std::vector<uint8_t>(bytes, bytes + kFrameBytes);
}

// What the controller must hold after a message: a readable frame of up to 32776 bytes is kept.
void checkFrame(Vst::Velmoran::CPlugController& controller, const FuzzMessage& message,
                const std::vector<uint8_t>& frameBefore)
{
    const std::vector<uint8_t> frameAfter = currentFrame(controller);
    const FuzzAttributes::Value* fft = nullptr;
    if (message.hasId && message.id == "BinaryMessage" && message.attributes)
    {
        auto found = message.attributes->values.find("FFTData");
        if (found != message.attributes->values.end() && found->second.kind == FuzzAttributes::Value::binary)
        {
            fft = &found->second;
        }
    }
    if (!fft || fft->bytes.size() > kFrameBytes)
    {
        require(frameAfter == frameBefore, "only a readable frame of at most 32776 bytes changes the buffer");
        return;
    }
    require(std::equal(fft->bytes.begin(), fft->bytes.end(), frameAfter.begin()),
            "a frame is copied as sent");
    require(std::equal(frameBefore.begin() + static_cast<long>(fft->bytes.size()), frameBefore.end(),
                       frameAfter.begin() + static_cast<long>(fft->bytes.size())),
            "a short frame overwrites only its own length");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static IPtr<IEditController> controller = makeController();
    require(controller != nullptr, "a controller can be made");
    auto* plugController = static_cast<Vst::Velmoran::CPlugController*>(controller.get());
    FUnknownPtr<IConnectionPoint> controllerPoint(controller);
    FUnknownPtr<IConnectionPoint> processorPoint(SharedProcessor::instance().component());
    require(controllerPoint && processorPoint, "both sides are connection points");

    FuzzedDataProvider input(data, size);
    while (input.remaining_bytes() > 0)
    {
        const bool toController = input.ConsumeBool();
        if (input.ConsumeIntegralInRange(0, 31) == 0)
        {
            require((toController ? controllerPoint->notify(nullptr) : processorPoint->notify(nullptr)) !=
                        kResultOk,
                    "a null message is refused");
            continue;
        }
        IPtr<FuzzMessage> message = anyMessage(input);
        const std::vector<uint8_t> frameBefore = currentFrame(*plugController);
        const tresult result =
            toController ? controllerPoint->notify(message) : processorPoint->notify(message);
        require(message->attributes || result != kResultOk, "a message without attributes is refused");
        if (toController)
        {
            checkFrame(*plugController, *message, frameBefore);
        }
    }
    return 0;
}
