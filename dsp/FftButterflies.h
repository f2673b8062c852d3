#pragma once

#include "FftStepper.h"

#include <emmintrin.h>

namespace velmoran::dsp
{

// Butterfly pairs of one stage of the stepped transform, in memory order: `count` pairs from pair
// `first` on. Pair q lies in block q / (span/2) of 2*span values, at k = 2*(q mod span/2): the
// butterflies (k, k + span) and (k + 1, k + 1 + span) of the block, with the twiddle factors w^k
// and w^(k+1) that `twiddles` holds for pair `first` and is left holding for the pair after the
// last. Both kernels do the same operations in the same order, so their results are identical.
void RunButterflyPairsSse2(double* real, double* imag, int span, int first, int count,
                           TwiddlePair& twiddles) noexcept;
// The same two pairs at a time in AVX registers; only for processors that have AVX.
void RunButterflyPairsAvx(double* real, double* imag, int span, int first, int count,
                          TwiddlePair& twiddles) noexcept;

// The walk through a stage shared by both kernels: where the next pair lies and its twiddles.
struct ButterflyWalk
{
    ButterflyWalk(double* real, double* imag, int span, int first, const TwiddlePair& twiddles) noexcept
        : span(span), re(real + first / (span / 2) * 2 * span), im(imag + first / (span / 2) * 2 * span),
          k(2 * (first % (span / 2))), cosines(_mm_load_pd(twiddles.cosines)),
          sines(_mm_load_pd(twiddles.sines)), stepCos(_mm_set1_pd(twiddles.pairStep.cos)),
          stepSin(_mm_set1_pd(twiddles.pairStep.sin)), blockCos(_mm_set_pd(twiddles.step.cos, 1.0)),
          blockSin(_mm_set_pd(twiddles.step.sin, 0.0))
    {
    }

    // One butterfly pair at k, then on to the next pair.
    void runPair() noexcept
    {
        const __m128d secondRe = _mm_load_pd(re + k + span);
        const __m128d secondIm = _mm_load_pd(im + k + span);
        const __m128d rotatedRe = _mm_sub_pd(_mm_mul_pd(cosines, secondRe), _mm_mul_pd(sines, secondIm));
        const __m128d rotatedIm = _mm_add_pd(_mm_mul_pd(cosines, secondIm), _mm_mul_pd(sines, secondRe));
        const __m128d firstRe = _mm_load_pd(re + k);
        const __m128d firstIm = _mm_load_pd(im + k);
        _mm_store_pd(re + k + span, _mm_sub_pd(firstRe, rotatedRe));
        _mm_store_pd(im + k + span, _mm_sub_pd(firstIm, rotatedIm));
        _mm_store_pd(re + k, _mm_add_pd(firstRe, rotatedRe));
        _mm_store_pd(im + k, _mm_add_pd(firstIm, rotatedIm));
        advance();
    }

    // k moves on by a pair; the twiddles by w^2 within a block, back to w^0 and w^1 at the next.
    void advance() noexcept
    {
        k += 2;
        if (k == span)
        {
            k = 0;
            re += 2 * span;
            im += 2 * span;
            cosines = blockCos;
            sines = blockSin;
        }
        else
        {
            AdvanceTwiddles(cosines, sines, stepCos, stepSin);
        }
    }

    void store(TwiddlePair& twiddles) const noexcept
    {
        _mm_store_pd(twiddles.cosines, cosines);
        _mm_store_pd(twiddles.sines, sines);
    }

    int span;
    double* re;
    double* im;
    int k;
    __m128d cosines;
    __m128d sines;
    __m128d stepCos;
    __m128d stepSin;
    __m128d blockCos;
    __m128d blockSin;
};

} // namespace velmoran::dsp
