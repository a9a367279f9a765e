// World triangles converted many at a time, beside the frame's conversion of a point.
#include "triangles/PackWorldTriangles.h"

#include "support/Random.h"
#include "triangles/PackedTriangles.h"
#include "triangles/Voxelization.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace brix {
namespace {

using tests::Random;

Axes RandomAxes(Random& random)
{
    const double width = std::exp2(static_cast<double>(random.Between(-20, 20))) * static_cast<double>(random.Between(1, 7));
    const auto shift = [&] { return width * static_cast<double>(random.Between(-1000, 1000)) / 7; };
    const double rotation = random.OneIn(2) ? 0 : static_cast<double>(random.Between(-7200, 7200)) / 10;
    return Axes(width, {shift(), shift(), shift()}, rotation, random.Between(0, 5));
}

// Mostly in reach of the lattice, sometimes on its points or far away, rarely no number at all.
double RandomCoordinate(Random& random, double width)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    if (random.OneIn(60)) return std::array{infinity, -infinity, std::nan(""), 1e300, -1e300, 90000 * width}[random.Bits() % 6];
    const double voxels = static_cast<double>(random.Between(-30000000, 30000000)) / 1000;
    return width * (random.OneIn(3) ? std::floor(voxels) : voxels);
}

std::vector<WorldTriangle> RandomTriangles(Random& random, const Axes& axes)
{
    const double width = axes.WorldVoxelWidth(0);
    std::vector<WorldTriangle> triangles(static_cast<std::size_t>(random.Between(1, 300)));
    for (WorldTriangle& triangle : triangles) {
        triangle[0] = {RandomCoordinate(random, width), RandomCoordinate(random, width), RandomCoordinate(random, width)};
        for (std::size_t corner = 1; corner < 3; ++corner) {
            for (std::size_t i = 0; i < 3; ++i) {
                const double near = triangle[0][i] + width * static_cast<double>(random.Between(-9000, 9000)) / 1000;
                triangle[corner][i] = random.OneIn(30) ? RandomCoordinate(random, width) : near;
            }
        }
    }
    return triangles;
}

LatticeTriangle Converted(const Axes& axes, const WorldTriangle& triangle)
{
    return {axes.FromWorldCoordinates(triangle[0]), axes.FromWorldCoordinates(triangle[1]),
            axes.FromWorldCoordinates(triangle[2])};
}

bool IsAtBound(const PackedTriangle& triangle)
{
    return std::any_of(triangle.begin(), triangle.end(), [](std::int32_t c) { return std::abs(c) == MaxPackedCoordinate; });
}

TEST(PackWorldTriangles, GivesTheFramesCoordinatesOrABound)
{
    std::int64_t exact = 0;
    std::int64_t held = 0;
    for (std::uint64_t seed = 1; seed <= 300; ++seed) {
        Random random(seed);
        const Axes axes = RandomAxes(random);
        const std::vector<WorldTriangle> triangles = RandomTriangles(random, axes);
        for (const InstructionSet instructionSet : {InstructionSet::Portable, FastestInstructionSet()}) {
            std::vector<PackedTriangle> packed(triangles.size());
            PackWorldTriangles(axes, triangles, packed, instructionSet);
            for (std::size_t i = 0; i < triangles.size(); ++i) {
                const LatticeTriangle expected = Converted(axes, triangles[i]);
                const bool isHeld = IsAtBound(packed[i]);
                if (!isHeld) {
                    ASSERT_EQ(Unpacked(packed[i]), expected) << "seed " << seed;
                }
                if (const std::int64_t most = MaxPackedCoordinate; std::abs(expected[2][2]) >= most) {
                    ASSERT_TRUE(isHeld) << "seed " << seed;
                }
                ++(isHeld ? held : exact);
            }
        }
    }
    EXPECT_GT(exact, 40000);
    EXPECT_GT(held, 1000);
}

std::vector<std::vector<LatticeTriangle>> FiledByChunk(const TriangleModel& model)
{
    std::vector<std::vector<LatticeTriangle>> filed;
    ForEachTriple(model.LowerChunkIndices(), model.UpperChunkIndices(), [&](const Triple& chunk) {
        filed.push_back(model.ChunkRef(chunk).Triangles());
        std::sort(filed.back().begin(), filed.back().end());
    });
    return filed;
}

TEST(TriangleModel, FilesManyTrianglesAsItFilesEach)
{
    std::size_t filed = 0;
    for (std::uint64_t seed = 1; seed <= 60; ++seed) {
        Random random(seed);
        const Axes axes = RandomAxes(random);
        std::vector<WorldTriangle> triangles = RandomTriangles(random, axes);
        for (WorldTriangle& triangle : triangles) { // brings most of them into the grid
            const double scale = random.OneIn(10) ? 1 : 0.003;
            for (auto& corner : triangle) {
                for (std::size_t i = 0; i < 3; ++i)
                    corner[i] = axes.WorldVoxelOrigin()[i] + (corner[i] - axes.WorldVoxelOrigin()[i]) * scale;
            }
        }
        const Extents extents(axes, {-40, -20, -150}, {random.Between(-39, 40), 60, 99}, 0);
        TriangleModel many(extents);
        TriangleModel each(extents);
        many.AddWorldTriangles(triangles);
        for (const WorldTriangle& triangle : triangles) each.AddTriangle(Converted(axes, triangle));
        const auto byChunk = FiledByChunk(many);
        ASSERT_EQ(byChunk, FiledByChunk(each)) << "seed " << seed;
        for (const auto& ofChunk : byChunk) filed += ofChunk.size();
    }
    EXPECT_GT(filed, 5000U);
}

TEST(DetectTriangleExtents, EnclosesTheCornersOfAllTriangles)
{
    for (std::uint64_t seed = 1; seed <= 200; ++seed) {
        Random random(seed);
        const Axes axes = RandomAxes(random);
        std::vector<WorldTriangle> triangles = RandomTriangles(random, axes);
        Triple lower = axes.FromWorldCoordinates(triangles[0][0]);
        Triple upper = lower;
        for (const WorldTriangle& triangle : triangles) {
            for (const Triple& corner : Converted(axes, triangle)) {
                lower = Lowest(lower, corner);
                upper = Highest(upper, corner);
            }
        }
        const auto expected = [&] {
            return Extents(axes, axes.ContainingVoxel(Minus(lower, {1, 1, 0}), 0), axes.ContainingVoxel(upper, 0), 0);
        };
        try {
            const Extents extents = expected();
            EXPECT_EQ(DetectTriangleExtents(axes, triangles).LowerIndices(), extents.LowerIndices()) << "seed " << seed;
            EXPECT_EQ(DetectTriangleExtents(axes, triangles).UpperIndices(), extents.UpperIndices()) << "seed " << seed;
        } catch (const std::domain_error&) {
            EXPECT_THROW(DetectTriangleExtents(axes, triangles), std::domain_error) << "seed " << seed;
        }
    }
}

} // namespace
} // namespace brix
