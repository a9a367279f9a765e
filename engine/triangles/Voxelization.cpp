#include "Voxelization.h"

#include "../frame/Require.h"
#include "../model/PropagateChunk.h"
#include "TrianglePieces.h"
#include "TriangleRaster.h"

#include <limits>

namespace brix {
namespace {

void VoxelizeChunk(VoxelStore<bool>& store, const Triple& voxelSize, const std::vector<LatticeTriangle>& triangles,
                   InstructionSet instructionSet)
{
    TriangleRaster(store, voxelSize).Fill(triangles, instructionSet);
    ForEachStackOfStore(store, [](VoxelStore<bool>& written, const StackIndices& ij) { written.VoxelStackRef(ij).Compress(); });
}

} // namespace

Extents DetectTriangleExtents(const Axes& axes, const std::vector<WorldTriangle>& triangles)
{
    if (triangles.empty()) return Extents(axes, {-25, -25, -40}, {24, 24, 39}, 0);

    constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
    Triple lower{most, most, most};
    Triple upper{-most, -most, -most};
    for (const WorldTriangle& triangle : triangles) {
        for (const auto& corner : triangle) {
            const Triple coords = axes.FromWorldCoordinates(corner);
            lower = Lowest(lower, coords);
            upper = Highest(upper, coords);
        }
    }
    // The lower face of a voxel belongs to two voxels along x and y, but not along z.
    return Extents(axes, axes.ContainingVoxel(Minus(lower, {1, 1, 0}), 0), axes.ContainingVoxel(upper, 0), 0);
}

void VoxelizeTriangleModel(VoxelModel<bool>& model, const TriangleModel& triangles)
{
    Require(model.AxesRef() == triangles.AxesRef(),
            "The axes of the voxel model cannot differ from the axes of the triangle model to be voxelized.");

    const std::int64_t finestLOD = model.FinestLOD();
    const Triple voxelSize = model.AxesRef().VoxelSize(finestLOD);
    const InstructionSet instructionSet = FastestInstructionSet();
    ForEachTriple(Highest(model.LowerChunkIndices(), triangles.LowerChunkIndices()),
                  Lowest(model.UpperChunkIndices(), triangles.UpperChunkIndices()), [&](const Triple& chunkIndices) {
                      const std::vector<LatticeTriangle>& ofChunk = triangles.ChunkRef(chunkIndices).TrianglesRef();
                      if (ofChunk.empty()) return;
                      VoxelChunk<bool>& chunk = model.ChunkRef(chunkIndices);
                      VoxelizeChunk(chunk.VoxelStoreRef(finestLOD), voxelSize, ofChunk, instructionSet);
                      PropagateChunk(chunk, finestLOD, finestLOD, instructionSet);
                  });
}

} // namespace brix
