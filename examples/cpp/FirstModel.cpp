// The first model, as README.md shows it: triangles of an STL file become voxels, which are counted, saved, and written as
// triangles again.
#include <brix.h>

#include <fstream>
#include <iostream>

int main()
{
    const brix::Axes axes(1.6, {0, 0, 0}, 0, 4); // voxels 1.6 wide at level 0, 0.1 at level 4; as high as those of level 4
    const std::vector<brix::WorldTriangle> triangles = brix::LoadTrianglesFromSTL("house.stl", false);
    const brix::VoxelModel<bool> house = brix::Voxelize(axes, triangles, 4); // levels 0 to 4
    std::cout << brix::CountFilled(house, 4) << " voxels of 0.1 m\n";

    std::int64_t longest = 0; // rows of voxels that are filled, without a list of them
    brix::ForEachFilledRun(house, 4,
                           [&](const brix::FilledRun& run) { longest = std::max(longest, run.upperX - run.lowerX + 1); });
    std::cout << "the longest run has " << longest << '\n';

    std::ofstream file("house.brix", std::ios::binary);
    brix::SaveModel(house, file); // brix::LoadModel reads it again

    std::vector<brix::WorldTriangle> boxes;
    brix::TessellateVoxelModel(boxes, house, 2); // of the voxels of level 2, 0.4 wide
    brix::SaveTrianglesToBinarySTL("voxels.stl", boxes, false);
}
