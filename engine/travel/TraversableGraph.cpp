#include "TraversableGraph.h"

#include "../frame/Require.h"
#include "../operations/LevelGrid.h"

#include <cmath>

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
    AddRows(traversable);
    links_.assign(places_.size(), {None, None, None, None});
    isAtRim_.assign(places_.size(), 0);
    for (Index voxel = 1; voxel < Size(); ++voxel)
        hasLowRooms_ = hasLowRooms_ || (IsAbove(voxel, voxel - 1) && places_[voxel].z - places_[voxel - 1].z < 3);
    const Triple lower = extents_.LowerIndices();
    const Triple upper = extents_.UpperIndices();
    for (std::int64_t y = lower[1]; y <= upper[1]; ++y) {
        for (const Direction direction : {East, North, West, South}) LinkRows(direction, y);
    }
}

void TraversableGraph::AddRows(const VoxelModel<bool>& traversable)
{
    const LevelGrid grid(traversable, extents_);
    const std::int64_t lowerY = extents_.LowerIndices()[1];
    const std::int64_t upperY = extents_.UpperIndices()[1];
    std::vector<std::vector<Layer>> band(static_cast<std::size_t>(grid.UpperStack()[0] - grid.LowerStack()[0] + 1));
    for (std::int64_t y = lowerY; y <= upperY; ++y) {
        const std::int64_t stackY = FloorDivide(y, 16);
        if (y == lowerY || y == 16 * stackY) {
            for (std::size_t i = 0; i < band.size(); ++i)
                band[i] = LayersOf(grid, grid.LowerStack()[0] + static_cast<std::int64_t>(i), stackY);
        }
        rowStarts_.push_back(Size());
        for (std::size_t i = 0; i < band.size(); ++i) {
            const std::int64_t left = 16 * (grid.LowerStack()[0] + static_cast<std::int64_t>(i));
            ForEachVoxelOfRow(band[i], static_cast<std::size_t>(y - 16 * stackY), [&](int column, std::int64_t z) {
                places_.push_back(
                    {static_cast<std::int32_t>(left + column), static_cast<std::int32_t>(y), static_cast<std::int32_t>(z)});
            });
        }
        Require(places_.size() < None, "The path model has too many traversable voxels (the limit is 4294967294).");
    }
    rowStarts_.push_back(Size());
}

// Both rows are walked once, side by side.
void TraversableGraph::LinkRows(Direction direction, std::int64_t y)
{
    const std::int64_t otherY = y + (direction == North) - (direction == South);
    const std::int64_t row = y - extents_.LowerIndices()[1];
    const std::int64_t otherRow = otherY - extents_.LowerIndices()[1];
    if (otherRow < 0 || otherRow + 1 >= static_cast<std::int64_t>(rowStarts_.size())) return;
    Index other = rowStarts_[static_cast<std::size_t>(otherRow)];
    const Index end = rowStarts_[static_cast<std::size_t>(otherRow) + 1];
    for (Index voxel = rowStarts_[static_cast<std::size_t>(row)]; voxel < rowStarts_[static_cast<std::size_t>(row) + 1]; ++voxel)
        LinkColumns(direction, voxel, other, end);
}

// `other` moves to the lowest voxel of the column beside that is not too far below, and stays there for the voxel above this one.
void TraversableGraph::LinkColumns(Direction direction, Index voxel, Index& other, Index end)
{
    const Place& place = places_[voxel];
    const std::int32_t x = place.x + (direction == East) - (direction == West);
    constexpr std::int32_t reach = 3;
    while (other < end && (places_[other].x < x || (places_[other].x == x && places_[other].z < place.z - reach))) ++other;
    for (Index beside = other; beside < end && places_[beside].x == x && places_[beside].z <= place.z + reach; ++beside) {
        if (!IsStep(voxel, beside))
            isAtRim_[voxel] = 1;
        else if (links_[voxel][direction] == None)
            links_[voxel][direction] = beside;
    }
}

TraversableGraph::Index TraversableGraph::Find(const Triple& voxelIndices) const
{
    if (!extents_.ContainsVoxel(voxelIndices)) return None;
    const auto row = static_cast<std::size_t>(voxelIndices[1] - extents_.LowerIndices()[1]);
    const auto begin = places_.begin() + static_cast<std::ptrdiff_t>(rowStarts_[row]);
    const auto end = places_.begin() + static_cast<std::ptrdiff_t>(rowStarts_[row + 1]);
    const auto found = std::lower_bound(begin, end, voxelIndices, [](const Place& place, const Triple& wanted) {
        return place.x != wanted[0] ? place.x < wanted[0] : place.z < wanted[2];
    });
    const bool isThere = found != end && found->x == voxelIndices[0] && found->z == voxelIndices[2];
    return isThere ? static_cast<Index>(found - places_.begin()) : None;
}

TraversableGraph::Index TraversableGraph::NearestAbove(Index voxel, Index first, double height) const
{
    Index nearest = first;
    for (Index other = first + 1; IsAbove(other, first) && IsStep(voxel, other); ++other) {
        if (std::abs(places_[other].z - height) < std::abs(places_[nearest].z - height)) nearest = other;
    }
    return nearest;
}

} // namespace brix
