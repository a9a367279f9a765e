// The voxel model itself:
//
//   PropagateLevel   finest level -> all coarser ones   beside   PropagateLevelBaseline...  bit sets, a bit for every filled
//                    voxel
//                                                                or a look at every voxel
//   EmptyModel       extents -> model without voxels    alone: its cost does not depend on the extents
#include "AllocationCount.h"
#include "Baselines.h"
#include "Measure.h"
#include "model/ForEachStack.h"
#include "model/PropagateLevel.h"
#include "triangles/Voxelization.h"

namespace brix::benchmarks {
namespace {

using State = benchmark::State;

// The scene's voxels at the finest level, and nothing yet at the others.
VoxelModel<bool> FinestLevelOf(const GriddedScene& scene)
{
    VoxelModel<bool> model(scene.extents, GriddedScene::FinestLOD);
    VoxelizeTriangleModel(model, scene.filed);
    for (std::int64_t lod = 0; lod < GriddedScene::FinestLOD; ++lod) {
        ForEachStack(model, lod,
                     [](VoxelStore<bool>& store, const StackIndices& ij) { store.VoxelStackRef(ij) = VoxelStack<bool>(); });
    }
    return model;
}

// The same as bit sets, a level each.
std::vector<DenseVoxels> DenseLevelsOf(const GriddedScene& scene)
{
    std::vector<DenseVoxels> levels;
    for (std::int64_t lod = 0; lod <= GriddedScene::FinestLOD; ++lod) levels.emplace_back(scene.extents.RescaledCopy(lod));
    VoxelizeDensely(levels.back(), scene.VoxelSize(), scene.pieces);
    return levels;
}

template <class Coarsen> void CoarsenAll(std::vector<DenseVoxels>& levels, const Coarsen& coarsen)
{
    for (std::size_t lod = levels.size() - 1; lod > 0; --lod) coarsen(levels[lod - 1], levels[lod]);
}

void MeasurePropagateLevel(State& state, const GriddedScene& scene)
{
    const VoxelModel<bool> source = FinestLevelOf(scene);
    MeasureOnFresh(
        state, [&] { return VoxelModel<bool>(source); },
        [&](VoxelModel<bool>& model) { PropagateLevel(model, GriddedScene::FinestLOD); },
        [&](const VoxelModel<bool>& model) {
            for (std::size_t lod = 0; lod < scene.filledAtLevel.size(); ++lod) {
                const std::int64_t filled = CountFilledVoxels(model, static_cast<std::int64_t>(lod));
                RequireEqual("Filled voxels of a level", filled, scene.filledAtLevel[lod]);
            }
        });
}

template <class Coarsen> void MeasureCoarsening(State& state, const GriddedScene& scene, const Coarsen& coarsen)
{
    std::vector<DenseVoxels> levels = DenseLevelsOf(scene);
    for (auto _ : state) {
        state.PauseTiming();
        for (std::size_t lod = 0; lod + 1 < levels.size(); ++lod) levels[lod].Clear();
        state.ResumeTiming();
        CoarsenAll(levels, coarsen);
        benchmark::ClobberMemory();
        state.PauseTiming();
        RequireEqual("Voxels of level 0", levels.front().Count(), scene.filledAtLevel.front());
        state.ResumeTiming();
    }
}

void MeasureCoarsenFilled(State& state, const GriddedScene& scene) { MeasureCoarsening(state, scene, CoarsenFilledVoxels); }
void MeasureCoarsenEvery(State& state, const GriddedScene& scene) { MeasureCoarsening(state, scene, CoarsenEveryVoxel); }

// A cube of finest voxels, so many along each side.
Extents CubeOf(std::int64_t voxels)
{
    return Extents(Axes(32, {0, 0, 0}, 0, GriddedScene::FinestLOD), {0, 0, 0}, {voxels - 1, voxels - 1, voxels - 1},
                   GriddedScene::FinestLOD);
}

void MeasureEmptyModel(State& state)
{
    const Extents extents = CubeOf(state.range(0));
    const AllocationCount before = AllocationsSoFar();
    const VoxelModel<bool> model(extents, GriddedScene::FinestLOD);
    const AllocationCount after = AllocationsSoFar();

    MeasureResult(
        state, [&] { return VoxelModel<bool>(extents, GriddedScene::FinestLOD); }, [](const VoxelModel<bool>&) {});
    state.counters["bytes"] = static_cast<double>(after.bytes - before.bytes);
    state.counters["allocations"] = static_cast<double>(after.allocations - before.allocations);
}

BENCHMARK(MeasureEmptyModel)->Name("EmptyModel")->Arg(512)->Arg(1024)->Arg(4096)->Unit(benchmark::kMicrosecond);

const bool registered = [] {
    RegisterForScenes("PropagateLevel", MeasurePropagateLevel, Resolutions);
    RegisterForScenes("PropagateLevelBaselineFilledVoxels", MeasureCoarsenFilled, Resolutions);
    RegisterForScenes("PropagateLevelBaselineEveryVoxel", MeasureCoarsenEvery, std::array<std::int64_t, 2>{256, 512});
    return true;
}();

} // namespace
} // namespace brix::benchmarks
