// The chunk grid: a box of chunks in space, for voxel chunks and triangle chunks alike. Chunk indices are absolute: models in the
// same frame share one grid. The grid is sparse: a chunk is stored from the moment it is first asked for to be written.
#pragma once

#include "../frame/NotEnoughMemory.h"
#include "../frame/WatchedLoop.h"
#include "ChunkTable.h"
#include "LevelBounds.h"
#include "ReaderChunks.h"

#include <memory>
#include <vector>

namespace brix {

template <class Chunk> class Model
{
public:
    /// An empty grid of the chunks that the extents touch. A chunk is made as Chunk(extents by level, chunkIndices), and
    /// initialized with the finest level where it has levels.
    explicit Model(const Extents& extents, std::int64_t finestLOD = 0);

    Model(const Model&) = default;
    Model(Model&&) = default;
    Model& operator=(const Model&) = default;
    Model& operator=(Model&&) = default;
    virtual ~Model() = default;

    const Axes& AxesRef() const { return ExtentsAtLevel(0).AxesRef(); }

    /// The lowest and the highest chunk indices of the grid, inclusive.
    Triple LowerChunkIndices() const { return chunks_.LowerIndices(); }
    Triple UpperChunkIndices() const { return chunks_.UpperIndices(); }

    /// Indices of the chunk that holds a base-unit point, whether the grid has it or not.
    Triple ContainingChunk(const Triple& coords) const
    {
        constexpr std::int64_t width = ChunkWidth * VoxelSpacing(0);
        const std::int64_t height = ChunkHeight * VoxelSpacing(AxesRef().VerticalLOD());
        return {FloorDivide(coords[0], width), FloorDivide(coords[1], width), FloorDivide(coords[2], height)};
    }

    bool IsChunkValid(const Triple& chunkIndices) const
    {
        return IsWithin(chunkIndices, LowerChunkIndices(), UpperChunkIndices());
    }

    /// The chunk with these indices, which must be valid; the reference holds until the model is assigned to or destroyed. One
    /// that is not stored is made empty. Several threads may read; FindChunk is the way to look without making anything.
    Chunk& ChunkRef(const Triple& chunkIndices)
    {
        return chunks_.FindOrMake(chunkIndices, [&] {
            std::unique_ptr<Chunk> chunk = readerChunks_.Take(chunkIndices);
            return chunk != nullptr ? std::move(chunk) : MakeChunk(chunkIndices);
        });
    }
    const Chunk& ChunkRef(const Triple& chunkIndices) const
    {
        if (const Chunk* const chunk = chunks_.Find(chunkIndices)) return *chunk;
        return readerChunks_.FindOrMake(chunkIndices, [&] { return MakeChunk(chunkIndices); });
    }

    /// The chunk with these indices, or null where none is stored. Any indices may be asked for.
    Chunk* FindChunk(const Triple& chunkIndices) { return chunks_.Find(chunkIndices); }
    const Chunk* FindChunk(const Triple& chunkIndices) const { return chunks_.Find(chunkIndices); }

    /// The same for a chunk of the grid.
    Chunk* FindValidChunk(const Triple& chunkIndices) { return chunks_.FindInside(chunkIndices); }
    const Chunk* FindValidChunk(const Triple& chunkIndices) const { return chunks_.FindInside(chunkIndices); }

    /// The number of chunks of the grid, and of those that are stored.
    std::size_t ChunkCount() const
    {
        const Triple size = Plus(Minus(UpperChunkIndices(), LowerChunkIndices()), {1, 1, 1});
        return static_cast<std::size_t>(size[0] * size[1] * size[2]);
    }
    std::size_t StoredChunkCount() const { return chunks_.Size(); }

    /// Calls visit(chunk indices, chunk) for all chunks that are stored: z outermost, then y, then x. A watch may end it.
    template <class Visit> void ForEachChunk(const Visit& visit) { WalkWatched(chunks_, visit); }
    template <class Visit> void ForEachChunk(const Visit& visit) const { WalkWatched(chunks_, visit); }

    /// The same for the chunks of one height.
    template <class Visit> void ForEachChunkOfSlab(std::int64_t z, const Visit& visit) const { chunks_.ForEachOfSlab(z, visit); }

protected:
    /// The extents that the grid was made from, at a level.
    const Extents& ExtentsAtLevel(std::int64_t lod) const { return (*bounds_)[static_cast<std::size_t>(lod)].ExtentsRef(); }

    std::int64_t FinestLevel() const { return finestLOD_; }

    /// Gives back the memory of the chunks for which isErased(chunk) is true. References to them end.
    template <class IsErased> void EraseChunksIf(const IsErased& isErased) { chunks_.EraseIf(isErased); }

    std::size_t TableBytes() const
    {
        std::size_t bytes = chunks_.AllocatedBytes();
        for (const LevelBounds& bounds : *bounds_) bytes += bounds.AllocatedBytes();
        return bytes;
    }

private:
    static std::shared_ptr<const BoundsOfLevels> AtAllLevels(const Extents& extents)
    {
        BoundsOfLevels levels;
        levels.reserve(static_cast<std::size_t>(LevelCount));
        for (std::int64_t lod = 0; lod < LevelCount; ++lod) levels.emplace_back(extents.RescaledCopy(lod));
        return std::make_shared<const BoundsOfLevels>(std::move(levels));
    }

    template <class Chunks, class Visit> static void WalkWatched(Chunks& chunks, const Visit& visit)
    {
        chunks.ForEach([&](const Triple& chunkIndices, auto& chunk) {
            visit(chunkIndices, chunk);
            CheckWatch();
        });
    }

    std::unique_ptr<Chunk> MakeChunk(const Triple& chunkIndices) const
    {
        try {
            auto chunk = std::make_unique<Chunk>(*bounds_, chunkIndices);
            if constexpr (requires { chunk->Initialize(finestLOD_); }) chunk->Initialize(finestLOD_);
            return chunk;
        } catch (const std::bad_alloc&) {
            throw NotEnoughMemory(Chunk::ModelName, ExtentsAtLevel(finestLOD_));
        }
    }

    std::shared_ptr<const BoundsOfLevels> bounds_;
    std::int64_t finestLOD_;
    ChunkTable<Chunk> chunks_;
    mutable ReaderChunks<Chunk> readerChunks_;
};

template <class Chunk>
Model<Chunk>::Model(const Extents& extents, std::int64_t finestLOD)
    : bounds_(AtAllLevels(extents)),
      finestLOD_(finestLOD),
      chunks_(ChunkOfVoxel(ExtentsAtLevel(0).LowerIndices(), 0), ChunkOfVoxel(ExtentsAtLevel(0).UpperIndices(), 0))
{}

} // namespace brix
