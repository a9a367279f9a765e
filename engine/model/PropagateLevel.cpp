#include "PropagateLevel.h"

#include "../frame/Require.h"
#include "CombineStacks.h"
#include "PropagateChunk.h"

#include <utility>

namespace brix {
namespace {

using Store = VoxelStore<bool>;
using Stack = VoxelStack<bool>;

void BuildCoarserStack(Stack& coarse, const Store& fine, const StackIndices& ij)
{
    const StackIndices child{2 * ij[0], 2 * ij[1]};
    const Stack& lowerXlowerY = fine.VoxelStackRef(child);
    const Stack& upperXlowerY = fine.VoxelStackRef({child[0] + 1, child[1]});
    const Stack& lowerXupperY = fine.VoxelStackRef({child[0], child[1] + 1});
    const Stack& upperXupperY = fine.VoxelStackRef({child[0] + 1, child[1] + 1});
    if (lowerXlowerY.IsUnallocated() && upperXlowerY.IsUnallocated() && lowerXupperY.IsUnallocated() &&
        upperXupperY.IsUnallocated()) {
        coarse = Stack();
        return;
    }
    CombineStacks(coarse, HalfResolution, lowerXlowerY, upperXlowerY, lowerXupperY, upperXupperY);
}

void BuildFinerStack(Store& fine, const StackIndices& ij, const Stack& coarse, bool upperX, bool upperY)
{
    if (coarse.IsUnallocated()) {
        fine.VoxelStackRef(ij) = Stack();
        return;
    }
    StackBuilder builder;
    for (std::int32_t layer = 0; layer < coarse.LayerCount(); ++layer) {
        const VoxelPlate<bool>& plate = coarse.LayerVoxelPlateRef(layer);
        builder.Append(coarse.LowerOffset(layer), layer == 0 ? plate : DoubleResolution(plate, upperX, upperY));
    }
    Stack stack; // replaces the old one when it is complete: running out of memory leaves nothing outside the extents
    builder.WriteTo(stack);
    stack.FillOutsideBox(fine.LowerOffset(ij), fine.UpperOffset(ij), false);
    fine.VoxelStackRef(ij) = std::move(stack);
}

// Makes a store that has no stacks, and to whose stacks nobody has references, what a uniform one next to it makes it. The lowest
// layer of a full stack that is cut sideways becomes something else at a finer level.
bool TakeUniform(Store& store, const Store& from)
{
    if (!store.IsUniform() || !from.IsUniform()) return false;
    const bool isFiner = store.StacksPerRow() > from.StacksPerRow();
    if (from.IsUniformlyFull() && isFiner && from.IsCutSideways()) return false;
    store.MakeUniform(from.IsUniformlyFull());
    return true;
}

void Propagate(VoxelChunk<bool>& chunk, std::int64_t lod, std::int64_t finestLOD)
{
    for (std::int64_t coarser = lod - 1; coarser >= 0; --coarser) {
        const Store& fine = chunk.VoxelStoreRef(coarser + 1);
        Store& coarse = chunk.VoxelStoreRef(coarser);
        if (TakeUniform(coarse, fine)) continue;
        ForEachStackOfStore(coarse,
                            [&](Store&, const StackIndices& ij) { BuildCoarserStack(coarse.VoxelStackRef(ij), fine, ij); });
    }
    for (std::int64_t finer = lod + 1; finer <= finestLOD; ++finer) {
        const Store& coarse = chunk.VoxelStoreRef(finer - 1);
        Store& fine = chunk.VoxelStoreRef(finer);
        if (TakeUniform(fine, coarse)) continue;
        ForEachStackOfStore(fine, [&](Store&, const StackIndices& ij) {
            BuildFinerStack(fine, ij, coarse.VoxelStackRef({ij[0] / 2, ij[1] / 2}), ij[0] % 2 == 1, ij[1] % 2 == 1);
        });
    }
}

template <class PropagateOne> void PropagateAll(VoxelModel<bool>& model, std::int64_t lod, const PropagateOne& propagateOne)
{
    RequireLevelOf(model.FinestLOD(), "The level of detail for voxel model operations", lod);
    const InstructionSet instructionSet = FastestInstructionSet();
    model.ForEachChunk(
        [&](const Triple&, VoxelChunk<bool>& chunk) { propagateOne(chunk, lod, model.FinestLOD(), instructionSet); });
}

void PropagateInPlace(VoxelChunk<bool>& chunk, std::int64_t lod, std::int64_t finestLOD, InstructionSet instructionSet)
{
    RunWith(instructionSet, [&] { Propagate(chunk, lod, finestLOD); });
}

} // namespace

void PropagateChunk(VoxelChunk<bool>& chunk, std::int64_t lod, std::int64_t finestLOD, InstructionSet instructionSet)
{
    chunk.VoxelStoreRef(lod).ReleaseUniformStacks(); // the levels beside it take over that it is uniform
    PropagateInPlace(chunk, lod, finestLOD, instructionSet);
    for (std::int64_t other = 0; other <= finestLOD; ++other) chunk.VoxelStoreRef(other).ReleaseUniformStacks();
}

void PropagateResult(VoxelModel<bool>& model, std::int64_t lod)
{
    PropagateAll(model, lod, PropagateChunk);
    model.ReleaseEmptyChunks();
}

void PropagateLevel(VoxelModel<bool>& model, std::int64_t lod) { PropagateAll(model, lod, PropagateInPlace); }

} // namespace brix
