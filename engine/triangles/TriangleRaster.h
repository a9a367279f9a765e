// The voxels of one chunk that triangles touch, by the conservative overlap test of Schwarz and Seidel ("Fast Parallel Surface
// and Solid Voxelization on GPUs", 2010): a triangle and a box overlap exactly when
//
//   - their bounding boxes overlap,
//   - the triangle's plane does not pass the box on one side,
//   - in each of the projections xy, yz and zx the box touches the inner side of all three edges.
//
// Each of these conditions asks for the sign of a number that is linear in the voxel's indices. Eight rows of voxels are worked
// on at once, a row in each lane of a vector; a column of voxels, one per lane, adds a bit to each row:
//
//   lane 7  ..####..     for each column   rows = 2 * rows + (1 where the column's number has the wrong sign)
//   ...     .#####..                       numbers -= step of a column
//   lane 0  .###....
//
// The rows of the xy projection (lanes along y) hold at all heights, those of the xz projection (lanes along z) for all y, and
// the yz projection takes or leaves a lane as a whole; only the plane needs a number for every voxel. Where a triangle's box is
// one voxel thick along an axis, the conditions that involve that axis hold for all of its voxels and are left out; along two
// axes, the triangle touches all of the box. Many triangles of a fine mesh are small enough for that.
#pragma once

#include "../model/InstructionSet.h"
#include "../model/VoxelStore.h"
#include "TriangleConditions.h"
#include "TriangleRows.h"

#include <span>
#include <vector>

namespace brix {

/// The voxels of a triangle's box, counted from the chunk's corner, and the part of them that is in the extents.
struct RasterBox
{
    Quad lower, upper;
    Quad lowerFilled, upperFilled;
};

/// The least and the greatest coordinates of some corners.
struct PackedBounds
{
    Quad lower = Quad{} + MaxPackedCoordinate;
    Quad upper = Quad{} - MaxPackedCoordinate;
};

/// Where eight rows of a stack are: the halves of the plate at height 0 that they begin and end in. Null where nothing is.
using PlateHalves = std::array<std::byte*, 2>;

/// Up to 16 columns and 8 rows of a box, which lie in one or two stacks along x.
struct RasterTile
{
    std::int32_t x, y; // of column 0 and lane 0, counted from the chunk's corner
    std::int32_t columns;
    Lanes rows; // all columns, in the lanes of the tile's rows
    PlateHalves halves;
    PlateHalves halvesOfNextX;
};

/// Fills voxels of one chunk at its finest level.
class TriangleRaster
{
public:
    /// Writes to the store's stacks, and leaves those decompressed that it wrote to. `voxelSize`: base units per voxel edge.
    TriangleRaster(VoxelStore<bool>& store, const Triple& voxelSize);

    /// Fills the voxels of the store's chunk inside the extents that the triangles touch.
    void Fill(const TriangleChunk& triangles, InstructionSet instructionSet);
    void Fill(const PackedTriangle& triangle, InstructionSet instructionSet);

    /// Fills what the triangles touch, one after the other, up to the first that may touch a voxel outside of chunk or extents or
    /// spans more than MaxPieceSpan. Returns how many that are, and widens `bounds` by their corners.
    std::size_t FillThoseInside(std::span<const PackedTriangle> triangles, PackedBounds& bounds, InstructionSet instructionSet);

    /// The same for a triangle of any size, which is not cut. Its corners lie within +-MaxPackedCoordinate.
    void FillWhole(const LatticeTriangle& triangle);

    /// The number of stacks that were written to, which Close compresses.
    std::size_t OpenStacks() const { return openStacks_; }
    void Close();

private:
    RasterBox BoxOf(const PackedCorners& corners) const;
    void Fill(const PackedTriangle& triangle);
    void FillIn(const PackedCorners& corners, const RasterBox& box);
    void FillRow(std::int32_t y, std::int32_t z, const VoxelRun& columns);
    void FillLarge(const LatticeTriangle& triangle);
    void FillAll(const RasterBox& box);
    bool IsSmall(const RasterBox& box) const;
    void FillSmall(const RasterBox& box, std::uint32_t touched);
    template <ThickAlong thick> void FillTouched(const PackedCorners& corners, const RasterBox& box);

    template <class Visit> void ForEachTile(const RasterBox& box, const Visit& visit);
    PlateHalves HalvesOf(std::int32_t x, std::int32_t y, bool reachesNext);
    VoxelPlate<bool>* PlatesOf(std::int32_t x, std::int32_t y);
    std::byte* HalfOf(std::int32_t x, std::int32_t y);

    VoxelStore<bool>& store_;
    Quad size_; // of a voxel in base units
    DoubleQuad perSize_;
    VoxelSizes sizes_;
    std::int64_t mostVoxelsOfNarrowPlane_;
    Quad origin_;         // lower corner of the chunk in base units
    Quad lowerInExtents_; // voxels from the chunk's corner
    Quad upperInExtents_;
    std::uint32_t stacksPerRow_;
    std::vector<VoxelPlate<bool>*> plates_; // by stack: the plates of its heights, once it was written to
    std::size_t openStacks_ = 0;
};

} // namespace brix
