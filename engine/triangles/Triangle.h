// Triangles as they pass through the engine: in world coordinates (the host's doubles) and in base units (the lattice).
#pragma once

#include "../frame/Compiler.h"

#include <array>
#include <cstdint>
#include <vector>

namespace brix {

/// Three corners, each x, y, z in world units.
using WorldTriangle = std::array<std::array<double, 3>, 3>;

/// Three corners, each x, y, z in base units.
using LatticeTriangle = std::array<std::array<std::int64_t, 3>, 3>;

/// The unit normal of a world triangle by the right-hand rule: (B - A) x (C - A), divided by its length.
/// A triangle without area, or one whose area is not a number, has the normal (0, 0, 0).
[[nodiscard]] std::array<double, 3> WorldTriangleNormal(const WorldTriangle& triangle);

/// Whether that normal is not (0, 0, 0).
[[nodiscard]] bool HasArea(const WorldTriangle& triangle);

} // namespace brix
