// Sight along one axis, in bits: every value is 0 or 1, and sight ends at the first filled voxel of each line. What leaves a
// stack along x or y is one row of bits for each of its heights, along z one plate.
#pragma once

#include "StackView.h"

#include <vector>

namespace brix::sight {

/// Row y of the result is filled up to the first filled voxel of row y, if bit y of `lit` is set:
///
///     lit 1   ...#.#..   gives  ###.....      (16 wide, x to the right)
///     lit 0   ...#.#..   gives  ........
constexpr VoxelPlate<bool> LitAlongX(const VoxelPlate<bool>& filled, std::uint16_t lit)
{
    return MakePlate([&](std::size_t y) {
        const unsigned row = filled.rows[y];
        const unsigned beforeFirst = (row & (0U - row)) - 1U; // all bits when nothing is filled
        return (static_cast<unsigned>(lit) >> y & 1U) != 0 ? beforeFirst : 0U;
    });
}

/// Column x of the result is filled up to the first filled voxel of column x, if bit x of `lit` is set.
constexpr VoxelPlate<bool> LitAlongY(const VoxelPlate<bool>& filled, std::uint16_t lit)
{
    return MakePlate([&](std::size_t y) { return lit = static_cast<std::uint16_t>(lit & ~filled.rows[y]); });
}

/// A carrier (see ValueCarrier.h) for directions along `axis`.
template <Axis axis> class AxisCarrier
{
public:
    explicit AxisCarrier(const Triple& stackCount)
        : stacksPerColumn_(stackCount[2]),
          faces_(static_cast<std::size_t>(axis == Axis::Z ? 0 : stackCount[0] * stacksPerColumn_), AllLit)
    {}

    void EnterRow()
    {
        if constexpr (axis == Axis::X) std::fill(faces_.begin(), faces_.end(), AllLit);
    }

    void EnterColumn(std::int64_t column, const Triple&)
    {
        column_ = axis == Axis::X ? 0 : column;
        plate_ = FilledPlate();
    }

    void Pass(const StackView& view, std::int64_t number, const Triple&, StackBuilder& seen)
    {
        for (std::int64_t height = view.Begin(); height < view.End(); ++height) {
            seen.Append(height, PassPlate(view.PlateAt(height), number, static_cast<std::size_t>(height)) & view.Inside());
        }
    }

private:
    using Face = std::array<std::uint16_t, StackHeight>; // by height
    static constexpr Face AllLit = [] {
        Face face{};
        for (std::uint16_t& row : face) row = 0xFFFF;
        return face;
    }();

    VoxelPlate<bool> PassPlate(const VoxelPlate<bool>& filled, std::int64_t number, std::size_t height)
    {
        if constexpr (axis == Axis::Z) return plate_ = AndNot(plate_, filled);
        std::uint16_t& lit = faces_[static_cast<std::size_t>(column_ * stacksPerColumn_ + number)][height];
        const VoxelPlate<bool> seen = axis == Axis::X ? LitAlongX(filled, lit) : LitAlongY(filled, lit);
        lit = axis == Axis::X ? seen.Column(PlateWidth - 1) : seen.Row(PlateWidth - 1);
        return seen;
    }

    std::int64_t stacksPerColumn_;
    std::vector<Face> faces_; // along x those of one row of columns, along y one for every column and stack of it
    VoxelPlate<bool> plate_{};
    std::int64_t column_ = 0;
};

} // namespace brix::sight
