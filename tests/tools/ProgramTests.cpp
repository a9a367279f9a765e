// The program brix as a user meets it: exit codes, one-line errors, and files that hold what the report says.
#ifdef BRIX_PROGRAM
#include "ProgramFixture.h"

#include <scenes/Building.h>

namespace brix {
namespace {

TEST_F(Program, TellsWrongUsageInOneLineAndEndsWithTwo)
{
    const std::vector<std::pair<std::string, std::string>> cases{
        {"", "A command is required: brix --help lists them."},
        {"melt house.stl", "not expected: "},
        {"info", "input is required"},
        {"info house.stl --deep", "The following argument was not expected: --deep"},
        {"voxelize house.stl -o v.stl",
         "The size of the voxels is told by one of --voxel (their edge), --voxels (how many along the longest side) and --width"},
        {"voxelize house.stl --width 1", "--output is required"},
        {"voxelize house.stl -o v.stl -w wide", "--width"},
        {"voxelize house.stl -o v.stl -w 0", "The width of a voxel must be a positive number. The value encountered was 0."},
        {"voxelize house.stl -o v.stl -w nan", "\"nan\" is not a finite number."},
        {"voxelize house.stl -o v.stl -w 1 --voxel 1", "The size of the voxels is told by one of"},
        {"voxelize house.stl -o v.stl --voxels 0",
         "The number of voxels along the longest side must be a positive number. The value encountered was 0."},
        {"voxelize house.stl -o v.stl -w 1 --lod ''", "\"\" is not a finite number."},
        {"voxelize house.stl -o 99999999999999999999=v.stl -w 1", "Level 99999999999999999999 of the output"},
        {"voxelize house.stl -o v.stl -o ./v.stl -w 1", "The output \"./v.stl\" is given twice."},
        {"voxelize house.stl -o house.stl -w 1", "The file \"house.stl\" is both input and output."},
        {"travel house.stl -w 1 --from 0 0 0 --floor nan -o t.png", "\"nan\" is not a finite number."},
        {"travel house.stl -w 1 --from 0 0 0 --eye nan -o t.png", "\"nan\" is not a finite number."},
        {"scene city --seed 99999999999999999999 -o c.stl", "\"99999999999999999999\" does not fit 64 bits."},
        {"voxelize house.stl -o v.stl -w 1 --lod 6",
         "The finest level of detail in a voxel model must be less than 6. The value encountered was 6."},
        {"voxelize house.stl -o v.stl -w 1 --vertical-lod 6",
         "The vertical level of detail for a set of axes must be less than 6. The value encountered was 6."},
        {"voxelize house.stl -o 3=v.stl -w 1 --lod 2",
         "Level 3 of the output \"3=v.stl\" is not among the levels 0..2 of the model."},
        {"slice house.stl -o s.png -w 1 --at 0.7", "A slice is given as x=NUMBER, y=NUMBER or z=NUMBER, not as \"0.7\"."},
        {"slice house.stl -o s.png -w 1 --at z=1 --lod 2 --level 3",
         "The level of the slices is beyond the finest level of the model."},
        {"scene building --storeys 0 -o b.stl", "--storeys"},
        {"run house.stl -w 1", "steps is required"},
        {"run house.stl -w 1 -- invert melt", "There is no step \"melt\"; brix run --help lists them."},
        {"run house.stl -w 1 -- expand-x 1", "The step expand-x needs LOWER UPPER."},
        {"run house.stl -w 1 -- invert expand-x 1 -2", "The step expand-x: The number of voxels to be added to the upper X side "
                                                       "cannot be negative. The value encountered was -2."},
        {"run house.stl -w 1 -- refine 2 write 3=x.stl", "Level 3 of the output \"3=x.stl\" is not among the levels 0..2"},
        {"run house.stl -w 1 -- write x.stl invert write ./x.stl", "The output \"./x.stl\" is given twice."},
        {"run house.stl -w 1 -- invert write house.stl", "The file \"house.stl\" is both input and output."},
        {"run house.stl -w 1 -- expand-x 1 1.5", "The step expand-x needs a whole number, not \"1.5\"."},
        {"run house.stl -w 1 -- write-mesh --smooth 2", "The step write-mesh needs [--smooth STEPS] [LEVEL=]FILE."},
        {"run house.stl -w 1 -- write-mesh --smooth 1001 x.stl",
         "The step write-mesh: The number of smoothing steps must lie between 0 and 1000. The value encountered was 1001."},
        {"run house.stl -w 1 -- visible-along 0 0 0 1", "The step visible-along: The"},
        {"info house.stl -q -v", "excludes"},
        {"walkable house.stl -w 1 --floor 0 --height 0 -o w.png", "The height of the person must be a positive length"},
        {"scene", "A subcommand is required"},
    };
    Write("house.stl", "solid\n"); // is looked at, but never read
    for (const auto& [arguments, sentence] : cases) {
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.exitCode, 2) << arguments;
        EXPECT_EQ(outcome.error.find("brix: "), 0U) << arguments;
        EXPECT_NE(outcome.error.find(sentence), std::string::npos) << arguments << '\n' << outcome.error;
        EXPECT_EQ(outcome.error.find('\n') + 1, outcome.error.size()) << arguments << '\n' << outcome.error;
        EXPECT_EQ(outcome.output, "") << arguments;
    }
}

TEST_F(Program, TellsAFailedOperationInOneLineAndEndsWithOne)
{
    MakeHouse();
    Write("short.stl", "sol");
    Write("empty.stl", "solid nothing\nendsolid nothing\n");
    Write("nan.stl", "solid\nouter loop\nvertex 0 0 0\nvertex 1e300 0 0\nvertex 0 1 0\nendloop\nendsolid\n");
    std::string infinite(84 + 50, '\0');
    infinite[80] = 1;
    infinite.replace(84 + 12 + 2, 2, "\x80\x7f"); // the first corner's x
    Write("infinite.stl", infinite);
    const std::vector<std::pair<std::string, std::string>> cases{
        {"info none.stl", "Failed to open STL file \"none.stl\": No such file or directory."},
        {"info .", "Failed to open STL file \".\": Is a directory."},
        {"info short.stl", "The file \"short.stl\" is no STL file: its text begins with \"sol\" instead of \"solid\"."},
        {"voxelize empty.stl -o v.stl -w 1", "The file \"empty.stl\" holds no triangles."},
        {"voxelize infinite.stl -o v.stl -w 1", "The file \"infinite.stl\" holds no triangles."},
        {"voxelize nan.stl -o v.stl -w 1",
         "choose a larger --voxel (or fewer --voxels, a larger --width), or an --origin beside it."},
        {"voxelize house.stl -o v.stl -w 1e-7", "extent in the X direction"},
        {"voxelize house.stl -o v.stl -w 0.001 --lod 5", "of memory; the limit is"},
        {"voxelize house.stl -o none/v.stl -w 1", "Failed to write the file \"none/v.stl\": No such file or directory."},
        {"voxelize house.stl -o . -w 1", "Failed to write the file \".\": Is a directory."},
        {"slice house.stl -o s.png -w 1 --at x=1000", "The slice x=1000 lies outside the model."},
        {"run house.stl -w 1 -- invert subtract none.stl", "Failed to open STL file \"none.stl\": No such file or directory."},
        {"run house.stl -w 1 -- invert slice z=99999 s.png", "The slice z=99999 lies outside the model."},
        {"voxelize house.stl -o v.stl --voxel 0.05 --output-limit 0.001", "or raise --output-limit."},
        {"walkable house.stl -w 1.6 --floor 0 --from 0 0 99 -o w.png", "Nobody can stand at the point that --from gives."},
        {"scene building -o none/b.stl", "Failed to write the file \"none/b.stl\": No such file or directory."},
    };
    for (const auto& [arguments, sentence] : cases) {
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.exitCode, 1) << arguments << outcome.error;
        const std::string error = std::regex_replace(outcome.error, std::regex("brix: warning:[^\n]*\n"), "");
        EXPECT_EQ(error.find("brix: "), 0U) << arguments;
        EXPECT_NE(error.find(sentence), std::string::npos) << arguments << '\n' << outcome.error;
        EXPECT_EQ(error.find('\n') + 1, error.size()) << arguments << '\n' << outcome.error;
        EXPECT_EQ(outcome.output.find("invert"), std::string::npos) << "no step has worked: " << arguments;
    }
    EXPECT_FALSE(fs::exists(folder_ / "v.stl")) << "nothing is written before the model is made";
}

