// The sweeps behind the visibility operations: what is visible at one level is marked in a model that is made for it.
#pragma once

#include "../model/InstructionSet.h"
#include "../model/VoxelModel.h"
#include "SightMask.h"

namespace brix::sight {

/// Marks in `result`, an empty model on the same extents, what sight lines along `direction` reach. Code for any instruction set
/// of this processor marks the same voxels.
void MarkFromDirection(VoxelModel<bool>& result, const VoxelModel<bool>& model, const Triple& direction, std::int64_t lod,
                       double threshold, InstructionSet instructionSet);

struct PointOfView
{
    Triple point; // base units
    double threshold;
    Triple lower; // the voxels that may be marked: a box of the level's voxels, inside the extents,
    Triple upper;
    const SightMask* mask = nullptr; // and what the mask allows
};

/// The same for sight lines from a point.
void MarkFromPoint(VoxelModel<bool>& result, const VoxelModel<bool>& model, const PointOfView& view, std::int64_t lod,
                   InstructionSet instructionSet);

} // namespace brix::sight
