// Voxels as bytes in memory, and as runs, against their voxel-by-voxel definitions.
#include "model/VoxelArrays.h"

#include "model/FilledRuns.h"
#include "support/Messages.h"
#include "support/RandomModels.h"

#include <gtest/gtest.h>

namespace brix {
namespace {

using namespace tests;

// A box near the reference's extents; inside of them if it has to be.
Extents RandomBox(Random& random, const Extents& extents, bool isInside)
{
    Triple lower{};
    Triple upper{};
    for (std::size_t i = 0; i < 3; ++i) {
        const std::int64_t margin = isInside ? 0 : 20;
        const std::int64_t a = random.Between(extents.LowerIndices()[i] - margin, extents.UpperIndices()[i] + margin);
        const std::int64_t b = random.Between(extents.LowerIndices()[i] - margin, extents.UpperIndices()[i] + margin);
        lower[i] = std::min(a, b);
        upper[i] = std::max(a, b);
    }
    return extents.WithIndices(lower, upper);
}

// Memory for a box with gaps between rows and layers, filled with a byte that no voxel is; sometimes with y or z upside down.
struct Memory
{
    Memory(Random& random, const Extents& box)
    {
        const Triple size = Plus(Minus(box.UpperIndices(), box.LowerIndices()), {1, 1, 1});
        strides.y = size[0] + random.Between(0, 3);
        strides.z = strides.y * size[1] + random.Between(0, 3);
        bytes.assign(static_cast<std::size_t>(strides.z * size[2]), 7);
        first = bytes.data();
        if (random.OneIn(3)) {
            first += strides.y * (size[1] - 1);
            strides.y = -strides.y;
        }
        if (random.OneIn(3)) {
            first += strides.z * (size[2] - 1);
            strides.z = -strides.z;
        }
    }
    std::uint8_t& At(const Triple& offset) { return first[offset[0] + strides.y * offset[1] + strides.z * offset[2]]; }

    std::vector<std::uint8_t> bytes;
    std::uint8_t* first;
    ByteStrides strides{};
};

TEST(VoxelArrays, AreCopiedVoxelByVoxel)
{
    for (const RandomModel& model : RandomModels(50, 150)) {
        Random random(model.seed);
        const std::int64_t lod = random.Between(0, model.voxels.FinestLOD());
        const ReferenceModel reference(model.voxels, lod);
        const Extents box = RandomBox(random, model.voxels.ExtentsRef(lod), false);
        Memory memory(random, box);
        std::vector<std::uint8_t> expected = memory.bytes;
        Memory copied = memory;
        copied.first = copied.bytes.data() + (memory.first - memory.bytes.data());
        ForEachTriple(box.LowerIndices(), box.UpperIndices(),
                      [&](const Triple& voxel) { memory.At(Minus(voxel, box.LowerIndices())) = reference.Value(voxel) ? 1 : 0; });
        CopyVoxels(model.voxels, box, copied.first, copied.strides);
        ASSERT_EQ(copied.bytes, memory.bytes) << model;

        std::vector<std::uint8_t> dense(DenseSize(box));
        CopyVoxels(model.voxels, box, dense);
        std::size_t i = 0;
        ForEachTriple(box.LowerIndices(), box.UpperIndices(),
                      [&](const Triple& voxel) { ASSERT_EQ(dense[i++], reference.Value(voxel) ? 1 : 0) << model; });
    }
}

TEST(VoxelArrays, AreWrittenVoxelByVoxelWithAllLevels)
{
    for (const RandomModel& model : RandomModels(900, 120)) {
        Random random(model.seed);
        const Extents box = RandomBox(random, model.reference.ExtentsRef(), true);
        Memory memory(random, box);
        for (std::uint8_t& byte : memory.bytes) byte = static_cast<std::uint8_t>(random.OneIn(3) ? 0 : random.Bits());
        const ReferenceModel expected = model.reference.Where([&](const Triple& voxel) {
            if (!box.ContainsVoxel(voxel)) return model.reference.Value(voxel);
            return memory.At(Minus(voxel, box.LowerIndices())) != 0;
        });
        VoxelModel<bool> written = model.voxels;
        WriteVoxels(written, box, memory.first, memory.strides);
        ASSERT_EQ(Differences(written, expected), "") << model;

        const std::int64_t finest = random.Between(box.VoxelLOD(), LevelCount - 1);
        const VoxelModel<bool> made = ModelFromVoxels(box, memory.first, memory.strides, finest);
        ASSERT_EQ(Differences(made, ReferenceModel(box, finest, box.VoxelLOD()).Where([&](const Triple& voxel) {
                      return expected.Value(voxel);
                  })),
                  "")
            << model;
    }
}

TEST(VoxelArrays, NameTheArgumentThatTheyReject)
{
    const Axes frame(1, {0, 0, 0}, 0, 0);
    const Extents extents(frame, {0, 0, 0}, {3, 3, 3}, 1);
    VoxelModel<bool> model(extents, 1);
    std::vector<std::uint8_t> bytes(64, 1);
    const auto copying = [&](const Extents& box) { return MessageOf([&] { CopyVoxels(model, box, bytes); }); };
    const auto writing = [&](const Extents& box) { return MessageOf([&] { WriteVoxels(model, box, bytes); }); };
    EXPECT_EQ(copying(Extents(Axes(2, {0, 0, 0}, 0, 0), {0, 0, 0}, {3, 3, 3}, 1)),
              "The axes of a box of voxels must be those of the voxel model.");
    EXPECT_EQ(copying(extents.RescaledCopy(2)),
              "The level of detail for a box of voxels must not exceed the finest level of detail in the voxel model. The value "
              "encountered was 2. The finest level of detail in the voxel model is 1.");
    EXPECT_EQ(copying(extents.WithIndices({0, 0, 0}, {3, 3, 4})), "There must be as many bytes as the box has voxels.");
    EXPECT_EQ(copying(extents), "(nothing was thrown)");
    EXPECT_EQ(writing(extents.WithIndices({-1, 0, 0}, {2, 3, 3})),
              "The box of voxels to be written must lie inside the extents of the voxel model.");
    EXPECT_EQ(model.StoredChunkCount(), 0U) << "nothing is written before the last check";
    EXPECT_EQ(MessageOf([&] { ModelFromVoxels(extents, bytes, 6); }),
              "The finest level of detail in a voxel model must be less than 6. The value encountered was 6.");
}

TEST(FilledRuns, AreThoseOfTheVoxelsInLatticeOrder)
{
    for (const RandomModel& model : RandomModels(1300, 150)) {
        const std::int64_t lod = Random(model.seed).Between(0, model.voxels.FinestLOD());
        const ReferenceModel reference(model.voxels, lod);
        std::vector<FilledRun> expected;
        reference.ForEachVoxel([&](const Triple& voxel) {
            if (!reference.Value(voxel)) return;
            if (reference.Value(Minus(voxel, {1, 0, 0})))
                expected.back().upperX = voxel[0];
            else
                expected.push_back({voxel[0], voxel[0], voxel[1], voxel[2]});
        });
        std::vector<FilledRun> runs;
        ForEachFilledRun(model.voxels, lod, [&](const FilledRun& run) { runs.push_back(run); });
        ASSERT_EQ(runs, expected) << model;
    }
    EXPECT_EQ(MessageOf([] { ForEachFilledRun(MakeRandomModel(1).voxels, -1, {}); }),
              "The level of detail for runs of voxels cannot be negative. The value encountered was -1.");
}

} // namespace
} // namespace brix
