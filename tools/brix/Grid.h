// The common first half of commands that work on voxels: options that describe a grid, and triangles of a file filled into it.
#pragma once

#include <brix/model/VoxelModel.h>
#include <brix/triangles/Triangle.h>

#include <CLI/CLI.hpp>

#include <optional>

namespace brix::tools {

struct GridOptions
{
    std::filesystem::path input;
    double width = 0;                        // of a voxel at level 0, in the file's units
    std::int64_t lod = 4;                    // finest level
    std::optional<std::int64_t> verticalLOD; // the finest level when not given
    std::array<double, 3> origin{0, 0, 0};
    double rotation = 0;    // degrees
    double memoryLimit = 4; // GB (10^9 bytes)
    bool swapYZ = false;
};

/// Adds the input file and the grid's options to a command. `options` must live as long as the command.
void AddGridOptions(CLI::App& command, GridOptions& options);

/// The frame that the options describe. Throws UsageError for a width that is not a positive number or for levels outside 0..5.
Axes MakeAxes(const GridOptions& options);

/// Reads the input file, prints what it holds, fills a model with it and prints every level's count of filled voxels.
/// Throws UsageError as MakeAxes does; std::runtime_error when the file cannot be read or holds nothing to fill, or when the grid
/// would take more memory than the limit even while it is empty; and what the engine throws.
VoxelModel<bool> VoxelizeInput(const GridOptions& options);

} // namespace brix::tools
