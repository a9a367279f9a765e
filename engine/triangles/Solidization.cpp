#include "Solidization.h"

#include "../frame/Require.h"
#include "../model/ForEachStack.h"
#include "../model/InstructionSet.h"
#include "HeightSweep.h"
#include "PartedList.h"
#include "StackFaces.h"

#include <tuple>

namespace brix {
namespace {

class RectangleMaker
{
public:
    RectangleMaker(const VoxelModel<bool>& model, std::int64_t lod) : model_(model), lod_(lod) {}

    std::vector<VoxelRectangle> MakeRectangles()
    {
        const std::int64_t lower = model_.LowerChunkIndices()[2];
        const std::int64_t upper = model_.UpperChunkIndices()[2];
        WatchedLoop loop(static_cast<std::size_t>(upper - lower + 1));
        for (std::int64_t z = lower; z <= upper; ++z) {
            AddSlab(z);
            loop.Step();
        }
        for (Facing& facing : facings_) EndSlab(facing, (upper + 1) * ChunkHeight);
        return rectangles_.TakeAll();
    }

private:
    // The faces of a slab of chunks to one side, by the ends of their runs in each stack. Lines are the planes across x or y; or,
    // towards z, where every height is a plane, the rows along x.
    struct Facing
    {
        Axis axis;
        Side side;
        std::vector<Cell> ends{};
        HeightJoiner joiner{}; // of those across x and y

        std::int64_t Step() const { return side == Side::Upper ? 1 : -1; }
        std::int64_t Plane() const { return side == Side::Upper ? 1 : 0; } // counted from the voxel
    };

    // Writes an upright rectangle; the joiner's lines are planes.
    auto Writer(const Facing& facing)
    {
        return [this, axis = facing.axis, side = facing.side](std::uint64_t line, const IndexRange& along, const IndexRange& z) {
            const std::int64_t plane = UnpackPosition(line);
            if (axis == Axis::X)
                rectangles_.Add({axis, side, {plane, along.lower, z.lower}, {plane, along.upper + 1, z.upper + 1}});
            else
                rectangles_.Add({axis, side, {along.lower, plane, z.lower}, {along.upper + 1, plane, z.upper + 1}});
        };
    }

    void AddSlab(std::int64_t chunkZ);
    void AddFaces(Facing& facing, const VoxelStack<bool>& stack, const Triple& corner);
    bool IsBuried(const VoxelStack<bool>& stack, const Triple& corner) const;

    void MergeUpright(Facing& facing, std::int64_t bottom);
    void MergeHorizontal(Facing& facing, std::int64_t bottom);
    void EndSlab(Facing& facing, std::int64_t bottom) { facing.joiner.EndSlab(bottom, Writer(facing)); }

