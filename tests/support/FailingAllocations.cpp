#include "FailingAllocations.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace {

constexpr std::int64_t Never = std::numeric_limits<std::int64_t>::max();

thread_local std::int64_t allocationCount = 0;
thread_local std::int64_t liveAllocations = 0;
thread_local std::int64_t failFrom = Never; // the allocation count from which on nothing is handed out
thread_local std::int64_t liveBytes = 0;
thread_local std::int64_t peakBytes = 0;

// What an allocation takes beside what was asked for: its size stands before it here, and the allocator's own words elsewhere.
constexpr std::size_t Header = __STDCPP_DEFAULT_NEW_ALIGNMENT__;

} // namespace

void* operator new(std::size_t size)
{
    const bool isRefused = allocationCount + 1 >= failFrom || size > std::numeric_limits<std::size_t>::max() - Header;
    void* const memory = isRefused ? nullptr : std::malloc(size + Header);
    if (memory == nullptr) throw std::bad_alloc();
    *static_cast<std::size_t*>(memory) = size + Header;
    ++allocationCount;
    ++liveAllocations;
    liveBytes += static_cast<std::int64_t>(size + Header);
    peakBytes = std::max(peakBytes, liveBytes);
    return static_cast<char*>(memory) + Header;
}

void operator delete(void* memory) noexcept
{
    if (memory == nullptr) return;
    void* const block = static_cast<char*>(memory) - Header;
    --liveAllocations;
    liveBytes -= static_cast<std::int64_t>(*static_cast<std::size_t*>(block));
    std::free(block);
}

void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }

namespace brix::tests {

std::int64_t AllocationCount() { return allocationCount; }
std::int64_t LiveAllocations() { return liveAllocations; }

PeakOfBytes::PeakOfBytes() : before_(liveBytes) { peakBytes = liveBytes; }
std::int64_t PeakOfBytes::Bytes() const { return peakBytes - before_; }

FailingAllocations::FailingAllocations(std::int64_t n) { failFrom = allocationCount + n; }
FailingAllocations::~FailingAllocations() { failFrom = Never; }

} // namespace brix::tests
