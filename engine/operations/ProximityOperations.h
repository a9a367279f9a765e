// Searches for the filled voxel that is nearest to a point (nearest neighbour), at the model's finest level. Points are in base
// units; any numbers are accepted. Each search returns an iterator of the model, which is not valid when nothing was found.
#pragma once

#include "../model/VoxelIterator.h"

namespace brix {

/// Searches the line of voxels along one axis that goes through the point's voxel.
/// `lowerOffset`, `upperOffset`  how many voxels below and above the point's voxel are searched; it is searched as well
/// The filled voxel whose centre is nearest along the axis is found, the lower one of two; the point's own voxel before all
/// others. A point that lies outside the extents along this axis searches as far into them as the offsets reach; along another
/// axis, nothing is found. Throws std::domain_error when an offset is negative, the lower one first. Cost: stacks along the line.
[[nodiscard]] ConstVoxelIterator NearestFilledAlongX(const VoxelModel<bool>& voxelModel, const std::array<std::int64_t, 3>& point,
                                                     long long lowerOffset, long long upperOffset);
[[nodiscard]] ConstVoxelIterator NearestFilledAlongY(const VoxelModel<bool>& voxelModel, const std::array<std::int64_t, 3>& point,
                                                     long long lowerOffset, long long upperOffset);
[[nodiscard]] ConstVoxelIterator NearestFilledAlongZ(const VoxelModel<bool>& voxelModel, const std::array<std::int64_t, 3>& point,
                                                     long long lowerOffset, long long upperOffset);

/// Searches the horizontal layer of the point's voxel inside the disc-like octagon that ExpandHorizontally makes of that voxel.
/// `diameterOffset`  approximate diameter of the disc in voxels; it may reach beyond the extents and beyond the index space
/// The filled voxel whose centre is nearest is found, the first by y and then by x of several; the point's own voxel before all
/// others. For a point outside the extents nothing is found.
/// Throws std::domain_error when the diameter is less than 1. Cost: stacks in the disc, at most 16 times.
[[nodiscard]] ConstVoxelIterator NearestFilledHorizontally(const VoxelModel<bool>& voxelModel,
                                                           const std::array<std::int64_t, 3>& point, long long diameterOffset);

} // namespace brix
