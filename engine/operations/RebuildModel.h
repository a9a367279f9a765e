// The one copy of a model's voxels into other bounds.
#pragma once

#include "../model/VoxelModel.h"

namespace brix {

/// A model on `newExtents` (any level) with the levels 0..newFinestLOD, holding the source's voxels by index; frames are not
/// compared. The finest level that both have is copied, clipped at the new extents; all others are rebuilt from it. The second
/// form takes the stacks out of its source instead of copying them.
/// Throws what the VoxelModel constructor throws.
VoxelModel<bool> RebuildModel(const VoxelModel<bool>& source, const Extents& newExtents, std::int64_t newFinestLOD);
VoxelModel<bool> RebuildModel(VoxelModel<bool>&& source, const Extents& newExtents, std::int64_t newFinestLOD);

/// The first step of RebuildModel: a model whose level min(source's finest, newFinestLOD) holds the source's voxels and whose
/// other levels are empty, until PropagateLevel or RebuildModel follows.
VoxelModel<bool> CopyOneLevel(const VoxelModel<bool>& source, const Extents& newExtents, std::int64_t newFinestLOD);

/// What Resize gives for a model whose finest level an operation has just made, in canonical form and inside its extents: where
/// the extents stay, the levels follow without a copy.
VoxelModel<bool> PropagatedOnExtents(VoxelModel<bool>&& model, const Extents& extents);

/// The model's extents at its finest level with both corners moved by numbers of voxels of any size.
/// Throws what the Extents constructor throws for the corners that this gives.
Extents MovedExtents(const VoxelModel<bool>& model, const Triple& lowerStep, const Triple& upperStep);

} // namespace brix
