// Voxels to triangles, beside filling a fresh list of the same size with one triangle: what the memory alone costs.
#include "TessellationMeasures.h"

namespace brix::benchmarks {
namespace {

void MeasureFillingBaseline(benchmark::State& state, const GriddedScene& scene)
{
    const std::size_t count = Tessellated(VoxelsOf(scene)).size();
    const WorldTriangle triangle = scene.worldTriangles.front();
    MeasureResult(
        state, [&] { return std::vector<WorldTriangle>(count, triangle); }, [](const auto&) {});
    state.counters["triangles"] = static_cast<double>(count);
}

const bool registered = [] {
    RegisterForScenes("Tessellate", MeasureTessellate, TessellationResolutions);
    RegisterForScenes("TessellateBaselineFillList", MeasureFillingBaseline, TessellationResolutions);
    return true;
}();

} // namespace
} // namespace brix::benchmarks
