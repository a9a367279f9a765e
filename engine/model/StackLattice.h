// Where plates, stacks and chunks lie on the lattice: their sizes, which of them holds a voxel, and where their corners are.
//
//   plate    16 x 16 voxels
//   stack    16 x 16 x 64: 64 heights of a plate. At every level of detail all of space is a grid of stacks
//   chunk    16 x 16 x 64 voxels of level 0, which are 2^L x 2^L stacks of level L side by side
#pragma once

#include "../frame/Extents.h"

#include <bit>

namespace brix {

template <class Value> class VoxelStack;

/// Voxels along x and y of a plate, and so of a stack; heights of a stack.
inline constexpr std::int64_t PlateWidth = 16;
inline constexpr std::int64_t StackHeight = 64;

/// Width of a chunk in level-0 voxels, and height in voxels.
inline constexpr std::int64_t ChunkWidth = PlateWidth;
inline constexpr std::int64_t ChunkHeight = StackHeight;

/// Voxels of a stack along each axis, and the offset inside a stack of its last voxel.
inline constexpr Triple StackSize{PlateWidth, PlateWidth, StackHeight};
inline constexpr Triple LastOffset = Minus(StackSize, {1, 1, 1});
constexpr std::int64_t StackSizeAlong(Axis axis) { return StackSize[static_cast<std::size_t>(axis)]; }

inline constexpr std::int64_t PlateWidthBits = std::countr_zero(static_cast<std::uint64_t>(PlateWidth));
inline constexpr std::int64_t StackHeightBits = std::countr_zero(static_cast<std::uint64_t>(StackHeight));
static_assert(PlateWidth == 1 << PlateWidthBits && StackHeight == 1 << StackHeightBits);

/// The stack of a level's grid that holds a voxel: floor(voxel / StackSize).
constexpr Triple StackOfVoxel(const Triple& voxelIndices)
{
    return {FloorShift(voxelIndices[0], PlateWidthBits), FloorShift(voxelIndices[1], PlateWidthBits),
            FloorShift(voxelIndices[2], StackHeightBits)};
}

/// Voxel indices of a stack's lower corner.
constexpr Triple CornerOfStack(const Triple& stack)
{
    return {PlateWidth * stack[0], PlateWidth * stack[1], StackHeight * stack[2]};
}

/// Indices of the chunk that holds a voxel of a level.
constexpr Triple ChunkOfVoxel(const Triple& voxelIndices, std::int64_t voxelLOD)
{
    const std::int64_t widthBits = PlateWidthBits + NearestLevel(voxelLOD);
    return {FloorShift(voxelIndices[0], widthBits), FloorShift(voxelIndices[1], widthBits),
            FloorShift(voxelIndices[2], StackHeightBits)};
}

/// Voxel indices at a level of a chunk's lower corner.
constexpr Triple ChunkLowerIndices(const Triple& chunkIndices, std::int64_t voxelLOD)
{
    const std::int64_t width = ChunkWidth << NearestLevel(voxelLOD);
    return {chunkIndices[0] * width, chunkIndices[1] * width, chunkIndices[2] * ChunkHeight};
}

/// A box of voxels inside a stack, by inclusive offsets from the stack's lower corner.
struct OffsetBox
{
    Triple lower{};
    Triple upper = LastOffset;

    bool IsWholeStack() const { return lower == Triple{} && upper == LastOffset; }
};

/// The part of the stack with this lower corner that lies in the extents, which have to touch the stack.
inline OffsetBox PartInside(const Extents& extents, const Triple& corner)
{
    return {Minus(extents.LowerCornerClamp(corner), corner), Minus(extents.UpperCornerClamp(Plus(corner, LastOffset)), corner)};
}

/// The stack that stands for all those which a model or a grid does not have.
extern const VoxelStack<bool> EmptyStack;

} // namespace brix
