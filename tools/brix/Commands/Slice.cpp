// brix slice: pictures of slices through the voxels of an STL file.
#include "Commands.h"

#include "../FilePlan.h"
#include "../OutputFiles.h"
#include "../Report.h"
#include "../SlicePage.h"
#include "../Units.h"

#include <brix/triangles/Voxelization.h>

namespace brix::tools {
namespace {

struct Options
{
    GridOptions grid;
    std::filesystem::path output;
    std::vector<std::string> positions;
    std::int64_t lod = -1;  // the finest one
    std::int64_t scale = 0; // chosen for the size
    std::string unit;
    bool isBare = false;
};

void RunSlice(const Options& options)
{
    std::vector<SlicePosition> positions;
    for (const std::string& text : options.positions) positions.push_back(ParseSlicePosition(text));
    RequireGrid(options.grid);
    const std::int64_t lod = options.lod < 0 ? options.grid.lod : options.lod;
    if (lod > options.grid.lod) throw UsageError("The level of the slices is beyond the finest level of the model.");
    FormatOf(options.output);
    FilePlan files;
    files.Read(options.grid.input);
    files.Write(options.output);

    Input input = ReadInput(options.grid);
    const Extents extents = DetectTriangleExtents(input.axes, input.triangles);
    for (const SlicePosition& position : positions) FindSlice(extents, position);
    const VoxelModel<bool> model = Voxelize(std::move(input), options.grid);
    std::vector<NamedSlice> slices;
    for (const SlicePosition& position : positions) slices.push_back({position, FindSlice(model.ExtentsRef(lod), position)});
    SaveSlices(options.output, model, slices, "Slices of " + options.grid.input.filename().string(),
               {lod, options.scale, options.unit, options.isBare});
}

} // namespace

void AddSliceCommand(CLI::App& program)
{
    const auto options = std::make_shared<Options>();
    CLI::App& command =
        *program.add_subcommand("slice", "Draw slices through the voxels of an STL file into a picture: PNG, SVG or PDF");
    AddGridOptions(command, options->grid);
    command.add_option("-o,--output", options->output, "Picture to write; its ending, .png, .svg or .pdf, is its format")
        ->required()
        ->type_name("OUT.png");
    command.add_option("--at", options->positions, "Where to cut, in the units of the file along the grid's axes; repeatable")
        ->required()
        ->allow_extra_args(false)
        ->type_name("AXIS=POSITION");
    command.add_option("--level", options->lod, "Level to draw [the finest]")->check(CLI::Range(0, 5));
    command.add_option("--scale", options->scale, "Pixels for the shorter edge of a voxel [for about 600 pixels across]")
        ->check(CLI::Range(1, 64));
    AddUnitOption(command, options->unit);
    command.add_flag("--bare", options->isBare, "Draw the voxels alone, without title, labels and scale bar");
    command.footer("Slices stand side by side in the order given: plans (z) seen from above, sections (x, y) with Z up.\n"
                   "Example: brix slice house.stl --voxel 0.1 --at z=0.7 --at y=5.9 -o slices.png");
    command.callback([options] { RunSlice(*options); });
}

} // namespace brix::tools
