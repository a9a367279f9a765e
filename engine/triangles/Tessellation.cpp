#include "Tessellation.h"

#include "../frame/Require.h"
#include "../model/ForEachStack.h"
#include "BoxesOfStack.h"

namespace brix {
namespace {

// Corner k of a box lies at the upper side along x, y and z where bit 0, 1 and 2 of k is set.
constexpr std::array<std::array<std::size_t, 3>, 12> BoxTriangles{{
    {0, 2, 1},
    {1, 2, 3}, // lower z
    {0, 4, 2},
    {2, 4, 6}, // lower x
    {0, 1, 4},
    {4, 1, 5}, // lower y
    {4, 5, 6},
    {6, 5, 7}, // upper z
    {1, 3, 5},
    {5, 3, 7}, // upper x
    {2, 6, 3},
    {3, 6, 7}, // upper y
}};

// A box of voxel indices, lower corners inclusive, upper exclusive, at an address in the output.
void WriteBox(WorldTriangle* output, const Axes& axes, const Triple& lower, const Triple& upper)
{
    // World x and y do not depend on the height, nor does world z on anything else: four corners have the numbers of all eight.
    const std::array standing{axes.ToWorldCoordinates(lower), axes.ToWorldCoordinates({upper[0], lower[1], lower[2]}),
                              axes.ToWorldCoordinates({lower[0], upper[1], lower[2]}), axes.ToWorldCoordinates(upper)};
    std::array<std::array<double, 3>, 8> corners;
    for (std::size_t k = 0; k < 8; ++k) corners[k] = {standing[k & 3][0], standing[k & 3][1], standing[k & 4 ? 3 : 0][2]};
    for (const auto& [a, b, c] : BoxTriangles) *output++ = {corners[a], corners[b], corners[c]};
}

} // namespace

void TessellateVoxelModel(std::vector<WorldTriangle>& triangles, const VoxelModel<bool>& model, std::int64_t lod)
{
    RequireLevelOf(model.FinestLOD(), "The level of detail for voxel tessellation", lod);

    const Axes& axes = model.AxesRef();
    const Triple size = axes.VoxelSize(lod);
    const auto scaled = [&](const Triple& indices) {
        return Triple{indices[0] * size[0], indices[1] * size[1], indices[2] * size[2]};
    };

    std::size_t boxCount = 0;
    ForEachStack(model, lod, [&](const VoxelStore<bool>& store, const StackIndices& ij) {
        ForEachBoxOfStack(store.VoxelStackRef(ij), [&](const Triple&, const Triple&) { ++boxCount; });
    });
    const std::size_t first = triangles.size();
    triangles.resize(first + BoxTriangles.size() * boxCount);
    WorldTriangle* output = triangles.data() + first;
    ForEachStack(model, lod, [&](const VoxelStore<bool>& store, const StackIndices& ij) {
        const Triple corner = store.LowerIndices(ij);
        ForEachBoxOfStack(store.VoxelStackRef(ij), [&](const Triple& lower, const Triple& upper) {
            WriteBox(output, axes, scaled(Plus(corner, lower)), scaled(Plus(corner, upper)));
            output += BoxTriangles.size();
        });
    });
}

} // namespace brix
