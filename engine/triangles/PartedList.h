// A list whose length nobody knows beforehand, of items that may be millions.
#pragma once

#include "../frame/WatchedLoop.h"

#include <utility>
#include <vector>

namespace brix {

/// Grows by parts, so that no single step copies all that there is so far: a vector's would take a tenth of a second, in which no
/// watch is asked.
template <class Item> class PartedList
{
public:
    void Add(const Item& item)
    {
        if (part_.size() == PartSize) [[unlikely]]
            BeginPart();
        part_.push_back(item);
    }

    /// All items, in the order in which they came, in one vector of just their size; parts go as they are copied.
    std::vector<Item> TakeAll()
    {
        if (fullParts_.empty()) return std::move(part_);
        std::vector<Item> all;
        all.reserve(fullParts_.size() * PartSize + part_.size());
        fullParts_.push_back(std::move(part_));
        for (std::vector<Item>& part : fullParts_) {
            all.insert(all.end(), part.begin(), part.end());
            std::vector<Item>().swap(part);
            CheckWatch();
        }
        return all;
    }

private:
    static constexpr std::size_t PartSize = std::size_t{1} << 16;

    void BeginPart()
    {
        fullParts_.push_back(std::move(part_));
        part_ = {};
        part_.reserve(PartSize);
        CheckWatch();
    }

    std::vector<std::vector<Item>> fullParts_;
    std::vector<Item> part_;
};

} // namespace brix
