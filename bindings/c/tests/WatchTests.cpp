// Watches of the C interface, and through it of all that can take long: each is told of, and stops where it is asked to.
#include "Works.h"

#include <array>
#include <cstring>
#include <thread>
#include <vector>

namespace brix::tests {
namespace {

// What a watch was told, and when it says stop.
struct Told
{
    std::vector<double> shares{};
    std::size_t stopAt = 0; // the number of the question; 0: never
};

std::int32_t Listen(void* context, double share)
{
    auto& told = *static_cast<Told*>(context);
    told.shares.push_back(share);
    return told.shares.size() == told.stopAt ? 1 : 0;
}

Owned<brix_watch> Begin(Told& told) { return Make<brix_watch>(brix_watch_begin, Listen, static_cast<void*>(&told), 0.0); }

std::int32_t RunWatched(const Work& work, const Operands& operands, Told& told, brix_error* error)
{
    const Owned<brix_watch> watch = Begin(told);
    return work.run(operands, error);
}

std::array<std::uint8_t, 32> HashOf(const Operands& operands)
{
    std::array<std::uint8_t, 32> hash{};
    EXPECT_EQ(brix_content_hash(operands.model.get(), hash.data(), nullptr), BRIX_OK);
    EXPECT_EQ(brix_content_hash(operands.other.get(), hash.data() + 16, nullptr), BRIX_OK);
    return hash;
}

void CheckWatched(const Work& work, const Operands& operands)
{
    SCOPED_TRACE(std::string(work.name) + ", " + operands.name);
    Told all;
    const std::int32_t status = RunWatched(work, operands, all, nullptr);
    EXPECT_EQ(status, work.run(operands, nullptr));
    if (status != BRIX_OK) return;
    ASSERT_FALSE(all.shares.empty());
    EXPECT_TRUE(std::is_sorted(all.shares.begin(), all.shares.end()));
    EXPECT_GE(all.shares.front(), 0);
    EXPECT_LE(all.shares.back(), 1);
    for (const std::size_t stopAt : {std::size_t{1}, all.shares.size() / 3 + 1, all.shares.size()}) {
        Told told{{}, stopAt};
        brix_error error{};
        EXPECT_EQ(RunWatched(work, operands, told, &error), BRIX_CANCELLED);
        EXPECT_EQ(told.shares.size(), stopAt); // nobody asks again
        EXPECT_STREQ(error.message, "The operation was cancelled.");
        brix_error_clear(&error);
    }
}

TEST(Watches, AreToldOfEveryWorkAndStopIt)
{
    for (const std::uint64_t seed : {1U, 3U}) { // the model of seed 2 is empty
        const std::int64_t width = seed == 1 ? 130 : 40;
        const Operands operands =
            MakeOperands(seed, 4, Extents(Axes(1.6, {1, 2, 3}, 30, 4), {-90, -70, -30}, {width, 80, 60}, 4), "box");
        const auto hash = HashOf(operands);
        for (const Work& work : Works) CheckWatched(work, operands);
        EXPECT_EQ(HashOf(operands), hash);
    }
}

TEST(Watches, AreEndedOnTheirThread)
{
    Told told;
    brix_watch* watch = Begin(told).release();
    std::int32_t status = BRIX_OK;
    std::thread([&] { status = brix_watch_end(watch, nullptr); }).join();
    EXPECT_EQ(status, BRIX_INVALID_ARGUMENT);
    EXPECT_EQ(brix_watch_end(watch, nullptr), BRIX_OK);
    EXPECT_EQ(brix_watch_begin(Listen, nullptr, -1, &watch, nullptr), BRIX_INVALID_ARGUMENT);
}

} // namespace
} // namespace brix::tests
