#include "FailingAllocations.h"

#include <cstdlib>
#include <limits>

namespace {

constexpr std::int64_t Never = std::numeric_limits<std::int64_t>::max();

thread_local std::int64_t allocationCount = 0;
thread_local std::int64_t liveAllocations = 0;
thread_local std::int64_t failFrom = Never; // the allocation count from which on nothing is handed out

} // namespace

void* operator new(std::size_t size)
{
    void* const memory = allocationCount + 1 >= failFrom ? nullptr : std::malloc(size == 0 ? 1 : size);
    if (memory == nullptr) throw std::bad_alloc();
    ++allocationCount;
    ++liveAllocations;
    return memory;
}

void operator delete(void* memory) noexcept
{
    if (memory != nullptr) --liveAllocations;
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }

namespace brix::tests {

std::int64_t AllocationCount() { return allocationCount; }
std::int64_t LiveAllocations() { return liveAllocations; }

FailingAllocations::FailingAllocations(std::int64_t n) { failFrom = allocationCount + n; }
FailingAllocations::~FailingAllocations() { failFrom = Never; }

} // namespace brix::tests
