// Ways back: they lead over the ground, step by step, and are as long as the field says.
#include "travel/Path.h"

#include "Walks.h"
#include "model/CheckInvariants.h"
#include "support/Messages.h"
#include "support/RandomModels.h"

#include <gtest/gtest.h>

namespace brix {
namespace {

using namespace tests;

double LengthOf(const std::vector<Triple>& points)
{
    double length = 0;
    for (std::size_t i = 1; i < points.size(); ++i) {
        const Triple piece = Minus(points[i], points[i - 1]);
        length += std::hypot(piece[0], piece[1], piece[2]);
    }
    return length;
}

// Whether steps within a set of voxels lead to all of them.
bool IsConnected(const Ground& ground, const std::vector<Triple>& voxels)
{
    const std::set<Triple> all(voxels.begin(), voxels.end());
    return ground.Reached(voxels.front(), [&](const Triple& v) { return all.count(v) != 0; }) == all;
}

void ExpectWay(const PathModel& path, const DistanceField& field, const Triple& source, const Triple& target,
               const std::string& what)
{
    const Ground ground(path);
    const Axes& axes = field.AxesRef();
    const std::int64_t lod = path.VoxelLOD();
    const Path way(field, axes.VoxelCenter(target, lod));
    EXPECT_EQ(way.Length(), field.Distance(axes.VoxelCenter(target, lod))) << what;
    EXPECT_NEAR(LengthOf(way.Points()), static_cast<double>(way.Length()), 0.51) << what;
    EXPECT_EQ(way.Points().front(), axes.VoxelCenter(target, lod)) << what;
    EXPECT_EQ(way.Points().back(), axes.VoxelCenter(source, lod)) << what;

    EXPECT_EQ(CheckInvariants(way.Voxels(), lod), "") << what;
    const ReferenceModel voxels(way.Voxels(), lod);
    std::vector<Triple> walked;
    voxels.ForEachVoxel([&](const Triple& v) {
        if (voxels.Value(v)) walked.push_back(v);
    });
    for (const Triple& voxel : walked) EXPECT_TRUE(ground.model.Value(voxel)) << what;
    EXPECT_TRUE(voxels.Value(source) && voxels.Value(target)) << what;
    EXPECT_TRUE(IsConnected(ground, walked)) << what;
    for (std::size_t i = 1; i < way.Points().size(); ++i) {
        const Triple from = axes.ContainingVoxel(way.Points()[i - 1], lod);
        const Triple to = axes.ContainingVoxel(way.Points()[i], lod);
        EXPECT_TRUE(voxels.Value(to)) << what;
        EXPECT_TRUE(path.AgentHeightOffset() > 1 || ground.Sees(from, to)) << what;
    }
}

TEST(Path, LeadsOverTheGroundAndIsAsLongAsTheFieldSays)
{
    std::int64_t ways = 0;
    for (std::uint64_t seed = 400; seed < 520; ++seed) {
        const RandomModel environment = MakeRandomModel(seed);
        const Extents& extents = environment.reference.ExtentsRef();
        const bool isPlan = extents.LowerIndices()[2] == extents.UpperIndices()[2];
        const PathModel path(environment.voxels, environment.voxels.FinestLOD(), 1, isPlan ? 1 : 2, false);
        const Ground ground(path);
        Random random(seed);
        const auto anywhere = [&] { return ground.voxels[random.Bits() % ground.voxels.size()]; };
        for (int i = 0; i < 4 && !ground.voxels.empty(); ++i) {
            const Triple source = anywhere();
            const DistanceField field(path, {path.TraversableVoxels().AxesRef().VoxelCenter(source, path.VoxelLOD())}, NoLimit);
            const std::set<Triple> reached = ground.Reached(source, [](const Triple&) { return true; });
            const Triple target = *std::next(reached.begin(), random.Between(0, static_cast<std::int64_t>(reached.size()) - 1));
            ExpectWay(path, field, source, target, "seed " + std::to_string(seed));
            ExpectWay(path, field, source, field.FarthestVoxel(), "farthest, seed " + std::to_string(seed));
            ways += target != source;
        }
    }
    EXPECT_GT(ways, 100);
}

TEST(Path, MergesPiecesThatFollowEachOtherStraight)
{
    const Axes axes(1, {0, 0, 0}, 0, 0);
    const VoxelModel<bool> environment = MakeModel(DrawnPlan(axes, "....# ##..# .#... .#.#. ...#."));
    const PathModel path(environment, 0, 1, 1, false);
    const DistanceField field(path, {{0, 4 * 40000, 0}}, NoLimit);
    const Path way(field, axes.VoxelCenter({4, 0, 0}, 0));
    const auto at = [&](std::int64_t x, std::int64_t y) { return axes.VoxelCenter({x, y, 0}, 0); };
    EXPECT_EQ(way.Points(), (std::vector<Triple>{at(4, 0), at(4, 1), at(1, 4), at(0, 4)}));
    EXPECT_EQ(Path(field, {0, 4 * 40000, 0}).Points(), std::vector<Triple>{at(0, 4)});
}

TEST(Path, ReportsATargetThatCannotBeReached)
{
    const Axes axes(1, {0, 0, 0}, 0, 0);
    const VoxelModel<bool> environment = MakeModel(DrawnPlan(axes, "..#.."));
    const DistanceField field(PathModel(environment, 0, 1, 1, false), {{0, 0, 0}}, NoLimit);
    for (const Triple& point : {Triple{2 * 40000, 0, 0}, Triple{4 * 40000, 0, 0}, Triple{-1, 0, 0}, Triple{NoLimit, 0, 0}}) {
        EXPECT_EQ(MessageOf([&] { Path(field, point); }),
                  "The point used to construct a path cannot be reached from the sources of the distance field.");
    }
}

} // namespace
} // namespace brix
