#include "TrianglePieces.h"

#include "../frame/Product.h"

#include <cmath>
#include <vector>

namespace brix {
namespace {

using Point = std::array<double, 3>;

// Where the edge from a to b meets the plane at `limit` across an axis.
Point Crossing(const Point& a, const Point& b, std::size_t axis, double limit)
{
    const double t = (limit - a[axis]) / (b[axis] - a[axis]);
    Point crossing{};
    for (std::size_t i = 0; i < 3; ++i) crossing[i] = a[i] + Product(t, b[i] - a[i]);
    crossing[axis] = limit;
    return crossing;
}

// The part of a convex polygon on one side of a plane, after Sutherland and Hodgman ("Reentrant Polygon Clipping", 1974).
std::vector<Point> Clip(const std::vector<Point>& polygon, std::size_t axis, Side side, double limit)
{
    const auto isInside = [&](const Point& point) { return side == Side::Lower ? point[axis] >= limit : point[axis] <= limit; };
    std::vector<Point> clipped;
    for (std::size_t i = 0; i < polygon.size(); ++i) {
        const Point& from = polygon[i];
        const Point& to = polygon[(i + 1) % polygon.size()];
        if (isInside(from)) clipped.push_back(from);
        if (isInside(from) != isInside(to)) clipped.push_back(Crossing(from, to, axis, limit));
    }
    return clipped;
}

Triple Rounded(const Point& point) { return {std::llround(point[0]), std::llround(point[1]), std::llround(point[2])}; }

} // namespace

void ForEachNearPart(const LatticeTriangle& triangle, const Triple& lower, const Triple& upper,
                     const std::function<void(const LatticeTriangle&)>& visit)
{
    const TriangleBox box(triangle);
    constexpr Triple far{FarCoordinate, FarCoordinate, FarCoordinate};
    if (IsWithin(box.lower, Minus({}, far), far) && IsWithin(box.upper, Minus({}, far), far)) return visit(triangle);

    std::vector<Point> polygon;
    for (const auto& [x, y, z] : triangle)
        polygon.push_back({static_cast<double>(x), static_cast<double>(y), static_cast<double>(z)});
    for (std::size_t axis = 0; axis < 3; ++axis) {
        polygon = Clip(polygon, axis, Side::Lower, static_cast<double>(lower[axis]));
        polygon = Clip(polygon, axis, Side::Upper, static_cast<double>(upper[axis]));
    }
    for (std::size_t i = 2; i < polygon.size(); ++i) visit({Rounded(polygon[0]), Rounded(polygon[i - 1]), Rounded(polygon[i])});
}

} // namespace brix
