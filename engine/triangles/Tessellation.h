// Filled voxels to triangles for display.
#pragma once

#include "../model/VoxelModel.h"
#include "Triangle.h"

namespace brix {

/// Appends the surface triangles (world units, counter-clockwise seen from outside) of boxes that cover the filled voxels of a level
/// exactly. Within each stack, heights with equal plates, then adjacent equal rows, then adjacent filled voxels of a row make one
/// box of twelve triangles; boxes are not merged across stacks, and faces between boxes are kept.
/// Throws std::domain_error when the level is negative or beyond the model's finest one. Cost: proportional to the stored layers.
void TessellateVoxelModel(std::vector<WorldTriangle>& triangles, const VoxelModel<bool>& model, std::int64_t lod);

} // namespace brix
