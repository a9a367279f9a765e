#include "OutputFiles.h"

#include "Report.h"
#include "TriangleFiles.h"

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

void SaveVoxels(const VoxelModel<bool>& model, const LevelFile& output, bool ascii, bool swapYZ)
{
    const Stopwatch watch;
    std::vector<WorldTriangle> triangles;
    TessellateVoxelModel(triangles, model, output.lod);
    SaveTriangles(output.filePath, triangles, ascii, swapYZ);
    PrintStep("write", output.filePath.string() + ": level " + std::to_string(output.lod) + ", " +
                           std::to_string(triangles.size()) + " triangles " + watch.Text());
}

} // namespace brix::tools
