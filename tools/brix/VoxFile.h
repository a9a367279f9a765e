// Voxels in MagicaVoxel's format, .vox.
#pragma once

#include <brix/model/VoxelModel.h>

#include <iosfwd>

namespace brix::tools {

/// Writes the filled voxels of a level: models of at most 256 voxels along each axis, which a scene graph (nTRN, nGRP, nSHP)
/// puts in their places, so that they open as one; centred in x and y, standing on z = 0, in the first colour. Empty parts are
/// left out. Throws std::runtime_error when there are more voxels than a file of 2 GB has room for. Memory: 17 MB beside it.
void WriteVox(const VoxelModel<bool>& model, std::int64_t lod, std::ostream& stream);

inline constexpr double BytesToWriteVox = 17e6;

} // namespace brix::tools
