// Chunks that are empty or full throughout are kept without stacks, and operations take short ways through them: whatever is
// done, the result is that of a model which keeps all of its stacks.
#include "model/CombineStacks.h"
#include "model/ForEachStack.h"
#include "model/PropagateLevel.h"
#include "model/StackIterator.h"
#include "operations/AutoSplit.h"
#include "operations/BasicOperations.h"
#include "operations/DensityMap.h"
#include "operations/FillOperations.h"
#include "operations/SolidOperations.h"
#include "operations/SurfaceOperations.h"
#include "support/RandomModels.h"
#include "support/ReferenceOperations.h"

#include <gtest/gtest.h>

#include <functional>

namespace brix {
namespace {

using namespace tests;
using Model = VoxelModel<bool>;
using Pointers = std::vector<const Model*>;

// Half a chunk in voxels of a level: blocks of this size are empty or full.
constexpr Triple BlockSize(std::int64_t lod) { return {8 << lod, 8 << lod, 32}; }

// A voxel for every block: boxes put into each other, filled and emptied, so that chunks of all kinds meet.
ReferenceModel RandomBlocks(Random& random, const Axes& axes)
{
    const auto pick = [&](const Triple& lower, const Triple& upper) {
        return Triple{random.Between(lower[0], upper[0]), random.Between(lower[1], upper[1]), random.Between(lower[2], upper[2])};
    };
    const Triple lower = pick({-7, -7, -4}, {-3, -3, -2});
    const Triple upper = Plus(lower, pick({6, 6, 3}, {11, 11, 7}));
    ReferenceModel blocks(Extents(axes, lower, upper, 0), 0, 0);
    for (std::int64_t box = 0; box < 7; ++box) {
        const Triple a = pick(lower, upper);
        const Triple b = pick(lower, upper);
        blocks = blocks.Where(
            [&](const Triple& v) { return IsWithin(v, Lowest(a, b), Highest(a, b)) ? box % 2 == 0 : blocks.Value(v); });
    }
    return blocks;
}

// A model whose finest level has a block of voxels for every voxel.
Model Enlarged(const ReferenceModel& blocks, std::int64_t lod)
{
    const Triple size = BlockSize(lod);
    Triple lower{};
    Triple upper{};
    for (std::size_t i = 0; i < 3; ++i) {
        lower[i] = blocks.ExtentsRef().LowerIndices()[i] * size[i];
        upper[i] = (blocks.ExtentsRef().UpperIndices()[i] + 1) * size[i] - 1;
    }
    Model model(Extents(blocks.AxesRef(), lower, upper, lod), lod);
    ForEachStack(model, lod, [&](VoxelStore<bool>& store, const StackIndices& ij) {
        StackBuilder builder;
        for (const std::int64_t z : {0, 32}) {
            VoxelPlate<bool> plate;
            ForEachTriple({0, 0, z}, {1, 1, z}, [&](const Triple& quarter) {
                const Triple offset{8 * quarter[0], 8 * quarter[1], z};
                const Triple voxel = Plus(store.LowerIndices(ij), offset);
                const Triple block{FloorDivide(voxel[0], size[0]), FloorDivide(voxel[1], size[1]),
                                   FloorDivide(voxel[2], size[2])};
                if (blocks.Value(block)) plate = plate | Box({offset[0], offset[1]}, {offset[0] + 7, offset[1] + 7});
            });
            builder.Append(z, plate);
        }
        builder.WriteTo(store.VoxelStackRef(ij));
    });
    return Resize(std::move(model), model.ExtentsRef(lod));
}

// The same model with places for all stacks.
Model WithStacks(Model model)
{
    for (std::int64_t lod = 0; lod <= model.FinestLOD(); ++lod)
        ForEachStack(model, lod, [](VoxelStore<bool>& store, const StackIndices& ij) { store.VoxelStackRef(ij); });
    return model;
}

std::size_t UniformStores(const Model& model)
{
    std::size_t count = 0;
    model.ForEachChunk([&](const Triple&, const VoxelChunk<bool>& chunk) {
        if (chunk.VoxelStoreRef(model.FinestLOD()).IsUniformlyFull()) ++count;
    });
    return count;
}

TEST(UniformChunks, AreFilledByFloodsInOneStep)
{
    for (std::uint64_t seed = 1; seed <= 12; ++seed) {
        Random random(seed);
        const Axes axes(1, {}, 0, 0);
        const ReferenceModel blocks = RandomBlocks(random, axes);
        for (const std::int64_t lod : {0, 2}) {
            const Model voxels = Enlarged(blocks, lod);
            const Model small = MakeModel(blocks);
            ASSERT_EQ(Differences(FillExposedRegions(voxels), Enlarged(ReferenceModel(FillExposedRegions(small), 0), lod)), "")
                << seed;
            ASSERT_EQ(Differences(FillEnclosedRegions(voxels), Enlarged(ReferenceModel(FillEnclosedRegions(small), 0), lod)), "")
                << seed;
            Triple block{};
            for (std::size_t i = 0; i < 3; ++i)
                block[i] = random.Between(blocks.ExtentsRef().LowerIndices()[i], blocks.ExtentsRef().UpperIndices()[i]);
            const Triple size = BlockSize(lod);
            const Triple voxel{block[0] * size[0], block[1] * size[1], block[2] * size[2]};
            ASSERT_EQ(Differences(FillFromPoint(voxels, axes.VoxelCorner(voxel, lod)),
                                  Enlarged(ReferenceModel(FillFromPoint(small, axes.VoxelCorner(block, 0)), 0), lod)),
                      "")
                << seed;
        }
    }
}

void ExpectAlike(const std::vector<Model>& results, const std::vector<Model>& expected, std::uint64_t seed)
{
    ASSERT_EQ(results.size(), expected.size()) << seed;
    for (std::size_t i = 0; i < results.size(); ++i)
        ASSERT_EQ(Differences(results[i], expected[i]), "") << "model " << i << ", seed " << seed;
}

TEST(UniformChunks, ChangeNoOperation)
{
    using Guide = std::optional<Model>;
    const std::vector<std::pair<const char*, std::function<Model(const Model&, const Model&)>>> operations{
        {"invert", [](const Model& a, const Model&) { return Invert(a); }},
        {"union",
         [](const Model& a, const Model& b) {
             return Union(Pointers{&a, &b}, 1, false);
         }},
        {"finer union",
         [](const Model& a, const Model& b) {
             return Union(Pointers{&a, &b}, 2, true);
         }},
        {"intersect",
         [](const Model& a, const Model& b) {
             return Intersect(Pointers{&a, &b}, 1, false);
         }},
        {"cropped intersect",
         [](const Model& a, const Model& b) {
             return Intersect(Pointers{&a, &b}, 1, true);
         }},
        {"subtract", [](const Model& a, const Model& b) { return Subtract(a, b, 1, false); }},
        {"coarser subtract", [](const Model& a, const Model& b) { return Subtract(a, b, 0, false); }},
        {"crop", [](const Model& a, const Model&) { return Crop(a, 3, 5, 2, 1, 9, 4); }},
        {"enlarge", [](const Model& a, const Model&) { return Enlarge(a, 3, 5, 2, 21, 9, 4); }},
        {"automatic crop", [](const Model& a, const Model&) { return AutoCrop(a); }},
        {"refine", [](const Model& a, const Model&) { return Refine(a, 3); }},
        {"enclosed", [](const Model& a, const Model&) { return FillEnclosedRegions(a); }},
        {"exposed", [](const Model& a, const Model&) { return FillExposedRegions(a); }},
        {"wider", [](const Model& a, const Model& b) { return ExpandAlongX(a, 21, 3, Guide(b), true); }},
        {"higher", [](const Model& a, const Model& b) { return ExpandAlongZ(a, 7, 90, Guide(b), false); }},
        {"lower", [](const Model& a, const Model&) { return ReduceAlongZ(a, 7, 33, {}, true); }},
        {"thinner", [](const Model& a, const Model& b) { return ReduceAlongY(a, 20, 5, Guide(b), false); }},
        {"wider all around", [](const Model& a, const Model&) { return ExpandByOneVoxel(a, 1, 1, {}, true); }},
        {"rounder", [](const Model& a, const Model&) { return ExpandHorizontally(a, 9, {}, true); }},
        {"smaller", [](const Model& a, const Model& b) { return ReduceByOneVoxel(a, 1, 1, Guide(b), false); }},
        {"changed by a host",
         [](const Model& a, const Model&) {
             Model model = a;
             const StackIterator stack(model, Plus(a.ExtentsRef(1).LowerIndices(), {17, 18, 65}), 1);
             stack.VoxelStackRef().FillOutsideBox({0, 0, 5}, LastOffset, false);
             PropagateLevel(model, 1);
             return model;
         }},
    };
    std::size_t uniformStores = 0;
    for (std::uint64_t seed = 1; seed <= 8; ++seed) {
        Random random(seed);
        const Axes axes = RandomAxes(random);
        const Model a = Enlarged(RandomBlocks(random, axes), 1);
        const Model b = Enlarged(RandomBlocks(random, axes), 1);
        const Model plainA = WithStacks(a);
        const Model plainB = WithStacks(b);
        uniformStores += UniformStores(a);
        ASSERT_EQ(UniformStores(plainA), 0U);
        ASSERT_EQ(Differences(a, plainA), "");
        for (const auto& [name, operation] : operations) {
            ASSERT_EQ(Differences(operation(a, b), WithStacks(operation(plainA, plainB))), "") << name << ", seed " << seed;
        }
        ExpectAlike(AutoSplit(a), AutoSplit(plainA), seed);
        const std::vector<double> weights{1, -0.5};
        const std::vector<double> thresholds{0.5, 1, 0};
        ExpectAlike(DensityMap({&a, &b}, weights, thresholds, 1), DensityMap({&plainA, &plainB}, weights, thresholds, 1), seed);
        ASSERT_EQ(CountFilled(a, 1), CountFilled(plainA, 1));
        ASSERT_EQ(IsFull(Invert(Model(a.ExtentsRef(1), 1)), 1), true);
    }
    EXPECT_GT(uniformStores, 40U) << "what is tested here";
}

// A block is as cheap as an empty box of its size: what is wholly full takes no stacks.
TEST(UniformChunks, TakeNoMemoryForStacks)
{
    const Model empty(Extents(Axes(1, {}, 0, 0), {-5003, -5000, 3}, {5000, 5001, 40}, 2), 2);
    const Model full = Invert(empty);
    EXPECT_TRUE(IsFull(full, 2));
    EXPECT_EQ(CountFilled(full, 2), 10004LL * 10002 * 38);
    EXPECT_LT(full.AllocatedBytes() / full.StoredChunkCount(), 350U);
    EXPECT_EQ(Invert(full).StoredChunkCount(), 0U);
    const Model smaller = ReduceByOneVoxel(full, 1, 0, {}, false);
    EXPECT_EQ(CountFilled(smaller, 2), 10002LL * 10000 * 38);
    EXPECT_LT(smaller.AllocatedBytes(), 2 * full.AllocatedBytes()) << "stacks at the border alone";
}

} // namespace
} // namespace brix
