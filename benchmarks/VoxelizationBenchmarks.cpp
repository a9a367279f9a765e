// Triangles to voxels, in two steps:
//
//   File             world triangles -> triangle model     beside   FileBaseline      conversion to base units into one list
//   Voxelize         triangle model  -> voxel model        beside   VoxelizeBaseline  pieces in base units -> dense bit set
//   FileAndVoxelize  both steps
//
// The baseline's triangles are converted, and cut where filing cuts them, before its time starts; it makes the finest level only,
// while the engine makes all six. Models and bit sets are made before the time starts.
#include "Baselines.h"
#include "Measure.h"
#include "triangles/Voxelization.h"

namespace brix::benchmarks {
namespace {

using State = benchmark::State;

VoxelModel<bool> EmptyModel(const GriddedScene& scene) { return VoxelModel<bool>(scene.extents, GriddedScene::FinestLOD); }

void CheckVoxels(const GriddedScene& scene, const VoxelModel<bool>& model)
{
    RequireEqual("Filled voxels", CountFilledVoxels(model, GriddedScene::FinestLOD), scene.filledVoxels);
}

void ReportVoxels(State& state, const GriddedScene& scene)
{
    state.counters["voxels"] = static_cast<double>(scene.filledVoxels);
    state.counters["triangles"] = static_cast<double>(scene.worldTriangles.size());
}

void MeasureFile(State& state, const GriddedScene& scene)
{
    MeasureOnFresh(
        state, [&] { return TriangleModel(scene.extents); },
        [&](TriangleModel& model) { model.AddWorldTriangles(scene.worldTriangles); }, [](const TriangleModel&) {});
    ReportVoxels(state, scene);
}

void MeasureFileBaseline(State& state, const GriddedScene& scene)
{
    MeasureResult(
        state, [&] { return ConvertTriangles(scene.axes, scene.worldTriangles); }, [](const auto&) {});
}

void MeasureVoxelize(State& state, const GriddedScene& scene)
{
    MeasureOnFresh(
        state, [&] { return EmptyModel(scene); }, [&](VoxelModel<bool>& model) { VoxelizeTriangleModel(model, scene.filed); },
        [&](const VoxelModel<bool>& model) { CheckVoxels(scene, model); });
    ReportVoxels(state, scene);
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
        RequireEqual("Voxels of the bit set", voxels.Count(), scene.filledVoxels);
        state.ResumeTiming();
    }
    ReportVoxels(state, scene);
}

void MeasureFileAndVoxelize(State& state, const GriddedScene& scene)
{
    MeasureOnFresh(
        state, [&] { return EmptyModel(scene); },
        [&](VoxelModel<bool>& model) {
            TriangleModel filed(scene.extents);
            filed.AddWorldTriangles(scene.worldTriangles);
            VoxelizeTriangleModel(model, filed);
        },
        [&](const VoxelModel<bool>& model) { CheckVoxels(scene, model); });
    ReportVoxels(state, scene);
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
