// Path models, walking distances and ways.
#include "Objects.h"

#include <brix/frame/Require.h>

#include <algorithm>

using namespace brix;
using namespace brix::capi;

struct brix_distance_field
{
    DistanceField field;
};

struct brix_path
{
    Axes axes;
    Path path;
};

namespace {

std::vector<Triple> PointsAt(const Axes& axes, const double* coords, std::int64_t count)
{
    RequireItems(coords, count, 3, "points");
    std::vector<Triple> points;
    for (std::int64_t i = 0; i < count; ++i) points.push_back(axes.FromWorldCoordinates(ThreeOf(coords + 3 * i)));
    return points;
}

// The lowest voxels of an environment: as flat as that, or not.
VoxelModel<bool> OneColumnLike(const VoxelModel<bool>& voxels)
{
    const Extents& extents = voxels.ExtentsRef(voxels.FinestLOD());
    Triple upper = extents.LowerIndices();
    upper[2] = std::min(upper[2] + 1, extents.UpperIndices()[2]);
    return VoxelModel<bool>(Extents(extents.AxesRef(), extents.LowerIndices(), upper, extents.VoxelLOD()), voxels.FinestLOD());
}

Extents WithLayerAbove(const VoxelModel<bool>& voxels, std::int64_t lod)
{
    return Enlarge(EmptyLike(voxels), 0, 0, 0, 0, 0, 1).ExtentsRef(lod);
}

double BytesOfCopy(const PathModel& model) { return BytesOfModel(SizeOf(model.TraversableVoxels(), model.VoxelLOD())); }

double BytesToWalk(const PathModel& model)
{
    const VoxelModel<bool>& voxels = model.TraversableVoxels();
    return brix::BytesToWalk(SizeOf(voxels, model.VoxelLOD()), static_cast<double>(CountFilled(voxels, model.VoxelLOD())));
}

double WorldDistanceAt(const DistanceField& field, const double* pointCoords)
{
    const Axes& axes = field.AxesRef();
    const std::int64_t distance = field.Distance(axes.FromWorldCoordinates(ThreeOf(pointCoords)));
    return distance < 0 ? -1.0 : axes.ToWorldDistance(distance);
}

// A box at the level of a field, in its frame, with a number for each of its voxels.
void RequireBoxOf(const DistanceField& field, const Extents& box, std::int64_t count)
{
    Require(box.AxesRef() == field.AxesRef(), "The axes of a box of voxels must be those of the distance field.");
    Require(box.VoxelLOD() == field.VoxelLOD(), "The level of a box of voxels must be that of the distance field.");
    Require(static_cast<std::size_t>(count) == DenseSize(box), "There must be as many distances as the box has voxels.");
}

double ReachableCount(const DistanceField& field)
{
    double count = 0;
    field.ForEachReachable([&](const Triple&, std::int64_t) { ++count; });
    return count;
}

// No more stacks than voxels, nor layers of them.
double BytesToReach(const DistanceField& field)
{
    ModelSize size(field.ExtentsRef(), field.VoxelLOD());
    const double count = ReachableCount(field);
    size.filled = std::min(count, size.AllStacks());
    size.stored = std::min(count, size.chunks);
    size.layerBytes = std::min(count * 3 * ModelSize::BytesOfUniformStack, ModelSize::MostLayerBytes(size.filled));
    return 2 * BytesOfModel(size);
}

} // namespace

std::int32_t brix_path_model_create(const brix_model* environment, std::int64_t voxel_lod, std::int64_t agent_diameter_offset,
                                    std::int64_t agent_height_offset, std::int32_t auto_adjust_extents, brix_path_model** result,
                                    brix_error* error)
{
    const auto bytes = [&] {
        const VoxelModel<bool>& voxels = VoxelsOf(environment);
        const VoxelModel<bool> tried = OneColumnLike(voxels);
        const PathModel model(tried, voxel_lod, agent_diameter_offset, agent_height_offset, false);
        const ModelSize size = SizeOf(voxels, voxel_lod);
        return BytesToStand(auto_adjust_extents == 0 ? size : Within(size, WithLayerAbove(voxels, voxel_lod)),
                            agent_diameter_offset, agent_height_offset);
    };
    return Guarded(error, {environment, result}, "the path model", bytes, [&] {
        Make(result, environment->voxels,
             PathModel(VoxelsOf(environment), voxel_lod, agent_diameter_offset, agent_height_offset, auto_adjust_extents != 0));
    });
}

