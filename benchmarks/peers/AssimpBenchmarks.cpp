// STL files beside assimp, in one program so that the ratios come from one run: reading a million generated triangles in the binary
// variant, and writing 200,000 in the ASCII variant. Every comparison checks that both sides had the same numbers in hand.
#include "triangles/StlFiles.h"

#include <assimp/Exporter.hpp>
#include <assimp/Importer.hpp>
#include <assimp/scene.h>
#include <benchmark/benchmark.h>

#include <bit>
#include <cstdint>
#include <filesystem>
#include <random>
#include <stdexcept>
#include <string>

namespace {

using Triangles = std::vector<brix::WorldTriangle>;

/// A folder for the run, and the names of the files in it.
struct Folder
{
    Folder() { std::filesystem::create_directory(path); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path, ignored);
    }

    static std::filesystem::path File(const char* name)
    {
        static const Folder folder;
        return folder.path / name;
    }

    const std::filesystem::path path =
        std::filesystem::temp_directory_path() / ("brix-assimp-benchmarks-" + std::to_string(std::random_device{}()));
};

/// Right triangles across the axes with corners at eighths, so that six digits hold all there is to write and both sides write them.
Triangles SixDigitTriangles(std::size_t count)
{
    std::mt19937_64 random(6);
    std::uniform_int_distribution<int> eighths(-7000, 7000);
    Triangles triangles(count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::array<double, 3> corner{eighths(random) / 8.0, eighths(random) / 8.0, eighths(random) / 8.0};
        triangles[i].fill(corner);
        triangles[i][1][i % 3] += 1.25;
        triangles[i][2][(i + 1) % 3] += 0.375;
    }
    return triangles;
}

/// Triangles at any floats. Here assimp writes nine digits, and Brix six.
Triangles AnyTriangles(std::size_t count)
{
    std::mt19937_64 random(7);
    std::uniform_real_distribution<float> place(-1000, 1000);
    Triangles triangles(count);
    for (auto& triangle : triangles)
        for (auto& corner : triangle)
            for (double& coordinate : corner) coordinate = static_cast<double>(place(random));
    return triangles;
}

std::uint64_t Checksum(const Triangles& triangles)
{
    std::uint64_t sum = 0;
    for (const auto& triangle : triangles)
        for (const auto& corner : triangle)
            for (const double coordinate : corner) sum += std::bit_cast<std::uint64_t>(coordinate);
    return sum;
}

std::uint64_t Checksum(const aiScene& scene)
{
    std::uint64_t sum = 0;
    for (unsigned int m = 0; m < scene.mNumMeshes; ++m) {
        const aiMesh& mesh = *scene.mMeshes[m];
        for (unsigned int f = 0; f < mesh.mNumFaces; ++f)
            for (unsigned int c = 0; c < mesh.mFaces[f].mNumIndices; ++c)
                for (unsigned int axis = 0; axis < 3; ++axis)
                    sum += std::bit_cast<std::uint64_t>(static_cast<double>(mesh.mVertices[mesh.mFaces[f].mIndices[c]][axis]));
    }
    return sum;
}

const aiScene& Import(Assimp::Importer& importer, const std::filesystem::path& path)
{
    const aiScene* const scene = importer.ReadFile(path.string(), 0);
    if (scene == nullptr) throw std::runtime_error(importer.GetErrorString());
    return *scene;
}

std::filesystem::path BinaryFile(const Triangles& triangles)
{
    const std::filesystem::path path = Folder::File("binary.stl");
    brix::SaveTrianglesToBinarySTL(path, triangles, false);
    return path;
}

void BinaryReadBrix(benchmark::State& state)
{
    const Triangles triangles = AnyTriangles(1'000'000);
    const std::filesystem::path path = BinaryFile(triangles);
    const std::uint64_t expected = Checksum(triangles);
    for (auto _ : state) {
        Triangles loaded = brix::LoadTrianglesFromSTL(path, false);
        state.PauseTiming();
        if (Checksum(loaded) != expected) state.SkipWithError("The checksums differ.");
        loaded = {};
        state.ResumeTiming();
    }
}

void BinaryReadAssimp(benchmark::State& state)
{
    const Triangles triangles = AnyTriangles(1'000'000);
    const std::filesystem::path path = BinaryFile(triangles);
    const std::uint64_t expected = Checksum(triangles);
    for (auto _ : state) {
        Assimp::Importer importer;
        const aiScene& scene = Import(importer, path);
        state.PauseTiming();
        if (Checksum(scene) != expected) state.SkipWithError("The checksums differ.");
        importer.FreeScene();
        state.ResumeTiming();
    }
}

void AsciiWriteBrix(benchmark::State& state, Triangles (*generate)(std::size_t))
{
    const Triangles triangles = generate(200'000);
    const std::filesystem::path path = Folder::File("brix.stl");
    for (auto _ : state) {
        state.PauseTiming();
        std::filesystem::remove(path);
        state.ResumeTiming();
        brix::SaveTrianglesToAsciiSTL(path, triangles, false);
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(std::filesystem::file_size(path)));
}

void AsciiWriteAssimp(benchmark::State& state, Triangles (*generate)(std::size_t))
{
    const Triangles triangles = generate(200'000);
    Assimp::Importer importer;
    const aiScene& scene = Import(importer, BinaryFile(triangles));
    const std::filesystem::path path = Folder::File("assimp.stl");
    for (auto _ : state) {
        state.PauseTiming();
        std::filesystem::remove(path);
        state.ResumeTiming();
        Assimp::Exporter exporter;
        if (exporter.Export(&scene, "stl", path.string()) != aiReturn_SUCCESS) state.SkipWithError(exporter.GetErrorString());
    }
    if (generate == SixDigitTriangles && Checksum(brix::LoadTrianglesFromSTL(path, false)) != Checksum(triangles))
        state.SkipWithError("More than six digits would have been needed.");
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(std::filesystem::file_size(path)));
}

BENCHMARK(BinaryReadBrix)->Unit(benchmark::kMillisecond);
BENCHMARK(BinaryReadAssimp)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(AsciiWriteBrix, SixDigits, SixDigitTriangles)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(AsciiWriteAssimp, SixDigits, SixDigitTriangles)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(AsciiWriteBrix, AnyFloats, AnyTriangles)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(AsciiWriteAssimp, AnyFloats, AnyTriangles)->Unit(benchmark::kMillisecond);

} // namespace
