#include "OutputFiles.h"

#include "Report.h"
#include "TriangleFiles.h"

#include <brix/triangles/Solidization.h>
#include <brix/triangles/Tessellation.h>

#include <charconv>
#include <cmath>
#include <cstdlib>

namespace brix::tools {

SlicePosition ParseSlicePosition(const std::string& text)
{
    const std::size_t axis = std::string("xyz").find(text.empty() ? ' ' : text[0]);
    char* end = nullptr;
    const double coordinate = text.size() > 2 ? std::strtod(text.c_str() + 2, &end) : 0;
    if (axis > 2 || text[1] != '=' || end == nullptr || *end != '\0' || !std::isfinite(coordinate))
        throw UsageError("A slice is given as x=NUMBER, y=NUMBER or z=NUMBER, not as \"" + text + "\".");
    return {static_cast<Axis>(axis), coordinate};
}

// Coordinates are told along the grid's own axes, so the frame is asked without its rotation.
Slice FindSlice(const VoxelModel<bool>& model, std::int64_t lod, const SlicePosition& position, const GridOptions& grid)
{
    const auto axis = static_cast<std::size_t>(position.axis);
    const Axes& axes = model.AxesRef();
    std::array<double, 3> point = grid.origin;
    point[axis] = position.coordinate;
    const Axes straight(grid.width, grid.origin, 0, axes.VerticalLOD());
    const std::int64_t index = straight.ContainingVoxel(straight.FromWorldCoordinates(point), lod)[axis];
    const Extents& extents = model.ExtentsRef(lod);
    if (index < extents.LowerIndices()[axis] || index > extents.UpperIndices()[axis])
        throw std::runtime_error(std::string("The slice ") + "xyz"[axis] + "=" + Text(position.coordinate) +
                                 " lies outside the model.");
    return {position.axis, index};
}

LevelFile ParseLevelFile(const std::string& text, std::int64_t finestLOD)
{
    const std::size_t equals = text.find('=');
    const char* const end = text.data() + (equals == std::string::npos ? 0 : equals);
    std::int64_t lod = 0;
    if (end == text.data() || std::from_chars(text.data(), end, lod).ptr != end) return {finestLOD, text};
    if (lod < 0 || lod > finestLOD)
        throw UsageError("Level " + std::to_string(lod) + " of the output \"" + text + "\" is not among the levels 0.." +
                         std::to_string(finestLOD) + " of the model.");
    return {lod, text.substr(equals + 1)};
}

namespace {

void Save(const std::string& step, const std::vector<WorldTriangle>& triangles, const LevelFile& output, bool ascii, bool swapYZ,
          const Stopwatch& watch)
{
    SaveTriangles(output.filePath, triangles, ascii, swapYZ);
    PrintStep(step, output.filePath.string() + ": level " + std::to_string(output.lod) + ", " + std::to_string(triangles.size()) +
                        " triangles " + watch.Text());
}

} // namespace

void SaveVoxels(const VoxelModel<bool>& model, const LevelFile& output, bool ascii, bool swapYZ)
{
    const Stopwatch watch;
    std::vector<WorldTriangle> triangles;
    TessellateVoxelModel(triangles, model, output.lod);
    Save("write", triangles, output, ascii, swapYZ, watch);
}

void SaveSurface(const VoxelModel<bool>& model, const LevelFile& output, bool ascii, bool swapYZ)
{
    const Stopwatch watch;
    std::vector<WorldTriangle> triangles;
    for (const VoxelRectangle& rectangle : SolidizeVoxelModel(model, output.lod)) {
        const auto [a, b, c, d] = ToWorldRectangle(rectangle, model.AxesRef(), output.lod);
        triangles.push_back({a, b, c});
        triangles.push_back({a, c, d});
    }
    Save("write-surface", triangles, output, ascii, swapYZ, watch);
}

} // namespace brix::tools
