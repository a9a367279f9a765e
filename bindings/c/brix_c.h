/* The C interface of Brix: the contract between the engine and every other language.
 *
 *   - Every function that can fail returns a status, 0 (BRIX_OK) or one of brix_status, and takes an error object as its last
 *     argument, after the result. The caller owns the error object; there is no state behind it that is shared by threads or
 *     calls.
 *   - Objects are opaque. Each `brix_..._create` and every result that is an object has to be given to the `brix_..._free` of its
 *     type, once; freeing NULL does nothing. Objects do not depend on the lifetime of the ones that they were made from: an
 *     iterator keeps the voxels of its model alive.
 *   - Objects never change after they were made, so several threads may read one object; none may free it meanwhile.
 *   - Arguments are plain numbers, pointers to numbers and objects. A pointer to three numbers is x, y, z. Booleans are int32_t,
 *     zero or not. Only `guide`, error objects and lists of no items may be NULL; any other NULL, a result's among them, is
 *     refused with BRIX_NULL_ARGUMENT before anything else is looked at or done.
 *   - On failure nothing is written to the result.
 *
 * Units: "world" coordinates and distances are doubles in the host's units; voxel indices belong to a level of detail, 0
 * (coarsest) to 5 (finest); bounds are inclusive. What each operation does, its errors and its cost stand in the C++ header of
 * the same name (brix/operations/SurfaceOperations.h and so on); a message is the text of the engine's exception.
 *
 *     brix_error error = {0};
 *     brix_axes* axes = NULL;
 *     const double origin[3] = {0, 0, 0};
 *     if (brix_axes_create(1.6, origin, 0.0, 4, &axes, &error) != BRIX_OK) {
 *         printf("%.*s\n", (int)error.length, error.message);
 *         brix_error_clear(&error);
 *     }
 */
#ifndef BRIX_C_H
#define BRIX_C_H

#include <stddef.h>
#include <stdint.h>

#if defined(_WIN32) && defined(BRIX_C_BUILD)
#define BRIX_C_API __declspec(dllexport)
#elif defined(_WIN32)
#define BRIX_C_API __declspec(dllimport)
#elif defined(__GNUC__)
#define BRIX_C_API __attribute__((visibility("default")))
#else
#define BRIX_C_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Versions and errors ---- */

/* Raised with every change that an existing caller would not survive. The name of the library ends with this number. */
#define BRIX_ABI_VERSION 1

/* The number above, as the loaded library was built with. */
BRIX_C_API int32_t brix_abi_version(void);

/* The version of the engine, "0.1.0"; never NULL, not to be freed. */
BRIX_C_API const char* brix_version_string(void);

typedef enum brix_status
{
    BRIX_OK = 0,
    BRIX_INVALID_ARGUMENT = 1, /* an argument breaks a rule (std::domain_error) */
    BRIX_OUT_OF_RANGE = 2,     /* an iterator that points outside its model was used (std::out_of_range) */
    BRIX_FILE_FAILURE = 3,     /* a file, or a saved model, cannot be read or written (std::runtime_error) */
    BRIX_OUT_OF_MEMORY = 4,    /* there is not enough memory for what the message names; nothing is lost but the result */
    BRIX_NULL_ARGUMENT = 5,    /* a required pointer is NULL */
    BRIX_FAILURE = 6,          /* anything else */
    BRIX_CANCELLED = 7         /* a watch said stop */
} brix_status;

/* What went wrong. Start with all zero; pass the same one again only after brix_error_clear. `message` is UTF-8 text of `length`
 * bytes, followed by a zero byte. */
typedef struct brix_error
{
    int32_t status;
    int32_t is_owned; /* whether brix_error_clear has to free the message */
    int64_t length;
    const char* message;
} brix_error;

/* Frees the message and sets everything to zero. */
BRIX_C_API void brix_error_clear(brix_error* error);

/* ---- Progress and stop (brix/frame/Watch.h) ----
 *
 * Between begin and end a watch is asked by every call of its thread that takes longer than about a tenth of a second. It gets
 * the share that is done, from 0 to 1, which never falls, and returns 0 to let the call go on. With anything else the call ends
 * within a few hundredths of a second, and the time that it takes to give memory back, with BRIX_CANCELLED: its operands are as
 * they were, there is no result. Watches nest; the outer ones are told, and asked, as well.
 *
 * `pause_seconds`, 0 or more, is the least time between two questions (0.01 serves most). The callback may not throw or leave by
 * longjmp; calls that it makes itself are not watched. A watch has to be ended on the thread on which it was begun, which
 * BRIX_INVALID_ARGUMENT reminds of. */

typedef struct brix_watch brix_watch;
typedef int32_t (*brix_watch_callback)(void* context, double share);

BRIX_C_API int32_t brix_watch_begin(brix_watch_callback callback, void* context, double pause_seconds, brix_watch** result,
                                    brix_error* error);
BRIX_C_API int32_t brix_watch_end(brix_watch* watch, brix_error* error);

/* ---- Memory limit ----
 *
 * The most bytes that one call may take beside what it is given, its result included; infinite at first, and the same for all
 * threads. Operations on models, conversions, visibility and travel then estimate before the work what it takes at most
 * (brix/operations/MemoryEstimates.h), and fail with BRIX_OUT_OF_MEMORY and a sentence that names both when that is more:
 * "About 1.25 GB of memory would be needed for the expanded voxel model; the limit is 500 MB."
 *
 * Wrong arguments are told first, as without a limit; only that no source of a distance field stands on traversable ground is
 * found out afterwards. Not estimated is what takes memory in proportion to what the caller hands over: objects of indexed
 * meshes, STL files, bytes, and the copy of a model in which voxels are written; and single voxels, frames, boxes and paths,
 * which take little. An estimate looks at all stored stacks of the operands, or at all triangles; without a limit nothing is
 * estimated. */

