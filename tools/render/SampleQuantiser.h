#pragma once

#include <cstdint>

namespace velmoran::render
{

// Noise added before integer samples are rounded: triangular (TPDF) of one step either way, or
// none.
enum class Dither
{
    tpdf,
    none,
};

// Turns float samples (full scale at 1.0) into the steps of an integer encoding of 8 to 32 bits,
// rounded to the nearest step, with TPDF dither if asked, clipped at full scale. The same
// samples give the same steps on every run: the dither's noise starts from a fixed seed.
class SampleQuantiser
{
public:
    SampleQuantiser(int bits, Dither dither);

    // The step of a sample, placed in the top bits of a 32-bit integer as libsndfile takes
    // integer samples for every encoding; a sample that is not a number gives 0.
    int32_t operator()(float sample) noexcept;

private:
    // A uniform random number in 0..1.
    double nextUniform() noexcept;

    double mStepsPerUnit;
    int mShift;
    bool mDither;
    uint32_t mNoise = 0x9e3779b9u;
};

} // namespace velmoran::render
