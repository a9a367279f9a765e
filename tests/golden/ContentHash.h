// A hash of what a result holds, whatever way it is stored: the frame, the extents, the filled voxels of every level, or the bits
// of numbers. FNV-1a of 64 bits (Fowler, Noll and Vo) over little-endian 64-bit words.
#pragma once

#include <brix.h>

#include <bit>
#include <ranges>
#include <string_view>

namespace brix::golden {

class ContentHash
{
public:
    std::uint64_t Value() const { return value_; }

    void Add(std::uint64_t word)
    {
        for (int shift = 0; shift < 64; shift += 8) value_ = (value_ ^ (word >> shift & 0xFF)) * 1099511628211U;
    }
    void Add(std::int64_t number) { Add(static_cast<std::uint64_t>(number)); }
    void Add(double number) { Add(std::bit_cast<std::uint64_t>(number)); }
    void Add(bool is) { Add(std::uint64_t{is}); }

    void Add(const Axes& axes)
    {
        Add(axes.WorldVoxelWidth(0));
        Add(axes.WorldVoxelOrigin());
        Add(axes.WorldVoxelRotation());
        Add(axes.VerticalLOD());
    }

    void Add(const Extents& extents)
    {
        Add(extents.AxesRef());
        Add(extents.LowerIndices());
        Add(extents.UpperIndices());
        Add(extents.VoxelLOD());
    }

    void Add(const VoxelModel<bool>& model)
    {
        Add(model.FinestLOD());
        for (std::int64_t lod = 0; lod <= model.FinestLOD(); ++lod) {
            Add(model.ExtentsRef(lod));
            ForEachTriple(model.LowerChunkIndices(), model.UpperChunkIndices(),
                          [&](const Triple& chunk) { AddVoxels(model.ChunkRef(chunk).VoxelStoreRef(lod)); });
        }
    }

    void Add(const ConstVoxelIterator& found)
    {
        Add(found.IsValid());
        if (found.IsValid()) Add(found.VoxelIndices());
    }

    void Add(const VoxelRectangle& rectangle)
    {
        Add(static_cast<std::int64_t>(rectangle.axis));
        Add(static_cast<std::int64_t>(rectangle.side));
        Add(rectangle.lower);
        Add(rectangle.upper);
    }

    void Add(const VoxelCuboid& cuboid)
    {
        Add(cuboid.lower);
        Add(cuboid.upper);
    }

    template <std::ranges::range Items> void Add(const Items& items)
    {
        Add(static_cast<std::int64_t>(std::ranges::distance(items)));
        for (const auto& item : items) Add(item);
    }

private:
    // Equal plates one above the other are one run, with its heights in the model; nothing is said about what is empty.
    void AddVoxels(const VoxelStore<bool>& store)
    {
        for (std::int64_t j = store.LowerStack()[1]; j <= store.UpperStack()[1]; ++j) {
            for (std::int64_t i = store.LowerStack()[0]; i <= store.UpperStack()[0]; ++i) AddStack(store, {i, j});
        }
    }

    void AddStack(const VoxelStore<bool>& store, const StackIndices& ij)
    {
        const VoxelStack<bool>& stack = store.VoxelStackRef(ij);
        for (std::int32_t layer = 0; layer < stack.LayerCount(); ++layer) {
            const VoxelPlate<bool>& plate = stack.LayerVoxelPlateRef(layer);
            if (brix::IsEmpty(plate)) continue;
            Add(store.LowerIndices(ij));
            Add(stack.LowerOffset(layer));
            Add(stack.UpperOffset(layer));
            for (const std::uint16_t row : plate.rows) Add(std::uint64_t{row});
        }
    }

    std::uint64_t value_ = 14695981039346656037U;
};

} // namespace brix::golden
