// The levels of a model against the rule that ties them together, applied voxel by voxel.
#include "model/PropagateLevel.h"

#include "model/CheckInvariants.h"
#include "model/InstructionSet.h"
#include "support/FailingAllocations.h"
#include "support/Messages.h"
#include "support/RandomModels.h"

#include <gtest/gtest.h>

#include <limits>
#include <thread>

namespace brix {
namespace {

using namespace tests;

struct WrittenModel
{
    std::uint64_t seed;
    VoxelModel<bool> model; // one level holds the reference, the others what an earlier operation left there
    ReferenceModel reference;
};

WrittenModel RandomWrittenModel(std::uint64_t seed)
{
    Random random(seed);
    const Axes axes = RandomAxes(random);
    const std::int64_t finestLOD = random.Between(0, 5);
    const std::int64_t lod = random.Between(std::max<std::int64_t>(finestLOD - 2, 0), finestLOD);
    const Extents extents = RandomExtents(random, axes, random.Between(lod, finestLOD));
    VoxelModel<bool> model = MakeModel(RandomContent(random, extents, finestLOD, finestLOD));
    ReferenceModel reference = RandomContent(random, extents, finestLOD, lod);
    WriteLevel(model, reference);
    return {seed, std::move(model), std::move(reference)};
}

TEST(PropagateLevel, EqualsTheRuleVoxelByVoxelFromEveryLevel)
{
    for (std::uint64_t seed = 1; seed <= 200; ++seed) {
        WrittenModel written = RandomWrittenModel(seed);
        PropagateLevel(written.model, written.reference.VoxelLOD());
        EXPECT_EQ(Differences(written.model, written.reference), "") << "seed " << seed;
    }
}

TEST(PropagateLevel, GivesTheSameVoxelsWithEveryInstructionSet)
{
    for (std::uint64_t seed = 201; seed <= 300; ++seed) {
        WrittenModel written = RandomWrittenModel(seed);
        VoxelModel<bool>& model = written.model;
        const InstructionSet instructionSet = seed % 2 == 0 ? InstructionSet::Portable : FastestInstructionSet();
        ForEachTriple(model.LowerChunkIndices(), model.UpperChunkIndices(), [&](const Triple& chunk) {
            model.ChunkRef(chunk).MakeLevelsFollow(written.reference.VoxelLOD(), instructionSet);
        });
        EXPECT_EQ(Differences(model, written.reference), "") << "seed " << seed;
    }
}

// Some readers ask for levels that are not made yet, while others copy the model.
TEST(OtherLevels, AreMadeOnceForAllReaders)
{
    for (std::uint64_t seed = 301; seed <= 340; ++seed) {
        WrittenModel written = RandomWrittenModel(seed);
        written.model.MakeLevels(OtherLevels::WhenAskedFor);
        written.model.FinishLevels(written.reference.VoxelLOD());
        const VoxelModel<bool>& model = written.model;
        std::array<std::string, 4> differences;
        std::vector<std::thread> readers;
        for (std::string& difference : differences) {
            readers.emplace_back([&] {
                const VoxelModel<bool> copy = model;
                difference = Differences(model, written.reference) + Differences(copy, written.reference);
            });
        }
        for (std::thread& reader : readers) reader.join();
        for (const std::string& difference : differences) EXPECT_EQ(difference, "") << "seed " << seed;
    }
}

TEST(OtherLevels, AreMadeByTheNextReaderWhereMemoryRanOut)
{
    std::int64_t failures = 0;
    const std::int64_t live = LiveAllocations();
    for (std::uint64_t seed = 1; seed <= 8; ++seed) {
        WrittenModel written = RandomWrittenModel(seed);
        written.model.MakeLevels(OtherLevels::WhenAskedFor);
        written.model.FinishLevels(written.reference.VoxelLOD());
        for (std::int64_t n = 1;; n += 1 + n / 3) {
            VoxelModel<bool> model = written.model;
            const bool isOut = RunsOutOfMemory(n, [&] { model.MakeLevels(OtherLevels::AtOnce); });
            EXPECT_EQ(model.WhenLevelsAreMade(), isOut ? OtherLevels::WhenAskedFor : OtherLevels::AtOnce);
            EXPECT_EQ(Differences(model, written.reference), "") << "seed " << seed;
            if (!isOut) break;
            ++failures;
        }
    }
    EXPECT_GT(failures, 20);
    EXPECT_EQ(LiveAllocations(), live);
}

// Where memory runs out, some levels are left behind, but every stack stays sound, so that the next propagation mends the model.
TEST(PropagateLevel, CanBeRepeatedAfterMemoryRanOut)
{
    std::int64_t failures = 0;
    const std::int64_t live = LiveAllocations();
    for (std::uint64_t seed = 1; seed <= 15; ++seed) {
        const WrittenModel written = RandomWrittenModel(seed);
        const std::int64_t lod = written.reference.VoxelLOD();
        for (std::int64_t n = 1;; n += 1 + n / 3) {
            VoxelModel<bool> model = written.model;
            if (!RunsOutOfMemory(n, [&] { PropagateLevel(model, lod); })) break;
            ++failures;
            const std::string reason = CheckInvariants(model, lod);
            EXPECT_TRUE(reason.empty() || reason.starts_with("levels disagree")) << reason << ", seed " << seed;
            PropagateLevel(model, lod);
            EXPECT_EQ(Differences(model, written.reference), "") << "seed " << seed;
        }
    }
    EXPECT_GT(failures, 40);
    EXPECT_EQ(LiveAllocations(), live);
}

} // namespace
} // namespace brix
