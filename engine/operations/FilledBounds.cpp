#include "FilledBounds.h"

namespace brix {

void WidenByFilled(const VoxelStack<bool>& stack, const Triple& corner, Triple& lower, Triple& upper)
{
    if (stack.IsUnallocated()) return;
    VoxelPlate<bool> anyPlate;
    std::int64_t lowerZ = StackHeight;
    std::int64_t upperZ = -1;
    for (std::int32_t layer = 0; layer < stack.LayerCount(); ++layer) {
        const VoxelPlate<bool>& plate = stack.LayerVoxelPlateRef(layer);
        if (IsEmpty(plate)) continue;
        anyPlate = anyPlate | plate;
        lowerZ = std::min(lowerZ, stack.LowerOffset(layer));
        upperZ = stack.UpperOffset(layer);
    }
    unsigned anyRow = 0;
    std::int64_t lowerY = PlateWidth;
    std::int64_t upperY = -1;
    for (std::size_t y = 0; y < anyPlate.rows.size(); ++y) {
        if (anyPlate.rows[y] == 0) continue;
        anyRow |= anyPlate.rows[y];
        lowerY = std::min(lowerY, static_cast<std::int64_t>(y));
        upperY = static_cast<std::int64_t>(y);
    }
    lower = Lowest(lower, Plus(corner, {std::countr_zero(anyRow), lowerY, lowerZ}));
    upper = Highest(upper, Plus(corner, {static_cast<std::int64_t>(std::bit_width(anyRow)) - 1, upperY, upperZ}));
}

} // namespace brix
