// A rule applied to the plates of several stacks, height by height. The work follows the layers, not the 64 heights: the rule
// runs once for every stretch in which no stack changes.
//
//    a  |---0---|-----1-----|---2---|
//    b  |-----0-----|------1--------|
//       |  a0b0 |a1b0|a1b1  | a2b1  |      four calls of the rule
#pragma once

#include "VoxelStack.h"

#include <new>

namespace brix {

/// The layer of a stack at a height that only ever grows.
class LayerCursor
{
public:
    explicit LayerCursor(const VoxelStack<bool>& stack) : LayerCursor(stack.Plates().data(), stack.LayerStarts()) {}
    LayerCursor(const VoxelPlate<bool>* plates, HeightSet starts) : plate_(plates), starts_(starts & ~HeightSet{1}) {}

    const VoxelPlate<bool>& PlateRef() const { return *plate_; }

    /// The heights above 0 at which layers start.
    HeightSet Starts() const { return starts_; }

    /// Moves to the layer that starts at z, if one does. Every layer's start must be visited.
    void MoveTo(std::int64_t z) { plate_ += starts_ >> z & 1; }

private:
    const VoxelPlate<bool>* plate_;
    HeightSet starts_;
};

/// What a stack sees `distance` (1..64) voxels below or above, as if it were a stack: part of it and part of its neighbour.
struct ShiftedStack
{
    const VoxelStack<bool>& lower;
    const VoxelStack<bool>& upper;
    std::int64_t distance; // the heights of `lower` that are skipped

    std::int64_t Boundary() const { return StackHeight - distance; } // z at which `upper` begins
};

inline ShiftedStack SeenBelow(const VoxelStack<bool>& here, const VoxelStack<bool>& below, std::int64_t distance = 1)
{
    return {below, here, StackHeight - distance};
}

inline ShiftedStack SeenAbove(const VoxelStack<bool>& here, const VoxelStack<bool>& above, std::int64_t distance = 1)
{
    return {here, above, distance};
}

/// A LayerCursor for a ShiftedStack.
class ShiftedCursor
{
public:
    explicit ShiftedCursor(const ShiftedStack& stack)
        : boundary_(stack.Boundary()), plate_(stack.upper.Plates().data()), upperPlate_(plate_)
    {
        if (boundary_ > 0) {
            plate_ = &stack.lower.LayerVoxelPlateRef(stack.lower.LayerID(stack.distance));
            starts_ = stack.lower.LayerStarts() >> stack.distance;
        }
        if (boundary_ < StackHeight) starts_ |= stack.upper.LayerStarts() << boundary_;
        starts_ &= ~HeightSet{1};
    }

    const VoxelPlate<bool>& PlateRef() const { return *plate_; }
    HeightSet Starts() const { return starts_; }
    void MoveTo(std::int64_t z)
    {
        if (z == boundary_)
            plate_ = upperPlate_;
        else
            plate_ += starts_ >> z & 1;
    }

private:
    std::int64_t boundary_;
    const VoxelPlate<bool>* plate_;
    const VoxelPlate<bool>* upperPlate_;
    HeightSet starts_ = 0;
};

/// A box of a stack's offsets (it may reach beyond the stack), as if it were a stack that is filled inside it.
class BoxStack
{
public:
    explicit BoxStack(const OffsetBox& box)
    {
        const auto& [lower, upper] = box;
        const std::int64_t begin = std::clamp<std::int64_t>(lower[2], 0, StackHeight);
        const std::int64_t end = std::clamp<std::int64_t>(upper[2], begin - 1, StackHeight - 1) + 1;
        if (begin > 0) Add(0, {});
        if (begin < end) Add(begin, Box({lower[0], lower[1]}, {upper[0], upper[1]}));
        if (begin < end && end < StackHeight) Add(end, {});
        if (starts_ == 0) Add(0, {});
    }

