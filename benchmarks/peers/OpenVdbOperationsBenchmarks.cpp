// Operations beside OpenVDB's on the same voxels, both on one thread. OpenVDB works on a tree of MaskGrid, whose uniform nodes
// are pruned to tiles; every one of its operations changes a copy, and the copy is timed, because the engine's operations return
// a new model. The engine's results hold all levels and are bounded by their filled voxels, which is timed too.
//
//   DilateFace<n>, ErodeFace<n>     OpenVDB: n voxels in all six directions, tiles kept where they can be
//   ExpandFace1, ReduceFace1        the engine's way to exactly the same voxels for n = 1: the six neighbours as the union
//                                   (intersection) of one pass over four and one over two neighbours
//   ExpandAlongX<n> ..              the engine along one axis, both sides; ExpandAlongXThenYThenZ<n> grows into the whole box
//   ExpandHorizontally<n>           the engine by a disc of n voxels across
//   ExpandFace16                    the same sixteen times, one result after the other, other levels made at the end
//   Union .., VdbUnion ..           two sets, the second moved against the first
//   UnionInPlace .., Vdb..InPlace   the same with a first set that is given away: its copy is not timed
//   FindVoxel, AreFilled            100,000 random places, beside OpenVDB's cached accessor
//   Line..                          as many places, one after the other along straight lines
//   CopyOfUnion, FoundStacks        what is left where nothing is combined or searched: the result is allocated and copied; the
//                                   stacks of the same places are known, and asked
#include "Measure.h"
#include "OperationScenes.h"

#include "model/AreFilled.h"
#include "model/ForEachStack.h"
#include "model/VoxelIterator.h"
#include "operations/BasicOperations.h"
#include "operations/SolidOperations.h"
#include "operations/SurfaceOperations.h"

#include <openvdb/openvdb.h>
#include <openvdb/tools/Morphology.h>
#include <tbb/global_control.h>

#include <map>
#include <memory>
#include <random>

