// A model taken apart into its regions (connected components of its filled voxels). Inputs are never changed.
#pragma once

#include "../model/VoxelModel.h"

namespace brix {

/// One model for each region of filled voxels that are connected through their faces at the finest level. Each has the extents of
/// its filled voxels and the levels of the model. They come in the order of their first voxels: in stack order, inside a stack by
/// height, then row, then column. An empty model gives none.
/// Method: bit runs of stored plates, united where they touch. Cost: proportional to the stored bit runs and to the results, of
/// which each is a chunk at least; a number for each stack of the extents.
/// Throws std::domain_error when more than 2^32 - 1 runs begin regions.
[[nodiscard]] std::vector<VoxelModel<bool>> AutoSplit(const VoxelModel<bool>& model);

} // namespace brix
