// Spreading inside one plate: from the voxels reached so far to all open voxels that are joined to them beside each other.
//
//   open  ##..##      reached  ......      gives  ....##
//         #..###               ....#.             ...###       (6 x 3 of 16 x 16, # for open and for reached)
//         #..#..               ......             ...#..
//
// A plate is worked on as four words of four rows: bit 16 r + x of word w is the voxel (x, 4 w + r).
#pragma once

#include "../model/VoxelPlate.h"

namespace brix {

/// Four rows of a plate, or what was reached in them.
using FourRows = std::uint64_t;

inline constexpr FourRows LowestColumn = 0x0001'0001'0001'0001;
inline constexpr FourRows HighestColumn = LowestColumn << 15;

/// Spreads along the rows, to both sides. Shifts by 1, 2, 4 and 8 cross runs of any length, where each half of a distance has been
/// found open: after the shift by 2, `way` holds the voxels whose four neighbours towards the reached side can all be crossed.
///
///     open     .######.     reached  ..#.....     by 1  ..##....     by 2  ..####..     by 4  ..#####.
constexpr FourRows SpreadAlongRows(FourRows reached, FourRows open)
{
    FourRows way = open & ~LowestColumn; // no bit crosses from a row into the next
    for (int distance = 1; distance < 16; distance *= 2) {
        reached |= way & reached << distance;
        way &= way << distance;
    }
    way = open & ~HighestColumn;
    for (int distance = 1; distance < 16; distance *= 2) {
        reached |= way & reached >> distance;
        way &= way >> distance;
    }
    return reached;
}

/// Spreads from row to row within the four, towards larger y or smaller y.
constexpr FourRows SpreadUpwards(FourRows reached, FourRows open)
{
    reached |= open & reached << 16;
    return reached | (open & (open << 16) & reached << 32);
}
constexpr FourRows SpreadDownwards(FourRows reached, FourRows open)
{
    reached |= open & reached >> 16;
    return reached | (open & (open >> 16) & reached >> 32);
}

/// All open voxels that are joined to the reached ones by open voxels, each beside the next. What is reached must be open.
constexpr VoxelPlate<bool> SpreadInPlate(const VoxelPlate<bool>& reachedPlate, const VoxelPlate<bool>& openPlate)
{
    using Words = std::array<FourRows, 4>;
    const auto open = std::bit_cast<Words>(openPlate.rows);
    auto reached = std::bit_cast<Words>(reachedPlate.rows);
    for (;;) {
        const Words before = reached;
        for (std::size_t i = 0; i < 4; ++i) reached[i] = SpreadAlongRows(reached[i], open[i]);
        for (std::size_t i = 0; i < 4; ++i) {
            if (i > 0) reached[i] |= open[i] & reached[i - 1] >> 48;
            reached[i] = SpreadUpwards(reached[i], open[i]);
        }
        for (std::size_t i = 4; i-- > 0;) {
            if (i < 3) reached[i] |= open[i] & reached[i + 1] << 48;
            reached[i] = SpreadDownwards(reached[i], open[i]);
        }
        if (reached == open || reached == before) return {std::bit_cast<std::array<std::uint16_t, 16>>(reached)};
    }
}

} // namespace brix