namespace brix::benchmarks {
namespace {

using State = benchmark::State;
using Scene = OperationScene;
using Tree = openvdb::MaskTree;
using Model = VoxelModel<bool>;

openvdb::Coord CoordOf(const Triple& voxel)
{
    return {static_cast<int>(voxel[0]), static_cast<int>(voxel[1]), static_cast<int>(voxel[2])};
}

Tree TreeOf(const DenseWords& voxels)
{
    openvdb::initialize();
    Tree tree;
    openvdb::tree::ValueAccessor<Tree> accessor(tree);
    for (std::int64_t z = 0; z < voxels.size[2]; ++z) {
        for (std::int64_t y = 0; y < voxels.size[1]; ++y) {
            for (std::int64_t i = 0; i < voxels.wordsPerRow; ++i) {
                for (std::uint64_t bits = voxels.Row(y, z)[i]; bits != 0; bits &= bits - 1)
                    accessor.setValueOn(CoordOf(Plus(voxels.lower, {64 * i + std::countr_zero(bits), y, z})));
            }
        }
    }
    tree.prune();
    return tree;
}

struct Trees
{
    explicit Trees(const Scene& scene) : tree(TreeOf(scene.dense)), other(TreeOf(scene.otherDense)) {}
    Tree tree;
    Tree other;
};

const Trees& TreesOf(const Scene& scene)
{
    static std::map<const Scene*, std::unique_ptr<Trees>> made;
    auto& trees = made[&scene];
    if (!trees) trees = std::make_unique<Trees>(scene);
    return *trees;
}

std::int64_t CountOf(const Tree& tree) { return static_cast<std::int64_t>(tree.activeVoxelCount()); }
std::int64_t CountOf(const Model& model) { return CountFilled(model, model.FinestLOD()); }

// Ours and OpenVDB's results of equal meaning, by name: whoever comes second must count as many voxels as the first.
void RequireSameCount(const std::string& meaning, std::int64_t count)
{
    static std::map<std::string, std::int64_t> counts;
    RequireEqual(meaning, count, counts.try_emplace(meaning, count).first->second);
}

using Dilation = void (*)(Tree&, int, openvdb::tools::NearestNeighbors, openvdb::tools::TilePolicy, bool);

Tree Changed(const Tree& tree, Dilation dilation, int n)
{
    Tree result = tree;
    dilation(result, n, openvdb::tools::NN_FACE, openvdb::tools::PRESERVE_TILES, false);
    return result;
}

template <class Change> Tree Combined(const Trees& trees, const Change& change)
{
    Tree result = trees.tree;
    change(result, trees.other);
    return result;
}

Model ExpandFaces(const Model& model)
{
    const Model beside = ExpandByOneVoxel(model, 1, 0, {}, true);
    const Model stacked = ExpandAlongZ(model, 1, 1, {}, true);
    return Union({&beside, &stacked}, model.FinestLOD(), true);
}

// What a host does that grows step by step: nobody looks at the other levels in between.
Model ExpandFaces(const Model& model, int times)
{
    Model result = model;
    result.MakeLevels(OtherLevels::WhenAskedFor);
    for (int i = 0; i < times; ++i) {
        const Model stacked = ExpandAlongZ(result, 1, 1, {}, true);
        result = ExpandByOneVoxel(result, 1, 0, {}, true);
        UnionInPlace(result, stacked);
    }
    result.MakeLevels(OtherLevels::AtOnce);
    return result;
}

Model ReduceFaces(const Model& model)
{
    const Model beside = ReduceByOneVoxel(model, 1, 0, {}, true);
    const Model stacked = ReduceAlongZ(model, 1, 1, {}, true);
    return Intersect({&beside, &stacked}, model.FinestLOD(), true);
}

Model ExpandBox(const Model& model, int n)
{
    return ExpandAlongZ(ExpandAlongY(ExpandAlongX(model, n, n, {}, true), n, n, {}, true), n, n, {}, true);
}

// A straight line through the extents, from any voxel in any of the 26 directions.
struct Line
{
    Triple from;
    Triple step;
    std::int64_t length;
};

// Lines of 100,000 voxels together.
std::vector<Line> RandomLines(const Scene& scene)
{
    std::mt19937_64 random(11);
    std::vector<Line> lines;
    std::int64_t left = 100'000;
    for (const Triple& from : RandomPlaces(scene)) {
        Line line{from, {}, left};
        const auto direction = static_cast<std::int64_t>(random() % 26);
        const std::int64_t code = direction < 13 ? direction : direction + 1; // not the middle one
        for (std::size_t i = 0; i < 3; ++i) {
            line.step[i] = std::array<std::int64_t, 3>{code % 3, code / 3 % 3, code / 9}[i] - 1;
            const std::int64_t room =
                line.step[i] < 0 ? from[i] - scene.extents.LowerIndices()[i] : scene.extents.UpperIndices()[i] - from[i];
            if (line.step[i] != 0) line.length = std::min(line.length, room + 1);
        }
        lines.push_back(line);
        left -= line.length;
        if (left == 0) break;
    }
    return lines;
}

// All benchmarks of one scene, registered under its name.
class SceneBenchmarks
{
public:
    SceneBenchmarks(std::string scene, std::int64_t voxels) : scene_(std::move(scene)), voxels_(voxels) {}

    void RegisterAll() const
    {
        RegisterSurfaces();
        RegisterSolids();
        RegisterAllInPlace();
        RegisterQueries();
    }

private:
    template <class Measure> void Register(const std::string& name, Measure measure) const
    {
        const std::string fullName = name + "/" + scene_ + "/" + std::to_string(voxels_);
        benchmark::RegisterBenchmark(fullName.c_str(), [measure, scene = scene_, voxels = voxels_](State& state) {
            const tbb::global_control oneThread(tbb::global_control::max_allowed_parallelism, 1);
            measure(state, SceneOfOperations(scene, voxels));
        })->Unit(benchmark::kMillisecond);
    }

