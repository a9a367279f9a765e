// Walkable space against what it means, voxel by voxel, and in scenes that a reader can picture.
#include "travel/PathModel.h"

#include "model/VoxelIterator.h"
#include "operations/BasicOperations.h"
#include "support/Messages.h"
#include "support/RandomModels.h"
#include "support/ReferenceOperations.h"

#include <gtest/gtest.h>

#include <limits>

namespace brix {
namespace {

using namespace tests;

struct Agent
{
    int diameter;
    int height;
};

bool AnySolid(const ReferenceModel& solid, const Triple& voxel, std::int64_t lower, std::int64_t upper)
{
    for (std::int64_t z = lower; z <= upper; ++z) {
        if (solid.Value(Plus(voxel, {0, 0, z}))) return true;
    }
    return false;
}

// Stands where the body fits and the ground carries; the footprint keeps clear of columns in which the body does not fit one
// voxel higher either, and of columns without ground in the two voxels below.
ReferenceModel StandingPlaces(const ReferenceModel& solid, const Agent& agent)
{
    const int h = agent.height;
    const auto isWall = [&](const Triple& v) { return AnySolid(solid, v, 0, h - 1) && AnySolid(solid, v, 1, h); };
    const ReferenceModel obstacles = ExpandHorizontally(solid.Where([&](const Triple& v) {
        const bool isTopLayer = v[2] == solid.ExtentsRef().UpperIndices()[2]; // nothing is blocked above the extents
        return (isWall(v) && !isTopLayer) || !AnySolid(solid, v, -2, 0);
    }),
                                                        agent.diameter, std::nullopt, false);
    return solid.Where([&](const Triple& v) {
        const Triple below = Plus(v, {0, 0, -1});
        return !AnySolid(solid, v, 0, h - 1) && solid.ExtentsRef().ContainsVoxel(below) && solid.Value(below) &&
               !obstacles.Value(v);
    });
}

ReferenceModel Traversable(const ReferenceModel& environment, std::int64_t lod, const Agent& agent, bool autoAdjust)
{
    ReferenceModel solid = Refine(environment, lod).AtLevel(lod);
    if (autoAdjust) solid = Enlarge(solid, 0, 0, 0, 0, 0, 1);
    const ReferenceModel places =
        agent.height == 1 ? Invert(ExpandHorizontally(solid, agent.diameter, std::nullopt, false)) : StandingPlaces(solid, agent);
    return autoAdjust ? AutoCrop(places) : places;
}

TEST(PathModel, EqualsTheVoxelByVoxelDefinition)
{
    std::int64_t places = 0;
    for (const RandomModel& environment : RandomModels(7000, 120)) {
        Random random(environment.seed);
        const Extents& extents = environment.reference.ExtentsRef();
        const bool isPlan = extents.LowerIndices()[2] == extents.UpperIndices()[2];
        const Agent agent{static_cast<int>(random.Between(1, 6)), static_cast<int>(random.Between(isPlan ? 1 : 2, 12))};
        const std::int64_t lod = random.Between(0, environment.voxels.FinestLOD());
        const bool autoAdjust = random.OneIn(2);
        const PathModel path(environment.voxels, lod, agent.diameter, agent.height, autoAdjust);
        const ReferenceModel expected = Traversable(environment.reference, lod, agent, autoAdjust);
        EXPECT_EQ(Differences(path.TraversableVoxels(), expected), "")
            << environment << ", diameter " << agent.diameter << ", height " << agent.height << ", lod " << lod << ", autoAdjust "
            << autoAdjust;
        places += expected.CountFilled();
    }
    EXPECT_GT(places, 1000); // the random environments leave room to stand
}

// A path model refers to its environment, so that none may be a temporary.
static_assert(std::is_constructible_v<PathModel, VoxelModel<bool>&, int, int, int, bool> &&
              std::is_constructible_v<PathModel, const VoxelModel<bool>&, int, int, int, bool> &&
              !std::is_constructible_v<PathModel, VoxelModel<bool>, int, int, int, bool> &&
              !std::is_constructible_v<PathModel, const VoxelModel<bool>, int, int, int, bool>);

TEST(PathModel, ReportsTheFirstArgumentThatBreaksItsRule)
{
    const Axes axes(1, {0, 0, 0}, 0, 0);
    const VoxelModel<bool> environment(Extents(axes, {0, 0, 0}, {3, 3, 1}, 0), 2);
    constexpr std::int64_t lowest = std::numeric_limits<std::int64_t>::min();
    const struct
    {
        std::int64_t lod, diameter, height;
        const char* sentence;
    } cases[]{
        {-1, 0, 0, "The level of detail of the path model cannot be negative. The value encountered was -1."},
        {3, 0, 0,
         "The level of detail of the path model must not exceed the finest level of detail in the voxel model. The value "
         "encountered was 3. The finest level of detail in the voxel model is 2."},
        {2, 0, 0, "The agent diameter used to construct a path model cannot be less than 1. The value encountered was 0."},
        {0, lowest, 1,
         "The agent diameter used to construct a path model cannot be less than 1. The value encountered was "
         "-9223372036854775808."},
        {2, 1, 0, "The agent height used to construct a path model cannot be less than 1. The value encountered was 0."},
        {2, 1, 1,
         "If the agent height used to construct a path model is 1, then the environment must be 2D (1 voxel in height)."},
    };
    for (const auto& [lod, diameter, height, sentence] : cases) {
        EXPECT_EQ(MessageOf([&, lod = lod, diameter = diameter, height = height] {
                      PathModel(environment, lod, diameter, height, false);
                  }),
                  sentence);
    }
}

TEST(PathModel, GiantsFindNoPlace)
{
    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    const Axes axes(1, {0, 0, 0}, 0, 0);
    ReferenceModel ground(Extents(axes, {0, 0, 0}, {9, 9, 9}, 0), 0, 0);
    ground.ForEachVoxel([&](const Triple& voxel) { ground.Set(voxel, voxel[2] == 1); });
    const VoxelModel<bool> environment = MakeModel(ground);
    EXPECT_EQ(CountFilled(PathModel(environment, 0, 3, 5, false).TraversableVoxels(), 0), 100);
    EXPECT_EQ(CountFilled(PathModel(environment, 0, 3, most, false).TraversableVoxels(), 0), 100); // nothing stands in its way
    ground.Set({5, 5, 3});
    const VoxelModel<bool> obstructed = MakeModel(ground);
    EXPECT_TRUE(IsEmpty(PathModel(obstructed, 0, most, 5, false).TraversableVoxels(), 0));
}

} // namespace
} // namespace brix
