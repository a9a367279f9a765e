#include "triangles/MeshReport.h"

#include "support/Messages.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <stdexcept>

namespace brix {
namespace {

using tests::Random;
using Point = std::array<double, 3>;
using Triangles = std::vector<WorldTriangle>;

/// The counts from their definitions.
MeshReport CountedByDefinition(const Triangles& triangles)
{
    std::set<Point> vertices; // its order takes 0 and -0 for equal
    std::map<std::pair<Point, Point>, std::vector<std::pair<std::size_t, bool>>> edges;
    std::set<std::set<Point>> different;
    MeshReport report;
    std::vector<std::size_t> shell(triangles.size());
    for (std::size_t i = 0; i < triangles.size(); ++i) {
        const WorldTriangle& t = triangles[i];
        vertices.insert(t.begin(), t.end());
        shell[i] = i;
        if (t[0] == t[1] || t[1] == t[2] || t[2] == t[0]) continue;
        if (!different.insert({t.begin(), t.end()}).second) ++report.duplicateTriangles;
        for (std::size_t c = 0; c < 3; ++c) {
            const auto [lower, upper] = std::minmax(t[c], t[(c + 1) % 3]);
            edges[{lower, upper}].emplace_back(i, t[c] == lower);
        }
    }
    report.vertices = vertices.size();
    report.edges = edges.size();
    report.isClosed = !edges.empty();
    std::set<std::size_t> withEdges;
    for (const auto& [edge, uses] : edges) {
        report.openEdges += uses.size() == 1;
        report.crowdedEdges += uses.size() > 2;
        report.reversedEdges += uses.size() == 2 && uses[0].second == uses[1].second;
        if (uses.size() % 2 != 0) report.isClosed = false;
        for (const auto& use : uses) withEdges.insert(use.first);
    }
    for (bool changes = true; changes;) { // the least number spreads over each shell
        changes = false;
        for (const auto& [edge, uses] : edges)
            for (const auto& a : uses)
                for (const auto& b : uses)
                    if (shell[b.first] < shell[a.first]) shell[a.first] = shell[b.first], changes = true;
    }
    std::set<std::size_t> shells;
    for (const std::size_t i : withEdges) shells.insert(shell[i]);
    report.shells = shells.size();
    return report;
}

auto CountsOf(const MeshReport& r)
{
    return std::array{r.vertices,      r.edges,
                      r.openEdges,     r.crowdedEdges,
                      r.reversedEdges, r.duplicateTriangles,
                      r.shells,        std::uint64_t{r.isClosed}};
}

/// Triangles between the points of a small grid, some of them around one vertex or edge: they share corners and edges, repeat
/// and collapse.
Triangles RandomTriangles(Random& random)
{
    const std::int64_t side = random.Between(1, 4);
    const auto coordinate = [&] {
        const auto number = static_cast<double>(random.Between(0, side)) / 3;
        return number == 0 && random.OneIn(2) ? -0.0 : number;
    };
    const auto point = [&] { return Point{coordinate(), coordinate(), coordinate()}; };
    const Point hub = point();
    const Point secondHub = point();
    Triangles triangles(static_cast<std::size_t>(random.Between(0, 100)));
    const std::int64_t kind = random.Between(0, 2);
    for (WorldTriangle& triangle : triangles) {
        triangle = {point(), point(), point()};
        if (kind > 0 && random.OneIn(2)) triangle[static_cast<std::size_t>(random.Between(0, 2))] = hub;
        if (kind > 1 && random.OneIn(2)) triangle = {hub, secondHub, triangle[2]};
    }
    return triangles;
}

TEST(CountMesh, EqualsTheDefinitionsOnRandomTriangles)
{
    Random random(1);
    for (std::uint64_t round = 0; round < tests::Rounds(2000); ++round) {
        const Triangles triangles = RandomTriangles(random);
        ASSERT_EQ(CountsOf(CountMesh(triangles)), CountsOf(CountedByDefinition(triangles))) << round;
    }
}

Triangles Box(const Point& at, double size)
{
    const auto corner = [&](int bits) {
        return Point{at[0] + size * (bits & 1), at[1] + size * (bits >> 1 & 1), at[2] + size * (bits >> 2 & 1)};
    };
    Triangles triangles;
    for (const auto& [a, b, c, d] :
         {std::array{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4}, {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}}) {
        triangles.push_back({corner(a), corner(b), corner(c)});
        triangles.push_back({corner(a), corner(c), corner(d)});
    }
    return triangles;
}

TEST(CountMesh, TellsASolidFromWhatIsNone)
{
    const Triangles box = Box({1e6, 2, 3}, 2);
    const MeshReport whole = CountMesh(box);
    EXPECT_EQ(CountsOf(whole), (std::array<std::uint64_t, 8>{8, 18, 0, 0, 0, 0, 1, 1}));
    EXPECT_EQ(whole.signedVolume, 8); // whole numbers are summed up without error, wherever the box lies
    EXPECT_EQ(whole.lower, (Point{1e6, 2, 3}));
    EXPECT_EQ(whole.upper, (Point{1e6 + 2, 4, 5}));
    EXPECT_TRUE(whole.IsSolid());

    const auto changed = [&](auto change) {
        Triangles triangles = box;
        change(triangles);
        return CountMesh(triangles);
    };
    const MeshReport holed = changed([](Triangles& t) { t.pop_back(); });
    EXPECT_EQ(CountsOf(holed), (std::array<std::uint64_t, 8>{8, 18, 3, 0, 0, 0, 1, 0}));
    const MeshReport twisted = changed([](Triangles& t) { std::swap(t[5][0], t[5][1]); });
    EXPECT_EQ(CountsOf(twisted), (std::array<std::uint64_t, 8>{8, 18, 0, 0, 3, 0, 1, 1}));
    const MeshReport doubled = changed([](Triangles& t) { t.push_back({t[3][1], t[3][0], t[3][2]}); });
    EXPECT_EQ(CountsOf(doubled), (std::array<std::uint64_t, 8>{8, 18, 0, 3, 0, 1, 1, 0}));
    const MeshReport insideOut = changed([](Triangles& t) {
        for (WorldTriangle& triangle : t) std::swap(triangle[0], triangle[1]);
    });
    EXPECT_EQ(insideOut.signedVolume, -8);
    for (const MeshReport& report : {holed, twisted, doubled, insideOut, CountMesh({})}) EXPECT_FALSE(report.IsSolid());

    // Boxes that touch at an edge enclose space, and share an edge of four triangles; a corner is not enough for one shell.
    const auto with = [&](const Point& at) {
        return changed([&](Triangles& t) { t.insert(t.end(), 12, {}), std::ranges::copy(Box(at, 2), t.end() - 12); });
    };
    EXPECT_EQ(CountsOf(with({1e6 + 2, 4, 3})), (std::array<std::uint64_t, 8>{14, 35, 0, 1, 0, 0, 1, 1}));
    EXPECT_EQ(CountsOf(with({1e6 + 2, 4, 5})), (std::array<std::uint64_t, 8>{15, 36, 0, 0, 0, 0, 2, 1}));
}

// Neither many triangles at one edge nor many vertices, which make the table of vertices grow, take more than linear time.
TEST(CountMesh, TakesFansAndLooseTriangles)
{
    Triangles fan;
    Triangles loose;
    for (int i = 0; i < 300'000; ++i) {
        const double at = i;
        fan.push_back({{{0, 0, 0}, {0, 0, 1}, {1 + at, 0, 0}}});
        loose.push_back({{{at, 0.1, 0}, {at, 1.2, 0}, {at, 0, 1.3}}});
    }
    EXPECT_EQ(CountsOf(CountMesh(fan)), (std::array<std::uint64_t, 8>{300'002, 600'001, 600'000, 1, 0, 0, 1, 0}));
    EXPECT_EQ(CountsOf(CountMesh(loose)), (std::array<std::uint64_t, 8>{900'000, 900'000, 900'000, 0, 0, 0, 300'000, 0}));
}

TEST(CountMesh, RefusesMoreTrianglesThanItCanCount)
{
    const WorldTriangle* const none = nullptr;
    EXPECT_EQ(tests::MessageOf<std::length_error>([&] {
                  return CountMesh({none, 715'827'883});
              }),
              "The edges of at most 715827882 triangles can be counted. The number encountered was 715827883.");
}

TEST(GuessUnit, SaysWhatItThinksAndWhy)
{
    const std::tuple<double, const char*, const char*> cases[] = {
        {0, "", "It has no size."},
        {0.15, "m", "Its longest side is 0.15: too small to be made in millimetres, but a part or a model in metres."},
        {9.5, "", "Its longest side is 9.5: a room in metres as well as a part in centimetres or inches."},
        {120, "mm",
         "Its longest side is 120: a part of 0.12 m in millimetres, which most files are in; in metres it is a building."},
        {17000, "mm", "Its longest side is 17000: a machine or a building of 17 m in millimetres."},
        {4e6, "", "Its longest side is 4e+06: larger than anything in millimetres; terrain in metres, perhaps."},
    };
    for (const auto& [side, unit, reason] : cases) {
        EXPECT_EQ(GuessUnit(side).unit, unit) << side;
        EXPECT_EQ(GuessUnit(side).reason, reason) << side;
    }
}

} // namespace
} // namespace brix
