#include "Cuboidization.h"

#include "../frame/Require.h"
#include "../model/ForEachStack.h"
#include "../model/InstructionSet.h"
#include "HeightSweep.h"
#include "PartedList.h"
#include "StackFaces.h"

#include <tuple>

namespace brix {
namespace {

class CuboidMaker
{
public:
    CuboidMaker(const VoxelModel<bool>& model, std::int64_t lod) : model_(model), lod_(lod) {}

    std::vector<VoxelCuboid> MakeCuboids()
    {
        const std::int64_t lower = model_.LowerChunkIndices()[2];
        const std::int64_t upper = model_.UpperChunkIndices()[2];
        WatchedLoop loop(static_cast<std::size_t>(upper - lower + 1));
        for (std::int64_t z = lower; z <= upper; ++z) {
            AddSlab(z);
            loop.Step();
        }
        EndSlab((upper + 1) * ChunkHeight);
        return cuboids_.TakeAll();
    }

private:
    // Writes what the joiner emits; its lines are the ranges along x.
    auto Writer()
    {
        return [this](std::uint64_t rangeX, const IndexRange& y, const IndexRange& z) {
            const IndexRange x = UnpackRange(rangeX);
            cuboids_.Add({{x.lower, y.lower, z.lower}, {x.upper, y.upper, z.upper}});
        };
    }

    void AddSlab(std::int64_t chunkZ);
    void AddRunEnds(const VoxelStack<bool>& stack, const Triple& corner);
    void EndSlab(std::int64_t bottom) { joiner_.EndSlab(bottom, Writer()); }

    const VoxelModel<bool>& model_;
    std::int64_t lod_;
    ColumnHeights columns_;  // of the stack at work
    std::vector<Cell> ends_; // of runs along x; a line is a row of voxels
    std::vector<Cell> runs_; // as cells along y; a line is a range along x
    HeightJoiner joiner_;
    PartedList<VoxelCuboid> cuboids_;
};

void CuboidMaker::AddSlab(std::int64_t chunkZ)
{
    const std::int64_t bottom = chunkZ * ChunkHeight;
    ends_.clear();
    runs_.clear();
    RunWith(FastestInstructionSet(), [&] {
        ForEachStoredStackOfSlab(model_, lod_, chunkZ, [&](const VoxelStore<bool>& store, const StackIndices& ij) {
            AddRunEnds(store.VoxelStackRef(ij), store.LowerIndices(ij));
        });
    });
    MergeToggles(ends_, [&](std::uint64_t row, const IndexRange& x, Heights heights) {
        runs_.emplace_back(PackRange(x), UnpackPosition(row), heights);
    });
    MergeCells(runs_, [&](std::uint64_t rangeX, const IndexRange& y, Heights heights) {
        joiner_.Add(rangeX, y, heights, bottom, Writer());
    });
    EndSlab(bottom);
}

// A row's heights come at a run's first voxel and go after its last: where it has faces across x.
void CuboidMaker::AddRunEnds(const VoxelStack<bool>& stack, const Triple& corner)
{
    if (stack.IsUnallocated()) return;
    CheckWatch();
    const VoxelStack<bool>& lower = StackBeside(model_, lod_, corner, {-PlateWidth, 0, 0});
    const VoxelStack<bool>& upper = StackBeside(model_, lod_, corner, {PlateWidth, 0, 0});
    if (IsSolid(stack) && IsSolid(lower) && IsSolid(upper)) return;
    const auto add = [&](Side side, const VoxelStack<bool>& other, std::int64_t end) {
        ForEachFacePlate(Axis::X, side, stack, other, [&](std::int64_t z, const auto& plate) { columns_.SetFrom(z, plate); });
        columns_.Take([&](std::int64_t x, std::int64_t y, Heights heights) {
            ends_.emplace_back(PackPosition(corner[1] + y), corner[0] + x + end, heights);
        });
    };
    add(Side::Lower, lower, 0);
    add(Side::Upper, upper, 1);
}

} // namespace

std::vector<VoxelCuboid> CuboidizeVoxelModel(const VoxelModel<bool>& model, std::int64_t lod)
{
    RequireLevelOf(model.FinestLOD(), "The level of detail for voxel cuboidization", lod);
    std::vector<VoxelCuboid> cuboids = CuboidMaker(model, lod).MakeCuboids();
    const auto order = [](const VoxelCuboid& cuboid) { return std::tuple(cuboid.lower[2], cuboid.lower[1], cuboid.lower[0]); };
    WatchedSort(cuboids.begin(), cuboids.end(), [&](const VoxelCuboid& a, const VoxelCuboid& b) { return order(a) < order(b); });
    return cuboids;
}

std::array<double, 6> ToWorldCuboid(const VoxelCuboid& cuboid, const Axes& axes, std::int64_t lod)
{
    const Triple lower = axes.VoxelCorner(cuboid.lower, lod);
    const Triple upper = Plus(axes.VoxelCorner(cuboid.upper, lod), axes.VoxelSize(lod));
    const Triple size = Minus(upper, lower);
    const auto [x, y, z] = axes.ToWorldCoordinates(lower);
    return {x, y, z, axes.ToWorldDistance(size[0]), axes.ToWorldDistance(size[1]), axes.ToWorldDistance(size[2])};
}

} // namespace brix
