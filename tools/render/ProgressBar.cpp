#include "ProgressBar.h"

#include "Interruption.h"

#include <algorithm>
#include <unistd.h>

namespace velmoran::render
{

namespace
{

constexpr int kBarWidth = 40;
constexpr auto kRedrawInterval = std::chrono::milliseconds(100);

} // namespace

std::string progressLine(const std::string& label, int64_t done, int64_t total, int width)
{
    const double fraction =
        total > 0 ? std::clamp(static_cast<double>(done) / static_cast<double>(total), 0.0, 1.0) : 1.0;
    const int filled = static_cast<int>(fraction * width);
    char percent[8];
    std::snprintf(percent, sizeof(percent), "%3d%%", static_cast<int>(fraction * 100.0));
    return label + " [" + std::string(static_cast<size_t>(filled), '#') +
           std::string(static_cast<size_t>(width - filled), '.') + "] " + percent;
}

ProgressBar::ProgressBar(std::FILE* stream, std::string label, int64_t total, bool wanted)
    : mStream(stream), mLabel(std::move(label)), mTotal(total),
      mEnabled(wanted && stream && isatty(fileno(stream)) != 0)
{
}

ProgressBar::~ProgressBar()
{
    // An interrupted job ends the bar's line, so the error message starts on a line of its own.
    if (mEnabled && !mFinished)
    {
        std::fputc('\n', mStream);
        setProgressLineOpen(mStream, false);
    }
}

void ProgressBar::update(int64_t done)
{
    if (!mEnabled)
    {
        return;
    }
    const auto now = std::chrono::steady_clock::now();
    if (now - mLastDraw < kRedrawInterval)
    {
        return;
    }
    mLastDraw = now;
    // Open before the first character is out, so an interruption at any point ends the line.
    setProgressLineOpen(mStream, true);
    std::fprintf(mStream, "\r%s", progressLine(mLabel, done, mTotal, kBarWidth).c_str());
    std::fflush(mStream);
}

void ProgressBar::finish()
{
    if (!mEnabled || mFinished)
    {
        return;
    }
    std::fprintf(mStream, "\r%s\n", progressLine(mLabel, mTotal, mTotal, kBarWidth).c_str());
    std::fflush(mStream);
    setProgressLineOpen(mStream, false);
    mFinished = true;
}

} // namespace velmoran::render
