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

::testing::AssertionResult FillsAreRight(const ReferenceModel& reference)
{
    Random random(1);
    return FillsAreRight(reference, MakeModel(reference), random);
}

TEST(Fills, EqualTheVoxelByVoxelFlood)
{
    for (const RandomModel& model : RandomModels(5000, 250)) {
        Random random(model.seed);
        ASSERT_TRUE(FillsAreRight(model.reference, model.voxels, random)) << model;
    }
}

// Where two thirds of all voxels are filled, the empty ones form winding caves of all sizes; runs of equal layers widen them.
TEST(Fills, FollowWindingCaves)
{
    for (std::uint64_t seed = 1; seed <= 150; ++seed) {
        Random random(seed);
        const Axes axes = RandomAxes(random);
        const std::int64_t lod = random.Between(0, 3);
        const Extents extents = RandomExtents(random, axes, lod);
        const std::int64_t share = random.Between(55, 75);
        const std::int64_t repeat = random.Between(1, 4);
        ReferenceModel caves(extents, lod, lod);
        caves = caves.Where([&](const Triple& voxel) {
            const Triple below{voxel[0], voxel[1], voxel[2] - 1};
            const bool isRepeated = FloorDivide(voxel[2], repeat) == FloorDivide(below[2], repeat) && extents.ContainsVoxel(below);
            return !isRepeated && random.Between(1, 100) <= share;
        });
        for (std::int64_t z = extents.LowerIndices()[2] + 1; z <= extents.UpperIndices()[2]; ++z) {
            if (FloorDivide(z, repeat) != FloorDivide(z - 1, repeat)) continue;
            caves.ForEachVoxel([&](const Triple& v) {
                if (v[2] == z) caves.Set(v, caves.Value({v[0], v[1], z - 1}));
            });
        }
        ASSERT_TRUE(FillsAreRight(caves, MakeModel(caves), random)) << "seed " << seed;
    }
}

} // namespace
} // namespace brix
