// The faces between filled and empty voxels of one stack, layer by layer, and the heights at which each of them is there: bit z
// of a word stands for height z.
#pragma once

#include "../model/CombineStacks.h"
#include "../model/ForEachStack.h"

namespace brix {

/// Heights of a stack, bit z for height z.
using Heights = std::uint64_t;

/// The stack beside another one of the same level, `step` voxels from its lower corner; an empty one outside the extents.
inline const VoxelStack<bool>& StackBeside(const VoxelModel<bool>& model, std::int64_t lod, const Triple& corner,
                                           const Triple& step)
{
    return FindStack(model, StackOfVoxel(Plus(corner, step)), lod);
}

/// Whether all voxels of a stack are filled.
inline bool IsSolid(const VoxelStack<bool>& stack) { return stack.LayerCount() == 1 && IsFull(stack.Plates().front()); }

/// The voxels of a plate that are empty on a side along x or y. `beyond` is the plate that faces it there.
inline VoxelPlate<bool> FacesBeside(Axis axis, Side side, const VoxelPlate<bool>& here, const VoxelPlate<bool>& beyond)
{
    if (axis == Axis::X) return AndNot(here, side == Side::Upper ? TowardsUpperX(here, beyond) : TowardsLowerX(here, beyond));
    return AndNot(here, side == Side::Upper ? TowardsUpperY(here, beyond) : TowardsLowerY(here, beyond));
}

/// Calls visit(z, plate) with the faces of a stack to one side, for every height from which they are others than below. `other`
/// is the stack on that side.
template <class Visit>
void ForEachFacePlate(Axis axis, Side side, const VoxelStack<bool>& stack, const VoxelStack<bool>& other, const Visit& visit)
{
    if (axis != Axis::Z)
        ForEachCommonLayer([&](std::int64_t z, std::int64_t, const Plate& here,
                               const Plate& beyond) { visit(z, FacesBeside(axis, side, here, beyond)); },
                           stack, other);
    else
        ForEachCommonLayer(
            [&](std::int64_t z, std::int64_t, const Plate& here, const Plate& next) { visit(z, AndNot(here, next)); }, stack,
            side == Side::Upper ? SeenAbove(stack, other) : SeenBelow(stack, other));
}

/// A word of heights for each column of 16 x 16, gathered from plates bottom to top. Only what changes from plate to plate is
/// touched.
class ColumnHeights
{
public:
    /// From height z upwards the columns of the plate are set, and no others.
    void SetFrom(std::int64_t z, const VoxelPlate<bool>& plate)
    {
        const VoxelPlate<bool> changed = MapRows([](auto& out, const auto& a, const auto& b) { out = a ^ b; }, plate, last_);
        const Heights above = ~Heights{0} << z;
        ForEachColumn(changed, [&](std::size_t column) { columns_[column] ^= above; });
        any_ = any_ | changed;
        last_ = plate;
    }

    /// Calls visit(x, y, heights) for the columns that are set at any height, row by row, and begins again with none.
    template <class Visit> void Take(const Visit& visit)
    {
        ForEachColumn(any_, [&](std::size_t column) {
            const Heights heights = columns_[column];
            if (heights != 0)
                visit(static_cast<std::int64_t>(column % PlateWidth), static_cast<std::int64_t>(column / PlateWidth), heights);
            columns_[column] = 0;
        });
        any_ = last_ = VoxelPlate<bool>{};
    }

private:
    // The columns are numbered like the bits of a plate, four rows to a word of 64.
    template <class Visit> static void ForEachColumn(const VoxelPlate<bool>& plate, const Visit& visit)
    {
        for (std::size_t y = 0; y < plate.rows.size(); y += 4) {
            std::uint64_t word = 0;
            for (std::size_t i = 0; i < 4; ++i) word |= std::uint64_t{plate.rows[y + i]} << PlateWidth * i;
            for (; word != 0; word &= word - 1) visit(PlateWidth * y + static_cast<std::size_t>(std::countr_zero(word)));
        }
    }

    std::array<Heights, PlateWidth * PlateWidth> columns_{};
    VoxelPlate<bool> last_;
    VoxelPlate<bool> any_;
};

/// The ends of the runs in the lines of plates, where a line is a row along x, or a column along y: where a voxel differs from
/// the one before it, at positions 0..16.
class RunEnds
{
public:
    explicit RunEnds(Axis along) : isAlongX_(along == Axis::X) {}

    void SetFrom(std::int64_t z, const VoxelPlate<bool>& plate)
    {
        const VoxelPlate<bool> before = isAlongX_ ? TowardsLowerX(plate, {}) : TowardsLowerY(plate, {});
        inside_.SetFrom(z, MapRows([](auto& out, const auto& a, const auto& b) { out = a ^ b; }, plate, before));
        VoxelPlate<bool> last; // a line per bit of its first row
        last.rows[0] = isAlongX_ ? plate.Column(PlateWidth - 1) : plate.Row(PlateWidth - 1);
        atEnd_.SetFrom(z, last);
    }

    /// Calls visit(line, position, heights) for all ends, and begins again with none.
    template <class Visit> void Take(const Visit& visit)
    {
        inside_.Take(
            [&](std::int64_t x, std::int64_t y, Heights heights) { isAlongX_ ? visit(y, x, heights) : visit(x, y, heights); });
        atEnd_.Take([&](std::int64_t line, std::int64_t, Heights heights) { visit(line, PlateWidth, heights); });
    }

private:
    bool isAlongX_;
    ColumnHeights inside_;
    ColumnHeights atEnd_;
};

} // namespace brix
