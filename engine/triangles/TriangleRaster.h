// The voxels of one chunk that triangles touch, by the conservative overlap test of Schwarz and Seidel ("Fast Parallel Surface and
// Solid Voxelization on GPUs", 2010): a triangle and a box overlap exactly when
//
//   - their bounding boxes overlap,
//   - the triangle's plane does not pass the box on one side,
//   - in each of the projections xy, yz and zx the box touches the inner side of all three edges.
//
// Each of these conditions is linear in the voxel's indices. Along a row of voxels it holds from one index on or up to one index, so
// a row is found by one division per condition instead of one test per voxel:
//
//   edge 0   ..##############   x >= 2                 The rows of the three projections are found once for a window of 16 x 16
//   edge 1   ############....   x <= 11                columns; the voxel row (y, z) is the row y of the xy projection and the row z
//   edge 2   #########.......   x <= 8                 of the zx projection, if the yz projection has (y, z), cut by the plane's two
//            ..#######.......                          conditions.
#pragma once

#include "../model/InstructionSet.h"
#include "../model/VoxelStore.h"
#include "TrianglePieces.h"

#include <vector>

namespace brix {

/// Fills voxels of one chunk at its finest level.
class TriangleRaster
{
public:
    /// Writes to the store's stacks, and leaves those decompressed that it wrote to. `voxelSize`: base units per voxel edge.
    TriangleRaster(VoxelStore<bool>& store, const Triple& voxelSize);

    /// Fills the voxels of the chunk inside the extents that the triangles (base units, within +-MaxCoordinate) touch.
    void Fill(const std::vector<LatticeTriangle>& triangles, InstructionSet instructionSet);

private:
    struct Conditions;
    class Window;

    void Fill(const LatticeTriangle& triangle);
    void FillInPieces(const LatticeTriangle& triangle);
    void FillPiece(const LatticeTriangle& piece, const TriangleBox& box);
    void FillWindow(const Conditions& conditions, const Triple& lower, const Triple& upper);
    bool TouchesChunk(const TriangleBox& box) const;
    Triple VoxelOf(const Triple& coords) const;

    VoxelStore<bool>& store_;
    Triple size_;   // of a voxel in base units
    Triple origin_; // lower corner of the chunk in base units
    Triple end_;    // and its upper corner
    std::array<double, 3> reciprocalSize_;
    Triple lowerInExtents_; // voxels from the chunk's corner
    Triple upperInExtents_;
};

} // namespace brix
