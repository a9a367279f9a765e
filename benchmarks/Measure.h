// How a benchmark is measured: one piece of work on a fresh object, made and judged outside the time.
#pragma once

#include "Scenes.h"

#include <benchmark/benchmark.h>

#include <memory>

namespace brix::benchmarks {

/// Times work(object) alone: `object` is what make() returns, check(object) sees what became of it. Its end is not timed either.
template <class Make, class Work, class Check>
void MeasureOnFresh(benchmark::State& state, const Make& make, const Work& work, const Check& check)
{
    for (auto _ : state) {
        state.PauseTiming();
        auto object = std::unique_ptr<decltype(make())>(new auto(make()));
        state.ResumeTiming();
        work(*object);
        benchmark::ClobberMemory();
        state.PauseTiming();
        check(*object);
        object.reset();
        state.ResumeTiming();
    }
}

/// Times work() alone; check(result) sees the result, whose end is not timed.
template <class Work, class Check> void MeasureResult(benchmark::State& state, const Work& work, const Check& check)
{
    for (auto _ : state) {
        auto result = std::unique_ptr<decltype(work())>(new auto(work()));
        benchmark::DoNotOptimize(*result);
        state.PauseTiming();
        check(*result);
        result.reset();
        state.ResumeTiming();
    }
}

/// Registers measure(state, scene on its grid) as name/scene/voxels for all scenes and the resolutions given.
template <class Measure, class Voxels>
void RegisterForScenes(const std::string& name, const Measure& measure, const Voxels& resolutions)
{
    for (const std::string& scene : SceneNames()) {
        for (const std::int64_t voxels : resolutions) {
            const std::string fullName = name + "/" + scene + "/" + std::to_string(voxels);
            benchmark::RegisterBenchmark(fullName.c_str(), [=](benchmark::State& state) {
                measure(state, Gridded(scene, voxels));
            })->Unit(benchmark::kMillisecond);
        }
    }
}

} // namespace brix::benchmarks
