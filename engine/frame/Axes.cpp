#include "Axes.h"

#include "Product.h"
#include "Require.h"
#include "SineAndCosine.h"

#include <limits>

namespace brix {
namespace {

constexpr double RadiansPerDegree = 0.017453292519943295;

// Every double in here converts to a 64-bit integer, and taking the bias off cannot overflow. NaN becomes the lower bound.
std::int64_t TruncateBiased(double biasedUnits)
{
    constexpr double limit = static_cast<double>(MaxCoordinate);
    const double atLeast = biasedUnits > -limit ? biasedUnits : -limit; // NaN is not greater
    const double within = atLeast < limit ? atLeast : limit;
    const std::int64_t units = static_cast<std::int64_t>(within) - Axes::TruncationBiasUnits;
    return within == limit ? MaxCoordinate : std::max(units, -MaxCoordinate);
}

// The lower corner of voxel `index` along an axis, without overflow for any index.
std::int64_t LowerCorner(std::int64_t index, std::int64_t spacing)
{
    const std::int64_t limit = MaxCoordinate / spacing;
    return std::clamp(index, -limit, limit) * spacing;
}

} // namespace

Axes::Axes(double worldVoxelSpacing0, const std::array<double, 3>& worldVoxelOrigin, double worldVoxelRotation,
           std::int64_t verticalLOD)
    : worldVoxelSpacing0_(worldVoxelSpacing0),
      worldVoxelOrigin_(worldVoxelOrigin),
      worldVoxelRotation_(worldVoxelRotation),
      verticalLOD_(verticalLOD)
{
    RequireLevel("The vertical level of detail for a set of axes", verticalLOD);

    // Of the rounded product, as hosts that turn things themselves compute it.
    const auto [sine, cosine] = SineAndCosineOfRadians(worldVoxelRotation * RadiansPerDegree);
    sinRotation_ = sine;
    cosRotation_ = cosine;
    worldPerUnit_ = worldVoxelSpacing0 / static_cast<double>(VoxelSpacing(0));
    unitsPerWorld_ = static_cast<double>(VoxelSpacing(0)) / worldVoxelSpacing0;
}

double Axes::WorldVoxelWidth(std::int64_t voxelLOD) const { return static_cast<double>(VoxelSpacing(voxelLOD)) * worldPerUnit_; }

double Axes::ToWorldDistance(std::int64_t distance) const { return static_cast<double>(distance) * worldPerUnit_; }

std::int64_t Axes::FromWorldDistance(double worldDistance) const
{
    constexpr double limit = static_cast<double>(std::numeric_limits<std::int64_t>::max()); // rounds up to 2^63
    const double distance = worldDistance * unitsPerWorld_;
    if (!(distance < limit)) return std::numeric_limits<std::int64_t>::max();
    return distance < -limit ? std::numeric_limits<std::int64_t>::min() : static_cast<std::int64_t>(distance);
}

std::array<double, 3> Axes::ToWorldCoordinates(const Triple& coords) const
{
    const auto u = static_cast<double>(coords[0]);
    const auto v = static_cast<double>(coords[1]);
    const auto w = static_cast<double>(coords[2]);
    return {worldVoxelOrigin_[0] + Product(Product(cosRotation_, u) - Product(sinRotation_, v), worldPerUnit_),
            worldVoxelOrigin_[1] + Product(Product(sinRotation_, u) + Product(cosRotation_, v), worldPerUnit_),
            worldVoxelOrigin_[2] + Product(w, worldPerUnit_)};
}

Triple Axes::FromWorldCoordinates(const std::array<double, 3>& worldCoords) const
{
    const Conversion by = WorldConversion();
    const double dx = worldCoords[0] - by.origin[0];
    const double dy = worldCoords[1] - by.origin[1];
    const double dz = worldCoords[2] - by.origin[2];
    return {TruncateBiased((Product(by.cos, dx) + Product(by.sin, dy) + by.bias) * by.unitsPerWorld),
            TruncateBiased((Product(-by.sin, dx) + Product(by.cos, dy) + by.bias) * by.unitsPerWorld),
            TruncateBiased((dz + by.bias) * by.unitsPerWorld)};
}

Triple Axes::ContainingVoxel(const Triple& coords, std::int64_t voxelLOD) const
{
    const Triple size = VoxelSize(voxelLOD);
    return {FloorDivide(coords[0], size[0]), FloorDivide(coords[1], size[1]), FloorDivide(coords[2], size[2])};
}

Triple Axes::VoxelCorner(const Triple& voxelIndices, std::int64_t voxelLOD) const
{
    const Triple size = VoxelSize(voxelLOD);
    return {LowerCorner(voxelIndices[0], size[0]), LowerCorner(voxelIndices[1], size[1]), LowerCorner(voxelIndices[2], size[2])};
}

Triple Axes::VoxelCenter(const Triple& voxelIndices, std::int64_t voxelLOD) const
{
    const Triple size = VoxelSize(voxelLOD);
    return Plus(VoxelCorner(voxelIndices, voxelLOD), {size[0] / 2, size[1] / 2, size[2] / 2});
}

bool operator==(const Axes& a, const Axes& b)
{
    return a.worldVoxelSpacing0_ == b.worldVoxelSpacing0_ && a.worldVoxelOrigin_ == b.worldVoxelOrigin_ &&
           a.worldVoxelRotation_ == b.worldVoxelRotation_ && a.verticalLOD_ == b.verticalLOD_;
}

} // namespace brix
