// The records of a binary STL file, as its readers and its writer see them:
//
//   0-79 header    80-83 triangle count    then per triangle
//   0-11 normal X, Y, Z    12-23 corner 1    24-35 corner 2    36-47 corner 3    48-49 attribute
//
// Numbers are 32 bits long and little-endian.
#pragma once

#include "Triangle.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <limits>

namespace brix {

inline constexpr std::size_t stlHeaderSize = 80;
inline constexpr std::size_t stlCountSize = 4;
inline constexpr std::size_t stlRecordSize = 50;

/// `value` as its bytes stand in the file, the least significant one first, and back.
constexpr std::uint32_t LittleEndian(std::uint32_t value)
{
    if constexpr (std::endian::native == std::endian::little) return value;
    return value << 24 | (value & 0xff00) << 8 | (value >> 8 & 0xff00) | value >> 24;
}

inline std::uint32_t LoadWord(const char* from)
{
    std::uint32_t word = 0;
    std::memcpy(&word, from, sizeof word);
    return LittleEndian(word);
}

inline double LoadFloat(const char* from) { return static_cast<double>(std::bit_cast<float>(LoadWord(from))); }

// Going there and back gives the same point: the minus sign changes its place with the axis.
inline std::array<double, 3> FromFileAxes(const std::array<double, 3>& p, bool swapYZ)
{
    return {p[0], swapYZ ? -p[2] : p[1], swapYZ ? p[1] : p[2]};
}
inline std::array<double, 3> ToFileAxes(const std::array<double, 3>& p, bool swapYZ)
{
    return {p[0], swapYZ ? p[2] : p[1], swapYZ ? -p[1] : p[2]};
}

/// The triangle of the record that begins at `from`.
inline WorldTriangle ReadRecord(const char* from, bool swapYZ)
{
    constexpr std::size_t cornersOffset = 12;
    WorldTriangle triangle{};
    from += cornersOffset;
    for (std::array<double, 3>& corner : triangle) {
        corner = FromFileAxes({LoadFloat(from), LoadFloat(from + 4), LoadFloat(from + 8)}, swapYZ);
        from += 12;
    }
    return triangle;
}

} // namespace brix
