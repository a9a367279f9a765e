#include "VoxelStore.h"

#include <algorithm>
#include <utility>

namespace brix {

VoxelStore<bool>::VoxelStore(const Extents& extents, const Triple& lowerIndices) : extents_(&extents), lowerIndices_(lowerIndices)
{
    const StackIndices lowest = ContainingStack(extents.LowerIndices());
    const StackIndices highest = ContainingStack(extents.UpperIndices());
    const auto lower = [&](std::size_t i) { return static_cast<std::int8_t>(std::max<std::int64_t>(lowest[i], 0)); };
    const auto upper = [&](std::size_t i) { return static_cast<std::int8_t>(std::min(highest[i], StacksPerRow() - 1)); };
    valid_ = kept_ = {lower(0), lower(1), upper(0), upper(1)};
    stacks_ = std::make_unique<VoxelStack<bool>[]>(kept_.Count());
}

VoxelStore<bool>::VoxelStore(const VoxelStore& other)
    : extents_(other.extents_),
      lowerIndices_(other.lowerIndices_),
      valid_(other.valid_),
      kept_(other.kept_),
      stacks_(std::make_unique<VoxelStack<bool>[]>(kept_.Count()))
{
    std::copy_n(other.stacks_.get(), kept_.Count(), stacks_.get());
}

[[gnu::cold, gnu::noinline]] void VoxelStore<bool>::KeepAllStacks()
{
    const auto last = static_cast<std::int8_t>(StacksPerRow() - 1);
    const Range whole{0, 0, last, last};
    Stacks all = std::make_unique<VoxelStack<bool>[]>(whole.Count());
    for (std::int64_t j = kept_.lowerJ; j <= kept_.upperJ; ++j) {
        for (std::int64_t i = kept_.lowerI; i <= kept_.upperI; ++i)
            all[whole.Number({i, j})] = std::move(stacks_[kept_.Number({i, j})]);
    }
    kept_ = whole;
    stacks_ = std::move(all);
}

bool VoxelStore<bool>::IsUnallocated() const
{
    return std::all_of(stacks_.get(), stacks_.get() + kept_.Count(), [](const auto& stack) { return stack.IsUnallocated(); });
}

std::size_t VoxelStore<bool>::AllocatedBytes() const
{
    std::size_t bytes = kept_.Count() * sizeof(VoxelStack<bool>);
    for (std::size_t i = 0; i < kept_.Count(); ++i) bytes += stacks_[i].AllocatedBytes();
    return bytes;
}

} // namespace brix
