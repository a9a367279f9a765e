// Sample points against their definition, cell by cell and floor by floor.
#include "Walks.h"
#include "support/Messages.h"
#include "support/RandomModels.h"
#include "support/ReferenceOperations.h"

#include <gtest/gtest.h>

#include <tuple>

namespace brix {
namespace {

using namespace tests;

std::vector<Triple> ExpectedPoints(const PathModel& path, std::int64_t spacing, int minDiameter)
{
    const Ground ground(path);
    const Axes& axes = ground.model.AxesRef();
    const std::int64_t lod = path.VoxelLOD();
    const ReferenceModel roomy = ReduceHorizontally(ground.model, minDiameter, std::nullopt, false);
    using Cell = std::array<std::int64_t, 2>; // y, x
    const auto cellOf = [&](const Triple& voxel) {
        const Triple centre = axes.VoxelCenter(voxel, lod);
        return Cell{FloorDivide(centre[1], spacing), FloorDivide(centre[0], spacing)};
    };
    using Order = std::array<std::int64_t, 3>; // y, x, z
    const auto orderOf = [](const Triple& voxel) { return Order{voxel[1], voxel[0], voxel[2]}; };
    std::map<std::pair<Cell, Order>, std::pair<std::pair<double, Order>, Triple>> best; // by floor: the nearest voxel
    for (const Triple& voxel : ground.voxels) {
        if (!roomy.Value(voxel)) continue;
        const Cell cell = cellOf(voxel);
        Order first = orderOf(voxel);
        for (const Triple& other : ground.Reached(voxel, [&](const Triple& v) { return cellOf(v) == cell; }))
            first = std::min(first, orderOf(other));
        const Triple centre = axes.VoxelCenter(voxel, lod);
        const auto off = [&](std::size_t i) { return static_cast<double>(2 * centre[i] - (2 * cell[1 - i] + 1) * spacing); };
        const std::pair candidate{std::pair{off(0) * off(0) + off(1) * off(1), orderOf(voxel)}, centre};
        const auto [floor, isNew] = best.try_emplace({cell, first}, candidate);
        if (!isNew) floor->second = std::min(floor->second, candidate);
    }
    std::vector<Triple> points;
    for (const auto& [floor, nearest] : best) points.push_back(nearest.second);
    return points;
}

TEST(SamplePoints, AreOneForEveryFloorOfEveryCell)
{
    std::size_t points = 0;
    for (std::uint64_t seed = 600; seed < 660; ++seed) {
        const RandomModel environment = MakeRandomModel(seed);
        const Extents& extents = environment.reference.ExtentsRef();
        const bool isPlan = extents.LowerIndices()[2] == extents.UpperIndices()[2];
        Random random(seed);
        const PathModel path(environment.voxels, environment.voxels.FinestLOD(), 1, isPlan ? 1 : 2, random.OneIn(2));
        const std::int64_t width = VoxelSpacing(path.VoxelLOD());
        const std::int64_t spacing = random.Between(width, 9 * width);
        const int minDiameter = static_cast<int>(random.Between(1, 3));
        const std::vector<Triple> expected = ExpectedPoints(path, spacing, minDiameter);
        EXPECT_EQ(path.GenerateSamplePoints(spacing, minDiameter), expected) << environment << ", spacing " << spacing;
        points += expected.size();
    }
    EXPECT_GT(points, 500U);
}

TEST(SamplePoints, ReportTheFirstArgumentThatBreaksItsRule)
{
    const Axes axes(1, {0, 0, 0}, 0, 0);
    const VoxelModel<bool> environment(Extents(axes, {0, 0, 0}, {199, 199, 0}, 1), 1);
    const PathModel path(environment, 1, 1, 1, false);
    constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
    const char* const tooCoarse =
        "The finest level of detail is too coarse to generate sample points with the specified spacing.";
    EXPECT_EQ(MessageOf([&] { path.GenerateSamplePoints(0, 0); }),
              "The minimum diameter used to generate sample points cannot be less than 1. The value encountered was 0.");
    for (const std::int64_t spacing : {std::int64_t{19999}, std::int64_t{0}, least})
        EXPECT_EQ(MessageOf([&] { path.GenerateSamplePoints(spacing, 1); }), tooCoarse) << spacing;
    EXPECT_EQ(
        MessageOf([&] { path.GenerateSamplePoints(NoLimit, 1); }),
        "Unable to generate sample points (required grid size of 461168601842738 exceeds limit of 100000). The spacing may be "
        "too long.");
    EXPECT_EQ(path.GenerateSamplePoints(20000, 1).size(), 40000U);
    EXPECT_EQ(path.GenerateSamplePoints(std::int64_t{100000} * 20000, 1),
              std::vector<Triple>{axes.VoxelCenter({199, 199, 0}, 1)});
    EXPECT_TRUE(path.GenerateSamplePoints(20000, NoLimit).empty());

    // two voxels far apart, so that the grid between them is large
    const VoxelModel<bool> wide(Extents(axes, {-2500, -2500, 0}, {2499, 2499, 0}, 0), 0);
    EXPECT_EQ(
        MessageOf([&] { PathModel(wide, 0, 1, 1, false).GenerateSamplePoints(40000, 1); }),
        "Unable to generate sample points (required grid size of 25000000 exceeds limit of 16777216). The spacing may be too "
        "short.");
}

} // namespace
} // namespace brix
