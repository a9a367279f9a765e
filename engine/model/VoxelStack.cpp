#include "VoxelStack.h"

#include "CombineStacks.h"

#include <cstring>
#include <new>
#include <utility>

namespace brix {
namespace {

constexpr std::uint8_t NoOffset = 0;

} // namespace

constinit const VoxelStack<bool> EmptyStack;

constinit const VoxelStack<bool>::Filled VoxelStack<bool>::filled{{1, 1, 1, {}}, FilledPlate()};

VoxelStack<bool>::Block* VoxelStack<bool>::MakeBlock(std::size_t capacity)
{
    static_assert(sizeof(Block) == PlatesStart(1) && sizeof(Filled) == BlockBytes(1));
    void* const memory = ::operator new(BlockBytes(capacity));
    return new (memory) Block{0, 0, static_cast<std::uint8_t>(capacity), {}};
}

void VoxelStack<bool>::Release() noexcept
{
    if (OwnsBlock()) ::operator delete(block_);
    block_ = nullptr;
}

VoxelStack<bool>::VoxelStack(const VoxelStack& other) { *this = other; }

VoxelStack<bool>& VoxelStack<bool>::operator=(const VoxelStack& other)
{
    if (this == &other) return *this;
    if (!other.OwnsBlock()) {
        Release();
        block_ = other.block_;
        return *this;
    }
    const std::size_t capacity = other.block_->capacity;
    OwnBlockOf(capacity);
    std::memcpy(static_cast<void*>(block_), other.block_, BlockBytes(capacity));
    return *this;
}

VoxelStack<bool>& VoxelStack<bool>::operator=(VoxelStack&& other) noexcept
{
    std::swap(block_, other.block_);
    return *this;
}

std::span<const std::uint8_t> VoxelStack<bool>::LayerOffsets() const
{
    if (block_ == nullptr) return {&NoOffset, 1};
    return {Offsets(block_), block_->layerCount};
}

void VoxelStack<bool>::Assign(std::span<const Plate> plates, std::span<const std::uint8_t> layerOffsets)
{
    if (plates.size() == 1 && (brix::IsEmpty(plates.front()) || IsFull(plates.front()))) {
        *this = IsFull(plates.front()) ? WhollyFilled() : VoxelStack();
        return;
    }
    OwnBlockOf(plates.size());
    HeightSet starts = 0;
    for (const std::uint8_t offset : layerOffsets) starts |= HeightSet{1} << offset;
    block_->layerStarts = starts;
    block_->layerCount = static_cast<std::uint8_t>(plates.size());
    std::copy(layerOffsets.begin(), layerOffsets.end(), Offsets(block_));
    std::copy(plates.begin(), plates.end(), PlatesOf(block_));
}

// Gives a stack without memory its one layer to write to.
void VoxelStack<bool>::Own()
{
    if (OwnsBlock()) return;
    const Plate plate = Plates().front();
    block_ = MakeBlock(1);
    block_->layerStarts = 1;
    block_->layerCount = 1;
    *Offsets(block_) = 0;
    *PlatesOf(block_) = plate;
}

// A block of this capacity, with arbitrary content.
void VoxelStack<bool>::OwnBlockOf(std::size_t capacity)
{
    if (OwnsBlock() && block_->capacity == capacity) return;
    Block* const block = MakeBlock(capacity);
    Release();
    block_ = block;
}

// Makes room for exactly `layerCount` layers; existing layers keep their place, new ones are for the caller to write.
void VoxelStack<bool>::Resize(std::size_t layerCount)
{
    if (block_->capacity != layerCount) {
        Block* const block = MakeBlock(layerCount);
        const std::size_t kept = std::min<std::size_t>(layerCount, block_->layerCount);
        std::copy_n(Offsets(block_), kept, Offsets(block));
        std::copy_n(PlatesOf(block_), kept, PlatesOf(block));
        block->layerStarts = block_->layerStarts;
        Release();
        block_ = block;
    }
    block_->layerCount = static_cast<std::uint8_t>(layerCount);
}

Plate& VoxelStack<bool>::LayerVoxelPlateRef(std::int32_t layer)
{
    Own();
    return PlatesOf(block_)[layer];
}

void VoxelStack<bool>::Compress()
{
    if (!OwnsBlock()) return;
    std::uint8_t* const offsets = Offsets(block_);
    Plate* const plates = PlatesOf(block_);
    std::size_t kept = 1;
    for (std::size_t layer = 1; layer < block_->layerCount; ++layer) {
        if (plates[layer] == plates[kept - 1]) { // equal to the layer below, which is the last one kept
            block_->layerStarts &= ~(HeightSet{1} << offsets[layer]);
            continue;
        }
        if (layer != kept) {
            offsets[kept] = offsets[layer];
            plates[kept] = plates[layer];
        }
        ++kept;
    }
    if (kept == 1 && (brix::IsEmpty(plates[0]) || IsFull(plates[0]))) return Assign({plates, 1}, {offsets, 1});
    block_->layerCount = static_cast<std::uint8_t>(kept); // holds even if there is no memory to move to a smaller block
    Resize(kept);
}

// Puts a copy of a layer above it, starting at z.
void VoxelStack<bool>::InsertCopyOfLayer(std::int32_t layer, std::int64_t z)
{
    const std::int32_t count = LayerCount();
    Resize(static_cast<std::size_t>(count) + 1);
    std::uint8_t* const offsets = Offsets(block_);
    Plate* const plates = PlatesOf(block_);
    std::copy_backward(offsets + layer, offsets + count, offsets + count + 1);
    std::copy_backward(plates + layer, plates + count, plates + count + 1);
    offsets[layer + 1] = static_cast<std::uint8_t>(z);
    block_->layerStarts |= HeightSet{1} << z;
}

std::int32_t VoxelStack<bool>::IsolateLevel(std::int64_t z, bool splitBelow, bool splitAbove)
{
    Own();
    std::int32_t layer = LayerID(z);
    if (splitBelow && LowerOffset(layer) < z) InsertCopyOfLayer(layer++, z);
    if (splitAbove && UpperOffset(layer) > z) InsertCopyOfLayer(layer, z + 1);
    return layer;
}

void VoxelStack<bool>::Decompress()
{
    Own();
    if (IsFullyDecompressed()) return;
    Block* const block = MakeBlock(StackHeight);
    std::uint8_t* const offsets = Offsets(block);
    Plate* const plates = PlatesOf(block);
    for (std::int32_t layer = 0; layer < LayerCount(); ++layer) {
        for (std::int64_t z = LowerOffset(layer); z <= UpperOffset(layer); ++z) {
            offsets[z] = static_cast<std::uint8_t>(z);
            plates[z] = LayerVoxelPlateRef(layer);
        }
    }
    block->layerStarts = HeightsFrom(0);
    block->layerCount = static_cast<std::uint8_t>(StackHeight);
    Release();
    block_ = block;
}

void VoxelStack<bool>::FillOutsideBox(const Triple& lower, const Triple& upper, bool value)
{
    const BoxStack box(OffsetBox{lower, upper});
    if (value)
        CombineStacks(
            *this, [](const Plate& plate, const Plate& inside) { return plate | ~inside; }, *this, box);
    else
        CopyInsideBox(*this, *this, box);
}

bool operator==(const VoxelStack<bool>& a, const VoxelStack<bool>& b)
{
    if (a.LayerStarts() != b.LayerStarts()) return false;
    const auto plates = a.Plates();
    return std::equal(plates.begin(), plates.end(), b.Plates().begin());
}

} // namespace brix
