// One pass over a level: every plate is rewritten by a rule that reads it and the plates beside, below and above it. The pass owns
// the borders of stacks and segments, the extents and the run-length code; a neighbour that does not exist is an empty stack.
#pragma once

#include "../model/CombineStacks.h"
#include "../model/InstructionSet.h"
#include "LevelGrid.h"
#include "Neighbourhood.h"

namespace brix {

/// What a pass looks at: the voxels `distance` away on one side (1..16 along x and y, 1..64 along z).
struct Look
{
    Axis axis;
    Side side;
    std::int64_t distance;
};

/// A second level that has the last word on every plate of a pass: restrain(plate, guide's plate).
template <class Restrain> struct Restraint
{
    const LevelGrid* guide; // may be null: no restraint
    Restrain restrain;
};

inline Triple NeighbourOf(Triple stack, Axis axis, Side side)
{
    stack[static_cast<std::size_t>(axis)] += side == Side::Lower ? -1 : 1;
    return stack;
}

inline bool IsUnallocated(const VoxelStack<bool>& stack) { return stack.IsUnallocated(); }
inline bool IsUnallocated(const ShiftedStack& stack) { return stack.lower.IsUnallocated() && stack.upper.IsUnallocated(); }

/// Rewrites every stack of the grid: stacksOf(stack, combine) calls combine(sources...) with the stacks to be read, and the result is
/// rule(their plates...), height by height, restrained and clipped at the extents. The rule must make an empty plate of empty plates,
/// and where all sources are empty, so must the restraint. Returns whether anything has changed.
template <class StacksOf, class Rule, class Restrain>
bool Pass(LevelGrid& grid, const StacksOf& stacksOf, const Rule& rule, const Restraint<Restrain>& restraint,
          InstructionSet instructionSet = FastestInstructionSet())
{
    using Plate = VoxelPlate<bool>;
    using Stack = VoxelStack<bool>;
    bool isChanged = false;
    const auto write = [&](const Triple& stack, Stack& result) {
        stacksOf(stack, [&](const auto&... sources) {
            if ((IsUnallocated(sources) && ...)) {
                result = Stack();
            } else if (restraint.guide == nullptr || restraint.guide->StackAt(stack).IsUnallocated()) {
                CombineStacks(result, rule, sources...);
            } else {
                const auto restrained = [&](const Plate& guide, const auto&... plates) {
                    return restraint.restrain(rule(plates...), guide);
                };
                CombineStacks(result, restrained, restraint.guide->StackAt(stack), sources...);
            }
        });
        if (!result.IsUnallocated() && !grid.IsInside(stack)) {
            result.FillOutsideBox(grid.LowerOffset(stack), grid.UpperOffset(stack), false);
        }
        isChanged = isChanged || !(result == grid.StackAt(stack));
    };
    RunWith(instructionSet, [&] { grid.Rewrite(write); });
    return isChanged;
}

/// Rewrites every plate by rule(here, seen), each voxel of `seen` being what the voxel sees where the pass looks.
template <class Rule, class Restrain>
bool PassAlong(LevelGrid& grid, const Look& look, const Rule& rule, const Restraint<Restrain>& restraint,
               InstructionSet instructionSet = FastestInstructionSet())
{
    using Plate = VoxelPlate<bool>;
    const auto [axis, side, distance] = look;
    const auto withNeighbour = [&grid, axis = axis, side = side](const Triple& stack, const auto& combine) {
        combine(grid.StackAt(stack), grid.StackAt(NeighbourOf(stack, axis, side)));
    };
    const auto passBeside = [&, steps = static_cast<int>(distance)](const auto& towards) {
        const auto ruleBeside = [&](const Plate& here, const Plate& beyond) { return rule(here, towards(here, beyond, steps)); };
        return Pass(grid, withNeighbour, ruleBeside, restraint, instructionSet);
    };
    switch (axis) {
    case Axis::X:
        return side == Side::Lower ? passBeside(TowardsLowerX) : passBeside(TowardsUpperX);
    case Axis::Y:
        return side == Side::Lower ? passBeside(TowardsLowerY) : passBeside(TowardsUpperY);
    case Axis::Z:
        break;
    }
    const auto withStacked = [&, side = side, distance = distance](const Triple& stack, const auto& combine) {
        const VoxelStack<bool>& here = grid.StackAt(stack);
        const VoxelStack<bool>& neighbour = grid.StackAt(NeighbourOf(stack, Axis::Z, side));
        combine(here, side == Side::Lower ? SeenBelow(here, neighbour, distance) : SeenAbove(here, neighbour, distance));
    };
    return Pass(grid, withStacked, rule, restraint, instructionSet);
}

/// Rewrites every plate by rule(here, HorizontalNeighbours).
template <class Rule, class Restrain>
bool PassBeside(LevelGrid& grid, const Rule& rule, const Restraint<Restrain>& restraint,
                InstructionSet instructionSet = FastestInstructionSet())
{
    using Plate = VoxelPlate<bool>;
    const auto withNeighbours = [&](const Triple& stack, const auto& combine) {
        combine(grid.StackAt(stack), grid.StackAt(NeighbourOf(stack, Axis::X, Side::Lower)),
                grid.StackAt(NeighbourOf(stack, Axis::X, Side::Upper)), grid.StackAt(NeighbourOf(stack, Axis::Y, Side::Lower)),
                grid.StackAt(NeighbourOf(stack, Axis::Y, Side::Upper)));
    };
    const auto ruleBeside = [&](const Plate& here, const auto&... beyond) {
        return rule(here, HorizontalNeighbours(here, beyond...));
    };
    return Pass(grid, withNeighbours, ruleBeside, restraint, instructionSet);
}

/// Rewrites every plate by rule(here, HorizontalNeighbours, plate below, plate above).
template <class Rule, class Restrain>
bool PassAround(LevelGrid& grid, const Rule& rule, const Restraint<Restrain>& restraint,
                InstructionSet instructionSet = FastestInstructionSet())
{
    using Plate = VoxelPlate<bool>;
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
    return Pass(grid, withNeighbours, ruleAround, restraint, instructionSet);
}

} // namespace brix
