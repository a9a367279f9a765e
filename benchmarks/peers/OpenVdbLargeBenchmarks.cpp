// Long and scattered scenes beside OpenVDB, whose cost follows their content: road/<metres>, site/<boxes> on 4 x 4 km, both with
// voxels of 0.1 m, and pole/<voxels of level 0>. Both on one thread.
//
//   Voxelize                  triangles -> all levels
//   ExpandByOneVoxel(1,0)     the engine: one voxel on four sides       beside   VdbDilateFace1   OpenVDB: one on six sides
//   ExpandAlongZ20            the engine: twenty voxels upwards
//   Memory                    bytes of all levels                       beside   those of OpenVDB's one
#include "LargeScenes.h"
#include "Measure.h"

#include "model/ForEachStack.h"
#include "operations/BasicOperations.h"
#include "operations/SurfaceOperations.h"
#include "triangles/Voxelize.h"

#include <openvdb/openvdb.h>
#include <openvdb/tools/Morphology.h>
#include <tbb/global_control.h>

#include <bit>
#include <functional>
#include <map>
#include <memory>
#include <numbers>

namespace brix::benchmarks {
namespace {

using State = benchmark::State;
using Model = VoxelModel<bool>;
using Tree = openvdb::MaskTree;

constexpr std::int64_t Level = 5;

Tree TreeOf(const Model& model)
{
    openvdb::initialize();
    Tree tree;
    openvdb::tree::ValueAccessor<Tree> accessor(tree);
    ForEachStoredStack(model, Level, [&](const VoxelStore<bool>& store, const StackIndices& ij) {
        const VoxelStack<bool>& stack = store.ValidStackRef(ij);
        const Triple corner = store.LowerIndices(ij);
        for (std::int32_t layer = 0; layer < stack.LayerCount(); ++layer) {
            for (std::int64_t z = stack.LowerOffset(layer); z <= stack.UpperOffset(layer); ++z) {
                for (std::size_t y = 0; y < static_cast<std::size_t>(PlateWidth); ++y) {
                    for (unsigned row = stack.LayerVoxelPlateRef(layer).rows[y]; row != 0; row &= row - 1) {
                        accessor.setValueOn({static_cast<int>(corner[0] + std::countr_zero(row)),
                                             static_cast<int>(corner[1]) + static_cast<int>(y), static_cast<int>(corner[2] + z)});
                    }
                }
            }
        }
    });
    tree.prune();
    return tree;
}

struct Scene
{
    Scene(const Axes& frame, std::vector<WorldTriangle> list)
        : axes(frame), triangles(std::move(list)), model(Voxelize(axes, triangles, Level)), tree(TreeOf(model))
    {
        RequireEqual("Active voxels", static_cast<std::int64_t>(tree.activeVoxelCount()), CountFilled(model, Level));
    }

    Axes axes;
    std::vector<WorldTriangle> triangles;
    Model model;
    Tree tree;
};

using MakeScene = std::function<Scene()>;

const Scene& MadeScene(const std::string& name, const MakeScene& make)
{
    static std::map<std::string, std::unique_ptr<Scene>> made;
    auto& scene = made[name];
    if (scene == nullptr) scene = std::make_unique<Scene>(make());
    return *scene;
}

template <class Measure> void Register(const std::string& row, const std::string& scene, const MakeScene& make, Measure measure)
{
    benchmark::RegisterBenchmark((row + "/" + scene).c_str(), [=](State& state) {
        const tbb::global_control oneThread(tbb::global_control::max_allowed_parallelism, 1);
        measure(state, MadeScene(scene, make));
    })->Unit(benchmark::kMillisecond);
}

template <class Run> void RegisterRun(const std::string& row, const std::string& scene, const MakeScene& make, Run run)
{
    Register(row, scene, make, [run](State& state, const Scene& made) {
        MeasureResult(
            state, [&] { return run(made); }, [](const auto&) {});
    });
}

void RegisterScene(const std::string& name, const MakeScene& make)
{
    RegisterRun("Voxelize", name, make, [](const Scene& scene) { return Voxelize(scene.axes, scene.triangles, Level); });
    RegisterRun("ExpandByOneVoxel(1,0)", name, make,
                [](const Scene& scene) { return ExpandByOneVoxel(scene.model, 1, 0, {}, true); });
    RegisterRun("ExpandAlongZ20", name, make, [](const Scene& scene) { return ExpandAlongZ(scene.model, 0, 20, {}, true); });
    RegisterRun("VdbDilateFace1", name, make, [](const Scene& scene) {
        Tree result = scene.tree;
        openvdb::tools::dilateActiveValues(result, 1, openvdb::tools::NN_FACE, openvdb::tools::PRESERVE_TILES, false);
        return result;
    });
    Register("Memory", name, make, [](State& state, const Scene& scene) { // the time means nothing here
        const auto ours = static_cast<double>(scene.model.AllocatedBytes());
        const auto vdb = static_cast<double>(scene.tree.memUsage());
        for (auto _ : state) benchmark::DoNotOptimize(ours);
        state.counters["oursBytes"] = ours;
        state.counters["vdbBytes"] = vdb;
    });
}

const bool registered = [] {
    const Axes metres(3.2, {0, 0, 0}, 0, 5); // voxels of 0.1 m
    for (const int length : {1250, 2500, 5000}) {
        RegisterScene("road/" + std::to_string(length), [=] { return Scene(metres, MakeRoad(length / std::numbers::sqrt2)); });
    }
    for (const int boxes : {100, 400}) {
        RegisterScene("site/" + std::to_string(boxes), [=] { return Scene(metres, MakeSite(boxes, 4000)); });
    }
    for (const int length : {1000, 4000}) {
        RegisterScene("pole/" + std::to_string(length), [=] { return Scene(Axes(1, {0, 0, 0}, 0, 0), MakePole(length)); });
    }
    return true;
}();

} // namespace
} // namespace brix::benchmarks
