// Guided growth along z in one sweep over the columns of stacks, for any number of voxels.
#pragma once

#include "LevelGrid.h"

namespace brix {

/// Grows the filled voxels of a level by up to `count` voxels towards higher (Side::Upper) or lower heights, neither into the
/// guide nor past it nor beyond the extents. No filled voxel may lie in the guide.
/// Cost: proportional to the stored layers and to the heights at which some voxel stops to grow, times the bits of `count` at
/// most.
void GrowAlongZ(LevelGrid& grid, const LevelGrid& guide, Side towards, std::int64_t count);

} // namespace brix
