// An inclusive box of voxel indices (axis-aligned bounding box) at one level of detail of a frame. Every Extents that exists lies
// within the index space.
#pragma once

#include "Axes.h"

namespace brix {

class Extents
{
public:
    /// `lowerIndices`, `upperIndices`  bounds, both inclusive; x and y at `voxelLOD`, z at the frame's vertical level
    /// Throws std::domain_error, the first that applies: a lower bound below -MaxHorizontalExtent or -MaxVerticalExtent (x, y,
    /// z); an upper bound not below the maximum (x, y, z); an upper bound below its lower one (x, y, z); a level outside 0..5.
    /// The level is judged last although the bounds depend on it; a level that does not exist has the bounds of the nearest one.
    Extents(const Axes& axes, const Triple& lowerIndices, const Triple& upperIndices, std::int64_t voxelLOD);

    const Axes& AxesRef() const { return axes_; }
    Triple LowerIndices() const { return lowerIndices_; }
    Triple UpperIndices() const { return upperIndices_; }
    std::int64_t VoxelLOD() const { return voxelLOD_; }

    bool ContainsVoxel(const Triple& voxelIndices) const { return IsWithin(voxelIndices, lowerIndices_, upperIndices_); }

    /// Componentwise maximum with the lower and minimum with the upper bound; one after the other gives the closest voxel.
    Triple LowerCornerClamp(const Triple& value) const { return Highest(value, lowerIndices_); }
    Triple UpperCornerClamp(const Triple& value) const { return Lowest(value, upperIndices_); }

    /// The same region at another level: exact at a finer one, the smallest box that covers it at a coarser one; z is unchanged.
    /// Throws what the constructor throws, for a level outside 0..5 among others.
    Extents RescaledCopy(std::int64_t newLOD) const;

    /// Whether two boxes hold the same voxels of the same level and frame.
    friend bool operator==(const Extents& a, const Extents& b)
    {
        return a.axes_ == b.axes_ && a.voxelLOD_ == b.voxelLOD_ && a.lowerIndices_ == b.lowerIndices_ &&
               a.upperIndices_ == b.upperIndices_;
    }

private:
    Axes axes_;
    Triple lowerIndices_;
    Triple upperIndices_;
    std::int64_t voxelLOD_;
};

} // namespace brix
