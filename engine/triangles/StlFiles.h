// Triangle lists as STL files, in the ASCII and the binary variant of the format.
//
// Messages name files in UTF-8 on one line: bytes of a path that are no character are shown as U+FFFD, control characters as
// \x1b.
#pragma once

#include "Triangle.h"

#include <cstdint>
#include <filesystem>
#include <iosfwd>
#include <span>
#include <vector>

namespace brix {

/// Reads the triangles of an STL file, in the order of the file; facet normals and attributes are ignored.
/// A file whose first five bytes are "solid" or "SOLID" is ASCII, every other one binary.
/// `swapYZ`   true: the file has its Y axis up; file coordinates (X, Y, Z) become world coordinates (X, -Z, Y)
/// ASCII: the corners of a triangle are the three lines after a line whose first word is "outer"; each must end with a line
/// break. Numbers are those of a stream in the "C" locale, whatever the locale of the host. The first one of a line that is no
/// number becomes 0, one beyond the doubles becomes the largest of them, and the numbers after either are 0.
/// Binary: the triangles that the file announces; bytes after them are ignored. Memory follows what the file holds, not what it
/// announces.
/// Throws std::runtime_error, naming the file: its path holds a null character; it cannot be opened; it has fewer than five
/// bytes; then for ASCII files a triangle that is cut off by the end of the file (or of what can be read of it), or a line other
/// than a vertex in a triangle; for binary files a missing header, triangle count or triangle.
/// A pipe is read once from start to end. Cost: linear in the file's size.
[[nodiscard]] std::vector<WorldTriangle> LoadTrianglesFromSTL(const std::filesystem::path& filePath, bool swapYZ);

/// The same from the rest of a stream, which has to be a binary one, or from the bytes of a file. Messages name the file "data".
[[nodiscard]] std::vector<WorldTriangle> LoadTrianglesFromSTL(std::istream& stream, bool swapYZ);
[[nodiscard]] std::vector<WorldTriangle> LoadTrianglesFromSTL(std::span<const std::uint8_t> file, bool swapYZ);

/// Writes triangles, with their unit normals, as an ASCII STL file; a file that exists is replaced.
/// Numbers have six significant digits, whatever the locale of the host: use a binary file where that is too coarse.
/// `swapYZ`   true: the file gets its Y axis up; world coordinates (x, y, z) become file coordinates (x, z, -y)
/// Throws std::runtime_error, naming the file, when its path holds a null character, when it cannot be opened, then when it
/// cannot be written or closed (disk full); the incomplete file is left behind.
void SaveTrianglesToAsciiSTL(const std::filesystem::path& filePath, const std::vector<WorldTriangle>& triangles, bool swapYZ);

/// Writes triangles, with their unit normals, as a binary STL file; a file that exists is replaced.
/// Coordinates are rounded to 32-bit floats: those beyond their range become infinite.
/// `swapYZ`   true: the file gets its Y axis up; world coordinates (x, y, z) become file coordinates (x, z, -y)
/// Throws std::runtime_error when there are more than 4294967295 triangles, before the file is touched; then, naming the file,
/// when its path holds a null character, when it cannot be opened, and when its header, triangle count or triangles cannot be
/// written (disk full); the incomplete file is left behind.
void SaveTrianglesToBinarySTL(const std::filesystem::path& filePath, const std::vector<WorldTriangle>& triangles, bool swapYZ);

/// Either of them, for triangles (world units) that are not in a list. Throws as they do.
enum class StlVariant
{
    Ascii,
    Binary
};
void SaveTrianglesToSTL(const std::filesystem::path& filePath, std::span<const WorldTriangle> triangles, StlVariant variant,
                        bool swapYZ);

/// The same to a stream, a binary one, which messages name "data".
void SaveTrianglesToSTL(std::ostream& stream, std::span<const WorldTriangle> triangles, StlVariant variant, bool swapYZ);

} // namespace brix
