// Triangles in base units, filed by the chunks that their boxes touch: what voxelization reads.
#pragma once

#include "../model/Model.h"
#include "Triangle.h"

#include <span>

namespace brix {

/// Holds the corners of a triangle within +-MaxCoordinate.
constexpr LatticeTriangle NearestTriangle(LatticeTriangle triangle)
{
    for (Triple& corner : triangle) {
        for (std::int64_t& coordinate : corner) coordinate = NearestCoordinate(coordinate);
    }
    return triangle;
}

/// The corners x, y, z, x, y, z, x, y, z of a triangle in base units, half as large as a LatticeTriangle. It spans at most half a
/// chunk's width, as all triangles do that are filed, and its coordinates lie within +-MaxPackedCoordinate: the grid ends at
/// 1000320000, half a chunk beyond which a filed triangle may reach, and the difference of two coordinates fits 32 bits.
using PackedTriangle = std::array<std::int32_t, 9>;
inline constexpr std::int32_t MaxPackedCoordinate = 1001000000;

/// The triangles that concern one chunk.
class TriangleChunk
{
public:
    static constexpr const char* ModelName = "a triangle model"; // in messages

    TriangleChunk(const BoundsOfLevels&, const Triple&) {}

    /// Appends a triangle (base units) as it stands, whether it concerns the chunk or not. Corners farther than MaxCoordinate
    /// from the origin are moved to that bound.
    void AddTriangle(const LatticeTriangle& triangle);

    void AddTriangle(const PackedTriangle& triangle)
    {
        if (blocks_.empty() || blocks_.back().size() == BlockSize) AddBlock();
        blocks_.back().push_back(triangle);
    }

    bool IsEmpty() const { return blocks_.empty() && large_.empty(); }

    /// Calls visit(triangle) for every triangle that is packed, in the order of their addition, then visitLarge(triangle) for the
    /// others, which span or lie too far for that; filing makes none.
    template <class Visit, class VisitLarge> void ForEachTriangle(const Visit& visit, const VisitLarge& visitLarge) const;

    /// A copy of all triangles, in the order of ForEachTriangle.
    std::vector<LatticeTriangle> Triangles() const;

private:
    // A block takes 36 KiB. A list of triangles that grew as a whole would be copied again and again.
    static constexpr std::size_t BlockSize = 1024;

    void AddBlock();

    std::vector<std::vector<PackedTriangle>> blocks_;
    std::vector<LatticeTriangle> large_;
};

template <class Visit, class VisitLarge>
void TriangleChunk::ForEachTriangle(const Visit& visit, const VisitLarge& visitLarge) const
{
    for (const std::vector<PackedTriangle>& block : blocks_) {
        for (const PackedTriangle& triangle : block) visit(triangle);
        CheckWatch();
    }
    for (const LatticeTriangle& triangle : large_) visitLarge(triangle);
}

class TriangleModel : public Model<TriangleChunk>
{
public:
    /// An empty chunk grid on these extents; chunks take memory when triangles are filed in them, which may throw
    /// NotEnoughMemory.
    explicit TriangleModel(const Extents& extents) : Model(extents) {}

    /// Converts each corner from world units with the frame's FromWorldCoordinates, and files the triangle.
    void AddWorldTriangle(const WorldTriangle& worldTriangle);
    void AddWorldTriangles(const std::vector<WorldTriangle>& worldTriangles);
    void AddWorldTriangles(std::span<const WorldTriangle> worldTriangles);

    /// Files a triangle (base units) in every chunk of the grid that its box touches; one that spans more than half a chunk's
    /// width is cut into four at the midpoints of its edges first, as often as needed. What lies outside the grid is dropped.
    /// Corners farther than MaxCoordinate from the origin are moved to that bound. Cost: bounded by the grid, not by the
    /// triangle.
    void AddTriangle(const LatticeTriangle& triangle);

private:
    class Filing;

    Triple ChunkSize() const;
    void FileInPieces(const LatticeTriangle& triangle);
};

} // namespace brix
