#include "StlFiles.h"

#include "StlFormats.h"

#include <fstream>
#include <locale>

namespace brix {

namespace {

std::uintmax_t SizeOrZero(const std::filesystem::path& filePath)
{
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(filePath, error);
    return error ? 0 : size;
}

// What a pipe has given once is gone. A file is read again from its start, in the mode that suits its variant.
bool MustContinue(const std::filesystem::path& filePath)
{
    std::error_code error;
    return std::filesystem::is_fifo(filePath, error);
}

// The host's locale could bring a conversion of its own between the bytes of the file and those of the program.
template <class FileStream> FileStream WithoutLocale()
{
    FileStream file;
    file.imbue(std::locale::classic());
    return file;
}

std::ofstream OpenToWrite(const std::filesystem::path& filePath, std::ios::openmode mode, std::string_view purpose)
{
    RequireNoNull(filePath);
    auto file = WithoutLocale<std::ofstream>();
    file.open(filePath, mode);
    if (!file) throw StlFailure("Failed to open STL file ", filePath, purpose);
    return file;
}

void Close(std::ofstream& file, const std::filesystem::path& filePath)
{
    file.close();
    if (!file) throw StlFailure("Failed to write triangle to STL file ", filePath, ".");
}

// What messages call a file that has no name.
const std::filesystem::path Unnamed("data");

std::vector<WorldTriangle> Read(ByteReader file, bool swapYZ)
{
    return IsAsciiStl(file, Unnamed) ? ReadAsciiTriangles(file, Unnamed, swapYZ) : ReadBinaryTriangles(file, Unnamed, swapYZ);
}

} // namespace

std::vector<WorldTriangle> LoadTrianglesFromSTL(const std::filesystem::path& filePath, bool swapYZ)
{
    RequireNoNull(filePath);
    auto file = WithoutLocale<std::ifstream>();
    file.open(filePath);
    if (!file) throw StlFailure("Failed to open STL file ", filePath, ".");
    ByteReader start(file);
    const bool isAscii = IsAsciiStl(start, filePath);
    const auto read = isAscii ? ReadAsciiTriangles : ReadBinaryTriangles;
    if (MustContinue(filePath)) return read(start, filePath, swapYZ);

    file.close();
    file.open(filePath, isAscii ? std::ios::in : std::ios::in | std::ios::binary);
    if (!file)
        throw StlFailure("Failed to open STL file ", filePath,
                         isAscii ? " to read triangle data in ASCII format." : " to read triangle data in binary format.");
    ByteReader whole(file, SizeOrZero(filePath));
    return read(whole, filePath, swapYZ);
}

std::vector<WorldTriangle> LoadTrianglesFromSTL(std::istream& stream, bool swapYZ) { return Read(ByteReader(stream), swapYZ); }

std::vector<WorldTriangle> LoadTrianglesFromSTL(std::span<const std::uint8_t> file, bool swapYZ)
{
    return Read(ByteReader(std::string_view(reinterpret_cast<const char*>(file.data()), file.size())), swapYZ);
}

void SaveTrianglesToAsciiSTL(const std::filesystem::path& filePath, const std::vector<WorldTriangle>& triangles, bool swapYZ)
{
    SaveTrianglesToSTL(filePath, triangles, StlVariant::Ascii, swapYZ);
}

void SaveTrianglesToBinarySTL(const std::filesystem::path& filePath, const std::vector<WorldTriangle>& triangles, bool swapYZ)
{
    SaveTrianglesToSTL(filePath, triangles, StlVariant::Binary, swapYZ);
}

void SaveTrianglesToSTL(const std::filesystem::path& filePath, std::span<const WorldTriangle> triangles, StlVariant variant,
                        bool swapYZ)
{
    if (variant == StlVariant::Ascii) {
        auto file = OpenToWrite(filePath, std::ios::out, " to write triangle data in ASCII format.");
        WriteAsciiTriangles(file, filePath, triangles, swapYZ);
        return Close(file, filePath);
    }
    RequireBinaryTriangleCount(triangles.size());
    auto file = OpenToWrite(filePath, std::ios::out | std::ios::binary, " to write triangle data in binary format.");
    WriteBinaryTriangles(file, filePath, triangles, swapYZ);
    Close(file, filePath);
}

void SaveTrianglesToSTL(std::ostream& stream, std::span<const WorldTriangle> triangles, StlVariant variant, bool swapYZ)
{
    if (variant == StlVariant::Ascii) return WriteAsciiTriangles(stream, Unnamed, triangles, swapYZ);
    RequireBinaryTriangleCount(triangles.size());
    WriteBinaryTriangles(stream, Unnamed, triangles, swapYZ);
}

} // namespace brix
