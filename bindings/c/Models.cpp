// Models, single voxels and slices.
#include "Objects.h"

#include <span>
#include <string>

using namespace brix;
using namespace brix::capi;

// Three integers in a row are a voxel, and a byte is an answer: the caller's memory is used in place.
static_assert(sizeof(Triple) == 3 * sizeof(std::int64_t) && sizeof(bool) == 1);

namespace {

// The iterator's constructor needs a model that stays where it is; sharing it first sees to that.
void MakeIterator(brix_iterator** result, const SharedVoxels& voxels, const Triple& voxelIndices, std::int64_t lod)
{
    Make(result, voxels, std::as_const(*voxels).FindVoxel(voxelIndices, lod));
}
using RowsAtIndex = std::vector<std::vector<bool>>(const VoxelModel<bool>&, std::int64_t, std::int64_t, bool, bool);

RowsAtIndex& RowsAcross(std::int32_t dimIndex)
{
    switch (dimIndex) {
    case 0:
        return RowsAtSliceXIndex;
    case 1:
        return RowsAtSliceYIndex;
    case 2:
        return RowsAtSliceZIndex;
    default:
        throw std::domain_error("The axis of a slice must be 0, 1 or 2. The value encountered was " + std::to_string(dimIndex) +
                                ".");
    }
}

// Runs use(vertices, triangles) on a mesh in the caller's memory whose counts and indices are right.
template <class Number, class Use>
auto WithMesh(const Number* vertices, std::int64_t vertexCount, const std::int32_t* indices, std::int64_t triangleCount,
              const Use& use)
{
    RequireItems(vertices, vertexCount, 3, "triangle mesh vertices");
    RequireItems(indices, triangleCount, 3, "triangles");
    const std::span points(reinterpret_cast<const std::array<Number, 3>*>(vertices), static_cast<std::size_t>(vertexCount));
    for (std::int64_t i = 0; i < 3 * triangleCount; ++i) RequireVertexIndex(indices[i], points.size());
    return use(points, std::span(reinterpret_cast<const std::array<std::uint32_t, 3>*>(indices),
                                 static_cast<std::size_t>(triangleCount)));
}

template <class Number>
std::int32_t VoxelizedMesh(const brix_axes* axes, const Number* vertices, std::int64_t vertexCount, const std::int32_t* indices,
                           std::int64_t triangleCount, std::int64_t finestLOD, brix_model** result, brix_error* error)
{
    const auto bytes = [&] {
        return WithMesh(vertices, vertexCount, indices, triangleCount, [&](const auto& points, const auto& triangles) {
            return BytesToVoxelize(axes->axes, points, triangles, finestLOD);
        });
    };
    return Guarded(error, {axes, result}, "the voxel model of the mesh", bytes, [&] {
        WithMesh(vertices, vertexCount, indices, triangleCount, [&](const auto& points, const auto& triangles) {
            MakeModel(result, Voxelize(axes->axes, points, triangles, finestLOD));
        });
    });
}

} // namespace

struct brix_rows
{
    std::vector<std::vector<bool>> rows;

    std::int64_t RowLength() const { return rows.empty() ? 0 : static_cast<std::int64_t>(rows.front().size()); }
};

// ---- Models

std::int32_t brix_model_create(const brix_extents* extents, std::int64_t finest_lod, brix_model** result, brix_error* error)
{
    return Guarded(error, {extents, result}, "a voxel model of these extents",
                   [&] { MakeModel(result, VoxelModel<bool>(extents->extents, finest_lod)); });
}

std::int32_t brix_model_from_triangles(const double* triangles, std::int64_t triangle_count, const brix_extents* extents,
                                       std::int64_t finest_lod, brix_model** result, brix_error* error)
{
    const auto bytes = [&] {
        const std::span<const WorldTriangle> given = TrianglesAt(triangles, triangle_count);
        return BytesToFileAndVoxelize(SizeOfVoxels(extents->extents, given, finest_lod), extents->extents.AxesRef(), given);
    };
    return Guarded(error, {extents, result}, "the voxel model of the triangles", bytes, [&] {
        const std::span<const WorldTriangle> given = TrianglesAt(triangles, triangle_count);
        TriangleModel filed(extents->extents);
        filed.AddWorldTriangles(given);
        VoxelModel<bool> voxels(extents->extents, finest_lod);
        VoxelizeTriangleModel(voxels, filed);
        MakeModel(result, std::move(voxels));
    });
}