void brix_path_model_free(brix_path_model* path_model) { delete path_model; }

std::int32_t brix_path_model_environment(const brix_path_model* path_model, brix_model** result, brix_error* error)
{
    return Guarded(error, {path_model, result}, [&] { Make(result, path_model->environment); });
}

std::int32_t brix_path_model_traversable_voxels(const brix_path_model* path_model, brix_model** result, brix_error* error)
{
    return Guarded(
        error, {path_model, result}, "the traversable voxels", [&] { return BytesOfCopy(path_model->pathModel); },
        [&] { MakeModel(result, VoxelModel<bool>(path_model->pathModel.TraversableVoxels())); });
}

std::int32_t brix_path_model_voxel_lod(const brix_path_model* path_model, std::int64_t* result, brix_error* error)
{
    return Guarded(error, {path_model, result}, [&] { *result = path_model->pathModel.VoxelLOD(); });
}

std::int32_t brix_path_model_agent_diameter_offset(const brix_path_model* path_model, std::int64_t* result, brix_error* error)
{
    return Guarded(error, {path_model, result}, [&] { *result = path_model->pathModel.AgentDiameterOffset(); });
}

std::int32_t brix_path_model_agent_height_offset(const brix_path_model* path_model, std::int64_t* result, brix_error* error)
{
    return Guarded(error, {path_model, result}, [&] { *result = path_model->pathModel.AgentHeightOffset(); });
}

std::int32_t brix_path_model_generate_sample_points(const brix_path_model* path_model, double spacing, std::int64_t min_diameter,
                                                    brix_list** result, brix_error* error)
{
    const auto bytes = [&] {
        const PathModel& model = path_model->pathModel;
        model.RequireSampleGrid(model.TraversableVoxels().AxesRef().FromWorldDistance(spacing), min_diameter);
        return BytesToWalk(model);
    };
    return Guarded(error, {path_model, result}, "the sample points", bytes, [&] {
        const PathModel& model = path_model->pathModel;
        const Axes& axes = model.TraversableVoxels().AxesRef();
        MakePointList(result, model.GenerateSamplePoints(axes.FromWorldDistance(spacing), min_diameter), axes);
    });
}

// ---- Walking distances

std::int32_t brix_distance_field_create(const brix_path_model* path_model, const double* sources, std::int64_t source_count,
                                        double max_distance, brix_distance_field** result, brix_error* error)
{
    const auto bytes = [&] { return BytesToWalk(path_model->pathModel); };
    return Guarded(error, {path_model, result}, "the distance field", bytes, [&] {
        const PathModel& model = path_model->pathModel;
        const Axes& axes = model.TraversableVoxels().AxesRef();
        Make(result, DistanceField(model, PointsAt(axes, sources, source_count), axes.FromWorldDistance(max_distance)));
    });
}

void brix_distance_field_free(brix_distance_field* distance_field) { delete distance_field; }

std::int32_t brix_distance_field_distance(const brix_distance_field* distance_field, const double* point_coords, double* result,
                                          brix_error* error)
{
    return Guarded(error, {distance_field, point_coords, result},
                   [&] { *result = WorldDistanceAt(distance_field->field, point_coords); });
}

std::int32_t brix_distance_field_distances_at(const brix_distance_field* distance_field, const double* points,
                                              std::int64_t point_count, double* result, brix_error* error)
{
    return Guarded(error, {distance_field}, [&] {
        RequireItems(points, point_count, 3, "points");
        RequireItems(result, point_count, 1, "points");
        WatchedLoop loop(static_cast<std::size_t>(point_count));
        for (std::int64_t i = 0; i < point_count; ++i, loop.Step())
            result[i] = WorldDistanceAt(distance_field->field, points + 3 * i);
    });
}

