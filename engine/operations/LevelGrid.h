// One level of a model as a plain grid of stacks, without the chunks between: what passes over neighbouring stacks read and write.
#pragma once

#include "../model/VoxelModel.h"

namespace brix {

/// The stacks that extents touch at their level. Stack (x, y, z) of the grid covers the voxels 16x..16x+15, 16y..16y+15, 64z..64z+63.
/// The grid starts by looking at a model's stacks and owns those that a pass has written.
class LevelGrid
{
public:
    /// The model's stacks at the level of `extents`, which may reach beyond the model: what it does not have is empty.
    /// The model must outlive the grid.
    LevelGrid(const VoxelModel<bool>& model, const Extents& extents);

    const Extents& ExtentsRef() const { return extents_; }
    Triple LowerStack() const { return lower_; }
    Triple UpperStack() const { return upper_; }

    /// A stack of the grid, or an empty one outside it.
    const VoxelStack<bool>& StackAt(const Triple& stack) const
    {
        return IsWithin(stack, lower_, upper_) ? *stacks_[Number(stack)] : Nothing;
    }

    /// The part of a stack that lies in the extents, as inclusive offsets inside the stack.
    Triple LowerOffset(const Triple& stack) const { return Minus(extents_.LowerCornerClamp(Corner(stack)), Corner(stack)); }
    Triple UpperOffset(const Triple& stack) const
    {
        return Minus(extents_.UpperCornerClamp(Plus(Corner(stack), {15, 15, 63})), Corner(stack));
    }

    /// Whether a stack lies in the extents with all its voxels.
    bool IsInside(const Triple& stack) const
    {
        return LowerOffset(stack) == Triple{} && UpperOffset(stack) == Triple{15, 15, 63};
    }

    /// Replaces every stack by what write(stack, result) makes of it; `write` may read all stacks as they were, and gets a result
    /// of any content to overwrite.
    template <class Write> void Rewrite(const Write& write)
    {
        if (spare_.empty()) spare_.resize(stacks_.size());
        ForEachTriple(lower_, upper_, [&](const Triple& stack) { write(stack, spare_[Number(stack)]); });
        std::swap(owned_, spare_);
        for (std::size_t i = 0; i < stacks_.size(); ++i) stacks_[i] = &owned_[i];
    }

    /// A model on the extents whose finest level holds the grid's stacks, which are gone afterwards; coarser levels are left empty.
    VoxelModel<bool> TakeModel();

    /// The stack that holds a voxel of the grid's level.
    static Triple ContainingStack(const Triple& voxelIndices)
    {
        return {FloorDivide(voxelIndices[0], 16), FloorDivide(voxelIndices[1], 16), FloorDivide(voxelIndices[2], 64)};
    }

    /// The stacks are numbered from 0 to StackCount() - 1: x innermost, then y, then z.
    std::size_t StackCount() const { return stacks_.size(); }
    std::size_t Number(const Triple& stack) const
    {
        const Triple offset = Minus(stack, lower_);
        return static_cast<std::size_t>((offset[2] * size_[1] + offset[1]) * size_[0] + offset[0]);
    }

private:
    static const VoxelStack<bool> Nothing;

    static Triple Corner(const Triple& stack) { return {16 * stack[0], 16 * stack[1], 64 * stack[2]}; }

    Extents extents_;
    Triple lower_;
    Triple upper_;
    Triple size_;
    std::vector<const VoxelStack<bool>*> stacks_; // of the model, or of owned_
    std::vector<VoxelStack<bool>> owned_;
    std::vector<VoxelStack<bool>> spare_; // what the next pass writes to
};

} // namespace brix
