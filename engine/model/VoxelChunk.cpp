#include "VoxelChunk.h"

#include "PropagateStores.h"

#include <algorithm>
#include <numeric>

namespace brix {

// While another thread makes levels of the other chunk, its only level stays as it is, and is all that the copy needs.
VoxelChunk<bool>::VoxelChunk(const VoxelChunk& other)
    : bounds_(other.bounds_), chunkIndices_(other.chunkIndices_), onlyLevel_(other.onlyLevel_.load(std::memory_order_acquire))
{
    if (onlyLevel_ == AllLevels) {
        levelCount_ = other.levelCount_;
        stores_ = other.stores_;
        return;
    }
    Initialize(other.levelCount_ - 1);
    const auto only = static_cast<std::size_t>(onlyLevel_);
    stores_[only] = other.stores_[only];
}

void VoxelChunk<bool>::MakeLevelsFollow(std::int64_t lod) { MakeLevelsFollow(lod, FastestInstructionSet()); }

void VoxelChunk<bool>::MakeLevelsFollow(std::int64_t lod, InstructionSet instructionSet)
{
    if (onlyLevel_ == lod) return; // they will
    VoxelStoreRef(lod);            // makes what still follows from another level
    PropagateStores(Stores(), lod, instructionSet);
}

void VoxelChunk<bool>::LetLevelsFollow(std::int64_t lod)
{
    VoxelStore<bool>& only = StoreToRewrite(lod);
    only.ReleaseUniformStacks();
    for (VoxelStore<bool>& store : Stores()) {
        if (&store != &only) store.MakeUniform(false);
    }
    if (levelCount_ > 1) onlyLevel_.store(static_cast<std::int8_t>(lod), std::memory_order_relaxed);
}

[[gnu::cold, gnu::noinline]] void VoxelChunk<bool>::MakeOtherLevels() const
{
    const SpinLock::Holder holder(isMaking_);
    const auto only = static_cast<std::size_t>(onlyLevel_.load(std::memory_order_relaxed));
    if (only >= Stores().size()) return; // another thread has made them
    const auto forEachOther = [&](const auto& work) {
        for (std::size_t lod = 0; lod < Stores().size(); ++lod) {
            if (lod != only) work(stores_[lod]);
        }
    };
    try {
        PropagateStores(Stores(), static_cast<std::int64_t>(only), FastestInstructionSet());
    } catch (...) {
        forEachOther([](VoxelStore<bool>& store) { store.MakeUniform(false); });
        throw;
    }
    forEachOther([](VoxelStore<bool>& store) { store.ReleaseUniformStacks(); });
    onlyLevel_.store(AllLevels, std::memory_order_release);
}

void VoxelChunk<bool>::ReleaseUniformStacks()
{
    for (VoxelStore<bool>& store : Stores()) store.ReleaseUniformStacks();
}

bool VoxelChunk<bool>::IsUnallocated() const
{
    const std::int64_t only = onlyLevel_.load(std::memory_order_acquire);
    if (only != AllLevels) return stores_[static_cast<std::size_t>(only)].IsUnallocated();
    const auto stores = Stores();
    return std::all_of(stores.rbegin(), stores.rend(), [](const auto& store) { return store.IsUnallocated(); });
}

std::size_t VoxelChunk<bool>::AllocatedBytes() const
{
    const std::int64_t only = onlyLevel_.load(std::memory_order_acquire);
    if (only != AllLevels) return stores_[static_cast<std::size_t>(only)].AllocatedBytes();
    const auto stores = Stores();
    return std::accumulate(stores.begin(), stores.end(), std::size_t{0},
                           [](std::size_t sum, const VoxelStore<bool>& store) { return sum + store.AllocatedBytes(); });
}

} // namespace brix
