#include "VoxelModel.h"

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

VoxelModel<bool>::VoxelModel(const Extents& extents, std::int64_t finestLOD, OtherLevels otherLevels)
    : Model(ExtentsForLevel(extents, finestLOD), finestLOD), otherLevels_(otherLevels)
{}

VoxelModel<bool>& VoxelModel<bool>::operator=(VoxelModel&& other) noexcept
{
    otherLevels_ = other.otherLevels_;
    Model::operator=(std::move(other));
    return *this;
}

void VoxelModel<bool>::RequireHeldLevel(std::int64_t lod) const
{
    RequireLevelOf(FinestLOD(), "The level of detail for voxel model operations", lod);
}

void VoxelModel<bool>::MakeLevels(OtherLevels when)
{
    if (when == OtherLevels::AtOnce) ForEachChunk([](const Triple&, VoxelChunk<bool>& chunk) { chunk.MakeAllLevels(); });
    otherLevels_ = when;
}

void VoxelModel<bool>::FinishChunk(VoxelChunk<bool>& chunk, std::int64_t lod) const
{
    chunk.LetLevelsFollow(lod);
    if (otherLevels_ == OtherLevels::AtOnce) chunk.MakeAllLevels();
}

void VoxelModel<bool>::FinishLevels(std::int64_t lod)
{
    RequireHeldLevel(lod);
    WatchedLoop loop(StoredChunkCount());
    ForEachChunk([&](const Triple&, VoxelChunk<bool>& chunk) {
        FinishChunk(chunk, lod);
        loop.Step();
    });
    ReleaseEmptyChunks();
}

void VoxelModel<bool>::FinishLevels(std::int64_t lod, const std::vector<Triple>& chunks)
{
    RequireHeldLevel(lod);
    WatchedLoop loop(chunks.size());
    for (const Triple& chunk : chunks) {
        FinishChunk(ChunkRef(chunk), lod);
        loop.Step();
    }
    ReleaseEmptyChunks();
}

void VoxelModel<bool>::ReleaseEmptyChunks()
{
    EraseChunksIf([](const VoxelChunk<bool>& chunk) { return chunk.IsUnallocated(); });
}

std::size_t VoxelModel<bool>::AllocatedBytes() const
{
    std::size_t bytes = TableBytes();
    ForEachChunk([&](const Triple&, const VoxelChunk<bool>& chunk) { bytes += sizeof(chunk) + chunk.AllocatedBytes(); });
    return bytes;
}

} // namespace brix
