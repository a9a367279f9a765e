// STL files read leniently, and the count over their surface: a million triangles of a torus, closed, in the order in which a
// program writes a surface.
//
//   ReadStl/binary, /ascii   beside ReadStlBaseline/..., the strict reader, which takes no notice of damage
//   CountMesh                beside CountMeshBaseline, vertices and edges in the standard library's hash tables;
//                            and beside ReadStl/binary: the count may take half as long again as reading
#include "StlMeasures.h"
#include "triangles/StlReader.h"

#include <cmath>
#include <numbers>
#include <unordered_map>

namespace brix::benchmarks {
namespace {

using State = benchmark::State;
using Point = std::array<double, 3>;

Triangles Torus()
{
    constexpr int around = 1000;
    constexpr int across = 500;
    const auto narrowed = [](double number) { return static_cast<double>(static_cast<float>(number)); };
    const auto point = [&](int i, int j) {
        const double u = 2 * std::numbers::pi * (i % around) / around;
        const double v = 2 * std::numbers::pi * (j % across) / across;
        const double radius = 100 + 30 * std::cos(v);
        return Point{narrowed(radius * std::cos(u)), narrowed(radius * std::sin(u)), narrowed(30 * std::sin(v))};
    };
    Triangles triangles;
    for (int i = 0; i < around; ++i)
        for (int j = 0; j < across; ++j) {
            triangles.push_back({point(i, j), point(i + 1, j), point(i + 1, j + 1)});
            triangles.push_back({point(i, j), point(i + 1, j + 1), point(i, j + 1)});
        }
    return triangles;
}

Path TorusFile(StlVariant variant)
{
    const Path path = TemporaryFile(variant == StlVariant::Ascii ? "torus-ascii.stl" : "torus-binary.stl");
    if (!std::filesystem::exists(path)) SaveTrianglesToSTL(path, Torus(), variant, false);
    return path;
}

void Read(State& state, StlVariant variant)
{
    const Path path = TorusFile(variant);
    MeasureReading(
        state, path, LoadTrianglesFromSTL(path, false), [](const Path& file) { return ReadStl(file); },
        [](const StlImport& import) { return Checksum(import.triangles); });
}

void ReadStrictly(State& state, StlVariant variant)
{
    const Path path = TorusFile(variant);
    MeasureReading(
        state, path, LoadTrianglesFromSTL(path, false), [](const Path& file) { return LoadTrianglesFromSTL(file, false); },
        Checksum);
}

struct PointHash
{
    std::size_t operator()(const Point& point) const
    {
        std::size_t hash = 0;
        for (const double coordinate : point) hash = 31 * hash + std::hash<double>()(coordinate);
        return hash;
    }
};

/// Vertices, edges and open edges, which is less than CountMesh counts.
std::array<std::uint64_t, 3> CountInHashTables(const Triangles& triangles)
{
    std::unordered_map<Point, std::uint64_t, PointHash> vertices;
    std::unordered_map<std::uint64_t, int> edges;
    for (const WorldTriangle& triangle : triangles) {
        std::array<std::uint64_t, 3> v{};
        for (std::size_t c = 0; c < 3; ++c) v[c] = vertices.emplace(triangle[c], vertices.size()).first->second;
        for (std::size_t c = 0; c < 3; ++c) ++edges[std::min(v[c], v[(c + 1) % 3]) << 32 | std::max(v[c], v[(c + 1) % 3])];
    }
    const auto open = std::count_if(edges.begin(), edges.end(), [](const auto& edge) { return edge.second == 1; });
    return {vertices.size(), edges.size(), static_cast<std::uint64_t>(open)};
}

template <class Count> void MeasureCount(State& state, const Count& count)
{
    const Triangles triangles = Torus();
    MeasureResult(
        state, [&] { return count(triangles); },
        [](const std::array<std::uint64_t, 3>& counts) {
            if (counts != std::array<std::uint64_t, 3>{500'000, 1'500'000, 0}) throw std::logic_error("Another torus.");
        });
}

void CountMeshOfTorus(State& state)
{
    MeasureCount(state, [](const Triangles& triangles) {
        const MeshReport report = CountMesh(triangles);
        return std::array{report.vertices, report.edges, report.openEdges};
    });
}
void CountMeshBaseline(State& state) { MeasureCount(state, CountInHashTables); }

BENCHMARK_CAPTURE(Read, binary, StlVariant::Binary)->Name("ReadStl/binary")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ReadStrictly, binary, StlVariant::Binary)->Name("ReadStlBaseline/binary")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(Read, ascii, StlVariant::Ascii)->Name("ReadStl/ascii")->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ReadStrictly, ascii, StlVariant::Ascii)->Name("ReadStlBaseline/ascii")->Unit(benchmark::kMillisecond);
BENCHMARK(CountMeshOfTorus)->Name("CountMesh")->Unit(benchmark::kMillisecond);
BENCHMARK(CountMeshBaseline)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace brix::benchmarks
