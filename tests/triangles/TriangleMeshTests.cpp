#include "triangles/TriangleMesh.h"

#include "support/FailingAllocations.h"
#include "support/Messages.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace brix {
namespace {

using namespace tests;
using Vertices = std::vector<std::array<double, 3>>;
using Indices = std::vector<std::array<std::int64_t, 3>>;

const Vertices Square{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();

TEST(TriangleMesh, ReportsTheFirstVertexIndexThatDoesNotExist)
{
    const Vertices three(Square.begin(), Square.begin() + 3);
    const std::string tooLarge = "All triangle vertex indices must be less than number of vertices in the triangle mesh. ";
    const std::vector<std::pair<Indices, std::string>> cases{
        {{{0, 1, -1}}, "No triangle vertex index can be negative. A value of -1 was encountered."},
        {{{0, 3, 1}},
         "All triangle vertex indices must be less than number of vertices in the triangle mesh. A triangle vertex "
         "index of 3 was encountered. There are 3 vertices in the triangle mesh."},
        {{{0, 1, 2}, {4, -7, 0}},
         tooLarge + "A triangle vertex index of 4 was encountered. There are 3 vertices in the triangle mesh."},
        {{{0, -7, 4}}, "No triangle vertex index can be negative. A value of -7 was encountered."},
        {{{0, std::numeric_limits<std::int64_t>::min(), 0}},
         "No triangle vertex index can be negative. A value of -9223372036854775808 was encountered."},
        {{{std::numeric_limits<std::int64_t>::max(), 0, 0}},
         tooLarge + "A triangle vertex index of 9223372036854775807 was encountered. There are 3 vertices in the triangle mesh."},
        {{{0, 1, 2}, {2, 2, 2}}, "(nothing was thrown)"},
    };
    for (const auto& [indices, message] : cases) {
        EXPECT_EQ(MessageOf([&, &given = indices] { TriangleMesh(three, given); }), message);
    }
    EXPECT_NE(MessageOf([] { TriangleMesh({}, {{0, 0, 0}}); }).find("There are 0 vertices"), std::string::npos);
}

TEST(TriangleMesh, MergesOnlyVerticesThatAreExactlyEqual)
{
    const WorldTriangle nearlyOne{{{0.0, 1, 2}, {-0.0, 1, 2}, {std::nextafter(0.0, 1.0), 1, 2}}};
    TriangleMesh mesh(std::vector<WorldTriangle>{nearlyOne});
    EXPECT_EQ(mesh.IndexedTrianglesRef(), (Indices{{0, 0, 1}}));
    EXPECT_FALSE(std::signbit(mesh.VerticesRef()[0][0])) << "the first of equal vertices stays";
    mesh.AddTriangle({{{0, 1, 2}, {NotANumber, 1, 2}, {2, NotANumber, 1}}}); // what is not a number must not confuse the others
    mesh.AddTriangle({{{-0.0, 1, 2}, {1, 1, 1}, {std::nextafter(0.0, 1.0), 1, 2}}});
    EXPECT_EQ(mesh.IndexedTrianglesRef().back(), (std::array<std::int64_t, 3>{0, 4, 1}));
}

TEST(TriangleMesh, KeepsGivenDuplicatesAndContinuesWithTheLastOfThem)
{
    TriangleMesh mesh({{0, 0, 0}, {1, 0, 0}, {0, 0, 0}}, {{0, 1, 2}});
    mesh.AddTriangle({{{1, 0, 0}, {0, 0, 0}, {5, 5, 5}}});
    EXPECT_EQ(mesh.IndexedTrianglesRef(), (Indices{{0, 1, 2}, {1, 2, 3}}));
    EXPECT_EQ(mesh.VerticesRef().size(), 4U);
}

TEST(TriangleMesh, GivesBackTheTrianglesItWasMadeOf)
{
    Random random(1);
    std::vector<WorldTriangle> triangles(300);
    for (WorldTriangle& triangle : triangles) {
        for (auto& corner : triangle) {
            for (double& value : corner) value = static_cast<double>(random.Between(-2, 2)) / 3;
        }
    }
    const TriangleMesh mesh(triangles);
    EXPECT_EQ(mesh.ExpandedTriangles(), triangles);
    EXPECT_EQ(mesh.VerticesRef().size(), 125U);
    TriangleMesh copy(mesh);
    copy.AddTriangles(triangles);
    EXPECT_EQ(copy.VerticesRef(), mesh.VerticesRef());
    EXPECT_EQ(copy.IndexedTrianglesRef().size(), 600U);
    EXPECT_EQ(mesh.IndexedTrianglesRef().size(), 300U);
}

TEST(TriangleMesh, StaysWholeWhenMemoryRunsOut)
{
    const WorldTriangle added{{{1, 0, 0}, {7, 7, 7}, {8, 8, 8}}};
    std::int64_t n = 1;
    for (;; ++n) {
        TriangleMesh mesh(Square, {{0, 1, 2}});
        if (!RunsOutOfMemory(n, [&] { mesh.AddTriangle(added); })) break;
        ASSERT_EQ(mesh.ExpandedTriangles().size(), 1U);
        mesh.AddTriangle(added);
        ASSERT_EQ(mesh.ExpandedTriangles().back(), added) << "after failure " << n;
        ASSERT_EQ(mesh.IndexedTrianglesRef().back()[0], 1) << "after failure " << n;
    }
    EXPECT_GT(n, 6);
}

TEST(WorldTriangleNormal, IsTheUnitNormalOfTheRightHand)
{
    const auto normal = [](const WorldTriangle& triangle) { return WorldTriangleNormal(triangle); };
    EXPECT_EQ(normal({{{0, 0, 0}, {5, 0, 0}, {0, 3, 0}}}), (std::array<double, 3>{0, 0, 1}));
    EXPECT_EQ(normal({{{1, 1, 1}, {1, 3, 1}, {1, 1, 5}}}), (std::array<double, 3>{1, 0, 0}));
    EXPECT_EQ(normal({{{1, 1, 1}, {1, 1, 5}, {5, 1, 1}}}), (std::array<double, 3>{0, 1, 0}));
    const double third = 1 / std::sqrt(3.0);
    for (const double value : normal({{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}})) EXPECT_DOUBLE_EQ(value, third);
    const std::array<double, 3> none{0, 0, 0};
    EXPECT_EQ(normal({{{0, 0, 0}, {1, 1, 1}, {3, 3, 3}}}), none);
    EXPECT_EQ(normal({{{NotANumber, 0, 0}, {1, 0, 0}, {0, 1, 0}}}), none);
}

} // namespace
} // namespace brix
