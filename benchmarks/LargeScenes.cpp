#include "LargeScenes.h"

#include <array>
#include <cmath>
#include <numbers>
#include <random>

namespace brix::benchmarks {
namespace {

using Point = std::array<double, 3>;

void AddRectangle(std::vector<WorldTriangle>& triangles, const Point& a, const Point& b, const Point& c, const Point& d)
{
    triangles.push_back({a, b, c});
    triangles.push_back({a, c, d});
}

// The six faces of a box, its bottom at z = 0.
void AddBox(std::vector<WorldTriangle>& triangles, double x, double y, const Point& size)
{
    const auto corner = [&](int i) { return Point{x + (i & 1) * size[0], y + (i >> 1 & 1) * size[1], (i >> 2) * size[2]}; };
    constexpr std::array<std::array<int, 4>, 6> faces{
        {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4}, {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}}};
    for (const auto& [a, b, c, d] : faces) AddRectangle(triangles, corner(a), corner(b), corner(c), corner(d));
}

} // namespace

std::vector<WorldTriangle> MakePole(double length)
{
    constexpr int sides = 64;
    const auto corner = [](int side, double x) {
        const double angle = 2 * std::numbers::pi * side / sides;
        return Point{x + 0.2, std::cos(angle) + 0.3, std::sin(angle) + 0.4};
    };
    std::vector<WorldTriangle> triangles;
    for (int side = 0; side < sides; ++side)
        AddRectangle(triangles, corner(side, 0), corner(side + 1, 0), corner(side + 1, length), corner(side, length));
    return triangles;
}

std::vector<WorldTriangle> MakeRoad(double length)
{
    const auto point = [](double along, double beside) {
        return Point{along - beside / std::numbers::sqrt2, along + beside / std::numbers::sqrt2, 3 + 0.5 * std::sin(along / 80)};
    };
    const double step = 5 / std::numbers::sqrt2;
    std::vector<WorldTriangle> triangles;
    for (double along = 0; along < length; along += step)
        AddRectangle(triangles, point(along, -4), point(along, 4), point(along + step, 4), point(along + step, -4));
    return triangles;
}

std::vector<WorldTriangle> MakeSite(std::int64_t boxes, double length)
{
    std::mt19937_64 random(5);
    const auto anywhere = [&] { return length * static_cast<double>(random() % 100'000) / 100'000; };
    std::vector<WorldTriangle> triangles;
    for (std::int64_t i = 0; i < boxes; ++i) AddBox(triangles, anywhere(), anywhere(), {20, 10, 8});
    return triangles;
}

} // namespace brix::benchmarks
