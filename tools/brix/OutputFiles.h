// What the commands write, as the command line names it: levels of a model to STL files, and slices to be drawn.
#pragma once

#include "Grid.h"
#include "SlicePicture.h"

#include <optional>
#include <string>

namespace brix::tools {

/// A place along an axis of the grid, in the units of the file.
struct SlicePosition
{
    Axis axis;
    double coordinate;
};

/// Reads "z=0.7". Throws UsageError for anything else.
SlicePosition ParseSlicePosition(const std::string& text);

/// The slice at a place, in voxels of the extents' level. Throws std::runtime_error when the place lies outside the extents.
Slice FindSlice(const Extents& extents, const SlicePosition& position);

/// A level and the file for its voxels.
struct LevelFile
{
    std::int64_t lod;
    std::filesystem::path filePath;
};

/// Reads "voxels.stl", which stands for the finest level, or "2=coarse.stl". Throws UsageError for a level that there is not.
LevelFile ParseLevelFile(const std::string& text, std::int64_t finestLOD);

/// Writes the voxels of a level and tells what was written: as boxes in STL, or in the format of another ending (VoxelFiles.h);
/// or the rectangles of the surface alone, as STL. Throws std::runtime_error when that would take more memory or a larger file
/// than the limits.
void SaveVoxels(const VoxelModel<bool>& model, const LevelFile& output, const GridOptions& options, bool ascii);
void SaveSurface(const VoxelModel<bool>& model, const LevelFile& output, const GridOptions& options, bool ascii);

/// Writes the voxels of a level as one closed surface, as STL: blocky, or smoothed by a number of steps. Throws as those above.
void SaveMesh(const VoxelModel<bool>& model, const LevelFile& output, std::optional<int> smoothingSteps,
              const GridOptions& options, bool ascii);

} // namespace brix::tools
