// The chunk grid: a box of chunks in space, for voxel chunks and triangle chunks alike. Chunk indices are absolute: models in the
// same frame share one grid.
#pragma once

#include "StackLattice.h"

#include <vector>

namespace brix {

template <class Chunk> class Model
{
public:
    /// A grid of the chunks that the extents touch, each made as Chunk(extents, chunkIndices), z outermost, then y, then x.
    explicit Model(const Extents& extents);

    Model(const Model&) = default;
    Model(Model&&) = default;
    Model& operator=(const Model&) = default;
    Model& operator=(Model&&) = default;
    virtual ~Model() = default;

    const Axes& AxesRef() const { return extents_.front().AxesRef(); }

    /// The lowest and the highest chunk indices of the grid, inclusive.
    Triple LowerChunkIndices() const { return lowerChunkIndices_; }
    Triple UpperChunkIndices() const { return upperChunkIndices_; }

    /// Indices of the chunk that holds a base-unit point, whether the grid has it or not.
    Triple ContainingChunk(const Triple& coords) const
    {
        constexpr std::int64_t width = ChunkWidth * VoxelSpacing(0);
        const std::int64_t height = ChunkHeight * VoxelSpacing(AxesRef().VerticalLOD());
        return {FloorDivide(coords[0], width), FloorDivide(coords[1], width), FloorDivide(coords[2], height)};
    }

    bool IsChunkValid(const Triple& chunkIndices) const { return IsWithin(chunkIndices, lowerChunkIndices_, upperChunkIndices_); }

    /// The chunk with these indices, which must be valid.
    Chunk& ChunkRef(const Triple& chunkIndices) { return chunks_[ChunkNumber(chunkIndices)]; }
    const Chunk& ChunkRef(const Triple& chunkIndices) const { return chunks_[ChunkNumber(chunkIndices)]; }

protected:
    /// The extents that the grid was made from, at a level.
    const Extents& ExtentsAtLevel(std::int64_t lod) const { return extents_[static_cast<std::size_t>(lod)]; }

private:
    std::size_t ChunkNumber(const Triple& chunkIndices) const
    {
        const Triple offset = Minus(chunkIndices, lowerChunkIndices_);
        return static_cast<std::size_t>(offset[2] * chunksPerLayer_ + offset[1] * chunksPerRow_ + offset[0]);
    }

    std::vector<Extents> extents_; // by level
    Triple lowerChunkIndices_;
    Triple upperChunkIndices_;
    std::int64_t chunksPerRow_;
    std::int64_t chunksPerLayer_;
    std::vector<Chunk> chunks_;
};

template <class Chunk> Model<Chunk>::Model(const Extents& extents)
{
    for (std::int64_t lod = 0; lod < LevelCount; ++lod) extents_.push_back(extents.RescaledCopy(lod));
    lowerChunkIndices_ = ChunkOfVoxel(extents_.front().LowerIndices(), 0);
    upperChunkIndices_ = ChunkOfVoxel(extents_.front().UpperIndices(), 0);

    const Triple size = Plus(Minus(upperChunkIndices_, lowerChunkIndices_), {1, 1, 1});
    chunksPerRow_ = size[0];
    chunksPerLayer_ = size[0] * size[1];
    chunks_.reserve(static_cast<std::size_t>(chunksPerLayer_ * size[2]));
    ForEachTriple(lowerChunkIndices_, upperChunkIndices_,
                  [&](const Triple& chunkIndices) { chunks_.emplace_back(extents, chunkIndices); });
}

} // namespace brix
