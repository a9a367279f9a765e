// A second source of the host: what the headers define must not collide when two sources include them.
#include <brix.h>

std::int64_t CountBySteps(const brix::VoxelModel<bool>& model, std::int64_t lod)
{
    std::int64_t count = 0;
    const brix::Extents& extents = model.ExtentsRef(lod);
    brix::ForEachTriple(extents.LowerIndices(), extents.UpperIndices(),
                        [&](const brix::Triple& voxel) { count += model.FindVoxel(voxel, lod).Value() ? 1 : 0; });
    return count;
}
