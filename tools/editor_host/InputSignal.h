#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velmoran::editorhost
{

// Sample rate of every signal the host plays, Hz.
constexpr double kSignalSampleRate = 48000.0;

// The stereo signal the host plays into the processor: the built-in demo mix (looped), a sine or
// white noise, the last two at -12 dBFS peak on both channels.
class InputSignal
{
public:
    static InputSignal demo();
    // A sine of frequencyHz (below half the sample rate).
    static InputSignal sine(double frequencyHz);
    static InputSignal noise();

    // The signal a command line names: "demo", "sine:HZ" (0 < HZ < 24000) or "noise"; nothing,
    // with the reason in error, for anything else.
    static std::optional<InputSignal> parse(const std::string& text, std::string& error);

    // Writes the next frames samples of the left and right channel.
    void fill(float* left, float* right, int frames);

private:
    enum class Kind
    {
        kDemo,
        kSine,
        kNoise
    };

    explicit InputSignal(Kind kind) : mKind(kind) {}
    float nextDemo(std::size_t channel);
    float nextNoise();

    Kind mKind;
    std::shared_ptr<const std::vector<float>> mDemo; // interleaved stereo, played in a loop
    std::size_t mDemoFrame = 0;
    double mSinePhase = 0.0;     // cycles, 0..1
    double mSineIncrement = 0.0; // cycles per sample
    std::uint32_t mNoiseState = 0x2545F491u;
};

} // namespace velmoran::editorhost
