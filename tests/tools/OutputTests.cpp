// What the program writes is there as a whole or not at all, and reports are for whoever reads them.
#ifdef BRIX_PROGRAM
#include "ProgramFixture.h"

namespace brix {
namespace {

// Everything that lies in a folder besides the fixture's own two files.
std::string NamesIn(const fs::path& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        if (!entry.path().filename().string().starts_with("std")) names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    std::string text;
    for (const std::string& name : names) text += name + ' ';
    return text;
}

TEST_F(Program, LeavesTheOldFileWhenANewOneDoesNotFit)
{
    ASSERT_EQ(Run("scene building -o house.stl").exitCode, 0);
    Write("old.stl", "old");
    Write("old.png", "old");
    for (const std::string arguments :
         {"scene city --triangles 20000 -o old.stl", "voxelize house.stl --voxel 0.1 -o old.stl",
          "run house.stl --voxel 0.1 -- write-surface old.stl", "slice house.stl --voxel 0.1 --at z=1 --scale 8 -o old.png"}) {
        const Outcome outcome = Run(arguments, "ulimit -f 1;"); // blocks of 512 or 1024 bytes
        EXPECT_EQ(outcome.exitCode, 1) << arguments << outcome.error;
        EXPECT_NE(outcome.error.find("\": File too large."), std::string::npos) << arguments << outcome.error;
        EXPECT_EQ(ContentOf(folder_ / "old.stl") + ContentOf(folder_ / "old.png"), "oldold") << arguments;
        EXPECT_EQ(NamesIn(folder_), "house.stl old.png old.stl ") << arguments;
    }
}

// The pipe keeps the program waiting in the middle of its work; what it writes meanwhile grows in small steps.
TEST_F(Program, LeavesTheOldFileWhenItIsEndedWhileWriting)
{
    for (const std::string signal : {"INT", "TERM", "HUP", "KILL"}) {
        Write("old.stl", "old");
        const Outcome outcome = Run("scene city --ascii --triangles 2000000 -o old.stl & p=$!; "
                                    "while ! ls -A | grep -q part && kill -0 $p; do :; done; kill -" +
                                        signal + " $p; wait $p",
                                    "env --default-signal=INT");
        EXPECT_GT(outcome.exitCode, 128) << signal << outcome.error;
        EXPECT_EQ(ContentOf(folder_ / "old.stl"), "old") << signal;
        EXPECT_TRUE(signal == "KILL" || NamesIn(folder_) == "old.stl ") << signal;
    }
}

// The growth would take much longer.
TEST_F(Program, EndsAnOperationByAnInterruptWithItsReport)
{
    ASSERT_EQ(Run("scene building -o house.stl").exitCode, 0);
    const Outcome outcome = Run("run house.stl --voxel 0.01 --json -- expand-horizontally 401 expand-horizontally 401 "
                                "expand-horizontally 401 write-surface new.stl & p=$!; sleep 1; kill -INT $p; wait $p",
                                "env --default-signal=INT");
    EXPECT_EQ(outcome.exitCode, 128 + 2) << outcome.error;
    EXPECT_EQ(outcome.error, "brix: Interrupted.\n");
    EXPECT_NE(outcome.output.find("\"error\": \"Interrupted.\""), std::string::npos) << outcome.output;
    EXPECT_EQ(NamesIn(folder_), "house.stl ");
}

TEST_F(Program, ReplacesWhatALinkPointsToAndKeepsItsPermissions)
{
    fs::create_directory(folder_ / "there");
    Write("there/real.stl", "old");
    fs::permissions(folder_ / "there/real.stl", fs::perms{0640});
    fs::create_symlink("there/real.stl", folder_ / "link.stl");
    fs::create_symlink("new.stl", folder_ / "dangling.stl");
    ASSERT_EQ(Run("scene building -o link.stl").exitCode, 0);
    ASSERT_EQ(Run("scene building -o dangling.stl", "umask 027;").exitCode, 0);
    EXPECT_TRUE(fs::is_symlink(folder_ / "link.stl"));
    EXPECT_EQ(ContentOf(folder_ / "there/real.stl"), ContentOf(folder_ / "new.stl"));
    EXPECT_EQ(fs::status(folder_ / "there/real.stl").permissions(), fs::perms{0640});
    EXPECT_EQ(fs::status(folder_ / "new.stl").permissions(), fs::perms{0640});
    EXPECT_EQ(NamesIn(folder_), "dangling.stl link.stl new.stl there ");
}

TEST_F(Program, ReadsAndWritesPipesOnce)
{
    MakeHouse();
    const std::string house = ContentOf(folder_ / "house.stl");
    const std::string info = Run("info house.stl").output;
    const std::string content = info.substr(info.find('\n'));
    EXPECT_NE(Run("info -", "cat house.stl |").output.find(content), std::string::npos);
    EXPECT_NE(Run("info /dev/stdin", "cat house.stl |").output.find(content), std::string::npos);
    EXPECT_NE(Run("info p", "mkfifo p; (timeout 20 cp house.stl p) & timeout 20").output.find(content), std::string::npos);
    EXPECT_EQ(Run("run p --voxel 1 -- union p", "").exitCode, 2);

    const Outcome toOutput = Run("scene building --empty -o -");
    EXPECT_EQ(toOutput.output, house);
    EXPECT_NE(toOutput.error.find("triangles, in metres"), std::string::npos) << "the report goes elsewhere";
    ASSERT_EQ(Run("scene building --empty -o f", "mkfifo f; (timeout 20 cat f >copy.stl) & timeout 20").exitCode, 0);
    EXPECT_TRUE(fs::is_fifo(folder_ / "f"));
    ASSERT_EQ(std::system(
                  ("sleep 1; cmp '" + (folder_ / "copy.stl").string() + "' '" + (folder_ / "house.stl").string() + "'").c_str()),
              0);
}

TEST_F(Program, WritesAFolderOfPicturesAsAWholeOrNotAtAll)
{
    MakeHouse();
    fs::create_directories(folder_ / "empty");
    ASSERT_EQ(Run("run house.stl --voxel 0.1 -- write layers/ write 2=empty/").exitCode, 0);
    const std::string names = NamesIn(folder_ / "layers");
    EXPECT_EQ(names.find("layer-0000.png layer-0001.png "), 0U);
    EXPECT_EQ(names, NamesIn(folder_ / "empty")) << "all levels have the same height here";
    const std::string all = NamesIn(folder_);
    const std::string old = ContentOf(folder_ / "layers/layer-0000.png");

    const std::string tooMuch = "trap '' XFSZ; ulimit -f 1;"; // a file of 512 bytes
    for (const auto& [arguments, before, sentence] : std::vector<std::array<std::string, 3>>{
             {"convert house.stl layers/ --voxel 0.2", "", "Failed to write the folder \"layers/\": Directory not empty."},
             {"convert house.stl none/layers/ --voxel 0.2", "", "\"none/layers/\": No such file or directory."},
             {"convert house.stl house.stl/ --voxel 0.2", "", "\"house.stl/\": Not a directory."},
             {"convert house.stl new/ --voxel 0.02", tooMuch, "Failed to write the folder \"new\": File too large."},
             {"convert house.stl big.vox --voxel 0.1", tooMuch, "Failed to write the file \"big.vox\": File too large."},
             {"convert house.stl big.nrrd --gzip --voxel 0.05", tooMuch, "\"big.nrrd\": File too large."},
             {"convert house.stl new/ --voxel 0.1 --output-limit 0.001", "", "raise --output-limit"},
             {"run house.stl --voxel 0.1 -- write-mesh new/", "", "\"new/\""}}) {
        const Outcome outcome = Run(arguments, before);
        EXPECT_EQ(outcome.exitCode, 1) << arguments;
        EXPECT_NE(outcome.error.find(sentence), std::string::npos) << arguments << '\n' << outcome.error;
        EXPECT_EQ(NamesIn(folder_), all) << arguments;
    }
    EXPECT_EQ(Run("convert house.stl new/ ./new/ --voxel 0.1").exitCode, 2);
    EXPECT_EQ(NamesIn(folder_ / "layers"), names);
    EXPECT_EQ(ContentOf(folder_ / "layers/layer-0000.png"), old);
}

TEST_F(Program, ShowsNoControlCharactersOfNames)
{
    const std::string name = "a\x1b[31m\xc2\x9b\x9b\n\xc3\xa9.stl";
    Write(name, "solid\nendsolid\n");
    for (const Outcome& outcome :
         {Run("info '" + name + "'"), Run("info 'none" + name + "'"), Run("voxelize '" + name + "' --voxel 1 -o v.stl"),
          Run("info '" + name + "' '" + name + "'")}) {
        const std::string shown = outcome.output + outcome.error;
        EXPECT_EQ(shown.find('\x1b'), std::string::npos) << shown;
        EXPECT_EQ(shown.find('\x9b'), std::string::npos) << shown;
        EXPECT_NE(shown.find("\\x1b[31m\\xc2\\x9b\\x9b"), std::string::npos) << shown;
        EXPECT_NE(shown.find("\xc3\xa9.stl"), std::string::npos) << shown;
    }
}

TEST_F(Program, ReportsForProgramsAndForTheQuiet)
{
    MakeHouse();
    EXPECT_EQ(Run("voxelize house.stl --voxel 0.1 -o v.stl -q").output, "");
    const Outcome json = Run("voxelize house.stl --voxel 0.1 -o v.stl --json");
    EXPECT_EQ(Reported(json, "\"exitCode\": (\\d+)"), 0);
    EXPECT_EQ(Reported(json, "\"bytes\": (\\d+),\n +\"triangles\""), static_cast<std::int64_t>(fs::file_size(folder_ / "v.stl")));
    const Outcome failed = Run("info none.stl --json");
    EXPECT_EQ(Reported(failed, "\"exitCode\": (\\d+)"), 1);
    EXPECT_NE(failed.output.find("No such file or directory."), std::string::npos);
    if (std::system("python3 -c '' 2>/dev/null") != 0) GTEST_SKIP() << "no Python to read JSON with";
    for (const std::string arguments :
         {"info house.stl --json", "scene building -o b.stl --json", "slice house.stl --voxel 0.1 --at z=1 -o s.png --json",
          "run --json house.stl --voxel 0.1 -- invert", "info none.stl --json"})
        EXPECT_EQ(WEXITSTATUS(std::system(("cd '" + folder_.string() + "' && '" BRIX_PROGRAM "' " + arguments +
                                           " 2>/dev/null | python3 -c 'import json, sys; json.load(sys.stdin)[\"steps\"]'")
                                              .c_str())),
                  0)
            << arguments;
}

TEST_F(Program, TakesTheSizeOfVoxelsInThreeWaysAndWarnsOfStrangeOnes)
{
    MakeHouse();
    const std::string expected = WithoutTimes(Run("voxelize house.stl --voxel 0.25 -o v.stl").output);
    EXPECT_NE(expected.find("voxel     0.25 x 0.25 x 0.25 at the finest level, 4; the model is 68 voxels long\n"),
              std::string::npos);
    EXPECT_EQ(WithoutTimes(Run("voxelize house.stl --width 4 -o v.stl").output), expected);
    EXPECT_EQ(WithoutTimes(Run("voxelize house.stl --voxels 68 -o v.stl").output), expected);
    EXPECT_EQ(Run("voxelize house.stl --voxels 16 -o v.stl").error, "");
    EXPECT_NE(
        Run("voxelize house.stl --voxel 2.125 -o v.stl").error.find("warning: The model is 8 voxels long: did you mean mill"),
        std::string::npos);
    SaveTrianglesToBinarySTL(folder_ / "needle.stl", {{{{0, 0, 0}, {17, 0, 0}, {0, 0.001, 0}}}}, false);
    EXPECT_EQ(Run("voxelize needle.stl --voxels 16384 -o v.stl").error, "");
    EXPECT_NE(Run("voxelize needle.stl --voxels 16385 -o v.stl").error.find("does the file hold millimetres?"),
              std::string::npos);
}

} // namespace
} // namespace brix
#endif
