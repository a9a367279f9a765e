// Files of triangles as the commands read and write them: once from start to end, with progress shown; what makes no sense is
// refused.
#pragma once

#include "SceneFiles.h"

#include <brix/triangles/StlReader.h>

#include <filesystem>
#include <vector>

namespace brix::tools {

/// Reads a file, a pipe, or standard input for `-`, whatever it holds. Throws std::runtime_error with the system's reason when it
/// cannot be opened, and as ReadStl of the engine does.
StlImport LoadStl(const std::filesystem::path& input, const StlReadOptions& options);

/// Reads a file of a SceneFormat and tells what was assumed; a warning tells what was left out. Throws as LoadScene does.
SceneImport ReadScene(const std::filesystem::path& input, bool swapYZ);

/// Triangles of a file, by its ending of a SceneFormat or STL; a warning tells when something was left out or guessed. Throws
/// std::runtime_error when there are none, and as LoadStl or LoadScene does.
std::vector<WorldTriangle> LoadUsableTriangles(const std::filesystem::path& input, bool swapYZ);

/// "ASCII STL" or "binary STL".
std::string FormatName(StlVariant variant);

/// The size of an STL file with so many triangles; of an ASCII file about.
double StlBytes(double triangleCount, bool ascii);

/// Writes triangles as binary or ASCII STL, as OutputFile does, and reports the file. Throws as the
/// engine's writers and OutputFile do.
void SaveTriangles(const std::filesystem::path& output, const std::vector<WorldTriangle>& triangles, bool ascii, bool swapYZ);

} // namespace brix::tools
