// The request that most hosts make: triangles become voxels, the voxels grow, and the result becomes triangles again.
// examples/dotnet/TypicalRequest does the same from .NET and prints the same.
//
//   TypicalRequest grown.stl              a table that the sample makes itself
//   TypicalRequest grown.stl house.stl    the triangles of an STL file, in metres
#include <brix.h>

#include <exception>
#include <iomanip>
#include <iostream>

namespace {

constexpr std::int64_t finestLOD = 4; // voxels of 1.6 m at level 0, of 0.1 m at level 4

void AddBox(std::vector<brix::WorldTriangle>& triangles, const std::array<double, 3>& lower, const std::array<double, 3>& upper)
{
    // Corner c has the upper x, y or z where bit 0, 1 or 2 of c is set.
    const int corners[12][3] = {{0, 2, 1}, {1, 2, 3}, {4, 5, 6}, {5, 7, 6}, {0, 1, 4}, {1, 5, 4},
                                {2, 6, 3}, {3, 6, 7}, {0, 4, 2}, {2, 4, 6}, {1, 3, 5}, {3, 7, 5}};
    const auto corner = [&](int c) {
        return std::array<double, 3>{(c & 1) == 0 ? lower[0] : upper[0], (c & 2) == 0 ? lower[1] : upper[1],
                                     (c & 4) == 0 ? lower[2] : upper[2]};
    };
    for (const auto& c : corners) triangles.push_back({corner(c[0]), corner(c[1]), corner(c[2])});
}

// A table top on three legs and a wider one, twelve triangles each.
std::vector<brix::WorldTriangle> Table()
{
    std::vector<brix::WorldTriangle> triangles;
    AddBox(triangles, {0, 0, 0.7}, {2, 1, 0.8});
    AddBox(triangles, {0, 0, 0}, {0.1, 0.1, 0.7});
    AddBox(triangles, {1.9, 0, 0}, {2, 0.1, 0.7});
    AddBox(triangles, {0, 0.9, 0}, {0.1, 1, 0.7});
    AddBox(triangles, {1.7, 0.9, 0}, {2, 1, 0.7});
    return triangles;
}

brix::VoxelModel<bool> Voxelize(const brix::Axes& axes, const std::vector<brix::WorldTriangle>& triangles)
{
    const brix::Extents extents = brix::DetectTriangleExtents(axes, triangles);
    brix::TriangleModel triangleModel(extents);
    triangleModel.AddWorldTriangles(triangles);
    brix::VoxelModel<bool> model(extents, finestLOD);
    brix::VoxelizeTriangleModel(model, triangleModel);
    return model;
}

void Run(const char* output, const char* input)
{
    const auto triangles = input == nullptr ? Table() : brix::LoadTrianglesFromSTL(input, false);
    std::cout << "triangles: " << triangles.size() << '\n';

    const brix::Axes axes(1.6, {0.03, 0.03, 0.03}, 0, finestLOD);
    const brix::VoxelModel<bool> model = Voxelize(axes, triangles);
    for (std::int64_t lod = 0; lod <= model.FinestLOD(); ++lod) {
        std::cout << "level " << lod << ", voxels of " << std::fixed << std::setprecision(3) << axes.WorldVoxelWidth(lod) << ": "
                  << brix::CountFilled(model, lod) << '\n';
    }

    brix::VoxelModel<bool> grown = brix::AutoCrop(model);
    for (int step = 1; step <= 3; ++step) {
        grown = brix::ExpandHorizontally(grown, 3, std::nullopt, true);
        std::cout << "grown, step " << step << " of 3: " << brix::CountFilled(grown, finestLOD) << '\n';
    }
    std::vector<brix::WorldTriangle> surface;
    brix::TessellateVoxelModel(surface, grown, finestLOD);
    brix::SaveTrianglesToBinarySTL(output, surface, false);
    std::cout << "triangles written: " << surface.size() << '\n';
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2 && argc != 3) {
        std::cerr << "usage: TypicalRequest OUT.stl [IN.stl]\n";
        return 2;
    }
    try {
        Run(argv[1], argc == 3 ? argv[2] : nullptr);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
