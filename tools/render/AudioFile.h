#pragma once

#include "SampleQuantiser.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace velmoran::render
{

// Containers the tool reads and writes.
enum class Container
{
    wav,
    aiff,
    flac,
};

// Sample encodings; the others that libsndfile reads in these containers (8-bit, double) are kept
// as they are when the output keeps the input's format.
enum class Encoding
{
    pcm16,
    pcm24,
    pcm32,
    float32,
};

// What a sound file holds: rate in Hz, channels (1 or 2), length in frames and the libsndfile
// format code (container and encoding).
struct AudioInfo
{
    int sampleRate = 0;
    int channels = 0;
    int64_t frames = 0;
    int format = 0;
};

// The container named by a word ("wav", "aiff", "aif", "flac"), none for any other word.
std::optional<Container> containerNamed(const std::string& name);
// The extension of a file name without its dot ("wav"), empty when it has none.
std::string extensionOf(const std::string& path);
// The container a file name's extension stands for, none when it stands for none of them.
std::optional<Container> containerOfPath(const std::string& path);
// The encoding named by a word ("16", "24", "32", "float"), none for any other word.
std::optional<Encoding> encodingNamed(const std::string& name);
// The format an output gets: the input's, with container and encoding replaced where asked;
// throws RenderError when the container cannot hold that encoding.
int outputFormat(int inputFormat, std::optional<Container> container, std::optional<Encoding> encoding);
// A short description of a format code for messages ("WAV 24-bit", "FLAC 16-bit", "AIFF float").
std::string formatDescription(int format);
// Whether a format's samples stop at full scale (integer encodings); float encodings go beyond.
bool clipsAtFullScale(int format);
// Whether a format holds 64-bit float samples, more precise than the plug-in's 32-bit ones.
bool holdsDoublePrecision(int format);
// The dither an output of a format gets unless asked otherwise: TPDF for 16 bits and fewer, where
// the rounding error is audible, none for 24 bits and more and for float.
Dither defaultDither(int format);

// Reads a WAV, AIFF or FLAC file, mono or stereo, as interleaved floats in -1..1.
class AudioReader
{
public:
    // Opens path; throws RenderError naming the file when it is missing, unreadable or of a
    // format or channel count the tool does not take.
    explicit AudioReader(const std::string& path);
    ~AudioReader();
    AudioReader(const AudioReader&) = delete;
    AudioReader& operator=(const AudioReader&) = delete;

    // What the file holds.
    const AudioInfo& info() const { return mInfo; }
    // Reads up to frames frames into interleaved (resized to fit); the number of frames read,
    // 0 at the end. Throws RenderError on a read error.
    int64_t read(std::vector<float>& interleaved, int64_t frames);

private:
    friend class AudioWriter;

    std::string mPath;
    AudioInfo mInfo;
    struct Handle;
    std::unique_ptr<Handle> mHandle;
};

// Writes a sound file from interleaved floats under a temporary name; it appears under its own
// name only on commit(). Integer encodings round to the nearest step, after dither if asked, and
// clip at full scale; the clipped samples are counted. Float encodings take the samples as they are.
class AudioWriter
{
public:
    // Opens a temporary file beside path for the given format, rate and channels; throws
    // RenderError naming path when it cannot be written.
    AudioWriter(const std::string& path, const AudioInfo& info, Dither dither = Dither::none);
    ~AudioWriter();
    AudioWriter(const AudioWriter&) = delete;
    AudioWriter& operator=(const AudioWriter&) = delete;

    // Copies what libsndfile carries of a file's metadata and the output's container holds: text
    // tags, the broadcast extension, the cart chunk, cue points and instrument data. Call before
    // the first write.
    void copyMetadataFrom(const AudioReader& reader);
    // Appends frames frames of interleaved samples; throws RenderError on a write error.
    void write(const float* interleaved, int64_t frames);
    // Closes the file and gives it its name; throws RenderError when that fails.
    void commit();
    // Samples beyond full scale so far (clipped in an integer encoding, kept in a float one).
    int64_t oversCount() const { return mOvers; }

private:
    std::string mPath;
    AudioInfo mInfo;
    struct Handle;
    std::unique_ptr<Handle> mHandle;
    std::unique_ptr<SampleQuantiser> mQuantiser;
    std::vector<int32_t> mSteps;
    int64_t mOvers = 0;
};

} // namespace velmoran::render
