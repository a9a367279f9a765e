// Voxels as files of other formats than STL, by the file's ending: arrays, boxes, and the engine's own saved models.
#pragma once

#include "OutputFiles.h"

namespace brix::tools {

/// Whether voxels are written to such a file in one of these formats: .brix, .npy, .nrrd or .json.
bool IsVoxelFile(const std::filesystem::path& filePath);

/// Writes the voxels of a level, or with .brix all levels, and tells what was written. Throws std::runtime_error when the file
/// would be larger than the limit or cannot be written.
void SaveVoxelFile(const VoxelModel<bool>& model, const LevelFile& output, const GridOptions& options);

/// The model of a .brix file. Throws std::runtime_error when it cannot be read or is none.
VoxelModel<bool> LoadVoxelFile(const std::filesystem::path& filePath);

} // namespace brix::tools
