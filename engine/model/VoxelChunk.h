// One chunk of a voxel model: its voxels at every level, coarsest first.
//
// An operation writes one level, and the others follow from it: at once, or where the model says so (OtherLevels) when one of
// them is first asked for, or when any level is asked for to be written.
#pragma once

#include "Model.h"
#include "SpinLock.h"
#include "VoxelStore.h"

#include <array>
#include <atomic>
#include <span>

namespace brix {

enum class InstructionSet;

template <class Value> class VoxelChunk;

template <> class VoxelChunk<bool>
{
public:
    static constexpr const char* ModelName = "a voxel model"; // in messages

    /// A chunk without stores. `bounds` are those of the whole model; they must outlive the chunk and its copies.
    VoxelChunk(const BoundsOfLevels& bounds, const Triple& chunkIndices) : bounds_(&bounds)
    {
        for (std::size_t i = 0; i < 3; ++i) chunkIndices_[i] = static_cast<std::int16_t>(chunkIndices[i]);
    }
    VoxelChunk(BoundsOfLevels&& bounds, const Triple& chunkIndices) = delete;

    /// Makes empty stores for the levels 0..finestLOD.
    void Initialize(std::int64_t finestLOD)
    {
        const Triple chunkIndices{chunkIndices_[0], chunkIndices_[1], chunkIndices_[2]};
        for (; levelCount_ <= finestLOD; ++levelCount_) {
            const auto lod = static_cast<std::size_t>(levelCount_);
            stores_[lod] = VoxelStore<bool>((*bounds_)[lod], ChunkLowerIndices(chunkIndices, levelCount_));
        }
    }

    VoxelChunk(const VoxelChunk& other);
    VoxelChunk& operator=(const VoxelChunk&) = delete;
    ~VoxelChunk() = default;

    /// The store of a level, 0..finest. Several threads may ask a const chunk. The first one to ask for a level that is still to
    /// be made makes all levels, which may throw NotEnoughMemory.
    VoxelStore<bool>& VoxelStoreRef(std::int64_t lod)
    {
        if (onlyLevel_.load(std::memory_order_relaxed) != AllLevels) MakeOtherLevels();
        return stores_[static_cast<std::size_t>(lod)];
    }
    const VoxelStore<bool>& VoxelStoreRef(std::int64_t lod) const
    {
        const std::int64_t only = onlyLevel_.load(std::memory_order_acquire);
        if (only != AllLevels && only != lod) MakeOtherLevels();
        return stores_[static_cast<std::size_t>(lod)];
    }

    /// The store of a level for whoever changes it and then lets the other levels follow from it, or uses none again: levels that
    /// are still to be made need not be made for that.
    VoxelStore<bool>& StoreToRewrite(std::int64_t lod)
    {
        return onlyLevel_.load(std::memory_order_relaxed) == lod ? stores_[static_cast<std::size_t>(lod)] : VoxelStoreRef(lod);
    }

    /// Makes the other levels follow from one, as PropagateLevel does: at once, and references into the chunk hold.
    void MakeLevelsFollow(std::int64_t lod);
    void MakeLevelsFollow(std::int64_t lod, InstructionSet instructionSet);

    /// Makes them follow when they are asked for, and gives back the memory of the others
    /// and of stacks of a level that is empty or full throughout. References into the chunk's levels end.
    void LetLevelsFollow(std::int64_t lod);

    /// Gives back the memory of the stacks of every level that is empty or full throughout. References to them end.
    void ReleaseUniformStacks();

    /// Makes the levels that are still to be made.
    void MakeAllLevels() const
    {
        if (onlyLevel_.load(std::memory_order_acquire) != AllLevels) MakeOtherLevels();
    }

    /// Whether all stacks of all levels are stored as wholly empty. Levels that follow from an empty one are empty.
    bool IsUnallocated() const;

    /// Bytes of the heap that the chunk owns.
    std::size_t AllocatedBytes() const;

private:
    static constexpr std::int8_t AllLevels = -1;

    std::span<VoxelStore<bool>> Stores() const { return {stores_.data(), static_cast<std::size_t>(levelCount_)}; }
    void MakeOtherLevels() const;

    const BoundsOfLevels* bounds_;
    std::array<std::int16_t, 3> chunkIndices_; // the index space has less than 2^14 chunks along an axis
    std::int8_t levelCount_ = 0;
    mutable std::atomic<std::int8_t> onlyLevel_{AllLevels}; // the level that the others are still to be made from
    mutable SpinLock isMaking_;
    mutable std::array<VoxelStore<bool>, static_cast<std::size_t>(LevelCount)> stores_; // by level, as many as levelCount_ says
};

} // namespace brix
