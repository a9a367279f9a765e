#include "SightSphere.h"

#include <cmath>

namespace brix::sight {
namespace {

// floor(sqrt(square)) for 0 .. 2800000000 squared. The root of the double may be one off, and so may the double itself.
std::int64_t WholeRoot(std::int64_t square)
{
    auto root = static_cast<std::int64_t>(std::sqrt(static_cast<double>(square)));
    while (root * root > square) --root;
    while ((root + 1) * (root + 1) <= square) ++root;
    return root;
}

} // namespace

// A point that is held back here is farther from all voxels than any radius.
SightSphere::SightSphere(const Axes& axes, const Triple& point, std::int64_t lod, std::int64_t radius)
    : point_{NearestCoordinate(point[0]), NearestCoordinate(point[1]), NearestCoordinate(point[2])},
      size_(axes.VoxelSize(lod)),
      radius_(radius)
{
    for (std::size_t i = 0; i < 3; ++i) {
        lower_[i] = LowerIndex(i, radius);
        upper_[i] = UpperIndex(i, radius);
    }
}

// Offsets up to a distance: index * size + size / 2 - point is not below -distance, and not above distance.
std::int64_t SightSphere::LowerIndex(std::size_t axis, std::int64_t distance) const
{
    return -FloorDivide(distance - point_[axis] + size_[axis] / 2, size_[axis]);
}

std::int64_t SightSphere::UpperIndex(std::size_t axis, std::int64_t distance) const
{
    return FloorDivide(distance + point_[axis] - size_[axis] / 2, size_[axis]);
}

std::int64_t SightSphere::Remaining(std::int64_t square, std::int64_t offset) const
{
    if (square < 0 || offset > radius_ || offset < -radius_) return -1;
    return square - offset * offset;
}

bool SightSphere::HoldsAny(const Triple& lower, const Triple& upper) const
{
    std::int64_t square = radius_ * radius_;
    for (std::size_t i = 0; i < 3; ++i) {
        const std::int64_t nearest = std::max({Offset(i, lower[i]), -Offset(i, upper[i]), std::int64_t{0}});
        square = Remaining(square, nearest);
    }
    return square >= 0;
}

bool SightSphere::HoldsAll(const Triple& lower, const Triple& upper) const
{
    std::int64_t square = radius_ * radius_;
    for (std::size_t i = 0; i < 3; ++i) square = Remaining(square, std::max(Offset(i, upper[i]), -Offset(i, lower[i])));
    return square >= 0;
}

VoxelPlate<bool> SightSphere::PlateAt(const Triple& corner) const
{
    const std::int64_t squareOfPlate = Remaining(radius_ * radius_, Offset(2, corner[2]));
    return MakePlate([&](std::size_t y) -> std::uint16_t {
        const std::int64_t square = Remaining(squareOfPlate, Offset(1, corner[1] + static_cast<std::int64_t>(y)));
        if (square < 0) return 0;
        const std::int64_t distance = WholeRoot(square);
        return RowBits(LowerIndex(0, distance) - corner[0], UpperIndex(0, distance) - corner[0]);
    });
}

} // namespace brix::sight
