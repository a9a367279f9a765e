#include "StackIterator.h"

#include "../frame/Require.h"

#include <stdexcept>

namespace brix {

void ThrowInvalidStackIterator()
{
    throw std::out_of_range("Attempt to operate on a stack iterator that points outside the voxel model extents.");
}

void ThrowInvalidVoxelIterator()
{
    throw std::out_of_range("Attempt to operate on a voxel iterator that points outside the voxel model extents.");
}

void RequireIteratorLevel(std::int64_t finestLOD, std::int64_t lod)
{
    RequireLevelOf(finestLOD, "The level of detail associated with an iterator", lod);
}

void RequireSameModel(const void* a, const void* b)
{
    Require(a == b, "Attempt to compare iterators for different voxel models.");
}

} // namespace brix
