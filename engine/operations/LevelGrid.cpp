#include "LevelGrid.h"

#include "../model/ChunkPart.h"
#include "../model/ForEachStack.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace brix {
namespace {

constexpr Triple NoChunk{std::numeric_limits<std::int64_t>::max(), 0, 0};

} // namespace

LevelGrid::LevelGrid(const VoxelModel<bool>& model, const Extents& extents)
    : extents_(extents),
      bits_(extents.VoxelLOD()),
      otherLevels_(model.WhenLevelsAreMade()),
      lower_(StackOfVoxel(extents.LowerIndices())),
      upper_(StackOfVoxel(extents.UpperIndices())),
      blocks_(ChunkOf(lower_), ChunkOf(upper_)),
      spare_(ChunkOf(lower_), ChunkOf(upper_)),
      lastChunk_(NoChunk)
{
    model.ForEachChunk([&](const Triple& chunkIndices, const VoxelChunk<bool>& chunk) {
        if (!IsWithin(chunkIndices, ChunkOf(lower_), ChunkOf(upper_))) return;
        const VoxelStore<bool>& store = chunk.VoxelStoreRef(bits_);
        auto block = std::make_unique<Block>();
        bool isEmpty = true;
        ForEachStackOfStore(store, [&](const VoxelStore<bool>&, const StackIndices& ij) {
            if (!store.IsUniformlyFull() && store.ValidStackRef(ij).IsUnallocated()) return;
            isEmpty = false;
            block->occupied[static_cast<std::size_t>(ij[1])] |= 1U << ij[0];
        });
        if (isEmpty) return;
        const ChunkPart whole(store);
        block->isFull = IsUniformlyFull(store, whole) && ChunkPart(store, extents_).Covers(whole);
        const Rows inGrid = StacksOfGrid(chunkIndices);
        for (std::size_t j = 0; j < inGrid.size(); ++j) block->occupied[j] &= inGrid[j];
        block->looksAt = &store;
        blocks_.FindOrMake(chunkIndices, [&] { return std::move(block); });
    });
}

// The occupied stacks of a row of as many as a chunk has, from this one on.
std::uint64_t LevelGrid::OccupiedFrom(const Triple& stack) const
{
    const auto rowOf = [&](const Triple& chunk) {
        const Block* const block = FindBlock(chunk);
        return block != nullptr ? std::uint64_t{block->occupied[static_cast<std::size_t>(InChunk(stack[1]))]} : 0;
    };
    const Triple chunk = ChunkOf(stack);
    const std::int64_t first = InChunk(stack[0]);
    const std::uint64_t row = rowOf(chunk) >> first;
    return first == 0 ? row : row | rowOf(Plus(chunk, {1, 0, 0})) << (PerRow() - first);
}

// The chunks that an occupied stack comes to lie in when it is moved by what a source looks away from it.
std::vector<Triple> LevelGrid::ChunksToWrite(std::span<const Source> sources) const
{
    std::vector<Triple> chunks;
    for (const Source& source : sources) {
        source.grid->blocks_.ForEach([&](const Triple& chunk, const Block& block) {
            if (!block.IsOccupied()) return; // nothing came of writing it
            const Triple first = Minus(Triple{chunk[0] << bits_, chunk[1] << bits_, chunk[2]}, source.offset);
            const Triple last = Plus(first, {PerRow() - 1, PerRow() - 1, 0});
            ForEachTriple(Highest(ChunkOf(first), ChunkOf(lower_)), Lowest(ChunkOf(last), ChunkOf(upper_)),
                          [&](const Triple& written) { chunks.push_back(written); });
        });
    }
    const auto isBefore = [](const Triple& a, const Triple& b) {
        return std::lexicographical_compare(a.rbegin(), a.rend(), b.rbegin(), b.rend());
    };
    std::sort(chunks.begin(), chunks.end(), isBefore);
    chunks.erase(std::unique(chunks.begin(), chunks.end()), chunks.end());
    return chunks;
}

LevelGrid::Rows LevelGrid::StacksToWrite(const Triple& chunk, std::span<const Source> sources) const
{
    Rows stacks = StacksOfGrid(chunk);
    for (std::int64_t j = 0; j < PerRow(); ++j) {
        std::uint32_t& row = stacks[static_cast<std::size_t>(j)];
        std::uint64_t occupied = 0;
        for (const Source& source : sources) {
            const Triple first{chunk[0] << bits_, (chunk[1] << bits_) + j, chunk[2]};
            if (row != 0) occupied |= source.grid->OccupiedFrom(Plus(first, source.offset));
        }
        row &= static_cast<std::uint32_t>(occupied);
    }
    return stacks;
}

// Whether a chunk and all that its sources look at is full.
bool LevelGrid::SeesFull(const Triple& chunk, std::span<const Source> sources) const
{
    return IsFull(chunk) && std::all_of(sources.begin(), sources.end(), [&](const Source& source) {
               const Triple first = Plus(Triple{chunk[0] << bits_, chunk[1] << bits_, chunk[2]}, source.offset);
               const Triple last = Plus(first, {PerRow() - 1, PerRow() - 1, 0});
               bool isFull = source.grid == this;
               ForEachTriple(ChunkOf(first), ChunkOf(last), [&](const Triple& seen) { isFull = isFull && IsFull(seen); });
               return isFull;
           });
}

