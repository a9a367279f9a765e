// Voxels from and to the memory of hosts: a byte for each, as images and arrays of other libraries have them.
//
//   bytes[x - lower.x + strides.y * (y - lower.y) + strides.z * (z - lower.z)]
//
// is the byte of voxel (x, y, z) in a box: 0 for an empty one; 1 is written for a filled one, and anything but 0 is read as that.
#pragma once

#include "VoxelModel.h"

#include <cstddef>
#include <span>

namespace brix {

/// Bytes from a voxel to its neighbours along y and z; those along x follow each other. Any values, negative ones among them.
struct ByteStrides
{
    std::ptrdiff_t y, z;
};

/// Strides without gaps, and the number of bytes that a box then takes.
[[nodiscard]] ByteStrides DenseStrides(const Extents& box);
[[nodiscard]] std::size_t DenseSize(const Extents& box);

/// Writes whether voxels are filled: a byte for each voxel of a box, whose level is one that the model holds. The box may reach
/// beyond the model's extents; voxels outside of them are 0.
/// `bytes`  the box's lower corner, in memory with room for the box
/// Throws std::domain_error, the first that applies: a frame other than the model's; a level that the model does not hold; for a
/// span, a size other than DenseSize(box).
/// Cost: the bytes, little more than filling them takes; empty and full regions cost no less.
void CopyVoxels(const VoxelModel<bool>& model, const Extents& box, std::uint8_t* bytes, const ByteStrides& strides);
void CopyVoxels(const VoxelModel<bool>& model, const Extents& box, std::span<std::uint8_t> bytes);

/// The way back: fills the voxels of a box for which the bytes are not 0, and empties the others. The other levels of all chunks
/// that the box touches follow from the box's level, as PropagateLevel makes them. References into the model end.
/// Throws std::domain_error as CopyVoxels, and for a box that is not inside the model's extents, before anything is changed; then
/// std::bad_alloc when memory runs out, after which the box may be written in part.
/// Cost: the bytes, and the levels of the chunks touched.
void WriteVoxels(VoxelModel<bool>& model, const Extents& box, const std::uint8_t* bytes, const ByteStrides& strides);
void WriteVoxels(VoxelModel<bool>& model, const Extents& box, std::span<const std::uint8_t> bytes);

/// A model on the extents that holds the levels 0..finestLOD, made of a byte for each voxel of the extents at their level.
/// Throws std::domain_error when the finest level is negative or not less than 6, or the extents' level is beyond it; for a span,
/// a size other than DenseSize(extents). Cost as above.
[[nodiscard]] VoxelModel<bool> ModelFromVoxels(const Extents& extents, const std::uint8_t* bytes, const ByteStrides& strides,
                                               std::int64_t finestLOD);
[[nodiscard]] VoxelModel<bool> ModelFromVoxels(const Extents& extents, std::span<const std::uint8_t> bytes,
                                               std::int64_t finestLOD);

} // namespace brix
