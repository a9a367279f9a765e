// The exception for a model that memory has no room for.
#pragma once

#include "Extents.h"

#include <array>
#include <new>

namespace brix {

/// Says which model was asked for; a host that catches std::bad_alloc shows what() to its user. Other allocations that fail leave
/// the standard library's exceptions as they are. The sentence is held in place, as there may be no memory for it.
class NotEnoughMemory : public std::bad_alloc
{
public:
    /// "There is not enough memory for " `model` " of 800 x 600 x 64 voxels at level 5.", with the size and the level of the
    /// extents.
    NotEnoughMemory(const char* model, const Extents& extents) noexcept;

    const char* what() const noexcept override { return sentence_.data(); }

private:
    std::array<char, 160> sentence_;
};

} // namespace brix
