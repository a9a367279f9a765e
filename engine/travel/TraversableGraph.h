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

    /// Of the filled voxels of a model at its finest level. 28 bytes and a bit per filled voxel; one pass over the stored layers
    /// and two over the voxels. Throws std::domain_error for 2^32 - 1 voxels or more.
    explicit TraversableGraph(const VoxelModel<bool>& traversable);

    /// The extents of the model, at its finest level.
    const Extents& ExtentsRef() const { return extents_; }
    Index Size() const { return static_cast<Index>(voxels_.size()); }

    Triple VoxelIndices(Index voxel) const { return {voxels_[voxel].x, voxels_[voxel].y, voxels_[voxel].z}; }
    std::int32_t X(Index voxel) const { return voxels_[voxel].x; }
    std::int32_t Y(Index voxel) const { return voxels_[voxel].y; }
    std::int32_t Z(Index voxel) const { return voxels_[voxel].z; }

    /// The number of a voxel, or None. Any indices may be asked for. Cost: a binary search in a row.
    Index Find(const Triple& voxelIndices) const;

    /// Calls visit(voxel) for each voxel of the column beside that a step leads to: one, but in low rooms.
    template <class Visit> void ForEachBeside(Index voxel, Direction direction, const Visit& visit) const
    {
        const Index first = voxels_[voxel].links[direction];
        if (first == None) return;
        visit(first);
        for (Index other = first + 1; hasLowRooms_ && IsAbove(other, first) && IsStep(voxel, other); ++other) visit(other);
    }

    /// The lowest voxel beside that a step leads to, or None.
    Index LowestBeside(Index voxel, Direction direction) const { return voxels_[voxel].links[direction]; }

    /// The voxel beside that a step leads to; of several in a low room the one nearest to a height, given as numerator and
    /// (positive) denominator, the lower one of two; or None.
    Index Beside(Index voxel, Direction direction, std::int64_t numerator, std::int64_t denominator = 1) const
    {
        const Index first = voxels_[voxel].links[direction];
        return hasLowRooms_ && first != None ? NearestAbove(voxel, first, numerator, denominator) : first;
    }

    /// Calls visit(voxel) for each voxel of the diagonal column, `along` and then `across`, that a step leads to. In low rooms it
    /// may come twice.
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
        if (IsOnPlain(voxel)) return ForEachStepOnPlain(voxel, visit);
        if (!hasLowRooms_) return ForEachStepBelowHighRooms(voxel, visit);
        for (const Direction direction : {East, North, West, South}) ForEachBeside(voxel, direction, visit);
        for (const Direction along : {East, West}) {
            for (const Direction across : {North, South}) ForEachDiagonal(voxel, along, across, visit);
        }
    }

    /// Whether steps lead to just the eight voxels around at the same height, which are numbered one after the other in each of
    /// the three rows.
    bool IsOnPlain(Index voxel) const { return (plains_[voxel / 64] >> voxel % 64 & 1) != 0; }

    /// Of a voxel on a plain: the voxel diagonally beside.
    Index DiagonalOnPlain(Index voxel, Direction along, Direction across) const
    {
        const bool isAlongX = along == East || along == West;
        const Index beside = voxels_[voxel].links[isAlongX ? across : along];
        return (isAlongX ? along : across) == East ? beside + 1 : beside - 1;
    }

    /// Whether two voxels are at most one voxel apart in height.
    bool IsStep(Index a, Index b) const { return voxels_[a].z - voxels_[b].z <= 1 && voxels_[b].z - voxels_[a].z <= 1; }

private:
    struct Voxel
    {
        std::int32_t x, y, z;
        std::array<Index, 4> links; // the lowest voxel of each column beside that a step leads to
    };

    template <class Visit> void ForEachStepOnPlain(Index voxel, const Visit& visit) const
    {
        const Index north = voxels_[voxel].links[North];
        const Index south = voxels_[voxel].links[South];
        for (const Index to : {voxel + 1, north, voxel - 1, south, north + 1, south + 1, north - 1, south - 1}) visit(to);
    }

    // Where each link leads to one voxel: the same, faster.
    template <class Visit> void ForEachStepBelowHighRooms(Index voxel, const Visit& visit) const
    {
        const std::array<Index, 4> beside = voxels_[voxel].links;
        for (const Index to : beside) {
            if (to != None) visit(to);
        }
        const auto diagonal = [&](Direction along, Direction across) {
            const Index to = beside[along] != None ? voxels_[beside[along]].links[across] : None;
            return to != None && IsStep(voxel, to) ? to : None;
        };
        for (const Direction along : {East, West}) {
            for (const Direction across : {North, South}) {
                const Index first = diagonal(along, across);
                const Index to = first != None ? first : diagonal(across, along);
                if (to != None) visit(to);
            }
        }
    }

    bool IsAbove(Index voxel, Index other) const
    {
        return voxel < Size() && voxels_[voxel].x == voxels_[other].x && voxels_[voxel].y == voxels_[other].y;
    }

    Index NearestAbove(Index voxel, Index first, std::int64_t numerator, std::int64_t denominator) const;
    void AddRows(const VoxelModel<bool>& traversable);
    void FindLowRooms(Index first);
    void LinkRow(Direction direction, Index begin, Index end, Index other, Index otherEnd);
    void FindPlains();
    bool IsLevelRow(Index middle) const;

    Extents extents_;
    std::vector<Voxel> voxels_;
    std::vector<Index> rowStarts_;      // the first voxel of every y of the extents, and the end
    std::vector<std::uint64_t> plains_; // a bit a voxel
    bool hasLowRooms_ = false; // whether a column holds voxels less than three voxels apart, so that a step may lead to several
};

} // namespace brix
