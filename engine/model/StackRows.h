// The stacks that a model stores, one height of stacks after the other, in rows along x: for what reads voxels in the order in
// which an image has them (z outermost, then y, then x), across the borders of stacks and chunks.
#pragma once

#include "ForEachStack.h"

#include <algorithm>
#include <vector>

namespace brix {

/// A stored stack with its place in the level's grid of stacks.
struct PlacedStack
{
    const VoxelStack<bool>* stack;
    std::int64_t x, y;
};

/// The stacks that are not empty, of one height of chunks of a level that the model holds: by y, then by x.
inline std::vector<PlacedStack> StacksOfSlab(const VoxelModel<bool>& model, std::int64_t lod, std::int64_t chunkZ)
{
    std::vector<PlacedStack> stacks;
    ForEachStoredStackOfSlab(model, lod, chunkZ, [&](const VoxelStore<bool>& store, const StackIndices& ij) {
        const VoxelStack<bool>& stack = store.ValidStackRef(ij);
        if (stack.IsUnallocated()) return;
        const Triple place = StackOfVoxel(store.LowerIndices(ij));
        stacks.push_back({&stack, place[0], place[1]});
    });
    std::sort(stacks.begin(), stacks.end(),
              [](const PlacedStack& a, const PlacedStack& b) { return a.y < b.y || (a.y == b.y && a.x < b.x); });
    return stacks;
}

} // namespace brix