/* `bytes` may be infinite, for no limit; one that is negative or not a number is refused with BRIX_INVALID_ARGUMENT. */
BRIX_C_API int32_t brix_set_memory_limit(double bytes, brix_error* error);
BRIX_C_API int32_t brix_get_memory_limit(double* result, brix_error* error);

/* For lists that the caller is about to make itself: fails as above when their bytes are more than the limit. */
BRIX_C_API int32_t brix_require_memory_for_lists(double bytes, brix_error* error);

/* ---- Frames: world coordinates, lattice and levels (brix/frame/Axes.h) ---- */

typedef struct brix_axes brix_axes;

/* `voxel_spacing_0`  world width of a voxel at level 0;  `voxel_rotation`  degrees about the world's Z, counter-clockwise
 * `vertical_lod`     the level whose voxel width is the height of all voxels */
BRIX_C_API int32_t brix_axes_create(double voxel_spacing_0, const double* voxel_origin, double voxel_rotation,
                                    int64_t vertical_lod, brix_axes** result, brix_error* error);
BRIX_C_API void brix_axes_free(brix_axes* axes);

/* In world units; degrees; a level. A level outside 0..5 counts as the nearest one, here and in the next three. */
BRIX_C_API int32_t brix_axes_voxel_width(const brix_axes* axes, int64_t voxel_lod, double* result, brix_error* error);
BRIX_C_API int32_t brix_axes_voxel_height(const brix_axes* axes, double* result, brix_error* error);
BRIX_C_API int32_t brix_axes_voxel_origin(const brix_axes* axes, double* result_3, brix_error* error);
BRIX_C_API int32_t brix_axes_voxel_rotation(const brix_axes* axes, double* result, brix_error* error);
BRIX_C_API int32_t brix_axes_vertical_lod(const brix_axes* axes, int64_t* result, brix_error* error);

/* Indices of the voxel that holds a world point; world points of a voxel's lower corner and centre. */
BRIX_C_API int32_t brix_axes_containing_voxel(const brix_axes* axes, const double* coords, int64_t voxel_lod, int64_t* result_3,
                                              brix_error* error);
BRIX_C_API int32_t brix_axes_voxel_corner(const brix_axes* axes, const int64_t* voxel_indices, int64_t voxel_lod,
                                          double* result_3, brix_error* error);
BRIX_C_API int32_t brix_axes_voxel_center(const brix_axes* axes, const int64_t* voxel_indices, int64_t voxel_lod,
                                          double* result_3, brix_error* error);

/* The same for many at a time: three numbers each in `result`, too. */
BRIX_C_API int32_t brix_axes_containing_voxels(const brix_axes* axes, const double* points, int64_t point_count,
                                               int64_t voxel_lod, int64_t* result, brix_error* error);
BRIX_C_API int32_t brix_axes_voxel_centers(const brix_axes* axes, const int64_t* voxel_indices, int64_t voxel_count,
                                           int64_t voxel_lod, double* result, brix_error* error);

/* -1 exactly, "no limit", becomes the world distance of half the largest 64-bit integer; every other distance stays. */
BRIX_C_API int32_t brix_axes_validate_distance(const brix_axes* axes, double distance, double* result, brix_error* error);

/* ---- Boxes of voxels (brix/frame/Extents.h) ---- */

typedef struct brix_extents brix_extents;

BRIX_C_API int32_t brix_extents_create(const brix_axes* axes, const int64_t* lower_indices, const int64_t* upper_indices,
                                       int64_t voxel_lod, brix_extents** result, brix_error* error);
BRIX_C_API void brix_extents_free(brix_extents* extents);

BRIX_C_API int32_t brix_extents_axes(const brix_extents* extents, brix_axes** result, brix_error* error);
BRIX_C_API int32_t brix_extents_lower_indices(const brix_extents* extents, int64_t* result_3, brix_error* error);
BRIX_C_API int32_t brix_extents_upper_indices(const brix_extents* extents, int64_t* result_3, brix_error* error);
BRIX_C_API int32_t brix_extents_voxel_lod(const brix_extents* extents, int64_t* result, brix_error* error);
BRIX_C_API int32_t brix_extents_contains_voxel(const brix_extents* extents, const int64_t* voxel_indices, int32_t* result,
                                               brix_error* error);
BRIX_C_API int32_t brix_extents_closest_voxel(const brix_extents* extents, const int64_t* voxel_indices, int64_t* result_3,
                                              brix_error* error);
BRIX_C_API int32_t brix_extents_rescaled_copy(const brix_extents* extents, int64_t new_lod, brix_extents** result,
                                              brix_error* error);
/* The product of the three numbers of voxels, each as a double. */
BRIX_C_API int32_t brix_extents_voxel_count(const brix_extents* extents, double* result, brix_error* error);

/* ---- Lists of numbers ----
 *
 * A result of any length: items of `width` doubles each, such as triangles of nine. The operation has run when the list comes
 * back; `copy` writes any part of it to the caller's memory, so that a list that is too large for one array can be read in
 * pieces. */

typedef struct brix_list brix_list;

BRIX_C_API void brix_list_free(brix_list* list);
BRIX_C_API int32_t brix_list_size(const brix_list* list, int64_t* item_count, int64_t* width, brix_error* error);
/* Writes `item_count` items from `first_item` on, width * item_count doubles. */
BRIX_C_API int32_t brix_list_copy(const brix_list* list, int64_t first_item, int64_t item_count, double* destination,
                                  brix_error* error);