TEST_F(Program, TellsThatTheDiskIsFull)
{
    MakeHouse();
    if (!fs::is_character_file("/dev/full")) GTEST_SKIP() << "no device that is always full";
    for (const std::string arguments : {"scene city --ascii -o /dev/full", "voxelize house.stl -w 1.6 -o /dev/full",
                                        "slice house.stl -w 1.6 --at z=1 -o /dev/full", "info house.stl >/dev/full"}) {
        const Outcome outcome = Run(arguments);
        EXPECT_EQ(outcome.exitCode, 1) << arguments;
        EXPECT_EQ(outcome.error.find("brix: Failed to write"), 0U) << arguments << '\n' << outcome.error;
    }
}

TEST_F(Program, TellsThatMemoryIsShort)
{
    const std::string littleMemory = "ulimit -v 200000 && ";
    if (Run("--version", littleMemory).exitCode != 0) GTEST_SKIP() << "a sanitizer needs more address space than that";
    EXPECT_NE(
        Run("scene city --triangles 5000000 -o c.stl", littleMemory).error.find("There is not enough memory within the limit."),
        std::string::npos);
}

VoxelModel<bool> Voxelized(const Axes& axes, const std::vector<WorldTriangle>& triangles)
{
    const Extents extents = DetectTriangleExtents(axes, triangles);
    TriangleModel filed(extents);
    filed.AddWorldTriangles(triangles);
    VoxelModel<bool> model(extents, 3);
    VoxelizeTriangleModel(model, filed);
    return model;
}

