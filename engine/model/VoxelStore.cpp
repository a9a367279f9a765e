#include "VoxelStore.h"

namespace brix {

const VoxelStack<bool> VoxelStore<bool>::Nothing;

VoxelStore<bool>::VoxelStore(const Extents& extents, const Triple& lowerIndices)
    : extents_(extents), lowerIndices_(lowerIndices), stacksPerRow_(std::int64_t{1} << extents.VoxelLOD())
{
    const StackIndices lowest = ContainingStack(extents.LowerIndices());
    const StackIndices highest = ContainingStack(extents.UpperIndices());
    for (std::size_t i = 0; i < 2; ++i) {
        lowerStack_[i] = std::max<std::int64_t>(lowest[i], 0);
        upperStack_[i] = std::min(highest[i], stacksPerRow_ - 1);
    }
    stacks_.resize(StackNumber(upperStack_) + 1);
}

std::size_t VoxelStore<bool>::AllocatedBytes() const
{
    std::size_t bytes = stacks_.capacity() * sizeof(VoxelStack<bool>);
    for (const VoxelStack<bool>& stack : stacks_) bytes += stack.AllocatedBytes();
    return bytes;
}

} // namespace brix
