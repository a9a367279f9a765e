// Fills against a flood from voxel to voxel.
#include "operations/FillOperations.h"
#include "operations/PlateFlood.h"
#include "support/Picture.h"
#include "support/RandomModels.h"

#include <gtest/gtest.h>

#include <limits>

namespace brix {
namespace {

using namespace tests;

constexpr std::array<Triple, 6> Faces{{{-1, 0, 0}, {1, 0, 0}, {0, -1, 0}, {0, 1, 0}, {0, 0, -1}, {0, 0, 1}}};

// The model with all empty voxels filled that a flood reaches from the empty ones of `seeds`.
ReferenceModel Flooded(ReferenceModel model, std::vector<Triple> seeds)
{
    while (!seeds.empty()) {
        const Triple voxel = seeds.back();
        seeds.pop_back();
        if (!model.ExtentsRef().ContainsVoxel(voxel) || model.Value(voxel)) continue;
        model.Set(voxel);
        for (const Triple& step : Faces) seeds.push_back(Plus(voxel, step));
    }
    return model;
}

ReferenceModel PlainExposed(const ReferenceModel& model)
{
    std::vector<Triple> seeds;
    model.ForEachVoxel([&](const Triple& voxel) {
        for (const Triple& step : Faces) {
            if (!model.ExtentsRef().ContainsVoxel(Plus(voxel, step))) seeds.push_back(voxel);
        }
    });
    return Flooded(model, std::move(seeds));
}

Triple RandomVoxel(Random& random, const Extents& extents)
{
    Triple voxel{};
    for (std::size_t i = 0; i < 3; ++i) voxel[i] = random.Between(extents.LowerIndices()[i] - 1, extents.UpperIndices()[i] + 1);
    return voxel;
}

// Compares all three fills of a model with the voxel-by-voxel flood, at all levels.
::testing::AssertionResult FillsAreRight(const ReferenceModel& reference, const VoxelModel<bool>& voxels, Random& random)
{
    const ReferenceModel exposed = PlainExposed(reference);
    const ReferenceModel enclosed = reference.Where([&](const Triple& v) { return reference.Value(v) || !exposed.Value(v); });
    std::string fault = Differences(FillExposedRegions(voxels), exposed);
    if (!fault.empty()) return ::testing::AssertionFailure() << "exposed: " << fault;
    fault = Differences(FillEnclosedRegions(voxels), enclosed);
    if (!fault.empty()) return ::testing::AssertionFailure() << "enclosed: " << fault;
    for (int i = 0; i < 2; ++i) {
        const Triple voxel = RandomVoxel(random, reference.ExtentsRef());
        Triple point = reference.AxesRef().VoxelCorner(voxel, reference.VoxelLOD());
        if (i == 1) point = Plus(point, Minus(reference.AxesRef().VoxelSize(reference.VoxelLOD()), {1, 1, 1}));
        fault = Differences(FillFromPoint(voxels, point), Flooded(reference, {voxel}));
        if (!fault.empty())
            return ::testing::AssertionFailure() << "from " << voxel[0] << " " << voxel[1] << " " << voxel[2] << ": " << fault;
    }
    return ::testing::AssertionSuccess();
}

TEST(Fills, EqualTheVoxelByVoxelFlood)
{
    for (const RandomModel& model : RandomModels(5000, 200)) {
        Random random(model.seed);
        ASSERT_TRUE(FillsAreRight(model.reference, model.voxels, random)) << model;
    }
}

// Where six or seven of ten voxels are filled, the empty ones form winding caves of all sizes. Some repeat over several heights,
// so that runs of all lengths meet.
TEST(Fills, FollowWindingCaves)
{
    for (std::uint64_t seed = 1; seed <= 120; ++seed) {
        Random random(seed);
        const std::int64_t lod = random.Between(0, 3);
        const Extents extents = RandomExtents(random, RandomAxes(random), lod);
        const auto share = static_cast<std::uint64_t>(random.Between(55, 75));
        const std::int64_t repeat = random.Between(1, 4);
        const ReferenceModel caves = ReferenceModel(extents, lod, lod).Where([&](const Triple& voxel) {
            const std::int64_t height = FloorDivide(voxel[2], voxel[0] % 3 == 0 ? repeat : 1);
            const std::int64_t place = (voxel[0] * 1009 + voxel[1]) * 1009 + height;
            return Random(seed ^ static_cast<std::uint64_t>(place)).Bits() % 100 < share;
        });
        ASSERT_TRUE(FillsAreRight(caves, MakeModel(caves), random)) << "seed " << seed;
    }
}

TEST(Fills, ReturnACopyForPointsAtTheLimitsOfTheirType)
{
    const ReferenceModel empty(Extents(Axes(1, {0, 0, 0}, 0, 0), {-20, -3, 50}, {20, 40, 80}, 3), 3, 3);
    for (const std::int64_t extreme : {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
        EXPECT_EQ(Differences(FillFromPoint(MakeModel(empty), {extreme, 0, 60}), empty), "");
        EXPECT_EQ(Differences(FillFromPoint(MakeModel(empty), {extreme, extreme, extreme}), empty), "");
    }
}

// The open voxels joined to the reached ones, voxel by voxel.
VoxelPlate<bool> PlainSpread(VoxelPlate<bool> reached, const VoxelPlate<bool>& open)
{
    for (VoxelPlate<bool> before = ~reached; !(before == reached);) {
        before = reached;
        for (std::int64_t y = 0; y < 16; ++y) {
            for (std::int64_t x = 0; x < 16; ++x) {
                const bool isJoined = before.Value({x, y}) || (x > 0 && before.Value({x - 1, y})) ||
                                      (x < 15 && before.Value({x + 1, y})) || (y > 0 && before.Value({x, y - 1})) ||
                                      (y < 15 && before.Value({x, y + 1}));
                if (isJoined && open.Value({x, y})) reached = reached | Box({x, y}, {x, y});
            }
        }
    }
    return reached;
}

TEST(SpreadInPlate, ReachesAllThatIsJoinedAndNothingElse)
{
    Random random(77);
    for (int i = 0; i < 4000; ++i) {
        const std::int64_t share = random.Between(40, 95);
        VoxelPlate<bool> open = MakePlate([&](std::size_t) {
            unsigned row = 0;
            for (int x = 0; x < 16; ++x) row = row << 1 | (random.Between(1, 100) <= share ? 1U : 0U);
            return row;
        });
        if (random.OneIn(4)) open = MakePlate([&](std::size_t y) { return y % 2 == 1 ? open.rows[y] & 0x8001U : 0xFFFFU; });
        const std::int64_t seeds = random.Between(0, 4);
        VoxelPlate<bool> reached;
        for (std::int64_t seed = 0; seed < seeds; ++seed)
            reached.rows[static_cast<std::size_t>(random.Between(0, 15))] |=
                static_cast<std::uint16_t>(1U << random.Between(0, 15));
        reached = reached & open;
        ASSERT_EQ(SpreadInPlate(reached, open), PlainSpread(reached, open)) << Draw("open", open, "reached", reached);
    }
}

// There and back again: full rows, joined at alternating ends.
constexpr VoxelPlate<bool> Serpentine = MakePlate([](std::size_t y) {
    return y % 2 == 0 ? 0xFFFF : y % 4 == 1 ? 0x8000 : 0x0001;
});
static_assert(SpreadInPlate({{0x0001}}, Serpentine) == Serpentine);
static_assert(SpreadInPlate(MakePlate([](std::size_t y) { return y == 15 ? 1 : 0; }), Serpentine) == Serpentine);

} // namespace
} // namespace brix
