// Cells of a line merged into runs, for 64 heights at once. A line is anything that has its cells in a row: voxels along x, or
// runs along x that are equal and lie beside each other along y. Each cell has a word of the heights at which it is there.
//
//   cell            0    1    2          what the sweep emits
//   height 1        #    #    .          cells 0..1 at height 1
//   height 0        #    #    #          cells 0..2 at height 0
#pragma once

#include "StackFaces.h"

#include <algorithm>
#include <vector>

namespace brix {

/// Lines, positions and ranges are packed into one number, so that lists of cells are sorted quickly. Voxel and corner indices
/// along x and y take 21 bits each.
inline constexpr int PositionBits = 21;
inline constexpr std::int64_t PositionBias = std::int64_t{1} << (PositionBits - 1);
static_assert(MaxHorizontalExtent(LevelCount - 1) < PositionBias);

constexpr std::uint64_t PackPosition(std::int64_t position) { return static_cast<std::uint64_t>(position + PositionBias); }
constexpr std::int64_t UnpackPosition(std::uint64_t packed)
{
    return static_cast<std::int64_t>(packed & ((std::uint64_t{1} << PositionBits) - 1)) - PositionBias;
}

struct IndexRange
{
    std::int64_t lower; // both inclusive
    std::int64_t upper;

    bool operator==(const IndexRange&) const = default;
};

constexpr std::uint64_t PackRange(const IndexRange& range)
{
    return PackPosition(range.lower) << PositionBits | PackPosition(range.upper);
}
constexpr IndexRange UnpackRange(std::uint64_t packed)
{
    return {UnpackPosition(packed >> PositionBits), UnpackPosition(packed)};
}

/// A cell of a line. `line` is a packed position or range.
struct Cell
{
    Cell(std::uint64_t line, std::int64_t position, Heights cellHeights)
        : key(line << PositionBits | PackPosition(position)), heights(cellHeights)
    {}

    std::uint64_t Line() const { return key >> PositionBits; }
    std::int64_t Position() const { return UnpackPosition(key); }

    std::uint64_t key; // the line, then the position
    Heights heights;
};

/// The runs of one line that are open at a position.
class RunSweep
{
public:
    Heights Covered() const { return covered_; }

    /// From `position` on, these heights are covered. Calls emit(range, heights) for the runs that end before it.
    template <class Emit> void Cover(std::int64_t position, Heights heights, const Emit& emit)
    {
        const Heights ended = covered_ & ~heights;
        const Heights started = heights & ~covered_;
        covered_ = heights;
        if (ended != 0) {
            for (Run& run : open_) {
                if ((run.heights & ended) != 0) emit(IndexRange{run.lower, position - 1}, run.heights & ended);
                run.heights &= ~ended;
            }
            std::erase_if(open_, [](const Run& run) { return run.heights == 0; });
        }
        if (started != 0) open_.push_back({position, started});
    }

private:
    struct Run
    {
        std::int64_t lower;
        Heights heights;
    };

    std::vector<Run> open_; // by where they start
    Heights covered_ = 0;
};

inline constexpr std::size_t CellsBetweenChecks = 1 << 16;

/// Sorts by key: short lists by comparing, long ones digit by digit from the lowest up, which leaves digits out that all keys
/// share.
inline void SortCells(std::vector<Cell>& cells)
{
    constexpr std::size_t shortest = 2000;
    constexpr int digitBits = 8;
    const auto isBefore = [](const Cell& a, const Cell& b) { return a.key < b.key; };
    if (cells.size() < shortest) return std::sort(cells.begin(), cells.end(), isBefore);

    const auto forEachCell = [&](const auto& visit) {
        for (std::size_t i = 0; i < cells.size(); ++i) {
            if (i % CellsBetweenChecks == 0) CheckWatch();
            visit(cells[i]);
        }
    };
    std::uint64_t differing = 0;
    forEachCell([&](const Cell& cell) { differing |= cell.key ^ cells.front().key; });
    std::vector<Cell> sorted(cells);
    for (int shift = 0; shift < 64; shift += digitBits) {
        const auto digitOf = [shift](std::uint64_t key) { return static_cast<std::size_t>(key >> shift & 0xFF); };
        if (digitOf(differing) == 0) continue;
        std::array<std::size_t, 257> starts{}; // of each digit; counted one place higher
        forEachCell([&](const Cell& cell) { ++starts[digitOf(cell.key) + 1]; });
        for (std::size_t digit = 1; digit < starts.size(); ++digit) starts[digit] += starts[digit - 1];
        forEachCell([&](const Cell& cell) { sorted[starts[digitOf(cell.key)]++] = cell; });
        cells.swap(sorted);
    }
}

/// Calls emit(line, range, heights) for the longest runs of cells at equal heights. Sorts the cells; no two have one place.
template <class Emit> void MergeCells(std::vector<Cell>& cells, const Emit& emit)
{
    SortCells(cells);
    RunSweep sweep;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (i % CellsBetweenChecks == 0) CheckWatch();
        const std::uint64_t line = cells[i].Line();
        const auto emitRun = [&](const IndexRange& range, Heights heights) { emit(line, range, heights); };
        sweep.Cover(cells[i].Position(), cells[i].heights, emitRun);
        if (i + 1 == cells.size() || cells[i + 1].key != cells[i].key + 1) sweep.Cover(cells[i].Position() + 1, 0, emitRun);
    }
}

