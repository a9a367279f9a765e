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

} // namespace

std::int32_t brix_visibility_from_direction(const brix_model* model, const double* direction, std::int64_t voxel_lod,
                                            double threshold, brix_model** result, brix_error* error)
{
    return Guarded(error, {model, direction, result}, "what is visible along the direction", [&] {
        const VoxelModel<bool>& voxels = VoxelsOf(model);
        const Triple inBaseUnits = DirectionInBaseUnits(voxels.AxesRef(), ThreeOf(direction));
        MakeModel(result, VisibilityFromDirection(voxels, inBaseUnits, voxel_lod, threshold));
    });
}

std::int32_t brix_visibility_from_point(const brix_model* model, const double* point_coords, std::int64_t voxel_lod,
                                        double max_radius, double threshold, std::int32_t auto_adjust_extents,
                                        brix_model** result, brix_error* error)
{
    return Guarded(error, {model, point_coords, result}, "what is visible from the point", [&] {
        const VoxelModel<bool>& voxels = VoxelsOf(model);
        MakeModel(result,
                  VisibilityFromPoint(voxels, BaseUnits(model, point_coords), voxel_lod,
                                      voxels.AxesRef().FromWorldDistance(max_radius), threshold, auto_adjust_extents != 0));
    });
}

std::int32_t brix_visibility_within_cone(const brix_model* model, const double* point_coords, const double* direction,
                                         double angle, std::int64_t voxel_lod, double max_radius, double threshold,
                                         std::int32_t auto_adjust_extents, brix_model** result, brix_error* error)
{
    return Guarded(error, {model, point_coords, direction, result}, "what is visible within the cone", [&] {
        const VoxelModel<bool>& voxels = VoxelsOf(model);
        const Axes& axes = voxels.AxesRef();
        MakeModel(result, VisibilityWithinCone(voxels, BaseUnits(model, point_coords),
                                               DirectionInBaseUnits(axes, ThreeOf(direction)), angle, voxel_lod,
                                               axes.FromWorldDistance(max_radius), threshold, auto_adjust_extents != 0));
    });
}

std::int32_t brix_visibility_within_pyramid(const brix_model* model, const double* point_coords, const double* direction,
                                            double horizontal_angle, double vertical_angle, std::int64_t voxel_lod,
                                            double max_radius, double threshold, std::int32_t auto_adjust_extents,
                                            brix_model** result, brix_error* error)
{
    return Guarded(error, {model, point_coords, direction, result}, "what is visible within the pyramid", [&] {
        const VoxelModel<bool>& voxels = VoxelsOf(model);
        const Axes& axes = voxels.AxesRef();
        MakeModel(result,
                  VisibilityWithinPyramid(voxels, BaseUnits(model, point_coords), DirectionInBaseUnits(axes, ThreeOf(direction)),
                                          horizontal_angle, vertical_angle, voxel_lod, axes.FromWorldDistance(max_radius),
                                          threshold, auto_adjust_extents != 0));
    });
}
