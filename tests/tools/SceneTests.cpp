// The generated scenes are what they claim: closed solids, and a city made from its seed.
#include <scenes/Building.h>
#include <scenes/City.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
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

TEST(Building, IsMadeOfClosedBoxesOnly)
{
    for (const int storeys : {1, 2, 5})
        for (const bool furnished : {false, true}) {
            const std::vector<WorldTriangle> triangles = MakeBuilding({storeys, furnished});
            ASSERT_GT(triangles.size(), 0U);
            EXPECT_EQ(ClosedBoxesAtStart(triangles) * 12, triangles.size());
        }
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
