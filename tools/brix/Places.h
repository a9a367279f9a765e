// Where a person stands or looks from who is said to be at a point. People give a point on a floor, a little above it, or a
// little too low, inside the voxel that the floor's surface fills; the engine takes points in empty voxels.
//
//    z   |  given   |  is taken as
//    3   |    x     |    |                 above the floor, by less than the person's height: the floor below
//    2   |    x     |    v  stands here    on the floor
//    1   |  ##x###  |    ^                 inside the floor's own voxel: the voxel on it
#pragma once

#include <brix/model/VoxelModel.h>

namespace brix::tools {

/// The voxel, of those where a person can stand, that is meant by a point in world coordinates. `height` is the person's, in
/// voxels. Throws std::runtime_error, with the nearest place on that height, when nobody can stand there.
Triple StandingVoxel(const VoxelModel<bool>& solid, const VoxelModel<bool>& traversable, const std::array<double, 3>& point,
                     std::int64_t height);

/// The point, in base units, from which is looked: moved up to the face of its voxel when only that is filled, not the one above.
Triple EyePoint(const VoxelModel<bool>& solid, const std::array<double, 3>& point);

} // namespace brix::tools
