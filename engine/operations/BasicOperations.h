// Questions about a whole model, and models with other bounds (AutoCrop: the axis-aligned bounding box of what is filled),
// another place or another finest level. Inputs are never changed.
#pragma once

#include "../model/VoxelModel.h"

namespace brix {

/// The number of filled voxels at a level. Cost: proportional to the stored layers.
/// This and the next two throw std::domain_error when the level is negative or beyond the model's finest one.
[[nodiscard]] std::int64_t CountFilled(const VoxelModel<bool>& model, std::int64_t lod);

/// Whether no voxel, or every voxel inside the extents, is filled at a level.
[[nodiscard]] bool IsEmpty(const VoxelModel<bool>& model, std::int64_t lod);
[[nodiscard]] bool IsFull(const VoxelModel<bool>& model, std::int64_t lod);

/// The model with bounds moved inwards or outwards by numbers of voxels of the finest level.
/// Throws std::domain_error for the first negative number, in argument order, and what the Extents constructor throws for bounds
/// that cross or leave the index space.
[[nodiscard]] VoxelModel<bool> Crop(const VoxelModel<bool>& model, std::int64_t lowerX, std::int64_t upperX, std::int64_t lowerY,
                                    std::int64_t upperY, std::int64_t lowerZ, std::int64_t upperZ);
[[nodiscard]] VoxelModel<bool> Enlarge(const VoxelModel<bool>& model, std::int64_t lowerX, std::int64_t upperX,
                                       std::int64_t lowerY, std::int64_t upperY, std::int64_t lowerZ, std::int64_t upperZ);

/// The model on the bounding box of its filled voxels at the finest level; an empty model on the voxel in its middle, the upper
/// one of two. The second form may reuse the memory of its argument.
[[nodiscard]] VoxelModel<bool> AutoCrop(const VoxelModel<bool>& model);
[[nodiscard]] VoxelModel<bool> AutoCrop(VoxelModel<bool>&& model);

/// The model on other extents, given at any level of the same frame. Voxels outside them are dropped.
/// Throws std::domain_error when the frames differ.
[[nodiscard]] VoxelModel<bool> Resize(const VoxelModel<bool>& model, const Extents& newExtents);
[[nodiscard]] VoxelModel<bool> Resize(VoxelModel<bool>&& model, const Extents& newExtents);

/// The model with the same indices in another frame, so that it moves in the world.
/// Throws what the Extents constructor throws when the indices leave the index space of that frame.
[[nodiscard]] VoxelModel<bool> Relocate(const VoxelModel<bool>& model, const Axes& newAxes);

/// The model with another finest level, 0..5: finer levels follow from the finest one as PropagateLevel makes them.
/// Throws std::domain_error when the level is negative or not less than 6.
[[nodiscard]] VoxelModel<bool> Refine(const VoxelModel<bool>& model, std::int64_t lod);

} // namespace brix
