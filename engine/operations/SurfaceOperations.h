// Growth and shrinkage (morphological dilation and erosion) of the filled regions of a model. Inputs are never changed; a guide
// may have another finest level than the model and any extents of the same frame.
#pragma once

#include "Guide.h"

namespace brix {

/// Grows every filled region along one axis at the finest level: `lowerOffset` voxels towards smaller indices, then `upperOffset`
/// voxels towards larger ones.
/// `guideVoxels`        a barrier: never filled, never crossed; what the model held there stays
/// `autoAdjustExtents`  true: nothing is clipped, and the result is bounded by its filled voxels; false: the extents stay
/// Throws std::domain_error when an offset is negative, the lower one first; what the Extents constructor throws when the growth
/// would leave the index space; when the guide's frame differs. Cost: stored layers times the logarithm of the larger offset or,
/// where there is a guide, times the sum of both.
[[nodiscard]] VoxelModel<bool> ExpandAlongX(const VoxelModel<bool>& voxelModel, int lowerOffset, int upperOffset,
                                            Guide guideVoxels = {}, bool autoAdjustExtents = true);
[[nodiscard]] VoxelModel<bool> ExpandAlongY(const VoxelModel<bool>& voxelModel, int lowerOffset, int upperOffset,
                                            Guide guideVoxels = {}, bool autoAdjustExtents = true);
[[nodiscard]] VoxelModel<bool> ExpandAlongZ(const VoxelModel<bool>& voxelModel, int lowerOffset, int upperOffset,
                                            Guide guideVoxels = {}, bool autoAdjustExtents = true);

/// Shrinks every filled region along one axis at the finest level: `lowerOffset` voxels off its lower faces, then `upperOffset`
/// voxels off its upper ones. Outside the extents counts as empty.
/// `guideVoxels`        count as filled neighbours, also one voxel outside the extents, and are never in the result by themselves
/// `autoAdjustExtents`  true: the result is bounded by its filled voxels; false: the extents stay
/// Errors and cost as for growth.
[[nodiscard]] VoxelModel<bool> ReduceAlongX(const VoxelModel<bool>& voxelModel, int lowerOffset, int upperOffset,
                                            Guide guideVoxels = {}, bool autoAdjustExtents = true);
[[nodiscard]] VoxelModel<bool> ReduceAlongY(const VoxelModel<bool>& voxelModel, int lowerOffset, int upperOffset,
                                            Guide guideVoxels = {}, bool autoAdjustExtents = true);
[[nodiscard]] VoxelModel<bool> ReduceAlongZ(const VoxelModel<bool>& voxelModel, int lowerOffset, int upperOffset,
                                            Guide guideVoxels = {}, bool autoAdjustExtents = true);

/// Fills each empty voxel, or empties each filled one, that has at least `horizontalAdjacency` filled (empty) neighbours among
/// the four beside it and at least `verticalAdjacency` among the two below and above it. Numbers beyond 4 and 2 are never
/// reached. Guide and extents as above. Throws std::domain_error when a number is negative, the horizontal one first, or both are
/// zero.
[[nodiscard]] VoxelModel<bool> ExpandByOneVoxel(const VoxelModel<bool>& voxelModel, int horizontalAdjacency,
                                                int verticalAdjacency, Guide guideVoxels = {}, bool autoAdjustExtents = true);
[[nodiscard]] VoxelModel<bool> ReduceByOneVoxel(const VoxelModel<bool>& voxelModel, int horizontalAdjacency,
                                                int verticalAdjacency, Guide guideVoxels = {}, bool autoAdjustExtents = true);

/// Grows or shrinks every filled region in its own layer, as if by a disc of `diameterOffset` voxels: a sequence of passes that
/// ask for one or two of the four neighbours, whose outline is an octagon.
/// Guide and extents as above. Throws std::domain_error when the diameter is less than 1. Cost: stored layers times the diameter.
[[nodiscard]] VoxelModel<bool> ExpandHorizontally(const VoxelModel<bool>& voxelModel, int diameterOffset, Guide guideVoxels = {},
                                                  bool autoAdjustExtents = true);
[[nodiscard]] VoxelModel<bool> ReduceHorizontally(const VoxelModel<bool>& voxelModel, int diameterOffset, Guide guideVoxels = {},
                                                  bool autoAdjustExtents = true);

} // namespace brix