/// The same of cells that are given by their ends: each entry toggles heights of its line from its position on. Where runs of two
/// stacks meet, both entries cancel.
template <class Emit> void MergeToggles(std::vector<Cell>& toggles, const Emit& emit)
{
    SortCells(toggles);
    RunSweep sweep;
    std::size_t untilCheck = CellsBetweenChecks;
    for (auto toggle = toggles.begin(); toggle != toggles.end();) {
        if (--untilCheck == 0) {
            CheckWatch();
            untilCheck = CellsBetweenChecks;
        }
        const Cell& first = *toggle;
        Heights toggled = 0;
        for (; toggle != toggles.end() && toggle->key == first.key; ++toggle) toggled ^= toggle->heights;
        sweep.Cover(first.Position(), sweep.Covered() ^ toggled,
                    [&](const IndexRange& range, Heights heights) { emit(first.Line(), range, heights); });
    }
}

/// Joins what is equal at consecutive heights, also from one slab of chunks (those of one height) to the next, which come bottom
/// to top.
class HeightJoiner
{
public:
    /// Adds the heights of a range of a line, each pair of which comes once per slab of chunks, and calls emit(line, range, z
    /// range) for what ends inside it. `bottom` is the slab's lowest height.
    template <class Emit>
    void Add(std::uint64_t line, const IndexRange& range, Heights heights, std::int64_t bottom, const Emit& emit)
    {
        while (heights != 0) {
            const int lower = std::countr_zero(heights);
            const int end = lower + std::countr_one(heights >> lower);
            const std::int64_t start = lower == 0 ? StartOf(line, range, bottom) : bottom + lower;
            if (end == StackHeight)
                next_.push_back({line, PackRange(range), start, false});
            else
                emit(line, range, IndexRange{start, bottom + end - 1});
            heights = end == StackHeight ? 0 : heights >> end << end;
        }
    }

    /// Ends a slab of chunks: emits what came up to it from below and was not in it. After the last slab an empty one must end.
    template <class Emit> void EndSlab(std::int64_t bottom, const Emit& emit)
    {
        for (const Open& open : open_) {
            if (!open.continues) emit(open.line, UnpackRange(open.range), IndexRange{open.start, bottom - 1});
        }
        open_.swap(next_);
        next_.clear();
        WatchedSort(open_.begin(), open_.end(), IsBefore);
    }

private:
    struct Open
    {
        std::uint64_t line;
        std::uint64_t range;
        std::int64_t start;
        bool continues;
    };

    static bool IsBefore(const Open& a, const Open& b) { return a.line != b.line ? a.line < b.line : a.range < b.range; }

    // Where something starts that is there at the bottom of a slab: in a slab below, if the same ended there at the top.
    std::int64_t StartOf(std::uint64_t line, const IndexRange& range, std::int64_t bottom)
    {
        const Open wanted{line, PackRange(range), bottom, false};
        const auto found = std::lower_bound(open_.begin(), open_.end(), wanted, IsBefore);
        if (found == open_.end() || IsBefore(wanted, *found)) return bottom;
        found->continues = true;
        return found->start;
    }

    std::vector<Open> open_; // at the top of the slab below, sorted
    std::vector<Open> next_; // at the top of this one
};

} // namespace brix
