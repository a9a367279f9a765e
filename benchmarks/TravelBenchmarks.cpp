// Distance fields, beside plain Dijkstra on a dense grid: eight neighbours, a binary heap, distances along the grid's steps. That
// is less accurate, too: up to 8 % too long on open floor, and stairs are counted step by step.
//
//   DistanceField/open       1024 x 1024 voxels of open floor
//   DistanceField/pillars    the same with a pillar in every stack
//   DistanceField/building   six storeys, voxels of 2.5 x 2.5 x 20 cm
//   DistanceField/city       voxels of 25 x 25 x 50 cm
//   DistanceField/hills      rolling ground, 512 x 512 voxels of 25 cm
//   DistanceField/terraces   eight terraces with ramps, and flights between cheeks, 512 x 512 voxels of 25 cm
//
// TraversableGraph is the field's graph alone, GraphDijkstra a Dijkstra with buckets over it: what the field costs without sight.
#include "Measure.h"
#include "model/ForEachStack.h"
#include "model/PropagateLevel.h"
#include "operations/FillOperations.h"
#include "scenes/Building.h"
#include "scenes/City.h"
#include "travel/DistanceField.h"
#include "triangles/Voxelization.h"

#include <cmath>
#include <limits>
#include <map>
#include <queue>

namespace brix::benchmarks {
namespace {

using State = benchmark::State;

constexpr std::int64_t Level = 5;
constexpr std::int64_t NoLimit = std::numeric_limits<std::int64_t>::max();

struct TravelScene
{
    TravelScene(VoxelModel<bool> solid, std::int64_t diameter, std::int64_t height,
                const std::vector<std::array<double, 3>>& starts)
        : environment(std::move(solid)), path(environment, Level, diameter, height, false)
    {
        for (const auto& start : starts) sources.push_back(environment.AxesRef().FromWorldCoordinates(start));
    }

