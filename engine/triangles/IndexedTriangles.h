// Triangles of an indexed mesh in the caller's memory, each put together when it is asked for.
#pragma once

#include "Triangle.h"

#include <algorithm>
#include <cstdint>
#include <span>

namespace brix {

template <class Number> struct IndexedTriangles
{
    std::span<const std::array<Number, 3>> vertices;       // world units
    std::span<const std::array<std::uint32_t, 3>> indices; // of vertices, which must exist

    std::size_t size() const { return indices.size(); }

    WorldTriangle operator[](std::size_t i) const
    {
        WorldTriangle triangle;
        for (std::size_t corner = 0; corner < 3; ++corner) {
            const std::array<Number, 3>& vertex = vertices[indices[i][corner]];
            std::copy(vertex.begin(), vertex.end(), triangle[corner].begin());
        }
        return triangle;
    }
};

} // namespace brix
