// Many look-ups in one call against the reference: few and many, inside the extents, around them and far away.
#include "model/AreFilled.h"
#include "support/RandomModels.h"

#include <gtest/gtest.h>

namespace brix {
namespace {

using namespace tests;

TEST(AreFilled, TellsOfEachVoxelWhatTheModelHolds)
{
    for (const RandomModel& model : RandomModels(7000, 60)) {
        Random random(model.seed);
        for (std::int64_t lod = 0; lod <= model.voxels.FinestLOD(); ++lod) {
            const ReferenceModel reference(model.voxels, lod);
            const Extents& extents = reference.ExtentsRef();
            for (const std::size_t count : {0U, 1U, 33U, 3000U}) {
                std::vector<Triple> voxels(count);
                for (Triple& voxel : voxels) {
                    for (std::size_t i = 0; i < 3; ++i)
                        voxel[i] = random.Between(extents.LowerIndices()[i] - 20, extents.UpperIndices()[i] + 20);
                    if (random.OneIn(20))
                        voxel[static_cast<std::size_t>(random.Between(0, 2))] = static_cast<std::int64_t>(random.Bits());
                }
                const auto filled = std::make_unique<bool[]>(count);
                AreFilled(model.voxels, lod, voxels, {filled.get(), count});
                for (std::size_t i = 0; i < count; ++i)
                    ASSERT_EQ(filled[i], reference.Value(voxels[i])) << model << " voxel " << i;

                const Axes& axes = model.voxels.AxesRef();
                std::vector<std::array<double, 3>> points;
                for (const Triple& voxel : voxels) points.push_back(axes.ToWorldCoordinates(axes.VoxelCenter(voxel, lod)));
                AreFilled(model.voxels, lod, points, {filled.get(), count});
                for (std::size_t i = 0; i < count; ++i)
                    ASSERT_EQ(filled[i], reference.Value(axes.ContainingVoxel(axes.FromWorldCoordinates(points[i]), lod)))
                        << model;
            }
        }
    }
}

TEST(AreFilled, RefusesLevelsAndSizesThatDoNotFit)
{
    const VoxelModel<bool> model(Extents(Axes(1, {}, 0, 0), {0, 0, 0}, {9, 9, 9}, 2), 2);
    const std::vector<Triple> voxels(3);
    bool filled[2];
    EXPECT_THROW(AreFilled(model, 3, voxels, filled), std::domain_error);
    EXPECT_THROW(AreFilled(model, 2, voxels, filled), std::domain_error);
}

} // namespace
} // namespace brix
