// The two variants of the STL format, apart from where their bytes come from and go to. StlFiles.h says what a host can rely on;
// the file paths here serve only to be named in messages.
#pragma once

#include "ByteReader.h"
#include "Triangle.h"

#include <cstdint>
#include <filesystem>
#include <ostream>
#include <span>
#include <stdexcept>
#include <string_view>
#include <vector>

namespace brix {

/// The exception for a file that cannot be read or written: `sentenceStart` "path" `sentenceEnd`.
std::runtime_error StlFailure(std::string_view sentenceStart, const std::filesystem::path& filePath,
                              std::string_view sentenceEnd);

/// Throws when a path holds a null character: to the system it would end there, and be that of another file.
void RequireNoNull(const std::filesystem::path& filePath);

/// Throws when a path is that of a device of characters: what has no size is held whole, and some devices never end.
void RequireNoDevice(const std::filesystem::path& filePath);

/// Whether the file, of which nothing has been taken yet, is in the ASCII variant. Throws when it has fewer than five bytes.
bool IsAsciiStl(ByteReader& file, const std::filesystem::path& filePath);

std::vector<WorldTriangle> ReadAsciiTriangles(ByteReader& file, const std::filesystem::path& filePath, bool swapYZ);
std::vector<WorldTriangle> ReadBinaryTriangles(ByteReader& file, const std::filesystem::path& filePath, bool swapYZ);

/// Throws when a binary file cannot count so many triangles.
void RequireBinaryTriangleCount(std::uint64_t triangleCount);

/// Writes all and flushes it, so that a full disk is noticed here.
void WriteAsciiTriangles(std::ostream& file, const std::filesystem::path& filePath, std::span<const WorldTriangle> triangles,
                         bool swapYZ);
void WriteBinaryTriangles(std::ostream& file, const std::filesystem::path& filePath, std::span<const WorldTriangle> triangles,
                          bool swapYZ);

} // namespace brix
