// A level's voxels as a folder of pictures, one for each layer: what printers that harden resin, and programs for images of
// slices, take.
//
//   layers/layer-0000.png    the lowest layer of the extents
//   layers/layer-0001.png
//
// Grey pictures of eight bits, 255 where a voxel is filled, 0 where none is, seen from above: x to the right, y up.
#pragma once

#include "OutputFiles.h"

namespace brix::tools {

/// Whether a name stands for such a folder: it ends with a slash.
bool IsFolderName(const std::filesystem::path& filePath);

/// Throws std::runtime_error when no such folder can be made there: the program has nothing to draw with; there is a folder with
/// files in it, or a file; its own folder is missing or may not be written to.
void RequireStackFolder(const std::filesystem::path& folder);

/// Writes the folder as a whole: it stands under another name until the last picture is done. Returns the bytes of all pictures.
/// Throws as RequireStackFolder, and std::runtime_error when there are more than 100,000 layers, a layer is wider than 32,000
/// voxels, or a file cannot be written.
std::int64_t SaveSliceStack(const VoxelModel<bool>& model, const LevelFile& output);

} // namespace brix::tools
