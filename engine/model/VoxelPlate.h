// A plate: 16 x 16 voxels of one height, one bit each, and the small algebra that all operations are written in.
//
//   rows[y], bit x          x to the right, y downwards, bit 0 leftmost:
//                           rows[0]  #...............      = 0x0001
//                           rows[1]  .#.............#      = 0x8002
#pragma once

#include "../frame/Compiler.h"
#include "StackLattice.h"

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <tuple>
#include <type_traits>

namespace brix {

template <class Value> struct VoxelPlate;

template <> struct VoxelPlate<bool>
{
    static constexpr std::uint16_t FullRow = 0xFFFF;

    /// Row y, bit x: 1 where the voxel is filled.
    std::array<std::uint16_t, PlateWidth> rows{};

    /// Whether the voxel at (x, y), each 0..15, is filled.
    constexpr bool Value(const std::array<std::int64_t, 2>& xy) const
    {
        return (rows[static_cast<std::size_t>(xy[1])] >> xy[0] & 1) != 0;
    }

    /// Row y and column x, each 0..15; bit i of a column is the voxel of row i.
    constexpr std::uint16_t Row(std::size_t y) const { return rows[y]; }
    constexpr std::uint16_t Column(std::size_t x) const
    {
        unsigned column = 0;
        for (std::size_t y = 0; y < rows.size(); ++y) column |= (static_cast<unsigned>(rows[y]) >> x & 1U) << y;
        return static_cast<std::uint16_t>(column);
    }

    // As memory, where that can be: two plates that differ then mostly do so in the first two words that are looked at.
    friend constexpr bool operator==(const VoxelPlate& a, const VoxelPlate& b)
    {
        if (std::is_constant_evaluated()) return a.rows == b.rows;
        return std::memcmp(a.rows.data(), b.rows.data(), sizeof a.rows) == 0;
    }
};

/// The plate whose row y is rowRule(y), for y = 0..15. Loops of this form become vector instructions.
template <class RowRule> constexpr VoxelPlate<bool> MakePlate(RowRule rowRule)
{
    VoxelPlate<bool> plate;
    for (std::size_t y = 0; y < plate.rows.size(); ++y) plate.rows[y] = static_cast<std::uint16_t>(rowRule(y));
    return plate;
}

constexpr VoxelPlate<bool> FilledPlate()
{
    return MakePlate([](std::size_t) { return VoxelPlate<bool>::FullRow; });
}

#if defined(__GNUC__)
/// The plate that rule(out, rows...) makes of all rows of the plates at once, given as vectors of sixteen 16-bit numbers. Left to
/// itself, the compiler does not find the vectors in loops over rows once they stand inside large functions.
template <class Rule, class... Plates> VoxelPlate<bool> MapVectors(const Rule& rule, const Plates&... plates)
{
    using Rows [[gnu::vector_size(32)]] = std::uint16_t;
    const auto load = [](Rows& rows, const VoxelPlate<bool>& plate) { std::memcpy(&rows, plate.rows.data(), sizeof rows); };
    std::array<Rows, sizeof...(Plates)> inputs;
    std::size_t count = 0;
    (load(inputs[count++], plates), ...);

    Rows out;
    std::apply([&](const auto&... rows) { rule(out, rows...); }, inputs);
    VoxelPlate<bool> result;
    std::memcpy(result.rows.data(), &out, sizeof out);
    return result;
}
#endif

/// The plate that rule(out, rows...) makes of the same row of every plate. The rule is written for single rows and for vectors
/// alike.
template <class Rule, class... Plates> constexpr VoxelPlate<bool> MapRows(const Rule& rule, const Plates&... plates)
{
#if defined(__GNUC__)
    if (!std::is_constant_evaluated()) return MapVectors(rule, plates...);
#endif
    VoxelPlate<bool> result;
    for (std::size_t y = 0; y < result.rows.size(); ++y) {
        unsigned row = 0;
        rule(row, static_cast<unsigned>(plates.rows[y])...);
        result.rows[y] = static_cast<std::uint16_t>(row);
    }
    return result;
}

constexpr VoxelPlate<bool> operator|(const VoxelPlate<bool>& a, const VoxelPlate<bool>& b)
{
    return MapRows([](auto& out, const auto& x, const auto& y) { out = x | y; }, a, b);
}

constexpr VoxelPlate<bool> operator&(const VoxelPlate<bool>& a, const VoxelPlate<bool>& b)
{
    return MapRows([](auto& out, const auto& x, const auto& y) { out = x & y; }, a, b);
}

constexpr VoxelPlate<bool> operator^(const VoxelPlate<bool>& a, const VoxelPlate<bool>& b)
{
    return MapRows([](auto& out, const auto& x, const auto& y) { out = x ^ y; }, a, b);
}

constexpr VoxelPlate<bool> operator~(const VoxelPlate<bool>& a)
{
    return MapRows([](auto& out, const auto& x) { out = ~x; }, a);
}

/// What is filled in `a` and not in `b`.
constexpr VoxelPlate<bool> AndNot(const VoxelPlate<bool>& a, const VoxelPlate<bool>& b)
{
    return MapRows([](auto& out, const auto& x, const auto& y) { out = x & ~y; }, a, b);
}

constexpr bool IsEmpty(const VoxelPlate<bool>& plate) { return plate == VoxelPlate<bool>{}; }
constexpr bool IsFull(const VoxelPlate<bool>& plate) { return plate == FilledPlate(); }

/// The number of filled voxels, 0..256. Four rows are counted at once.
constexpr std::int64_t Count(const VoxelPlate<bool>& plate)
{
    int count = 0;
    for (std::size_t y = 0; y < plate.rows.size(); y += 4) {
        std::array<std::uint16_t, 4> rows{plate.rows[y], plate.rows[y + 1], plate.rows[y + 2], plate.rows[y + 3]};
        count += std::popcount(std::bit_cast<std::uint64_t>(rows));
    }
    return count;
}

/// The bits lower..upper of a row, both inclusive; none when upper < lower. Bounds may lie outside 0..15.
constexpr std::uint16_t RowBits(std::int64_t lower, std::int64_t upper)
{
    if (lower < 0) lower = 0;
    if (upper > 15) upper = 15;
    if (upper < lower) return 0;
    return static_cast<std::uint16_t>((0xFFFFU << lower) & (0xFFFFU >> (15 - upper)));
}

/// The plate that is filled in the box lower..upper of (x, y), both inclusive. Bounds may lie outside 0..15.
constexpr VoxelPlate<bool> Box(const std::array<std::int64_t, 2>& lower, const std::array<std::int64_t, 2>& upper)
{
    const std::uint16_t bits = RowBits(lower[0], upper[0]);
    return MakePlate([&](std::size_t y) {
        const auto row = static_cast<std::int64_t>(y);
        return lower[1] <= row && row <= upper[1] ? bits : std::uint16_t{0};
    });
}

/// What each voxel of `here` sees `distance` (1..16) voxels towards larger x. `beyond` is the plate that faces `here` there:
///
///     here  .##.   beyond  #...   gives  ##.#      (distance 1, x to the right, drawn 4 wide)
constexpr VoxelPlate<bool> TowardsUpperX(const VoxelPlate<bool>& here, const VoxelPlate<bool>& beyond, int distance = 1)
{
    // In two steps: what a vector's lane of 16 bits becomes when it is shifted by 16 is not defined.
    return MapRows([distance](auto& out, const auto& x, const auto& y) { out = x >> 1 >> (distance - 1) | y << (16 - distance); },
                   here, beyond);
}

/// The same towards smaller x:   beyond  ...#   here  .##.   gives  #.##
constexpr VoxelPlate<bool> TowardsLowerX(const VoxelPlate<bool>& here, const VoxelPlate<bool>& beyond, int distance = 1)
{
    return MapRows([distance](auto& out, const auto& x, const auto& y) { out = x << 1 << (distance - 1) | y >> (16 - distance); },
                   here, beyond);
}

#if defined(__GNUC__)
/// RowsAcross for the processors whose first byte is the lowest. Words of four rows are chosen first; what is left are shifts by
/// rows.
inline VoxelPlate<bool> RowsAcrossVectors(const VoxelPlate<bool>& lower, const VoxelPlate<bool>& upper, int distance)
{
    using Words [[gnu::vector_size(32)]] = std::uint64_t;
    Words low;
    Words high;
    std::memcpy(&low, lower.rows.data(), sizeof low);
    std::memcpy(&high, upper.rows.data(), sizeof high);

    const int first = 16 - distance;
    Words words = high; // the words from the one that holds row `first`
    Words next = high;  // the words from the one above it
    switch (first / 4) {
    case 0:
        words = low;
        next = __builtin_shufflevector(low, high, 1, 2, 3, 4);
        break;
    case 1:
        words = __builtin_shufflevector(low, high, 1, 2, 3, 4);
        next = __builtin_shufflevector(low, high, 2, 3, 4, 5);
        break;
    case 2:
        words = __builtin_shufflevector(low, high, 2, 3, 4, 5);
        next = __builtin_shufflevector(low, high, 3, 4, 5, 6);
        break;
    case 3:
        words = __builtin_shufflevector(low, high, 3, 4, 5, 6);
        break;
    default: // row 16: `upper` itself
        break;
    }
    const int bits = 16 * (first % 4);
    words = words >> bits | next << 1 << (63 - bits);
    VoxelPlate<bool> result;
    std::memcpy(result.rows.data(), &words, sizeof words);
    return result;
}
#endif

/// The rows 16 - distance .. 31 - distance of two plates, one above the other: `lower` has the rows 0..15, `upper` 16..31. The
/// distance is 0..16.
constexpr VoxelPlate<bool> RowsAcross(const VoxelPlate<bool>& lower, const VoxelPlate<bool>& upper, int distance)
{
#if defined(__GNUC__)
    if (!std::is_constant_evaluated() && distance == 1) { // two instructions
        return MapVectors(
            [](auto& out, const auto& low, const auto& high) {
                out = __builtin_shufflevector(low, high, 15, 16, 17, 18, 19, 20, 21, 22, 23, 24, 25, 26, 27, 28, 29, 30);
            },
            lower, upper);
    }
    if (!std::is_constant_evaluated() && distance == 15) {
        return MapVectors(
            [](auto& out, const auto& low, const auto& high) {
                out = __builtin_shufflevector(low, high, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);
            },
            lower, upper);
    }
    if (!std::is_constant_evaluated() && std::endian::native == std::endian::little)
        return RowsAcrossVectors(lower, upper, distance);
#endif
    const auto first = static_cast<std::size_t>(16 - distance);
    return MakePlate([&](std::size_t y) { return first + y < 16 ? lower.rows[first + y] : upper.rows[first + y - 16]; });
}

/// The same along y: row y becomes row y + distance or y - distance, taken from `beyond` where that leaves the plate.
constexpr VoxelPlate<bool> TowardsUpperY(const VoxelPlate<bool>& here, const VoxelPlate<bool>& beyond, int distance = 1)
{
    return RowsAcross(here, beyond, 16 - distance);
}

constexpr VoxelPlate<bool> TowardsLowerY(const VoxelPlate<bool>& here, const VoxelPlate<bool>& beyond, int distance = 1)
{
    return RowsAcross(beyond, here, distance);
}

/// The voxels that are filled in at least `count` of four plates; all for a count of 0 or less, none beyond 4.
constexpr VoxelPlate<bool> AtLeast(std::int64_t count, const VoxelPlate<bool>& a, const VoxelPlate<bool>& b,
                                   const VoxelPlate<bool>& c, const VoxelPlate<bool>& d)
{
    switch (count) {
    case 1:
        return a | b | c | d;
    case 2:
        return (a & b) | (c & d) | ((a | b) & (c | d));
    case 3:
        return (a & b & (c | d)) | (c & d & (a | b));
    case 4:
        return a & b & c & d;
    default:
        return count < 1 ? FilledPlate() : VoxelPlate<bool>{};
    }
}

/// The voxels that are filled in at least `count` of two plates.
constexpr VoxelPlate<bool> AtLeast(std::int64_t count, const VoxelPlate<bool>& a, const VoxelPlate<bool>& b)
{
    switch (count) {
    case 1:
        return a | b;
    case 2:
        return a & b;
    default:
        return count < 1 ? FilledPlate() : VoxelPlate<bool>{};
    }
}

/// A plate at half its resolution along x and y: eight rows of eight bits, the lowest row in the lowest byte, where bit x of row
/// y is filled when any of the four voxels (2x..2x+1, 2y..2y+1) is. It becomes a quarter of a plate.
using QuarterPlate = std::uint64_t;

constexpr QuarterPlate JoinPairs(const VoxelPlate<bool>& plate)
{
    // A row of pairs   b0 b1 b2 b3 .. b14 b15   becomes   b0|b1 b2|b3 .. b14|b15   in its lower eight bits.
    QuarterPlate joined = 0;
    for (std::size_t y = 8; y-- > 0;) {
        auto pairs = static_cast<std::uint16_t>(plate.rows[2 * y] | plate.rows[2 * y + 1]);
        pairs = static_cast<std::uint16_t>((pairs | pairs >> 1) & 0x5555);
        pairs = static_cast<std::uint16_t>((pairs | pairs >> 1) & 0x3333);
        pairs = static_cast<std::uint16_t>((pairs | pairs >> 2) & 0x0F0F);
        joined = joined << 8 | ((pairs | pairs >> 4) & 0x00FF);
    }
    return joined;
}

/// The same for two plates at once.
inline std::array<QuarterPlate, 2> JoinPairs(const VoxelPlate<bool>& first, const VoxelPlate<bool>& second)
{
#if defined(__GNUC__)
    if constexpr (std::endian::native == std::endian::little) {
        using RowPairs [[gnu::vector_size(32)]] = std::uint32_t;
        using Bytes [[gnu::vector_size(32)]] = std::uint8_t;

        // Rows 2y and 2y + 1 of a plate are the lower and the upper half of number y. Both are joined for the two plates, which
        // gives a row of 32 bits; then every pair of its bits is joined, and the results move together in three steps:
        //     a0 b0 a1 b1 ..   becomes   a0|b0 - a1|b1 - ..  (a bit, a gap)
        //     then two bits and two gaps, four and four, eight and eight
        RowPairs left;
        RowPairs right;
        std::memcpy(&left, first.rows.data(), sizeof left);
        std::memcpy(&right, second.rows.data(), sizeof right);
        RowPairs row = ((left | left >> 16) & 0x0000FFFF) | ((right | right << 16) & 0xFFFF0000);
        row = (row | row >> 1) & 0x55555555;
        row = (row | row >> 1) & 0x33333333;
        row = (row | row >> 2) & 0x0F0F0F0F;
        row = row | row >> 4;
        Bytes bytes;
        std::memcpy(&bytes, &row, sizeof row);
        bytes = __builtin_shufflevector(bytes, bytes, 0, 4, 8, 12, 16, 20, 24, 28, 2, 6, 10, 14, 18, 22, 26, 30, 0, 4, 8, 12, 16,
                                        20, 24, 28, 2, 6, 10, 14, 18, 22, 26, 30);
        std::array<QuarterPlate, 2> joined;
        std::memcpy(joined.data(), &bytes, sizeof joined);
        return joined;
    }
#endif
    return {JoinPairs(first), JoinPairs(second)};
}

/// The plate of four quarters: at the lower and the upper half along x of the lower half along y, then of the upper half.
constexpr VoxelPlate<bool> FromQuarters(const std::array<QuarterPlate, 4>& quarters)
{
#if defined(__GNUC__)
    if (!std::is_constant_evaluated() && std::endian::native == std::endian::little) {
        using Bytes [[gnu::vector_size(32)]] = std::uint8_t;
        Bytes bytes;
        std::memcpy(&bytes, quarters.data(), sizeof bytes);
        bytes = __builtin_shufflevector(bytes, bytes, 0, 8, 1, 9, 2, 10, 3, 11, 4, 12, 5, 13, 6, 14, 7, 15, 16, 24, 17, 25, 18,
                                        26, 19, 27, 20, 28, 21, 29, 22, 30, 23, 31);
        VoxelPlate<bool> plate;
        std::memcpy(plate.rows.data(), &bytes, sizeof bytes);
        return plate;
    }
#endif
    return MakePlate([&](std::size_t y) {
        const auto rowOf = [&](QuarterPlate quarter) { return static_cast<std::uint32_t>(quarter >> 8 * (y % 8) & 0xFF); };
        const std::size_t lowerX = y < 8 ? 0 : 2;
        return static_cast<std::uint16_t>(rowOf(quarters[lowerX]) | rowOf(quarters[lowerX + 1]) << 8);
    });
}

/// The plate of the next coarser level that four plates of one height make: each becomes a quarter of it, at the lower or upper
/// half along x and along y.
constexpr VoxelPlate<bool> HalfResolution(const VoxelPlate<bool>& lowerXlowerY, const VoxelPlate<bool>& upperXlowerY,
                                          const VoxelPlate<bool>& lowerXupperY, const VoxelPlate<bool>& upperXupperY)
{
    return FromQuarters({JoinPairs(lowerXlowerY), JoinPairs(upperXlowerY), JoinPairs(lowerXupperY), JoinPairs(upperXupperY)});
}

/// The quarter of a plate (its columns from 8 * upperX on, its rows from 8 * upperY on) with every voxel doubled along x and y.
constexpr VoxelPlate<bool> DoubleResolution(const VoxelPlate<bool>& plate, bool upperX, bool upperY)
{
    // Eight bits   b0 b1 .. b7   become   b0 b0 b1 b1 .. b7 b7.
    std::array<std::uint16_t, 8> doubled{};
    for (std::size_t y = 0; y < 8; ++y) {
        unsigned bits = (static_cast<unsigned>(plate.rows[y + (upperY ? 8U : 0U)]) >> (upperX ? 8 : 0)) & 0x00FFU;
        bits = (bits | bits << 4) & 0x0F0FU;
        bits = (bits | bits << 2) & 0x3333U;
        bits = (bits | bits << 1) & 0x5555U;
        doubled[y] = static_cast<std::uint16_t>(bits | bits << 1);
    }
    return MakePlate([&](std::size_t y) { return doubled[y / 2]; });
}

using Plate = VoxelPlate<bool>;

} // namespace brix
