// The first model: triangles of an STL file become voxels, the voxels are counted and written as triangles again.
//
//   FirstModel house.stl voxels.stl
#include <brix.h>

#include <exception>
#include <iostream>

namespace {

std::int64_t CountVoxels(const brix::VoxelModel<bool>& model, std::int64_t lod)
{
    std::int64_t filled = 0;
    const brix::Extents& extents = model.ExtentsRef(lod);
    brix::ForEachTriple(extents.LowerIndices(), extents.UpperIndices(),
                        [&](const brix::Triple& voxel) { filled += model.FindVoxel(voxel, lod).Value(); });
    return filled;
}

void Voxelize(const char* input, const char* output)
{
    const std::int64_t finestLOD = 4;
    const brix::Axes axes(1.6, {0, 0, 0}, 0, finestLOD); // level 0: 1.6 wide; level 4: 0.1 wide; all 0.1 high
    std::vector<brix::WorldTriangle> triangles = brix::LoadTrianglesFromSTL(input, false);

    const brix::VoxelModel<bool> model = brix::Voxelize(axes, triangles, finestLOD);
    std::cout << CountVoxels(model, finestLOD) << " voxels are filled\n";

    triangles.clear();
    brix::TessellateVoxelModel(triangles, model, finestLOD);
    brix::SaveTrianglesToBinarySTL(output, triangles, false);
}

} // namespace

int main(int argc, char** argv)
{
    try {
        if (argc == 3) return Voxelize(argv[1], argv[2]), 0;
        std::cerr << "usage: FirstModel IN.stl OUT.stl\n";
        return 2;
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
