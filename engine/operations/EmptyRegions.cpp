#include "EmptyRegions.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace brix {
namespace {

// Calls visit(first, last, occupied) for first..last along an axis in parts: each place that has occupied chunks, and what lies
// between such places.
template <class Visit>
void Split(std::int64_t first, std::int64_t last, std::span<const Triple> occupied, std::size_t axis, const Visit& visit)
{
    while (!occupied.empty()) {
        const std::int64_t place = occupied.front()[axis];
        const auto isHere = [&](const Triple& chunk) { return chunk[axis] == place; };
        const auto end = std::partition_point(occupied.begin(), occupied.end(), isHere);
        const auto here = static_cast<std::size_t>(end - occupied.begin());
        if (first < place) visit(first, place - 1, std::span<const Triple>());
        visit(place, place, occupied.first(here));
        first = place + 1;
        occupied = occupied.subspan(here);
    }
    if (first <= last) visit(first, last, std::span<const Triple>());
}

// Calls visit(a, b) for every two parts that overlap, of two lists that are sorted.
template <class Part, class Visit> void ForEachOverlap(std::span<Part> listA, std::span<Part> listB, const Visit& visit)
{
    for (auto a = listA.begin(), b = listB.begin(); a != listA.end() && b != listB.end();) {
        if (a->first <= b->last && b->first <= a->last) visit(*a, *b);
        if (a->last < b->last)
            ++a;
        else
            ++b;
    }
}

// The part of a sorted list that holds a place, or null.
template <class Part> const Part* FindPart(std::span<const Part> parts, std::int64_t place)
{
    const auto isBelow = [&](const Part& part) { return part.last < place; };
    const auto found = std::partition_point(parts.begin(), parts.end(), isBelow);
    return found != parts.end() && found->first <= place ? &*found : nullptr;
}

template <class Part> std::span<Part> PartsOf(const std::vector<std::remove_const_t<Part>>& parts, const auto& of)
{
    return std::span<Part>(parts).subspan(of.begin, of.end - of.begin);
}

} // namespace

EmptyRegions::EmptyRegions(const Triple& lower, const Triple& upper, std::span<const Triple> occupied)
    : lower_(lower), upper_(upper)
{
    Split(lower[2], upper[2], occupied, 2, [&](auto... part) { AddSlab(part...); });
    JoinBoxes();
}

void EmptyRegions::AddSlab(std::int64_t first, std::int64_t last, std::span<const Triple> occupied)
{
    const std::size_t begin = rows_.size();
    Split(lower_[1], upper_[1], occupied, 1, [&](auto... part) { AddRow(part...); });
    slabs_.push_back({first, last, begin, rows_.size()});
}

void EmptyRegions::AddRow(std::int64_t first, std::int64_t last, std::span<const Triple> occupied)
{
    const std::size_t begin = boxes_.size();
    Split(lower_[0], upper_[0], occupied, 0, [&](std::int64_t firstX, std::int64_t lastX, std::span<const Triple> here) {
        if (here.empty()) boxes_.push_back({firstX, lastX});
    });
    rows_.push_back({first, last, begin, boxes_.size()});
}

// Union-find (Tarjan, "Efficiency of a good but not linear set union algorithm", 1975), with halved paths.
std::size_t EmptyRegions::RootOf(std::size_t box)
{
    while (regions_[box] != box) box = regions_[box] = regions_[regions_[box]];
    return box;
}

void EmptyRegions::JoinRows(const Span& a, const Span& b)
{
    ForEachOverlap(PartsOf<const Span>(boxes_, a), PartsOf<const Span>(boxes_, b), [&](const Span& boxA, const Span& boxB) {
        const std::size_t rootA = RootOf(static_cast<std::size_t>(&boxA - boxes_.data()));
        const std::size_t rootB = RootOf(static_cast<std::size_t>(&boxB - boxes_.data()));
        regions_[std::max(rootA, rootB)] = std::min(rootA, rootB);
    });
}

void EmptyRegions::JoinBoxes()
{
    regions_.resize(boxes_.size());
    std::iota(regions_.begin(), regions_.end(), std::size_t{0});
    for (std::size_t slab = 0; slab < slabs_.size(); ++slab) {
        for (std::size_t row = slabs_[slab].begin + 1; row < slabs_[slab].end; ++row) JoinRows(rows_[row - 1], rows_[row]);
        if (slab == 0) continue;
        ForEachOverlap(PartsOf<const Span>(rows_, slabs_[slab - 1]), PartsOf<const Span>(rows_, slabs_[slab]),
                       [&](const Span& below, const Span& above) { JoinRows(below, above); });
    }
    std::vector<std::size_t> numbers(boxes_.size());
    for (std::size_t box = 0; box < boxes_.size(); ++box) { // a root is the first box of its region
        const std::size_t root = RootOf(box);
        numbers[box] = root == box ? regionCount_++ : numbers[root];
    }
    regions_ = std::move(numbers);
}

std::size_t EmptyRegions::RegionOf(const Triple& chunk) const
{
    if (!IsWithin(chunk, lower_, upper_)) return None;
    const Span* const slab = FindPart(std::span<const Span>(slabs_), chunk[2]);
    const Span* const row = FindPart(PartsOf<const Span>(rows_, *slab), chunk[1]);
    const Span* const box = FindPart(PartsOf<const Span>(boxes_, *row), chunk[0]);
    return box != nullptr ? regions_[static_cast<std::size_t>(box - boxes_.data())] : None;
}

} // namespace brix
