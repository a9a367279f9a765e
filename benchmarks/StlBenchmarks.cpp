// Reading and writing STL files: a million generated triangles in the binary variant, 200,000 in the ASCII variant, each beside
// the least that has to be done for it. Files go to a folder of their own below the system's temporary folder.
#include "triangles/StlFiles.h"

#include <benchmark/benchmark.h>

#include <array>
#include <bit>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <string_view>

namespace {

using brix::WorldTriangle;
using Triangles = std::vector<WorldTriangle>;

constexpr std::size_t binaryCount = 1'000'000;
constexpr std::size_t asciiCount = 200'000;

/// Small triangles all over a cube of 2000 units; coordinates are floats, so that a binary file keeps them.
Triangles GeneratedTriangles(std::size_t count)
{
    std::mt19937_64 random(5);
    std::uniform_real_distribution<float> place(-1000, 1000);
    std::uniform_real_distribution<float> side(-2, 2);
    Triangles triangles(count);
    for (WorldTriangle& triangle : triangles) {
        const std::array<float, 3> middle{place(random), place(random), place(random)};
        for (auto& corner : triangle)
            for (std::size_t axis = 0; axis < 3; ++axis) corner[axis] = static_cast<double>(middle[axis] + side(random));
    }
    return triangles;
}

/// Files that exist as long as the program runs.
class Files
{
public:
    Files()
    {
        std::filesystem::create_directory(folder_);
        brix::SaveTrianglesToBinarySTL(binary, GeneratedTriangles(binaryCount), false);
        brix::SaveTrianglesToAsciiSTL(ascii, GeneratedTriangles(asciiCount), false);
    }
    Files(const Files&) = delete;
    Files& operator=(const Files&) = delete;
    ~Files()
    {
        std::error_code ignored;
        std::filesystem::remove_all(folder_, ignored);
    }

