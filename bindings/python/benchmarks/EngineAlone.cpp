// What compare.py measures of voxelization, done by the engine alone: milliseconds of each round, for triangles and for a mesh.
//   EngineAlone FILE.stl VOXEL_WIDTH_AT_LEVEL_4 ROUNDS
#include <brix.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace {

template <class Work> void Measure(const char* name, const Work& work)
{
    const auto start = std::chrono::steady_clock::now();
    const brix::VoxelModel<bool> model = work();
    const std::chrono::duration<double, std::milli> time = std::chrono::steady_clock::now() - start;
    std::printf("%s %.3f %lld\n", name, time.count(), static_cast<long long>(brix::CountFilled(model, 4)));
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 4) return 2;
    const std::vector<brix::WorldTriangle> triangles = brix::LoadTrianglesFromSTL(argv[1], false);
    const brix::TriangleMesh mesh(triangles);
    const std::vector<std::array<double, 3>>& vertices = mesh.VerticesRef();
    std::vector<std::array<std::uint32_t, 3>> faces;
    for (const auto& [a, b, c] : mesh.IndexedTrianglesRef())
        faces.push_back({static_cast<std::uint32_t>(a), static_cast<std::uint32_t>(b), static_cast<std::uint32_t>(c)});
    const brix::Axes axes(16 * std::atof(argv[2]), {0, 0, 0}, 0, 4);
    for (int round = 0; round < std::atoi(argv[3]); ++round) {
        Measure("triangles", [&] { return brix::Voxelize(axes, triangles, 4); });
        Measure("mesh", [&] { return brix::Voxelize(axes, vertices, faces, 4); });
    }
}
