// The bounding box of filled voxels, found stack by stack.
#pragma once

#include "../model/VoxelStack.h"

namespace brix {

/// Widens the box lower..upper of voxel indices (inclusive) by the filled voxels of a stack whose lower corner is `corner`.
void WidenByFilled(const VoxelStack<bool>& stack, const Triple& corner, Triple& lower, Triple& upper);

} // namespace brix
