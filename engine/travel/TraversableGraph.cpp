#include "TraversableGraph.h"

#include "../frame/Require.h"
#include "../operations/BasicOperations.h"
#include "../operations/LevelGrid.h"

#include <cstdlib>

namespace brix {
namespace {

// A layer that is not empty, of the stacks of one column of stacks: its heights, inclusive, and its plate.
struct Layer
{
    std::int64_t lower, upper;
    const VoxelPlate<bool>* plate;
};

std::vector<Layer> LayersOf(const LevelGrid& grid, std::int64_t stackX, std::int64_t stackY)
{
    std::vector<Layer> layers;
    for (std::int64_t stackZ = grid.LowerStack()[2]; stackZ <= grid.UpperStack()[2]; ++stackZ) {
        const VoxelStack<bool>& stack = grid.StackAt({stackX, stackY, stackZ});
        for (std::int32_t layer = 0; layer < stack.LayerCount() && !stack.IsUnallocated(); ++layer) {
            const VoxelPlate<bool>& plate = stack.LayerVoxelPlateRef(layer);
            if (!IsEmpty(plate))
                layers.push_back({64 * stackZ + stack.LowerOffset(layer), 64 * stackZ + stack.UpperOffset(layer), &plate});
        }
    }
    return layers;
}

// Calls visit(column, z) for the filled voxels of a row of plates: column by column, upwards.
template <class Visit> void ForEachVoxelOfRow(const std::vector<Layer>& layers, std::size_t row, const Visit& visit)
{
    unsigned columns = 0;
    for (const Layer& layer : layers) columns |= layer.plate->Row(row);
    for (; columns != 0; columns &= columns - 1) {
        const int column = std::countr_zero(columns);
        for (const Layer& layer : layers) {
            if ((layer.plate->Row(row) >> column & 1) == 0) continue;
            for (std::int64_t z = layer.lower; z <= layer.upper; ++z) visit(column, z);
        }
    }
}

} // namespace

TraversableGraph::TraversableGraph(const VoxelModel<bool>& traversable)
    : extents_(traversable.ExtentsRef(traversable.FinestLOD()))
{
    const std::int64_t count = CountFilled(traversable, traversable.FinestLOD());
    Require(count < None, "The path model has too many traversable voxels (the limit is 4294967294).");
    voxels_.reserve(static_cast<std::size_t>(count));
    AddRows(traversable);
}

// Every row is linked while it and the one before are at hand.
void TraversableGraph::AddRows(const VoxelModel<bool>& traversable)
{
    const LevelGrid grid(traversable, extents_);
    const std::int64_t lowerY = extents_.LowerIndices()[1];
    const std::int64_t upperY = extents_.UpperIndices()[1];
    std::vector<std::vector<Layer>> band(static_cast<std::size_t>(grid.UpperStack()[0] - grid.LowerStack()[0] + 1));
    Index previous = 0;
    for (std::int64_t y = lowerY; y <= upperY; ++y) {
        const std::int64_t stackY = FloorDivide(y, 16);
        if (y == lowerY || y == 16 * stackY) {
            for (std::size_t i = 0; i < band.size(); ++i)
                band[i] = LayersOf(grid, grid.LowerStack()[0] + static_cast<std::int64_t>(i), stackY);
        }
        const Index start = Size();
        rowStarts_.push_back(start);
        for (std::size_t i = 0; i < band.size(); ++i) {
            const std::int64_t left = 16 * (grid.LowerStack()[0] + static_cast<std::int64_t>(i));
            ForEachVoxelOfRow(band[i], static_cast<std::size_t>(y - 16 * stackY), [&](int column, std::int64_t z) {
                voxels_.push_back({static_cast<std::int32_t>(left + column),
                                   static_cast<std::int32_t>(y),
                                   static_cast<std::int32_t>(z),
                                   {None, None, None, None}});
            });
        }
        FindLowRooms(start);
        LinkRow(East, start, Size(), start, Size());
        LinkRow(South, start, Size(), previous, start);
        previous = start;
    }
    rowStarts_.push_back(Size());
}

void TraversableGraph::FindLowRooms(Index first)
{
    for (Index voxel = first + 1; voxel < Size(); ++voxel)
        hasLowRooms_ = hasLowRooms_ || (voxels_[voxel].x == voxels_[voxel - 1].x && voxels_[voxel].z - voxels_[voxel - 1].z < 3);
}

// Walks a row and the one beside it (or itself) side by side: `other` moves to the lowest voxel of the column beside that is not
// too far below, and stays there for the voxel above this one. Links lead both ways.
void TraversableGraph::LinkRow(Direction direction, Index begin, Index end, Index other, Index otherEnd)
{
    const std::int32_t offset = (direction == East) - (direction == West);
    for (Index voxel = begin; voxel < end; ++voxel) {
        const std::int32_t x = voxels_[voxel].x + offset;
        const std::int32_t z = voxels_[voxel].z;
        while (other < otherEnd && (voxels_[other].x < x || (voxels_[other].x == x && voxels_[other].z < z - 1))) ++other;
        for (Index beside = other; beside < otherEnd && voxels_[beside].x == x && voxels_[beside].z <= z + 1; ++beside) {
            Index& there = voxels_[voxel].links[direction];
            Index& back = voxels_[beside].links[Opposite(direction)];
            if (there == None) there = beside;
            if (back == None) back = voxel;
        }
    }
}

TraversableGraph::Index TraversableGraph::Find(const Triple& voxelIndices) const
{
    if (!extents_.ContainsVoxel(voxelIndices)) return None;
    const auto row = static_cast<std::size_t>(voxelIndices[1] - extents_.LowerIndices()[1]);
    const auto begin = voxels_.begin() + static_cast<std::ptrdiff_t>(rowStarts_[row]);
    const auto end = voxels_.begin() + static_cast<std::ptrdiff_t>(rowStarts_[row + 1]);
    const auto found = std::lower_bound(begin, end, voxelIndices, [](const Voxel& voxel, const Triple& wanted) {
        return voxel.x != wanted[0] ? voxel.x < wanted[0] : voxel.z < wanted[2];
    });
    const bool isThere = found != end && found->x == voxelIndices[0] && found->z == voxelIndices[2];
    return isThere ? static_cast<Index>(found - voxels_.begin()) : None;
}

TraversableGraph::Index TraversableGraph::NearestAbove(Index voxel, Index first, std::int64_t numerator,
                                                       std::int64_t denominator) const
{
    Index nearest = first;
    const auto distance = [&](Index index) { return std::abs(voxels_[index].z * denominator - numerator); };
    for (Index other = first + 1; IsAbove(other, first) && IsStep(voxel, other); ++other) {
        if (distance(other) < distance(nearest)) nearest = other;
    }
    return nearest;
}

} // namespace brix
