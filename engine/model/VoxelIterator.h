// Names one voxel of a model at one level. Like a stack iterator it holds a place and nothing of what is there: the layer is
// looked up when the value is asked for (LayerID counts bits), so the stack may be edited and compressed between two reads.
#pragma once

#include "StackIterator.h"

#include <utility>

namespace brix {

template <class VoxelModelType> class VoxelIteratorBase
{
public:
    /// The voxel with these indices; not valid when it lies outside the extents.
    /// Throws std::domain_error when the level is negative or beyond the model's finest one.
    VoxelIteratorBase(VoxelModelType& model, const Triple& voxelIndices, std::int64_t lod)
        : stack_(StackIteratorBase<VoxelModelType>::OfVoxelInside(model, voxelIndices, lod)), voxel_(voxelIndices)
    {}

    /// An iterator that is not valid. Throws as above.
    VoxelIteratorBase(VoxelModelType& model, std::int64_t lod) : stack_(model, lod) {}

    /// A read-only iterator at the place of a mutable one.
    template <class Other>
    requires(std::is_same_v<const Other, VoxelModelType> && !std::is_same_v<Other, VoxelModelType>)
        VoxelIteratorBase(const VoxelIteratorBase<Other>& other)
        : stack_(other.stack_), voxel_(other.voxel_)
    {}

    bool IsValid() const { return stack_.IsValid(); }
    VoxelModelType& VoxelModelRef() const { return stack_.VoxelModelRef(); }
    std::int64_t VoxelLOD() const { return stack_.VoxelLOD(); }

    /// Throws std::out_of_range when the iterator is not valid, as do all members below.
    void Validate() const
    {
        if (!IsValid()) ThrowInvalidVoxelIterator();
    }

    Triple VoxelIndices() const
    {
        Validate();
        return voxel_;
    }

    /// Whether the voxel is filled.
    bool Value() const
    {
        Validate();
        const VoxelStack<bool>& stack = stack_.StackToRead();
        return stack.LayerVoxelPlateRef(stack.LayerID(voxel_[2] & LastOffset[2]))
            .Value({voxel_[0] & LastOffset[0], voxel_[1] & LastOffset[1]});
    }

    /// Moves by any number of voxels; the iterator is not valid afterwards when that leads outside the extents.
    VoxelIteratorBase& operator+=(const Triple& step)
    {
        Validate();
        const Triple voxel{Sum(voxel_[0], step[0]), Sum(voxel_[1], step[1]), Sum(voxel_[2], step[2])};
        if (!VoxelModelRef().ContainsVoxel(voxel, VoxelLOD())) return *this = VoxelIteratorBase(VoxelModelRef(), VoxelLOD());
        stack_.MoveTo(StackOfVoxel(voxel));
        voxel_ = voxel;
        return *this;
    }

    friend VoxelIteratorBase operator+(VoxelIteratorBase iterator, const Triple& step) { return iterator += step; }

private:
    template <class> friend class VoxelIteratorBase;

    // Without overflow: a sum beyond 64 bits comes out as a number near their limits, where no model has voxels.
    static std::int64_t Sum(std::int64_t index, std::int64_t step)
    {
        return static_cast<std::int64_t>(static_cast<std::uint64_t>(index) + static_cast<std::uint64_t>(step));
    }

    StackIteratorBase<VoxelModelType> stack_;
    Triple voxel_{};
};

inline VoxelIterator VoxelModel<bool>::FindVoxel(const Triple& voxelIndices, std::int64_t lod)
{
    return {*this, voxelIndices, lod};
}

inline ConstVoxelIterator VoxelModel<bool>::FindVoxel(const Triple& voxelIndices, std::int64_t lod) const
{
    return {*this, voxelIndices, lod};
}

} // namespace brix
