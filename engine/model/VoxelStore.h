// The voxels of one chunk at one level L: a square of 2^L x 2^L stacks, of which those are kept that the extents touch.
#pragma once

#include "VoxelStack.h"

#include <vector>

namespace brix {

/// Column i and row j of a stack in its store.
using StackIndices = std::array<std::int64_t, 2>;

template <class Value> class VoxelStore;

template <> class VoxelStore<bool>
{
public:
    /// An empty store. `extents` are the model's at this level; `lowerIndices` the chunk's lower corner in voxels of this level.
    VoxelStore(const Extents& extents, const Triple& lowerIndices);

    const Extents& ExtentsRef() const { return extents_; }

    /// Stacks in a row of the store, 2^L.
    std::int64_t StacksPerRow() const { return stacksPerRow_; }

    /// The stacks that the extents touch, inclusive. Only these are ever written by operations, and only these take memory.
    StackIndices LowerStack() const { return lowerStack_; }
    StackIndices UpperStack() const { return upperStack_; }
    bool IsStackValid(const StackIndices& ij) const
    {
        return lowerStack_[0] <= ij[0] && ij[0] <= upperStack_[0] && lowerStack_[1] <= ij[1] && ij[1] <= upperStack_[1];
    }

    /// The stack of column i and row j, each 0 .. StacksPerRow() - 1. One that is not valid is empty; to ask for it to be written
    /// makes the store keep all of its stacks, which moves the others.
    VoxelStack<bool>& VoxelStackRef(const StackIndices& ij)
    {
        if (!IsKept(ij)) KeepAllStacks();
        return stacks_[StackNumber(ij)];
    }
    const VoxelStack<bool>& VoxelStackRef(const StackIndices& ij) const
    {
        return IsKept(ij) ? stacks_[StackNumber(ij)] : EmptyStack;
    }

    /// The same without a check. Precondition: IsStackValid(ij).
    VoxelStack<bool>& ValidStackRef(const StackIndices& ij) { return stacks_[StackNumber(ij)]; }
    const VoxelStack<bool>& ValidStackRef(const StackIndices& ij) const { return stacks_[StackNumber(ij)]; }

    /// Voxel indices of the chunk's, and of a stack's, corners.
    Triple LowerIndices() const { return lowerIndices_; }
    Triple LowerIndices(const StackIndices& ij) const { return Plus(lowerIndices_, {PlateWidth * ij[0], PlateWidth * ij[1], 0}); }
    Triple UpperIndices(const StackIndices& ij) const { return Plus(LowerIndices(ij), LastOffset); }

    /// The part of a stack that lies in the extents, as inclusive offsets inside the stack.
    OffsetBox Inside(const StackIndices& ij) const { return PartInside(extents_, LowerIndices(ij)); }
    Triple LowerOffset(const StackIndices& ij) const { return Inside(ij).lower; }
    Triple UpperOffset(const StackIndices& ij) const { return Inside(ij).upper; }

    /// The stack that holds a voxel of this level; it may not be valid.
    StackIndices ContainingStack(const Triple& voxelIndices) const
    {
        const Triple stack = StackOfVoxel(Minus(voxelIndices, lowerIndices_));
        return {stack[0], stack[1]};
    }

    /// Bytes of the heap that the store owns.
    std::size_t AllocatedBytes() const;

private:
    bool IsKept(const StackIndices& ij) const
    {
        return lowerKept_[0] <= ij[0] && ij[0] <= upperKept_[0] && lowerKept_[1] <= ij[1] && ij[1] <= upperKept_[1];
    }
    std::size_t StackNumber(const StackIndices& ij) const
    {
        return static_cast<std::size_t>((ij[1] - lowerKept_[1]) * (upperKept_[0] - lowerKept_[0] + 1) + ij[0] - lowerKept_[0]);
    }
    void KeepAllStacks();

    Extents extents_;
    Triple lowerIndices_;
    std::int64_t stacksPerRow_;
    StackIndices lowerStack_;
    StackIndices upperStack_;
    StackIndices lowerKept_; // the valid ones, until another one is to be written
    StackIndices upperKept_;
    std::vector<VoxelStack<bool>> stacks_; // the kept ones, row by row
};

} // namespace brix