/* Bytes of any number; `copy` writes any part of them to the caller's memory. */
typedef struct brix_bytes brix_bytes;

BRIX_C_API void brix_bytes_free(brix_bytes* bytes);
BRIX_C_API int32_t brix_bytes_size(const brix_bytes* bytes, int64_t* result, brix_error* error);
BRIX_C_API int32_t brix_bytes_copy(const brix_bytes* bytes, int64_t first_byte, int64_t byte_count, uint8_t* destination,
                                   brix_error* error);

/* ---- Triangles (brix/triangles/) ----
 *
 * `triangles` points to nine doubles per triangle: corner by corner, x, y, z, in world units. It may be NULL when the count is
 * 0. */

/* One unit normal of three doubles per triangle, zero for a triangle without area. */
BRIX_C_API int32_t brix_triangle_normals(const double* triangles, int64_t triangle_count, double* result, brix_error* error);

/* `path` is a file path of `path_length` bytes, in the encoding of the system's narrow file names; one with a zero byte is
 * refused. Messages show it as UTF-8 on one line, whatever its bytes. */
BRIX_C_API int32_t brix_load_stl(const char* path, int64_t path_length, int32_t swap_yz, brix_list** result, brix_error* error);
BRIX_C_API int32_t brix_save_stl(const double* triangles, int64_t triangle_count, const char* path, int64_t path_length,
                                 int32_t use_binary_format, int32_t swap_yz, brix_error* error);
/* The same from and to the bytes of a file, which messages name "data". */
BRIX_C_API int32_t brix_load_stl_bytes(const uint8_t* bytes, int64_t byte_count, int32_t swap_yz, brix_list** result,
                                       brix_error* error);
BRIX_C_API int32_t brix_save_stl_bytes(const double* triangles, int64_t triangle_count, int32_t use_binary_format,
                                       int32_t swap_yz, brix_bytes** result, brix_error* error);

/* The extents at level 0 of all voxels that triangles can touch; of no triangles, a box around the origin. */
BRIX_C_API int32_t brix_detect_triangle_extents(const brix_axes* axes, const double* triangles, int64_t triangle_count,
                                                brix_extents** result, brix_error* error);

/* ---- STL files as they are found (brix/triangles/StlReader.h, MeshReport.h) ----
 *
 * The size of a file decides first whether it is binary; text may be laid out in any way; damaged and cut-off files are read as
 * far as they go. What was left out or guessed is counted, and told in sentences that name the line or byte. */

typedef struct brix_stl brix_stl;

/* `drop_degenerate`  triangles without area are left out;  `count_mesh`  the surface is looked at, too
 * `most_listed`      findings and solids that are listed, 0 or more; all are counted */
BRIX_C_API int32_t brix_read_stl(const char* path, int64_t path_length, int32_t swap_yz, int32_t drop_degenerate,
                                 int32_t count_mesh, int64_t most_listed, brix_stl** result, brix_error* error);
/* The same from the bytes of a file, which messages name "data". */
BRIX_C_API int32_t brix_read_stl_bytes(const uint8_t* bytes, int64_t byte_count, int32_t swap_yz, int32_t drop_degenerate,
                                       int32_t count_mesh, int64_t most_listed, brix_stl** result, brix_error* error);
BRIX_C_API void brix_stl_free(brix_stl* stl);

/* The triangles, nine doubles each, which are not copied before brix_list_copy. */
BRIX_C_API int32_t brix_stl_triangles(const brix_stl* stl, brix_list** result, brix_error* error);

typedef enum brix_stl_number
{
    BRIX_STL_IS_SOUND = 0, /* no finding, nothing without area; a solid, when the mesh was counted */
    BRIX_STL_IS_BINARY = 1,
    BRIX_STL_BYTES = 2,
    BRIX_STL_ANNOUNCED = 3, /* triangles, by a binary file; -1 for text */
    BRIX_STL_FOUND = 4,     /* triangles that the file holds */
    BRIX_STL_READ = 5,      /* triangles in the list */
    BRIX_STL_INCOMPLETE = 6,
    BRIX_STL_NOT_FINITE = 7,
    BRIX_STL_DEGENERATE = 8,
    BRIX_STL_BYTES_LEFT = 9,
    BRIX_STL_FINDINGS = 10, /* all of them, and those that are listed */
    BRIX_STL_FINDINGS_LISTED = 11,
    BRIX_STL_GUESSES = 12,
    BRIX_STL_DROPS = 13,
    BRIX_STL_SOLIDS = 14,
    BRIX_STL_SOLIDS_LISTED = 15,
    BRIX_STL_HAS_MESH = 16, /* whether the mesh was counted; if not, the following are 0 */
    BRIX_STL_VERTICES = 17,
    BRIX_STL_EDGES = 18,
    BRIX_STL_OPEN_EDGES = 19,
    BRIX_STL_CROWDED_EDGES = 20,
    BRIX_STL_REVERSED_EDGES = 21,
    BRIX_STL_DUPLICATE_TRIANGLES = 22,
    BRIX_STL_SHELLS = 23,
    BRIX_STL_IS_CLOSED = 24,
    BRIX_STL_FINDING_PLACE = 25,  /* of a listed finding: the line of a text file from 1, the byte of a binary one from 0 */
    BRIX_STL_FINDING_EFFECT = 26, /* 0 none, 1 something was guessed, 2 something was left out */
    BRIX_STL_SOLID_TRIANGLES = 27 /* of a listed solid */
} brix_stl_number;

/* `index`: of the finding or solid; looked at for the last three only. */
BRIX_C_API int32_t brix_stl_number_of(const brix_stl* stl, int32_t number, int64_t index, int64_t* result, brix_error* error);

