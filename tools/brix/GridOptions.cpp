#include "GridOptions.h"

#include "Report.h"
#include "Text.h"

#include <brix/model/VoxelModel.h>

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace brix::tools {
namespace {

void RequirePositive(const char* what, double length)
{
    if (!(length > 0) || !std::isfinite(length))
        throw UsageError(std::string("The ") + what + " must be a positive number. The value encountered was " + Text(length) +
                         ".");
}

void RequireSize(const GridOptions& options)
{
    if (options.width.has_value() + options.voxel.has_value() + options.voxels.has_value() != 1)
        throw UsageError(
            "The size of the voxels is told by one of --voxel (their edge), --voxels (how many along the longest side) "
            "and --width (at level 0).");
    if (options.width) RequirePositive("width of a voxel", *options.width);
    if (options.voxel) RequirePositive("edge of a voxel", *options.voxel);
    if (options.voxels) RequirePositive("number of voxels along the longest side", static_cast<double>(*options.voxels));
}

// The engine judges the levels, on one voxel; its sentences become those of the program.
void RequireLevels(const GridOptions& options)
{
    try {
        VoxelModel<bool>(Extents(Axes(1, {}, 0, 0), {}, {}, 0), options.lod);
        Axes(1, {}, 0, options.verticalLOD.value_or(options.lod));
    } catch (const std::domain_error& error) {
        throw UsageError(error.what());
    }
}

double EdgeFor(const GridOptions& options, const std::vector<WorldTriangle>& triangles)
{
    const double longest = LongestSide(options, triangles);
    if (!(longest > 0))
        throw std::runtime_error("The model is a point: give the size of its voxels by --voxel, not by --voxels.");
    return longest / static_cast<double>(*options.voxels);
}

} // namespace

void AddGridOptions(CLI::App& command, GridOptions& options)
{
    command.add_option("input", options.input, "File of triangles: STL, or OBJ, PLY, glTF, 3MF; - reads STL from standard input")
        ->required()
        ->type_name("IN.stl");
    const auto add = [&](const char* name, auto& value, const char* description) {
        return command.add_option(name, value, description)->group("Grid");
    };
    add("--voxel", options.voxel, "Edge of the finest voxels, in the units of the file")->type_name("LENGTH");
    add("--voxels", options.voxels, "Or: how many of the finest voxels along the model's longest side")->type_name("COUNT");
    add("-w,--width", options.width, "Or: width of the voxels at level 0, the coarsest")->type_name("LENGTH");
    add("--lod", options.lod, "Finest level of detail, 0..5; each halves the voxels' width")
        ->capture_default_str()
        ->type_name("LEVEL");
    add("--vertical-lod", options.verticalLOD, "Level whose voxel width is the height of all voxels [as --lod: they are cubes]")
        ->type_name("LEVEL");
    add("--origin", options.origin, "Point that a corner of the grid lies on [0 0 0]")->type_name("X Y Z");
    add("--rotation", options.rotation, "Turn of the grid about the Z axis, degrees counter-clockwise [0]")->type_name("DEGREES");
    command
        .add_flag("--swap-yz", options.swapYZ,
                  "The file has its Y axis up (of glTF it is known); STL files that are written get it too")
        ->group("Grid");
    add("--memory-limit", options.memoryLimit, "Refuse what needs more memory than this, in GB [half of the machine's]")
        ->type_name("GB");
    add("--output-limit", options.outputLimit, "Refuse to write larger STL files than this, in GB")
        ->capture_default_str()
        ->type_name("GB");
}

void RequireGrid(const GridOptions& options)
{
    RequireSize(options);
    for (const double number : {options.origin[0], options.origin[1], options.origin[2], options.rotation})
        if (!std::isfinite(number)) throw UsageError("The origin and the rotation of the grid must be finite numbers.");
    RequireLevels(options);
    if (options.memoryLimit) RequirePositive("memory limit", *options.memoryLimit);
    RequirePositive("output limit", options.outputLimit);
}

Axes MakeAxes(const GridOptions& options, const std::vector<WorldTriangle>& triangles)
{
    RequireGrid(options);
    const auto levels = static_cast<double>(std::int64_t{1} << options.lod);
    const double width = options.width ? *options.width : (options.voxel ? *options.voxel : EdgeFor(options, triangles)) * levels;
    return {width, options.origin, options.rotation, options.verticalLOD.value_or(options.lod)};
}

double LongestSide(const GridOptions& options, const std::vector<WorldTriangle>& triangles)
{
    const double angle = options.rotation * std::numbers::pi / 180;
    const double cosine = std::cos(angle);
    const double sine = std::sin(angle);
    std::array<double, 3> lower;
    std::array<double, 3> upper;
    lower.fill(std::numeric_limits<double>::infinity());
    upper.fill(-std::numeric_limits<double>::infinity());
    for (const WorldTriangle& triangle : triangles)
        for (const auto& [x, y, z] : triangle) {
            const std::array turned{cosine * x + sine * y, cosine * y - sine * x, z};
            for (std::size_t axis = 0; axis < 3; ++axis) {
                lower[axis] = std::min(lower[axis], turned[axis]);
                upper[axis] = std::max(upper[axis], turned[axis]);
            }
        }
    double longest = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) longest = std::max(longest, upper[axis] - lower[axis]);
    return longest;
}

} // namespace brix::tools
