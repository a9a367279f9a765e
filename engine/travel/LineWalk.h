// What a straight piece of a way is: a line from the centre of a traversable voxel to that of another, walked square by square.
//
//     . . . . b    In plan the line crosses squares, one beside the other; where it passes exactly through a corner of them, the
//     . . + + +    next one lies across. Each must hold a voxel that a step leads to from the one before, and the last one is b.
//     a + + . .    Each lies at most one voxel above or below the line: compared where the line crosses the middle of the voxel's
//                  column, or of its row when the line runs mainly along y.
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
          fromZ_(graph.Z(from)),
          rise_(std::int64_t{graph.Z(to)} - fromZ_),
          sizeX_(std::abs(std::int64_t{graph.X(to)} - graph.X(from))),
          sizeY_(std::abs(std::int64_t{graph.Y(to)} - graph.Y(from))),
          alongX_(graph.X(to) < graph.X(from) ? TraversableGraph::West : TraversableGraph::East),
          alongY_(graph.Y(to) < graph.Y(from) ? TraversableGraph::South : TraversableGraph::North)
    {}

    Index Here() const { return here_; }
    bool IsAtEnd() const { return here_ == to_; }
    bool IsInLastColumn() const { return stepsX_ == sizeX_ && stepsY_ == sizeY_; }

    /// The greater of both extents of the line in plan, and the steps taken along that axis.
    std::int64_t Length() const { return std::max(sizeX_, sizeY_); }
    std::int64_t Steps() const { return sizeX_ >= sizeY_ ? stepsX_ : stepsY_; }

    /// One step on. Returns whether the ground is there; when it is not, the walk is over. Not to be called in the last column.
    /// Where a step leads to several voxels of a column (in a low room), it takes the one nearest to the line, the lower one of
    /// two.
    bool Advance()
    {
        // the next border across x is crossed before, at or after the next one across y
        const std::int64_t order = (2 * stepsX_ + 1) * sizeY_ - (2 * stepsY_ + 1) * sizeX_;
        stepsX_ += order <= 0;
        stepsY_ += order >= 0;
        order_ = order;
        if (order != 0) {
            here_ = Beside(here_, order < 0 ? alongX_ : alongY_);
        } else {
            const Index diagonal = Diagonal(alongX_, alongY_);
            here_ = diagonal != TraversableGraph::None ? diagonal : Diagonal(alongY_, alongX_);
        }
        return here_ != TraversableGraph::None;
    }

    /// Whether the last step led through a corner of squares; else where it led, there or not.
    bool IsAtCorner() const { return order_ == 0; }
    TraversableGraph::Direction Heading() const { return order_ < 0 ? alongX_ : alongY_; }

    /// Whether the voxel lies at most one above or below the line.
    bool IsNearLine() const { return std::abs((graph_.Z(here_) - fromZ_) * Length() - rise_ * Steps()) <= Length(); }

    /// The voxel on the other side of the line, beside this one, where the line passes between the centres of two squares of a
    /// row across the main axis; this voxel itself where it passes through the centre; None where there is no ground.
    Index OtherSide() const
    {
        const bool isMainlyX = sizeX_ >= sizeY_;
        const std::int64_t passed = stepsX_ * sizeY_ - stepsY_ * sizeX_; // beyond the centre, times Length(), mainly along x
        if (passed == 0) return here_;
        const TraversableGraph::Direction forth = isMainlyX ? alongY_ : alongX_;
        return Beside(here_, (passed > 0) == isMainlyX ? forth : TraversableGraph::Opposite(forth));
    }

private:
    Index Beside(Index voxel, TraversableGraph::Direction direction) const
    {
        return graph_.Beside(voxel, direction, fromZ_ * Length() + rise_ * Steps(), Length());
    }

    Index Diagonal(TraversableGraph::Direction first, TraversableGraph::Direction second) const
    {
        const Index beside = Beside(here_, first);
        if (beside == TraversableGraph::None) return TraversableGraph::None;
        const Index diagonal = Beside(beside, second);
        return diagonal != TraversableGraph::None && graph_.IsStep(here_, diagonal) ? diagonal : TraversableGraph::None;
    }

    const TraversableGraph& graph_;
    Index to_;
    Index here_;
    std::int64_t fromZ_;
    std::int64_t rise_;
    std::int64_t sizeX_;
    std::int64_t sizeY_;
    std::int64_t stepsX_ = 0;
    std::int64_t stepsY_ = 0;
    std::int64_t order_ = 0; // of the borders that the last step crossed: negative across x, positive across y
    TraversableGraph::Direction alongX_;
    TraversableGraph::Direction alongY_;
};

/// Whether a straight piece leads from one voxel to another. Cost: the squares that the line crosses.
inline bool IsStraightPiece(const TraversableGraph& graph, TraversableGraph::Index from, TraversableGraph::Index to)
{
    LineWalk walk(graph, from, to);
    while (!walk.IsInLastColumn()) {
        if (!walk.Advance() || !walk.IsNearLine()) return false;
    }
    return walk.IsAtEnd();
}

} // namespace brix