typedef enum brix_stl_text
{
    BRIX_STL_HEADER = 0, /* of a binary file */
    BRIX_STL_UNIT = 1,   /* "m", "mm" or nothing, guessed from the size, and why; needs the mesh */
    BRIX_STL_UNIT_REASON = 2,
    BRIX_STL_FINDING_SENTENCE = 3, /* of a listed finding */
    BRIX_STL_SOLID_NAME = 4        /* of a listed solid */
} brix_stl_text;

/* UTF-8 on one line. `index`: of the finding or solid; looked at for the last two only. */
BRIX_C_API int32_t brix_stl_text_of(const brix_stl* stl, int32_t text, int64_t index, brix_bytes** result, brix_error* error);

/* The bounds, and the volume that a closed surface encloses, above 0 where triangles face outwards; 0 without a mesh. */
BRIX_C_API int32_t brix_stl_bounds(const brix_stl* stl, double* lower_3, double* upper_3, double* signed_volume,
                                   brix_error* error);

/* ---- Indexed meshes (brix/triangles/TriangleMesh.h) ---- */

typedef struct brix_mesh brix_mesh;

/* From triangles, merging corners that are equal; or from three doubles per vertex and three indices per triangle. */
BRIX_C_API int32_t brix_mesh_from_triangles(const double* triangles, int64_t triangle_count, brix_mesh** result,
                                            brix_error* error);
BRIX_C_API int32_t brix_mesh_create(const double* vertices, int64_t vertex_count, const int32_t* indices, int64_t triangle_count,
                                    brix_mesh** result, brix_error* error);
BRIX_C_API void brix_mesh_free(brix_mesh* mesh);

BRIX_C_API int32_t brix_mesh_size(const brix_mesh* mesh, int64_t* vertex_count, int64_t* triangle_count, brix_error* error);
/* Three doubles per vertex; three indices, or nine doubles, per triangle. */
BRIX_C_API int32_t brix_mesh_copy_vertices(const brix_mesh* mesh, int64_t first_vertex, int64_t vertex_count, double* destination,
                                           brix_error* error);
BRIX_C_API int32_t brix_mesh_copy_indices(const brix_mesh* mesh, int64_t first_triangle, int64_t triangle_count,
                                          int32_t* destination, brix_error* error);
BRIX_C_API int32_t brix_mesh_copy_triangles(const brix_mesh* mesh, int64_t first_triangle, int64_t triangle_count,
                                            double* destination, brix_error* error);

/* One per vertex for a smooth surface mesh, none for any other; three floats each, of length 1. */
BRIX_C_API int32_t brix_mesh_normal_count(const brix_mesh* mesh, int64_t* result, brix_error* error);
BRIX_C_API int32_t brix_mesh_copy_normals(const brix_mesh* mesh, int64_t first_normal, int64_t normal_count, float* destination,
                                          brix_error* error);

/* ---- Voxel models (brix/model/VoxelModel.h) ---- */

typedef struct brix_model brix_model;

/* An empty model with the levels 0 to `finest_lod`; or one whose finest level is filled where triangles touch it. */
BRIX_C_API int32_t brix_model_create(const brix_extents* extents, int64_t finest_lod, brix_model** result, brix_error* error);
BRIX_C_API int32_t brix_model_from_triangles(const double* triangles, int64_t triangle_count, const brix_extents* extents,
                                             int64_t finest_lod, brix_model** result, brix_error* error);
/* The voxels that triangles touch, on the smallest box of level 0 that holds them: in one step, in time and memory that follow
 * the voxels touched, and not the box (brix/triangles/Voxelize.h). */
BRIX_C_API int32_t brix_voxelize(const brix_axes* axes, const double* triangles, int64_t triangle_count, int64_t finest_lod,
                                 brix_model** result, brix_error* error);
/* The same from three doubles, or floats, per vertex and three indices per triangle, which are not copied. */
BRIX_C_API int32_t brix_voxelize_mesh(const brix_axes* axes, const double* vertices, int64_t vertex_count, const int32_t* indices,
                                      int64_t triangle_count, int64_t finest_lod, brix_model** result, brix_error* error);
BRIX_C_API int32_t brix_voxelize_float_mesh(const brix_axes* axes, const float* vertices, int64_t vertex_count,
                                            const int32_t* indices, int64_t triangle_count, int64_t finest_lod,
                                            brix_model** result, brix_error* error);
/* Bytes that no model on these extents exceeds, whatever is filled (brix/model/ModelSize.h). */
BRIX_C_API int32_t brix_most_bytes_of_model(const brix_extents* extents, int64_t finest_lod, double* result, brix_error* error);
BRIX_C_API void brix_model_free(brix_model* model);

BRIX_C_API int32_t brix_model_axes(const brix_model* model, brix_axes** result, brix_error* error);
BRIX_C_API int32_t brix_model_extents(const brix_model* model, int64_t voxel_lod, brix_extents** result, brix_error* error);
BRIX_C_API int32_t brix_model_finest_lod(const brix_model* model, int64_t* result, brix_error* error);

/* Whether voxels are filled, three indices each: writes one byte, 0 or 1, for each; 0 outside the model. Much faster than one by
 * one (brix/model/AreFilled.h). */
BRIX_C_API int32_t brix_are_filled(const brix_model* model, const int64_t* voxel_indices, int64_t voxel_count, int64_t voxel_lod,
                                   uint8_t* result, brix_error* error);
