// Rules over several stacks against the same rules height by height.
#include "model/CombineStacks.h"

#include "support/Picture.h"
#include "support/Stacks.h"

#include <gtest/gtest.h>

namespace brix {
namespace {

using namespace tests;

TEST(CombineStacks, AppliesTheRuleAtEveryHeight)
{
    for (std::uint64_t seed = 1; seed <= 200; ++seed) {
        Random random(seed);
        const std::array heights{RandomHeights(random), RandomHeights(random), RandomHeights(random)};
        VoxelStack<bool> first = MakeStack(heights[0]);
        const VoxelStack<bool> second = MakeStack(heights[1]);
        const VoxelStack<bool> third = MakeStack(heights[2]);
        const auto rule = [](const Plate& a, const Plate& b, const Plate& c) { return AndNot(a, b) | c; };
        Heights expected;
        for (std::size_t z = 0; z < 64; ++z) expected[z] = rule(heights[0][z], heights[1][z], heights[2][z]);

        VoxelStack<bool> result = second;
        CombineStacks(result, rule, first, second, third);
        CombineStacks(first, rule, first, second, third);
        ASSERT_EQ(HeightsOf(result), expected) << "seed " << seed;
        ASSERT_EQ(CanonicalFault(result), "") << "seed " << seed;
        ASSERT_TRUE(first == result) << "the result may be one of the stacks; seed " << seed;
    }
}

TEST(CombineStacks, RunsTheRuleOncePerCommonLayer)
{
    for (std::uint64_t seed = 1; seed <= 200; ++seed) {
        Random random(seed);
        const Heights a = RandomHeights(random);
        const Heights b = RandomHeights(random);
        std::int64_t expected = 1;
        for (std::size_t z = 1; z < 64; ++z) expected += a[z] == a[z - 1] && b[z] == b[z - 1] ? 0 : 1;
        std::int64_t calls = 0;
        std::int64_t reached = 0;
        ForEachCommonLayer(
            [&](std::int64_t z, std::int64_t end, const Plate& plateA, const Plate& plateB) {
                ++calls;
                ASSERT_EQ(z, reached);
                reached = end;
                ASSERT_EQ(plateA, a[static_cast<std::size_t>(end - 1)]);
                ASSERT_EQ(plateB, b[static_cast<std::size_t>(end - 1)]);
            },
            MakeStack(a), MakeStack(b));
        ASSERT_EQ(reached, 64);
        ASSERT_EQ(calls, expected) << "seed " << seed;
    }
}

TEST(CombineStacks, SeesNeighboursAtEveryDistance)
{
    for (std::uint64_t seed = 1; seed <= 20; ++seed) {
        Random random(seed);
        const std::array heights{RandomHeights(random), RandomHeights(random), RandomHeights(random)}; // below, here, above
        const std::array stacks{MakeStack(heights[0]), MakeStack(heights[1]), MakeStack(heights[2])};
        for (std::int64_t distance = 1; distance <= 64; ++distance) {
            Heights expected;
            for (std::int64_t z = 0; z < 64; ++z) {
                const auto plateAt = [&](std::int64_t height) { // counted from the bottom of `here`
                    return heights[static_cast<std::size_t>(height + 64) / 64][static_cast<std::size_t>(height + 64) % 64];
                };
                expected[static_cast<std::size_t>(z)] = AndNot(plateAt(z - distance), plateAt(z + distance));
            }
            VoxelStack<bool> result;
            CombineStacks(result, AndNot, SeenBelow(stacks[1], stacks[0], distance), SeenAbove(stacks[1], stacks[2], distance));
            ASSERT_EQ(HeightsOf(result), expected) << "seed " << seed << ", distance " << distance;
        }
    }
}

} // namespace
} // namespace brix
