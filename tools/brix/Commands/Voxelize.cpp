// brix voxelize: triangles to voxels, and the voxels as triangles again.
#include "Commands.h"

#include "../Grid.h"
#include "../Report.h"
#include "../TriangleFiles.h"

#include <brix/triangles/Tessellation.h>

#include <algorithm>
#include <charconv>

namespace brix::tools {
namespace {

struct Output
{
    std::int64_t lod;
    std::filesystem::path filePath;
};

struct Options
{
    GridOptions grid;
    std::vector<std::string> outputs;
    bool ascii = false;
};

// "voxels.stl" is written at the finest level, "2=coarse.stl" at level 2.
Output ParseOutput(const std::string& text, std::int64_t finestLOD)
{
    const std::size_t equals = text.find('=');
    const char* const end = text.data() + (equals == std::string::npos ? 0 : equals);
    std::int64_t lod = 0;
    if (end == text.data() || std::from_chars(text.data(), end, lod).ptr != end) return {finestLOD, text};
    if (lod < 0 || lod > finestLOD)
        throw UsageError("Level " + std::to_string(lod) + " of the output \"" + text + "\" is not among the levels 0.." +
                         std::to_string(finestLOD) + " of the model.");
    return {lod, text.substr(equals + 1)};
}

std::vector<Output> ParseOutputs(const Options& options)
{
    MakeAxes(options.grid); // a wrong finest level is told first
    std::vector<Output> outputs;
    for (const std::string& text : options.outputs) {
        outputs.push_back(ParseOutput(text, options.grid.lod));
        RequireOutputFolder(outputs.back().filePath);
    }
    return outputs;
}

void Save(const VoxelModel<bool>& model, const Output& output, const Options& options)
{
    const Stopwatch watch;
    std::vector<WorldTriangle> triangles;
    TessellateVoxelModel(triangles, model, output.lod);
    SaveTriangles(output.filePath, triangles, options.ascii, options.grid.swapYZ);
    PrintStep("write", output.filePath.string() + ": level " + std::to_string(output.lod) + ", " +
                           std::to_string(triangles.size()) + " triangles " + watch.Text());
}

void RunVoxelize(const Options& options)
{
    const std::vector<Output> outputs = ParseOutputs(options);
    const VoxelModel<bool> model = VoxelizeInput(options.grid);
    for (const Output& output : outputs) Save(model, output, options);
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