    VoxelModel<bool> environment;
    PathModel path;
    std::vector<Triple> sources;
};

VoxelModel<bool> Voxelized(const std::vector<WorldTriangle>& triangles, const Axes& axes)
{
    const Extents extents = DetectTriangleExtents(axes, triangles);
    TriangleModel filed(extents);
    filed.AddWorldTriangles(triangles);
    VoxelModel<bool> model(extents, Level);
    VoxelizeTriangleModel(model, filed);
    return model;
}

// Blocks of three voxels, at another place in every stack.
VoxelModel<bool> Plan(bool hasPillars)
{
    VoxelModel<bool> plan(Extents(Axes(32, {0, 0, 0}, 0, Level), {0, 0, 0}, {1023, 1023, 0}, Level), Level);
    std::uint32_t random = 1;
    ForEachStack(plan, Level, [&](VoxelStore<bool>& store, const StackIndices& ij) {
        random = random * 1664525U + 1013904223U;
        const std::int64_t x = random >> 16 & 7U;
        const std::int64_t y = random >> 24 & 7U;
        if (!hasPillars) return;
        VoxelStack<bool>& stack = store.VoxelStackRef(ij);
        stack.LayerVoxelPlateRef(stack.IsolateLevel(0, true, true)) = Box({x + 4, y + 4}, {x + 6, y + 6});
        stack.Compress();
    });
    PropagateLevel(plan, Level);
    return plan;
}

// Ground of a height above every square, cut into layers.
template <class Height> std::unique_ptr<TravelScene> MakeGround(std::int64_t verticalLOD, const Height& height)
{
    constexpr std::int64_t size = 512;
    VoxelModel<bool> ground(Extents(Axes(8, {0, 0, 0}, 0, verticalLOD), {0, 0, 0}, {size - 1, size - 1, 63}, Level), Level);
    ForEachStack(ground, Level, [&](VoxelStore<bool>& store, const StackIndices& ij) {
        const Triple lower = store.LowerIndices(ij);
        VoxelStack<bool>& stack = store.VoxelStackRef(ij);
        ForEachTriple({0, 0, 0}, {15, 15, 63}, [&](const Triple& offset) {
            if (offset[2] > height(lower[0] + offset[0], lower[1] + offset[1])) return;
            VoxelPlate<bool>& plate =
                stack.LayerVoxelPlateRef(stack.IsolateLevel(static_cast<std::int32_t>(offset[2]), true, true));
            plate = plate | Box({offset[0], offset[1]}, {offset[0], offset[1]});
        });
        stack.Compress();
    });
    PropagateLevel(ground, Level);
    const std::array<double, 3> start{20.1, 60.1, 1};
    auto scene = std::make_unique<TravelScene>(std::move(ground), 1, 6, std::vector{start});
    scene->sources.front()[2] = scene->environment.AxesRef().VoxelCenter({80, 240, height(80, 240) + 1}, Level)[2];
    return scene;
}

std::int64_t Rolling(std::int64_t x, std::int64_t y)
{
    const auto wave = [](std::int64_t along, double length) { return std::sin(static_cast<double>(along) / length); };
    return static_cast<std::int64_t>(26 + 9 * wave(x, 23) * wave(y, 31) + 7 * wave(x + 2 * y, 57));
}

// Terraces of 64 squares that rise by six voxels; every 32 squares a way up: a ramp, or a flight of three squares a tread.
std::int64_t Terraced(std::int64_t x, std::int64_t y)
{
    const std::int64_t floor = 2 + 6 * (x / 64);
    const std::int64_t along = x % 64 - 40; // the way up is 24 long
    const std::int64_t across = y % 32;
    if (along < 0 || x >= 448) return floor;
    const bool isFlight = y / 32 % 2 == 0;
    if (across >= 12 && across < 20) return floor + (isFlight ? along / 3 * 3 + 3 : along + 1) / 4;
    const bool isCheek = across == 11 || across == 20;
    return isFlight && isCheek ? floor + 12 : floor;
}

std::unique_ptr<TravelScene> MakeScene(const std::string& name)
{
    if (name == "building") {
        const Axes axes(0.8, {0.013, 0.013, 0.03}, 0, 2);
        VoxelModel<bool> house = FillEnclosedRegions(Voxelized(scenes::MakeBuilding({.storeys = 6}), axes));
        return std::make_unique<TravelScene>(std::move(house), 20, 9, std::vector{std::array{-1.0, 5.0, 0.1}});
    }
    if (name == "city") {
        const Axes axes(8, {0.03, 0.03, 0.03}, 0, 4);
        VoxelModel<bool> city = Voxelized(scenes::MakeCity({.seed = 1, .triangles = 200'000}), axes);
        std::vector<std::array<double, 3>> starts; // across a lot: some of them are on a street
        for (double x = 0; x < 40; ++x) starts.push_back({x, 0.5, 2.5});
        return std::make_unique<TravelScene>(std::move(city), 2, 4, starts);
    }
    if (name == "hills") return MakeGround(Level, Rolling);
    if (name == "terraces") return MakeGround(Level, Terraced);
    return std::make_unique<TravelScene>(Plan(name == "pillars"), 1, 1, std::vector{std::array{100.5, 300.5, 0.5}});
}

const TravelScene& SceneOf(const std::string& name)
{
    static std::map<std::string, std::unique_ptr<TravelScene>> made;
    auto& scene = made[name];
    if (!scene) scene = MakeScene(name);
    return *scene;
}

// The open voxels of a Dijkstra, by distance: a binary heap, and a ring of buckets as wide as the shortest step.
class Heap
{
public:
    explicit Heap(double, double) {}
    void Push(double distance, std::uint32_t voxel) { queue_.emplace(distance, voxel); }
    template <class Expand> void Run(const Expand& expand)
    {
        while (!queue_.empty()) {
            const auto [distance, voxel] = queue_.top();
            queue_.pop();
            expand(distance, voxel);
        }
    }

private:
    using Entry = std::pair<double, std::uint32_t>;
    std::priority_queue<Entry, std::vector<Entry>, std::greater<>> queue_;
};

class Buckets
{
public:
    Buckets(double shortest, double longest) : perUnit_(1 / shortest), ring_(static_cast<std::size_t>(longest / shortest) + 2) {}
    void Push(double distance, std::uint32_t voxel)
    {
        ring_[static_cast<std::size_t>(distance * perUnit_) % ring_.size()].push_back({distance, voxel});
        ++count_;
    }
    template <class Expand> void Run(const Expand& expand)
    {
        for (std::size_t current = 0; count_ > 0; current = (current + 1) % ring_.size()) {
            for (std::size_t i = 0; i < ring_[current].size(); ++i, --count_) {
                const Entry entry = ring_[current][i];
                expand(entry.distance, entry.voxel);
            }
            ring_[current].clear();
        }
    }

private:
    struct Entry
    {
        double distance;
        std::uint32_t voxel;
    };
    double perUnit_;
    std::vector<std::vector<Entry>> ring_;
    std::size_t count_ = 0;
};

// A distance for every voxel of the extents: infinite where not yet reached, negative where nobody can stand, as in the rim of
// one voxel around the extents. Without the rule for diagonal steps, which floors seldom need.
class DenseDijkstra
{
public:
    explicit DenseDijkstra(const PathModel& path) : extents_(path.TraversableVoxels().ExtentsRef(Level))
    {
        const Triple size = Plus(Minus(extents_.UpperIndices(), extents_.LowerIndices()), {3, 3, 3});
        strideY_ = size[0];
        strideZ_ = size[0] * size[1];
        distances_.assign(static_cast<std::size_t>(strideZ_ * size[2]), -1);
        ForEachStoredStack(path.TraversableVoxels(), Level, [&](const VoxelStore<bool>& store, const StackIndices& ij) {
            const VoxelStack<bool>& stack = store.VoxelStackRef(ij);
            ForEachTriple(store.LowerOffset(ij), store.UpperOffset(ij), [&](const Triple& offset) {
                if (stack.LayerVoxelPlateRef(stack.LayerID(offset[2])).Value({offset[0], offset[1]}))
                    distances_[Number(Plus(store.LowerIndices(ij), offset))] = std::numeric_limits<double>::infinity();
            });
        });
        const Triple voxel = extents_.AxesRef().VoxelSize(Level);
        const std::int64_t reach = size[2] > 3 ? 1 : 0; // a plan has no steps up and down
        ForEachTriple({-1, -1, -reach}, {1, 1, reach}, [&](const Triple& step) {
            if (step[0] == 0 && step[1] == 0) return;
            steps_.push_back({step[2] * strideZ_ + step[1] * strideY_ + step[0],
                              std::hypot(step[0] * voxel[0], step[1] * voxel[1], step[2] * voxel[2])});
        });
    }

    double At(const Triple& voxel) const { return distances_[Number(voxel)]; }

    template <class Queue> void Run(const std::vector<Triple>& sources)
    {
        const Triple size = extents_.AxesRef().VoxelSize(Level);
        Queue queue(static_cast<double>(size[0]), std::hypot(size[0], size[1], size[2]));
        for (const Triple& source : sources) {
            distances_[Number(source)] = 0;
            queue.Push(0, Number(source));
        }
        queue.Run([&](double distance, std::uint32_t voxel) {
            if (distance > distances_[voxel]) return;
            for (const Step& step : steps_) {
                const auto to = static_cast<std::uint32_t>(voxel + step.offset);
                const double offered = distance + step.length;
                if (!(offered < distances_[to])) continue;
                distances_[to] = offered;
                queue.Push(offered, to);
            }
        });
    }

private:
    struct Step
    {
        std::int64_t offset;
        double length;
    };

    std::uint32_t Number(const Triple& voxel) const
    {
        const Triple offset = Plus(Minus(voxel, extents_.LowerIndices()), {1, 1, 1});
        return static_cast<std::uint32_t>(offset[2] * strideZ_ + offset[1] * strideY_ + offset[0]);
    }

    Extents extents_;
    std::int64_t strideY_ = 0;
    std::int64_t strideZ_ = 0;
    std::vector<double> distances_;
    std::vector<Step> steps_;
};

// Plain Dijkstra over the graph that the field works on. Returns the sum of the distances.
double SearchGraph(const TraversableGraph& graph, const std::vector<Triple>& sources)
{
    const Triple size = graph.ExtentsRef().AxesRef().VoxelSize(Level);
    const auto square = [](std::int64_t number) { return static_cast<double>(number * number); };
    std::vector<double> distances(graph.Size(), std::numeric_limits<double>::infinity());
    Buckets queue(static_cast<double>(size[0]), std::hypot(size[0], size[1], size[2]));
    for (const Triple& source : sources) {
        distances[graph.Find(source)] = 0;
        queue.Push(0, graph.Find(source));
    }
    double sum = 0;
    queue.Run([&](double distance, std::uint32_t voxel) {
        if (distance > distances[voxel]) return;
        sum += distance;
        graph.ForEachStep(voxel, [&](std::uint32_t to) {
            const double inPlan = square(graph.X(to) - graph.X(voxel)) + square(graph.Y(to) - graph.Y(voxel));
            const double rise = square(graph.Z(to) - graph.Z(voxel));
            const double offered = distance + std::sqrt(inPlan * square(size[0]) + rise * square(size[2]));
            if (!(offered < distances[to])) return;
            distances[to] = offered;
            queue.Push(offered, to);
        });
    });
    return sum;
}

// The voxels that the field starts from.
std::vector<Triple> SourceVoxels(const DistanceField& field)
{
    std::vector<Triple> sources;
    field.ForEachReachable([&](const Triple& voxel, std::int64_t distance) {
        if (distance == 0) sources.push_back(voxel);
    });
    return sources;
}

void MeasureField(State& state, const std::string& name)
{
    const TravelScene& scene = SceneOf(name);
    const auto make = [&] { return DistanceField(scene.path, scene.sources, NoLimit); };
    MeasureResult(state, make, [](const DistanceField&) {});
    const DistanceField field = make();
    std::int64_t count = 0;
    field.ForEachReachable([&](const Triple&, std::int64_t) { ++count; });
    state.counters["voxels"] = static_cast<double>(count);
}

void MeasureGraph(State& state, const std::string& name)
{
    const TravelScene& scene = SceneOf(name);
    MeasureResult(
        state, [&] { return TraversableGraph(scene.path.TraversableVoxels()); }, [](const TraversableGraph&) {});
}

void MeasureGraphSearch(State& state, const std::string& name)
{
    const TravelScene& scene = SceneOf(name);
    const std::vector<Triple> sources = SourceVoxels(DistanceField(scene.path, scene.sources, NoLimit));
    const TraversableGraph graph(scene.path.TraversableVoxels());
    for (auto _ : state) benchmark::DoNotOptimize(SearchGraph(graph, sources));
}

template <class Queue> void MeasureBaseline(State& state, const std::string& name)
{
    const TravelScene& scene = SceneOf(name);
    const DistanceField field(scene.path, scene.sources, NoLimit);
    const std::vector<Triple> sources = SourceVoxels(field);
    for (auto _ : state) {
        state.PauseTiming();
        auto dense = std::make_unique<DenseDijkstra>(scene.path);
        state.ResumeTiming();
        dense->Run<Queue>(sources);
        state.PauseTiming();
        double engine = 0;
        double baseline = 0;
        field.ForEachReachable([&](const Triple& voxel, std::int64_t distance) {
            RequireEqual("Voxels reached", std::isfinite(dense->At(voxel)) && dense->At(voxel) >= 0, true);
            engine += static_cast<double>(distance);
            baseline += dense->At(voxel);
        });
        state.counters["longer"] = baseline / engine - 1;
        dense.reset();
        state.ResumeTiming();
    }
}

const bool AreRegistered = [] {
    for (const std::string name : {"open", "pillars", "building", "city", "hills", "terraces"}) {
        const auto registerAs = [&](const std::string& function, const auto& measure) {
            benchmark::RegisterBenchmark((function + "/" + name).c_str(), [=](State& state) {
                measure(state, name);
            })->Unit(benchmark::kMillisecond);
        };
        registerAs("DistanceField", MeasureField);
        registerAs("HeapDijkstra", MeasureBaseline<Heap>);
        registerAs("BucketDijkstra", MeasureBaseline<Buckets>);
        registerAs("TraversableGraph", MeasureGraph);
        registerAs("GraphDijkstra", MeasureGraphSearch);
    }
    return true;
}();

} // namespace
} // namespace brix::benchmarks
