// A plate and the plates of the six voxels' neighbours, and the rules of growth and shrinkage written in them.
//
//          upper y             above
//   lower x  here  upper x     here         A neighbour plate holds, at each voxel, what that voxel's neighbour is.
//          lower y             below
#pragma once

#include "../frame/Triples.h"
#include "../model/VoxelPlate.h"

namespace brix {

/// The stack or chunk `count` places away.
inline Triple NeighbourOf(Triple place, Axis axis, Side side, std::int64_t count = 1)
{
    place[static_cast<std::size_t>(axis)] += side == Side::Lower ? -count : count;
    return place;
}

/// What the voxels of a plate see beside them.
struct HorizontalNeighbours
{
    HorizontalNeighbours(const VoxelPlate<bool>& here, const VoxelPlate<bool>& beyondLowerX, const VoxelPlate<bool>& beyondUpperX,
                         const VoxelPlate<bool>& beyondLowerY, const VoxelPlate<bool>& beyondUpperY)
        : lowerX(TowardsLowerX(here, beyondLowerX)),
          upperX(TowardsUpperX(here, beyondUpperX)),
          lowerY(TowardsLowerY(here, beyondLowerY)),
          upperY(TowardsUpperY(here, beyondUpperY))
    {}

    /// The voxels of which at least `least` of the four neighbours are filled, or empty.
    VoxelPlate<bool> Filled(std::int64_t least) const { return AtLeast(least, lowerX, upperX, lowerY, upperY); }
    VoxelPlate<bool> Empty(std::int64_t least) const { return AtLeast(least, ~lowerX, ~upperX, ~lowerY, ~upperY); }

    VoxelPlate<bool> lowerX;
    VoxelPlate<bool> upperX;
    VoxelPlate<bool> lowerY;
    VoxelPlate<bool> upperY;
};

/// The least numbers of neighbours that make a voxel change: of the four beside it, and of the two below and above.
struct LeastNeighbours
{
    std::int64_t horizontal;
    std::int64_t vertical;
};

/// An empty voxel fills when enough of its neighbours are filled.
inline VoxelPlate<bool> GrowWhere(const VoxelPlate<bool>& here, const HorizontalNeighbours& beside, std::int64_t least)
{
    return here | beside.Filled(least);
}

inline VoxelPlate<bool> GrowWhere(const VoxelPlate<bool>& here, const HorizontalNeighbours& beside, const VoxelPlate<bool>& below,
                                  const VoxelPlate<bool>& above, const LeastNeighbours& least)
{
    return here | (beside.Filled(least.horizontal) & AtLeast(least.vertical, below, above));
}

/// A filled voxel empties when enough of its neighbours are empty.
inline VoxelPlate<bool> ShrinkWhere(const VoxelPlate<bool>& here, const HorizontalNeighbours& beside, std::int64_t least)
{
    return AndNot(here, beside.Empty(least));
}

inline VoxelPlate<bool> ShrinkWhere(const VoxelPlate<bool>& here, const HorizontalNeighbours& beside,
                                    const VoxelPlate<bool>& below, const VoxelPlate<bool>& above, const LeastNeighbours& least)
{
    return AndNot(here, beside.Empty(least.horizontal) & AtLeast(least.vertical, ~below, ~above));
}

} // namespace brix
