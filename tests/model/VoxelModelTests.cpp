// The chunk grid and its stores, ownership, and the check that finds malformed models.
#include "model/VoxelModel.h"

#include "model/CheckInvariants.h"
#include "model/ForEachStack.h"
#include "model/PropagateLevel.h"
#include "model/VoxelIterator.h"
#include "support/FailingAllocations.h"
#include "support/Messages.h"
#include "support/RandomModels.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>

namespace brix {
namespace {

using namespace tests;

constexpr std::int64_t Lowest64 = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t Highest64 = std::numeric_limits<std::int64_t>::max();

const Axes TestAxes(40000, {0, 0, 0}, 0, 5);

TEST(VoxelModel, RejectsLevelsThatDoNotExist)
{
    const Extents extents(TestAxes, {0, 0, 0}, {3, 3, 3}, 2);
    const VoxelModel<bool> model(extents, 3);
    for (const std::int64_t lod : {Lowest64, std::int64_t{-1}, std::int64_t{4}, Highest64}) {
        EXPECT_THROW(model.ExtentsRef(lod), std::domain_error);
    }
}

// The in-extents boxes of all stacks, laid side by side, are the extents: none is missing, none counts twice.
TEST(VoxelModel, PartsItsExtentsIntoTheBoxesOfItsStacks)
{
    for (std::uint64_t seed = 1; seed <= 200; ++seed) {
        Random random(seed);
        const Extents extents = RandomExtents(random, TestAxes, random.Between(0, 5));
        const VoxelModel<bool> model(extents, random.Between(0, 5));
        for (std::int64_t lod = 0; lod <= model.FinestLOD(); ++lod) {
            const Extents level = model.ExtentsRef(lod);
            ASSERT_EQ(level.LowerIndices(), extents.RescaledCopy(lod).LowerIndices());
            ASSERT_EQ(level.UpperIndices(), extents.RescaledCopy(lod).UpperIndices());
            std::set<Triple> corners;
            std::int64_t volume = 0;
            ForEachStack(model, lod, [&](const VoxelStore<bool>& store, const StackIndices& ij) {
                const Triple corner = store.LowerIndices(ij);
                const Triple size = Plus(Minus(store.UpperOffset(ij), store.LowerOffset(ij)), {1, 1, 1});
                ASSERT_TRUE(size[0] > 0 && size[1] > 0 && size[2] > 0) << "seed " << seed;
                ASSERT_TRUE(corner[0] % 16 == 0 && corner[1] % 16 == 0 && corner[2] % 64 == 0);
                ASSERT_TRUE(IsWithin(store.UpperOffset(ij), store.LowerOffset(ij), {15, 15, 63}));
                ASSERT_TRUE(level.ContainsVoxel(Plus(corner, store.LowerOffset(ij))));
                ASSERT_TRUE(level.ContainsVoxel(Plus(corner, store.UpperOffset(ij))));
                ASSERT_EQ(store.ContainingStack(Plus(corner, store.LowerOffset(ij))), ij);
                ASSERT_TRUE(corners.insert(corner).second);
                volume += size[0] * size[1] * size[2];
            });
            const Triple size = Plus(Minus(level.UpperIndices(), level.LowerIndices()), {1, 1, 1});
            ASSERT_EQ(volume, size[0] * size[1] * size[2]) << "seed " << seed << ", level " << lod;
        }
    }
}

TEST(VoxelModel, FindsTheChunkOfAnyPoint)
{
    const VoxelModel<bool> model(Extents(TestAxes, {-20, 0, -64}, {20, 0, 64}, 0), 0);
    EXPECT_EQ(model.LowerChunkIndices(), (Triple{-2, 0, -1}));
    EXPECT_EQ(model.UpperChunkIndices(), (Triple{1, 0, 1}));
    EXPECT_EQ(model.ContainingChunk({-1, 640000, 80000}), (Triple{-1, 1, 1}));
    EXPECT_EQ(model.ContainingChunk({-640001, 639999, 79999}), (Triple{-2, 0, 0}));
    EXPECT_FALSE(model.IsChunkValid(model.ContainingChunk({Lowest64, Highest64, Lowest64})));
    EXPECT_FALSE(model.IsChunkValid({-2, 1, 0}));
    EXPECT_TRUE(model.IsChunkValid({1, 0, 1}));
}

TEST(VoxelModel, IsCopiedDeeply)
{
    for (const RandomModel& random : RandomModels(1, 40)) {
        VoxelModel<bool> original = random.voxels;
        VoxelModel<bool> assigned(Extents(TestAxes, {0, 0, 0}, {0, 0, 0}, 0), 0);
        assigned = original;
        ForEachStack(original, original.FinestLOD(), [](VoxelStore<bool>& store, const StackIndices& ij) {
            store.VoxelStackRef(ij).LayerVoxelPlateRef(0) = FilledPlate();
        });
        EXPECT_EQ(Differences(assigned, random.reference), "") << random;
        EXPECT_EQ(Differences(random.voxels, random.reference), "") << random;
        original = std::move(assigned);
        EXPECT_EQ(Differences(original, random.reference), "") << random;
        VoxelModel<bool>& itself = original;
        original = itself;
        EXPECT_EQ(Differences(original, random.reference), "") << random;
    }
}

// Nobody has to write there, but whoever does finds a stack, and the others keep what they hold.
TEST(VoxelModel, HasAStackToWriteBesideItsExtents)
{
    VoxelModel<bool> model(Extents(TestAxes, {20, 40, 0}, {60, 90, 3}, 5), 5);
    VoxelStore<bool>& store = model.ChunkRef({0, 0, 0}).VoxelStoreRef(5);
    store.VoxelStackRef({2, 3}).LayerVoxelPlateRef(0).rows[7] = 5;
    EXPECT_TRUE(std::as_const(store).VoxelStackRef({31, 0}).IsUnallocated());
    store.VoxelStackRef({31, 0}).LayerVoxelPlateRef(0).rows[1] = 1;
    EXPECT_EQ(store.VoxelStackRef({2, 3}).LayerVoxelPlateRef(0).rows[7], 5);
    EXPECT_EQ(std::as_const(store).VoxelStackRef({31, 0}).LayerVoxelPlateRef(0).rows[1], 1);
    EXPECT_TRUE(store.VoxelStackRef({1, 2}).IsUnallocated());
    EXPECT_NE(CheckInvariants(model, 5).find("outside the extents"), std::string::npos);
}

TEST(VoxelModel, MakesAChunkInFewAllocationsAndCountsWhatItsStacksTake)
{
    VoxelModel<bool> model(Extents(TestAxes, {0, 0, 0}, {15, 15, 63}, 0), 5);
    const std::int64_t before = AllocationCount();
    VoxelStack<bool>& stack = model.ChunkRef({0, 0, 0}).VoxelStoreRef(0).VoxelStackRef({0, 0});
    EXPECT_LT(AllocationCount() - before, 20) << "an allocation per stack";
    const std::size_t empty = model.AllocatedBytes();
    stack.LayerVoxelPlateRef(0).rows[0] = 1;
    EXPECT_EQ(model.AllocatedBytes(), empty + stack.AllocatedBytes());
}

// The chunk of a place is one object, whoever asks for it first, and stays it.
TEST(VoxelModel, HandsOutEveryChunkToReadersAndWriters)
{
    VoxelModel<bool> model(Extents(TestAxes, {-90, 0, 0}, {90, 90, 200}, 1), 2);
    const VoxelModel<bool>& readOnly = model;
    const Triple voxel{70, 33, 130};
    const ConstVoxelIterator reader = readOnly.FindVoxel(voxel, 1);
    const VoxelChunk<bool>& chunk = readOnly.ChunkRef(ChunkOfVoxel(voxel, 1));
    EXPECT_FALSE(reader.Value());
    EXPECT_EQ(&chunk, &readOnly.ChunkRef(ChunkOfVoxel(voxel, 1)));
    EXPECT_EQ(model.StoredChunkCount(), 0U) << "reading changes nothing";
    const VoxelModel<bool> copy = model;

    VoxelStack<bool>& stack = StackIterator(model, voxel, 1).VoxelStackRef();
    stack.LayerVoxelPlateRef(stack.IsolateLevel(130 - 128, true, true)).rows[33 - 32] = 1 << (70 - 64);
    EXPECT_EQ(&chunk, &model.ChunkRef(ChunkOfVoxel(voxel, 1)));
    EXPECT_EQ(&chunk, model.FindChunk(ChunkOfVoxel(voxel, 1)));
    EXPECT_TRUE(reader.Value());
    EXPECT_FALSE(copy.FindVoxel(voxel, 1).Value());
    model.FinishLevels(1);
    EXPECT_TRUE(reader.Value());
    EXPECT_EQ(model.StoredChunkCount(), 1U);
}

TEST(VoxelModel, OverTheWholeIndexSpaceIsSmall)
{
    const Axes axes(1, {0, 0, 0}, 0, 5);
    VoxelModel<bool> model(Extents(axes, {-25000, -25000, -320000}, {24999, 24999, 319999}, 0), 5);
    EXPECT_LT(model.AllocatedBytes(), 4096U);
    for (const Triple& voxel : {Triple{-800000, -800000, -320000}, Triple{0, 0, 0}, Triple{799999, 799999, 319999}})
        StackIterator(model, voxel, 5).VoxelStackRef().LayerVoxelPlateRef(0).rows[0] = 1;
    PropagateLevel(model, 5);
    EXPECT_LT(model.AllocatedBytes(), 100000U);
    EXPECT_EQ(CheckInvariants(model, 5), "");
}

TEST(VoxelModel, IsMadeAndCopiedWholeOrNotAtAll)
{
    const RandomModel random = MakeRandomModel(3);
    const std::int64_t live = LiveAllocations();
    std::int64_t n = 1;
    const auto makeWithChunk = [&] {
        VoxelModel<bool> model(random.voxels.ExtentsRef(0), 3);
        model.ChunkRef(model.LowerChunkIndices());
    };
    while (RunsOutOfMemory(n, makeWithChunk)) ++n;
    EXPECT_GT(n, 5);
    for (n = 1; RunsOutOfMemory(n, [&] { const VoxelModel<bool> copy(random.voxels); });) n += 1 + n / 4;
    EXPECT_GT(n, 10);
    EXPECT_EQ(LiveAllocations(), live);
}

// Faults planted into sound models, each of which must be named.
TEST(CheckInvariants, NamesEveryKindOfFault)
{
    const Extents extents(TestAxes, {-3, 2, 5}, {4, 49, 40}, 2);
    ReferenceModel reference(extents, 2, 2);
    ForEachTriple({-2, 3, 10}, {1, 4, 20}, [&](const Triple& voxel) { reference.Set(voxel); });
    const VoxelModel<bool> sound = MakeModel(reference);
    EXPECT_EQ(CheckInvariants(sound, 2), "");

    const auto reason = [&](const Triple& chunk, std::int64_t lod, const StackIndices& ij, const auto& fault) {
        VoxelModel<bool> model = sound;
        fault(model.ChunkRef(chunk).VoxelStoreRef(lod).VoxelStackRef(ij));
        return CheckInvariants(model, 2);
    };
    const auto fill = [](std::int64_t x, std::size_t y, std::int64_t z) {
        return [=](VoxelStack<bool>& stack) {
            std::uint16_t& row = stack.LayerVoxelPlateRef(stack.IsolateLevel(z, true, true)).rows[y];
            row = static_cast<std::uint16_t>(row ^ 1U << x);
            stack.Compress();
        };
    };
    EXPECT_EQ(reason({0, 0, 0}, 2, {0, 0}, [](VoxelStack<bool>& stack) { stack.IsolateLevel(15, true, false); }),
              "layers are not canonical in the stack at (0, 0, 0) of level 2");
    EXPECT_EQ(reason({0, 0, 0}, 1, {0, 1}, [](VoxelStack<bool>& stack) { stack.LayerVoxelPlateRef(0) = {}; }),
              "layers are not canonical in the stack at (0, 16, 0) of level 1");
    EXPECT_EQ(reason({0, 0, 0}, 2, {0, 0}, fill(5, 3, 10)),
              "voxels outside the extents are filled in the stack at (0, 0, 0) of level 2");
    EXPECT_EQ(reason({0, 0, 0}, 2, {0, 0}, fill(0, 3, 4)),
              "voxels outside the extents are filled in the stack at (0, 0, 0) of level 2");
    EXPECT_EQ(reason({-1, 0, 0}, 1, {1, 0}, fill(14, 1, 15)), "levels disagree at voxel (-2, 1, 15) of level 1");
    EXPECT_EQ(reason({0, 0, 0}, 0, {0, 0}, fill(0, 1, 21)), "levels disagree at voxel (0, 1, 21) of level 0");
    EXPECT_EQ(CheckInvariants(sound, 0).substr(0, 25), "levels disagree at voxel ") << "a written level that it was not";
}

} // namespace
} // namespace brix
