#include "SolidOperations.h"

#include "../frame/Require.h"
#include "../model/CombineStacks.h"
#include "../model/ForEachStack.h"
#include "../model/InstructionSet.h"
#include "../model/PropagateLevel.h"
#include "BasicOperations.h"
#include "MergedExtents.h"
#include "RebuildModel.h"

#include <utility>

namespace brix {
namespace {

using Plate = VoxelPlate<bool>;
using Store = VoxelStore<bool>;
using Stack = VoxelStack<bool>;

// Replaces every stack of `target` that lies in a chunk of `other`, too, by combine(stack, the other's stack).
template <class Combine>
void CombineModels(VoxelModel<bool>& target, const VoxelModel<bool>& other, std::int64_t lod, const Combine& combine)
{
    RunWith(FastestInstructionSet(), [&] {
        ForEachTriple(Highest(target.LowerChunkIndices(), other.LowerChunkIndices()),
                      Lowest(target.UpperChunkIndices(), other.UpperChunkIndices()), [&](const Triple& chunk) {
                          const Store& from = other.ChunkRef(chunk).VoxelStoreRef(lod);
                          ForEachStackOfStore(target.ChunkRef(chunk).VoxelStoreRef(lod), [&](Store& to, const StackIndices& ij) {
                              combine(to.VoxelStackRef(ij), from.VoxelStackRef(ij));
                          });
                      });
    });
}

void AddVoxels(VoxelModel<bool>& target, const VoxelModel<bool>& other, std::int64_t lod)
{
    CombineModels(target, other, lod, [](Stack& stack, const Stack& added) {
        if (added.IsUnallocated()) return;
        if (stack.IsUnallocated())
            stack = added;
        else
            CombineStacks(
                stack, [](const Plate& a, const Plate& b) { return a | b; }, stack, added);
    });
}

void KeepVoxels(VoxelModel<bool>& target, const VoxelModel<bool>& other, std::int64_t lod)
{
    CombineModels(target, other, lod, [](Stack& stack, const Stack& kept) {
        if (stack.IsUnallocated()) return;
        if (kept.IsUnallocated())
            stack = Stack();
        else
            CombineStacks(
                stack, [](const Plate& a, const Plate& b) { return a & b; }, stack, kept);
    });
}

void RemoveVoxels(VoxelModel<bool>& target, const VoxelModel<bool>& other, std::int64_t lod)
{
    CombineModels(target, other, lod, [](Stack& stack, const Stack& removed) {
        if (stack.IsUnallocated() || removed.IsUnallocated()) return;
        CombineStacks(
            stack, [](const Plate& a, const Plate& b) { return AndNot(a, b); }, stack, removed);
    });
}

} // namespace

VoxelModel<bool> Union(const ModelPointers& models, std::int64_t lod, bool autoCrop)
{
    Require(!models.empty(), "At least one voxel model is required for voxel model union.");
    RequireLevel("The level of detail for voxel model union", lod);
    RequireSameAxes(models);

    VoxelModel<bool> result(BoundingExtents(models, lod), lod);
    for (const VoxelModel<bool>* model : models) {
        if (model->FinestLOD() >= lod)
            AddVoxels(result, *model, lod);
        else
            AddVoxels(result, Refine(*model, lod), lod);
    }
    if (autoCrop) return AutoCrop(std::move(result));
    PropagateLevel(result, lod);
    return result;
}

VoxelModel<bool> Intersect(const ModelPointers& models, std::int64_t lod, bool autoCrop)
{
    Require(!models.empty(), "At least one voxel model is required for voxel model intersect.");
    RequireLevel("The level of detail for voxel model intersect", lod);
    RequireSameAxes(models);

    const Extents bounding = BoundingExtents(models, lod);
    const std::optional<Extents> common = CommonExtents(models, lod);
    VoxelModel<bool> result(bounding, lod);
    for (std::size_t i = 0; common && i < models.size(); ++i) {
        const bool isRefined = models[i]->FinestLOD() < lod;
        if (i == 0)
            result = isRefined ? RebuildModel(*models[i], *common, lod) : CopyOneLevel(*models[i], *common, lod);
        else if (isRefined)
            KeepVoxels(result, RebuildModel(*models[i], *common, lod), lod);
        else
            KeepVoxels(result, *models[i], lod);
    }
    return autoCrop ? AutoCrop(std::move(result)) : Resize(std::move(result), bounding);
}

VoxelModel<bool> Subtract(const VoxelModel<bool>& model, const VoxelModel<bool>& subtrahend, std::int64_t lod, bool autoCrop)
{
    RequireLevel("The level of detail for voxel model subtraction", lod);
    RequireSameAxes({&model, &subtrahend});

    VoxelModel<bool> result = model.FinestLOD() > lod   ? model
                              : model.FinestLOD() < lod ? Refine(model, lod)
                                                        : CopyOneLevel(model, model.ExtentsRef(lod), lod);
    if (const std::optional<Extents> common = CommonExtents({&model, &subtrahend}, lod)) {
        if (subtrahend.FinestLOD() >= lod)
            RemoveVoxels(result, subtrahend, lod);
        else
            RemoveVoxels(result, RebuildModel(subtrahend, *common, lod), lod);
    }
    if (lod < result.FinestLOD()) PropagateLevel(result, lod); // the coarser levels follow when the result gets its extents
    if (autoCrop) return AutoCrop(std::move(result));
    return Resize(std::move(result), BoundingExtents({&model, &subtrahend}, lod));
}

VoxelModel<bool> Invert(const VoxelModel<bool>& model)
{
    const std::int64_t lod = model.FinestLOD();
    VoxelModel<bool> result(model.ExtentsRef(lod), lod);
    CombineModels(result, model, lod, [](Stack& stack, const Stack& source) {
        CombineStacks(
            stack, [](const Plate& plate) { return ~plate; }, source);
    });
    ForEachStack(result, lod, [](Store& store, const StackIndices& ij) {
        store.VoxelStackRef(ij).FillOutsideBox(store.LowerOffset(ij), store.UpperOffset(ij), false);
    });
    PropagateLevel(result, lod);
    return result;
}

} // namespace brix