TEST_F(Program, ReportsWhatItsFilesHold)
{
    const Outcome scene = Run("scene building -o house.stl");
    const Outcome info = Run("info house.stl");
    const std::vector<WorldTriangle> triangles = Load("house.stl");
    EXPECT_EQ(Reported(scene, ": (\\d+) triangles"), static_cast<std::int64_t>(triangles.size()));
    EXPECT_EQ(Reported(info, "triangles (\\d+)"), static_cast<std::int64_t>(triangles.size()));
    EXPECT_EQ(Reported(info, "bytes +(\\d+)"), static_cast<std::int64_t>(fs::file_size(folder_ / "house.stl")));
    EXPECT_NE(info.output.find("lower     -1.5 -1.5 -0.3\nupper     15.5 11.5 6.5\nsize      17 x 13 x 6.8\n"),
              std::string::npos);

    const std::string arguments =
        "voxelize house.stl -o fine.stl -o 1=coarse.stl -w 1.6 --lod 3 --vertical-lod 2 --origin 0.1 -0.2 0.3";
    const Outcome first = Run(arguments);
    ASSERT_EQ(first.exitCode, 0) << first.error;
    EXPECT_EQ(first.error, "") << "progress is for terminals";
    EXPECT_EQ(Reported(first, "level 3, (\\d+) triangles"), static_cast<std::int64_t>(Load("fine.stl").size()));
    EXPECT_EQ(Reported(first, "level 1, (\\d+) triangles"), static_cast<std::int64_t>(Load("coarse.stl").size()));

    const VoxelModel<bool> model = Voxelized(Axes(1.6, {0.1, -0.2, 0.3}, 0, 2), triangles);
    for (std::int64_t lod = 0; lod <= 3; ++lod)
        EXPECT_EQ(Reported(first, "level " + std::to_string(lod) + " +(\\d+) voxels filled"), CountFilled(model, lod));

    const std::string fine = ContentOf(folder_ / "fine.stl");
    EXPECT_EQ(WithoutTimes(Run(arguments).output), WithoutTimes(first.output));
    EXPECT_EQ(ContentOf(folder_ / "fine.stl"), fine) << "every run gives the same";
}

TEST_F(Program, KeepsTheFilesOwnUpAxisAndWritesAscii)
{
    SaveTrianglesToBinarySTL(folder_ / "y-up.stl", {{{{0.5, 0.5, 0.5}, {0.5, 0.5, 7.5}, {2.5, 0.5, 0.5}}}}, true);
    EXPECT_NE(Run("info y-up.stl").output.find("size      2 x 7 x 0\n"), std::string::npos);
    EXPECT_NE(Run("info y-up.stl --swap-yz").output.find("size      2 x 0 x 7\n"), std::string::npos);
    EXPECT_EQ(Run("voxelize y-up.stl -o voxels.stl -w 1 --lod 0 --ascii --swap-yz").exitCode, 0);
    const Outcome info = Run("info voxels.stl");
    EXPECT_NE(info.output.find("format    ASCII STL\n"), std::string::npos);
    EXPECT_NE(info.output.find("size      3 x 8 x 1\n"), std::string::npos) << info.output;
}

