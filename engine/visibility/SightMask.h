// Which voxels a sweep from a point may mark. Masks say what is seen; they never change what values are carried.
#pragma once

#include "../frame/Triples.h"
#include "../model/VoxelPlate.h"

namespace brix::sight {

class SightMask
{
public:
    virtual ~SightMask() = default;

    /// Whether a voxel of the box lower..upper (voxel indices), or one whose value depends on the box, may be marked. The sweep
    /// leaves out stacks of which this is false.
    virtual bool IsNeeded(const Triple& lower, const Triple& upper) const = 0;

    /// Whether all voxels of the box may be marked.
    virtual bool HoldsAll(const Triple& lower, const Triple& upper) const = 0;

    /// The voxels that may be marked in the plate whose lower corner has these indices.
    virtual VoxelPlate<bool> PlateAt(const Triple& corner) const = 0;
};

} // namespace brix::sight
