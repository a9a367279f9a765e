// Frames and boxes of voxels.
#include "Objects.h"

using namespace brix;
using namespace brix::capi;

// ---- Axes

std::int32_t brix_axes_create(double voxel_spacing_0, const double* voxel_origin, double voxel_rotation,
                              std::int64_t vertical_lod, brix_axes** result, brix_error* error)
{
    return Guarded(error, {voxel_origin, result},
                   [&] { Make(result, Axes(voxel_spacing_0, ThreeOf(voxel_origin), voxel_rotation, vertical_lod)); });
}

void brix_axes_free(brix_axes* axes) { delete axes; }

std::int32_t brix_axes_voxel_width(const brix_axes* axes, std::int64_t voxel_lod, double* result, brix_error* error)
{
    return Guarded(error, {axes, result}, [&] { *result = axes->axes.WorldVoxelWidth(voxel_lod); });
}

std::int32_t brix_axes_voxel_height(const brix_axes* axes, double* result, brix_error* error)
{
    return Guarded(error, {axes, result}, [&] { *result = axes->axes.WorldVoxelHeight(); });
}

std::int32_t brix_axes_voxel_origin(const brix_axes* axes, double* result_3, brix_error* error)
{
    return Guarded(error, {axes, result_3}, [&] { CopyThree(axes->axes.WorldVoxelOrigin(), result_3); });
}

std::int32_t brix_axes_voxel_rotation(const brix_axes* axes, double* result, brix_error* error)
{
    return Guarded(error, {axes, result}, [&] { *result = axes->axes.WorldVoxelRotation(); });
}

std::int32_t brix_axes_vertical_lod(const brix_axes* axes, std::int64_t* result, brix_error* error)
{
    return Guarded(error, {axes, result}, [&] { *result = axes->axes.VerticalLOD(); });
}

std::int32_t brix_axes_containing_voxel(const brix_axes* axes, const double* coords, std::int64_t voxel_lod,
                                        std::int64_t* result_3, brix_error* error)
{
    return Guarded(error, {axes, coords, result_3}, [&] {
        const Axes& frame = axes->axes;
        CopyThree(frame.ContainingVoxel(frame.FromWorldCoordinates(ThreeOf(coords)), voxel_lod), result_3);
    });
}

std::int32_t brix_axes_voxel_corner(const brix_axes* axes, const std::int64_t* voxel_indices, std::int64_t voxel_lod,
                                    double* result_3, brix_error* error)
{
    return Guarded(error, {axes, voxel_indices, result_3}, [&] {
        const Axes& frame = axes->axes;
        CopyThree(frame.ToWorldCoordinates(frame.VoxelCorner(ThreeOf(voxel_indices), voxel_lod)), result_3);
    });
}

std::int32_t brix_axes_voxel_center(const brix_axes* axes, const std::int64_t* voxel_indices, std::int64_t voxel_lod,
                                    double* result_3, brix_error* error)
{
    return Guarded(error, {axes, voxel_indices, result_3}, [&] {
        const Axes& frame = axes->axes;
        CopyThree(frame.ToWorldCoordinates(frame.VoxelCenter(ThreeOf(voxel_indices), voxel_lod)), result_3);
    });
}

std::int32_t brix_axes_containing_voxels(const brix_axes* axes, const double* points, std::int64_t point_count,
                                         std::int64_t voxel_lod, std::int64_t* result, brix_error* error)
{
    return Guarded(error, {axes}, [&] {
        RequireItems(points, point_count, 3, "points");
        RequireItems(result, point_count, 3, "points");
        const Axes& frame = axes->axes;
        WatchedLoop loop(static_cast<std::size_t>(point_count));
        for (std::int64_t i = 0; i < 3 * point_count; i += 3, loop.Step())
            CopyThree(frame.ContainingVoxel(frame.FromWorldCoordinates(ThreeOf(points + i)), voxel_lod), result + i);
    });
}

