// Where the weights of several models add up to given thresholds: level sets of a weighted sum of occupancies. Inputs are never
// changed.
#pragma once

#include "../model/VoxelModel.h"

namespace brix {

/// One model for each entry of `thresholds`: filled where the sum of the weights of all models that are filled there is greater
/// than or equal to that entry, at a level of detail (0..5) that becomes their finest. Models that do not hold it are refined to
/// it. The results have the bounding extents of all models. An entry of 0 or below fills them, also where negative weights add up
/// to less. Sums are taken in the order of the models, so that they repeat exactly; where infinite weights cancel, no threshold
/// above 0 is reached.
/// Throws std::domain_error for, in this order: no models; another number of weights than of models; no thresholds; a weight that
/// is NaN; a threshold that is NaN (messages call them levels); `lod` negative or not less than 6; a null pointer; frames that
/// differ. Cost: stored layers of all models, times the number of models that differ in a plate, times the sums that occur in it.
[[nodiscard]] std::vector<VoxelModel<bool>> DensityMap(const std::vector<const VoxelModel<bool>*>& models,
                                                       const std::vector<double>& weights, const std::vector<double>& thresholds,
                                                       std::int64_t lod);

} // namespace brix
