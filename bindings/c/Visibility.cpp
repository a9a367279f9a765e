// Visibility.
#include "Objects.h"

#include <brix/frame/Product.h>

#include <cmath>

using namespace brix;
using namespace brix::capi;

namespace {

// A world direction in base units. The lattice is the world turned about z and scaled alike along all axes, so a direction is
// turned back and given a length, and neither the origin nor the voxel width has a part in it. 70000 voxels of level 0 are the
// length up to which points are converted exactly; nine digits of the direction survive, and one along an axis stays exactly
// along it.
Triple DirectionInBaseUnits(const Axes& axes, const std::array<double, 3>& worldDirection)
{
    // Divided by the largest component first: squares of very long or short directions would leave the doubles.
    double largest = 0;
    for (const double component : worldDirection) {
        if (!std::isfinite(component)) return {0, 0, 0};
        largest = std::max(largest, std::abs(component));
    }
    if (largest == 0) return {0, 0, 0};
    const double x = worldDirection[0] / largest;
    const double y = worldDirection[1] / largest;
    const double z = worldDirection[2] / largest;
    const double scale =
        static_cast<double>(Axes::TruncationBiasUnits) / std::sqrt(Product(x, x) + Product(y, y) + Product(z, z));

    const Axes::Conversion turn = axes.WorldConversion();
    return {std::llround((Product(turn.cos, x) + Product(turn.sin, y)) * scale),
            std::llround((Product(turn.cos, y) - Product(turn.sin, x)) * scale), std::llround(z * scale)};
}

// see(model, autoAdjustExtents) of the engine, which sweeps the extents that swept() tells.
template <class See, class Swept>
std::int32_t Seen(const char* asked, std::initializer_list<const void*> needed, const See& see, const Swept& swept,
                  const brix_model* model, std::int32_t autoAdjustExtents, brix_model** result, brix_error* error)
{
    const auto bytes = [&] {
        see(OneVoxelLike(VoxelsOf(model)), false);
        const Extents extents = swept(autoAdjustExtents != 0);
        return BytesToSee(SizeOf(VoxelsOf(model), extents.VoxelLOD()), extents);
    };
    return Guarded(error, needed, asked, bytes, [&] { MakeModel(result, see(VoxelsOf(model), autoAdjustExtents != 0)); });
}

// The same from a point, see(model, point, radius, autoAdjustExtents).
template <class See>
std::int32_t SeenFrom(const char* asked, std::initializer_list<const void*> needed, const See& see, const brix_model* model,
                      const double* pointCoords, std::int64_t lod, double maxRadius, std::int32_t autoAdjustExtents,
                      brix_model** result, brix_error* error)
{
    const auto radius = [&] { return VoxelsOf(model).AxesRef().FromWorldDistance(maxRadius); };
    return Seen(
        asked, needed,
        [&](const VoxelModel<bool>& voxels, bool autoAdjusts) {
            return see(voxels, BaseUnits(model, pointCoords), radius(), autoAdjusts);
        },
        [&](bool autoAdjusts) {
            return ExtentsSweptFromPoint(VoxelsOf(model), BaseUnits(model, pointCoords), lod, radius(), autoAdjusts);
        },
        model, autoAdjustExtents, result, error);
}

} // namespace

std::int32_t brix_visibility_from_direction(const brix_model* model, const double* direction, std::int64_t voxel_lod,
                                            double threshold, brix_model** result, brix_error* error)
{
    const auto see = [&](const VoxelModel<bool>& voxels, bool) {
        return VisibilityFromDirection(voxels, DirectionInBaseUnits(voxels.AxesRef(), ThreeOf(direction)), voxel_lod, threshold);
    };
    const auto swept = [&](bool) { return VoxelsOf(model).ExtentsRef(voxel_lod); };
    return Seen("what is visible along the direction", {model, direction, result}, see, swept, model, 0, result, error);
}

std::int32_t brix_visibility_from_point(const brix_model* model, const double* point_coords, std::int64_t voxel_lod,
                                        double max_radius, double threshold, std::int32_t auto_adjust_extents,
                                        brix_model** result, brix_error* error)
{
    const auto see = [&](const VoxelModel<bool>& voxels, const Triple& point, std::int64_t radius, bool autoAdjusts) {
        return VisibilityFromPoint(voxels, point, voxel_lod, radius, threshold, autoAdjusts);
    };
    return SeenFrom("what is visible from the point", {model, point_coords, result}, see, model, point_coords, voxel_lod,
                    max_radius, auto_adjust_extents, result, error);
}

std::int32_t brix_visibility_within_cone(const brix_model* model, const double* point_coords, const double* direction,
                                         double angle, std::int64_t voxel_lod, double max_radius, double threshold,
                                         std::int32_t auto_adjust_extents, brix_model** result, brix_error* error)
{
    const auto see = [&](const VoxelModel<bool>& voxels, const Triple& point, std::int64_t radius, bool autoAdjusts) {
        return VisibilityWithinCone(voxels, point, DirectionInBaseUnits(voxels.AxesRef(), ThreeOf(direction)), angle, voxel_lod,
                                    radius, threshold, autoAdjusts);
    };
    return SeenFrom("what is visible within the cone", {model, point_coords, direction, result}, see, model, point_coords,
                    voxel_lod, max_radius, auto_adjust_extents, result, error);
}

std::int32_t brix_visibility_within_pyramid(const brix_model* model, const double* point_coords, const double* direction,
                                            double horizontal_angle, double vertical_angle, std::int64_t voxel_lod,
                                            double max_radius, double threshold, std::int32_t auto_adjust_extents,
                                            brix_model** result, brix_error* error)
{
    const auto see = [&](const VoxelModel<bool>& voxels, const Triple& point, std::int64_t radius, bool autoAdjusts) {
        return VisibilityWithinPyramid(voxels, point, DirectionInBaseUnits(voxels.AxesRef(), ThreeOf(direction)),
                                       horizontal_angle, vertical_angle, voxel_lod, radius, threshold, autoAdjusts);
    };
    return SeenFrom("what is visible within the pyramid", {model, point_coords, direction, result}, see, model, point_coords,
                    voxel_lod, max_radius, auto_adjust_extents, result, error);
}
