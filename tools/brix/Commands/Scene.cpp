// brix scene: generated geometry to try things on.
#include "Commands.h"

#include "../FilePlan.h"
#include "../Report.h"
#include "../TriangleFiles.h"

#include <scenes/Building.h>
#include <scenes/City.h>

namespace brix::tools {
namespace {

struct OutputOptions
{
    std::filesystem::path output;
    bool ascii = false;
};

void RequireOutput(const OutputOptions& options)
{
    FilePlan files;
    files.Write(options.output);
}

void AddOutputOptions(CLI::App& command, OutputOptions& options)
{
    command.add_option("-o,--output", options.output, "STL file to write")->required()->type_name("OUT.stl");
    command.add_flag("--ascii", options.ascii, "Write ASCII (six digits) instead of binary STL");
}

void SaveScene(const std::vector<WorldTriangle>& triangles, const OutputOptions& options)
{
    SaveTriangles(options.output, triangles, options.ascii, false);
    PrintStep("scene", options.output.string() + ": " + std::to_string(triangles.size()) + " triangles, in metres",
              {{"file", options.output.string()}, {"triangles", triangles.size()}, {"unit", std::string("m")}});
}

void AddBuildingCommand(CLI::App& scene)
{
    struct Options
    {
        scenes::BuildingOptions building;
        OutputOptions output;
        bool isEmpty = false;
    };
    const auto options = std::make_shared<Options>();
    CLI::App& command = *scene.add_subcommand("building", "A furnished house with stairs, in metres, Z up");
    AddOutputOptions(command, options->output);
    command.add_option("--storeys", options->building.storeys, "Number of storeys, each 3 m high")
        ->capture_default_str()
        ->check(CLI::Range(1, 1000));
    command.add_flag("--empty", options->isEmpty, "Without furniture");
    command.callback([options] {
        RequireOutput(options->output);
        options->building.furnished = !options->isEmpty;
        SaveScene(MakeBuilding(options->building), options->output);
    });
}

void AddCityCommand(CLI::App& scene)
{
    struct Options
    {
        scenes::CityOptions city;
        OutputOptions output;
    };
    const auto options = std::make_shared<Options>();
    CLI::App& command =
        *scene.add_subcommand("city", "Turned buildings on hilly ground, in metres, Z up; the same for each seed");
    AddOutputOptions(command, options->output);
    command.add_option("--triangles", options->city.triangles, "Approximate number of triangles")
        ->capture_default_str()
        ->check(CLI::Range(std::int64_t{1}, std::int64_t{20'000'000}));
    command.add_option("--seed", options->city.seed, "Start of the random numbers")->capture_default_str();
    command.callback([options] {
        RequireOutput(options->output);
        SaveScene(MakeCity(options->city), options->output);
    });
}

} // namespace

void AddSceneCommand(CLI::App& program)
{
    CLI::App& scene = *program.add_subcommand("scene", "Write generated geometry: a building or a city");
    scene.require_subcommand(1);
    AddBuildingCommand(scene);
    AddCityCommand(scene);
    scene.footer("Examples:\n  brix scene building -o building.stl\n  brix scene city --triangles 1000000 --seed 7 -o city.stl");
}

} // namespace brix::tools
