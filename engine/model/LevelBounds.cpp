#include "LevelBounds.h"

#include <memory>

namespace brix {

// Several threads may make them at once; the first one's stay.
[[gnu::cold, gnu::noinline]] const LevelBounds::FullStacks& LevelBounds::MakeFullStacks() const
{
    auto made = std::make_unique<FullStacks>();
    for (std::size_t kind = 0; kind < KindCount; ++kind) {
        OffsetBox inside;
        for (std::size_t i = 0; i < 3; ++i) {
            const std::size_t faces = kind >> 2 * i & 3;
            if ((faces & 1) != 0) inside.lower[i] = extents_.LowerIndices()[i] - LowerStack()[i] * StackSize[i];
            if ((faces & 2) != 0) inside.upper[i] = extents_.UpperIndices()[i] - UpperStack()[i] * StackSize[i];
        }
        (*made)[kind] = VoxelStack<bool>::WhollyFilled();
        (*made)[kind].FillOutsideBox(inside.lower, inside.upper, false);
    }
    const FullStacks* first = nullptr;
    if (full_.compare_exchange_strong(first, made.get(), std::memory_order_acq_rel)) return *made.release();
    return *first;
}

std::size_t LevelBounds::AllocatedBytes() const
{
    const FullStacks* const full = full_.load(std::memory_order_acquire);
    if (full == nullptr) return 0;
    std::size_t bytes = sizeof(FullStacks);
    for (const VoxelStack<bool>& stack : *full) bytes += stack.AllocatedBytes();
    return bytes;
}

} // namespace brix
