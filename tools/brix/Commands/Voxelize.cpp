// brix voxelize: triangles to voxels, and the voxels as triangles again.
#include "Commands.h"

#include "../FilePlan.h"
#include "../OutputFiles.h"
#include "../VoxelFiles.h"

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
    RequireGrid(options.grid); // a wrong finest level is told first
    FilePlan files;
    files.Read(options.grid.input);
    std::vector<LevelFile> outputs;
    for (const std::string& text : options.outputs) {
        outputs.push_back(ParseLevelFile(text, options.grid.lod));
        files.WriteVoxels(outputs.back().filePath);
    }
    return outputs;
}

void RunVoxelize(const Options& options)
{
    const std::vector<LevelFile> outputs = ParseOutputs(options);
    const VoxelModel<bool> model = Voxelize(ReadInput(options.grid), options.grid);
    for (const LevelFile& output : outputs) SaveVoxels(model, output, options.grid, options.ascii);
}

} // namespace

void AddVoxelizeCommand(CLI::App& program)
{
    const auto options = std::make_shared<Options>();
    CLI::App& command =
        *program.add_subcommand("voxelize", "Fill the voxels that an STL file's triangles touch; write them as STL");
    AddGridOptions(command, options->grid);
    command
        .add_option(
            "-o,--output", options->outputs,
            "STL file, or another that brix convert writes, for the voxels of the finest level, or of the given one; repeatable")
        ->required()
        ->allow_extra_args(false)
        ->type_name("[LEVEL=]OUT.stl");
    AddVoxelFileOptions(command, options->grid);
    command.add_flag("--ascii", options->ascii, "Write ASCII (six digits) instead of binary STL");
    command.footer("A level L has voxels of half the width of level L - 1; all have the width of the vertical level as height.\n"
                   "Examples, for a file in metres:\n"
                   "  brix voxelize house.stl --voxel 0.1 -o voxels.stl                  voxels of 0.1 m\n"
                   "  brix voxelize house.stl --voxels 200 -o voxels.stl                 200 along the house\n"
                   "  brix voxelize house.stl --voxel 0.1 -o fine.stl -o 2=coarse.stl    and voxels of 0.4 m\n"
                   "  brix voxelize house.stl --voxel 0.1 --vertical-lod 3 -o flat.stl   0.2 m high");
    command.callback([options] { RunVoxelize(*options); });
}

} // namespace brix::tools
