// Triangles to voxels, in two steps and in one:
//
//   File             world triangles -> triangle model     beside   FileBaseline      conversion to base units into one list
//   Voxelize         triangle model  -> voxel model        beside   VoxelizeBaseline  pieces in base units -> dense bit set
//   FileAndVoxelize  world triangles -> voxel model
//
// The baseline's triangles are converted, and cut where filing cuts them, before its time starts, and its bit set is zeroed; it
// makes the finest level only, while the engine makes all six.
#include "VoxelizationMeasures.h"

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

const bool registered = [] {
    RegisterForScenes("File", MeasureFile, Resolutions);
    RegisterForScenes("FileBaseline", MeasureFileBaseline, Resolutions);
    RegisterForScenes("Voxelize", MeasureVoxelize, Resolutions);
    RegisterForScenes("VoxelizeBaseline", MeasureVoxelizeBaseline, Resolutions);
    RegisterForScenes("FileAndVoxelize", MeasureFileAndVoxelize, Resolutions);
    return true;
}();

} // namespace
} // namespace brix::benchmarks
