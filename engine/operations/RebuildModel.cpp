#include "RebuildModel.h"

#include "../model/ChunkPart.h"
#include "../model/CombineStacks.h"
#include "../model/ForEachStack.h"
#include "../model/InstructionSet.h"
#include "BasicOperations.h"

#include <utility>

namespace brix {
namespace {

// A const stack is copied, a mutable one taken, with what lies outside the extents cut off.
template <class Stack> void TransferStack(VoxelStore<bool>& to, const StackIndices& ij, Stack& from)
{
    VoxelStack<bool>& stack = to.VoxelStackRef(ij);
    const OffsetBox inExtents = to.Inside(ij);
    if (!inExtents.IsWholeStack()) return CopyInsideBox(stack, from, BoxStack(inExtents));
    stack = std::move(from);
    stack.Compress(); // hosts may leave equal layers
}

const VoxelStore<bool>& StoreToTransfer(const VoxelChunk<bool>& chunk, std::int64_t lod) { return chunk.VoxelStoreRef(lod); }
VoxelStore<bool>& StoreToTransfer(VoxelChunk<bool>& chunk, std::int64_t lod) { return chunk.StoreToRewrite(lod); }

// Source is a const model, whose stacks are copied, or a mutable one, whose stacks are taken.
template <class Source> VoxelModel<bool> TransferOneLevel(Source& source, const Extents& newExtents, std::int64_t newFinestLOD)
{
    VoxelModel<bool> result(newExtents, newFinestLOD, source.WhenLevelsAreMade());
    const std::int64_t lod = std::min(source.FinestLOD(), newFinestLOD);
    RunWith(FastestInstructionSet(), [&] {
        WatchedLoop loop(source.StoredChunkCount());
        source.ForEachChunk([&](const Triple& chunkIndices, auto& chunk) {
            loop.Step();
            auto& from = StoreToTransfer(chunk, lod);
            if (!result.IsChunkValid(chunkIndices) || from.IsUnallocated()) return;
            VoxelStore<bool>& to = result.ChunkRef(chunkIndices).VoxelStoreRef(lod);
            if (IsUniformlyFull(from, ChunkPart(to, to.ExtentsRef()))) return to.MakeUniform(true);
            ForEachStackOfStore(to, [&](VoxelStore<bool>&, const StackIndices& ij) {
                if (from.IsStackValid(ij)) TransferStack(to, ij, from.VoxelStackRef(ij));
            });
        });
    });
    return result;
}

VoxelModel<bool> Propagated(VoxelModel<bool>&& model, std::int64_t lod)
{
    model.FinishLevels(lod);
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

VoxelModel<bool> PropagatedOnExtents(VoxelModel<bool>&& model, const Extents& extents)
{
    const std::int64_t lod = model.FinestLOD();
    return model.ExtentsRef(lod) == extents ? Propagated(std::move(model), lod) : Resize(std::move(model), extents);
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
