#include "MatchedDesigns.h"

#include "BiquadMagnitude.h"

#include <cmath>

namespace velmoran::dsp
{
namespace
{

constexpr double kPi = 3.141592653589793;
constexpr double kPiSquared = 9.869604401089358;
constexpr double kFourPiSquared = 39.47841760435743;

// The fits give up after this many evaluations; the last design stands.
constexpr int kMaxFitPasses = 10;
constexpr double kPeakFitTolerance = 0.0001;
constexpr double kShelfFitTolerance = static_cast<double>(1e-7f);

// Below 1.01 and down to 0.98 the peaking formulas lose their conditioning, so such gains give unity.
constexpr double kDeadBandHigh = 1.01;
constexpr double kDeadBandLow = 0.98;

BiquadCoefficients Unity() noexcept
{
    return BiquadCoefficients{};
}

// A failed design must still be a harmless filter: a NaN numerator lead becomes 1, any other 0.
void ReplaceNaN(BiquadCoefficients& c) noexcept
{
    if (std::isnan(c.b0))
        c.b0 = 1.0;
    if (std::isnan(c.b1))
        c.b1 = 0.0;
    if (std::isnan(c.b2))
        c.b2 = 0.0;
    if (std::isnan(c.a1))
        c.a1 = 0.0;
    if (std::isnan(c.a2))
        c.a2 = 0.0;
}

double Square(double x) noexcept
{
    return x * x;
}

// Magnitude of the analogue shelf prototype with DC gain g, unity at high frequencies and sqrt(g)
// near omega0 (all frequencies in radians per second).
struct ShelfPrototype
{
    double g;
    double omega0;
    double q;

