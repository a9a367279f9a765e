// .vdb files that brix writes, as OpenVDB reads them: voxels, transform and class of the grid.
#include "tools/ProgramFixture.h"

#include <openvdb/openvdb.h>

namespace brix {
namespace {

openvdb::FloatGrid::Ptr Read(const fs::path& filePath)
{
    openvdb::initialize();
    openvdb::io::File file(filePath.string());
    file.open();
    const auto grid = openvdb::gridPtrCast<openvdb::FloatGrid>(file.readGrid("density"));
    EXPECT_EQ(file.getGrids()->size(), 1U);
    return grid;
}

VoxelModel<bool> LoadSaved(const fs::path& filePath)
{
    std::ifstream file(filePath, std::ios::binary);
    return LoadModel(file);
}

openvdb::Coord At(std::int64_t x, std::int64_t y, std::int64_t z)
{
    return {static_cast<int>(x), static_cast<int>(y), static_cast<int>(z)};
}

TEST_F(Program, WritesGridsThatOpenVdbReadsVoxelByVoxel)
{
    MakeHouse();
    const std::string grid = " --voxel 0.14 --vertical-lod 3 --rotation 30 --origin 0.01 0.02 0.03 ";
    if (Run("convert house.stl house.vdb" + grid).error.find("OpenVDB") != std::string::npos)
        GTEST_SKIP() << "this brix was made without OpenVDB";
    for (const std::string steps : {"", "fill-exposed ", "invert "}) // a shell, and what is solid
        for (const std::string level : {"4", "2", "0"}) {
            const Outcome outcome =
                Run("run house.stl" + grid + "-- " + steps + "write house.brix write " + level + "=house.vdb");
            ASSERT_EQ(outcome.exitCode, 0) << outcome.error;
            const VoxelModel<bool> model = LoadSaved(folder_ / "house.brix");
            const std::int64_t lod = std::stoll(level);
            const auto read = Read(folder_ / "house.vdb");
            ASSERT_EQ(read->getGridClass(), openvdb::GRID_FOG_VOLUME);
            ASSERT_EQ(read->activeVoxelCount(), static_cast<openvdb::Index64>(CountFilled(model, lod))) << steps << level;
            const auto accessor = read->getConstAccessor();
            ForEachFilledRun(model, lod, [&](const FilledRun& run) {
                for (std::int64_t x = run.lowerX; x <= run.upperX; ++x) {
                    ASSERT_TRUE(accessor.isValueOn(At(x, run.y, run.z)));
                    ASSERT_EQ(accessor.getValue(At(x, run.y, run.z)), 1.0F);
                }
            });
            for (const Triple& voxel : {Triple{0, 0, 0}, Triple{10, -3, 20}}) {
                const auto expected = model.AxesRef().ToWorldCoordinates(model.AxesRef().VoxelCenter(voxel, lod));
                const openvdb::Vec3d place = read->indexToWorld(At(voxel[0], voxel[1], voxel[2]));
                for (int i = 0; i < 3; ++i) EXPECT_NEAR(place[i], expected[static_cast<std::size_t>(i)], 1e-6);
            }
        }
    // Where the world of the files has Y up, so has that of the grid.
    ASSERT_EQ(Run("scene building --empty -o turned.stl").exitCode, 0);
    ASSERT_EQ(Run("convert turned.stl up.vdb up.brix --voxel 0.1 --swap-yz").exitCode, 0);
    const Axes axes = LoadSaved(folder_ / "up.brix").AxesRef();
    const auto [x, y, z] = axes.ToWorldCoordinates(axes.VoxelCenter({1, 2, 3}, 4));
    const openvdb::Vec3d place = Read(folder_ / "up.vdb")->indexToWorld(At(1, 2, 3));
    EXPECT_NEAR(place[0], x, 1e-6);
    EXPECT_NEAR(place[1], z, 1e-6);
    EXPECT_NEAR(place[2], -y, 1e-6);
}

} // namespace
} // namespace brix
