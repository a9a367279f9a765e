// Filled voxels to one closed indexed mesh, for slicers and solvers: every edge belongs to exactly two faces.
#pragma once

#include "../model/VoxelModel.h"

#include <vector>

namespace brix {

/// Vertices in world units and triangles of their numbers, counter-clockwise seen from outside. Triangles 2i and 2i + 1 are the
/// two halves (a, b, c) and (a, c, d) of face i.
struct IndexedMesh
{
    std::vector<std::array<double, 3>> vertices;
    std::vector<std::array<float, 3>> normals; // of length 1, one per vertex; none for a blocky mesh
    std::vector<std::array<std::uint32_t, 3>> triangles;
};

enum class SurfaceStyle : std::uint8_t
{
    Blocky, // the faces of the voxels themselves
    Smooth  // surface nets
};

struct SurfaceMeshOptions
{
    SurfaceStyle style = SurfaceStyle::Blocky;
    int smoothingSteps = 0; // of a smooth mesh; 0 or more
};

/// The surface between filled and empty voxels of a level; what lies beyond the extents is empty. It has two triangles for each
/// face between them. Every edge belongs to exactly two triangles, which run along it in opposite directions, and the triangles
/// around a vertex form one ring: the mesh is closed, oriented outwards and without T-junctions. Faces are not merged.
///
/// Filled voxels that share an edge or a corner and no face are apart: there, vertices of one place have several numbers. The
/// exception are two voxels across an edge that are joined around both of its ends: they are joined along it as well, and it is
/// the empty voxels beside it that are apart, as one edge would have four faces otherwise. Two empty voxels that meet at a corner
/// amidst six filled ones are apart as well. What welds vertices of one place, as readers of STL do, undoes that in blocky
/// meshes.
///
/// Blocky: vertices are corners of voxels, and the volume enclosed is that of the filled voxels.
/// Smooth: surface nets (S. Gibson, Constrained Elastic Surface Nets, 1998) with a vertex for each sheet of a cell (G. Nielson,
/// Dual Marching Cubes, 2004). A cell is the cube of a voxel's size around a corner of voxels. A vertex begins at the mean of the
/// centres of its faces; each step moves all at once to the mean of those they share an edge of a face with, held in their cells.
/// So each stays within half a voxel of its corner along every axis of the lattice. Triangles may cross each other where walls
/// are a voxel thin. The numbers of vertices and triangles are the same as those of the blocky mesh.
///
/// The order follows the chunks of the model; all else follows the voxels alone.
/// Throws std::domain_error when the level is negative or beyond the model's finest one, then for a negative number of steps;
/// std::length_error when the mesh would have 2^32 vertices or more.
/// Cost: proportional to the faces, and a few instructions for every height of the stacks that the surface may go through. Memory
/// beside the mesh: as much as vertices and triangles once more while lists are joined, 4 kilobytes for each stack of two heights
/// of chunks, and 24 bytes per vertex for smoothing.
[[nodiscard]] IndexedMesh SurfaceMesh(const VoxelModel<bool>& model, std::int64_t lod, const SurfaceMeshOptions& options = {});

} // namespace brix
