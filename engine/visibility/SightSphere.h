// The voxels whose centres lie within a radius of a point, exactly.
#pragma once

#include "../frame/Axes.h"
#include "SightMask.h"

namespace brix::sight {

class SightSphere : public SightMask
{
public:
    /// `point` in base units; `lod` the level of the voxels; `radius` in base units, 0 .. 2800000000 (its square fits 64 bits).
    SightSphere(const Axes& axes, const Triple& point, std::int64_t lod, std::int64_t radius);

    /// The lowest and the highest voxel index along each axis whose centre lies within the radius along that axis alone. The
    /// sphere is empty when one of the lower ones is above its upper one.
    const Triple& LowerIndices() const { return lower_; }
    const Triple& UpperIndices() const { return upper_; }

    bool HoldsAny(const Triple& lower, const Triple& upper) const override;
    bool HoldsAll(const Triple& lower, const Triple& upper) const override;
    VoxelPlate<bool> PlateAt(const Triple& corner) const override;

private:
    // From the point to the centre of the voxel with this index along an axis.
    std::int64_t Offset(std::size_t axis, std::int64_t index) const
    {
        return index * size_[axis] + size_[axis] / 2 - point_[axis];
    }

    // What radius squared leaves of `square` for further axes when one offset is given; negative when it lies beyond.
    std::int64_t Remaining(std::int64_t square, std::int64_t offset) const;

    std::int64_t LowerIndex(std::size_t axis, std::int64_t distance) const;
    std::int64_t UpperIndex(std::size_t axis, std::int64_t distance) const;

    Triple point_;
    Triple size_; // of a voxel
    std::int64_t radius_;
    Triple lower_;
    Triple upper_;
};

} // namespace brix::sight
