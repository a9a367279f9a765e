#include "LevelGrid.h"

#include "../model/ForEachStack.h"

#include <utility>

namespace brix {

LevelGrid::LevelGrid(const VoxelModel<bool>& model, const Extents& extents)
    : extents_(extents),
      lower_(StackOfVoxel(extents.LowerIndices())),
      upper_(StackOfVoxel(extents.UpperIndices())),
      size_(Plus(Minus(upper_, lower_), {1, 1, 1})),
      stacks_(static_cast<std::size_t>(size_[0] * size_[1] * size_[2]), &EmptyStack)
{
    ForEachStack(model, extents.VoxelLOD(), [&](const VoxelStore<bool>& store, const StackIndices& ij) {
        const Triple stack = StackOfVoxel(store.LowerIndices(ij));
        if (IsWithin(stack, lower_, upper_)) stacks_[Number(stack)] = &store.VoxelStackRef(ij);
    });
}

VoxelModel<bool> LevelGrid::TakeModel()
{
    const std::int64_t lod = extents_.VoxelLOD();
    VoxelModel<bool> model(extents_, lod);
    ForEachStack(model, lod, [&](VoxelStore<bool>& store, const StackIndices& ij) {
        const std::size_t number = Number(StackOfVoxel(store.LowerIndices(ij)));
        if (owned_.empty())
            store.VoxelStackRef(ij) = *stacks_[number];
        else
            store.VoxelStackRef(ij) = std::move(owned_[number]);
    });
    return model;
}

} // namespace brix
