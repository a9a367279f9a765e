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
        if (IsWithin(stack, StackOfVoxel(extents.LowerIndices()), StackOfVoxel(extents.UpperIndices()))) MoveTo(voxelIndices);
    }

    /// The stack that holds a voxel, if the model does: the short way for a voxel that mostly is inside the extents. Throws as
    /// above.
    static StackIteratorBase OfVoxelInside(VoxelModelType& model, const Triple& voxelIndices, std::int64_t lod)
    {
        StackIteratorBase iterator(model, lod);
        if (model.ContainsVoxel(voxelIndices, lod)) iterator.MoveTo(voxelIndices);
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
        : model_(other.model_),
          lod_(other.lod_),
          isValid_(other.isValid_),
          store_(other.store_),
          chunkIndices_(other.chunkIndices_),
          stackIndices_(other.stackIndices_)
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
        if (store_ == nullptr) store_ = &model_->ChunkRef(chunkIndices_).VoxelStoreRef(lod_);
        return *store_;
    }
    Stack& VoxelStackRef() const { return VoxelStoreRef().ValidStackRef(stackIndices_); }

    /// The stack to be read at once: the shared empty one where nothing is stored.
    const VoxelStack<bool>& StackToRead() const
    {
        Validate();
        if (store_ == nullptr) FindStore();
        return store_ != nullptr ? std::as_const(*store_).ValidStackRef(stackIndices_) : EmptyStack;
    }

    /// Voxel indices of the stack's lower corner.
    Triple LowerIndices() const
    {
        Validate();
        return Plus(ChunkLowerIndices(chunkIndices_, lod_), {PlateWidth * stackIndices_[0], PlateWidth * stackIndices_[1], 0});
    }

    /// The part of the stack that lies in the extents, as inclusive offsets inside the stack.
    OffsetBox Inside() const { return PartInside(model_->ExtentsRef(lod_), LowerIndices()); }
    Triple LowerOffset() const { return Inside().lower; }
    Triple UpperOffset() const { return Inside().upper; }

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
        return {chunkIndices_[2], chunkIndices_[1], chunkIndices_[0], stackIndices_[1], stackIndices_[0]};
    }

    void MoveTo(const Triple& voxelIndices)
    {
        isValid_ = true;
        chunkIndices_ = ChunkOfVoxel(voxelIndices, lod_);
        const Triple stack = StackOfVoxel(Minus(voxelIndices, ChunkLowerIndices(chunkIndices_, lod_)));
        stackIndices_ = {stack[0], stack[1]};
        FindStore();
    }

    void FindStore() const
    {
        if (auto* const chunk = model_->FindChunk(chunkIndices_)) store_ = &chunk->VoxelStoreRef(lod_);
    }

    VoxelModelType* model_;
    std::int64_t lod_;
    bool isValid_ = false;
    mutable Store* store_ = nullptr; // looked up again as long as nothing is stored there
    Triple chunkIndices_{};
    StackIndices stackIndices_{};
};

using StackIterator = StackIteratorBase<VoxelModel<bool>>;
using ConstStackIterator = StackIteratorBase<const VoxelModel<bool>>;

} // namespace brix
