// Surface meshes against what they stand for: each edge has two faces, the volume is the voxels', and shapes are counted apart.
#include "triangles/SurfaceMesh.h"

#include "operations/BasicOperations.h"
#include "operations/SurfaceOperations.h"
#include "support/RandomModels.h"
#include "triangles/StlReader.h"
#include "triangles/SurfaceShapes.h"
#include "triangles/Voxelize.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <set>

namespace brix {
namespace {

using namespace tests;
using Edge = std::array<std::uint32_t, 2>;
using Position = std::array<double, 3>;

const Axes PlainAxes(40000, {0, 0, 0}, 0, 0); // a voxel of level 0 is 40000 wide and high
const SurfaceMeshOptions Smooth{.style = SurfaceStyle::Smooth, .smoothingSteps = 3};

// What is wrong with the edges and vertices of a mesh; empty when nothing is.
std::string Flaws(const FaceMesh& mesh)
{
    std::vector<Edge> edges;
    std::map<Edge, std::uint32_t> across; // the vertex that follows, by a vertex and the one before it in its ring
    std::vector<std::size_t> valence(mesh.vertices.size());
    for (std::size_t t = 0; t < 2 * mesh.faces.size(); ++t) {
        const auto triangle = TriangleOf(mesh, t);
        for (std::size_t i = 0; i < 3; ++i) {
            edges.push_back({triangle[i], triangle[(i + 1) % 3]});
            across[{triangle[i], triangle[(i + 1) % 3]}] = triangle[(i + 2) % 3];
            ++valence[triangle[i]];
        }
    }
    std::sort(edges.begin(), edges.end());
    if (std::adjacent_find(edges.begin(), edges.end()) != edges.end()) return "an edge is used twice in one direction";
    for (const Edge& edge : edges) {
        if (edge[0] == edge[1]) return "an edge of one vertex";
        if (!std::binary_search(edges.begin(), edges.end(), Edge{edge[1], edge[0]})) return "an open edge";
    }
    for (auto edge = edges.begin(); edge != edges.end(); ++edge) {
        if (edge != edges.begin() && (*edge)[0] == edge[-1][0]) continue;
        std::size_t length = 1;
        for (std::uint32_t at = across[*edge]; at != (*edge)[1]; at = across[{(*edge)[0], at}]) ++length;
        if (length != valence[(*edge)[0]]) return "a vertex of several rings";
    }
    return std::count(valence.begin(), valence.end(), 0U) == 0 ? "" : "a vertex without triangles";
}

double Volume(const FaceMesh& mesh)
{
    double volume = 0;
    if (mesh.vertices.empty()) return 0;
    const Position& o = mesh.vertices.front();
    for (std::size_t t = 0; t < 2 * mesh.faces.size(); ++t) {
        const auto triangle = TriangleOf(mesh, t);
        std::array<Position, 3> p;
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t k = 0; k < 3; ++k) p[i][k] = mesh.vertices[triangle[i]][k] - o[k];
        for (std::size_t k = 0; k < 3; ++k) {
            const std::size_t l = (k + 1) % 3;
            const std::size_t m = (k + 2) % 3;
            volume += p[0][k] * (p[1][l] * p[2][m] - p[1][m] * p[2][l]) / 6;
        }
    }
    return volume;
}

// Faces, and the Euler characteristic of the surface, counted voxel by voxel. Voxels that share faces make a solid of voxels less
// pairs, and fours around an edge, less eights around a corner; its surface has twice as much, and twice more for each edge at
// which it touches itself with both ends joined.
struct Counts
{
    std::size_t faces = 0;
    std::int64_t euler = 0;

