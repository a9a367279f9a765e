// Scenes that are long or scattered: much space, little in it.
#pragma once

#include "triangles/Triangle.h"

#include <cstdint>
#include <vector>

namespace brix::benchmarks {

/// A tube along x of 64 sides and radius 1.
std::vector<WorldTriangle> MakePole(double length);

/// A strip 8 m wide that runs diagonally over gentle hills: two triangles every 5 m. `length` in metres along x and y.
std::vector<WorldTriangle> MakeRoad(double length);

/// Closed boxes of 20 x 10 x 8 m, scattered over a square with sides of `length` metres.
std::vector<WorldTriangle> MakeSite(std::int64_t boxes, double length);

} // namespace brix::benchmarks
