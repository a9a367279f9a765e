// Names one stack of a model at one level. The mutable and the read-only iterator are one template. They, and voxel iterators,
// stay usable as long as the model is neither assigned to nor destroyed, whatever is done to its stacks meanwhile.
#pragma once

#include "VoxelModel.h"

#include <type_traits>

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
        const Triple chunkIndices = ChunkOfVoxel(voxelIndices, lod);
        if (!model.IsChunkValid(chunkIndices)) return;
        Store& store = model.ChunkRef(chunkIndices).VoxelStoreRef(lod);
        const StackIndices stackIndices = store.ContainingStack(voxelIndices);
        if (!store.IsStackValid(stackIndices)) return;
        store_ = &store;
        chunkIndices_ = chunkIndices;
        stackIndices_ = stackIndices;
    }

    /// The stack that holds a voxel, if the model does: the short way for a voxel that mostly is inside the extents. Throws as
    /// above.
    static StackIteratorBase OfVoxelInside(VoxelModelType& model, const Triple& voxelIndices, std::int64_t lod)
    {
        StackIteratorBase iterator(model, lod);
        if (model.ContainsVoxel(voxelIndices, lod)) {
            iterator.chunkIndices_ = ChunkOfVoxel(voxelIndices, lod);
            iterator.store_ = &model.ChunkRef(iterator.chunkIndices_).VoxelStoreRef(lod);
            iterator.stackIndices_ = iterator.store_->ContainingStack(voxelIndices);
        }
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
          store_(other.store_),
          chunkIndices_(other.chunkIndices_),
          stackIndices_(other.stackIndices_)
    {}

    bool IsValid() const { return store_ != nullptr; }
    VoxelModelType& VoxelModelRef() const { return *model_; }
    std::int64_t VoxelLOD() const { return lod_; }

    /// Throws std::out_of_range when the iterator is not valid, as do all members below.
    void Validate() const
    {
        if (!IsValid()) ThrowInvalidStackIterator();
    }

    Store& VoxelStoreRef() const { return Validate(), *store_; }
    Stack& VoxelStackRef() const { return VoxelStoreRef().ValidStackRef(stackIndices_); }

    /// Voxel indices of the stack's lower corner.
    Triple LowerIndices() const { return VoxelStoreRef().LowerIndices(stackIndices_); }

    /// The part of the stack that lies in the extents, as inclusive offsets inside the stack.
    Triple LowerOffset() const { return VoxelStoreRef().LowerOffset(stackIndices_); }
    Triple UpperOffset() const { return VoxelStoreRef().UpperOffset(stackIndices_); }

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

    VoxelModelType* model_;
    std::int64_t lod_;
    Store* store_ = nullptr; // none: not valid
    Triple chunkIndices_{};
    StackIndices stackIndices_{};
};

using StackIterator = StackIteratorBase<VoxelModel<bool>>;
using ConstStackIterator = StackIteratorBase<const VoxelModel<bool>>;

} // namespace brix
