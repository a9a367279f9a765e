// Counts what a program asks of operator new, which AllocationCount.cpp replaces.
#pragma once

#include <cstdint>

namespace brix::benchmarks {

struct AllocationCount
{
    std::int64_t allocations = 0;
    std::int64_t bytes = 0; // as asked for, without what the allocator adds
};

/// All that was allocated since the program started, freed or not.
AllocationCount AllocationsSoFar();

} // namespace brix::benchmarks