std::int32_t brix_voxelize(const brix_axes* axes, const double* triangles, std::int64_t triangle_count, std::int64_t finest_lod,
                           brix_model** result, brix_error* error)
{
    const auto bytes = [&] {
        const std::span<const WorldTriangle> given = TrianglesAt(triangles, triangle_count);
        const Extents extents = DetectTriangleExtents(axes->axes, given);
        return BytesToVoxelize(SizeOfVoxels(extents, given, finest_lod), axes->axes, given);
    };
    return Guarded(error, {axes, result}, "the voxel model of the triangles", bytes,
                   [&] { MakeModel(result, Voxelize(axes->axes, TrianglesAt(triangles, triangle_count), finest_lod)); });
}

std::int32_t brix_voxelize_mesh(const brix_axes* axes, const double* vertices, std::int64_t vertex_count,
                                const std::int32_t* indices, std::int64_t triangle_count, std::int64_t finest_lod,
                                brix_model** result, brix_error* error)
{
    return VoxelizedMesh(axes, vertices, vertex_count, indices, triangle_count, finest_lod, result, error);
}

std::int32_t brix_voxelize_float_mesh(const brix_axes* axes, const float* vertices, std::int64_t vertex_count,
                                      const std::int32_t* indices, std::int64_t triangle_count, std::int64_t finest_lod,
                                      brix_model** result, brix_error* error)
{
    return VoxelizedMesh(axes, vertices, vertex_count, indices, triangle_count, finest_lod, result, error);
}

std::int32_t brix_most_bytes_of_model(const brix_extents* extents, std::int64_t finest_lod, double* result, brix_error* error)
{
    return Guarded(error, {extents, result}, [&] { *result = MostBytesOfModel(extents->extents, finest_lod); });
}

void brix_model_free(brix_model* model) { delete model; }

std::int32_t brix_model_axes(const brix_model* model, brix_axes** result, brix_error* error)
{
    return Guarded(error, {model, result}, [&] { Make(result, VoxelsOf(model).AxesRef()); });
}

std::int32_t brix_model_extents(const brix_model* model, std::int64_t voxel_lod, brix_extents** result, brix_error* error)
{
    return Guarded(error, {model, result}, [&] { Make(result, VoxelsOf(model).ExtentsRef(voxel_lod)); });
}

std::int32_t brix_model_finest_lod(const brix_model* model, std::int64_t* result, brix_error* error)
{
    return Guarded(error, {model, result}, [&] { *result = VoxelsOf(model).FinestLOD(); });
}

std::int32_t brix_are_filled(const brix_model* model, const std::int64_t* voxel_indices, std::int64_t voxel_count,
                             std::int64_t voxel_lod, std::uint8_t* result, brix_error* error)
{
    return Guarded(error, {model}, [&] {
        RequireItems(voxel_indices, voxel_count, 3, "voxels");
        RequireItems(result, voxel_count, 1, "voxels");
        const auto count = static_cast<std::size_t>(voxel_count);
        AreFilled(VoxelsOf(model), voxel_lod, {reinterpret_cast<const Triple*>(voxel_indices), count},
                  {reinterpret_cast<bool*>(result), count});
    });
}

std::int32_t brix_are_filled_at(const brix_model* model, const double* points, std::int64_t point_count, std::int64_t voxel_lod,
                                std::uint8_t* result, brix_error* error)
{
    return Guarded(error, {model}, [&] {
        RequireItems(points, point_count, 3, "points");
        RequireItems(result, point_count, 1, "points");
        const auto count = static_cast<std::size_t>(point_count);
        AreFilled(VoxelsOf(model), voxel_lod, std::span(reinterpret_cast<const std::array<double, 3>*>(points), count),
                  {reinterpret_cast<bool*>(result), count});
    });
}

// ---- Iterators

std::int32_t brix_iterator_create(const brix_model* model, const std::int64_t* voxel_indices, std::int64_t voxel_lod,
                                  brix_iterator** result, brix_error* error)
{
    return Guarded(error, {model, voxel_indices, result},
                   [&] { MakeIterator(result, model->voxels, ThreeOf(voxel_indices), voxel_lod); });
}

