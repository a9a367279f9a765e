// Voxels as files of other formats than STL, by the file's ending: arrays, boxes, and the engine's own saved models.
#pragma once

#include "OutputFiles.h"

namespace brix::tools {

/// Whether voxels are written to such a file in one of these formats: .brix, .npy, .nrrd, .vdb, .vox, .json, or pictures in a
/// folder, whose name ends with a slash.
bool IsVoxelFile(const std::filesystem::path& filePath);

/// Adds --gzip and --pack-bits to a command that writes voxels.
void AddVoxelFileOptions(CLI::App& command, GridOptions& options);

/// What to give as an output, for the help of commands.
inline constexpr const char* VoxelFileEndings = ".brix, .npy, .nrrd, .vdb, .vox, .json, or FOLDER/ for pictures";

/// Throws std::runtime_error when this program lacks the library that a format needs, and as RequireStackFolder does.
void RequireVoxelFormat(const std::filesystem::path& filePath);

/// Writes the voxels of a level, or with .brix all levels, and tells what was written. Throws std::runtime_error when that would
/// take more memory than the limit, the file would be larger than its limit or cannot be written.
void SaveVoxelFile(const VoxelModel<bool>& model, const LevelFile& output, const GridOptions& options);

/// The model of a .brix file. Throws std::runtime_error when it cannot be read or is none.
VoxelModel<bool> LoadVoxelFile(const std::filesystem::path& filePath);

} // namespace brix::tools
