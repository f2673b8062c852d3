#include "Interruption.h"

#include <array>
#include <atomic>
#include <climits>
#include <csignal>
#include <cstring>
#include <unistd.h>

namespace velmoran::render
{

namespace
{

// Temporary files written at the same time: the output, a state and a plot.
constexpr size_t kSlots = 8;

struct Slot
{
    std::atomic<bool> used{false};
    char path[PATH_MAX] = {};
};

std::array<Slot, kSlots> gSlots;
// The descriptor of a stream holding an unfinished progress line, -1 when there is none.
std::atomic<int> gOpenLine{-1};

extern "C" void onInterruption(int signal)
{
    for (Slot& slot : gSlots)
    {
        if (slot.used.load())
        {
            unlink(slot.path);
        }
    }
    const int line = gOpenLine.load();
    if (line >= 0)
    {
        const ssize_t ignored = write(line, "\n", 1);
        (void)ignored;
    }
    _exit(128 + signal);
}

} // namespace

void installInterruptionHandlers()
{
    struct sigaction action = {};
    action.sa_handler = onInterruption;
    sigemptyset(&action.sa_mask);
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
}

int rememberTemporaryFile(const std::string& path)
{
    if (path.size() >= PATH_MAX)
    {
        return -1;
    }
    for (size_t index = 0; index < kSlots; ++index)
    {
        Slot& slot = gSlots[index];
        if (!slot.used.load())
        {
            std::memcpy(slot.path, path.c_str(), path.size() + 1);
            slot.used.store(true);
            return static_cast<int>(index);
        }
    }
    return -1;
}

void forgetTemporaryFile(int slot)
{
    if (slot >= 0 && static_cast<size_t>(slot) < kSlots)
    {
        gSlots[static_cast<size_t>(slot)].used.store(false);
    }
}

void setProgressLineOpen(std::FILE* stream, bool open)
{
    gOpenLine.store(open ? fileno(stream) : -1);
}

} // namespace velmoran::render