TEST_F(Program, DrawsSlicesSideBySide)
{
    MakeHouse();
    const Outcome slice = Run("slice house.stl -w 1.6 --at z=0.7 --at y=5.9 --lod 3 --vertical-lod 4 --scale 2 -o s.png");
    ASSERT_EQ(slice.exitCode, 0) << slice.error;
    const std::string png = ContentOf(folder_ / "s.png");
    ASSERT_GT(png.size(), 24U);
    const auto number = [&](std::size_t at) { // big-endian, low half
        return 256 * static_cast<unsigned char>(png[at + 2]) + static_cast<unsigned char>(png[at + 3]);
    };
    EXPECT_EQ(png.substr(1, 3), "PNG");
    EXPECT_EQ(Reported(slice, "s.png: (\\d+) x"), number(16));
    EXPECT_EQ(Reported(slice, "s.png: \\d+ x (\\d+) pixels"), number(20));
}

TEST_F(Program, RunsOperationsInARow)
{
    MakeHouse();
    const Outcome outcome = Run("run house.stl -w 1.6 --lod 3 -- fill-enclosed expand-x 2 0 reduce-horizontally 3 write v.stl "
                                "invert visible-along 0 0 -1 0.5 slice z=1 s.png auto-crop "
                                "visible-in-cone 2 3 9 0 1 -3 75 8 0.1 visible-in-pyramid 2 3 9 1 0 -1 90 45 7 0.1");
    ASSERT_EQ(outcome.exitCode, 0) << outcome.error;
    VoxelModel<bool> model = Voxelized(Axes(1.6, {0, 0, 0}, 0, 3), Load("house.stl"));

    const auto reported = [&](const std::string& step) { return Reported(outcome, step + " +(\\d+) voxels filled"); };
    model = FillEnclosedRegions(model);
    EXPECT_EQ(reported("fill-enclosed"), CountFilled(model, 3));
    model = ExpandAlongX(model, 2, 0, std::nullopt, false);
    EXPECT_EQ(reported("expand-x"), CountFilled(model, 3));
    model = ReduceHorizontally(model, 3, std::nullopt, false);
    EXPECT_EQ(reported("reduce-horizontally"), CountFilled(model, 3));
    EXPECT_EQ(Reported(outcome, "v.stl: level 3, (\\d+) triangles"), static_cast<std::int64_t>(Load("v.stl").size()));
    model = VisibilityFromDirection(Invert(model), {0, 0, -1}, 3, 0.5);
    EXPECT_EQ(reported("visible-along"), CountFilled(model, 3));
    EXPECT_EQ(reported("auto-crop"), CountFilled(model, 3));
    const Triple point = model.AxesRef().FromWorldCoordinates({2, 3, 9});
    const auto distance = [&](double world) { return model.AxesRef().FromWorldDistance(world); };
    model = VisibilityWithinCone(AutoCrop(model), point, {0, 1, -3}, 75, 3, distance(8), 0.1, false);
    EXPECT_EQ(reported("visible-in-cone"), CountFilled(model, 3));
    EXPECT_GT(CountFilled(model, 3), 10);
    model = VisibilityWithinPyramid(model, point, {1, 0, -1}, 90, 45, 3, distance(7), 0.1, false);
    EXPECT_EQ(reported("visible-in-pyramid"), CountFilled(model, 3));
    EXPECT_GT(CountFilled(model, 3), 10);
    EXPECT_EQ(ContentOf(folder_ / "s.png").substr(1, 3), "PNG");
}

// A hall with a door: brix leak finds it from inside, and its advice closes it.
TEST_F(Program, FindsTheGapThatKeepsAHallFromBeingFilled)
{
    MakeHouse();
    const std::string grid = "house.stl --voxel 0.1 --lod 3 ";
    const Outcome leak = Run("leak " + grid + "--from 4 3 1.5 -o leak.png");
    ASSERT_EQ(leak.exitCode, 0) << leak.error;
    EXPECT_TRUE(std::filesystem::exists(folder_ / "leak.png"));
    EXPECT_GT(Reported(leak, "outside is (\\d+) voxels away"), 10);
    const std::int64_t gap = Reported(leak, "the way is (\\d+) voxels wide");
    EXPECT_GT(gap, 1);
    EXPECT_EQ(Reported(leak, "fill-sealed (\\d+) closes it"), gap);
    const Outcome filled = Run("run " + grid + "-- fill-enclosed fill-enclosed fill-sealed 40");
    EXPECT_NE(filled.error.find("fill-enclosed filled nothing"), std::string::npos) << filled.error;
    EXPECT_GT(Reported(filled, "fill-sealed +(\\d+) voxels filled"), Reported(filled, "fill-enclosed +(\\d+) voxels filled"));
    ASSERT_EQ(Run("run " + grid + "-- fill-sealed 40 write solid.stl").exitCode, 0);
    const Outcome closed = Run("leak house.stl --voxel 0.1 --lod 3 --from 2000 3 1.5");
    EXPECT_NE(closed.error.find("must lie inside the extents"), std::string::npos) << closed.error;
}

