// Many look-ups in one call.
#pragma once

#include "VoxelModel.h"

#include <span>

namespace brix {

/// Whether voxels are filled: filled[i] for voxels[i], indices at level `lod`; voxels outside the extents are not. The order is
/// the caller's: random places cost no more than a few reads of memory each, which for many voxels overlap, as the processor is
/// told in advance where it will read. For single voxels and for steps from one to the next, use FindVoxel and the iterator.
/// Throws std::domain_error, the first that applies: a level that the model does not hold; spans of different sizes. Then
/// std::bad_alloc when memory runs out: two bytes a voxel at most.
/// Cost: linear in the voxels and, when these are many, once in the chunks that are stored.
void AreFilled(const VoxelModel<bool>& model, std::int64_t lod, std::span<const Triple> voxels, std::span<bool> filled);

/// The same for the voxels that hold points (world units).
void AreFilled(const VoxelModel<bool>& model, std::int64_t lod, std::span<const std::array<double, 3>> worldPoints,
               std::span<bool> filled);

} // namespace brix
