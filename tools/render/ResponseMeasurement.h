#pragma once

#include "RenderHost.h"

#include <array>
#include <string>
#include <vector>

namespace velmoran::render
{

// Magnitude responses over a set of frequencies, one curve per channel (left, right), in dB.
struct ResponseCurves
{
    double sampleRate = 48000.0;
    std::vector<double> frequenciesHz;
    std::array<std::vector<double>, 2> measuredDb;
    // Empty when the settings have no designed curve (a soloed band).
    std::array<std::vector<double>, 2> designedDb;
    // Why the designed curve is missing, empty otherwise.
    std::string designNote;
};

// count frequencies in Hz spaced evenly on a logarithmic scale from lowHz to highHz.
std::vector<double> logFrequencies(double lowHz, double highHz, int count);
// The frequencies a response is plotted at: 20 Hz to 20 kHz, below Nyquist at low rates.
std::vector<double> responseFrequencies(double sampleRate);

// Magnitude in dB of an impulse response (samples at sampleRate in Hz) at frequencyHz.
double magnitudeDbAt(const std::vector<float>& impulseResponse, double sampleRate, double frequencyHz);

// Measures a started stereo host (blocks of blockSize samples) with a unit impulse in both
// channels: the magnitude in dB of each output channel at each frequency.
std::array<std::vector<double>, 2> measureResponseDb(RenderHost& host, double sampleRate, int blockSize,
                                                     const std::vector<double>& frequenciesHz);

// The response the filter design gives for a saved state, per channel in dB: the input and
// output gain plus, summed in dB, every enabled band with a filter. Flat when the effect is out;
// no curve (and a note) while a band is soloed.
std::array<std::vector<double>, 2> designedResponseDb(const std::vector<char>& state, double sampleRate,
                                                      const std::vector<double>& frequenciesHz,
                                                      std::string& note);

} // namespace velmoran::render
