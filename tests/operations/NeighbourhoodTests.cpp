// Passes over a level with every instruction set.
#include "operations/Neighbourhood.h"

#include "operations/NeighbourhoodPass.h"
#include "support/RandomCompanions.h"
#include "support/ReferenceOperations.h"

#include <gtest/gtest.h>

namespace brix {
namespace {

using namespace tests;

// A level on which a pass runs, and what it must become.
struct PassCase
{
    std::uint64_t seed;
    ReferenceModel source;
    ReferenceModel guide; // on the same extents
    bool isGuided;
    InstructionSet instructionSet;

    bool IsHeld(const Triple& voxel) const { return isGuided && guide.Value(voxel); }
};

// Runs pass(grid, restraint), which empties what the guide holds, and compares the grid's voxels with those where
// isFilled(voxel).
template <class RunPass, class IsFilled> void ExpectPass(const PassCase& test, const RunPass& runPass, const IsFilled& isFilled)
{
    const auto clear = [](const Plate& plate, const Plate& guide) { return AndNot(plate, guide); };
    const ReferenceModel expected = test.source.Where(isFilled);
    const VoxelModel<bool> model = MakeModel(test.source);
    const VoxelModel<bool> guide = MakeModel(test.guide);
    LevelGrid grid(model, model.ExtentsRef(model.FinestLOD()));
    const LevelGrid guideGrid(guide, guide.ExtentsRef(guide.FinestLOD()));
    const bool isChanged = runPass(grid, Restraint<decltype(clear)>{test.isGuided ? &guideGrid : nullptr, clear});
    EXPECT_EQ(isChanged, !Differences(test.source, expected).empty()) << "seed " << test.seed;
    EXPECT_EQ(Differences(ReferenceModel(grid.TakeModel(), model.FinestLOD()), expected), "") << "seed " << test.seed;
}

template <class Test> void ForEachPassCase(std::uint64_t firstSeed, std::uint64_t count, const Test& test)
{
    for (std::uint64_t seed = firstSeed; seed < firstSeed + count; ++seed) {
        Random random(seed);
        const ReferenceModel first = MakeFirst(random);
        const ReferenceModel source = first.AtLevel(first.FinestLOD());
        const ReferenceModel guide = RandomContent(random, source.ExtentsRef(), source.FinestLOD(), source.FinestLOD());
        for (const InstructionSet instructionSet : {InstructionSet::Portable, FastestInstructionSet()}) {
            test(random, PassCase{seed, source, guide, random.OneIn(2), instructionSet});
        }
    }
}

TEST(NeighbourhoodPass, SeesAlongEveryAxisAtEveryDistance)
{
    ForEachPassCase(1, 120, [](Random& random, const PassCase& test) {
        for (const Axis axis : AllAxes) {
            const Side side = random.OneIn(2) ? Side::Lower : Side::Upper;
            const std::int64_t size = StackSizeAlong(axis);
            const std::int64_t distance = random.OneIn(3) ? 1 : random.Between(1, random.OneIn(3) ? 3 * size : size);
            const std::int64_t lower = random.Between(1, size);
            const std::int64_t upper = random.OneIn(2) ? lower : random.Between(1, size);
            const auto seenFrom = [axis](Triple voxel, std::int64_t step) {
                voxel[static_cast<std::size_t>(axis)] += step;
                return voxel;
            };
            ExpectPass(
                test,
                [&](LevelGrid& grid, const auto& restraint) {
                    const auto rule = [](const Plate& here, const Plate& seen) { return AndNot(here | seen, here & seen); };
                    return PassAlong(grid, {axis, side, distance}, rule, restraint, test.instructionSet);
                },
                [&](const Triple& voxel) {
                    const Triple seen = seenFrom(voxel, side == Side::Lower ? -distance : distance);
                    return test.source.Value(voxel) != (test.source.Value(seen) && !test.IsHeld(voxel));
                });
            ExpectPass(
                test,
                [&](LevelGrid& grid, const auto& restraint) {
                    const auto rule = [](const Plate& here, const Plate& seen) { return here | seen; };
                    return PassBothWays(grid, axis, lower, upper, rule, restraint, test.instructionSet);
                },
                [&](const Triple& voxel) {
                    return !test.IsHeld(voxel) && (test.source.Value(voxel) || test.source.Value(seenFrom(voxel, -lower)) ||
                                                   test.source.Value(seenFrom(voxel, upper)));
                });
        }
    });
}

TEST(NeighbourhoodPass, CountsTheSixNeighbours)
{
    ForEachPassCase(201, 120, [](Random& random, const PassCase& test) {
        const std::int64_t horizontal = random.Between(1, 4);
        const std::int64_t vertical = random.Between(0, 2);
        ExpectPass(
            test,
            [&](LevelGrid& grid, const auto& restraint) {
                const auto rule = [&](const Plate&, const HorizontalNeighbours& beside) { return beside.Filled(horizontal); };
                return PassBeside(grid, rule, restraint, test.instructionSet);
            },
            [&](const Triple& voxel) { return !test.IsHeld(voxel) && CountBeside(test.source, voxel) >= horizontal; });
        ExpectPass(
            test,
            [&](LevelGrid& grid, const auto& restraint) {
                const auto rule = [&](const Plate& here, const HorizontalNeighbours& beside, const Plate& below,
                                      const Plate& above) {
                    return GrowWhere(here, beside, below, above, {horizontal, vertical});
                };
                return PassAround(grid, rule, restraint, test.instructionSet);
            },
            [&](const Triple& voxel) {
                const bool hasEnough =
                    CountBeside(test.source, voxel) >= horizontal && CountStacked(test.source, voxel) >= vertical;
                return !test.IsHeld(voxel) && (test.source.Value(voxel) || hasEnough);
            });
    });
}

} // namespace
} // namespace brix
