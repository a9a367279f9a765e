#include "TriangleRows.h"

namespace brix {
namespace {

Triple Cells(const Triple& coords, const Triple& size)
{
    return {FloorDivide(coords[0], size[0]), FloorDivide(coords[1], size[1]), FloorDivide(coords[2], size[2])};
}

WideNumber FloorOf(WideNumber value, std::int64_t divisor) { return value / divisor - (value % divisor < 0 ? 1 : 0); }
WideNumber Magnitude(WideNumber value) { return value < 0 ? -value : value; }

// Twice the area of the triangle's projection to the axes a and b, with the sign of its turn.
std::int64_t AreaAcross(std::size_t a, std::size_t b, const LatticeTriangle& corners)
{
    const auto along = [&](std::size_t corner, std::size_t axis) { return corners[corner][axis] - corners[0][axis]; };
    return along(1, a) * along(2, b) - along(1, b) * along(2, a);
}

} // namespace

TriangleRows::TriangleRows(const LatticeTriangle& triangle, const Triple& size)
    : size_(size), unit_(std::gcd(std::gcd(size[0], size[1]), size[2]))
{
    const TriangleBox box(triangle);
    lower_ = Cells(box.lower, size);
    upper_ = Cells(box.upper, size);
    const Triple corner{lower_[0] * size[0], lower_[1] * size[1], lower_[2] * size[2]};
    const LatticeTriangle corners{Minus(triangle[0], corner), Minus(triangle[1], corner), Minus(triangle[2], corner)};
    xy_ = EdgesAcross(0, 1, corners);
    xz_ = EdgesAcross(0, 2, corners);
    zy_ = EdgesAcross(2, 1, corners);
    MakePlane(corners);
}

TriangleRows::Edges TriangleRows::EdgesAcross(std::size_t first, std::size_t second, const LatticeTriangle& corners) const
{
    const std::int64_t turn = AreaAcross(first, second, corners) < 0 ? -1 : 1;
    Edges edges;
    for (std::size_t i = 0; i < 3; ++i) {
        const auto& from = corners[i];
        const Triple along = Minus(corners[(i + 1) % 3], from);
        const std::int64_t distance = along[first] * from[second] - along[second] * from[first];
        Edge& edge = edges[i];
        edge.perFirst = -turn * along[second] * (size_[first] / unit_);
        edge.perSecond = turn * along[first] * (size_[second] / unit_);
        edge.base = FloorDivide(-turn * distance, unit_) + std::max<std::int64_t>(edge.perFirst, 0) +
                    std::max<std::int64_t>(edge.perSecond, 0);
    }
    return edges;
}

void TriangleRows::MakePlane(const LatticeTriangle& corners)
{
    const Triple normal{AreaAcross(1, 2, corners), AreaAcross(2, 0, corners), AreaAcross(0, 1, corners)};
    WideNumber distance = 0;
    WideNumber most = 0; // that its numbers and their differences reach in the box
    plane_ = {};
    for (std::size_t i = 0; i < 3; ++i) {
        plane_.step[i] = WideNumber{normal[i]} * (size_[i] / unit_);
        plane_.highest += std::max<WideNumber>(plane_.step[i], 0);
        plane_.thickness += Magnitude(plane_.step[i]);
        distance += WideNumber{normal[i]} * corners[0][i];
        most += Magnitude(plane_.step[i]) * (upper_[i] - lower_[i] + 2);
    }
    const WideNumber offset = FloorOf(-distance, unit_);
    plane_.highest += offset;
    if (offset * unit_ != -distance) --plane_.thickness;
    isNarrow_ = 2 * (most + Magnitude(offset)) < WideNumber{1} << 62;
}

} // namespace brix
