// What BrixCLI.Benchmarks measures, done by the engine alone: the same triangles, the same output.
#include <brix.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>

namespace {

// A gently bent sheet of one by one, two triangles per square.
std::vector<brix::WorldTriangle> Surface(int squares)
{
    const auto corner = [&](int i, int j) {
        const double x = static_cast<double>(i) / squares;
        const double y = static_cast<double>(j) / squares;
        return std::array<double, 3>{x, y, 0.25 * x * x + 0.125 * y * (1 - y)};
    };
    std::vector<brix::WorldTriangle> triangles;
    for (int i = 0; i < squares; ++i) {
        for (int j = 0; j < squares; ++j) {
            triangles.push_back({corner(i, j), corner(i + 1, j), corner(i, j + 1)});
            triangles.push_back({corner(i + 1, j), corner(i + 1, j + 1), corner(i, j + 1)});
        }
    }
    return triangles;
}

void Print(const char* name, double value) { std::printf("%s %.3f\n", name, value); }

double MillisecondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

brix::VoxelModel<bool> Voxelize(const brix::Axes& axes, const std::vector<brix::WorldTriangle>& triangles)
{
    const brix::Extents extents = brix::DetectTriangleExtents(axes, triangles);
    brix::TriangleModel filed(extents);
    filed.AddWorldTriangles(triangles);
    brix::VoxelModel<bool> model(extents, 5);
    brix::VoxelizeTriangleModel(model, filed);
    return model;
}

} // namespace

int main(int argc, char** argv)
{
    const int rounds = argc > 1 ? std::atoi(argv[1]) : 5;
    const std::vector<brix::WorldTriangle> triangles = Surface(708);
    const brix::Axes axes(1.0 / 26, {0, 0, 0}, 0, 5);
    for (int i = 0; i < rounds; ++i) {
        const auto start = std::chrono::steady_clock::now();
        const brix::VoxelModel<bool> model = Voxelize(axes, triangles);
        const double voxelized = MillisecondsSince(start);
        std::vector<brix::WorldTriangle> surface;
        brix::TessellateVoxelModel(surface, model, 5);
        const double all = MillisecondsSince(start);
        Print("triangles-there", static_cast<double>(triangles.size()));
        Print("triangles-back", static_cast<double>(surface.size()));
        Print("voxelize", voxelized);
        Print("voxelize-and-tessellate", all);
    }
}
