#include "FilterDesign.h"

#include "BeyondNyquistDesign.h"
#include "MatchedDesigns.h"

#include <cmath>

namespace velmoran::dsp
{
namespace
{

constexpr double kPi = 3.141592653589793;
constexpr double kSqrtTwo = 1.4142135623730951;
constexpr float kMinFrequencyHz = 20.0f;
constexpr float kMaxFrequencyHz = 20000.0f;
constexpr float kPeakCorrectionThresholdDb = 6.0f;

// How a peaking gain in dB becomes a linear gain: the editor's curves take the 0.05 factor rounded
// to single precision, the audio thread takes it in double precision. The two differ by about 1e-8
// of the gain, far below hearing, and each path stays bit-stable.
enum class PeakingGainStep
{
    Single,
    Double,
};

// The clamp ignores the sample rate: at rates under 40 kHz a 20 kHz band lies above Nyquist and is
// designed for the part of its curve below Nyquist.
float ClampFrequency(float frequencyHz) noexcept
{
    if (frequencyHz > kMaxFrequencyHz)
        return kMaxFrequencyHz;
    if (frequencyHz < kMinFrequencyHz)
        return kMinFrequencyHz;
    return frequencyHz;
}

double WidenedQ(double q, double g) noexcept
{
    return g > kSqrtTwo ? q * std::sqrt(g) / std::sqrt(g * g - 2.0) : q;
}

double NarrowedQ(double q, double g) noexcept
{
    return g > kSqrtTwo ? q * std::sqrt(g * g - 2.0) / std::sqrt(g) : q;
}

// Denominator of the matched low and high pass: a damped pole pair at u (fraction of Nyquist).
BiquadCoefficients MatchedPassPoles(double u, double q) noexcept
{
    const double r = std::exp(-(kPi / 2.0) * u / q);
    const double k = 2.0 * q > 1.0 ? -2.0 * r * std::cos(kPi * u * std::sqrt(1.0 - 1.0 / (4.0 * q * q)))
                                   : -2.0 * r * std::cosh(kPi * u * std::sqrt(1.0 / (4.0 * q * q) - 1.0));
    BiquadCoefficients c;
    c.a0 = 1.0;
    c.a1 = k;
    c.a2 = r * r;
    return c;
}

// Magnitude denominator of the analogue second-order pass at the Nyquist frequency.
double AnalogueNyquistTerm(double u, double q) noexcept
{
    return std::sqrt(u * u / (q * q) + (1.0 - u * u) * (1.0 - u * u));
}

// Linear gain of a peaking band as the chosen path takes it.
double PeakingGain(float gainDb, PeakingGainStep step) noexcept
{
    return step == PeakingGainStep::Single ? std::pow(10.0, gainDb * static_cast<double>(0.05f))
                                           : std::pow(10.0, gainDb * 0.05);
}

// The analogue prototype a band of codes 2..11 is matched to, with the Q its design uses.
AnalogueResponse Prototype(double f, float gainDb, float q, int type, PeakingGainStep step) noexcept
{
    switch (type)
    {
    case kTypeLowShelf:
    case kTypeHighShelf:
        return {type, f, std::pow(10.0, gainDb / 20.0), MapResonantQ(q)};
    case kTypeLowPass:
    case kTypeHighPass:
        return {type, f, 1.0, MapResonantQ(q)};
    case kTypeBandPass:
        return {type, f, 1.0, q};
    default:
        return {type, f, PeakingGain(gainDb, step), CorrectPeakingQ(type, gainDb, q)};
    }
}

BiquadCoefficients DesignInReach(double fs, const AnalogueResponse& p, float gainDb) noexcept
{
    switch (p.type)
    {
    case kTypeLowShelf:
    case kTypeHighShelf:
        return DesignShelf(fs, p.centreHz, gainDb, p.q, p.type == kTypeHighShelf);
    case kTypeLowPass:
        return DesignMatchedLowPass(fs, p.centreHz, p.q);
    case kTypeHighPass:
        return DesignMatchedHighPass(fs, p.centreHz, p.q);
    case kTypeBandPass:
        return DesignBandPass(fs, p.centreHz, 0.0, p.q);
    default:
        return DesignPeakingForGain(fs, p.centreHz, p.gain, p.q);
    }
}

// Dispatch shared by both entries; false for codes that design nothing.
bool DesignByType(double fs, float frequencyHz, float gainDb, float q, int type, PeakingGainStep step,
                  BiquadCoefficients& c) noexcept
{
    if (type == kTypeNone || type == kTypeNoFilter)
    {
        c = BiquadCoefficients{};
        return true;
    }
    if (type < kTypePeakHalfGain || type > kTypeBandPass)
        return false;

    const AnalogueResponse prototype = Prototype(ClampFrequency(frequencyHz), gainDb, q, type, step);
    // The second-order designs place their corner below Nyquist; a band at or above it keeps the
    // part of its curve that the rate can reach.
    c = prototype.centreHz < 0.5 * fs ? DesignInReach(fs, prototype, gainDb)
                                      : DesignBeyondNyquist(fs, prototype);
    return true;
}

void StoreSection(BandFilter& record, const BiquadSection& section) noexcept
{
    record.active = section;
    record.pending = section;
}

} // namespace

void DesignFilter(const float& sampleRate, float frequencyHz, float gainDb, float q, int type, double& a0,
                  double& a1, double& a2, double& b0, double& b1, double& b2) noexcept
{
    BiquadCoefficients c;
    if (!DesignByType(sampleRate, frequencyHz, gainDb, q, type, PeakingGainStep::Single, c))
        return;
    a0 = c.a0;
    a1 = c.a1;
    a2 = c.a2;
    b0 = c.b0;
    b1 = c.b1;
    b2 = c.b2;
}

void DesignBandFilter(BandFilter& record, float frequencyHz, float gainDb, float q, const float& sampleRate,
                      int type) noexcept
{
    if (type == kTypeSilence)
    {
        StoreSection(record, BiquadSection{0.0, 0.0, 0.0, 0.0, 0.0});
        return;
    }
    if (type > kTypeBandPass && type < kTypeSilence)
    {
        StoreSection(record, BiquadSection{0.0, 0.0, 0.0, 0.0, 0.0});
        record.activeState = BiquadState{};
        record.pendingState = BiquadState{};
        return;
    }
    BiquadCoefficients c;
    if (!DesignByType(sampleRate, frequencyHz, gainDb, q, type, PeakingGainStep::Double, c))
        return;
    StoreSection(record, BiquadSection{c.b0, c.b1, c.b2, -c.a1, -c.a2});
}

double MapResonantQ(float q) noexcept
{
    // Logarithms in single precision, the precision of the Q control itself.
    const double lq = std::log10(q);
    const double lMin = std::log10(0.3f);
    const double lMax = std::log10(5.0f);
    const double lLow = std::log10(0.7f);
    const double lHigh = std::log10(1.4f);
    const double t = (lq - lMin) / (lMax - lMin);
    return std::pow(10.0, t * (lHigh - lLow) + lLow);
}

double CorrectPeakingQ(int type, float gainDb, float q) noexcept
{
    const bool boost = gainDb > kPeakCorrectionThresholdDb;
    const bool cut = gainDb < -kPeakCorrectionThresholdDb;
    if (!boost && !cut)
        return q;

    const double a = std::fabs(static_cast<double>(gainDb));
    const double g =
        type == kTypePeakMinus3Db ? std::pow(10.0, a * 0.05) : std::pow(10.0, a * static_cast<double>(0.05f));
    switch (type)
    {
    case kTypePeakMinus3Db:
        return WidenedQ(q, g);
    case kTypePeakPlus3Db:
        return NarrowedQ(q, g);
    case kTypePeakAsymmetric:
        return boost ? WidenedQ(q, g) : NarrowedQ(q, g);
    case kTypePeakInverse:
        return boost ? NarrowedQ(q, g) : WidenedQ(q, g);
    default:
        return q;
    }
}

BiquadCoefficients DesignMatchedLowPass(double fs, double f, double q) noexcept
{
    const double u = f / (0.5 * fs);
    BiquadCoefficients c = MatchedPassPoles(u, q);
    const double r0 = 1.0 + c.a1 + c.a2;
    const double r1 = (1.0 - c.a1 + c.a2) * (u * u) / AnalogueNyquistTerm(u, q);
    c.b0 = (r0 + r1) / 2.0;
    c.b1 = r0 - c.b0;
    c.b2 = 0.0;
    return c;
}

BiquadCoefficients DesignMatchedHighPass(double fs, double f, double q) noexcept
{
    const double u = f / (0.5 * fs);
    BiquadCoefficients c = MatchedPassPoles(u, q);
    const double r1 = (1.0 - c.a1 + c.a2) / AnalogueNyquistTerm(u, q);
    c.b0 = r1 / 4.0;
    c.b1 = -2.0 * c.b0;
    c.b2 = r1 / 4.0;
    return c;
}

} // namespace velmoran::dsp
