#include "BasicOperations.h"

#include "../frame/Require.h"
#include "../model/ForEachStack.h"
#include "../model/InstructionSet.h"
#include "FilledBounds.h"
#include "RebuildModel.h"

#include <utility>

namespace brix {
namespace {

void RequireOperationLevel(const VoxelModel<bool>& model, std::int64_t lod)
{
    RequireLevelOf(model.FinestLOD(), "The level of detail for voxel model operations", lod);
}

std::int64_t CountFilled(const Stack& stack)
{
    std::int64_t count = 0;
    const auto plates = stack.Plates();
    const auto offsets = stack.LayerOffsets();
    for (std::size_t layer = 0; layer < plates.size(); ++layer) {
        const std::int64_t end = layer + 1 < plates.size() ? offsets[layer + 1] : StackHeight;
        count += Count(plates[layer]) * (end - offsets[layer]);
    }
    return count;
}

// Whether the stack is filled throughout the box lower..upper of its offsets.
bool IsFullInside(const Stack& stack, const Triple& lower, const Triple& upper)
{
    const VoxelPlate<bool> inside = Box({lower[0], lower[1]}, {upper[0], upper[1]});
    for (std::int32_t layer = stack.LayerID(lower[2]); layer <= stack.LayerID(upper[2]); ++layer) {
        if (!IsEmpty(AndNot(inside, stack.LayerVoxelPlateRef(layer)))) return false;
    }
    return true;
}

Extents FilledExtents(const VoxelModel<bool>& model)
{
    const Extents& extents = model.ExtentsRef(model.FinestLOD());
    Triple lower = extents.UpperIndices();
    Triple upper = extents.LowerIndices();
    ForEachStoredStack(model, model.FinestLOD(), [&](const Store& store, const StackIndices& ij) {
        WidenByFilled(store.VoxelStackRef(ij), store.LowerIndices(ij), lower, upper);
    });
    if (lower[0] > upper[0] || IsEmpty(model, model.FinestLOD())) {
        for (std::size_t i = 0; i < 3; ++i) {
            const std::int64_t size = extents.UpperIndices()[i] - extents.LowerIndices()[i];
            lower[i] = extents.LowerIndices()[i] + (size + 1) / 2;
            upper[i] = extents.UpperIndices()[i] - size / 2;
        }
    }
    return Extents(extents.AxesRef(), lower, upper, model.FinestLOD());
}

void RequireAxesOf(const VoxelModel<bool>& model, const Extents& newExtents)
{
    Require(newExtents.AxesRef() == model.AxesRef(),
            "The axes of the new extents cannot differ from the axes of the voxel model to be resized.");
}

} // namespace

std::int64_t CountFilled(const VoxelModel<bool>& model, std::int64_t lod)
{
    RequireOperationLevel(model, lod);
    std::int64_t count = 0;
    RunWith(FastestInstructionSet(), [&] {
        ForEachStoredStack(model, lod, [&](const Store& store, const StackIndices& ij) {
            const Stack& stack = store.ValidStackRef(ij);
            if (stack.IsWhollyFilled())
                count += PlateWidth * PlateWidth * StackHeight;
            else if (!stack.IsUnallocated())
                count += CountFilled(stack);
        });
    });
    return count;
}

bool IsEmpty(const VoxelModel<bool>& model, std::int64_t lod)
{
    RequireOperationLevel(model, lod);
    return AllStoredStacks(model, lod, [](const Store& store, const StackIndices& ij) {
        const auto plates = store.VoxelStackRef(ij).Plates();
        return std::all_of(plates.begin(), plates.end(), [](const VoxelPlate<bool>& plate) { return IsEmpty(plate); });
    });
}

bool IsFull(const VoxelModel<bool>& model, std::int64_t lod)
{
    RequireOperationLevel(model, lod);
    if (model.StoredChunkCount() != model.ChunkCount()) return false;
    return AllStoredStacks(model, lod, [](const Store& store, const StackIndices& ij) {
        return IsFullInside(store.VoxelStackRef(ij), store.LowerOffset(ij), store.UpperOffset(ij));
    });
}

VoxelModel<bool> Crop(const VoxelModel<bool>& model, std::int64_t lowerX, std::int64_t upperX, std::int64_t lowerY,
                      std::int64_t upperY, std::int64_t lowerZ, std::int64_t upperZ)
{
    RequireNotNegative("The number of voxels to crop off the lower X side", lowerX);
    RequireNotNegative("The number of voxels to crop off the upper X side", upperX);
    RequireNotNegative("The number of voxels to crop off the lower Y side", lowerY);
    RequireNotNegative("The number of voxels to crop off the upper Y side", upperY);
    RequireNotNegative("The number of voxels to crop off the lower Z side", lowerZ);
    RequireNotNegative("The number of voxels to crop off the upper Z side", upperZ);
    return RebuildModel(model, MovedExtents(model, {lowerX, lowerY, lowerZ}, {-upperX, -upperY, -upperZ}), model.FinestLOD());
}

VoxelModel<bool> Enlarge(const VoxelModel<bool>& model, std::int64_t lowerX, std::int64_t upperX, std::int64_t lowerY,
                         std::int64_t upperY, std::int64_t lowerZ, std::int64_t upperZ)
{
    RequireNotNegative("The number of voxels to add to the lower X side", lowerX);
    RequireNotNegative("The number of voxels to add to the upper X side", upperX);
    RequireNotNegative("The number of voxels to add to the lower Y side", lowerY);
    RequireNotNegative("The number of voxels to add to the upper Y side", upperY);
    RequireNotNegative("The number of voxels to add to the lower Z side", lowerZ);
    RequireNotNegative("The number of voxels to add to the upper Z side", upperZ);
    return RebuildModel(model, MovedExtents(model, {-lowerX, -lowerY, -lowerZ}, {upperX, upperY, upperZ}), model.FinestLOD());
}

VoxelModel<bool> AutoCrop(const VoxelModel<bool>& model) { return RebuildModel(model, FilledExtents(model), model.FinestLOD()); }

VoxelModel<bool> AutoCrop(VoxelModel<bool>&& model)
{
    const Extents extents = FilledExtents(model);
    return RebuildModel(std::move(model), extents, model.FinestLOD());
}

VoxelModel<bool> Resize(const VoxelModel<bool>& model, const Extents& newExtents)
{
    RequireAxesOf(model, newExtents);
    return RebuildModel(model, newExtents, model.FinestLOD());
}

VoxelModel<bool> Resize(VoxelModel<bool>&& model, const Extents& newExtents)
{
    RequireAxesOf(model, newExtents);
    return RebuildModel(std::move(model), newExtents, model.FinestLOD());
}

VoxelModel<bool> Relocate(const VoxelModel<bool>& model, const Axes& newAxes)
{
    const Extents& extents = model.ExtentsRef(model.FinestLOD());
    return RebuildModel(model, Extents(newAxes, extents.LowerIndices(), extents.UpperIndices(), model.FinestLOD()),
                        model.FinestLOD());
}

VoxelModel<bool> Refine(const VoxelModel<bool>& model, std::int64_t lod)
{
    RequireLevel("The level of detail for voxel model refinement", lod);
    return RebuildModel(model, model.ExtentsRef(model.FinestLOD()), lod);
}

} // namespace brix
