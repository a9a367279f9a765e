// What can take long, or much memory, of the C interface: calls on random operands, for properties that all of them have.
#pragma once

#include "Objects.h"

#include "support/RandomModels.h"

#include <gtest/gtest.h>

#include <functional>
#include <numeric>
#include <string>

namespace brix::tests {

template <class Object, class... Parameters, class... Arguments>
Owned<Object> Make(std::int32_t (*function)(Parameters...), const Arguments&... arguments)
{
    Object* object = nullptr;
    EXPECT_EQ(function(arguments..., &object, nullptr), BRIX_OK);
    return Owned<Object>(object);
}

// What works are done with: a model, another one on the same frame, and points in the middle of the first.
struct Operands
{
    std::string name;
    std::vector<double> triangles;     // in the middle of the voxels that the model holds
    std::vector<float> floats;         // the same
    std::vector<std::int32_t> corners; // of triangles, every one a vertex of its own
    std::array<double, 3> point;
    std::int64_t lod;
    double reach;
    Owned<brix_axes> axes;
    Owned<brix_extents> extents;
    Owned<brix_model> model;
    Owned<brix_model> other;
    Owned<brix_path_model> pathModel{};

    std::int64_t TriangleCount() const { return static_cast<std::int64_t>(triangles.size() / 9); }
    double Reach() const { return reach; } // of some views
    std::array<const brix_model*, 2> Both() const { return {model.get(), other.get()}; }
};

inline std::vector<double> TrianglesIn(const ReferenceModel& reference, const Axes& axes)
{
    std::vector<double> triangles;
    const std::int64_t lod = reference.VoxelLOD();
    reference.ForEachVoxel([&](const Triple& voxel) {
        if (!reference.Value(voxel)) return;
        const Triple centre = axes.VoxelCenter(voxel, lod);
        for (const Triple& step : {Triple{}, Triple{99, 0, 0}, Triple{0, 99, 99}})
            for (const double number : axes.ToWorldCoordinates(Plus(centre, step))) triangles.push_back(number);
    });
    return triangles;
}

inline Owned<brix_extents> Box(const brix_axes* axes, const Extents& extents)
{
    return Make<brix_extents>(brix_extents_create, axes, extents.LowerIndices().data(), extents.UpperIndices().data(),
                              extents.VoxelLOD());
}

inline Operands MakeOperands(std::uint64_t seed, std::int64_t finestLOD, const Extents& extents, std::string name)
{
    Random random(seed);
    const Axes& frame = extents.AxesRef();
    const ReferenceModel first = RandomContent(random, extents, finestLOD, finestLOD);
    const ReferenceModel second = RandomContent(random, extents, finestLOD, finestLOD);
    const std::array<double, 3> origin = frame.WorldVoxelOrigin();
    Operands operands;
    operands.name = std::move(name) + " of seed " + std::to_string(seed);
    operands.lod = finestLOD;
    operands.reach = 30 * frame.WorldVoxelWidth(finestLOD);
    operands.triangles = TrianglesIn(first, frame);
    operands.floats.assign(operands.triangles.begin(), operands.triangles.end());
    operands.corners.resize(operands.triangles.size() / 3);
    std::iota(operands.corners.begin(), operands.corners.end(), 0);
    operands.axes = Make<brix_axes>(brix_axes_create, frame.WorldVoxelWidth(0), origin.data(), frame.WorldVoxelRotation(),
                                    frame.VerticalLOD());
    operands.extents = Box(operands.axes.get(), extents);
    const auto count = [](const std::vector<double>& triangles) { return static_cast<std::int64_t>(triangles.size() / 9); };
    const std::vector<double> others = TrianglesIn(second, frame);
    operands.model = Make<brix_model>(brix_model_from_triangles, operands.triangles.data(), count(operands.triangles),
                                      operands.extents.get(), finestLOD);
    operands.other = Make<brix_model>(brix_model_from_triangles, others.data(), count(others), operands.extents.get(), finestLOD);
    Triple middle = extents.LowerIndices();
    for (std::size_t i = 0; i < 3; ++i) middle[i] += (extents.UpperIndices()[i] - middle[i]) / 2;
    operands.point = frame.ToWorldCoordinates(frame.VoxelCenter(middle, finestLOD));
    operands.pathModel =
        Make<brix_path_model>(brix_path_model_create, operands.model.get(), finestLOD, std::int64_t{1}, std::int64_t{2}, 1);
    return operands;
}

// Calls a function, whose result it frees, as (operands, error).
struct Work
{
    const char* name;
    std::function<std::int32_t(const Operands&, brix_error*)> run;
};

template <class Object, class Call> Work WorkOf(const char* name, const Call& call)
{
    return {name, [call](const Operands& operands, brix_error* error) {
                Object* object = nullptr;
                const std::int32_t status = call(operands, &object, error);
                const Owned<Object> owned(object);
                return status;
            }};
}

#define BRIX_WORK(Object, function, ...)                                                                                         \
    WorkOf<Object>(#function,                                                                                                    \
                   [](const Operands& o, Object** result, brix_error* error) { return function(__VA_ARGS__, result, error); })

inline const std::vector<Work> Works{
    BRIX_WORK(brix_model, brix_crop, o.model.get(), 1, 0, 0, 1, 0, 0),
    BRIX_WORK(brix_model, brix_enlarge, o.model.get(), 40, 5, 0, 40, 70, 0),
    BRIX_WORK(brix_model, brix_auto_crop, o.model.get()),
    BRIX_WORK(brix_model, brix_relocate, o.model.get(), o.axes.get()),
    BRIX_WORK(brix_model, brix_resize, o.model.get(), o.extents.get()),
    BRIX_WORK(brix_model, brix_refine, o.model.get(), 5),
    BRIX_WORK(brix_model, brix_union, o.Both().data(), 2, o.lod, 0),
    BRIX_WORK(brix_model, brix_union, o.Both().data(), 2, 5, 1),
    BRIX_WORK(brix_model, brix_intersect, o.Both().data(), 2, 5, 1),
    BRIX_WORK(brix_model, brix_subtract, o.model.get(), o.other.get(), o.lod / 2, 0),
    BRIX_WORK(brix_model, brix_invert, o.model.get()),
    BRIX_WORK(brix_models, brix_auto_split, o.model.get()),
    BRIX_WORK(brix_models, brix_density_map, o.Both().data(), 2, std::array{1.0, 2.0}.data(), 2, std::array{0.0, 2.0, 3.0}.data(),
              3, o.lod),
    BRIX_WORK(brix_model, brix_expand_along_x, o.model.get(), 1, 3, nullptr, 0),
    BRIX_WORK(brix_model, brix_expand_along_x, o.model.get(), 300, 40, nullptr, 1),
    BRIX_WORK(brix_model, brix_expand_along_y, o.model.get(), 50, 0, o.other.get(), 1),
    BRIX_WORK(brix_model, brix_expand_along_z, o.model.get(), 20, 100, o.other.get(), 1),
    BRIX_WORK(brix_model, brix_expand_along_z, o.model.get(), 2, 2, nullptr, 1),
    BRIX_WORK(brix_model, brix_reduce_along_x, o.model.get(), 1, 0, nullptr, 1),
    BRIX_WORK(brix_model, brix_reduce_along_y, o.model.get(), 1, 2, o.other.get(), 0),
    BRIX_WORK(brix_model, brix_reduce_along_z, o.model.get(), 1, 1, nullptr, 0),
    BRIX_WORK(brix_model, brix_expand_by_one_voxel, o.model.get(), 1, 1, nullptr, 1),
    BRIX_WORK(brix_model, brix_reduce_by_one_voxel, o.model.get(), 2, 1, o.other.get(), 1),
    BRIX_WORK(brix_model, brix_expand_horizontally, o.model.get(), 3, nullptr, 0),
    BRIX_WORK(brix_model, brix_expand_horizontally, o.model.get(), 100, nullptr, 1),
    BRIX_WORK(brix_model, brix_reduce_horizontally, o.model.get(), 3, o.other.get(), 0),
    BRIX_WORK(brix_model, brix_fill_from_point, o.model.get(), o.point.data()),
    BRIX_WORK(brix_model, brix_fill_exposed_regions, o.model.get()),
    BRIX_WORK(brix_model, brix_fill_enclosed_regions, o.model.get()),
    BRIX_WORK(brix_model, brix_sealed_fill, o.model.get(), 3),
    BRIX_WORK(brix_list, brix_find_leak, o.model.get(), o.point.data(), std::array<double, 4>{}.data()),
    BRIX_WORK(brix_model, brix_visibility_from_direction, o.model.get(), std::array{1.0, -2.0, 0.5}.data(), o.lod, 0.5),
    BRIX_WORK(brix_model, brix_visibility_from_direction, o.model.get(), std::array{0.0, 1.0, 0.0}.data(), o.lod, 0.5),
    BRIX_WORK(brix_model, brix_visibility_from_point, o.model.get(), o.point.data(), o.lod, 1e9, 0.3, 0),
    BRIX_WORK(brix_model, brix_visibility_from_point, o.model.get(), o.point.data(), o.lod, o.Reach(), 0.3, 1),
    BRIX_WORK(brix_model, brix_visibility_within_cone, o.model.get(), o.point.data(), std::array{1.0, 1.0, 0.0}.data(), 60, o.lod,
              o.Reach(), 0.3, 1),
    BRIX_WORK(brix_model, brix_visibility_within_pyramid, o.model.get(), o.point.data(), std::array{1.0, 1.0, 0.0}.data(), 60, 40,
              o.lod, o.Reach(), 0.3, 0),
    BRIX_WORK(brix_list, brix_tessellate_voxel_model, o.model.get(), o.lod),
    BRIX_WORK(brix_mesh, brix_surface_mesh, o.model.get(), o.lod, 0, 0),
    BRIX_WORK(brix_mesh, brix_surface_mesh, o.model.get(), o.lod, 1, 0),
    BRIX_WORK(brix_mesh, brix_surface_mesh, o.model.get(), o.lod, 1, 5),
    BRIX_WORK(brix_list, brix_cuboidize_voxel_model, o.model.get(), o.lod),
    BRIX_WORK(brix_list, brix_solidize_voxel_model, o.model.get(), o.lod),
    BRIX_WORK(brix_bytes, brix_save_npy, o.model.get(), o.lod, 0),
    BRIX_WORK(brix_bytes, brix_save_npy, o.model.get(), o.lod, 1),
    BRIX_WORK(brix_bytes, brix_save_nrrd, o.model.get(), o.lod),
    BRIX_WORK(brix_rows, brix_rows_at_slice, o.model.get(), 2, 0, o.lod, 0, 0),
    BRIX_WORK(brix_model, brix_model_from_triangles, o.triangles.data(), o.TriangleCount(), o.extents.get(), o.lod),
    BRIX_WORK(brix_model, brix_voxelize, o.axes.get(), o.triangles.data(), o.TriangleCount(), o.lod),
    BRIX_WORK(brix_model, brix_voxelize_mesh, o.axes.get(), o.triangles.data(), 3 * o.TriangleCount(), o.corners.data(),
              o.TriangleCount(), o.lod),
    BRIX_WORK(brix_model, brix_voxelize_float_mesh, o.axes.get(), o.floats.data(), 3 * o.TriangleCount(), o.corners.data(),
              o.TriangleCount(), o.lod),
    BRIX_WORK(brix_path_model, brix_path_model_create, o.model.get(), o.lod, 3, 4, 1),
    BRIX_WORK(brix_model, brix_path_model_traversable_voxels, o.pathModel.get()),
    BRIX_WORK(brix_list, brix_path_model_generate_sample_points, o.pathModel.get(), o.Reach(), 1),
};

} // namespace brix::tests
