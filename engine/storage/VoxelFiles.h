// The voxels of a level as an array in a file that others read: scripts, viewers of volumes, solvers. For a file that Brix reads
// again see SavedModel.h.
#pragma once

#include "../model/VoxelModel.h"

#include <iosfwd>
#include <string>

namespace brix {

enum class NpyVoxels
{
    Bytes,     // one for each voxel, 1 where it is filled
    PackedBits // eight voxels along x in each byte, the first in its highest bit; rows end with bits that are 0
};

/// Writes all voxels of the extents at a level in NumPy's format (NPY, version 1.0): an array of bytes with the shape (z, y, x),
/// so that numpy.load(file)[z, y, x] is a voxel, counted from the lower corner of the extents. Packed, its shape is
/// (z, y, (x + 7) / 8), and numpy.unpackbits(numpy.load(file), axis=2, count=x) is that array.
/// The frame is not in the file. Throws std::domain_error when the model does not hold the level, std::runtime_error when the
/// stream fails. Cost: the voxels of the extents. Memory: a byte for each voxel of 64 layers.
void SaveNpy(const VoxelModel<bool>& model, std::int64_t lod, std::ostream& stream, NpyVoxels voxels = NpyVoxels::Bytes);

/// The same bytes in the format NRRD (nearly raw raster data, version 4), uncompressed, which viewers of volumes read: the header
/// holds the frame too, with the origin at the centre of the first voxel, in world units.
void SaveNrrd(const VoxelModel<bool>& model, std::int64_t lod, std::ostream& stream);

/// The two parts of such a file, for a host that compresses the second one by itself. `encoding` is "raw", or what the format
/// calls the host's compression, as "gzip". Errors as above.
[[nodiscard]] std::string NrrdHeader(const VoxelModel<bool>& model, std::int64_t lod, const std::string& encoding);
void WriteVoxelBytes(const VoxelModel<bool>& model, std::int64_t lod, std::ostream& stream);

} // namespace brix
