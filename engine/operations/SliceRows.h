// One plane of a model's voxels as rows of bits.
#pragma once

#include "../model/VoxelModel.h"

namespace brix {

/// The voxels of the plane x, y or z = `sliceIndex` at a level, 0..FinestLOD(): every voxel of the model's extents that lies in
/// the plane, filled or not, in rows of ascending indices.
///
///     function             a row for every    bits along a row
///     RowsAtSliceXIndex    z                  y
///     RowsAtSliceYIndex    z                  x
///     RowsAtSliceZIndex    y                  x
///
/// `sliceIndex`       voxel index at the level; the rows of a plane beside the extents are all false
/// `reverseRowOrder`  the row of the highest index comes first
/// `reverseEachRow`   each row starts with its highest index
/// Throws std::domain_error when the level is negative or beyond the model's finest one. Cost: voxels of the plane.
[[nodiscard]] std::vector<std::vector<bool>> RowsAtSliceXIndex(const VoxelModel<bool>& model, std::int64_t sliceIndex,
                                                               std::int64_t lod, bool reverseRowOrder, bool reverseEachRow);
[[nodiscard]] std::vector<std::vector<bool>> RowsAtSliceYIndex(const VoxelModel<bool>& model, std::int64_t sliceIndex,
                                                               std::int64_t lod, bool reverseRowOrder, bool reverseEachRow);
[[nodiscard]] std::vector<std::vector<bool>> RowsAtSliceZIndex(const VoxelModel<bool>& model, std::int64_t sliceIndex,
                                                               std::int64_t lod, bool reverseRowOrder, bool reverseEachRow);

} // namespace brix
