// Memory that runs out at a chosen moment. The test program replaces the global operator new; unless a test arms it, it behaves
// as always.
#pragma once

#include <cstdint>
#include <new>

namespace brix::tests {

/// Allocations of this thread so far, and those of them that have not been given back.
std::int64_t AllocationCount();
std::int64_t LiveAllocations();

/// The most bytes that this thread has had at one moment since this was made, beside what it had then; each allocation counts for
/// 16 bytes more than were asked for, as allocators need some themselves. Only the last one made counts.
class PeakOfBytes
{
public:
    PeakOfBytes();
    std::int64_t Bytes() const;

private:
    std::int64_t before_;
};

/// While one of these lives, the n-th allocation of this thread (counted from 1) and all later ones fail.
class FailingAllocations
{
public:
    explicit FailingAllocations(std::int64_t n);
    ~FailingAllocations();
    FailingAllocations(const FailingAllocations&) = delete;
    FailingAllocations& operator=(const FailingAllocations&) = delete;
};

/// Whether action() runs out of memory when its n-th allocation fails. Count up from 1 until it does not:
///     for (std::int64_t n = 1; RunsOutOfMemory(n, [&] { ... }); ++n) ...
template <class Action> bool RunsOutOfMemory(std::int64_t n, const Action& action)
{
    try {
        const FailingAllocations armed(n);
        action();
    } catch (const std::bad_alloc&) {
        return true;
    }
    return false;
}

} // namespace brix::tests
