// The engine's side of voxelization, as the program of its baselines and the programs of its peers measure it:
//
//   Voxelize         triangles filed beforehand -> voxel model, all levels
//   FileAndVoxelize  triangles in world units   -> voxel model, all levels
//   VoxelizeWhole    the same in one call, which finds the extents, too
//
// The empty voxel model is made before the time starts where it is filled.
#pragma once

#include "Baselines.h"
#include "Measure.h"
#include "triangles/Voxelization.h"
#include "triangles/Voxelize.h"

namespace brix::benchmarks {

inline void CheckVoxels(const GriddedScene& scene, const VoxelModel<bool>& model)
{
    RequireEqual("Filled voxels", CountFilledVoxels(model, GriddedScene::FinestLOD), scene.FilledVoxels());
}

/// Measures fill(model) on empty models, and checks how many voxels it filled.
template <class Fill> void MeasureFilling(benchmark::State& state, const GriddedScene& scene, const Fill& fill)
{
    MeasureOnFresh(
        state, [&] { return VoxelModel<bool>(scene.extents, GriddedScene::FinestLOD); }, fill,
        [&](const VoxelModel<bool>& model) { CheckVoxels(scene, model); });
    state.counters["voxels"] = static_cast<double>(scene.FilledVoxels());
    state.counters["triangles"] = static_cast<double>(scene.worldTriangles.size());
}

inline void MeasureVoxelize(benchmark::State& state, const GriddedScene& scene)
{
    MeasureFilling(state, scene, [&](VoxelModel<bool>& model) { VoxelizeTriangleModel(model, scene.filed); });
}

inline void MeasureFileAndVoxelize(benchmark::State& state, const GriddedScene& scene)
{
    MeasureFilling(state, scene, [&](VoxelModel<bool>& model) {
        TriangleModel filed(scene.extents);
        filed.AddWorldTriangles(scene.worldTriangles);
        VoxelizeTriangleModel(model, filed);
    });
}

inline void MeasureVoxelizeWhole(benchmark::State& state, const GriddedScene& scene)
{
    MeasureResult(
        state, [&] { return Voxelize(scene.axes, scene.worldTriangles, GriddedScene::FinestLOD); },
        [&](const VoxelModel<bool>& model) { CheckVoxels(scene, model); });
}

} // namespace brix::benchmarks
