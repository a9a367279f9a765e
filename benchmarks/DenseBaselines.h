// All operations on the plainest structure that is still fast: one bit per voxel of a box, in words of 64 along x. What the
// engine's operations are measured against, and checked. Every voxel costs the same, filled or empty; memory is read in order, 64
// voxels at a time or 256 where the processor has AVX2.
#pragma once

#include "model/VoxelModel.h"

#include <span>

namespace brix::benchmarks {

/// The voxels of a model's extents at its finest level. Rows start at a multiple of 64, so that a plate's row lies in one word;
/// bits outside the extents are 0.
struct DenseWords
{
    explicit DenseWords(const Extents& extents);
    explicit DenseWords(const VoxelModel<bool>& model);

    std::int64_t RowCount() const { return size[1] * size[2]; }
    const std::uint64_t* Row(std::int64_t y, std::int64_t z) const { return words.data() + (z * size[1] + y) * wordsPerRow; }
    std::uint64_t* Row(std::int64_t y, std::int64_t z) { return words.data() + (z * size[1] + y) * wordsPerRow; }

    /// `indices` count from `lower`.
    bool IsSet(const Triple& indices) const { return (Row(indices[1], indices[2])[indices[0] / 64] >> indices[0] % 64 & 1) != 0; }

    friend bool operator==(const DenseWords& a, const DenseWords& b)
    {
        return a.lower == b.lower && a.size == b.size && a.words == b.words;
    }

    Triple lower; // x rounded down to a multiple of 64
    Triple size;  // x rounded up to one
    std::int64_t wordsPerRow;
    std::vector<std::uint64_t> inside; // for each word of a row, the bits inside the extents
    std::vector<std::uint64_t> words;
};

/// The model with these voxels, made from the words of a model on the same extents.
VoxelModel<bool> ModelOf(const DenseWords& voxels, const Extents& extents, std::int64_t finestLOD);

std::int64_t CountDensely(const DenseWords& voxels);

/// Growth or shrinkage by n voxels (0..64) on both sides along an axis, by doubling steps; what leaves the box is lost, and
/// outside counts as empty. One row along x, or the rows of one plane along y and z, pass through the cache at a time.
DenseWords GrowDensely(const DenseWords& voxels, Axis axis, std::int64_t n);
DenseWords ShrinkDensely(const DenseWords& voxels, Axis axis, std::int64_t n);

/// Growth by one voxel where there is at least one filled neighbour beside and, if asked for, at least one below or above;
/// shrinkage where there are empty ones.
enum class Vertical
{
    Ignored,
    AtLeastOne
};
DenseWords GrowByOneDensely(const DenseWords& voxels, Vertical vertical);
DenseWords ShrinkByOneDensely(const DenseWords& voxels, Vertical vertical);

/// Growth in every layer by passes that ask for one or two of four neighbours. A layer makes all passes while it is in the cache.
DenseWords GrowHorizontallyDensely(const DenseWords& voxels, std::span<const int> leastOfPasses);

/// The passes that make a disc of 3 or 16 voxels.
std::span<const int> DiscPasses(int diameter);

/// Voxel by voxel, of sets on the same extents.
DenseWords UniteDensely(const DenseWords& a, const DenseWords& b);
DenseWords IntersectDensely(const DenseWords& a, const DenseWords& b);
DenseWords SubtractDensely(const DenseWords& a, const DenseWords& b);
DenseWords InvertDensely(const DenseWords& voxels);

/// With the empty regions filled that reach the faces of the extents, or the others. The flood sweeps all rows upwards and
/// downwards, with whole words along x, until a sweep changes nothing.
DenseWords FillExposedDensely(const DenseWords& voxels);
DenseWords FillEnclosedDensely(const DenseWords& voxels);

} // namespace brix::benchmarks
