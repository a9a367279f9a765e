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
    /// Throws std::domain_error for the first argument that breaks its rule, in this order, and what Enlarge throws when there is no
    /// layer above the environment's extents in the index space.
    PathModel(const VoxelModel<bool>& environment, std::int64_t voxelLOD, std::int64_t agentDiameterOffset,
              std::int64_t agentHeightOffset, bool autoAdjustExtents);

    const VoxelModel<bool>& Environment() const { return *environment_; }
    std::int64_t VoxelLOD() const { return traversable_.FinestLOD(); }
    std::int64_t AgentDiameterOffset() const { return agentDiameterOffset_; }
    std::int64_t AgentHeightOffset() const { return agentHeightOffset_; }

    /// Filled where the agent may stand, its lowest voxel there; the finest level is VoxelLOD().
    const VoxelModel<bool>& TraversableVoxels() const { return traversable_; }

private:
    const VoxelModel<bool>* environment_; // not owned
    VoxelModel<bool> traversable_;
    std::int64_t agentDiameterOffset_;
    std::int64_t agentHeightOffset_;
};

} // namespace brix
