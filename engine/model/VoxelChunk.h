// One chunk of a voxel model: its voxels at every level, coarsest first.
#pragma once

#include "Model.h"
#include "VoxelStore.h"

namespace brix {

template <class Value> class VoxelChunk;

template <> class VoxelChunk<bool>
{
public:
    /// A chunk without stores. `extents` are those of the whole model, at any level.
    VoxelChunk(const Extents& extents, const Triple& chunkIndices) : extents_(extents), chunkIndices_(chunkIndices) {}

    /// Makes empty stores for the levels 0..finestLOD.
    void Initialize(std::int64_t finestLOD)
    {
        stores_.reserve(static_cast<std::size_t>(finestLOD + 1));
        for (std::int64_t lod = 0; lod <= finestLOD; ++lod) {
            stores_.emplace_back(extents_.RescaledCopy(lod), ChunkLowerIndices(chunkIndices_, lod));
        }
    }

    VoxelStore<bool>& VoxelStoreRef(std::int64_t lod) { return stores_[static_cast<std::size_t>(lod)]; }
    const VoxelStore<bool>& VoxelStoreRef(std::int64_t lod) const { return stores_[static_cast<std::size_t>(lod)]; }

private:
    Extents extents_;
    Triple chunkIndices_;
    std::vector<VoxelStore<bool>> stores_; // by level
};

} // namespace brix
