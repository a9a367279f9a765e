// brix voxelize: triangles to voxels, and the voxels as triangles again.
#include "Commands.h"

#include "../OutputFiles.h"
#include "../TriangleFiles.h"

namespace brix::tools {
namespace {

struct Options
{
    GridOptions grid;
    std::vector<std::string> outputs;
    bool ascii = false;
};

std::vector<LevelFile> ParseOutputs(const Options& options)
{
    MakeAxes(options.grid); // a wrong finest level is told first
    std::vector<LevelFile> outputs;
    for (const std::string& text : options.outputs) {
        outputs.push_back(ParseLevelFile(text, options.grid.lod));
        RequireOutputFolder(outputs.back().filePath);
    }
    return outputs;
}

void RunVoxelize(const Options& options)
{
    const std::vector<LevelFile> outputs = ParseOutputs(options);
    const VoxelModel<bool> model = VoxelizeInput(options.grid);
    for (const LevelFile& output : outputs) SaveVoxels(model, output, options.ascii, options.grid.swapYZ);
}

} // namespace

void AddVoxelizeCommand(CLI::App& program)
{
    const auto options = std::make_shared<Options>();
    CLI::App& command =
        *program.add_subcommand("voxelize", "Fill the voxels that an STL file's triangles touch; write them as STL");
    AddGridOptions(command, options->grid);
    command
        .add_option("-o,--output", options->outputs,
                    "STL file for the voxels of the finest level, or of the given one; repeatable")
        ->required()
        ->allow_extra_args(false)
        ->type_name("[LEVEL=]OUT.stl");
    command.add_flag("--ascii", options->ascii, "Write ASCII (six digits) instead of binary STL");
    command.footer("Voxels at level L are LENGTH / 2^L wide; all are LENGTH / 2^(vertical level) high.\n"
                   "Examples, for a file in metres:\n"
                   "  brix voxelize house.stl -o voxels.stl --width 1.6            voxels of 0.1 m (level 4)\n"
                   "  brix voxelize house.stl -o fine.stl -o 2=coarse.stl -w 1.6   two levels of one model\n"
                   "  brix voxelize house.stl -o flat.stl -w 0.8 --lod 3 --vertical-lod 2   0.1 m wide, 0.2 m high");
    command.callback([options] { RunVoxelize(*options); });
}

} // namespace brix::tools
