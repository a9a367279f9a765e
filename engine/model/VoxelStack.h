// A stack: 16 x 16 x 64 voxels as layers of plates, run-length coded upwards.
//
//    z 63 +--------+
//         | plate 2|   layer 2 from offset 20 to 63
//    z 20 +--------+
//         | plate 1|   layer 1 from offset 5 to 19
//    z  5 +--------+
//         | plate 0|   layer 0 from offset 0 to 4
//    z  0 +--------+
//
// No two adjacent layers are equal once a stack is compressed, so stacks of equal content have equal layers. A stack that is
// wholly empty or wholly filled owns no memory and takes the 8 bytes of a pointer; any other owns one block that holds offsets
// and plates.
#pragma once

#include "VoxelPlate.h"

#include <span>

namespace brix {

/// A set of a stack's heights: bit z for height z.
using HeightSet = std::uint64_t;

/// The heights z..63, and 0..z.
constexpr HeightSet HeightsFrom(std::int64_t z) { return ~HeightSet{0} << z; }
constexpr HeightSet HeightsUpTo(std::int64_t z) { return ~HeightSet{0} >> (StackHeight - 1 - z); }

/// The number of heights in a set: of pairs, of fours, of bytes, and the sum of the bytes. Without the processor's own
/// instruction this takes half the time of the library's function.
constexpr std::int32_t CountHeights(HeightSet heights)
{
    heights -= heights >> 1 & 0x5555555555555555;
    heights = (heights & 0x3333333333333333) + (heights >> 2 & 0x3333333333333333);
    heights = (heights + (heights >> 4)) & 0x0F0F0F0F0F0F0F0F;
    return static_cast<std::int32_t>(heights * 0x0101010101010101 >> 56);
}

template <class Value> class VoxelStack;

template <> class VoxelStack<bool>
{
public:
    /// Wholly empty: one layer with an empty plate.
    VoxelStack() noexcept = default;

    /// Wholly filled: one layer with a filled plate.
    static VoxelStack WhollyFilled() noexcept
    {
        VoxelStack stack;
        stack.block_ = FilledBlock();
        return stack;
    }

    VoxelStack(const VoxelStack& other);
    VoxelStack(VoxelStack&& other) noexcept : block_(other.block_) { other.block_ = nullptr; }
    VoxelStack& operator=(const VoxelStack& other);
    VoxelStack& operator=(VoxelStack&& other) noexcept;
    ~VoxelStack() { Release(); }

    /// The number of layers, 1..64.
    std::int32_t LayerCount() const { return block_ == nullptr ? 1 : block_->layerCount; }

    /// The heights at which layers start; 0 is one of them.
    HeightSet LayerStarts() const { return block_ == nullptr ? 1 : block_->layerStarts; }

    /// The layer that holds height z (0..63): as many layers start at or below z as lie below it, and one.
    std::int32_t LayerID(std::int64_t z) const { return CountHeights(LayerStarts() & HeightsUpTo(z)) - 1; }

    /// The lowest and the highest height of a layer (0 .. LayerCount - 1).
    std::int64_t LowerOffset(std::int32_t layer) const { return LayerOffsets()[static_cast<std::size_t>(layer)]; }
    std::int64_t UpperOffset(std::int32_t layer) const
    {
        return layer + 1 < LayerCount() ? LowerOffset(layer + 1) - 1 : StackHeight - 1;
    }

    /// A layer's plate. Whoever changes it calls Compress when done.
    const VoxelPlate<bool>& LayerVoxelPlateRef(std::int32_t layer) const
    {
        return block_ == nullptr ? NoPlate : PlatesOf(block_)[layer];
    }
    VoxelPlate<bool>& LayerVoxelPlateRef(std::int32_t layer);

    /// Whether every height has a layer of its own; then a layer's number is its height.
    bool IsFullyDecompressed() const { return LayerCount() == StackHeight; }

    /// Whether the stack is stored as wholly empty. A compressed stack without filled voxels always is.
    bool IsUnallocated() const { return block_ == nullptr; }

    /// Whether the stack is stored as wholly filled. A compressed stack without empty voxels always is.
    bool IsWhollyFilled() const { return block_ == FilledBlock(); }

    /// Merges adjacent equal layers and gives spare memory back.
    void Compress();

    /// Splits the layer of height z so that one layer starts at z (`splitBelow`), ends at z (`splitAbove`) or both.
    /// Returns the layer that holds z. The caller edits its plate and calls Compress.
    std::int32_t IsolateLevel(std::int64_t z, bool splitBelow, bool splitAbove);

    /// Gives every height a layer of its own.
    void Decompress();

    /// Sets every voxel outside the box lower..upper (stack offsets, inclusive) to `value`, and compresses.
    void FillOutsideBox(const Triple& lower, const Triple& upper, bool value);

    /// The layers' plates and lowest heights, bottom to top.
    std::span<const VoxelPlate<bool>> Plates() const
    {
        if (block_ == nullptr) return {&NoPlate, 1};
        return {PlatesOf(block_), block_->layerCount};
    }
    std::span<const std::uint8_t> LayerOffsets() const;

    /// Replaces the content by these layers; adjacent plates must differ and the first offset must be 0.
    void Assign(std::span<const VoxelPlate<bool>> plates, std::span<const std::uint8_t> layerOffsets);

    /// The same with layers that start at these heights, 0 among them, and the plates plateAt(z), asked for from below. They must
    /// not come from this stack.
    template <class PlateAt> void Assign(HeightSet starts, const PlateAt& plateAt);

    /// Tells the processor that the layers will be read.
    void Prefetch() const { __builtin_prefetch(block_); }

    /// Bytes of the heap that the stack owns.
    std::size_t AllocatedBytes() const { return OwnsBlock() ? BlockBytes(block_->capacity) : 0; }

    friend bool operator==(const VoxelStack& a, const VoxelStack& b);

private:
    // The head of the one allocation; layerOffsets[capacity] begin in it, and plates[capacity] follow at the next multiple of 16
    // bytes.
    struct Block
    {
        HeightSet layerStarts; // what the offsets say, as a set
        std::uint8_t layerCount;
        std::uint8_t capacity;
        std::array<std::uint8_t, 6> firstLayerOffsets;
    };

    static constexpr std::size_t OffsetsStart = sizeof(HeightSet) + 2;
    static constexpr std::size_t PlatesStart(std::size_t capacity) { return (OffsetsStart + capacity + 15) / 16 * 16; }
    static constexpr std::size_t BlockBytes(std::size_t capacity)
    {
        return PlatesStart(capacity) + capacity * sizeof(VoxelPlate<bool>);
    }
    static Block* MakeBlock(std::size_t capacity);
    static std::uint8_t* Offsets(Block* block) { return reinterpret_cast<std::uint8_t*>(block) + OffsetsStart; }
    static VoxelPlate<bool>* PlatesOf(Block* block)
    {
        return reinterpret_cast<VoxelPlate<bool>*>(reinterpret_cast<std::byte*>(block) + PlatesStart(block->capacity));
    }

    static constexpr VoxelPlate<bool> NoPlate{}; // the layer of a stack without memory

    static Block* FilledBlock() { return const_cast<Block*>(&filled.block); }

    bool OwnsBlock() const { return block_ != nullptr && !IsWhollyFilled(); }
    void Release() noexcept;
    void Own();
    void OwnBlockOf(std::size_t capacity);
    void Resize(std::size_t layerCount);
    void InsertCopyOfLayer(std::int32_t layer, std::int64_t z);

    // What all wholly filled stacks point to, laid out as every block is. Nobody writes to it.
    struct Filled
    {
        Block block;
        VoxelPlate<bool> plate;
    };
    static const Filled filled;

    Block* block_ = nullptr;
};

template <class PlateAt> void VoxelStack<bool>::Assign(HeightSet starts, const PlateAt& plateAt)
{
    const VoxelPlate<bool> lowest = plateAt(0);
    if (starts == 1 && (IsEmpty(lowest) || IsFull(lowest))) {
        *this = IsFull(lowest) ? WhollyFilled() : VoxelStack();
        return;
    }
    const auto count = static_cast<std::size_t>(CountHeights(starts));
    OwnBlockOf(count);
    block_->layerStarts = starts;
    block_->layerCount = static_cast<std::uint8_t>(count);
    std::uint8_t* offset = Offsets(block_);
    VoxelPlate<bool>* plate = PlatesOf(block_);
    *offset = 0;
    *plate = lowest;
    while ((starts &= starts - 1) != 0) {
        const int z = std::countr_zero(starts);
        *++offset = static_cast<std::uint8_t>(z);
        *++plate = plateAt(z);
    }
}

using Stack = VoxelStack<bool>;

} // namespace brix
