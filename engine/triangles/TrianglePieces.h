// Cutting a large triangle into pieces that the rasterizer's integers can hold.
#pragma once

#include "../frame/Triples.h"
#include "Triangle.h"

#include <functional>
#include <set>

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

/// Whether the corners lie on a line. Near ones may be taken for such, too, when their distances exceed 2^26.
inline bool IsLine(const LatticeTriangle& triangle)
{
    const Triple u = Minus(triangle[1], triangle[0]);
    const Triple v = Minus(triangle[2], triangle[0]);
    const auto hasNoArea = [&](std::size_t a, std::size_t b) {
        return static_cast<double>(u[a]) * static_cast<double>(v[b]) == static_cast<double>(u[b]) * static_cast<double>(v[a]);
    };
    return hasNoArea(0, 1) && hasNoArea(1, 2) && hasNoArea(2, 0);
}

/// Parts of a line that were met already.
using KnownParts = std::set<LatticeTriangle>;

inline bool IsNew(KnownParts& known, LatticeTriangle part)
{
    std::sort(part.begin(), part.end());
    return known.insert(part).second;
}

template <class Touches, class Visit>
void ForEachPiece(const LatticeTriangle& triangle, const Touches& touches, const Visit& visit, KnownParts* known)
{
    const TriangleBox box(triangle);
    if (!touches(box)) return;
    if (known != nullptr && !IsNew(*known, triangle)) return;
    const std::int64_t span = box.Span();
    if (span <= MaxPieceSpan) return visit(triangle, box);

    KnownParts ofThis;
    if (known == nullptr && IsLine(triangle)) known = &ofThis;
    const auto& [a, b, c] = triangle;
    const Triple ab = Midpoint(a, b);
    const Triple bc = Midpoint(b, c);
    const Triple ca = Midpoint(c, a);
    ForEachPiece({ab, bc, ca}, touches, visit, known);
    ForEachPiece({ab, ca, a}, touches, visit, known);
    ForEachPiece({bc, ab, b}, touches, visit, known);
    ForEachPiece({ca, bc, c}, touches, visit, known);
}

/// Calls visit(piece, box) for the pieces of a triangle that span at most MaxPieceSpan. A triangle that is larger is cut at the
/// midpoints of its edges, again and again; touches(box) false drops a part at once, which bounds the work for a large triangle.
/// The parts of a line cover each other, and each is cut once. The corners must lie within +-MaxCoordinate.
template <class Touches, class Visit>
void ForEachPiece(const LatticeTriangle& triangle, const Touches& touches, const Visit& visit)
{
    ForEachPiece(triangle, touches, visit, nullptr);
}

/// Calls visit(triangle), or, when a corner lies farther than FarCoordinate from the origin, visit(part) for triangles that cover
/// what of it lies within lower..upper. The cuts of a needle from a model to a corner that far (a NaN, say) would come to lie
/// upon each other in their millions. No valid model comes near that distance; new corners are rounded, like the midpoints of
/// cuts.
inline constexpr std::int64_t FarCoordinate = std::int64_t{1} << 33;
void ForEachNearPart(const LatticeTriangle& triangle, const Triple& lower, const Triple& upper,
                     const std::function<void(const LatticeTriangle&)>& visit);

} // namespace brix
