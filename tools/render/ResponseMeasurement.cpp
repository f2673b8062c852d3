#include "ResponseMeasurement.h"

#include "dsp/BiquadMagnitude.h"
#include "dsp/FilterDesign.h"
#include "plugin/PlugParameters.h"
#include "plugin/PlugState.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstring>

namespace velmoran::render
{

namespace
{

using namespace Steinberg::Vst::Velmoran;

constexpr double kPi = 3.141592653589793;
constexpr int kPlotPoints = 400;
constexpr double kLowestHz = 20.0;
constexpr double kHighestHz = 20000.0;
// Seconds of impulse response taken: a 20 Hz band at Q 5 has rung out long before.
constexpr double kImpulseSeconds = 2.0;
// Floor of every curve in dB, so that a silenced channel still plots.
constexpr double kFloorDb = -120.0;
// The running phasor is set afresh this often to keep rounding from building up.
constexpr size_t kPhasorResync = 4096;

double decibels(double magnitude)
{
    return std::max(kFloorDb, 20.0 * std::log10(std::max(magnitude, 1e-30)));
}

// Normalised values by tag, read back from a state stream.
bool valuesOfState(const std::vector<char>& state, std::array<float, kTagTableSize>& values)
{
    for (ParamID tag = 0; tag < kTagTableSize; ++tag)
    {
        values[tag] = defaultValue(tag);
    }
    const size_t count = std::min(state.size() / sizeof(float), static_cast<size_t>(kStateValueCount));
    if (count < static_cast<size_t>(kRequiredStateValueCount))
    {
        return false;
    }
    for (size_t index = 0; index < count; ++index)
    {
        float value = 0.0f;
        std::memcpy(&value, state.data() + index * sizeof(float), sizeof(float));
        values[stateTags()[index]] = value;
    }
    return true;
}

// Whether band acts on channel (0 left, 1 right) in its channel mode.
bool bandActsOn(int mode, int channel)
{
    return mode == 0 || mode == channel + 1 || mode > 2;
}

} // namespace

std::vector<double> logFrequencies(double lowHz, double highHz, int count)
{
    std::vector<double> frequencies(static_cast<size_t>(count));
    for (int index = 0; index < count; ++index)
    {
        const double position = count > 1 ? static_cast<double>(index) / (count - 1) : 0.0;
        frequencies[static_cast<size_t>(index)] = lowHz * std::pow(highHz / lowHz, position);
    }
    return frequencies;
}

std::vector<double> responseFrequencies(double sampleRate)
{
    return logFrequencies(kLowestHz, std::min(kHighestHz, 0.49 * sampleRate), kPlotPoints);
}

double magnitudeDbAt(const std::vector<float>& impulseResponse, double sampleRate, double frequencyHz)
{
    const double omega = 2.0 * kPi * frequencyHz / sampleRate;
    const std::complex<double> step = std::polar(1.0, -omega);
    std::complex<double> phasor = 1.0;
    std::complex<double> sum = 0.0;
    for (size_t n = 0; n < impulseResponse.size(); ++n)
    {
        if (n % kPhasorResync == 0)
        {
            phasor = std::polar(1.0, -omega * static_cast<double>(n));
        }
        sum += static_cast<double>(impulseResponse[n]) * phasor;
        phasor *= step;
    }
    return decibels(std::abs(sum));
}

std::array<std::vector<double>, 2> measureResponseDb(RenderHost& host, double sampleRate, int blockSize,
                                                     const std::vector<double>& frequenciesHz)
{
    const auto length = static_cast<size_t>(kImpulseSeconds * sampleRate);
    std::array<std::vector<float>, 2> input = {std::vector<float>(length), std::vector<float>(length)};
    std::array<std::vector<float>, 2> output = {std::vector<float>(length), std::vector<float>(length)};
    input[0][0] = 1.0f;
    input[1][0] = 1.0f;
    for (size_t done = 0; done < length;)
    {
        const size_t frames = std::min(static_cast<size_t>(blockSize), length - done);
        float* inputs[2] = {input[0].data() + done, input[1].data() + done};
        float* outputs[2] = {output[0].data() + done, output[1].data() + done};
        host.process(inputs, outputs, static_cast<int>(frames));
        done += frames;
    }
    std::array<std::vector<double>, 2> curves;
    for (size_t channel = 0; channel < 2; ++channel)
    {
        for (double frequency : frequenciesHz)
        {
            curves[channel].push_back(magnitudeDbAt(output[channel], sampleRate, frequency));
        }
    }
    return curves;
}

std::array<std::vector<double>, 2> designedResponseDb(const std::vector<char>& state, double sampleRate,
                                                      const std::vector<double>& frequenciesHz,
                                                      std::string& note)
{
    std::array<float, kTagTableSize> values{};
    if (!valuesOfState(state, values))
    {
        note = "no designed curve: the plug-in gave no state";
        return {};
    }
    if (soloBand(values[kSoloTag]) != 0)
    {
        note = "no designed curve while a band is soloed";
        return {};
    }
    std::array<std::vector<double>, 2> curves = {std::vector<double>(frequenciesHz.size(), 0.0),
                                                 std::vector<double>(frequenciesHz.size(), 0.0)};
    const bool effectIn = isOn(values[kEqTag]) && !isOn(values[kHostBypassTag]);
    if (!effectIn)
    {
        return curves;
    }
    const double gainsDb = ioGainDb(values[kInputGainTag]) + ioGainDb(values[kOutputGainTag]);
    const float rate = static_cast<float>(sampleRate);
    for (size_t channel = 0; channel < 2; ++channel)
    {
        for (size_t point = 0; point < frequenciesHz.size(); ++point)
        {
            const double omega = 2.0 * kPi * frequenciesHz[point] / sampleRate;
            double totalDb = gainsDb;
            for (int band = 1; band <= kBandCount; ++band)
            {
                const int type = filterTypeCode(values[filterTypeTag(band)]);
                if (type <= dsp::kTypeNoFilter || !isOn(values[enableTag(band)]) ||
                    !bandActsOn(channelMode(values[modeTag(band)]), static_cast<int>(channel)))
                {
                    continue;
                }
                if (type > dsp::kTypeBandPass)
                {
                    // The audio side silences a band whose code designs nothing.
                    totalDb += kFloorDb;
                    continue;
                }
                double a0 = 1.0, a1 = 0.0, a2 = 0.0, b0 = 1.0, b1 = 0.0, b2 = 0.0;
                dsp::DesignFilter(rate, bandFrequencyHz(values[frequencyTag(band)]),
                                  bandGainDb(values[gainTag(band)]), bandQ(values[qTag(band)]), type, a0, a1,
                                  a2, b0, b1, b2);
                totalDb += decibels(dsp::BiquadMagnitude(omega, a1 / a0, a2 / a0, b0 / a0, b1 / a0, b2 / a0));
            }
            curves[channel][point] = std::max(kFloorDb, totalDb);
        }
    }
    return curves;
}

} // namespace velmoran::render
