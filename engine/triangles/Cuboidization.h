// Filled voxels to as few axis-aligned boxes as a simple rule gives (greedy meshing in three dimensions), for hosts that handle
// solids better than triangles.
#pragma once

#include "../model/VoxelModel.h"

namespace brix {

/// A box of voxels of a level, both corners inclusive.
struct VoxelCuboid
{
    Triple lower;
    Triple upper;

    bool operator==(const VoxelCuboid&) const = default;
};

/// Disjoint boxes that cover exactly the filled voxels of a level. Voxels that follow each other along x are one run; runs that
/// are equal and follow each other along y are one rectangle; rectangles that are equal and follow each other along z are one
/// box. So the list depends on the filled voxels alone, not on chunks or on how the model came about. It is sorted by the lower
/// corners: z, then y, then x.
/// Throws std::domain_error when the level is negative or beyond the model's finest one.
/// Cost: n log n for the faces across x of the stored layers, and a look at every stack. Uniform regions cost no more than their
/// stacks.
[[nodiscard]] std::vector<VoxelCuboid> CuboidizeVoxelModel(const VoxelModel<bool>& model, std::int64_t lod);

/// A cuboid of a level in world units: its lower corner x, y, z, then its size along the frame's X, Y and Z.
[[nodiscard]] std::array<double, 6> ToWorldCuboid(const VoxelCuboid& cuboid, const Axes& axes, std::int64_t lod);

} // namespace brix
