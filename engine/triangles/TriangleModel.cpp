#include "TriangleModel.h"

#include "TrianglePieces.h"

namespace brix {

void TriangleModel::AddWorldTriangle(const WorldTriangle& worldTriangle)
{
    const Axes& axes = AxesRef();
    AddTriangle({axes.FromWorldCoordinates(worldTriangle[0]), axes.FromWorldCoordinates(worldTriangle[1]),
                 axes.FromWorldCoordinates(worldTriangle[2])});
}

void TriangleModel::AddWorldTriangles(const std::vector<WorldTriangle>& worldTriangles)
{
    for (const WorldTriangle& worldTriangle : worldTriangles) AddWorldTriangle(worldTriangle);
}

void TriangleModel::AddTriangle(const LatticeTriangle& triangle)
{
    Triple lower{};
    Triple upper{};
    const auto touches = [&](const TriangleBox& box) {
        lower = Highest(ContainingChunk(box.lower), LowerChunkIndices());
        upper = Lowest(ContainingChunk(box.upper), UpperChunkIndices());
        return lower[0] <= upper[0] && lower[1] <= upper[1] && lower[2] <= upper[2];
    };
    ForEachPiece(NearestTriangle(triangle), touches, [&](const LatticeTriangle& piece, const TriangleBox&) {
        ForEachTriple(lower, upper, [&](const Triple& chunk) { ChunkRef(chunk).AddTriangle(piece); });
    });
}

} // namespace brix
