// One level of a model as a grid of stacks, without the chunks between: what passes over neighbouring stacks read and write.
#pragma once

#include "../model/VoxelModel.h"

#include <algorithm>
#include <span>

namespace brix {

/// The stacks that extents touch at their level, by their place among all stacks of the level (StackOfVoxel). The grid starts by
/// looking at a model's stacks and owns those that a pass has written. Like the model it is sparse: it keeps blocks of stacks,
/// one for each chunk that holds something, and for every block a bit for each stack that is not empty:
///
///     occupied[1]   ..##      row 1 of the block's stacks, bit i for column i
///     occupied[0]   .#..
///
/// Where a pass has work to do follows from these bits, moved by the distance that it looks. Not for several threads.
class LevelGrid
{
public:
    /// What a pass reads: for every stack that it writes, the one `offset` stacks away in a grid.
    struct Source
    {
        const LevelGrid* grid;
        Triple offset{};
    };

    /// The model's stacks at the level of `extents`, which may reach beyond the model: what it does not have is empty.
    /// The model must outlive the grid.
    LevelGrid(const VoxelModel<bool>& model, const Extents& extents);

    const Extents& ExtentsRef() const { return extents_; }
    Triple LowerStack() const { return lower_; }
    Triple UpperStack() const { return upper_; }

    /// A stack of the grid, or an empty one outside it.
    const VoxelStack<bool>& StackAt(const Triple& stack) const
    {
        const Block* const block = FindBlock(ChunkOf(stack));
        return block != nullptr ? block->StackAt(InChunk(stack[0]), InChunk(stack[1]), bits_) : EmptyStack;
    }

    /// The part of a stack that lies in the extents, as inclusive offsets inside the stack.
    OffsetBox Inside(const Triple& stack) const { return PartInside(extents_, CornerOfStack(stack)); }

    /// Replaces every stack: write(stack, result) overwrites `result`, whose content before is arbitrary. StackAt gives the old
    /// stacks until all are written. What all sources leave empty becomes empty without being written; and if all sources are
    /// this grid and `keepsFull` says so, full chunks that see nothing but full ones stay full.
    template <class Write> void Rewrite(std::span<const Source> sources, bool keepsFull, const Write& write);

    /// The places of the stacks that hold something, in no order.
    std::vector<Triple> OccupiedStacks() const;

    /// Replaces one stack of the grid. References to stacks of its chunk end.
    void Replace(const Triple& stack, VoxelStack<bool>&& content);

    /// A model on the extents whose finest level holds the grid's stacks, which are gone afterwards; coarser levels are left
    /// empty.
    VoxelModel<bool> TakeModel();

private:
    static constexpr std::int64_t MostPerRow = std::int64_t{1} << (LevelCount - 1);
    using Rows = std::array<std::uint32_t, static_cast<std::size_t>(MostPerRow)>; // row j, bit i: stack (i, j) of a chunk
    static_assert(MostPerRow == 32);

    struct Block
    {
        const VoxelStack<bool>& StackAt(std::int64_t i, std::int64_t j, std::int64_t bits) const
        {
            return looksAt != nullptr ? looksAt->VoxelStackRef({i, j}) : stacks[static_cast<std::size_t>(j << bits | i)];
        }

        bool IsOccupied() const
        {
            return std::any_of(occupied.begin(), occupied.end(), [](std::uint32_t row) { return row != 0; });
        }

        // Whether every voxel of the chunk is filled: such a block always looks at a store that says so.
        bool isFull = false;
        Rows occupied{};
        const VoxelStore<bool>* looksAt = nullptr; // a model's stacks, or else its own:
        std::unique_ptr<VoxelStack<bool>[]> stacks;
        bool isWritten = false; // by the pass at work
    };
    using Blocks = ChunkTable<Block>;

    Triple ChunkOf(const Triple& stack) const { return {FloorShift(stack[0], bits_), FloorShift(stack[1], bits_), stack[2]}; }
    std::int64_t PerRow() const { return std::int64_t{1} << bits_; }
    std::int64_t InChunk(std::int64_t stack) const { return stack & (PerRow() - 1); }

    // Passes mostly read the block that they read last.
    const Block* FindBlock(const Triple& chunk) const
    {
        if (chunk != lastChunk_) {
            lastChunk_ = chunk;
            lastBlock_ = blocks_.Find(chunk);
        }
        return lastBlock_;
    }

    std::uint64_t OccupiedFrom(const Triple& stack) const;
    std::vector<Triple> ChunksToWrite(std::span<const Source> sources) const;
    Rows StacksToWrite(const Triple& chunk, std::span<const Source> sources) const;
    Rows StacksOfGrid(const Triple& chunk) const;
    bool IsFull(const Triple& chunk) const
    {
        const Block* const block = FindBlock(chunk);
        return block != nullptr && block->isFull;
    }
    bool SeesFull(const Triple& chunk, std::span<const Source> sources) const;
    Block& BlockToEdit(const Triple& chunk);
    Block& BlockToWrite(const Triple& chunk, const Rows& written);
    void ReplaceByWritten(const std::vector<Triple>& kept);

    template <class Write> void WriteBlock(const Triple& chunk, const Rows& stacks, const Write& write);

    Extents extents_;
    std::int64_t bits_; // a chunk has 2^bits stacks along x and y
    OtherLevels otherLevels_;
    Triple lower_;
    Triple upper_;
    Blocks blocks_;
    Blocks spare_; // what the next pass writes to: the stacks of the pass before the last one, whose memory is used again
    mutable Triple lastChunk_;
    mutable const Block* lastBlock_ = nullptr;
};

template <class Write> void LevelGrid::WriteBlock(const Triple& chunk, const Rows& stacks, const Write& write)
{
    Block& block = BlockToWrite(chunk, stacks);
    for (std::int64_t j = 0; j < PerRow(); ++j) {
        std::uint32_t& occupied = block.occupied[static_cast<std::size_t>(j)];
        for (std::uint32_t row = stacks[static_cast<std::size_t>(j)]; row != 0; row &= row - 1) {
            const std::int64_t i = std::countr_zero(row);
            VoxelStack<bool>& result = block.stacks[static_cast<std::size_t>(j << bits_ | i)];
            write(Triple{chunk[0] << bits_ | i, chunk[1] << bits_ | j, chunk[2]}, result);
            if (!result.IsUnallocated()) occupied |= 1U << i;
        }
        CheckWatch();
    }
}

template <class Write> void LevelGrid::Rewrite(std::span<const Source> sources, bool keepsFull, const Write& write)
{
    std::vector<Triple> kept;
    const std::vector<Triple> chunks = ChunksToWrite(sources);
    WatchedLoop loop(chunks.size());
    for (const Triple& chunk : chunks) {
        if (keepsFull && SeesFull(chunk, sources))
            kept.push_back(chunk);
        else
            WriteBlock(chunk, StacksToWrite(chunk, sources), write);
        loop.Step();
    }
    ReplaceByWritten(kept);
}

} // namespace brix