TEST_F(Program, KeepsTheLargestRegionAndWritesItsSurface)
{
    const WorldTriangle floor{{{0, 0, 0}, {30, 0, 0}, {0, 30, 0}}};
    SaveTrianglesToBinarySTL(folder_ / "two.stl", {floor, {{{50, 50, 9}, {58, 50, 9}, {50, 58, 9}}}}, false);
    SaveTrianglesToBinarySTL(folder_ / "one.stl", {floor}, false);
    const Outcome outcome = Run("run two.stl -w 1.6 --lod 3 -- keep-largest write-surface s.stl write v.stl");
    ASSERT_EQ(outcome.exitCode, 0) << outcome.error;
    EXPECT_EQ(Reported(outcome, "keep-largest +(\\d+) voxels filled"),
              Reported(Run("run one.stl -w 1.6 --lod 3 -- auto-crop"), "auto-crop +(\\d+) voxels filled"));
    EXPECT_EQ(Reported(outcome, "s.stl: level 3, (\\d+) triangles"), static_cast<std::int64_t>(Load("s.stl").size()));
    EXPECT_LT(Load("s.stl").size(), Load("v.stl").size());
}

TEST_F(Program, DrawsHowFarAPersonWalks)
{
    ASSERT_EQ(Run("scene building -o house.stl").exitCode, 0);
    const std::string arguments =
        "house.stl -w 3.2 --lod 5 --vertical-lod 4 --origin 0.03 0.03 0.03 --from -1 5 0.1 --floor 0.05 "
        "--floor 3.05 --scale 1 -o t.png";
    const Outcome travel = Run("travel " + arguments);
    ASSERT_EQ(travel.exitCode, 0) << travel.error;
    EXPECT_EQ(ContentOf(folder_ / "t.png").substr(1, 3), "PNG");
    EXPECT_EQ(Reported(travel, "reachable +(\\d+)"), Reported(Run("walkable " + arguments), "reachable +(\\d+)"));
    EXPECT_EQ(Reported(travel, "the farthest (\\d+)"), 25) << "metres, round the house";
    EXPECT_EQ(Run("travel house.stl -w 1.6 --floor 0 --from 0 0 99 -o t.png").exitCode, 1);
}

TEST_F(Program, DrawsWhereAPersonCanWalk)
{
    ASSERT_EQ(Run("scene building -o house.stl").exitCode, 0);
    const std::string arguments = "walkable house.stl -w 3.2 --lod 5 --vertical-lod 4 --origin 0.03 0.03 0.03 --from -1 5 0.1 "
                                  "--floor 0.05 --floor 3.05 --scale 1 -o w.png";
    const Outcome person = Run(arguments);
    ASSERT_EQ(person.exitCode, 0) << person.error;
    EXPECT_EQ(ContentOf(folder_ / "w.png").substr(1, 3), "PNG");
    const std::int64_t reachable = Reported(person, "reachable +(\\d+)");
    EXPECT_LT(reachable, Reported(person, "walkable +(\\d+)")) << "nobody climbs on tables";
    // A storey has about 100 m2 of free floor in 0.01 m2 voxels, and the terrace 80 m2: the person gets upstairs, a giant
    // nowhere.
    EXPECT_GT(reachable, 15000);
    EXPECT_LT(Reported(Run(arguments + " --diameter 1.1"), "reachable +(\\d+)"), 10000) << "too wide for the doors";
}