std::int32_t brix_iterator_at_point(const brix_model* model, const double* coords, std::int64_t voxel_lod, brix_iterator** result,
                                    brix_error* error)
{
    return Guarded(error, {model, coords, result}, [&] {
        const Triple voxelIndices = VoxelsOf(model).AxesRef().ContainingVoxel(BaseUnits(model, coords), voxel_lod);
        MakeIterator(result, model->voxels, voxelIndices, voxel_lod);
    });
}

void brix_iterator_free(brix_iterator* iterator) { delete iterator; }

std::int32_t brix_iterator_model(const brix_iterator* iterator, brix_model** result, brix_error* error)
{
    return Guarded(error, {iterator, result}, [&] { Make(result, iterator->voxels); });
}

std::int32_t brix_iterator_voxel_lod(const brix_iterator* iterator, std::int64_t* result, brix_error* error)
{
    return Guarded(error, {iterator, result}, [&] { *result = iterator->iterator.VoxelLOD(); });
}

std::int32_t brix_iterator_is_valid(const brix_iterator* iterator, std::int32_t* result, brix_error* error)
{
    return Guarded(error, {iterator, result}, [&] { *result = iterator->iterator.IsValid(); });
}

std::int32_t brix_iterator_voxel_indices(const brix_iterator* iterator, std::int64_t* result_3, brix_error* error)
{
    return Guarded(error, {iterator, result_3}, [&] { CopyThree(iterator->iterator.VoxelIndices(), result_3); });
}

std::int32_t brix_iterator_is_filled(const brix_iterator* iterator, std::int32_t* result, brix_error* error)
{
    return Guarded(error, {iterator, result}, [&] { *result = iterator->iterator.Value(); });
}

std::int32_t brix_iterator_voxel_center(const brix_iterator* iterator, double* result_3, brix_error* error)
{
    return Guarded(error, {iterator, result_3}, [&] {
        const ConstVoxelIterator& voxel = iterator->iterator;
        const Axes& axes = voxel.VoxelModelRef().AxesRef();
        CopyThree(axes.ToWorldCoordinates(axes.VoxelCenter(voxel.VoxelIndices(), voxel.VoxelLOD())), result_3);
    });
}

std::int32_t brix_iterator_advance(const brix_iterator* iterator, const std::int64_t* offsets, brix_iterator** result,
                                   brix_error* error)
{
    return Guarded(error, {iterator, offsets, result},
                   [&] { Make(result, iterator->voxels, iterator->iterator + ThreeOf(offsets)); });
}

// ---- Slices

std::int32_t brix_rows_at_slice(const brix_model* model, std::int32_t dim_index, std::int64_t slice_index, std::int64_t voxel_lod,
                                std::int32_t reverse_row_order, std::int32_t reverse_each_row, brix_rows** result,
                                brix_error* error)
{
    const auto bytes = [&] {
        RowsAcross(dim_index);
        const Extents& extents = VoxelsOf(model).ExtentsRef(voxel_lod);
        const auto [x, y, z] = Plus(Minus(extents.UpperIndices(), extents.LowerIndices()), {1, 1, 1});
        return BytesOfRows(static_cast<double>(dim_index == 2 ? y : z), static_cast<double>(dim_index == 0 ? y : x));
    };
    return Guarded(error, {model, result}, "the rows of the slice", bytes, [&] {
        const VoxelModel<bool>& voxels = VoxelsOf(model);
        Make(result, RowsAcross(dim_index)(voxels, slice_index, voxel_lod, reverse_row_order != 0, reverse_each_row != 0));
    });
}

void brix_rows_free(brix_rows* rows) { delete rows; }

std::int32_t brix_rows_size(const brix_rows* rows, std::int64_t* row_count, std::int64_t* row_length, brix_error* error)
{
    return Guarded(error, {rows, row_count, row_length}, [&] {
        *row_count = static_cast<std::int64_t>(rows->rows.size());
        *row_length = rows->RowLength();
    });
}

std::int32_t brix_rows_copy(const brix_rows* rows, std::int64_t first_row, std::int64_t row_count, std::uint8_t* destination,
                            brix_error* error)
{
    return Guarded(error, {rows}, [&] {
        RequirePart(first_row, row_count, static_cast<std::int64_t>(rows->rows.size()), destination);
        for (std::int64_t row = first_row; row < first_row + row_count; ++row) {
            for (const bool value : rows->rows[static_cast<std::size_t>(row)]) *destination++ = value ? 1 : 0;
        }
    });
}
