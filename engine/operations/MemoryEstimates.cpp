#include "MemoryEstimates.h"

#include "../frame/Require.h"
#include "../model/ForEachStack.h"
#include "Leaks.h"
#include "RegionLabels.h"

#include <cmath>

namespace brix {
namespace {

// The stacks of full chunks that passes write one by one: where they see something that is not full.
double StacksOfBared(const ModelSize& size) { return size.bared * size.StacksPerChunk(size.lod); }

// Those that the faces of the extents cut: all other full stacks take nothing but their pointer.
double StacksAtFaces(const ModelSize& size)
{
    const auto [x, y, z] = size.stacks;
    return std::min(x * y * z, 2 * (x * y + y * z + z * x));
}

double ChunksAtFaces(const ModelSize& size)
{
    const auto width = static_cast<double>(std::int64_t{1} << size.lod);
    const double x = size.stacks[0] / width + 2;
    const double y = size.stacks[1] / width + 2;
    const double z = size.stacks[2];
    return std::min(size.chunks, std::ceil(2 * (x * y + y * z + z * x)));
}

// Whatever the extents touch.
double PlacesPerChunk(const ModelSize& size) { return static_cast<double>(std::int64_t{1} << 2 * size.lod); }

// A level as a grid of stacks, while passes write another one beside it: places for all stacks of the chunks, and the layers.
double BytesOfPasses(const ModelSize& size)
{
    const double chunks = size.stored - size.full + size.bared;
    const double layers = size.layerBytes + StacksOfBared(size) * ModelSize::BytesOfUniformStack;
    return 4096 + size.stored * 1024 + 2 * (chunks * 8 * PlacesPerChunk(size) + layers);
}

// Cut by extents, a stack has two more layers.
ModelSize Cut(ModelSize size)
{
    const double stacks = size.filled + StacksOfBared(size);
    size.layerBytes = std::min(size.layerBytes + stacks * 2 * ModelSize::BytesOfUniformStack, ModelSize::MostLayerBytes(stacks));
    size.full -= size.bared;
    size.filled = stacks;
    size.bared = 0;
    return size;
}

// Where one or the other holds something, on the extents of the first.
void Add(ModelSize& sum, const ModelSize& size)
{
    sum.stored = std::min(sum.stored + size.stored, sum.chunks);
    sum.full = std::min(sum.full + size.full, sum.stored);
    sum.bared = std::min(sum.bared + size.bared, sum.full);
    sum.filled += size.filled;
    sum.layerBytes += size.layerBytes;
    for (std::size_t axis = 0; axis < 3; ++axis) sum.rims[axis] += size.rims[axis];
}

// The bit runs of a stack, and those of them with which a region may begin: nothing before them in the stack touches them.
struct RunCounts
{
    double all = 0;
    double first = 0;
};

RunCounts CountRuns(const VoxelStack<bool>& stack)
{
    RunCounts counts;
    VoxelPlate<bool> below;
    for (const VoxelPlate<bool>& plate : stack.Plates()) {
        unsigned before = 0;
        for (std::size_t y = 0; y < PlateWidth; ++y) {
            const unsigned row = plate.rows[y];
            for (unsigned runs = row; runs != 0; runs = WithoutLowestRun(runs)) {
                const unsigned run = runs ^ WithoutLowestRun(runs);
                ++counts.all;
                if ((run & (before | below.rows[y])) == 0) ++counts.first;
            }
            before = row;
        }
        below = plate;
    }
    return counts;
}

} // namespace

ModelSize Refined(const ModelSize& size, std::int64_t lod)
{
    ModelSize finer = size;
    if (lod <= size.lod) return finer;
    const auto ratio = static_cast<double>(std::int64_t{1} << (lod - size.lod));
    finer.lod = lod;
    finer.stacks[0] *= ratio;
    finer.stacks[1] *= ratio;
    finer.filled *= ratio * ratio;
    finer.layerBytes *= ratio * ratio;
    finer.rims = {size.rims[0] * ratio, size.rims[1] * ratio, size.rims[2] * ratio * ratio};
    return finer;
}

ModelSize SizeAtLevel(const VoxelModel<bool>& model, std::int64_t lod)
{
    RequireLevel("The level of detail for voxel model operations", lod);
    return Refined(SizeOf(model, std::min(lod, model.FinestLOD())), lod);
}

ModelSize Within(const ModelSize& size, const Extents& extents)
{
    const ModelSize empty(extents, size.lod);
    ModelSize within = Cut(size);
    within.stacks = empty.stacks;
    within.chunks = empty.chunks;
    within.stored = std::min(size.stored, empty.chunks);
    within.full = std::min(within.full, within.stored);
    return within;
}

ModelSize Joined(std::span<const ModelSize> sizes, const Extents& extents)
{
    ModelSize joined(extents, sizes.front().lod);
    for (const ModelSize& size : sizes) Add(joined, Cut(size));
    return joined;
}

// Chunks that were stored keep their stacks, and those that held nothing are filled; all others become full.
ModelSize Inverted(const ModelSize& size)
{
    ModelSize inverted = size;
    const double mixed = size.stored - size.full;
    inverted.stored = size.chunks;
    inverted.full = size.chunks - mixed;
    inverted.bared = std::min(inverted.full, 6 * mixed + ChunksAtFaces(size));
    inverted.filled = mixed * size.StacksPerChunk(size.lod);
    const double cut = std::min(inverted.filled, StacksAtFaces(size));
    inverted.layerBytes = std::min(size.layerBytes + (size.filled + cut) * 2 * ModelSize::BytesOfUniformStack,
                                   ModelSize::MostLayerBytes(inverted.filled));
    inverted.rims.fill(inverted.filled + StacksOfBared(inverted));
    return inverted;
}

// Along an axis every rim moves: it adds the stacks that it comes to, which are rims in turn along the next axis. New stacks have
// the layers of what they grew from; where these meet, or move up and down, their number doubles.
ModelSize Grown(const ModelSize& size, const Triple& voxels)
{
    ModelSize grown = size;
    const double before = size.filled + StacksOfBared(size);
    double added = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        if (voxels[axis] <= 0) continue;
        const double sides = std::ceil(static_cast<double>(voxels[axis]) / static_cast<double>(StackSize[axis])) + 1;
        added += std::min(sides * (size.rims[axis] + added), size.AllStacks());
    }
    grown.filled = std::min(before + added, size.AllStacks());
    grown.stored = std::min(size.stored + added, size.chunks);
    grown.full = size.full - size.bared;
    grown.bared = std::min(size.bared, grown.full);
    const double layers = size.layerBytes + StacksOfBared(size) * ModelSize::BytesOfUniformStack;
    const double perStack = before > 0 ? layers / before : 0;
    grown.layerBytes =
        std::min(2 * grown.filled * (perStack + 2 * ModelSize::BytesOfUniformStack), ModelSize::MostLayerBytes(grown.filled));
    for (double& rims : grown.rims) rims = std::min(rims + added, grown.filled);
    return grown;
}

