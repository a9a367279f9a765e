#include "VoxelizationEstimate.h"

#include "../frame/WatchedLoop.h"
#include "ExtentsAround.h"
#include "IndexedTriangles.h"
#include "TriangleMesh.h"
#include "Voxelization.h"

#include <cmath>
#include <set>

namespace brix {
namespace {

using Point = std::array<double, 3>;

// A triangle in voxels of a level, so that a stack is 16 x 16 x 64, and what is asked about it.
class Outline
{
public:
    Outline(const Axes& axes, const WorldTriangle& triangle, std::int64_t lod)
    {
        const Triple voxel = axes.VoxelSize(lod);
        for (std::size_t k = 0; k < 3; ++k) {
            const Triple corner = axes.FromWorldCoordinates(triangle[k]);
            for (std::size_t i = 0; i < 3; ++i) corners_[k][i] = static_cast<double>(corner[i]) / static_cast<double>(voxel[i]);
        }
        for (std::size_t i = 0; i < 3; ++i) {
            const auto [least, greatest] = std::minmax({corners_[0][i], corners_[1][i], corners_[2][i]});
            lower_[i] = least;
            size_[i] = greatest - least;
        }
        Point u{};
        Point v{};
        for (std::size_t i = 0; i < 3; ++i) {
            u[i] = corners_[1][i] - corners_[0][i];
            v[i] = corners_[2][i] - corners_[0][i];
        }
        for (std::size_t i = 0; i < 3; ++i) {
            const std::size_t j = (i + 1) % 3;
            const std::size_t k = (i + 2) % 3;
            areas_[i] = std::abs(u[j] * v[k] - u[k] * v[j]) / 2;
        }
    }

    // The boxes of a grid that the triangle crosses, more or less: its area's, as seen along each axis, and those of its edges.
    double BoxesCrossed(const Point& box) const
    {
        double area = 0;
        double edges = 0;
        bool isSmall = true;
        for (std::size_t i = 0; i < 3; ++i) {
            area += areas_[i] / (box[(i + 1) % 3] * box[(i + 2) % 3]);
            edges += size_[i] / box[i];
            isSmall = isSmall && size_[i] <= box[i];
        }
        return area + (isSmall ? 0 : 2 * edges + 1);
    }

    // The heights that it passes while it crosses a stack. A level or an upright triangle leaves most of them alike.
    double HeightsPassed() const
    {
        const double upright = std::sqrt(areas_[0] * areas_[0] + areas_[1] * areas_[1]);
        return areas_[2] < 1e-9 * upright ? 0 : std::min(64.0, 16 * upright / areas_[2]);
    }

    // The lowest and the highest box of a grid that it touches.
    std::array<Point, 2> BoxesTouched(const Point& box) const
    {
        std::array<Point, 2> boxes{};
        for (std::size_t i = 0; i < 3; ++i) {
            boxes[0][i] = std::floor(lower_[i] / box[i]);
            boxes[1][i] = std::floor((lower_[i] + size_[i]) / box[i]);
        }
        return boxes;
    }

    // How many pieces of at most half a chunk it is cut into.
    double Pieces(const Point& chunk) const
    {
        double halves = 1;
        for (std::size_t i = 0; i < 3; ++i) halves = std::max(halves, 2 * size_[i] / chunk[i]);
        return std::pow(4.0, std::ceil(std::log2(halves)));
    }

private:
    std::array<Point, 3> corners_{};
    Point lower_{};
    Point size_{};
    Point areas_{};
};

constexpr Point StackBox{16, 16, 64};

Point ChunkBox(std::int64_t lod)
{
    const double width = 16 * static_cast<double>(std::int64_t{1} << lod);
    return {width, width, 64};
}

// The chunks that triangles touch: counted for those that span two at most, and estimated for others.
class TouchedChunks
{
public:
    explicit TouchedChunks(std::int64_t lod) : box_(ChunkBox(lod)) {}

    void Add(const Outline& outline)
    {
        const auto [lower, upper] = outline.BoxesTouched(box_);
        if (upper[0] - lower[0] > 1 || upper[1] - lower[1] > 1 || upper[2] - lower[2] > 1) {
            large_ += 2 * outline.BoxesCrossed(box_) + 8;
        } else if (lower != upper || lower != last_) {
            for (const double x : {lower[0], upper[0]})
                for (const double y : {lower[1], upper[1]})
                    for (const double z : {lower[2], upper[2]}) small_.insert({x, y, z});
            last_ = lower;
        }
    }

