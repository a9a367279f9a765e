// Splitting, density maps, cuboids and solids, each beside the same on dense words: <operation>/<scene>/<voxels> and
// <operation>Dense/<scene>/<voxels>. AutoSplit makes a model of every region, with all levels; its baseline counts their voxels.
// Before a time is taken, both results are compared.
#include "ConversionBaselines.h"
#include "Measure.h"
#include "OperationScenes.h"

#include "operations/AutoSplit.h"
#include "operations/BasicOperations.h"
#include "operations/DensityMap.h"

namespace brix::benchmarks {
namespace {

using State = benchmark::State;
using Scene = OperationScene;

void MeasureSplit(State& state, const Scene& scene)
{
    std::vector<std::int64_t> sizes;
    for (const VoxelModel<bool>& region : AutoSplit(scene.model)) sizes.push_back(CountFilled(region, scene.Level()));
    std::vector<std::int64_t> expected = RegionSizesDensely(scene.dense);
    std::sort(sizes.begin(), sizes.end());
    std::sort(expected.begin(), expected.end());
    RequireEqual("Sizes of regions", sizes == expected, true);
    MeasureResult(
        state, [&] { return AutoSplit(scene.model); }, [](const auto&) {});
    state.counters["regions"] = static_cast<double>(sizes.size());
}

void MeasureCuboids(State& state, const Scene& scene)
{
    const auto cuboids = CuboidizeVoxelModel(scene.model, scene.Level());
    RequireEqual("Cuboids", cuboids == CuboidizeDensely(scene.dense), true);
    MeasureResult(
        state, [&] { return CuboidizeVoxelModel(scene.model, scene.Level()); }, [](const auto&) {});
    state.counters["cuboids"] = static_cast<double>(cuboids.size());
}

void MeasureSolid(State& state, const Scene& scene)
{
    const auto rectangles = SolidizeVoxelModel(scene.model, scene.Level());
    RequireEqual("Rectangles", rectangles == SolidizeDensely(scene.dense), true);
    MeasureResult(
        state, [&] { return SolidizeVoxelModel(scene.model, scene.Level()); }, [](const auto&) {});
    state.counters["rectangles"] = static_cast<double>(rectangles.size());
}

// Two models, three levels; the dense sums are a number for each voxel.
const std::vector<double> Weights{0.75, 0.5};
const std::vector<double> Levels{0.5, 0.6, 1.25};

std::vector<DenseWords> DensityDensely(const Scene& scene)
{
    std::vector<DenseWords> results(Levels.size(), scene.dense);
    for (std::size_t i = 0; i < scene.dense.words.size(); ++i) {
        std::array<std::uint64_t, 3> words{};
        for (int bit = 0; bit < 64; ++bit) {
            double sum = 0;
            if ((scene.dense.words[i] >> bit & 1) != 0) sum += Weights[0];
            if ((scene.otherDense.words[i] >> bit & 1) != 0) sum += Weights[1];
            for (std::size_t level = 0; level < Levels.size(); ++level)
                words[level] |= std::uint64_t{sum >= Levels[level]} << bit;
        }
        for (std::size_t level = 0; level < Levels.size(); ++level) results[level].words[i] = words[level];
    }
    return results;
}

std::vector<VoxelModel<bool>> Density(const Scene& scene)
{
    return DensityMap({&scene.model, &scene.other}, Weights, Levels, scene.Level());
}

void MeasureDensity(State& state, const Scene& scene)
{
    const std::vector<VoxelModel<bool>> results = Density(scene);
    const std::vector<DenseWords> expected = DensityDensely(scene);
    for (std::size_t i = 0; i < results.size(); ++i) RequireEqual("Density map", DenseWords(results[i]) == expected[i], true);
    MeasureResult(
        state, [&] { return Density(scene); }, [](const auto&) {});
}

template <class Work> auto MeasureDensely(const Work& work)
{
    return [work](State& state, const Scene& scene) {
        MeasureResult(
            state, [&] { return work(scene); }, [](const auto&) {});
    };
}

template <class Measure> void Register(const std::string& name, const std::string& scene, std::int64_t voxels, Measure measure)
{
    const std::string fullName = name + "/" + scene + "/" + std::to_string(voxels);
    benchmark::RegisterBenchmark(fullName.c_str(), [=](State& state) {
        measure(state, SceneOfOperations(scene, voxels));
    })->Unit(benchmark::kMillisecond);
}

const bool registered = [] {
    const std::initializer_list<std::pair<const char*, std::int64_t>> scenes{
        {"bunny-shell", 256}, {"bunny-shell", 512}, {"bunny-solid", 256}, {"bunny-solid", 512}, {"building", 256},
        {"building", 512},    {"city", 512},        {"noise", 128},       {"dust", 128}};
    for (const auto& [scene, voxels] : scenes) {
        if (!HasOperationScene(scene)) continue;
        Register("AutoSplit", scene, voxels, MeasureSplit);
        Register("AutoSplitDense", scene, voxels, MeasureDensely([](const Scene& s) { return RegionSizesDensely(s.dense); }));
        Register("Cuboidize", scene, voxels, MeasureCuboids);
        Register("CuboidizeDense", scene, voxels, MeasureDensely([](const Scene& s) { return CuboidizeDensely(s.dense); }));
        Register("Solidize", scene, voxels, MeasureSolid);
        Register("SolidizeDense", scene, voxels, MeasureDensely([](const Scene& s) { return SolidizeDensely(s.dense); }));
        Register("DensityMap", scene, voxels, MeasureDensity);
        Register("DensityMapDense", scene, voxels, MeasureDensely(DensityDensely));
    }
    return true;
}();

} // namespace
} // namespace brix::benchmarks
