// Cutting a large triangle into pieces that the rasterizer's integers can hold.
#pragma once

#include "../frame/Triples.h"
#include "Triangle.h"

namespace brix {

/// The largest extent of a triangle piece along any axis, in base units: half the width of a chunk.
inline constexpr std::int64_t MaxPieceSpan = 320000;

/// The lattice box that a triangle touches. The lower bound is one base unit wider than the corners, so that a triangle that lies
/// exactly on the lower face of a voxel or chunk touches the one below, too.
struct TriangleBox
{
    explicit TriangleBox(const LatticeTriangle& triangle)
        : lower(Minus(Lowest(Lowest(triangle[0], triangle[1]), triangle[2]), {1, 1, 1})),
          upper(Highest(Highest(triangle[0], triangle[1]), triangle[2]))
    {}

    std::int64_t Span() const
    {
        const Triple size = Minus(upper, lower);
        return std::max({size[0], size[1], size[2]});
    }

    Triple lower;
    Triple upper;
};

/// Halfway between two lattice points, rounded towards zero.
constexpr Triple Midpoint(const Triple& a, const Triple& b) { return {(a[0] + b[0]) / 2, (a[1] + b[1]) / 2, (a[2] + b[2]) / 2}; }

/// Calls visit(piece, box) for the pieces of a triangle that span at most MaxPieceSpan. A triangle that is larger is cut at the
/// midpoints of its edges, again and again; touches(box) false drops a part at once, which bounds the work for a triangle of any
/// size. The corners must lie within +-MaxCoordinate.
template <class Touches, class Visit>
void ForEachPiece(const LatticeTriangle& triangle, const Touches& touches, const Visit& visit)
{
    const TriangleBox box(triangle);
    if (!touches(box)) return;
    if (box.Span() <= MaxPieceSpan) return visit(triangle, box);

    const auto& [a, b, c] = triangle;
    const Triple ab = Midpoint(a, b);
    const Triple bc = Midpoint(b, c);
    const Triple ca = Midpoint(c, a);
    ForEachPiece({ab, bc, ca}, touches, visit);
    ForEachPiece({ab, ca, a}, touches, visit);
    ForEachPiece({bc, ab, b}, touches, visit);
    ForEachPiece({ca, bc, c}, touches, visit);
}

} // namespace brix
