// How large a model is, or will be: what estimates of memory are made of. Numbers are doubles, as a model that is not there yet
// may be larger than any integer type counts.
#pragma once

#include "VoxelModel.h"

namespace brix {

/// A model as seen at one level, its finest one as far as estimates go.
struct ModelSize
{
    /// Nothing is stored in these extents; they are taken at level `lod`. Throws std::domain_error for a level beyond 0..5.
    ModelSize(const Extents& extents, std::int64_t lod);

    std::int64_t lod;
    std::array<double, 3> stacks; // that the extents touch, along each axis
    double chunks;                // that the extents touch
    double stored = 0;            // chunks that are stored
    double full = 0;              // those of them that are full, and have no stacks of their own
    double bared = 0;             // those of the full ones that lie beside a chunk that is not full
    double filled = 0;            // stacks that hold something, without those of full chunks
    double layerBytes = 0;        // of the heap that the layers of these stacks take
    std::array<double, 3> rims{}; // stacks that hold something, and have an empty one below along an axis

    double AllStacks() const { return stacks[0] * stacks[1] * stacks[2]; }

    /// The stacks of a chunk at a level, at most.
    double StacksPerChunk(std::int64_t level) const;

    /// The most that the layers of so many stacks take: every height has one of its own.
    static double MostLayerBytes(double stackCount) { return stackCount * BytesOfMixedStack; }

    /// What a stack of one layer, and one of 64, take of the heap with the allocator's part.
    static constexpr double BytesOfUniformStack = 64;
    static constexpr double BytesOfMixedStack = 2144;
};

/// The size of a model at a level, 0..FinestLOD(). Cost: a look at every stored stack.
/// Throws std::domain_error when the level is negative or beyond the finest one.
[[nodiscard]] ModelSize SizeOf(const VoxelModel<bool>& model, std::int64_t lod);

/// Bytes of the heap that a model of a size takes at most, with all levels up to size.lod, or with that one only.
/// Coarser levels never have more layers than the next finer one.
[[nodiscard]] double BytesOfModel(const ModelSize& size);
[[nodiscard]] double BytesOfOneLevel(const ModelSize& size);

/// Bytes that no model on these extents exceeds, whatever is filled: every chunk is stored, and every height of every stack has a
/// layer of its own. Real models stay far below: see docs/model.md.
/// Throws std::domain_error when the finest level is negative or not less than 6.
[[nodiscard]] double MostBytesOfModel(const Extents& extents, std::int64_t finestLOD);

} // namespace brix
