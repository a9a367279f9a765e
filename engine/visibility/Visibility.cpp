#include "Visibility.h"

#include "../frame/Require.h"
#include "../operations/BasicOperations.h"
#include "Sight.h"
#include "SightOpening.h"
#include "SightSphere.h"

#include <optional>

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

Triple Held(const Triple& point)
{
    return {NearestCoordinate(point[0]), NearestCoordinate(point[1]), NearestCoordinate(point[2])};
}

// The voxels within so many base units of a point along each axis, and within the index space; if there are none, the voxel that
// is nearest to the point.
Extents ExtentsAround(const Axes& axes, const Triple& point, std::int64_t lod, const sight::SightReach& reach)
{
    const std::int64_t horizontal = MaxHorizontalExtent(lod);
    const std::int64_t vertical = MaxVerticalExtent(axes.VerticalLOD());
    const Triple lowest{-horizontal, -horizontal, -vertical};
    const Triple highest{horizontal - 1, horizontal - 1, vertical - 1};

    const Triple centre = Held(point);
    const Triple lower = Highest(lowest, axes.ContainingVoxel(Minus(centre, reach.towardsLower), lod));
    const Triple upper = Lowest(highest, axes.ContainingVoxel(Plus(centre, reach.towardsUpper), lod));
    if (Lowest(lower, upper) == lower) return Extents(axes, lower, upper, lod);
    const Triple nearest = Highest(lowest, Lowest(highest, axes.ContainingVoxel(centre, lod)));
    return Extents(axes, nearest, nearest, lod);
}

struct View
{
    Triple point;
    std::int64_t lod;
    std::int64_t maxRadius;
    double threshold;
    const sight::SightOpening* opening; // null: all around

    bool IsLimited() const { return maxRadius < UnlimitedRadius; }

    sight::SightReach ReachOfSphere() const { return {{maxRadius, maxRadius, maxRadius}, {maxRadius, maxRadius, maxRadius}}; }
    sight::SightReach Reach() const { return opening != nullptr ? sight::ReachOf(opening->Cap(), maxRadius) : ReachOfSphere(); }
};

VoxelModel<bool> VisibleInExtents(const VoxelModel<bool>& model, const View& view)
{
    const Axes& axes = model.AxesRef();
    const Extents& extents = model.ExtentsRef(view.lod);
    VoxelModel<bool> result(extents, view.lod, model.WhenLevelsAreMade());
    sight::PointOfView sight{view.point, view.threshold, extents.LowerIndices(), extents.UpperIndices(), view.opening};
    std::optional<sight::SightSphere> sphere;
    std::optional<sight::BothMasks> both;
    if (view.IsLimited()) {
        sphere.emplace(axes, view.point, view.lod, view.maxRadius);
        if (view.opening != nullptr) both.emplace(*sphere, *view.opening);
        sight.mask = both ? static_cast<const sight::SightMask*>(&*both) : &*sphere;
        const sight::SightReach reach = view.Reach();
        const Triple centre = Held(view.point);
        sight.lower = Highest(Highest(sight.lower, sphere->LowerIndices()),
                              axes.ContainingVoxel(Minus(centre, reach.towardsLower), view.lod));
        sight.upper =
            Lowest(Lowest(sight.upper, sphere->UpperIndices()), axes.ContainingVoxel(Plus(centre, reach.towardsUpper), view.lod));
    }
    sight::MarkFromPoint(result, model, sight, view.lod, FastestInstructionSet());
    return result;
}

// Visibility on extents that may reach beyond the model's: around the limiting sphere, or with the point. An empty result is the
// voxel in the middle of those extents.
VoxelModel<bool> VisibleBeyondExtents(const VoxelModel<bool>& model, const View& view)
{
    const Axes& axes = model.AxesRef();
    const Extents extents = view.IsLimited()
                                ? ExtentsAround(axes, view.point, view.lod, view.ReachOfSphere())
                                : ExtentsWith(model.ExtentsRef(view.lod), axes.ContainingVoxel(view.point, view.lod));
    const Extents needed = view.IsLimited() ? ExtentsAround(axes, view.point, view.lod, view.Reach()) : extents;
    const VoxelModel<bool> visible = VisibleInExtents(Resize(model, needed), view);
    return AutoCrop(IsEmpty(visible, view.lod) ? VoxelModel<bool>(extents, view.lod) : visible);
}

VoxelModel<bool> VisibleFromPoint(const VoxelModel<bool>& model, const View& view, bool autoAdjustExtents)
{
    if (autoAdjustExtents) return VisibleBeyondExtents(model, view);
    VoxelModel<bool> result = VisibleInExtents(model, view);
    result.FinishLevels(view.lod);
    return result;
}

