#include "frame/Axes.h"

#include "support/Messages.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace brix {
namespace {

using tests::MessageOf;
using tests::Random;

constexpr std::int64_t Lowest64 = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t Highest64 = std::numeric_limits<std::int64_t>::max();
constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

// World units are base units.
Axes PlainAxes(std::int64_t verticalLOD = 0) { return Axes(40000, {0, 0, 0}, 0, verticalLOD); }

// Points on voxel borders, where any other order of the steps (scale before shifting, one reciprocal) gives another unit.
TEST(Axes, RoundPointsOnVoxelBordersByTheOneOrderOfSteps)
{
    const Axes axes(1.1, {0, 0, 0}, 0, 0);
    const std::vector<std::pair<double, std::int64_t>> cases{
        {-2.0625, -75001}, {-1.959375, -71251}, {-1.9250000000000003, -70001},
        {-1.7875, -65001}, {-1.753125, -63751}, {-137.46562500000002, -4998750}};
    for (const auto& [world, unit] : cases) {
        EXPECT_EQ(axes.FromWorldCoordinates({world, world, world}), (Triple{unit, unit, unit}));
    }
}

TEST(Axes, TurnCounterClockwiseAboutTheOrigin)
{
    const Axes axes(40000, {10, 20, 30}, 90, 0);
    const std::array<double, 3> world = axes.ToWorldCoordinates({1000, 200, 7});
    EXPECT_NEAR(world[0], 10 - 200, 1e-6);
    EXPECT_NEAR(world[1], 20 + 1000, 1e-6);
    EXPECT_EQ(world[2], 37);

    // As hosts turn things, by degrees * pi / 180 as a double: at 90 degrees the cosine is what half of pi lacks.
    const double unit = Axes(1, {0, 0, 0}, 0, 0).ToWorldDistance(1);
    EXPECT_EQ(Axes(1, {0, 0, 0}, 90, 0).ToWorldCoordinates({1, 0, 0})[0], 0x1.1a62633145c07p-54 * unit);
}

TEST(Axes, ReturnToTheSamePointFromWorldCoordinates)
{
    Random random(1);
    for (int i = 0; i < 2000; ++i) {
        const Axes axes(static_cast<double>(random.Between(1, 4000)) / 64, {-17.5, 1000, 3},
                        static_cast<double>(random.Between(-720, 720)), random.Between(0, 5));
        const Triple coords{random.Between(-1000000000, 999999999), random.Between(-1000000000, 999999999),
                            random.Between(-400000000, 399999999)};
        const Triple back = axes.FromWorldCoordinates(axes.ToWorldCoordinates(coords));
        for (std::size_t axis = 0; axis < 3; ++axis) EXPECT_LE(std::abs(back[axis] - coords[axis]), 1) << "case " << i;
    }
}

TEST(Axes, ConvertDistancesTruncatingAndHoldThemWithin64Bits)
{
    const std::vector<std::pair<double, std::int64_t>> cases{{1.9, 1},
                                                             {-1.9, -1},
                                                             {9.3e18, Highest64},
                                                             {1e300, Highest64},
                                                             {-1e300, Lowest64},
                                                             {Infinity, Highest64},
                                                             {-Infinity, Lowest64},
                                                             {NotANumber, Highest64}};
    for (const auto& [world, distance] : cases) EXPECT_EQ(PlainAxes().FromWorldDistance(world), distance) << world;
    EXPECT_EQ(Axes(1, {5, 5, 5}, 30, 0).FromWorldDistance(2), 80000);
    EXPECT_EQ(Axes(1, {5, 5, 5}, 30, 0).ToWorldDistance(-20000), -0.5);
}

// Anything beyond the index space ends at the bound of coordinates, from where no arithmetic overflows.
TEST(Axes, HoldPointsThatNoModelCanContain)
{
    const std::vector<double> hostile{NotANumber, Infinity, -Infinity, 1e300, -1e300, 1e19, -1e19, 5e-324};
    for (const double spacing : {40000.0, 1.0, 0.0, -1.0, 1e-300, 1e300, Infinity, NotANumber}) {
        for (const double value : hostile) {
            for (const Triple& coords : {Axes(spacing, {0, 0, 0}, 30, 0).FromWorldCoordinates({value, 1, value}),
                                         Axes(spacing, {value, value, 0}, value, 0).FromWorldCoordinates({0, value, 1})}) {
                EXPECT_TRUE(IsWithin(coords, {-MaxCoordinate, -MaxCoordinate, -MaxCoordinate},
                                     {MaxCoordinate, MaxCoordinate, MaxCoordinate}));
            }
        }
    }
    EXPECT_EQ(PlainAxes().FromWorldCoordinates({1e300, -1e300, NotANumber}),
              (Triple{MaxCoordinate, -MaxCoordinate, -MaxCoordinate}));
}

TEST(Axes, FindTheVoxelThatHoldsAPoint)
{
    const std::vector<std::pair<std::int64_t, std::int64_t>> cases{{-1, -1},  {0, 0},      {1249, 0},
                                                                   {1250, 1}, {-1250, -1}, {-1251, -2}};
    for (const auto& [coord, index] : cases) {
        EXPECT_EQ(PlainAxes(5).ContainingVoxel({coord, coord, coord}, 5), (Triple{index, index, index}));
    }
    Random random(2);
    for (int i = 0; i < 3000; ++i) {
        const Axes axes = PlainAxes(random.Between(0, 5));
        const std::int64_t lod = random.Between(0, 5);
        const std::int64_t reach = std::int64_t{1} << random.Between(1, 52);
        const Triple coords{random.Between(-reach, reach), random.Between(-reach, reach), random.Between(-reach, reach)};
        const Triple voxel = axes.ContainingVoxel(coords, lod);
        const Triple corner{voxel[0] * VoxelSpacing(lod), voxel[1] * VoxelSpacing(lod),
                            voxel[2] * VoxelSpacing(axes.VerticalLOD())};
        ASSERT_TRUE(IsWithin(coords, corner, Minus(Plus(corner, axes.VoxelSize(lod)), {1, 1, 1}))) << "case " << i;
        ASSERT_EQ(axes.VoxelCorner(voxel, lod), corner);
    }
}

TEST(Axes, AcceptIndicesAndLevelsFarBeyondTheIndexSpace)
{
    const Axes axes = PlainAxes(3);
    for (const std::int64_t lod : {Lowest64, std::int64_t{-1}, std::int64_t{6}, Highest64}) {
        for (const std::int64_t index : {Lowest64, Lowest64 + 1, Highest64}) {
            const Triple corner = axes.VoxelCorner({index, index, index}, lod);
            const Triple center = axes.VoxelCenter({index, index, index}, lod);
            for (std::size_t i = 0; i < 3; ++i) {
                EXPECT_LE(std::abs(corner[i]), MaxCoordinate);
                EXPECT_EQ(center[i] - corner[i], axes.VoxelSize(lod)[i] / 2);
            }
            EXPECT_EQ(axes.ContainingVoxel({index, index, index}, lod)[0] < 0, index < 0);
        }
    }
}

TEST(Axes, AreEqualWhenMadeFromEqualValues)
{
    const Axes axes(1, {0, 2, 3}, 90, 4);
    EXPECT_TRUE(axes == Axes(1, {-0.0, 2, 3}, 90, 4));
    EXPECT_FALSE(axes == Axes(1.5, {0, 2, 3}, 90, 4));
    EXPECT_FALSE(axes == Axes(1, {0, 2, 3.5}, 90, 4));
    EXPECT_FALSE(axes == Axes(1, {0, 2, 3}, 450, 4)) << "equal directions of unequal degrees are not equal frames";
    EXPECT_FALSE(axes == Axes(1, {0, 2, 3}, 90, 3));
    const Axes unknown(1, {0, NotANumber, 3}, 90, 4);
    EXPECT_FALSE(unknown == unknown);
}

} // namespace
} // namespace brix