std::int32_t brix_axes_voxel_centers(const brix_axes* axes, const std::int64_t* voxel_indices, std::int64_t voxel_count,
                                     std::int64_t voxel_lod, double* result, brix_error* error)
{
    return Guarded(error, {axes}, [&] {
        RequireItems(voxel_indices, voxel_count, 3, "voxels");
        RequireItems(result, voxel_count, 3, "voxels");
        const Axes& frame = axes->axes;
        WatchedLoop loop(static_cast<std::size_t>(voxel_count));
        for (std::int64_t i = 0; i < 3 * voxel_count; i += 3, loop.Step())
            CopyThree(frame.ToWorldCoordinates(frame.VoxelCenter(ThreeOf(voxel_indices + i), voxel_lod)), result + i);
    });
}

std::int32_t brix_axes_validate_distance(const brix_axes* axes, double distance, double* result, brix_error* error)
{
    constexpr std::int64_t noLimit = std::int64_t{1} << 62;
    return Guarded(error, {axes, result}, [&] {
        const Axes& frame = axes->axes;
        *result = distance == -1.0 ? frame.ToWorldDistance(noLimit) : distance;
    });
}

// ---- Extents

std::int32_t brix_extents_create(const brix_axes* axes, const std::int64_t* lower_indices, const std::int64_t* upper_indices,
                                 std::int64_t voxel_lod, brix_extents** result, brix_error* error)
{
    return Guarded(error, {axes, lower_indices, upper_indices, result},
                   [&] { Make(result, Extents(axes->axes, ThreeOf(lower_indices), ThreeOf(upper_indices), voxel_lod)); });
}

void brix_extents_free(brix_extents* extents) { delete extents; }

std::int32_t brix_extents_axes(const brix_extents* extents, brix_axes** result, brix_error* error)
{
    return Guarded(error, {extents, result}, [&] { Make(result, extents->extents.AxesRef()); });
}

std::int32_t brix_extents_lower_indices(const brix_extents* extents, std::int64_t* result_3, brix_error* error)
{
    return Guarded(error, {extents, result_3}, [&] { CopyThree(extents->extents.LowerIndices(), result_3); });
}

std::int32_t brix_extents_upper_indices(const brix_extents* extents, std::int64_t* result_3, brix_error* error)
{
    return Guarded(error, {extents, result_3}, [&] { CopyThree(extents->extents.UpperIndices(), result_3); });
}

std::int32_t brix_extents_voxel_lod(const brix_extents* extents, std::int64_t* result, brix_error* error)
{
    return Guarded(error, {extents, result}, [&] { *result = extents->extents.VoxelLOD(); });
}

std::int32_t brix_extents_contains_voxel(const brix_extents* extents, const std::int64_t* voxel_indices, std::int32_t* result,
                                         brix_error* error)
{
    return Guarded(error, {extents, voxel_indices, result},
                   [&] { *result = extents->extents.ContainsVoxel(ThreeOf(voxel_indices)); });
}

std::int32_t brix_extents_closest_voxel(const brix_extents* extents, const std::int64_t* voxel_indices, std::int64_t* result_3,
                                        brix_error* error)
{
    return Guarded(error, {extents, voxel_indices, result_3}, [&] {
        const Extents& box = extents->extents;
        CopyThree(box.LowerCornerClamp(box.UpperCornerClamp(ThreeOf(voxel_indices))), result_3);
    });
}

std::int32_t brix_extents_rescaled_copy(const brix_extents* extents, std::int64_t new_lod, brix_extents** result,
                                        brix_error* error)
{
    return Guarded(error, {extents, result}, [&] { Make(result, extents->extents.RescaledCopy(new_lod)); });
}

std::int32_t brix_extents_voxel_count(const brix_extents* extents, double* result, brix_error* error)
{
    return Guarded(error, {extents, result}, [&] {
        const Extents& box = extents->extents;
        double count = 1;
        for (const std::int64_t side : Plus(Minus(box.UpperIndices(), box.LowerIndices()), {1, 1, 1}))
            count *= static_cast<double>(side);
        *result = count;
    });
}
