// Several threads with one model that none of them changes: every one gets what a single thread gets. Built with ThreadSanitizer,
// this shows data races; among what may race are levels and chunks that are made when a reader first asks for them.
#include "support/RandomModels.h"

#include <brix.h>

#include <gtest/gtest.h>

#include <functional>
#include <thread>

namespace brix::tests {
namespace {

struct Subject
{
    Voxels model;
    Voxels other;
};

Hash128 Combined(const std::vector<Voxels>& models)
{
    Hash128 hash{};
    for (const Voxels& model : models) {
        const Hash128 next = ContentHash(model);
        for (std::size_t i = 0; i < hash.size(); ++i) hash[i] = static_cast<std::uint8_t>(3 * hash[i] + next[i]);
    }
    return hash;
}

Hash128 HashOfNumber(std::int64_t number)
{
    Hash128 hash{};
    for (std::size_t i = 0; i < 8; ++i) hash[i] = static_cast<std::uint8_t>(number >> 8 * i);
    return hash;
}

// What is read of a model voxel by voxel, also where it stores nothing.
std::int64_t SumOfReads(const Voxels& model)
{
    std::int64_t sum = 0;
    for (std::int64_t lod = 0; lod <= model.FinestLOD(); ++lod) {
        sum += CountFilled(model, lod);
        const Extents& extents = model.ExtentsRef(lod);
        for (Triple voxel = extents.LowerIndices(); voxel[0] <= extents.UpperIndices()[0]; ++voxel[0])
            sum += model.FindVoxel(voxel, lod).Value() ? voxel[0] : 0;
        sum += model.ChunkRef(model.UpperChunkIndices()).VoxelStoreRef(lod).StacksPerRow();
    }
    return sum;
}

const std::vector<std::function<Hash128(const Subject&)>> Works{
    [](const Subject& s) { return HashOfNumber(SumOfReads(s.model)); },
    [](const Subject& s) {
        return ContentHash(Union({&s.model, &s.other}, s.model.FinestLOD(), false));
    },
    [](const Subject& s) { return ContentHash(Subtract(s.model, s.other, s.model.FinestLOD(), true)); },
    [](const Subject& s) { return ContentHash(ExpandHorizontally(s.model, 5, s.other, true)); },
    [](const Subject& s) { return ContentHash(ReduceByOneVoxel(s.model, 1, 1)); },
    [](const Subject& s) { return ContentHash(FillEnclosedRegions(s.model)); },
    [](const Subject& s) { return Combined(AutoSplit(s.model)); },
    [](const Subject& s) {
        return Combined(DensityMap({&s.model, &s.other}, {1, 2}, {1, 3}, 2));
    },
    [](const Subject& s) {
        return ContentHash(VisibilityFromDirection(s.model, {2, -3, 1}, s.model.FinestLOD(), 0.5));
    },
    [](const Subject& s) { return ContentHash(PathModel(s.model, s.model.FinestLOD(), 1, 2, true).TraversableVoxels()); },
    [](const Subject& s) {
        std::vector<WorldTriangle> triangles;
        TessellateVoxelModel(triangles, s.model, 2);
        return ContentHash(Voxelize(s.model.AxesRef(), triangles, 3));
    },
    [](const Subject& s) { return HashOfNumber(static_cast<std::int64_t>(SaveModel(s.model).size())); }};

Subject MakeSubject(OtherLevels levels)
{
    Random random(3);
    const Extents extents(Axes(1.6, {1, 2, 3}, 30, 4), {-40, -30, -70}, {50, 30, 20}, 3);
    Subject subject{MakeModel(RandomContent(random, extents, 3, 3)), MakeModel(RandomContent(random, extents, 3, 3))};
    subject.model.MakeLevels(levels);
    subject.model = Union({&subject.model, &subject.other}, 3, false); // with levels that nobody has asked for yet
    subject.model = Enlarge(subject.model, 0, 300, 0, 300, 0, 300);    // and chunks that it does not store
    return subject;
}

TEST(Threads, ShareAModel)
{
    for (const OtherLevels levels : {OtherLevels::AtOnce, OtherLevels::WhenAskedFor}) {
        std::vector<Hash128> expected;
        const Subject alone = MakeSubject(levels);
        for (const auto& work : Works) expected.push_back(work(alone));
        const Subject shared = MakeSubject(levels);
        std::vector<std::thread> threads;
        std::vector<std::size_t> asked(4, 0);
        for (std::size_t first = 0; first < asked.size(); ++first) {
            threads.emplace_back([&, first] {
                const Watch watch([&](double) { return ++asked[first] > 0; }, std::chrono::milliseconds(0));
                for (std::size_t i = 0; i < Works.size(); ++i) EXPECT_EQ(Works[i](shared), expected[i]) << i;
            });
        }
        for (std::thread& thread : threads) thread.join();
        for (const std::size_t count : asked) EXPECT_GT(count, 0U);
    }
}

} // namespace
} // namespace brix::tests
