#include "ModelSize.h"

#include "../frame/Require.h"
#include "ForEachStack.h"

#include <cmath>

namespace brix {
namespace {

constexpr double AllocatorBytes = 16; // that an allocation takes beside what was asked for

const Extents& ExtentsAtValidLevel(const Extents& extents, std::int64_t lod)
{
    RequireLevel("The finest level of detail in a voxel model", lod);
    return extents;
}

constexpr std::array<Triple, 3> Below{{{-1, 0, 0}, {0, -1, 0}, {0, 0, -1}}};

const Store* StoreBeside(const VoxelModel<bool>& model, const Triple& chunk, const Triple& step, std::int64_t lod)
{
    const VoxelChunk<bool>* const beside = model.FindChunk(Plus(chunk, step));
    return beside != nullptr ? &beside->VoxelStoreRef(lod) : nullptr;
}

bool IsFull(const Store* store) { return store != nullptr && store->IsUniformlyFull(); }

void AddStoredStacks(ModelSize& size, const Store& store)
{
    ForEachStackOfStore(store, [&](const Store&, const StackIndices& ij) {
        const auto& stack = store.ValidStackRef(ij);
        if (stack.IsUnallocated()) return;
        ++size.filled;
        size.layerBytes += static_cast<double>(stack.AllocatedBytes()) + AllocatorBytes;
    });
}

// Along z all stacks of the store can be rims, along x and y those of a full one only at its side.
void AddRims(ModelSize& size, const VoxelModel<bool>& model, const Triple& chunk, const Store& store)
{
    std::array<const Store*, 3> below{};
    for (std::size_t axis = 0; axis < 3; ++axis) below[axis] = StoreBeside(model, chunk, Below[axis], size.lod);
    const std::int64_t last = store.StacksPerRow() - 1;
    const auto isEmpty = [](const Store* other, const StackIndices& ij) {
        return other == nullptr || other->VoxelStackRef(ij).IsUnallocated();
    };
    const auto isRim = [&](std::size_t axis, const StackIndices& ij) {
        if (axis == 2) return isEmpty(below[2], ij);
        StackIndices beside = ij;
        if (--beside[axis] >= 0) return isEmpty(&store, beside);
        beside[axis] = last;
        return isEmpty(below[axis], beside);
    };
    for (std::size_t axis = 0; axis < 3; ++axis) {
        if (IsFull(&store) && IsFull(below[axis])) continue;
        ForEachStackOfStore(store, [&](const Store&, const StackIndices& ij) {
            if (!store.ValidStackRef(ij).IsUnallocated() && isRim(axis, ij)) ++size.rims[axis];
        });
    }
}

bool IsBared(const VoxelModel<bool>& model, const Triple& chunk, std::int64_t lod)
{
    return std::any_of(Below.begin(), Below.end(), [&](const Triple& step) {
        return !IsFull(StoreBeside(model, chunk, step, lod)) || !IsFull(StoreBeside(model, chunk, Minus({}, step), lod));
    });
}

// What all models take, and what their chunks take without pointers to stacks: the chunk, its place in a block of the table, and,
// at worst, the block.
double BytesOfTables(const ModelSize& size)
{
    const double sharedStacks = static_cast<double>(size.lod + 1) * (size.AllStacks() > 64 ? 8192 : 0);
    const double perChunk = sizeof(VoxelChunk<bool>) + AllocatorBytes + 8 * std::min(64.0, size.chunks) + 128;
    return 4096 + sharedStacks + size.stored * perChunk;
}

double BytesOfStacks(const ModelSize& size, std::int64_t level)
{
    const double stacks = (size.stored - size.full) * size.StacksPerChunk(level);
    return stacks * sizeof(VoxelStack<bool>) + (size.stored - size.full) * AllocatorBytes +
           std::min(size.layerBytes, ModelSize::MostLayerBytes(stacks));
}

} // namespace

ModelSize::ModelSize(const Extents& extents, std::int64_t level) : lod(level), chunks(1)
{
    const Extents atLevel = ExtentsAtValidLevel(extents, level).RescaledCopy(level);
    const Triple lower = StackOfVoxel(atLevel.LowerIndices());
    const Triple upper = StackOfVoxel(atLevel.UpperIndices());
    const Triple lowerChunk = ChunkOfVoxel(atLevel.LowerIndices(), level);
    const Triple upperChunk = ChunkOfVoxel(atLevel.UpperIndices(), level);
    for (std::size_t axis = 0; axis < 3; ++axis) {
        stacks[axis] = static_cast<double>(upper[axis] - lower[axis] + 1);
        chunks *= static_cast<double>(upperChunk[axis] - lowerChunk[axis] + 1);
    }
}

double ModelSize::StacksPerChunk(std::int64_t level) const
{
    const auto most = static_cast<double>(std::int64_t{1} << level);
    const auto ratio = static_cast<double>(std::int64_t{1} << std::abs(lod - level));
    const auto along = [&](std::size_t axis) {
        return std::min(most, level < lod ? stacks[axis] / ratio + 1 : stacks[axis] * ratio);
    };
    return std::ceil(along(0)) * std::ceil(along(1));
}

ModelSize SizeOf(const VoxelModel<bool>& model, std::int64_t lod)
{
    ModelSize size(model.ExtentsRef(lod), lod);
    model.ForEachChunk([&](const Triple& indices, const VoxelChunk<bool>& chunk) {
        const Store& store = chunk.VoxelStoreRef(lod);
        ++size.stored;
        if (IsFull(&store)) {
            ++size.full;
            if (IsBared(model, indices, lod)) ++size.bared;
        } else {
            AddStoredStacks(size, store);
        }
        AddRims(size, model, indices, store);
    });
    return size;
}

double BytesOfOneLevel(const ModelSize& size) { return BytesOfTables(size) + BytesOfStacks(size, size.lod); }

double BytesOfModel(const ModelSize& size)
{
    double bytes = BytesOfTables(size);
    for (std::int64_t level = 0; level <= size.lod; ++level) bytes += BytesOfStacks(size, level);
    return bytes;
}

double MostBytesOfModel(const Extents& extents, std::int64_t finestLOD)
{
    ModelSize size(extents, finestLOD);
    size.stored = size.chunks;
    size.filled = size.AllStacks();
    size.layerBytes = ModelSize::MostLayerBytes(size.filled);
    return BytesOfModel(size);
}

} // namespace brix
