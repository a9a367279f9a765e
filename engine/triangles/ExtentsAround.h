// The extents of what triangles touch, from the box of their corners.
#pragma once

#include "../frame/Extents.h"

namespace brix {

/// The voxels of level 0 for corners within lower..upper (base units). The lower face of a voxel belongs to two voxels along x
/// and y, but not along z. Throws what the Extents constructor throws.
inline Extents ExtentsAround(const Axes& axes, const Triple& lower, const Triple& upper)
{
    return Extents(axes, axes.ContainingVoxel(Minus(lower, {1, 1, 0}), 0), axes.ContainingVoxel(upper, 0), 0);
}

} // namespace brix
