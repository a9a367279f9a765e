#include "Memory.h"

#include "Report.h"
#include "System.h"
#include "TriangleFiles.h"

#include <brix/operations/MemoryEstimates.h>
#include <brix/triangles/Voxelization.h>
#include <brix/triangles/VoxelizationEstimate.h>

#include <algorithm>
#include <cmath>
#include <numeric>
#include <utility>

namespace brix::tools {
namespace {

constexpr double ProgramBytes = 16e6; // code, libraries, buffers

// Every stack of the box holds one layer.
double BytesOfFullBox(ModelSize size)
{
    size.stored = size.chunks;
    size.full = 0;
    size.filled = size.AllStacks();
    size.layerBytes = size.filled * ModelSize::BytesOfUniformStack;
    return BytesOfModel(size);
}

// What a step takes, with its model. The engine's estimates of growth, standing and sight hold for any model, and are 9 to 27
// times what those of triangles were measured to take, so that too much would be refused: these steps have measured factors.
// Lists and parts are counted once there are voxels.
double StepBytes(const PlannedStep& step, const ModelSize& size)
{
    const std::string& name = step.name;
    const double model = BytesOfModel(size);
    if (name == "walkable" || name == "travel") return 4 * model + 5 * BytesOfFullBox(size);
    if (name.starts_with("visible-")) return 2 * model + 2.5 * BytesOfFullBox(size);
    if (name == "fill-sealed") return model + BytesToFillSealed(size, step.numbers.front());
    if (name.starts_with("fill-")) return model + BytesToFill(size);
    if (name == "invert") return model + BytesToInvert(size);
    if (name == "refine") return model + BytesToRefine(size, step.numbers.front());
    return 4 * model;
}

// The step that takes most, or the making of the model.
std::pair<double, std::string> MostBytes(const Axes& axes, const std::vector<WorldTriangle>& triangles, std::int64_t lod,
                                         const std::vector<PlannedStep>& steps)
{
    const Extents extents = DetectTriangleExtents(axes, triangles);
    const ModelSize size = SizeOfVoxels(extents, triangles, lod);
    const double given = static_cast<double>(sizeof(WorldTriangle) * triangles.size());
    std::pair<double, std::string> most{given + BytesToVoxelize(size, axes, triangles), "voxelize"};
    for (const PlannedStep& step : steps) most = std::max(most, {StepBytes(step, size), step.name});
    most.first += ProgramBytes;
    return most;
}

std::runtime_error TooMuch(const std::string& what, double bytes, double limit, double fittingVoxel, const GridOptions& options)
{
    const double edge = RoundedUp(fittingVoxel);
    const std::string advice =
        options.width ? "--width " + Text(edge * static_cast<double>(std::int64_t{1} << options.lod)) : "--voxel " + Text(edge);
    return std::runtime_error("The step " + what + " would need about " + BytesText(bytes) + " of memory; the limit is " +
                              BytesText(limit) + ". It would fit with " + advice +
                              " (or fewer --voxels); or raise --memory-limit.");
}

// The least of the sizes that go up by a tenth each with which all would fit, and leave some room, as chunks come whole.
double FittingVoxel(const Input& input, const GridOptions& options, const std::vector<PlannedStep>& steps, double limit)
{
    const auto factor = [](int power) { return std::pow(1.1, power); };
    const auto fits = [&](int power) {
        const Axes& axes = input.axes;
        const Axes coarser(axes.WorldVoxelSpacing0() * factor(power), axes.WorldVoxelOrigin(), axes.WorldVoxelRotation(),
                           axes.VerticalLOD());
        return MostBytes(coarser, input.triangles, options.lod, steps).first <= 0.8 * limit;
    };
    int tooFine = 0;
    int coarse = 1;
    while (coarse < 128 && !fits(coarse)) tooFine = std::exchange(coarse, 2 * coarse);
    while (coarse - tooFine > 1) {
        const int middle = std::midpoint(tooFine, coarse);
        (fits(middle) ? coarse : tooFine) = middle;
    }
    return input.axes.WorldVoxelWidth(options.lod) * factor(coarse);
}

} // namespace

double MemoryLimit(const GridOptions& options)
{
    // Asked once, before HoldMemoryLimit changes it.
    static const double granted = GrantedMemory();
    const double wanted = options.memoryLimit ? *options.memoryLimit * 1e9 : MachineMemory() / 2;
    return std::min(wanted, granted);
}

// The sanitizers reserve far more addresses than they use.
void HoldMemoryLimit([[maybe_unused]] const GridOptions& options)
{
#ifndef BRIX_SANITIZED
    HoldMemory(MemoryLimit(options));
#endif
}

void RequireMemoryForModel(const Input& input, const GridOptions& options, const std::vector<PlannedStep>& steps)
{
    const double limit = MemoryLimit(options);
    const auto [bytes, step] = MostBytes(input.axes, input.triangles, options.lod, steps);
    PrintDetail("estimate", BytesText(bytes) + " of memory at most, in the step " + step + "; the limit is " + BytesText(limit),
                {{"bytes", bytes}, {"mostIn", step}, {"limit", limit}});
    if (bytes > limit) throw TooMuch(step, bytes, limit, FittingVoxel(input, options, steps, limit), options);
}

void RequireMemoryForStep(const PlannedStep& step, const VoxelModel<bool>& model, const GridOptions& options)
{
    const std::int64_t lod = model.FinestLOD();
    const double bytes = ProgramBytes + StepBytes(step, SizeOf(model, lod));
    const double limit = MemoryLimit(options);
    const double voxel = model.AxesRef().WorldVoxelWidth(lod);
    if (bytes > limit) throw TooMuch(step.name, bytes, limit, voxel * std::sqrt(bytes / limit), options);
}

void RequireMemoryToWrite(double bytesBeside, const VoxelModel<bool>& model, const GridOptions& options)
{
    const std::int64_t lod = model.FinestLOD();
    const double memory = ProgramBytes + BytesToVoxelize(SizeOf(model, lod), model.AxesRef(), {}) + bytesBeside;
    PrintDetail("estimate", BytesText(memory) + " of memory to write the voxels", {{"bytes", memory}});
    const double voxel = model.AxesRef().WorldVoxelWidth(lod);
    if (const double limit = MemoryLimit(options); memory > limit)
        throw TooMuch("write", memory, limit, voxel * std::sqrt(memory / limit), options);
}

void RequireSpaceForTriangles(double triangleCount, double bytesBeside, bool ascii, const VoxelModel<bool>& model,
                              const GridOptions& options)
{
    const std::int64_t lod = model.FinestLOD();
    const double voxel = model.AxesRef().WorldVoxelWidth(lod);
    // What the making of the model took was given back, but in pieces between what stayed.
    const double memory = ProgramBytes + BytesToVoxelize(SizeOf(model, lod), model.AxesRef(), {}) +
                          triangleCount * (sizeof(WorldTriangle) + bytesBeside);
    PrintDetail("estimate", BytesText(memory) + " of memory for " + Text(triangleCount) + " triangles",
                {{"bytes", memory}, {"triangles", triangleCount}});
    if (const double limit = MemoryLimit(options); memory > limit)
        throw TooMuch("write", memory, limit, voxel * std::sqrt(memory / limit), options);

    const double file = StlBytes(triangleCount, ascii);
    const double limit = options.outputLimit * 1e9;
    if (file > limit)
        throw std::runtime_error("The file would have " + BytesText(file) + " for " + Text(triangleCount) +
                                 " triangles; the limit is " + BytesText(limit) + ". About --voxel " +
                                 Text(RoundedUp(voxel * std::sqrt(file / limit))) +
                                 " would fit, or a coarser level of the model; or raise --output-limit.");
}

} // namespace brix::tools