// The stacks of a chunk that the extents touch.
LevelGrid::Rows LevelGrid::StacksOfGrid(const Triple& chunk) const
{
    const auto inChunk = [&](std::int64_t stack, std::size_t axis) {
        return std::clamp<std::int64_t>(stack - (chunk[axis] << bits_), 0, PerRow() - 1);
    };
    const std::int64_t firstX = inChunk(lower_[0], 0);
    const std::int64_t lastX = inChunk(upper_[0], 0);
    Rows rows{};
    for (std::int64_t j = inChunk(lower_[1], 1); j <= inChunk(upper_[1], 1); ++j)
        rows[static_cast<std::size_t>(j)] =
            static_cast<std::uint32_t>((std::uint64_t{2} << lastX) - (std::uint64_t{1} << firstX));
    return rows;
}

std::vector<Triple> LevelGrid::OccupiedStacks() const
{
    std::vector<Triple> stacks;
    blocks_.ForEach([&](const Triple& chunk, const Block& block) {
        for (std::int64_t j = 0; j < PerRow(); ++j) {
            for (std::uint32_t row = block.occupied[static_cast<std::size_t>(j)]; row != 0; row &= row - 1)
                stacks.push_back({chunk[0] << bits_ | std::countr_zero(row), chunk[1] << bits_ | j, chunk[2]});
        }
    });
    return stacks;
}

// A block that owns its stacks.
LevelGrid::Block& LevelGrid::BlockToEdit(const Triple& chunk)
{
    lastChunk_ = NoChunk;
    Block& block = blocks_.FindOrMake(chunk, [] { return std::make_unique<Block>(); });
    if (block.stacks != nullptr) return block;
    block.isFull = false;
    auto stacks = std::make_unique<VoxelStack<bool>[]>(std::size_t{1} << 2 * bits_);
    for (std::int64_t j = 0; block.looksAt != nullptr && j < PerRow(); ++j) {
        for (std::uint32_t row = block.occupied[static_cast<std::size_t>(j)]; row != 0; row &= row - 1) {
            const std::int64_t i = std::countr_zero(row);
            stacks[static_cast<std::size_t>(j << bits_ | i)] = block.looksAt->VoxelStackRef({i, j});
        }
    }
    block.stacks = std::move(stacks);
    block.looksAt = nullptr;
    return block;
}

void LevelGrid::Replace(const Triple& stack, VoxelStack<bool>&& content)
{
    Block& block = BlockToEdit(ChunkOf(stack));
    const std::int64_t i = InChunk(stack[0]);
    const std::int64_t j = InChunk(stack[1]);
    const std::uint32_t bit = 1U << i;
    std::uint32_t& row = block.occupied[static_cast<std::size_t>(j)];
    row = content.IsUnallocated() ? row & ~bit : row | bit;
    block.stacks[static_cast<std::size_t>(j << bits_ | i)] = std::move(content);
}

// A spare block without any occupied stack; those that will not be written are emptied.
LevelGrid::Block& LevelGrid::BlockToWrite(const Triple& chunk, const Rows& written)
{
    Block& block = spare_.FindOrMake(chunk, [&] {
        auto made = std::make_unique<Block>();
        made->stacks = std::make_unique<VoxelStack<bool>[]>(std::size_t{1} << 2 * bits_);
        return made;
    });
    for (std::size_t j = 0; j < written.size(); ++j) {
        for (std::uint32_t row = block.occupied[j] & ~written[j]; row != 0; row &= row - 1)
            block.stacks[j << bits_ | static_cast<std::size_t>(std::countr_zero(row))] = VoxelStack<bool>();
        block.occupied[j] = 0;
    }
    block.isWritten = true;
    return block;
}

// Makes the written blocks the grid's, and those that are kept. The other old ones are spare, unless they only look at a model.
void LevelGrid::ReplaceByWritten(const std::vector<Triple>& kept)
{
    spare_.EraseIf([](const Block& block) { return !block.isWritten; });
    for (const Triple& chunk : kept) spare_.FindOrMake(chunk, [&] { return blocks_.Extract(chunk); });
    blocks_.EraseIf([](const Block& block) { return block.looksAt != nullptr; });
    std::swap(blocks_, spare_);
    spare_.ForEach([](const Triple&, Block& block) { block.isWritten = false; });
    lastChunk_ = NoChunk;
}

VoxelModel<bool> LevelGrid::TakeModel()
{
    VoxelModel<bool> model(extents_, bits_, otherLevels_);
    blocks_.ForEach([&](const Triple& chunk, Block& block) {
        CheckWatch();
        VoxelStore<bool>& store = model.ChunkRef(chunk).VoxelStoreRef(bits_);
        if (block.isFull) return store.MakeUniform(true);
        ForEachStackOfStore(store, [&](VoxelStore<bool>&, const StackIndices& ij) {
            VoxelStack<bool>& stack = store.ValidStackRef(ij);
            if (block.looksAt != nullptr)
                stack = block.looksAt->VoxelStackRef(ij);
            else
                stack = std::move(block.stacks[static_cast<std::size_t>(ij[1] << bits_ | ij[0])]);
        });
    });
    return model;
}

} // namespace brix
