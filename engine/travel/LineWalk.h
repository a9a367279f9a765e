// The straight way between two traversable voxels: all voxels whose squares the line between the two centres crosses in plan, one step
// after the other. Where it passes exactly through a corner of squares the step is diagonal.
#pragma once

#include "TraversableGraph.h"

#include <cstdlib>

namespace brix {

class LineWalk
{
public:
    using Index = TraversableGraph::Index;

    LineWalk(const TraversableGraph& graph, Index from, Index to)
        : graph_(graph),
          to_(to),
          here_(from),
          from_(graph.VoxelIndices(from)),
          delta_(Minus(graph.VoxelIndices(to), from_)),
          size_{std::abs(delta_[0]), std::abs(delta_[1])},
          along_(delta_[0] < 0 ? TraversableGraph::West : TraversableGraph::East),
          across_(delta_[1] < 0 ? TraversableGraph::South : TraversableGraph::North),
          isMainlyX_(size_[0] >= size_[1])
    {}

    Index Here() const { return here_; }
    bool IsAtEnd() const { return here_ == to_; }
    bool IsInLastColumn() const { return steps_[0] == size_[0] && steps_[1] == size_[1]; }

    /// The greater of both extents of the line in plan, and the steps taken along that axis.
    std::int64_t Length() const { return isMainlyX_ ? size_[0] : size_[1]; }
    std::int64_t Steps() const { return isMainlyX_ ? steps_[0] : steps_[1]; }

    /// One step on. Returns whether the ground is there; when it is not, the walk is over. Not to be called in the last column.
    bool Advance()
    {
        // the next border across x is crossed before, at or after the next one across y
        const std::int64_t order = (2 * steps_[0] + 1) * size_[1] - (2 * steps_[1] + 1) * size_[0];
        const Index before = here_;
        if (order < 0) {
            ++steps_[0];
            here_ = graph_.Beside(before, along_, Height());
        } else if (order > 0) {
            ++steps_[1];
            here_ = graph_.Beside(before, across_, Height());
        } else {
            ++steps_[0];
            ++steps_[1];
            here_ = Diagonal(before, along_, across_);
            if (here_ == TraversableGraph::None) here_ = Diagonal(before, across_, along_);
        }
        return here_ != TraversableGraph::None;
    }

    /// The voxel on the other side of the line, beside this one, where the line passes between the centres of two squares of a row
    /// across the main axis; this voxel itself where it passes through the centre; None where there is no ground.
    Index OtherSide() const
    {
        const std::size_t minor = isMainlyX_ ? 1 : 0;
        const std::int64_t passed = Steps() * size_[minor] - steps_[minor] * Length(); // beyond the centre, times Length()
        if (passed == 0) return here_;
        const TraversableGraph::Direction forth = isMainlyX_ ? across_ : along_;
        return graph_.Beside(here_, passed > 0 ? forth : TraversableGraph::Opposite(forth), Height());
    }

    /// Whether the line passes nearer to the centre of OtherSide() than to this one's.
    bool IsOtherNearer() const
    {
        const std::size_t minor = isMainlyX_ ? 1 : 0;
        return 2 * std::abs(Steps() * size_[minor] - steps_[minor] * Length()) > Length();
    }

private:
    // Of the line, in voxels.
    double Height() const
    {
        return static_cast<double>(from_[2]) + static_cast<double>(delta_[2] * Steps()) / static_cast<double>(Length());
    }

    Index Diagonal(Index voxel, TraversableGraph::Direction first, TraversableGraph::Direction second) const
    {
        const Index beside = graph_.Beside(voxel, first, Height());
        if (beside == TraversableGraph::None) return TraversableGraph::None;
        const Index diagonal = graph_.Beside(beside, second, Height());
        return diagonal != TraversableGraph::None && graph_.IsStep(voxel, diagonal) ? diagonal : TraversableGraph::None;
    }

    const TraversableGraph& graph_;
    Index to_;
    Index here_;
    Triple from_;
    Triple delta_;
    std::array<std::int64_t, 2> size_;
    std::array<std::int64_t, 2> steps_{}; // along x, along y
    TraversableGraph::Direction along_;
    TraversableGraph::Direction across_;
    bool isMainlyX_;
};

} // namespace brix
