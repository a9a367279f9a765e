// The search behind a distance field. See DistanceField.h for the method.
#pragma once

#include "LineWalk.h"

namespace brix {

class DistanceSearch
{
public:
    using Index = TraversableGraph::Index;

    /// Writes the distances in base units of all voxels within `maxDistance` of the sources, and where their ways bend last (None for
    /// all others, a source itself for sources). Both vectors must outlive the search.
    DistanceSearch(const TraversableGraph& graph, double maxDistance, std::vector<double>& distances, std::vector<Index>& bends);

    void Run(const std::vector<Index>& sources);

private:
    // A direction in plan from a bend, in half voxels; none: (0, 0).
    struct Direction
    {
        std::int32_t x, y;
    };
    // Where lines from a bend are blocked to one side of a voxel in sight, as far as the centres of the next voxels to that side. A line
    // beyond the direction meets an obstacle, or is not known about.
    struct Limit
    {
        Direction direction{0, 0};
        bool isKnown = true;
    };
    enum Turn : std::size_t
    {
        Left, // counter-clockwise
        Right
    };
    // What lies between a voxel and its bend: the rises per column of a line from the bend that keep within a voxel of the ground so
    // far, where sight ends beside it, and whether no rim is touched, beside which sight is not what it is on a floor.
    struct Sight
    {
        float lowestRise = -1e30F;
        float highestRise = 1e30F;
        std::array<Limit, 2> limits;
        bool isClear = true;
    };
    // The two voxels that a line passes between, and those of them in clear sight of the bend.
    struct Pair
    {
        Index nearer, left, right;
        bool seesLeft, seesRight;
    };

    void Expand(Index voxel);
    void Straighten(Index voxel);
    void Offer(Index from, Index to);
    bool Sees(Index bend, Index voxel, Sight& sight) const;
    bool IsSeenFrom(Index bend, Index voxel) const;
    Pair PairAt(const LineWalk& walk, Index bend, const Direction& line) const;
    Direction DirectionOf(Index bend, Index voxel) const;
    static bool IsBeyond(const Direction& a, Turn turn, const Direction& b);
    static TraversableGraph::Direction Beside(const Direction& line, Turn turn);
    static Direction Corner(const Direction& centre, Turn turn);
    void Inherit(Sight& sight, const Pair& pair) const;
    Limit LimitOf(const Pair& pair, Index bend, Turn turn) const;
    void LimitBeside(Limit& limit, Index bend, Index voxel, Turn turn) const;
    void Narrow(Sight& sight, Index bend, Index voxel, std::int64_t columns) const;
    void Settle(Index voxel, double distance, Index bend, const Sight& sight);
    double Length(Index a, Index b) const;
    std::size_t Bucket(double distance) const;

    const TraversableGraph& graph_;
    double width_, height_; // of a voxel
    double maxDistance_;
    std::vector<double>& distances_;
    std::vector<Index>& bends_;
    std::vector<Sight> sights_;
    std::vector<std::uint8_t> isExpanded_;
    std::vector<std::vector<Index>> buckets_; // a ring: no step is longer than the ring
    std::int64_t current_ = 0;                // number of the bucket at work, counted without the ring
};

} // namespace brix
