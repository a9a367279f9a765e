// The sparse table of chunks against an ordered map.
#include "model/ChunkTable.h"

#include "support/Random.h"

#include <gtest/gtest.h>

#include <map>

namespace brix {
namespace {

using tests::Random;
using Order = std::array<std::int64_t, 3>; // z, y, x

Order OrderOf(const Triple& chunk) { return {chunk[2], chunk[1], chunk[0]}; }

std::vector<std::pair<Order, int>> ContentOf(const ChunkTable<int>& table)
{
    std::vector<std::pair<Order, int>> content;
    table.ForEach([&](const Triple& chunk, const int& item) { content.emplace_back(OrderOf(chunk), item); });
    return content;
}

std::vector<std::pair<Order, int>> ContentOfSlab(const ChunkTable<int>& table, std::int64_t z)
{
    std::vector<std::pair<Order, int>> content;
    table.ForEachOfSlab(z, [&](const Triple& chunk, const int& item) { content.emplace_back(OrderOf(chunk), item); });
    return content;
}

void ExpectSame(const ChunkTable<int>& table, const std::map<Order, int>& expected, std::uint64_t seed)
{
    using Content = std::vector<std::pair<Order, int>>;
    ASSERT_EQ(table.Size(), expected.size()) << seed;
    ASSERT_EQ(ContentOf(table), Content(expected.begin(), expected.end())) << seed;
    for (const auto& [order, item] : expected) {
        const int* const found = table.Find({order[2], order[1], order[0]});
        ASSERT_TRUE(found != nullptr && *found == item) << seed;
    }
    for (std::int64_t z = table.LowerIndices()[2] - 1; z <= std::min(table.UpperIndices()[2], table.LowerIndices()[2] + 9); ++z) {
        const Content slab(expected.lower_bound({z, -1000000, -1000000}), expected.lower_bound({z + 1, -1000000, -1000000}));
        ASSERT_EQ(ContentOfSlab(table, z), slab) << seed;
    }
}

TEST(ChunkTable, EqualsAnOrderedMap)
{
    for (std::uint64_t seed = 1; seed <= 200; ++seed) {
        Random random(seed);
        const auto width = [&] { return random.OneIn(4) ? random.Between(3000, 20000) : random.Between(0, 12); };
        const Triple lower{random.Between(-9000, 50), random.Between(-50, 50), random.Between(-10000, 50)};
        const Triple upper = Plus(lower, {width(), width(), width()});
        const auto anyChunk = [&] {
            return Triple{random.Between(lower[0], upper[0]), random.Between(lower[1], upper[1]),
                          random.Between(lower[2], upper[2])};
        };
        ChunkTable<int> table(lower, upper);
        std::map<Order, int> expected;
        for (int step = 0; step < 150; ++step) {
            const Triple chunk = anyChunk();
            const int item = expected.emplace(OrderOf(chunk), step).first->second;
            ASSERT_EQ(table.FindOrMake(chunk, [&] { return std::make_unique<int>(step); }), item) << seed;
            const Triple asked = Plus(anyChunk(), {random.OneIn(9) ? 30000 : 0, 0, 0});
            ASSERT_EQ(table.Find(asked) != nullptr, expected.count(OrderOf(asked)) != 0) << seed;
        }
        const int* const first = table.Find({expected.begin()->first[2], expected.begin()->first[1], expected.begin()->first[0]});
        ExpectSame(table, expected, seed);
        ChunkTable<int> copy = table;
        const auto isErased = [&](int item) { return item % 3 == 1; };
        copy.EraseIf(isErased);
        ExpectSame(table, expected, seed);
        ChunkTable<int> moved = std::move(table);
        EXPECT_EQ(moved.Find({expected.begin()->first[2], expected.begin()->first[1], expected.begin()->first[0]}), first)
            << "moved";
        std::erase_if(expected, [&](const auto& entry) { return isErased(entry.second); });
        ExpectSame(copy, expected, seed);
    }
}

} // namespace
} // namespace brix
