// The bit algebra of plates against loops over single voxels.
#include "model/VoxelPlate.h"

#include "support/Picture.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <limits>

namespace brix {
namespace {

using tests::Picture;
using tests::Random;

Plate RandomPlate(Random& random)
{
    const std::int64_t kind = random.Between(0, 5);
    if (kind == 0) return {};
    if (kind == 1) return FilledPlate();
    return MakePlate([&](std::size_t) {
        const std::uint64_t noise = random.Bits();
        return kind == 2 ? noise & (noise >> 16) & (noise >> 32) : kind == 3 ? noise | (noise >> 16) : noise;
    });
}

// The plate that is filled where rule(x, y) holds.
template <class Rule> Plate PlateWhere(Rule rule)
{
    Plate plate;
    for (std::int64_t y = 0; y < 16; ++y) {
        for (std::int64_t x = 0; x < 16; ++x) {
            std::uint16_t& row = plate.rows[static_cast<std::size_t>(y)];
            if (rule(x, y)) row = static_cast<std::uint16_t>(row + (1 << x));
        }
    }
    return plate;
}

TEST(VoxelPlate, ReadsBitsOfRowsAsColumns)
{
    Plate plate;
    plate.rows[0] = 0x0001;
    plate.rows[1] = 0x8002;
    EXPECT_EQ(plate, Picture("#  .#.............#"));
    EXPECT_TRUE(plate.Value({15, 1}));
    EXPECT_FALSE(plate.Value({1, 15}));
    EXPECT_EQ(Count(plate), 3);
    static_assert(sizeof(Plate) == 32);
}

TEST(VoxelPlate, CombinesVoxelByVoxel)
{
    Random random(1);
    for (int i = 0; i < 300; ++i) {
        const Plate a = RandomPlate(random);
        const Plate b = RandomPlate(random);
        const auto where = [&](auto rule) {
            return PlateWhere([&](std::int64_t x, std::int64_t y) { return rule(a.Value({x, y}), b.Value({x, y})); });
        };
        ASSERT_EQ(a | b, where([](bool first, bool second) { return first || second; }));
        ASSERT_EQ(a & b, where([](bool first, bool second) { return first && second; }));
        ASSERT_EQ(AndNot(a, b), where([](bool first, bool second) { return first && !second; }));
        ASSERT_EQ(~a, where([](bool first, bool) { return !first; }));

        for (std::size_t line = 0; line < 16; ++line) {
            ASSERT_EQ(a.Row(line), a.rows[line]);
            const auto column = static_cast<std::int64_t>(line);
            for (std::int64_t y = 0; y < 16; ++y) ASSERT_EQ((a.Column(line) >> y & 1) != 0, a.Value({column, y}));
        }
        std::int64_t count = 0;
        PlateWhere([&](std::int64_t x, std::int64_t y) { return count += a.Value({x, y}) ? 1 : 0; });
        ASSERT_EQ(Count(a), count);
        ASSERT_EQ(IsEmpty(a), count == 0);
        ASSERT_EQ(IsFull(a), count == 256);
    }
}

// What the compiler computes goes other ways than what runs, which handles all rows as one vector.
constexpr std::array<Plate, 9> Results(const Plate& a, const Plate& b)
{
    return {a | b,
            a & b,
            ~a,
            AndNot(a, b),
            TowardsLowerX(a, b, 3),
            TowardsUpperX(a, b),
            TowardsLowerY(a, b),
            TowardsUpperY(a, b),
            HalfResolution(a, b, b, a)};
}

TEST(VoxelPlate, GivesTheSameAtCompileTimeAndAtRunTime)
{
    constexpr Plate a = MakePlate([](std::size_t y) { return 0x9E37U * (y + 1) ^ 0xF00FU >> y; });
    constexpr Plate b = MakePlate([](std::size_t y) { return 0x7F4AU * (y + 5) ^ 0x1FF8U << y % 4; });
    constexpr std::array<Plate, 9> compiled = Results(a, b);
    volatile std::uint16_t hidden = a.rows[0]; // so that the compiler cannot know the plate
    Plate run = a;
    run.rows[0] = hidden;
    EXPECT_EQ(Results(run, b), compiled);
}

TEST(VoxelPlate, DiffersFromEveryPlateThatHasOneOtherVoxel)
{
    Random random(2);
    const Plate plate = RandomPlate(random);
    for (std::size_t voxel = 0; voxel < 256; ++voxel) {
        Plate other = plate;
        other.rows[voxel / 16] = static_cast<std::uint16_t>(other.rows[voxel / 16] ^ 1U << voxel % 16);
        EXPECT_FALSE(plate == other);
    }
}

TEST(VoxelPlate, FillsBoxesOfAnyBounds)
{
    EXPECT_EQ(Picture("................ ..##. ..##."), Box({2, 1}, {3, 2}));
    Random random(3);
    const auto bound = [&]() -> std::int64_t {
        if (random.OneIn(10))
            return random.OneIn(2) ? std::numeric_limits<std::int64_t>::min() : std::numeric_limits<std::int64_t>::max();
        return random.Between(-3, 18);
    };
    for (int i = 0; i < 1000; ++i) {
        const std::array<std::int64_t, 2> lower{bound(), bound()};
        const std::array<std::int64_t, 2> upper{bound(), bound()};
        ASSERT_EQ(Box(lower, upper), PlateWhere([&](std::int64_t x, std::int64_t y) {
                      return lower[0] <= x && x <= upper[0] && lower[1] <= y && y <= upper[1];
                  }));
    }
}

TEST(VoxelPlate, HalvesFourPlatesIntoQuarters)
{
    const Plate empty;
    EXPECT_EQ(HalfResolution(Picture("##.............#  #..#"), Picture("#"), Picture("#"), empty),
              Picture("##.....##.......  ........ ........ ........ ........ ........ ........ ........ #"));
    Random random(4);
    for (int i = 0; i < 300; ++i) {
        const std::array fine{RandomPlate(random), RandomPlate(random), RandomPlate(random), RandomPlate(random)};
        ASSERT_EQ(HalfResolution(fine[0], fine[1], fine[2], fine[3]), PlateWhere([&](std::int64_t x, std::int64_t y) {
                      const Plate& quarter = fine[static_cast<std::size_t>(x / 8 + 2 * (y / 8))];
                      const std::int64_t fineX = 2 * (x % 8);
                      const std::int64_t fineY = 2 * (y % 8);
                      return quarter.Value({fineX, fineY}) || quarter.Value({fineX + 1, fineY}) ||
                             quarter.Value({fineX, fineY + 1}) || quarter.Value({fineX + 1, fineY + 1});
                  }));
    }
}

TEST(VoxelPlate, DoublesAQuarter)
{
    EXPECT_EQ(DoubleResolution(Picture(".#.....#..#....."), false, false), Picture("..##..........## ..##..........##"));
    EXPECT_EQ(DoubleResolution(Picture(".#.....#..#....."), true, false), Picture("....##.......... ....##.........."));
    Random random(5);
    for (int i = 0; i < 300; ++i) {
        const Plate coarse = RandomPlate(random);
        for (std::int64_t quarter = 0; quarter < 4; ++quarter) {
            ASSERT_EQ(DoubleResolution(coarse, quarter % 2 == 1, quarter / 2 == 1),
                      PlateWhere([&](std::int64_t x, std::int64_t y) {
                          return coarse.Value({x / 2 + 8 * (quarter % 2), y / 2 + 8 * (quarter / 2)});
                      }));
        }
    }
}

} // namespace
} // namespace brix
