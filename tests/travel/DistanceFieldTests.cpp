// Distances against the shortest ways of a visibility graph, against lines that can be worked out, and against the laws of
// distances.
#include "travel/DistanceField.h"

#include "Walks.h"
#include "operations/BasicOperations.h"
#include "support/Messages.h"
#include "support/RandomModels.h"
#include "support/ReferenceOperations.h"
#include "travel/Path.h"

#include <gtest/gtest.h>

#include <map>

namespace brix {
namespace {

using namespace tests;

const Axes PlanAxes(1, {0, 0, 0}, 0, 0);
constexpr double Width = 40000; // of a voxel of the plans

std::int64_t DistanceOf(const DistanceField& field, const Triple& voxel)
{
    return field.Distance(field.AxesRef().VoxelCenter(voxel, field.VoxelLOD()));
}

DistanceField FieldFrom(const PathModel& path, const Triple& source, std::int64_t maxDistance = NoLimit)
{
    return {path, {path.TraversableVoxels().AxesRef().VoxelCenter(source, path.VoxelLOD())}, maxDistance};
}

// By how much distances exceed the shortest ways, as a share of them; what is shorter than possible, or not the same set, is a
// failure.
struct Excess
{
    double worst = 0;
    double sum = 0;
    long long count = 0;

    double Mean() const { return sum / static_cast<double>(std::max(1LL, count)); }

