#include "AllocationCount.h"

#include <cstdlib>
#include <new>

namespace brix::benchmarks {
namespace {

AllocationCount count;

void* Counted(std::size_t size, void* memory)
{
    ++count.allocations;
    count.bytes += static_cast<std::int64_t>(size);
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}

} // namespace

AllocationCount AllocationsSoFar() { return count; }

} // namespace brix::benchmarks

void* operator new(std::size_t size) { return brix::benchmarks::Counted(size, std::malloc(size)); }

void* operator new(std::size_t size, std::align_val_t alignment)
{
    const auto step = static_cast<std::size_t>(alignment);
    return brix::benchmarks::Counted(size, std::aligned_alloc(step, (size + step - 1) / step * step));
}

void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }
