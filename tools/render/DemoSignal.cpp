#include "DemoSignal.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace velmoran::render
{

namespace
{

constexpr double kPi = 3.141592653589793;
constexpr double kBeatSeconds = 0.5;

// Noise that is the same on every run (xorshift), uniform in -1..1.
class Noise
{
public:
    double next()
    {
        mState ^= mState << 13;
        mState ^= mState >> 17;
        mState ^= mState << 5;
        return static_cast<double>(mState) / 2147483648.0 - 1.0;
    }

private:
    uint32_t mState = 0x9e3779b9u;
};

struct Stereo
{
    std::vector<double> left;
    std::vector<double> right;

    explicit Stereo(size_t frames) : left(frames), right(frames) {}

    // Adds a mono sample at frame with a constant-power pan (-1 left .. +1 right).
    void add(size_t frame, double sample, double pan)
    {
        const double angle = (pan + 1.0) * kPi / 4.0;
        left[frame] += sample * std::cos(angle);
        right[frame] += sample * std::sin(angle);
    }
};

// Frequency in Hz of a MIDI note number.
double noteHz(int note)
{
    return 440.0 * std::pow(2.0, (note - 69) / 12.0);
}

size_t frameAt(double seconds)
{
    return static_cast<size_t>(seconds * kDemoSampleRate);
}

// A kick: a sine falling from 110 Hz to 45 Hz under a quick decay.
void addKick(Stereo& mix, double start)
{
    double phase = 0.0;
    const size_t first = frameAt(start);
    for (size_t n = 0; n < frameAt(0.4) && first + n < mix.left.size(); ++n)
    {
        const double t = static_cast<double>(n) / kDemoSampleRate;
        const double frequency = 45.0 + 65.0 * std::exp(-t / 0.04);
        phase += 2.0 * kPi * frequency / kDemoSampleRate;
        mix.add(first + n, 0.9 * std::sin(phase) * std::exp(-t / 0.12), 0.0);
    }
}

// A snare: a short 190 Hz body under a burst of brightened noise.
void addSnare(Stereo& mix, double start, Noise& noise)
{
    const size_t first = frameAt(start);
    double previous = 0.0;
    for (size_t n = 0; n < frameAt(0.3) && first + n < mix.left.size(); ++n)
    {
        const double t = static_cast<double>(n) / kDemoSampleRate;
        const double white = noise.next();
        const double bright = white - 0.6 * previous;
        previous = white;
        const double body = std::sin(2.0 * kPi * 190.0 * t) * std::exp(-t / 0.05);
        mix.add(first + n, 0.35 * body + 0.3 * bright * std::exp(-t / 0.07), -0.1);
    }
}

// A closed hi-hat: high-passed noise of 30 ms.
void addHat(Stereo& mix, double start, double level, Noise& noise)
{
    const size_t first = frameAt(start);
    double previous = 0.0;
    for (size_t n = 0; n < frameAt(0.08) && first + n < mix.left.size(); ++n)
    {
        const double t = static_cast<double>(n) / kDemoSampleRate;
        const double white = noise.next();
        const double high = white - previous;
        previous = white;
        mix.add(first + n, level * high * std::exp(-t / 0.02), 0.4);
    }
}

// A plucked tone with a few harmonics, decaying over decaySeconds.
void addTone(Stereo& mix, double start, double seconds, double frequency, double level, double pan,
             double decaySeconds, int harmonics)
{
    const size_t first = frameAt(start);
    for (size_t n = 0; n < frameAt(seconds) && first + n < mix.left.size(); ++n)
    {
        const double t = static_cast<double>(n) / kDemoSampleRate;
        double sample = 0.0;
        for (int h = 1; h <= harmonics && frequency * h < 18000.0; ++h)
        {
            sample += std::sin(2.0 * kPi * frequency * h * t) / h;
        }
        // A 5 ms attack and release keep the notes free of clicks.
        const double edge = std::min({1.0, t / 0.005, (seconds - t) / 0.005});
        mix.add(first + n, level * sample * edge * std::exp(-t / decaySeconds), pan);
    }
}

} // namespace

std::vector<float> makeDemoSignal()
{
    const size_t frames = frameAt(kDemoSeconds);
    Stereo mix(frames);
    Noise noise;
    // A minor, F major, C major, G major: one chord a bar (MIDI notes).
    const std::array<std::array<int, 4>, 4> chords = {
        {{33, 57, 60, 64}, {29, 57, 60, 65}, {36, 55, 60, 64}, {31, 55, 59, 62}}};
    const std::array<int, 8> melody = {76, 79, 81, 79, 84, 81, 79, 76};
    for (int bar = 0; bar < 4; ++bar)
    {
        const double barStart = bar * 4 * kBeatSeconds;
        const auto& chord = chords[static_cast<size_t>(bar)];
        for (int beat = 0; beat < 4; ++beat)
        {
            const double beatStart = barStart + beat * kBeatSeconds;
            if (beat % 2 == 0)
            {
                addKick(mix, beatStart);
            }
            else
            {
                addSnare(mix, beatStart, noise);
            }
            addHat(mix, beatStart, 0.25, noise);
            addHat(mix, beatStart + kBeatSeconds / 2.0, 0.15, noise);
            addTone(mix, beatStart, kBeatSeconds * 0.9, noteHz(chord[0]), 0.35, 0.0, 0.25, 6);
            addTone(mix, beatStart + kBeatSeconds / 2.0, kBeatSeconds * 0.4, noteHz(chord[0] + 12), 0.2, 0.0,
                    0.15, 6);
        }
        for (size_t voice = 1; voice < chord.size(); ++voice)
        {
            const double pan = voice == 1 ? -0.6 : (voice == 2 ? 0.0 : 0.6);
            addTone(mix, barStart, 4 * kBeatSeconds, noteHz(chord[voice]), 0.08, pan, 3.0, 4);
        }
        addTone(mix, barStart + kBeatSeconds, kBeatSeconds, noteHz(melody[static_cast<size_t>(2 * bar)]),
                0.12, -0.5, 0.3, 3);
        addTone(mix, barStart + 2.5 * kBeatSeconds, kBeatSeconds * 1.5,
                noteHz(melody[static_cast<size_t>(2 * bar + 1)]), 0.12, -0.5, 0.4, 3);
    }
    double peak = 0.0;
    for (size_t n = 0; n < frames; ++n)
    {
        peak = std::max({peak, std::fabs(mix.left[n]), std::fabs(mix.right[n])});
    }
    const double scale = peak > 0.0 ? std::pow(10.0, kDemoPeakDb / 20.0) / peak : 0.0;
    std::vector<float> interleaved(frames * kDemoChannels);
    for (size_t n = 0; n < frames; ++n)
    {
        interleaved[2 * n] = static_cast<float>(mix.left[n] * scale);
        interleaved[2 * n + 1] = static_cast<float>(mix.right[n] * scale);
    }
    return interleaved;
}

} // namespace velmoran::render
