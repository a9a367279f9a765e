// Operations on models: the C++ function of the same name, between handles.
#include "Objects.h"

#include <algorithm>
#include <deque>
#include <string>

using namespace brix;
using namespace brix::capi;

namespace {

// How far growth or shrinkage moves faces, in voxels, towards lower and upper indices.
struct Reach
{
    Triple lower;
    Triple upper;

    Triple Both() const { return Plus(lower, upper); }
};
Reach AlongX(std::int64_t lower, std::int64_t upper) { return {{lower, 0, 0}, {upper, 0, 0}}; }
Reach AlongY(std::int64_t lower, std::int64_t upper) { return {{0, lower, 0}, {0, upper, 0}}; }
Reach AlongZ(std::int64_t lower, std::int64_t upper) { return {{0, 0, lower}, {0, 0, upper}}; }
Reach ByOne(std::int64_t, std::int64_t) { return {{1, 1, 1}, {1, 1, 1}}; }
Reach Sideways(std::int64_t diameter) { return {{diameter / 2, diameter / 2, 0}, {diameter / 2, diameter / 2, 0}}; }

// The box that growth may fill, if the extents follow it.
Extents ReachedExtents(const VoxelModel<bool>& voxels, const Reach& reach)
{
    const auto& [lower, upper] = reach;
    return Enlarge(EmptyLike(voxels), lower[0], upper[0], lower[1], upper[1], lower[2], upper[2]).ExtentsRef(voxels.FinestLOD());
}

double BytesToGrow(const VoxelModel<bool>& voxels, const Extents& extents, const Reach& reach, const VoxelModel<bool>* guide)
{
    const std::int64_t lod = voxels.FinestLOD();
    const ModelSize size = Within(SizeOf(voxels, lod), extents);
    if (guide == nullptr) return BytesToGrow(size, reach.Both(), nullptr);
    const ModelSize guideSize = Within(SizeAtLevel(*guide, lod), extents);
    return BytesToGrow(size, reach.Both(), &guideSize);
}

// change(model, numbers ..., guide, autoAdjustExtents) of the engine; all growth and shrinkage has this form.
template <class Change, class ReachOf, class... Numbers>
std::int32_t Changed(const char* asked, const Change& change, const ReachOf& reachOf, const brix_model* model,
                     const brix_model* guide, std::int32_t autoAdjustExtents, brix_model** result, brix_error* error,
                     Numbers... numbers)
{
    const bool autoAdjusts = autoAdjustExtents != 0;
    const auto estimate = [&] {
        const VoxelModel<bool>& voxels = VoxelsOf(model);
        std::optional<Voxels> emptyGuide;
        if (guide != nullptr) emptyGuide.emplace(EmptyLike(VoxelsOf(guide)));
        change(EmptyLike(voxels), numbers..., emptyGuide, autoAdjusts);
        const Reach reach = reachOf(numbers...);
        const Extents extents = autoAdjusts ? ReachedExtents(voxels, reach) : voxels.ExtentsRef(voxels.FinestLOD());
        return BytesToGrow(voxels, extents, reach, guide == nullptr ? nullptr : &VoxelsOf(guide));
    };
    return Guarded(error, {model, result}, asked, estimate, [&] {
        const Guide guideVoxels = guide == nullptr ? nullptr : &VoxelsOf(guide);
        MakeModel(result, change(VoxelsOf(model), numbers..., guideVoxels, autoAdjusts));
    });
}

// change(model) of the engine: a copy on other extents, or at another finest level.
template <class Change>
std::int32_t Rebuilt(const char* asked, const Change& change, const brix_model* model, brix_model** result, brix_error* error)
{
    const auto estimate = [&] {
        const VoxelModel<bool>& voxels = VoxelsOf(model);
        const VoxelModel<bool> empty = change(EmptyLike(voxels));
        const std::int64_t lod = empty.FinestLOD();
        return BytesToRebuild(SizeAtLevel(voxels, lod), empty.ExtentsRef(lod));
    };
    return Guarded(error, {model, result}, asked, estimate, [&] { MakeModel(result, change(VoxelsOf(model))); });
}

// make(model) of the engine, with the bytes that this takes; there are no arguments that could be wrong.
template <class MakeFrom>
std::int32_t Made(const char* asked, const MakeFrom& make, double (&bytesToMake)(const ModelSize&), const brix_model* model,
                  brix_model** result, brix_error* error)
{
    const auto estimate = [&] { return bytesToMake(SizeOf(VoxelsOf(model), VoxelsOf(model).FinestLOD())); };
    return Guarded(error, {model, result}, asked, estimate, [&] { MakeModel(result, make(VoxelsOf(model))); });
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

// A list of models at a level, for an estimate: their sizes, and the box of all of them.
struct ModelSizes
{
    // First tries the operation, try(models), on one voxel of each: wrong arguments are told as ever.
    template <class Try> ModelSizes(const std::vector<const VoxelModel<bool>*>& models, std::int64_t lod, const Try& tryOn)
    {
        std::deque<VoxelModel<bool>> small;
        std::vector<const VoxelModel<bool>*> tried;
        for (const VoxelModel<bool>* model : models)
            tried.push_back(model == nullptr ? nullptr : &small.emplace_back(OneVoxelLike(*model)));
        tryOn(tried);
        for (const VoxelModel<bool>* model : models) {
            sizes.push_back(SizeAtLevel(*model, lod));
            const Extents own = model->ExtentsRef(std::min(lod, model->FinestLOD())).RescaledCopy(lod);
            extents = !extents ? own
                               : Extents(own.AxesRef(), Lowest(extents->LowerIndices(), own.LowerIndices()),
                                         Highest(extents->UpperIndices(), own.UpperIndices()), lod);
        }
    }

    std::vector<ModelSize> sizes;
    std::optional<Extents> extents;
};

using Models = std::vector<const VoxelModel<bool>*>;

// combine(models) of the engine at a level.
template <class Combine>
std::int32_t Combined(const char* asked, const Combine& combine, const brix_model* const* models, std::int64_t count,
                      std::int64_t lod, brix_model** result, brix_error* error)
{
    const auto estimate = [&] {
        const ModelSizes sizes(ModelsAt(models, count), lod, combine);
        return BytesToCombine(sizes.sizes, *sizes.extents);
    };
    return Guarded(error, {result}, asked, estimate, [&] { MakeModel(result, combine(ModelsAt(models, count))); });
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
    const auto crop = [&](const VoxelModel<bool>& voxels) {
        return Crop(voxels, lower_x_depth, upper_x_depth, lower_y_depth, upper_y_depth, lower_z_depth, upper_z_depth);
    };
    return Rebuilt("the cropped voxel model", crop, model, result, error);
}

std::int32_t brix_enlarge(const brix_model* model, std::int64_t lower_x_padding, std::int64_t upper_x_padding,
                          std::int64_t lower_y_padding, std::int64_t upper_y_padding, std::int64_t lower_z_padding,
                          std::int64_t upper_z_padding, brix_model** result, brix_error* error)
{
    const auto enlarge = [&](const VoxelModel<bool>& voxels) {
        return Enlarge(voxels, lower_x_padding, upper_x_padding, lower_y_padding, upper_y_padding, lower_z_padding,
                       upper_z_padding);
    };
    return Rebuilt("the enlarged voxel model", enlarge, model, result, error);
}

std::int32_t brix_auto_crop(const brix_model* model, brix_model** result, brix_error* error)
{
    const auto bytes = [&] { return BytesOfModel(SizeOf(VoxelsOf(model), VoxelsOf(model).FinestLOD())); };
    return Guarded(error, {model, result}, "the cropped voxel model", bytes,
                   [&] { MakeModel(result, AutoCrop(VoxelsOf(model))); });
}

std::int32_t brix_relocate(const brix_model* model, const brix_axes* new_axes, brix_model** result, brix_error* error)
{
    const auto relocate = [&](const VoxelModel<bool>& voxels) {
        RequireGiven(new_axes);
        return Relocate(voxels, new_axes->axes);
    };
    return Rebuilt("the relocated voxel model", relocate, model, result, error);
}

std::int32_t brix_resize(const brix_model* model, const brix_extents* new_extents, brix_model** result, brix_error* error)
{
    const auto resize = [&](const VoxelModel<bool>& voxels) {
        RequireGiven(new_extents);
        return Resize(voxels, new_extents->extents);
    };
    return Rebuilt("the resized voxel model", resize, model, result, error);
}

std::int32_t brix_refine(const brix_model* model, std::int64_t new_finest_lod, brix_model** result, brix_error* error)
{
    const auto refine = [&](const VoxelModel<bool>& voxels) { return Refine(voxels, new_finest_lod); };
    return Rebuilt("the refined voxel model", refine, model, result, error);
}

// ---- Boolean operations

std::int32_t brix_union(const brix_model* const* models, std::int64_t model_count, std::int64_t voxel_lod,
                        std::int32_t auto_adjust_extents, brix_model** result, brix_error* error)
{
    const auto unite = [&](const Models& all) { return Union(all, voxel_lod, auto_adjust_extents != 0); };
    return Combined("the union of the voxel models", unite, models, model_count, voxel_lod, result, error);
}

std::int32_t brix_intersect(const brix_model* const* models, std::int64_t model_count, std::int64_t voxel_lod,
                            std::int32_t auto_adjust_extents, brix_model** result, brix_error* error)
{
    const auto intersect = [&](const Models& all) { return Intersect(all, voxel_lod, auto_adjust_extents != 0); };
    return Combined("the intersection of the voxel models", intersect, models, model_count, voxel_lod, result, error);
}

std::int32_t brix_subtract(const brix_model* model, const brix_model* subtrahend, std::int64_t voxel_lod,
                           std::int32_t auto_adjust_extents, brix_model** result, brix_error* error)
{
    const auto subtract = [&](const Models& two) { return Subtract(*two[0], *two[1], voxel_lod, auto_adjust_extents != 0); };
    const auto bytes = [&] {
        const VoxelModel<bool>& voxels = VoxelsOf(model);
        const ModelSizes sizes({&voxels, &VoxelsOf(subtrahend)}, voxel_lod, subtract);
        const std::int64_t finest = voxels.FinestLOD();
        if (finest <= voxel_lod) return BytesToCombine(sizes.sizes, *sizes.extents);
        const double copied = BytesOfModel(SizeOf(voxels, finest)) + BytesOfModel(Refined(sizes.sizes[0], finest));
        return BytesToCombine(sizes.sizes, *sizes.extents, copied);
    };
    return Guarded(error, {model, subtrahend, result}, "the difference of the voxel models", bytes, [&] {
        MakeModel(result, subtract({&VoxelsOf(model), &VoxelsOf(subtrahend)}));
    });
}

std::int32_t brix_invert(const brix_model* model, brix_model** result, brix_error* error)
{
    return Made("the inverted voxel model", Invert, BytesToInvert, model, result, error);
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
    const auto bytes = [&] { return BytesToSplit(VoxelsOf(model)); };
    return Guarded(error, {model, result}, "the regions of the voxel model", bytes,
                   [&] { Make(result, ShareAll(AutoSplit(VoxelsOf(model)))); });
}

std::int32_t brix_label_regions(const brix_model* model, const brix_extents* box, std::uint32_t* labels, std::int64_t label_count,
                                std::int64_t* result, brix_error* error)
{
    const auto bytes = [&] { return BytesToSplit(VoxelsOf(model)); }; // the labels of runs, and more
    return Guarded(error, {model, box, labels, result}, "the regions of the voxel model", bytes, [&] {
        RequireItems(labels, label_count, 1, "labels");
        const std::size_t regions = LabelRegions(VoxelsOf(model), box->extents, {labels, static_cast<std::size_t>(label_count)});
        *result = static_cast<std::int64_t>(regions);
    });
}

std::int32_t brix_density_map(const brix_model* const* models, std::int64_t model_count, const double* weights,
                              std::int64_t weight_count, const double* levels, std::int64_t level_count, std::int64_t voxel_lod,
                              brix_models** result, brix_error* error)
{
    const auto map = [&](const Models& all) {
        return DensityMap(all, NumbersAt(weights, weight_count, "weights"), NumbersAt(levels, level_count, "levels"), voxel_lod);
    };
    const auto bytes = [&] {
        const ModelSizes sizes(ModelsAt(models, model_count), voxel_lod, map);
        const bool isEverywhere = std::any_of(levels, levels + level_count, [](double level) { return level <= 0; });
        return BytesToMapDensity(sizes.sizes, *sizes.extents, static_cast<double>(level_count), isEverywhere);
    };
    return Guarded(error, {result}, "the density map of the voxel models", bytes,
                   [&] { Make(result, ShareAll(map(ModelsAt(models, model_count)))); });
}

// ---- Growth and shrinkage

std::int32_t brix_expand_along_x(const brix_model* model, std::int32_t lower_offset, std::int32_t upper_offset,
                                 const brix_model* guide, std::int32_t auto_adjust_extents, brix_model** result,
                                 brix_error* error)
{
    return Changed("the expanded voxel model", ExpandAlongX, AlongX, model, guide, auto_adjust_extents, result, error,
                   lower_offset, upper_offset);
}

std::int32_t brix_expand_along_y(const brix_model* model, std::int32_t lower_offset, std::int32_t upper_offset,
                                 const brix_model* guide, std::int32_t auto_adjust_extents, brix_model** result,
                                 brix_error* error)
{
    return Changed("the expanded voxel model", ExpandAlongY, AlongY, model, guide, auto_adjust_extents, result, error,
                   lower_offset, upper_offset);
}

std::int32_t brix_expand_along_z(const brix_model* model, std::int32_t lower_offset, std::int32_t upper_offset,
                                 const brix_model* guide, std::int32_t auto_adjust_extents, brix_model** result,
                                 brix_error* error)
{
    return Changed("the expanded voxel model", ExpandAlongZ, AlongZ, model, guide, auto_adjust_extents, result, error,
                   lower_offset, upper_offset);
}

std::int32_t brix_reduce_along_x(const brix_model* model, std::int32_t lower_offset, std::int32_t upper_offset,
                                 const brix_model* guide, std::int32_t auto_adjust_extents, brix_model** result,
                                 brix_error* error)
{
    return Changed("the reduced voxel model", ReduceAlongX, AlongX, model, guide, auto_adjust_extents, result, error,
                   lower_offset, upper_offset);
}

std::int32_t brix_reduce_along_y(const brix_model* model, std::int32_t lower_offset, std::int32_t upper_offset,
                                 const brix_model* guide, std::int32_t auto_adjust_extents, brix_model** result,
                                 brix_error* error)
{
    return Changed("the reduced voxel model", ReduceAlongY, AlongY, model, guide, auto_adjust_extents, result, error,
                   lower_offset, upper_offset);
}

std::int32_t brix_reduce_along_z(const brix_model* model, std::int32_t lower_offset, std::int32_t upper_offset,
                                 const brix_model* guide, std::int32_t auto_adjust_extents, brix_model** result,
                                 brix_error* error)
{
    return Changed("the reduced voxel model", ReduceAlongZ, AlongZ, model, guide, auto_adjust_extents, result, error,
                   lower_offset, upper_offset);
}

std::int32_t brix_expand_by_one_voxel(const brix_model* model, std::int32_t horizontal_adjacency, std::int32_t vertical_adjacency,
                                      const brix_model* guide, std::int32_t auto_adjust_extents, brix_model** result,
                                      brix_error* error)
{
    return Changed("the expanded voxel model", ExpandByOneVoxel, ByOne, model, guide, auto_adjust_extents, result, error,
                   horizontal_adjacency, vertical_adjacency);
}

std::int32_t brix_reduce_by_one_voxel(const brix_model* model, std::int32_t horizontal_adjacency, std::int32_t vertical_adjacency,
                                      const brix_model* guide, std::int32_t auto_adjust_extents, brix_model** result,
                                      brix_error* error)
{
    return Changed("the reduced voxel model", ReduceByOneVoxel, ByOne, model, guide, auto_adjust_extents, result, error,
                   horizontal_adjacency, vertical_adjacency);
}

std::int32_t brix_expand_horizontally(const brix_model* model, std::int32_t diameter_offset, const brix_model* guide,
                                      std::int32_t auto_adjust_extents, brix_model** result, brix_error* error)
{
    return Changed("the expanded voxel model", ExpandHorizontally, Sideways, model, guide, auto_adjust_extents, result, error,
                   diameter_offset);
}

std::int32_t brix_reduce_horizontally(const brix_model* model, std::int32_t diameter_offset, const brix_model* guide,
                                      std::int32_t auto_adjust_extents, brix_model** result, brix_error* error)
{
    return Changed("the reduced voxel model", ReduceHorizontally, Sideways, model, guide, auto_adjust_extents, result, error,
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
    const auto fill = [&](const VoxelModel<bool>& voxels) {
        RequireGiven(point_coords);
        return FillFromPoint(voxels, BaseUnits(model, point_coords));
    };
    return Made("the filled voxel model", fill, BytesToFill, model, result, error);
}

std::int32_t brix_fill_exposed_regions(const brix_model* model, brix_model** result, brix_error* error)
{
    return Made("the filled voxel model", FillExposedRegions, BytesToFill, model, result, error);
}

std::int32_t brix_fill_enclosed_regions(const brix_model* model, brix_model** result, brix_error* error)
{
    return Made("the filled voxel model", FillEnclosedRegions, BytesToFill, model, result, error);
}

std::int32_t brix_sealed_fill(const brix_model* model, std::int32_t gap, brix_model** result, brix_error* error)
{
    const auto estimate = [&] {
        const VoxelModel<bool>& voxels = VoxelsOf(model);
        (void)SealedFill(EmptyLike(voxels), gap);
        return BytesToFillSealed(SizeOf(voxels, voxels.FinestLOD()), gap);
    };
    return Guarded(error, {model, result}, "the filled voxel model", estimate,
                   [&] { MakeModel(result, SealedFill(VoxelsOf(model), gap)); });
}

std::int32_t brix_find_leak(const brix_model* model, const double* point_coords, double* gap, brix_list** result,
                            brix_error* error)
{
    const auto estimate = [&] {
        const VoxelModel<bool>& voxels = VoxelsOf(model);
        (void)LeakStart(voxels, BaseUnits(model, point_coords));
        return BytesToFindLeak(SizeOf(voxels, voxels.FinestLOD()));
    };
    return Guarded(error, {model, point_coords, gap, result}, "the way out of the voxel model", estimate, [&] {
        const VoxelModel<bool>& voxels = VoxelsOf(model);
        const Axes& axes = voxels.AxesRef();
        std::optional<Leak> leak = FindLeak(voxels, BaseUnits(model, point_coords));
        const Gap place = leak && leak->gap ? *leak->gap : Gap{};
        std::vector<Triple> points;
        if (leak) points = std::move(leak->voxels);
        for (Triple& point : points) point = axes.VoxelCenter(point, voxels.FinestLOD());
        MakePointList(result, std::move(points), axes);
        std::copy(place.centre.begin(), place.centre.end(), gap);
        gap[3] = static_cast<double>(place.width);
    });
}
