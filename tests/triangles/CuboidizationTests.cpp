// The boxes of a model against their definition, voxel by voxel.
#include "triangles/Cuboidization.h"

#include "operations/SolidOperations.h"
#include "support/RandomModels.h"

#include <gtest/gtest.h>

#include <limits>

namespace brix {

std::ostream& operator<<(std::ostream& output, const VoxelCuboid& cuboid)
{
    for (std::size_t i = 0; i < 3; ++i) output << cuboid.lower[i] << ".." << cuboid.upper[i] << " ";
    return output;
}

namespace {

using namespace tests;
using Cuboids = std::vector<VoxelCuboid>;

const Axes PlainAxes(40000, {0, 0, 0}, 0, 0);

// Whether a row has exactly the run x0..x1, and a height exactly the rectangle above y0..y1 of such runs.
bool HasRun(const ReferenceModel& model, std::int64_t x0, std::int64_t x1, std::int64_t y, std::int64_t z)
{
    if (model.Value({x0 - 1, y, z}) || model.Value({x1 + 1, y, z})) return false;
    for (std::int64_t x = x0; x <= x1; ++x) {
        if (!model.Value({x, y, z})) return false;
    }
    return true;
}

bool HasRectangle(const ReferenceModel& model, std::int64_t x0, std::int64_t x1, std::int64_t y0, std::int64_t y1, std::int64_t z)
{
    if (HasRun(model, x0, x1, y0 - 1, z) || HasRun(model, x0, x1, y1 + 1, z)) return false;
    for (std::int64_t y = y0; y <= y1; ++y) {
        if (!HasRun(model, x0, x1, y, z)) return false;
    }
    return true;
}

Cuboids CuboidsOf(const ReferenceModel& model)
{
    Cuboids cuboids;
    model.ForEachVoxel([&](const Triple& voxel) {
        const auto [x, y, z] = voxel;
        if (!model.Value(voxel) || model.Value({x - 1, y, z})) return;
        VoxelCuboid cuboid{voxel, voxel};
        auto& [x1, y1, z1] = cuboid.upper;
        while (model.Value({x1 + 1, y, z})) ++x1;
        if (HasRun(model, x, x1, y - 1, z)) return;
        while (HasRun(model, x, x1, y1 + 1, z)) ++y1;
        if (HasRectangle(model, x, x1, y, y1, z - 1)) return;
        while (HasRectangle(model, x, x1, y, y1, z1 + 1)) ++z1;
        cuboids.push_back(cuboid);
    });
    return cuboids;
}

TEST(Cuboidization, MergesRunsThenRectanglesThenBoxes)
{
    for (const RandomModel& random : RandomModels(700, 150)) {
        for (const ReferenceModel& level : random.reference.AllLevels()) {
            ASSERT_EQ(CuboidizeVoxelModel(random.voxels, level.VoxelLOD()), CuboidsOf(level)) << random;
        }
    }
}

TEST(Cuboidization, MakesOneBoxOfAThousandMillionVoxels)
{
    const Extents extents(PlainAxes, {-500, -123, -400}, {499, 876, 599}, 5);
    const VoxelModel<bool> box = Invert(VoxelModel<bool>(extents, 5));
    EXPECT_EQ(CuboidizeVoxelModel(box, 5), (Cuboids{{{-500, -123, -400}, {499, 876, 599}}}));
    EXPECT_EQ(CuboidizeVoxelModel(box, 0), (Cuboids{{{-16, -4, -400}, {15, 27, 599}}}));
}

TEST(Cuboidization, WorksAtTheLimitsOfTheIndexSpace)
{
    for (const std::int64_t place : {-800000, 799999}) {
        const Triple voxel{place, place, place < 0 ? -320000 : 319999};
        const Axes axes(1, {0, 0, 0}, 0, 5);
        const VoxelModel<bool> model = Invert(VoxelModel<bool>(Extents(axes, voxel, voxel, 5), 5));
        EXPECT_EQ(CuboidizeVoxelModel(model, 5), (Cuboids{{voxel, voxel}}));
    }
}

TEST(Cuboidization, GivesTheLowerCornerAndTheSizeInTheWorld)
{
    const Axes axes(0.5, {-3, 10, 0.25}, 90, 4);
    const VoxelCuboid cuboid{{-4, 6, 8}, {-1, 7, 8}};
    const std::array<double, 6> expected{-3 - 6 * 0.125, 10 - 4 * 0.125, 0.25 + 8 * 0.03125, 4 * 0.125, 2 * 0.125, 0.03125};
    const std::array<double, 6> world = ToWorldCuboid(cuboid, axes, 2);
    for (std::size_t i = 0; i < 6; ++i) EXPECT_NEAR(world[i], expected[i], 1e-12) << i;
    constexpr std::int64_t highest = std::numeric_limits<std::int64_t>::max();
    EXPECT_GT(ToWorldCuboid({{-highest, 0, 0}, {highest, highest, highest}}, axes, 0)[3], 0); // held, not overflown
}

} // namespace
} // namespace brix
