// Which voxels a sweep from a point may mark. Masks say what is seen; they never change what values are carried.
#pragma once

#include "../frame/Triples.h"
#include "../model/VoxelPlate.h"

namespace brix::sight {

/// Boxes are given by voxel indices, both bounds inclusive.
class SightMask
{
public:
    virtual ~SightMask() = default;

    /// Whether a voxel of the box may be marked. Where that is hard to tell, true is right as well, and costs time only.
    virtual bool HoldsAny(const Triple& lower, const Triple& upper) const = 0;

    /// Whether all voxels of the box may be marked; false is right as well.
    virtual bool HoldsAll(const Triple& lower, const Triple& upper) const = 0;

    /// The voxels that may be marked in the plate whose lower corner has these indices.
    virtual VoxelPlate<bool> PlateAt(const Triple& corner) const = 0;
};

/// What two masks allow.
class BothMasks : public SightMask
{
public:
    BothMasks(const SightMask& first, const SightMask& second) : first_(first), second_(second) {}

    bool HoldsAny(const Triple& lower, const Triple& upper) const override
    {
        return first_.HoldsAny(lower, upper) && second_.HoldsAny(lower, upper);
    }
    bool HoldsAll(const Triple& lower, const Triple& upper) const override
    {
        return first_.HoldsAll(lower, upper) && second_.HoldsAll(lower, upper);
    }
    VoxelPlate<bool> PlateAt(const Triple& corner) const override
    {
        const VoxelPlate<bool> plate = first_.PlateAt(corner);
        return IsEmpty(plate) ? plate : plate & second_.PlateAt(corner);
    }

private:
    const SightMask& first_;
    const SightMask& second_;
};

} // namespace brix::sight
