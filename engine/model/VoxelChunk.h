// One chunk of a voxel model: its voxels at every level, coarsest first.
#pragma once

#include "Model.h"
#include "VoxelStore.h"

#include <algorithm>
#include <vector>

namespace brix {

template <class Value> class VoxelChunk;

template <> class VoxelChunk<bool>
{
public:
    static constexpr const char* ModelName = "a voxel model"; // in messages

    /// A chunk without stores. `bounds` are those of the whole model; they must outlive the chunk and its copies.
    VoxelChunk(const BoundsOfLevels& bounds, const Triple& chunkIndices) : bounds_(&bounds), chunkIndices_(chunkIndices) {}
    VoxelChunk(BoundsOfLevels&& bounds, const Triple& chunkIndices) = delete;

    /// Makes empty stores for the levels 0..finestLOD.
    void Initialize(std::int64_t finestLOD)
    {
        stores_.reserve(static_cast<std::size_t>(finestLOD + 1));
        for (std::int64_t lod = 0; lod <= finestLOD; ++lod) {
            stores_.emplace_back((*bounds_)[static_cast<std::size_t>(lod)], ChunkLowerIndices(chunkIndices_, lod));
        }
    }

    VoxelStore<bool>& VoxelStoreRef(std::int64_t lod) { return stores_[static_cast<std::size_t>(lod)]; }
    const VoxelStore<bool>& VoxelStoreRef(std::int64_t lod) const { return stores_[static_cast<std::size_t>(lod)]; }

    /// Whether all stacks of all levels are stored as wholly empty.
    bool IsUnallocated() const
    {
        return std::all_of(stores_.rbegin(), stores_.rend(), [](const auto& store) { return store.IsUnallocated(); });
    }

    /// Bytes of the heap that the chunk owns.
    std::size_t AllocatedBytes() const
    {
        std::size_t bytes = stores_.capacity() * sizeof(VoxelStore<bool>);
        for (const VoxelStore<bool>& store : stores_) bytes += store.AllocatedBytes();
        return bytes;
    }

private:
    const BoundsOfLevels* bounds_;
    Triple chunkIndices_;
    std::vector<VoxelStore<bool>> stores_; // by level
};

} // namespace brix
