// World triangles to voxels in one call (conservative surface voxelization).
#pragma once

#include "../model/VoxelModel.h"
#include "Triangle.h"

#include <span>

namespace brix {

/// A model of the levels 0..finestLOD in which those voxels of the finest level are filled that share at least one point with a
/// triangle (world units), closed voxel and closed triangle; the coarser levels follow from it. Its extents are those that
/// DetectTriangleExtents gives: of all voxels of level 0 that the triangles touch, but along z without those of which they touch
/// the upper face only.
///
/// A triangle is what its corners are after the frame's FromWorldCoordinates has rounded them down to base units, and is taken as
/// a whole, exactly, whatever its size and place: the order of its corners changes nothing, and moving them by whole voxels of
/// level 0 moves the voxels. TriangleModel and VoxelizeTriangleModel cut triangles that span more than half a chunk, and round
/// the cuts: what these touch, or miss, by 2 base units or less may then differ (VoxelizeTriangleModel says how often).
///
/// Throws std::domain_error when the finest level is negative or not less than 6; then what the Extents constructor throws when
/// the triangles leave the index space or hold numbers that are not finite. Throws std::bad_alloc when memory runs out.
/// Cost: one pass over the triangles; then time and memory proportional to the stacks that are touched.
[[nodiscard]] VoxelModel<bool> Voxelize(const Axes& axes, std::span<const WorldTriangle> triangles, std::int64_t finestLOD);

/// The same for an indexed mesh, which is not copied: a triangle is three numbers of vertices (world units), counted from 0.
/// Throws std::domain_error, before the above, for the first number that is not less than the number of vertices.
[[nodiscard]] VoxelModel<bool> Voxelize(const Axes& axes, std::span<const std::array<double, 3>> vertices,
                                        std::span<const std::array<std::uint32_t, 3>> triangles, std::int64_t finestLOD);
[[nodiscard]] VoxelModel<bool> Voxelize(const Axes& axes, std::span<const std::array<float, 3>> vertices,
                                        std::span<const std::array<std::uint32_t, 3>> triangles, std::int64_t finestLOD);

} // namespace brix
