#include "Visibility.h"

#include "../frame/Require.h"
#include "../model/PropagateLevel.h"
#include "../operations/BasicOperations.h"
#include "Sight.h"
#include "SightSphere.h"

#include <optional>
#include <utility>

namespace brix {
namespace {

// From this radius on there is no limit. Below it, its square fits 64 bits.
constexpr std::int64_t UnlimitedRadius = 2'800'000'000;

void RequireVisibilityLevel(const VoxelModel<bool>& model, std::int64_t lod)
{
    RequireLevelOf(model.FinestLOD(), "The level of detail for visibility computation", lod);
}

// The extents enlarged to hold a voxel.
Extents ExtentsWith(const Extents& extents, const Triple& voxel)
{
    return Extents(extents.AxesRef(), Lowest(extents.LowerIndices(), voxel), Highest(extents.UpperIndices(), voxel),
                   extents.VoxelLOD());
}

// The box of the sphere within the index space; if it does not reach it, the voxel that is nearest to the point.
Extents ExtentsOfSphere(const Axes& axes, const Triple& point, std::int64_t lod, std::int64_t radius)
{
    const std::int64_t horizontal = MaxHorizontalExtent(lod);
    const std::int64_t vertical = MaxVerticalExtent(axes.VerticalLOD());
    const Triple lowest{-horizontal, -horizontal, -vertical};
    const Triple highest{horizontal - 1, horizontal - 1, vertical - 1};

    const Triple centre{NearestCoordinate(point[0]), NearestCoordinate(point[1]), NearestCoordinate(point[2])};
    const Triple lower = Highest(lowest, axes.ContainingVoxel(Minus(centre, {radius, radius, radius}), lod));
    const Triple upper = Lowest(highest, axes.ContainingVoxel(Plus(centre, {radius, radius, radius}), lod));
    if (Lowest(lower, upper) == lower) return Extents(axes, lower, upper, lod);
    const Triple nearest = Highest(lowest, Lowest(highest, axes.ContainingVoxel(centre, lod)));
    return Extents(axes, nearest, nearest, lod);
}

VoxelModel<bool> VisibleFromPoint(const VoxelModel<bool>& model, const Triple& point, std::int64_t lod, std::int64_t maxRadius,
                                  double threshold)
{
    const Extents& extents = model.ExtentsRef(lod);
    VoxelModel<bool> result(extents, lod);
    sight::PointOfView view{point, threshold, extents.LowerIndices(), extents.UpperIndices()};
    std::optional<sight::SightSphere> sphere;
    if (maxRadius < UnlimitedRadius) {
        sphere.emplace(model.AxesRef(), point, lod, maxRadius);
        view.mask = &*sphere;
        view.lower = Highest(view.lower, sphere->LowerIndices());
        view.upper = Lowest(view.upper, sphere->UpperIndices());
    }
    sight::MarkFromPoint(result, model, view, lod, FastestInstructionSet());
    return result;
}

} // namespace

VoxelModel<bool> VisibilityFromDirection(const VoxelModel<bool>& voxelModel, const std::array<std::int64_t, 3>& direction,
                                         long long lod, double threshold)
{
    Require(direction != Triple{}, "The direction for visibility computation cannot be [0, 0, 0].");
    RequireVisibilityLevel(voxelModel, lod);

    VoxelModel<bool> result(voxelModel.ExtentsRef(lod), lod);
    sight::MarkFromDirection(result, voxelModel, direction, lod, threshold, FastestInstructionSet());
    PropagateLevel(result, lod);
    return result;
}

VoxelModel<bool> VisibilityFromPoint(const VoxelModel<bool>& voxelModel, const std::array<std::int64_t, 3>& point, long long lod,
                                     long long maxRadius, double threshold, bool autoAdjustExtents)
{
    RequireVisibilityLevel(voxelModel, lod);
    RequireNotNegative("The maximum radius for visibility computation", maxRadius);

    if (autoAdjustExtents) {
        const Axes& axes = voxelModel.AxesRef();
        const Extents extents = maxRadius < UnlimitedRadius
                                    ? ExtentsOfSphere(axes, point, lod, maxRadius)
                                    : ExtentsWith(voxelModel.ExtentsRef(lod), axes.ContainingVoxel(point, lod));
        return AutoCrop(VisibleFromPoint(Resize(voxelModel, extents), point, lod, maxRadius, threshold));
    }
    VoxelModel<bool> result = VisibleFromPoint(voxelModel, point, lod, maxRadius, threshold);
    PropagateLevel(result, lod);
    return result;
}

} // namespace brix
