#include "SlicePicture.h"

#include <brix/model/VoxelIterator.h>
#include <brix/operations/BasicOperations.h>

#include <algorithm>
#include <stdexcept>

namespace brix::tools {
namespace {

std::size_t Number(Axis axis) { return static_cast<std::size_t>(axis); }

// The axes that run to the right and upward in the picture of a slice.
struct View
{
    Axis right, up;
};

View ViewOf(Axis sliced)
{
    if (sliced == Axis::X) return {Axis::Y, Axis::Z};
    if (sliced == Axis::Y) return {Axis::X, Axis::Z};
    return {Axis::X, Axis::Y};
}

std::int64_t Size(const Box& box, Axis axis) { return box.upper[Number(axis)] - box.lower[Number(axis)] + 1; }

// A voxel's size in units of the shorter of its edges; these are powers of two apart.
Triple Proportions(const Axes& axes, std::int64_t lod)
{
    const Triple size = axes.VoxelSize(lod);
    const std::int64_t shortest = std::min(size[0], size[2]);
    return {size[0] / shortest, size[1] / shortest, size[2] / shortest};
}

} // namespace

Box FilledBox(const VoxelModel<bool>& model, std::int64_t lod)
{
    if (IsEmpty(model, model.FinestLOD())) throw std::runtime_error("There is nothing to draw: no voxel is filled.");
    const VoxelModel<bool> cropped = AutoCrop(model);
    const Extents& extents = cropped.ExtentsRef(lod);
    return {Minus(extents.LowerIndices(), {2, 2, 2}), Plus(extents.UpperIndices(), {2, 2, 2})};
}

Raster DrawSlice(const std::vector<VoxelCategory>& categories, std::int64_t lod, const Slice& slice, const Box& box)
{
    const auto [right, up] = ViewOf(slice.axis);
    Raster raster(Size(box, right), Size(box, up), Paper);
    for (const VoxelCategory& category : categories)
        for (std::int64_t row = 0; row < raster.Height(); ++row)
            for (std::int64_t column = 0; column < raster.Width(); ++column) {
                Triple voxelIndices = box.lower;
                voxelIndices[Number(slice.axis)] = slice.index;
                voxelIndices[Number(right)] += column;
                voxelIndices[Number(up)] += raster.Height() - 1 - row;
                const ConstVoxelIterator voxel = category.voxels.FindVoxel(voxelIndices, lod);
                if (voxel.IsValid() && voxel.Value()) raster.Set(column, row, category.colour);
            }
    return raster;
}

Cell CellOf(const Triple& voxel, Axis sliced, const Box& box)
{
    const auto [right, up] = ViewOf(sliced);
    return {voxel[Number(right)] - box.lower[Number(right)], box.upper[Number(up)] - voxel[Number(up)]};
}

Panel MakePanel(const Axes& axes, std::int64_t lod, Axis sliced, Raster raster, std::int64_t scale)
{
    const auto [right, up] = ViewOf(sliced);
    const Triple proportions = Proportions(axes, lod);
    return {"", "", std::move(raster), proportions[Number(right)] * scale, proportions[Number(up)] * scale, {}};
}

std::int64_t ScaleForSize(const Axes& axes, std::int64_t lod, const Box& box, std::int64_t pixels)
{
    const Triple proportions = Proportions(axes, lod);
    std::int64_t longest = 1;
    for (const Axis axis : AllAxes) longest = std::max(longest, Size(box, axis) * proportions[Number(axis)]);
    return std::clamp<std::int64_t>(pixels / longest, 1, 64);
}

double LengthOfPixel(const Axes& axes, std::int64_t lod, std::int64_t scale)
{
    return std::min(axes.WorldVoxelWidth(lod), axes.WorldVoxelHeight()) / static_cast<double>(scale);
}

} // namespace brix::tools
