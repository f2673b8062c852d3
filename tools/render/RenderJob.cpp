#include "RenderJob.h"

#include "ProgressBar.h"

#include <chrono>
#include <vector>

namespace velmoran::render
{

RenderSummary renderFile(RenderHost& host, AudioReader& reader, const std::string& outputPath,
                         int outputFormat, Dither dither, int blockSize, bool showProgress)
{
    const AudioInfo& input = reader.info();
    AudioInfo outputInfo = input;
    outputInfo.format = outputFormat;
    AudioWriter writer(outputPath, outputInfo, dither);
    writer.copyMetadataFrom(reader);

    const auto channels = static_cast<size_t>(input.channels);
    std::vector<float> interleaved;
    std::vector<std::vector<float>> planarIn(channels, std::vector<float>(static_cast<size_t>(blockSize)));
    std::vector<std::vector<float>> planarOut = planarIn;
    std::vector<float*> inputs;
    std::vector<float*> outputs;
    for (size_t channel = 0; channel < channels; ++channel)
    {
        inputs.push_back(planarIn[channel].data());
        outputs.push_back(planarOut[channel].data());
    }

    const bool longFile = static_cast<double>(input.frames) >= kProgressFromSeconds * input.sampleRate;
    ProgressBar progress(stderr, "Rendering", input.frames, showProgress && longFile);
    const auto started = std::chrono::steady_clock::now();
    RenderSummary summary;
    for (;;)
    {
        const int64_t frames = reader.read(interleaved, blockSize);
        if (frames == 0)
        {
            break;
        }
        for (int64_t frame = 0; frame < frames; ++frame)
        {
            for (size_t channel = 0; channel < channels; ++channel)
            {
                planarIn[channel][static_cast<size_t>(frame)] =
                    interleaved[static_cast<size_t>(frame) * channels + channel];
            }
        }
        host.process(inputs.data(), outputs.data(), static_cast<int>(frames));
        for (int64_t frame = 0; frame < frames; ++frame)
        {
            for (size_t channel = 0; channel < channels; ++channel)
            {
                interleaved[static_cast<size_t>(frame) * channels + channel] =
                    planarOut[channel][static_cast<size_t>(frame)];
            }
        }
        writer.write(interleaved.data(), frames);
        summary.frames += frames;
        progress.update(summary.frames);
    }
    writer.commit();
    progress.finish();
    summary.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    summary.overs = writer.oversCount();
    return summary;
}

} // namespace velmoran::render
