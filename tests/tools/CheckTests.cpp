// The command check, and what the other commands say of damaged files.
#include "ProgramFixture.h"

namespace brix {
namespace {

const std::string box = [] {
    std::ostringstream file;
    const auto corner = [](int bits) {
        return std::array<double, 3>{double(bits & 1), double(bits >> 1 & 1), double(bits >> 2 & 1)};
    };
    std::vector<WorldTriangle> triangles;
    for (const auto& [a, b, c, d] :
         {std::array{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4}, {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}}) {
        triangles.push_back({corner(a), corner(b), corner(c)});
        triangles.push_back({corner(a), corner(c), corner(d)});
    }
    SaveTrianglesToSTL(file, triangles, StlVariant::Binary, false);
    return file.str();
}();

TEST_F(Program, WritesMeshesThatItFindsSound)
{
    ASSERT_EQ(Run("scene building --storeys 2 -o house.stl").exitCode, 0);
    ASSERT_EQ(Run("run house.stl --voxels 200 -- write-mesh --smooth 2 smooth.stl keep-largest write-mesh blocky.stl").exitCode,
              0);
    EXPECT_EQ(Run("check smooth.stl").exitCode, 0) << Run("check smooth.stl").output;
    EXPECT_NE(Run("check blocky.stl --json").output.find("\"open\": 0"), std::string::npos); // but edges of four triangles
}

TEST_F(Program, ChecksFilesAndEndsWithWhatItFound)
{
    Write("box.stl", box);
    Write("cut.stl", box.substr(0, 600));
    Write("open.stl", std::string(box).replace(80, 1, "\x0b").substr(0, 634));
    Write("text.stl",
          "solid a\nfacet normal 0 0 1 outer loop\nvertex 0 0 0\nvertex 1,5 0 0\nvertex 0 x 0\nendloop\nendsolid a\n");
    Write("none.stl", "v 1 2 3\n");

    const Outcome sound = Run("check box.stl");
    EXPECT_EQ(sound.exitCode, 0) << sound.output;
    EXPECT_EQ(sound.error, "");
    EXPECT_EQ(sound.output,
              "file      box.stl\nformat    binary STL\nbytes     684\ntriangles 12 read of 12 announced\n"
              "lower     0 0 0\nupper     1 1 1\nsize      1 x 1 x 1\n"
              "unit      no guess. Its longest side is 1: a room in metres as well as a part in centimetres or inches.\n"
              "vertices  8\nedges     18, each of two triangles\nshells    1\nvolume    1\nresult    sound\n");

    const Outcome cut = Run("check cut.stl");
    EXPECT_EQ(cut.exitCode, 1);
    EXPECT_EQ(cut.error, "");
    for (const char* line : {"triangles 10 read of 12 announced\n",
                             "finding   Byte 80 of \"cut.stl\": 12 triangles are announced; the file ends after 10 whole ones.\n",
                             "finding   Byte 584 of \"cut.stl\": 16 bytes after the last whole triangle were left.\n",
                             "edges     17, of which 4 open\n", "volume    none: the surface is open\n",
                             "result    not sound: 2 findings, not closed\n"})
        EXPECT_NE(cut.output.find(line), std::string::npos) << line << cut.output;

    EXPECT_EQ(Run("check open.stl").exitCode, 1);
    EXPECT_EQ(Run("check open.stl --skip-surface").exitCode, 0) << "each of its triangles is as the file says";
    EXPECT_NE(Run("check text.stl --list 1").output.find("others    1 finding more\n"), std::string::npos);

    const Outcome all = Run("check box.stl none.stl cut.stl missing.stl");
    EXPECT_EQ(all.exitCode, 2);
    EXPECT_EQ(all.error, "brix: The file \"none.stl\" is no STL file: its text begins with \"v\" instead of \"solid\".\n");
    EXPECT_NE(all.output.find("result    not sound"), std::string::npos) << "the others are checked all the same";
    EXPECT_NE(all.output.find("result    unreadable: Failed to open STL file \"missing.stl\": No such"), std::string::npos);
}

TEST_F(Program, TellsProgramsWhatItFound)
{
    Write("cut.stl", box.substr(0, 600));
    const Outcome outcome = Run("check cut.stl --json");
    EXPECT_EQ(Reported(outcome, "\"exitCode\": (\\d+)"), 1);
    for (const char* fact : {"\"announced\": 12", "\"read\": 10", "\"bytesLeft\": 16", "\"effect\": \"dropped\"", "\"open\": 4",
                             "\"closed\": false", "\"sound\": false"})
        EXPECT_NE(outcome.output.find(fact), std::string::npos) << fact << outcome.output;
}

TEST_F(Program, ReadsDamagedFilesWithOneWarning)
{
    Write("cut.stl", box.substr(0, 600));
    Write("named.stl", std::string(box).replace(0, 6, "solid "));
    const Outcome cut = Run("voxelize cut.stl --voxel 0.02 -o v.stl");
    EXPECT_EQ(cut.exitCode, 0);
    EXPECT_EQ(cut.error, "brix: warning: Byte 80 of \"cut.stl\": 12 triangles are announced; the file ends after 10 whole ones. "
                         "brix check lists 1 more finding.\n");
    EXPECT_NE(Run("info cut.stl").output.find("findings  2, which brix check lists\n"), std::string::npos);
    const Outcome named = Run("voxelize named.stl --voxel 0.02 -o v.stl");
    EXPECT_EQ(named.error, "") << "it is binary, whatever its first word says";
    EXPECT_NE(named.output.find("12 triangles"), std::string::npos);
}

} // namespace
} // namespace brix
