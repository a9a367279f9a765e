// Filling of empty space by flooding it (flood fill): from a voxel to the six voxels that share a face with it, through empty
// voxels of the finest level, never beyond the extents. The results have the extents and levels of the model; the model is not
// changed. Cost: stored layers, with a plate of 256 voxels at a time, and again wherever the flood comes back to a layer from
// another side.
#pragma once

#include "../model/VoxelModel.h"

namespace brix {

/// The model with the empty region that holds a point filled. `pointCoords` in base units.
/// A point in a filled voxel or outside the extents is no error: the result is a copy of the model.
[[nodiscard]] VoxelModel<bool> FillFromPoint(const VoxelModel<bool>& voxelModel, const std::array<std::int64_t, 3>& pointCoords);

/// The model with all empty regions filled that reach a face of the extents.
[[nodiscard]] VoxelModel<bool> FillExposedRegions(const VoxelModel<bool>& voxelModel);

/// The model with all other empty regions, its cavities, filled.
[[nodiscard]] VoxelModel<bool> FillEnclosedRegions(const VoxelModel<bool>& voxelModel);

} // namespace brix
