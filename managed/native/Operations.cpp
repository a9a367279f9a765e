// Operations on models: the C++ function of the same name, between handles.
#include "Objects.h"

#include <string>

using namespace brix;
using namespace brix::capi;

namespace {

// grow(model, numbers ..., guide, autoAdjustExtents) of the engine; all growth and shrinkage has this form.
template <class Grow, class... Numbers>
std::int32_t Grown(const char* asked, const Grow& grow, const brix_model* model, const brix_model* guide,
                   std::int32_t autoAdjustExtents, brix_model** result, brix_error* error, Numbers... numbers)
{
    return Guarded(error, {model, result}, asked, [&] {
        const std::optional<VoxelModel<bool>> none;
        MakeModel(result, grow(VoxelsOf(model), numbers..., guide == nullptr ? none : *guide->voxels, autoAdjustExtents != 0));
    });
}

// Null entries are left to the engine.
std::vector<const VoxelModel<bool>*> ModelsAt(const brix_model* const* models, std::int64_t count)
{
    if (count < 0) {
        throw std::domain_error("The number of voxel models cannot be negative. The value encountered was " +
                                std::to_string(count) + ".");
    }
    if (count > 0) RequireGiven(models);
    std::vector<const VoxelModel<bool>*> voxels;
    for (std::int64_t i = 0; i < count; ++i) voxels.push_back(models[i] == nullptr ? nullptr : &VoxelsOf(models[i]));
    return voxels;
}

std::vector<double> NumbersAt(const double* numbers, std::int64_t count, std::string_view name)
{
    RequireItems(numbers, count, 1, name);
    return {numbers, numbers + count};
}

std::vector<SharedVoxels> ShareAll(std::vector<VoxelModel<bool>>&& models)
{
    std::vector<SharedVoxels> shared;
    shared.reserve(models.size());
    for (VoxelModel<bool>& model : models) shared.push_back(Share(std::move(model)));
    return shared;
}

// nearest(model, point, numbers ...) of the engine.
template <class Nearest, class... Numbers>
std::int32_t Found(const Nearest& nearest, const brix_model* model, const double* pointCoords, brix_iterator** result,
                   brix_error* error, Numbers... numbers)
{
    return Guarded(error, {model, pointCoords, result}, [&] {
        const Triple point = BaseUnits(model, pointCoords);
        Make(result, model->voxels, nearest(VoxelsOf(model), point, numbers...));
    });
}

} // namespace

// ---- Basic operations

std::int32_t brix_is_empty(const brix_model* model, std::int64_t voxel_lod, std::int32_t* result, brix_error* error)
{
    return Guarded(error, {model, result}, [&] { *result = IsEmpty(VoxelsOf(model), voxel_lod); });
}

std::int32_t brix_is_full(const brix_model* model, std::int64_t voxel_lod, std::int32_t* result, brix_error* error)
{
    return Guarded(error, {model, result}, [&] { *result = IsFull(VoxelsOf(model), voxel_lod); });
}

std::int32_t brix_count_filled(const brix_model* model, std::int64_t voxel_lod, std::int64_t* result, brix_error* error)
{
    return Guarded(error, {model, result}, [&] { *result = CountFilled(VoxelsOf(model), voxel_lod); });
}

std::int32_t brix_crop(const brix_model* model, std::int64_t lower_x_depth, std::int64_t upper_x_depth,
                       std::int64_t lower_y_depth, std::int64_t upper_y_depth, std::int64_t lower_z_depth,
                       std::int64_t upper_z_depth, brix_model** result, brix_error* error)
{
    return Guarded(error, {model, result}, "the cropped voxel model", [&] {
        MakeModel(result, Crop(VoxelsOf(model), lower_x_depth, upper_x_depth, lower_y_depth, upper_y_depth, lower_z_depth,
                               upper_z_depth));
    });
}

std::int32_t brix_enlarge(const brix_model* model, std::int64_t lower_x_padding, std::int64_t upper_x_padding,
                          std::int64_t lower_y_padding, std::int64_t upper_y_padding, std::int64_t lower_z_padding,
                          std::int64_t upper_z_padding, brix_model** result, brix_error* error)
{
    return Guarded(error, {model, result}, "the enlarged voxel model", [&] {
        MakeModel(result, Enlarge(VoxelsOf(model), lower_x_padding, upper_x_padding, lower_y_padding, upper_y_padding,
                                  lower_z_padding, upper_z_padding));
    });
}

std::int32_t brix_auto_crop(const brix_model* model, brix_model** result, brix_error* error)
{
    return Guarded(error, {model, result}, "the cropped voxel model", [&] { MakeModel(result, AutoCrop(VoxelsOf(model))); });
}

std::int32_t brix_relocate(const brix_model* model, const brix_axes* new_axes, brix_model** result, brix_error* error)
{
    return Guarded(error, {model, new_axes, result}, "the relocated voxel model",
                   [&] { MakeModel(result, Relocate(VoxelsOf(model), new_axes->axes)); });
}

