// One pass over a level: every plate is rewritten by a rule that reads it and the plates beside, below and above it. The pass
// owns the borders of stacks and segments, the extents and the run-length code; a neighbour that does not exist is an empty
// stack.
#pragma once

#include "../model/CombineStacks.h"
#include "../model/InstructionSet.h"
#include "LevelGrid.h"
#include "Neighbourhood.h"

namespace brix {

/// What a pass looks at: the voxels `distance` (1 or more) away on one side.
struct Look
{
    Axis axis;
    Side side;
    std::int64_t distance;
};

/// A second level that has the last word on every plate of a pass: restrain(plate, guide's plate), which is the plate itself
/// where the guide is empty.
template <class Restrain> struct Restraint
{
    const LevelGrid* guide; // may be null: no restraint
    Restrain restrain;
};
template <class Restrain> Restraint(const LevelGrid*, Restrain) -> Restraint<Restrain>;

inline constexpr Restraint Unrestrained{nullptr, [](const VoxelPlate<bool>& plate, const VoxelPlate<bool>&) { return plate; }};

/// The stacks beside those of a grid, as what a pass reads.
inline LevelGrid::Source Beside(const LevelGrid& grid, Axis axis, Side side) { return {&grid, NeighbourOf({}, axis, side)}; }

/// Calls work(constant) with a type whose `value` is the axis.
template <class Work> bool WithAxis(Axis axis, const Work& work)
{
    switch (axis) {
    case Axis::X:
        return work(std::integral_constant<Axis, Axis::X>());
    case Axis::Y:
        return work(std::integral_constant<Axis, Axis::Y>());
    case Axis::Z:
        break;
    }
    return work(std::integral_constant<Axis, Axis::Z>());
}

/// What each voxel of a plate sees `distance` (1..16) voxels towards a side along x or y.
template <Axis axis, Side side>
VoxelPlate<bool> Towards(const VoxelPlate<bool>& here, const VoxelPlate<bool>& beyond, std::int64_t distance)
{
    const int steps = static_cast<int>(distance);
    if constexpr (axis == Axis::X)
        return side == Side::Lower ? TowardsLowerX(here, beyond, steps) : TowardsUpperX(here, beyond, steps);
    else
        return side == Side::Lower ? TowardsLowerY(here, beyond, steps) : TowardsUpperY(here, beyond, steps);
}

template <Side side> ShiftedStack SeenTowards(const VoxelStack<bool>& here, const VoxelStack<bool>& beyond, std::int64_t distance)
{
    return side == Side::Lower ? SeenBelow(here, beyond, distance) : SeenAbove(here, beyond, distance);
}

inline bool IsUnallocated(const VoxelStack<bool>& stack) { return stack.IsUnallocated(); }
inline bool IsUnallocated(const ShiftedStack& stack) { return stack.lower.IsUnallocated() && stack.upper.IsUnallocated(); }

/// Rewrites every stack of the grid: stacksOf(stack, combine) calls combine(sources...) with the stacks to be read, and the
/// result is rule(their plates...), height by height, restrained and clipped at the extents. `sources` tells where those stacks
/// are, the grid's own among them. The rule must make an empty plate of empty plates, and where all sources are empty, so must
/// the restraint: only what has a source that is not empty is visited. Without a restraint it must make a full plate where all
/// that it reads of the grid is full. Returns whether anything has changed.
template <class StacksOf, class Rule, class Restrain>
bool Pass(LevelGrid& grid, std::initializer_list<LevelGrid::Source> sources, const StacksOf& stacksOf, const Rule& rule,
          const Restraint<Restrain>& restraint, InstructionSet instructionSet = FastestInstructionSet())
{
    bool isChanged = false;
    const auto write = [&](const Triple& stack, Stack& result) {
        stacksOf(stack, [&](const auto&... stacks) {
            if ((IsUnallocated(stacks) && ...)) {
                result = Stack();
                return;
            }
            const Stack& guide = restraint.guide != nullptr ? restraint.guide->StackAt(stack) : EmptyStack;
            const OffsetBox inExtents = grid.Inside(stack);
            if (guide.IsUnallocated() && inExtents.IsWholeStack()) {
                CombineStacks(result, rule, stacks...);
                return;
            }
            const auto restrained = [&](const Plate& inside, const Plate& barrier, const auto&... plates) {
                return inside & restraint.restrain(rule(plates...), barrier);
            };
            CombineStacks(result, restrained, BoxStack(inExtents), guide, stacks...);
        });
        isChanged = isChanged || !(result == grid.StackAt(stack));
    };
    const bool keepsFull = restraint.guide == nullptr;
    RunWith(instructionSet, [&] { grid.Rewrite({sources.begin(), sources.size()}, keepsFull, write); });
    return isChanged;
}

// PassAlong for one axis and side. What is seen lies in two stacks, which are `skipped` and one more stacks away; without a
// barrier there is no plate of it.
template <Axis axis, Side side, class Rule, class Restrain>
bool PassTowards(LevelGrid& grid, std::int64_t distance, const Rule& rule, const Restraint<Restrain>& restraint,
                 InstructionSet instructionSet)
{
    const std::int64_t skipped = (distance - 1) / StackSizeAlong(axis);
    const std::int64_t steps = distance - skipped * StackSizeAlong(axis);
    const auto withSeen = [&](const Triple& stack, const auto& combine, const auto&... barrier) {
        const VoxelStack<bool>& near = grid.StackAt(NeighbourOf(stack, axis, side, skipped));
        const VoxelStack<bool>& far = grid.StackAt(NeighbourOf(stack, axis, side, skipped + 1));
        if constexpr (axis == Axis::Z)
            combine(grid.StackAt(stack), SeenTowards<side>(near, far, steps), barrier...);
        else
            combine(grid.StackAt(stack), near, far, barrier...);
    };
    const auto seenBeyond = [&](const Plate& seen, const auto&... barrier) {
        if constexpr (sizeof...(barrier) == 0)
            return seen;
        else
            return restraint.restrain(seen, barrier...);
    };
    const auto ruleTowards = [&](const Plate& here, const auto&... plates) {
        if constexpr (axis == Axis::Z)
            return rule(here, seenBeyond(plates...));
        else
            return [&](const Plate& near, const Plate& far, const auto&... barrier) {
                return rule(here, seenBeyond(Towards<axis, side>(near, far, steps), barrier...));
            }(plates...);
    };
    const LevelGrid::Source nearSource{&grid, NeighbourOf({}, axis, side, skipped)};
    const LevelGrid::Source farSource{&grid, NeighbourOf({}, axis, side, skipped + 1)};
    if (restraint.guide == nullptr)
        return Pass(grid, {{&grid}, nearSource, farSource}, withSeen, ruleTowards, Unrestrained, instructionSet);
    const auto withBarrier = [&](const Triple& stack, const auto& combine) {
        withSeen(stack, combine, restraint.guide->StackAt(stack));
    };
    return Pass(grid, {{&grid}, nearSource, farSource}, withBarrier, ruleTowards, Unrestrained, instructionSet);
}

/// Rewrites every plate by rule(here, seen), each voxel of `seen` being what the voxel sees where the pass looks. A restraint
/// holds what is seen, not the result. The rule must be empty where `here` and `seen` are.
template <class Rule, class Restrain>
bool PassAlong(LevelGrid& grid, const Look& look, const Rule& rule, const Restraint<Restrain>& restraint,
               InstructionSet instructionSet = FastestInstructionSet())
{
    return WithAxis(look.axis, [&](auto axis) {
        if (look.side == Side::Lower)
            return PassTowards<axis.value, Side::Lower>(grid, look.distance, rule, restraint, instructionSet);
        return PassTowards<axis.value, Side::Upper>(grid, look.distance, rule, restraint, instructionSet);
    });
}

/// Rewrites every plate by rule(rule(here, seen on the lower side), seen on the upper side), looking no farther than the size of
/// a stack (1 .. StackSizeAlong) on either.
template <class Rule, class Restrain>
bool PassBothWays(LevelGrid& grid, Axis alongAxis, std::int64_t lowerDistance, std::int64_t upperDistance, const Rule& rule,
                  const Restraint<Restrain>& restraint, InstructionSet instructionSet = FastestInstructionSet())
{
    return WithAxis(alongAxis, [&](auto axis) {
        const auto withSeen = [&](const Triple& stack, const auto& combine) {
            const VoxelStack<bool>& here = grid.StackAt(stack);
            const VoxelStack<bool>& lower = grid.StackAt(NeighbourOf(stack, axis, Side::Lower));
            const VoxelStack<bool>& upper = grid.StackAt(NeighbourOf(stack, axis, Side::Upper));
            if constexpr (axis == Axis::Z)
                combine(here, SeenBelow(here, lower, lowerDistance), SeenAbove(here, upper, upperDistance));
            else
                combine(here, lower, upper);
        };
        const auto ruleBothWays = [&](const Plate& here, const Plate& lower, const Plate& upper) {
            if constexpr (axis == Axis::Z)
                return rule(rule(here, lower), upper);
            else
                return rule(rule(here, Towards<axis.value, Side::Lower>(here, lower, lowerDistance)),
                            Towards<axis.value, Side::Upper>(here, upper, upperDistance));
        };
        return Pass(grid, {{&grid}, Beside(grid, axis, Side::Lower), Beside(grid, axis, Side::Upper)}, withSeen, ruleBothWays,
                    restraint, instructionSet);
    });
}

/// Rewrites every plate by rule(here, HorizontalNeighbours).
template <class Rule, class Restrain>
bool PassBeside(LevelGrid& grid, const Rule& rule, const Restraint<Restrain>& restraint,
                InstructionSet instructionSet = FastestInstructionSet())
{
    const auto withNeighbours = [&](const Triple& stack, const auto& combine) {
        combine(grid.StackAt(stack), grid.StackAt(NeighbourOf(stack, Axis::X, Side::Lower)),
                grid.StackAt(NeighbourOf(stack, Axis::X, Side::Upper)), grid.StackAt(NeighbourOf(stack, Axis::Y, Side::Lower)),
                grid.StackAt(NeighbourOf(stack, Axis::Y, Side::Upper)));
    };
    const auto ruleBeside = [&](const Plate& here, const auto&... beyond) {
        return rule(here, HorizontalNeighbours(here, beyond...));
    };
    return Pass(grid,
                {{&grid},
                 Beside(grid, Axis::X, Side::Lower),
                 Beside(grid, Axis::X, Side::Upper),
                 Beside(grid, Axis::Y, Side::Lower),
                 Beside(grid, Axis::Y, Side::Upper)},
                withNeighbours, ruleBeside, restraint, instructionSet);
}

/// Rewrites every plate by rule(here, HorizontalNeighbours, plate below, plate above).
template <class Rule, class Restrain>
bool PassAround(LevelGrid& grid, const Rule& rule, const Restraint<Restrain>& restraint,
                InstructionSet instructionSet = FastestInstructionSet())
{
    const auto withNeighbours = [&](const Triple& stack, const auto& combine) {
        const VoxelStack<bool>& here = grid.StackAt(stack);
        combine(here, SeenBelow(here, grid.StackAt(NeighbourOf(stack, Axis::Z, Side::Lower))),
                SeenAbove(here, grid.StackAt(NeighbourOf(stack, Axis::Z, Side::Upper))),
                grid.StackAt(NeighbourOf(stack, Axis::X, Side::Lower)), grid.StackAt(NeighbourOf(stack, Axis::X, Side::Upper)),
                grid.StackAt(NeighbourOf(stack, Axis::Y, Side::Lower)), grid.StackAt(NeighbourOf(stack, Axis::Y, Side::Upper)));
    };
    const auto ruleAround = [&](const Plate& here, const Plate& below, const Plate& above, const auto&... beyond) {
        return rule(here, HorizontalNeighbours(here, beyond...), below, above);
    };
    return Pass(grid,
                {{&grid},
                 Beside(grid, Axis::X, Side::Lower),
                 Beside(grid, Axis::X, Side::Upper),
                 Beside(grid, Axis::Y, Side::Lower),
                 Beside(grid, Axis::Y, Side::Upper),
                 Beside(grid, Axis::Z, Side::Lower),
                 Beside(grid, Axis::Z, Side::Upper)},
                withNeighbours, ruleAround, restraint, instructionSet);
}

} // namespace brix
