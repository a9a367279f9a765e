#include "TraversableGraph.h"

#include "../frame/Require.h"
#include "../model/StackLattice.h"
#include "../operations/BasicOperations.h"
#include "../operations/LevelGrid.h"

#include <algorithm>
#include <bit>
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
        const std::int64_t bottom = StackHeight * stackZ;
        for (std::int32_t layer = 0; layer < stack.LayerCount() && !stack.IsUnallocated(); ++layer) {
            const VoxelPlate<bool>& plate = stack.LayerVoxelPlateRef(layer);
            if (!IsEmpty(plate)) layers.push_back({bottom + stack.LowerOffset(layer), bottom + stack.UpperOffset(layer), &plate});
        }
    }
    return layers;
}

// Calls visit(column, z) for the filled voxels of a row of plates: column by column, upwards.
template <class Visit> void ForEachVoxelOfRow(const std::vector<Layer>& layers, std::size_t row, const Visit& visit)
{
    unsigned columns = 0;
    for (const Layer& layer : layers) columns |= layer.plate->Row(row);
    if (layers.size() == 1 && layers.front().lower == layers.front().upper) { // a floor
        for (; columns != 0; columns &= columns - 1) visit(std::countr_zero(columns), layers.front().lower);
    }
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
    FindPlains();
}

// Every row is linked while it and the one before are at hand.
void TraversableGraph::AddRows(const VoxelModel<bool>& traversable)
{
    const LevelGrid grid(traversable, extents_);
    const std::int64_t lowerY = extents_.LowerIndices()[1];
    const std::int64_t upperY = extents_.UpperIndices()[1];
    std::vector<std::vector<Layer>> band(static_cast<std::size_t>(grid.UpperStack()[0] - grid.LowerStack()[0] + 1));
    Index previous = 0;
    WatchedLoop loop(static_cast<std::size_t>(upperY - lowerY + 1));
    for (std::int64_t y = lowerY; y <= upperY; ++y) {
        loop.Step();
        const std::int64_t stackY = FloorShift(y, PlateWidthBits);
        if (y == lowerY || y == PlateWidth * stackY) {
            for (std::size_t i = 0; i < band.size(); ++i)
                band[i] = LayersOf(grid, grid.LowerStack()[0] + static_cast<std::int64_t>(i), stackY);
        }
        const Index start = Size();
        rowStarts_.push_back(start);
        for (std::size_t i = 0; i < band.size(); ++i) {
            const std::int64_t left = PlateWidth * (grid.LowerStack()[0] + static_cast<std::int64_t>(i));
            ForEachVoxelOfRow(band[i], static_cast<std::size_t>(y - PlateWidth * stackY), [&](int column, std::int64_t z) {
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
    if (hasLowRooms_ || first == Size()) return;
    const auto isLow = [](const Voxel& lower, const Voxel& upper) { return upper.x == lower.x && upper.z - lower.z < 3; };
    hasLowRooms_ = std::adjacent_find(voxels_.begin() + first, voxels_.end(), isLow) != voxels_.end();
}

// Walks a row and the one beside it (or itself) side by side: `other` moves to the lowest voxel of the column beside that is not
// too far below, and stays there for the voxel above this one. Links lead both ways.
void TraversableGraph::LinkRow(Direction direction, Index begin, Index end, Index other, Index otherEnd)
{
    const std::int32_t offset = (direction == East) - (direction == West);
    Voxel* const voxels = voxels_.data();
    for (Index voxel = begin; voxel < end; ++voxel) {
        const std::int32_t x = voxels[voxel].x + offset;
        const std::int32_t z = voxels[voxel].z;
        const auto isBefore = [&](const Voxel& beside) { return beside.x < x || (beside.x == x && beside.z < z - 1); };
        while (other < otherEnd && isBefore(voxels[other])) ++other;
        for (Index beside = other; beside < otherEnd && voxels[beside].x == x && voxels[beside].z <= z + 1; ++beside) {
            Index& there = voxels[voxel].links[direction];
            Index& back = voxels[beside].links[Opposite(direction)];
            if (there == None) there = beside;
            if (back == None) back = voxel;
        }
    }
}

// Whether the next voxels to the east and to the west are those before and after, at the same height.
bool TraversableGraph::IsLevelRow(Index middle) const
{
    const Voxel& voxel = voxels_[middle];
    return voxel.links[West] == middle - 1 && voxel.links[East] == middle + 1 && voxels_[middle - 1].z == voxel.z &&
           voxels_[middle + 1].z == voxel.z;
}

void TraversableGraph::FindPlains()
{
    plains_.resize(Size() / 64 + 1);
    if (hasLowRooms_) return;
    std::vector<std::uint64_t> levelRows(plains_.size());
    const auto isLevelRow = [&](Index voxel) { return (levelRows[voxel / 64] >> voxel % 64 & 1) != 0; };
    for (Index voxel = 1; voxel + 1 < Size(); ++voxel) levelRows[voxel / 64] |= std::uint64_t{IsLevelRow(voxel)} << voxel % 64;
    for (std::size_t word = 0; word < plains_.size(); ++word) {
        if (word % (1 << 14) == 0) CheckWatch();
        for (std::uint64_t left = levelRows[word]; left != 0; left &= left - 1) {
            const Voxel& voxel = voxels_[64 * word + static_cast<std::size_t>(std::countr_zero(left))];
            const auto isLevelWith = [&](Index row) { return row != None && isLevelRow(row) && voxels_[row].z == voxel.z; };
            if (isLevelWith(voxel.links[North]) && isLevelWith(voxel.links[South])) plains_[word] |= left & ~(left - 1);
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
