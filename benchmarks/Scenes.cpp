#include "Scenes.h"

#include "Baselines.h"
#include "triangles/StlFiles.h"
#include "triangles/TrianglePieces.h"
#include "triangles/Voxelization.h"

#include <scenes/Building.h>
#include <scenes/City.h>

#include <cstdio>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>

namespace brix::benchmarks {
namespace {

using Source = std::function<std::vector<WorldTriangle>()>;

std::vector<std::pair<std::string, Source>> AllSources()
{
    const std::filesystem::path folder = BRIX_DATA;
    std::vector<std::pair<std::string, Source>> sources;
    for (const auto& [name, file] : std::initializer_list<std::pair<const char*, const char*>>{
             {"bunny", "stanford-bunny.stl"}, {"rocker-arm", "rocker-arm.stl"}, {"dungeon", "dungeon.stl"}}) {
        const std::filesystem::path path = folder / file;
        if (std::filesystem::exists(path)) sources.emplace_back(name, [path] { return LoadTrianglesFromSTL(path, false); });
    }
    sources.emplace_back("building", [] { return scenes::MakeBuilding({.storeys = 2}); });
    sources.emplace_back("city", [] { return scenes::MakeCity({.triangles = 1'000'000}); });
    return sources;
}

const std::vector<std::pair<std::string, Source>>& Sources()
{
    static const auto sources = AllSources();
    return sources;
}

// A frame whose finest voxels are cubes, `voxels` of them along the longest side of the triangles' bounding box. Faces of
// generated buildings would meet faces of voxels if the margin were half a voxel, and each would then be two voxels thick.
Axes FrameFor(const std::vector<WorldTriangle>& triangles, std::int64_t voxels)
{
    std::array<double, 3> lower = triangles.front().front();
    std::array<double, 3> upper = lower;
    for (const WorldTriangle& triangle : triangles) {
        for (const auto& corner : triangle) {
            for (std::size_t i = 0; i < 3; ++i) {
                lower[i] = std::min(lower[i], corner[i]);
                upper[i] = std::max(upper[i], corner[i]);
            }
        }
    }
    const double longest = std::max({upper[0] - lower[0], upper[1] - lower[1], upper[2] - lower[2]});
    const double margin = 0.35;
    const double width = longest / (static_cast<double>(voxels) - 2 * margin);
    for (double& coordinate : lower) coordinate -= margin * width;
    return Axes(width * (1 << GriddedScene::FinestLOD), lower, 0, GriddedScene::FinestLOD);
}

std::vector<LatticeTriangle> PiecesOf(const Axes& axes, const std::vector<WorldTriangle>& triangles)
{
    std::vector<LatticeTriangle> pieces;
    for (const LatticeTriangle& triangle : ConvertTriangles(axes, triangles)) {
        ForEachPiece(
            triangle, [](const TriangleBox&) { return true; },
            [&](const LatticeTriangle& piece, const TriangleBox&) { pieces.push_back(piece); });
    }
    return pieces;
}

[[noreturn]] void Fail(const std::string& message)
{
    std::fprintf(stderr, "%s\n", message.c_str());
    std::abort();
}

} // namespace

const std::vector<std::string>& SceneNames()
{
    static const auto names = [] {
        std::vector<std::string> all;
        for (const auto& [name, source] : Sources()) all.push_back(name);
        return all;
    }();
    return names;
}

const std::vector<WorldTriangle>& TrianglesOf(const std::string& scene)
{
    static std::map<std::string, std::vector<WorldTriangle>> made;
    auto& triangles = made[scene];
    if (triangles.empty()) {
        for (const auto& [name, source] : Sources())
            if (name == scene) triangles = source();
    }
    return triangles;
}

GriddedScene::GriddedScene(const std::string& scene, std::int64_t voxels)
    : worldTriangles(TrianglesOf(scene)),
      axes(FrameFor(worldTriangles, voxels)),
      extents(DetectTriangleExtents(axes, worldTriangles)),
      filed(extents),
      pieces(PiecesOf(axes, worldTriangles))
{
    filed.AddWorldTriangles(worldTriangles);
    VoxelModel<bool> model(extents, FinestLOD);
    VoxelizeTriangleModel(model, filed);
    DenseVoxels expected(FinestExtents());
    VoxelizeDensely(expected, VoxelSize(), pieces);
    if (!HoldsExactly(model, expected)) Fail("The engine and the baseline fill different voxels of " + scene + ".");

    filledAtLevel.back() = expected.Count();
    for (std::size_t lod = FinestLOD; lod > 0; --lod) {
        DenseVoxels coarser(extents.RescaledCopy(static_cast<std::int64_t>(lod) - 1));
        CoarsenFilledVoxels(coarser, expected);
        filledAtLevel[lod - 1] = coarser.Count();
        expected = std::move(coarser);
    }
}

const GriddedScene& Gridded(const std::string& scene, std::int64_t voxels)
{
    static std::map<std::pair<std::string, std::int64_t>, std::unique_ptr<GriddedScene>> made;
    auto& gridded = made[{scene, voxels}];
    if (!gridded) gridded = std::make_unique<GriddedScene>(scene, voxels);
    return *gridded;
}

void RequireEqual(const std::string& what, std::int64_t value, std::int64_t expected)
{
    if (value != expected) Fail(what + ": " + std::to_string(value) + " instead of " + std::to_string(expected) + ".");
}

} // namespace brix::benchmarks
