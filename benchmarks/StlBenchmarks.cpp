// STL files of a million triangles in the binary variant and of 200,000 in the ASCII variant, each beside the least that has to
// be done for them, or the plainest way to do it:
//
//   ReadBinaryStl    beside   ReadBinaryStlBaseline    the file in one read, its records widened to doubles
//   ReadAsciiStl     beside   ReadAsciiStlBaseline     the file in one read, from_chars on every number of a vertex line
//   WriteBinaryStl   beside   WriteBinaryStlBaseline   a prepared buffer in one write
//   WriteAsciiStl    beside   WriteAsciiStlBaseline    the standard stream's operators
//
// The baselines keep no list of triangles where they need none. All files are read from and written to the system's page cache.
#include "StlMeasures.h"

#include <charconv>
#include <cstring>
#include <memory>
#include <string_view>

namespace brix::benchmarks {
namespace {

using State = benchmark::State;

const Path& BinaryFile()
{
    static const Path path = [] {
        SaveTrianglesToBinarySTL(TemporaryFile("binary.stl"), GenerateSmallTriangles(BinaryTriangles), false);
        return TemporaryFile("binary.stl");
    }();
    return path;
}

const Path& AsciiFile()
{
    static const Path path = [] {
        SaveTrianglesToAsciiSTL(TemporaryFile("ascii.stl"), GenerateSmallTriangles(AsciiTriangles), false);
        return TemporaryFile("ascii.stl");
    }();
    return path;
}

Triangles Load(const Path& path) { return LoadTrianglesFromSTL(path, false); }

struct RawBytes
{
    std::size_t size;
    std::unique_ptr<char[]> bytes = std::make_unique_for_overwrite<char[]>(size);
};

RawBytes ReadRawBytes(const Path& path)
{
    RawBytes raw{static_cast<std::size_t>(std::filesystem::file_size(path))};
    std::ifstream(path, std::ios::binary).read(raw.bytes.get(), static_cast<std::streamsize>(raw.size));
    return raw;
}

Triangles ReadAndWiden(const Path& path)
{
    const RawBytes raw = ReadRawBytes(path);
    Triangles triangles((raw.size - 84) / 50);
    const char* record = raw.bytes.get() + 84;
    for (WorldTriangle& triangle : triangles) {
        std::array<float, 9> numbers{};
        std::memcpy(numbers.data(), record + 12, sizeof numbers);
        for (std::size_t i = 0; i < 9; ++i) triangle[i / 3][i % 3] = static_cast<double>(numbers[i]);
        record += 50;
    }
    return triangles;
}

/// The checksum of the numbers that follow the word "vertex".
std::int64_t ScanNumbers(const Path& path)
{
    const RawBytes raw = ReadRawBytes(path);
    const char* at = raw.bytes.get();
    const char* const end = at + raw.size;
    std::uint64_t sum = 0;
    int numbersToCome = 0;
    while (true) {
        while (at != end && (*at == ' ' || *at == '\n')) ++at;
        if (at == end) return static_cast<std::int64_t>(sum);
        if (numbersToCome > 0) {
            double number = 0;
            at = std::from_chars(at, end, number).ptr;
            sum += std::bit_cast<std::uint64_t>(number);
            --numbersToCome;
        } else {
            const char* const first = at;
            while (at != end && *at != ' ' && *at != '\n') ++at;
            if (std::string_view(first, static_cast<std::size_t>(at - first)) == "vertex") numbersToCome = 3;
        }
    }
}

void WriteWithStream(const Path& path, const Triangles& triangles)
{
    std::ofstream file(path);
    const auto writePoint = [&](const char* start, const std::array<double, 3>& p) {
        file << start << ' ' << p[0] << ' ' << p[1] << ' ' << p[2] << '\n';
    };
    file << "solid Exported-by-BRIX\n";
    for (const WorldTriangle& triangle : triangles) {
        writePoint("    facet normal", WorldTriangleNormal(triangle));
        file << "        outer loop\n";
        for (const auto& corner : triangle) writePoint("            vertex", corner);
        file << "        endloop\n    endfacet\n";
    }
    file << "endsolid Exported-by-BRIX\n";
}

/// Times write(path), which has to give the bytes of a file that is there.
template <class Write> void MeasureWritingLike(State& state, const Path& expected, const Write& write)
{
    const Path path = TemporaryFile("written.stl");
    MeasureWriting(state, path, write);
    if (BytesOf(path) != BytesOf(expected)) state.SkipWithError("What was written differs.");
}

void ReadBinaryStl(State& state) { MeasureReading(state, BinaryFile(), GenerateSmallTriangles(BinaryTriangles), Load, Checksum); }
void ReadBinaryStlBaseline(State& state)
{
    MeasureReading(state, BinaryFile(), GenerateSmallTriangles(BinaryTriangles), ReadAndWiden, Checksum);
}

void ReadAsciiStl(State& state) { MeasureReading(state, AsciiFile(), Load(AsciiFile()), Load, Checksum); }
void ReadAsciiStlBaseline(State& state)
{
    MeasureReading(state, AsciiFile(), Load(AsciiFile()), ScanNumbers, [](std::int64_t checksum) { return checksum; });
}

void WriteBinaryStl(State& state)
{
    const Triangles triangles = GenerateSmallTriangles(BinaryTriangles);
    MeasureWritingLike(state, BinaryFile(), [&](const Path& path) { SaveTrianglesToBinarySTL(path, triangles, false); });
}
void WriteBinaryStlBaseline(State& state)
{
    const std::string bytes = BytesOf(BinaryFile());
    MeasureWritingLike(state, BinaryFile(), [&](const Path& path) {
        std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    });
}

void WriteAsciiStl(State& state)
{
    const Triangles triangles = GenerateSmallTriangles(AsciiTriangles);
    MeasureWritingLike(state, AsciiFile(), [&](const Path& path) { SaveTrianglesToAsciiSTL(path, triangles, false); });
}
void WriteAsciiStlBaseline(State& state)
{
    const Triangles triangles = GenerateSmallTriangles(AsciiTriangles);
    MeasureWritingLike(state, AsciiFile(), [&](const Path& path) { WriteWithStream(path, triangles); });
}

BENCHMARK(ReadBinaryStl)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadBinaryStlBaseline)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadAsciiStl)->Unit(benchmark::kMillisecond);
BENCHMARK(ReadAsciiStlBaseline)->Unit(benchmark::kMillisecond);
BENCHMARK(WriteBinaryStl)->Unit(benchmark::kMillisecond);
BENCHMARK(WriteBinaryStlBaseline)->Unit(benchmark::kMillisecond);
BENCHMARK(WriteAsciiStl)->Unit(benchmark::kMillisecond);
BENCHMARK(WriteAsciiStlBaseline)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace brix::benchmarks