    static const Files& Get()
    {
        static const Files files;
        return files;
    }

private:
    std::filesystem::path folder_ =
        std::filesystem::temp_directory_path() / ("brix-stl-benchmarks-" + std::to_string(std::random_device{}()));

public:
    const std::filesystem::path binary = folder_ / "binary.stl";
    const std::filesystem::path ascii = folder_ / "ascii.stl";
    const std::filesystem::path written = folder_ / "written.stl";
    const std::filesystem::path expected = folder_ / "expected.stl";
};

std::uint64_t Checksum(const Triangles& triangles)
{
    std::uint64_t sum = 0;
    for (const WorldTriangle& triangle : triangles)
        for (const auto& corner : triangle)
            for (const double coordinate : corner) sum += std::bit_cast<std::uint64_t>(coordinate);
    return sum;
}

std::string WholeFile(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::unique_ptr<char[]> RawBytes(const std::filesystem::path& path, std::size_t& size)
{
    size = static_cast<std::size_t>(std::filesystem::file_size(path));
    auto bytes = std::make_unique_for_overwrite<char[]>(size);
    std::ifstream(path, std::ios::binary).read(bytes.get(), static_cast<std::streamsize>(size));
    return bytes;
}

/// The raw records in one read, widened into a list of the right length.
Triangles ReadAndWiden(const std::filesystem::path& path)
{
    std::size_t size = 0;
    const auto bytes = RawBytes(path, size);
    Triangles triangles((size - 84) / 50);
    const char* record = bytes.get() + 84;
    for (WorldTriangle& triangle : triangles) {
        std::array<float, 9> numbers{};
        std::memcpy(numbers.data(), record + 12, sizeof numbers);
        for (std::size_t i = 0; i < 9; ++i) triangle[i / 3][i % 3] = static_cast<double>(numbers[i]);
        record += 50;
    }
    return triangles;
}

/// The checksum of all numbers of vertex lines: the whole file in one read, its tokens, from_chars for every number.
std::uint64_t ScanNumbers(const std::filesystem::path& path)
{
    std::size_t size = 0;
    const auto bytes = RawBytes(path, size);
    const std::string_view text(bytes.get(), size);
    std::uint64_t sum = 0;
    int numbersToCome = 0;
    for (std::size_t at = 0; (at = text.find_first_not_of(" \n", at)) != std::string_view::npos;) {
        const std::size_t end = std::min(text.find_first_of(" \n", at), size);
        if (numbersToCome > 0) {
            double number = 0;
            std::from_chars(text.data() + at, text.data() + end, number);
            sum += std::bit_cast<std::uint64_t>(number);
            --numbersToCome;
        } else if (text.substr(at, end - at) == "vertex") {
            numbersToCome = 3;
        }
        at = end;
    }
    return sum;
}

/// The same scan over characters instead of library searches, for a baseline that is not beaten by its own tokens.
std::uint64_t ScanNumbersByHand(const std::filesystem::path& path)
{
    std::size_t size = 0;
    const auto bytes = RawBytes(path, size);
    const char* at = bytes.get();
    const char* const end = at + size;
    std::uint64_t sum = 0;
    int numbersToCome = 0;
    while (true) {
        while (at != end && (*at == ' ' || *at == '\n')) ++at;
        if (at == end) return sum;
        const char* const first = at;
        if (numbersToCome > 0) {
            double number = 0;
            at = std::from_chars(at, end, number).ptr;
            sum += std::bit_cast<std::uint64_t>(number);
            --numbersToCome;
        } else {
            while (at != end && *at != ' ' && *at != '\n') ++at;
            if (at - first == 6 && std::memcmp(first, "vertex", 6) == 0) numbersToCome = 3;
        }
    }
}

template <class Read> void MeasureReading(benchmark::State& state, const std::filesystem::path& path, Read read)
{
    const std::uint64_t expected = Checksum(brix::LoadTrianglesFromSTL(path, false));
    for (auto _ : state) {
        auto result = read(path);
        benchmark::DoNotOptimize(result);
        state.PauseTiming();
        if constexpr (std::is_same_v<decltype(result), std::uint64_t>) {
            if (result != expected) state.SkipWithError("The checksums differ.");
        } else {
            if (Checksum(result) != expected) state.SkipWithError("The checksums differ.");
            result = {};
        }
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(std::filesystem::file_size(path)));
}

void BinaryRead(benchmark::State& state)
{
    MeasureReading(state, Files::Get().binary, [](const auto& path) { return brix::LoadTrianglesFromSTL(path, false); });
}

void BinaryReadBaselineRawRecordsWidened(benchmark::State& state) { MeasureReading(state, Files::Get().binary, ReadAndWiden); }

void AsciiRead(benchmark::State& state)
{
    MeasureReading(state, Files::Get().ascii, [](const auto& path) { return brix::LoadTrianglesFromSTL(path, false); });
}

void AsciiReadBaselineFromChars(benchmark::State& state) { MeasureReading(state, Files::Get().ascii, ScanNumbers); }
void AsciiReadBaselineFromCharsByHand(benchmark::State& state) { MeasureReading(state, Files::Get().ascii, ScanNumbersByHand); }

/// Writes to a fresh file each time; what is written must equal the bytes of `expected`.
template <class Write> void MeasureWriting(benchmark::State& state, const std::filesystem::path& expected, Write write)
{
    const std::filesystem::path& path = Files::Get().written;
    for (auto _ : state) {
        state.PauseTiming();
        std::filesystem::remove(path);
        state.ResumeTiming();
        write(path);
    }
    if (WholeFile(path) != WholeFile(expected)) state.SkipWithError("The files differ.");
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(std::filesystem::file_size(path)));
}

void BinaryWrite(benchmark::State& state)
{
    const Triangles triangles = brix::LoadTrianglesFromSTL(Files::Get().binary, false);
    MeasureWriting(state, Files::Get().binary, [&](const auto& path) { brix::SaveTrianglesToBinarySTL(path, triangles, false); });
}

void BinaryWriteBaselinePreparedBuffer(benchmark::State& state)
{
    const std::string bytes = WholeFile(Files::Get().binary);
    MeasureWriting(state, Files::Get().binary, [&](const auto& path) {
        std::ofstream file(path, std::ios::binary);
        file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    });
}

void AsciiWrite(benchmark::State& state)
{
    const Triangles triangles = GeneratedTriangles(asciiCount);
    MeasureWriting(state, Files::Get().ascii, [&](const auto& path) { brix::SaveTrianglesToAsciiSTL(path, triangles, false); });
}

void WriteWithStream(const std::filesystem::path& path, const Triangles& triangles)
{
    std::ofstream file(path);
    const auto writePoint = [&](const std::array<double, 3>& p) { file << ' ' << p[0] << ' ' << p[1] << ' ' << p[2] << '\n'; };
    file << "solid Exported-by-BRIX\n";
    for (const WorldTriangle& triangle : triangles) {
        file << "    facet normal";
        writePoint(brix::WorldTriangleNormal(triangle));
        file << "        outer loop\n";
        for (const auto& corner : triangle) {
            file << "            vertex";
            writePoint(corner);
        }
        file << "        endloop\n    endfacet\n";
    }
    file << "endsolid Exported-by-BRIX\n";
}

void AsciiWriteBaselineStream(benchmark::State& state)
{
    const Triangles triangles = GeneratedTriangles(asciiCount);
    MeasureWriting(state, Files::Get().ascii, [&](const auto& path) { WriteWithStream(path, triangles); });
}

BENCHMARK(BinaryRead)->Unit(benchmark::kMillisecond);
BENCHMARK(BinaryReadBaselineRawRecordsWidened)->Unit(benchmark::kMillisecond);
BENCHMARK(AsciiRead)->Unit(benchmark::kMillisecond);
BENCHMARK(AsciiReadBaselineFromChars)->Unit(benchmark::kMillisecond);
BENCHMARK(AsciiReadBaselineFromCharsByHand)->Unit(benchmark::kMillisecond);
BENCHMARK(BinaryWrite)->Unit(benchmark::kMillisecond);
BENCHMARK(BinaryWriteBaselinePreparedBuffer)->Unit(benchmark::kMillisecond);
BENCHMARK(AsciiWrite)->Unit(benchmark::kMillisecond);
BENCHMARK(AsciiWriteBaselineStream)->Unit(benchmark::kMillisecond);

} // namespace
