#include "OutputFiles.h"

#include "Memory.h"
#include "Report.h"
#include "TriangleFiles.h"
#include "VoxelFiles.h"

#include <brix/triangles/Solidization.h>
#include <brix/triangles/SurfaceMesh.h>
#include <brix/triangles/Tessellation.h>

#include <algorithm>
#include <charconv>
#include <cmath>

namespace brix::tools {

SlicePosition ParseSlicePosition(const std::string& text)
{
    const std::size_t axis = std::string("xyz").find(text.empty() ? ' ' : text[0]);
    const char* const start = text.data() + std::min<std::size_t>(2, text.size());
    const char* const end = text.data() + text.size();
    double coordinate = 0;
    const bool isNumber = std::from_chars(start, end, coordinate).ptr == end && start != end && std::isfinite(coordinate);
    if (axis > 2 || text[1] != '=' || !isNumber)
        throw UsageError("A slice is given as x=NUMBER, y=NUMBER or z=NUMBER, not as \"" + text + "\".");
    return {static_cast<Axis>(axis), coordinate};
}

// Coordinates are told along the grid's own axes, so the frame is asked without its rotation.
Slice FindSlice(const Extents& extents, const SlicePosition& position)
{
    const auto axis = static_cast<std::size_t>(position.axis);
    const Axes& axes = extents.AxesRef();
    std::array<double, 3> point = axes.WorldVoxelOrigin();
    point[axis] = position.coordinate;
    const Axes straight(axes.WorldVoxelWidth(0), axes.WorldVoxelOrigin(), 0, axes.VerticalLOD());
    const std::int64_t index = straight.ContainingVoxel(straight.FromWorldCoordinates(point), extents.VoxelLOD())[axis];
    if (index < extents.LowerIndices()[axis] || index > extents.UpperIndices()[axis])
        throw std::runtime_error(std::string("The slice ") + "xyz"[axis] + "=" + Text(position.coordinate) +
                                 " lies outside the model.");
    return {position.axis, index};
}

LevelFile ParseLevelFile(const std::string& text, std::int64_t finestLOD)
{
    const std::size_t equals = text.find('=');
    const std::string level = text.substr(0, equals == std::string::npos ? 0 : equals);
    const bool namesLevel = !level.empty() && level.find_first_not_of("0123456789", level[0] == '-' ? 1 : 0) == std::string::npos;
    if (!namesLevel) return {finestLOD, text};
    std::int64_t lod = -1; // what is too large to be read is no level either
    std::from_chars(level.data(), level.data() + level.size(), lod);
    if (lod < 0 || lod > finestLOD)
        throw UsageError("Level " + level + " of the output \"" + text + "\" is not among the levels 0.." +
                         std::to_string(finestLOD) + " of the model.");
    return {lod, text.substr(equals + 1)};
}

namespace {

void Save(const std::string& step, const std::vector<WorldTriangle>& triangles, const LevelFile& output,
          const GridOptions& options, bool ascii, const Stopwatch& watch)
{
    SaveTriangles(output.filePath, triangles, ascii, options.swapYZ);
    PrintStep(step,
              output.filePath.string() + ": level " + std::to_string(output.lod) + ", " + std::to_string(triangles.size()) +
                  " triangles " + watch.Text(),
              {{"file", output.filePath.string()},
               {"level", output.lod},
               {"triangles", triangles.size()},
               {"seconds", watch.Seconds()}});
}

} // namespace

void SaveVoxels(const VoxelModel<bool>& model, const LevelFile& output, const GridOptions& options, bool ascii)
{
    if (IsVoxelFile(output.filePath)) return SaveVoxelFile(model, output, options);
    const Stopwatch watch;
    const Tessellation tessellation(model, output.lod);
    RequireSpaceForTriangles(static_cast<double>(tessellation.TriangleCount()), 2, ascii, model, options);
    std::vector<WorldTriangle> triangles(static_cast<std::size_t>(tessellation.TriangleCount()));
    tessellation.CopyTriangles(0, triangles);
    Save("write", triangles, output, options, ascii, watch);
}

void SaveSurface(const VoxelModel<bool>& model, const LevelFile& output, const GridOptions& options, bool ascii)
{
    const Stopwatch watch;
    const std::vector<VoxelRectangle> rectangles = SolidizeVoxelModel(model, output.lod);
    // Two triangles for each, and the list of rectangles has grown by copying.
    RequireSpaceForTriangles(2 * static_cast<double>(rectangles.size()), 1.5 * sizeof(VoxelRectangle), ascii, model, options);
    std::vector<WorldTriangle> triangles;
    triangles.reserve(2 * rectangles.size());
    for (const VoxelRectangle& rectangle : rectangles) {
        const auto [a, b, c, d] = ToWorldRectangle(rectangle, model.AxesRef(), output.lod);
        triangles.push_back({a, b, c});
        triangles.push_back({a, c, d});
    }
    Save("write-surface", triangles, output, options, ascii, watch);
}

void SaveMesh(const VoxelModel<bool>& model, const LevelFile& output, std::optional<int> smoothingSteps,
              const GridOptions& options, bool ascii)
{
    const Stopwatch watch;
    SurfaceMeshOptions meshOptions;
    if (smoothingSteps) meshOptions = {SurfaceStyle::Smooth, *smoothingSteps};
    const SurfaceSize size = SizeOfSurface(model, output.lod);
    const double triangleCount = 2 * static_cast<double>(size.faces);
    const double bytesPerTriangle = BytesToMakeSurface(size, meshOptions) / std::max(triangleCount, 1.0);
    RequireSpaceForTriangles(triangleCount, bytesPerTriangle, ascii, model, options);
    const FaceMesh mesh = SurfaceMesh(model, output.lod, meshOptions);
    std::vector<WorldTriangle> triangles(2 * mesh.faces.size());
    for (std::size_t i = 0; i < triangles.size(); ++i) {
        const auto [a, b, c] = TriangleOf(mesh, i);
        triangles[i] = {mesh.vertices[a], mesh.vertices[b], mesh.vertices[c]};
    }
    Save("write-mesh", triangles, output, options, ascii, watch);
}

} // namespace brix::tools