/* The same for the voxels that hold points, three world coordinates each. */
BRIX_C_API int32_t brix_are_filled_at(const brix_model* model, const double* points, int64_t point_count, int64_t voxel_lod,
                                      uint8_t* result, brix_error* error);

/* ---- Voxels and models as bytes (brix/model/VoxelArrays.h, brix/storage/SavedModel.h and VoxelFiles.h) ---- */

/* A byte for each voxel of a box at its level, x fastest, then y, then z: 1 where it is filled, 0 where it is not or lies outside
 * the model. `byte_count` is the number of the box's voxels. */
BRIX_C_API int32_t brix_copy_voxels(const brix_model* model, const brix_extents* box, uint8_t* bytes, int64_t byte_count,
                                    brix_error* error);
/* The way back: a model on the extents, filled where a byte is not 0; all levels 0 to `finest_lod` follow from those of the
 * extents. */
BRIX_C_API int32_t brix_model_from_voxels(const brix_extents* extents, const uint8_t* bytes, int64_t byte_count,
                                          int64_t finest_lod, brix_model** result, brix_error* error);
/* A copy of the model in which the voxels of a box, which lies inside its extents, are filled where a byte is not 0. */
BRIX_C_API int32_t brix_write_voxels(const brix_model* model, const brix_extents* box, const uint8_t* bytes, int64_t byte_count,
                                     brix_model** result, brix_error* error);

/* The same for memory with gaps: voxels follow each other along x, rows are `stride_y` bytes apart and layers `stride_z`, neither
 * negative. `byte_count` bytes have to hold the last voxel. */
BRIX_C_API int32_t brix_copy_voxels_strided(const brix_model* model, const brix_extents* box, uint8_t* bytes, int64_t byte_count,
                                            int64_t stride_y, int64_t stride_z, brix_error* error);
BRIX_C_API int32_t brix_write_voxels_strided(const brix_model* model, const brix_extents* box, const uint8_t* bytes,
                                             int64_t byte_count, int64_t stride_y, int64_t stride_z, brix_model** result,
                                             brix_error* error);

/* Calls visit(context, runs, run_count) with the runs of filled voxels along x at a level, in lattice order (z outermost, then y,
 * then x), up to a thousand at a time: four numbers each, the first and the last index along x, y and z. Anything but 0 ends the
 * call, with BRIX_OK. `visit` may not throw or leave by longjmp. */
typedef int32_t (*brix_run_visitor)(void* context, const int64_t* runs, int64_t run_count);
BRIX_C_API int32_t brix_for_each_filled_run(const brix_model* model, int64_t voxel_lod, brix_run_visitor visit, void* context,
                                            brix_error* error);

/* A model as bytes that docs/format.md describes, the same for equal models on every platform; and back, where anything else is
 * refused with BRIX_FILE_FAILURE. */
BRIX_C_API int32_t brix_save_model(const brix_model* model, brix_bytes** result, brix_error* error);
BRIX_C_API int32_t brix_load_model(const uint8_t* bytes, int64_t byte_count, brix_model** result, brix_error* error);
/* The last 16 bytes of what saving would write: a hash of frame, extents, levels and voxels. */
BRIX_C_API int32_t brix_content_hash(const brix_model* model, uint8_t* result_16, brix_error* error);

/* The voxels of a level as files that others read (brix/storage/VoxelFiles.h), of a byte for each voxel of the extents: an array
 * for numpy.load with the shape (z, y, x), or with `pack_bits` other than 0 eight voxels along x in a byte, as numpy.unpackbits
 * takes them; and an NRRD volume, uncompressed, with its place in the world. */
BRIX_C_API int32_t brix_save_npy(const brix_model* model, int64_t voxel_lod, int32_t pack_bits, brix_bytes** result,
                                 brix_error* error);
BRIX_C_API int32_t brix_save_nrrd(const brix_model* model, int64_t voxel_lod, brix_bytes** result, brix_error* error);

/* ---- Single voxels (brix/model/VoxelIterator.h) ---- */

typedef struct brix_iterator brix_iterator;

/* The voxel with these indices, or the one that holds a world point. It is not valid when it lies outside the model's extents. */
BRIX_C_API int32_t brix_iterator_create(const brix_model* model, const int64_t* voxel_indices, int64_t voxel_lod,
                                        brix_iterator** result, brix_error* error);
BRIX_C_API int32_t brix_iterator_at_point(const brix_model* model, const double* coords, int64_t voxel_lod,
                                          brix_iterator** result, brix_error* error);
BRIX_C_API void brix_iterator_free(brix_iterator* iterator);

/* The model that the iterator belongs to, as another object on the same voxels. */
BRIX_C_API int32_t brix_iterator_model(const brix_iterator* iterator, brix_model** result, brix_error* error);
BRIX_C_API int32_t brix_iterator_voxel_lod(const brix_iterator* iterator, int64_t* result, brix_error* error);
BRIX_C_API int32_t brix_iterator_is_valid(const brix_iterator* iterator, int32_t* result, brix_error* error);
/* These fail with BRIX_OUT_OF_RANGE when the iterator is not valid. */
BRIX_C_API int32_t brix_iterator_voxel_indices(const brix_iterator* iterator, int64_t* result_3, brix_error* error);
BRIX_C_API int32_t brix_iterator_is_filled(const brix_iterator* iterator, int32_t* result, brix_error* error);
BRIX_C_API int32_t brix_iterator_voxel_center(const brix_iterator* iterator, double* result_3, brix_error* error);
/* A new iterator, so many voxels further along x, y and z. */
BRIX_C_API int32_t brix_iterator_advance(const brix_iterator* iterator, const int64_t* offsets, brix_iterator** result,
                                         brix_error* error);

/* ---- Slices (brix/operations/SliceRows.h) ---- */

