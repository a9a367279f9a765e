// The voxels of one chunk at one level L: a square of 2^L x 2^L stacks, of which those are kept that the extents touch.
#pragma once

#include "../frame/Extents.h"
#include "VoxelStack.h"

#include <cassert>
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

    /// The stacks that the extents touch, inclusive. Only these are kept; the others are empty.
    StackIndices LowerStack() const { return lowerStack_; }
    StackIndices UpperStack() const { return upperStack_; }
    bool IsStackValid(const StackIndices& ij) const
    {
        return lowerStack_[0] <= ij[0] && ij[0] <= upperStack_[0] && lowerStack_[1] <= ij[1] && ij[1] <= upperStack_[1];
    }

    /// The stack of column i and row j, each 0 .. StacksPerRow() - 1. To be written, it must be valid.
    VoxelStack<bool>& VoxelStackRef(const StackIndices& ij)
    {
        assert(IsStackValid(ij));
        return stacks_[StackNumber(ij)];
    }
    const VoxelStack<bool>& VoxelStackRef(const StackIndices& ij) const
    {
        return IsStackValid(ij) ? stacks_[StackNumber(ij)] : Nothing;
    }

    /// Voxel indices of the chunk's, and of a stack's, corners.
    Triple LowerIndices() const { return lowerIndices_; }
    Triple LowerIndices(const StackIndices& ij) const { return Plus(lowerIndices_, {16 * ij[0], 16 * ij[1], 0}); }
    Triple UpperIndices(const StackIndices& ij) const { return Plus(LowerIndices(ij), {15, 15, 63}); }

    /// The part of a stack that lies in the extents, as inclusive offsets inside the stack.
    Triple LowerOffset(const StackIndices& ij) const
    {
        return Minus(extents_.LowerCornerClamp(LowerIndices(ij)), LowerIndices(ij));
    }
    Triple UpperOffset(const StackIndices& ij) const
    {
        return Minus(extents_.UpperCornerClamp(UpperIndices(ij)), LowerIndices(ij));
    }

    /// The stack that holds a voxel of this level; it may not be valid.
    StackIndices ContainingStack(const Triple& voxelIndices) const
    {
        return {FloorDivide(voxelIndices[0] - lowerIndices_[0], 16), FloorDivide(voxelIndices[1] - lowerIndices_[1], 16)};
    }

    /// Bytes of the heap that the store owns.
    std::size_t AllocatedBytes() const;

private:
    static const VoxelStack<bool> Nothing;

    std::size_t StackNumber(const StackIndices& ij) const
    {
        return static_cast<std::size_t>((ij[1] - lowerStack_[1]) * (upperStack_[0] - lowerStack_[0] + 1) + ij[0] -
                                        lowerStack_[0]);
    }

    Extents extents_;
    Triple lowerIndices_;
    std::int64_t stacksPerRow_;
    StackIndices lowerStack_;
    StackIndices upperStack_;
    std::vector<VoxelStack<bool>> stacks_; // the valid ones, row by row
};

} // namespace brix
