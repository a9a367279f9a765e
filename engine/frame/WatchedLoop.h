// How operations tell the watch of their thread what they do, if there is one: the few loops through which nearly all work goes
// are watched, and nothing else knows of it.
#pragma once

#include "Watch.h"

#include <algorithm>
#include <cstddef>

namespace brix {

/// A loop of so many steps, or about so many. What it tells is a share of what is still to be done: nobody knows what comes after
/// it. Loops nest: what a step consists of is told as a part of that step.
class WatchedLoop
{
public:
    explicit WatchedLoop(std::size_t steps) : watch_(Current())
    {
        if (watch_ != nullptr) Begin(steps);
    }
    WatchedLoop(const WatchedLoop&) = delete;
    WatchedLoop& operator=(const WatchedLoop&) = delete;
    ~WatchedLoop()
    {
        if (watch_ != nullptr) End();
    }

    /// So many steps are done. Throws what the watch makes operations throw.
    void Step(std::size_t count = 1)
    {
        if (watch_ != nullptr) [[unlikely]]
            Advance(count);
    }

    static bool IsWatched() { return Current() != nullptr; }

private:
    friend void CheckWatch();

    static Watch* Current();

    void Begin(std::size_t steps);
    void End();
    void Advance(std::size_t count);
    double ShareAfter(std::size_t steps) const;

    Watch* const watch_;
    std::size_t steps_ = 0;
    std::size_t done_ = 0;
    double begin_ = 0;
    double end_ = 0;
    double partEnd_ = 0; // of the part in which the loop stands
};

/// Asks the watch of the thread, if there is one, in the midst of a long step. Throws as Step does.
void CheckWatch();

/// std::sort, which asks the watch now and then when there is much to sort.
template <class Iterator, class IsBefore> void WatchedSort(Iterator begin, Iterator end, const IsBefore& isBefore)
{
    constexpr std::ptrdiff_t few = 1 << 16;
    if (end - begin < few || !WatchedLoop::IsWatched()) return std::sort(begin, end, isBefore);
    std::ptrdiff_t untilCheck = few;
    std::sort(begin, end, [&](const auto& a, const auto& b) {
        if (--untilCheck == 0) {
            CheckWatch();
            untilCheck = few;
        }
        return isBefore(a, b);
    });
}

} // namespace brix