typedef struct brix_rows brix_rows;

/* The plane x, y or z = `slice_index` for `dim_index` 0, 1 or 2, as rows of equal length; one byte, 0 or 1, per voxel. */
BRIX_C_API int32_t brix_rows_at_slice(const brix_model* model, int32_t dim_index, int64_t slice_index, int64_t voxel_lod,
                                      int32_t reverse_row_order, int32_t reverse_each_row, brix_rows** result, brix_error* error);
BRIX_C_API void brix_rows_free(brix_rows* rows);
BRIX_C_API int32_t brix_rows_size(const brix_rows* rows, int64_t* row_count, int64_t* row_length, brix_error* error);
/* Writes `row_count` rows from `first_row` on, row_length * row_count bytes. */
BRIX_C_API int32_t brix_rows_copy(const brix_rows* rows, int64_t first_row, int64_t row_count, uint8_t* destination,
                                  brix_error* error);

/* ---- Basic operations (brix/operations/BasicOperations.h) ---- */

BRIX_C_API int32_t brix_is_empty(const brix_model* model, int64_t voxel_lod, int32_t* result, brix_error* error);
BRIX_C_API int32_t brix_is_full(const brix_model* model, int64_t voxel_lod, int32_t* result, brix_error* error);
BRIX_C_API int32_t brix_count_filled(const brix_model* model, int64_t voxel_lod, int64_t* result, brix_error* error);
BRIX_C_API int32_t brix_crop(const brix_model* model, int64_t lower_x_depth, int64_t upper_x_depth, int64_t lower_y_depth,
                             int64_t upper_y_depth, int64_t lower_z_depth, int64_t upper_z_depth, brix_model** result,
                             brix_error* error);
BRIX_C_API int32_t brix_enlarge(const brix_model* model, int64_t lower_x_padding, int64_t upper_x_padding,
                                int64_t lower_y_padding, int64_t upper_y_padding, int64_t lower_z_padding,
                                int64_t upper_z_padding, brix_model** result, brix_error* error);
BRIX_C_API int32_t brix_auto_crop(const brix_model* model, brix_model** result, brix_error* error);
BRIX_C_API int32_t brix_relocate(const brix_model* model, const brix_axes* new_axes, brix_model** result, brix_error* error);
BRIX_C_API int32_t brix_resize(const brix_model* model, const brix_extents* new_extents, brix_model** result, brix_error* error);
BRIX_C_API int32_t brix_refine(const brix_model* model, int64_t new_finest_lod, brix_model** result, brix_error* error);

/* ---- Boolean operations (brix/operations/SolidOperations.h) ---- */

BRIX_C_API int32_t brix_union(const brix_model* const* models, int64_t model_count, int64_t voxel_lod,
                              int32_t auto_adjust_extents, brix_model** result, brix_error* error);
BRIX_C_API int32_t brix_intersect(const brix_model* const* models, int64_t model_count, int64_t voxel_lod,
                                  int32_t auto_adjust_extents, brix_model** result, brix_error* error);
BRIX_C_API int32_t brix_subtract(const brix_model* model, const brix_model* subtrahend, int64_t voxel_lod,
                                 int32_t auto_adjust_extents, brix_model** result, brix_error* error);
BRIX_C_API int32_t brix_invert(const brix_model* model, brix_model** result, brix_error* error);

/* ---- Regions and densities (brix/operations/AutoSplit.h, LabelRegions.h, DensityMap.h) ---- */

/* A list of models. */
typedef struct brix_models brix_models;

BRIX_C_API void brix_models_free(brix_models* models);
BRIX_C_API int32_t brix_models_size(const brix_models* models, int64_t* result, brix_error* error);
/* The model at an index from 0 on, as an object of its own. */
BRIX_C_API int32_t brix_models_get(const brix_models* models, int64_t index, brix_model** result, brix_error* error);

/* One model for each region of filled voxels that are connected through their faces. */
BRIX_C_API int32_t brix_auto_split(const brix_model* model, brix_models** result, brix_error* error);
/* A number for each voxel of a box at the model's finest level, x fastest, then y, then z: 0 where it is not filled, else the
 * place of its region in the list above, counted from 1. `label_count` is the number of the box's voxels, which may lie anywhere;
 * `result` gets how many regions the model has. */
BRIX_C_API int32_t brix_label_regions(const brix_model* model, const brix_extents* box, uint32_t* labels, int64_t label_count,
                                      int64_t* result, brix_error* error);
/* One model for each level: filled where the weights of the models that are filled there add up to it. */
BRIX_C_API int32_t brix_density_map(const brix_model* const* models, int64_t model_count, const double* weights,
                                    int64_t weight_count, const double* levels, int64_t level_count, int64_t voxel_lod,
                                    brix_models** result, brix_error* error);

/* ---- Growth and shrinkage (brix/operations/SurfaceOperations.h); `guide` may be NULL ---- */

BRIX_C_API int32_t brix_expand_along_x(const brix_model* model, int32_t lower_offset, int32_t upper_offset,
                                       const brix_model* guide, int32_t auto_adjust_extents, brix_model** result,
                                       brix_error* error);
BRIX_C_API int32_t brix_expand_along_y(const brix_model* model, int32_t lower_offset, int32_t upper_offset,
                                       const brix_model* guide, int32_t auto_adjust_extents, brix_model** result,
                                       brix_error* error);
BRIX_C_API int32_t brix_expand_along_z(const brix_model* model, int32_t lower_offset, int32_t upper_offset,
                                       const brix_model* guide, int32_t auto_adjust_extents, brix_model** result,
                                       brix_error* error);
