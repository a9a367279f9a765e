// brix run: an STL file through any number of operations.
#include "Commands.h"

#include "../Pipeline.h"
#include "../Report.h"
#include "../VoxelFiles.h"

#include <brix/triangles/Voxelization.h>

#include <utility>

namespace brix::tools {
namespace {

struct Options
{
    GridOptions grid;
    std::vector<std::string> steps;
    bool ascii = false;
};

void RunPipeline(const Options& options)
{
    RequireGrid(options.grid);
    Plan plan{.files = {}, .lod = options.grid.lod};
    plan.files.Read(options.grid.input);
    const std::vector<Action> actions = ReadSteps(options.steps, plan);
    Rehearse(actions, options.grid);

    Input input = ReadInput(options.grid);
    const Extents extents = DetectTriangleExtents(input.axes, input.triangles);
    for (const SlicePosition& slice : plan.slices) FindSlice(extents, slice);
    std::vector<PlannedStep> steps;
    for (const Action& action : actions) steps.push_back(action.step);
    Pipeline pipeline{options.grid, options.ascii, Voxelize(std::move(input), options.grid, steps)};
    RunSteps(pipeline, actions);
}

} // namespace

void AddRunCommand(CLI::App& program)
{
    const auto options = std::make_shared<Options>();
    CLI::App& command = *program.add_subcommand("run", "Take the voxels of an STL file through operations, one after the other");
    AddGridOptions(command, options->grid);
    AddVoxelFileOptions(command, options->grid);
    command.add_flag("--ascii", options->ascii, "Write ASCII (six digits) instead of binary STL");
    command.add_option("steps", options->steps, "Operations, after --")->required()->type_name("-- STEP...");
    command.footer(
        "Steps (numbers of voxels count at the finest level, points are in the units of the file):\n" + DescribeSteps() +
        "Example, rooms grown by half a metre and drawn:\n"
        "  brix run house.stl --voxel 0.1 -- fill-enclosed expand-horizontally 5 write grown.stl slice z=1.2 plan.png");
    command.callback([options] { RunPipeline(*options); });
}

} // namespace brix::tools
