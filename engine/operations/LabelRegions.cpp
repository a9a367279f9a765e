#include "LabelRegions.h"

#include "../frame/Require.h"
#include "../model/VoxelArrays.h"
#include "RegionLabels.h"

#include <algorithm>
#include <bit>

namespace brix {
namespace {

// The labels of a box: those of the voxel with these indices and its row.
class LabelledBox
{
public:
    LabelledBox(const Extents& box, std::span<std::uint32_t> labels)
        : lower_(box.LowerIndices()), strides_(DenseStrides(box)), labels_(labels)
    {}

    void FillRow(const Triple& first, std::int64_t count, std::uint32_t label) const
    {
        const auto [x, y, z] = Minus(first, lower_);
        std::fill_n(labels_.begin() + (x + y * strides_.y + z * strides_.z), count, label);
    }

private:
    Triple lower_;
    ByteStrides strides_; // of a byte each: in voxels
    std::span<std::uint32_t> labels_;
};

// Labels the runs of a layer's plate inside a box of offsets, whose z are those of the layer.
void LabelPlate(const LabelledBox& box, const Triple& corner, const OffsetBox& inside, const VoxelPlate<bool>& plate,
                const RegionLabels::Region* region)
{
    for (std::int64_t y = 0; y < PlateWidth; ++y) {
        for (unsigned row = plate.rows[static_cast<std::size_t>(y)]; row != 0; row = WithoutLowestRun(row), ++region) {
            const unsigned run = row ^ WithoutLowestRun(row);
            const std::int64_t first = std::max<std::int64_t>(std::countr_zero(run), inside.lower[0]);
            const std::int64_t last = std::min<std::int64_t>(std::bit_width(run) - 1, inside.upper[0]);
            if (y < inside.lower[1] || y > inside.upper[1] || first > last) continue;
            for (std::int64_t z = inside.lower[2]; z <= inside.upper[2]; ++z)
                box.FillRow(Plus(corner, {first, y, z}), last - first + 1, *region + 1);
        }
    }
}

void LabelStack(const LabelledBox& box, const Triple& corner, const OffsetBox& inside, const VoxelStack<bool>& stack,
                const RegionLabels::Region* regions)
{
    for (std::int32_t layer = 0; layer < stack.LayerCount(); ++layer) {
        const VoxelPlate<bool>& plate = stack.LayerVoxelPlateRef(layer);
        OffsetBox ofLayer = inside;
        ofLayer.lower[2] = std::max(inside.lower[2], stack.LowerOffset(layer));
        ofLayer.upper[2] = std::min(inside.upper[2], stack.UpperOffset(layer));
        LabelPlate(box, corner, ofLayer, plate, regions);
        regions += RunCount(plate);
    }
}

} // namespace

std::size_t LabelRegions(const VoxelModel<bool>& model, const Extents& box, std::span<std::uint32_t> labels)
{
    const std::int64_t lod = model.FinestLOD();
    Require(box.AxesRef() == model.AxesRef(), "The axes of a box of voxels must be those of the voxel model.");
    Require(box.VoxelLOD() == lod, "The level of a box of labels must be the finest one of the voxel model.");
    Require(labels.size() == DenseSize(box), "There must be as many labels as the box has voxels.");

    std::fill(labels.begin(), labels.end(), 0);
    const Extents& extents = model.ExtentsRef(lod);
    const LevelGrid grid(model, extents);
    const RegionLabels regions(model, grid);
    const Triple lower = Highest(box.LowerIndices(), extents.LowerIndices());
    const Triple upper = Lowest(box.UpperIndices(), extents.UpperIndices());
    if (!IsWithin(lower, lower, upper)) return regions.RegionCount();

    const Extents both = box.WithIndices(lower, upper);
    const LabelledBox place(box, labels);
    ForEachTriple(StackOfVoxel(lower), StackOfVoxel(upper), [&](const Triple& stack) {
        CheckWatch();
        const std::span<const RegionLabels::Region> ofStack = regions.RegionsOf(stack);
        if (ofStack.empty()) return;
        const Triple corner = CornerOfStack(stack);
        LabelStack(place, corner, PartInside(both, corner), grid.StackAt(stack), ofStack.data());
    });
    return regions.RegionCount();
}

} // namespace brix
