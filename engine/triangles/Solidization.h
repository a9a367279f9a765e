// Filled voxels to the rectangles of their surface (greedy meshing), for hosts that build solids of faces.
#pragma once

#include "../model/VoxelModel.h"

namespace brix {

/// A rectangle of the lattice of voxel corners of a level: voxel (x, y, z) has the corners x .. x + 1, y .. y + 1 and z .. z + 1.
/// Along `axis`, lower and upper are equal: the plane that it lies in.
struct VoxelRectangle
{
    Axis axis; // across the rectangle
    Side side; // the empty side, which it faces
    Triple lower;
    Triple upper;

    bool operator==(const VoxelRectangle&) const = default;
};

/// Disjoint rectangles that cover exactly the faces between filled and empty voxels of a level, each once; what lies beyond the
/// extents is empty. Faces that follow each other in a row are one run, runs that are equal and follow each other are one
/// rectangle. Rows go along y in planes across x, and along x in the others. So the list depends on the filled voxels alone, and
/// faces to different sides are never joined. It is sorted: by axis, by side, by plane, then by the lower corners: z, y, x.
/// Throws std::domain_error when the level is negative or beyond the model's finest one.
/// Cost: n log n for the faces of the stored layers, and a look at every stack. The inside of solids costs no more than its
/// stacks.
[[nodiscard]] std::vector<VoxelRectangle> SolidizeVoxelModel(const VoxelModel<bool>& model, std::int64_t lod);

/// The corners of a rectangle of a level, counter-clockwise seen from the side that it faces, in base units and in world units.
[[nodiscard]] std::array<Triple, 4> CornersOf(const VoxelRectangle& rectangle, const Axes& axes, std::int64_t lod);
[[nodiscard]] std::array<std::array<double, 3>, 4> ToWorldRectangle(const VoxelRectangle& rectangle, const Axes& axes,
                                                                    std::int64_t lod);

} // namespace brix
