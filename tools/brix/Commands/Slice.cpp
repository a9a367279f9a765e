// brix slice: pictures of slices through the voxels of an STL file.
#include "Commands.h"

#include "../OutputFiles.h"
#include "../Report.h"
#include "../TriangleFiles.h"

namespace brix::tools {
namespace {

struct Options
{
    GridOptions grid;
    std::filesystem::path output;
    std::vector<std::string> positions;
    std::int64_t lod = -1;  // the finest one
    std::int64_t scale = 0; // chosen for the size
};

void RunSlice(const Options& options)
{
    std::vector<SlicePosition> positions;
    for (const std::string& text : options.positions) positions.push_back(ParseSlicePosition(text));
    MakeAxes(options.grid);
    const std::int64_t lod = options.lod < 0 ? options.grid.lod : options.lod;
    if (lod > options.grid.lod) throw UsageError("The level of the slices is beyond the finest level of the model.");
    RequireOutputFolder(options.output);

    const VoxelModel<bool> model = VoxelizeInput(options.grid);
    const std::int64_t scale = options.scale > 0 ? options.scale : ScaleForSize(model.ExtentsRef(lod), 800);
    std::vector<Picture> pictures;
    for (const SlicePosition& position : positions)
        pictures.push_back(DrawSlice({{model, Ink}}, lod, FindSlice(model, lod, position, options.grid), scale));
    const Picture picture = SideBySide(pictures, 24);
    picture.SavePng(options.output);
    PrintStep("picture", options.output.string() + ": " + std::to_string(picture.Width()) + " x " +
                             std::to_string(picture.Height()) + " pixels, " + std::to_string(scale) + " per voxel edge, level " +
                             std::to_string(lod));
}

} // namespace

void AddSliceCommand(CLI::App& program)
{
    const auto options = std::make_shared<Options>();
    CLI::App& command = *program.add_subcommand("slice", "Draw slices through the voxels of an STL file into a PNG picture");
    AddGridOptions(command, options->grid);
    command.add_option("-o,--output", options->output, "PNG file to write")->required()->type_name("OUT.png");
    command.add_option("--at", options->positions, "Where to cut, in the units of the file along the grid's axes; repeatable")
        ->required()
        ->allow_extra_args(false)
        ->type_name("AXIS=POSITION");
    command.add_option("--level", options->lod, "Level to draw [the finest]")->check(CLI::Range(0, 5));
    command.add_option("--scale", options->scale, "Pixels for the shorter edge of a voxel [for about 800 pixels across]")
        ->check(CLI::Range(1, 64));
    command.footer("Slices stand side by side in the order given: plans (z) seen from above, sections (x, y) with Z up.\n"
                   "Example: brix slice house.stl -w 1.6 --at z=0.7 --at y=5.9 -o slices.png");
    command.callback([options] { RunSlice(*options); });
}

} // namespace brix::tools
