// Splitting, cuboids and solids on dense words, voxel by voxel or run by run: what the engine's are measured against, and
// checked.
#pragma once

#include "DenseBaselines.h"

#include "triangles/Cuboidization.h"
#include "triangles/Solidization.h"

namespace brix::benchmarks {

/// The number of voxels of each region of voxels that are connected through faces, in the order of their first voxels (z, y, x).
/// Two passes with a label for every voxel of the box (union-find); words without voxels are skipped.
std::vector<std::int64_t> RegionSizesDensely(const DenseWords& voxels);

/// The lists that CuboidizeVoxelModel and SolidizeVoxelModel give. Cuboids from runs that are read from words; rectangles from a
/// look at every voxel and its neighbour, plane by plane and side by side.
std::vector<VoxelCuboid> CuboidizeDensely(const DenseWords& voxels);
std::vector<VoxelRectangle> SolidizeDensely(const DenseWords& voxels);

} // namespace brix::benchmarks
