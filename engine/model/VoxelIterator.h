// Names one voxel of a model at one level. Like a stack iterator it holds a place and nothing of what is there: the layer is
// looked up when the value is asked for (LayerID counts bits), so the stack may be edited and compressed between two reads.
#pragma once

#include "StackIterator.h"

#include <limits>
#include <utility>

namespace brix {

template <class VoxelModelType> class VoxelIteratorBase
{
public:
    /// The voxel with these indices; not valid when it lies outside the extents.
    /// Throws std::domain_error when the level is negative or beyond the model's finest one.
    VoxelIteratorBase(VoxelModelType& model, const Triple& voxelIndices, std::int64_t lod)
        : stack_(StackIteratorBase<VoxelModelType>::OfVoxelInside(model, voxelIndices, lod))
    {
        if (!stack_.IsValid()) return;
        const Triple offset = Minus(voxelIndices, stack_.LowerIndices());
        xy_ = {offset[0], offset[1]};
        z_ = offset[2];
    }

    /// An iterator that is not valid. Throws as above.
    VoxelIteratorBase(VoxelModelType& model, std::int64_t lod) : stack_(model, lod) {}

    /// A read-only iterator at the place of a mutable one.
    template <class Other>
    requires(std::is_same_v<const Other, VoxelModelType> && !std::is_same_v<Other, VoxelModelType>)
        VoxelIteratorBase(const VoxelIteratorBase<Other>& other)
        : stack_(other.stack_), xy_(other.xy_), z_(other.z_)
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
        return Plus(stack_.LowerIndices(), {xy_[0], xy_[1], z_});
    }

    /// Whether the voxel is filled.
    bool Value() const
    {
        Validate();
        const VoxelStack<bool>& stack = StackRef();
        return stack.LayerVoxelPlateRef(stack.LayerID(z_)).Value(xy_);
    }

    /// Moves by any number of voxels; the iterator is not valid afterwards when that leads outside the extents.
    VoxelIteratorBase& operator+=(const Triple& step)
    {
        Validate();
        const Triple offset = PlusSaturated({xy_[0], xy_[1], z_}, step);
        if (const OffsetBox inExtents = stack_.Inside(); !IsWithin(offset, inExtents.lower, inExtents.upper)) {
            return *this = VoxelIteratorBase(VoxelModelRef(), PlusSaturated(stack_.LowerIndices(), offset), VoxelLOD());
        }
        xy_ = {offset[0], offset[1]};
        z_ = offset[2];
        return *this;
    }

    friend VoxelIteratorBase operator+(VoxelIteratorBase iterator, const Triple& step) { return iterator += step; }

private:
    template <class> friend class VoxelIteratorBase;

    const VoxelStack<bool>& StackRef() const { return stack_.StackToRead(); }

    // Steps at the limits of 64 bits end outside every model instead of overflowing.
    static Triple PlusSaturated(const Triple& indices, const Triple& step)
    {
        constexpr std::int64_t limit = std::numeric_limits<std::int64_t>::max() / 4;
        Triple sum{};
        for (std::size_t i = 0; i < 3; ++i) sum[i] = std::clamp(indices[i], -limit, limit) + std::clamp(step[i], -limit, limit);
        return sum;
    }

    StackIteratorBase<VoxelModelType> stack_;
    std::array<std::int64_t, 2> xy_{};
    std::int64_t z_ = 0;
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
