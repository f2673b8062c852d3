#include "AudioFile.h"

#include "AtomicFile.h"
#include "RenderError.h"

#include <sndfile.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <functional>

namespace velmoran::render
{

namespace
{

std::string lowered(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
    return text;
}

int majorOf(Container container)
{
    switch (container)
    {
    case Container::wav:
        return SF_FORMAT_WAV;
    case Container::aiff:
        return SF_FORMAT_AIFF;
    case Container::flac:
        return SF_FORMAT_FLAC;
    }
    return SF_FORMAT_WAV;
}

int subtypeOf(Encoding encoding)
{
    switch (encoding)
    {
    case Encoding::pcm16:
        return SF_FORMAT_PCM_16;
    case Encoding::pcm24:
        return SF_FORMAT_PCM_24;
    case Encoding::pcm32:
        return SF_FORMAT_PCM_32;
    case Encoding::float32:
        return SF_FORMAT_FLOAT;
    }
    return SF_FORMAT_PCM_16;
}

bool isReadableMajor(int major)
{
    return major == SF_FORMAT_WAV || major == SF_FORMAT_AIFF || major == SF_FORMAT_FLAC ||
           major == SF_FORMAT_WAVEX || major == SF_FORMAT_RF64;
}

bool isFloatSubtype(int subtype)
{
    return subtype == SF_FORMAT_FLOAT || subtype == SF_FORMAT_DOUBLE;
}

// Bits of an integer encoding's samples.
int integerBits(int format)
{
    switch (format & SF_FORMAT_SUBMASK)
    {
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_U8:
        return 8;
    case SF_FORMAT_PCM_16:
        return 16;
    case SF_FORMAT_PCM_24:
        return 24;
    default:
        return 32;
    }
}

// Copies one block of metadata that libsndfile reads and writes with a pair of commands.
template <typename Block> void copyBlock(SNDFILE* from, SNDFILE* to, int getCommand, int setCommand)
{
    Block block = {};
    if (sf_command(from, getCommand, &block, sizeof(block)) == SF_TRUE)
    {
        sf_command(to, setCommand, &block, sizeof(block));
    }
}

std::string containerText(int format)
{
    switch (format & SF_FORMAT_TYPEMASK)
    {
    case SF_FORMAT_WAV:
    case SF_FORMAT_WAVEX:
        return "WAV";
    case SF_FORMAT_RF64:
        return "RF64";
    case SF_FORMAT_AIFF:
        return "AIFF";
    case SF_FORMAT_FLAC:
        return "FLAC";
    default:
        return "other";
    }
}

std::string encodingText(int format)
{
    switch (format & SF_FORMAT_SUBMASK)
    {
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_U8:
        return "8-bit";
    case SF_FORMAT_PCM_16:
        return "16-bit";
    case SF_FORMAT_PCM_24:
        return "24-bit";
    case SF_FORMAT_PCM_32:
        return "32-bit";
    case SF_FORMAT_FLOAT:
        return "float";
    case SF_FORMAT_DOUBLE:
        return "double";
    default:
        return "compressed";
    }
}

} // namespace

struct AudioReader::Handle
{
    SNDFILE* file = nullptr;
};

struct AudioWriter::Handle
{
    std::unique_ptr<AtomicFile> target;
    SNDFILE* file = nullptr;
};

std::optional<Container> containerNamed(const std::string& name)
{
    const std::string word = lowered(name);
    if (word == "wav")
    {
        return Container::wav;
    }
    if (word == "aiff" || word == "aif")
    {
        return Container::aiff;
    }
    if (word == "flac")
    {
        return Container::flac;
    }
    return std::nullopt;
}

std::string extensionOf(const std::string& path)
{
    const size_t dot = path.find_last_of('.');
    const size_t slash = path.find_last_of('/');
    if (dot == std::string::npos || (slash != std::string::npos && dot < slash))
    {
        return {};
    }
    return path.substr(dot + 1);
}

std::optional<Container> containerOfPath(const std::string& path)
{
    return containerNamed(extensionOf(path));
}

std::optional<Encoding> encodingNamed(const std::string& name)
{
    const std::string word = lowered(name);
    if (word == "16")
    {
        return Encoding::pcm16;
    }
    if (word == "24")
    {
        return Encoding::pcm24;
    }
    if (word == "32")
    {
        return Encoding::pcm32;
    }
    if (word == "float")
    {
        return Encoding::float32;
    }
    return std::nullopt;
}

int outputFormat(int inputFormat, std::optional<Container> container, std::optional<Encoding> encoding)
{
    const int major = container ? majorOf(*container) : (inputFormat & SF_FORMAT_TYPEMASK);
    const int subtype = encoding ? subtypeOf(*encoding) : (inputFormat & SF_FORMAT_SUBMASK);
    const int format = major | subtype;
    SF_INFO check = {};
    check.samplerate = 48000;
    check.channels = 2;
    check.format = format;
    if (!sf_format_check(&check))
    {
        throw usageError(
            containerText(format) + " cannot hold " + encodingText(format) + " samples" +
            (major == SF_FORMAT_FLAC ? " (FLAC holds 16- or 24-bit: --sample-format 16 or 24)" : ""));
    }
    return format;
}

std::string formatDescription(int format)
{
    return containerText(format) + " " + encodingText(format);
}

bool clipsAtFullScale(int format)
{
    return !isFloatSubtype(format & SF_FORMAT_SUBMASK);
}

bool holdsDoublePrecision(int format)
{
    return (format & SF_FORMAT_SUBMASK) == SF_FORMAT_DOUBLE;
}

Dither defaultDither(int format)
{
    return clipsAtFullScale(format) && integerBits(format) <= 16 ? Dither::tpdf : Dither::none;
}

AudioReader::AudioReader(const std::string& path) : mPath(path), mHandle(std::make_unique<Handle>())
{
    SF_INFO info = {};
    mHandle->file = sf_open(path.c_str(), SFM_READ, &info);
    if (!mHandle->file)
    {
        // libsndfile tells "unrecognised format" and "no such file" apart only in its text.
        FILE* probe = std::fopen(path.c_str(), "rb");
        if (!probe)
        {
            throw RenderError("cannot read '" + path + "': " + systemReason(errno));
        }
        std::fclose(probe);
        throw RenderError("cannot read '" + path + "': not a WAV, AIFF or FLAC file (" +
                          sf_strerror(nullptr) + ")");
    }
    mInfo.sampleRate = info.samplerate;
    mInfo.channels = info.channels;
    mInfo.frames = info.frames;
    mInfo.format = info.format;
    const int subtype = info.format & SF_FORMAT_SUBMASK;
    const bool knownSubtype = subtype == SF_FORMAT_PCM_S8 || subtype == SF_FORMAT_PCM_U8 ||
                              subtype == SF_FORMAT_PCM_16 || subtype == SF_FORMAT_PCM_24 ||
                              subtype == SF_FORMAT_PCM_32 || isFloatSubtype(subtype);
    if (!isReadableMajor(info.format & SF_FORMAT_TYPEMASK) || !knownSubtype)
    {
        sf_close(mHandle->file);
        mHandle->file = nullptr;
        throw RenderError("cannot read '" + path + "': unsupported format " + formatDescription(info.format) +
                          " (WAV, AIFF or FLAC with 16-, 24-, 32-bit or float samples are supported)");
    }
    if (info.channels < 1 || info.channels > 2)
    {
        sf_close(mHandle->file);
        mHandle->file = nullptr;
        throw RenderError("cannot read '" + path + "': it has " + std::to_string(info.channels) +
                          " channels; mono and stereo files are supported");
    }
    // Integer samples read as value / 2^(bits-1), which float holds exactly for up to 24 bits.
    sf_command(mHandle->file, SFC_SET_NORM_FLOAT, nullptr, SF_TRUE);
}

AudioReader::~AudioReader()
{
    if (mHandle->file)
    {
        sf_close(mHandle->file);
    }
}

int64_t AudioReader::read(std::vector<float>& interleaved, int64_t frames)
{
    interleaved.resize(static_cast<size_t>(frames * mInfo.channels));
    const sf_count_t got = sf_readf_float(mHandle->file, interleaved.data(), frames);
    if (got < frames && sf_error(mHandle->file) != SF_ERR_NO_ERROR)
    {
        throw RenderError("cannot read '" + mPath + "': " + sf_strerror(mHandle->file));
    }
    return got;
}

AudioWriter::AudioWriter(const std::string& path, const AudioInfo& info, Dither dither)
    : mPath(path), mInfo(info), mHandle(std::make_unique<Handle>())
{
    mHandle->target = std::make_unique<AtomicFile>(path);
    SF_INFO sfInfo = {};
    sfInfo.samplerate = info.sampleRate;
    sfInfo.channels = info.channels;
    sfInfo.format = info.format;
    mHandle->file = sf_open(mHandle->target->temporaryPath().c_str(), SFM_WRITE, &sfInfo);
    if (!mHandle->file)
    {
        throw RenderError("cannot write '" + path + "' as " + formatDescription(info.format) + ": " +
                          sf_strerror(nullptr));
    }
    // libsndfile's own float-to-integer conversion rounds 16- and 24-bit samples downwards, so
    // integer encodings get their steps from the quantiser; float samples pass as they are.
    if (clipsAtFullScale(info.format))
    {
        mQuantiser = std::make_unique<SampleQuantiser>(integerBits(info.format), dither);
    }
}

void AudioWriter::copyMetadataFrom(const AudioReader& reader)
{
    SNDFILE* from = reader.mHandle->file;
    SNDFILE* to = mHandle->file;
    for (int kind = SF_STR_FIRST; kind <= SF_STR_LAST; ++kind)
    {
        if (const char* text = sf_get_string(from, kind))
        {
            sf_set_string(to, kind, text);
        }
    }
    copyBlock<SF_BROADCAST_INFO>(from, to, SFC_GET_BROADCAST_INFO, SFC_SET_BROADCAST_INFO);
    copyBlock<SF_CART_INFO>(from, to, SFC_GET_CART_INFO, SFC_SET_CART_INFO);
    copyBlock<SF_CUES>(from, to, SFC_GET_CUE, SFC_SET_CUE);
    copyBlock<SF_INSTRUMENT>(from, to, SFC_GET_INSTRUMENT, SFC_SET_INSTRUMENT);
}

AudioWriter::~AudioWriter()
{
    if (mHandle->file)
    {
        sf_close(mHandle->file);
    }
}

void AudioWriter::write(const float* interleaved, int64_t frames)
{
    const int64_t samples = frames * mInfo.channels;
    for (int64_t index = 0; index < samples; ++index)
    {
        if (std::fabs(interleaved[index]) > 1.0f)
        {
            ++mOvers;
        }
    }
    if (mQuantiser)
    {
        mSteps.resize(static_cast<size_t>(samples));
        std::transform(interleaved, interleaved + samples, mSteps.begin(), std::ref(*mQuantiser));
    }
    const sf_count_t written = mQuantiser ? sf_writef_int(mHandle->file, mSteps.data(), frames)
                                          : sf_writef_float(mHandle->file, interleaved, frames);
    if (written != frames)
    {
        throw RenderError("cannot write '" + mPath + "': " + sf_strerror(mHandle->file));
    }
}

void AudioWriter::commit()
{
    const int closed = sf_close(mHandle->file);
    mHandle->file = nullptr;
    if (closed != 0)
    {
        throw RenderError("cannot write '" + mPath + "': " + sf_error_number(closed));
    }
    mHandle->target->commit();
}

} // namespace velmoran::render
