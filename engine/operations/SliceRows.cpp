#include "SliceRows.h"

#include "../frame/Require.h"
#include "../model/ForEachStack.h"

namespace brix {
namespace {

using Rows = std::vector<std::vector<bool>>;

template <Axis fixed> inline constexpr std::size_t SliceAxis = static_cast<std::size_t>(fixed);
template <Axis fixed> inline constexpr std::size_t RowAxis = fixed == Axis::Z ? 1 : 2; // there is a row for each of its indices
template <Axis fixed> inline constexpr std::size_t BitAxis = fixed == Axis::X ? 1 : 0; // which the bits of a row follow

// Calls visit(lower, upper, word) with the bits that the rows lower..upper of a slice through a stack share. All are offsets.
template <Axis fixed, class Visit> void ForEachSliceWord(const VoxelStack<bool>& stack, std::int64_t slice, Visit visit)
{
    const auto offset = static_cast<std::size_t>(slice);
    if constexpr (fixed == Axis::Z) {
        const VoxelPlate<bool>& plate = stack.LayerVoxelPlateRef(stack.LayerID(slice));
        for (std::int64_t y = 0; y < PlateWidth; ++y) visit(y, y, plate.Row(static_cast<std::size_t>(y)));
    } else {
        for (std::int32_t layer = 0; layer < stack.LayerCount(); ++layer) {
            const VoxelPlate<bool>& plate = stack.LayerVoxelPlateRef(layer);
            visit(stack.LowerOffset(layer), stack.UpperOffset(layer),
                  fixed == Axis::X ? plate.Column(offset) : plate.Row(offset));
        }
    }
}

// Sets the bits of a stack's part of the slice in the rows, whose first bit is the lower corner of the extents.
template <Axis fixed> void AddStack(Rows& rows, const VoxelStore<bool>& store, const StackIndices& ij, std::int64_t sliceIndex)
{
    constexpr std::size_t rowAxis = RowAxis<fixed>;
    constexpr std::size_t bitAxis = BitAxis<fixed>;
    const Triple lower = store.LowerOffset(ij);
    const Triple upper = store.UpperOffset(ij);
    const std::int64_t slice = sliceIndex - store.LowerIndices(ij)[SliceAxis<fixed>];
    if (slice < lower[SliceAxis<fixed>] || slice > upper[SliceAxis<fixed>]) return;

    const Triple origin = Minus(store.LowerIndices(ij), store.ExtentsRef().LowerIndices());
    ForEachSliceWord<fixed>(store.VoxelStackRef(ij), slice, [&](std::int64_t first, std::int64_t last, unsigned word) {
        word &= RowBits(lower[bitAxis], upper[bitAxis]);
        if (word == 0) return;
        last = std::min(last, upper[rowAxis]);
        for (std::int64_t row = std::max(first, lower[rowAxis]); row <= last; ++row) {
            std::vector<bool>& bits = rows[static_cast<std::size_t>(origin[rowAxis] + row)];
            for (unsigned left = word; left != 0; left &= left - 1)
                bits[static_cast<std::size_t>(origin[bitAxis] + std::countr_zero(left))] = true;
        }
    });
}

template <Axis fixed>
Rows RowsAtSlice(const VoxelModel<bool>& model, std::int64_t sliceIndex, std::int64_t lod, bool reverseRowOrder,
                 bool reverseEachRow)
{
    RequireLevelOf(model.FinestLOD(), "The level of detail for row data retrieval", lod);
    const Extents& extents = model.ExtentsRef(lod);
    const Triple size = Plus(Minus(extents.UpperIndices(), extents.LowerIndices()), {1, 1, 1});
    Rows rows(static_cast<std::size_t>(size[RowAxis<fixed>]), std::vector<bool>(static_cast<std::size_t>(size[BitAxis<fixed>])));

    Triple voxel = extents.LowerIndices();
    voxel[SliceAxis<fixed>] = sliceIndex;
    if (!extents.ContainsVoxel(voxel)) return rows;
    const std::int64_t chunkOfSlice = ChunkOfVoxel(voxel, lod)[SliceAxis<fixed>];
    model.ForEachChunk([&](const Triple& chunkIndices, const VoxelChunk<bool>& chunk) {
        if (chunkIndices[SliceAxis<fixed>] != chunkOfSlice) return;
        ForEachStackOfStore(chunk.VoxelStoreRef(lod), [&](const VoxelStore<bool>& store, const StackIndices& ij) {
            AddStack<fixed>(rows, store, ij, sliceIndex);
        });
    });

    if (reverseRowOrder) std::reverse(rows.begin(), rows.end());
    if (reverseEachRow) {
        for (std::vector<bool>& row : rows) std::reverse(row.begin(), row.end());
    }
    return rows;
}

} // namespace

Rows RowsAtSliceXIndex(const VoxelModel<bool>& model, std::int64_t sliceIndex, std::int64_t lod, bool reverseRowOrder,
                       bool reverseEachRow)
{
    return RowsAtSlice<Axis::X>(model, sliceIndex, lod, reverseRowOrder, reverseEachRow);
}

Rows RowsAtSliceYIndex(const VoxelModel<bool>& model, std::int64_t sliceIndex, std::int64_t lod, bool reverseRowOrder,
                       bool reverseEachRow)
{
    return RowsAtSlice<Axis::Y>(model, sliceIndex, lod, reverseRowOrder, reverseEachRow);
}

Rows RowsAtSliceZIndex(const VoxelModel<bool>& model, std::int64_t sliceIndex, std::int64_t lod, bool reverseRowOrder,
                       bool reverseEachRow)
{
    return RowsAtSlice<Axis::Z>(model, sliceIndex, lod, reverseRowOrder, reverseEachRow);
}

} // namespace brix
