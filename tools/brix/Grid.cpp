#include "Grid.h"

#include "Progress.h"
#include "Report.h"
#include "TriangleFiles.h"

#include <brix/operations/BasicOperations.h>
#include <brix/triangles/TriangleModel.h>
#include <brix/triangles/Voxelization.h>

#include <algorithm>
#include <cmath>

namespace brix::tools {
namespace {

// The engine judges the levels, on one voxel; its sentences become those of the program.
void RequireLevels(const GridOptions& options)
{
    try {
        VoxelModel<bool>(Extents(Axes(options.width, {}, 0, 0), {}, {}, 0), options.lod);
        Axes(options.width, {}, 0, options.verticalLOD.value_or(options.lod));
    } catch (const std::domain_error& error) {
        throw UsageError(error.what());
    }
}

std::int64_t ChunkCount(const Extents& extentsAtLevel0)
{
    const Triple lower = ChunkOfVoxel(extentsAtLevel0.LowerIndices(), 0);
    const Triple upper = ChunkOfVoxel(extentsAtLevel0.UpperIndices(), 0);
    return (upper[0] - lower[0] + 1) * (upper[1] - lower[1] + 1) * (upper[2] - lower[2] + 1);
}

// One stack at level 0, four at level 1, and so on.
std::int64_t StacksPerChunk(std::int64_t finestLOD) { return ((std::int64_t{4} << 2 * finestLOD) - 1) / 3; }

// Triangles longer than half a chunk are quartered until they are not.
double PieceCount(const std::vector<WorldTriangle>& triangles, double halfChunk)
{
    double pieces = 0;
    for (const WorldTriangle& triangle : triangles) {
        double span = 0;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const auto [least, greatest] = std::minmax({triangle[0][axis], triangle[1][axis], triangle[2][axis]});
            span = std::max(span, greatest - least);
        }
        pieces += span > halfChunk ? std::pow(4, std::ceil(std::log2(span / halfChunk))) : 1;
    }
    return pieces;
}

// Estimated before anything is built, so that a slip in the width is answered with numbers and not with a dead machine. What the
// filled voxels need comes on top: it is known only afterwards, and seldom much more.
void RequireReasonableSize(const GridOptions& options, const Extents& extents, const std::vector<WorldTriangle>& triangles)
{
    const auto chunks = static_cast<double>(ChunkCount(extents));
    const double stacks = chunks * static_cast<double>(StacksPerChunk(options.lod));
    const double pieces = PieceCount(triangles, 8 * options.width);
    const double bytes = stacks * sizeof(VoxelStack<bool>) +
                         chunks * static_cast<double>(sizeof(VoxelStore<bool>) * static_cast<std::size_t>(options.lod + 1) +
                                                      sizeof(VoxelChunk<bool>) + sizeof(TriangleChunk)) +
                         pieces * sizeof(LatticeTriangle);
    if (!(bytes <= options.memoryLimit * 1e9))
        throw std::runtime_error("The grid would need " + Text(stacks) + " stacks of 16 x 16 x 64 voxels in " + Text(chunks) +
                                 " chunks and " + Text(pieces) + " triangle pieces, " + BytesText(bytes) +
                                 " while still empty; the limit is " + BytesText(options.memoryLimit * 1e9) +
                                 ". Choose a larger --width or a lower --lod, or raise --memory-limit.");
}

void PrintExtents(const Extents& extents)
{
    const Triple size = Plus(Minus(extents.UpperIndices(), extents.LowerIndices()), {1, 1, 1});
    PrintStep("extents", "(" + Text(extents.LowerIndices(), ", ") + ") to (" + Text(extents.UpperIndices(), ", ") +
                             ") at level 0, " + Text(size, " x ") + " voxels in " + Text(ChunkCount(extents)) + " chunks");
}

void PrintLevels(const VoxelModel<bool>& model)
{
    const Axes& axes = model.AxesRef();
    for (std::int64_t lod = 0; lod <= model.FinestLOD(); ++lod) {
        const std::array<double, 3> voxel{axes.WorldVoxelWidth(lod), axes.WorldVoxelWidth(lod), axes.WorldVoxelHeight()};
        PrintStep("level " + std::to_string(lod),
                  std::to_string(CountFilled(model, lod)) + " voxels filled, each " + Text(voxel, " x "));
    }
}

VoxelModel<bool> Voxelize(const Extents& extents, std::int64_t finestLOD, const std::vector<WorldTriangle>& triangles)
{
    const Progress progress("voxelizing " + std::to_string(triangles.size()) + " triangles");
    TriangleModel triangleModel(extents);
    triangleModel.AddWorldTriangles(triangles);
    VoxelModel<bool> model(extents, finestLOD);
    VoxelizeTriangleModel(model, triangleModel);
    return model;
}

} // namespace

void AddGridOptions(CLI::App& command, GridOptions& options)
{
    command.add_option("input", options.input, "STL file, ASCII or binary")->required()->type_name("IN.stl");
    command.add_option("-w,--width", options.width, "Width of a voxel at level 0, in the units of the file")
        ->required()
        ->type_name("LENGTH");
    command.add_option("--lod", options.lod, "Finest level of detail, 0..5; each halves the voxels' width")
        ->capture_default_str();
    command.add_option("--vertical-lod", options.verticalLOD,
                       "Level whose voxel width is the height of all voxels, 0..5 [as --lod: finest voxels are cubes]");
    command.add_option("--origin", options.origin, "Point that a corner of the grid lies on [0 0 0]")->type_name("X Y Z");
    command.add_option("--rotation", options.rotation, "Turn of the grid about the Z axis, degrees counter-clockwise [0]");
    command.add_flag("--swap-yz", options.swapYZ, "The file has its Y axis up; STL files that are written get it too");
    command.add_option("--memory-limit", options.memoryLimit, "Refuse grids that need more than this while empty, in GB")
        ->capture_default_str();
}

Axes MakeAxes(const GridOptions& options)
{
    if (!(options.width > 0) || !std::isfinite(options.width))
        throw UsageError("The width of a voxel must be a positive number. The value encountered was " + Text(options.width) +
                         ".");
    for (const double number : {options.origin[0], options.origin[1], options.origin[2], options.rotation})
        if (!std::isfinite(number)) throw UsageError("The origin and the rotation of the grid must be finite numbers.");
    RequireLevels(options);
    return {options.width, options.origin, options.rotation, options.verticalLOD.value_or(options.lod)};
}

VoxelModel<bool> VoxelizeInput(const GridOptions& options)
{
    const Axes axes = MakeAxes(options);
    const Stopwatch reading;
    const std::vector<WorldTriangle> triangles = LoadUsableTriangles(options.input, options.swapYZ);
    PrintStep("read", options.input.string() + ": " + std::to_string(triangles.size()) + " triangles " + reading.Text());

    const Extents extents = DetectTriangleExtents(axes, triangles);
    PrintExtents(extents);
    RequireReasonableSize(options, extents, triangles);

    const Stopwatch filling;
    VoxelModel<bool> model = Voxelize(extents, options.lod, triangles);
    PrintStep("voxelize", BytesText(static_cast<double>(model.AllocatedBytes())) + " for levels 0.." +
                              std::to_string(model.FinestLOD()) + " " + filling.Text());
    PrintLevels(model);
    return model;
}

} // namespace brix::tools