    const VoxelModel<bool>& model_;
    std::int64_t lod_;
    std::array<Facing, 6> facings_{{{Axis::X, Side::Lower},
                                    {Axis::X, Side::Upper},
                                    {Axis::Y, Side::Lower},
                                    {Axis::Y, Side::Upper},
                                    {Axis::Z, Side::Lower},
                                    {Axis::Z, Side::Upper}}};
    RunEnds endsAlongX_{Axis::X}; // of the stack at work
    RunEnds endsAlongY_{Axis::Y};
    std::vector<Cell> runs_; // of horizontal faces along x, as cells along y
    PartedList<VoxelRectangle> rectangles_;
};

void RectangleMaker::AddSlab(std::int64_t chunkZ)
{
    const std::int64_t bottom = chunkZ * ChunkHeight;
    for (Facing& facing : facings_) facing.ends.clear();
    RunWith(FastestInstructionSet(), [&] {
        ForEachStoredStackOfSlab(model_, lod_, chunkZ, [&](const VoxelStore<bool>& store, const StackIndices& ij) {
            const VoxelStack<bool>& stack = store.VoxelStackRef(ij);
            const Triple corner = store.LowerIndices(ij);
            if (stack.IsUnallocated() || IsBuried(stack, corner)) return;
            for (Facing& facing : facings_) AddFaces(facing, stack, corner);
            CheckWatch();
        });
    });
    for (Facing& facing : facings_) facing.axis == Axis::Z ? MergeHorizontal(facing, bottom) : MergeUpright(facing, bottom);
}

// Whether a stack and all around it are filled throughout.
bool RectangleMaker::IsBuried(const VoxelStack<bool>& stack, const Triple& corner) const
{
    constexpr std::array<Triple, 6> steps{{{-1, 0, 0}, {1, 0, 0}, {0, -1, 0}, {0, 1, 0}, {0, 0, -1}, {0, 0, 1}}};
    return IsSolid(stack) && std::all_of(steps.begin(), steps.end(), [&](const Triple& step) {
               return IsSolid(StackBeside(model_, lod_, corner, CornerOfStack(step)));
           });
}

void RectangleMaker::AddFaces(Facing& facing, const VoxelStack<bool>& stack, const Triple& corner)
{
    Triple step{};
    step[static_cast<std::size_t>(facing.axis)] = facing.Step();
    const VoxelStack<bool>& other = StackBeside(model_, lod_, corner, CornerOfStack(step));
    RunEnds& ends = facing.axis == Axis::X ? endsAlongY_ : endsAlongX_;
    ForEachFacePlate(facing.axis, facing.side, stack, other, [&](std::int64_t z, const auto& plate) { ends.SetFrom(z, plate); });

    const std::size_t across = facing.axis == Axis::X ? 0 : 1; // lines along y are told by their x
    const std::int64_t firstLine = corner[across] + (facing.axis == Axis::Z ? 0 : facing.Plane());
    const std::int64_t firstPosition = corner[1 - across];
    ends.Take([&](std::int64_t line, std::int64_t position, Heights heights) {
        facing.ends.emplace_back(PackPosition(firstLine + line), firstPosition + position, heights);
    });
}

// Along the plane first, then upwards.
void RectangleMaker::MergeUpright(Facing& facing, std::int64_t bottom)
{
    MergeToggles(facing.ends, [&](std::uint64_t plane, const IndexRange& along, Heights heights) {
        facing.joiner.Add(plane, along, heights, bottom, Writer(facing));
    });
    EndSlab(facing, bottom);
}

// Along x, then along y; every height makes rectangles of its own.
void RectangleMaker::MergeHorizontal(Facing& facing, std::int64_t bottom)
{
    runs_.clear();
    MergeToggles(facing.ends, [&](std::uint64_t row, const IndexRange& x, Heights heights) {
        runs_.emplace_back(PackRange(x), UnpackPosition(row), heights);
    });
    MergeCells(runs_, [&](std::uint64_t line, const IndexRange& y, Heights heights) {
        const IndexRange x = UnpackRange(line);
        for (; heights != 0; heights &= heights - 1) {
            const std::int64_t z = bottom + std::countr_zero(heights) + facing.Plane();
            rectangles_.Add({Axis::Z, facing.side, {x.lower, y.lower, z}, {x.upper + 1, y.upper + 1, z}});
        }
    });
}

} // namespace

std::vector<VoxelRectangle> SolidizeVoxelModel(const VoxelModel<bool>& model, std::int64_t lod)
{
    RequireLevelOf(model.FinestLOD(), "The level of detail for voxel solidization", lod);
    std::vector<VoxelRectangle> rectangles = RectangleMaker(model, lod).MakeRectangles();
    const auto order = [](const VoxelRectangle& rectangle) {
        const auto& [x, y, z] = rectangle.lower;
        return std::tuple(rectangle.axis, rectangle.side, rectangle.lower[static_cast<std::size_t>(rectangle.axis)], z, y, x);
    };
    WatchedSort(rectangles.begin(), rectangles.end(),
                [&](const VoxelRectangle& a, const VoxelRectangle& b) { return order(a) < order(b); });
    return rectangles;
}

std::array<Triple, 4> CornersOf(const VoxelRectangle& rectangle, const Axes& axes, std::int64_t lod)
{
    const Triple lower = axes.VoxelCorner(rectangle.lower, lod);
    const Triple upper = axes.VoxelCorner(rectangle.upper, lod);
    const auto axis = static_cast<std::size_t>(rectangle.axis);
    std::array corners{lower, lower, upper, lower};
    corners[1][(axis + 1) % 3] = upper[(axis + 1) % 3]; // the two axes after it turn counter-clockwise seen from its upper side
    corners[3][(axis + 2) % 3] = upper[(axis + 2) % 3];
    if (rectangle.side == Side::Lower) std::swap(corners[1], corners[3]);
    return corners;
}

std::array<std::array<double, 3>, 4> ToWorldRectangle(const VoxelRectangle& rectangle, const Axes& axes, std::int64_t lod)
{
    std::array<std::array<double, 3>, 4> world{};
    const std::array<Triple, 4> corners = CornersOf(rectangle, axes, lod);
    for (std::size_t i = 0; i < corners.size(); ++i) world[i] = axes.ToWorldCoordinates(corners[i]);
    return world;
}

} // namespace brix