BRIX_C_API int32_t brix_reduce_along_x(const brix_model* model, int32_t lower_offset, int32_t upper_offset,
                                       const brix_model* guide, int32_t auto_adjust_extents, brix_model** result,
                                       brix_error* error);
BRIX_C_API int32_t brix_reduce_along_y(const brix_model* model, int32_t lower_offset, int32_t upper_offset,
                                       const brix_model* guide, int32_t auto_adjust_extents, brix_model** result,
                                       brix_error* error);
BRIX_C_API int32_t brix_reduce_along_z(const brix_model* model, int32_t lower_offset, int32_t upper_offset,
                                       const brix_model* guide, int32_t auto_adjust_extents, brix_model** result,
                                       brix_error* error);
BRIX_C_API int32_t brix_expand_by_one_voxel(const brix_model* model, int32_t horizontal_adjacency, int32_t vertical_adjacency,
                                            const brix_model* guide, int32_t auto_adjust_extents, brix_model** result,
                                            brix_error* error);
BRIX_C_API int32_t brix_reduce_by_one_voxel(const brix_model* model, int32_t horizontal_adjacency, int32_t vertical_adjacency,
                                            const brix_model* guide, int32_t auto_adjust_extents, brix_model** result,
                                            brix_error* error);
BRIX_C_API int32_t brix_expand_horizontally(const brix_model* model, int32_t diameter_offset, const brix_model* guide,
                                            int32_t auto_adjust_extents, brix_model** result, brix_error* error);
BRIX_C_API int32_t brix_reduce_horizontally(const brix_model* model, int32_t diameter_offset, const brix_model* guide,
                                            int32_t auto_adjust_extents, brix_model** result, brix_error* error);

/* ---- Nearest filled voxel (brix/operations/ProximityOperations.h); `point_coords` is a world point ---- */

BRIX_C_API int32_t brix_nearest_filled_along_x(const brix_model* model, const double* point_coords, int64_t lower_offset,
                                               int64_t upper_offset, brix_iterator** result, brix_error* error);
BRIX_C_API int32_t brix_nearest_filled_along_y(const brix_model* model, const double* point_coords, int64_t lower_offset,
                                               int64_t upper_offset, brix_iterator** result, brix_error* error);
BRIX_C_API int32_t brix_nearest_filled_along_z(const brix_model* model, const double* point_coords, int64_t lower_offset,
                                               int64_t upper_offset, brix_iterator** result, brix_error* error);
BRIX_C_API int32_t brix_nearest_filled_horizontally(const brix_model* model, const double* point_coords, int64_t diameter_offset,
                                                    brix_iterator** result, brix_error* error);

/* ---- Fills (brix/operations/FillOperations.h); `point_coords` is a world point ---- */

BRIX_C_API int32_t brix_fill_from_point(const brix_model* model, const double* point_coords, brix_model** result,
                                        brix_error* error);
BRIX_C_API int32_t brix_fill_exposed_regions(const brix_model* model, brix_model** result, brix_error* error);
BRIX_C_API int32_t brix_fill_enclosed_regions(const brix_model* model, brix_model** result, brix_error* error);

/* With gaps up to `gap` voxels wide counted as closed. */
BRIX_C_API int32_t brix_sealed_fill(const brix_model* model, int32_t gap, brix_model** result, brix_error* error);

/* A shortest way from a point through empty voxels to a face of the extents (brix/operations/Leaks.h): the world points of the
 * centres of its voxels, three doubles each, one beside the other; none when the point is enclosed. `gap` gets four doubles: the
 * world point of the place where the way is narrowest, and its width in voxels; the width is 0 where there is no such place. */
BRIX_C_API int32_t brix_find_leak(const brix_model* model, const double* point_coords, double* gap, brix_list** result,
                                  brix_error* error);

/* ---- Visibility (brix/visibility/Visibility.h) ----
 *
 * `direction` is a world vector of any length. It is turned into the frame and scaled to 70000 voxels of level 0, 2800000000 base
 * units, each component rounded to the nearest unit; a zero vector, and one that is not finite, is refused as zero.
 * `max_radius` is a world distance. */

BRIX_C_API int32_t brix_visibility_from_direction(const brix_model* model, const double* direction, int64_t voxel_lod,
                                                  double threshold, brix_model** result, brix_error* error);
BRIX_C_API int32_t brix_visibility_from_point(const brix_model* model, const double* point_coords, int64_t voxel_lod,
                                              double max_radius, double threshold, int32_t auto_adjust_extents,
                                              brix_model** result, brix_error* error);

/* Only what lies within a cone of the full opening angle `angle` in degrees, greater than 0 and at most 360; or within the view
 * of an upright camera, both angles greater than 0 and less than 180. */
BRIX_C_API int32_t brix_visibility_within_cone(const brix_model* model, const double* point_coords, const double* direction,
                                               double angle, int64_t voxel_lod, double max_radius, double threshold,
                                               int32_t auto_adjust_extents, brix_model** result, brix_error* error);
BRIX_C_API int32_t brix_visibility_within_pyramid(const brix_model* model, const double* point_coords, const double* direction,
                                                  double horizontal_angle, double vertical_angle, int64_t voxel_lod,
                                                  double max_radius, double threshold, int32_t auto_adjust_extents,
                                                  brix_model** result, brix_error* error);

/* ---- Conversions ---- */

/* The surface triangles of the filled voxels at a level, as a list of nine doubles each (brix/triangles/Tessellation.h). */
BRIX_C_API int32_t brix_tessellate_voxel_model(const brix_model* model, int64_t voxel_lod, brix_list** result, brix_error* error);
/* How many there will be, counted without making them. */
BRIX_C_API int32_t brix_count_tessellation_triangles(const brix_model* model, int64_t voxel_lod, int64_t* result,
                                                     brix_error* error);

