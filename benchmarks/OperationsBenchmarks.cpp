// Every operation on voxels, beside the same on dense words: <operation>/<scene>/<voxels> and <operation>Dense/<scene>/<voxels>.
// Extents stay as they are, so that both work on the same box, and no guide is given. The engine's results have all levels; the
// dense ones have one. Before an operation is timed, its result is compared with the dense one, bit by bit.
#include "Measure.h"
#include "OperationScenes.h"

#include "model/ForEachStack.h"
#include "model/VoxelIterator.h"
#include "operations/BasicOperations.h"
#include "operations/FillOperations.h"
#include "operations/SolidOperations.h"
#include "operations/SurfaceOperations.h"
#include "travel/PathModel.h"
#include "triangles/Voxelization.h"

#include <functional>
#include <random>
#include <set>

namespace brix::benchmarks {
namespace {

using State = benchmark::State;
using Scene = OperationScene;

struct Operation
{
    std::string name;
    std::function<VoxelModel<bool>(const Scene&)> run;
    std::function<DenseWords(const Scene&)> runDensely;
};

using ExpandFunction = VoxelModel<bool>(const VoxelModel<bool>&, int, int, Guide, bool);

// Growth or shrinkage along an axis by n voxels on both sides.
Operation Along(const std::string& name, ExpandFunction& function, DenseWords (*densely)(const DenseWords&, Axis, std::int64_t),
                Axis axis, int n)
{
    return {name + std::to_string(n), [&function, n](const Scene& scene) { return function(scene.model, n, n, {}, false); },
            [=](const Scene& scene) { return densely(scene.dense, axis, n); }};
}

Operation ByOne(const std::string& name, ExpandFunction& function, DenseWords (*densely)(const DenseWords&, Vertical), int least)
{
    return {name, [&function, least](const Scene& scene) { return function(scene.model, 1, least, {}, false); },
            [=](const Scene& scene) { return densely(scene.dense, least == 0 ? Vertical::Ignored : Vertical::AtLeastOne); }};
}

Operation Horizontally(int diameter)
{
    return {"ExpandHorizontally" + std::to_string(diameter),
            [=](const Scene& scene) { return ExpandHorizontally(scene.model, diameter, {}, false); },
            [=](const Scene& scene) { return GrowHorizontallyDensely(scene.dense, DiscPasses(diameter)); }};
}

std::vector<Operation> AllOperations()
{
    return {
        Along("ExpandAlongX", ExpandAlongX, GrowDensely, Axis::X, 1),
        Along("ExpandAlongY", ExpandAlongY, GrowDensely, Axis::Y, 1),
        Along("ExpandAlongZ", ExpandAlongZ, GrowDensely, Axis::Z, 1),
        Along("ExpandAlongX", ExpandAlongX, GrowDensely, Axis::X, 16),
        Along("ExpandAlongY", ExpandAlongY, GrowDensely, Axis::Y, 16),
        Along("ExpandAlongZ", ExpandAlongZ, GrowDensely, Axis::Z, 16),
        Along("ReduceAlongX", ReduceAlongX, ShrinkDensely, Axis::X, 1),
        Along("ReduceAlongX", ReduceAlongX, ShrinkDensely, Axis::X, 16),
        ByOne("ExpandByOneVoxel(1,1)", ExpandByOneVoxel, GrowByOneDensely, 1),
        ByOne("ExpandByOneVoxel(1,0)", ExpandByOneVoxel, GrowByOneDensely, 0),
        ByOne("ReduceByOneVoxel(1,1)", ReduceByOneVoxel, ShrinkByOneDensely, 1),
        Horizontally(3),
        Horizontally(16),
        {"Union",
         [](const Scene& scene) {
             return Union({&scene.model, &scene.other}, scene.Level(), false);
         },
         [](const Scene& scene) { return UniteDensely(scene.dense, scene.otherDense); }},
        {"Intersect",
         [](const Scene& scene) {
             return Intersect({&scene.model, &scene.other}, scene.Level(), false);
         },
         [](const Scene& scene) { return IntersectDensely(scene.dense, scene.otherDense); }},
        {"Subtract", [](const Scene& scene) { return Subtract(scene.model, scene.other, scene.Level(), false); },
         [](const Scene& scene) { return SubtractDensely(scene.dense, scene.otherDense); }},
        {"Invert", [](const Scene& scene) { return Invert(scene.model); },
         [](const Scene& scene) { return InvertDensely(scene.dense); }},
        {"FillExposedRegions", [](const Scene& scene) { return FillExposedRegions(scene.model); },
         [](const Scene& scene) { return FillExposedDensely(scene.dense); }},
        {"FillEnclosedRegions", [](const Scene& scene) { return FillEnclosedRegions(scene.model); },
         [](const Scene& scene) { return FillEnclosedDensely(scene.dense); }},
    };
}

void MeasureOperation(State& state, const Operation& operation, const Scene& scene, const std::string& fullName)
{
    static std::set<std::string> compared;
    if (compared.insert(fullName).second)
        RequireEqual(fullName, DenseWords(operation.run(scene)) == operation.runDensely(scene), true);
    MeasureResult(
        state, [&] { return operation.run(scene); }, [](const VoxelModel<bool>&) {});
    state.counters["filled"] = static_cast<double>(CountDensely(scene.dense));
}

void MeasureDensely(State& state, const Operation& operation, const Scene& scene)
{
    MeasureResult(
        state, [&] { return operation.runDensely(scene); }, [](const DenseWords&) {});
}

void MeasureCount(State& state, const Scene& scene)
{
    std::int64_t count = 0;
    for (auto _ : state) benchmark::DoNotOptimize(count = CountFilled(scene.model, scene.Level()));
    RequireEqual("Filled voxels", count, CountDensely(scene.dense));
}

void MeasureCountDensely(State& state, const Scene& scene)
{
    for (auto _ : state) benchmark::DoNotOptimize(CountDensely(scene.dense));
}

// What counting cannot do without: every stored plate of the level is read once.
void MeasureReadPlates(State& state, const Scene& scene)
{
    for (auto _ : state) {
        std::uint64_t all = 0;
        ForEachStoredStack(scene.model, scene.Level(), [&](const VoxelStore<bool>& store, const StackIndices& ij) {
            const VoxelStack<bool>& stack = store.VoxelStackRef(ij);
            if (stack.IsUnallocated()) return;
            for (const VoxelPlate<bool>& plate : stack.Plates()) {
                for (const std::uint64_t word : std::bit_cast<std::array<std::uint64_t, 4>>(plate.rows)) all ^= word;
            }
        });
        benchmark::DoNotOptimize(all);
    }
}

void MeasureAutoCrop(State& state, const Scene& scene)
{
    MeasureResult(
        state, [&] { return AutoCrop(scene.model); },
        [&](const VoxelModel<bool>& result) {
            RequireEqual("Voxels kept", CountFilled(result, scene.Level()), CountDensely(scene.dense));
        });
}

// Beside FillEnclosedRegions, of which it is one and two growths.
template <int gap> void MeasureSealedFill(State& state, const Scene& scene)
{
    MeasureResult(
        state, [&] { return SealedFill(scene.model, gap); },
        [&](const VoxelModel<bool>& result) {
            RequireEqual("Voxels lost", CountFilled(Subtract(scene.model, result, scene.Level(), false), scene.Level()), 0);
        });
}

// Time per 100 000 look-ups at random places.
void MeasureFindVoxel(State& state, const Scene& scene)
{
    const std::vector<Triple> places = RandomPlaces(scene);
    std::int64_t expected = 0;
    for (const Triple& place : places) expected += scene.dense.IsSet(Minus(place, scene.dense.lower)) ? 1 : 0;
    std::int64_t filled = 0;
    for (auto _ : state) {
        filled = 0;
        for (const Triple& place : places) filled += scene.model.FindVoxel(place, scene.Level()).Value() ? 1 : 0;
        benchmark::DoNotOptimize(filled);
    }
    RequireEqual("Filled among random voxels", filled, expected);
}

void MeasureFindDensely(State& state, const Scene& scene)
{
    const std::vector<Triple> places = RandomPlaces(scene);
    for (auto _ : state) {
        std::int64_t filled = 0;
        for (const Triple& place : places) filled += scene.dense.IsSet(Minus(place, scene.dense.lower)) ? 1 : 0;
        benchmark::DoNotOptimize(filled);
    }
}

// The agent of 5 x 18 voxels, and the voxelization of the scene that it walks in.
void MeasurePathModel(State& state, const Scene& scene)
{
    std::int64_t standing = 0;
    MeasureResult(
        state, [&] { return PathModel(scene.model, scene.Level(), 5, 18, false); },
        [&](const PathModel& path) { standing = CountFilled(path.TraversableVoxels(), scene.Level()); });
    state.counters["standing"] = static_cast<double>(standing);
}

void MeasureVoxelization(State& state, const Scene& scene)
{
    const GriddedScene& gridded = Gridded("city", 512);
    MeasureOnFresh(
        state, [&] { return VoxelModel<bool>(gridded.extents, GriddedScene::FinestLOD); },
        [&](VoxelModel<bool>& model) { VoxelizeTriangleModel(model, gridded.filed); },
        [&](const VoxelModel<bool>& model) {
            RequireEqual("Voxelized", CountFilled(model, GriddedScene::FinestLOD), CountDensely(scene.dense));
        });
}

template <class Measure> void Register(const std::string& name, const std::string& scene, std::int64_t voxels, Measure measure)
{
    const std::string fullName = name + "/" + scene + "/" + std::to_string(voxels);
    benchmark::RegisterBenchmark(fullName.c_str(), [=](State& state) {
        measure(state, SceneOfOperations(scene, voxels));
    })->Unit(benchmark::kMillisecond);
}

void RegisterOperation(const Operation& operation, const std::string& scene, std::int64_t voxels)
{
    const std::string fullName = operation.name + "/" + scene + "/" + std::to_string(voxels);
    Register(operation.name, scene, voxels,
             [=](State& state, const Scene& made) { MeasureOperation(state, operation, made, fullName); });
    Register(operation.name + "Dense", scene, voxels,
             [=](State& state, const Scene& made) { MeasureDensely(state, operation, made); });
}

void RegisterAll(const std::string& scene, std::int64_t voxels)
{
    for (const Operation& operation : AllOperations()) RegisterOperation(operation, scene, voxels);
    Register("CountFilled", scene, voxels, MeasureCount);
    Register("CountFilledDense", scene, voxels, MeasureCountDensely);
    Register("ReadPlates", scene, voxels, MeasureReadPlates);
    Register("AutoCrop", scene, voxels, MeasureAutoCrop);
    Register("SealedFill(1)", scene, voxels, MeasureSealedFill<1>);
    Register("SealedFill(16)", scene, voxels, MeasureSealedFill<16>);
    Register("FindVoxel", scene, voxels, MeasureFindVoxel);
    Register("FindVoxelDense", scene, voxels, MeasureFindDensely);
}

const bool registered = [] {
    const std::initializer_list<std::pair<const char*, std::vector<std::int64_t>>> scenes{{"bunny-shell", {256, 512, 1024}},
                                                                                          {"bunny-solid", {256, 512, 1024}},
                                                                                          {"building", {256, 512, 1024}},
                                                                                          {"city", {512, 1024}},
                                                                                          {"noise", {256}}};
    for (const auto& [scene, resolutions] : scenes) {
        if (!HasOperationScene(scene)) continue;
        for (const std::int64_t voxels : resolutions) RegisterAll(scene, voxels);
    }
    for (const int n : {4, 64}) {
        RegisterOperation(Along("ExpandAlongX", ExpandAlongX, GrowDensely, Axis::X, n), "city", 512);
        RegisterOperation(Along("ExpandAlongY", ExpandAlongY, GrowDensely, Axis::Y, n), "city", 512);
        RegisterOperation(Along("ExpandAlongZ", ExpandAlongZ, GrowDensely, Axis::Z, n), "city", 512);
    }
    Register("PathModel", "city", 512, MeasurePathModel);
    Register("PathModelVoxelization", "city", 512, MeasureVoxelization);
    return true;
}();

} // namespace
} // namespace brix::benchmarks
