// How large the model of triangles will be, and what it takes to make it, estimated from the triangles alone.
#pragma once

#include "../model/ModelSize.h"
#include "Triangle.h"

#include <span>

namespace brix {

/// The size of the model of triangles on extents: the chunks that small triangles touch are counted; for larger ones, and for
/// stacks and their layers, areas and edges tell. Nearly always too high, as many triangles share a stack.
/// Throws std::domain_error when the finest level is negative or not less than 6. Cost: a pass over the triangles, as for the
/// others.
[[nodiscard]] ModelSize SizeOfVoxels(const Extents& extents, std::span<const WorldTriangle> triangles, std::int64_t finestLOD);

/// Bytes that Voxelize takes at most beside its triangles, its result, of this size, included; or, when triangles are filed
/// first, TriangleModel and VoxelizeTriangleModel.
[[nodiscard]] double BytesToVoxelize(const ModelSize& size, const Axes& axes, std::span<const WorldTriangle> triangles);
[[nodiscard]] double BytesToFileAndVoxelize(const ModelSize& size, const Axes& axes, std::span<const WorldTriangle> triangles);

/// Bytes that Voxelize takes at most beside the indexed mesh that it is given, whose triangles are put together one by one.
/// Throws std::domain_error where Voxelize does, for the same arguments. Cost: three passes over the triangles.
[[nodiscard]] double BytesToVoxelize(const Axes& axes, std::span<const std::array<double, 3>> vertices,
                                     std::span<const std::array<std::uint32_t, 3>> triangles, std::int64_t finestLOD);
[[nodiscard]] double BytesToVoxelize(const Axes& axes, std::span<const std::array<float, 3>> vertices,
                                     std::span<const std::array<std::uint32_t, 3>> triangles, std::int64_t finestLOD);

} // namespace brix
