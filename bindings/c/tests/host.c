/* A host in C11. It voxelizes a box and an octahedron, runs a chain of operations, and prints counts and a hash of all voxels.
 * The lines are the same on every machine and system, which is what the packages for other systems are checked by. */
#include "brix_c.h"

#include <inttypes.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static brix_error error;

static void require(int32_t status)
{
    if (status == BRIX_OK) return;
    printf("status %d: %.*s\n", (int)status, (int)error.length, error.message);
    exit(1);
}

static void put(double* triangle, const double corners[][3], const int* indices)
{
    for (int i = 0; i < 3; ++i) memcpy(triangle + 3 * i, corners[indices[i]], 3 * sizeof(double));
}

/* Appends the eight faces of an octahedron of radius 3 around (4, 4, 4). */
static int64_t octahedron(double* triangles)
{
    static const double corners[6][3] = {{1, 4, 4}, {7, 4, 4}, {4, 1, 4}, {4, 7, 4}, {4, 4, 1}, {4, 4, 7}};
    for (int i = 0; i < 8; ++i) {
        const int indices[3] = {i & 1, 2 + (i >> 1 & 1), 4 + (i >> 2)};
        put(triangles + 9 * i, corners, indices);
    }
    return 8;
}

static uint64_t hash_of(const brix_model* model, int64_t lod)
{
    brix_extents* extents = NULL;
    int64_t lower[3], upper[3], rows = 0, length = 0;
    require(brix_model_extents(model, lod, &extents, &error));
    require(brix_extents_lower_indices(extents, lower, &error));
    require(brix_extents_upper_indices(extents, upper, &error));
    brix_extents_free(extents);
    uint64_t hash = UINT64_C(14695981039346656037); /* FNV-1a */
    for (int64_t z = lower[2]; z <= upper[2]; ++z) {
        brix_rows* slice = NULL;
        require(brix_rows_at_slice(model, 2, z, lod, 0, 0, &slice, &error));
        require(brix_rows_size(slice, &rows, &length, &error));
        uint8_t* bytes = malloc((size_t)(rows * length));
        require(brix_rows_copy(slice, 0, rows, bytes, &error));
        for (int64_t i = 0; i < rows * length; ++i) hash = (hash ^ bytes[i]) * UINT64_C(1099511628211);
        free(bytes);
        brix_rows_free(slice);
    }
    return hash;
}

static void print(const char* name, const brix_model* model)
{
    int64_t lod = 0, count = 0;
    require(brix_model_finest_lod(model, &lod, &error));
    require(brix_count_filled(model, lod, &count, &error));
    printf("%-12s %8" PRId64 " voxels  %016" PRIx64 "\n", name, count, hash_of(model, lod));
}

/* Runs one operation, prints its result and puts it in the place of its model. */
#define STEP(name, call)                                                                                                         \
    do {                                                                                                                         \
        brix_model* made = NULL;                                                                                                 \
        require(call);                                                                                                           \
        brix_model_free(model);                                                                                                  \
        model = made;                                                                                                            \
        print(name, model);                                                                                                      \
    } while (0)

int main(void)
{
    const double origin[3] = {0.25, -0.5, 0.125}, point[3] = {4, 4, 4}, direction[3] = {1, 2, -3};
    double triangles[8 * 9];
    const int64_t count = octahedron(triangles);
    brix_axes* axes = NULL;
    brix_extents* extents = NULL;
    brix_model* model = NULL;
    brix_list* list = NULL;
    int64_t triangle_count = 0, width = 0;

    printf("interface %d, engine %s\n", (int)brix_abi_version(), brix_version_string());
    require(brix_axes_create(1.6, origin, 30.0, 4, &axes, &error));
    require(brix_detect_triangle_extents(axes, triangles, count, &extents, &error));
    require(brix_model_from_triangles(triangles, count, extents, 4, &model, &error));
    print("shell", model);
    STEP("filled", brix_fill_enclosed_regions(model, &made, &error));
    STEP("grown", brix_expand_horizontally(model, 5, NULL, 1, &made, &error));
    STEP("reduced", brix_reduce_along_z(model, 1, 2, NULL, 1, &made, &error));
    require(brix_tessellate_voxel_model(model, 2, &list, &error));
    require(brix_list_size(list, &triangle_count, &width, &error));
    printf("%-12s %8" PRId64 " triangles\n", "boxes", triangle_count);
    STEP("seen", brix_visibility_from_direction(model, direction, 4, 0.5, &made, &error));
    STEP("seen near", brix_visibility_from_point(model, point, 4, 3.0, 0.25, 1, &made, &error));

    brix_model* none = NULL;
    if (brix_expand_along_x(model, -1, 0, NULL, 0, &none, &error) == BRIX_OK) return 1;
    printf("%.*s\n", (int)error.length, error.message);
    brix_error_clear(&error);
    brix_list_free(list);
    brix_model_free(model);
    brix_extents_free(extents);
    brix_axes_free(axes);
    return 0;
}
