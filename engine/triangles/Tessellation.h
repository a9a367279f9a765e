// Filled voxels to triangles for display (surface extraction).
#pragma once

#include "../model/VoxelModel.h"
#include "Triangle.h"

#include <span>

namespace brix {

/// Appends the surface triangles (world units, counter-clockwise seen from outside) of boxes that cover the filled voxels of a
/// level exactly. Within each stack, heights with equal plates, then adjacent equal rows, then adjacent filled voxels of a row
/// make one box of twelve triangles; boxes are not merged across stacks, and faces between boxes are kept. Throws
/// std::domain_error when the level is negative or beyond the model's finest one. Cost: proportional to the stored layers.
void TessellateVoxelModel(std::vector<WorldTriangle>& triangles, const VoxelModel<bool>& model, std::int64_t lod);

/// The same triangles, counted at once and computed when they are copied, to memory of any kind and in parts of any size. It
/// holds 24 bytes for every twelve triangles, which take 864.
class Tessellation
{
public:
    /// Throws as TessellateVoxelModel. Does not refer to the model afterwards.
    Tessellation(const VoxelModel<bool>& model, std::int64_t lod);

    std::int64_t TriangleCount() const;

    /// The same of what is not made. Throws as the constructor. Cost: a pass over the stored layers.
    static std::int64_t CountTriangles(const VoxelModel<bool>& model, std::int64_t lod);

    /// Writes the triangles from `first` on, as many as there is room for, which must exist.
    void CopyTriangles(std::int64_t first, std::span<WorldTriangle> destination) const;

private:
    // Voxel indices of the level, which fit 32 bits in every model; `upper` is exclusive.
    struct Box
    {
        std::array<std::int32_t, 3> lower;
        std::array<std::int32_t, 3> upper;
    };
    void WriteBox(const Box& box, WorldTriangle* output) const;

    Axes axes_;
    Triple voxelSize_;
    std::vector<Box> boxes_;
};

} // namespace brix
