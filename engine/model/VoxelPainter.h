// Fills a model voxel by voxel, for results that are not made of whole plates.
#pragma once

#include "ForEachStack.h"
#include "StackIterator.h"

#include <utility>

namespace brix {

class VoxelPainter
{
public:
    /// Nothing is filled yet. The model's finest level is that of the extents.
    explicit VoxelPainter(const Extents& extents) : model_(extents, extents.VoxelLOD()) {}

    /// Fills a voxel, which must lie in the extents. Costs 2 KB for the first one of a stack until the model is taken.
    void Fill(const Triple& voxelIndices)
    {
        const StackIterator iterator(model_, voxelIndices, model_.FinestLOD());
        VoxelStack<bool>& stack = iterator.VoxelStackRef();
        if (!stack.IsFullyDecompressed()) {
            stack.Decompress();
            CheckWatch();
        }
        const Triple offset = Minus(voxelIndices, iterator.LowerIndices());
        auto& row = stack.LayerVoxelPlateRef(static_cast<std::int32_t>(offset[2])).rows[static_cast<std::size_t>(offset[1])];
        row = static_cast<std::uint16_t>(row | 1U << offset[0]);
    }

    /// The model, all levels agreeing. Nothing may be filled afterwards.
    VoxelModel<bool> Take()
    {
        ForEachStoredStack(model_, model_.FinestLOD(), [](VoxelStore<bool>& store, const StackIndices& ij) {
            VoxelStack<bool>& stack = store.VoxelStackRef(ij);
            if (stack.IsFullyDecompressed()) stack.Compress();
        });
        model_.FinishLevels(model_.FinestLOD());
        return std::move(model_);
    }

private:
    VoxelModel<bool> model_;
};

} // namespace brix
