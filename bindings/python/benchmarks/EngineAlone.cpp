// What compare.py measures of voxelization, done by the engine alone: milliseconds of processor time, for triangles and a mesh.
//   EngineAlone FILE.stl VOXEL_WIDTH_AT_LEVEL_4 ROUNDS
#include <brix.h>

#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

template <class Work> void Measure(const char* name, const Work& work)
{
    const std::clock_t start = std::clock();
    const brix::VoxelModel<bool> model = work();
    const double milliseconds = 1000.0 * static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    std::printf("%s %.3f %lld\n", name, milliseconds, static_cast<long long>(brix::CountFilled(model, 4)));
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
