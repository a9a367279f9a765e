// Spreading inside one plate: from the voxels reached so far to all open voxels that are joined to them beside each other.
//
//   open  ##..##      reached  ......      gives  ....##
//         #..###               ....#.             ...###       (6 x 3 of 16 x 16, # for open and for reached)
//         #..#..               ......             ...#..
#pragma once

#include "../model/VoxelPlate.h"

namespace brix {

/// Spreads along the rows to both sides.
///
/// Towards larger x a sum does it: the lowest reached bit of a run of open bits starts a carry, which clears all further open
/// bits of the run up to the next reached one, and from there again, to the end of the run (x to the right):
///
///     open  .#####.##     reached  ..#..#...     sum  .#..#.###     open and not sum, or reached  ..####...
///
/// Towards smaller x the reach doubles: before the step by 4, `way` holds the voxels that have four open ones above them.
constexpr VoxelPlate<bool> SpreadInRows(const VoxelPlate<bool>& reached, const VoxelPlate<bool>& open)
{
    constexpr VoxelPlate<bool> nothing{};
    const VoxelPlate<bool> sum = MakePlate([&](std::size_t y) { return open.rows[y] + reached.rows[y]; });
    VoxelPlate<bool> spread = AndNot(open, sum) | reached;
    VoxelPlate<bool> way = open;
    for (int distance = 1; distance < 16; distance *= 2) {
        spread = spread | (way & TowardsUpperX(spread, nothing, distance));
        way = way & TowardsUpperX(way, nothing, distance);
    }
    return spread;
}

/// Four rows of a plate: bit 16 r + x is the voxel x of row r. Spreads from row to row, towards larger or smaller y.
constexpr std::uint64_t SpreadToUpperRows(std::uint64_t reached, std::uint64_t open)
{
    reached |= open & reached << 16;
    return reached | (open & open << 16 & reached << 32);
}
constexpr std::uint64_t SpreadToLowerRows(std::uint64_t reached, std::uint64_t open)
{
    reached |= open & reached >> 16;
    return reached | (open & open >> 16 & reached >> 32);
}

/// Spreads along the columns to both sides.
constexpr VoxelPlate<bool> SpreadInColumns(const VoxelPlate<bool>& reachedPlate, const VoxelPlate<bool>& openPlate)
{
    const auto open = std::bit_cast<std::array<std::uint64_t, 4>>(openPlate.rows);
    auto reached = std::bit_cast<std::array<std::uint64_t, 4>>(reachedPlate.rows);
    reached[0] = SpreadToUpperRows(reached[0], open[0]);
    for (std::size_t i = 1; i < 4; ++i) reached[i] = SpreadToUpperRows(reached[i] | (open[i] & reached[i - 1] >> 48), open[i]);
    reached[3] = SpreadToLowerRows(reached[3], open[3]);
    for (std::size_t i = 3; i-- > 0;) reached[i] = SpreadToLowerRows(reached[i] | (open[i] & reached[i + 1] << 48), open[i]);
    return {std::bit_cast<std::array<std::uint16_t, 16>>(reached)};
}

/// All open voxels that are joined to the reached ones by open voxels, each beside the next. What is reached must be open.
constexpr VoxelPlate<bool> SpreadInPlate(VoxelPlate<bool> reached, const VoxelPlate<bool>& open)
{
    constexpr VoxelPlate<bool> nothing{};
    for (;;) {
        reached = SpreadInColumns(SpreadInRows(reached, open), open); // no column can spread any more
        const VoxelPlate<bool> beside = TowardsLowerX(reached, nothing) | TowardsUpperX(reached, nothing);
        if (IsEmpty(AndNot(open & beside, reached))) return reached;
    }
}

} // namespace brix