    explicit Counts(const ReferenceModel& model)
    {
        const Extents& extents = model.ExtentsRef();
        const Triple before = Minus(extents.LowerIndices(), {1, 1, 1});
        std::int64_t solid = 0;
        ForEachTriple(before, extents.UpperIndices(), [&](const Triple& v) {
            const auto at = [&](std::int64_t x, std::int64_t y, std::int64_t z) { return model.Value(Plus(v, {x, y, z})); };
            const bool here = at(0, 0, 0);
            if (here) ++solid;
            int filled = 0;
            ForEachTriple({0, 0, 0}, {1, 1, 1}, [&](const Triple& step) { filled += model.Value(Plus(v, step)) ? 1 : 0; });
            if (filled == 8) --solid;
            if (filled == 6) { // two empty voxels that meet at a corner alone: the corner is matter
                ForEachTriple({0, 0, 0}, {1, 1, 0}, [&](const Triple& step) {
                    if (!model.Value(Plus(v, step)) && !model.Value(Plus(v, Minus({1, 1, 1}, step)))) ++solid;
                });
            }
            for (std::size_t axis = 0; axis < 3; ++axis) {
                Triple b{};
                Triple c{};
                Triple a{};
                a[axis] = b[(axis + 1) % 3] = c[(axis + 2) % 3] = 1;
                const auto value = [&](const Triple& step) { return model.Value(Plus(v, step)); };
                if (value(a) != here) ++faces;
                if (value(a) && here) --solid;
                if (here && value(b) && value(c) && value(Plus(b, c))) ++solid;
                if (here != value(Plus(b, c)) || value(b) != value(c) || here == value(b)) continue;
                const auto joinsAt = [&](const Triple& end) {
                    const std::array beyond{value(end), value(Plus(end, Plus(b, c))), value(Plus(end, b)), value(Plus(end, c))};
                    const bool joinsPair = here ? beyond[0] && beyond[1] : beyond[2] && beyond[3];
                    return joinsPair && std::count(beyond.begin(), beyond.end(), true) >= 3;
                };
                if (joinsAt(a) && joinsAt(Minus({}, a))) ++solid;
            }
        });
        euler = 2 * solid;
    }
};

// Blocky and smooth, of one level of a model.
void ExpectSound(const VoxelModel<bool>& model, const ReferenceModel& reference)
{
    const std::int64_t lod = reference.VoxelLOD();
    const Axes& axes = model.AxesRef();
    const FaceMesh blocky = SurfaceMesh(model, lod);
    const Counts counts(reference);
    ASSERT_EQ(Flaws(blocky), "");
    ASSERT_EQ(blocky.faces.size(), counts.faces);
    const SurfaceSize size = SizeOfSurface(model, lod);
    ASSERT_EQ(size.faces, std::ssize(blocky.faces));
    ASSERT_EQ(size.vertices, std::ssize(blocky.vertices));
    const auto vertexCount = static_cast<std::int64_t>(blocky.vertices.size());
    EXPECT_EQ(vertexCount - static_cast<std::int64_t>(counts.faces), counts.euler);
    const double voxel = axes.WorldVoxelWidth(lod) * axes.WorldVoxelWidth(lod) * axes.WorldVoxelHeight();
    EXPECT_NEAR(Volume(blocky) / voxel, static_cast<double>(reference.CountFilled()), 1e-4);

    const FaceMesh smooth = SurfaceMesh(model, lod, Smooth);
    ASSERT_EQ(smooth.faces, blocky.faces);
    const auto [origin, sin, cos, bias, units] = axes.WorldConversion();
    for (std::size_t i = 0; i < blocky.vertices.size(); ++i) {
        const double dx = smooth.vertices[i][0] - blocky.vertices[i][0];
        const double dy = smooth.vertices[i][1] - blocky.vertices[i][1];
        const double reach = 0.5001 * axes.WorldVoxelWidth(lod);
        ASSERT_LE(std::abs(cos * dx + sin * dy), reach);
        ASSERT_LE(std::abs(cos * dy - sin * dx), reach);
        ASSERT_LE(std::abs(smooth.vertices[i][2] - blocky.vertices[i][2]), 0.5001 * axes.WorldVoxelHeight());
        ASSERT_NEAR(std::hypot(smooth.normals[i][0], smooth.normals[i][1], smooth.normals[i][2]), 1, 1e-5);
    }
}

TEST(SurfaceMesh, HasTwoFacesAtEachEdgeAndTheVolumeOfTheVoxels)
{
    for (const RandomModel& random : RandomModels(2300, Rounds(60))) {
        for (const ReferenceModel& level : random.reference.AllLevels()) {
            ExpectSound(random.voxels, level);
            if (HasFatalFailure()) FAIL() << random << " level " << level.VoxelLOD();
        }
    }
}

ReferenceModel Noise(std::uint64_t seed, const Triple& lower, const Triple& size, double share)
{
    Random random(seed);
    const Extents extents(PlainAxes, lower, Minus(Plus(lower, size), {1, 1, 1}), 0);
    const ReferenceModel empty(extents, 0, 0);
    return empty.Where([&](const Triple&) { return static_cast<double>(random.Between(0, 999)) < 1000 * share; });
}

// All pairs of the eight voxels around two corners that follow each other: 2 x 2 x 3 voxels, along each axis.
TEST(SurfaceMesh, JoinsAllNeighbourhoodsOfAnEdge)
{
    for (std::size_t axis = 0; axis < 3; ++axis) {
        Triple size{2, 2, 2};
        size[axis] = 3;
        const Extents extents(PlainAxes, {-1, -1, -1}, Minus(size, {2, 2, 2}), 0);
        const ReferenceModel empty(extents, 0, 0);
        for (unsigned bits = 0; bits < 4096; ++bits) {
            unsigned next = 0;
            const ReferenceModel reference = empty.Where([&](const Triple&) { return (bits >> next++ & 1) != 0; });
            const FaceMesh mesh = SurfaceMesh(MakeModel(reference), 0);
            const Counts counts(reference);
            ASSERT_EQ(Flaws(mesh), "") << axis << " " << bits;
            ASSERT_EQ(static_cast<std::int64_t>(mesh.vertices.size()) - static_cast<std::int64_t>(counts.faces), counts.euler);
        }
    }
}

TEST(SurfaceMesh, SeparatesDustAndCheckerboards)
{
    for (const double share : {0.02, 0.3, 0.5, 0.7, 0.98}) {
        const ReferenceModel noise = Noise(7, {-9, -7, -10}, {30, 25, 80}, share);
        ExpectSound(MakeModel(noise), noise);
    }
    const ReferenceModel board =
        Noise(1, {-3, -3, -3}, {8, 8, 8}, 0).Where([](const Triple& v) { return ((v[0] + v[1] + v[2]) & 1) == 0; });
    EXPECT_EQ(SurfaceMesh(MakeModel(board), 0).vertices.size(), 8U * static_cast<std::size_t>(board.CountFilled()));
    ExpectSound(MakeModel(board), board);
}

// The triangles' corners, moved back, from the lowest corner of each on: what does not depend on the order.
std::multiset<std::array<Position, 3>> Moved(const FaceMesh& mesh, const Triple& shift)
{
    std::multiset<std::array<Position, 3>> result;
    for (std::size_t t = 0; t < 2 * mesh.faces.size(); ++t) {
        const auto triangle = TriangleOf(mesh, t);
        std::array<Position, 3> corners;
        for (std::size_t i = 0; i < 3; ++i)
            for (std::size_t k = 0; k < 3; ++k)
                corners[i][k] = std::round((mesh.vertices[triangle[i]][k] / 40000 - static_cast<double>(shift[k])) * 1024);
        std::rotate(corners.begin(), std::min_element(corners.begin(), corners.end()), corners.end());
        result.insert(corners);
    }
    return result;
}

TEST(SurfaceMesh, DoesNotDependOnWhereChunksBegin)
{
    const Triple size{20, 20, 70};
    const FaceMesh first = SurfaceMesh(MakeModel(Noise(3, {0, 0, 0}, size, 0.6)), 0);
    for (const Triple& shift : {Triple{-7, 9, -33}, Triple{1, -1, 63}, Triple{-16, 15, -64}}) {
        const VoxelModel<bool> moved = MakeModel(Noise(3, shift, size, 0.6));
        EXPECT_EQ(Moved(SurfaceMesh(moved, 0), shift), Moved(first, {}));
    }
}

TEST(SurfaceMesh, RoundsABoxAndKeepsIt)
{
    const ReferenceModel box = Noise(1, {0, 0, 0}, {20, 20, 20}, 1);
    const VoxelModel<bool> model = MakeModel(box);
    double last = 8000;
    for (const int steps : {0, 1, 5, 20}) {
        const double volume =
            Volume(SurfaceMesh(model, 0, {.style = SurfaceStyle::Smooth, .smoothingSteps = steps})) / std::pow(40000.0, 3);
        EXPECT_LT(volume, last);
        EXPECT_GT(volume, 19 * 19 * 19);
        last = volume;
    }
    EXPECT_THROW((void)SurfaceMesh(model, 1), std::domain_error);
    for (const int steps : {-1, MostSmoothingSteps + 1})
        EXPECT_THROW((void)SurfaceMesh(model, 0, {.smoothingSteps = steps}), std::domain_error);
    EXPECT_TRUE(SurfaceMesh(VoxelModel<bool>(model.ExtentsRef(0), 0), 0).vertices.empty());
}

// A wall of a thousand planes, too high for numbers of 32 bits.
TEST(SurfaceMesh, RefusesMoreVerticesThanItCanNumber)
{
#ifdef BRIX_SANITIZED
    GTEST_SKIP() << "Five billion vertices are counted, which takes minutes with sanitizers.";
#endif
    const Triple size{512, 512, 1};
    const VoxelModel<bool> floor =
        MakeModel(Noise(1, {0, 0, 0}, size, 1).Where([](const Triple& voxel) { return (voxel[0] & 1) == 0; }));
    const VoxelModel<bool> walls = ExpandAlongZ(floor, 8200, 8200, {}, true);
    const SurfaceSize counted = SizeOfSurface(walls, 0);
    EXPECT_EQ(counted.vertices, 512 * 513 * std::int64_t{16402});
    EXPECT_EQ(counted.faces, 512 * 512 * std::int64_t{16401} + 512 * std::int64_t{16401} + 512 * 512);
    try {
        (void)SurfaceMesh(walls, 0);
        ADD_FAILURE();
    } catch (const std::length_error& error) {
        EXPECT_EQ(error.what(), "The surface mesh would have " + std::to_string(counted.vertices) +
                                    " vertices, more than the 4294967295 that can be numbered.");
    }
}

TEST(SurfaceMesh, IsSoundOnRealMeshes)
{
    std::size_t files = 0;
    std::error_code none;
    for (const auto& entry : std::filesystem::directory_iterator(BRIX_DATA, none)) {
        if (entry.path().extension() != ".stl") continue;
        ++files;
        const StlImport import = ReadStl(entry.path(), {.countMesh = true});
        double longest = 0;
        for (std::size_t i = 0; i < 3; ++i)
            longest = std::max(longest, import.report.mesh->upper[i] - import.report.mesh->lower[i]);
        const Axes axes(longest / 10, import.report.mesh->lower, 33, 4);
        const VoxelModel<bool> model = Voxelize(axes, import.triangles, 4);
        for (const int steps : {0, 2}) {
            const FaceMesh mesh = SurfaceMesh(model, 4, {steps > 0 ? SurfaceStyle::Smooth : SurfaceStyle::Blocky, steps});
            EXPECT_EQ(Flaws(mesh), "") << entry.path();
            const double voxels = Volume(mesh) / std::pow(axes.WorldVoxelWidth(4), 3);
            const double filled = static_cast<double>(CountFilled(model, 4));
            EXPECT_NEAR(voxels, filled, steps == 0 ? 0.1 : filled / 2) << entry.path();
        }
    }
    if (files == 0) GTEST_SKIP() << "There are no STL files in " << BRIX_DATA << ".";
}

} // namespace
} // namespace brix
