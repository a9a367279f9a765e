// One level of a model as a plain grid of stacks, without the chunks between: what passes over neighbouring stacks read and
// write.
#pragma once

#include "../model/VoxelModel.h"

namespace brix {

/// The stacks that extents touch at their level, by their place among all stacks of the level (StackOfVoxel).
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
        return IsWithin(stack, lower_, upper_) ? *stacks_[Number(stack)] : EmptyStack;
    }

    /// The part of a stack that lies in the extents, as inclusive offsets inside the stack.
    OffsetBox Inside(const Triple& stack) const { return PartInside(extents_, CornerOfStack(stack)); }

    /// Replaces every stack: write(stack, result) overwrites `result`, whose content before is arbitrary. StackAt gives the old
    /// stacks until all are written.
    template <class Write> void Rewrite(const Write& write)
    {
        if (spare_.empty()) spare_.resize(stacks_.size());
        ForEachTriple(lower_, upper_, [&](const Triple& stack) { write(stack, spare_[Number(stack)]); });
        std::swap(owned_, spare_);
        for (std::size_t i = 0; i < stacks_.size(); ++i) stacks_[i] = &owned_[i];
    }

    /// A model on the extents whose finest level holds the grid's stacks, which are gone afterwards; coarser levels are left
    /// empty.
    VoxelModel<bool> TakeModel();

    /// The stacks are numbered from 0 to StackCount() - 1: x innermost, then y, then z.
    std::size_t StackCount() const { return stacks_.size(); }

    std::size_t Number(const Triple& stack) const
    {
        const Triple offset = Minus(stack, lower_);
        return static_cast<std::size_t>((offset[2] * size_[1] + offset[1]) * size_[0] + offset[0]);
    }

private:
    Extents extents_;
    Triple lower_;
    Triple upper_;
    Triple size_;
    std::vector<const VoxelStack<bool>*> stacks_; // of the model, or of owned_
    std::vector<VoxelStack<bool>> owned_;
    std::vector<VoxelStack<bool>> spare_; // what the next pass writes to
};

} // namespace brix
