// Splitting and density maps against their voxel-by-voxel definitions.
#include "operations/SpecialOperations.h"

#include "operations/BasicOperations.h"
#include "operations/SolidOperations.h"
#include "support/Messages.h"
#include "support/RandomCompanions.h"
#include "support/ReferenceOperations.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace brix {
namespace {

using namespace tests;
using Models = std::vector<const VoxelModel<bool>*>;

constexpr double Infinity = std::numeric_limits<double>::infinity();
constexpr double NaN = std::numeric_limits<double>::quiet_NaN();
const Axes Frame(1, {0, 0, 0}, 0, 0);

// Takes the region of a filled voxel out of a model.
ReferenceModel TakeRegion(ReferenceModel& model, const Triple& first)
{
    ReferenceModel region = model.Where([](const Triple&) { return false; });
    std::vector<Triple> waiting{first};
    while (!waiting.empty()) {
        const Triple voxel = waiting.back();
        waiting.pop_back();
        if (!model.Value(voxel)) continue;
        model.Set(voxel, false);
        region.Set(voxel);
        for (const Triple& step : {Triple{1, 0, 0}, Triple{0, 1, 0}, Triple{0, 0, 1}}) {
            waiting.push_back(Plus(voxel, step));
            waiting.push_back(Minus(voxel, step));
        }
    }
    return region;
}

// What voxels are sorted by: chunk, stack, then height, row and column.
std::array<std::int64_t, 8> OrderOf(const Triple& voxel, std::int64_t lod)
{
    const Triple chunk = ChunkOfVoxel(voxel, lod);
    return {chunk[2], chunk[1], chunk[0], FloorDivide(voxel[1], 16), FloorDivide(voxel[0], 16), voxel[2], voxel[1], voxel[0]};
}

std::vector<ReferenceModel> Split(ReferenceModel model)
{
    std::vector<Triple> voxels;
    model.ForEachVoxel([&](const Triple& voxel) { voxels.push_back(voxel); });
    std::sort(voxels.begin(), voxels.end(),
              [&](const Triple& a, const Triple& b) { return OrderOf(a, model.VoxelLOD()) < OrderOf(b, model.VoxelLOD()); });
    std::vector<ReferenceModel> regions;
    for (const Triple& voxel : voxels) {
        if (model.Value(voxel)) regions.push_back(AutoCrop(TakeRegion(model, voxel)));
    }
    return regions;
}

void ExpectSplit(const ReferenceModel& reference, const VoxelModel<bool>& model, const std::string& description)
{
    const std::vector<ReferenceModel> expected = Split(reference);
    const std::vector<VoxelModel<bool>> regions = AutoSplit(model);
    ASSERT_EQ(regions.size(), expected.size()) << description;
    for (std::size_t i = 0; i < regions.size(); ++i) {
        ASSERT_EQ(Differences(regions[i], expected[i]), "") << "region " << i << " of " << description;
    }
}

TEST(AutoSplit, GivesTheConnectedRegionsInStackOrder)
{
    for (const RandomModel& model : RandomModels(300, 120)) {
        ExpectSplit(model.reference, model.voxels, "random model " + std::to_string(model.seed));
    }
}

// Where three of ten voxels are filled, regions wind and meet again, within plates and across all borders. Some repeat over several
// heights.
TEST(AutoSplit, FollowsWindingRegions)
{
    for (std::uint64_t seed = 1; seed <= 60; ++seed) {
        Random random(seed);
        const std::int64_t lod = random.Between(0, 3);
        const std::int64_t repeat = random.Between(1, 4);
        const auto share = static_cast<std::uint64_t>(random.Between(25, 60));
        const Extents extents = RandomExtents(random, RandomAxes(random), lod);
        const ReferenceModel caves = ReferenceModel(extents, lod, lod).Where([&](const Triple& voxel) {
            const std::int64_t place = (voxel[0] * 1009 + voxel[1]) * 1009 + FloorDivide(voxel[2], repeat);
            return Random(seed ^ static_cast<std::uint64_t>(place)).Bits() % 100 < share;
        });
        ExpectSplit(caves, MakeModel(caves), "caves " + std::to_string(seed));
    }
}

TEST(AutoSplit, SplitsAHundredThousandRegionsAndJoinsThemByOneWall)
{
    const std::int64_t side = 58;
    const Extents extents(Frame, {-20, -20, -20}, {side - 21, side - 21, side - 21}, 1);
    const ReferenceModel empty(extents, 1, 1);
    const auto isOdd = [](const Triple& voxel) { return ((voxel[0] ^ voxel[1] ^ voxel[2]) & 1) != 0; };
    const std::vector<VoxelModel<bool>> voxels = AutoSplit(MakeModel(empty.Where(isOdd)));
    ASSERT_EQ(std::ssize(voxels), side * side * side / 2);
    for (std::size_t i = 0; i < voxels.size(); ++i) {
        const Extents& box = voxels[i].ExtentsRef(1);
        ASSERT_TRUE(box.LowerIndices() == box.UpperIndices() && isOdd(box.LowerIndices())) << i;
        ASSERT_EQ(CountFilled(voxels[i], 0) * CountFilled(voxels[i], 1), 1) << i;
        ASSERT_TRUE(i == 0 || OrderOf(voxels[i - 1].ExtentsRef(1).LowerIndices(), 1) < OrderOf(box.LowerIndices(), 1)) << i;
    }

    // Columns apart, joined at the top alone.
    const ReferenceModel comb = empty.Where([&](const Triple& voxel) {
        return voxel[2] == side - 21 || isOdd({voxel[0], voxel[1], 0});
    });
    const std::vector<VoxelModel<bool>> one = AutoSplit(MakeModel(comb));
    ASSERT_EQ(one.size(), 1U);
    EXPECT_EQ(Differences(one.front(), comb), "");
}

// Two voxels as far apart as the grid allows to be built quickly: each result has a chunk of its own.
TEST(AutoSplit, MakesResultsAsSmallAsTheirRegions)
{
    ReferenceModel reference(Extents(Frame, {-3000, 0, 0}, {3000, 3, 0}, 2), 2, 2);
    reference.Set({-3000, 0, 0});
    reference.Set({3000, 3, 0});
    for (const VoxelModel<bool>& region : AutoSplit(MakeModel(reference))) {
        EXPECT_EQ(region.LowerChunkIndices(), region.UpperChunkIndices());
        EXPECT_EQ(CountFilled(region, 2), 1);
    }
    EXPECT_TRUE(AutoSplit(VoxelModel<bool>(Extents(Frame, {0, 0, 0}, {99, 99, 99}, 3), 3)).empty());
}

// Random weights of which many are equal, so that sums are met again and again.
std::vector<double> RandomNumbers(Random& random, std::size_t count)
{
    const double huge = random.OneIn(4) ? -Infinity : 1e18;
    const std::array<double, 8> values{0.1, 0.2, 0.3, 1, -0.5, 0, huge, random.OneIn(4) ? Infinity : -2};
    std::vector<double> numbers;
    for (std::size_t i = 0; i < count; ++i) numbers.push_back(values[static_cast<std::size_t>(random.Between(0, 7))]);
    return numbers;
}

TEST(DensityMap, EqualsTheSumsVoxelByVoxel)
{
    for (std::uint64_t seed = 1; seed <= 200; ++seed) {
        Random random(seed);
        std::vector<ReferenceModel> references{MakeFirst(random)};
        for (std::uint64_t i = 0; i < seed % 5; ++i) {
            references.push_back(MakeCompanion(random, references.front(), AllPlacements[(seed + i) % AllPlacements.size()]));
        }
        std::vector<VoxelModel<bool>> models;
        for (const ReferenceModel& reference : references) models.push_back(MakeModel(reference));
        Models pointers;
        std::vector<const ReferenceModel*> all;
        for (std::size_t i = 0; i < models.size(); ++i) {
            pointers.push_back(&models[i]);
            all.push_back(&references[i]);
        }
        const std::int64_t lod = LevelNear(random, references.front().FinestLOD(), 1);
        const std::vector<double> weights = RandomNumbers(random, models.size());
        std::vector<double> levels = RandomNumbers(random, 3);
        levels.push_back(std::fmax(weights.front() + weights.back(), 0.0)); // 0 where infinite weights cancel

        const std::vector<VoxelModel<bool>> results = DensityMap(pointers, weights, levels, lod);
        ASSERT_EQ(results.size(), levels.size());
        std::vector<ReferenceModel> parts;
        for (const ReferenceModel* reference : all) parts.push_back(Union(std::vector{reference}, lod, false));
        const auto sum = [&](const Triple& voxel) {
            double total = 0;
            for (std::size_t i = 0; i < parts.size(); ++i) {
                if (parts[i].Value(voxel)) total += weights[i];
            }
            return total;
        };
        const ReferenceModel bounding = Union(all, lod, false);
        for (std::size_t i = 0; i < levels.size(); ++i) {
            ASSERT_EQ(Differences(results[i],
                                  bounding.Where([&](const Triple& voxel) { return levels[i] <= 0 || sum(voxel) >= levels[i]; })),
                      "")
                << "seed " << seed << ", level " << levels[i];
        }
    }
}

TEST(DensityMap, OfEqualWeightsIsUnionAtOneAndIntersectionAtAll)
{
    for (std::uint64_t seed = 1; seed <= 40; ++seed) {
        Random random(seed);
        std::vector<VoxelModel<bool>> models;
        const ReferenceModel first = MakeFirst(random);
        for (int i = 0; i < 9; ++i) models.push_back(MakeModel(MakeCompanion(random, first, Placement::SameExtents)));
        Models pointers;
        for (const VoxelModel<bool>& model : models) pointers.push_back(&model);
        const std::int64_t lod = first.FinestLOD();
        const auto results = DensityMap(pointers, std::vector<double>(9, 1.0), {0, 1, 9, 9.5}, lod);
        EXPECT_TRUE(IsFull(results[0], lod)) << "seed " << seed;
        EXPECT_EQ(Differences(results[1], Union(pointers, lod, false)), "") << "seed " << seed;
        EXPECT_EQ(Differences(results[2], Intersect(pointers, lod, false)), "") << "seed " << seed;
        EXPECT_TRUE(IsEmpty(results[3], lod)) << "seed " << seed;
    }
}

TEST(DensityMap, NamesTheArgumentThatItRejects)
{
    const VoxelModel<bool> model(Extents(Frame, {0, 0, 0}, {3, 3, 3}, 2), 2);
    const VoxelModel<bool> other(Extents(Axes(1, {0, 0, 0}, 0, 1), {0, 0, 0}, {3, 3, 3}, 2), 2);
    const auto message = [](const Models& models, const std::vector<double>& weights, const std::vector<double>& levels,
                            std::int64_t lod) { return MessageOf([&] { DensityMap(models, weights, levels, lod); }); };
    EXPECT_EQ(message({}, {1}, {}, -1), "At least one voxel model is required for a density map.");
    EXPECT_EQ(message({&model, &other}, {NaN}, {}, -1),
              "The number of weights for a density map must be equal to the number of voxel models. The number of weights "
              "encountered was 1. The number of voxel models encountered was 2.");
    EXPECT_EQ(message({&model, &other}, {1, NaN}, {}, -1), "At least one level is required for a density map.");
    EXPECT_EQ(message({&model, &other}, {1, NaN}, {NaN}, -1),
              "A weight for a density map must be a number. The value encountered was NaN.");
    EXPECT_EQ(message({&model, &other}, {1, 1}, {1, -NaN}, -1),
              "A level for a density map must be a number. The value encountered was NaN.");
    EXPECT_EQ(message({&model, &other}, {1, 1}, {1}, -1),
              "The level of detail for a density map cannot be negative. The value encountered was -1.");
    EXPECT_EQ(message({&model, nullptr}, {1, 1}, {1}, 6),
              "The level of detail for a density map must be less than 6. The value encountered was 6.");
    EXPECT_EQ(message({&model, &other, nullptr}, {1, 1, 1}, {1}, 5), "No voxel model to be merged can be null.");
    EXPECT_EQ(message({&model, &other}, {1, 1}, {1}, 5), "The axes must be the same for all voxel models to be merged.");
    EXPECT_EQ(message({&model, &model}, {Infinity, -Infinity}, {-Infinity}, 0), "(nothing was thrown)");
}

} // namespace
} // namespace brix
