// Stack edits against an array of 64 plates.
#include "model/VoxelStack.h"

#include "support/FailingAllocations.h"
#include "support/Picture.h"
#include "support/Stacks.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

namespace brix {
namespace {

using namespace tests;

std::int64_t RandomBound(Random& random, std::int64_t highest)
{
    if (random.OneIn(12))
        return random.OneIn(2) ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
    return random.Between(-3, highest + 3);
}

void FillOutside(Heights& heights, const Triple& lower, const Triple& upper, bool value)
{
    ForEachTriple({0, 0, 0}, {15, 15, 63}, [&](const Triple& voxel) {
        if (IsWithin(voxel, lower, upper)) return;
        std::uint16_t& row = heights[static_cast<std::size_t>(voxel[2])].rows[static_cast<std::size_t>(voxel[1])];
        const unsigned bit = 1U << voxel[0];
        row = static_cast<std::uint16_t>(value ? row | bit : row & ~bit);
    });
}

// One random edit of a stack and of the heights that it must have; the edits that end compressed return true.
bool Edit(Random& random, Stack& stack, Heights& heights)
{
    switch (random.Between(0, 6)) {
    case 0:
        stack.Decompress();
        EXPECT_TRUE(stack.IsFullyDecompressed());
        EXPECT_EQ(stack.LayerID(37), 37);
        return false;
    case 1:
        stack.Compress();
        return true;
    case 2: {
        heights = RandomHeights(random);
        const Stack other = MakeStack(heights);
        stack = other;
        return true;
    }
    case 3: {
        const Triple lower{RandomBound(random, 15), RandomBound(random, 15), RandomBound(random, 63)};
        const Triple upper{RandomBound(random, 15), RandomBound(random, 15), RandomBound(random, 63)};
        const bool value = random.OneIn(2);
        const bool wasUnallocated = stack.IsUnallocated();
        stack.FillOutsideBox(lower, upper, value);
        FillOutside(heights, lower, upper, value);
        return value || !wasUnallocated;
    }
    default: {
        const std::int64_t z = random.Between(0, 63);
        const bool splitBelow = random.OneIn(2);
        const bool splitAbove = random.OneIn(2);
        const std::int32_t layer = stack.IsolateLevel(z, splitBelow, splitAbove);
        EXPECT_EQ(LayerFault(stack), "");
        EXPECT_TRUE(stack.LowerOffset(layer) == z || (!splitBelow && stack.LowerOffset(layer) < z));
        EXPECT_TRUE(stack.UpperOffset(layer) == z || (!splitAbove && stack.UpperOffset(layer) > z));
        const auto below = static_cast<std::size_t>(std::max<std::int64_t>(z - 1, 0));
        const VoxelPlate<bool> plate = random.OneIn(2) ? heights[below] : random.OneIn(2) ? FilledPlate() : VoxelPlate<bool>{};
        stack.LayerVoxelPlateRef(layer) = plate;
        std::fill(heights.begin() + stack.LowerOffset(layer), heights.begin() + stack.UpperOffset(layer) + 1, plate);
        return false;
    }
    }
}

TEST(VoxelStack, EqualsAnArrayOfPlatesAfterAnyEdits)
{
    for (std::uint64_t seed = 1; seed <= 150; ++seed) {
        Random random(seed);
        Stack stack;
        Heights heights{};
        for (int edit = 0; edit < 30; ++edit) {
            const bool isCompressed = Edit(random, stack, heights);
            ASSERT_EQ(LayerFault(stack), "") << "seed " << seed << ", edit " << edit;
            ASSERT_EQ(HeightsOf(stack), heights) << "seed " << seed << ", edit " << edit;
            if (!isCompressed) continue;
            ASSERT_EQ(CanonicalFault(stack), "") << "seed " << seed << ", edit " << edit;
            ASSERT_TRUE(stack == MakeStack(heights));
        }
    }
}

TEST(VoxelStack, TakesAPointerAndNoMemoryWhileItIsEmpty)
{
    static_assert(sizeof(Stack) == 8);
    const std::int64_t before = AllocationCount();
    Stack stack;
    stack.Compress();
    stack.FillOutsideBox({1, 1, 1}, {2, 2, 2}, false);
    const Stack copy = stack;
    EXPECT_EQ(AllocationCount(), before);
    EXPECT_EQ(copy.AllocatedBytes(), 0U);
    EXPECT_EQ(copy.LayerCount(), 1);
    EXPECT_EQ(copy.UpperOffset(0), 63);

    stack.LayerVoxelPlateRef(stack.IsolateLevel(5, true, true)) = Picture("#");
    EXPECT_EQ(stack.LayerCount(), 3);
    stack.LayerVoxelPlateRef(1) = {};
    stack.Compress();
    EXPECT_TRUE(stack == copy);
    EXPECT_EQ(CanonicalFault(stack), "");
}

TEST(VoxelStack, CopiesAreDeepAndMovesLeaveNothingBehind)
{
    Random random(7);
    const Heights heights = RandomHeights(random);
    Stack original = MakeStack(heights);
    Stack copy = original;
    Stack& itself = copy;
    copy = itself;
    original.LayerVoxelPlateRef(0) = ~heights[0];
    EXPECT_EQ(HeightsOf(copy), heights);
    EXPECT_FALSE(copy == original);
    const Stack moved = std::move(copy);
    EXPECT_EQ(HeightsOf(moved), heights);
    original = Stack();
    EXPECT_TRUE(original.IsUnallocated());
}

// Whatever allocation of an edit fails: no leak, layers in order, and the content of before.
TEST(VoxelStack, KeepsItsContentWhenMemoryRunsOut)
{
    std::int64_t failures = 0;
    const std::int64_t liveBefore = LiveAllocations();
    for (std::uint64_t seed = 1; seed <= 100; ++seed) {
        Random random(seed);
        const Heights heights = RandomHeights(random);
        const Stack other = MakeStack(RandomHeights(random));
        const std::int64_t z = random.Between(0, 63);
        Stack start = MakeStack(heights);
        for (int i = 0; i < 3; ++i) start.IsolateLevel(random.Between(0, 63), true, random.OneIn(2));
        const auto expectSafe = [&](const auto& edit) {
            bool failed = true;
            for (std::int64_t n = 1; failed; ++n) {
                Stack stack = start;
                failed = RunsOutOfMemory(n, [&] { edit(stack); });
                if (!failed) break;
                ++failures;
                EXPECT_EQ(LayerFault(stack), "") << "seed " << seed;
                EXPECT_EQ(HeightsOf(stack), heights) << "seed " << seed;
                stack.Compress();
                EXPECT_TRUE(stack == MakeStack(heights)) << "seed " << seed;
            }
        };
        expectSafe([&](Stack& stack) { stack.IsolateLevel(z, true, true); });
        expectSafe([](Stack& stack) { stack.Decompress(); });
        expectSafe([](Stack& stack) { stack.Compress(); });
        expectSafe([&](Stack& stack) { stack = other; });
        expectSafe([&](Stack& stack) { stack.Assign(other.Plates(), other.LayerOffsets()); });
        expectSafe([](Stack& stack) { const Stack copy = stack; });
    }
    EXPECT_GT(failures, 300);
    EXPECT_EQ(LiveAllocations(), liveBefore);
}

} // namespace
} // namespace brix
