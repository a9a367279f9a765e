// What it costs to watch, and how soon an operation ends:
//
//   Plain, Watched   an operation without a watch, and with one that lets it go on
//   Stopped          one that is stopped after about a third of its work; counters: milliseconds
//       longest      between two questions of the operation, in the whole of its course
//       left         from the answer "stop" until the exception has arrived, which includes giving memory back
#include "Measure.h"
#include "OperationScenes.h"

#include <brix.h>

#include <functional>
#include <sstream>

namespace brix::benchmarks {
namespace {

using State = benchmark::State;
using Scene = OperationScene;
using Clock = std::chrono::steady_clock;
using Operation = std::function<void(const Scene&)>;

double Milliseconds(Clock::duration duration) { return std::chrono::duration<double, std::milli>(duration).count(); }

void MeasurePlain(State& state, const Scene& scene, const Operation& run)
{
    for (auto _ : state) run(scene);
}

void MeasureWatched(State& state, const Scene& scene, const Operation& run)
{
    const Watch watch([](double) { return true; });
    for (auto _ : state) run(scene);
}

// The longest time between two questions, and their number.
struct Course
{
    Clock::duration longest{};
    std::size_t questions = 0;
};

Course CourseOf(const Scene& scene, const Operation& run)
{
    Course course;
    Clock::time_point last = Clock::now();
    const Watch watch(
        [&](double) {
            const Clock::time_point now = Clock::now();
            course.longest = std::max(course.longest, now - last);
            last = now;
            ++course.questions;
            return true;
        },
        Clock::duration(0));
    run(scene);
    return course;
}

void MeasureStopped(State& state, const Scene& scene, const Operation& run)
{
    run(scene);
    const Course course = CourseOf(scene, run);
    Clock::duration left{};
    for (auto _ : state) {
        std::size_t questions = 0;
        Clock::time_point stopped;
        const Watch watch(
            [&](double) {
                stopped = Clock::now();
                return ++questions <= course.questions / 3;
            },
            Clock::duration(0));
        try {
            run(scene);
            state.SkipWithError("it was not stopped");
        } catch (const Cancelled&) {
            left = std::max(left, Clock::now() - stopped);
        }
    }
    state.counters["longest"] = Milliseconds(course.longest);
    state.counters["left"] = Milliseconds(left);
}

struct Named
{
    const char* name;
    Operation run;
};

template <class Work> Named Make(const char* name, const Work& work)
{
    return {name, [work](const Scene& scene) { benchmark::DoNotOptimize(work(scene)); }};
}

Triple MiddleOf(const Scene& scene)
{
    Triple middle = scene.extents.LowerIndices();
    for (std::size_t i = 0; i < 3; ++i) middle[i] += (scene.extents.UpperIndices()[i] - middle[i]) / 2;
    return scene.extents.AxesRef().VoxelCenter(middle, scene.Level());
}

std::vector<Named> Operations()
{
    return {Make("Union",
                 [](const Scene& s) {
                     return Union({&s.model, &s.other}, s.Level(), false);
                 }),
            Make("Invert", [](const Scene& s) { return Invert(s.model); }),
            Make("ExpandHorizontally33", [](const Scene& s) { return ExpandHorizontally(s.model, 33, std::nullopt, true); }),
            Make("ReduceByOneVoxel", [](const Scene& s) { return ReduceByOneVoxel(s.model, 1, 1, std::nullopt, false); }),
            Make("FillEnclosedRegions", [](const Scene& s) { return FillEnclosedRegions(s.model); }),
            Make("AutoSplit", [](const Scene& s) { return AutoSplit(s.model); }),
            Make("DensityMap",
                 [](const Scene& s) {
                     return DensityMap({&s.model, &s.other}, {1, 2}, {1, 3}, s.Level());
                 }),
            Make("Tessellate",
                 [](const Scene& s) {
                     std::vector<WorldTriangle> triangles;
                     TessellateVoxelModel(triangles, s.model, s.Level());
                     return triangles;
                 }),
            Make("Cuboidize", [](const Scene& s) { return CuboidizeVoxelModel(s.model, s.Level()); }),
            Make("Solidize", [](const Scene& s) { return SolidizeVoxelModel(s.model, s.Level()); }),
            Make("PathModel", [](const Scene& s) { return PathModel(s.model, s.Level(), 3, 10, true); }),
            Make("VisibilityFromDirection",
                 [](const Scene& s) {
                     return VisibilityFromDirection(s.model, {3, -2, 1}, s.Level(), 0.5);
                 }),
            Make("VisibilityFromPoint",
                 [](const Scene& s) { return VisibilityFromPoint(s.model, MiddleOf(s), s.Level(), MaxCoordinate, 0.5, false); }),
            Make("SaveModel", [](const Scene& s) { return SaveModel(s.model); }),
            Make("CopyVoxels", [](const Scene& s) {
                static std::vector<std::uint8_t> bytes; // the host's memory, which is made before
                bytes.resize(DenseSize(s.extents));
                CopyVoxels(s.model, s.extents, bytes);
                return bytes.front();
            })};
}

const bool registered = [] {
    for (const std::string scene : {"building", "bunny-solid", "city", "noise"}) {
        if (!HasOperationScene(scene)) continue;
        const bool isNoise = scene == "noise"; // which has a hundred times the boxes
        for (const std::int64_t voxels : {isNoise ? 64 : 256, isNoise ? 128 : 1024}) {
            for (const Named& operation : Operations()) {
                const auto add = [&](const char* how, void (*measure)(State&, const Scene&, const Operation&)) {
                    const std::string name = std::string(how) + "/" + operation.name + "/" + scene + "/" + std::to_string(voxels);
                    benchmark::RegisterBenchmark(name.c_str(), [=](State& state) {
                        measure(state, SceneOfOperations(scene, voxels), operation.run);
                    })->Unit(benchmark::kMillisecond);
                };
                if (voxels <= 256) add("Plain", MeasurePlain);
                if (voxels <= 256) add("Watched", MeasureWatched);
                add("Stopped", MeasureStopped);
            }
        }
    }
    return true;
}();

} // namespace
} // namespace brix::benchmarks