    // Measures run(scene). Results of one meaning must count the same; an empty meaning is compared with nothing.
    template <class Run> void RegisterRun(const std::string& name, const std::string& meaning, Run run) const
    {
        const std::string what = meaning.empty() ? meaning : meaning + " " + scene_ + std::to_string(voxels_);
        Register(name, [=](State& state, const Scene& scene) {
            if (!what.empty()) RequireSameCount(what, CountOf(run(scene)));
            MeasureResult(
                state, [&] { return run(scene); }, [](const auto&) {});
        });
    }

    void RegisterSurfaces() const
    {
        for (const int n : {1, 16}) {
            const std::string number = std::to_string(n);
            RegisterRun("VdbDilateFace" + number, n == 1 ? "face growth" : "face growth 16", [=](const Scene& scene) {
                return Changed(TreesOf(scene).tree, openvdb::tools::dilateActiveValues<Tree>, n);
            });
            RegisterRun("VdbErodeFace" + number, n == 1 ? "face shrinkage" : "", [=](const Scene& scene) {
                return Changed(TreesOf(scene).tree, openvdb::tools::erodeActiveValues<Tree>, n);
            });
            RegisterRun("ExpandAlongX" + number, "",
                        [=](const Scene& scene) { return ExpandAlongX(scene.model, n, n, {}, true); });
            RegisterRun("ExpandAlongZ" + number, "",
                        [=](const Scene& scene) { return ExpandAlongZ(scene.model, n, n, {}, true); });
            RegisterRun("ReduceAlongX" + number, "",
                        [=](const Scene& scene) { return ReduceAlongX(scene.model, n, n, {}, true); });
            RegisterRun("ExpandAlongXThenYThenZ" + number, "", [=](const Scene& scene) { return ExpandBox(scene.model, n); });
        }
        RegisterRun("ExpandFace1", "face growth", [](const Scene& scene) { return ExpandFaces(scene.model); });
        RegisterRun("ExpandFace16", "face growth 16", [](const Scene& scene) { return ExpandFaces(scene.model, 16); });
        RegisterRun("ReduceFace1", "face shrinkage", [](const Scene& scene) { return ReduceFaces(scene.model); });
        RegisterRun("ExpandByOneVoxel(1,0)", "",
                    [](const Scene& scene) { return ExpandByOneVoxel(scene.model, 1, 0, {}, true); });
        RegisterRun("ExpandByOneVoxel(1,1)", "",
                    [](const Scene& scene) { return ExpandByOneVoxel(scene.model, 1, 1, {}, true); });
        RegisterRun("ReduceByOneVoxel(1,0)", "",
                    [](const Scene& scene) { return ReduceByOneVoxel(scene.model, 1, 0, {}, true); });
        RegisterRun("ExpandHorizontally3", "", [](const Scene& scene) { return ExpandHorizontally(scene.model, 3, {}, true); });
        RegisterRun("ExpandHorizontally33", "", [](const Scene& scene) { return ExpandHorizontally(scene.model, 33, {}, true); });
    }

    void RegisterSolids() const
    {
        RegisterRun("Union", "union", [](const Scene& scene) {
            return Union({&scene.model, &scene.other}, scene.Level(), false);
        });
        Register("CopyOfUnion", [](State& state, const Scene& scene) {
            const Model combined = Union({&scene.model, &scene.other}, scene.Level(), false);
            MeasureResult(
                state, [&] { return Model(combined); },
                [&](const Model& copy) { RequireEqual("Voxels", CountOf(copy), CountOf(combined)); });
        });
        RegisterRun("VdbUnion", "union", [](const Scene& scene) {
            return Combined(TreesOf(scene), [](Tree& tree, const Tree& other) { tree.topologyUnion(other); });
        });
        RegisterRun("Intersect", "intersection", [](const Scene& scene) {
            return Intersect({&scene.model, &scene.other}, scene.Level(), false);
        });
        RegisterRun("VdbIntersect", "intersection", [](const Scene& scene) {
            return Combined(TreesOf(scene), [](Tree& tree, const Tree& other) { tree.topologyIntersection(other); });
        });
        RegisterRun("Subtract", "difference",
                    [](const Scene& scene) { return Subtract(scene.model, scene.other, scene.Level(), false); });
        RegisterRun("VdbSubtract", "difference", [](const Scene& scene) {
            return Combined(TreesOf(scene), [](Tree& tree, const Tree& other) { tree.topologyDifference(other); });
        });
    }

