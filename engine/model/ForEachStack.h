// The walk over a model's stacks in stack order, written once.
#pragma once

#include "VoxelModel.h"

namespace brix {

/// Calls visit(store, ij) for every stack in the stack range of a store, row j outer, column i inner.
template <class Store, class Visit> void ForEachStackOfStore(Store& store, Visit visit)
{
    for (std::int64_t j = store.LowerStack()[1]; j <= store.UpperStack()[1]; ++j) {
        for (std::int64_t i = store.LowerStack()[0]; i <= store.UpperStack()[0]; ++i) visit(store, StackIndices{i, j});
    }
}

/// Calls visit(store, ij) for every stack of a model at a level that the model holds: chunks z, y, x, then stacks j, i.
template <class VoxelModelType, class Visit> void ForEachStack(VoxelModelType& model, std::int64_t lod, Visit visit)
{
    ForEachTriple(model.LowerChunkIndices(), model.UpperChunkIndices(),
                  [&](const Triple& chunk) { ForEachStackOfStore(model.ChunkRef(chunk).VoxelStoreRef(lod), visit); });
}

/// The same for the chunks of one height, which must be among the model's.
template <class VoxelModelType, class Visit>
void ForEachStackOfSlab(VoxelModelType& model, std::int64_t lod, std::int64_t chunkZ, Visit visit)
{
    const Triple lower = model.LowerChunkIndices();
    const Triple upper = model.UpperChunkIndices();
    ForEachTriple({lower[0], lower[1], chunkZ}, {upper[0], upper[1], chunkZ},
                  [&](const Triple& chunk) { ForEachStackOfStore(model.ChunkRef(chunk).VoxelStoreRef(lod), visit); });
}

/// Whether holds(store, ij) is true of every stack of a model at a level that the model holds. Stops at the first that is not.
template <class Holds> bool AllStacks(const VoxelModel<bool>& model, std::int64_t lod, Holds holds)
{
    bool all = true;
    ForEachStack(model, lod, [&](const VoxelStore<bool>& store, const StackIndices& ij) { all = all && holds(store, ij); });
    return all;
}

} // namespace brix
