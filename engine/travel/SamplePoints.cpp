// Sample points: a flood over the traversable voxels that stops at the borders of the grid's cells finds the floors; each
// remembers its best voxel meanwhile.
#include "PathModel.h"

#include "../frame/Require.h"
#include "../operations/SurfaceOperations.h"
#include "TraversableGraph.h"

#include <limits>
#include <stdexcept>
#include <string>
#include <tuple>

namespace brix {
namespace {

using Index = TraversableGraph::Index;
using Cell = std::array<std::int64_t, 2>;

void RequireGridSize(std::int64_t size, std::int64_t limit, const char* reason)
{
    if (size <= limit) return;
    throw std::domain_error("Unable to generate sample points (required grid size of " + std::to_string(size) +
                            " exceeds limit of " + std::to_string(limit) + "). The spacing may be " + reason + ".");
}

// A grid of square cells over the voxels of extents.
class SampleGrid
{
public:
    SampleGrid(const Extents& extents, std::int64_t spacing)
        : axes_(extents.AxesRef()), lod_(extents.VoxelLOD()), spacing_(spacing)
    {
        const Cell lower = CellOf(extents.LowerIndices());
        const Cell upper = CellOf(extents.UpperIndices());
        const std::int64_t cells = (upper[0] - lower[0] + 1) * (upper[1] - lower[1] + 1);
        RequireGridSize(cells, PathModel::SampleGridLimit, "too short");
        RequireGridSize(spacing / VoxelSpacing(lod_), 2 * MaxHorizontalExtent(lod_), "too long");
    }

    Cell CellOf(const Triple& voxel) const
    {
        const Triple centre = axes_.VoxelCenter(voxel, lod_);
        return {FloorDivide(centre[0], spacing_), FloorDivide(centre[1], spacing_)};
    }

    // Square of twice the distance in plan between the centres of a voxel and of its cell. No cell is wider than the index space,
    // so that this stays within 64 bits.
    std::int64_t Remoteness(const Triple& voxel) const
    {
        const Triple centre = axes_.VoxelCenter(voxel, lod_);
        const Cell cell = CellOf(voxel);
        const std::int64_t x = 2 * centre[0] - (2 * cell[0] + 1) * spacing_;
        const std::int64_t y = 2 * centre[1] - (2 * cell[1] + 1) * spacing_;
        return x * x + y * y;
    }

private:
    Axes axes_;
    std::int64_t lod_;
    std::int64_t spacing_;
};

struct Sample
{
    Cell cell;
    Index first; // voxel of the floor
    Index best;
};

// Marks the voxels of a model, which are all in the graph.
std::vector<std::uint8_t> MarkedVoxels(const TraversableGraph& graph, const TraversableGraph& marked)
{
    std::vector<std::uint8_t> marks(graph.Size(), 0);
    WatchedLoop loop(marked.Size());
    for (Index voxel = 0; voxel < marked.Size(); ++voxel) {
        marks[graph.Find(marked.VoxelIndices(voxel))] = 1;
        loop.Step();
    }
    return marks;
}

class FloorFlood
{
public:
    FloorFlood(const TraversableGraph& graph, const SampleGrid& grid, std::vector<std::uint8_t> hasRoom)
        : graph_(graph), grid_(grid), hasRoom_(std::move(hasRoom)), isFlooded_(graph.Size(), 0)
    {}

    std::vector<Sample> Run()
    {
        std::vector<Sample> samples;
        for (Index voxel = 0; voxel < graph_.Size(); ++voxel) {
            if (isFlooded_[voxel] != 0) continue;
            const Sample sample = Flood(voxel);
            if (sample.best != TraversableGraph::None) samples.push_back(sample);
        }
        return samples;
    }

private:
    Sample Flood(Index first)
    {
        Sample sample{grid_.CellOf(graph_.VoxelIndices(first)), first, TraversableGraph::None};
        std::int64_t least = std::numeric_limits<std::int64_t>::max();
        waiting_.assign(1, first);
        isFlooded_[first] = 1;
        while (!waiting_.empty()) {
            CheckWatch();
            const Index voxel = waiting_.back();
            waiting_.pop_back();
            const std::int64_t remoteness = grid_.Remoteness(graph_.VoxelIndices(voxel));
            if (hasRoom_[voxel] != 0 && (remoteness < least || (remoteness == least && voxel < sample.best))) {
                least = remoteness;
                sample.best = voxel;
            }
            Spread(voxel, sample.cell);
        }
        return sample;
    }

    // A diagonal step is two steps beside, both inside the cell.
    void Spread(Index voxel, const Cell& cell)
    {
        for (const auto direction :
             {TraversableGraph::East, TraversableGraph::North, TraversableGraph::West, TraversableGraph::South}) {
            graph_.ForEachBeside(voxel, direction, [&](Index beside) {
                if (isFlooded_[beside] != 0 || grid_.CellOf(graph_.VoxelIndices(beside)) != cell) return;
                isFlooded_[beside] = 1;
                waiting_.push_back(beside);
            });
        }
    }

    const TraversableGraph& graph_;
    const SampleGrid& grid_;
    std::vector<std::uint8_t> hasRoom_;
    std::vector<std::uint8_t> isFlooded_;
    std::vector<Index> waiting_;
};

} // namespace

void PathModel::RequireSampleGrid(std::int64_t spacing, std::int64_t minDiameter) const
{
    RequireAtLeast("The minimum diameter used to generate sample points", 1, minDiameter);
    Require(spacing >= VoxelSpacing(VoxelLOD()),
            "The finest level of detail is too coarse to generate sample points with the specified spacing.");
    SampleGrid(traversable_.ExtentsRef(VoxelLOD()), spacing);
}

std::vector<Triple> PathModel::GenerateSamplePoints(std::int64_t spacing, std::int64_t minDiameter) const
{
    RequireSampleGrid(spacing, minDiameter);
    const SampleGrid grid(traversable_.ExtentsRef(VoxelLOD()), spacing);
    const int diameter = static_cast<int>(std::min<std::int64_t>(minDiameter, std::numeric_limits<int>::max()));
    const TraversableGraph graph(traversable_);
    const TraversableGraph roomy(ReduceHorizontally(traversable_, diameter, std::nullopt, false));
    std::vector<Sample> samples = FloorFlood(graph, grid, MarkedVoxels(graph, roomy)).Run();
    std::sort(samples.begin(), samples.end(), [](const Sample& a, const Sample& b) {
        return std::tuple(a.cell[1], a.cell[0], a.first) < std::tuple(b.cell[1], b.cell[0], b.first);
    });
    std::vector<Triple> points;
    for (const Sample& sample : samples)
        points.push_back(traversable_.AxesRef().VoxelCenter(graph.VoxelIndices(sample.best), VoxelLOD()));
    return points;
}

} // namespace brix
