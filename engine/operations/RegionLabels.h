// Which region a filled voxel belongs to. A region is connected through the faces of its voxels. What is labelled are not voxels
// but the bit runs of stored plates, which stand for all heights of their layer; runs that touch are united (union-find).
//
//   row 0   ##..#      runs 0 and 1 of the plate
//   row 1   .####      run 2, of the region of both
//
// Cost: proportional to the stored bit runs (with the logarithm that uniting by the lower label allows, which is not seen in
// practice), and 16 bytes for every stack of the chunks that hold something and are not full.
#pragma once

#include "LevelGrid.h"

#include <span>

namespace brix {

/// The first voxels of a row's runs, bit by bit.
constexpr unsigned RunStarts(unsigned row) { return row & ~(row << 1); }

/// A row without the lowest of its runs.
constexpr unsigned WithoutLowestRun(unsigned row) { return row & (row + (row & (0U - row))); }

/// The number of runs in all rows of a plate.
constexpr std::size_t RunCount(const VoxelPlate<bool>& plate)
{
    return static_cast<std::size_t>(Count(AndNot(plate, TowardsLowerX(plate, VoxelPlate<bool>{}))));
}

class RegionLabels
{
public:
    using Region = std::uint32_t;

    /// Labels the finest level of a model, of which `grid` is the grid of stacks.
    /// Throws std::domain_error when more than 2^32 - 1 labels are needed on the way.
    RegionLabels(const VoxelModel<bool>& model, const LevelGrid& grid);

    /// Regions are numbered from 0 to RegionCount() - 1 by their first voxel: in stack order, inside a stack by z, then y, then
    /// x.
    std::size_t RegionCount() const { return regionCount_; }

    /// The regions of a stack's runs: layers bottom to top, rows by y, runs by x.
    std::span<const Region> RegionsOf(const Triple& stack) const
    {
        const StackRuns runs = RunsOf(stack);
        return {labels_.data() + runs.first, runs.count};
    }

private:
    struct StackRuns
    {
        std::size_t first = 0;
        std::size_t count = 0;
    };

    using RunsOfChunk = std::vector<StackRuns>; // by stack, row by row; one for all stacks of a full chunk

    std::size_t NumberInChunk(const Triple& stack) const
    {
        const std::int64_t last = (std::int64_t{1} << lod_) - 1;
        return static_cast<std::size_t>((stack[1] & last) << lod_ | (stack[0] & last));
    }
    Triple ChunkOf(const Triple& stack) const { return {FloorShift(stack[0], lod_), FloorShift(stack[1], lod_), stack[2]}; }
    StackRuns RunsOf(const Triple& stack) const
    {
        const RunsOfChunk* const runs = runs_.Find(ChunkOf(stack));
        if (runs == nullptr) return {};
        return runs->size() == 1 ? runs->front() : (*runs)[NumberInChunk(stack)];
    }
    StackRuns& MakeRunsOf(const Triple& stack);

    void AddStack(const Triple& stack);
    void AddFullChunk(const Triple& chunk);
    void JoinWithLower(const Triple& stack, Axis axis);
    void AddPlate(const VoxelPlate<bool>& plate);
    void JoinBelow(const Triple& stack);
    template <class Join> void JoinBeside(const Triple& stack, const Triple& other, const Join& join);
    void JoinRows(unsigned rowA, const Region* labelsA, unsigned rowB, const Region* labelsB);
    void JoinPlates(const VoxelPlate<bool>& a, const Region* labelsA, const VoxelPlate<bool>& b, const Region* labelsB);
    void NumberRegions();

    Region MakeLabel();
    Region RootOf(Region label);
    void Unite(Region a, Region b);

    const LevelGrid& grid_;
    std::int64_t lod_;
    ChunkTable<RunsOfChunk> runs_;
    std::vector<Region> labels_;  // of every run; regions in the end
    std::vector<Region> parents_; // of every label, never higher than the label itself
    std::size_t regionCount_ = 0;
};

} // namespace brix
