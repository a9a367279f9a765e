#include "Baselines.h"

#include "model/ForEachStack.h"

namespace brix::benchmarks {
namespace {

// An edge of the triangle in a projection on the axes a and b: voxels at p with normalA * p[a] + normalB * p[b] + offset < 0 lie
// outside of it.
struct Edge
{
    std::int64_t normalA, normalB, offset;
};

// The overlap test of Schwarz and Seidel, prepared for one triangle.
struct OverlapTest
{
    OverlapTest(const LatticeTriangle& triangle, const Triple& size);

    bool Touches(const Triple& p) const
    {
        const std::int64_t distance = normal[0] * p[0] + normal[1] * p[1] + normal[2] * p[2];
        const std::int64_t nearest = distance + plane1;
        const std::int64_t farthest = distance + plane2;
        if ((nearest > 0 && farthest > 0) || (nearest < 0 && farthest < 0)) return false;
        for (const Edge& edge : xy)
            if (edge.normalA * p[0] + edge.normalB * p[1] + edge.offset < 0) return false;
        for (const Edge& edge : yz)
            if (edge.normalA * p[1] + edge.normalB * p[2] + edge.offset < 0) return false;
        for (const Edge& edge : zx)
            if (edge.normalA * p[2] + edge.normalB * p[0] + edge.offset < 0) return false;
        return true;
    }