/* The closed surface between filled and empty voxels at a level, oriented outwards, with exactly two triangles at every edge:
 * blocky, or smooth with 0 to 1000 steps of smoothing (brix/triangles/SurfaceMesh.h). Triangles 2i and 2i + 1 are face i. */
BRIX_C_API int32_t brix_surface_mesh(const brix_model* model, int64_t voxel_lod, int32_t is_smooth, int32_t smoothing_steps,
                                     brix_mesh** result, brix_error* error);

/* The filled voxels at a level as disjoint boxes, six doubles each: the world point of the lower corner, then the size along the
 * frame's X, Y and Z in world units (brix/triangles/Cuboidization.h). */
BRIX_C_API int32_t brix_cuboidize_voxel_model(const brix_model* model, int64_t voxel_lod, brix_list** result, brix_error* error);

/* Their surface as rectangles, twelve doubles each: four world points, counter-clockwise seen from outside
 * (brix/triangles/Solidization.h). */
BRIX_C_API int32_t brix_solidize_voxel_model(const brix_model* model, int64_t voxel_lod, brix_list** result, brix_error* error);

/* ---- Travel (brix/travel/PathModel.h) ---- */

typedef struct brix_path_model brix_path_model;

BRIX_C_API int32_t brix_path_model_create(const brix_model* environment, int64_t voxel_lod, int64_t agent_diameter_offset,
                                          int64_t agent_height_offset, int32_t auto_adjust_extents, brix_path_model** result,
                                          brix_error* error);
BRIX_C_API void brix_path_model_free(brix_path_model* path_model);
BRIX_C_API int32_t brix_path_model_environment(const brix_path_model* path_model, brix_model** result, brix_error* error);
BRIX_C_API int32_t brix_path_model_traversable_voxels(const brix_path_model* path_model, brix_model** result, brix_error* error);
BRIX_C_API int32_t brix_path_model_voxel_lod(const brix_path_model* path_model, int64_t* result, brix_error* error);
BRIX_C_API int32_t brix_path_model_agent_diameter_offset(const brix_path_model* path_model, int64_t* result, brix_error* error);
BRIX_C_API int32_t brix_path_model_agent_height_offset(const brix_path_model* path_model, int64_t* result, brix_error* error);
/* World points spread over the traversable voxels, three doubles each. `spacing` is a world distance, `min_diameter` in
 * voxels. */
BRIX_C_API int32_t brix_path_model_generate_sample_points(const brix_path_model* path_model, double spacing, int64_t min_diameter,
                                                          brix_list** result, brix_error* error);

/* ---- Walking distances (brix/travel/DistanceField.h) ---- */

typedef struct brix_distance_field brix_distance_field;

/* From the nearest of `source_count` world points, three doubles each; `max_distance` is a world distance. */
BRIX_C_API int32_t brix_distance_field_create(const brix_path_model* path_model, const double* sources, int64_t source_count,
                                              double max_distance, brix_distance_field** result, brix_error* error);
BRIX_C_API void brix_distance_field_free(brix_distance_field* distance_field);

/* The walking distance of a world point in world units, exactly -1 where it cannot be reached. */
BRIX_C_API int32_t brix_distance_field_distance(const brix_distance_field* distance_field, const double* point_coords,
                                                double* result, brix_error* error);
/* The same for many points, three doubles each: a double for each. */
BRIX_C_API int32_t brix_distance_field_distances_at(const brix_distance_field* distance_field, const double* points,
                                                    int64_t point_count, double* result, brix_error* error);
/* The same for all voxels of a box at the field's level, x fastest, then y, then z. `double_count` is the number of the box's
 * voxels, which may lie anywhere. */
BRIX_C_API int32_t brix_distance_field_copy_distances(const brix_distance_field* distance_field, const brix_extents* box,
                                                      double* result, int64_t double_count, brix_error* error);
BRIX_C_API int32_t brix_distance_field_farthest_distance(const brix_distance_field* distance_field, double* result,
                                                         brix_error* error);
BRIX_C_API int32_t brix_distance_field_farthest_voxel(const brix_distance_field* distance_field, int64_t* result_3,
                                                      brix_error* error);
/* What can be reached at all, and within a world distance. */
BRIX_C_API int32_t brix_distance_field_reachable_voxels(const brix_distance_field* distance_field, brix_model** result,
                                                        brix_error* error);
BRIX_C_API int32_t brix_distance_field_reachable_within(const brix_distance_field* distance_field, double max_distance,
                                                        brix_model** result, brix_error* error);
/* Four doubles for every voxel that can be reached: the world point of its centre and its world distance. */
BRIX_C_API int32_t brix_distance_field_distances(const brix_distance_field* distance_field, brix_list** result,
                                                 brix_error* error);

/* ---- Shortest ways (brix/travel/Path.h) ---- */

typedef struct brix_path brix_path;

BRIX_C_API int32_t brix_path_create(const brix_distance_field* distance_field, const double* point_coords, brix_path** result,
                                    brix_error* error);
BRIX_C_API void brix_path_free(brix_path* path);

/* In world units; a model; a polyline of world points, three doubles each. */
BRIX_C_API int32_t brix_path_length(const brix_path* path, double* result, brix_error* error);
BRIX_C_API int32_t brix_path_voxels(const brix_path* path, brix_model** result, brix_error* error);
BRIX_C_API int32_t brix_path_points(const brix_path* path, brix_list** result, brix_error* error);

#ifdef __cplusplus
}
#endif

#endif
