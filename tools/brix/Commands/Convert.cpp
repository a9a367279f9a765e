// brix convert: voxels from one file into others, each in the format of its ending.
#include "Commands.h"

#include "../FilePlan.h"
#include "../Memory.h"
#include "../OutputFiles.h"
#include "../Report.h"
#include "../VoxelFiles.h"

#include <brix/operations/BasicOperations.h>

namespace brix::tools {
namespace {

struct Options
{
    GridOptions grid;
    std::vector<std::filesystem::path> outputs;
    std::int64_t lod = -1; // the finest one
    bool ascii = false;
};

bool IsSavedModel(const std::filesystem::path& filePath) { return filePath.extension() == ".brix"; }

VoxelModel<bool> Load(const Options& options)
{
    if (!IsSavedModel(options.grid.input)) return Voxelize(ReadInput(options.grid), options.grid);
    HoldMemoryLimit(options.grid);
    const Stopwatch watch;
    VoxelModel<bool> model = LoadVoxelFile(options.grid.input);
    const std::int64_t filled = CountFilled(model, model.FinestLOD());
    PrintStep("read",
              options.grid.input.string() + ": " + std::to_string(filled) + " voxels filled at level " +
                  std::to_string(model.FinestLOD()) + " " + watch.Text(),
              {{"file", options.grid.input.string()}, {"filled", filled}, {"level", model.FinestLOD()}});
    return model;
}

void RunConvert(const Options& options)
{
    if (!IsSavedModel(options.grid.input)) RequireGrid(options.grid);
    FilePlan files;
    files.Read(options.grid.input);
    for (const std::filesystem::path& output : options.outputs) files.WriteVoxels(output);
    const VoxelModel<bool> model = Load(options);
    const std::int64_t lod = options.lod < 0 ? model.FinestLOD() : options.lod;
    if (lod > model.FinestLOD())
        throw UsageError("The level " + std::to_string(lod) + " is not among the levels 0.." + std::to_string(model.FinestLOD()) +
                         " of the model.");
    for (const std::filesystem::path& output : options.outputs) SaveVoxels(model, {lod, output}, options.grid, options.ascii);
}

} // namespace

void AddConvertCommand(CLI::App& program)
{
    const auto options = std::make_shared<Options>();
    CLI::App& command =
        *program.add_subcommand("convert", "Write the voxels of a file of triangles or a saved model in other formats");
    AddGridOptions(command, options->grid);
    command.add_option("output", options->outputs, std::string("Files to write: ") + VoxelFileEndings + ", or .stl")
        ->required()
        ->type_name("OUT...");
    command.add_option("--level", options->lod, "Level to write [the finest]")->check(CLI::Range(0, 5));
    AddVoxelFileOptions(command, options->grid);
    command.add_flag("--ascii", options->ascii, "Write ASCII (six digits) instead of binary STL");
    command.footer("  .brix    the model with all its levels, which brix convert reads again\n"
                   "  .npy     NumPy array of bytes, [z, y, x]\n"
                   "  .nrrd    the same as a volume with its place in the world\n"
                   "  .vdb     OpenVDB grid \"density\", a fog volume of 1, with its place in the world\n"
                   "  .vox     MagicaVoxel scene, of models of at most 256 voxels along each axis\n"
                   "  .json    boxes that cover the filled voxels, by inclusive voxel indices\n"
                   "  .stl     boxes of triangles\n"
                   "  FOLDER/  layer-0000.png (the lowest) and so on: grey, 255 is filled, seen from above\n"
                   "A saved model has its own voxels, a file of triangles needs --voxel or the like.\n"
                   "Examples:\n"
                   "  brix convert house.stl house.brix house.npy --voxel 0.1\n"
                   "  brix convert house.stl layers/ --voxel 0.1\n"
                   "  brix convert house.brix coarse.nrrd --level 2");
    command.callback([options] { RunConvert(*options); });
}

} // namespace brix::tools
