// STL files: the triangles they are made of, the folder they stand in, and how reading and writing them is measured.
#pragma once

#include "Measure.h"
#include "triangles/StlFiles.h"

#include <bit>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>

namespace brix::benchmarks {

using Path = std::filesystem::path;
using Triangles = std::vector<WorldTriangle>;

inline constexpr std::size_t BinaryTriangles = 1'000'000;
inline constexpr std::size_t AsciiTriangles = 200'000;

/// Small triangles all over a cube of 2000 units. Coordinates are floats, so that a binary file keeps them.
inline Triangles GenerateSmallTriangles(std::size_t count)
{
    std::mt19937_64 random(5);
    std::uniform_real_distribution<float> place(-1000, 1000);
    std::uniform_real_distribution<float> side(-2, 2);
    Triangles triangles(count);
    for (WorldTriangle& triangle : triangles) {
        const std::array<float, 3> middle{place(random), place(random), place(random)};
        for (auto& corner : triangle) {
            for (std::size_t axis = 0; axis < 3; ++axis) corner[axis] = static_cast<double>(middle[axis] + side(random));
        }
    }
    return triangles;
}

/// A file in a folder below the system's temporary folder that exists as long as the program runs.
inline Path TemporaryFile(const std::string& name)
{
    struct Folder
    {
        Path path = std::filesystem::temp_directory_path() / ("brix-benchmarks-" + std::to_string(std::random_device{}()));

        Folder() { std::filesystem::create_directory(path); }
        Folder(const Folder&) = delete;
        Folder& operator=(const Folder&) = delete;
        ~Folder()
        {
            std::error_code ignored;
            std::filesystem::remove_all(path, ignored);
        }
    };
    static const Folder folder;
    return folder.path / name;
}

inline std::string BytesOf(const Path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// The sum of the bits of all numbers.
inline std::int64_t Checksum(const Triangles& triangles)
{
    std::uint64_t sum = 0;
    for (const WorldTriangle& triangle : triangles) {
        for (const auto& corner : triangle) {
            for (const double coordinate : corner) sum += std::bit_cast<std::uint64_t>(coordinate);
        }
    }
    return static_cast<std::int64_t>(sum);
}

inline void SetBytes(benchmark::State& state, const Path& path)
{
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(std::filesystem::file_size(path)));
}

/// Times read(path); checksum(result) must be that of `triangles`.
template <class Read, class ChecksumOf>
void MeasureReading(benchmark::State& state, const Path& path, const Triangles& triangles, const Read& read,
                    const ChecksumOf& checksumOf)
{
    const std::int64_t expected = Checksum(triangles);
    MeasureResult(
        state, [&] { return read(path); },
        [&](const auto& result) { RequireEqual("The checksum of the numbers read", checksumOf(result), expected); });
    SetBytes(state, path);
}

/// Times write(path), where no file is each time.
template <class Write> void MeasureWriting(benchmark::State& state, const Path& path, const Write& write)
{
    for (auto _ : state) {
        state.PauseTiming();
        std::filesystem::remove(path);
        state.ResumeTiming();
        write(path);
    }
    SetBytes(state, path);
}

} // namespace brix::benchmarks
