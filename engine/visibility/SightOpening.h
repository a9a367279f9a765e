// Openings through which a view from a point may look: a circular cone, or a camera's pyramid. A voxel lies within one when its centre
// does; the point's own voxel always does.
#pragma once

#include "../frame/Axes.h"
#include "SightMask.h"
#include "SightWedge.h"

namespace brix::sight {

class SightOpening : public SightMask
{
public:
    /// A cap that holds the opening.
    const SightCap& Cap() const { return cap_; }

    bool HoldsAny(const Triple& lower, const Triple& upper) const final;
    bool HoldsAll(const Triple& lower, const Triple& upper) const final;
    VoxelPlate<bool> PlateAt(const Triple& corner) const final;

protected:
    SightOpening(const Axes& axes, const Triple& point, std::int64_t lod, const SightCap& cap, SightWedge wedge)
        : point_(point), eye_(axes.ContainingVoxel(point, lod)), size_(axes.VoxelSize(lod)), cap_(cap), wedge_(std::move(wedge))
    {}

    std::int64_t Centre(std::size_t axis, std::int64_t index) const { return index * size_[axis] + size_[axis] / 2; }

    /// From the point to a voxel's centre. Points far away are rounded to doubles, within 2^52 base units nothing is.
    Vector OffsetTo(const Triple& voxel) const
    {
        const auto along = [&](std::size_t i) {
            return static_cast<double>(Centre(i, voxel[i])) - static_cast<double>(point_[i]);
        };
        return {along(0), along(1), along(2)};
    }

    Triple point_;

private:
    // These leave the point's own voxel aside. The second may be false where it holds.
    virtual bool IsAllInside(const Triple& lower, const Triple& upper) const = 0;
    virtual bool IsAllOutside(const Triple&, const Triple&) const { return false; }
    virtual VoxelPlate<bool> InsideAt(const Triple& corner) const = 0;

    Triple eye_;
    Triple size_;
    SightCap cap_;
    SightWedge wedge_;
};

/// The directions within half of `degrees` (greater than 0, less than 360) of a direction that is not (0, 0, 0).
///
/// All is decided in whole numbers, so that mirrored and turned cones hold mirrored and turned voxels. With d the offset of a centre
/// and v the direction, d lies within the cone when  d * v >= 0  and  (d * v)^2 >= cos^2 * d^2 * v^2, where cos^2 is a multiple of
/// 2^-64. Directions are rounded to 29 bits, and offsets of more than 31 bits (points outside the index space) to 31.
class SightCone : public SightOpening
{
public:
    SightCone(const Axes& axes, const Triple& point, std::int64_t lod, const Triple& direction, double degrees);

private:
    __extension__ typedef unsigned __int128 Wide;

    bool IsAllInside(const Triple& lower, const Triple& upper) const override;
    bool IsAllOutside(const Triple& lower, const Triple& upper) const override;
    VoxelPlate<bool> InsideAt(const Triple& corner) const override;

    struct Measures
    {
        std::int64_t product; // d * v
        std::uint64_t square; // d^2
    };

    std::int64_t Offset(std::size_t axis, std::int64_t index) const;
    Measures MeasuresOf(const Triple& voxel) const;
    bool IsInCap(const Measures& measures) const;

    bool isInverted_;   // a cone of more than 180 degrees: what follows describes what it leaves out
    Triple direction_;  // rounded
    std::int64_t unit_; // of offsets
    Wide factor_;       // cos^2 * v^2, times 2^64
};

/// A camera's view: the directions d in front, within half of each angle to the right and left, and above and below. Both angles are
/// greater than 0 and less than 180 degrees. Up is the frame's Z made perpendicular to the direction; the frame's Y, where that is
/// vertical. In doubles, as written; what misses a side by less than 2^-40 of its offset lies within.
class SightPyramid : public SightOpening
{
public:
    SightPyramid(const Axes& axes, const Triple& point, std::int64_t lod, const Triple& direction, double horizontalDegrees,
                 double verticalDegrees);

private:
    using Sides = std::array<Vector, 4>;
    struct Shape;
    SightPyramid(const Axes& axes, const Triple& point, std::int64_t lod, const Shape& shape);

    bool IsAllInside(const Triple& lower, const Triple& upper) const override;
    VoxelPlate<bool> InsideAt(const Triple& corner) const override;

    bool Holds(const Vector& offset) const;

    Sides sides_; // pointing inwards
};

} // namespace brix::sight