    Triple normal;
    std::int64_t plane1 = 0;
    std::int64_t plane2 = 0;
    std::array<Edge, 3> xy, yz, zx;
};

Triple Cross(const Triple& a, const Triple& b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

std::array<Edge, 3> EdgesIn(const LatticeTriangle& triangle, std::size_t a, std::size_t b, std::int64_t across,
                            const Triple& size)
{
    std::array<Edge, 3> edges;
    const std::int64_t sign = across < 0 ? -1 : 1;
    for (std::size_t i = 0; i < 3; ++i) {
        const Triple& from = triangle[i];
        const Triple along = Minus(triangle[(i + 1) % 3], from);
        const std::int64_t normalA = -along[b] * sign;
        const std::int64_t normalB = along[a] * sign;
        edges[i] = {normalA, normalB,
                    std::max<std::int64_t>(0, size[a] * normalA) + std::max<std::int64_t>(0, size[b] * normalB) -
                        normalA * from[a] - normalB * from[b]};
    }
    return edges;
}

OverlapTest::OverlapTest(const LatticeTriangle& triangle, const Triple& size)
    : normal(Cross(Minus(triangle[1], triangle[0]), Minus(triangle[2], triangle[0]))),
      xy(EdgesIn(triangle, 0, 1, normal[2], size)),
      yz(EdgesIn(triangle, 1, 2, normal[0], size)),
      zx(EdgesIn(triangle, 2, 0, normal[1], size))
{
    for (std::size_t i = 0; i < 3; ++i) {
        const std::int64_t critical = normal[i] > 0 ? size[i] : 0;
        plane1 += normal[i] * (critical - triangle[0][i]);
        plane2 += normal[i] * (size[i] - critical - triangle[0][i]);
    }
}

Triple VoxelHolding(const Triple& coords, const Triple& size)
{
    return {FloorDivide(coords[0], size[0]), FloorDivide(coords[1], size[1]), FloorDivide(coords[2], size[2])};
}

Triple Scaled(const Triple& voxel, const Triple& size) { return {voxel[0] * size[0], voxel[1] * size[1], voxel[2] * size[2]}; }

void VoxelizeTriangle(DenseVoxels& voxels, const Triple& size, const LatticeTriangle& triangle)
{
    const Triple least = Lowest(Lowest(triangle[0], triangle[1]), triangle[2]);
    const Triple greatest = Highest(Highest(triangle[0], triangle[1]), triangle[2]);
    const Triple lower = voxels.ExtentsRef().LowerCornerClamp(VoxelHolding(Minus(least, {1, 1, 1}), size));
    const Triple upper = voxels.ExtentsRef().UpperCornerClamp(VoxelHolding(greatest, size));

    // Counted from the box's corner, all numbers of the test stay inside 64 bits.
    const Triple corner = Scaled(lower, size);
    const OverlapTest test({Minus(triangle[0], corner), Minus(triangle[1], corner), Minus(triangle[2], corner)}, size);
    for (std::int64_t z = lower[2]; z <= upper[2]; ++z) {
        for (std::int64_t y = lower[1]; y <= upper[1]; ++y) {
            for (std::int64_t x = lower[0]; x <= upper[0]; ++x) {
                if (test.Touches(Minus(Scaled({x, y, z}, size), corner))) voxels.Set({x, y, z});
            }
        }
    }
}

// The bits of 16 voxels in a row, of a plate.
std::uint16_t RowOf(const DenseVoxels& voxels, const Triple& first)
{
    std::uint16_t row = 0;
    for (std::int64_t x = 0; x < 16; ++x) {
        const Triple voxel = Plus(first, {x, 0, 0});
        if (voxels.ExtentsRef().ContainsVoxel(voxel) && voxels.IsSet(voxel)) row |= static_cast<std::uint16_t>(1U << x);
    }
    return row;
}

bool StackHoldsExactly(const VoxelStack<bool>& stack, const Triple& corner, const DenseVoxels& voxels)
{
    for (std::int64_t z = 0; z < 64; ++z) {
        const VoxelPlate<bool>& plate = stack.LayerVoxelPlateRef(stack.LayerID(z));
        for (std::int64_t y = 0; y < 16; ++y) {
            if (plate.rows[static_cast<std::size_t>(y)] != RowOf(voxels, Plus(corner, {0, y, z}))) return false;
        }
    }
    return true;
}

} // namespace

DenseVoxels::DenseVoxels(const Extents& extents) : extents_(extents), lower_(extents.LowerIndices())
{
    const Triple size = Plus(Minus(extents.UpperIndices(), lower_), {1, 1, 1});
    rows_ = size[1];
    wordsPerRow_ = (size[0] + 63) / 64;
    words_.resize(static_cast<std::size_t>(wordsPerRow_ * rows_ * size[2]));
}

std::int64_t DenseVoxels::Count() const
{
    std::int64_t count = 0;
    for (const std::uint64_t word : words_) count += std::popcount(word);
    return count;
}

void VoxelizeDensely(DenseVoxels& voxels, const Triple& voxelSize, const std::vector<LatticeTriangle>& triangles)
{
    for (const LatticeTriangle& triangle : triangles) VoxelizeTriangle(voxels, voxelSize, triangle);
}

std::vector<LatticeTriangle> ConvertTriangles(const Axes& axes, const std::vector<WorldTriangle>& triangles)
{
    std::vector<LatticeTriangle> converted;
    converted.reserve(triangles.size());
    for (const auto& [a, b, c] : triangles) {
        converted.push_back({axes.FromWorldCoordinates(a), axes.FromWorldCoordinates(b), axes.FromWorldCoordinates(c)});
    }
    return converted;
}

void CoarsenFilledVoxels(DenseVoxels& coarse, const DenseVoxels& fine)
{
    fine.ForEachSet([&](const Triple& voxel) { coarse.Set({FloorDivide(voxel[0], 2), FloorDivide(voxel[1], 2), voxel[2]}); });
}

void CoarsenEveryVoxel(DenseVoxels& coarse, const DenseVoxels& fine)
{
    const auto isSet = [&](std::int64_t x, std::int64_t y, std::int64_t z) {
        return fine.ExtentsRef().ContainsVoxel({x, y, z}) && fine.IsSet({x, y, z});
    };
    ForEachTriple(coarse.ExtentsRef().LowerIndices(), coarse.ExtentsRef().UpperIndices(), [&](const Triple& voxel) {
        const auto [x, y, z] = voxel;
        if (isSet(2 * x, 2 * y, z) || isSet(2 * x + 1, 2 * y, z) || isSet(2 * x, 2 * y + 1, z) || isSet(2 * x + 1, 2 * y + 1, z))
            coarse.Set(voxel);
    });
}

std::int64_t CountFilledVoxels(const VoxelModel<bool>& model, std::int64_t lod)
{
    std::int64_t count = 0;
    ForEachStoredStack(model, lod, [&](const VoxelStore<bool>& store, const StackIndices& ij) {
        const VoxelStack<bool>& stack = store.VoxelStackRef(ij);
        if (stack.IsUnallocated()) return;
        for (std::int32_t layer = 0; layer < stack.LayerCount(); ++layer)
            count += Count(stack.LayerVoxelPlateRef(layer)) * (stack.UpperOffset(layer) - stack.LowerOffset(layer) + 1);
    });
    return count;
}

bool HoldsExactly(const VoxelModel<bool>& model, const DenseVoxels& voxels)
{
    bool isEqual = true;
    ForEachStoredStack(model, voxels.ExtentsRef().VoxelLOD(), [&](const VoxelStore<bool>& store, const StackIndices& ij) {
        isEqual = isEqual && StackHoldsExactly(store.VoxelStackRef(ij), store.LowerIndices(ij), voxels);
    });
    return isEqual;
}

} // namespace brix::benchmarks
