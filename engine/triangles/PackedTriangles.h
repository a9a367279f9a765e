// Packed triangles: which ones there are, and their corners and boxes in vector registers.
#pragma once

#include "Lanes.h"
#include "TriangleModel.h"
#include "TrianglePieces.h"

#include <cstring>

namespace brix {

/// Whether a triangle with corners within +-MaxCoordinate is as small and as near the origin as a PackedTriangle has to be.
inline bool IsPackable(const LatticeTriangle& triangle)
{
    constexpr std::int64_t most = MaxPackedCoordinate;
    const TriangleBox box(triangle);
    return IsWithin(box.lower, {-most, -most, -most}, {most, most, most}) && box.Span() <= MaxPieceSpan;
}

constexpr PackedTriangle Packed(const LatticeTriangle& triangle)
{
    PackedTriangle packed{};
    for (std::size_t i = 0; i < packed.size(); ++i) packed[i] = static_cast<std::int32_t>(triangle[i / 3][i % 3]);
    return packed;
}

constexpr LatticeTriangle Unpacked(const PackedTriangle& packed)
{
    LatticeTriangle triangle{};
    for (std::size_t i = 0; i < packed.size(); ++i) triangle[i / 3][i % 3] = packed[i];
    return triangle;
}

/// The corners of a triangle and its TriangleBox, relative to an origin within +-MaxPackedCoordinate.
struct PackedCorners
{
    PackedCorners(const PackedTriangle& triangle, const Quad& origin)
    {
        constexpr Quad xyz{-1, -1, -1, 0};
        std::memcpy(&a, &triangle[0], sizeof a);
        std::memcpy(&b, &triangle[3], sizeof b);
        std::memcpy(&c, &triangle[5], sizeof c); // nothing may be read beyond the last one
        a = (a & xyz) - origin;
        b = (b & xyz) - origin;
        c = (__builtin_shufflevector(c, c, 1, 2, 3, 3) & xyz) - origin;
        lower = upper = a;
        KeepLower(lower, b);
        KeepLower(lower, c);
        KeepUpper(upper, b);
        KeepUpper(upper, c);
        lower -= Quad{1, 1, 1, 0};
    }

    Quad a, b, c;
    Quad lower, upper;
};

/// The cell of a grid that holds a point: floor(point / cell) along each axis, exactly. The quotient of point + 1/2 lies at least
/// half a base unit from every whole number, that is 2^-23 for the largest cells, those of chunks; it is below 2^21, because the
/// smallest cells, those of voxels, are 1250 base units wide. A double gets it right within 2^-30, and adding 2^21 makes
/// truncation a floor.
inline void ContainingCell(const Quad& point, const DoubleQuad& perCell, Quad& cell)
{
    constexpr std::int32_t bias = 1 << 21;
    const DoubleQuad quotient = (__builtin_convertvector(point, DoubleQuad) + 0.5) * perCell;
    cell = __builtin_convertvector(quotient + static_cast<double>(bias), Quad) - bias;
}

} // namespace brix