    double Magnitude(double omega) const noexcept
    {
        const double numerator =
            Square(g * Square(omega0) - Square(omega)) + Square(std::sqrt(g) * omega0 / q) * Square(omega);
        const double denominator =
            Square(Square(omega0) - Square(omega)) + Square(omega0 / q) * Square(omega);
        return std::sqrt(numerator / denominator);
    }
};

// Magnitude at omega (radians per second) of nyquistGain * (s^2 + (wz/qz)s + wz^2) / (s^2 + (wp/qp)s + wp^2).
double PrewarpedShelfMagnitude(double omega, double nyquistGain, double wz, double qz, double wp,
                               double qp) noexcept
{
    const double numerator = Square(Square(wz) - Square(omega)) + Square(wz / qz) * Square(omega);
    const double denominator = Square(Square(wp) - Square(omega)) + Square(wp / qp) * Square(omega);
    return nyquistGain * std::sqrt(numerator / denominator);
}

struct Quadratic
{
    double s2;
    double s1;
    double s0;
};

// Bilinear transform with K = 2 fs and no prewarping (the prototype is prewarped already). K, K^2
// and -2K^2 are formed from the single-precision rate in single precision, which fixes the shelf
// coefficients bit for bit whichever thread designs them.
BiquadCoefficients Bilinear(float fs, const Quadratic& n, const Quadratic& d) noexcept
{
    const double k = fs + fs;
    const double kSquared = fs * 4.0f * fs;
    const double minusTwoKSquared = fs * -8.0f * fs;
    const double den = kSquared * d.s2 + k * d.s1 + d.s0;
    BiquadCoefficients c;
    c.b0 = (kSquared * n.s2 + k * n.s1 + n.s0) / den;
    c.b1 = (2.0 * n.s0 + minusTwoKSquared * n.s2) / den;
    c.b2 = (kSquared * n.s2 - k * n.s1 + n.s0) / den;
    c.a0 = 1.0;
    c.a1 = (2.0 * d.s0 + minusTwoKSquared * d.s2) / den;
    c.a2 = (kSquared * d.s2 - k * d.s1 + d.s0) / den;
    return c;
}

} // namespace

BiquadCoefficients DesignPeakingNyquist(double w0, double q, double peakGain, double referenceGain,
                                        double nyquistGain, double edgeGain, double bandwidthGain) noexcept
{
    if (!(peakGain > kDeadBandHigh || peakGain < kDeadBandLow))
        return Unity();

    const double g = peakGain;
    const double g0 = referenceGain;
    const double g1 = nyquistGain;
    const double gb = edgeGain;
    const double gr = bandwidthGain;
    const double tanHalf = std::tan(w0 / 2.0);
    const double w2 =
        std::sqrt(std::fabs(g * g - g1 * g1) / std::fabs(g * g - g0 * g0)) * (tanHalf * tanHalf);
    const double r = std::sqrt((gb * gb - gr * gr * gr * gr) / (g0 * g0 - gb * gb));
    const double halfBandwidthTan = std::tan(0.5 * r * w0 / (q * gr));
    const double f00 = std::fabs(gb * gb - g0 * g0);
    const double f11 = std::fabs(gb * gb - g1 * g1);
    const double f01 = std::fabs(gb * gb - g0 * g1);
    const double dw = halfBandwidthTan * (1.0 + std::sqrt(f00 / f11) * w2);
    const double u = dw * dw * f11 - 2.0 * w2 * (f01 - std::sqrt(f00 * f11));
    const double v =
        2.0 * w2 *
        (std::fabs(g * g - g0 * g1) - std::sqrt(std::fabs(g * g - g1 * g1) * std::fabs(g * g - g0 * g0)));
    const double f = std::fabs(g * g - gb * gb);
    const double a = std::sqrt((u + v) / f);
    const double b = std::sqrt((v * gb * gb + u * g * g) / f);

    const double n = 1.0 / (1.0 + w2 + a);
    BiquadCoefficients c;
    c.b0 = (g1 + g0 * w2 + b) * n;
    c.b1 = -2.0 * (g1 - g0 * w2) * n;
    c.b2 = (g1 - b + g0 * w2) * n;
    c.a0 = 1.0;
    c.a1 = -2.0 * (1.0 - w2) * n;
    c.a2 = (1.0 + w2 - a) * n;
    ReplaceNaN(c);
    return c;
}

BiquadCoefficients DesignPeaking(double fs, double f, double gainDb, double q) noexcept
{
    return DesignPeakingForGain(fs, f, std::pow(10.0, gainDb * static_cast<double>(0.05f)), q);
}

BiquadCoefficients DesignPeakingForGain(double fs, double f, double peakGain, double q) noexcept
{
    const double g = peakGain;
    const double halfGain = std::sqrt(g);
    const double w0 = 2.0 * kPi * f / fs;
    const double lowerEdge = (std::sqrt(4.0 * q * q + 1.0) - 1.0) * w0 / (2.0 * q);
    const double w0Squared = w0 * w0;
    const double detuneSquared = Square(w0Squared - kPiSquared);

    BiquadCoefficients c;
    double qi = q;
    for (int pass = 0; pass < kMaxFitPasses; ++pass)
    {
        // Nyquist gain of the analogue peaking prototype with the current Q.
        const double g1 = std::sqrt((w0Squared * g * kPiSquared / (qi * qi) + detuneSquared) /
                                    (w0Squared * kPiSquared / (qi * qi * g) + detuneSquared));
        c = DesignPeakingNyquist(w0, qi, g, 1.0, g1, std::sqrt(g1 * g), halfGain);
        const double m = BiquadMagnitude(lowerEdge, c);
        const double ratio = g < 1.0 ? halfGain / m : m / halfGain;
        qi *= ratio;
        if (std::fabs(ratio - 1.0) < kPeakFitTolerance)
            break;
    }
    return c;
}

BiquadCoefficients DesignBandPass(double fs, double f, double gainDb, double q) noexcept
{
    // Designed as a peak of 4 over a zero reference, then scaled down to unity.
    constexpr double kPeak = 4.0;
    constexpr double kBandwidthGain = 2.0;
    const double w0 = 2.0 * kPi * f / fs;
    const double w0Squared = w0 * w0;
    const double qb = q / 4.0;
    const double edge = (std::sqrt(4.0 * qb * qb + 1.0) - 1.0) * w0 / (2.0 * qb);
    const double edgeTerm = Square(w0 / q) * Square(edge);
    const double analogueAtEdge = std::sqrt(edgeTerm / (Square(w0Squared - Square(edge)) + edgeTerm));

    BiquadCoefficients c;
    double qi = (4.0 / std::sqrt(14.0)) * (q / 2.0);
    for (int pass = 0; pass < kMaxFitPasses; ++pass)
    {
        const double g1 =
            std::sqrt((w0Squared * 4.0 * kPiSquared / (qi * qi)) /
                      (w0Squared * kPiSquared / (4.0 * qi * qi) + Square(w0Squared - kPiSquared)));
        c = DesignPeakingNyquist(w0, qi, kPeak, 0.0, g1, (g1 + kPeak) / 2.0, kBandwidthGain);
        const double ratio = BiquadMagnitude(edge, c) / (kPeak * analogueAtEdge);
        qi *= ratio;
        if (std::fabs(ratio - 1.0) < kPeakFitTolerance)
            break;
    }

    const double scale = std::pow(10.0, gainDb * 0.05) * 0.25;
    c.b0 *= scale;
    c.b1 *= scale;
    c.b2 *= scale;
    return c;
}

BiquadCoefficients DesignShelf(double fs, double f, double gainDb, double q, bool high) noexcept
{
    const double g = std::pow(10.0, std::fabs(gainDb) / 20.0);
    const ShelfPrototype prototype{g, std::sqrt(f * f * kFourPiSquared / std::sqrt(g)), q};
    const double nyquistGain = prototype.Magnitude(kPi * fs);

    // Pole and zero frequencies prewarped so that DC and Nyquist gains come out exact.
    const double twoFs = 2.0 * fs;
    const double wp = twoFs * std::tan(prototype.omega0 / twoFs);
    const double wz = std::sqrt(g / nyquistGain) * wp;
    const double poleTarget = prototype.Magnitude(twoFs * std::atan(wp / twoFs));
    const double zeroTarget = prototype.Magnitude(twoFs * std::atan(wz / twoFs));

    double qp = q;
    double qz = q;
    double fittedQp = qp;
    double fittedQz = qz;
    for (int pass = 0; pass < kMaxFitPasses; ++pass)
    {
        fittedQp = qp;
        fittedQz = qz;
        const double rp = poleTarget / PrewarpedShelfMagnitude(wp, nyquistGain, wz, qz, wp, qp);
        const double rz = PrewarpedShelfMagnitude(wz, nyquistGain, wz, qz, wp, qp) / zeroTarget;
        qp *= rp;
        qz *= rz;
        if (std::fabs(rz - 1.0) < kShelfFitTolerance && std::fabs(rp - 1.0) < kShelfFitTolerance)
            break;
    }

    const Quadratic zeros{nyquistGain, nyquistGain * wz / fittedQz, nyquistGain * wz * wz};
    const Quadratic poles{1.0, wp / fittedQp, wp * wp};
    const Quadratic scaledPoles{g * poles.s2, g * poles.s1, g * poles.s0};
    // The high shelf is g over the low-shelf fit, and a cut is the exact reciprocal of its boost.
    const bool boost = gainDb >= 0.0;
    const Quadratic& numerator = high ? (boost ? scaledPoles : zeros) : (boost ? zeros : poles);
    const Quadratic& denominator = high ? (boost ? zeros : scaledPoles) : (boost ? poles : zeros);
    BiquadCoefficients c = Bilinear(static_cast<float>(fs), numerator, denominator);
    ReplaceNaN(c);
    return c;
}

} // namespace velmoran::dsp
