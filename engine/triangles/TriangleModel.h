// Triangles in base units, filed by the chunks that their boxes touch: what voxelization reads.
#pragma once

#include "../model/Model.h"
#include "Triangle.h"

namespace brix {

/// Holds the corners of a triangle within +-MaxCoordinate.
constexpr LatticeTriangle NearestTriangle(LatticeTriangle triangle)
{
    for (Triple& corner : triangle) {
        for (std::int64_t& coordinate : corner) coordinate = NearestCoordinate(coordinate);
    }
    return triangle;
}

/// The triangles that concern one chunk.
class TriangleChunk
{
public:
    TriangleChunk(const Extents&, const Triple&) {}

    /// Appends a triangle (base units) as it stands, whether it concerns the chunk or not. Corners farther than MaxCoordinate from
    /// the origin are moved to that bound.
    void AddTriangle(const LatticeTriangle& triangle) { triangles_.push_back(NearestTriangle(triangle)); }

    const std::vector<LatticeTriangle>& TrianglesRef() const { return triangles_; }

private:
    std::vector<LatticeTriangle> triangles_;
};

class TriangleModel : public Model<TriangleChunk>
{
public:
    /// An empty chunk grid on these extents.
    explicit TriangleModel(const Extents& extents) : Model(extents) {}

    /// Converts each corner from world units with the frame's FromWorldCoordinates, and files the triangle.
    void AddWorldTriangle(const WorldTriangle& worldTriangle);
    void AddWorldTriangles(const std::vector<WorldTriangle>& worldTriangles);

    /// Files a triangle (base units) in every chunk of the grid that its box touches; one that spans more than half a chunk's width
    /// is cut into four at the midpoints of its edges first, as often as needed. What lies outside the grid is dropped. Corners
    /// farther than MaxCoordinate from the origin are moved to that bound. Cost: bounded by the grid, not by the triangle.
    void AddTriangle(const LatticeTriangle& triangle);
};

} // namespace brix
