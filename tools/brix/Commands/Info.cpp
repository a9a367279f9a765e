// brix info: what an STL file holds.
#include "Commands.h"

#include "../FilePlan.h"
#include "../Report.h"
#include "../TriangleFiles.h"

#include <algorithm>

namespace brix::tools {
namespace {

std::size_t CountDegenerate(const std::vector<WorldTriangle>& triangles)
{
    return static_cast<std::size_t>(std::count_if(triangles.begin(), triangles.end(), [](const WorldTriangle& triangle) {
        return WorldTriangleNormal(triangle) == std::array<double, 3>{0, 0, 0};
    }));
}

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
    const std::array size{upper[0] - lower[0], upper[1] - lower[1], upper[2] - lower[2]};
    PrintStep("lower", Text(lower, " "), {{"point", lower}});
    PrintStep("upper", Text(upper, " "), {{"point", upper}});
    PrintStep("size", Text(size, " x "), {{"size", size}});
}

void PrintInfo(const std::filesystem::path& input, bool swapYZ)
{
    FilePlan files;
    files.Read(input);
    const StlContent content = LoadStl(input, swapYZ);
    const std::vector<WorldTriangle>& triangles = content.triangles;
    const std::string format = content.isAscii ? "ASCII STL" : "binary STL";
    const std::size_t flat = CountDegenerate(triangles);
    const std::size_t notFinite = CountNotFinite(triangles);
    PrintStep("file", input.string(), {{"file", input.string()}});
    PrintStep("format", format, {{"format", format}});
    PrintStep("bytes", std::to_string(content.bytes), {{"bytes", content.bytes}});
    PrintStep("triangles", std::to_string(triangles.size()), {{"triangles", triangles.size()}});
    PrintStep("flat", std::to_string(flat) + " triangles without area", {{"triangles", flat}});
    if (notFinite > 0)
        PrintStep("invalid", std::to_string(notFinite) + " triangles with infinite or undefined coordinates",
                  {{"triangles", notFinite}});
    if (!triangles.empty() && notFinite == 0) PrintBounds(triangles);
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
    CLI::App& command = *program.add_subcommand("info", "Tell what an STL file holds: format, triangles, bounds");
    command.add_option("input", options->input, "STL file, ASCII or binary; - reads standard input")
        ->required()
        ->type_name("IN.stl");
    command.add_flag("--swap-yz", options->swapYZ, "The file has its Y axis up; bounds are told with Z up");
    command.footer("Lengths are in the units of the file, which STL does not name.\nExample: brix info building.stl");
    command.callback([options] { PrintInfo(options->input, options->swapYZ); });
}

} // namespace brix::tools
