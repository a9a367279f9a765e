// Tessellation and surface meshes beside OpenVDB's volumeToMesh on the same voxels, all on one thread. OpenVDB gets a grid that
// is 1 in filled voxels and 0 elsewhere, of floats (what the function is made for) or of booleans, and makes the surface at 0.5
// without simplification: one quad between every filled voxel and an empty one beside it, with a vertex near every corner that
// voxels of both kinds meet at. SurfaceMesh makes the same faces; Tessellate makes closed boxes.
//
// The counters are bytes: of the mesh, and the most that was allocated at a time while it was made, the mesh included.
#include "Baselines.h"
#include "PeakMemory.h"
#include "TessellationMeasures.h"
#include "triangles/SurfaceMesh.h"

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

std::int64_t FaceCount(const Quads& mesh) { return std::ssize(mesh.quads); }
std::int64_t FaceCount(const FaceMesh& mesh) { return std::ssize(mesh.faces); }

template <class Item> double BytesOf(const std::vector<Item>& items) { return static_cast<double>(items.size() * sizeof(Item)); }
double BytesOf(const Quads& mesh) { return BytesOf(mesh.points) + BytesOf(mesh.triangles) + BytesOf(mesh.quads); }
double BytesOf(const FaceMesh& mesh) { return BytesOf(mesh.vertices) + BytesOf(mesh.normals) + BytesOf(mesh.faces); }

// make() returns a mesh of so many faces.
template <class Make> void MeasureMesh(benchmark::State& state, std::int64_t faces, const Make& make)
{
    double bytes = 0;
    MeasureResult(state, make, [&](const auto& mesh) {
        RequireEqual("Faces", FaceCount(mesh), faces);
        bytes = BytesOf(mesh);
    });
    state.counters["faces"] = static_cast<double>(faces);
    state.counters["bytes"] = bytes;
    state.counters["peakBytes"] = static_cast<double>(PeakBytes([&] { benchmark::DoNotOptimize(make()); }));
}

template <class Grid> void MeasureVolumeToMesh(benchmark::State& state, const GriddedScene& scene)
{
    const tbb::global_control oneThread(tbb::global_control::max_allowed_parallelism, 1);
    const DenseVoxels voxels = DenseVoxelsOf(scene);
    const auto grid = GridOf<Grid>(voxels);
    MeasureMesh(state, CountExposedFaces(voxels), [&] {
        Quads mesh;
        openvdb::tools::volumeToMesh(*grid, mesh.points, mesh.triangles, mesh.quads, 0.5);
        return mesh;
    });
}

void MeasureSurfaceMesh(benchmark::State& state, const GriddedScene& scene, const SurfaceMeshOptions& options)
{
    const VoxelModel<bool> model = VoxelsOf(scene);
    MeasureMesh(state, CountExposedFaces(DenseVoxelsOf(scene)),
                [&] { return SurfaceMesh(model, GriddedScene::FinestLOD, options); });
}

void MeasureBlockyMesh(benchmark::State& state, const GriddedScene& scene) { MeasureSurfaceMesh(state, scene, {}); }

void MeasureSmoothMesh(benchmark::State& state, const GriddedScene& scene)
{
    MeasureSurfaceMesh(state, scene, {SurfaceStyle::Smooth, 0});
}

const bool registered = [] {
    RegisterForScenes("Tessellate", MeasureTessellate, TessellationResolutions);
    RegisterForScenes("BlockyMesh", MeasureBlockyMesh, TessellationResolutions);
    RegisterForScenes("SmoothMesh", MeasureSmoothMesh, TessellationResolutions);
    RegisterForScenes("OpenVdbVolumeToMesh", MeasureVolumeToMesh<openvdb::FloatGrid>, TessellationResolutions);
    RegisterForScenes("OpenVdbVolumeToMeshOfBooleans", MeasureVolumeToMesh<openvdb::BoolGrid>, TessellationResolutions);
    return true;
}();

} // namespace
} // namespace brix::benchmarks
