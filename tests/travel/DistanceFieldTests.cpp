// Distances against the shortest ways of a visibility graph, against lines that can be worked out, and against the laws of distances.
#include "travel/DistanceField.h"

#include "Walks.h"
#include "operations/BasicOperations.h"
#include "support/Messages.h"
#include "support/RandomModels.h"
#include "support/ReferenceOperations.h"

#include <gtest/gtest.h>

namespace brix {
namespace {

using namespace tests;

const Axes PlanAxes(1, {0, 0, 0}, 0, 0);
constexpr double Width = 40000; // of a voxel of the plans

ReferenceModel RandomPlan(std::uint64_t seed)
{
    Random random(seed);
    const Triple lower{random.Between(-20, 2), random.Between(-20, 2), 0};
    ReferenceModel plan(Extents(PlanAxes, lower, Plus(lower, {random.Between(2, 17), random.Between(2, 17), 0}), 0), 0, 0);
    const std::int64_t solid = random.Between(0, 40);
    const std::int64_t size = random.OneIn(2) ? 1 : random.Between(2, 5); // noise or blocks
    plan.ForEachVoxel([&](const Triple& voxel) {
        if (random.Between(1, 100 * size * size) > solid) return;
        ForEachTriple(voxel, Plus(voxel, {size - 1, size - 1, 0}), [&](const Triple& v) { plan.Set(v); });
    });
    return plan;
}

// Hills and terraces, with a roof over part of them that one can stand on, too.
ReferenceModel RandomHills(std::uint64_t seed)
{
    Random random(seed);
    const std::int64_t size = random.Between(4, 14);
    ReferenceModel hills(Extents(PlanAxes, {-3, -5, 0}, {size - 4, size - 6, 17}, 0), 0, 0);
    const std::int64_t slopeX = random.Between(-3, 3);
    const std::int64_t slopeY = random.Between(-3, 3);
    const std::int64_t roughness = random.Between(0, 2);
    const std::int64_t roof = random.Between(10, 15);
    std::map<std::array<std::int64_t, 2>, std::int64_t> heights;
    return hills.Where([&](const Triple& v) {
        auto& height = heights.try_emplace({v[0], v[1]}, -1).first->second;
        if (height < 0)
            height =
                std::clamp<std::int64_t>(4 + FloorDivide(slopeX * v[0] + slopeY * v[1], 4) + random.Between(0, roughness), 0, 9);
        return v[2] <= height || (v[2] == roof && v[0] % 5 != 0);
    });
}

std::int64_t DistanceOf(const DistanceField& field, const Triple& voxel)
{
    return field.Distance(field.AxesRef().VoxelCenter(voxel, field.VoxelLOD()));
}

DistanceField FieldFrom(const PathModel& path, const Triple& source, std::int64_t maxDistance = NoLimit)
{
    return {path, {path.TraversableVoxels().AxesRef().VoxelCenter(source, path.VoxelLOD())}, maxDistance};
}

// The largest share by which distances exceed the shortest ways; what is shorter than possible, or not the same set, is a failure.
double LargestExcess(const ReferenceModel& plan, const Triple& source)
{
    const VoxelModel<bool> environment = MakeModel(plan);
    const PathModel path(environment, 0, 1, 1, false);
    const Ground ground(path);
    const std::map<Triple, double> ways = ground.ShortestWays(source);
    const DistanceField field = FieldFrom(path, source);
    double excess = 0;
    for (const Triple& voxel : ground.voxels) {
        const std::int64_t distance = DistanceOf(field, voxel);
        EXPECT_EQ(distance >= 0, ways.count(voxel) != 0);
        if (distance < 0 || ways.count(voxel) == 0) continue;
        const double shortest = ways.at(voxel) * Width;
        EXPECT_GE(static_cast<double>(distance), shortest - 1);
        if (voxel != source) excess = std::max(excess, static_cast<double>(distance - 1) / shortest - 1);
    }
    return excess;
}

TEST(DistanceField, IsExactOnOpenFloorInEveryDirection)
{
    const Axes axes(1, {0, 0, 0}, 0, 1);
    const VoxelModel<bool> environment(Extents(axes, {-40, -25, 7}, {41, 30, 7}, 3), 3);
    const PathModel path(environment, 3, 1, 1, false);
    const Triple source{-13, 4, 7};
    const DistanceField field = FieldFrom(path, source);
    std::int64_t count = 0;
    field.ForEachReachable([&](const Triple& voxel, std::int64_t distance) {
        const double straight = 5000 * std::hypot(voxel[0] - source[0], voxel[1] - source[1]);
        EXPECT_NEAR(static_cast<double>(distance), straight, 0.51);
        ++count;
    });
    EXPECT_EQ(count, 82 * 56);
    EXPECT_EQ(field.FarthestVoxel(), (Triple{41, -25, 7}));
    EXPECT_EQ(field.FarthestDistance(), DistanceOf(field, {41, -25, 7}));
}

TEST(DistanceField, KeepsToTheShortestWayAroundCorners)
{
    const std::string corner = ".......... .......... .......... .....##### .....##### .....##### .....#####";
    const std::string uTurn =
        ".............. .............. .............. ...########### .............. .............. ..............";
    const std::string doors =
        "......#..... ......#..... ............ ......#..... ###.#####.## ...#........ ...#...#.... .......#....";
    for (const std::string& drawing : {corner, uTurn, doors}) {
        const ReferenceModel plan = DrawnPlan(PlanAxes, drawing);
        const Triple upper = plan.ExtentsRef().UpperIndices();
        EXPECT_LE(LargestExcess(plan, {0, 0, 0}), 0.02) << drawing;
        EXPECT_LE(LargestExcess(plan, {upper[0], upper[1], 0}), 0.02) << drawing;
    }
    for (std::uint64_t seed = 1; seed <= 150; ++seed) {
        const ReferenceModel plan = RandomPlan(seed);
        plan.ForEachVoxel([&, isFirst = true](const Triple& voxel) mutable {
            if (plan.Value(voxel) || !isFirst) return;
            isFirst = false;
            EXPECT_LE(LargestExcess(plan, voxel), 0.02) << "seed " << seed;
        });
    }
}

// A floor, a flight that rises a voxel every third column from x = 10 to 40, and the floor above.
TEST(DistanceField, WalksStairsOnTheirSlope)
{
    const Axes axes(1, {0, 0, 0}, 0, 1); // voxels half as high as wide
    ReferenceModel floors(Extents(axes, {0, 0, 0}, {59, 29, 30}, 0), 0, 0);
    floors = floors.Where([](const Triple& v) { return v[2] <= std::clamp<std::int64_t>((v[0] - 7) / 3, 0, 10); });
    const VoxelModel<bool> environment = MakeModel(floors);
    const PathModel path(environment, 0, 1, 6, false);
    const DistanceField field = FieldFrom(path, {2, 5, 1});
    const double flight = std::hypot(30, 5) - 30; // longer than in plan
    for (std::int64_t y = 0; y < 30; ++y) {
        for (std::int64_t x = 40; x < 60; ++x) { // unfolded, the way is straight
            const double way = std::hypot(static_cast<double>(x - 2) + flight, y - 5) * Width;
            EXPECT_NEAR(static_cast<double>(DistanceOf(field, {x, y, 11})) / way, 1, 0.01) << x << ", " << y;
        }
    }
}

// Two floors of 40 x 20 voxels, eight voxels apart; a flight three voxels wide between two walls leads from x = 11 up to x = 19.
TEST(DistanceField, FindsTheOneFlightBetweenTwoStoreys)
{
    ReferenceModel house(Extents(PlanAxes, {0, 0, 0}, {39, 19, 16}, 0), 0, 0);
    house = house.Where([&](const Triple& v) {
        const bool isStair = 12 <= v[0] && v[0] < 20 && 7 <= v[1] && v[1] <= 11;
        if (isStair && (v[1] == 7 || v[1] == 11)) return true; // walls
        return v[2] == 0 || (isStair ? v[2] <= v[0] - 11 : v[2] == 8);
    });
    const VoxelModel<bool> environment = MakeModel(house);
    const PathModel path(environment, 0, 1, 4, false);
    const DistanceField field = FieldFrom(path, {3, 3, 1});
    const auto length = [](const Triple& a, const Triple& b) { return std::hypot(a[0] - b[0], a[1] - b[1], a[2] - b[2]); };
    for (const Triple& target : {Triple{38, 2, 9}, Triple{30, 18, 9}, Triple{2, 2, 9}, Triple{12, 12, 9}}) {
        double shortest = 1e9;
        for (std::int64_t foot = 8; foot <= 10; ++foot) {
            for (std::int64_t head = 8; head <= 10; ++head) {
                const double climb = length({3, 3, 1}, {11, foot, 1}) + length({11, foot, 1}, {19, head, 9});
                const std::int64_t side = target[1] < 9 ? -1 : 1; // back around the end of a wall
                const Triple end{20, 9 + 2 * side, 9};
                const Triple behind{19, 9 + 3 * side, 9};
                const double back = length({19, head, 9}, end) + length(end, behind) + length(behind, target);
                shortest = std::min(shortest, climb + (target[0] < 20 ? back : length({19, head, 9}, target)));
            }
        }
        EXPECT_NEAR(static_cast<double>(DistanceOf(field, target)) / (shortest * Width), 1, 0.02)
            << target[0] << ", " << target[1];
    }
}

void ExpectLawsOfDistance(const PathModel& path, const Triple& source, const std::string& what)
{
    const Ground ground(path);
    const DistanceField field = FieldFrom(path, source);
    const std::set<Triple> reached = ground.Reached(source, [](const Triple&) { return true; });
    const Triple size = field.AxesRef().VoxelSize(path.VoxelLOD());
    const auto length = [&](const Triple& a, const Triple& b) {
        return std::hypot((a[0] - b[0]) * size[0], (a[1] - b[1]) * size[1], (a[2] - b[2]) * size[2]);
    };
    std::int64_t farthest = 0;
    for (const Triple& voxel : ground.voxels) {
        const std::int64_t distance = DistanceOf(field, voxel);
        ASSERT_EQ(distance >= 0, reached.count(voxel) != 0) << what;
        if (distance < 0) continue;
        farthest = std::max(farthest, distance);
        EXPECT_GE(static_cast<double>(distance) + 0.51, length(voxel, source)) << what;
        ground.ForEachStep(voxel,
                           [&](const Triple& to) { // by way of a neighbour it is not shorter, but for half a voxel's bucket
                               EXPECT_LE(static_cast<double>(DistanceOf(field, to) - distance),
                                         length(voxel, to) + 0.5 * static_cast<double>(size[0]))
                                   << what;
                           });
    }
    EXPECT_EQ(field.FarthestDistance(), farthest) << what;
    EXPECT_EQ(DistanceOf(field, field.FarthestVoxel()), farthest) << what;

    const std::int64_t limit = farthest / 2;
    const auto isReached = [&](const Triple& v) { return reached.count(v) != 0; };
    const auto isNear = [&](const Triple& v) { return isReached(v) && DistanceOf(field, v) <= limit; };
    EXPECT_EQ(Differences(field.ReachableVoxels(), ground.model.Where(isReached)), "") << what;
    EXPECT_EQ(Differences(field.ReachableVoxels(limit), ground.model.Where(isNear)), "") << what;
    FieldFrom(path, source, limit).ForEachReachable([&](const Triple& voxel, std::int64_t distance) {
        EXPECT_EQ(distance, DistanceOf(field, voxel)) << what; // a limit changes nothing within it
    });
}

TEST(DistanceField, ReachesWhatStepsReach)
{
    std::size_t voxels = 0;
    for (std::uint64_t seed = 1; seed <= 120; ++seed) {
        const VoxelModel<bool> environment = seed % 3 == 0 ? MakeRandomModel(seed).voxels : MakeModel(RandomHills(seed));
        Random random(seed);
        const bool isPlan = environment.ExtentsRef(0).LowerIndices()[2] == environment.ExtentsRef(0).UpperIndices()[2];
        const PathModel path(environment, environment.FinestLOD(), random.Between(1, 2), random.Between(isPlan ? 1 : 2, 4),
                             random.OneIn(2));
        const Ground ground(path);
        voxels += ground.voxels.size();
        for (int source = 0; source < 3 && !ground.voxels.empty(); ++source) {
            const auto number = random.Between(0, static_cast<std::int64_t>(ground.voxels.size()) - 1);
            ExpectLawsOfDistance(path, ground.voxels[static_cast<std::size_t>(number)], "seed " + std::to_string(seed));
        }
    }
    EXPECT_GT(voxels, 10000U);
}

TEST(DistanceField, IsTheSameForMirroredPlansAndNearlyForSwappedEnds)
{
    for (std::uint64_t seed = 200; seed < 260; ++seed) {
        const ReferenceModel plan = RandomPlan(seed);
        const Triple low = plan.ExtentsRef().LowerIndices();
        const Triple high = plan.ExtentsRef().UpperIndices();
        const auto turned = [](const Triple& v) {
            return Triple{v[1], -v[0], 0};
        }; // by a quarter, which swaps all roles of the axes
        ReferenceModel other(Extents(PlanAxes, {low[1], -high[0], 0}, {high[1], -low[0], 0}, 0), 0, 0);
        plan.ForEachVoxel([&](const Triple& v) { other.Set(turned(v), plan.Value(v)); });
        const VoxelModel<bool> environments[]{MakeModel(plan), MakeModel(other)};
        const PathModel path(environments[0], 0, 1, 1, false);
        const PathModel turnedPath(environments[1], 0, 1, 1, false);
        const std::vector<Triple> voxels = Ground(path).voxels;
        if (voxels.empty()) continue;
        const Triple ends[]{voxels.front(), voxels[voxels.size() / 2]};
        const DistanceField field = FieldFrom(path, ends[0]);
        const DistanceField turnedField = FieldFrom(turnedPath, turned(ends[0]));
        for (const Triple& voxel : voxels) {
            const auto distance = static_cast<double>(DistanceOf(field, voxel));
            EXPECT_NEAR(static_cast<double>(DistanceOf(turnedField, turned(voxel))), distance, 1 + 0.01 * distance) << seed;
        }
        const auto forth = static_cast<double>(DistanceOf(field, ends[1]));
        EXPECT_NEAR(static_cast<double>(DistanceOf(FieldFrom(path, ends[1]), ends[0])), forth, 1 + 0.02 * forth) << seed;
    }
}

TEST(DistanceField, TakesTheGroundBelowASource)
{
    ReferenceModel floor(Extents(PlanAxes, {0, 0, 0}, {9, 0, 9}, 0), 0, 0);
    floor = floor.Where([](const Triple& v) { return v[2] == 1; });
    const VoxelModel<bool> environment = MakeModel(floor);
    const PathModel path(environment, 0, 1, 4, false);
    EXPECT_EQ(DistanceOf(FieldFrom(path, {3, 0, 6}), {3, 0, 2}), 0);
    EXPECT_EQ(DistanceOf(DistanceField(path, {{0, 0, 0}, {7 * 40000, 0, 6 * 40000}}, NoLimit), {0, 0, 2}),
              7 * 40000); // the first is ignored
    constexpr const char* none = "None of the source points used to construct a distance field is on a traversable voxel, or "
                                 "above one within the height of "
                                 "the agent.";
    constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
    for (const Triple& source : {Triple{3 * 40000, 0, 7 * 40000}, Triple{3 * 40000, 0, 40000}, Triple{least, least, least},
                                 Triple{NoLimit, NoLimit, NoLimit}, Triple{40000, 0, least}, Triple{40000, 0, NoLimit}}) {
        EXPECT_EQ(MessageOf([&] { DistanceField(path, {source}, -1); }), none) << source[2];
    }
}

TEST(DistanceField, ReportsTheFirstArgumentThatBreaksItsRule)
{
    const VoxelModel<bool> environment(Extents(PlanAxes, {0, 0, 0}, {3, 3, 0}, 0), 0);
    const PathModel path(environment, 0, 1, 1, false);
    EXPECT_EQ(MessageOf([&] { DistanceField(path, {}, -5); }),
              "At least one source point is required to construct a distance field.");
    EXPECT_EQ(MessageOf([&] {
                  FieldFrom(path, {0, 0, 0}, -5);
              }),
              "The maximum distance used to construct a distance field cannot be negative. The value encountered was -5.");
    const DistanceField field = FieldFrom(path, {0, 0, 0}, 50000);
    EXPECT_EQ(MessageOf([&] { field.ReachableVoxels(-1); }),
              "The maximum distance of reachable voxels cannot be negative. The value encountered was -1.");
    EXPECT_EQ(CountFilled(field.ReachableVoxels(), 0), 3);
    EXPECT_EQ(CountFilled(FieldFrom(path, {0, 0, 0}, 0).ReachableVoxels(), 0), 1);
    EXPECT_EQ(field.Distance({3 * 40000, 0, 0}), -1);
    EXPECT_EQ(field.Distance({NoLimit, NoLimit, NoLimit}), -1);
}

} // namespace
} // namespace brix
