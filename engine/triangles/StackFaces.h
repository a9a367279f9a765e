// The faces between filled and empty voxels of one stack, a column of 64 heights at a time: bit z of a word stands for height z.
//
//   heights of two columns beside each other     ..##..     their faces towards +x     ...#..    = here & ~beside
//                                                ...#..
#pragma once

#include "../model/StackIterator.h"

namespace brix {

/// Heights of a stack, bit z for height z.
using Heights = std::uint64_t;

/// The stack beside another one of the same level, `step` voxels from its lower corner; an empty one outside the extents.
inline const VoxelStack<bool>& StackBeside(const VoxelModel<bool>& model, std::int64_t lod, const Triple& corner,
                                           const Triple& step)
{
    static const VoxelStack<bool> nothing;
    const ConstStackIterator stack(model, Plus(corner, step), lod);
    return stack.IsValid() ? stack.VoxelStackRef() : nothing;
}

/// Whether all voxels of a stack are filled.
inline bool IsSolid(const VoxelStack<bool>& stack) { return stack.LayerCount() == 1 && IsFull(stack.Plates().front()); }

/// The columns of a stack and, around them, those of the stacks beside it: 16 x 16 columns with a border of one, of which the corners
/// stay empty.
class StackColumns
{
public:
    /// `corner`  voxel indices of the stack's lower corner
    StackColumns(const VoxelModel<bool>& model, std::int64_t lod, const VoxelStack<bool>& stack, const Triple& corner);

    /// The heights that are filled at x and y, -1..16.
    Heights At(std::int64_t x, std::int64_t y) const { return columns_[static_cast<std::size_t>(18 * (y + 1) + x + 1)]; }

private:
    template <class RowsOf> void Add(const VoxelStack<bool>& stack, const RowsOf& rowsOf);

    std::array<Heights, std::size_t{18} * 18> columns_{};
};

// Every layer toggles all heights from its own upwards where it differs from the one below. rowsOf(plate, flip) calls
// flip(row, number of a column, step to the next) for each row of bits that is wanted.
template <class RowsOf> void StackColumns::Add(const VoxelStack<bool>& stack, const RowsOf& rowsOf)
{
    if (stack.IsUnallocated()) return;
    VoxelPlate<bool> below;
    for (std::int32_t layer = 0; layer < stack.LayerCount(); ++layer) {
        const VoxelPlate<bool>& plate = stack.LayerVoxelPlateRef(layer);
        const Heights above = ~Heights{0} << stack.LowerOffset(layer);
        const auto flip = [&](unsigned row, std::size_t column, std::size_t step) {
            for (; row != 0; row &= row - 1) columns_[column + step * static_cast<std::size_t>(std::countr_zero(row))] ^= above;
        };
        rowsOf(MapRows([](auto& out, const auto& a, const auto& b) { out = a ^ b; }, plate, below), flip);
        below = plate;
    }
}

inline StackColumns::StackColumns(const VoxelModel<bool>& model, std::int64_t lod, const VoxelStack<bool>& stack,
                                  const Triple& corner)
{
    const auto number = [](std::size_t x, std::size_t y) { return 18 * y + x; }; // counted with the border
    Add(stack, [&](const VoxelPlate<bool>& plate, const auto& flip) {
        for (std::size_t y = 0; y < plate.rows.size(); ++y) flip(plate.rows[y], number(1, y + 1), 1);
    });
    const auto beside = [&](const Triple& step) -> const VoxelStack<bool>& { return StackBeside(model, lod, corner, step); };
    Add(beside({-16, 0, 0}), [&](const auto& plate, const auto& flip) { flip(plate.Column(15), number(0, 1), 18); });
    Add(beside({16, 0, 0}), [&](const auto& plate, const auto& flip) { flip(plate.Column(0), number(17, 1), 18); });
    Add(beside({0, -16, 0}), [&](const auto& plate, const auto& flip) { flip(plate.Row(15), number(1, 0), 1); });
    Add(beside({0, 16, 0}), [&](const auto& plate, const auto& flip) { flip(plate.Row(0), number(1, 17), 1); });
}

/// The heights at which a column (offsets in the stack) is filled and the one beside it is not.
inline Heights FacesBeside(const StackColumns& columns, std::int64_t x, std::int64_t y, const std::array<std::int64_t, 2>& step)
{
    return columns.At(x, y) & ~columns.At(x + step[0], y + step[1]);
}

/// The heights at which a column is filled and what is above or below is not; `beyond` lies upon the stack or under it.
inline Heights FacesStacked(const StackColumns& columns, std::int64_t x, std::int64_t y, Side side,
                            const VoxelPlate<bool>& beyond)
{
    const Heights here = columns.At(x, y);
    const Heights next = beyond.Value({x, y}) ? 1 : 0;
    return here & ~(side == Side::Upper ? here >> 1 | next << 63 : here << 1 | next);
}

/// Calls visit(line, position, heights) wherever heights come or go along one of sixteen lines of sixteen columns, at positions 0..16.
/// The heights of a column are heightsAt(line, position).
template <class HeightsAt, class Visit> void ForEachChange(const HeightsAt& heightsAt, const Visit& visit)
{
    for (std::int64_t line = 0; line < 16; ++line) {
        Heights before = 0;
        for (std::int64_t position = 0; position < 16; ++position) {
            const Heights here = heightsAt(line, position);
            if (here != before) visit(line, position, here ^ before);
            before = here;
        }
        if (before != 0) visit(line, std::int64_t{16}, before);
    }
}

} // namespace brix
