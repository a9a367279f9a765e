// brix walkable: where a person can stand and walk, drawn storey by storey.
#include "Commands.h"

#include "../Places.h"
#include "../Report.h"
#include "../SlicePage.h"
#include "../Storeys.h"

#include <brix/model/VoxelIterator.h>
#include <brix/operations/BasicOperations.h>
#include <brix/operations/FillOperations.h>
#include <brix/operations/SolidOperations.h>
#include <brix/operations/SurfaceOperations.h>
#include <brix/travel/PathModel.h>

#include <utility>

namespace brix::tools {
namespace {

// Blue, orange and yellow of different lightness: to be told apart without red and green.
constexpr Colour Floor{146, 197, 226};
constexpr Colour Raised{230, 140, 30};
constexpr Colour Tight{248, 232, 164};

using Options = StoreyOptions; // without a start, everything is shown where one can stand

// What the picture of a storey is made of: solid matter, where the person can stand, and all ground with any room above.
struct Walk
{
    Voxels solid;
    Voxels traversable;
    Voxels ground;
};

// Walls are what reaches the height of the cut, things all that is lower. Stairs are seen up to just below the next storey.
Raster DrawStorey(const Walk& walk, const Storey& storey, const Box& box)
{
    const std::int64_t lod = walk.solid.FinestLOD();
    const std::int64_t layer = storey.layer;
    const Voxels tight = SeenInLayer(walk.ground, {layer, storey.base + 1}, layer);
    const Voxels things = SeenInLayer(walk.solid, {storey.base + 1, storey.cut}, layer);
    const Voxels walls = SeenInLayer(walk.solid, {storey.cut, storey.cut}, layer);
    const Voxels raised = SeenInLayer(walk.traversable, {layer, storey.top}, layer);
    const Voxels level = SeenInLayer(walk.traversable, {layer, storey.base + 1}, layer);
    return DrawSlice({{tight, Tight}, {things, Things}, {walls, Ink}, {raised, Raised}, {level, Floor}}, lod, {Axis::Z, layer},
                     box);
}

// The highest place of a column where the person can stand; below the storey when there is none.
std::int64_t TopOf(const Voxels& traversable, const Storey& storey, std::int64_t x, std::int64_t y)
{
    std::int64_t z = storey.top;
    for (; z >= storey.base; --z) {
        const ConstVoxelIterator voxel = traversable.FindVoxel({x, y, z}, traversable.FinestLOD());
        if (voxel.IsValid() && voxel.Value()) break;
    }
    return z;
}

double HeightOf(const Axes& axes, std::int64_t z) { return axes.ToWorldCoordinates(axes.VoxelCorner({0, 0, z}, 0))[2]; }

Raster DrawTerrain(const Walk& walk, const Storey& storey, const Box& box, const ColourScale& heights)
{
    Raster raster = DrawBackground(walk.solid, storey, box);
    for (std::int64_t row = 0; row < raster.Height(); ++row)
        for (std::int64_t column = 0; column < raster.Width(); ++column) {
            const std::int64_t z = TopOf(walk.traversable, storey, box.lower[0] + column, box.upper[1] - row);
            if (z >= storey.base) raster.Set(column, row, heights.At(HeightOf(walk.solid.AxesRef(), z)));
        }
    return raster;
}

std::string Unit(const Options& options) { return options.unit.empty() ? "" : ", in " + options.unit; }

Section DrawSection(const Walk& walk, const std::vector<Storey>& storeys, const Box& box, std::int64_t scale,
                    const Options& options)
{
    const Axes& axes = walk.solid.AxesRef();
    const std::int64_t lod = walk.solid.FinestLOD();
    Section section{"", {}, {}};
    const ColourScale heights(HeightOf(axes, storeys[0].base), HeightOf(axes, storeys[0].top), Light::High);
    for (const Storey& storey : storeys) {
        Raster raster = storey.isTerrain ? DrawTerrain(walk, storey, box, heights) : DrawStorey(walk, storey, box);
        Panel& panel = section.panels.emplace_back(MakePanel(axes, lod, Axis::Z, std::move(raster), scale));
        panel.title = storey.title;
        panel.note = storey.note;
    }
    if (storeys[0].isTerrain) {
        section.key = {{NoWay, "no room to stand, or out of reach"}};
        section.scale = {heights, "Height of the ground that can be walked on" + Unit(options)};
    } else {
        section.key = {{Floor, "floor to walk on"},
                       {Raised, "stairs and other heights"},
                       {Tight, "no room to stand"},
                       {Things, "things, low walls"},
                       {Ink, "walls"}};
    }
    return section;
}

// What can be reached from a voxel: a step leads to an adjacent column, at most one voxel up or down, so the places where one can
// stand, made a voxel thicker below and above, hang together wherever one can walk.
Voxels Reachable(const Voxels& traversable, const Triple& start)
{
    const std::int64_t lod = traversable.FinestLOD();
    const Voxels barriers = Invert(ExpandAlongZ(traversable, 1, 1, std::nullopt, false));
    const Voxels filled = FillFromPoint(barriers, traversable.AxesRef().VoxelCenter(start, lod));
    const Voxels reached = Subtract(filled, barriers, lod, false);
    return Intersect({&traversable, &reached}, lod, false);
}

void RunWalkable(const Options& options)
{
    const std::int64_t lod = options.grid.lod;
    FormatOf(options.output);
    Input input = ReadStoreyInput(options);
    const Axes axes = input.axes;
    const Body body = BodyOf(options, axes);

    Voxels solid = SolidWithHeadroom(Voxelize(std::move(input), options.grid, {{"fill-enclosed"}, {"walkable"}}), body);
    const Stopwatch watch;
    Voxels traversable = PathModel(solid, lod, body.diameter, body.height, false).TraversableVoxels();
    PrintStep("walkable", std::to_string(CountFilled(traversable, lod)) + " voxels for a person of " +
                              std::to_string(body.diameter) + " x " + std::to_string(body.height) + " voxels " + watch.Text());
    if (!options.start.empty()) {
        const std::array point{options.start[0], options.start[1], options.start[2]};
        traversable = Reachable(traversable, StandingVoxel(solid, traversable, point, body.height));
        PrintStep("reachable", std::to_string(CountFilled(traversable, lod)) + " of them from the given point");
    }
    const std::vector<Storey> storeys = StoreysOf(traversable, body, options);
    const Box box = FilledBox(solid, lod);
    const std::int64_t scale = options.scale > 0 ? options.scale : ScaleForSize(axes, lod, box, 600);
    Page page = MakePage("Where a person can walk", axes, options, scale);
    Voxels ground = PathModel(solid, lod, 1, 2, false).TraversableVoxels();
    const Walk walk{std::move(solid), std::move(traversable), std::move(ground)};
    page.sections.push_back(DrawSection(walk, storeys, box, scale, options));
    SavePage(options.output, page);
}

} // namespace

void AddWalkableCommand(CLI::App& program)
{
    const auto options = std::make_shared<Options>();
    CLI::App& command = *program.add_subcommand("walkable", "Draw where a person can stand and walk in an STL file");
    AddStoreyOptions(command, *options, "Show only what can be reached from this point [all]", false);
    command.footer(
        "A person climbs steps of one voxel: choose voxels as high as a step, with --vertical-lod.\n"
        "Example: brix walkable house.stl --voxel 0.1 --lod 5 --vertical-lod 4 --from -1 5 0.1 --unit m -o walkable.png");
    command.callback([options] { RunWalkable(*options); });
}

} // namespace brix::tools
