// Slices of voxel models as rasters: plans (slices across z) seen from above with y up, sections (across x or y) with z up.
#pragma once

#include "Page.h"

#include <brix/model/VoxelModel.h>

namespace brix::tools {

/// Voxels of one meaning and the colour that shows it. Where several are filled, the last one in the list is seen.
struct VoxelCategory
{
    const VoxelModel<bool>& voxels;
    Colour colour;
};

/// All voxels of a level with one index along an axis.
struct Slice
{
    Axis axis;
    std::int64_t index;
};

/// Inclusive bounds in voxels of a level.
struct Box
{
    Triple lower, upper;
};

/// The bounds of what is filled, with a rim of empty voxels around it. Throws std::runtime_error when nothing is.
Box FilledBox(const VoxelModel<bool>& model, std::int64_t lod);

/// The filled voxels of a slice within a box, a cell for each.
Raster DrawSlice(const std::vector<VoxelCategory>& categories, std::int64_t lod, const Slice& slice, const Box& box);

/// The cell of a voxel in the picture of a slice, whichever slice it lies in.
struct Cell
{
    std::int64_t column, row;
};
Cell CellOf(const Triple& voxel, Axis sliced, const Box& box);

/// A panel with cells in proportion to the voxels. `scale` is the number of pixels for the shorter of a voxel's width and height.
Panel MakePanel(const Axes& axes, std::int64_t lod, Axis sliced, Raster raster, std::int64_t scale);

/// The scale at which the longest side of the box is at most this many pixels long; at least 1.
std::int64_t ScaleForSize(const Axes& axes, std::int64_t lod, const Box& box, std::int64_t pixels);

/// The world length of a pixel at a scale.
double LengthOfPixel(const Axes& axes, std::int64_t lod, std::int64_t scale);

} // namespace brix::tools
