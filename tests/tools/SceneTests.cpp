// The generated scenes are what they claim: closed solids, a building that a person can walk through, a city made from its seed.
#include <scenes/Building.h>
#include <scenes/City.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <span>

namespace brix::scenes {
namespace {

using Point = std::array<double, 3>;

// Every edge is run through once in each direction, and the normals point outward.
bool IsClosedSolid(std::span<const WorldTriangle> triangles)
{
    std::set<std::pair<Point, Point>> edges;
    double volume = 0;
    for (const auto& [a, b, c] : triangles) {
        for (const auto& edge : {std::pair(a, b), std::pair(b, c), std::pair(c, a)})
            if (!edges.insert(edge).second) return false;
        volume += a[0] * (b[1] * c[2] - b[2] * c[1]) + a[1] * (b[2] * c[0] - b[0] * c[2]) + a[2] * (b[0] * c[1] - b[1] * c[0]);
    }
    const bool isClosed = std::all_of(edges.begin(), edges.end(), [&](const auto& edge) {
        return edges.contains({edge.second, edge.first});
    });
    return isClosed && volume > 0;
}

std::size_t ClosedBoxesAtStart(std::span<const WorldTriangle> triangles)
{
    std::size_t boxes = 0;
    while (12 * (boxes + 1) <= triangles.size() && IsClosedSolid(triangles.subspan(12 * boxes, 12))) ++boxes;
    return boxes;
}

struct Solid
{
    Point lower, upper;
};

std::vector<Solid> SolidsOf(const std::vector<WorldTriangle>& triangles)
{
    std::vector<Solid> solids;
    for (std::size_t first = 0; first < triangles.size(); first += 12) {
        Solid solid{triangles[first][0], triangles[first][0]};
        for (std::size_t triangle = first; triangle < first + 12; ++triangle)
            for (const Point& corner : triangles[triangle])
                for (std::size_t axis = 0; axis < 3; ++axis) {
                    solid.lower[axis] = std::min(solid.lower[axis], corner[axis]);
                    solid.upper[axis] = std::max(solid.upper[axis], corner[axis]);
                }
        solids.push_back(solid);
    }
    return solids;
}

bool HitsAny(const std::vector<Solid>& solids, const Point& lower, const Point& upper)
{
    return std::any_of(solids.begin(), solids.end(), [&](const Solid& solid) {
        for (std::size_t axis = 0; axis < 3; ++axis)
            if (solid.upper[axis] <= lower[axis] || solid.lower[axis] >= upper[axis]) return false;
        return true;
    });
}

// Someone of 0.5 m width and 2.1 m height, who takes steps of up to 0.4 m, goes straight from one point of the ground to another.
::testing::AssertionResult CanWalk(const std::vector<Solid>& solids, const Point& from, const Point& to)
{
    for (double way = 0; way <= 1; way += 0.01) {
        Point at{};
        for (std::size_t axis = 0; axis < 3; ++axis) at[axis] = from[axis] + way * (to[axis] - from[axis]);
        const auto [x, y, z] = at;
        if (HitsAny(solids, {x - 0.25, y - 0.25, z + 0.4}, {x + 0.25, y + 0.25, z + 2.1}))
            return ::testing::AssertionFailure() << "no room at " << x << ' ' << y << ' ' << z;
        if (!HitsAny(solids, {x - 0.01, y - 0.01, z - 0.2}, {x + 0.01, y + 0.01, z + 0.2}))
            return ::testing::AssertionFailure() << "no ground at " << x << ' ' << y << ' ' << z;
    }
    return ::testing::AssertionSuccess();
}

TEST(Building, IsMadeOfClosedBoxesOnly)
{
    for (const int storeys : {1, 2, 5})
        for (const bool furnished : {false, true}) {
            const std::vector<WorldTriangle> triangles = MakeBuilding({storeys, furnished});
            ASSERT_GT(triangles.size(), 0U);
            EXPECT_EQ(ClosedBoxesAtStart(triangles) * 12, triangles.size());
        }
}

TEST(Building, CanBeWalkedFromTheTerraceThroughTheRoomsToEveryFloor)
{
    const std::vector<Solid> solids = SolidsOf(MakeBuilding({.storeys = 3}));
    EXPECT_TRUE(CanWalk(solids, {-1.0, 4.6, 0}, {4.5, 4.6, 0})) << "entrance and hall";
    for (const double floor : {0.0, 3.0, 6.0}) {
        EXPECT_TRUE(CanWalk(solids, {4.5, 4.6, floor}, {12.0, 4.6, floor})) << "past the stairs, floor " << floor;
        EXPECT_TRUE(CanWalk(solids, {3.05, 5.2, floor}, {3.05, 7.0, floor})) << "door to the north, floor " << floor;
        EXPECT_TRUE(CanWalk(solids, {11.25, 4.6, floor}, {11.25, 2.95, floor})) << "door to the south, floor " << floor;
        EXPECT_TRUE(CanWalk(solids, {11.25, 3.05, floor}, {7.5, 3.05, floor})) << "door between rooms, floor " << floor;
    }
    for (const double floor : {0.0, 3.0}) {
        EXPECT_TRUE(CanWalk(solids, {4.86, 5.9, floor}, {9.62, 5.9, floor + 3})) << "stairs from floor " << floor;
        EXPECT_TRUE(CanWalk(solids, {9.9, 5.9, floor + 3}, {9.9, 4.6, floor + 3})) << "landing at floor " << floor + 3;
    }
    EXPECT_FALSE(CanWalk(solids, {7.0, 4.6, 6}, {7.0, 5.28, 6})) << "a railing stands along the stair well";
    EXPECT_FALSE(CanWalk(solids, {4.0, 5.9, 6}, {4.98, 5.9, 6})) << "and across it on the highest floor";
    EXPECT_FALSE(CanWalk(solids, {0.8, 1.7, 0}, {4.4, 1.7, 0})) << "tables are no floor";
    EXPECT_FALSE(CanWalk(solids, {1.0, -0.12, 3}, {13.0, -0.12, 3})) << "the ledge is narrower than a person";
}

TEST(City, IsMadeFromItsSeedWithAboutTheTrianglesThatAreAskedFor)
{
    const std::vector<WorldTriangle> city = MakeCity({.seed = 5, .triangles = 60'000});
    EXPECT_EQ(city, MakeCity({.seed = 5, .triangles = 60'000}));
    EXPECT_NE(city, MakeCity({.seed = 6, .triangles = 60'000}));
    EXPECT_NEAR(static_cast<double>(city.size()), 60'000, 600);
    EXPECT_GT(MakeCity({.seed = 1, .triangles = -1}).size(), 0U);

    const std::size_t buildings = 12 * ClosedBoxesAtStart(city);
    EXPECT_GT(buildings, city.size() / 3);
    EXPECT_LT(buildings, city.size() * 2 / 3);
    for (const WorldTriangle& triangle : city)
        for (const Point& corner : triangle)
            for (const double coordinate : corner) {
                ASSERT_EQ(coordinate * 1024, std::round(coordinate * 1024));
                ASSERT_EQ(coordinate, static_cast<double>(static_cast<float>(coordinate))) << "survives a binary STL file";
            }
}

} // namespace
} // namespace brix::scenes
