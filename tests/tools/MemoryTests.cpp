// The memory limit holds: what is estimated is not below what is taken, and what would take more is refused before the work.
// Not under AddressSanitizer, which takes memory of its own.
#if defined BRIX_PROGRAM && !defined BRIX_SANITIZED
#include "ProgramFixture.h"

namespace brix {
namespace {

double Number(const Outcome& outcome, const std::string& pattern)
{
    std::smatch match;
    return std::regex_search(outcome.output, match, std::regex(pattern)) ? std::stod(match[1].str()) : -1;
}

// The largest estimate: before the work, and before triangles are written.
double Estimated(const Outcome& outcome)
{
    double most = -1;
    const std::regex pattern("\"estimate\",\\s+\"bytes\": ([0-9.e+]+)");
    for (std::sregex_iterator match(outcome.output.begin(), outcome.output.end(), pattern), end; match != end; ++match)
        most = std::max(most, std::stod((*match)[1].str()));
    return most;
}

double Peak(const Outcome& outcome) { return Number(outcome, "\"peakBytes\": (\\d+)"); }

// A block that is as empty inside as models are: its skin takes nothing beside the volume.
void WriteBlock(const fs::path& filePath)
{
    std::vector<WorldTriangle> triangles;
    const VoxelModel<bool> empty(Extents(Axes(1000, {}, 0, 0), {0, 0, 0}, {0, 0, 0}, 0), 0);
    TessellateVoxelModel(triangles, Invert(empty), 0);
    SaveTrianglesToBinarySTL(filePath, triangles, false);
}

TEST_F(Program, EstimatesNoLessMemoryThanItTakes)
{
    ASSERT_EQ(Run("scene building -o house.stl").exitCode, 0);
    ASSERT_EQ(Run("scene city --triangles 20000 -o city.stl").exitCode, 0);
    WriteBlock(folder_ / "block.stl");
    std::istringstream steps(
        "invert\nfill-enclosed\nfill-exposed\nfill-sealed 3\nexpand-x 3 3\nexpand-z 3 3\nreduce-x 1 1\nreduce-z 1 1\n"
        "expand-by-one 1 1\nreduce-by-one 1 1\nexpand-horizontally 5\nreduce-horizontally 3\nkeep-largest\n"
        "auto-crop\nrefine 5\nwalkable 5 18\nvisible-along 1 2 -3 0.5\nwrite v.stl\nwrite-surface v.stl\nwrite-mesh v.stl\n"
        "write-mesh --smooth 2 v.stl\nwrite v.npy\nwrite v.vdb\nwrite v.vox\n");
    const bool lacksVdb = Run("convert house.stl v.vdb --voxel 1").error.find("OpenVDB") != std::string::npos;
    for (std::string step; std::getline(steps, step);)
        for (const std::string scene : {"house.stl --voxels 1000", "city.stl --voxels 1500", "block.stl --voxels 2000"}) {
            if (scene.starts_with("block") && step.find("mesh") != std::string::npos) continue; // 48 million triangles
            if (scene.starts_with("block") && (step.ends_with(".npy") || step.ends_with(".vox"))) continue; // 8 GB
            if (step.ends_with(".vdb") && lacksVdb) continue;
            const Outcome outcome = Run("run " + scene + " --json -- " + step);
            ASSERT_EQ(outcome.exitCode, 0) << outcome.error;
            EXPECT_GE(Estimated(outcome), Peak(outcome)) << scene << ' ' << step;
        }
}

TEST_F(Program, RefusesWhatWouldNotFitAndTellsWhatWould)
{
    WriteBlock(folder_ / "block.stl");
    for (const std::string step : {"fill-enclosed", "walkable 2 3", "expand-x 1 1"})
        for (const std::string limit : {"--memory-limit 0.2", ""}) {
            const std::string before = limit.empty() ? "ulimit -v 200000;" : "";
            const Outcome refused = Run("run block.stl " + limit + " --voxel 0.1 --json -- " + step, before);
            EXPECT_EQ(refused.exitCode, 1) << step;
            EXPECT_LT(Peak(refused), 0.1e9) << "before the work";
            const std::regex advice("would need about .* of memory; the limit is 20\\d MB. It would fit with (--voxel [0-9.]+)");
            std::smatch match;
            ASSERT_TRUE(std::regex_search(refused.error, match, advice)) << refused.error;
            const Outcome done = Run("run block.stl " + limit + " " + match[1].str() + " --json -- " + step, before);
            EXPECT_EQ(done.exitCode, 0) << done.error;
            EXPECT_LT(Peak(done), 0.21e9) << step;
        }
}

} // namespace
} // namespace brix
#endif
