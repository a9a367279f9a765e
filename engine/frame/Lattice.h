// The integer lattice that all geometry lives on. One base unit is the same length at every level of detail:
//
//   level of detail            0      1      2      3      4      5
//   base units per voxel   40000  20000  10000   5000   2500   1250     (x and y; z has the spacing of the vertical level)
#pragma once

#include "Triples.h"

namespace brix {

/// The number of levels of detail: 0 is the coarsest, LevelCount - 1 the finest.
inline constexpr std::int64_t LevelCount = 6;

/// No coordinate that is converted to base units lies farther from the origin than this. Sums, differences and midpoints of such
/// coordinates, and voxel indices made from them times a voxel's width, stay far inside 64 bits; a double holds it exactly. Valid
/// models lie within a millionth of it, so a coordinate that was held back here is refused by every Extents.
inline constexpr std::int64_t MaxCoordinate = std::int64_t{1} << 53;

/// Holds a level within 0..5. The lattice functions take any level, so that a level can be reported after it was used.
constexpr std::int64_t NearestLevel(std::int64_t voxelLOD) { return std::clamp<std::int64_t>(voxelLOD, 0, LevelCount - 1); }

/// Holds a coordinate within +-MaxCoordinate.
constexpr std::int64_t NearestCoordinate(std::int64_t coordinate)
{
    return std::clamp(coordinate, -MaxCoordinate, MaxCoordinate);
}

/// Base units per voxel edge at a level (a level outside 0..5 counts as the nearest one, here and below).
constexpr std::int64_t VoxelSpacing(std::int64_t voxelLOD)
{
    return std::int64_t{1250} << (LevelCount - 1 - NearestLevel(voxelLOD));
}

/// Horizontal voxel indices at a level lie in -MaxHorizontalExtent .. MaxHorizontalExtent - 1.
constexpr std::int64_t MaxHorizontalExtent(std::int64_t voxelLOD) { return std::int64_t{25000} << NearestLevel(voxelLOD); }

/// Vertical voxel indices lie in -MaxVerticalExtent .. MaxVerticalExtent - 1, for the vertical level of the frame.
constexpr std::int64_t MaxVerticalExtent(std::int64_t verticalLOD) { return std::int64_t{10000} << NearestLevel(verticalLOD); }

static_assert(VoxelSpacing(0) == 40000 && VoxelSpacing(5) == 1250 && VoxelSpacing(-9) == 40000 && VoxelSpacing(99) == 1250);
static_assert(MaxHorizontalExtent(5) == 800000 && MaxVerticalExtent(5) == 320000);

} // namespace brix
