// STL files as the commands read and write them: with a progress line, and with what makes no sense refused.
#pragma once

#include <brix/triangles/Triangle.h>

#include <filesystem>
#include <vector>

namespace brix::tools {

/// Triangles of an STL file. Throws std::runtime_error when there are none, when coordinates are not finite, and as the reader does.
std::vector<WorldTriangle> LoadUsableTriangles(const std::filesystem::path& input, bool swapYZ);

/// Triangles of an STL file, whatever it holds. Throws as the reader does.
std::vector<WorldTriangle> LoadTriangles(const std::filesystem::path& input, bool swapYZ);

/// The number of triangles with a coordinate that is infinite or not a number.
std::size_t CountNotFinite(const std::vector<WorldTriangle>& triangles);

/// Throws std::runtime_error, before work is done that could not be saved, when the folder of an output file does not exist.
void RequireOutputFolder(const std::filesystem::path& output);

/// Writes triangles as binary or ASCII STL. Throws as the writers do.
void SaveTriangles(const std::filesystem::path& output, const std::vector<WorldTriangle>& triangles, bool ascii, bool swapYZ);

} // namespace brix::tools
