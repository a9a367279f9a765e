// Axes of the lattice, and componentwise arithmetic of index and coordinate triples (x, y, z).
#pragma once

#include "Compiler.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>

namespace brix {

/// Voxel indices, chunk indices or base-unit coordinates along x, y and z.
using Triple = std::array<std::int64_t, 3>;

enum class Axis : std::size_t
{
    X,
    Y,
    Z
};
enum class Side
{
    Lower,
    Upper
};

inline constexpr std::array<Axis, 3> AllAxes{Axis::X, Axis::Y, Axis::Z};

/// floor(value / divisor) for every value; the divisor must be positive.
constexpr std::int64_t FloorDivide(std::int64_t value, std::int64_t divisor)
{
    return value / divisor - (value % divisor < 0 ? 1 : 0);
}

/// floor(value / 2^bits).
constexpr std::int64_t FloorShift(std::int64_t value, std::int64_t bits) { return value >> bits; }

constexpr Triple Plus(const Triple& a, const Triple& b) { return {a[0] + b[0], a[1] + b[1], a[2] + b[2]}; }
constexpr Triple Minus(const Triple& a, const Triple& b) { return {a[0] - b[0], a[1] - b[1], a[2] - b[2]}; }

constexpr Triple Lowest(const Triple& a, const Triple& b)
{
    return {std::min(a[0], b[0]), std::min(a[1], b[1]), std::min(a[2], b[2])};
}

constexpr Triple Highest(const Triple& a, const Triple& b)
{
    return {std::max(a[0], b[0]), std::max(a[1], b[1]), std::max(a[2], b[2])};
}

/// Whether lower <= value <= upper in every component.
constexpr bool IsWithin(const Triple& value, const Triple& lower, const Triple& upper)
{
    return lower[0] <= value[0] && value[0] <= upper[0] && lower[1] <= value[1] && value[1] <= upper[1] && lower[2] <= value[2] &&
           value[2] <= upper[2];
}

/// Calls visit(triple) for every triple of the box lower..upper (inclusive): z outermost, then y, then x.
template <class Visit> void ForEachTriple(const Triple& lower, const Triple& upper, Visit visit)
{
    for (std::int64_t z = lower[2]; z <= upper[2]; ++z) {
        for (std::int64_t y = lower[1]; y <= upper[1]; ++y) {
            for (std::int64_t x = lower[0]; x <= upper[0]; ++x) visit(Triple{x, y, z});
        }
    }
}

} // namespace brix