std::int32_t brix_resize(const brix_model* model, const brix_extents* new_extents, brix_model** result, brix_error* error)
{
    return Guarded(error, {model, new_extents, result}, "the resized voxel model",
                   [&] { MakeModel(result, Resize(VoxelsOf(model), new_extents->extents)); });
}

std::int32_t brix_refine(const brix_model* model, std::int64_t new_finest_lod, brix_model** result, brix_error* error)
{
    return Guarded(error, {model, result}, "the refined voxel model",
                   [&] { MakeModel(result, Refine(VoxelsOf(model), new_finest_lod)); });
}

// ---- Boolean operations

std::int32_t brix_union(const brix_model* const* models, std::int64_t model_count, std::int64_t voxel_lod,
                        std::int32_t auto_adjust_extents, brix_model** result, brix_error* error)
{
    return Guarded(error, {result}, "the union of the voxel models",
                   [&] { MakeModel(result, Union(ModelsAt(models, model_count), voxel_lod, auto_adjust_extents != 0)); });
}

std::int32_t brix_intersect(const brix_model* const* models, std::int64_t model_count, std::int64_t voxel_lod,
                            std::int32_t auto_adjust_extents, brix_model** result, brix_error* error)
{
    return Guarded(error, {result}, "the intersection of the voxel models",
                   [&] { MakeModel(result, Intersect(ModelsAt(models, model_count), voxel_lod, auto_adjust_extents != 0)); });
}

std::int32_t brix_subtract(const brix_model* model, const brix_model* subtrahend, std::int64_t voxel_lod,
                           std::int32_t auto_adjust_extents, brix_model** result, brix_error* error)
{
    return Guarded(error, {model, subtrahend, result}, "the difference of the voxel models", [&] {
        MakeModel(result, Subtract(VoxelsOf(model), VoxelsOf(subtrahend), voxel_lod, auto_adjust_extents != 0));
    });
}

std::int32_t brix_invert(const brix_model* model, brix_model** result, brix_error* error)
{
    return Guarded(error, {model, result}, "the inverted voxel model", [&] { MakeModel(result, Invert(VoxelsOf(model))); });
}

// ---- Regions and densities

void brix_models_free(brix_models* models) { delete models; }

std::int32_t brix_models_size(const brix_models* models, std::int64_t* result, brix_error* error)
{
    return Guarded(error, {models, result}, [&] { *result = static_cast<std::int64_t>(models->voxels.size()); });
}

std::int32_t brix_models_get(const brix_models* models, std::int64_t index, brix_model** result, brix_error* error)
{
    return Guarded(error, {models, result}, [&] {
        RequirePart(index, 1, static_cast<std::int64_t>(models->voxels.size()), result);
        Make(result, models->voxels[static_cast<std::size_t>(index)]);
    });
}

std::int32_t brix_auto_split(const brix_model* model, brix_models** result, brix_error* error)
{
    return Guarded(error, {model, result}, "the regions of the voxel model",
                   [&] { Make(result, ShareAll(AutoSplit(VoxelsOf(model)))); });
}

std::int32_t brix_density_map(const brix_model* const* models, std::int64_t model_count, const double* weights,
                              std::int64_t weight_count, const double* levels, std::int64_t level_count, std::int64_t voxel_lod,
                              brix_models** result, brix_error* error)
{
    return Guarded(error, {result}, "the density map of the voxel models", [&] {
        Make(result, ShareAll(DensityMap(ModelsAt(models, model_count), NumbersAt(weights, weight_count, "weights"),
                                         NumbersAt(levels, level_count, "levels"), voxel_lod)));
    });
}

// ---- Growth and shrinkage

std::int32_t brix_expand_along_x(const brix_model* model, std::int32_t lower_offset, std::int32_t upper_offset,
                                 const brix_model* guide, std::int32_t auto_adjust_extents, brix_model** result,
                                 brix_error* error)
{
    return Grown("the expanded voxel model", ExpandAlongX, model, guide, auto_adjust_extents, result, error, lower_offset,
                 upper_offset);
}

std::int32_t brix_expand_along_y(const brix_model* model, std::int32_t lower_offset, std::int32_t upper_offset,
                                 const brix_model* guide, std::int32_t auto_adjust_extents, brix_model** result,
                                 brix_error* error)
{
    return Grown("the expanded voxel model", ExpandAlongY, model, guide, auto_adjust_extents, result, error, lower_offset,
                 upper_offset);
}

std::int32_t brix_expand_along_z(const brix_model* model, std::int32_t lower_offset, std::int32_t upper_offset,
                                 const brix_model* guide, std::int32_t auto_adjust_extents, brix_model** result,
                                 brix_error* error)
{
    return Grown("the expanded voxel model", ExpandAlongZ, model, guide, auto_adjust_extents, result, error, lower_offset,
                 upper_offset);
}