void RequireDirection(const Triple& direction)
{
    Require(direction != Triple{}, "The direction for visibility computation cannot be [0, 0, 0].");
}

void RequirePyramidAngle(std::string_view quantity, double angle)
{
    RequireNumberAbove(quantity, 0, angle);
    RequireNumberBelow(quantity, 180, angle);
}

void RequireLevelAndRadius(const VoxelModel<bool>& model, std::int64_t lod, std::int64_t maxRadius)
{
    RequireVisibilityLevel(model, lod);
    RequireNotNegative("The maximum radius for visibility computation", maxRadius);
}

} // namespace

Extents ExtentsSweptFromPoint(const VoxelModel<bool>& voxelModel, const std::array<std::int64_t, 3>& point, long long lod,
                              long long maxRadius, bool autoAdjustExtents)
{
    RequireLevelAndRadius(voxelModel, lod, maxRadius);
    const View view{point, lod, maxRadius, 1, nullptr};
    const Extents& own = voxelModel.ExtentsRef(lod);
    if (!view.IsLimited()) return autoAdjustExtents ? ExtentsWith(own, voxelModel.AxesRef().ContainingVoxel(point, lod)) : own;
    const Extents around = ExtentsAround(voxelModel.AxesRef(), point, lod, view.ReachOfSphere());
    if (autoAdjustExtents) return around;
    return Extents(own.AxesRef(), own.LowerCornerClamp(own.UpperCornerClamp(around.LowerIndices())),
                   own.LowerCornerClamp(own.UpperCornerClamp(around.UpperIndices())), lod);
}

VoxelModel<bool> VisibilityFromDirection(const VoxelModel<bool>& voxelModel, const std::array<std::int64_t, 3>& direction,
                                         long long lod, double threshold)
{
    RequireDirection(direction);
    RequireVisibilityLevel(voxelModel, lod);

    VoxelModel<bool> result(voxelModel.ExtentsRef(lod), lod, voxelModel.WhenLevelsAreMade());
    sight::MarkFromDirection(result, voxelModel, direction, lod, threshold, FastestInstructionSet());
    result.FinishLevels(lod);
    return result;
}

VoxelModel<bool> VisibilityFromPoint(const VoxelModel<bool>& voxelModel, const std::array<std::int64_t, 3>& point, long long lod,
                                     long long maxRadius, double threshold, bool autoAdjustExtents)
{
    RequireLevelAndRadius(voxelModel, lod, maxRadius);
    return VisibleFromPoint(voxelModel, {point, lod, maxRadius, threshold, nullptr}, autoAdjustExtents);
}

VoxelModel<bool> VisibilityWithinCone(const VoxelModel<bool>& voxelModel, const std::array<std::int64_t, 3>& point,
                                      const std::array<std::int64_t, 3>& direction, double angle, long long lod,
                                      long long maxRadius, double threshold, bool autoAdjustExtents)
{
    constexpr const char* quantity = "The angle of the cone for visibility computation";
    RequireDirection(direction);
    RequireNumberAbove(quantity, 0, angle);
    RequireNumberAtMost(quantity, 360, angle);
    RequireLevelAndRadius(voxelModel, lod, maxRadius);

    std::optional<sight::SightCone> cone;
    if (angle < 360) cone.emplace(voxelModel.AxesRef(), point, lod, direction, angle);
    return VisibleFromPoint(voxelModel, {point, lod, maxRadius, threshold, cone ? &*cone : nullptr}, autoAdjustExtents);
}

VoxelModel<bool> VisibilityWithinPyramid(const VoxelModel<bool>& voxelModel, const std::array<std::int64_t, 3>& point,
                                         const std::array<std::int64_t, 3>& direction, double horizontalAngle,
                                         double verticalAngle, long long lod, long long maxRadius, double threshold,
                                         bool autoAdjustExtents)
{
    RequireDirection(direction);
    RequirePyramidAngle("The horizontal angle of the pyramid for visibility computation", horizontalAngle);
    RequirePyramidAngle("The vertical angle of the pyramid for visibility computation", verticalAngle);
    RequireLevelAndRadius(voxelModel, lod, maxRadius);

    const sight::SightPyramid pyramid(voxelModel.AxesRef(), point, lod, direction, horizontalAngle, verticalAngle);
    return VisibleFromPoint(voxelModel, {point, lod, maxRadius, threshold, &pyramid}, autoAdjustExtents);
}

} // namespace brix
