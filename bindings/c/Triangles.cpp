// Triangles, files, meshes, and lists of results.
#include "ByteCollector.h"
#include "Objects.h"

#include <filesystem>
#include <limits>
#include <ostream>
#include <string>
#include <string_view>
#include <type_traits>

using namespace brix;
using namespace brix::capi;

// Nine doubles in a row are a triangle: that is how the caller's memory is read in place.
static_assert(sizeof(WorldTriangle) == 9 * sizeof(double) && alignof(WorldTriangle) == alignof(double));
static_assert(std::is_trivially_copyable_v<WorldTriangle>);

namespace brix::capi {

void RequireItems(const void* numbers, std::int64_t count, std::int64_t width, std::string_view name)
{
    if (count > 0) RequireGiven(numbers);
    const auto most = static_cast<std::int64_t>(std::numeric_limits<std::ptrdiff_t>::max() / sizeof(double)) / width;
    if (count < 0 || count > most) {
        throw std::domain_error("The number of " + std::string(name) + " must lie between 0 and " + std::to_string(most) +
                                ". The value encountered was " + std::to_string(count) + ".");
    }
}

std::span<const WorldTriangle> TrianglesAt(const double* triangles, std::int64_t count)
{
    RequireItems(triangles, count, 9, "triangles");
    return {reinterpret_cast<const WorldTriangle*>(triangles), static_cast<std::size_t>(count)};
}

std::filesystem::path PathAt(const char* path, std::int64_t length)
{
    if (length < 0) {
        throw std::domain_error("The length of a file path cannot be negative. The value encountered was " +
                                std::to_string(length) + ".");
    }
    if (length > 0) RequireGiven(path);
    return length == 0 ? std::string() : std::string(path, static_cast<std::size_t>(length));
}

} // namespace brix::capi

namespace {

class TessellationList : public brix_list
{
public:
    TessellationList(const VoxelModel<bool>& voxels, std::int64_t lod) : tessellation_(voxels, lod) {}

    std::int64_t Size() const override { return tessellation_.TriangleCount(); }
    std::int64_t Width() const override { return 9; }

    void Copy(std::int64_t firstItem, std::int64_t itemCount, double* destination) const override
    {
        tessellation_.CopyTriangles(firstItem,
                                    {reinterpret_cast<WorldTriangle*>(destination), static_cast<std::size_t>(itemCount)});
    }

private:
    Tessellation tessellation_;
};

// ---- What meshes of both kinds have

const std::vector<std::array<double, 3>>& VerticesOf(const brix_mesh& mesh)
{
    const auto* const faces = std::get_if<FaceMesh>(&mesh.mesh);
    return faces != nullptr ? faces->vertices : std::get<TriangleMesh>(mesh.mesh).VerticesRef();
}

std::span<const std::array<float, 3>> NormalsOf(const brix_mesh& mesh)
{
    const auto* const faces = std::get_if<FaceMesh>(&mesh.mesh);
    if (faces == nullptr) return {};
    return faces->normals;
}

std::int64_t TriangleCount(const brix_mesh& mesh)
{
    const auto* const faces = std::get_if<FaceMesh>(&mesh.mesh);
    return faces != nullptr ? 2 * std::ssize(faces->faces) : std::ssize(std::get<TriangleMesh>(mesh.mesh).IndexedTrianglesRef());
}

// Calls visit(three indices) for some triangles.
template <class Visit> void ForEachTriangle(const brix_mesh& mesh, std::int64_t first, std::int64_t count, const Visit& visit)
{
    const auto begin = static_cast<std::size_t>(first);
    const auto end = begin + static_cast<std::size_t>(count);
    if (const auto* const faces = std::get_if<FaceMesh>(&mesh.mesh)) {
        for (std::size_t i = begin; i < end; ++i) visit(TriangleOf(*faces, i));
    } else {
        for (std::size_t i = begin; i < end; ++i) visit(std::get<TriangleMesh>(mesh.mesh).IndexedTrianglesRef()[i]);
    }
}

template <class Items, class Number>
void CopyPart(const Items& items, std::int64_t first, std::int64_t count, Number* destination)
{
    RequirePart(first, count, std::ssize(items), destination);
    for (std::int64_t i = 0; i < count; ++i) CopyThree(items[static_cast<std::size_t>(first + i)], destination + 3 * i);
}

} // namespace

// ---- Lists

void brix_list_free(brix_list* list) { delete list; }

std::int32_t brix_list_size(const brix_list* list, std::int64_t* item_count, std::int64_t* width, brix_error* error)
{
    return Guarded(error, {list, item_count, width}, [&] {
        *item_count = list->Size();
        *width = list->Width();
    });
}

std::int32_t brix_list_copy(const brix_list* list, std::int64_t first_item, std::int64_t item_count, double* destination,
                            brix_error* error)
{
    return Guarded(error, {list}, [&] {
        RequirePart(first_item, item_count, list->Size(), destination);
        if (item_count > 0) list->Copy(first_item, item_count, destination);
    });
}

// ---- Triangles