std::int32_t brix_reduce_along_x(const brix_model* model, std::int32_t lower_offset, std::int32_t upper_offset,
                                 const brix_model* guide, std::int32_t auto_adjust_extents, brix_model** result,
                                 brix_error* error)
{
    return Grown("the reduced voxel model", ReduceAlongX, model, guide, auto_adjust_extents, result, error, lower_offset,
                 upper_offset);
}

std::int32_t brix_reduce_along_y(const brix_model* model, std::int32_t lower_offset, std::int32_t upper_offset,
                                 const brix_model* guide, std::int32_t auto_adjust_extents, brix_model** result,
                                 brix_error* error)
{
    return Grown("the reduced voxel model", ReduceAlongY, model, guide, auto_adjust_extents, result, error, lower_offset,
                 upper_offset);
}

std::int32_t brix_reduce_along_z(const brix_model* model, std::int32_t lower_offset, std::int32_t upper_offset,
                                 const brix_model* guide, std::int32_t auto_adjust_extents, brix_model** result,
                                 brix_error* error)
{
    return Grown("the reduced voxel model", ReduceAlongZ, model, guide, auto_adjust_extents, result, error, lower_offset,
                 upper_offset);
}

std::int32_t brix_expand_by_one_voxel(const brix_model* model, std::int32_t horizontal_adjacency, std::int32_t vertical_adjacency,
                                      const brix_model* guide, std::int32_t auto_adjust_extents, brix_model** result,
                                      brix_error* error)
{
    return Grown("the expanded voxel model", ExpandByOneVoxel, model, guide, auto_adjust_extents, result, error,
                 horizontal_adjacency, vertical_adjacency);
}

std::int32_t brix_reduce_by_one_voxel(const brix_model* model, std::int32_t horizontal_adjacency, std::int32_t vertical_adjacency,
                                      const brix_model* guide, std::int32_t auto_adjust_extents, brix_model** result,
                                      brix_error* error)
{
    return Grown("the reduced voxel model", ReduceByOneVoxel, model, guide, auto_adjust_extents, result, error,
                 horizontal_adjacency, vertical_adjacency);
}

std::int32_t brix_expand_horizontally(const brix_model* model, std::int32_t diameter_offset, const brix_model* guide,
                                      std::int32_t auto_adjust_extents, brix_model** result, brix_error* error)
{
    return Grown("the expanded voxel model", ExpandHorizontally, model, guide, auto_adjust_extents, result, error,
                 diameter_offset);
}

std::int32_t brix_reduce_horizontally(const brix_model* model, std::int32_t diameter_offset, const brix_model* guide,
                                      std::int32_t auto_adjust_extents, brix_model** result, brix_error* error)
{
    return Grown("the reduced voxel model", ReduceHorizontally, model, guide, auto_adjust_extents, result, error,
                 diameter_offset);
}

// ---- Nearest filled voxel

std::int32_t brix_nearest_filled_along_x(const brix_model* model, const double* point_coords, std::int64_t lower_offset,
                                         std::int64_t upper_offset, brix_iterator** result, brix_error* error)
{
    return Found(NearestFilledAlongX, model, point_coords, result, error, lower_offset, upper_offset);
}

std::int32_t brix_nearest_filled_along_y(const brix_model* model, const double* point_coords, std::int64_t lower_offset,
                                         std::int64_t upper_offset, brix_iterator** result, brix_error* error)
{
    return Found(NearestFilledAlongY, model, point_coords, result, error, lower_offset, upper_offset);
}

std::int32_t brix_nearest_filled_along_z(const brix_model* model, const double* point_coords, std::int64_t lower_offset,
                                         std::int64_t upper_offset, brix_iterator** result, brix_error* error)
{
    return Found(NearestFilledAlongZ, model, point_coords, result, error, lower_offset, upper_offset);
}

std::int32_t brix_nearest_filled_horizontally(const brix_model* model, const double* point_coords, std::int64_t diameter_offset,
                                              brix_iterator** result, brix_error* error)
{
    return Found(NearestFilledHorizontally, model, point_coords, result, error, diameter_offset);
}

// ---- Fills

std::int32_t brix_fill_from_point(const brix_model* model, const double* point_coords, brix_model** result, brix_error* error)
{
    return Guarded(error, {model, point_coords, result}, "the filled voxel model",
                   [&] { MakeModel(result, FillFromPoint(VoxelsOf(model), BaseUnits(model, point_coords))); });
}

std::int32_t brix_fill_exposed_regions(const brix_model* model, brix_model** result, brix_error* error)
{
    return Guarded(error, {model, result}, "the filled voxel model",
                   [&] { MakeModel(result, FillExposedRegions(VoxelsOf(model))); });
}

std::int32_t brix_fill_enclosed_regions(const brix_model* model, brix_model** result, brix_error* error)
{
    return Guarded(error, {model, result}, "the filled voxel model",
                   [&] { MakeModel(result, FillEnclosedRegions(VoxelsOf(model))); });
}
