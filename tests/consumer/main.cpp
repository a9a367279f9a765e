// Builds a model from two triangles through the installed headers and library, and counts its voxels. A square from 0.3 to 3.7 at
// half a voxel's height touches 4 x 4 voxels of width 1 (level 0) and, as no side lies in a voxel's face, 14 x 14 of width 0.25
// (level 2).
#include <brix.h>

#include <cstdio>
#include <stdexcept>

std::int64_t CountBySteps(const brix::VoxelModel<bool>& model, std::int64_t lod);

namespace {

bool Fails(const char* what, std::int64_t expected, std::int64_t actual)
{
    std::printf("%s: %lld\n", what, static_cast<long long>(actual));
    return actual != expected;
}

// An exception of the engine keeps its type on the way into the host.
bool IsRefused(const brix::Extents& extents)
{
    try {
        const brix::VoxelModel<bool> model(extents, brix::LevelCount);
        return false;
    } catch (const std::domain_error&) {
        return true;
    }
}

} // namespace

int main()
{
    const brix::Axes axes(1.0, {0, 0, 0}, 0, 0);
    const std::vector<brix::WorldTriangle> square{{{{0.3, 0.3, 0.5}, {3.7, 0.3, 0.5}, {3.7, 3.7, 0.5}}},
                                                  {{{0.3, 0.3, 0.5}, {3.7, 3.7, 0.5}, {0.3, 3.7, 0.5}}}};
    const brix::Extents extents = brix::DetectTriangleExtents(axes, square);
    brix::TriangleModel triangles(extents);
    triangles.AddWorldTriangles(square);
    brix::VoxelModel<bool> model(extents, 2);
    brix::VoxelizeTriangleModel(model, triangles);

    bool failed = Fails("voxels at level 0", 16, brix::CountFilled(model, 0));
    failed |= Fails("voxels at level 2", 196, CountBySteps(model, 2));
    failed |= Fails("a level too many is refused", 1, IsRefused(extents));
    return failed ? 1 : 0;
}
