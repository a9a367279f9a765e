#include "VoxelStore.h"

#include <utility>

namespace brix {

VoxelStore<bool>::VoxelStore(const Extents& extents, const Triple& lowerIndices)
    : extents_(extents), lowerIndices_(lowerIndices), stacksPerRow_(std::int64_t{1} << extents.VoxelLOD())
{
    const StackIndices lowest = ContainingStack(extents.LowerIndices());
    const StackIndices highest = ContainingStack(extents.UpperIndices());
    for (std::size_t i = 0; i < 2; ++i) {
        lowerStack_[i] = std::max<std::int64_t>(lowest[i], 0);
        upperStack_[i] = std::min(highest[i], stacksPerRow_ - 1);
    }
    lowerKept_ = lowerStack_;
    upperKept_ = upperStack_;
    stacks_.resize(StackNumber(upperKept_) + 1);
}

[[gnu::cold, gnu::noinline]] void VoxelStore<bool>::KeepAllStacks()
{
    std::vector<VoxelStack<bool>> all(static_cast<std::size_t>(stacksPerRow_ * stacksPerRow_));
    for (std::int64_t j = lowerKept_[1]; j <= upperKept_[1]; ++j) {
        for (std::int64_t i = lowerKept_[0]; i <= upperKept_[0]; ++i)
            all[static_cast<std::size_t>(j * stacksPerRow_ + i)] = std::move(stacks_[StackNumber({i, j})]);
    }
    lowerKept_ = {0, 0};
    upperKept_ = {stacksPerRow_ - 1, stacksPerRow_ - 1};
    stacks_ = std::move(all);
}

std::size_t VoxelStore<bool>::AllocatedBytes() const
{
    std::size_t bytes = stacks_.capacity() * sizeof(VoxelStack<bool>);
    for (const VoxelStack<bool>& stack : stacks_) bytes += stack.AllocatedBytes();
    return bytes;
}

} // namespace brix
