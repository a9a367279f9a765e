// A sweep through a box of voxels: from one corner stack by stack, z innermost, so that all that enters a stack is known before
// it.
#pragma once

#include "../model/ForEachStack.h"
#include "SightMask.h"
#include "StackView.h"

#include <optional>

namespace brix::sight {

struct BoxSweep
{
    Triple lower; // the voxels that are swept: sight enters the box fully from every side that it comes from
    Triple upper;
    SweepOrder order;
    const SightMask* mask = nullptr; // what may be marked; everything, if there is none
    std::optional<Triple> eye{};     // a voxel that counts as empty

    Triple StackCount() const { return Plus(Minus(StackOfVoxel(upper), StackOfVoxel(lower)), {1, 1, 1}); }

    /// The lower corner of the stack that the sweep reaches after so many steps along x, y and z.
    Triple CornerAt(const Triple& steps) const
    {
        const Triple first = StackOfVoxel(lower);
        const Triple last = StackOfVoxel(upper);
        const auto along = [&](std::size_t i) { return order[i] == Side::Upper ? first[i] + steps[i] : last[i] - steps[i]; };
        return CornerOfStack({along(0), along(1), along(2)});
    }

    /// All of the box whose values may depend on a part of it: that part, and what lies behind it.
    std::array<Triple, 2> Behind(Triple partLower, Triple partUpper) const
    {
        for (std::size_t i = 0; i < 3; ++i) {
            if (order[i] == Side::Upper)
                partUpper[i] = upper[i];
            else
                partLower[i] = lower[i];
        }
        return {partLower, partUpper};
    }

    /// Whether something may be marked in a part of the box or behind it; what enters other parts need not be known.
    bool IsNeeded(const Triple& partLower, const Triple& partUpper) const
    {
        if (mask == nullptr) return true;
        const auto [first, last] = Behind(partLower, partUpper);
        return mask->HoldsAny(first, last);
    }
};

/// Adds what is visible in one stack, as the sweep sees it, to the model. `corner` is the stack's lower corner.
void MarkVisible(VoxelModel<bool>& result, std::int64_t lod, const BoxSweep& sweep, const Triple& corner,
                 const StackBuilder& seen);

/// Passes a carrier through the `number`th stack of a column.
template <class Carrier>
void SweepStack(VoxelModel<bool>& result, const VoxelModel<bool>& model, std::int64_t lod, const BoxSweep& sweep,
                const Triple& corner, std::int64_t number, Carrier& carrier)
{
    const Triple lower = Highest(sweep.lower, corner);
    const Triple upper = Lowest(sweep.upper, Plus(corner, LastOffset));
    if (!sweep.IsNeeded(lower, upper)) return;

    StackView view(FindStack(model, StackOfVoxel(corner), lod), Minus(lower, corner), Minus(upper, corner), sweep.order);
    if (sweep.eye && IsWithin(*sweep.eye, lower, upper)) view.Clear(Minus(*sweep.eye, corner));
    StackBuilder seen;
    if (view.Begin() > 0) seen.Append(0, {});
    carrier.Pass(view, number, corner, seen);
    if (view.End() < StackHeight) seen.Append(view.End(), {});
    MarkVisible(result, lod, sweep, corner, seen);
}

/// Passes a carrier through the stacks of the box and marks in `result` what is visible. Both models must hold the box at `lod`,
/// and have the same extents.
template <class Carrier>
void SweepBox(VoxelModel<bool>& result, const VoxelModel<bool>& model, std::int64_t lod, const BoxSweep& sweep, Carrier carrier)
{
    const Triple count = sweep.StackCount();
    WatchedLoop loop(static_cast<std::size_t>(count[0] * count[1]));
    for (std::int64_t j = 0; j < count[1]; ++j) {
        carrier.EnterRow();
        for (std::int64_t i = 0; i < count[0]; ++i) {
            carrier.EnterColumn(i, sweep.CornerAt({i, j, 0}));
            for (std::int64_t k = 0; k < count[2]; ++k) {
                SweepStack(result, model, lod, sweep, sweep.CornerAt({i, j, k}), k, carrier);
                CheckWatch();
            }
            loop.Step();
        }
    }
}

} // namespace brix::sight
