// The occupancy model that every operation takes and returns: filled and empty voxels of a box, at all levels of detail at once.
//
//   model  ->  chunks (a grid in space)  ->  one store per level  ->  2^L x 2^L stacks  ->  layers of 16 x 16 plates
//
// A voxel of level L, (x, y, z), covers the four voxels (2x..2x+1, 2y..2y+1, z) of level L + 1; heights are the same at all
// levels. A voxel outside the extents is always empty, at every level.
//
// Threads: const members, and operations on const models, may run at the same time on one model. Whoever changes a model, or
// assigns to it, must be alone with it.
#pragma once

#include "VoxelChunk.h"

namespace brix {

template <class VoxelModelType> class VoxelIteratorBase;
template <class Value> class VoxelModel;

using VoxelIterator = VoxelIteratorBase<VoxelModel<bool>>;
using ConstVoxelIterator = VoxelIteratorBase<const VoxelModel<bool>>;

/// When the levels that an operation has not written itself are made: with the result, or chunk by chunk when one of them is
/// first asked for. Whoever applies many operations one after the other, and looks at one level in between, pays for that level
/// alone.
enum class OtherLevels : std::uint8_t
{
    AtOnce,
    WhenAskedFor
};

template <> class VoxelModel<bool> : public virtual Model<VoxelChunk<bool>>
{
public:
    /// An empty model on these extents (given at any level) that holds the levels 0..finestLOD. Takes about a kilobyte, whatever
    /// the size of the extents: a chunk takes memory from the moment it is asked for to be written, which may throw
    /// NotEnoughMemory.
    /// Throws std::domain_error when the finest level is negative or not less than 6.
    VoxelModel(const Extents& extents, std::int64_t finestLOD, OtherLevels otherLevels = OtherLevels::AtOnce);

    VoxelModel(const VoxelModel&) = default;
    VoxelModel(VoxelModel&&) = default;
    VoxelModel& operator=(const VoxelModel&) = default;
    VoxelModel& operator=(VoxelModel&& other) noexcept; // not defaulted: the virtual base is moved once
    ~VoxelModel() override = default;

    std::int64_t FinestLOD() const { return FinestLevel(); }

    /// Whether a voxel of a level, which must be one of 0..FinestLOD(), lies inside the extents.
    bool ContainsVoxel(const Triple& voxelIndices, std::int64_t lod) const
    {
        return ExtentsAtLevel(lod).ContainsVoxel(voxelIndices);
    }

    /// The extents in voxels of a level, 0..FinestLOD(). Throws std::domain_error for any other level.
    const Extents& ExtentsRef(std::int64_t lod) const
    {
        if (lod < 0 || lod > FinestLOD()) RequireHeldLevel(lod);
        return ExtentsAtLevel(lod);
    }

    /// The voxel with these indices at a level, 0..FinestLOD(); an iterator that is not valid when the voxel lies outside the
    /// extents. Throws std::domain_error when the level is negative or beyond the finest one. (Include VoxelIterator.h.)
    VoxelIterator FindVoxel(const Triple& voxelIndices, std::int64_t lod);
    ConstVoxelIterator FindVoxel(const Triple& voxelIndices, std::int64_t lod) const;

    /// Bytes of the heap that the model's chunks, stores and stacks own, all levels together, as far as they are made.
    std::size_t AllocatedBytes() const;

    /// When other levels of this model are made; results of operations take it over from their (first) operand. AtOnce, as models
    /// are from the start, makes all that is still to be made. WhenAskedFor leaves to the first reader what an operation did not
    /// do: several threads may read a model all the same, but reading may throw NotEnoughMemory.
    OtherLevels WhenLevelsAreMade() const { return otherLevels_; }
    void MakeLevels(OtherLevels when);

    /// What operations do with a result in place of PropagateLevel: lets all other levels follow from level `lod`, and gives back
    /// the memory of what is empty or full throughout. References into the model end. Throws as PropagateLevel does.
    void FinishLevels(std::int64_t lod);

    /// The same for some chunks, where all others are as they should be. All given chunks must be valid.
    void FinishLevels(std::int64_t lod, const std::vector<Triple>& chunks);

private:
    void RequireHeldLevel(std::int64_t lod) const;
    void FinishChunk(VoxelChunk<bool>& chunk, std::int64_t lod) const;
    void ReleaseEmptyChunks();

    OtherLevels otherLevels_;
};

/// The same, for those who write it often.
using Voxels = VoxelModel<bool>;

} // namespace brix
