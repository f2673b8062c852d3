#pragma once

#include <vector>

namespace velmoran::render
{

constexpr int kDemoSampleRate = 48000;
constexpr int kDemoChannels = 2;
constexpr double kDemoSeconds = 8.0;
// Peak level of the demo in dBFS: room for the factory programs' boosts of up to +12 dB.
constexpr double kDemoPeakDb = -12.0;

// The built-in demo: four bars at 120 beats a minute of kick, snare and hi-hat, a bass line, a
// chord pad and a bell melody spread across the stereo field, interleaved stereo at 48 kHz,
// the same on every run.
std::vector<float> makeDemoSignal();

} // namespace velmoran::render
