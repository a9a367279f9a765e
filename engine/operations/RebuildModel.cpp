#include "RebuildModel.h"

#include "../model/ForEachStack.h"
#include "../model/PropagateLevel.h"

#include <utility>

namespace brix {
namespace {

// Source is a const model, whose stacks are copied, or a mutable one, whose stacks are taken.
template <class Source> VoxelModel<bool> TransferOneLevel(Source& source, const Extents& newExtents, std::int64_t newFinestLOD)
{
    VoxelModel<bool> result(newExtents, newFinestLOD);
    const std::int64_t lod = std::min(source.FinestLOD(), newFinestLOD);
    ForEachTriple(Highest(source.LowerChunkIndices(), result.LowerChunkIndices()),
                  Lowest(source.UpperChunkIndices(), result.UpperChunkIndices()), [&](const Triple& chunkIndices) {
                      auto& from = source.ChunkRef(chunkIndices).VoxelStoreRef(lod);
                      ForEachStackOfStore(result.ChunkRef(chunkIndices).VoxelStoreRef(lod),
                                          [&](VoxelStore<bool>& to, const StackIndices& ij) {
                                              if (!from.IsStackValid(ij)) return;
                                              VoxelStack<bool>& stack = to.VoxelStackRef(ij);
                                              stack = std::move(from.VoxelStackRef(ij));
                                              stack.FillOutsideBox(to.LowerOffset(ij), to.UpperOffset(ij), false);
                                          });
                  });
    return result;
}

VoxelModel<bool> Propagated(VoxelModel<bool>&& model, std::int64_t lod)
{
    PropagateLevel(model, lod);
    return std::move(model);
}

} // namespace

VoxelModel<bool> CopyOneLevel(const VoxelModel<bool>& source, const Extents& newExtents, std::int64_t newFinestLOD)
{
    return TransferOneLevel(source, newExtents, newFinestLOD);
}

VoxelModel<bool> RebuildModel(const VoxelModel<bool>& source, const Extents& newExtents, std::int64_t newFinestLOD)
{
    return Propagated(TransferOneLevel(source, newExtents, newFinestLOD), std::min(source.FinestLOD(), newFinestLOD));
}

VoxelModel<bool> RebuildModel(VoxelModel<bool>&& source, const Extents& newExtents, std::int64_t newFinestLOD)
{
    return Propagated(TransferOneLevel(source, newExtents, newFinestLOD), std::min(source.FinestLOD(), newFinestLOD));
}

Extents MovedExtents(const VoxelModel<bool>& model, const Triple& lowerStep, const Triple& upperStep)
{
    // Numbers far beyond the index space are held where sums do not overflow and the Extents constructor reports them.
    constexpr std::int64_t limit = std::int64_t{1} << 62;
    const Triple lowest{-limit, -limit, -limit};
    const Triple highest{limit, limit, limit};
    const Extents& extents = model.ExtentsRef(model.FinestLOD());
    return Extents(extents.AxesRef(), Plus(extents.LowerIndices(), Highest(lowest, Lowest(highest, lowerStep))),
                   Plus(extents.UpperIndices(), Highest(lowest, Lowest(highest, upperStep))), model.FinestLOD());
}

} // namespace brix
