// Where a shell is not tight: the usual reason why a cavity is not filled (FillOperations.h).
#pragma once

#include "../model/VoxelModel.h"

#include <optional>
#include <vector>

namespace brix {

/// A place on a way where it is narrowest. Its width is that of the largest cube, in voxels, that can go this way: its centre, in
/// world coordinates, is where such a cube stands before one that is a voxel wider can go no farther.
struct Gap
{
    std::array<double, 3> centre;
    std::int64_t width;
};

/// The widest gap that is told.
inline constexpr std::int64_t MostGapWidth = 32;

/// A way out of a model through empty voxels of its finest level.
struct Leak
{
    std::vector<Triple> voxels;                // from the point to a face of the extents, each shares a face with the next
    std::vector<std::array<double, 3>> points; // the same as a polyline: centres of voxels in world coordinates, ends and turns
    std::optional<Gap> gap;                    // nothing when a cube of MostGapWidth voxels goes the whole way
};

/// A shortest way, by the number of its voxels, from a point to a face of the extents, or nothing when the point is enclosed.
/// `pointCoords` in base units.
///
/// A cube goes the way when it can move, by one voxel at a time, through empty voxels (outside the extents all are empty), and
/// always with some voxel of the way inside, from where it holds the way's first voxel to where it holds the last one. The gap is
/// as wide as the largest cube up to which all go: closing it takes a SealedFill of this width, if no other way is wider.
///
/// Throws std::domain_error when the point lies outside the extents, then when it lies in a filled voxel. Cost: 6 KB for each
/// stack of 16 x 16 x 64 voxels that is nearer than the way is long, and its plates times the steps that the search takes through
/// them (breadth-first search: Moore, "The shortest path through a maze", 1959); for the gap, some passes over the surroundings
/// of the way for each voxel of its width.
[[nodiscard]] std::optional<Leak> FindLeak(const VoxelModel<bool>& voxelModel, const std::array<std::int64_t, 3>& pointCoords);

/// The voxel at which FindLeak starts. Throws as it does.
[[nodiscard]] std::array<std::int64_t, 3> LeakStart(const VoxelModel<bool>& voxelModel,
                                                    const std::array<std::int64_t, 3>& pointCoords);

} // namespace brix
