// brix walkable: where a person can stand and walk, drawn storey by storey.
#include "Commands.h"

#include "../Report.h"
#include "../SlicePicture.h"
#include "../Storeys.h"
#include "../TriangleFiles.h"

#include <brix/operations/BasicOperations.h>
#include <brix/operations/FillOperations.h>
#include <brix/operations/SolidOperations.h>
#include <brix/operations/SurfaceOperations.h>
#include <brix/travel/PathModel.h>

#include <utility>

namespace brix::tools {
namespace {

using Voxels = VoxelModel<bool>;

constexpr Colour Floor{122, 184, 122};
constexpr Colour Raised{240, 165, 75};
constexpr Colour Tight{214, 120, 120};
constexpr Colour Things{176, 180, 190};

using Options = StoreyOptions; // without a start, everything is shown where one can stand

// What the picture of a storey is made of: solid matter, where the person can stand, and all ground with any room above.
struct Walk
{
    Voxels solid;
    Voxels traversable;
    Voxels ground;
};

// Walls are what reaches the height of the cut, things all that is lower. Stairs are seen up to just below the next storey.
Picture DrawStorey(const Walk& walk, double floor, const Options& options)
{
    const std::int64_t lod = walk.solid.FinestLOD();
    const auto [base, layer, cut, top] = StoreyAbove(walk.solid.AxesRef(), floor, options.person.height);
    const Voxels tight = SeenInLayer(walk.ground, {layer, base + 1}, layer);
    const Voxels things = SeenInLayer(walk.solid, {base + 1, cut}, layer);
    const Voxels walls = SeenInLayer(walk.solid, {cut, cut}, layer);
    const Voxels raised = SeenInLayer(walk.traversable, {layer, top}, layer);
    const Voxels level = SeenInLayer(walk.traversable, {layer, base + 1}, layer);
    return DrawSlice({{tight, Tight}, {things, Things}, {walls, Ink}, {raised, Raised}, {level, Floor}}, lod, {Axis::Z, layer},
                     options.scale);
}

// What can be reached from a point: a step leads to an adjacent column, at most one voxel up or down, so the places where one can
// stand, made a voxel thicker below and above, hang together wherever one can walk.
Voxels Reachable(const Voxels& traversable, const std::array<double, 3>& start)
{
    const std::int64_t lod = traversable.FinestLOD();
    const Voxels barriers = Invert(ExpandAlongZ(traversable, 1, 1, std::nullopt, false));
    const Voxels filled = FillFromPoint(barriers, traversable.AxesRef().FromWorldCoordinates(start));
    const Voxels reached = Subtract(filled, barriers, lod, false);
    if (IsEmpty(reached, lod)) throw std::runtime_error("Nobody can stand at the point that --from gives.");
    return Intersect({&traversable, &reached}, lod, false);
}

void RunWalkable(const Options& options)
{
    const Axes axes = MakeAxes(options.grid);
    const std::int64_t diameter = ToVoxels(options.person.diameter, axes.WorldVoxelWidth(options.grid.lod), "diameter");
    const std::int64_t height = ToVoxels(options.person.height, axes.WorldVoxelHeight(), "height");
    RequireOutputFolder(options.output);

    // Triangles are skins: what they enclose, the inside of walls, is solid, too.
    Voxels solid = FillEnclosedRegions(VoxelizeInput(options.grid));
    const Stopwatch watch;
    Voxels traversable = PathModel(solid, options.grid.lod, diameter, height, false).TraversableVoxels();
    PrintStep("walkable", std::to_string(CountFilled(traversable, options.grid.lod)) + " voxels for a person of " +
                              std::to_string(diameter) + " x " + std::to_string(height) + " voxels " + watch.Text());
    if (!options.start.empty()) {
        traversable = Reachable(traversable, {options.start[0], options.start[1], options.start[2]});
        PrintStep("reachable", std::to_string(CountFilled(traversable, options.grid.lod)) + " of them from the given point");
    }
    Voxels ground = PathModel(solid, options.grid.lod, 1, 2, false).TraversableVoxels();
    const Walk walk{std::move(solid), std::move(traversable), std::move(ground)};
    std::vector<Picture> pictures;
    for (const double floor : options.floors) pictures.push_back(DrawStorey(walk, floor, options));
    const Picture picture = SideBySide(pictures, 24);
    picture.SavePng(options.output);
    PrintStep("picture", options.output.string() + ": " + std::to_string(picture.Width()) + " x " +
                             std::to_string(picture.Height()) + " pixels; green: the floor, orange: stairs and other heights, " +
                             "red: no room, grey: things, black: walls");
}

} // namespace

void AddWalkableCommand(CLI::App& program)
{
    const auto options = std::make_shared<Options>();
    CLI::App& command = *program.add_subcommand("walkable", "Draw where a person can stand and walk in an STL file");
    AddStoreyOptions(command, *options, "Show only what can be reached from this point on the ground [all]", false);
    command.footer("A person climbs steps of one voxel: choose voxels as high as a step, with --vertical-lod.\n"
                   "Example: brix walkable house.stl -w 3.2 --lod 5 --vertical-lod 4 --floor 0 --floor 3 -o walkable.png");
    command.callback([options] { RunWalkable(*options); });
}

} // namespace brix::tools
