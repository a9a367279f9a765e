#include "TriangleMesh.h"

#include "../frame/WatchedLoop.h"
#include <cmath>
#include <stdexcept>
#include <string>

namespace brix {
void RequireVertexIndex(std::int64_t index, std::size_t vertexCount)
{
    if (index < 0) {
        throw std::domain_error("No triangle vertex index can be negative. A value of " + std::to_string(index) +
                                " was encountered.");
    }
    if (static_cast<std::uint64_t>(index) >= vertexCount) {
        throw std::domain_error("All triangle vertex indices must be less than number of vertices in the triangle mesh. "
                                "A triangle vertex index of " +
                                std::to_string(index) + " was encountered. There are " + std::to_string(vertexCount) +
                                " vertices in the triangle mesh.");
    }
}

TriangleMesh::TriangleMesh(const std::vector<std::array<double, 3>>& vertices,
                           const std::vector<std::array<std::int64_t, 3>>& indexedTriangles)
    : vertices_(vertices), indexedTriangles_(indexedTriangles)
{
    for (const auto& triangle : indexedTriangles) {
        for (const std::int64_t index : triangle) RequireVertexIndex(index, vertices.size());
    }
}

TriangleMesh::TriangleMesh(const std::vector<WorldTriangle>& triangles) { AddTriangles(triangles); }

// Lexicographic, exact; every NaN equals every other and comes after all numbers.
bool TriangleMesh::VertexLess::operator()(const std::array<double, 3>& a, const std::array<double, 3>& b) const
{
    for (std::size_t i = 0; i < 3; ++i) {
        if (a[i] < b[i] || (std::isnan(b[i]) && !std::isnan(a[i]))) return true;
        if (b[i] < a[i] || (std::isnan(a[i]) && !std::isnan(b[i]))) return false;
    }
    return false;
}

// Where memory runs out, the mesh stays whole: at most, a vertex is left behind that no triangle uses.
void TriangleMesh::AddTriangle(const WorldTriangle& triangle)
{
    if (vertexIndex_.empty()) {
        decltype(vertexIndex_) index;
        for (std::size_t i = 0; i < vertices_.size(); ++i) index[vertices_[i]] = static_cast<std::int64_t>(i);
        vertexIndex_.swap(index);
    }
    std::array<std::int64_t, 3> indices{};
    for (std::size_t corner = 0; corner < 3; ++corner) indices[corner] = IndexOf(triangle[corner]);
    indexedTriangles_.push_back(indices);
}

std::int64_t TriangleMesh::IndexOf(const std::array<double, 3>& vertex)
{
    const auto place = vertexIndex_.lower_bound(vertex);
    if (place != vertexIndex_.end() && !VertexLess()(vertex, place->first)) return place->second;
    const auto index = static_cast<std::int64_t>(vertices_.size());
    vertices_.push_back(vertex);
    vertexIndex_.emplace_hint(place, vertex, index);
    return index;
}

void TriangleMesh::AddTriangles(const std::vector<WorldTriangle>& triangles) { AddTriangles(std::span(triangles)); }

void TriangleMesh::AddTriangles(std::span<const WorldTriangle> triangles)
{
    WatchedLoop loop(triangles.size());
    for (const WorldTriangle& triangle : triangles) {
        AddTriangle(triangle);
        loop.Step();
    }
}

std::vector<WorldTriangle> TriangleMesh::ExpandedTriangles() const
{
    std::vector<WorldTriangle> triangles(indexedTriangles_.size());
    for (std::size_t i = 0; i < triangles.size(); ++i) {
        for (std::size_t corner = 0; corner < 3; ++corner) {
            triangles[i][corner] = vertices_[static_cast<std::size_t>(indexedTriangles_[i][corner])];
        }
    }
    return triangles;
}

} // namespace brix
