// Visibility against its definition (support/ReferenceSight.h), and what scenes must look like.
#include "visibility/Visibility.h"

#include "model/CheckInvariants.h"
#include "operations/BasicOperations.h"
#include "support/Messages.h"
#include "support/ReferenceSight.h"
#include "visibility/Sight.h"

#include <gtest/gtest.h>

#include <limits>

namespace brix {
namespace {

using namespace tests;

const Axes Frame(40000, {0, 0, 0}, 0, 0); // world units are base units

TEST(VisibilityFromDirection, EqualsTheDefinitionInTheSameDoubles)
{
    for (std::uint64_t seed = 1; seed <= 200; ++seed) {
        Random random(seed);
        const ReferenceModel reference = MakeFirst(random);
        const VoxelModel<bool> model = MakeModel(reference);
        const std::int64_t lod = random.Between(0, reference.FinestLOD());
        const ReferenceModel filled(model, lod);
        const Triple direction = RandomDirection(random);
        ReferenceDirection sight(filled, direction);
        for (const double threshold : SomeThresholds(random, sight, filled.ExtentsRef())) {
            EXPECT_EQ(Differences(VisibilityFromDirection(model, direction, lod, threshold), sight.Visible(threshold)), "")
                << "seed " << seed << ", direction " << Show(direction) << ", level " << lod << ", threshold " << threshold;
        }
    }
}

TEST(VisibilityFromPoint, EqualsTheDefinitionInTheSameDoubles)
{
    for (std::uint64_t seed = 1; seed <= 500; ++seed) {
        Random random(seed);
        const ReferenceModel reference = MakeFirst(random);
        const VoxelModel<bool> model = MakeModel(reference);
        const std::int64_t lod = random.Between(0, reference.FinestLOD());
        const PointCase view = RandomPointCase(random, model.ExtentsRef(lod));
        const ReferenceModel filled = view.autoAdjust
                                          ? Resize(reference, WorkingExtents(model.ExtentsRef(lod), view)).AtLevel(lod)
                                          : ReferenceModel(model, lod);
        ReferencePoint sight(filled, view);
        for (const double threshold : SomeThresholds(random, sight, filled.ExtentsRef())) {
            const ReferenceModel expected = sight.Visible(threshold);
            EXPECT_EQ(Differences(view.See(model, lod, threshold), view.autoAdjust ? AutoCrop(expected) : expected), "")
                << "seed " << seed << ", " << view << ", level " << lod << ", threshold " << threshold;
        }
    }
}

// Rooms of different heights with doors, windows and furniture, several stacks long along every axis.
ReferenceModel MakeRooms(const Extents& extents)
{
    const ReferenceModel empty(extents, extents.VoxelLOD(), extents.VoxelLOD());
    return empty.Where([](const Triple& voxel) {
        const auto [x, y, z] = voxel;
        const bool isWall = FloorDivide(x, 23) * 23 == x || FloorDivide(y, 31) * 31 == y || FloorDivide(z, 37) * 37 == z;
        const bool isDoor = (x + 2 * y) % 29 < 6 && z > -60 && z % 37 > 0 && z % 37 < 20;
        const bool isSolid = x > 20 && x < 60 && y < 0 && z < -20;
        return (isWall && !isDoor) || isSolid || (x * 7 + y * 5 + z * 3) % 401 == 0;
    });
}

TEST(Visibility, EqualsTheDefinitionInRooms)
{
    const Extents extents(Frame, {-20, -40, -70}, {65, 20, 40}, 3);
    const ReferenceModel rooms = MakeRooms(extents);
    const VoxelModel<bool> model = MakeModel(rooms);
    for (const Triple& direction : {Triple{2, 3, -4}, {-5, 1, 1}, {0, -3, 2}}) {
        ReferenceDirection sight(rooms, direction);
        EXPECT_EQ(Differences(VisibilityFromDirection(model, direction, 3, 0.25), sight.Visible(0.25)), "") << Show(direction);
    }
    Random random(7);
    for (const std::int64_t maxRadius : {std::int64_t{300'000}, Unlimited}) {
        PointCase view{{50'000, -31'000, 401'000}, maxRadius, false};
        ReferencePoint sight(rooms, view);
        for (int i = 0; i < 7; ++i) {
            EXPECT_EQ(Differences(view.See(model, 3, 0.25), sight.Visible(0.25)), "") << view;
            view.opening = RandomOpening(random);
            sight.LookThrough(view.opening);
        }
    }
}

// Mixes of values near 1 can round up beyond it, and what is carried on then shows in the last bit.
TEST(VisibilityFromDirection, NeverCarriesMoreThanFullSight)
{
    const Extents extents(Frame, {0, 0, 0}, {29, 29, 29}, 2);
    const ReferenceModel filled = ReferenceModel(extents, 2, 2).Where([](const Triple& voxel) {
        return voxel == Triple{1, 1, 1};
    });
    const VoxelModel<bool> model = MakeModel(filled);
    for (std::uint64_t seed = 1; seed <= 40; ++seed) {
        Random random(seed);
        const Triple direction{random.Between(1, 99), random.Between(1, 99), random.Between(1, 99)};
        EXPECT_EQ(Differences(VisibilityFromDirection(model, direction, 2, 1), ReferenceDirection(filled, direction).Visible(1)),
                  "")
            << Show(direction);
    }
}

// From far away, the model lies in one direction.
TEST(VisibilityWithin, LooksFromAnywhereInAnyDirection)
{
    const VoxelModel<bool> model = MakeModel(ReferenceModel(Extents(Frame, {-20, -20, -20}, {19, 19, 19}, 2), 2, 2));
    constexpr std::int64_t all = 40 * 40 * 40;
    for (const std::int64_t far : {Highest64, Lowest64, std::int64_t{1} << 40}) {
        const std::int64_t away = far < 0 ? Lowest64 : Highest64;
        const std::int64_t towards = far < 0 ? Highest64 : Lowest64;
        for (const auto& [direction, count] : {std::pair{towards, all}, {away, std::int64_t{0}}}) {
            const PointCase cone{{far, far, far}, Unlimited, false, {Opening::Cone, {direction, direction, direction}, 1e-2}};
            const PointCase wide{{far, far, far}, Highest64, false, {Opening::Cone, {direction, direction, direction}, 350}};
            const PointCase pyramid{{0, far, 0}, Unlimited, false, {Opening::Pyramid, {0, direction, 0}, 1e-2, 179}};
            EXPECT_EQ(CountFilled(cone.See(model, 2, 0.5), 2), count) << cone;
            EXPECT_EQ(CountFilled(wide.See(model, 2, 0.5), 2), count) << wide;
            EXPECT_EQ(CountFilled(pyramid.See(model, 2, 0.5), 2), count) << pyramid;
        }
    }
    // As narrow as angles can be: the axis. Almost everything: all but the axis behind.
    const Triple centre{5000, 5000, 20'000};
    const double narrow = std::numeric_limits<double>::denorm_min();
    for (const auto& [angle, count] : {std::pair{narrow, 20}, {std::nextafter(360.0, 0), all - 20}}) {
        const PointCase cone{centre, Unlimited, false, {Opening::Cone, {1, 0, 0}, angle}};
        EXPECT_EQ(CountFilled(cone.See(model, 2, 1), 2), count) << cone;
    }
    const PointCase slit{centre, Unlimited, false, {Opening::Pyramid, {0, -1, 0}, std::nextafter(180.0, 0), narrow}};
    EXPECT_EQ(CountFilled(slit.See(model, 2, 1), 2), 40 * 21);
    const PointCase pipe{centre, Unlimited, false, {Opening::Pyramid, {1, 0, 0}, narrow, narrow}};
    EXPECT_EQ(CountFilled(pipe.See(model, 2, 1), 2), 20);
}

// Here (5m + 2)^2 = (4m + 1)^2 + (3m + 2)^2 - 1: the voxel whose centre is 3m + 2 beyond the point along x, and 4m + 1 along y,
// lies just outside the radius 5m + 2. As doubles, the squares are equal.
TEST(VisibilityFromPoint, MeasuresLargeRadiiExactly)
{
    constexpr std::int64_t m = 500'000'000;
    const VoxelModel<bool> model = MakeModel(ReferenceModel(Extents(Frame, {0, 0, 0}, {1, 0, 0}, 0), 0, 0));
    const Triple centre = model.AxesRef().VoxelCenter({1, 0, 0}, 0);
    const Triple point = Minus(centre, {3 * m + 2, 4 * m + 1, 0});
    for (const auto& [radius, count] : {std::pair{5 * m + 2, 1}, {5 * m + 3, 2}, {2 * m, 0}}) {
        EXPECT_EQ(CountFilled(VisibilityFromPoint(model, point, 0, radius, 0.5, false), 0), count) << radius;
    }
}

TEST(VisibilityFromPoint, StaysInTheIndexSpace)
{
    const Extents extents(Frame, {24'990, 0, 0}, {24'999, 9, 9}, 0);
    const VoxelModel<bool> model = MakeModel(ReferenceModel(extents, 0, 0));
    const auto visible = [&](const Triple& point, std::int64_t maxRadius) {
        return VisibilityFromPoint(model, point, 0, maxRadius, 0.5, true);
    };
    const Triple corner{999'980'000, 20'000, 20'000}; // the centre of voxel (24999, 0, 0)
    EXPECT_EQ(
        Differences(ReferenceModel(visible(corner, 40'000), 0),
                    ReferenceModel(Extents(Frame, {24'998, -1, -1}, {24'999, 1, 1}, 0), 0, 0).Where([](const Triple& voxel) {
                        return (24'999 - voxel[0]) + std::abs(voxel[1]) + std::abs(voxel[2]) <= 1;
                    })),
        "");
    EXPECT_EQ(CountFilled(visible({Highest64, 0, 0}, Unlimited - 1), 0), 0);
    EXPECT_EQ(CountFilled(visible({Lowest64, Lowest64, Highest64}, 0), 0), 0);
    EXPECT_EQ(MessageOf([&] {
                  visible({1'000'000'000, 0, 0}, Unlimited);
              }),
              "The upper extent in the X direction must be less than 25000. The value encountered was 25000.");
}

// Portable code and the fastest code that this processor runs.
TEST(Visibility, IsTheSameForAllInstructionSets)
{
    const VoxelModel<bool> model = MakeModel(MakeRooms(Extents(Frame, {-20, -40, -70}, {75, 35, 90}, 3)));
    const Extents& extents = model.ExtentsRef(3);
    const auto compare = [&](const auto& mark) {
        VoxelModel<bool> portable(extents, 3);
        VoxelModel<bool> fastest(extents, 3);
        mark(portable, InstructionSet::Portable);
        mark(fastest, FastestInstructionSet());
        EXPECT_EQ(Differences(fastest, portable), "");
        EXPECT_GT(CountFilled(portable, 3), 1000);
    };
    compare([&](VoxelModel<bool>& result, InstructionSet set) {
        sight::MarkFromDirection(result, model, {3, -1, -2}, 3, 0.3, set);
    });
    compare([&](VoxelModel<bool>& result, InstructionSet set) {
        const sight::PointOfView view{{12'000, 34'000, 56'000}, 0.3, extents.LowerIndices(), extents.UpperIndices()};
        sight::MarkFromPoint(result, model, view, 3, set);
    });
}

TEST(Visibility, RefusesArgumentsInOrder)
{
    const VoxelModel<bool> model = MakeModel(ReferenceModel(Extents(Frame, {0, 0, 0}, {1, 1, 1}, 2), 2, 2));
    const std::string none = "(nothing was thrown)";
    const std::string zero = "The direction for visibility computation cannot be [0, 0, 0].";
    const std::string level = "The level of detail for visibility computation ";
    const std::string negative = level + "cannot be negative. The value encountered was -1.";
    const std::string beyond = level +
                               "must not exceed the finest level of detail in the voxel model. The value encountered was 3. The "
                               "finest level of detail in the voxel model is 2.";
    const std::string radius = "The maximum radius for visibility computation cannot be negative. The value encountered was -1.";
    const std::string cone = "The angle of the cone for visibility computation ";
    const std::string pyramid = " angle of the pyramid for visibility computation must be ";
    const Triple up{0, 0, 1};
    const auto along = [&](const Triple& direction, std::int64_t lod) {
        return MessageOf([&] { VisibilityFromDirection(model, direction, lod, 0.5); });
    };
    const auto seen = [&](const Opening& opening, std::int64_t lod, std::int64_t maxRadius) {
        return MessageOf([&] { PointCase{{0, 0, 0}, maxRadius, false, opening}.See(model, lod, 0.5); });
    };
    const std::pair<std::string, std::string> cases[]{
        {along({0, 0, 0}, -1), zero},
        {along(up, -1), negative},
        {along(up, 3), beyond},
        {along({0, 0, Lowest64}, 2), none},
        {seen({}, -1, -1), negative},
        {seen({}, 3, -1), beyond},
        {seen({}, 2, -1), radius},
        {seen({}, 2, Highest64), none},
        {seen({Opening::Cone, {0, 0, 0}, 0}, -1, -1), zero},
        {seen({Opening::Cone, up, 0}, -1, -1), cone + "must be greater than 0. The value encountered was 0."},
        {seen({Opening::Cone, up, -NotANumber}, -1, -1), cone + "must be greater than 0. The value encountered was NaN."},
        {seen({Opening::Cone, up, 360.5}, -1, -1), cone + "cannot be greater than 360. The value encountered was 360.5."},
        {seen({Opening::Cone, up, 360}, -1, -1), negative},
        {seen({Opening::Cone, up, 360}, 2, -1), radius},
        {seen({Opening::Pyramid, {0, 0, 0}, 0, 0}, 3, -1), zero},
        {seen({Opening::Pyramid, up, -1e300, 0}, 3, -1),
         "The horizontal" + pyramid + "greater than 0. The value encountered was -1e+300."},
        {seen({Opening::Pyramid, up, 180, 0}, 3, -1),
         "The horizontal" + pyramid + "less than 180. The value encountered was 180."},
        {seen({Opening::Pyramid, up, 90, 0}, 3, -1), "The vertical" + pyramid + "greater than 0. The value encountered was 0."},
        {seen({Opening::Pyramid, up, 90, 1 / 0.0}, 3, -1),
         "The vertical" + pyramid + "less than 180. The value encountered was inf."},
        {seen({Opening::Pyramid, up, 90, 90}, 3, -1), beyond},
        {seen({Opening::Pyramid, up, 90, 90}, 2, -1), radius}};
    for (const auto& [message, expected] : cases) EXPECT_EQ(message, expected);
}

} // namespace
} // namespace brix
