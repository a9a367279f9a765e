#include "RebuildModel.h"

#include "../model/ForEachStack.h"
#include "../model/PropagateLevel.h"

#include <utility>

namespace brix {
namespace {

// Source is a const model, whose stacks are copied, or a mutable one, whose stacks are taken.
template <class Source> VoxelModel<bool> Rebuild(Source& source, const Extents& newExtents, std::int64_t newFinestLOD)
{
    VoxelModel<bool> result(newExtents, newFinestLOD);
    const std::int64_t lod = std::min(source.FinestLOD(), newFinestLOD);
    ForEachTriple(Highest(source.LowerChunkIndices(), result.LowerChunkIndices()),
                  Lowest(source.UpperChunkIndices(), result.UpperChunkIndices()), [&](const Triple& chunkIndices) {
                      auto& from = source.ChunkRef(chunkIndices).VoxelStoreRef(lod);
                      ForEachStackOfStore(result.ChunkRef(chunkIndices).VoxelStoreRef(lod),
                                          [&](VoxelStore<bool>& to, const StackIndices& ij) {
                                              VoxelStack<bool>& stack = to.VoxelStackRef(ij);
                                              stack = std::move(from.VoxelStackRef(ij));
                                              stack.FillOutsideBox(to.LowerOffset(ij), to.UpperOffset(ij), false);
                                          });
                  });
    PropagateLevel(result, lod);
    return result;
}

} // namespace

VoxelModel<bool> RebuildModel(const VoxelModel<bool>& source, const Extents& newExtents, std::int64_t newFinestLOD)
{
    return Rebuild(source, newExtents, newFinestLOD);
}

VoxelModel<bool> RebuildModel(VoxelModel<bool>&& source, const Extents& newExtents, std::int64_t newFinestLOD)
{
    return Rebuild(source, newExtents, newFinestLOD);
}

} // namespace brix
