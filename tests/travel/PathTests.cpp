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

void ExpectWay(const Ground& ground, const DistanceField& field, const Triple& source, const Triple& target,
               const std::string& what)
{
    const Axes& axes = field.AxesRef();
    const std::int64_t lod = field.VoxelLOD();
    const Path way(field, axes.VoxelCenter(target, lod));
    EXPECT_EQ(way.Length(), field.Distance(axes.VoxelCenter(target, lod))) << what;
    EXPECT_NEAR(LengthOf(way.Points()), static_cast<double>(way.Length()), 0.51) << what;
    EXPECT_EQ(way.Points().front(), axes.VoxelCenter(target, lod)) << what;
    EXPECT_EQ(way.Points().back(), axes.VoxelCenter(source, lod)) << what;

    EXPECT_EQ(CheckInvariants(way.Voxels(), lod), "") << what;
    std::set<Triple> walked{source};
    for (std::size_t i = 1; i < way.Points().size(); ++i) {
        const std::vector<Triple> piece =
            ground.StraightPiece(axes.ContainingVoxel(way.Points()[i - 1], lod), axes.ContainingVoxel(way.Points()[i], lod));
        EXPECT_FALSE(piece.empty()) << what; // each voxel of a piece is a step from the next
        walked.insert(piece.begin(), piece.end());
    }
    const std::vector<Triple> voxels = Ground(way.Voxels()).voxels;
    EXPECT_EQ(std::set<Triple>(voxels.begin(), voxels.end()), walked) << what;
}

// Here a bend is improved after ways have been led around it, which one ground in thousand shows.
TEST(Path, IsAsLongAsTheFieldSaysBehindBendsThatWereImproved)
{
    for (const std::uint64_t seed : {901U, 2913U}) {
        const RandomGround made = MakeRandomGround(AllTerrains[seed % AllTerrains.size()], seed);
        const PathModel path(made.environment, made.environment.FinestLOD(), 1, made.agentHeight, true);
        const Ground ground(path);
        const Triple source = ground.voxels[Random(seed).Bits() % ground.voxels.size()];
        const auto centre = [&](const Triple& voxel) { return made.environment.AxesRef().VoxelCenter(voxel, path.VoxelLOD()); };
        const DistanceField field(path, {centre(source)}, NoLimit);
        field.ForEachReachable([&](const Triple& voxel, std::int64_t distance) {
            EXPECT_NEAR(LengthOf(Path(field, centre(voxel)).Points()), static_cast<double>(distance), 0.51) << seed;
        });
    }
}

TEST(Path, LeadsOverTheGroundStepByStepAndIsAsLongAsTheFieldSays)
{
    std::int64_t ways = 0;
    for (std::uint64_t seed = 400; seed < 700; ++seed) {
        const RandomGround made = MakeRandomGround(AllTerrains[seed % AllTerrains.size()], seed);
        const VoxelModel<bool> environment = seed % 3 == 0 ? MakeRandomModel(seed).voxels : made.environment;
        const Extents extents = environment.ExtentsRef(0);
        const bool isPlan = extents.LowerIndices()[2] == extents.UpperIndices()[2];
        const PathModel path(environment, environment.FinestLOD(), 1, isPlan ? 1 : 2, seed % 2 == 0);
        const Ground ground(path);
        Random random(seed);
        const auto anywhere = [&] { return ground.voxels[random.Bits() % ground.voxels.size()]; };
        for (int i = 0; i < 2 && !ground.voxels.empty(); ++i) {
            const Triple source = anywhere();
            const DistanceField field(path, {path.TraversableVoxels().AxesRef().VoxelCenter(source, path.VoxelLOD())}, NoLimit);
            field.ForEachReachable([&](const Triple& target, std::int64_t) {
                if (!random.OneIn(5)) return;
                ExpectWay(ground, field, source, target, "seed " + std::to_string(seed));
                ++ways;
            });
        }
    }
    EXPECT_GT(ways, 2000);
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
