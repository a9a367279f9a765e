// The voxels of one chunk at one level L: a square of 2^L x 2^L stacks, of which those are kept that the extents touch.
#pragma once

#include "VoxelStack.h"

#include <memory>

namespace brix {

/// Column i and row j of a stack in its store.
using StackIndices = std::array<std::int64_t, 2>;

template <class Value> class VoxelStore;

template <> class VoxelStore<bool>
{
public:
    /// An empty store. `extents` are the model's at this level, which must outlive the store; `lowerIndices` the chunk's lower
    /// corner in voxels of this level.
    VoxelStore(const Extents& extents, const Triple& lowerIndices);
    VoxelStore(Extents&& extents, const Triple& lowerIndices) = delete;

    VoxelStore(const VoxelStore& other);
    VoxelStore(VoxelStore&& other) noexcept = default;
    VoxelStore& operator=(const VoxelStore& other) { return *this = VoxelStore(other); }
    VoxelStore& operator=(VoxelStore&& other) noexcept = default;
    ~VoxelStore() = default;

    const Extents& ExtentsRef() const { return *extents_; }

    /// Stacks in a row of the store, 2^L.
    std::int64_t StacksPerRow() const { return std::int64_t{1} << extents_->VoxelLOD(); }

    /// The stacks that the extents touch, inclusive. Only these are ever written by operations, and only these take memory.
    StackIndices LowerStack() const { return valid_.Lower(); }
    StackIndices UpperStack() const { return valid_.Upper(); }
    bool IsStackValid(const StackIndices& ij) const { return valid_.Contains(ij); }

    /// The stack of column i and row j, each 0 .. StacksPerRow() - 1. One that is not valid is empty; to ask for it to be written
    /// makes the store keep all of its stacks, which moves the others.
    VoxelStack<bool>& VoxelStackRef(const StackIndices& ij)
    {
        if (!kept_.Contains(ij)) KeepAllStacks();
        return stacks_[kept_.Number(ij)];
    }
    const VoxelStack<bool>& VoxelStackRef(const StackIndices& ij) const
    {
        return kept_.Contains(ij) ? stacks_[kept_.Number(ij)] : EmptyStack;
    }

    /// The same without a check. Precondition: IsStackValid(ij).
    VoxelStack<bool>& ValidStackRef(const StackIndices& ij) { return stacks_[kept_.Number(ij)]; }
    const VoxelStack<bool>& ValidStackRef(const StackIndices& ij) const { return stacks_[kept_.Number(ij)]; }

    /// Voxel indices of the chunk's, and of a stack's, corners.
    Triple LowerIndices() const { return lowerIndices_; }
    Triple LowerIndices(const StackIndices& ij) const { return Plus(lowerIndices_, {PlateWidth * ij[0], PlateWidth * ij[1], 0}); }
    Triple UpperIndices(const StackIndices& ij) const { return Plus(LowerIndices(ij), LastOffset); }

    /// The part of a stack that lies in the extents, as inclusive offsets inside the stack.
    OffsetBox Inside(const StackIndices& ij) const { return PartInside(*extents_, LowerIndices(ij)); }
    Triple LowerOffset(const StackIndices& ij) const { return Inside(ij).lower; }
    Triple UpperOffset(const StackIndices& ij) const { return Inside(ij).upper; }

    /// The stack that holds a voxel of this level; it may not be valid.
    StackIndices ContainingStack(const Triple& voxelIndices) const
    {
        const Triple stack = StackOfVoxel(Minus(voxelIndices, lowerIndices_));
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
        std::int8_t lowerI, lowerJ, upperI, upperJ;

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
    };
    using Stacks = std::unique_ptr<VoxelStack<bool>[]>;

    void KeepAllStacks();

    const Extents* extents_;
    Triple lowerIndices_;
    Range valid_;
    Range kept_;    // the valid ones, until another one is to be written
    Stacks stacks_; // the kept ones, row by row
};

} // namespace brix
