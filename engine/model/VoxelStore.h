// The voxels of one chunk at one level L: a square of 2^L x 2^L stacks, of which those are kept that the extents touch.
#pragma once

#include "LevelBounds.h"

#include <memory>

namespace brix {

/// Column i and row j of a stack in its store.
using StackIndices = std::array<std::int64_t, 2>;

template <class Value> class VoxelStore;

template <> class VoxelStore<bool>
{
public:
    /// Nothing yet, for arrays: to be assigned to.
    VoxelStore() = default;

    /// An empty store. `bounds` are the model's at this level, which must outlive the store; `lowerIndices` the chunk's lower
    /// corner in voxels of this level.
    VoxelStore(const LevelBounds& bounds, const Triple& lowerIndices);
    VoxelStore(LevelBounds&& bounds, const Triple& lowerIndices) = delete;

    VoxelStore(const VoxelStore& other);
    VoxelStore(VoxelStore&& other) noexcept = default;
    VoxelStore& operator=(const VoxelStore& other) { return *this = VoxelStore(other); }
    VoxelStore& operator=(VoxelStore&& other) noexcept = default;
    ~VoxelStore() = default;

    const Extents& ExtentsRef() const { return bounds_->ExtentsRef(); }

    /// Stacks in a row of the store, 2^L.
    std::int64_t StacksPerRow() const { return std::int64_t{1} << ExtentsRef().VoxelLOD(); }

    /// The stacks that the extents touch, inclusive. Only these are ever written by operations, and only these take memory.
    StackIndices LowerStack() const { return valid_.Lower(); }
    StackIndices UpperStack() const { return valid_.Upper(); }
    StackIndices LastStack() const { return {StacksPerRow() - 1, StacksPerRow() - 1}; }
    bool IsStackValid(const StackIndices& ij) const { return valid_.Contains(ij); }

    /// The stack of column i and row j, each 0 .. StacksPerRow() - 1. One that is not valid is empty; to ask for it to be written
    /// makes the store keep all of its stacks, which moves the others. Asking for the first stack to be written takes memory for
    /// all of them, which may throw NotEnoughMemory.
    VoxelStack<bool>& VoxelStackRef(const StackIndices& ij)
    {
        if (!kept_.Contains(ij)) KeepAllStacks();
        return ValidStackRef(ij);
    }
    const VoxelStack<bool>& VoxelStackRef(const StackIndices& ij) const
    {
        return kept_.Contains(ij) && (stacks_ != nullptr || valid_.Contains(ij)) ? ValidStackRef(ij) : EmptyStack;
    }

    /// The same without a check. Precondition: IsStackValid(ij).
    VoxelStack<bool>& ValidStackRef(const StackIndices& ij)
    {
        if (stacks_ == nullptr) StoreStacks();
        return stacks_[kept_.Number(ij)];
    }
    const VoxelStack<bool>& ValidStackRef(const StackIndices& ij) const
    {
        return stacks_ != nullptr ? stacks_[kept_.Number(ij)] : UniformStack(ij);
    }

    /// Whether the store is stored as wholly empty, or as full inside the extents. It then has no stacks of its own.
    bool IsUniform() const { return stacks_ == nullptr; }
    bool IsUniformlyFull() const { return isFull_; }

    /// Whether ReleaseUniformStacks leaves no stacks of its own to a store that is full: not where the model has only a few.
    bool SharesFullStacks() const { return bounds_->SharesFullStacks(); }

    /// Whether the extents end inside the chunk along x or y.
    bool IsCutSideways() const
    {
        const std::int64_t last = StacksPerRow() * PlateWidth - 1;
        const Triple lower = Minus(ExtentsRef().LowerIndices(), LowerIndices());
        const Triple upper = Minus(ExtentsRef().UpperIndices(), LowerIndices());
        return lower[0] > 0 || lower[1] > 0 || upper[0] < last || upper[1] < last;
    }

    /// Makes the store wholly empty, or full inside the extents, and gives the memory of its stacks back, as
    /// ReleaseUniformStacks does where all stacks turn out to be so. References to the stacks end.
    void MakeUniform(bool isFull);
    void ReleaseUniformStacks();

    /// Voxel indices of the chunk's, and of a stack's, corners.
    Triple LowerIndices() const { return {lowerIndices_[0], lowerIndices_[1], lowerIndices_[2]}; }
    Triple LowerIndices(const StackIndices& ij) const
    {
        return Plus(LowerIndices(), {PlateWidth * ij[0], PlateWidth * ij[1], 0});
    }
    Triple UpperIndices(const StackIndices& ij) const { return Plus(LowerIndices(ij), LastOffset); }

    /// The part of a stack that lies in the extents, as inclusive offsets inside the stack.
    OffsetBox Inside(const StackIndices& ij) const { return PartInside(ExtentsRef(), LowerIndices(ij)); }
    Triple LowerOffset(const StackIndices& ij) const { return Inside(ij).lower; }
    Triple UpperOffset(const StackIndices& ij) const { return Inside(ij).upper; }

    /// The stack that holds a voxel of this level; it may not be valid.
    StackIndices ContainingStack(const Triple& voxelIndices) const
    {
        const Triple stack = StackOfVoxel(Minus(voxelIndices, LowerIndices()));
        return {stack[0], stack[1]};
    }

    /// Whether all stacks are stored as wholly empty.
    bool IsUnallocated() const;

    /// Bytes of the heap that the store owns.
    std::size_t AllocatedBytes() const;

private:
    // A rectangle of stacks, inclusive; a row has 32 at most.
    struct Range
    {
        std::int8_t lowerI = 0, lowerJ = 0, upperI = -1, upperJ = -1;

        StackIndices Lower() const { return {lowerI, lowerJ}; }
        StackIndices Upper() const { return {upperI, upperJ}; }
        std::int64_t Columns() const { return upperI - lowerI + 1; }
        std::size_t Count() const { return static_cast<std::size_t>(Columns() * (upperJ - lowerJ + 1)); }
        std::size_t Number(const StackIndices& ij) const
        {
            return static_cast<std::size_t>((ij[1] - lowerJ) * Columns() + ij[0] - lowerI);
        }
        bool Contains(const StackIndices& ij) const
        {
            return lowerI <= ij[0] && ij[0] <= upperI && lowerJ <= ij[1] && ij[1] <= upperJ;
        }
        friend bool operator==(const Range&, const Range&) = default;
    };
    using Stacks = std::unique_ptr<VoxelStack<bool>[]>;

    const VoxelStack<bool>& UniformStack(const StackIndices& ij) const
    {
        return isFull_ ? bounds_->FullStackAt(StackOfVoxel(LowerIndices(ij))) : EmptyStack;
    }
    Stacks MakeStacks(const Range& range) const;
    void StoreStacks();
    void KeepAllStacks();

    const LevelBounds* bounds_ = nullptr;
    std::array<std::int32_t, 3> lowerIndices_{}; // the index space is narrower than that
    Range valid_;
    Range kept_; // the valid ones, until another one is to be written
    bool isFull_ = false;
    Stacks stacks_; // the kept ones, row by row; none as long as all valid ones are empty, or full as isFull_ says
};

using Store = VoxelStore<bool>;

} // namespace brix