    LayerCursor Cursor() const { return LayerCursor(plates_.data(), starts_); }

private:
    void Add(std::int64_t z, const VoxelPlate<bool>& plate)
    {
        plates_[static_cast<std::size_t>(std::popcount(starts_))] = plate;
        starts_ |= HeightSet{1} << z;
    }

    std::array<VoxelPlate<bool>, 3> plates_; // below the box, in it, above it; without those that are not there
    HeightSet starts_ = 0;
};

inline LayerCursor MakeCursor(const VoxelStack<bool>& stack) { return LayerCursor(stack); }
inline ShiftedCursor MakeCursor(const ShiftedStack& stack) { return ShiftedCursor(stack); }
inline LayerCursor MakeCursor(const BoxStack& box) { return box.Cursor(); }

/// Collects layers from bottom to top, merging equal neighbours.
class StackBuilder
{
public:
    StackBuilder() {} // the buffers are written before they are read

    /// Adds a layer that starts at z, which must be above the last one's start; the first starts at 0.
    void Append(std::int64_t z, const VoxelPlate<bool>& plate)
    {
        AppendMade(z, [&] { return plate; });
    }

    /// The same with the plate make(), which is constructed in the buffer: a copy of 32 bytes would cost as much as most rules.
    template <class Make> void AppendMade(std::int64_t z, const Make& make)
    {
        ::new (static_cast<void*>(&plates_[count_])) VoxelPlate<bool>(make());
        if (count_ > 0 && plates_[count_] == plates_[count_ - 1]) return;
        offsets_[count_] = static_cast<std::uint8_t>(z);
        ++count_;
    }

    /// Makes the collected layers a stack's content.
    void WriteTo(VoxelStack<bool>& stack) const { stack.Assign({plates_, count_}, {offsets_, count_}); }

    std::span<const VoxelPlate<bool>> Plates() const { return {plates_, count_}; }
    std::span<const std::uint8_t> LayerOffsets() const { return {offsets_, count_}; }

private:
    std::size_t count_ = 0;
    union
    {
        VoxelPlate<bool> plates_[StackHeight];
    };
    union
    {
        std::uint8_t offsets_[StackHeight];
    };
};

/// Calls visit(z, end, plates...) for every stretch z .. end - 1 of heights in which no stack (or ShiftedStack) changes, bottom
/// to top.
template <class Visit, class... Stacks> void ForEachCommonLayer(const Visit& visit, const Stacks&... stacks)
{
    const auto walk = [&](auto... cursors) {
        HeightSet starts = (cursors.Starts() | ... | 1);
        while (starts != 0) {
            const std::int64_t z = std::countr_zero(starts);
            starts &= starts - 1;
            (cursors.MoveTo(z), ...);
            visit(z, starts != 0 ? std::countr_zero(starts) : StackHeight, cursors.PlateRef()...);
        }
    };
    walk(MakeCursor(stacks)...);
}

/// Makes `result` the stack whose plate at every height is rule(plates of the stacks at that height). The result may be one of
/// them.
template <class Rule, class... Stacks> void CombineStacks(VoxelStack<bool>& result, const Rule& rule, const Stacks&... stacks)
{
    StackBuilder builder;
    ForEachCommonLayer(
        [&](std::int64_t z, std::int64_t, const auto&... plates) { builder.AppendMade(z, [&] { return rule(plates...); }); },
        stacks...);
    builder.WriteTo(result);
}

/// Makes `result` a stack with every voxel outside a box emptied. The result may be the stack.
inline void CopyInsideBox(VoxelStack<bool>& result, const VoxelStack<bool>& stack, const BoxStack& box)
{
    if (stack.IsUnallocated())
        result = VoxelStack<bool>();
    else
        CombineStacks(
            result, [](const VoxelPlate<bool>& plate, const VoxelPlate<bool>& inside) { return plate & inside; }, stack, box);
}

} // namespace brix
