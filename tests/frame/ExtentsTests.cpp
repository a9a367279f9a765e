#include "frame/Extents.h"

#include "support/Messages.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <limits>
#include <regex>

namespace brix {
namespace {

using tests::MessageOf;
using tests::Random;

constexpr std::int64_t Lowest64 = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t Highest64 = std::numeric_limits<std::int64_t>::max();
constexpr const char* Accepted = "(nothing was thrown)";

Axes AxesWithVerticalLOD(std::int64_t verticalLOD) { return Axes(1, {0, 0, 0}, 0, verticalLOD); }

std::string MessageFor(const Triple& lower, const Triple& upper, std::int64_t voxelLOD, std::int64_t verticalLOD = 0)
{
    return MessageOf([&] { Extents(AxesWithVerticalLOD(verticalLOD), lower, upper, voxelLOD); });
}

// Each row mends what the row above it reports and nothing else, so that the table holds the order as well as the sentences.
TEST(Extents, ReportTheFirstFaultInTheOrderOfTheChecks)
{
    const std::string cannot = " cannot be less than the lower extent. The lower extent encountered was 5. ";
    const Triple beyond{25000, 25001, 10000};
    const struct
    {
        Triple lower, upper;
        std::int64_t lod;
        std::string message;
    } cases[]{
        {{-25001, -25002, -10001}, beyond, -1, "lower extent in the X direction cannot be less than -25000. @-25001."},
        {{5, -25002, -10001}, beyond, -1, "lower extent in the Y direction cannot be less than -25000. @-25002."},
        {{5, 5, -10001}, beyond, -1, "lower extent in the Z direction cannot be less than -10000. @-10001."},
        {{5, 5, 5}, beyond, -1, "upper extent in the X direction must be less than 25000. @25000."},
        {{5, 5, 5}, {4, 25001, 10000}, -1, "upper extent in the Y direction must be less than 25000. @25001."},
        {{5, 5, 5}, {4, 3, 10000}, -1, "upper extent in the Z direction must be less than 10000. @10000."},
        {{5, 5, 5}, {4, 3, -2}, -1, "upper extent in the X direction" + cannot + "The upper extent encountered was 4."},
        {{5, 5, 5}, {5, 3, -2}, -1, "upper extent in the Y direction" + cannot + "The upper extent encountered was 3."},
        {{5, 5, 5}, {5, 5, -2}, -1, "upper extent in the Z direction" + cannot + "The upper extent encountered was -2."},
        {{5, 5, 5}, {5, 5, 5}, -1, "level of detail for a set of extents cannot be negative. @-1."},
        {{5, 5, 5}, {5, 5, 5}, 6, "level of detail for a set of extents must be less than 6. @6."},
    };
    for (const auto& [lower, upper, lod, message] : cases) {
        EXPECT_EQ(MessageFor(lower, upper, lod),
                  "The " + std::regex_replace(message, std::regex("@"), "The value encountered was "));
    }
}

TEST(Extents, ReachToTheEdgeOfTheIndexSpaceOfEveryLevel)
{
    for (std::int64_t lod = 0; lod < 6; ++lod) {
        for (std::int64_t verticalLOD = 0; verticalLOD < 6; ++verticalLOD) {
            const std::int64_t h = 25000 * (1 << lod);
            const std::int64_t v = 10000 * (1 << verticalLOD);
            EXPECT_EQ(MessageFor({-h, -h, -v}, {h - 1, h - 1, v - 1}, lod, verticalLOD), Accepted);
            EXPECT_NE(MessageFor({-h - 1, 0, 0}, {h - 1, 0, 0}, lod, verticalLOD), Accepted);
            EXPECT_NE(MessageFor({0, 0, 0}, {0, h, 0}, lod, verticalLOD), Accepted);
            EXPECT_NE(MessageFor({0, 0, -v - 1}, {0, 0, 0}, lod, verticalLOD), Accepted);
            EXPECT_NE(MessageFor({0, 0, 0}, {0, 0, v}, lod, verticalLOD), Accepted);
        }
    }
}

TEST(Extents, RejectNumbersAtTheLimitsOf64Bits)
{
    for (const std::int64_t lod : {Lowest64, std::int64_t{3}, Highest64}) {
        EXPECT_NE(MessageFor({Lowest64, 0, 0}, {0, 0, 0}, lod).find("-9223372036854775808"), std::string::npos);
        EXPECT_NE(MessageFor({0, 0, 0}, {0, 0, Highest64}, lod).find("9223372036854775807"), std::string::npos);
        EXPECT_NE(MessageFor({0, 0, 0}, {0, Lowest64, 0}, lod).find("-9223372036854775808"), std::string::npos);
    }
}

TEST(Extents, ContainAndClampVoxelsInclusively)
{
    const Extents extents(AxesWithVerticalLOD(0), {-2, 3, 5}, {4, 3, 9}, 2);
    Triple outermost{-2, 3, 5};
    EXPECT_TRUE(extents.ContainsVoxel(outermost));
    EXPECT_TRUE(extents.ContainsVoxel({4, 3, 9}));
    for (std::size_t axis = 0; axis < 3; ++axis) {
        Triple below = extents.LowerIndices();
        Triple above = extents.UpperIndices();
        --below[axis];
        ++above[axis];
        EXPECT_FALSE(extents.ContainsVoxel(below));
        EXPECT_FALSE(extents.ContainsVoxel(above));
        EXPECT_EQ(extents.LowerCornerClamp(below), extents.LowerIndices());
        EXPECT_EQ(extents.UpperCornerClamp(above), extents.UpperIndices());
    }
    EXPECT_FALSE(extents.ContainsVoxel({Lowest64, Highest64, 7}));
    EXPECT_EQ(extents.LowerCornerClamp(extents.UpperCornerClamp({Lowest64, Highest64, 7})), (Triple{-2, 3, 7}));
}

TEST(Extents, RescaleOutwards)
{
    const auto rescaled = [](std::int64_t lower, std::int64_t upper, std::int64_t from, std::int64_t to) {
        const Extents copy = Extents(AxesWithVerticalLOD(1), {lower, lower, -7}, {upper, upper, 9}, from).RescaledCopy(to);
        EXPECT_EQ(copy.VoxelLOD(), to);
        EXPECT_EQ(copy.LowerIndices(), (Triple{copy.LowerIndices()[0], copy.LowerIndices()[0], -7}));
        EXPECT_EQ(copy.UpperIndices(), (Triple{copy.UpperIndices()[0], copy.UpperIndices()[0], 9}));
        return std::pair{copy.LowerIndices()[0], copy.UpperIndices()[0]};
    };
    using Range = std::pair<std::int64_t, std::int64_t>;
    EXPECT_EQ(rescaled(-3, 2, 2, 4), Range(-12, 11));
    EXPECT_EQ(rescaled(-12, 11, 4, 2), Range(-3, 2));
    EXPECT_EQ(rescaled(-5, 5, 4, 2), Range(-2, 1));
    EXPECT_EQ(rescaled(-800000, 799999, 5, 0), Range(-25000, 24999));
    EXPECT_EQ(rescaled(-25000, 24999, 0, 5), Range(-800000, 799999));
    Random random(3);
    for (int i = 0; i < 2000; ++i) { // a voxel of the other level is inside when any voxel of this level within it is
        const std::int64_t lower = random.Between(-100, 100);
        const std::int64_t upper = lower + random.Between(0, 50);
        const std::int64_t from = random.Between(0, 5);
        const std::int64_t to = random.Between(0, from);
        const std::int64_t factor = std::int64_t{1} << (from - to);
        const auto [coarseLower, coarseUpper] = rescaled(lower, upper, from, to);
        EXPECT_TRUE(coarseLower * factor <= lower && lower < (coarseLower + 1) * factor) << "case " << i;
        EXPECT_TRUE(coarseUpper * factor <= upper && upper < (coarseUpper + 1) * factor) << "case " << i;
        EXPECT_EQ(rescaled(coarseLower, coarseUpper, to, from), Range(coarseLower * factor, (coarseUpper + 1) * factor - 1));
    }
}

} // namespace
} // namespace brix
