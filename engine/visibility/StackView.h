// A stack as a sweep sees it: part of it, turned so that the sweep runs towards larger x, y and z.
#pragma once

#include "../model/CombineStacks.h"

namespace brix::sight {

/// The side that a sweep runs towards, along x, y and z.
using SweepOrder = std::array<Side, 3>;

constexpr VoxelPlate<bool> MirroredX(const VoxelPlate<bool>& plate)
{
    // b0 b1 .. b15 becomes b15 .. b1 b0: neighbours change places, then pairs, quarters and halves.
    return MakePlate([&](std::size_t y) {
        unsigned row = plate.rows[y];
        row = (row & 0x5555U) << 1 | (row >> 1 & 0x5555U);
        row = (row & 0x3333U) << 2 | (row >> 2 & 0x3333U);
        row = (row & 0x0F0FU) << 4 | (row >> 4 & 0x0F0FU);
        return row << 8 | row >> 8;
    });
}

constexpr VoxelPlate<bool> MirroredY(const VoxelPlate<bool>& plate)
{
    return MakePlate([&](std::size_t y) { return plate.rows[plate.rows.size() - 1 - y]; });
}

/// A plate as the sweep sees it, and back.
constexpr VoxelPlate<bool> Turned(VoxelPlate<bool> plate, const SweepOrder& order)
{
    if (order[0] == Side::Lower) plate = MirroredX(plate);
    return order[1] == Side::Lower ? MirroredY(plate) : plate;
}

/// The bits begin .. end - 1 of a word that has one for each of 64 heights.
constexpr std::uint64_t HeightBits(std::int64_t begin, std::int64_t end)
{
    return begin >= end ? 0 : ~std::uint64_t{0} << begin & ~std::uint64_t{0} >> (StackHeight - end);
}

/// The number of bits that are set in a row from `height` on.
constexpr std::int64_t CountSetFrom(std::int64_t height, std::uint64_t bits) { return std::countr_one(bits >> height); }

/// A stack whose layers are turned upside down.
inline void TurnOver(StackBuilder& result, std::span<const VoxelPlate<bool>> plates, std::span<const std::uint8_t> offsets)
{
    std::int64_t height = 0;
    for (std::size_t layer = plates.size(); layer-- > 0;) {
        result.Append(height, plates[layer]);
        height = StackHeight - offsets[layer];
    }
}

/// Heights and offsets are counted as the sweep meets them: the sweep enters the stack at 0.
class StackView
{
public:
    /// `lower`, `upper`  the part of the stack that is swept, as offsets in the stack; what is filled beyond it is not seen
    StackView(const VoxelStack<bool>& stack, const Triple& lower, const Triple& upper, const SweepOrder& order) : order_(order)
    {
        inside_ = Turned(Box({lower[0], lower[1]}, {upper[0], upper[1]}), order);
        startsAtCorner_ = inside_.Value({0, 0});
        begin_ = order[2] == Side::Upper ? lower[2] : StackHeight - 1 - upper[2];
        end_ = order[2] == Side::Upper ? upper[2] + 1 : StackHeight - lower[2];
        StackBuilder layers;
        if (order[2] == Side::Upper) {
            AddLayers(stack.Plates(), stack.LayerOffsets());
        } else {
            TurnOver(layers, stack.Plates(), stack.LayerOffsets());
            AddLayers(layers.Plates(), layers.LayerOffsets());
        }
    }

    std::int64_t Begin() const { return begin_; }
    std::int64_t End() const { return end_; }

    /// The voxels of every plate that are swept.
    const VoxelPlate<bool>& Inside() const { return inside_; }

    const VoxelPlate<bool>& PlateAt(std::int64_t height) const { return plates_[layers_[static_cast<std::size_t>(height)]]; }

    /// One bit per height: set where no voxel that is swept is filled, and where all are and none before them is left out, so
    /// that the plate sends nothing on.
    std::uint64_t EmptyHeights() const { return empty_; }
    std::uint64_t FullHeights() const { return full_; }

    /// Makes a voxel empty, named by its offset in the stack.
    void Clear(const Triple& offset);

private:
    void AddLayers(std::span<const VoxelPlate<bool>> plates, std::span<const std::uint8_t> offsets)
    {
        for (std::size_t layer = 0; layer < plates.size(); ++layer) {
            const std::int64_t end = layer + 1 < plates.size() ? offsets[layer + 1] : StackHeight;
            SetHeights(offsets[layer], end, layer, Turned(plates[layer], order_) & inside_);
        }
    }

    void SetHeights(std::int64_t begin, std::int64_t end, std::size_t layer, const VoxelPlate<bool>& plate)
    {
        plates_[layer] = plate;
        std::fill(layers_.begin() + begin, layers_.begin() + end, static_cast<std::uint8_t>(layer));
        const std::uint64_t heights = HeightBits(begin, end);
        empty_ = IsEmpty(plate) ? empty_ | heights : empty_ & ~heights;
        full_ = startsAtCorner_ && plate == inside_ ? full_ | heights : full_ & ~heights;
    }

    SweepOrder order_;
    VoxelPlate<bool> inside_;
    bool startsAtCorner_;
    std::int64_t begin_;
    std::int64_t end_;
    std::array<VoxelPlate<bool>, StackHeight + 1> plates_; // by layer, and one that differs from its layer
    std::array<std::uint8_t, StackHeight> layers_;         // by height
    std::uint64_t empty_ = 0;
    std::uint64_t full_ = 0;
};

inline void StackView::Clear(const Triple& offset)
{
    const auto turned = [&](std::size_t axis) {
        return order_[axis] == Side::Upper ? offset[axis] : LastOffset[axis] - offset[axis];
    };
    const std::int64_t x = turned(0);
    const std::int64_t y = turned(1);
    const std::int64_t height = turned(2);
    SetHeights(height, height + 1, StackHeight, AndNot(PlateAt(height), Box({x, y}, {x, y})));
}

} // namespace brix::sight
