// The plainest exact test of a triangle and a box there is: separating axes, in integers that hold every product within the index
// space.
#pragma once

#include "frame/Triples.h"
#include "triangles/Triangle.h"

namespace brix::tests {

__extension__ typedef __int128 Wide;
using WideTriple = std::array<Wide, 3>;

inline WideTriple Cross(const WideTriple& a, const WideTriple& b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

// Whether triangle and box are strictly apart along an axis.
inline bool AreApart(const WideTriple& axis, const LatticeTriangle& triangle, const Triple& lower, const Triple& upper)
{
    Wide boxLow = 0;
    Wide boxHigh = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        boxLow += axis[i] * (axis[i] > 0 ? lower[i] : upper[i]);
        boxHigh += axis[i] * (axis[i] > 0 ? upper[i] : lower[i]);
    }
    std::array<Wide, 3> along{};
    for (std::size_t corner = 0; corner < 3; ++corner) {
        for (std::size_t i = 0; i < 3; ++i) along[corner] += axis[i] * triangle[corner][i];
    }
    return *std::max_element(along.begin(), along.end()) < boxLow || *std::min_element(along.begin(), along.end()) > boxHigh;
}

// The thirteen axes of a triangle and a box: three faces, the plane, and nine pairs of edges.
inline bool Overlap(const LatticeTriangle& triangle, const Triple& lower, const Triple& upper)
{
    const std::array<WideTriple, 3> units{{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    std::array<WideTriple, 3> edges{};
    for (std::size_t edge = 0; edge < 3; ++edge) {
        for (std::size_t i = 0; i < 3; ++i) edges[edge][i] = triangle[(edge + 1) % 3][i] - triangle[edge][i];
    }
    if (AreApart(Cross(edges[0], edges[1]), triangle, lower, upper)) return false;
    for (const WideTriple& unit : units) {
        if (AreApart(unit, triangle, lower, upper)) return false;
        for (const WideTriple& edge : edges) {
            if (AreApart(Cross(unit, edge), triangle, lower, upper)) return false;
        }
    }
    return true;
}

} // namespace brix::tests
