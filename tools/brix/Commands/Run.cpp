// brix run: an STL file through any number of operations.
#include "Commands.h"

#include "../Pipeline.h"
#include "../Report.h"

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
    RequireSteps(options.steps);
    Pipeline pipeline{options.grid, options.ascii, VoxelizeInput(options.grid)};
    RunSteps(pipeline, options.steps);
}

} // namespace

void AddRunCommand(CLI::App& program)
{
    const auto options = std::make_shared<Options>();
    CLI::App& command = *program.add_subcommand("run", "Take the voxels of an STL file through operations, one after the other");
    AddGridOptions(command, options->grid);
    command.add_flag("--ascii", options->ascii, "Write ASCII (six digits) instead of binary STL");
    command.add_option("steps", options->steps, "Operations, after --")->required()->type_name("-- STEP...");
    command.footer("Steps (numbers of voxels count at the finest level, points are in the units of the file):\n" +
                   DescribeSteps() +
                   "Example, rooms grown by half a metre and drawn:\n"
                   "  brix run house.stl -w 1.6 -- fill-enclosed expand-horizontally 5 write grown.stl slice z=1.2 plan.png");
    command.callback([options] { RunPipeline(*options); });
}

} // namespace brix::tools
