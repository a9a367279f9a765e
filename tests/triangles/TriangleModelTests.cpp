// Filing triangles by chunk: every chunk that a triangle touches gets a piece, no other one does, and work stays bounded.
#include "triangles/TriangleModel.h"

#include "support/Random.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace brix {
namespace {

using tests::Random;

constexpr std::int64_t ChunkUnits = 640000; // the width of a chunk

const Axes PlainAxes(40000, {0, 0, 0}, 0, 0);

TriangleModel GridOf(const Triple& lowerChunk, const Triple& upperChunk)
{
    const Triple lower{16 * lowerChunk[0], 16 * lowerChunk[1], 64 * lowerChunk[2]};
    return TriangleModel(
        Extents(PlainAxes, lower, {16 * upperChunk[0] + 15, 16 * upperChunk[1] + 15, 64 * upperChunk[2] + 63}, 0));
}

struct Filed
{
    Triple chunk;
    LatticeTriangle triangle;
    auto operator<=>(const Filed&) const = default;
};

std::vector<Filed> FiledIn(const TriangleModel& model)
{
    std::vector<Filed> filed;
    ForEachTriple(model.LowerChunkIndices(), model.UpperChunkIndices(), [&](const Triple& chunk) {
        for (const LatticeTriangle& triangle : model.ChunkRef(chunk).Triangles()) filed.push_back({chunk, triangle});
    });
    return filed;
}

std::vector<Filed> FiledIn(TriangleModel model, const LatticeTriangle& triangle)
{
    model.AddTriangle(triangle);
    return FiledIn(model);
}

Triple LowestOf(const LatticeTriangle& triangle) { return Lowest(Lowest(triangle[0], triangle[1]), triangle[2]); }
Triple HighestOf(const LatticeTriangle& triangle) { return Highest(Highest(triangle[0], triangle[1]), triangle[2]); }

// One unit below the lowest corner counts as touched, so the limit of 320000 is met by corners that lie 319999 apart.
TEST(TriangleModel, CutsTrianglesThatSpanMoreThanHalfAChunk)
{
    for (std::size_t axis = 0; axis < 3; ++axis) {
        LatticeTriangle triangle{{{10, 10, 10}, {20, 10, 10}, {10, 20, 20}}};
        triangle[1][axis] = 10 + 319999;
        EXPECT_EQ(FiledIn(GridOf({0, 0, 0}, {0, 0, 0}), triangle).size(), 1U);
        triangle[1][axis] = 10 + 320000;
        EXPECT_EQ(FiledIn(GridOf({0, 0, 0}, {0, 0, 0}), triangle).size(), 4U);
    }
}

TEST(TriangleModel, CutsAtTheMidpointsOfEdgesRoundedTowardsZero)
{
    const LatticeTriangle triangle{{{-300001, 5, 7}, {100000, 5, 7}, {-1, 200, 7}}};
    const Triple ab{-100000, 5, 7}; // -200001 / 2
    const Triple bc{49999, 102, 7};
    const Triple ca{-150001, 102, 7};
    const std::vector<Filed> expected{{{-1, 0, 0}, {ab, bc, ca}},          {{-1, 0, 0}, {ab, ca, triangle[0]}},
                                      {{-1, 0, 0}, {bc, ab, triangle[1]}}, {{-1, 0, 0}, {ca, bc, triangle[2]}},
                                      {{0, 0, 0}, {ab, bc, ca}},           {{0, 0, 0}, {bc, ab, triangle[1]}},
                                      {{0, 0, 0}, {ca, bc, triangle[2]}}};
    EXPECT_EQ(FiledIn(GridOf({-1, 0, 0}, {0, 0, 0}), triangle), expected);
}

TEST(TriangleModel, FilesATriangleOnALowerFaceInTheChunkBelowToo)
{
    const LatticeTriangle onFace{{{0, 100, 100}, {0, 200, 100}, {0, 100, 200}}};
    const std::vector<Filed> both{{{-1, 0, 0}, onFace}, {{0, 0, 0}, onFace}};
    EXPECT_EQ(FiledIn(GridOf({-2, 0, 0}, {1, 0, 0}), onFace), both);
    const LatticeTriangle inside{{{1, 100, 100}, {1, 200, 100}, {1, 100, 200}}};
    EXPECT_EQ(FiledIn(GridOf({-2, 0, 0}, {1, 0, 0}), inside), (std::vector<Filed>{{{0, 0, 0}, inside}}));
    const LatticeTriangle atOrigin{{{0, 0, 0}, {0, 0, 0}, {0, 0, 0}}};
    EXPECT_EQ(FiledIn(GridOf({-1, -1, -1}, {0, 0, 0}), atOrigin).size(), 8U);
    EXPECT_TRUE(FiledIn(GridOf({1, 0, 0}, {2, 0, 0}), inside).empty()) << "outside the grid";
}

// A random point of a triangle; a filed piece may miss it by the rounding of midpoints.
Triple PointOf(Random& random, const LatticeTriangle& triangle)
{
    const std::int64_t a = random.Between(0, 1000);
    const std::int64_t b = random.Between(0, 1000 - a);
    Triple point{};
    for (std::size_t i = 0; i < 3; ++i) {
        point[i] = FloorDivide(a * triangle[0][i] + b * triangle[1][i] + (1000 - a - b) * triangle[2][i], 1000);
    }
    return point;
}

TEST(TriangleModel, CoversEveryChunkThatATriangleTouchesAndNoOther)
{
    constexpr std::int64_t tolerance = 16;
    std::int64_t pointsInGrid = 0;
    for (std::uint64_t seed = 1; seed <= 60; ++seed) {
        Random random(seed);
        LatticeTriangle triangle{};
        const std::int64_t reach = random.OneIn(3) ? 500000 : 5000000;
        for (Triple& corner : triangle)
            corner = {random.Between(-reach, reach), random.Between(-reach, reach), random.Between(-reach, reach)};
        const Triple lowerChunk{random.Between(-4, 1), random.Between(-4, 1), random.Between(-1, 0)};
        TriangleModel model =
            GridOf(lowerChunk, Plus(lowerChunk, {random.Between(0, 3), random.Between(0, 3), random.Between(0, 1)}));
        model.AddTriangle(triangle);
        for (const auto& [chunk, piece] : FiledIn(model)) {
            const Triple corner{chunk[0] * ChunkUnits, chunk[1] * ChunkUnits, chunk[2] * 4 * ChunkUnits};
            const Triple size{ChunkUnits, ChunkUnits, 4 * ChunkUnits};
            const Triple lower = LowestOf(piece);
            const Triple upper = HighestOf(piece);
            for (std::size_t i = 0; i < 3; ++i) {
                ASSERT_TRUE(upper[i] >= corner[i] && lower[i] <= corner[i] + size[i]) << "seed " << seed;
                ASSERT_LT(upper[i] - lower[i], 320000) << "seed " << seed;
            }
        }
        for (int i = 0; i < 300; ++i) {
            const Triple point = PointOf(random, triangle);
            const Triple chunk{FloorDivide(point[0], ChunkUnits), FloorDivide(point[1], ChunkUnits),
                               FloorDivide(point[2], 4 * ChunkUnits)};
            const Triple inChunk{point[0] - chunk[0] * ChunkUnits, point[1] - chunk[1] * ChunkUnits,
                                 point[2] - chunk[2] * 4 * ChunkUnits};
            const Triple margin{tolerance, tolerance, tolerance};
            if (!model.IsChunkValid(chunk)) continue;
            if (!IsWithin(inChunk, margin, Minus({ChunkUnits, ChunkUnits, 4 * ChunkUnits}, margin))) continue;
            ++pointsInGrid;
            const auto& pieces = model.ChunkRef(chunk).Triangles();
            ASSERT_TRUE(std::any_of(pieces.begin(), pieces.end(),
                                    [&](const LatticeTriangle& piece) {
                                        return IsWithin(point, Minus(LowestOf(piece), margin), Plus(HighestOf(piece), margin));
                                    }))
                << "seed " << seed;
        }
    }
    EXPECT_GT(pointsInGrid, 500);
}

// Uncut, such triangles would need 2^60 pieces; what lies away from the grid must be dropped early, or this never ends.
TEST(TriangleModel, BoundsTheWorkForTrianglesOfAnySize)
{
    const double infinity = std::numeric_limits<double>::infinity();
    constexpr std::int64_t lowest = std::numeric_limits<std::int64_t>::min();
    constexpr std::int64_t highest = std::numeric_limits<std::int64_t>::max();
    const std::int64_t far = std::int64_t{1} << 52;
    TriangleModel model = GridOf({-1, -1, -1}, {1, 1, 0});
    model.AddTriangle({{{-far, -far, 100}, {far, -far, 100}, {0, far, 100}}});
    const std::size_t pieces = FiledIn(model).size();
    EXPECT_GE(pieces, 9U);
    EXPECT_LE(pieces, 500U);
    model.AddTriangle({{{-far, -far, -far}, {far, -far, far}, {0, far, far}}});
    model.AddTriangle({{{lowest, lowest, lowest}, {highest, highest, highest}, {highest, lowest, 0}}});
    model.AddTriangle({{{lowest, 0, 0}, {highest, 0, 0}, {0, 0, highest}}});
    model.AddTriangle({{{far, far, far}, {far + 5, far, far}, {far, far, far + 3}}});
    model.AddTriangle({{{-far, 5, 5}, {far, 5, 5}, {far, 5, 5}}}); // parts of a line cover it again and again
    model.AddTriangle({{{5, 5, 5}, {30, 7, 5}, {-far, -far, -far}}});
    model.AddWorldTriangle({{{-infinity, 0, 0}, {infinity, 1e300, -1e300}, {std::nan(""), 5, 5}}});
    EXPECT_LT(FiledIn(model).size(), 5000U);
    model.ChunkRef({0, 0, 0}).AddTriangle({{{lowest, highest, 0}, {0, 0, 0}, {0, 0, 0}}});
    EXPECT_EQ(model.ChunkRef({0, 0, 0}).Triangles().back()[0], (Triple{-MaxCoordinate, MaxCoordinate, 0}));
}

} // namespace
} // namespace brix
