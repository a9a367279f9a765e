// What a straight piece of a way is: a line from the centre of a traversable voxel to that of another, walked square by square.
//
//     . . . . b    In plan the line crosses squares, one beside the other; where it passes exactly through a corner of them, the
//     . . + + +    next one lies across. Each must hold a voxel that a step leads to from the one before, and the last one is b.
//     a + + . .    Each lies at most one voxel above or below the line: compared where the line crosses the middle of the voxel's
//                  column, or of its row when the line runs mainly along y.
#pragma once

#include "TraversableGraph.h"

#include <cstdlib>
#include <utility>

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
          length_(std::abs(std::int64_t{graph.X(to)} - graph.X(from))),
          width_(std::abs(std::int64_t{graph.Y(to)} - graph.Y(from))),
          along_(graph.X(to) < graph.X(from) ? TraversableGraph::West : TraversableGraph::East),
          across_(graph.Y(to) < graph.Y(from) ? TraversableGraph::South : TraversableGraph::North)
    {
        if (length_ < width_) {
            std::swap(length_, width_);
            std::swap(along_, across_);
        }
        next_ = width_ - length_;
    }

    Index Here() const { return here_; }
    bool IsAtEnd() const { return here_ == to_; }
    bool IsInLastColumn() const { return steps_ == length_ && stepsAcross_ == width_; }

    /// The greater of both extents of the line in plan, and the steps taken along that axis.
    std::int64_t Length() const { return length_; }
    std::int64_t Steps() const { return steps_; }

    /// One step on. Returns whether the ground is there; when it is not, the walk is over. Not to be called in the last column.
    /// Where a step leads to several voxels of a column (in a low room), it takes the one nearest to the line, the lower one of
    /// two.
    bool Advance()
    {
        Count();
        if (order_ != 0) {
            here_ = Beside(here_, Heading());
        } else { // by way of the column along x rather than by that along y
            const bool isMainlyX = along_ == TraversableGraph::East || along_ == TraversableGraph::West;
            const Index diagonal = isMainlyX ? Diagonal(along_, across_) : Diagonal(across_, along_);
            here_ = diagonal != TraversableGraph::None ? diagonal
                    : isMainlyX                        ? Diagonal(across_, along_)
                                                       : Diagonal(along_, across_);
        }
        return here_ != TraversableGraph::None;
    }

    /// Of a level line, from a voxel on a plain at its height: walks on to the first voxel that is not on a plain, or in the last
    /// column, or, just after a step along the main axis, where isKnown(here, other side) holds.
    template <class IsKnown> void AdvanceOverPlain(const IsKnown& isKnown)
    {
        do {
            Count();
            here_ = order_ == 0 ? graph_.DiagonalOnPlain(here_, along_, across_) : graph_.LowestBeside(here_, Heading());
            if (IsInLastColumn() || !graph_.IsOnPlain(here_)) return;
        } while (order_ > 0 || !isKnown(here_, OtherSideOnPlain()));
    }

    /// Whether the last step led through a corner of squares; else where it led, there or not.
    bool IsAtCorner() const { return order_ == 0; }
    TraversableGraph::Direction Heading() const { return order_ < 0 ? along_ : across_; }

    /// Whether the voxel lies at most one above or below the line.
    bool IsNearLine() const { return std::abs((graph_.Z(here_) - fromZ_) * length_ - rise_ * steps_) <= length_; }

    /// The voxel on the other side of the line, beside this one, where the line passes between the centres of two squares of a
    /// row across the main axis; this voxel itself where it passes through the centre; None where there is no ground.
    Index OtherSide() const { return IsThroughCentre() ? here_ : Beside(here_, ToOtherSide()); }

private:
    // How far the line passes beyond the centre of the voxel's square, in the middle of its column: times 2 * Length().
    std::int64_t Beyond() const { return next_ + length_ - width_; }
    bool IsThroughCentre() const { return Beyond() == 0; }
    TraversableGraph::Direction ToOtherSide() const { return Beyond() > 0 ? across_ : TraversableGraph::Opposite(across_); }
    Index OtherSideOnPlain() const { return IsThroughCentre() ? here_ : graph_.LowestBeside(here_, ToOtherSide()); }

    void Count()
    {
        order_ = next_;
        if (order_ <= 0) {
            ++steps_;
            next_ += 2 * width_;
        }
        if (order_ >= 0) {
            ++stepsAcross_;
            next_ -= 2 * length_;
        }
    }

    Index Beside(Index voxel, TraversableGraph::Direction direction) const
    {
        return graph_.Beside(voxel, direction, fromZ_ * length_ + rise_ * steps_, length_);
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
    std::int64_t length_; // of the line in plan along its main axis, which is x when both are equal
    std::int64_t width_;  // across it
    TraversableGraph::Direction along_, across_;
    std::int64_t steps_ = 0;
    std::int64_t stepsAcross_ = 0;
    // Whether the next border along the main axis is crossed before the next one across it (negative), at or after it:
    // (2 * steps + 1) * width - (2 * stepsAcross + 1) * length; and the same of the last step.
    std::int64_t next_;
    std::int64_t order_ = 0;
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
