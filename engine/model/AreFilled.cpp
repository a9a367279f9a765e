#include "AreFilled.h"

#include "../frame/Require.h"
#include "ForEachStack.h"

#include <algorithm>
#include <vector>

namespace brix {
namespace {

// Where the stacks of a level are: a plain array over the box of what is stored, if that is small beside the number of look-ups,
// and the model's own table otherwise.
class StackFinder
{
public:
    StackFinder(const VoxelModel<bool>& model, std::int64_t lod, std::size_t lookUps) : model_(model), lod_(lod)
    {
        if (model.StoredChunkCount() == 0) return;
        lower_ = model.UpperChunkIndices();
        Triple upper = model.LowerChunkIndices();
        model.ForEachChunk([&](const Triple& chunk, const auto&) {
            lower_ = Lowest(lower_, chunk);
            upper = Highest(upper, chunk);
        });
        size_ = Plus(Minus(upper, lower_), {1, 1, 1});
        for (std::size_t i = 0; i < 2; ++i) {
            lower_[i] <<= lod;
            size_[i] <<= lod;
        }
        if (static_cast<double>(size_[0]) * static_cast<double>(size_[1]) * static_cast<double>(size_[2]) <=
            static_cast<double>(lookUps) / 4)
            MakeArray();
    }

    const Stack& Find(const Triple& stack) const
    {
        if (stacks_.empty()) return FindStack(model_, stack, lod_);
        const Triple place = Minus(stack, lower_);
        const auto isInside = [&](std::size_t i) {
            return static_cast<std::uint64_t>(place[i]) < static_cast<std::uint64_t>(size_[i]);
        };
        return isInside(0) && isInside(1) && isInside(2) ? *stacks_[NumberOf(place)] : EmptyStack;
    }

private:
    std::size_t NumberOf(const Triple& place) const
    {
        return static_cast<std::size_t>((place[2] * size_[1] + place[1]) * size_[0] + place[0]);
    }

    void MakeArray()
    {
        stacks_.assign(static_cast<std::size_t>(size_[0] * size_[1] * size_[2]), &EmptyStack);
        ForEachStoredStack(model_, lod_, [&](const VoxelStore<bool>& store, const StackIndices& ij) {
            stacks_[NumberOf(Minus(StackOfVoxel(store.LowerIndices(ij)), lower_))] = &store.ValidStackRef(ij);
        });
    }

    const VoxelModel<bool>& model_;
    std::int64_t lod_;
    Triple lower_{}; // of the array, in stacks
    Triple size_{};
    std::vector<const Stack*> stacks_;
};

// Group prefetching (Chen, Ailamaki, Gibbons and Mowry, "Improving hash join performance through prefetching", 2004): each stage
// is done for a whole batch, so that its reads of memory overlap.
class Batch
{
public:
    static constexpr std::size_t Size = 32;

    Batch(const StackFinder& finder, std::span<const Triple> voxels) : voxels_(voxels)
    {
        for (std::size_t i = 0; i < voxels.size(); ++i) {
            stacks_[i] = &finder.Find(StackOfVoxel(voxels[i]));
            __builtin_prefetch(stacks_[i]);
        }
        for (std::size_t i = 0; i < voxels.size(); ++i) stacks_[i]->Prefetch();
        for (std::size_t i = 0; i < voxels.size(); ++i) {
            plates_[i] = &stacks_[i]->LayerVoxelPlateRef(stacks_[i]->LayerID(voxels[i][2] & LastOffset[2]));
            __builtin_prefetch(plates_[i]);
        }
    }

    bool IsFilled(std::size_t i) const
    {
        return plates_[i]->Value({voxels_[i][0] & LastOffset[0], voxels_[i][1] & LastOffset[1]});
    }

private:
    std::span<const Triple> voxels_;
    std::array<const Stack*, Size> stacks_;
    std::array<const VoxelPlate<bool>*, Size> plates_;
};

// voxelOf(place) is the voxel that is looked up.
template <class Place, class VoxelOf>
void LookUp(const VoxelModel<bool>& model, std::int64_t lod, std::span<const Place> places, std::span<bool> filled,
            const VoxelOf& voxelOf)
{
    RequireLevelOf(model.FinestLOD(), "The level of detail for voxel model operations", lod);
    Require(places.size() == filled.size(), "There must be as many results as voxels.");
    const StackFinder finder(model, lod, places.size());
    std::array<Triple, Batch::Size> voxels;
    constexpr std::size_t placesPerStep = 128 * Batch::Size;
    WatchedLoop loop(places.size() / placesPerStep + 1);
    for (std::size_t first = 0; first < places.size(); first += Batch::Size) {
        if (first % placesPerStep == 0) loop.Step();
        const std::size_t count = std::min(Batch::Size, places.size() - first);
        for (std::size_t i = 0; i < count; ++i) voxels[i] = voxelOf(places[first + i]);
        const Batch batch(finder, {voxels.data(), count});
        for (std::size_t i = 0; i < count; ++i) filled[first + i] = batch.IsFilled(i);
    }
}

} // namespace

void AreFilled(const VoxelModel<bool>& model, std::int64_t lod, std::span<const Triple> voxels, std::span<bool> filled)
{
    LookUp(model, lod, voxels, filled, [](const Triple& voxel) { return voxel; });
}

void AreFilled(const VoxelModel<bool>& model, std::int64_t lod, std::span<const std::array<double, 3>> worldPoints,
               std::span<bool> filled)
{
    const Axes& axes = model.AxesRef();
    LookUp(model, lod, worldPoints, filled,
           [&](const std::array<double, 3>& point) { return axes.ContainingVoxel(axes.FromWorldCoordinates(point), lod); });
}

} // namespace brix