    // Measures change(first set, second set) with a first set that it may use up.
    template <class Change, class VdbChange>
    void RegisterInPlace(const std::string& name, const Change& change, const VdbChange& vdbChange) const
    {
        const std::string what = name + " in place " + scene_ + std::to_string(voxels_);
        Register(name + "InPlace", [=](State& state, const Scene& scene) {
            MeasureOnFresh(
                state, [&] { return Model(scene.model); }, [&](Model& model) { change(model, scene.other); },
                [&](const Model& model) { RequireSameCount(what, CountOf(model)); });
        });
        Register("Vdb" + name + "InPlace", [=](State& state, const Scene& scene) {
            const Trees& trees = TreesOf(scene);
            MeasureOnFresh(
                state, [&] { return Tree(trees.tree); }, [&](Tree& tree) { vdbChange(tree, trees.other); },
                [&](const Tree& tree) { RequireSameCount(what, CountOf(tree)); });
        });
    }

    void RegisterAllInPlace() const
    {
        RegisterInPlace("Union", &UnionInPlace, [](Tree& tree, const Tree& other) { tree.topologyUnion(other); });
        RegisterInPlace("Intersect", &IntersectInPlace, [](Tree& tree, const Tree& other) { tree.topologyIntersection(other); });
        RegisterInPlace("Subtract", &SubtractInPlace, [](Tree& tree, const Tree& other) { tree.topologyDifference(other); });
    }

    void RegisterQueries() const
    {
        Register("CountFilled", [](State& state, const Scene& scene) {
            for (auto _ : state) benchmark::DoNotOptimize(CountOf(scene.model));
            RequireEqual("Active voxels", CountOf(TreesOf(scene).tree), CountOf(scene.model));
        });
        Register("VdbCount", [](State& state, const Scene& scene) {
            for (auto _ : state) benchmark::DoNotOptimize(CountOf(TreesOf(scene).tree));
        });
        Register("FindVoxel", MeasureFindVoxel);
        Register("AreFilled", MeasureAreFilled);
        Register("FoundStacks", MeasureFoundStacks);
        Register("VdbAccessor", MeasureAccessor);
        Register("LineFindVoxel", MeasureLineFindVoxel);
        Register("LineIterator", MeasureLineIterator);
        Register("VdbLineAccessor", MeasureLineAccessor);
        Register("Memory", MeasureMemory);
    }

    // Time per 100 000 look-ups at random places, the same on both sides.
    static void MeasureFindVoxel(State& state, const Scene& scene)
    {
        const std::vector<Triple> places = RandomPlaces(scene);
        std::int64_t filled = 0;
        for (auto _ : state) {
            filled = 0;
            for (const Triple& place : places) filled += scene.model.FindVoxel(place, scene.Level()).Value() ? 1 : 0;
            benchmark::DoNotOptimize(filled);
        }
        RequireSameCount("random voxels of " + std::to_string(CountDensely(scene.dense)), filled);
    }

    static void MeasureFoundStacks(State& state, const Scene& scene)
    {
        const std::vector<Triple> places = RandomPlaces(scene);
        std::vector<const VoxelStack<bool>*> stacks;
        for (const Triple& place : places) stacks.push_back(&FindStack(scene.model, StackOfVoxel(place), scene.Level()));
        std::int64_t filled = 0;
        for (auto _ : state) {
            filled = 0;
            for (std::size_t i = 0; i < places.size(); ++i) {
                const auto [x, y, z] = places[i];
                const VoxelPlate<bool>& plate = stacks[i]->LayerVoxelPlateRef(stacks[i]->LayerID(z & LastOffset[2]));
                filled += plate.Value({x & LastOffset[0], y & LastOffset[1]}) ? 1 : 0;
            }
            benchmark::DoNotOptimize(filled);
        }
        RequireSameCount("random voxels of " + std::to_string(CountDensely(scene.dense)), filled);
    }

