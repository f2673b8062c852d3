#pragma once

#include "dsp/BandEngine.h"

#include <algorithm>
#include <cstddef>
#include <functional>
#include <vector>

namespace velmoran::testing
{

struct Stereo
{
    std::vector<float> left;
    std::vector<float> right;
};

using EngineChange = std::function<void(dsp::BandEngine&)>;

// Sets every setting of one band (1..10) and switches it on; mode 0 is both channels.
inline void SetBand(dsp::BandEngine& engine, int band, int type, float hz, float db, float q = 1.0f,
                    int mode = 0)
{
    engine.setBandType(band, type);
    engine.setBandFrequency(band, hz);
    engine.setBandGain(band, db);
    engine.setBandQ(band, q);
    engine.setBandMode(band, mode);
    engine.setBandEnabled(band, true);
}

// Runs the engine as the processor does: chunks of at most 64 frames, each after a block update,
// with `change` made before the chunk that starts at frame `changeAt` (a chunk boundary).
inline Stereo ProcessInChunks(dsp::BandEngine& engine, const std::vector<float>& left,
                              const std::vector<float>& right, std::size_t changeAt = 0,
                              const EngineChange& change = {})
{
    constexpr std::size_t kChunk = dsp::BandEngine::kMaxChunkLength;
    Stereo output{std::vector<float>(left.size()), std::vector<float>(left.size())};
    for (std::size_t start = 0; start < left.size(); start += kChunk)
    {
        if (start == changeAt && change)
            change(engine);
        const int length = static_cast<int>(std::min(kChunk, left.size() - start));
        engine.updateBlock(length);
        engine.processChunk(&left[start], &right[start], &output.left[start], &output.right[start], length);
    }
    return output;
}

// The same signal in both channels.
inline Stereo ProcessInChunks(dsp::BandEngine& engine, const std::vector<float>& mono,
                              std::size_t changeAt = 0, const EngineChange& change = {})
{
    return ProcessInChunks(engine, mono, mono, changeAt, change);
}

} // namespace velmoran::testing