// A person on a floor of one storey, at heights from within the floor's own voxel to a head above it; voxels of several sizes.
TEST_F(Program, TakesAPointOnInOrAboveTheFloorAsOnIt)
{
    SaveTrianglesToBinarySTL(folder_ / "plane.stl",
                             {{{{0, 0, 0}, {10, 0, 0}, {0, 10, 0}}}, {{{10, 10, 0}, {10, 0, 0}, {0, 10, 0}}}}, false);
    for (const std::string grid : {"-w 0.8 --lod 3", "-w 1.6 --lod 3 --vertical-lod 4", "-w 1.6 --origin 0.3 0.03 0.07"}) {
        const std::string arguments = " plane.stl --unit m " + grid + " --from 5 5 ";
        const std::int64_t all = Reported(Run("walkable plane.stl -o w.png " + grid), "walkable +(\\d+)");
        EXPECT_GT(all, 1000) << grid;
        for (const std::string z : {"0", "0.01", "0.3", "1.5"}) {
            for (const std::string command : {"walkable", "travel"}) {
                const Outcome outcome = Run(command + arguments + z + " -o w.svg");
                ASSERT_EQ(outcome.exitCode, 0) << command << arguments << z << outcome.error;
                EXPECT_EQ(Reported(outcome, "reachable +(\\d+)"), all) << command << arguments << z;
            }
        }
        EXPECT_EQ(Run("walkable" + arguments + "9 -o w.png").exitCode, 1) << "far above";
    }
    EXPECT_EQ(Run("walkable plane.stl -w 1.6 --floor 7 -o w.png").exitCode, 1) << "a blank picture";
    EXPECT_EQ(Run("walkable plane.stl -w 1.6 --unit ft --height 0.1 --floor 7 -o w.png").exitCode, 1);
}

TEST_F(Program, LooksFromOnTheFloorWhereAPointIsInsideIt)
{
    MakeHouse();
    for (const auto& [step, rest] : {std::pair<std::string, std::string>{"visible-from", " 6 0.3"},
                                     {"visible-in-cone", " 1 0 0 90 6 0.3"},
                                     {"visible-in-pyramid", " 1 0 0 90 60 6 0.3"}}) {
        const auto seen = [&, &step = step, &rest = rest](const std::string& z) {
            return Reported(Run("run house.stl --voxel 0.1 -- " + step + " 4 5 " + z + rest), step + " +(\\d+) voxels filled");
        };
        const std::int64_t onTheFloor = seen("0.1"); // whose voxels reach so high
        EXPECT_GT(onTheFloor, 1000) << step;
        for (const std::string z : {"0", "0.05"}) EXPECT_EQ(seen(z), onTheFloor) << step << ' ' << z;
        EXPECT_NE(seen("0.15"), onTheFloor) << step;
    }
}

TEST_F(Program, DrawsTerrainByHeight)
{
    SaveTrianglesToBinarySTL(folder_ / "slope.stl",
                             {{{{0, 0, 0}, {30, 0, 9}, {0, 30, 9}}}, {{{30, 30, 0}, {30, 0, 9}, {0, 30, 9}}}}, false);
    ASSERT_EQ(Run("walkable slope.stl -w 4 --lod 3 --unit m -o w.svg").exitCode, 0);
    const std::string svg = ContentOf(folder_ / "w.svg");
    for (const std::string label : {"Terrain", "Height of the ground that can be walked on, in m", "5 m", "8 m"})
        EXPECT_NE(svg.find(label), std::string::npos) << label;
    EXPECT_EQ(svg.find("Storey"), std::string::npos);
}

TEST_F(Program, LabelsPicturesInTheUnitOfTheFile)
{
    std::vector<WorldTriangle> house = scenes::MakeBuilding({});
    for (WorldTriangle& triangle : house)
        for (auto& corner : triangle)
            for (double& coordinate : corner) coordinate *= 1000;
    SaveTrianglesToBinarySTL(folder_ / "mm.stl", house, false);
    const std::string arguments = " mm.stl -w 3200 --lod 5 --vertical-lod 4 --unit mm --from -1000 5000 100 -o t.";
    ASSERT_EQ(Run("travel" + arguments + "svg").exitCode, 0);
    const std::string svg = ContentOf(folder_ / "t.svg");
    for (const std::string label :
         {"Storey 1", "Storey 2", "5000 mm", "25000 mm", "a person 500 mm wide and 1800 mm high", "walls"})
        EXPECT_NE(svg.find(label), std::string::npos) << label;
    EXPECT_EQ(svg.find("Storey 3"), std::string::npos) << "the roof is out of reach";
    ASSERT_EQ(Run("walkable" + arguments + "pdf").exitCode, 0);
    EXPECT_EQ(ContentOf(folder_ / "t.pdf").substr(0, 4), "%PDF");
    EXPECT_EQ(Run("walkable" + arguments + "jpg").exitCode, 2);
    EXPECT_EQ(Run("slice mm.stl -w 1600 --at z=2000 --at z=-9000 -o s.png").exitCode, 1);
}

} // namespace
} // namespace brix
#endif
