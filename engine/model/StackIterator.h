// Names one stack of a model at one level. The mutable and the read-only iterator are one template. They, and voxel iterators,
// stay usable as long as the model is neither assigned to nor destroyed, whatever is done to its stacks meanwhile.
#pragma once

#include "VoxelModel.h"

#include <type_traits>
#include <utility>

namespace brix {

[[noreturn]] void ThrowInvalidStackIterator();
[[noreturn]] void ThrowInvalidVoxelIterator();
void RequireIteratorLevel(std::int64_t finestLOD, std::int64_t lod);
void RequireSameModel(const void* a, const void* b);

template <class VoxelModelType> class StackIteratorBase
{
public:
    template <class Part> using Same = std::conditional_t<std::is_const_v<VoxelModelType>, const Part, Part>;
    using Store = Same<VoxelStore<bool>>;
    using Stack = Same<VoxelStack<bool>>;

    /// The stack that holds a voxel of a level; not valid when the model's extents do not touch that stack.
    /// Throws std::domain_error when the level is negative or beyond the model's finest one.
    StackIteratorBase(VoxelModelType& model, const Triple& voxelIndices, std::int64_t lod) : StackIteratorBase(model, lod)
    {
        const Extents& extents = model.ExtentsRef(lod);
        const Triple stack = StackOfVoxel(voxelIndices);
        if (IsWithin(stack, StackOfVoxel(extents.LowerIndices()), StackOfVoxel(extents.UpperIndices()))) SetPlace(stack);
    }

    /// The stack that holds a voxel, if the model does: the short way for a voxel that mostly is inside the extents. Throws as
    /// above.
    static StackIteratorBase OfVoxelInside(VoxelModelType& model, const Triple& voxelIndices, std::int64_t lod)
    {
        StackIteratorBase iterator(model, lod);
        if (model.ContainsVoxel(voxelIndices, lod)) iterator.SetPlace(StackOfVoxel(voxelIndices));
        return iterator;
    }

    /// An iterator that is not valid, standing for a voxel that the model does not have. Throws as above.
    StackIteratorBase(VoxelModelType& model, std::int64_t lod) : model_(&model), lod_(lod)
    {
        if (lod < 0 || lod > model.FinestLOD()) RequireIteratorLevel(model.FinestLOD(), lod);
    }

    /// A read-only iterator at the place of a mutable one.
    template <class Other>
    requires(std::is_same_v<const Other, VoxelModelType> && !std::is_same_v<Other, VoxelModelType>)
        StackIteratorBase(const StackIteratorBase<Other>& other)
        : model_(other.model_), lod_(other.lod_), isValid_(other.isValid_), store_(other.store_), place_(other.place_)
    {}

    bool IsValid() const { return isValid_; }
    VoxelModelType& VoxelModelRef() const { return *model_; }
    std::int64_t VoxelLOD() const { return lod_; }

    /// Throws std::out_of_range when the iterator is not valid, as do all members below.
    void Validate() const
    {
        if (!IsValid()) ThrowInvalidStackIterator();
    }

    /// Where nothing is stored, these make an empty chunk to refer to.
    Store& VoxelStoreRef() const
    {
        Validate();
        if (store_ == nullptr) store_ = &model_->ChunkRef(ChunkIndices()).VoxelStoreRef(lod_);
        return *store_;
    }
    Stack& VoxelStackRef() const { return VoxelStoreRef().ValidStackRef(Indices()); }

    /// The stack to be read at once: the shared empty one where nothing is stored.
    const VoxelStack<bool>& StackToRead() const
    {
        Validate();
        if (store_ == nullptr) FindStore();
        return store_ != nullptr ? std::as_const(*store_).ValidStackRef(Indices()) : EmptyStack;
    }

    /// Voxel indices of the stack's lower corner.
    Triple LowerIndices() const
    {
        Validate();
        return CornerOfStack(place_);
    }

    /// The part of the stack that lies in the extents, as inclusive offsets inside the stack.
    OffsetBox Inside() const { return PartInside(model_->ExtentsRef(lod_), LowerIndices()); }
    Triple LowerOffset() const { return Inside().lower; }
    Triple UpperOffset() const { return Inside().upper; }

    /// Moves to the stack at a place of the level's grid of stacks (StackOfVoxel), which the extents must touch.
    void MoveTo(const Triple& place)
    {
        const bool isSameChunk = ((place[0] ^ place_[0]) >> lod_ | (place[1] ^ place_[1]) >> lod_ | (place[2] ^ place_[2])) == 0;
        if (isSameChunk)
            place_ = place;
        else
            SetPlace(place);
    }

    /// Stack order: chunk z, y, x, then stack row, then column. Both iterators must be valid (std::out_of_range) and of one model
    /// (std::domain_error).
    friend bool operator<(const StackIteratorBase& a, const StackIteratorBase& b)
    {
        a.Validate();
        b.Validate();
        RequireSameModel(a.model_, b.model_);
        return a.OrderKey() < b.OrderKey();
    }

private:
    template <class> friend class StackIteratorBase;

    std::array<std::int64_t, 5> OrderKey() const
    {
        const Triple chunk = ChunkIndices();
        return {chunk[2], chunk[1], chunk[0], place_[1], place_[0]};
    }

    Triple ChunkIndices() const { return {FloorShift(place_[0], lod_), FloorShift(place_[1], lod_), place_[2]}; }
    StackIndices Indices() const
    {
        const std::int64_t last = (std::int64_t{1} << lod_) - 1;
        return {place_[0] & last, place_[1] & last};
    }

    void SetPlace(const Triple& place)
    {
        isValid_ = true;
        place_ = place;
        store_ = nullptr;
        FindStore();
    }

    void FindStore() const
    {
        if (auto* const chunk = model_->FindValidChunk(ChunkIndices())) store_ = &chunk->VoxelStoreRef(lod_);
    }

    VoxelModelType* model_;
    std::int64_t lod_;
    bool isValid_ = false;
    mutable Store* store_ = nullptr; // looked up again as long as nothing is stored there
    Triple place_{};                 // among the level's stacks
};

using StackIterator = StackIteratorBase<VoxelModel<bool>>;
using ConstStackIterator = StackIteratorBase<const VoxelModel<bool>>;

} // namespace brix
