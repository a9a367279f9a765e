// Openings through which a view from a point may look: a circular cone, or a camera's pyramid. A voxel lies within one when its
// centre does; the point's own voxel always does.
//
// Whether a centre lies within is decided in whole numbers, the same on every machine: doubles only describe the opening, once.
// Offsets from the point to centres are in base units; those of more than 31 bits (points outside the index space) are rounded
// to 31.
#pragma once

#include "../frame/Axes.h"
#include "SightMask.h"
#include "SightWedge.h"

namespace brix::sight {

__extension__ typedef __int128 WideInteger;
__extension__ typedef unsigned __int128 WideUnsigned;

/// A convex region of directions, or all but such a region.
class SightOpening : public SightMask
{
public:
    /// A cap that holds the opening.
    const SightCap& Cap() const { return cap_; }

    bool HoldsAny(const Triple& lower, const Triple& upper) const final;
    bool HoldsAll(const Triple& lower, const Triple& upper) const final;
    VoxelPlate<bool> PlateAt(const Triple& corner) const final;

protected:
    enum class Kind
    {
        Region,
        AllButTheRegion
    };

    /// `cap` holds the opening, `wedge` the region.
    SightOpening(const Axes& axes, const Triple& point, std::int64_t lod, const SightCap& cap, Kind kind, SightWedge wedge);

    Kind OpeningKind() const { return kind_; }

    /// The offsets to the voxels of a plate on its diagonal: x, y and z of all.
    using PlateOffsets = std::array<Triple, 16>;

private:
    /// Whether an offset, of at most 31 bits along each axis, lies within the region; and the voxels of a plate that do.
    virtual bool IsInRegion(const Triple& offset) const = 0;
    virtual VoxelPlate<bool> RegionAt(const PlateOffsets& offsets) const = 0;

    std::int64_t Centre(std::size_t axis, std::int64_t index) const { return index * size_[axis] + size_[axis] / 2; }
    std::int64_t Offset(std::size_t axis, std::int64_t index) const;
    bool MissesRegion(const Triple& lower, const Triple& upper) const; // false is right as well
    bool LiesInRegion(const Triple& lower, const Triple& upper) const;

    Triple point_;
    Triple eye_;
    Triple size_;
    std::int64_t unit_; // of offsets
    SightCap cap_;
    Kind kind_;
    SightWedge wedge_;
};

/// The directions within half of `degrees` (greater than 0, less than 360) of a direction that is not (0, 0, 0). Mirrored and
/// turned cones hold mirrored and turned voxels.
///
/// With d an offset and v the direction, d lies within the cone when  d * v >= 0  and  (d * v)^2 >= cos^2 * d^2 * v^2, where
/// cos^2 is a multiple of 2^-64. Directions are rounded to 29 bits, so that 128 hold everything. A cone of more than 180 degrees
/// is all but the inside of one around the opposite direction.
class SightCone : public SightOpening
{
public:
    SightCone(const Axes& axes, const Triple& point, std::int64_t lod, const Triple& direction, double degrees);

private:
    bool Holds(const Triple& offset) const;
    bool IsInRegion(const Triple& offset) const override;
    VoxelPlate<bool> RegionAt(const PlateOffsets& offsets) const override;

    Triple direction_;    // of the region, rounded
    WideUnsigned factor_; // cos^2 * v^2, times 2^64
};

/// A camera's view: the directions d in front, within half of each angle to the right and left, and above and below. Both angles
/// are greater than 0 and less than 180 degrees. Up is the frame's Z made perpendicular to the direction; the frame's Y, where
/// that is vertical. What misses a side by less than 2^-40 of its offset (the sum along the axes) lies within. Normals of the
/// sides have 62 bits, so that 96 hold their products with offsets.
class SightPyramid : public SightOpening
{
public:
    SightPyramid(const Axes& axes, const Triple& point, std::int64_t lod, const Triple& direction, double horizontalDegrees,
                 double verticalDegrees);

private:
    struct Shape;
    SightPyramid(const Axes& axes, const Triple& point, std::int64_t lod, const Shape& shape);

    bool Holds(const Triple& offset) const;
    bool IsInRegion(const Triple& offset) const override;
    VoxelPlate<bool> RegionAt(const PlateOffsets& offsets) const override;

    std::array<Triple, 4> sides_; // normals that point inwards, times 2^61
};

} // namespace brix::sight
