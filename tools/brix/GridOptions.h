// The options that describe a grid of voxels, and the frame that they stand for. A voxel's size may be given in three ways; what
// --voxels means depends on how large the model is, so the frame is known once the input has been read.
#pragma once

#include <brix/frame/Axes.h>
#include <brix/triangles/Triangle.h>

#include <array>
#include <filesystem>
#include <optional>
#include <vector>

namespace CLI {
class App;
}

namespace brix::tools {

struct GridOptions
{
    std::filesystem::path input;
    std::optional<double> width;             // of a voxel at level 0, in the file's units; one of these three is given:
    std::optional<double> voxel;             // edge of a voxel at the finest level
    std::optional<std::int64_t> voxels;      // of the finest level, along the model's longest side
    std::int64_t lod = 4;                    // finest level
    std::optional<std::int64_t> verticalLOD; // the finest level when not given
    std::array<double, 3> origin{0, 0, 0};
    double rotation = 0;               // degrees
    std::optional<double> memoryLimit; // GB (10^9 bytes); a part of the machine's memory when not given
    double outputLimit = 2;            // GB
    bool swapYZ = false;
    bool gzip = false;     // .nrrd files that are written
    bool packBits = false; // .npy files that are written
};

/// Adds the input file and the grid's options to a command. `options` must live as long as the command.
void AddGridOptions(CLI::App& command, GridOptions& options);

/// Throws UsageError unless exactly one option gives the voxels' size, it is a positive number, and levels lie within 0..5.
void RequireGrid(const GridOptions& options);

/// The frame for a model of these triangles. Throws UsageError as RequireGrid does; std::runtime_error when --voxels is given and
/// the model is a point.
Axes MakeAxes(const GridOptions& options, const std::vector<WorldTriangle>& triangles);

/// The length of the longest side of the box of the triangles along the grid's axes, in world units.
double LongestSide(const GridOptions& options, const std::vector<WorldTriangle>& triangles);

} // namespace brix::tools
