// Voxelization of whole triangles of any size against the exact test of every voxel. The voxels that a triangle touches hang
// together, so that those of one corner and their neighbours, as far as the test says yes, are all that it touches.
#include "triangles/Voxelize.h"

#include "model/CheckInvariants.h"
#include "model/ForEachStack.h"
#include "support/ExactOverlap.h"
#include "support/Messages.h"
#include "support/Random.h"
#include "triangles/TriangleModel.h"
#include "triangles/TriangleRows.h"
#include "triangles/Voxelization.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>

namespace brix {
namespace {

using tests::Overlap;
using tests::Random;
using Voxels = std::set<Triple>;

// A frame whose world units are base units.
Axes LatticeAxes(std::int64_t verticalLOD) { return Axes(40000, {0, 0, 0}, 0, verticalLOD); }

WorldTriangle InWorld(const LatticeTriangle& triangle)
{
    WorldTriangle world{};
    for (std::size_t i = 0; i < 9; ++i) world[i / 3][i % 3] = static_cast<double>(triangle[i / 3][i % 3]);
    return world;
}

std::vector<WorldTriangle> InWorld(const std::vector<LatticeTriangle>& triangles)
{
    std::vector<WorldTriangle> world;
    for (const LatticeTriangle& triangle : triangles) world.push_back(InWorld(triangle));
    return world;
}

LatticeTriangle Moved(LatticeTriangle triangle, const Triple& by)
{
    for (Triple& corner : triangle) corner = Plus(corner, by);
    return triangle;
}

Voxels FilledVoxels(const VoxelModel<bool>& model, std::int64_t lod, const Triple& movedBy = {})
{
    Voxels voxels;
    ForEachStoredStack(model, lod, [&](const VoxelStore<bool>& store, const StackIndices& ij) {
        const VoxelStack<bool>& stack = store.VoxelStackRef(ij);
        if (stack.IsUnallocated()) return;
        const Triple corner = Plus(store.LowerIndices(ij), movedBy);
        ForEachTriple({}, LastOffset, [&](const Triple& offset) {
            if (stack.LayerVoxelPlateRef(stack.LayerID(offset[2])).Value({offset[0], offset[1]}))
                voxels.insert(Plus(corner, offset));
        });
    });
    return voxels;
}

// Of one triangle, and with the rest of what it touches outside of the model's extents.
Voxels TouchedVoxels(const LatticeTriangle& triangle, const Axes& axes, std::int64_t lod)
{
    Voxels touched{axes.ContainingVoxel(triangle[0], lod)};
    std::vector<Triple> front(touched.begin(), touched.end());
    Voxels known = touched;
    while (!front.empty()) {
        const Triple here = front.back();
        front.pop_back();
        ForEachTriple(Minus(here, {1, 1, 1}), Plus(here, {1, 1, 1}), [&](const Triple& voxel) {
            if (!known.insert(voxel).second) return;
            const Triple corner = axes.VoxelCorner(voxel, lod);
            if (!Overlap(triangle, corner, Plus(corner, axes.VoxelSize(lod)))) return;
            touched.insert(voxel);
            front.push_back(voxel);
        });
    }
    return touched;
}

Voxels Inside(const Extents& extents, const Voxels& voxels)
{
    Voxels inside;
    std::copy_if(voxels.begin(), voxels.end(), std::inserter(inside, inside.end()),
                 [&](const Triple& voxel) { return extents.ContainsVoxel(voxel); });
    return inside;
}

struct Case
{
    Axes axes;
    std::int64_t finestLOD;
    LatticeTriangle triangle;
};

// A corner near the border of two voxels, one or none base unit beside it.
void MoveToBorder(Random& random, Triple& corner, const Triple& size)
{
    for (std::size_t i = 0; i < 3; ++i) {
        if (random.OneIn(2)) corner[i] = FloorDivide(corner[i], size[i]) * size[i] + random.Between(-1, 1);
    }
}

// A needle up to `longest` voxels long, a sheet, or a small triangle, anywhere in the index space, on its rim, too; every sixth
// without area.
Case RandomCase(std::uint64_t seed, std::int64_t longest)
{
    Random random(seed);
    const Axes axes = LatticeAxes(random.Between(0, 5));
    const std::int64_t lod = random.Between(0, 5);
    const Triple size = axes.VoxelSize(lod);
    const Triple rim{999'000'000, 999'000'000, 399'000'000};
    const bool isNeedle = random.OneIn(2);
    const std::int64_t length = random.OneIn(2) ? longest : longest / 10;
    LatticeTriangle triangle{};
    Triple along{};
    for (std::size_t i = 0; i < 3; ++i) {
        const std::int64_t reach = std::min((isNeedle ? length : 20) * size[i], rim[i] / 2);
        triangle[0][i] = random.Between(-rim[i], rim[i]) / (random.OneIn(3) ? 1000 : 1);
        along[i] = random.OneIn(4) ? 0 : random.Between(-reach, reach);
        if (std::abs(triangle[0][i] + along[i]) > rim[i]) along[i] = -along[i];
    }
    triangle[1] = Plus(triangle[0], along);
    triangle[2] = triangle[static_cast<std::size_t>(random.Between(0, 1))];
    for (std::size_t i = 0; i < 3; ++i)
        triangle[2][i] += random.Between(-1, 1) * random.Between(0, isNeedle ? 3 * size[i] : 20 * size[i]);
    for (Triple& corner : triangle) MoveToBorder(random, corner, size);
    if (random.OneIn(6)) triangle[2] = random.OneIn(2) ? triangle[1] : Minus(Plus(triangle[1], triangle[1]), triangle[0]);
    return {axes, lod, triangle};
}

bool IsInIndexSpace(const Case& random)
{
    return std::all_of(random.triangle.begin(), random.triangle.end(), [](const Triple& corner) {
        return IsWithin(corner, {-999'900'000, -999'900'000, -399'900'000}, {999'900'000, 999'900'000, 399'900'000});
    });
}

TEST(Voxelize, FillsExactlyWhatATriangleOfAnySizeTouches)
{
    std::int64_t larger = 0;
    for (std::uint64_t seed = 1; seed <= 400; ++seed) {
        const Case random = RandomCase(seed, seed % 40 == 0 ? 3'000 : 400);
        if (!IsInIndexSpace(random)) continue;
        const auto& [axes, lod, triangle] = random;
        const std::vector<WorldTriangle> world{InWorld(triangle)};
        const VoxelModel<bool> model = Voxelize(axes, world, lod);
        const Extents& extents = model.ExtentsRef(lod);
        EXPECT_EQ(model.ExtentsRef(0), DetectTriangleExtents(axes, world)) << "seed " << seed;
        EXPECT_EQ(FilledVoxels(model, lod), Inside(extents, TouchedVoxels(triangle, axes, lod))) << "seed " << seed;
        EXPECT_EQ(seed % 4 == 0 ? CheckInvariants(model, lod) : "", "") << "seed " << seed;
        if (TriangleBox(triangle).Span() > MaxPieceSpan) ++larger;
    }
    EXPECT_GT(larger, 150);
}

Voxels VoxelsOfRows(const LatticeTriangle& triangle, const Triple& size, const Triple& lower, const Triple& upper)
{
    Voxels voxels;
    TriangleRows(triangle, size).ForEachRow(lower, upper, [&](std::int64_t y, std::int64_t z, const VoxelRun& run) {
        for (std::int64_t x = run.first; x <= run.last; ++x) voxels.insert({x, y, z});
    });
    return voxels;
}

// A few base units wide, about a corner where eight voxels meet: which of them it misses is a matter of one unit.
TEST(TriangleRows, HaveExactlyTheVoxelsThatATinyTriangleTouches)
{
    for (std::uint64_t seed = 1; seed <= 4000; ++seed) {
        Random random(seed);
        const Axes axes = LatticeAxes(random.Between(0, 5));
        const std::int64_t lod = random.Between(0, 5);
        LatticeTriangle triangle{};
        for (Triple& corner : triangle)
            for (std::int64_t& coordinate : corner) coordinate = random.Between(-4, 4);
        EXPECT_EQ(VoxelsOfRows(triangle, axes.VoxelSize(lod), {-9, -9, -9}, {9, 9, 9}), TouchedVoxels(triangle, axes, lod))
            << "seed " << seed;
    }
}

// Across the whole index space, where 64 bits are not enough: in a box about a point of the triangle.
TEST(TriangleRows, HaveExactlyTheVoxelsThatAHugeTriangleTouches)
{
    for (std::uint64_t seed = 1; seed <= 1000; ++seed) {
        Random random(seed);
        const Axes axes = LatticeAxes(random.Between(0, 5));
        const std::int64_t lod = random.Between(0, 5);
        const Triple size = axes.VoxelSize(lod);
        LatticeTriangle triangle{};
        const std::int64_t reach = 1'000'000'000 >> random.Between(0, 12);
        for (Triple& corner : triangle) {
            corner = {random.Between(-reach, reach), random.Between(-reach, reach), random.Between(-reach, reach)};
            MoveToBorder(random, corner, size);
        }
        Triple point{};
        const std::int64_t first = random.Between(0, 1'000);
        const std::int64_t second = random.Between(0, 1'000 - first);
        for (std::size_t i = 0; i < 3; ++i)
            point[i] = triangle[0][i] + (triangle[1][i] - triangle[0][i]) / 1'000 * first +
                       (triangle[2][i] - triangle[0][i]) / 1'000 * second;
        const Triple lower = Minus(axes.ContainingVoxel(point, lod), {3, 3, 3});
        const Triple upper = Plus(lower, {6, 7, 6});
        Voxels touched;
        ForEachTriple(lower, upper, [&](const Triple& voxel) {
            const Triple corner = axes.VoxelCorner(voxel, lod);
            if (Overlap(triangle, corner, Plus(corner, size))) touched.insert(voxel);
        });
        EXPECT_EQ(VoxelsOfRows(triangle, size, lower, upper), touched) << "seed " << seed;
    }
}

TEST(Voxelize, DoesNotDependOnTheOrderOfCornersOrThePlace)
{
    for (std::uint64_t seed = 1001; seed <= 1300; ++seed) {
        const auto [axes, lod, triangle] = RandomCase(seed, 300);
        Random random(seed);
        const Triple voxel = axes.VoxelSize(0);
        Triple step{};
        LatticeTriangle near{};
        for (std::size_t i = 0; i < 3; ++i) {
            step[i] = random.Between(-40, 40);
            for (std::size_t corner = 0; corner < 3; ++corner)
                near[corner][i] = triangle[corner][i] - FloorDivide(triangle[0][i], voxel[i]) * voxel[i];
        }
        const Triple moves{step[0] * voxel[0], step[1] * voxel[1], step[2] * voxel[2]};
        const LatticeTriangle turned = Moved({near[2], near[1], near[0]}, moves);
        const Triple back{-step[0] * (1 << lod), -step[1] * (1 << lod), -step[2]};
        EXPECT_EQ(FilledVoxels(Voxelize(axes, std::vector{InWorld(near)}, lod), lod),
                  FilledVoxels(Voxelize(axes, std::vector{InWorld(turned)}, lod), lod, back))
            << "seed " << seed;
    }
}

bool HoldSameStacks(const VoxelModel<bool>& a, const VoxelModel<bool>& b)
{
    bool same = true;
    for (std::int64_t lod = 0; lod <= a.FinestLOD(); ++lod) {
        same &= AllStoredStacks(a, lod, [&](const VoxelStore<bool>& store, const StackIndices& ij) {
            return store.VoxelStackRef(ij) == FindStack(b, StackOfVoxel(store.LowerIndices(ij)), lod);
        });
    }
    return same;
}

// Of triangles that need not be cut, in many chunks, on their borders, and on the lowest face of the extents.
TEST(Voxelize, EqualsTheVoxelsOfFiledTrianglesThatAreNotCut)
{
    for (std::uint64_t seed = 1; seed <= 120; ++seed) {
        Random random(seed);
        const Axes axes = LatticeAxes(random.Between(0, 5));
        const bool isWide = seed == 1; // more stacks than stay uncompressed, each written to again
        const std::int64_t lod = isWide ? 5 : random.Between(0, 5);
        const Triple rim = isWide ? Triple{7'000'000, 7'000'000, 300'000} : Triple{900'000, 900'000, 300'000};
        std::vector<LatticeTriangle> triangles;
        for (std::int64_t i = isWide ? 8'000 : random.Between(0, 40); i > 0; --i) {
            const std::int64_t reach = isWide ? 30'000 : random.OneIn(2) ? 2'000 : 150'000;
            const Triple about{random.Between(-rim[0], rim[0]), random.Between(-rim[1], rim[1]), random.Between(-rim[2], rim[2])};
            LatticeTriangle triangle{};
            for (Triple& corner : triangle) {
                corner =
                    Plus(about, {random.Between(-reach, reach), random.Between(-reach, reach), random.Between(-reach, reach)});
                MoveToBorder(random, corner, random.OneIn(3) ? axes.VoxelSize(0) : axes.VoxelSize(lod));
            }
            if (TriangleBox(triangle).Span() <= MaxPieceSpan) triangles.push_back(triangle);
        }
        const std::vector<WorldTriangle> world = InWorld(triangles);
        const Extents extents = DetectTriangleExtents(axes, world);
        TriangleModel filed(extents);
        filed.AddWorldTriangles(world);
        VoxelModel<bool> expected(extents, lod);
        VoxelizeTriangleModel(expected, filed);
        const VoxelModel<bool> model = Voxelize(axes, world, lod);
        EXPECT_EQ(model.ExtentsRef(0), extents) << "seed " << seed;
        EXPECT_TRUE(HoldSameStacks(model, expected) && HoldSameStacks(expected, model)) << "seed " << seed;
    }
}

TEST(Voxelize, TakesTheTrianglesOfAMesh)
{
    const Axes axes = LatticeAxes(2);
    Random random(5);
    std::vector<std::array<double, 3>> vertices(300);
    std::vector<std::array<float, 3>> narrow(vertices.size());
    for (std::size_t i = 0; i < vertices.size(); ++i) {
        for (std::size_t axis = 0; axis < 3; ++axis)
            narrow[i][axis] = static_cast<float>(vertices[i][axis] = static_cast<double>(random.Between(-900'000, 900'000)));
    }
    std::vector<std::array<std::uint32_t, 3>> triangles(500);
    std::vector<WorldTriangle> expanded;
    for (auto& triangle : triangles) {
        for (std::uint32_t& vertex : triangle) vertex = static_cast<std::uint32_t>(random.Between(0, 299));
        expanded.push_back({vertices[triangle[0]], vertices[triangle[1]], vertices[triangle[2]]});
    }
    const Voxels expected = FilledVoxels(Voxelize(axes, expanded, 2), 2);
    EXPECT_EQ(FilledVoxels(Voxelize(axes, vertices, triangles, 2), 2), expected);
    EXPECT_EQ(FilledVoxels(Voxelize(axes, narrow, triangles, 2), 2), expected);
    EXPECT_EQ(Voxelize(axes, vertices, {}, 2).ExtentsRef(2), Voxelize(axes, {}, 2).ExtentsRef(2));
    triangles.back()[1] = 300;
    EXPECT_EQ(tests::MessageOf([&] { Voxelize(axes, vertices, triangles, 6); }),
              "All triangle vertex indices must be less than number of vertices in the triangle mesh. A triangle vertex index of "
              "300 was "
              "encountered. There are 300 vertices in the triangle mesh.");
}

TEST(Voxelize, TakesMemoryForWhatIsTouchedOnly)
{
    const std::vector<WorldTriangle> farApart{{{{-9.9e8, -9.9e8, -3.9e8}, {-9.9e8, -9.9e8, -3.9e8}, {-9.9e8, -9.9e8, -3.9e8}}},
                                              {{{9.9e8, 9.9e8, 3.9e8}, {9.9e8, 9.9e8, 3.9e8}, {9.9e8, 9.9e8, 3.9e8}}}};
    EXPECT_LT(Voxelize(LatticeAxes(5), farApart, 5).AllocatedBytes(), 300'000U);

    // From one end of the index space to the other.
    const std::vector<WorldTriangle> needle{{{{-9.9e8, -9.9e8, -3.9e8}, {9.9e8, 9.9e8, 3.9e8}, {9.9e8, 9.9e8, 3.8e8}}}};
    EXPECT_LT(Voxelize(LatticeAxes(0), needle, 0).AllocatedBytes(), 100'000'000U);
}

TEST(Voxelize, RefusesWhatNoModelHolds)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double infinite = std::numeric_limits<double>::infinity();
    const Axes axes = LatticeAxes(0);
    using tests::MessageOf;
    EXPECT_EQ(MessageOf([&] { Voxelize(axes, std::vector<WorldTriangle>{{{{nan}}}}, -1); }),
              "The finest level of detail in a voxel model cannot be negative. The value encountered was -1.");
    EXPECT_EQ(MessageOf([&] { Voxelize(axes, {}, 6); }),
              "The finest level of detail in a voxel model must be less than 6. The value encountered was 6.");
    for (const auto& corner : std::initializer_list<std::array<double, 3>>{{nan, 0, 0},
                                                                           {0, 0, nan},
                                                                           {infinite, 0, 0},
                                                                           {0, -infinite, 0},
                                                                           {0, 0, infinite},
                                                                           {-1e9, 0, 0},
                                                                           {0, 1e9, 0},
                                                                           {0, 0, 4e8},
                                                                           {1e300, 0, 0},
                                                                           {2e9, 2e9, 2e9},
                                                                           {0, 0, -4.0001e8}}) {
        for (const WorldTriangle& triangle :
             {WorldTriangle{{{0, 0, 0}, corner, {1, 0, 0}}}, WorldTriangle{corner, corner, corner}}) {
            const std::vector<WorldTriangle> triangles{triangle};
            const std::string message = MessageOf([&] { Voxelize(axes, triangles, 5); });
            EXPECT_EQ(message, MessageOf([&] { DetectTriangleExtents(axes, triangles); }));
            EXPECT_NE(message.find(" extent in the "), std::string::npos) << message;
        }
    }
}

} // namespace
} // namespace brix