double BytesToRebuild(const ModelSize& size, const Extents& newExtents)
{
    ModelSize rebuilt = Within(size, newExtents);
    return BytesOfModel(rebuilt);
}

double BytesToRefine(const ModelSize& size, std::int64_t lod) { return BytesOfModel(Cut(Refined(size, lod))); }

double BytesToCombine(std::span<const ModelSize> sizes, const Extents& extents, double copied)
{
    const ModelSize joined = Joined(sizes, extents);
    double bytes = copied + BytesOfModel(joined) + BytesOfOneLevel(joined); // which is cropped, or one part of several
    for (const ModelSize& size : sizes) bytes += BytesOfModel(size);        // if it is refined
    return bytes;
}

// The places of all chunks are listed.
double BytesToInvert(const ModelSize& size) { return BytesOfModel(Inverted(size)) + size.chunks * 2 * sizeof(Triple); }

// A run, of 64 bytes, for every layer of the stacks of chunks that are neither empty nor full, in a vector that grows.
double BytesToFill(const ModelSize& size)
{
    return BytesOfModel(Inverted(size)) + 6 * size.layerBytes + (size.stored - size.full) * (PlacesPerChunk(size) * 512 + 1024);
}

// The grown model, what its flood leaves, and the passes that shrink that.
double BytesToFillSealed(const ModelSize& size, std::int64_t gap)
{
    if (gap <= 0) return BytesToFill(size);
    const ModelSize grown = Grown(size, {gap, gap, gap});
    return BytesToGrow(size, {gap, gap, gap}, nullptr) + BytesToFill(grown) + BytesToGrow(Inverted(grown), {}, nullptr);
}

// What the search keeps of every stack that it may come to; and the cubes on a way through all of them, and their regions.
double BytesToFindLeak(const ModelSize& size)
{
    constexpr double PlaceBytes = 3 * StackHeight * sizeof(VoxelPlate<bool>) + 512;
    double around = 1;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const auto length = static_cast<double>(StackSize[axis]);
        around *= size.stacks[axis] + 2 * std::ceil(static_cast<double>(MostGapWidth) / length);
    }
    return size.AllStacks() * PlaceBytes + 4 * BytesOfModel(size) + 8 * ModelSize::MostLayerBytes(around);
}