    static void MeasureAccessor(State& state, const Scene& scene)
    {
        const std::vector<Triple> places = RandomPlaces(scene);
        openvdb::tree::ValueAccessor<const Tree> accessor(TreesOf(scene).tree);
        std::int64_t filled = 0;
        for (auto _ : state) {
            filled = 0;
            for (const Triple& place : places) filled += accessor.isValueOn(CoordOf(place)) ? 1 : 0;
            benchmark::DoNotOptimize(filled);
        }
        RequireSameCount("random voxels of " + std::to_string(CountDensely(scene.dense)), filled);
    }

    static void MeasureAreFilled(State& state, const Scene& scene)
    {
        const std::vector<Triple> places = RandomPlaces(scene);
        const auto filled = std::make_unique<bool[]>(places.size());
        for (auto _ : state) {
            AreFilled(scene.model, scene.Level(), places, {filled.get(), places.size()});
            benchmark::DoNotOptimize(filled[0]);
        }
        RequireSameCount("random voxels of " + std::to_string(CountDensely(scene.dense)),
                         std::count(filled.get(), filled.get() + places.size(), true));
    }

    // Times walk(line), which counts filled voxels, for all lines.
    template <class Walk> static void MeasureLines(State& state, const Scene& scene, const Walk& walk)
    {
        const std::vector<Line> lines = RandomLines(scene);
        std::int64_t filled = 0;
        for (auto _ : state) {
            filled = 0;
            for (const Line& line : lines) filled += walk(line);
            benchmark::DoNotOptimize(filled);
        }
        RequireSameCount("voxels on lines of " + std::to_string(CountDensely(scene.dense)), filled);
    }

    static void MeasureLineFindVoxel(State& state, const Scene& scene)
    {
        MeasureLines(state, scene, [&](const Line& line) {
            std::int64_t filled = 0;
            Triple voxel = line.from;
            for (std::int64_t i = 0; i < line.length; ++i, voxel = Plus(voxel, line.step))
                filled += scene.model.FindVoxel(voxel, scene.Level()).Value() ? 1 : 0;
            return filled;
        });
    }

    static void MeasureLineIterator(State& state, const Scene& scene)
    {
        MeasureLines(state, scene, [&](const Line& line) {
            std::int64_t filled = 0;
            auto voxel = scene.model.FindVoxel(line.from, scene.Level());
            for (std::int64_t i = 0; i < line.length; ++i, voxel += line.step) filled += voxel.Value() ? 1 : 0;
            return filled;
        });
    }

    static void MeasureLineAccessor(State& state, const Scene& scene)
    {
        openvdb::tree::ValueAccessor<const Tree> accessor(TreesOf(scene).tree);
        MeasureLines(state, scene, [&](const Line& line) {
            std::int64_t filled = 0;
            Triple voxel = line.from;
            for (std::int64_t i = 0; i < line.length; ++i, voxel = Plus(voxel, line.step))
                filled += accessor.isValueOn(CoordOf(voxel)) ? 1 : 0;
            return filled;
        });
    }

    // The time means nothing here; the counters are bytes.
    static void MeasureMemory(State& state, const Scene& scene)
    {
        const auto ours = static_cast<double>(scene.model.AllocatedBytes());
        const auto vdb = static_cast<double>(TreesOf(scene).tree.memUsage());
        for (auto _ : state) benchmark::DoNotOptimize(ours);
        state.counters["oursBytes"] = ours;
        state.counters["vdbBytes"] = vdb;
        state.counters["ratio"] = ours / vdb;
    }

    std::string scene_;
    std::int64_t voxels_;
};

const bool registered = [] {
    for (const std::string scene : {"bunny-shell", "bunny-solid", "building", "city"}) {
        if (!HasOperationScene(scene)) continue;
        for (const std::int64_t voxels : {512, 1024}) SceneBenchmarks(scene, voxels).RegisterAll();
    }
    return true;
}();

} // namespace
} // namespace brix::benchmarks
