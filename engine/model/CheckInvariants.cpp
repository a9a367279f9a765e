#include "CheckInvariants.h"

#include "ForEachStack.h"

#include <bitset>

namespace brix {
namespace {

std::string Describe(const Triple& indices, std::int64_t lod)
{
    return " (" + std::to_string(indices[0]) + ", " + std::to_string(indices[1]) + ", " + std::to_string(indices[2]) +
           ") of level " + std::to_string(lod);
}

bool IsCanonical(const Stack& stack)
{
    const auto plates = stack.Plates();
    const auto offsets = stack.LayerOffsets();
    if (offsets.front() != 0 || offsets.back() >= StackHeight) return false;
    if (plates.size() == 1 && IsEmpty(plates.front()) != stack.IsUnallocated()) return false;
    for (std::size_t layer = 1; layer < plates.size(); ++layer) {
        if (offsets[layer] <= offsets[layer - 1] || plates[layer] == plates[layer - 1]) return false;
    }
    return true;
}

bool IsFilled(const Stack& stack, const Triple& offset)
{
    return stack.LayerVoxelPlateRef(stack.LayerID(offset[2])).Value({offset[0], offset[1]});
}

std::string CheckStack(const Store& store, const StackIndices& ij)
{
    const Stack& stack = store.VoxelStackRef(ij);
    const Triple corner = store.LowerIndices(ij);
    const std::int64_t lod = store.ExtentsRef().VoxelLOD();
    if (!IsCanonical(stack)) return "layers are not canonical in the stack at" + Describe(corner, lod);
    Stack trimmed = stack;
    if (store.IsStackValid(ij))
        trimmed.FillOutsideBox(store.LowerOffset(ij), store.UpperOffset(ij), false);
    else
        trimmed = Stack();
    if (!(trimmed == stack)) return "voxels outside the extents are filled in the stack at" + Describe(corner, lod);
    return {};
}

bool CoarseAgrees(const Store& coarse, const StackIndices& ij, const Triple& offset, const Store& fine)
{
    const Triple first{2 * (PlateWidth * ij[0] + offset[0]), 2 * (PlateWidth * ij[1] + offset[1]), offset[2]};
    bool anyFine = false;
    for (std::int64_t child = 0; child < 4; ++child) {
        const Triple voxel = Plus(first, {child % 2, child / 2, 0});
        const Triple stack = StackOfVoxel(voxel);
        anyFine |= IsFilled(fine.VoxelStackRef({stack[0], stack[1]}), Minus(voxel, CornerOfStack(stack)));
    }
    return IsFilled(coarse.VoxelStackRef(ij), offset) == anyFine;
}

bool FineAgrees(const Store& fine, const StackIndices& ij, const Triple& offset, const Store& coarse)
{
    const Stack& source = coarse.VoxelStackRef({ij[0] / 2, ij[1] / 2});
    const bool inExtents = IsWithin(offset, fine.LowerOffset(ij), fine.UpperOffset(ij));
    const Triple doubled{offset[0] / 2 + PlateWidth / 2 * (ij[0] % 2), offset[1] / 2 + PlateWidth / 2 * (ij[1] % 2), offset[2]};
    const bool expected = inExtents && IsFilled(source, source.LayerID(offset[2]) == 0 ? offset : doubled);
    return IsFilled(fine.VoxelStackRef(ij), offset) == expected;
}

// The heights at which a stack of `store`, or one that it follows from, begins a layer; between them, nothing changes.
std::bitset<StackHeight> ChangingHeights(const Store& store, const StackIndices& ij, const Store& source)
{
    std::bitset<StackHeight> heights;
    const auto add = [&](const Stack& stack) {
        for (const std::uint8_t offset : stack.LayerOffsets()) heights.set(offset);
    };
    add(store.VoxelStackRef(ij));
    if (source.StacksPerRow() < store.StacksPerRow()) {
        add(source.VoxelStackRef({ij[0] / 2, ij[1] / 2}));
    } else {
        for (std::int64_t child = 0; child < 4; ++child) {
            add(source.VoxelStackRef({2 * ij[0] + child % 2, 2 * ij[1] + child / 2}));
        }
    }
    return heights;
}

// Whether every voxel of `store` follows from `source`, the level next to it on the side of the written level.
std::string CheckLevel(const Store& store, const Store& source)
{
    const bool isCoarser = store.StacksPerRow() < source.StacksPerRow();
    std::string reason;
    ForEachStackOfStore(store, [&](const Store&, const StackIndices& ij) {
        const auto heights = ChangingHeights(store, ij, source);
        for (std::int64_t z = 0; z < StackHeight && reason.empty(); ++z) {
            if (!heights[static_cast<std::size_t>(z)]) continue;
            ForEachTriple({0, 0, z}, {LastOffset[0], LastOffset[1], z}, [&](const Triple& offset) {
                const bool agrees = isCoarser ? CoarseAgrees(store, ij, offset, source) : FineAgrees(store, ij, offset, source);
                if (agrees || !reason.empty()) return;
                reason =
                    "levels disagree at voxel" + Describe(Plus(store.LowerIndices(ij), offset), store.ExtentsRef().VoxelLOD());
            });
        }
    });
    return reason;
}

std::string CheckChunk(const VoxelChunk<bool>& chunk, std::int64_t finestLOD, std::int64_t writtenLOD)
{
    for (std::int64_t lod = 0; lod <= finestLOD; ++lod) {
        const Store& store = chunk.VoxelStoreRef(lod);
        for (std::int64_t stack = 0; stack < store.StacksPerRow() * store.StacksPerRow(); ++stack) {
            const std::string reason = CheckStack(store, {stack % store.StacksPerRow(), stack / store.StacksPerRow()});
            if (!reason.empty()) return reason;
        }
    }
    for (std::int64_t lod = 0; lod <= finestLOD; ++lod) {
        if (lod == writtenLOD) continue;
        const std::int64_t source = lod < writtenLOD ? lod + 1 : lod - 1;
        const std::string reason = CheckLevel(chunk.VoxelStoreRef(lod), chunk.VoxelStoreRef(source));
        if (!reason.empty()) return reason;
    }
    return {};
}

} // namespace

std::string CheckInvariants(const VoxelModel<bool>& model, std::int64_t writtenLOD)
{
    std::string reason;
    model.ForEachChunk([&](const Triple&, const VoxelChunk<bool>& chunk) {
        if (reason.empty()) reason = CheckChunk(chunk, model.FinestLOD(), writtenLOD);
    });
    return reason;
}

} // namespace brix
