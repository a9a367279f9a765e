#include "VoxelStore.h"

#include "../frame/NotEnoughMemory.h"

#include <algorithm>
#include <utility>

namespace brix {

VoxelStore<bool>::VoxelStore(const LevelBounds& bounds, const Triple& lowerIndices) : bounds_(&bounds)
{
    for (std::size_t i = 0; i < 3; ++i) lowerIndices_[i] = static_cast<std::int32_t>(lowerIndices[i]);
    const StackIndices lowest = ContainingStack(ExtentsRef().LowerIndices());
    const StackIndices highest = ContainingStack(ExtentsRef().UpperIndices());
    const auto lower = [&](std::size_t i) { return static_cast<std::int8_t>(std::max<std::int64_t>(lowest[i], 0)); };
    const auto upper = [&](std::size_t i) { return static_cast<std::int8_t>(std::min(highest[i], StacksPerRow() - 1)); };
    valid_ = kept_ = {lower(0), lower(1), upper(0), upper(1)};
}

VoxelStore<bool>::VoxelStore(const VoxelStore& other)
    : bounds_(other.bounds_), lowerIndices_(other.lowerIndices_), valid_(other.valid_), kept_(other.kept_), isFull_(other.isFull_)
{
    if (other.stacks_ == nullptr) return;
    stacks_ = MakeStacks(kept_);
    std::copy_n(other.stacks_.get(), kept_.Count(), stacks_.get());
}

VoxelStore<bool>::Stacks VoxelStore<bool>::MakeStacks(const Range& range) const
{
    try {
        return std::make_unique<VoxelStack<bool>[]>(range.Count());
    } catch (const std::bad_alloc&) {
        throw NotEnoughMemory("a voxel model", ExtentsRef());
    }
}

// Gives the valid stacks of a store without stacks places of their own.
[[gnu::cold, gnu::noinline]] void VoxelStore<bool>::StoreStacks()
{
    Stacks stacks = MakeStacks(kept_);
    if (isFull_) {
        for (std::int64_t j = valid_.lowerJ; j <= valid_.upperJ; ++j) {
            for (std::int64_t i = valid_.lowerI; i <= valid_.upperI; ++i) stacks[kept_.Number({i, j})] = UniformStack({i, j});
        }
    }
    stacks_ = std::move(stacks);
    isFull_ = false;
}

[[gnu::cold, gnu::noinline]] void VoxelStore<bool>::KeepAllStacks()
{
    if (stacks_ == nullptr) StoreStacks();
    const auto last = static_cast<std::int8_t>(StacksPerRow() - 1);
    const Range whole{0, 0, last, last};
    Stacks all = MakeStacks(whole);
    for (std::int64_t j = kept_.lowerJ; j <= kept_.upperJ; ++j) {
        for (std::int64_t i = kept_.lowerI; i <= kept_.upperI; ++i)
            all[whole.Number({i, j})] = std::move(stacks_[kept_.Number({i, j})]);
    }
    kept_ = whole;
    stacks_ = std::move(all);
}

void VoxelStore<bool>::MakeUniform(bool isFull)
{
    stacks_ = nullptr;
    kept_ = valid_;
    isFull_ = isFull;
}

void VoxelStore<bool>::ReleaseUniformStacks()
{
    if (stacks_ == nullptr || !(kept_ == valid_)) return;
    if (IsUnallocated()) return MakeUniform(false);
    if (!bounds_->SharesFullStacks()) return;
    for (std::int64_t j = valid_.lowerJ; j <= valid_.upperJ; ++j) {
        for (std::int64_t i = valid_.lowerI; i <= valid_.upperI; ++i) {
            const VoxelStack<bool>& full = bounds_->FullStackAt(StackOfVoxel(LowerIndices({i, j})));
            if (!(stacks_[kept_.Number({i, j})] == full)) return;
        }
    }
    MakeUniform(true);
}

bool VoxelStore<bool>::IsUnallocated() const
{
    if (stacks_ == nullptr) return !isFull_;
    return std::all_of(stacks_.get(), stacks_.get() + kept_.Count(), [](const auto& stack) { return stack.IsUnallocated(); });
}

std::size_t VoxelStore<bool>::AllocatedBytes() const
{
    if (stacks_ == nullptr) return 0;
    std::size_t bytes = kept_.Count() * sizeof(VoxelStack<bool>);
    for (std::size_t i = 0; i < kept_.Count(); ++i) bytes += stacks_[i].AllocatedBytes();
    return bytes;
}

} // namespace brix