    void Add(const PathModel& path, const Triple& source, const std::string& what)
    {
        const Ground ground(path);
        const std::vector<double> ways = ground.ShortestWays(source);
        const DistanceField field = FieldFrom(path, source);
        for (std::size_t i = 0; i < ways.size(); ++i) {
            const std::int64_t distance = DistanceOf(field, ground.voxels[i]);
            ASSERT_EQ(distance >= 0, std::isfinite(ways[i])) << what;
            if (distance <= 0) continue;
            ASSERT_GE(distance, std::llround(ways[i] * (1 - 1e-12))) << what; // never below
            const double excess = std::max(0., (static_cast<double>(distance) - 0.5) / ways[i] - 1);
            worst = std::max(worst, excess);
            sum += excess;
            ++count;
        }
    }
};

Triple AnyVoxel(const PathModel& path, std::uint64_t seed)
{
    const std::vector<Triple> voxels = Ground(path).voxels;
    return voxels.empty() ? Triple{} : voxels[Random(seed).Bits() % voxels.size()];
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

// Blocks far from each other: what the source sees is as far as the line is long, but for one voxel in 400 that no neighbour
// offers this line.
TEST(DistanceField, IsStraightBetweenThePillarsOfAHall)
{
    std::int64_t seen = 0;
    std::int64_t longer = 0;
    for (std::uint64_t seed = 1; seed <= 6; ++seed) {
        Random random(seed);
        ReferenceModel hall(Extents(PlanAxes, {0, 0, 0}, {44, 44, 0}, 0), 0, 0);
        for (int i = 0; i < 14; ++i) {
            const Triple corner{random.Between(0, 42), random.Between(0, 42), 0};
            ForEachTriple(corner, Plus(corner, {random.Between(0, 2), random.Between(0, 2), 0}),
                          [&](const Triple& v) { hall.Set(v); });
        }
        const VoxelModel<bool> environment = MakeModel(hall);
        const PathModel path(environment, 0, 1, 1, false);
        const Ground ground(path);
        const Triple source = AnyVoxel(path, seed);
        const DistanceField field = FieldFrom(path, source);
        for (const Triple& voxel : ground.voxels) {
            if (voxel == source || ground.StraightPiece(source, voxel).empty()) continue;
            ++seen;
            longer += DistanceOf(field, voxel) > std::llround(ground.Length(source, voxel));
        }
    }
    EXPECT_GT(seen, 5000);
    EXPECT_LE(longer, seen / 400);
}

// Around the end of a wall one voxel thick, against ways that bend at its corners.
TEST(DistanceField, CostsBendsAtCentresLessThanAWidth)
{
    const ReferenceModel floor(Extents(PlanAxes, {-40, -40, 0}, {40, 10, 0}, 0), 0, 0);
    const VoxelModel<bool> plan = MakeModel(floor.Where([](const Triple& v) { return v[0] == 0 && v[1] <= 0; }));
    const PathModel path(plan, 0, 1, 1, false);
    double most = 0;
    for (const Triple& source : {Triple{-1, -6, 0}, Triple{-1, -30, 0}, Triple{-9, -4, 0}, Triple{-40, -1, 0}}) {
        const DistanceField field = FieldFrom(path, source);
        ForEachTriple({1, -40, 0}, {40, 0, 0}, [&](const Triple& v) {
            const auto toEnd = [](const Triple& u) {
                return std::hypot(std::abs(static_cast<double>(u[0])) - 0.5, 0.5 - static_cast<double>(u[1]));
            };
            most = std::max(most, static_cast<double>(DistanceOf(field, v)) / Width - (toEnd(source) + 1 + toEnd(v)));
        });
    }
    EXPECT_LE(most, 0.83);
    EXPECT_GE(most, 0.8);
}

// More seeds than a test has time for, to measure what the header states.
bool IsMeasuring() { return std::getenv("BRIX_TRAVEL_SEEDS") != nullptr; }
std::uint64_t SeedsOf(std::uint64_t test) { return IsMeasuring() ? std::stoul(std::getenv("BRIX_TRAVEL_SEEDS")) : test; }

TEST(DistanceField, IsNeverBelowTheShortestWayOfStraightPiecesAndSeldomAbove)
{
    const struct
    {
        Terrain terrain;
        const char* name;
        double worst, mean; // of voxels at most twice as high as wide; others may jump over what costs them a long climb
    } cases[]{{Terrain::Flat, "flat", 0.02, 0.0002},
              {Terrain::Flights, "flights", 0.09, 0.0005},
              {Terrain::Slopes, "slopes", 0.15, 0.0005},
              {Terrain::Hills, "hills", 0.25, 0.003},
              {Terrain::Kerbs, "kerbs", 0.25, 0.001}};
    const std::uint64_t seeds = SeedsOf(60);
    for (const auto& [terrain, name, worst, mean] : cases) {
        Excess excess;
        Excess ofTallVoxels;
        for (std::uint64_t seed = 1; seed <= seeds; ++seed) {
            const RandomGround ground = MakeRandomGround(terrain, seed);
            const PathModel path(ground.environment, ground.environment.FinestLOD(), 1, ground.agentHeight,
                                 terrain != Terrain::Flat);
            const Triple size = ground.environment.AxesRef().VoxelSize(path.VoxelLOD());
            Excess& shape = size[2] > 2 * size[0] ? ofTallVoxels : excess;
            shape.Add(path, AnyVoxel(path, seed), std::string(name) + ", seed " + std::to_string(seed));
        }
        EXPECT_LE(excess.worst, worst) << name;
        EXPECT_LE(excess.Mean(), mean) << name;
        EXPECT_GT(excess.count, 1000) << name;
        if (!IsMeasuring()) continue;
        for (const Excess& shape : {excess, ofTallVoxels})
            std::printf("%-8s worst %7.3f %%, mean %.4f %% of %lld\n", name, 100 * shape.worst, 100 * shape.Mean(), shape.count);
    }
}

// What is told of every voxel: the distance, and the way there.
using Told = std::map<Triple, std::pair<std::int64_t, std::vector<Triple>>>;

Told TellAll(const DistanceField& field)
{
    Told told;
    field.ForEachReachable([&](const Triple& voxel, std::int64_t distance) {
        told[voxel] = {distance, Path(field, field.AxesRef().VoxelCenter(voxel, field.VoxelLOD())).Points()};
    });
    return told;
}

void ExpectLawsOfDistance(const PathModel& path, const Triple& source, const std::string& what)
{
    const Ground ground(path);
    const DistanceField field = FieldFrom(path, source);
    const std::set<Triple> reached = ground.Reached(source, [](const Triple&) { return true; });
    Told told = TellAll(field);
    std::int64_t farthest = 0;
    for (const Triple& voxel : ground.voxels) {
        const std::int64_t distance = DistanceOf(field, voxel);
        ASSERT_EQ(distance >= 0, reached.count(voxel) != 0) << what;
        if (distance < 0) continue;
        farthest = std::max(farthest, distance);
        EXPECT_GE(static_cast<double>(distance) + 0.51, ground.Length(voxel, source)) << what;
        ground.ForEachStep(voxel, [&](const Triple& to) { // by way of a neighbour it is never shorter
            EXPECT_LE(static_cast<double>(DistanceOf(field, to) - distance), ground.Length(voxel, to) + 1) << what;
        });
    }
    EXPECT_EQ(field.FarthestDistance(), farthest) << what;
    EXPECT_EQ(DistanceOf(field, field.FarthestVoxel()), farthest) << what;
    EXPECT_EQ(Differences(field.ReachableVoxels(), ground.model.Where([&](const Triple& v) { return told.count(v) != 0; })), "")
        << what;
    EXPECT_EQ(TellAll(FieldFrom(path, source, farthest)), told) << what;

    Random random(static_cast<std::uint64_t>(farthest));
    const auto any = std::next(told.begin(), random.Between(0, static_cast<std::int64_t>(told.size()) - 1));
    const std::int64_t limit = any->second.first - random.Between(0, any->second.first > 0);
    for (auto i = told.begin(); i != told.end();) i = i->second.first > limit ? told.erase(i) : std::next(i);
    EXPECT_EQ(TellAll(FieldFrom(path, source, limit)), told) << what << ", limit " << limit; // cut, and else the same
    EXPECT_EQ(Differences(field.ReachableVoxels(limit), ground.model.Where([&](const Triple& v) { return told.count(v) != 0; })),
              "")
        << what;
}

TEST(DistanceField, ReachesWhatStepsReachAndKeepsTheLawsOfDistance)
{
    std::size_t voxels = 0;
    for (std::uint64_t seed = 1; seed <= 150; ++seed) {
        Random random(seed);
        const RandomGround ground = MakeRandomGround(AllTerrains[seed % AllTerrains.size()], seed);
        const VoxelModel<bool> environment = seed % 3 == 0 ? MakeRandomModel(seed).voxels : ground.environment;
        const bool isPlan = environment.ExtentsRef(0).LowerIndices()[2] == environment.ExtentsRef(0).UpperIndices()[2];
        const PathModel path(environment, environment.FinestLOD(), random.Between(1, 2), random.Between(isPlan ? 1 : 2, 4),
                             random.OneIn(2));
        const std::vector<Triple> places = Ground(path).voxels;
        voxels += places.size();
        if (!places.empty()) ExpectLawsOfDistance(path, AnyVoxel(path, seed), "seed " + std::to_string(seed));
    }
    EXPECT_GT(voxels, 10000U);
}

// By a quarter, which swaps all roles of the axes.
Triple Turned(const Triple& v) { return {v[1], -1 - v[0], v[2]}; }

VoxelModel<bool> Turned(const VoxelModel<bool>& model)
{
    const std::int64_t lod = model.FinestLOD();
    const ReferenceModel voxels(model, lod);
    const Triple low = voxels.ExtentsRef().LowerIndices();
    const Triple high = voxels.ExtentsRef().UpperIndices();
    const Extents extents(model.AxesRef(), {low[1], -1 - high[0], low[2]}, {high[1], -1 - low[0], high[2]}, lod);
    ReferenceModel turned(extents, lod, lod);
    voxels.ForEachVoxel([&](const Triple& v) { turned.Set(Turned(v), voxels.Value(v)); });
    return MakeModel(turned);
}

// By how much distances differ, as shares: in turned scenes, and for swapped ends. Of voxels at most twice as high as wide.
struct TurnsAndReturns
{
    std::vector<double> turned, back;

    void Add(const RandomGround& ground)
    {
        const bool followsGround = ground.terrain != Terrain::Flat;
        const VoxelModel<bool> environment = Turned(ground.environment);
        const std::int64_t lod = environment.FinestLOD();
        const PathModel path(ground.environment, lod, 1, ground.agentHeight, followsGround);
        const PathModel turnedPath(environment, lod, 1, ground.agentHeight, followsGround);
        const Triple size = ground.environment.AxesRef().VoxelSize(lod);
        if (Ground(path).voxels.empty() || (followsGround && size[2] > 2 * size[0])) return;
        const Triple source = AnyVoxel(path, ground.seed);
        const DistanceField turnedField = FieldFrom(turnedPath, Turned(source));
        FieldFrom(path, source).ForEachReachable([&](const Triple& voxel, std::int64_t distance) {
            const auto share = [&](std::int64_t other) {
                return std::abs(static_cast<double>(other - distance)) / static_cast<double>(std::max<std::int64_t>(1, distance));
            };
            turned.push_back(share(DistanceOf(turnedField, Turned(voxel))));
            back.push_back(share(DistanceOf(FieldFrom(path, voxel), source)));
        });
    }

    static double Quantile(std::vector<double> shares, double part)
    {
        std::sort(shares.begin(), shares.end());
        return shares[static_cast<std::size_t>(part * static_cast<double>(shares.size() - 1))];
    }
};

TEST(DistanceField, IsMostlyTheSameInTurnedScenesAndForSwappedEnds)
{
    const struct
    {
        Terrain terrain;
        const char* name;
        double turned, back, oneInHundred; // the first two at worst
    } cases[]{{Terrain::Flat, "flat", 0, 0.02, 0.01},
              {Terrain::Flights, "flights", 0.01, 0.07, 0.02},
              {Terrain::Slopes, "slopes", 0.04, 0.16, 0.01},
              {Terrain::Hills, "hills", 0.01, 0.2, 0.04},
              {Terrain::Kerbs, "kerbs", 0.1, 0.2, 0.03}};
    const std::uint64_t seeds = SeedsOf(20);
    for (const auto& [terrain, name, worstTurned, worstBack, oneInHundred] : cases) {
        TurnsAndReturns differences;
        for (std::uint64_t seed = 200; seed < 200 + seeds; ++seed) differences.Add(MakeRandomGround(terrain, seed));
        EXPECT_LE(TurnsAndReturns::Quantile(differences.turned, 1), worstTurned) << name;
        EXPECT_LE(TurnsAndReturns::Quantile(differences.back, 1), worstBack) << name;
        for (const std::vector<double>& shares : {differences.turned, differences.back}) {
            EXPECT_LE(TurnsAndReturns::Quantile(shares, 0.99), oneInHundred) << name;
            if (!IsMeasuring()) continue;
            std::printf("%-8s differ at worst %7.3f %%, one in a hundred %.3f %%, of %zu\n", name,
                        100 * TurnsAndReturns::Quantile(shares, 1), 100 * TurnsAndReturns::Quantile(shares, 0.99), shares.size());
        }
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
