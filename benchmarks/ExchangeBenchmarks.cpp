// A model's content out of the engine and back:
//
//   CopyVoxels        all voxels to bytes           beside   FillBytes         as many bytes filled with one value
//                                                            CopyVoxelsNaive   a look-up for every voxel
//   ModelFromVoxels   bytes to a model, one level   beside   FillBytes
//   ForEachFilledRun  all runs, counted             beside   CopyVoxelsNaive
//   SaveModel, LoadModel, ContentHash               beside   CopySaved         the saved bytes, copied
//
// Memory that is written to is made before the time starts; counters give the bytes of a second.
#include "Measure.h"
#include "OperationScenes.h"

#include "model/FilledRuns.h"
#include "model/VoxelArrays.h"
#include "model/VoxelIterator.h"
#include "operations/BasicOperations.h"
#include "storage/SavedModel.h"

#include <cstring>

namespace brix::benchmarks {
namespace {

using State = benchmark::State;
using Scene = OperationScene;
using Bytes = std::vector<std::uint8_t>;

void SetBytes(State& state, std::size_t size) { state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(size)); }

// Measures copy(bytes) into memory for all voxels, and counts what it gave.
template <class Copy> void MeasureCopy(State& state, const Scene& scene, const Copy& copy)
{
    Bytes bytes(DenseSize(scene.extents), 7);
    for (auto _ : state) {
        copy(bytes);
        benchmark::ClobberMemory();
    }
    RequireEqual("Bytes of filled voxels", std::count(bytes.begin(), bytes.end(), std::uint8_t{1}),
                 CountFilled(scene.model, scene.Level()));
    SetBytes(state, bytes.size());
}

void MeasureCopyVoxels(State& state, const Scene& scene)
{
    MeasureCopy(state, scene, [&](Bytes& bytes) { CopyVoxels(scene.model, scene.extents, bytes); });
}

void MeasureCopyNaively(State& state, const Scene& scene)
{
    MeasureCopy(state, scene, [&](Bytes& bytes) {
        std::size_t i = 0;
        ForEachTriple(scene.extents.LowerIndices(), scene.extents.UpperIndices(),
                      [&](const Triple& voxel) { bytes[i++] = scene.model.FindVoxel(voxel, scene.Level()).Value() ? 1 : 0; });
    });
}

void MeasureFill(State& state, const Scene& scene)
{
    Bytes bytes(DenseSize(scene.extents), 7);
    for (auto _ : state) {
        std::fill(bytes.begin(), bytes.end(), std::uint8_t{1});
        benchmark::ClobberMemory();
    }
    SetBytes(state, bytes.size());
}

void MeasureModelFromVoxels(State& state, const Scene& scene)
{
    Bytes bytes(DenseSize(scene.extents));
    CopyVoxels(scene.model, scene.extents, bytes);
    const Extents extents = scene.extents;
    MeasureResult(
        state, [&] { return ModelFromVoxels(extents, bytes, scene.Level()); },
        [&](const VoxelModel<bool>& model) {
            RequireEqual("Voxels", CountFilled(model, scene.Level()), CountFilled(scene.model, scene.Level()));
        });
    SetBytes(state, bytes.size());
}

void MeasureRuns(State& state, const Scene& scene)
{
    std::int64_t voxels = 0;
    for (auto _ : state) {
        voxels = 0;
        ForEachFilledRun(scene.model, scene.Level(), [&](const FilledRun& run) { voxels += run.upperX - run.lowerX + 1; });
    }
    RequireEqual("Voxels of runs", voxels, CountFilled(scene.model, scene.Level()));
}

void MeasureSave(State& state, const Scene& scene)
{
    const std::size_t size = SaveModel(scene.model).size();
    MeasureResult(
        state, [&] { return SaveModel(scene.model); },
        [&](const Bytes& saved) { RequireEqual("Saved bytes", std::ssize(saved), static_cast<std::int64_t>(size)); });
    SetBytes(state, size);
    state.counters["ofMemory"] = static_cast<double>(size) / static_cast<double>(scene.model.AllocatedBytes());
}

void MeasureLoad(State& state, const Scene& scene)
{
    const Bytes saved = SaveModel(scene.model);
    MeasureResult(
        state, [&] { return LoadModel(saved); },
        [&](const VoxelModel<bool>& model) {
            RequireEqual("Loaded voxels", CountFilled(model, scene.Level()), CountFilled(scene.model, scene.Level()));
        });
    SetBytes(state, saved.size());
}

void MeasureHash(State& state, const Scene& scene)
{
    for (auto _ : state) benchmark::DoNotOptimize(ContentHash(scene.model));
    SetBytes(state, SaveModel(scene.model).size());
}

void MeasureCopySaved(State& state, const Scene& scene)
{
    const Bytes saved = SaveModel(scene.model);
    MeasureResult(
        state, [&] { return Bytes(saved); },
        [&](const Bytes& copy) { RequireEqual("Bytes", std::ssize(copy), std::ssize(saved)); });
    SetBytes(state, saved.size());
}

void Register(const std::string& name, const std::string& scene, void (*measure)(State&, const Scene&))
{
    const std::string fullName = name + "/" + scene + "/512";
    benchmark::RegisterBenchmark(fullName.c_str(), [=](State& state) {
        measure(state, SceneOfOperations(scene, 512));
    })->Unit(benchmark::kMillisecond);
}

const bool registered = [] {
    for (const std::string scene : {"bunny-shell", "bunny-solid", "city", "noise"}) {
        if (!HasOperationScene(scene)) continue;
        Register("CopyVoxels", scene, MeasureCopyVoxels);
        Register("CopyVoxelsNaive", scene, MeasureCopyNaively);
        Register("FillBytes", scene, MeasureFill);
        Register("ModelFromVoxels", scene, MeasureModelFromVoxels);
        Register("ForEachFilledRun", scene, MeasureRuns);
        Register("SaveModel", scene, MeasureSave);
        Register("LoadModel", scene, MeasureLoad);
        Register("ContentHash", scene, MeasureHash);
        Register("CopySaved", scene, MeasureCopySaved);
    }
    return true;
}();

} // namespace
} // namespace brix::benchmarks
