// The shortest way from a point back to the nearest source of a distance field.
#pragma once

#include "DistanceField.h"

namespace brix {

/// Immutable once made. Needs the distance field only while it is made.
class Path
{
public:
    /// `point`  base units, in a voxel that the field reaches
    /// Throws std::domain_error when it is not. Cost: the voxels of the way.
    Path(const DistanceField& distanceField, const std::array<std::int64_t, 3>& point);

    /// Length in base units, rounded: the field's distance at the point.
    std::int64_t Length() const { return length_; }

    /// The way as a polyline in base units, from the centre of the point's voxel to that of the source. Pieces that follow each
    /// other straight are one; a single point where the point is at the source.
    const std::vector<Triple>& Points() const { return points_; }

    /// The voxels that the way leads over in plan, each a step from the next one; on extents that bound them.
    const VoxelModel<bool>& Voxels() const { return voxels_; }

private:
    struct Way
    {
        std::int64_t length;
        std::vector<Triple> bends;  // voxels
        std::vector<Triple> voxels; // all of them, in order
    };
    explicit Path(const DistanceField& distanceField, const Way& way);
    static Way FindWay(const DistanceField& distanceField, const Triple& point);

    std::int64_t length_;
    std::vector<Triple> points_;
    VoxelModel<bool> voxels_;
};

} // namespace brix
