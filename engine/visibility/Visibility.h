// Which empty voxels can be seen along a direction, or from a point (line of sight, viewshed). No ray is traced: a value from 0
// (dark) to 1 (fully seen) is carried through space in one sweep, each voxel mixing the values of the neighbours that lie before
// it, so that oblique sight lines get soft shadows. Filled voxels carry 0; beyond the extents, everything is 1. Cones and
// pyramids cut what is marked, not what is carried: a voxel that lies within one is marked exactly when it is seen from the point
// at all.
#pragma once

#include "../model/VoxelModel.h"

namespace brix {

/// The voxels of level `lod` that are seen along a direction: a model with the source's extents, and `lod` as its finest level.
/// `direction`  base units, of any length: where sight lines travel, (0, 0, -1) looks down
/// `threshold`  the least value that counts as visible. 0 and below mark every voxel in the extents, filled ones too; above 1,
///              and NaN, mark none
///
/// With the direction in voxels of the level (x and y times 2^lod, z times 2^vertical level), its length L, x = |x| / L and so on
/// and n = 1 / (x + y + z), an empty voxel whose neighbours towards the source of sight have the values a, b, c has the value
/// (a * x + b * y + c * z) * n, at most 1, or a itself when all three are equal. All in doubles, as written; components are
/// converted before they are scaled, so that no direction is too long.
///
/// Throws std::domain_error when the direction is (0, 0, 0), then when the level is negative or beyond the model's finest one.
/// Cost: an empty stack in full sight, a filled one or a dark one costs as little as it stores; other plates a few operations for
/// every 16 voxels. A direction along an axis is swept in bits. Memory beside the result: 8 bytes for every voxel of the extents'
/// x-z section.
[[nodiscard]] VoxelModel<bool> VisibilityFromDirection(const VoxelModel<bool>& voxelModel,
                                                       const std::array<std::int64_t, 3>& direction, long long lod,
                                                       double threshold);

/// The voxels of level `lod` that are seen from a point: a model with `lod` as its finest level.
/// `point`              base units; anywhere, also outside the extents
/// `maxRadius`          base units: voxels whose centre is farther from the point are never marked; no limit from 2800000000 on
/// `threshold`          as above; 0 and below mark every voxel within the radius
/// `autoAdjustExtents`  false: the result has the source's extents. true: the model is first resized to the box of the sphere of
///                      `maxRadius` around the point, clipped to the index space (without a limit: to its extents at `lod`,
///                      enlarged to hold the point's voxel), and the result is bounded by what is visible in it
///
/// A voxel's neighbours are those one voxel nearer to the voxel that holds the point, along each axis. With the offset from the
/// point to the voxel's centre, in voxels as above, an empty voxel has the value (|x| * a + |y| * b + |z| * c) / (|x| + |y| +
/// |z|), at most 1, or a itself when all three are equal.
/// - A neighbour outside the extents has the value 1.
/// - In the point's own slice across an axis there is no nearer neighbour along it: sight lines to these voxels cross no face
///   across that axis. Its value counts as 1 and its weight as 0, wherever in its voxel the point lies. So nothing leaks along
///   the point's slices, and what is walled in on all sides stays unseen.
/// - The point's own voxel gives its neighbours 1, also when it is filled; if it is, it is not marked itself.
///
/// Throws std::domain_error when the level is negative or beyond the model's finest one, then when the radius is negative; with
/// autoAdjustExtents and without a limit also what the Extents constructor throws for a point outside the index space. With a
/// limit that does not reach into the index space, the result is an empty model of the one voxel that is nearest to the point.
/// Cost: as above, for the eight octants around the point; only stacks that the sphere reaches are swept.
[[nodiscard]] VoxelModel<bool> VisibilityFromPoint(const VoxelModel<bool>& voxelModel, const std::array<std::int64_t, 3>& point,
                                                   long long lod, long long maxRadius, double threshold, bool autoAdjustExtents);

/// What is seen from a point through a circular cone: the voxels that VisibilityFromPoint marks, if their centre lies in the
/// cone. The point's own voxel counts as within it.
/// `direction`  base units, of any length: the cone's axis, from its apex at the point
/// `angle`      degrees across the cone, greater than 0 and at most 360, which leaves nothing out; 180 is half of space. A centre
///              on the border lies within. A cone mirrored or turned by 90 degrees holds the mirrored or turned centres exactly
/// `autoAdjustExtents`  true: the result is bounded by what is visible, of all that VisibilityFromPoint would see
/// other arguments      as in VisibilityFromPoint
///
/// Throws std::domain_error when the direction is (0, 0, 0), then when the angle is not greater than 0 (or is NaN), or greater
/// than 360; then as VisibilityFromPoint.
/// Cost: as VisibilityFromPoint for the voxels of each octant behind which, away from the point, some voxel lies within the cone:
/// for a narrow cone the box from the point to its far end. That is little when the cone runs along an axis, and most of an
/// octant when it runs along a diagonal of space through all of the extents.
[[nodiscard]] VoxelModel<bool> VisibilityWithinCone(const VoxelModel<bool>& voxelModel, const std::array<std::int64_t, 3>& point,
                                                    const std::array<std::int64_t, 3>& direction, double angle, long long lod,
                                                    long long maxRadius, double threshold, bool autoAdjustExtents);

/// The same with a camera's view.
/// `direction`        forward. The camera is held upright: its up is the frame's Z made perpendicular to the direction, or the
///                    frame's Y where the direction is vertical
/// `horizontalAngle`  degrees from the left to the right side of the view, greater than 0 and less than 180
/// `verticalAngle`    degrees from its lower to its upper side, likewise. A centre that misses a side by less than 2^-40 of its
///                    distance lies within
///
/// Throws std::domain_error when the direction is (0, 0, 0), then when the horizontal angle is not greater than 0 (or is NaN), or
/// not less than 180; then for the vertical one; then as VisibilityFromPoint.
[[nodiscard]] VoxelModel<bool> VisibilityWithinPyramid(const VoxelModel<bool>& voxelModel,
                                                       const std::array<std::int64_t, 3>& point,
                                                       const std::array<std::int64_t, 3>& direction, double horizontalAngle,
                                                       double verticalAngle, long long lod, long long maxRadius, double threshold,
                                                       bool autoAdjustExtents);

/// The extents that the functions from a point look at, for estimates of memory (operations/MemoryEstimates.h): those of the
/// model, those around the sphere that limits the view, or, if the result's extents follow it, the larger box. Views within a
/// cone or a pyramid look at a part of these.
/// Throws std::domain_error when the level is negative or beyond the model's finest one, then when the radius is negative.
[[nodiscard]] Extents ExtentsSweptFromPoint(const VoxelModel<bool>& voxelModel, const std::array<std::int64_t, 3>& point,
                                            long long lod, long long maxRadius, bool autoAdjustExtents);

} // namespace brix
