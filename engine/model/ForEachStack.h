// The walks over a model's stacks in stack order (chunks z, y, x, then stacks j, i), written once.
#pragma once

#include "VoxelModel.h"

namespace brix {

/// Calls visit(store, ij) for every stack in the stack range of a store, row j outer, column i inner.
template <class Store, class Visit> void ForEachStackOfStore(Store& store, const Visit& visit)
{
    for (std::int64_t j = store.LowerStack()[1]; j <= store.UpperStack()[1]; ++j) {
        for (std::int64_t i = store.LowerStack()[0]; i <= store.UpperStack()[0]; ++i) visit(store, StackIndices{i, j});
    }
}

/// Calls visit(store, ij) for the stacks of all stored chunks of a model, at a level that the model holds. All others are empty.
template <class VoxelModelType, class Visit> void ForEachStoredStack(VoxelModelType& model, std::int64_t lod, const Visit& visit)
{
    model.ForEachChunk([&](const Triple&, auto& chunk) { ForEachStackOfStore(chunk.VoxelStoreRef(lod), visit); });
}

/// The same for the chunks of one height.
template <class Visit>
void ForEachStoredStackOfSlab(const VoxelModel<bool>& model, std::int64_t lod, std::int64_t chunkZ, const Visit& visit)
{
    model.ForEachChunkOfSlab(chunkZ,
                             [&](const Triple&, const auto& chunk) { ForEachStackOfStore(chunk.VoxelStoreRef(lod), visit); });
}

/// Calls visit(store, ij) for every stack that the extents touch, whether it is stored or not. Where the model is not const, all
/// chunks are stored afterwards: for what writes everywhere.
template <class VoxelModelType, class Visit> void ForEachStack(VoxelModelType& model, std::int64_t lod, const Visit& visit)
{
    ForEachTriple(model.LowerChunkIndices(), model.UpperChunkIndices(),
                  [&](const Triple& chunk) { ForEachStackOfStore(model.ChunkRef(chunk).VoxelStoreRef(lod), visit); });
}

/// Whether holds(store, ij) is true of every stack of the stored chunks, at a level that the model holds. Stops at the first that
/// is not.
template <class Holds> bool AllStoredStacks(const VoxelModel<bool>& model, std::int64_t lod, const Holds& holds)
{
    bool all = true;
    ForEachStoredStack(model, lod, [&](const VoxelStore<bool>& store, const StackIndices& ij) { all = all && holds(store, ij); });
    return all;
}

/// The stack of a level's grid of stacks (StackOfVoxel), EmptyStack where nothing is stored. Any place may be asked for.
inline const VoxelStack<bool>& FindStack(const VoxelModel<bool>& model, const Triple& stack, std::int64_t lod)
{
    const VoxelChunk<bool>* const chunk = model.FindChunk({FloorShift(stack[0], lod), FloorShift(stack[1], lod), stack[2]});
    if (chunk == nullptr) return EmptyStack;
    const std::int64_t inChunk = (std::int64_t{1} << lod) - 1;
    return chunk->VoxelStoreRef(lod).VoxelStackRef({stack[0] & inChunk, stack[1] & inChunk});
}

/// The same to be written: the chunk is stored afterwards. The extents must touch the stack.
inline VoxelStack<bool>& MakeStack(VoxelModel<bool>& model, const Triple& stack, std::int64_t lod)
{
    VoxelChunk<bool>& chunk = model.ChunkRef({FloorShift(stack[0], lod), FloorShift(stack[1], lod), stack[2]});
    const std::int64_t inChunk = (std::int64_t{1} << lod) - 1;
    return chunk.VoxelStoreRef(lod).ValidStackRef({stack[0] & inChunk, stack[1] & inChunk});
}

} // namespace brix
