#include "Voxelization.h"

#include "../frame/Require.h"
#include "../model/ForEachStack.h"
#include "ExtentsAround.h"
#include "PackWorldTriangles.h"
#include "TriangleRaster.h"

#include <limits>

namespace brix {
namespace {

void VoxelizeChunk(VoxelStore<bool>& store, const Triple& voxelSize, const TriangleChunk& triangles,
                   InstructionSet instructionSet)
{
    TriangleRaster(store, voxelSize).Fill(triangles, instructionSet);
    ForEachStackOfStore(store, [](VoxelStore<bool>& written, const StackIndices& ij) { written.VoxelStackRef(ij).Compress(); });
}

void Enclose(const Triple& coords, Triple& lower, Triple& upper)
{
    lower = Lowest(lower, coords);
    upper = Highest(upper, coords);
}

// Widens lower..upper by the corners of some triangles.
void EncloseBatch(const Axes& axes, const PackedBatch& batch, Triple& lower, Triple& upper, InstructionSet instructionSet)
{
    constexpr std::int32_t most = MaxPackedCoordinate;
    Quad least = Quad{} + most;
    Quad greatest = Quad{} - most;
    RunWith(instructionSet, [&] {
        for (const PackedTriangle& triangle : batch.packed) {
            const PackedCorners corners(triangle, Quad{});
            KeepLower(least, corners.lower + 1);
            KeepUpper(greatest, corners.upper);
        }
    });
    if (!IsAnyOf((least <= -most) | (greatest >= most))) {
        Enclose({least[0], least[1], least[2]}, lower, upper);
        Enclose({greatest[0], greatest[1], greatest[2]}, lower, upper);
        return;
    }
    for (const WorldTriangle& triangle : batch.world) {
        for (const auto& corner : triangle) Enclose(axes.FromWorldCoordinates(corner), lower, upper);
    }
}

} // namespace

Extents DetectTriangleExtents(const Axes& axes, const std::vector<WorldTriangle>& triangles)
{
    return DetectTriangleExtents(axes, std::span(triangles));
}

Extents DetectTriangleExtents(const Axes& axes, std::span<const WorldTriangle> triangles)
{
    if (triangles.empty()) return Extents(axes, {-25, -25, -40}, {24, 24, 39}, 0);

    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    Triple lower{most, most, most};
    Triple upper{-most, -most, -most};
    const InstructionSet instructionSet = FastestInstructionSet();
    ForEachPackedBatch(axes, triangles, instructionSet,
                       [&](const PackedBatch& batch) { EncloseBatch(axes, batch, lower, upper, instructionSet); });
    return ExtentsAround(axes, lower, upper);
}

void VoxelizeTriangleModel(VoxelModel<bool>& model, const TriangleModel& triangles)
{
    Require(model.AxesRef() == triangles.AxesRef(),
            "The axes of the voxel model cannot differ from the axes of the triangle model to be voxelized.");

    const std::int64_t finestLOD = model.FinestLOD();
    const Triple voxelSize = model.AxesRef().VoxelSize(finestLOD);
    const InstructionSet instructionSet = FastestInstructionSet();
    WatchedLoop loop(triangles.StoredChunkCount());
    triangles.ForEachChunk([&](const Triple& chunkIndices, const TriangleChunk& ofChunk) {
        loop.Step();
        if (ofChunk.IsEmpty() || !model.IsChunkValid(chunkIndices)) return;
        VoxelChunk<bool>& chunk = model.ChunkRef(chunkIndices);
        VoxelStore<bool>& finest = chunk.VoxelStoreRef(finestLOD);
        VoxelizeChunk(finest, voxelSize, ofChunk, instructionSet);
        finest.ReleaseUniformStacks();     // the levels beside it take over that it is uniform
        chunk.MakeLevelsFollow(finestLOD); // at once: a host may have iterators into its model
        chunk.ReleaseUniformStacks();
    });
}

} // namespace brix
