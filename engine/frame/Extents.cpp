#include "Extents.h"

#include "Require.h"

#include <stdexcept>
#include <string>
#include <utility>

namespace brix {
namespace {

constexpr std::array<std::string_view, 3> LowerExtent{
    "The lower extent in the X direction", "The lower extent in the Y direction", "The lower extent in the Z direction"};
constexpr std::array<std::string_view, 3> UpperExtent{
    "The upper extent in the X direction", "The upper extent in the Y direction", "The upper extent in the Z direction"};

[[noreturn]] void ThrowInverted(std::string_view upperExtent, std::int64_t lower, std::int64_t upper)
{
    throw std::domain_error(std::string(upperExtent) +
                            " cannot be less than the lower extent. The lower extent encountered was " + std::to_string(lower) +
                            ". The upper extent encountered was " + std::to_string(upper) + ".");
}

} // namespace

Extents::Extents(const Axes& axes, const Triple& lowerIndices, const Triple& upperIndices, std::int64_t voxelLOD)
    : Extents(std::make_shared<const Axes>(axes), lowerIndices, upperIndices, voxelLOD)
{}

Extents::Extents(std::shared_ptr<const Axes> axes, const Triple& lowerIndices, const Triple& upperIndices, std::int64_t voxelLOD)
    : axes_(std::move(axes)), lower_{}, upper_{}, voxelLOD_(voxelLOD)
{
    const std::int64_t horizontal = MaxHorizontalExtent(voxelLOD);
    const Triple limits{horizontal, horizontal, MaxVerticalExtent(axes_->VerticalLOD())};

    for (std::size_t i = 0; i < 3; ++i) RequireAtLeast(LowerExtent[i], -limits[i], lowerIndices[i]);
    for (std::size_t i = 0; i < 3; ++i) RequireLessThan(UpperExtent[i], limits[i], upperIndices[i]);
    for (std::size_t i = 0; i < 3; ++i) {
        if (upperIndices[i] < lowerIndices[i]) ThrowInverted(UpperExtent[i], lowerIndices[i], upperIndices[i]);
        lower_[i] = static_cast<std::int32_t>(lowerIndices[i]);
        upper_[i] = static_cast<std::int32_t>(upperIndices[i]);
    }
    RequireLevel("The level of detail for a set of extents", voxelLOD);
}

Extents Extents::RescaledCopy(std::int64_t newLOD) const
{
    const std::int64_t level = NearestLevel(newLOD); // a level that does not exist is left for the constructor to report
    Triple lower = LowerIndices();
    Triple upper = UpperIndices();
    for (std::size_t i = 0; i < 2; ++i) {
        if (level > voxelLOD_) {
            const std::int64_t factor = std::int64_t{1} << (level - voxelLOD_);
            lower[i] = lower[i] * factor;
            upper[i] = (upper[i] + 1) * factor - 1;
        } else {
            const std::int64_t factor = std::int64_t{1} << (voxelLOD_ - level);
            lower[i] = FloorDivide(lower[i], factor);
            upper[i] = FloorDivide(upper[i], factor); // = ceil((upper + 1) / factor) - 1
        }
    }
    return Extents(axes_, lower, upper, newLOD);
}

} // namespace brix
