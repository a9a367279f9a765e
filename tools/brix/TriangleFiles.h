// STL files as the commands read and write them: once from start to end, with progress shown; what makes no sense is refused.
#pragma once

#include <brix/triangles/Triangle.h>

#include <cstdint>
#include <filesystem>
#include <vector>

namespace brix::tools {

/// What an STL file holds.
struct StlContent
{
    std::vector<WorldTriangle> triangles;
    bool isAscii;
    std::int64_t bytes; // that were read
};

/// Reads a file, a pipe, or standard input for `-`, whatever it holds. Throws std::runtime_error with the system's reason when it
/// cannot be opened, and as the engine's reader does.
StlContent LoadStl(const std::filesystem::path& input, bool swapYZ);

/// Triangles of an STL file. Throws std::runtime_error when there are none, when coordinates are not finite, and as LoadStl does.
std::vector<WorldTriangle> LoadUsableTriangles(const std::filesystem::path& input, bool swapYZ);

/// The number of triangles with a coordinate that is infinite or not a number.
std::size_t CountNotFinite(const std::vector<WorldTriangle>& triangles);

/// The size of an STL file with so many triangles; of an ASCII file about.
double StlBytes(double triangleCount, bool ascii);

/// Writes triangles as binary or ASCII STL, as OutputFile does, and reports the file. Throws as the
/// engine's writers and OutputFile do.
void SaveTriangles(const std::filesystem::path& output, const std::vector<WorldTriangle>& triangles, bool ascii, bool swapYZ);

} // namespace brix::tools
