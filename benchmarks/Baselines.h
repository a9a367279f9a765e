// The same results by the plainest means: dense bit sets and one test per voxel. What the engine is measured against, and
// checked.
#pragma once

#include "model/VoxelModel.h"
#include "triangles/Triangle.h"

namespace brix::benchmarks {

/// The voxels of extents, one bit each: words of 64 along x, then y, then z. Indices are those of the extents' level.
class DenseVoxels
{
public:
    explicit DenseVoxels(const Extents& extents);

    const Extents& ExtentsRef() const { return extents_; }

    void Set(const Triple& voxel) { words_[WordOf(voxel)] |= BitOf(voxel); }
    bool IsSet(const Triple& voxel) const { return (words_[WordOf(voxel)] & BitOf(voxel)) != 0; }
    void Clear() { words_.assign(words_.size(), 0); }
    std::int64_t Count() const;

    /// Calls visit(voxel) for every voxel that is set.
    template <class Visit> void ForEachSet(Visit visit) const;

private:
    std::size_t WordOf(const Triple& voxel) const
    {
        return static_cast<std::size_t>(((voxel[2] - lower_[2]) * rows_ + voxel[1] - lower_[1]) * wordsPerRow_ +
                                        (voxel[0] - lower_[0]) / 64);
    }
    std::uint64_t BitOf(const Triple& voxel) const { return std::uint64_t{1} << (voxel[0] - lower_[0]) % 64; }

    Extents extents_;
    Triple lower_;
    std::int64_t rows_;
    std::int64_t wordsPerRow_;
    std::vector<std::uint64_t> words_;
};

template <class Visit> void DenseVoxels::ForEachSet(Visit visit) const
{
    const Triple upper = extents_.UpperIndices();
    const std::uint64_t* word = words_.data();
    for (std::int64_t z = lower_[2]; z <= upper[2]; ++z) {
        for (std::int64_t y = lower_[1]; y <= upper[1]; ++y) {
            for (std::int64_t i = 0; i < wordsPerRow_; ++i) {
                for (std::uint64_t bits = *word++; bits != 0; bits &= bits - 1)
                    visit(Triple{lower_[0] + 64 * i + std::countr_zero(bits), y, z});
            }
        }
    }
}

/// Sets every voxel that a triangle (base units) touches: for each triangle, for each voxel of its box, the exact test in
/// integers, with what belongs to the triangle computed once. `voxelSize` in base units. Triangles may span up to half a chunk.
void VoxelizeDensely(DenseVoxels& voxels, const Triple& voxelSize, const std::vector<LatticeTriangle>& triangles);

/// The triangles in base units, by the frame's conversion, in one list.
std::vector<LatticeTriangle> ConvertTriangles(const Axes& axes, const std::vector<WorldTriangle>& triangles);

/// Sets in `coarse`, one level coarser than `fine`, the voxel above every voxel that is set.
void CoarsenFilledVoxels(DenseVoxels& coarse, const DenseVoxels& fine);

/// The same by looking at every voxel of `coarse` and the four below it.
void CoarsenEveryVoxel(DenseVoxels& coarse, const DenseVoxels& fine);

/// The number of filled voxels of a model at a level.
std::int64_t CountFilledVoxels(const VoxelModel<bool>& model, std::int64_t lod);

/// Whether the model holds exactly these voxels at the level of their extents.
bool HoldsExactly(const VoxelModel<bool>& model, const DenseVoxels& voxels);

} // namespace brix::benchmarks
