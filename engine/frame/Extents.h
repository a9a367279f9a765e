// An inclusive box of voxel indices (axis-aligned bounding box) at one level of detail of a frame. Every Extents that exists lies
// within the index space.
#pragma once

#include "Axes.h"

#include <memory>

namespace brix {

class Extents
{
public:
    /// `lowerIndices`, `upperIndices`  bounds, both inclusive; x and y at `voxelLOD`, z at the frame's vertical level
    /// Throws std::domain_error, the first that applies: a lower bound below -MaxHorizontalExtent or -MaxVerticalExtent (x, y,
    /// z); an upper bound not below the maximum (x, y, z); an upper bound below its lower one (x, y, z); a level outside 0..5.
    /// The level is judged last although the bounds depend on it; a level that does not exist has the bounds of the nearest one.
    Extents(const Axes& axes, const Triple& lowerIndices, const Triple& upperIndices, std::int64_t voxelLOD);

    // Copied, never moved from: every Extents has a frame.
    Extents(const Extents&) = default;
    Extents& operator=(const Extents&) = default;
    ~Extents() = default;

    const Axes& AxesRef() const { return *axes_; }
    Triple LowerIndices() const { return {lower_[0], lower_[1], lower_[2]}; }
    Triple UpperIndices() const { return {upper_[0], upper_[1], upper_[2]}; }
    std::int64_t VoxelLOD() const { return voxelLOD_; }

    bool ContainsVoxel(const Triple& voxelIndices) const { return IsWithin(voxelIndices, LowerIndices(), UpperIndices()); }

    /// Componentwise maximum with the lower and minimum with the upper bound; one after the other gives the closest voxel.
    Triple LowerCornerClamp(const Triple& value) const { return Highest(value, LowerIndices()); }
    Triple UpperCornerClamp(const Triple& value) const { return Lowest(value, UpperIndices()); }

    /// The same region at another level: exact at a finer one, the smallest box that covers it at a coarser one; z is unchanged.
    /// Throws what the constructor throws, for a level outside 0..5 among others.
    Extents RescaledCopy(std::int64_t newLOD) const;

    /// Another region of the same frame and level. Throws what the constructor throws.
    Extents WithIndices(const Triple& lowerIndices, const Triple& upperIndices) const
    {
        return Extents(axes_, lowerIndices, upperIndices, voxelLOD_);
    }

    /// Whether two boxes hold the same voxels of the same level and frame.
    friend bool operator==(const Extents& a, const Extents& b)
    {
        return *a.axes_ == *b.axes_ && a.voxelLOD_ == b.voxelLOD_ && a.lower_ == b.lower_ && a.upper_ == b.upper_;
    }

private:
    Extents(std::shared_ptr<const Axes> axes, const Triple& lowerIndices, const Triple& upperIndices, std::int64_t voxelLOD);

    std::shared_ptr<const Axes> axes_;  // of all boxes that come from one another
    std::array<std::int32_t, 3> lower_; // the index space is less than 2^21 voxels wide
    std::array<std::int32_t, 3> upper_;
    std::int64_t voxelLOD_;
};

} // namespace brix
