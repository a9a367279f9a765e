// The traversable voxels of a path model as a graph: numbered, and linked where a step leads from one column to the next.
//
//   seen from the side    . . c c      a step leads to a column beside, at the same height or one voxel up or down: a-b, b-c.
//                         a b . .      Numbers run along x, then along y; voxels of one column follow each other upwards.
//
// A diagonal step is two of these steps in one: one of the two columns that it passes between holds a voxel which a step leads to
// from either end, and the ends are at most one voxel apart in height, too.
#pragma once

#include "../model/VoxelModel.h"

namespace brix {

class TraversableGraph
{
public:
    using Index = std::uint32_t;
    static constexpr Index None = 0xFFFFFFFF;

    /// Columns beside a column. Half a turn is two further on.
    enum Direction : std::size_t
    {
        East,  // +x
        North, // +y
        West,
        South
    };
    static constexpr Direction Opposite(Direction direction) { return static_cast<Direction>(direction ^ 2U); }

    /// Of the filled voxels of a model at its finest level. 29 bytes per filled voxel; one pass over the stored layers and one over the
    /// voxels. Throws std::domain_error for 2^32 - 1 voxels or more.
    explicit TraversableGraph(const VoxelModel<bool>& traversable);

    /// The extents of the model, at its finest level.
    const Extents& ExtentsRef() const { return extents_; }
    Index Size() const { return static_cast<Index>(places_.size()); }

    Triple VoxelIndices(Index voxel) const
    {
        const Place& place = places_[voxel];
        return {place.x, place.y, place.z};
    }

    /// The number of a voxel, or None. Any indices may be asked for. Cost: a binary search in a row.
    Index Find(const Triple& voxelIndices) const;

    /// Calls visit(voxel) for each voxel of the column beside that a step leads to: one, unless a body is a single voxel high.
    template <class Visit> void ForEachBeside(Index voxel, Direction direction, const Visit& visit) const
    {
        const Index first = links_[voxel][direction];
        if (first == None) return;
        visit(first);
        for (Index other = first + 1; hasLowRooms_ && IsAbove(other, first) && IsStep(voxel, other); ++other) visit(other);
    }

    /// The voxel beside that a step leads to, the one nearest to a height where there are several; or None.
    Index Beside(Index voxel, Direction direction, double height) const
    {
        const Index first = links_[voxel][direction];
        return hasLowRooms_ && first != None ? NearestAbove(voxel, first, height) : first;
    }

    /// Calls visit(voxel) for each voxel of the diagonal column, `along` and then `across`, that a step leads to. It may come twice.
    template <class Visit> void ForEachDiagonal(Index voxel, Direction along, Direction across, const Visit& visit) const
    {
        bool found = false;
        const auto visitStep = [&](Index diagonal) {
            if (!IsStep(voxel, diagonal)) return;
            found = true;
            visit(diagonal);
        };
        ForEachBeside(voxel, along, [&](Index beside) { ForEachBeside(beside, across, visitStep); });
        if (found && !hasLowRooms_) return; // the other way round leads to the same voxel
        ForEachBeside(voxel, across, [&](Index beside) { ForEachBeside(beside, along, visitStep); });
    }

    /// Calls visit(voxel) for each voxel that a step leads to, diagonal ones last.
    template <class Visit> void ForEachStep(Index voxel, const Visit& visit) const
    {
        for (const Direction direction : {East, North, West, South}) ForEachBeside(voxel, direction, visit);
        for (const Direction along : {East, West}) {
            for (const Direction across : {North, South}) ForEachDiagonal(voxel, along, across, visit);
        }
    }

    /// Whether a column beside holds a voxel two or three voxels higher or lower: a step too far, on the flank of a flight of stairs.
    bool IsAtRim(Index voxel) const { return isAtRim_[voxel]; }

    /// Whether two voxels are at most one voxel apart in height.
    bool IsStep(Index a, Index b) const { return places_[a].z - places_[b].z <= 1 && places_[b].z - places_[a].z <= 1; }

private:
    struct Place
    {
        std::int32_t x, y, z;
    };

    bool IsAbove(Index voxel, Index other) const
    {
        return voxel < Size() && places_[voxel].x == places_[other].x && places_[voxel].y == places_[other].y;
    }

    Index NearestAbove(Index voxel, Index first, double height) const;
    void AddRows(const VoxelModel<bool>& traversable);
    void LinkRows(Direction direction, std::int64_t y);
    void LinkColumns(Direction direction, Index voxel, Index& other, Index end);

    Extents extents_;
    std::vector<Place> places_;
    std::vector<Index> rowStarts_;            // the first voxel of every y of the extents, and the end
    std::vector<std::array<Index, 4>> links_; // the lowest voxel of each column beside that a step leads to
    std::vector<std::uint8_t> isAtRim_;
    bool hasLowRooms_ = false; // whether a column holds voxels less than three voxels apart, so that a step may lead to several
};

} // namespace brix
