#include "InputSignal.h"

#include "tools/render/DemoSignal.h"

#include <cmath>
#include <cstdlib>

namespace velmoran::editorhost
{

namespace
{

constexpr double kTwoPi = 6.283185307179586;
// -12 dBFS: the same peak as the demo mix.
constexpr float kPeakLevel = 0.25118864f;

} // namespace

InputSignal InputSignal::demo()
{
    // Made once for the process: the mix takes more than a second to make under Wine.
    static const auto mix = std::make_shared<const std::vector<float>>(render::makeDemoSignal());
    InputSignal signal(Kind::kDemo);
    signal.mDemo = mix;
    return signal;
}

InputSignal InputSignal::sine(double frequencyHz)
{
    InputSignal signal(Kind::kSine);
    signal.mSineIncrement = frequencyHz / kSignalSampleRate;
    return signal;
}

InputSignal InputSignal::noise()
{
    return InputSignal(Kind::kNoise);
}

std::optional<InputSignal> InputSignal::parse(const std::string& text, std::string& error)
{
    if (text == "demo")
    {
        return demo();
    }
    if (text == "noise")
    {
        return noise();
    }
    const std::string sinePrefix = "sine:";
    if (text.compare(0, sinePrefix.size(), sinePrefix) == 0)
    {
        const char* number = text.c_str() + sinePrefix.size();
        char* end = nullptr;
        const double frequencyHz = std::strtod(number, &end);
        if (end != number && *end == '\0' && frequencyHz > 0.0 && frequencyHz < kSignalSampleRate / 2.0)
        {
            return sine(frequencyHz);
        }
    }
    error = "unknown signal '" + text + "': use demo, sine:HZ (0 < HZ < 24000) or noise";
    return std::nullopt;
}

void InputSignal::fill(float* left, float* right, int frames)
{
    for (int frame = 0; frame < frames; ++frame)
    {
        switch (mKind)
        {
        case Kind::kDemo:
            left[frame] = nextDemo(0);
            right[frame] = nextDemo(1);
            mDemoFrame = (mDemoFrame + 1) % (mDemo->size() / 2);
            break;
        case Kind::kSine:
            left[frame] = kPeakLevel * static_cast<float>(std::sin(kTwoPi * mSinePhase));
            right[frame] = left[frame];
            mSinePhase = std::fmod(mSinePhase + mSineIncrement, 1.0);
            break;
        case Kind::kNoise:
            left[frame] = nextNoise();
            right[frame] = nextNoise();
            break;
        }
    }
}

float InputSignal::nextDemo(std::size_t channel)
{
    return (*mDemo)[2 * mDemoFrame + channel];
}

// Uniform in -peak..peak (xorshift), the same on every run.
float InputSignal::nextNoise()
{
    mNoiseState ^= mNoiseState << 13;
    mNoiseState ^= mNoiseState >> 17;
    mNoiseState ^= mNoiseState << 5;
    return kPeakLevel * static_cast<float>(static_cast<double>(mNoiseState) / 2147483648.0 - 1.0);
}

} // namespace velmoran::editorhost
