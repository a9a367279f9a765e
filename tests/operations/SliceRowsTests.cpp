// Rows at slices against the voxels that they show.
#include "operations/SliceRows.h"
#include "support/Messages.h"
#include "support/RandomModels.h"

#include <gtest/gtest.h>

#include <limits>

namespace brix {
namespace {

using namespace tests;
using Rows = std::vector<std::vector<bool>>;

struct Slicing
{
    Rows (*slice)(const VoxelModel<bool>&, std::int64_t, std::int64_t, bool, bool);
    std::size_t fixedAxis;
    std::size_t rowAxis;
    std::size_t bitAxis;
};

constexpr std::array<Slicing, 3> Slicings{
    {{RowsAtSliceXIndex, 0, 2, 1}, {RowsAtSliceYIndex, 1, 2, 0}, {RowsAtSliceZIndex, 2, 1, 0}}};

// The rows of a slice by asking for every voxel, in the order that the flags ask for.
Rows PlainRows(const ReferenceModel& level, const Slicing& slicing, std::int64_t index, bool reverseRows, bool reverseBits)
{
    const Triple lower = level.ExtentsRef().LowerIndices();
    const Triple upper = level.ExtentsRef().UpperIndices();
    Rows rows;
    for (std::int64_t row = lower[slicing.rowAxis]; row <= upper[slicing.rowAxis]; ++row) {
        rows.emplace_back();
        for (std::int64_t bit = lower[slicing.bitAxis]; bit <= upper[slicing.bitAxis]; ++bit) {
            Triple voxel{};
            voxel[slicing.fixedAxis] = index;
            voxel[slicing.rowAxis] = reverseRows ? lower[slicing.rowAxis] + upper[slicing.rowAxis] - row : row;
            voxel[slicing.bitAxis] = reverseBits ? lower[slicing.bitAxis] + upper[slicing.bitAxis] - bit : bit;
            rows.back().push_back(level.Value(voxel));
        }
    }
    return rows;
}

TEST(SliceRows, ShowTheVoxelsOfThePlane)
{
    for (const RandomModel& model : RandomModels(2000, 120)) {
        Random random(model.seed);
        for (const ReferenceModel& level : model.reference.AllLevels()) {
            for (const Slicing& slicing : Slicings) {
                const std::int64_t lower = level.ExtentsRef().LowerIndices()[slicing.fixedAxis];
                const std::int64_t upper = level.ExtentsRef().UpperIndices()[slicing.fixedAxis];
                for (const std::int64_t index : {lower - 1, lower, random.Between(lower, upper), upper, upper + 1}) {
                    const bool reverseRows = random.OneIn(2);
                    const bool reverseBits = random.OneIn(2);
                    ASSERT_EQ(slicing.slice(model.voxels, index, level.VoxelLOD(), reverseRows, reverseBits),
                              PlainRows(level, slicing, index, reverseRows, reverseBits))
                        << model << ", level " << level.VoxelLOD() << ", axis " << slicing.fixedAxis << ", index " << index;
                }
            }
        }
    }
}

TEST(SliceRows, AreFalseBesideTheModel)
{
    ReferenceModel full(Extents(Axes(1, {0, 0, 0}, 0, 3), {-2, -3, -4}, {4, 5, 6}, 3), 3, 3);
    full = full.Where([](const Triple&) { return true; });
    const VoxelModel<bool> model = MakeModel(full);
    for (const std::int64_t index : {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
        EXPECT_EQ(RowsAtSliceXIndex(model, index, 3, false, false), Rows(11, std::vector<bool>(9)));
        EXPECT_EQ(RowsAtSliceYIndex(model, index, 3, true, false), Rows(11, std::vector<bool>(7)));
        EXPECT_EQ(RowsAtSliceZIndex(model, index, 3, false, true), Rows(9, std::vector<bool>(7)));
    }
    EXPECT_EQ(RowsAtSliceZIndex(model, 0, 3, false, false), Rows(9, std::vector<bool>(7, true)));
}

} // namespace
} // namespace brix
