// What is known of a chunk's voxels without a look at its stacks.
#pragma once

#include "VoxelStore.h"

#include <optional>

namespace brix {

/// A box of voxels of one chunk, corners inclusive; none where an upper index lies below its lower one.
struct ChunkPart
{
    /// All voxels of a store's chunk, and those of them that extents hold.
    explicit ChunkPart(const VoxelStore<bool>& store)
        : lower(store.LowerIndices()), upper(Plus(store.LowerIndices(store.LastStack()), LastOffset))
    {}
    ChunkPart(const VoxelStore<bool>& store, const Extents& extents) : ChunkPart(store)
    {
        lower = extents.LowerCornerClamp(lower);
        upper = extents.UpperCornerClamp(upper);
    }

    bool Covers(const ChunkPart& other) const
    {
        return IsWithin(other.lower, lower, upper) && IsWithin(other.upper, lower, upper);
    }

    Triple lower;
    Triple upper;
};

/// Whether a store, which may be missing, is stored as empty (false) or full (true) throughout a part of its chunk; nothing if
/// its stacks have to be looked at.
inline std::optional<bool> UniformValue(const VoxelStore<bool>* store, const ChunkPart& part)
{
    if (store == nullptr || (store->IsUniform() && !store->IsUniformlyFull())) return false;
    if (store->IsUniformlyFull() && ChunkPart(*store, store->ExtentsRef()).Covers(part)) return true;
    return std::nullopt;
}

/// Whether it is full throughout the part.
inline bool IsUniformlyFull(const VoxelStore<bool>& store, const ChunkPart& part)
{
    return UniformValue(&store, part).value_or(false);
}

} // namespace brix
