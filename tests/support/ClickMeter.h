#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

namespace velmoran::testing
{

// How loud a click is: what a signal carries above a split frequency, where a steady tone below
// the split has nothing. A sixteenth-order Butterworth high pass (eight bilinear biquads) takes a
// tone two octaves below its corner more than 180 dB down, so what it lets through is the click.
class SplitHighPass
{
public:
    SplitHighPass(double splitHz, double rateHz)
    {
        constexpr double pi = 3.14159265358979323846;
        const double w0 = 2.0 * pi * splitHz / rateHz;
        const double cosW0 = std::cos(w0);
        for (std::size_t k = 0; k < mSections.size(); ++k)
        {
            // The Butterworth pole pairs of order 16 as the Q of eight second-order sections.
            const double q = 1.0 / (2.0 * std::sin(pi * (2.0 * k + 1.0) / (4.0 * mSections.size())));
            const double alpha = std::sin(w0) / (2.0 * q);
            const double a0 = 1.0 + alpha;
            Section& s = mSections[k];
            s.b0 = (1.0 + cosW0) / 2.0 / a0;
            s.b1 = -(1.0 + cosW0) / a0;
            s.b2 = s.b0;
            s.a1 = -2.0 * cosW0 / a0;
            s.a2 = (1.0 - alpha) / a0;
        }
    }

    double operator()(double x)
    {
        for (Section& s : mSections)
        {
            const double y = s.b0 * x + s.b1 * s.x1 + s.b2 * s.x2 - s.a1 * s.y1 - s.a2 * s.y2;
            s.x2 = s.x1;
            s.x1 = x;
            s.y2 = s.y1;
            s.y1 = y;
            x = y;
        }
        return x;
    }

private:
    struct Section
    {
        double b0 = 1.0, b1 = 0.0, b2 = 0.0, a1 = 0.0, a2 = 0.0;
        double x1 = 0.0, x2 = 0.0, y1 = 0.0, y2 = 0.0;
    };
    std::array<Section, 8> mSections;
};

// Largest magnitude above splitHz in signal[begin, end), in dB relative to `reference` (the
// amplitude of the tone the click is heard against). The high pass runs from the signal's start,
// so a tone that was steady well before `begin` has left nothing in it by then.
inline double PeakAboveDb(const std::vector<float>& signal, std::size_t begin, std::size_t end,
                          double splitHz, double rateHz, double reference)
{
    SplitHighPass highPass(splitHz, rateHz);
    double peak = 0.0;
    for (std::size_t i = 0; i < std::min(end, signal.size()); ++i)
    {
        const double above = std::fabs(highPass(signal[i]));
        peak = i >= begin ? std::max(peak, above) : peak;
    }
    return 20.0 * std::log10(std::max(peak, 1e-30) / reference);
}

} // namespace velmoran::testing
