#include "TriangleFiles.h"

#include "Progress.h"

#include <brix/triangles/StlFiles.h>

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>

namespace brix::tools {

std::vector<WorldTriangle> LoadTriangles(const std::filesystem::path& input, bool swapYZ)
{
    const Progress progress("reading " + input.string());
    return LoadTrianglesFromSTL(input, swapYZ);
}

std::vector<WorldTriangle> LoadUsableTriangles(const std::filesystem::path& input, bool swapYZ)
{
    std::vector<WorldTriangle> triangles = LoadTriangles(input, swapYZ);
    if (triangles.empty()) throw std::runtime_error("The file \"" + input.string() + "\" holds no triangles.");
    if (const std::size_t count = CountNotFinite(triangles); count > 0)
        throw std::runtime_error("The file \"" + input.string() + "\" holds " + std::to_string(count) +
                                 " triangles with coordinates that are infinite or not numbers.");
    return triangles;
}

std::size_t CountNotFinite(const std::vector<WorldTriangle>& triangles)
{
    return static_cast<std::size_t>(std::count_if(triangles.begin(), triangles.end(), [](const WorldTriangle& triangle) {
        double sum = 0;
        for (const auto& corner : triangle)
            for (const double coordinate : corner) sum += coordinate * 0; // 0 for finite numbers, NaN for all others
        return std::isnan(sum);
    }));
}

void RequireOutputFolder(const std::filesystem::path& output)
{
    const std::filesystem::path folder = output.has_parent_path() ? output.parent_path() : ".";
    if (!std::filesystem::is_directory(folder))
        throw std::runtime_error("The folder of the output file \"" + output.string() + "\" does not exist.");
}

void SaveTriangles(const std::filesystem::path& output, const std::vector<WorldTriangle>& triangles, bool ascii, bool swapYZ)
{
    const Progress progress("writing " + output.string());
    (ascii ? SaveTrianglesToAsciiSTL : SaveTrianglesToBinarySTL)(output, triangles, swapYZ);
}

} // namespace brix::tools
