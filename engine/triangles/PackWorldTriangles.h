// World triangles to packed ones, many at a time.
#pragma once

#include "../model/InstructionSet.h"
#include "TriangleModel.h"

#include <span>

namespace brix {

/// packed[i] becomes what the frame's FromWorldCoordinates makes of the corners of triangles[i], held within
/// +-MaxPackedCoordinate. Where a coordinate is not finite, those beside it may become the lower bound, too: a triangle that has
/// one of the bounds is to be converted by other means. `packed` has as many triangles as `triangles`.
void PackWorldTriangles(const Axes& axes, std::span<const WorldTriangle> triangles, std::span<PackedTriangle> packed,
                        InstructionSet instructionSet);

/// Some triangles in both forms.
struct PackedBatch
{
    std::span<const WorldTriangle> world;
    std::span<const PackedTriangle> packed;
};

/// Calls visit(batch) for all triangles, so many at a time that both forms stay in the fastest cache.
template <class Visit>
void ForEachPackedBatch(const Axes& axes, std::span<const WorldTriangle> triangles, InstructionSet instructionSet,
                        const Visit& visit)
{
    std::array<PackedTriangle, 128> buffer;
    WatchedLoop loop(triangles.size());
    for (std::size_t first = 0; first < triangles.size(); first += buffer.size()) {
        const auto world = triangles.subspan(first, std::min(buffer.size(), triangles.size() - first));
        const std::span packed(buffer.data(), world.size());
        PackWorldTriangles(axes, world, packed, instructionSet);
        visit(PackedBatch{world, packed});
        loop.Step(world.size());
    }
}

} // namespace brix
