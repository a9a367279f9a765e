// How the faces around one corner of voxels join to sheets: the topology of surface meshes, in a table.
//
// Around a corner lie eight voxels; number k has bit 0, 1, 2 set where it lies on the upper side along x, y, z. Between them lie
// twelve faces, four across each axis, and six edges begin there. A boundary face has two of these edges, and an edge has 0, 2 or
// 4 boundary faces. Faces that are paired at an edge belong to one sheet; each sheet is a ring around the corner and gets a
// vertex of its own.
//
//   seen along an edge:    #|.      four faces: each filled voxel's two are a pair, so the filled voxels are apart.
//                         --+--     If they are joined around both ends of the edge (a saddle at each), both vertices would be
//                          .|#      common to both pairs; then each empty voxel's two are a pair, which splits both vertices.
#pragma once

#include "../frame/Triples.h"

#include <bit>

namespace brix {

/// Bit k tells whether voxel k is filled.
using CornerVoxels = unsigned;
inline constexpr unsigned CornerFaces = 12;
inline constexpr unsigned NoSaddle = 6;

/// The face of a voxel across an axis: four for each axis, by the sides of the two axes that follow it.
constexpr unsigned FaceOfVoxel(unsigned voxel, unsigned axis)
{
    return 4 * axis + (voxel >> (axis + 1) % 3 & 1) + 2 * (voxel >> (axis + 2) % 3 & 1);
}

/// The voxel on the lower side of a face.
constexpr unsigned VoxelBelowFace(unsigned face)
{
    return (face & 1) << (face / 4 + 1) % 3 | (face >> 1 & 1) << (face / 4 + 2) % 3;
}

constexpr bool IsBoundary(CornerVoxels voxels, unsigned face)
{
    const unsigned voxel = VoxelBelowFace(face);
    return ((voxels >> voxel ^ voxels >> (voxel | 1U << face / 4)) & 1) != 0;
}

/// The voxels around an edge (2 * axis, and 1 towards its upper side).
constexpr CornerVoxels VoxelsAround(unsigned edge)
{
    CornerVoxels around = 0;
    for (unsigned voxel = 0; voxel < 8; ++voxel) around |= ((voxel >> edge / 2 & 1) == (edge & 1) ? 1U : 0U) << voxel;
    return around;
}

/// Whether two filled and two empty voxels lie crosswise around an edge.
constexpr bool IsCrossing(CornerVoxels voxels, unsigned edge)
{
    const CornerVoxels filled = voxels & VoxelsAround(edge);
    if (std::popcount(filled) != 2) return false;
    const auto first = static_cast<unsigned>(std::countr_zero(filled));
    const auto second = static_cast<unsigned>(std::countr_zero(filled & (filled - 1)));
    return std::popcount(first ^ second) == 2;
}

/// The edge whose crosswise filled voxels are joined around this corner, or NoSaddle. A corner has one at most.
constexpr unsigned SaddleOf(CornerVoxels voxels)
{
    for (unsigned edge = 0; edge < 6; ++edge) {
        if (!IsCrossing(voxels, edge)) continue;
        const CornerVoxels filled = voxels & VoxelsAround(edge);
        const unsigned step = 1U << edge / 2;
        const CornerVoxels behind = (edge & 1) != 0 ? filled >> step : filled << step;
        if ((voxels & behind) == behind && std::popcount(voxels & VoxelsAround(edge ^ 1)) >= 3) return edge;
    }
    return NoSaddle;
}

struct alignas(16) CornerShape
{
    std::array<std::uint8_t, CornerFaces> sheets{}; // of each boundary face
    std::uint8_t sheetCount = 0;
    std::uint8_t saddle = NoSaddle;
};

/// `splits` tells that the saddle's edge has one at its other end, too.
constexpr CornerShape MakeCornerShape(CornerVoxels voxels, bool splits)
{
    std::array<std::uint8_t, CornerFaces> group{};
    for (unsigned face = 0; face < CornerFaces; ++face) group[face] = static_cast<std::uint8_t>(face);
    const auto join = [&](unsigned a, unsigned b) {
        const std::uint8_t from = group[a];
        const std::uint8_t to = group[b];
        for (std::uint8_t& entry : group) entry = entry == from ? to : entry;
    };
    CornerShape shape;
    shape.saddle = static_cast<std::uint8_t>(SaddleOf(voxels));
    for (unsigned edge = 0; edge < 6; ++edge) {
        const bool isCrossing = IsCrossing(voxels, edge);
        const unsigned paired = splits && shape.saddle == edge ? 0 : 1; // by empty or by filled voxels
        unsigned previous = CornerFaces;
        for (unsigned voxel = 0; voxel < 8; ++voxel) {
            if ((VoxelsAround(edge) >> voxel & 1) == 0) continue;
            const std::array faces{FaceOfVoxel(voxel, (edge / 2 + 1) % 3), FaceOfVoxel(voxel, (edge / 2 + 2) % 3)};
            if (isCrossing && (voxels >> voxel & 1) == paired) join(faces[0], faces[1]);
            for (const unsigned face : faces) {
                if (isCrossing || !IsBoundary(voxels, face)) continue;
                if (previous != CornerFaces) join(previous, face);
                previous = face;
            }
        }
    }
    std::array<std::uint8_t, CornerFaces> numbers{};
    for (unsigned face = 0; face < CornerFaces; ++face) {
        if (!IsBoundary(voxels, face)) continue;
        std::uint8_t& number = numbers[group[face]]; // counted from 1
        if (number == 0) number = ++shape.sheetCount;
        shape.sheets[face] = static_cast<std::uint8_t>(number - 1);
    }
    return shape;
}

/// By the voxels, and 256 more when the saddle splits.
using CornerShapes = std::array<CornerShape, 512>;
inline const CornerShapes& AllCornerShapes()
{
    static const CornerShapes shapes = [] {
        CornerShapes all;
        for (unsigned i = 0; i < all.size(); ++i) all[i] = MakeCornerShape(i % 256, i >= 256);
        return all;
    }();
    return shapes;
}

} // namespace brix
