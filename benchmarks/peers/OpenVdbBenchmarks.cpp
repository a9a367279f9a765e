// Tessellation beside OpenVDB's volumeToMesh on the same voxels, both on one thread. OpenVDB gets a grid that is 1 in filled
// voxels and 0 elsewhere, of floats (what the function is made for) or of booleans, and makes the surface at 0.5 without
// simplification: one quad between every filled voxel and an empty one beside it. The engine makes closed boxes.
#include "Baselines.h"
#include "TessellationMeasures.h"

#include <openvdb/openvdb.h>
#include <openvdb/tools/VolumeToMesh.h>
#include <tbb/global_control.h>

namespace brix::benchmarks {
namespace {

struct Quads
{
    std::vector<openvdb::Vec3s> points;
    std::vector<openvdb::Vec3I> triangles;
    std::vector<openvdb::Vec4I> quads;
};

DenseVoxels DenseVoxelsOf(const GriddedScene& scene)
{
    DenseVoxels voxels(scene.FinestExtents());
    VoxelizeDensely(voxels, scene.VoxelSize(), scene.pieces);
    return voxels;
}

template <class Grid> typename Grid::Ptr GridOf(const DenseVoxels& voxels)
{
    openvdb::initialize();
    auto grid = Grid::create(typename Grid::ValueType(0));
    auto accessor = grid->getAccessor();
    voxels.ForEachSet([&](const Triple& voxel) {
        accessor.setValue(openvdb::Coord(static_cast<int>(voxel[0]), static_cast<int>(voxel[1]), static_cast<int>(voxel[2])),
                          typename Grid::ValueType(1));
    });
    return grid;
}

std::int64_t CountExposedFaces(const DenseVoxels& voxels)
{
    constexpr std::array<Triple, 6> neighbours{{{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}}};
    std::int64_t count = 0;
    voxels.ForEachSet([&](const Triple& voxel) {
        for (const Triple& step : neighbours) {
            const Triple beside = Plus(voxel, step);
            count += voxels.ExtentsRef().ContainsVoxel(beside) && voxels.IsSet(beside) ? 0 : 1;
        }
    });
    return count;
}

template <class Grid> void MeasureVolumeToMesh(benchmark::State& state, const GriddedScene& scene)
{
    const tbb::global_control oneThread(tbb::global_control::max_allowed_parallelism, 1);
    const DenseVoxels voxels = DenseVoxelsOf(scene);
    const auto grid = GridOf<Grid>(voxels);
    const std::int64_t faces = CountExposedFaces(voxels);
    MeasureResult(
        state,
        [&] {
            Quads mesh;
            openvdb::tools::volumeToMesh(*grid, mesh.points, mesh.triangles, mesh.quads, 0.5);
            return mesh;
        },
        [&](const Quads& mesh) { RequireEqual("Quads", std::ssize(mesh.quads), faces); });
    state.counters["quads"] = static_cast<double>(faces);
}

const bool registered = [] {
    RegisterForScenes("Tessellate", MeasureTessellate, TessellationResolutions);
    RegisterForScenes("OpenVdbVolumeToMesh", MeasureVolumeToMesh<openvdb::FloatGrid>, TessellationResolutions);
    RegisterForScenes("OpenVdbVolumeToMeshOfBooleans", MeasureVolumeToMesh<openvdb::BoolGrid>, TessellationResolutions);
    return true;
}();

} // namespace
} // namespace brix::benchmarks
