// The voxels of a level as an array in a file that others read: scripts, viewers of volumes, solvers. For a file that Brix reads
// again see SavedModel.h.
#pragma once

#include "../model/VoxelModel.h"

#include <iosfwd>

namespace brix {

/// Writes all voxels of the extents at a level in NumPy's format (NPY, version 1.0): an array of bytes, 1 where one is filled,
/// with the shape (z, y, x), so that numpy.load(file)[z, y, x] is a voxel, counted from the lower corner of the extents.
/// The frame is not in the file. Throws std::domain_error when the model does not hold the level, std::runtime_error when the
/// stream fails. Cost: the bytes of the array. Memory: those of 64 of its layers.
void SaveNpy(const VoxelModel<bool>& model, std::int64_t lod, std::ostream& stream);

/// The same in the format NRRD (nearly raw raster data, version 4), uncompressed, which viewers of volumes read: the header holds
/// the frame too, with the origin at the centre of the first voxel, in world units.
void SaveNrrd(const VoxelModel<bool>& model, std::int64_t lod, std::ostream& stream);

} // namespace brix
