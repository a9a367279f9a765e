#include "Grid.h"

#include "Memory.h"
#include "Progress.h"
#include "Report.h"
#include "TriangleFiles.h"

#include <brix/operations/BasicOperations.h>
#include <brix/triangles/Voxelization.h>
#include <brix/triangles/Voxelize.h>

#include <algorithm>
#include <cmath>

namespace brix::tools {
namespace {

std::int64_t ChunkCount(const Extents& extentsAtLevel0)
{
    const Triple lower = ChunkOfVoxel(extentsAtLevel0.LowerIndices(), 0);
    const Triple upper = ChunkOfVoxel(extentsAtLevel0.UpperIndices(), 0);
    return (upper[0] - lower[0] + 1) * (upper[1] - lower[1] + 1) * (upper[2] - lower[2] + 1);
}

// Few voxels show nothing, and very many are seldom meant: then the file's unit may be another one than its user thinks.
void WarnOfStrangeSize(double longestSide, double voxel)
{
    const double count = longestSide / voxel;
    if (count >= 16 && count <= 16384) return;
    Warn("The model is " + Text(std::ceil(count)) +
         " voxels long: " + (count < 16 ? "did you mean millimetres?" : "does the file hold millimetres?") +
         " Its longest side is " + Text(longestSide) + " in the units of the file, the voxels' edge " + Text(voxel) + ".");
}

void PrintVoxel(const Axes& axes, const GridOptions& options, double longestSide)
{
    const double width = axes.WorldVoxelWidth(options.lod);
    const std::array voxel{width, width, axes.WorldVoxelHeight()};
    PrintStep("voxel",
              Text(voxel, " x ") + " at the finest level, " + std::to_string(options.lod) + "; the model is " +
                  Text(std::ceil(longestSide / width)) + " voxels long",
              {{"size", voxel}, {"level", options.lod}, {"longestSide", longestSide}});
    WarnOfStrangeSize(longestSide, width);
}

void PrintExtents(const Extents& extents)
{
    const Triple size = Plus(Minus(extents.UpperIndices(), extents.LowerIndices()), {1, 1, 1});
    PrintStep("extents",
              "(" + Text(extents.LowerIndices(), ", ") + ") to (" + Text(extents.UpperIndices(), ", ") + ") at level 0, " +
                  Text(size, " x ") + " voxels in " + Text(ChunkCount(extents)) + " chunks",
              {{"lower", extents.LowerIndices()}, {"upper", extents.UpperIndices()}, {"chunks", ChunkCount(extents)}});
}

void PrintLevels(const VoxelModel<bool>& model)
{
    const Axes& axes = model.AxesRef();
    for (std::int64_t lod = 0; lod <= model.FinestLOD(); ++lod) {
        const std::array voxel{axes.WorldVoxelWidth(lod), axes.WorldVoxelWidth(lod), axes.WorldVoxelHeight()};
        const std::int64_t filled = CountFilled(model, lod);
        PrintStep("level " + std::to_string(lod), std::to_string(filled) + " voxels filled, each " + Text(voxel, " x "),
                  {{"level", lod}, {"filled", filled}, {"size", voxel}});
    }
}

std::vector<WorldTriangle> ReadTriangles(const std::filesystem::path& filePath, bool swapYZ)
{
    const Stopwatch watch;
    std::vector<WorldTriangle> triangles = LoadUsableTriangles(filePath, swapYZ);
    PrintStep("read", filePath.string() + ": " + std::to_string(triangles.size()) + " triangles " + watch.Text(),
              {{"file", filePath.string()}, {"triangles", triangles.size()}, {"seconds", watch.Seconds()}});
    return triangles;
}

VoxelModel<bool> FilledModel(const Axes& axes, std::int64_t finestLOD, const std::vector<WorldTriangle>& triangles)
{
    const Progress progress("voxelizing " + std::to_string(triangles.size()) + " triangles");
    return brix::Voxelize(axes, triangles, finestLOD);
}

} // namespace

Input ReadInput(const GridOptions& options)
{
    RequireGrid(options);
    HoldMemoryLimit(options);
    std::vector<WorldTriangle> triangles = ReadTriangles(options.input, options.swapYZ);
    const Axes axes = MakeAxes(options, triangles);
    PrintVoxel(axes, options, LongestSide(options, triangles));
    return {std::move(triangles), axes};
}

Input ReadInput(const std::filesystem::path& filePath, const Axes& axes, const GridOptions& options)
{
    return {ReadTriangles(filePath, options.swapYZ), axes};
}

VoxelModel<bool> Voxelize(Input input, const GridOptions& options, const std::vector<PlannedStep>& steps)
{
    PrintExtents(DetectTriangleExtents(input.axes, input.triangles));
    RequireMemoryForModel(input, options, steps);

    const Stopwatch watch;
    VoxelModel<bool> model = FilledModel(input.axes, options.lod, input.triangles);
    PrintStep("voxelize",
              BytesText(static_cast<double>(model.AllocatedBytes())) + " for levels 0.." + std::to_string(model.FinestLOD()) +
                  " " + watch.Text(),
              {{"bytes", model.AllocatedBytes()}, {"seconds", watch.Seconds()}});
    PrintLevels(model);
    return model;
}

} // namespace brix::tools
