// What is measured: scenes of triangles, each at several resolutions.
#pragma once

#include "triangles/TriangleModel.h"

#include <string>

namespace brix::benchmarks {

/// The scenes that are there: bunny, rocker-arm and dungeon when their files are; building and city, which are generated, always.
const std::vector<std::string>& SceneNames();

/// A scene's triangles in world units, read or generated at first use.
const std::vector<WorldTriangle>& TrianglesOf(const std::string& scene);

/// A scene on a grid of cubic voxels at FinestLOD, so many along the longest side of its bounding box. The box lies a third of a
/// voxel inside the grid, and the grid starts at a chunk's corner.
struct GriddedScene
{
    static constexpr std::int64_t FinestLOD = 5;

    GriddedScene(const std::string& scene, std::int64_t voxels);

    const std::vector<WorldTriangle>& worldTriangles;
    Axes axes;
    Extents extents;                                       // of all that the triangles touch, at level 0
    TriangleModel filed;                                   // the triangles as voxelization reads them
    std::vector<LatticeTriangle> pieces;                   // the same, each piece once: large triangles cut as filing cuts them
    std::array<std::int64_t, FinestLOD + 1> filledAtLevel; // voxels, by the scalar baseline

    std::int64_t FilledVoxels() const { return filledAtLevel.back(); }
    Extents FinestExtents() const { return extents.RescaledCopy(FinestLOD); }
    Triple VoxelSize() const { return axes.VoxelSize(FinestLOD); }
};

/// The scene on its grid, made at first use. The engine's voxels are compared with the baseline's, one by one; a difference ends
/// the program, because the time of a wrong result is worth nothing.
const GriddedScene& Gridded(const std::string& scene, std::int64_t voxels);

/// The resolutions that every scene is measured at.
inline constexpr std::array<std::int64_t, 3> Resolutions{256, 512, 1024};

/// Ends the program with a message unless the two numbers agree.
void RequireEqual(const std::string& what, std::int64_t value, std::int64_t expected);

} // namespace brix::benchmarks
