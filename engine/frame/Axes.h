// The frame that all models of a scene share. It ties together
//
//   world coordinates   doubles in the host's units
//   base units          integers, one lattice for all levels of detail, rotated about the world's Z and moved to an origin
//   voxel indices       integers at a level of detail; x and y halve their voxel with every level, z keeps the vertical level
#pragma once

#include "Lattice.h"

namespace brix {

class Axes
{
public:
    /// `worldVoxelSpacing0`  width of a voxel at level 0 in world units; not checked (a width of 0 gives infinite factors)
    /// `worldVoxelOrigin`    world position of the base-unit point (0, 0, 0)
    /// `worldVoxelRotation`  degrees by which the lattice turns about the world's Z, counter-clockwise; multiples of 90 are exact
    /// `verticalLOD`         the level whose voxel width is the height of all voxels, 0..5
    /// Throws std::domain_error when the vertical level is negative or not less than 6.
    Axes(double worldVoxelSpacing0, const std::array<double, 3>& worldVoxelOrigin, double worldVoxelRotation,
         std::int64_t verticalLOD);

    double WorldVoxelSpacing0() const { return worldVoxelSpacing0_; }
    std::array<double, 3> WorldVoxelOrigin() const { return worldVoxelOrigin_; }
    double WorldVoxelRotation() const { return worldVoxelRotation_; }
    std::int64_t VerticalLOD() const { return verticalLOD_; }

    /// Width of a voxel at a level (0..5) and height of every voxel, in world units.
    double WorldVoxelWidth(std::int64_t voxelLOD) const;
    double WorldVoxelHeight() const { return WorldVoxelWidth(verticalLOD_); }

    /// A distance in base units as a world distance.
    double ToWorldDistance(std::int64_t distance) const;

    /// A world distance in base units, truncated towards zero. Distances too large for 64 bits give the largest value, as does
    /// NaN; negative ones too large give the smallest.
    std::int64_t FromWorldDistance(double worldDistance) const;

    /// A base-unit point as a world point.
    std::array<double, 3> ToWorldCoordinates(const Triple& coords) const;

    /// The base-unit point at or below a world point (floor along each lattice axis, within 70000 level-0 voxels of the origin).
    /// Coordinates farther than MaxCoordinate from the origin are held at that bound, and NaN at the lower one: they lie outside
    /// all valid Extents, which report them.
    Triple FromWorldCoordinates(const std::array<double, 3>& worldCoords) const;

    /// What FromWorldCoordinates computes with, for code that converts many points at once: with d = point - origin,
    ///   u = trunc((cos * d.x + sin * d.y + bias) * unitsPerWorld) - TruncationBiasUnits
    ///   v = trunc((-sin * d.x + cos * d.y + bias) * unitsPerWorld) - TruncationBiasUnits
    ///   w = trunc((d.z + bias) * unitsPerWorld) - TruncationBiasUnits
    struct Conversion
    {
        std::array<double, 3> origin;
        double sin;
        double cos;
        double bias;
        double unitsPerWorld;
    };
    Conversion WorldConversion() const
    {
        return {worldVoxelOrigin_, sinRotation_, cosRotation_, TruncationBias * worldVoxelSpacing0_, unitsPerWorld_};
    }

    /// World points are moved up by this many level-0 voxels before truncation, which makes truncation a floor for all of them
    /// that matter; the same distance in base units is taken off afterwards.
    static constexpr double TruncationBias = 70000.0;
    static constexpr std::int64_t TruncationBiasUnits = 2800000000;

    /// Indices at a level of the voxel that holds a base-unit point: floor(coordinate / voxel size). The level acts on x and y.
    Triple ContainingVoxel(const Triple& coords, std::int64_t voxelLOD) const;

    /// Base-unit points of a voxel's lower corner and of its centre. Indices that would leave the range of MaxCoordinate are held
    /// at it.
    Triple VoxelCorner(const Triple& voxelIndices, std::int64_t voxelLOD) const;
    Triple VoxelCenter(const Triple& voxelIndices, std::int64_t voxelLOD) const;

    /// Base units per voxel edge along x, y and z at a level.
    Triple VoxelSize(std::int64_t voxelLOD) const
    {
        return {VoxelSpacing(voxelLOD), VoxelSpacing(voxelLOD), VoxelSpacing(verticalLOD_)};
    }

    /// Whether two frames were made from equal values. NaN equals nothing, +0 equals -0.
    friend bool operator==(const Axes& a, const Axes& b);

private:
    double worldVoxelSpacing0_;
    std::array<double, 3> worldVoxelOrigin_;
    double worldVoxelRotation_;
    std::int64_t verticalLOD_;
    double sinRotation_ = 0;
    double cosRotation_ = 0;
    double worldPerUnit_ = 0;
    double unitsPerWorld_ = 0;
};

bool operator==(const Axes& a, const Axes& b);

} // namespace brix
