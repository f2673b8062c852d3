#include "FftButterflies.h"

#include <immintrin.h>

namespace velmoran::dsp
{

__attribute__((target("avx"))) void RunButterflyPairsAvx(double* real, double* imag, int span, int first,
                                                         int count, TwiddlePair& twiddles) noexcept
{
    ButterflyWalk walk(real, imag, span, first, twiddles);
    while (count > 0)
    {
        // Two pairs side by side need the first at a multiple of four; a block holds a whole
        // number of such quadruples, so both pairs share the block.
        if (count < 2 || walk.k % 4 != 0)
        {
            walk.runPair();
            --count;
            continue;
        }
        const int k = walk.k;
        const __m128d lowCos = walk.cosines;
        const __m128d lowSin = walk.sines;
        walk.advance();
        const __m256d cosines = _mm256_set_m128d(walk.cosines, lowCos);
        const __m256d sines = _mm256_set_m128d(walk.sines, lowSin);
        double* re = walk.re;
        double* im = walk.im;
        const __m256d secondRe = _mm256_loadu_pd(re + k + span);
        const __m256d secondIm = _mm256_loadu_pd(im + k + span);
        const __m256d rotatedRe =
            _mm256_sub_pd(_mm256_mul_pd(cosines, secondRe), _mm256_mul_pd(sines, secondIm));
        const __m256d rotatedIm =
            _mm256_add_pd(_mm256_mul_pd(cosines, secondIm), _mm256_mul_pd(sines, secondRe));
        const __m256d firstRe = _mm256_loadu_pd(re + k);
        const __m256d firstIm = _mm256_loadu_pd(im + k);
        _mm256_storeu_pd(re + k + span, _mm256_sub_pd(firstRe, rotatedRe));
        _mm256_storeu_pd(im + k + span, _mm256_sub_pd(firstIm, rotatedIm));
        _mm256_storeu_pd(re + k, _mm256_add_pd(firstRe, rotatedRe));
        _mm256_storeu_pd(im + k, _mm256_add_pd(firstIm, rotatedIm));
        walk.advance();
        count -= 2;
    }
    walk.store(twiddles);
}

} // namespace velmoran::dsp
