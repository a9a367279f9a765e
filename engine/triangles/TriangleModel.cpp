#include "TriangleModel.h"

#include "PackWorldTriangles.h"
#include "PackedTriangles.h"

namespace brix {
namespace {

Triple Scaled(const Triple& a, const Triple& b) { return {a[0] * b[0], a[1] * b[1], a[2] * b[2]}; }

} // namespace

[[gnu::noinline]] void TriangleChunk::AddBlock()
{
    const bool isFirst = blocks_.empty(); // a chunk with few triangles takes little memory
    blocks_.emplace_back();
    if (!isFirst) blocks_.back().reserve(BlockSize);
}

void TriangleChunk::AddTriangle(const LatticeTriangle& triangle)
{
    const LatticeTriangle nearest = NearestTriangle(triangle);
    if (IsPackable(nearest))
        AddTriangle(Packed(nearest));
    else
        large_.push_back(nearest);
}

std::vector<LatticeTriangle> TriangleChunk::Triangles() const
{
    std::vector<LatticeTriangle> triangles;
    ForEachTriangle([&](const PackedTriangle& triangle) { triangles.push_back(Unpacked(triangle)); },
                    [&](const LatticeTriangle& triangle) { triangles.push_back(triangle); });
    return triangles;
}

// Of a chunk, in base units.
Triple TriangleModel::ChunkSize() const
{
    const Triple voxel = AxesRef().VoxelSize(0);
    return {ChunkWidth * voxel[0], ChunkWidth * voxel[1], ChunkHeight * voxel[2]};
}

// Files triangles that need not be cut.
class TriangleModel::Filing
{
public:
    explicit Filing(TriangleModel& model) : model_(model)
    {
        const Triple size = model.ChunkSize();
        perChunk_ =
            DoubleQuad{1 / static_cast<double>(size[0]), 1 / static_cast<double>(size[1]), 1 / static_cast<double>(size[2]), 0};
        SetQuad(lowerChunk_, model.LowerChunkIndices());
        SetQuad(upperChunk_, model.UpperChunkIndices());
    }

    // False when the triangle is too large, or was held at the bound of packed coordinates.
    bool Add(const PackedTriangle& triangle)
    {
        constexpr std::int32_t most = MaxPackedCoordinate;
        constexpr auto mostSpan = static_cast<std::int32_t>(MaxPieceSpan);
        const PackedCorners corners(triangle, Quad{});
        const Quad isOther = (corners.upper - corners.lower > mostSpan) | (corners.lower < -most) | (corners.upper >= most);
        if (IsAnyOf(isOther)) return false;

        Quad lower, upper;
        ContainingCell(corners.lower, perChunk_, lower);
        ContainingCell(corners.upper, perChunk_, upper);
        KeepUpper(lower, lowerChunk_);
        KeepLower(upper, upperChunk_);
        ForEachTriple({lower[0], lower[1], lower[2]}, {upper[0], upper[1], upper[2]},
                      [&](const Triple& chunk) { model_.ChunkRef(chunk).AddTriangle(triangle); });
        return true;
    }

private:
    static void SetQuad(Quad& quad, const Triple& triple)
    {
        quad = Quad{};
        for (std::size_t i = 0; i < 3; ++i) quad[static_cast<int>(i)] = static_cast<std::int32_t>(triple[i]);
    }

    TriangleModel& model_;
    DoubleQuad perChunk_;
    Quad lowerChunk_;
    Quad upperChunk_;
};

// Triangles that span more than half a chunk are few, and cutting them is not for the hot loop.
[[gnu::noinline]] void TriangleModel::AddWorldTriangle(const WorldTriangle& worldTriangle)
{
    const Axes& axes = AxesRef();
    AddTriangle({axes.FromWorldCoordinates(worldTriangle[0]), axes.FromWorldCoordinates(worldTriangle[1]),
                 axes.FromWorldCoordinates(worldTriangle[2])});
}

void TriangleModel::AddWorldTriangles(const std::vector<WorldTriangle>& worldTriangles)
{
    AddWorldTriangles(std::span(worldTriangles));
}

void TriangleModel::AddWorldTriangles(std::span<const WorldTriangle> worldTriangles)
{
    Filing filing(*this);
    const InstructionSet instructionSet = FastestInstructionSet();
    ForEachPackedBatch(AxesRef(), worldTriangles, instructionSet, [&](const PackedBatch& batch) {
        RunWith(instructionSet, [&] {
            for (std::size_t i = 0; i < batch.packed.size(); ++i)
                if (!filing.Add(batch.packed[i])) AddWorldTriangle(batch.world[i]);
        });
    });
}

void TriangleModel::AddTriangle(const LatticeTriangle& triangle)
{
    const Triple size = ChunkSize();
    const Triple gridLower = Scaled(LowerChunkIndices(), size);
    const Triple gridUpper = Scaled(Plus(UpperChunkIndices(), {1, 1, 1}), size);
    ForEachNearPart(NearestTriangle(triangle), Minus(gridLower, size), Plus(gridUpper, size),
                    [&](const LatticeTriangle& part) { FileInPieces(part); });
}

void TriangleModel::FileInPieces(const LatticeTriangle& triangle)
{
    Triple lower{};
    Triple upper{};
    const auto touches = [&](const TriangleBox& box) {
        lower = Highest(ContainingChunk(box.lower), LowerChunkIndices());
        upper = Lowest(ContainingChunk(box.upper), UpperChunkIndices());
        return lower[0] <= upper[0] && lower[1] <= upper[1] && lower[2] <= upper[2];
    };
    ForEachPiece(triangle, touches, [&](const LatticeTriangle& piece, const TriangleBox&) {
        ForEachTriple(lower, upper, [&](const Triple& chunk) { ChunkRef(chunk).AddTriangle(piece); });
        CheckWatch();
    });
}

} // namespace brix
