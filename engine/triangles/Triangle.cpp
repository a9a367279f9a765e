#include "Triangle.h"

#include "../frame/Product.h"

#include <cmath>

namespace brix {

namespace {

// (B - A) x (C - A), and the square of its length.
struct Cross
{
    std::array<double, 3> vector;
    double squaredLength;
};

Cross CrossOfEdges(const WorldTriangle& triangle)
{
    const auto& [a, b, c] = triangle;
    const std::array<double, 3> ab{b[0] - a[0], b[1] - a[1], b[2] - a[2]};
    const std::array<double, 3> ac{c[0] - a[0], c[1] - a[1], c[2] - a[2]};
    const std::array<double, 3> normal{Product(ab[1], ac[2]) - Product(ab[2], ac[1]),
                                       Product(ab[2], ac[0]) - Product(ab[0], ac[2]),
                                       Product(ab[0], ac[1]) - Product(ab[1], ac[0])};
    return {normal, Product(normal[0], normal[0]) + Product(normal[1], normal[1]) + Product(normal[2], normal[2])};
}

} // namespace

std::array<double, 3> WorldTriangleNormal(const WorldTriangle& triangle)
{
    const auto [normal, squaredLength] = CrossOfEdges(triangle);
    const double length = std::sqrt(squaredLength);
    if (!(length > 0)) return {0, 0, 0};
    return {normal[0] / length, normal[1] / length, normal[2] / length};
}

bool HasArea(const WorldTriangle& triangle) { return CrossOfEdges(triangle).squaredLength > 0; }

} // namespace brix