std::int32_t brix_distance_field_copy_distances(const brix_distance_field* distance_field, const brix_extents* box,
                                                double* result, std::int64_t double_count, brix_error* error)
{
    return Guarded(error, {distance_field, box, result}, [&] {
        RequireItems(result, double_count, 1, "distances");
        const DistanceField& field = distance_field->field;
        const Extents& extents = box->extents;
        RequireBoxOf(field, extents, double_count);
        std::fill_n(result, double_count, -1.0);
        const Triple lower = extents.LowerIndices();
        const ByteStrides strides = DenseStrides(extents); // of a byte each: in voxels
        field.ForEachReachable([&](const Triple& voxel, std::int64_t distance) {
            if (!extents.ContainsVoxel(voxel)) return;
            const auto [x, y, z] = Minus(voxel, lower);
            result[x + y * strides.y + z * strides.z] = field.AxesRef().ToWorldDistance(distance);
        });
    });
}

std::int32_t brix_distance_field_farthest_distance(const brix_distance_field* distance_field, double* result, brix_error* error)
{
    return Guarded(error, {distance_field, result}, [&] {
        const DistanceField& field = distance_field->field;
        *result = field.AxesRef().ToWorldDistance(field.FarthestDistance());
    });
}

std::int32_t brix_distance_field_farthest_voxel(const brix_distance_field* distance_field, std::int64_t* result_3,
                                                brix_error* error)
{
    return Guarded(error, {distance_field, result_3}, [&] { CopyThree(distance_field->field.FarthestVoxel(), result_3); });
}

std::int32_t brix_distance_field_reachable_voxels(const brix_distance_field* distance_field, brix_model** result,
                                                  brix_error* error)
{
    return Guarded(
        error, {distance_field, result}, "the reachable voxels", [&] { return BytesToReach(distance_field->field); },
        [&] { MakeModel(result, distance_field->field.ReachableVoxels()); });
}

std::int32_t brix_distance_field_reachable_within(const brix_distance_field* distance_field, double max_distance,
                                                  brix_model** result, brix_error* error)
{
    const auto bytes = [&] { return max_distance < 0 ? 0.0 : BytesToReach(distance_field->field); };
    return Guarded(error, {distance_field, result}, "the reachable voxels", bytes, [&] {
        const DistanceField& field = distance_field->field;
        MakeModel(result, field.ReachableVoxels(field.AxesRef().FromWorldDistance(max_distance)));
    });
}

std::int32_t brix_distance_field_distances(const brix_distance_field* distance_field, brix_list** result, brix_error* error)
{
    const auto bytes = [&] { return 3 * sizeof(std::array<double, 4>) * ReachableCount(distance_field->field); };
    return Guarded(error, {distance_field, result}, "the list of distances", bytes, [&] {
        const DistanceField& field = distance_field->field;
        const Axes& axes = field.AxesRef();
        std::vector<std::array<double, 4>> distances;
        field.ForEachReachable([&](const Triple& voxelIndices, std::int64_t distance) {
            const auto [x, y, z] = axes.ToWorldCoordinates(axes.VoxelCenter(voxelIndices, field.VoxelLOD()));
            distances.push_back({x, y, z, axes.ToWorldDistance(distance)});
        });
        MakeList(result, std::move(distances), [](const std::array<double, 4>& numbers) { return numbers; });
    });
}

// ---- Ways

std::int32_t brix_path_create(const brix_distance_field* distance_field, const double* point_coords, brix_path** result,
                              brix_error* error)
{
    return Guarded(error, {distance_field, point_coords, result}, "the path", [&] {
        const DistanceField& field = distance_field->field;
        const Axes& axes = field.AxesRef();
        Make(result, axes, Path(field, axes.FromWorldCoordinates(ThreeOf(point_coords))));
    });
}

void brix_path_free(brix_path* path) { delete path; }

std::int32_t brix_path_length(const brix_path* path, double* result, brix_error* error)
{
    return Guarded(error, {path, result}, [&] { *result = path->axes.ToWorldDistance(path->path.Length()); });
}

std::int32_t brix_path_voxels(const brix_path* path, brix_model** result, brix_error* error)
{
    return Guarded(error, {path, result}, "the voxels of the path",
                   [&] { MakeModel(result, VoxelModel<bool>(path->path.Voxels())); });
}

std::int32_t brix_path_points(const brix_path* path, brix_list** result, brix_error* error)
{
    return Guarded(error, {path, result}, "the points of the path",
                   [&] { MakePointList(result, std::vector<Triple>(path->path.Points()), path->axes); });
}
