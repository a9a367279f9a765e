// Boolean combinations of models of one frame (constructive solid geometry). Inputs are not changed, but for
// the first one of those that say InPlace.
#pragma once

#include "../model/VoxelModel.h"

namespace brix {

/// Filled where any model, or every model, is filled at a level (0..5), which becomes the result's finest level. Inputs that do
/// not hold that level are refined to it. The result has the bounding extents of all models or, with `autoCrop`, those of its
/// filled voxels. Throws std::domain_error for an empty list, a level that is negative or not less than 6, a null pointer, and
/// frames that differ, in this order. Cost: proportional to the stored layers.
[[nodiscard]] VoxelModel<bool> Union(const std::vector<const VoxelModel<bool>*>& models, std::int64_t lod, bool autoCrop);
[[nodiscard]] VoxelModel<bool> Intersect(const std::vector<const VoxelModel<bool>*>& models, std::int64_t lod, bool autoCrop);

/// Filled where `model` is filled and `subtrahend` is not. The level (0..5) is the one at which the two are compared; the other
/// levels of the model follow from it, and a model that does not hold it is refined to it first. The result has the bounding
/// extents of both or, with `autoCrop`, those of its filled voxels.
/// Throws std::domain_error for a level that is negative or not less than 6, then for frames that differ.
[[nodiscard]] VoxelModel<bool> Subtract(const VoxelModel<bool>& model, const VoxelModel<bool>& subtrahend, std::int64_t lod,
                                        bool autoCrop);

/// Makes `model` what Union, Intersect or Subtract give for the two at its finest level, without a crop. Its memory is used
/// again, and where its extents hold the other model, only the chunks that this changes are worked on: in all others, the levels
/// must agree with the finest one beforehand. References into the model end. `other` may be the model itself. Throws
/// std::domain_error for frames that differ. Where memory runs out, what `model` holds is arbitrary.
void UnionInPlace(VoxelModel<bool>& model, const VoxelModel<bool>& other);
void IntersectInPlace(VoxelModel<bool>& model, const VoxelModel<bool>& other);
void SubtractInPlace(VoxelModel<bool>& model, const VoxelModel<bool>& other);

/// Filled inside the model's extents exactly where the model is empty, at its finest level.
[[nodiscard]] VoxelModel<bool> Invert(const VoxelModel<bool>& model);

} // namespace brix
