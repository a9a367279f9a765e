// Splitting against its voxel-by-voxel definition.
#include "operations/AutoSplit.h"

#include "model/VoxelArrays.h"
#include "operations/BasicOperations.h"
#include "operations/LabelRegions.h"
#include "support/Messages.h"
#include "support/RandomCompanions.h"
#include "support/ReferenceOperations.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace brix {
namespace {

using namespace tests;

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

// The numbers of regions in a box that cuts the model and reaches beyond it.
void ExpectLabels(const VoxelModel<bool>& model, const std::vector<ReferenceModel>& regions, const std::string& description)
{
    const Extents& extents = model.ExtentsRef(model.FinestLOD());
    Triple lower = extents.LowerIndices();
    for (std::size_t i = 0; i < 3; ++i) lower[i] += (extents.UpperIndices()[i] - lower[i]) / 5;
    const Extents box = extents.WithIndices(Minus(lower, {0, 0, 1}), Plus(extents.UpperIndices(), {2, 0, 1}));
    std::vector<std::uint32_t> expected(DenseSize(box)), labels(DenseSize(box), 99);
    const ByteStrides strides = DenseStrides(box);
    for (std::size_t i = 0; i < regions.size(); ++i) {
        regions[i].ForEachVoxel([&](const Triple& voxel) {
            if (!regions[i].Value(voxel) || !box.ContainsVoxel(voxel)) return;
            const auto [x, y, z] = Minus(voxel, box.LowerIndices());
            expected[static_cast<std::size_t>(x + y * strides.y + z * strides.z)] = static_cast<std::uint32_t>(i + 1);
        });
    }
    ASSERT_EQ(LabelRegions(model, box, labels), regions.size()) << description;
    ASSERT_EQ(labels, expected) << description;
}

void ExpectSplit(const ReferenceModel& reference, const VoxelModel<bool>& model, const std::string& description)
{
    const std::vector<ReferenceModel> expected = Split(reference);
    const std::vector<VoxelModel<bool>> regions = AutoSplit(model);
    ASSERT_EQ(regions.size(), expected.size()) << description;
    for (std::size_t i = 0; i < regions.size(); ++i) {
        ASSERT_EQ(Differences(regions[i], expected[i]), "") << "region " << i << " of " << description;
    }
    ExpectLabels(model, expected, description);
}

TEST(AutoSplit, GivesTheConnectedRegionsInStackOrder)
{
    for (const RandomModel& model : RandomModels(300, 120)) {
        ExpectSplit(model.reference, model.voxels, "random model " + std::to_string(model.seed));
    }
}

TEST(LabelRegions, RefusesOtherBoxes)
{
    const Extents extents(Frame, {0, 0, 0}, {3, 3, 3}, 1);
    const VoxelModel<bool> model(extents, 1);
    const auto refusal = [&](const Extents& box, std::size_t count) {
        std::vector<std::uint32_t> labels(count);
        return MessageOf([&] { LabelRegions(model, box, labels); });
    };
    const Extents elsewhere(Axes(2, {0, 0, 0}, 0, 0), {0, 0, 0}, {3, 3, 3}, 1);
    EXPECT_EQ(refusal(elsewhere, 1), "The axes of a box of voxels must be those of the voxel model.");
    EXPECT_EQ(refusal(model.ExtentsRef(0), 1), "The level of a box of labels must be the finest one of the voxel model.");
    EXPECT_EQ(refusal(extents, 63), "There must be as many labels as the box has voxels.");
}

// Where three of ten voxels are filled, regions wind and meet again, within plates and across all borders. Some repeat over
// several heights.
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

} // namespace
} // namespace brix
