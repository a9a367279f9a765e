// A model taken apart into its regions, and the places where weighted models add up. Inputs are never changed.
#pragma once

#include "../model/VoxelModel.h"

namespace brix {

/// One model for each region of filled voxels that are connected through their faces at the finest level. Each has the extents of its
/// filled voxels and the levels of the model. They come in the order of their first voxels: in stack order, inside a stack by height,
/// then row, then column. An empty model gives none.
/// Method: bit runs of stored plates, united where they touch. Cost: proportional to the stored bit runs and to the results, of
/// which each is a chunk at least; a number for each stack of the extents.
/// Throws std::domain_error when more than 2^32 - 1 runs begin regions.
std::vector<VoxelModel<bool>> AutoSplit(const VoxelModel<bool>& model);

/// One model for each entry of `levels`: filled where the sum of the weights of all models that are filled there is greater than or
/// equal to that entry, at a level of detail (0..5) that becomes their finest. Models that do not hold it are refined to it. The
/// results have the bounding extents of all models. An entry of 0 or below fills them, also where negative weights add up to less.
/// Sums are taken in the order of the models, so that they repeat exactly; where infinite weights cancel, no level above 0 is
/// reached.
/// Throws std::domain_error for, in this order: no models; another number of weights than of models; no levels; a weight that is
/// NaN; a level that is NaN; `lod` negative or not less than 6; a null pointer; frames that differ.
/// Cost: stored layers of all models, times the number of models that differ in a plate, times the sums that occur in it.
std::vector<VoxelModel<bool>> DensityMap(const std::vector<const VoxelModel<bool>*>& models, const std::vector<double>& weights,
                                         const std::vector<double>& levels, std::int64_t lod);

} // namespace brix
