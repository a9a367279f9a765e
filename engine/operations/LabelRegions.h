// Regions (connected components) of a model as a number for each voxel: what AutoSplit gives as models.
#pragma once

#include "../model/VoxelModel.h"

#include <span>

namespace brix {

/// Writes a number for each voxel of a box at the model's finest level, x fastest, then y, then z: 0 where nothing is filled, and
/// in a region of filled voxels that are connected through their faces (in the whole model, not in the box alone) its place among
/// those of AutoSplit, counted from 1. The box may reach beyond the model's extents. Returns how many regions the model has.
/// Throws std::domain_error, the first that applies: a frame other than the model's; a level other than its finest one; another
/// number of labels than the box has voxels; more than 2^32 - 1 runs that begin regions.
/// Method: as AutoSplit. Cost: proportional to the stored bit runs, and to the box; 4 bytes for each run meanwhile.
std::size_t LabelRegions(const VoxelModel<bool>& model, const Extents& box, std::span<std::uint32_t> labels);

} // namespace brix
