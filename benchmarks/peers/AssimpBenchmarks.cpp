// STL files beside assimp: reading a million triangles in the binary variant, and writing 200,000 in the ASCII variant.
//
//   WriteAsciiStl/six_digits   corners at eighths, triangles across the axes: six digits hold every number, and both
//                              sides write them
//   WriteAsciiStl/any_floats   assimp writes nine digits here, Brix six
#include "StlMeasures.h"

#include <assimp/Exporter.hpp>
#include <assimp/Importer.hpp>
#include <assimp/scene.h>

namespace brix::benchmarks {
namespace {

using State = benchmark::State;

Triangles GenerateSixDigitTriangles(std::size_t count)
{
    std::mt19937_64 random(6);
    std::uniform_int_distribution<int> eighths(-7000, 7000);
    Triangles triangles(count);
    for (std::size_t i = 0; i < count; ++i) {
        triangles[i].fill({eighths(random) / 8.0, eighths(random) / 8.0, eighths(random) / 8.0});
        triangles[i][1][i % 3] += 1.25;
        triangles[i][2][(i + 1) % 3] += 0.375;
    }
    return triangles;
}

std::unique_ptr<Assimp::Importer> Import(const Path& path)
{
    auto importer = std::make_unique<Assimp::Importer>();
    importer->ReadFile(path.string(), 0);
    return importer;
}

std::int64_t ChecksumOfScene(const std::unique_ptr<Assimp::Importer>& importer)
{
    Triangles triangles;
    const aiScene& scene = *importer->GetScene();
    for (unsigned int m = 0; m < scene.mNumMeshes; ++m) {
        const aiMesh& mesh = *scene.mMeshes[m];
        for (unsigned int f = 0; f < mesh.mNumFaces; ++f) {
            WorldTriangle& triangle = triangles.emplace_back();
            for (unsigned int c = 0; c < 3; ++c) {
                const aiVector3D& vertex = mesh.mVertices[mesh.mFaces[f].mIndices[c]];
                triangle[c] = {static_cast<double>(vertex.x), static_cast<double>(vertex.y), static_cast<double>(vertex.z)};
            }
        }
    }
    return Checksum(triangles);
}

/// The nearest floats, which assimp computes with.
Triangles Narrowed(Triangles triangles)
{
    for (WorldTriangle& triangle : triangles) {
        for (auto& corner : triangle) {
            for (double& coordinate : corner) coordinate = static_cast<double>(static_cast<float>(coordinate));
        }
    }
    return triangles;
}

Path SavedBinary(const Triangles& triangles)
{
    SaveTrianglesToBinarySTL(TemporaryFile("binary.stl"), triangles, false);
    return TemporaryFile("binary.stl");
}

void ReadWithBrix(State& state)
{
    const Triangles triangles = GenerateSmallTriangles(BinaryTriangles);
    const auto load = [](const Path& path) { return LoadTrianglesFromSTL(path, false); };
    MeasureReading(state, SavedBinary(triangles), triangles, load, Checksum);
}

void ReadWithAssimp(State& state)
{
    const Triangles triangles = GenerateSmallTriangles(BinaryTriangles);
    MeasureReading(state, SavedBinary(triangles), triangles, Import, ChecksumOfScene);
}

void WriteWithBrix(State& state, Triangles (*generate)(std::size_t))
{
    const Triangles triangles = generate(AsciiTriangles);
    MeasureWriting(state, TemporaryFile("brix.stl"), [&](const Path& path) { SaveTrianglesToAsciiSTL(path, triangles, false); });
}

void WriteWithAssimp(State& state, Triangles (*generate)(std::size_t))
{
    const Triangles triangles = generate(AsciiTriangles);
    const auto importer = Import(SavedBinary(triangles));
    MeasureWriting(state, TemporaryFile("assimp.stl"), [&](const Path& path) {
        Assimp::Exporter exporter;
        if (exporter.Export(importer->GetScene(), "stl", path.string()) != aiReturn_SUCCESS) state.SkipWithError("No export.");
    });
    RequireEqual("The checksum of what assimp wrote",
                 Checksum(Narrowed(LoadTrianglesFromSTL(TemporaryFile("assimp.stl"), false))), Checksum(triangles));
}

BENCHMARK(ReadWithBrix)->Name("ReadBinaryStl/brix")->Unit(benchmark::kMillisecond);
BENCHMARK(ReadWithAssimp)->Name("ReadBinaryStl/assimp")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(WriteWithBrix, six, GenerateSixDigitTriangles)
    ->Name("WriteAsciiStl/six_digits/brix")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(WriteWithAssimp, six, GenerateSixDigitTriangles)
    ->Name("WriteAsciiStl/six_digits/assimp")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(WriteWithBrix, any, GenerateSmallTriangles)
    ->Name("WriteAsciiStl/any_floats/brix")
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(WriteWithAssimp, any, GenerateSmallTriangles)
    ->Name("WriteAsciiStl/any_floats/assimp")
    ->Unit(benchmark::kMillisecond);

} // namespace
} // namespace brix::benchmarks
