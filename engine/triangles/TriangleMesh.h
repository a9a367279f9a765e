// An indexed triangle mesh in world coordinates: shared vertices and index triples.
#pragma once

#include "Triangle.h"

#include <map>

#include <span>

namespace brix {

/// Throws std::domain_error when an index of a triangle's corner is negative, or not less than the number of vertices.
void RequireVertexIndex(std::int64_t index, std::size_t vertexCount);

class TriangleMesh
{
public:
    /// A mesh of these vertices (world units) and one index triple per triangle. Equal vertices are kept as they are given.
    /// Throws std::domain_error for the first index that is negative or not less than the number of vertices.
    TriangleMesh(const std::vector<std::array<double, 3>>& vertices,
                 const std::vector<std::array<std::int64_t, 3>>& indexedTriangles);

    /// A mesh of these triangles; vertices that are exactly equal are stored once, in order of first use.
    explicit TriangleMesh(const std::vector<WorldTriangle>& triangles);

    const std::vector<std::array<double, 3>>& VerticesRef() const { return vertices_; }
    const std::vector<std::array<std::int64_t, 3>>& IndexedTrianglesRef() const { return indexedTriangles_; }

    /// Appends triangles; a corner that equals a vertex exactly becomes that vertex (the last one, of several that are equal).
    /// Degenerate triangles are kept. Cost per corner: logarithmic in the number of vertices.
    void AddTriangle(const WorldTriangle& triangle);
    void AddTriangles(const std::vector<WorldTriangle>& triangles);
    void AddTriangles(std::span<const WorldTriangle> triangles);

    /// One world triangle per index triple, in order.
    std::vector<WorldTriangle> ExpandedTriangles() const;

private:
    std::int64_t IndexOf(const std::array<double, 3>& vertex); // appends the vertex if it is new

    std::vector<std::array<double, 3>> vertices_;
    std::vector<std::array<std::int64_t, 3>> indexedTriangles_;

    // NaN compares as neither less nor greater than anything, which would break the order of the map.
    struct VertexLess
    {
        bool operator()(const std::array<double, 3>& a, const std::array<double, 3>& b) const;
    };
    std::map<std::array<double, 3>, std::int64_t, VertexLess> vertexIndex_; // empty until the first addition
};

} // namespace brix
