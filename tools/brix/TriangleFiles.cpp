#include "TriangleFiles.h"

#include "OutputFile.h"
#include "Progress.h"
#include "Report.h"

#include <brix/triangles/StlFormats.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

namespace brix::tools {
namespace {

// Passes bytes on, counted.
class CountedBytes : public std::streambuf
{
public:
    explicit CountedBytes(std::streambuf& source) : source_(source) {}

    std::int64_t Count() const { return count_; }

protected:
    std::streamsize xsgetn(char* bytes, std::streamsize wanted) override
    {
        const std::streamsize given = source_.sgetn(bytes, wanted);
        count_ += given;
        return given;
    }

private:
    std::streambuf& source_;
    std::int64_t count_ = 0;
};

// A pipe has no size.
std::uintmax_t SizeOrZero(const std::filesystem::path& filePath)
{
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(filePath, error);
    return error ? 0 : size;
}

StlContent ReadStl(std::streambuf& source, const std::filesystem::path& name, std::uintmax_t size, bool swapYZ)
{
    const Progress progress("reading " + name.string());
    CountedBytes bytes(source);
    std::istream stream(&bytes);
    ByteReader reader(stream, size);
    const bool isAscii = IsAsciiStl(reader, name);
    std::vector<WorldTriangle> triangles = (isAscii ? ReadAsciiTriangles : ReadBinaryTriangles)(reader, name, swapYZ);
    return {std::move(triangles), isAscii, bytes.Count()};
}

} // namespace

StlContent LoadStl(const std::filesystem::path& input, bool swapYZ)
{
    if (input == "-") return ReadStl(*std::cin.rdbuf(), "standard input", 0, swapYZ);
    std::filebuf file;
    if (file.open(input, std::ios::in | std::ios::binary) == nullptr)
        throw std::runtime_error("Failed to open STL file " + Quoted(input) + ": " + SystemReason(errno) + ".");
    return ReadStl(file, input, SizeOrZero(input), swapYZ);
}

std::vector<WorldTriangle> LoadUsableTriangles(const std::filesystem::path& input, bool swapYZ)
{
    std::vector<WorldTriangle> triangles = LoadStl(input, swapYZ).triangles;
    if (triangles.empty()) throw std::runtime_error("The file " + Quoted(input) + " holds no triangles.");
    if (const std::size_t count = CountNotFinite(triangles); count > 0)
        throw std::runtime_error("The file " + Quoted(input) + " holds " + std::to_string(count) +
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

double StlBytes(double triangleCount, bool ascii) { return ascii ? 260 * triangleCount : 84 + 50 * triangleCount; }

void SaveTriangles(const std::filesystem::path& output, const std::vector<WorldTriangle>& triangles, bool ascii, bool swapYZ)
{
    if (!ascii) RequireBinaryTriangleCount(triangles.size());
    OutputFile file(output, StlBytes(static_cast<double>(triangles.size()), ascii));
    try {
        (ascii ? WriteAsciiTriangles : WriteBinaryTriangles)(file.Stream(), output, triangles, swapYZ);
    } catch (const std::runtime_error&) {
        if (!file.Stream()) throw file.Failure(); // it knows the system's reason
        throw;
    }
    file.Commit();
    ReportFile(output, {{"format", std::string(ascii ? "ASCII STL" : "binary STL")},
                        {"bytes", file.BytesWritten()},
                        {"triangles", triangles.size()}});
}

} // namespace brix::tools
