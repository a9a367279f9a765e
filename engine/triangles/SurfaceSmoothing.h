// Where the vertices of a smooth surface lie: within half a voxel of the corners of voxels that they stand for.
#pragma once

#include "SurfaceMesh.h"

namespace brix {

/// Parts of a voxel along each axis, from a corner of voxels; or a direction.
using CellPoint = std::array<float, 3>;

/// The mean of the centres of a sheet's faces (SurfaceShapes.h).
const CellPoint& CentreOfFaces(unsigned shape, unsigned sheet);

/// Corners of the voxels of a level as world points.
class CornersToWorld
{
public:
    CornersToWorld(const Axes& axes, std::int64_t lod);

    std::array<double, 3> At(const Triple& corner) const
    {
        return axes_.ToWorldCoordinates({corner[0] * size_[0], corner[1] * size_[1], corner[2] * size_[2]});
    }
    std::array<double, 3> At(const Triple& corner, const CellPoint& offset) const
    {
        const auto [x, y, z] = At(corner);
        const double u = width_ * static_cast<double>(offset[0]);
        const double v = width_ * static_cast<double>(offset[1]);
        return {x + cos_ * u - sin_ * v, y + sin_ * u + cos_ * v, z + height_ * static_cast<double>(offset[2])};
    }

    double Width() const { return width_; }

private:
    const Axes& axes_;
    Triple size_;
    double width_, height_, sin_, cos_;
};

/// Moves each vertex towards those that it shares an edge of a face with, held in its cell.
class Smoothing
{
public:
    static constexpr double BytesPerVertex = 37;

    explicit Smoothing(std::size_t vertexCount);

    void AddVertex(const Triple& corner, const CellPoint& offset);
    void Step(const std::vector<std::array<std::uint32_t, 4>>& faces);
    std::vector<std::array<double, 3>> ToWorld(const CornersToWorld& toWorld) const;

private:
    void AddNeighbour(std::size_t vertex, std::size_t neighbour);
    void MoveToMeans();

    std::vector<std::array<std::int32_t, 3>> corners_;
    std::vector<CellPoint> offsets_;
    std::vector<CellPoint> sums_;
    std::vector<std::uint8_t> counts_; // of the faces around each vertex, twelve at most
};

/// One for each vertex: the sum of the areas of the faces around it, as vectors, made to length 1.
std::vector<CellPoint> NormalsOf(const FaceMesh& mesh, const CornersToWorld& toWorld);

} // namespace brix
