// Triangles to voxels, in two steps and in one:
//
//   File             world triangles -> triangle model     beside   FileBaseline      conversion to base units into one list
//   Voxelize         triangle model  -> voxel model        beside   VoxelizeBaseline  pieces in base units -> dense bit set
//   FileAndVoxelize  world triangles -> voxel model
//   VoxelizeWhole    the same in one call, without cuts
//   Pole             a pole of 128 triangles, so many voxels of level 0 long, in one call and, where memory allows, filed
//
// The baseline's triangles are converted, and cut where filing cuts them, before its time starts, and its bit set is zeroed; it
// makes the finest level only, while the engine makes all six.
#include "LargeScenes.h"
#include "VoxelizationMeasures.h"
#include "frame/Require.h"

#include <functional>

namespace brix::benchmarks {
namespace {

using State = benchmark::State;

std::int64_t CountFiled(const TriangleModel& model)
{
    std::int64_t count = 0;
    ForEachTriple(model.LowerChunkIndices(), model.UpperChunkIndices(),
                  [&](const Triple& chunk) { count += static_cast<std::int64_t>(model.ChunkRef(chunk).Triangles().size()); });
    return count;
}

void MeasureFile(State& state, const GriddedScene& scene)
{
    const std::int64_t expected = CountFiled(scene.filed);
    MeasureOnFresh(
        state, [&] { return TriangleModel(scene.extents); },
        [&](TriangleModel& model) { model.AddWorldTriangles(scene.worldTriangles); },
        [&](const TriangleModel& model) { RequireEqual("Filed triangles", CountFiled(model), expected); });
    state.counters["filed"] = static_cast<double>(expected);
}

void MeasureFileBaseline(State& state, const GriddedScene& scene)
{
    MeasureResult(
        state, [&] { return ConvertTriangles(scene.axes, scene.worldTriangles); },
        [&](const auto& converted) {
            RequireEqual("Converted triangles", std::ssize(converted), std::ssize(scene.worldTriangles));
        });
}

void MeasureVoxelizeBaseline(State& state, const GriddedScene& scene)
{
    DenseVoxels voxels(scene.FinestExtents());
    for (auto _ : state) {
        state.PauseTiming();
        voxels.Clear();
        state.ResumeTiming();
        VoxelizeDensely(voxels, scene.VoxelSize(), scene.pieces);
        benchmark::ClobberMemory();
        state.PauseTiming();
        RequireEqual("Voxels of the bit set", voxels.Count(), scene.FilledVoxels());
        state.ResumeTiming();
    }
}

void MeasurePole(State& state, double length,
                 const std::function<VoxelModel<bool>(const Axes&, const std::vector<WorldTriangle>&)>& voxelize)
{
    const Axes axes(1, {0, 0, 0}, 0, 0);
    const std::vector<WorldTriangle> triangles = MakePole(length);
    MeasureResult(
        state, [&] { return voxelize(axes, triangles); },
        [&](const VoxelModel<bool>& model) {
            const std::int64_t filled = CountFilledVoxels(model, GriddedScene::FinestLOD);
            Require(filled > static_cast<std::int64_t>(length) * 3000, "A pole lacks voxels.");
            state.counters["voxels"] = static_cast<double>(filled);
            state.counters["bytes"] = static_cast<double>(model.AllocatedBytes());
        });
}

VoxelModel<bool> Filed(const Axes& axes, const std::vector<WorldTriangle>& triangles)
{
    const Extents extents = DetectTriangleExtents(axes, triangles);
    TriangleModel filed(extents);
    filed.AddWorldTriangles(triangles);
    VoxelModel<bool> model(extents, GriddedScene::FinestLOD);
    VoxelizeTriangleModel(model, filed);
    return model;
}

VoxelModel<bool> Whole(const Axes& axes, const std::vector<WorldTriangle>& triangles)
{
    return Voxelize(axes, triangles, GriddedScene::FinestLOD);
}

void RegisterPoles()
{
    const auto registerPole = [](const char* name, double length, const auto& voxelize) {
        benchmark::RegisterBenchmark(name, [=](State& state) {
            MeasurePole(state, length, voxelize);
        })->Unit(benchmark::kMillisecond);
    };
    registerPole("Pole/4000", 4000, Whole);
    registerPole("Pole/16000", 16000, Whole);
    registerPole("PoleFiled/1000", 1000, Filed);
    registerPole("PoleFiled/4000", 4000, Filed);
}

const bool registered = [] {
    RegisterPoles();
    RegisterForScenes("VoxelizeWhole", MeasureVoxelizeWhole, Resolutions);
    RegisterForScenes("File", MeasureFile, Resolutions);
    RegisterForScenes("FileBaseline", MeasureFileBaseline, Resolutions);
    RegisterForScenes("Voxelize", MeasureVoxelize, Resolutions);
    RegisterForScenes("VoxelizeBaseline", MeasureVoxelizeBaseline, Resolutions);
    RegisterForScenes("FileAndVoxelize", MeasureFileAndVoxelize, Resolutions);
    return true;
}();

} // namespace
} // namespace brix::benchmarks
