// The engine's side of tessellation, as the program of its baseline and the program of its peer measure it: the finest level of a
// scene into a fresh list.
#pragma once

#include "Measure.h"
#include "triangles/Tessellation.h"
#include "triangles/Voxelization.h"

namespace brix::benchmarks {

/// At 1024 voxels the lists would take gigabytes.
inline constexpr std::array<std::int64_t, 2> TessellationResolutions{256, 512};

inline VoxelModel<bool> VoxelsOf(const GriddedScene& scene)
{
    VoxelModel<bool> model(scene.extents, GriddedScene::FinestLOD);
    VoxelizeTriangleModel(model, scene.filed);
    return model;
}

inline std::vector<WorldTriangle> Tessellated(const VoxelModel<bool>& model)
{
    std::vector<WorldTriangle> triangles;
    TessellateVoxelModel(triangles, model, GriddedScene::FinestLOD);
    return triangles;
}

/// The filled voxels that a list of boxes covers, twelve triangles each: triangles 1 and 7 of a box hold its lower and upper
/// corner.
inline std::int64_t CountCoveredVoxels(const GriddedScene& scene, const std::vector<WorldTriangle>& triangles)
{
    const double width = scene.axes.WorldVoxelWidth(GriddedScene::FinestLOD);
    double volume = 0;
    for (std::size_t box = 0; box < triangles.size(); box += 12) {
        const auto& lower = triangles[box][0];
        const auto& upper = triangles[box + 7][2];
        volume += (upper[0] - lower[0]) / width * ((upper[1] - lower[1]) / width) * ((upper[2] - lower[2]) / width);
    }
    return static_cast<std::int64_t>(volume + 0.5);
}

inline void MeasureTessellate(benchmark::State& state, const GriddedScene& scene)
{
    const VoxelModel<bool> model = VoxelsOf(scene);
    RequireEqual("Voxels in boxes", CountCoveredVoxels(scene, Tessellated(model)), scene.FilledVoxels());
    std::int64_t count = 0;
    MeasureResult(
        state, [&] { return Tessellated(model); }, [&](const auto& triangles) { count = std::ssize(triangles); });
    state.counters["triangles"] = static_cast<double>(count);
    state.counters["voxels"] = static_cast<double>(scene.FilledVoxels());
}

} // namespace brix::benchmarks
