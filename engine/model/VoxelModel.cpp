#include "VoxelModel.h"

#include "../frame/NotEnoughMemory.h"
#include "../frame/Require.h"

#include <utility>

namespace brix {
namespace {

// The level is judged before the chunk grid is built, as the grid may be large.
const Extents& ExtentsForLevel(const Extents& extents, std::int64_t finestLOD)
{
    RequireLevel("The finest level of detail in a voxel model", finestLOD);
    return extents;
}

} // namespace

VoxelModel<bool>::VoxelModel(const Extents& extents, std::int64_t finestLOD)
try : Model(ExtentsForLevel(extents, finestLOD)), finestLOD_(finestLOD) {
    ForEachTriple(LowerChunkIndices(), UpperChunkIndices(), [&](const Triple& chunk) { ChunkRef(chunk).Initialize(finestLOD); });
} catch (const std::bad_alloc&) {
    throw NotEnoughMemory("a voxel model", extents.RescaledCopy(finestLOD));
}

VoxelModel<bool>& VoxelModel<bool>::operator=(VoxelModel&& other) noexcept
{
    finestLOD_ = other.finestLOD_;
    Model::operator=(std::move(other));
    return *this;
}

const Extents& VoxelModel<bool>::ExtentsRef(std::int64_t lod) const
{
    RequireLevelOf(finestLOD_, "The level of detail for voxel model operations", lod);
    return ExtentsAtLevel(lod);
}

std::size_t VoxelModel<bool>::AllocatedBytes() const
{
    std::size_t bytes = 0;
    ForEachTriple(LowerChunkIndices(), UpperChunkIndices(), [&](const Triple& chunkIndices) {
        const VoxelChunk<bool>& chunk = ChunkRef(chunkIndices);
        bytes += sizeof(chunk);
        for (std::int64_t lod = 0; lod <= finestLOD_; ++lod) {
            bytes += sizeof(VoxelStore<bool>) + chunk.VoxelStoreRef(lod).AllocatedBytes();
        }
    });
    return bytes;
}

} // namespace brix
