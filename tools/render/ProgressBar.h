#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <string>

namespace velmoran::render
{

// The bar's line for done of total units: "label [#####.....]  50%" in width characters of bar.
std::string progressLine(const std::string& label, int64_t done, int64_t total, int width);

// A progress bar redrawn in place on a terminal; silent when the stream is not a terminal (a
// pipe, a log file) or when switched off, so scripts get clean output.
class ProgressBar
{
public:
    // A bar on stream for total units; enabled only if wanted and stream is a terminal.
    ProgressBar(std::FILE* stream, std::string label, int64_t total, bool wanted);
    ~ProgressBar();

    // Whether anything is drawn at all.
    bool enabled() const { return mEnabled; }
    // Shows done units; redraws at most ten times a second.
    void update(int64_t done);
    // Shows the full bar and ends its line.
    void finish();

private:
    std::FILE* mStream;
    std::string mLabel;
    int64_t mTotal;
    bool mEnabled;
    bool mFinished = false;
    std::chrono::steady_clock::time_point mLastDraw;
};

} // namespace velmoran::render
