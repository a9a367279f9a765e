// Where an agent of a given diameter and height can stand.
//
//    z                        The environment's solid voxels (#), seen from the side, an agent 3 voxels high:
//    |   #######              a voxel is blocked (b, #) when the environment has matter in it or up to h - 1 voxels above it;
//    |   bbbbbbb  s s         the agent stands (s) in unblocked voxels just above blocked ones;
//    |   bbbbbbb sb#bs        it keeps half its diameter away from walls, from steps higher than one voxel and from drops of more
//    |  ####################  than two (these are left out of the drawing).
#pragma once

#include "../model/VoxelModel.h"

namespace brix {

/// The voxels in which an agent can stand. Immutable once made.
class PathModel
{
public:
    /// `environment`           filled where there is solid matter; the caller keeps it alive as long as the path model
    /// `voxelLOD`              the level to work at, 0 .. the environment's finest one
    /// `agentDiameterOffset`   the agent's diameter in voxels of that level, at least 1
    /// `agentHeightOffset`     the agent's height in voxels, at least 1; 1 is for plans, environments of one layer
    /// `autoAdjustExtents`     true: the agent can stand on top of the highest matter, and the result is bounded by its voxels
    /// Throws std::domain_error for the first argument that breaks its rule, in this order, and what Enlarge throws when there is
    /// no layer above the environment's extents in the index space.
    PathModel(const VoxelModel<bool>& environment, std::int64_t voxelLOD, std::int64_t agentDiameterOffset,
              std::int64_t agentHeightOffset, bool autoAdjustExtents);
    PathModel(const VoxelModel<bool>&& environment, std::int64_t, std::int64_t, std::int64_t, bool) = delete; // would be gone

    const VoxelModel<bool>& Environment() const { return *environment_; }
    std::int64_t VoxelLOD() const { return traversable_.FinestLOD(); }
    std::int64_t AgentDiameterOffset() const { return agentDiameterOffset_; }
    std::int64_t AgentHeightOffset() const { return agentHeightOffset_; }

    /// Filled where the agent may stand, its lowest voxel there; the finest level is VoxelLOD().
    const VoxelModel<bool>& TraversableVoxels() const { return traversable_; }

    /// Points (base units, centres of voxels) spread over the traversable voxels: one on every connected floor of every cell of a
    /// horizontal grid, where the body has room.
    /// `spacing`      width of a cell in base units; the grid starts at the frame's origin. Voxels belong to the cell of their
    ///                centre
    /// `minDiameter`  in voxels, at least 1: points stand on what ReduceHorizontally leaves of the traversable voxels with it
    /// A floor is what steps connect within the cell; of its voxels left, the one whose centre is nearest to the cell's in plan
    /// is taken, of several the one of the lowest y, x and z. Cells come row by row (y), along x, the floors of one in the order
    /// of their first voxels.
    /// Throws std::domain_error when the diameter is less than 1, when the spacing is less than a voxel's width, when the grid
    /// has more than SampleGridLimit cells, and when a cell is wider than the index space (2 * MaxHorizontalExtent voxels of the
    /// level).
    /// Cost: a few passes over the traversable voxels.
    std::vector<Triple> GenerateSamplePoints(std::int64_t spacing, std::int64_t minDiameter) const;

    /// Throws what GenerateSamplePoints throws for such arguments.
    void RequireSampleGrid(std::int64_t spacing, std::int64_t minDiameter) const;

    static constexpr std::int64_t SampleGridLimit = std::int64_t{1} << 24;

private:
    const VoxelModel<bool>* environment_; // not owned
    VoxelModel<bool> traversable_;
    std::int64_t agentDiameterOffset_;
    std::int64_t agentHeightOffset_;
};

} // namespace brix
