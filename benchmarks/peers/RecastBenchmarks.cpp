// Voxelization beside Recast's rcRasterizeTriangles, which clips each triangle to columns of cells and merges the spans of
// heights: in floats, at the same cell size, from an indexed float mesh, into a fresh heightfield. Both sides start from world
// coordinates in FileAndVoxelize; Voxelize starts from filed triangles. Recast's Y is the height.
#include "VoxelizationMeasures.h"
#include "operations/BasicOperations.h"
#include "travel/PathModel.h"
#include "triangles/TriangleMesh.h"

#include <Recast.h>

#include <algorithm>
#include <cstdlib>
#include <map>

namespace brix::benchmarks {
namespace {

struct IndexedFloats
{
    std::vector<float> vertices; // x, z, y each
    std::vector<int> indices;
    std::vector<unsigned char> areas;
};

IndexedFloats MakeIndexedFloats(const std::vector<WorldTriangle>& triangles)
{
    const TriangleMesh mesh(triangles);
    IndexedFloats floats;
    for (const auto& [x, y, z] : mesh.VerticesRef()) {
        for (const double coordinate : {x, z, y}) floats.vertices.push_back(static_cast<float>(coordinate));
    }
    for (const auto& triangle : mesh.IndexedTrianglesRef()) {
        for (const std::int64_t index : triangle) floats.indices.push_back(static_cast<int>(index));
    }
    floats.areas.assign(triangles.size(), RC_WALKABLE_AREA);
    return floats;
}

const IndexedFloats& FloatsOf(const GriddedScene& scene)
{
    static std::map<const std::vector<WorldTriangle>*, IndexedFloats> made;
    auto& floats = made[&scene.worldTriangles];
    if (floats.areas.empty()) floats = MakeIndexedFloats(scene.worldTriangles);
    return floats;
}

struct FreeHeightfield
{
    void operator()(rcHeightfield* field) const { rcFreeHeightField(field); }
};
using Heightfield = std::unique_ptr<rcHeightfield, FreeHeightfield>;

// An empty heightfield whose cells are the voxels of the scene's extents at the finest level.
Heightfield EmptyHeightfield(rcContext& context, const GriddedScene& scene)
{
    const Extents extents = scene.FinestExtents();
    const auto lower = scene.axes.ToWorldCoordinates(scene.axes.VoxelCorner(extents.LowerIndices(), extents.VoxelLOD()));
    const auto upper =
        scene.axes.ToWorldCoordinates(scene.axes.VoxelCorner(Plus(extents.UpperIndices(), {1, 1, 1}), extents.VoxelLOD()));
    const auto swapped = [](const std::array<double, 3>& point) {
        return std::array{static_cast<float>(point[0]), static_cast<float>(point[2]), static_cast<float>(point[1])};
    };
    const Triple size = Plus(Minus(extents.UpperIndices(), extents.LowerIndices()), {1, 1, 1});
    Heightfield field(rcAllocHeightfield());
    rcCreateHeightfield(&context, *field, static_cast<int>(size[0]), static_cast<int>(size[1]), swapped(lower).data(),
                        swapped(upper).data(), static_cast<float>(scene.axes.WorldVoxelWidth(GriddedScene::FinestLOD)),
                        static_cast<float>(scene.axes.WorldVoxelHeight()));
    return field;
}

std::int64_t CountCells(const rcHeightfield& field)
{
    std::int64_t count = 0;
    for (int column = 0; column < field.width * field.height; ++column) {
        for (const rcSpan* span = field.spans[column]; span != nullptr; span = span->next) count += span->smax - span->smin;
    }
    return count;
}

// Floats round where the engine is exact, so the results agree only nearly; more than one in a hundred would be different work.
void CheckCells(const GriddedScene& scene, std::int64_t cells)
{
    if (std::abs(cells - scene.FilledVoxels()) > scene.FilledVoxels() / 100)
        RequireEqual("Cells of the heightfield", cells, scene.FilledVoxels());
}

void MeasureRecast(benchmark::State& state, const GriddedScene& scene)
{
    rcContext context(false);
    const IndexedFloats& floats = FloatsOf(scene);
    std::int64_t cells = 0;
    MeasureOnFresh(
        state, [&] { return EmptyHeightfield(context, scene); },
        [&](Heightfield& field) {
            rcRasterizeTriangles(&context, floats.vertices.data(), static_cast<int>(floats.vertices.size() / 3),
                                 floats.indices.data(), floats.areas.data(), static_cast<int>(floats.areas.size()), *field);
        },
        [&](const Heightfield& field) { CheckCells(scene, cells = CountCells(*field)); });
    state.counters["cells"] = static_cast<double>(cells);
    state.counters["voxels"] = static_cast<double>(scene.FilledVoxels());
}

// From triangles to where an agent can stand, 5 voxels wide and 18 high, who climbs one voxel. Rules differ at ledges, which
// Recast forbids and the engine forbids above drops of two voxels: the counts stand beside the times and are not compared.
constexpr int AgentRadius = 2;
constexpr int AgentHeight = 18;

struct FreeCompactHeightfield
{
    void operator()(rcCompactHeightfield* field) const { rcFreeCompactHeightfield(field); }
};

void MeasureWalkableSpaceOfRecast(benchmark::State& state, const GriddedScene& scene)
{
    rcContext context(false);
    const IndexedFloats& floats = FloatsOf(scene);
    std::int64_t standing = 0;
    MeasureOnFresh(
        state, [&] { return std::unique_ptr<rcCompactHeightfield, FreeCompactHeightfield>(rcAllocCompactHeightfield()); },
        [&](const auto& compact) {
            const Heightfield field = EmptyHeightfield(context, scene);
            rcRasterizeTriangles(&context, floats.vertices.data(), static_cast<int>(floats.vertices.size() / 3),
                                 floats.indices.data(), floats.areas.data(), static_cast<int>(floats.areas.size()), *field);
            rcFilterLowHangingWalkableObstacles(&context, 1, *field);
            rcFilterLedgeSpans(&context, AgentHeight, 1, *field);
            rcFilterWalkableLowHeightSpans(&context, AgentHeight, *field);
            if (!rcBuildCompactHeightfield(&context, AgentHeight, 1, *field, *compact)) std::abort();
            rcErodeWalkableArea(&context, AgentRadius, *compact);
        },
        [&](const auto& compact) {
            standing = std::count(compact->areas, compact->areas + compact->spanCount, RC_WALKABLE_AREA);
        });
    state.counters["standing"] = static_cast<double>(standing);
}

void MeasureWalkableSpace(benchmark::State& state, const GriddedScene& scene)
{
    std::int64_t standing = 0;
    MeasureOnFresh(
        state, [&] { return VoxelModel<bool>(scene.extents, GriddedScene::FinestLOD); },
        [&](VoxelModel<bool>& model) {
            TriangleModel filed(scene.extents);
            filed.AddWorldTriangles(scene.worldTriangles);
            VoxelizeTriangleModel(model, filed);
            model = PathModel(model, GriddedScene::FinestLOD, 2 * AgentRadius + 1, AgentHeight, false).TraversableVoxels();
        },
        [&](const VoxelModel<bool>& model) { standing = CountFilled(model, GriddedScene::FinestLOD); });
    state.counters["standing"] = static_cast<double>(standing);
}

const bool registered = [] {
    RegisterForScenes("WalkableSpace", MeasureWalkableSpace, Resolutions);
    RegisterForScenes("RecastWalkableSpace", MeasureWalkableSpaceOfRecast, Resolutions);
    RegisterForScenes("Voxelize", MeasureVoxelize, Resolutions);
    RegisterForScenes("FileAndVoxelize", MeasureFileAndVoxelize, Resolutions);
    RegisterForScenes("RecastRasterizeTriangles", MeasureRecast, Resolutions);
    return true;
}();

} // namespace
} // namespace brix::benchmarks
