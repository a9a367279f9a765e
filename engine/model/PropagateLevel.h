// Makes all levels of a voxel model agree with one.
#pragma once

#include "VoxelModel.h"

namespace brix {

/// Rebuilds every other level of the model from level `lod`, the one that an operation has just written.
///
/// Coarser levels: a voxel is filled when any of the four finer voxels below it, at the same height, is filled.
/// Finer levels: each stack is copied to the four finer stacks that cover it. Every layer above the lowest is doubled along x and
/// y; the lowest layer keeps its plate as it stands, so a stack of one layer is copied unchanged. Hosts rely on this. What would
/// leave the extents is trimmed.
/// Throws std::domain_error when the level is negative or beyond the model's finest one. Cost: proportional to the stored layers.
void PropagateLevel(VoxelModel<bool>& model, std::int64_t lod);

} // namespace brix
