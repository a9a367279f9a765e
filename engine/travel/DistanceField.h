// Walking distances over the traversable voxels of a path model, from the nearest of a set of sources.
//
//     . . . . . . #     A way leads straight from voxel centre to voxel centre as long as the line lies over traversable voxels,
//     . T - - + . #     and bends at a voxel's centre (+) where it has to: round a corner, or at the foot of a flight of stairs.
//     . # # # # \ #     Its length is that of the line in space, not a number of steps on the grid.
//     . . . . . . S
//
// Straight means straight in space. The squares that a piece crosses in plan (where it passes exactly through a corner, the next
// one lies across) hold voxels that are each a step from the one before, from end to end; and each of these lies at most one
// voxel above or below the piece, compared where it crosses the middle of the voxel's column (x), or row (y) when the piece runs
// mainly along y. So the steps of a flight of stairs, and the layers of a slope, are walked on their slope.
#pragma once

#include "PathModel.h"
#include "TraversableGraph.h"

namespace brix {

/// Immutable once made. Needs the path model only while it is made.
class DistanceField
{
public:
    /// `pathModel`    what can be walked on. A step leads to one of the eight columns around, at the same height or one voxel up
    ///                or down; a diagonal one where one of the two columns between has ground at a height in step with both ends
    /// `sources`      base units, where distance is 0: each in a traversable voxel, or above one by at most the agent's height.
    ///                The nearest one below is taken; a source without one is ignored
    /// `maxDistance`  base units: what is farther counts as unreachable; any large number for no limit
    /// Throws std::domain_error when there is no source, when none remains, and when the distance is negative, in this order.
    ///
    /// A limit cuts the field: what is told with a limit is what is told without one, and -1 where that is more than the limit.
    ///
    /// Method: any-angle search. Voxels are settled in the order of distance; each knows the voxel where its way bends last and
    /// offers it to the eight around, which take it when they see it, else the way by way of the neighbour. Offers go on until
    /// none shortens a way (DistanceSearch.h, SightLines.h). Of the distances, for certain:
    /// - none is below the shortest way of straight pieces, and none above the shortest way of steps;
    /// - two voxels a step apart differ by no more than that step; there and back both lie between those two ways;
    /// - on open level floor they are exact.
    /// Against all ways of straight pieces, on 1000 random grounds of each kind, of up to 15 x 15 squares and voxels at most
    /// twice as high as wide; and how much there and back differ, on 200 of them:
    ///
    ///                                  too long on average     at worst     there and back
    ///     plans with obstacles                     0.013 %        1.4 %           1.4 %
    ///     flights of stairs                        0.025 %        8.7 %           6.1 %
    ///     slopes                                   0.014 %         15 %            15 %
    ///     hills with noise                         0.13  %         24 %            18 %
    ///     floors full of kerbs and pits            0.04  %         20 %            13 %
    ///
    /// Plans turned by a quarter have the same distances to the last digit, the others within 7 %. With higher voxels a straight
    /// piece over a kerb saves a climb of many widths, and a search that misses one is that much too long: up to eight times as
    /// long on hills and kerbs with voxels 32 times as high as wide. Really shortest ways bend at the corners of walls, these at
    /// centres of voxels: around the end of a wall one voxel thick they are up to 0.83 widths longer, which is 5 % of a way of 16
    /// voxels, and 1.3 % of one of 64.
    /// Cost: 0.2 microseconds a voxel on open floor, 0.5 to 0.8 in a building and among pillars, 1 on terraces with ramps, 2 on
    /// hills, 4 on the ground of a city, where a Dijkstra with buckets takes 0.025 on open floor. 40 bytes a voxel kept, 5 more
    /// meanwhile, or 17 where ways bend; and up to 60 for each voxel whose sight an obstacle limits, mostly those behind it.
    DistanceField(const PathModel& pathModel, const std::vector<std::array<std::int64_t, 3>>& sources, std::int64_t maxDistance);

    /// The frame, and the bounds of the path model's traversable voxels, at its level.
    const Axes& AxesRef() const { return graph_.ExtentsRef().AxesRef(); }
    const Extents& ExtentsRef() const { return graph_.ExtentsRef(); }
    std::int64_t VoxelLOD() const { return ExtentsRef().VoxelLOD(); }

    /// Distance in base units, rounded, of the voxel that holds a base-unit point; -1 where that cannot be reached. A voxel's
    /// distance is that of its centre.
    std::int64_t Distance(const std::array<std::int64_t, 3>& point) const;

    /// The largest distance, and the voxel that has it: of several the one of the lowest y, then x, then z.
    std::int64_t FarthestDistance() const { return Rounded(farthest_); }
    Triple FarthestVoxel() const { return graph_.VoxelIndices(farthest_); }

    /// What can be reached, or reached within a distance in base units, on the extents of the traversable voxels.
    /// Throws std::domain_error when the distance is negative.
    VoxelModel<bool> ReachableVoxels() const;
    VoxelModel<bool> ReachableVoxels(std::int64_t maxDistance) const;

    /// Calls visit(voxelIndices, distance) for every voxel that can be reached, row by row (y), along x, upwards in each column.
    template <class Visit> void ForEachReachable(const Visit& visit) const
    {
        for (Index voxel = 0; voxel < graph_.Size(); ++voxel) {
            if (IsReached(voxel)) visit(graph_.VoxelIndices(voxel), Rounded(voxel));
        }
    }

private:
    friend class Path;
    using Index = TraversableGraph::Index;

    bool IsReached(Index voxel) const { return bends_[voxel] != TraversableGraph::None; }
    std::int64_t Rounded(Index voxel) const { return static_cast<std::int64_t>(distances_[voxel] + 0.5); }
    void CutAt(std::int64_t maxDistance);
    Index FindReached(const Triple& point) const; // None where nothing is reached

    TraversableGraph graph_;
    std::vector<double> distances_; // base units; where reached
    std::vector<Index> bends_;      // the last voxel before this one where the way bends, itself for a source; None: not reached
    Index farthest_ = 0;
};

} // namespace brix
