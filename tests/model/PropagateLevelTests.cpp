// The levels of a model against the rule that ties them together, applied voxel by voxel.
#include "model/PropagateLevel.h"

#include "model/CheckInvariants.h"
#include "model/PropagateChunk.h"
#include "support/FailingAllocations.h"
#include "support/Messages.h"
#include "support/RandomModels.h"

#include <gtest/gtest.h>

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
    for (std::uint64_t seed = 1; seed <= 300; ++seed) {
        WrittenModel written = RandomWrittenModel(seed);
        PropagateLevel(written.model, written.reference.VoxelLOD());
        EXPECT_EQ(Differences(written.model, written.reference), "") << "seed " << seed;
    }
}

} // namespace
} // namespace brix
