// Filling of empty space by flooding it (flood fill): from a voxel to the six voxels that share a face with it, through empty
// voxels of the finest level, never beyond the extents. The results have the extents and levels of the model; the model is not
// changed. Cost: stored layers, with a plate of 256 voxels at a time, and again wherever the flood comes back to a layer from
// another side.
#pragma once

#include "../model/VoxelModel.h"

namespace brix {

/// The model with the empty region that holds a point filled. `pointCoords` in base units.
/// A point in a filled voxel or outside the extents is no error: the result is a copy of the model.
[[nodiscard]] VoxelModel<bool> FillFromPoint(const VoxelModel<bool>& voxelModel, const std::array<std::int64_t, 3>& pointCoords);

/// The model with all empty regions filled that reach a face of the extents.
[[nodiscard]] VoxelModel<bool> FillExposedRegions(const VoxelModel<bool>& voxelModel);

/// The model with all other empty regions, its cavities, filled.
[[nodiscard]] VoxelModel<bool> FillEnclosedRegions(const VoxelModel<bool>& voxelModel);

/// The same for a shell with holes, of which those up to `gap` voxels wide count as closed: everything is filled but what a cube
/// of `gap` + 1 voxels can cover that comes from outside the extents, moving through empty voxels by one voxel at a time. A gap
/// is as wide as the largest cube that passes; FindLeak (Leaks.h) tells it.
///
///     ##########       ##########
///     #        #       ##########
///     #                ########           gap 2: the opening, two voxels high, lets no cube of three in
///     #                ########
///     #        #       ##########
///     ##########       ##########
///
/// It is a closure: the result holds the model, grows with the model and with the gap, and is its own result. A gap of 0 is
/// FillEnclosedRegions. What the cube can cover outside keeps its surface voxel for voxel; grooves that are too narrow for it are
/// filled. It is what is left of space when the model is grown by the cube, flooded from outside, and the flood grown back by
/// the cube (morphological closing: Serra, "Image Analysis and Mathematical Morphology", 1982).
/// Throws std::domain_error when the gap is negative, and what the Extents constructor throws when extents that are `gap` voxels
/// longer at their lower sides leave the index space. Cost: for a gap of 1 two to four times that of FillEnclosedRegions; it
/// grows with the logarithm of the gap.
[[nodiscard]] VoxelModel<bool> SealedFill(const VoxelModel<bool>& voxelModel, int gap);

} // namespace brix