// Labels for all runs; and a model for each region, whose stacks have at most the layers that they were cut from.
double BytesToSplit(const VoxelModel<bool>& model)
{
    const std::int64_t lod = model.FinestLOD();
    const ModelSize size = SizeOf(model, lod);
    double runs = 0;
    double parts = 0;
    double layerBytes = 0;
    ForEachStoredStack(model, lod, [&](const VoxelStore<bool>& store, const StackIndices& ij) {
        const VoxelStack<bool>& stack = store.VoxelStackRef(ij);
        const RunCounts counts = CountRuns(stack);
        runs += counts.all;
        parts += counts.first;
        layerBytes += std::min(counts.all * 2, counts.first * static_cast<double>(stack.LayerCount())) * sizeof(VoxelPlate<bool>);
    });
    const auto levels = static_cast<double>(lod + 1);
    const double regionBytes = 1024 + sizeof(VoxelChunk<bool>) + levels * (sizeof(LevelBounds) + 128);
    return BytesOfPasses(size) + runs * 16 + parts * (regionBytes + 256) + (levels + 1) * layerBytes;
}

double BytesToMapDensity(std::span<const ModelSize> sizes, const Extents& extents, double thresholdCount, bool isEverywhere)
{
    ModelSize sum = Joined(sizes, extents);
    sum.full = 0;
    if (isEverywhere) sum.stored = sum.chunks;
    sum.layerBytes += StacksAtFaces(sum) * 2 * ModelSize::BytesOfUniformStack;
    double bytes = thresholdCount * BytesOfModel(sum) + sum.stored * 2 * sizeof(Triple);
    for (const ModelSize& size : sizes) bytes += BytesOfModel(size);
    return bytes;
}

// The result comes out of the passes, is cropped, and gets its other levels. The guide is copied, joined with the model, and
// grown on its own as far as voxels look.
double BytesToGrow(const ModelSize& size, const Triple& voxels, const ModelSize* guide)
{
    ModelSize start = size;
    double bytes = 0;
    if (guide != nullptr) {
        const ModelSize cut = Cut(*guide);
        Add(start, cut);
        bytes = BytesOfModel(cut) + BytesOfPasses(Grown(cut, voxels));
    }
    const ModelSize grown = Grown(start, voxels);
    return bytes + BytesOfPasses(grown) + BytesOfModel(grown) + BytesOfOneLevel(grown);
}

// What waits for the stacks behind is a face of 8 KB for each stack of one slice. Most stacks are seen as a whole, or not at all;
// shadows, and the limits of a view, which follow faces of the box in number, cut the others up.
double BytesToSee(const ModelSize& size, const Extents& extents)
{
    const ModelSize box(extents, size.lod);
    ModelSize seen = box;
    seen.stored = seen.chunks;
    seen.filled = seen.AllStacks();
    seen.layerBytes =
        std::min(StacksAtFaces(box) * 12 * ModelSize::BytesOfUniformStack + ModelSize::MostLayerBytes(4 * size.filled),
                 ModelSize::MostLayerBytes(seen.filled));
    constexpr double FaceBytes = PlateWidth * StackHeight * sizeof(double) + 32;
    return (box.stacks[0] + 1) * box.stacks[2] * FaceBytes + BytesOfModel(Within(size, extents)) + 2 * BytesOfModel(seen);
}

// PathModel.cpp step by step: what is solid, grown upwards; the air above; obstacles, which are the air and the walls, grown
// sideways; and what is left. Only the last one has all levels.
double BytesToStand(const ModelSize& size, std::int64_t agentDiameter, std::int64_t agentHeight)
{
    const auto voxels = [](std::int64_t count) { return std::clamp<std::int64_t>(count, 0, MaxCoordinate); };
    const std::int64_t diameter = voxels(agentDiameter);
    const ModelSize solid = Cut(size);
    const ModelSize blocked = Grown(solid, {0, 0, voxels(agentHeight)});
    const ModelSize air = Inverted(Grown(solid, {0, 0, 2}));
    ModelSize obstacles = air;
    Add(obstacles, blocked);
    return 2 * BytesOfOneLevel(solid) + 4 * BytesOfOneLevel(blocked) + BytesToInvert(air) +
           BytesToGrow(obstacles, {diameter, diameter, 0}, nullptr);
}

// The graph, what the search knows about voxels, and the passes that reduce the voxels to those with room for sample points.
double BytesToWalk(const ModelSize& size, double voxelCount)
{
    return voxelCount * 160 + BytesToGrow(size, {}, nullptr) + size.stacks[0] * 4096 + size.stacks[1] * PlateWidth * 16;
}

double BytesToTessellate(double runCount) { return 4096 + runCount * 24; }
double BytesToCuboidize(double runCount) { return 4096 + runCount * 256; }
double BytesToSolidize(double runCount) { return 4096 + runCount * 1024; }

double BytesOfRows(double rowCount, double rowLength) { return 1024 + (rowCount + 1) * (rowLength / 8 + 80); }

double BitRunCount(const VoxelModel<bool>& model, std::int64_t lod)
{
    model.ExtentsRef(lod);
    double count = 0;
    ForEachStoredStack(model, lod, [&](const VoxelStore<bool>& store, const StackIndices& ij) {
        for (const VoxelPlate<bool>& plate : store.VoxelStackRef(ij).Plates()) count += static_cast<double>(RunCount(plate));
    });
    return count;
}

} // namespace brix
