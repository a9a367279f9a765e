// What all chunks of a model, and of its copies, share at one level: the extents, and the stacks that are full inside them. A
// full stack differs from all others only where the faces of the extents cut it, so there are few:
//
//    +---+---+---+
//    |  1|  0|  2|      along x: 0 between the faces, 1 with the lower one, 2 with the upper one, 3 with both;
//    +---+---+---+      along y and z likewise
#pragma once

#include "VoxelStack.h"

#include <atomic>
#include <vector>

namespace brix {

class LevelBounds
{
public:
    explicit LevelBounds(const Extents& extents) : extents_(extents) {}
    LevelBounds(LevelBounds&& other) noexcept : LevelBounds(other.extents_) {} // made again when it is asked for
    LevelBounds(const LevelBounds&) = delete;
    LevelBounds& operator=(const LevelBounds&) = delete;
    ~LevelBounds() { delete full_.load(std::memory_order_relaxed); }

    const Extents& ExtentsRef() const { return extents_; }

    /// The stack at a place that the extents touch (StackOfVoxel), full inside the extents. May be called by several threads.
    const VoxelStack<bool>& FullStackAt(const Triple& stack) const
    {
        const FullStacks* const full = full_.load(std::memory_order_acquire);
        return (full != nullptr ? *full : MakeFullStacks())[KindOf(stack)];
    }

    /// Whether the level has so many stacks that those which are full share one of each kind.
    bool SharesFullStacks() const
    {
        const Triple size = Plus(Minus(UpperStack(), LowerStack()), {1, 1, 1});
        return size[0] * size[1] * size[2] > static_cast<std::int64_t>(KindCount);
    }

    /// Bytes of the heap that the full stacks take.
    std::size_t AllocatedBytes() const;

private:
    static constexpr std::size_t KindCount = 64;
    using FullStacks = std::array<VoxelStack<bool>, KindCount>;

    // The first and the last stack that the extents touch.
    Triple LowerStack() const { return StackOfVoxel(extents_.LowerIndices()); }
    Triple UpperStack() const { return StackOfVoxel(extents_.UpperIndices()); }

    std::size_t KindOf(const Triple& stack) const
    {
        const Triple lower = LowerStack();
        const Triple upper = UpperStack();
        std::size_t kind = 0;
        for (std::size_t i = 3; i-- > 0;)
            kind =
                kind << 2 | static_cast<std::size_t>(stack[i] == upper[i]) << 1 | static_cast<std::size_t>(stack[i] == lower[i]);
        return kind;
    }

    const FullStacks& MakeFullStacks() const;

    Extents extents_;
    mutable std::atomic<const FullStacks*> full_{nullptr};
};

/// The bounds of a model by level, 0..5: one object for all its chunks.
using BoundsOfLevels = std::vector<LevelBounds>;

} // namespace brix
