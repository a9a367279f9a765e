// Stack and voxel iterators against plain lookup.
#include "model/ForEachStack.h"
#include "model/VoxelIterator.h"
#include "operations/SliceRows.h"
#include "support/Messages.h"
#include "support/RandomModels.h"
#include "support/Stacks.h"

#include <gtest/gtest.h>

#include <limits>
#include <set>

namespace brix {
namespace {

using namespace tests;

constexpr std::int64_t Lowest64 = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t Highest64 = std::numeric_limits<std::int64_t>::max();
constexpr const char* StackOutside = "Attempt to operate on a stack iterator that points outside the voxel model extents.";
constexpr const char* VoxelOutside = "Attempt to operate on a voxel iterator that points outside the voxel model extents.";

VoxelModel<bool> SmallModel() { return VoxelModel<bool>(Extents(Axes(1, {0, 0, 0}, 0, 0), {-3, -3, 0}, {20, 20, 70}, 2), 2); }

TEST(Iterators, RefuseToWorkOutsideTheModel)
{
    VoxelModel<bool> model = SmallModel();
    const StackIterator stack(model, 1);
    const StackIterator valid(model, {0, 0, 0}, 1);
    EXPECT_FALSE(stack.IsValid());
    EXPECT_EQ(&stack.VoxelModelRef(), &model);
    EXPECT_EQ(stack.VoxelLOD(), 1);
    const auto ofStack = [](const auto& access) { EXPECT_EQ(MessageOf<std::out_of_range>(access), StackOutside); };
    ofStack([&] { stack.Validate(); });
    ofStack([&] { stack.VoxelStoreRef(); });
    ofStack([&] { stack.VoxelStackRef(); });
    ofStack([&] { stack.LowerIndices(); });
    ofStack([&] { stack.LowerOffset(); });
    ofStack([&] { stack.UpperOffset(); });
    ofStack([&] { (void)(stack < valid); });
    ofStack([&] { (void)(valid < stack); });

    VoxelIterator voxel(model, 1);
    EXPECT_FALSE(voxel.IsValid());
    EXPECT_EQ(&voxel.VoxelModelRef(), &model);
    EXPECT_EQ(voxel.VoxelLOD(), 1);
    const Triple step{1, 0, 0};
    const auto ofVoxel = [](const auto& access) { EXPECT_EQ(MessageOf<std::out_of_range>(access), VoxelOutside); };
    ofVoxel([&] { voxel.Validate(); });
    ofVoxel([&] { (void)voxel.Value(); });
    ofVoxel([&] { (void)voxel.VoxelIndices(); });
    ofVoxel([&] { voxel += step; });
    ofVoxel([&] { (void)(voxel + step); });

    const VoxelModel<bool> other = SmallModel();
    EXPECT_EQ(MessageOf([&] { (void)(valid < ConstStackIterator(other, step, 1)); }),
              "Attempt to compare iterators for different voxel models.");
}

TEST(Iterators, TellStacksFromVoxelsAtTheEdgeOfTheExtents)
{
    VoxelModel<bool> model = SmallModel();
    EXPECT_TRUE(StackIterator(model, {-16, -16, 0}, 2).IsValid()) << "in a stack of the model though outside its extents";
    EXPECT_FALSE(StackIterator(model, {-17, -1, 0}, 2).IsValid()) << "in a chunk of the model, in none of its stacks";
    EXPECT_FALSE(StackIterator(model, {0, 0, -1}, 2).IsValid()) << "in no chunk of the model";
    EXPECT_FALSE(model.FindVoxel({-16, -16, 0}, 2).IsValid());
    EXPECT_FALSE(model.FindVoxel({-4, 0, 0}, 2).IsValid());
    EXPECT_FALSE(model.FindVoxel({0, 0, 71}, 2).IsValid());
    EXPECT_TRUE(model.FindVoxel({-3, 20, 70}, 2).IsValid());
    for (const std::int64_t extreme : {Lowest64, Highest64}) {
        EXPECT_FALSE(StackIterator(model, {extreme, 0, 0}, 2).IsValid());
        EXPECT_FALSE(model.FindVoxel({0, extreme, extreme}, 0).IsValid());
        VoxelIterator voxel = model.FindVoxel({-2, -2, 1}, 2);
        voxel += {extreme, extreme, extreme};
        EXPECT_FALSE(voxel.IsValid());
    }
}

TEST(Iterators, FindWhatPlainLookupFinds)
{
    for (const RandomModel& random : RandomModels(1, 60)) {
        for (const ReferenceModel& level : random.reference.AllLevels()) {
            const Extents& extents = level.ExtentsRef();
            std::int64_t faults = 0;
            ForEachTriple(Minus(extents.LowerIndices(), {1, 1, 1}), Plus(extents.UpperIndices(), {1, 1, 1}),
                          [&](const Triple& voxel) {
                              const ConstVoxelIterator found = random.voxels.FindVoxel(voxel, level.VoxelLOD());
                              if (found.IsValid() != extents.ContainsVoxel(voxel)) ++faults;
                              if (found.IsValid() && (found.Value() != level.Value(voxel) || found.VoxelIndices() != voxel))
                                  ++faults;
                          });
            ASSERT_EQ(faults, 0) << random << ", level " << level.VoxelLOD();
        }
    }
}

// Steps of every size, across layers, stacks and chunks, and out of the model; the same place must be reached as by lookup.
TEST(Iterators, WalkWhereTheirStepsLead)
{
    for (RandomModel& random : RandomModels(100, 150)) {
        Random steps(random.seed);
        const std::int64_t lod = steps.Between(0, random.voxels.FinestLOD());
        const ReferenceModel level = random.reference.AtLevel(lod);
        const Triple start = level.ExtentsRef().LowerIndices();
        Triple place = start;
        VoxelIterator walker = random.voxels.FindVoxel(start, lod);
        for (int i = 0; i < 200; ++i) {
            const std::int64_t reach = steps.OneIn(3) ? 1 : steps.OneIn(3) ? 20 : 70;
            const Triple step{steps.Between(-reach, reach), steps.Between(-reach, reach), steps.Between(-reach, reach)};
            const Triple target = Plus(place, step);
            const ConstVoxelIterator moved = ConstVoxelIterator(walker) + step;
            ASSERT_EQ(moved.IsValid(), level.ExtentsRef().ContainsVoxel(target)) << random;
            if (!moved.IsValid()) continue;
            walker += step;
            place = target;
            ASSERT_EQ(walker.VoxelIndices(), place) << random;
            ASSERT_EQ(walker.Value(), level.Value(place)) << random;
            ASSERT_EQ(moved.Value(), level.Value(place)) << random;
        }
    }
}

// Any edit of a stack: one voxel, which isolates its layer and may leave it so, other layers for the same content, or other
// content.
void EditAtRandom(VoxelModel<bool>& model, ReferenceModel& level, const Triple& voxel, Random& random)
{
    const StackIterator place(model, voxel, level.VoxelLOD());
    VoxelStack<bool>& stack = place.VoxelStackRef();
    const Triple offset = Minus(voxel, place.LowerIndices());
    switch (random.Between(0, 4)) {
    case 0: {
        VoxelPlate<bool>& plate = stack.LayerVoxelPlateRef(stack.IsolateLevel(offset[2], true, true));
        const VoxelPlate<bool> bit = Box({offset[0], offset[1]}, {offset[0], offset[1]});
        plate = random.OneIn(2) ? plate | bit : AndNot(plate, bit);
        break;
    }
    case 1:
        stack.Decompress();
        break;
    case 2:
        stack.Compress();
        break;
    case 3:
        stack.FillOutsideBox({0, 0, 0}, {15, 15, offset[2]}, random.OneIn(2));
        break;
    default:
        stack = MakeStack(RandomHeights(random));
    }
    const Heights heights = HeightsOf(stack);
    ForEachTriple({0, 0, 0}, {15, 15, 63}, [&](const Triple& at) {
        level.Set(Plus(place.LowerIndices(), at), heights[static_cast<std::size_t>(at[2])].Value({at[0], at[1]}));
    });
}

// Voxel iterators and stack iterators that were made before all edits, and slices, are read between them.
TEST(Iterators, ReadWhatTheStacksHoldAtThatMoment)
{
    for (RandomModel& random : RandomModels(500, 40)) {
        Random choices(random.seed);
        const std::int64_t lod = random.voxels.FinestLOD();
        ReferenceModel level = random.reference.AtLevel(lod);
        const Triple& lower = level.ExtentsRef().LowerIndices();
        const Triple& upper = level.ExtentsRef().UpperIndices();
        const auto anyVoxel = [&] {
            return Triple{choices.Between(lower[0], upper[0]), choices.Between(lower[1], upper[1]),
                          choices.Between(lower[2], upper[2])};
        };
        std::vector<ConstVoxelIterator> kept;
        for (int i = 0; i < 30; ++i) kept.emplace_back(random.voxels.FindVoxel(anyVoxel(), lod));
        const StackIterator stack(random.voxels, kept.front().VoxelIndices(), lod);

        for (int edit = 0; edit < 40; ++edit) {
            const Triple edited = anyVoxel();
            EditAtRandom(random.voxels, level, edited, choices);
            for (const ConstVoxelIterator& voxel : kept) ASSERT_EQ(voxel.Value(), level.Value(voxel.VoxelIndices())) << random;
            const auto [x, y, z] = kept.front().VoxelIndices();
            const Triple offset = Minus({x, y, z}, stack.LowerIndices());
            const Heights heights = HeightsOf(stack.VoxelStackRef());
            ASSERT_EQ(heights[static_cast<std::size_t>(offset[2])].Value({offset[0], offset[1]}), level.Value({x, y, z}))
                << random;
            const auto rows = RowsAtSliceXIndex(random.voxels, x, lod, false, false);
            ForEachTriple({x, lower[1], lower[2]}, {x, upper[1], upper[2]}, [&](const Triple& at) {
                ASSERT_EQ(rows[static_cast<std::size_t>(at[2] - lower[2])][static_cast<std::size_t>(at[1] - lower[1])],
                          level.Value(at))
                    << random;
            });
        }
    }
}

TEST(Iterators, AreOrderedAsStacksAreVisited)
{
    for (RandomModel& random : RandomModels(300, 60)) {
        for (std::int64_t lod = 0; lod <= random.voxels.FinestLOD(); ++lod) {
            std::vector<StackIterator> visited;
            ForEachStack(random.voxels, lod, [&](VoxelStore<bool>& store, const StackIndices& ij) {
                visited.emplace_back(random.voxels, store.LowerIndices(ij), lod);
                ASSERT_EQ(&visited.back().VoxelStoreRef(), &store);
                ASSERT_EQ(&visited.back().VoxelStackRef(), &store.VoxelStackRef(ij));
                ASSERT_EQ(visited.back().LowerIndices(), store.LowerIndices(ij));
                ASSERT_EQ(visited.back().LowerOffset(), store.LowerOffset(ij));
                ASSERT_EQ(visited.back().UpperOffset(), store.UpperOffset(ij));
            });
            for (std::size_t i = 1; i < visited.size(); ++i) {
                ASSERT_TRUE(visited[i - 1] < visited[i]) << random;
                ASSERT_FALSE(visited[i] < visited[i - 1]) << random;
            }
            ASSERT_FALSE(visited.front() < visited.front());
            ASSERT_EQ(std::set<StackIterator>(visited.rbegin(), visited.rend()).size(), visited.size());
        }
    }
}

} // namespace
} // namespace brix
