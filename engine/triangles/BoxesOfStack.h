// The boxes that cover the filled voxels of one stack.
//
//   rows  .##..#.     one plate, two bands of equal rows:
//         .##..#.     band 1 makes two boxes (columns 1-2 and column 5, two rows high),
//         .###...     band 2 one (columns 1-3)
#pragma once

#include "../model/VoxelStack.h"

namespace brix {

/// Calls visit(lower, upper) with the stack offsets of every box, the lower corner inclusive and the upper exclusive: layers
/// bottom to top, in a layer bands of adjacent equal rows, in a band runs of adjacent filled voxels.
template <class Visit> void ForEachBoxOfStack(const VoxelStack<bool>& stack, const Visit& visit)
{
    if (stack.IsUnallocated()) return;
    for (std::int32_t layer = 0; layer < stack.LayerCount(); ++layer) {
        const auto& rows = stack.LayerVoxelPlateRef(layer).rows;
        const std::int64_t bottom = stack.LowerOffset(layer);
        const std::int64_t top = stack.UpperOffset(layer) + 1;
        for (std::size_t y = 0; y < rows.size();) {
            std::size_t end = y + 1;
            while (end < rows.size() && rows[end] == rows[y]) ++end;
            for (std::uint32_t bits = rows[y]; bits != 0;) {
                const int first = std::countr_zero(bits);
                const int last = first + std::countr_one(bits >> first);
                visit(Triple{first, static_cast<std::int64_t>(y), bottom}, Triple{last, static_cast<std::int64_t>(end), top});
                bits &= ~0U << last;
            }
            y = end;
        }
    }
}

} // namespace brix
