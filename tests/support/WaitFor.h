#pragma once

// Waiting for what a test expects of another thread or of the message loop: the condition itself,
// polled, with a deadline that only a hung or broken program reaches, so that a busy machine
// makes a test slower, never red.

#include <chrono>
#include <thread>

namespace velmoran::test
{

constexpr std::chrono::seconds kPatience{30};

// Calls step() until condition() holds; false when the deadline passed first.
template <typename Condition, typename Step> bool waitFor(Condition condition, Step step)
{
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (!condition())
    {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        step();
    }
    return true;
}

// The same, giving the other threads a moment between two looks.
template <typename Condition> bool waitFor(Condition condition)
{
    return waitFor(condition, [] { std::this_thread::sleep_for(std::chrono::milliseconds(2)); });
}

} // namespace velmoran::test
