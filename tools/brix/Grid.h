// The common first half of commands that work on voxels: the triangles of a file, their frame, and a model filled with them.
#pragma once

#include "GridOptions.h"

#include <brix/model/VoxelModel.h>

namespace brix::tools {

/// What a model is made of.
struct Input
{
    std::vector<WorldTriangle> triangles;
    Axes axes;
};

/// A step that follows on the model: its name in `brix run`, and the whole numbers among its arguments.
struct PlannedStep
{
    std::string name;
    std::vector<std::int64_t> numbers{};
};

/// Reads the input file and tells what it holds and which voxels it gets; warns when these are strangely large or small. Throws
/// as RequireGrid, and std::runtime_error when the file cannot be read or holds nothing to fill.
Input ReadInput(const GridOptions& options);

/// Reads another file for a frame that is known.
Input ReadInput(const std::filesystem::path& filePath, const Axes& axes, const GridOptions& options);

/// Fills a model with the triangles and tells every level's count of filled voxels. Throws std::runtime_error when that, or one
/// of the steps that follow, would take more memory than the limit, and what the engine throws.
VoxelModel<bool> Voxelize(Input input, const GridOptions& options, const std::vector<PlannedStep>& steps = {});

} // namespace brix::tools
