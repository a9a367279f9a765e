// Filled voxels to one closed indexed mesh, for slicers and solvers: every edge belongs to exactly two faces.
#pragma once

#include "../model/VoxelModel.h"

#include <vector>

namespace brix {

/// Vertices in world units and faces of four of their numbers each, counter-clockwise seen from outside. Face (a, b, c, d) stands
/// for the triangles (a, b, c) and (a, c, d): its corners need not lie in a plane.
struct FaceMesh
{
    std::vector<std::array<double, 3>> vertices;
    std::vector<std::array<float, 3>> normals; // of length 1, one per vertex; none for a blocky mesh
    std::vector<std::array<std::uint32_t, 4>> faces;
};

/// A triangle of the faces: two for each, one after the other.
inline std::array<std::uint32_t, 3> TriangleOf(const FaceMesh& mesh, std::size_t triangle)
{
    const auto& [a, b, c, d] = mesh.faces[triangle / 2];
    if (triangle % 2 == 0) return {a, b, c};
    return {a, c, d};
}

enum class SurfaceStyle : std::uint8_t
{
    Blocky, // the faces of the voxels themselves
    Smooth  // surface nets
};

/// Far more than change anything that can be seen.
inline constexpr int MostSmoothingSteps = 1000;

struct SurfaceMeshOptions
{
    SurfaceStyle style = SurfaceStyle::Blocky;
    int smoothingSteps = 0; // of a smooth mesh; 0 to MostSmoothingSteps
};

/// The surface between filled and empty voxels of a level; what lies beyond the extents is empty. It has all faces between them,
/// as two triangles each. Every edge belongs to exactly two triangles, which run along it in opposite directions, and the
/// triangles around a vertex form one ring: the mesh is closed, oriented outwards and without T-junctions. Faces are not merged.
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
/// are a voxel thin. The faces and the number of vertices are the same as those of the blocky mesh.
///
/// The order follows the chunks of the model; all else follows the voxels alone. A normal is the mean direction of the faces
/// around its vertex, weighed by their areas.
/// Throws std::domain_error when the level is negative or beyond the model's finest one, then for a number of steps that is not
/// allowed; std::length_error when the mesh would have 2^32 vertices or more.
/// Cost: proportional to the faces, and a few instructions for every height of the stacks that the surface may go through. Memory
/// beside the mesh: 5 kilobytes for each stack of two heights of chunks that the surface may go through, and 37 bytes per vertex
/// for smoothing, but no normals meanwhile.
[[nodiscard]] FaceMesh SurfaceMesh(const VoxelModel<bool>& model, std::int64_t lod, const SurfaceMeshOptions& options = {});

/// What the surface mesh of a level has, whatever its style.
struct SurfaceSize
{
    std::int64_t faces = 0;
    std::int64_t vertices = 0;
    double walkBytes = 0; // what it takes at most to go over the voxels
};

/// Throws std::domain_error when the level is negative or beyond the model's finest one.
/// Cost: a fifth of making the mesh.
[[nodiscard]] SurfaceSize SizeOfSurface(const VoxelModel<bool>& model, std::int64_t lod);

/// How many bytes making a mesh of that size takes at most, the mesh included.
[[nodiscard]] double BytesToMakeSurface(const SurfaceSize& size, const SurfaceMeshOptions& options);

} // namespace brix