std::int32_t brix_triangle_normals(const double* triangles, std::int64_t triangle_count, double* result, brix_error* error)
{
    return Guarded(error, {}, [&] {
        const std::span<const WorldTriangle> given = TrianglesAt(triangles, triangle_count);
        if (triangle_count > 0) RequireGiven(result);
        for (std::size_t i = 0; i < given.size(); ++i) CopyThree(WorldTriangleNormal(given[i]), result + 3 * i);
    });
}

std::int32_t brix_load_stl(const char* path, std::int64_t path_length, std::int32_t swap_yz, brix_list** result,
                           brix_error* error)
{
    return Guarded(error, {result}, "the triangles of the STL file", [&] {
        MakeList(result, LoadTrianglesFromSTL(PathAt(path, path_length), swap_yz != 0),
                 [](const WorldTriangle& triangle) { return triangle; });
    });
}

std::int32_t brix_save_stl(const double* triangles, std::int64_t triangle_count, const char* path, std::int64_t path_length,
                           std::int32_t use_binary_format, std::int32_t swap_yz, brix_error* error)
{
    return Guarded(error, {}, "writing the STL file", [&] {
        const std::span<const WorldTriangle> given = TrianglesAt(triangles, triangle_count);
        const StlVariant variant = use_binary_format != 0 ? StlVariant::Binary : StlVariant::Ascii;
        SaveTrianglesToSTL(PathAt(path, path_length), given, variant, swap_yz != 0);
    });
}

std::int32_t brix_load_stl_bytes(const std::uint8_t* bytes, std::int64_t byte_count, std::int32_t swap_yz, brix_list** result,
                                 brix_error* error)
{
    return Guarded(error, {result}, "the triangles of the STL file", [&] {
        RequireItems(bytes, byte_count, 1, "bytes");
        MakeList(result, LoadTrianglesFromSTL({bytes, static_cast<std::size_t>(byte_count)}, swap_yz != 0),
                 [](const WorldTriangle& triangle) { return triangle; });
    });
}

std::int32_t brix_save_stl_bytes(const double* triangles, std::int64_t triangle_count, std::int32_t use_binary_format,
                                 std::int32_t swap_yz, brix_bytes** result, brix_error* error)
{
    return Guarded(error, {result}, "the bytes of the STL file", [&] {
        const std::span<const WorldTriangle> given = TrianglesAt(triangles, triangle_count);
        ByteCollector bytes;
        std::ostream stream(&bytes);
        stream.exceptions(std::ios::badbit); // so that memory that runs out is told as such
        const StlVariant variant = use_binary_format != 0 ? StlVariant::Binary : StlVariant::Ascii;
        SaveTrianglesToSTL(stream, given, variant, swap_yz != 0);
        Make(result, bytes.Take());
    });
}

std::int32_t brix_detect_triangle_extents(const brix_axes* axes, const double* triangles, std::int64_t triangle_count,
                                          brix_extents** result, brix_error* error)
{
    return Guarded(error, {axes, result}, [&] {
        const std::span<const WorldTriangle> given = TrianglesAt(triangles, triangle_count);
        Make(result, DetectTriangleExtents(axes->axes, given));
    });
}

std::int32_t brix_tessellate_voxel_model(const brix_model* model, std::int64_t voxel_lod, brix_list** result, brix_error* error)
{
    const auto bytes = [&] { return BytesToTessellate(BitRunCount(VoxelsOf(model), voxel_lod)); };
    return Guarded(error, {model, result}, "the triangles of the voxel model", bytes,
                   [&] { *result = new TessellationList(VoxelsOf(model), voxel_lod); });
}

std::int32_t brix_count_tessellation_triangles(const brix_model* model, std::int64_t voxel_lod, std::int64_t* result,
                                               brix_error* error)
{
    return Guarded(error, {model, result}, [&] { *result = Tessellation::CountTriangles(VoxelsOf(model), voxel_lod); });
}

std::int32_t brix_cuboidize_voxel_model(const brix_model* model, std::int64_t voxel_lod, brix_list** result, brix_error* error)
{
    const auto bytes = [&] { return BytesToCuboidize(BitRunCount(VoxelsOf(model), voxel_lod)); };
    return Guarded(error, {model, result}, "the boxes of the voxel model", bytes, [&] {
        const VoxelModel<bool>& voxels = VoxelsOf(model);
        MakeList(result, CuboidizeVoxelModel(voxels, voxel_lod), [axes = voxels.AxesRef(), voxel_lod](const VoxelCuboid& cuboid) {
            return ToWorldCuboid(cuboid, axes, voxel_lod);
        });
    });
}

std::int32_t brix_solidize_voxel_model(const brix_model* model, std::int64_t voxel_lod, brix_list** result, brix_error* error)
{
    const auto bytes = [&] { return BytesToSolidize(BitRunCount(VoxelsOf(model), voxel_lod)); };
    return Guarded(error, {model, result}, "the rectangles of the voxel model", bytes, [&] {
        const VoxelModel<bool>& voxels = VoxelsOf(model);
        MakeList(result, SolidizeVoxelModel(voxels, voxel_lod),
                 [axes = voxels.AxesRef(), voxel_lod](const VoxelRectangle& rectangle) {
                     return ToWorldRectangle(rectangle, axes, voxel_lod);
                 });
    });
}

