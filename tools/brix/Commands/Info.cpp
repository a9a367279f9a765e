// brix info: what a file of triangles holds.
#include "Commands.h"

#include "../FilePlan.h"
#include "../Report.h"
#include "../TriangleFiles.h"

#include <algorithm>

namespace brix::tools {
namespace {

void PrintBounds(const std::vector<WorldTriangle>& triangles)
{
    std::array<double, 3> lower = triangles.front().front();
    std::array<double, 3> upper = lower;
    for (const WorldTriangle& triangle : triangles)
        for (const auto& corner : triangle)
            for (std::size_t axis = 0; axis < 3; ++axis) {
                lower[axis] = std::min(lower[axis], corner[axis]);
                upper[axis] = std::max(upper[axis], corner[axis]);
            }
    tools::PrintBounds(lower, upper);
}

void PrintSceneInfo(const std::filesystem::path& input, bool swapYZ)
{
    PrintStep("file", input.string(), {{"file", input.string()}});
    const std::vector<WorldTriangle> triangles = ReadScene(input, swapYZ).triangles;
    const auto flat = std::count_if(triangles.begin(), triangles.end(), [](const auto& triangle) { return !HasArea(triangle); });
    PrintStep("triangles", std::to_string(triangles.size()), {{"triangles", triangles.size()}});
    PrintStep("flat", std::to_string(flat) + " triangles without area", {{"triangles", flat}});
    if (!triangles.empty()) PrintBounds(triangles);
}

void PrintInfo(const std::filesystem::path& input, bool swapYZ)
{
    FilePlan files;
    files.Read(input);
    if (SceneFormatOf(input) != nullptr) return PrintSceneInfo(input, swapYZ);
    const auto [triangles, report] = LoadStl(input, {.swapYZ = swapYZ});
    PrintStep("file", input.string(), {{"file", input.string()}});
    PrintStep("format", FormatName(report.variant), {{"format", FormatName(report.variant)}});
    PrintStep("bytes", std::to_string(report.bytes), {{"bytes", report.bytes}});
    PrintStep("triangles", std::to_string(triangles.size()), {{"triangles", triangles.size()}});
    PrintStep("flat", std::to_string(report.degenerate) + " triangles without area", {{"triangles", report.degenerate}});
    if (report.notFinite > 0)
        PrintStep("invalid", std::to_string(report.notFinite) + " triangles with infinite or undefined coordinates",
                  {{"triangles", report.notFinite}});
    if (report.findingCount > 0)
        PrintStep("findings", std::to_string(report.findingCount) + ", which brix check lists", {{"count", report.findingCount}});
    if (!triangles.empty()) PrintBounds(triangles);
}

} // namespace

void AddInfoCommand(CLI::App& program)
{
    struct Options
    {
        std::filesystem::path input;
        bool swapYZ = false;
    };
    const auto options = std::make_shared<Options>();
    CLI::App& command = *program.add_subcommand("info", "Tell what a file of triangles holds: format, triangles, bounds");
    command
        .add_option("input", options->input, "File of triangles: STL, or OBJ, PLY, glTF, 3MF; - reads STL from standard input")
        ->required()
        ->type_name("IN.stl");
    command.add_flag("--swap-yz", options->swapYZ, "The file has its Y axis up; bounds are told with Z up");
    command.footer("Lengths are in the units of the file, which STL, OBJ and PLY do not name.\nExample: brix info building.stl");
    command.callback([options] { PrintInfo(options->input, options->swapYZ); });
}

} // namespace brix::tools
