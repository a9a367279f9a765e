// The box of several models of one frame, and the check that they have one.
#pragma once

#include "../model/VoxelModel.h"

#include <optional>

namespace brix {

using ModelPointers = std::vector<const VoxelModel<bool>*>;

/// Throws std::domain_error for a null pointer, then for frames that differ.
void RequireSameAxes(const ModelPointers& models);

/// The box that holds all models, or the box that all share if they do, in voxels of a level (0..5). There must be a model.
Extents BoundingExtents(const ModelPointers& models, std::int64_t lod);
std::optional<Extents> CommonExtents(const ModelPointers& models, std::int64_t lod);

} // namespace brix