// ---- Meshes

std::int32_t brix_mesh_from_triangles(const double* triangles, std::int64_t triangle_count, brix_mesh** result, brix_error* error)
{
    return Guarded(error, {result}, "the triangle mesh", [&] {
        const std::span<const WorldTriangle> given = TrianglesAt(triangles, triangle_count);
        TriangleMesh mesh({}, {});
        mesh.AddTriangles(given);
        Make(result, std::move(mesh));
    });
}

std::int32_t brix_mesh_create(const double* vertices, std::int64_t vertex_count, const std::int32_t* indices,
                              std::int64_t triangle_count, brix_mesh** result, brix_error* error)
{
    return Guarded(error, {result}, "the triangle mesh", [&] {
        RequireItems(vertices, vertex_count, 3, "triangle mesh vertices");
        RequireItems(indices, triangle_count, 3, "triangles");
        std::vector<std::array<double, 3>> points(static_cast<std::size_t>(vertex_count));
        std::copy_n(vertices, 3 * vertex_count, points.empty() ? nullptr : points.front().data());
        std::vector<Triple> triples(static_cast<std::size_t>(triangle_count));
        for (Triple& triple : triples) {
            for (std::int64_t& index : triple) index = *indices++;
        }
        Make(result, TriangleMesh(points, triples));
    });
}

void brix_mesh_free(brix_mesh* mesh) { delete mesh; }

std::int32_t brix_mesh_size(const brix_mesh* mesh, std::int64_t* vertex_count, std::int64_t* triangle_count, brix_error* error)
{
    return Guarded(error, {mesh, vertex_count, triangle_count}, [&] {
        *vertex_count = std::ssize(VerticesOf(*mesh));
        *triangle_count = TriangleCount(*mesh);
    });
}

std::int32_t brix_mesh_copy_vertices(const brix_mesh* mesh, std::int64_t first_vertex, std::int64_t vertex_count,
                                     double* destination, brix_error* error)
{
    return Guarded(error, {mesh}, [&] { CopyPart(VerticesOf(*mesh), first_vertex, vertex_count, destination); });
}

std::int32_t brix_mesh_copy_indices(const brix_mesh* mesh, std::int64_t first_triangle, std::int64_t triangle_count,
                                    std::int32_t* destination, brix_error* error)
{
    return Guarded(error, {mesh}, [&] {
        RequirePart(first_triangle, triangle_count, TriangleCount(*mesh), destination);
        ForEachTriangle(*mesh, first_triangle, triangle_count, [&](const auto& triangle) {
            for (const auto index : triangle) *destination++ = static_cast<std::int32_t>(index);
        });
    });
}

std::int32_t brix_mesh_copy_triangles(const brix_mesh* mesh, std::int64_t first_triangle, std::int64_t triangle_count,
                                      double* destination, brix_error* error)
{
    return Guarded(error, {mesh}, [&] {
        RequirePart(first_triangle, triangle_count, TriangleCount(*mesh), destination);
        const auto& vertices = VerticesOf(*mesh);
        ForEachTriangle(*mesh, first_triangle, triangle_count, [&](const auto& triangle) {
            for (const auto index : triangle) {
                CopyThree(vertices[static_cast<std::size_t>(index)], destination);
                destination += 3;
            }
        });
    });
}

std::int32_t brix_mesh_normal_count(const brix_mesh* mesh, std::int64_t* result, brix_error* error)
{
    return Guarded(error, {mesh, result}, [&] { *result = std::ssize(NormalsOf(*mesh)); });
}

std::int32_t brix_mesh_copy_normals(const brix_mesh* mesh, std::int64_t first_normal, std::int64_t normal_count,
                                    float* destination, brix_error* error)
{
    return Guarded(error, {mesh}, [&] { CopyPart(NormalsOf(*mesh), first_normal, normal_count, destination); });
}

std::int32_t brix_surface_mesh(const brix_model* model, std::int64_t voxel_lod, std::int32_t is_smooth,
                               std::int32_t smoothing_steps, brix_mesh** result, brix_error* error)
{
    const SurfaceMeshOptions options{is_smooth != 0 ? SurfaceStyle::Smooth : SurfaceStyle::Blocky, smoothing_steps};
    const auto bytes = [&] { return BytesToMakeSurface(SizeOfSurface(VoxelsOf(model), voxel_lod), options); };
    return Guarded(error, {model, result}, "the surface mesh of the voxel model", bytes, [&] {
        FaceMesh mesh = SurfaceMesh(VoxelsOf(model), voxel_lod, options);
        if (mesh.vertices.size() > std::size_t{std::numeric_limits<std::int32_t>::max()})
            throw std::length_error("The surface mesh has more vertices than the 2147483647 that indices of 32 bits can number.");
        Make(result, std::move(mesh));
    });
}
