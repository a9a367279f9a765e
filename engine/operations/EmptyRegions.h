// The empty part of a grid of chunks, in connected regions: two empty chunks that share a face lie in one region. The cost
// follows the occupied chunks, not the grid: empty chunks are kept as boxes, found by splitting the grid along z, y and x around
// what is occupied.
//
//    +--------------+
//    |      a       |   rows of y without an occupied chunk are one box (and slabs of z likewise);
//    +----+-+--+-+--+
//    | b  |#| c|#| d|   other rows have a box between every two occupied chunks (#)
//    +----+-+--+-+--+
#pragma once

#include "../frame/Triples.h"

#include <cstddef>
#include <span>
#include <vector>

namespace brix {

class EmptyRegions
{
public:
    static constexpr std::size_t None = ~std::size_t{0};

    /// `lower`, `upper`  the grid, inclusive; `occupied` chunks of it, by z, then y, then x
    EmptyRegions(const Triple& lower, const Triple& upper, std::span<const Triple> occupied);

    std::size_t Count() const { return regionCount_; }

    /// The region of a chunk, or None for one that is occupied or outside the grid. Cost: logarithmic.
    std::size_t RegionOf(const Triple& chunk) const;

    /// Calls visit(region, lower, upper) for every box of empty chunks.
    template <class Visit> void ForEachBox(const Visit& visit) const
    {
        for (const Span& slab : slabs_) {
            for (const Span& row : std::span(rows_).subspan(slab.begin, slab.end - slab.begin)) {
                for (std::size_t box = row.begin; box < row.end; ++box)
                    visit(regions_[box], Triple{boxes_[box].first, row.first, slab.first},
                          Triple{boxes_[box].last, row.last, slab.last});
            }
        }
    }

private:
    // Chunks first..last along an axis, and what lies in them: a slab has rows, a row boxes.
    struct Span
    {
        std::int64_t first;
        std::int64_t last;
        std::size_t begin = 0;
        std::size_t end = 0;
    };

    void AddSlab(std::int64_t first, std::int64_t last, std::span<const Triple> occupied);
    void AddRow(std::int64_t first, std::int64_t last, std::span<const Triple> occupied);
    void JoinBoxes();
    void JoinRows(const Span& a, const Span& b);
    std::size_t RootOf(std::size_t box);

    Triple lower_;
    Triple upper_;
    std::vector<Span> slabs_;
    std::vector<Span> rows_;
    std::vector<Span> boxes_;
    std::vector<std::size_t> regions_; // of the boxes
    std::size_t regionCount_ = 0;
};

} // namespace brix
