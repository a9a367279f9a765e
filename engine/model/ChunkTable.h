// A sparse table of things by chunk: of a box of chunk indices, only what was made takes memory.
//
//   chunks ---- grouped in blocks of up to 4 x 4 x 4 --> a block has a pointer for each chunk, and a bit for each that is there
//   blocks ---- found by a hash of their place if there are several, and kept sorted (z, y, x) for walks
//
// Why not a dense array: a road of 5 km crosses 100 of 10,000 chunks of its box, two distant voxels 2 of millions. Why not a
// tree: the hash finds a chunk with two reads whatever the size of the box, and a walk over sorted blocks needs no recursion to
// go through chunks in the order z, y, x. Things are allocated one by one, so that references to them hold until they are erased.
#pragma once

#include "../frame/Triples.h"
#include "../frame/WatchedLoop.h"

#include <bit>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

namespace brix {

template <class Item> class ChunkTable
{
public:
    /// An empty table for the chunks lower..upper (inclusive).
    ChunkTable(const Triple& lower, const Triple& upper) : lower_(lower), upper_(upper)
    {
        for (std::size_t i = 0; i < 3; ++i) {
            const auto last = static_cast<std::uint64_t>(upper[i] - lower[i]);
            bits_[i] = std::min(MaxBlockBits, static_cast<int>(std::bit_width(last)));
        }
    }

    ChunkTable(const ChunkTable& other);
    ChunkTable(ChunkTable&& other) noexcept = default;
    ChunkTable& operator=(const ChunkTable& other) { return *this = ChunkTable(other); }
    ChunkTable& operator=(ChunkTable&& other) noexcept = default;
    ~ChunkTable() = default;

    Triple LowerIndices() const { return lower_; }
    Triple UpperIndices() const { return upper_; }

    /// The number of things that are there.
    std::size_t Size() const { return size_; }

    /// What is there for a chunk, or null. Any indices may be asked for. Cost: constant.
    Item* Find(const Triple& chunk) { return const_cast<Item*>(std::as_const(*this).Find(chunk)); }
    const Item* Find(const Triple& chunk) const { return IsWithin(chunk, lower_, upper_) ? FindInside(chunk) : nullptr; }

    /// The same for a chunk that is in the box.
    Item* FindInside(const Triple& chunk) { return const_cast<Item*>(std::as_const(*this).FindInside(chunk)); }
    const Item* FindInside(const Triple& chunk) const
    {
        const Place place = PlaceOf(chunk);
        const Entry entry = FindEntry(place.block);
        return entry.block != nullptr ? entry.items[place.slot].get() : nullptr;
    }

    /// What is there for a chunk of the box, made by make() (a unique_ptr) if nothing is. Cost: constant, but for the first chunk
    /// of a block, which moves the blocks behind it.
    template <class Make> Item& FindOrMake(const Triple& chunk, const Make& make)
    {
        const Place place = PlaceOf(chunk);
        const Entry found = FindEntry(place.block);
        if (found.block != nullptr && found.items[place.slot] != nullptr) return *found.items[place.slot];
        std::unique_ptr<Item> item = make();
        Block& block = found.block != nullptr ? *found.block : AddBlock(place.block);
        block.present |= std::uint64_t{1} << place.slot;
        block.items[place.slot] = std::move(item);
        ++size_;
        return *block.items[place.slot];
    }

    /// Takes out what is there for a chunk; null where nothing is. A block that is left without anything goes with the next
    /// EraseIf.
    std::unique_ptr<Item> Extract(const Triple& chunk)
    {
        if (Find(chunk) == nullptr) return nullptr;
        const Place place = PlaceOf(chunk);
        Block& block = *FindEntry(place.block).block;
        block.present &= ~(std::uint64_t{1} << place.slot);
        --size_;
        return std::move(block.items[place.slot]);
    }

    /// Calls visit(chunk indices, item) for all that is there: z outermost, then y, then x. Nothing may be made or erased
    /// meanwhile.
    template <class Visit> void ForEach(const Visit& visit) { Walk(*this, blocks_.begin(), blocks_.end(), visit); }
    template <class Visit> void ForEach(const Visit& visit) const { Walk(*this, blocks_.begin(), blocks_.end(), visit); }

    /// The same for the chunks of one height.
    template <class Visit> void ForEachOfSlab(std::int64_t z, const Visit& visit) const;

    /// Erases everything for which isErased(item) is true.
    template <class IsErased> void EraseIf(const IsErased& isErased);

    /// Bytes of the heap that the table owns, without the things.
    std::size_t AllocatedBytes() const
    {
        return blocks_.size() * (sizeof(Block) + sizeof(std::unique_ptr<Item>) * SlotCount()) +
               blocks_.capacity() * sizeof(blocks_.front()) + directory_.capacity() * sizeof(Entry);
    }

private:
    static constexpr int MaxBlockBits = 2; // along an axis: a block's chunks have a bit each in a word of 64
    static constexpr int KeyBits = 21;     // of a block's place along an axis; the index space has less than 2^14 chunks

    struct Block
    {
        std::uint64_t key; // place z, y, x from the table's lower corner: the order of blocks
        std::uint64_t present = 0;
        std::unique_ptr<std::unique_ptr<Item>[]> items; // by slot: x in the lowest bits, then y, then z
    };
    // Of the directory: what a look-up reads, beside each other. Free where there is no block.
    struct Entry
    {
        std::uint64_t key;
        std::unique_ptr<Item>* items;
        Block* block;
    };
    struct Place
    {
        std::uint64_t block;
        std::size_t slot;
    };

    std::size_t SlotCount() const { return std::size_t{1} << (bits_[0] + bits_[1] + bits_[2]); }

    Place PlaceOf(const Triple& chunk) const
    {
        Place place{0, 0};
        for (std::size_t i = 3; i-- > 0;) {
            const auto offset = static_cast<std::uint64_t>(chunk[i] - lower_[i]);
            place.block = place.block << KeyBits | offset >> bits_[i];
            place.slot = place.slot << bits_[i] | (offset & ((std::uint64_t{1} << bits_[i]) - 1));
        }
        return place;
    }

    // Of the block's first chunk, along an axis.
    std::int64_t FirstChunk(const Block& block, std::size_t axis) const
    {
        const std::uint64_t place = block.key >> (KeyBits * static_cast<int>(axis)) & ((std::uint64_t{1} << KeyBits) - 1);
        return lower_[axis] + static_cast<std::int64_t>(place << bits_[axis]);
    }

    // Fibonacci hashing (Knuth, "Sorting and Searching", 6.4): the highest bits of a product.
    std::size_t HashOf(std::uint64_t key) const { return static_cast<std::size_t>(key * 0x9E3779B97F4A7C15 >> hashShift_); }

    static Entry EntryOf(Block& block) { return {block.key, block.items.get(), &block}; }

    // Without a block where there is none of this key. A single block needs no directory.
    Entry FindEntry(std::uint64_t key) const
    {
        if (directory_.empty()) return blocks_.empty() || blocks_.front()->key != key ? Entry{} : EntryOf(*blocks_.front());
        const std::size_t last = directory_.size() - 1;
        for (std::size_t i = HashOf(key);; i = (i + 1) & last) {
            const Entry& entry = directory_[i];
            if (entry.block == nullptr || entry.key == key) return entry;
        }
    }

    void Enter(Block* block)
    {
        std::size_t i = HashOf(block->key);
        while (directory_[i].block != nullptr) i = (i + 1) & (directory_.size() - 1);
        directory_[i] = EntryOf(*block);
    }

    // For so many blocks, of which those that are there are entered.
    void MakeDirectory(std::size_t blockCount)
    {
        if (blockCount < 2) return directory_.clear();
        std::size_t size = 2;
        while (size < 2 * blockCount) size *= 2;
        directory_.assign(size, Entry{});
        hashShift_ = 64 - std::countr_zero(size);
        for (const auto& block : blocks_) Enter(block.get());
    }

    Block& AddBlock(std::uint64_t key);

    template <class Table, class Iterator, class Visit>
    static void Walk(Table& table, Iterator begin, Iterator end, const Visit& visit);
    template <class Table, class Iterator, class Visit>
    static void WalkPlane(Table& table, Iterator begin, Iterator end, std::size_t z, const Visit& visit);

    Triple lower_;
    Triple upper_;
    std::array<int, 3> bits_; // a block is 2^bits chunks wide along each axis: a small box has a small block
    std::size_t size_ = 0;
    std::vector<std::unique_ptr<Block>> blocks_; // sorted by key
    std::vector<Entry> directory_;               // open addressing with linear probing; a power of two, at most half full
    int hashShift_ = 0;                          // of a product, to give a place in the directory
};

template <class Item> ChunkTable<Item>::ChunkTable(const ChunkTable& other) : ChunkTable(other.lower_, other.upper_)
{
    blocks_.reserve(other.blocks_.size());
    for (const auto& block : other.blocks_) {
        auto copy =
            std::make_unique<Block>(Block{block->key, block->present, std::make_unique<std::unique_ptr<Item>[]>(SlotCount())});
        for (std::uint64_t slots = block->present; slots != 0; slots &= slots - 1) {
            const auto slot = static_cast<std::size_t>(std::countr_zero(slots));
            copy->items[slot] = std::make_unique<Item>(*block->items[slot]);
            CheckWatch();
        }
        blocks_.push_back(std::move(copy));
    }
    MakeDirectory(blocks_.size());
    size_ = other.size_;
}

template <class Item> typename ChunkTable<Item>::Block& ChunkTable<Item>::AddBlock(std::uint64_t key)
{
    auto block = std::make_unique<Block>(Block{key, 0, std::make_unique<std::unique_ptr<Item>[]>(SlotCount())});
    Block& added = *block;
    if (!blocks_.empty() && 2 * (blocks_.size() + 1) > directory_.size()) MakeDirectory(blocks_.size() + 1);
    const auto isBefore = [](const auto& a, std::uint64_t wanted) { return a->key < wanted; };
    const auto place = blocks_.empty() || blocks_.back()->key < key
                           ? blocks_.end()
                           : std::lower_bound(blocks_.begin(), blocks_.end(), key, isBefore);
    blocks_.insert(place, std::move(block));
    if (!directory_.empty()) Enter(&added);
    return added;
}

// Blocks come by z, then y, then x, and so do the chunks in a block; between them, the planes of a row of blocks take turns.
template <class Item>
template <class Table, class Iterator, class Visit>
void ChunkTable<Item>::Walk(Table& table, Iterator begin, Iterator end, const Visit& visit)
{
    while (begin != end) {
        Iterator slabEnd = begin;
        while (slabEnd != end && (*slabEnd)->key >> 2 * KeyBits == (*begin)->key >> 2 * KeyBits) ++slabEnd;
        for (std::size_t z = 0; z < std::size_t{1} << table.bits_[2]; ++z) WalkPlane(table, begin, slabEnd, z, visit);
        begin = slabEnd;
    }
}

// One height of the blocks of one height.
template <class Item>
template <class Table, class Iterator, class Visit>
void ChunkTable<Item>::WalkPlane(Table& table, Iterator begin, Iterator end, std::size_t z, const Visit& visit)
{
    const auto [bitsX, bitsY, bitsZ] = table.bits_;
    const std::uint64_t rowMask = (std::uint64_t{1} << (std::uint64_t{1} << bitsX)) - 1;
    while (begin != end) {
        Iterator rowEnd = begin;
        while (rowEnd != end && (*rowEnd)->key >> KeyBits == (*begin)->key >> KeyBits) ++rowEnd;
        for (std::size_t y = 0; y < std::size_t{1} << bitsY; ++y) {
            const std::size_t firstSlot = (z << bitsY | y) << bitsX;
            for (Iterator block = begin; block != rowEnd; ++block) {
                for (std::uint64_t row = (*block)->present >> firstSlot & rowMask; row != 0; row &= row - 1) {
                    const int x = std::countr_zero(row);
                    const Triple chunk{table.FirstChunk(**block, 0) + x,
                                       table.FirstChunk(**block, 1) + static_cast<std::int64_t>(y),
                                       table.FirstChunk(**block, 2) + static_cast<std::int64_t>(z)};
                    using Visited = std::conditional_t<std::is_const_v<Table>, const Item, Item>;
                    visit(chunk, static_cast<Visited&>(*(*block)->items[firstSlot + static_cast<std::size_t>(x)]));
                }
            }
        }
        begin = rowEnd;
    }
}

template <class Item> template <class Visit> void ChunkTable<Item>::ForEachOfSlab(std::int64_t z, const Visit& visit) const
{
    if (z < lower_[2] || z > upper_[2]) return;
    const auto offset = static_cast<std::uint64_t>(z - lower_[2]);
    const std::uint64_t slab = offset >> bits_[2];
    const auto isBefore = [](const auto& block, std::uint64_t wanted) { return block->key >> 2 * KeyBits < wanted; };
    const auto begin = std::lower_bound(blocks_.begin(), blocks_.end(), slab, isBefore);
    const auto end = std::lower_bound(begin, blocks_.end(), slab + 1, isBefore);
    WalkPlane(*this, begin, end, static_cast<std::size_t>(offset & ((std::uint64_t{1} << bits_[2]) - 1)), visit);
}

template <class Item> template <class IsErased> void ChunkTable<Item>::EraseIf(const IsErased& isErased)
{
    for (const auto& block : blocks_) {
        for (std::uint64_t slots = block->present; slots != 0; slots &= slots - 1) {
            const auto slot = static_cast<std::size_t>(std::countr_zero(slots));
            if (!isErased(std::as_const(*block->items[slot]))) continue;
            block->items[slot] = nullptr;
            block->present &= ~(std::uint64_t{1} << slot);
            --size_;
        }
    }
    if (std::erase_if(blocks_, [](const auto& block) { return block->present == 0; }) != 0) MakeDirectory(blocks_.size());
}

} // namespace brix