    double Count() const { return static_cast<double>(small_.size()) + large_; }

private:
    Point box_;
    std::set<Point> small_;
    Point last_{};
    double large_ = 0;
};

// While the finest level is filled: plates for all heights of stacks written to lately, and the triangles converted in batches.
double BytesOfRaster(const ModelSize& size, std::size_t triangleCount)
{
    const double stacks = size.stored * size.StacksPerChunk(size.lod);
    return std::min(262144.0, 4096 + 256 * static_cast<double>(triangleCount)) + stacks * 24 + size.stored * 512 +
           std::min(stacks, 20480.0) * 2200;
}

// Triangles is a span of them, or anything else that gives them by number.
template <class Triangles, class Visit>
void ForEachOutline(const Axes& axes, const Triangles& triangles, std::int64_t lod, const Visit& visit)
{
    for (std::size_t i = 0; i < triangles.size(); ++i) {
        visit(Outline(axes, triangles[i], lod));
        if (i % 1024 == 0) CheckWatch();
    }
}

template <class Triangles> ModelSize SizeOfAll(const Extents& extents, const Triangles& triangles, std::int64_t finestLOD)
{
    ModelSize size(extents, finestLOD);
    TouchedChunks chunks(finestLOD);
    ForEachOutline(extents.AxesRef(), triangles, finestLOD, [&](const Outline& outline) {
        const double stacks = outline.BoxesCrossed(StackBox);
        size.filled += stacks;
        size.layerBytes += stacks * (26 + 33 * (3 + outline.HeightsPassed()));
        chunks.Add(outline);
    });
    size.stored = std::min(size.chunks, chunks.Count());
    size.filled = std::clamp(size.filled, size.stored, size.stored * size.StacksPerChunk(finestLOD));
    size.layerBytes =
        std::min(size.layerBytes + size.filled * ModelSize::BytesOfUniformStack, ModelSize::MostLayerBytes(size.filled));
    size.rims.fill(size.filled);
    return size;
}

// Large triangles are put by, and listed in the chunks that they cross.
template <class Triangles> double BytesOfAll(const ModelSize& size, const Axes& axes, const Triangles& triangles)
{
    double bytes = BytesOfModel(size) + BytesOfRaster(size, triangles.size());
    ForEachOutline(axes, triangles, size.lod, [&](const Outline& outline) {
        if (outline.Pieces(ChunkBox(size.lod)) > 1)
            bytes += 3 * sizeof(LatticeTriangle) + 128 * (1 + outline.BoxesCrossed(ChunkBox(size.lod)));
    });
    return bytes;
}

template <class Number> Extents ExtentsOf(const Axes& axes, const IndexedTriangles<Number>& mesh)
{
    if (mesh.size() == 0) return DetectTriangleExtents(axes, std::span<const WorldTriangle>());
    Triple lower = axes.FromWorldCoordinates(mesh[0][0]);
    Triple upper = lower;
    for (std::size_t i = 0; i < mesh.size(); ++i) {
        if (i % 1024 == 0) CheckWatch();
        for (const std::array<double, 3>& corner : mesh[i]) {
            const Triple coords = axes.FromWorldCoordinates(corner);
            lower = Lowest(lower, coords);
            upper = Highest(upper, coords);
        }
    }
    return ExtentsAround(axes, lower, upper);
}

template <class Number> double BytesToVoxelizeMesh(const Axes& axes, const IndexedTriangles<Number>& mesh, std::int64_t finestLOD)
{
    for (const auto& triangle : mesh.indices) {
        for (const std::uint32_t vertex : triangle) RequireVertexIndex(vertex, mesh.vertices.size());
    }
    return BytesOfAll(SizeOfAll(ExtentsOf(axes, mesh), mesh, finestLOD), axes, mesh);
}

} // namespace

ModelSize SizeOfVoxels(const Extents& extents, std::span<const WorldTriangle> triangles, std::int64_t finestLOD)
{
    return SizeOfAll(extents, triangles, finestLOD);
}

double BytesToVoxelize(const ModelSize& size, const Axes& axes, std::span<const WorldTriangle> triangles)
{
    return BytesOfAll(size, axes, triangles);
}

double BytesToVoxelize(const Axes& axes, std::span<const std::array<double, 3>> vertices,
                       std::span<const std::array<std::uint32_t, 3>> triangles, std::int64_t finestLOD)
{
    return BytesToVoxelizeMesh(axes, IndexedTriangles<double>{vertices, triangles}, finestLOD);
}

double BytesToVoxelize(const Axes& axes, std::span<const std::array<float, 3>> vertices,
                       std::span<const std::array<std::uint32_t, 3>> triangles, std::int64_t finestLOD)
{
    return BytesToVoxelizeMesh(axes, IndexedTriangles<float>{vertices, triangles}, finestLOD);
}

// A piece lies in up to eight chunks, in two on average, in vectors that grow.
double BytesToFileAndVoxelize(const ModelSize& size, const Axes& axes, std::span<const WorldTriangle> triangles)
{
    double pieces = 0;
    ForEachOutline(axes, triangles, size.lod, [&](const Outline& outline) { pieces += outline.Pieces(ChunkBox(size.lod)); });
    return BytesOfModel(size) + BytesOfRaster(size, triangles.size()) + size.stored * 1024 + pieces * 6 * sizeof(LatticeTriangle);
}

} // namespace brix
