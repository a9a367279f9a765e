// The C interface, bindings/c/brix_c.h, line by line: same order, same names. Only types that cross without marshalling: a
// handle is an IntPtr, a boolean an int, three numbers a pointer to a triple.
//
// DllImport and not LibraryImport: for such types both are the same direct call, and LibraryImport does not exist below .NET 7.
using System;
using System.Runtime.InteropServices;

namespace BrixCLI;

internal static unsafe class NativeMethods
{
    // BRIX_ABI_VERSION of the header that these declarations follow; the library's name ends with it.
    internal const int AbiVersion = 1;

#if NET
    internal const string Library = "brix_c.1";
#else
    // .NET Framework takes what follows the last dot for an extension and would look for "brix_c.1" as it stands.
    internal const string Library = "brix_c.1.dll";
#endif

    // ---- Versions and errors ----

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_abi_version();

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern byte* brix_version_string();

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern void brix_error_clear(NativeError* error);

    // ---- Progress and stop ----

    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    internal delegate int WatchCallback(IntPtr context, double share);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_watch_begin(IntPtr callback, IntPtr context, double pauseSeconds, IntPtr* result,
        NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_watch_end(IntPtr watch, NativeError* error);

    // ---- Memory limit ----

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_set_memory_limit(double bytes, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_get_memory_limit(double* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_require_memory_for_lists(double bytes, NativeError* error);

    // ---- Frames: world coordinates, lattice and levels (brix/frame/Axes.h) ----

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_axes_create(double voxelSpacing0, PointTriple* voxelOrigin, double voxelRotation,
        long verticalLOD, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern void brix_axes_free(IntPtr axes);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_axes_voxel_width(IntPtr axes, long voxelLOD, double* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_axes_voxel_height(IntPtr axes, double* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_axes_voxel_origin(IntPtr axes, PointTriple* result3, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_axes_voxel_rotation(IntPtr axes, double* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_axes_vertical_lod(IntPtr axes, long* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_axes_containing_voxel(IntPtr axes, PointTriple* coords, long voxelLOD, IndexTriple* result3,
        NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_axes_voxel_corner(IntPtr axes, IndexTriple* voxelIndices, long voxelLOD, PointTriple* result3,
        NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_axes_voxel_center(IntPtr axes, IndexTriple* voxelIndices, long voxelLOD, PointTriple* result3,
        NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_axes_containing_voxels(IntPtr axes, double* points, long pointCount, long voxelLOD,
        long* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_axes_voxel_centers(IntPtr axes, long* voxelIndices, long voxelCount, long voxelLOD,
        double* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_axes_validate_distance(IntPtr axes, double distance, double* result, NativeError* error);

    // ---- Boxes of voxels (brix/frame/Extents.h) ----

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_extents_create(IntPtr axes, IndexTriple* lowerIndices, IndexTriple* upperIndices,
        long voxelLOD, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern void brix_extents_free(IntPtr extents);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_extents_axes(IntPtr extents, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_extents_lower_indices(IntPtr extents, IndexTriple* result3, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_extents_upper_indices(IntPtr extents, IndexTriple* result3, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_extents_voxel_lod(IntPtr extents, long* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_extents_contains_voxel(IntPtr extents, IndexTriple* voxelIndices, int* result,
        NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_extents_closest_voxel(IntPtr extents, IndexTriple* voxelIndices, IndexTriple* result3,
        NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_extents_rescaled_copy(IntPtr extents, long newLOD, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_extents_voxel_count(IntPtr extents, double* result, NativeError* error);

    // ---- Lists of numbers ----

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern void brix_list_free(IntPtr list);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_list_size(IntPtr list, long* itemCount, long* width, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_list_copy(IntPtr list, long firstItem, long itemCount, double* destination,
        NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern void brix_bytes_free(IntPtr bytes);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_bytes_size(IntPtr bytes, long* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_bytes_copy(IntPtr bytes, long firstByte, long byteCount, byte* destination,
        NativeError* error);

    // ---- Triangles (brix/triangles/) ----

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_triangle_normals(double* triangles, long triangleCount, double* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_load_stl(byte* path, long pathLength, int swapYZ, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_save_stl(double* triangles, long triangleCount, byte* path, long pathLength,
        int useBinaryFormat, int swapYZ, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_load_stl_bytes(byte* bytes, long byteCount, int swapYZ, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_save_stl_bytes(double* triangles, long triangleCount, int useBinaryFormat, int swapYZ,
        IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_detect_triangle_extents(IntPtr axes, double* triangles, long triangleCount, IntPtr* result,
        NativeError* error);

    // ---- STL files as they are found (brix/triangles/StlReader.h, MeshReport.h) ----

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_read_stl(byte* path, long pathLength, int swapYZ, int dropDegenerate, int countMesh,
        long mostListed, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_read_stl_bytes(byte* bytes, long byteCount, int swapYZ, int dropDegenerate, int countMesh,
        long mostListed, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern void brix_stl_free(IntPtr stl);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_stl_triangles(IntPtr stl, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_stl_number_of(IntPtr stl, int number, long index, long* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_stl_text_of(IntPtr stl, int text, long index, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_stl_bounds(IntPtr stl, double* lower, double* upper, double* signedVolume,
        NativeError* error);

    // ---- Indexed meshes (brix/triangles/TriangleMesh.h) ----

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_mesh_from_triangles(double* triangles, long triangleCount, IntPtr* result,
        NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_mesh_create(double* vertices, long vertexCount, int* indices, long triangleCount,
        IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern void brix_mesh_free(IntPtr mesh);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_mesh_size(IntPtr mesh, long* vertexCount, long* triangleCount, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_mesh_copy_vertices(IntPtr mesh, long firstVertex, long vertexCount, double* destination,
        NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_mesh_copy_indices(IntPtr mesh, long firstTriangle, long triangleCount, int* destination,
        NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_mesh_copy_triangles(IntPtr mesh, long firstTriangle, long triangleCount, double* destination,
        NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_mesh_normal_count(IntPtr mesh, long* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_mesh_copy_normals(IntPtr mesh, long firstNormal, long normalCount, float* destination,
        NativeError* error);

    // ---- Voxel models (brix/model/VoxelModel.h) ----

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_model_create(IntPtr extents, long finestLOD, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_model_from_triangles(double* triangles, long triangleCount, IntPtr extents, long finestLOD,
        IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_voxelize(IntPtr axes, double* triangles, long triangleCount, long finestLOD, IntPtr* result,
        NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_voxelize_mesh(IntPtr axes, double* vertices, long vertexCount, int* indices,
        long triangleCount, long finestLOD, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_voxelize_float_mesh(IntPtr axes, float* vertices, long vertexCount, int* indices,
        long triangleCount, long finestLOD, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_most_bytes_of_model(IntPtr extents, long finestLOD, double* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern void brix_model_free(IntPtr model);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_model_axes(IntPtr model, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_model_extents(IntPtr model, long voxelLOD, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_model_finest_lod(IntPtr model, long* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_are_filled(IntPtr model, long* voxelIndices, long voxelCount, long voxelLOD, byte* result,
        NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_are_filled_at(IntPtr model, double* points, long pointCount, long voxelLOD, byte* result,
        NativeError* error);

    // ---- Voxels and models as bytes (brix/model/VoxelArrays.h, brix/storage/SavedModel.h and VoxelFiles.h) ----

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_copy_voxels(IntPtr model, IntPtr box, byte* bytes, long byteCount, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_model_from_voxels(IntPtr extents, byte* bytes, long byteCount, long finestLOD, IntPtr* result,
        NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_write_voxels(IntPtr model, IntPtr box, byte* bytes, long byteCount, IntPtr* result,
        NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_copy_voxels_strided(IntPtr model, IntPtr box, byte* bytes, long byteCount, long strideY,
        long strideZ, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_write_voxels_strided(IntPtr model, IntPtr box, byte* bytes, long byteCount, long strideY,
        long strideZ, IntPtr* result, NativeError* error);

    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    internal delegate int RunVisitor(IntPtr context, long* runs, long runCount);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_for_each_filled_run(IntPtr model, long voxelLOD, IntPtr visit, IntPtr context,
        NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_save_model(IntPtr model, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_load_model(byte* bytes, long byteCount, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_content_hash(IntPtr model, byte* result16, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_save_npy(IntPtr model, long voxelLOD, int packBits, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_save_nrrd(IntPtr model, long voxelLOD, IntPtr* result, NativeError* error);

    // ---- Single voxels (brix/model/VoxelIterator.h) ----

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_iterator_create(IntPtr model, IndexTriple* voxelIndices, long voxelLOD, IntPtr* result,
        NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_iterator_at_point(IntPtr model, PointTriple* coords, long voxelLOD, IntPtr* result,
        NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern void brix_iterator_free(IntPtr iterator);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_iterator_model(IntPtr iterator, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_iterator_voxel_lod(IntPtr iterator, long* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_iterator_is_valid(IntPtr iterator, int* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_iterator_voxel_indices(IntPtr iterator, IndexTriple* result3, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_iterator_is_filled(IntPtr iterator, int* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_iterator_voxel_center(IntPtr iterator, PointTriple* result3, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_iterator_advance(IntPtr iterator, IndexTriple* offsets, IntPtr* result, NativeError* error);

    // ---- Slices (brix/operations/SliceRows.h) ----

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_rows_at_slice(IntPtr model, int dimIndex, long sliceIndex, long voxelLOD, int reverseRowOrder,
        int reverseEachRow, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern void brix_rows_free(IntPtr rows);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_rows_size(IntPtr rows, long* rowCount, long* rowLength, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_rows_copy(IntPtr rows, long firstRow, long rowCount, byte* destination, NativeError* error);

    // ---- Basic operations (brix/operations/BasicOperations.h) ----

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_is_empty(IntPtr model, long voxelLOD, int* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_is_full(IntPtr model, long voxelLOD, int* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_count_filled(IntPtr model, long voxelLOD, long* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_crop(IntPtr model, long lowerXDepth, long upperXDepth, long lowerYDepth, long upperYDepth,
        long lowerZDepth, long upperZDepth, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_enlarge(IntPtr model, long lowerXPadding, long upperXPadding, long lowerYPadding,
        long upperYPadding, long lowerZPadding, long upperZPadding, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_auto_crop(IntPtr model, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_relocate(IntPtr model, IntPtr newAxes, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_resize(IntPtr model, IntPtr newExtents, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_refine(IntPtr model, long newFinestLOD, IntPtr* result, NativeError* error);

    // ---- Boolean operations (brix/operations/SolidOperations.h) ----

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_union(IntPtr* models, long modelCount, long voxelLOD, int autoAdjustExtents, IntPtr* result,
        NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_intersect(IntPtr* models, long modelCount, long voxelLOD, int autoAdjustExtents,
        IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_subtract(IntPtr model, IntPtr subtrahend, long voxelLOD, int autoAdjustExtents,
        IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_invert(IntPtr model, IntPtr* result, NativeError* error);

    // ---- Regions and densities (brix/operations/AutoSplit.h, DensityMap.h) ----

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern void brix_models_free(IntPtr models);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_models_size(IntPtr models, long* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_models_get(IntPtr models, long index, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_auto_split(IntPtr model, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_label_regions(IntPtr model, IntPtr box, uint* labels, long labelCount, long* result,
        NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_density_map(IntPtr* models, long modelCount, double* weights, long weightCount,
        double* levels,
        long levelCount, long voxelLOD, IntPtr* result, NativeError* error);

    // ---- Growth and shrinkage (brix/operations/SurfaceOperations.h); `guide` may be NULL ----

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_expand_along_x(IntPtr model, int lowerOffset, int upperOffset, IntPtr guide,
        int autoAdjustExtents, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_expand_along_y(IntPtr model, int lowerOffset, int upperOffset, IntPtr guide,
        int autoAdjustExtents, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_expand_along_z(IntPtr model, int lowerOffset, int upperOffset, IntPtr guide,
        int autoAdjustExtents, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_reduce_along_x(IntPtr model, int lowerOffset, int upperOffset, IntPtr guide,
        int autoAdjustExtents, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_reduce_along_y(IntPtr model, int lowerOffset, int upperOffset, IntPtr guide,
        int autoAdjustExtents, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_reduce_along_z(IntPtr model, int lowerOffset, int upperOffset, IntPtr guide,
        int autoAdjustExtents, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_expand_by_one_voxel(IntPtr model, int horizontalAdjacency, int verticalAdjacency,
        IntPtr guide, int autoAdjustExtents, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_reduce_by_one_voxel(IntPtr model, int horizontalAdjacency, int verticalAdjacency,
        IntPtr guide, int autoAdjustExtents, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_expand_horizontally(IntPtr model, int diameterOffset, IntPtr guide, int autoAdjustExtents,
        IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_reduce_horizontally(IntPtr model, int diameterOffset, IntPtr guide, int autoAdjustExtents,
        IntPtr* result, NativeError* error);

    // ---- Nearest filled voxel (brix/operations/ProximityOperations.h); `point_coords` is a world point ----

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_nearest_filled_along_x(IntPtr model, PointTriple* pointCoords, long lowerOffset,
        long upperOffset, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_nearest_filled_along_y(IntPtr model, PointTriple* pointCoords, long lowerOffset,
        long upperOffset, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_nearest_filled_along_z(IntPtr model, PointTriple* pointCoords, long lowerOffset,
        long upperOffset, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_nearest_filled_horizontally(IntPtr model, PointTriple* pointCoords, long diameterOffset,
        IntPtr* result, NativeError* error);

    // ---- Fills (brix/operations/FillOperations.h); `point_coords` is a world point ----

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_fill_from_point(IntPtr model, PointTriple* pointCoords, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_fill_exposed_regions(IntPtr model, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_fill_enclosed_regions(IntPtr model, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_sealed_fill(IntPtr model, int gap, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_find_leak(IntPtr model, PointTriple* pointCoords, double* gap, IntPtr* result,
        NativeError* error);

    // ---- Visibility (brix/visibility/Visibility.h) ----

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_visibility_from_direction(IntPtr model, PointTriple* direction, long voxelLOD,
        double threshold, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_visibility_from_point(IntPtr model, PointTriple* pointCoords, long voxelLOD, double maxRadius,
        double threshold, int autoAdjustExtents, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_visibility_within_cone(IntPtr model, PointTriple* pointCoords, PointTriple* direction,
        double angle,
        long voxelLOD, double maxRadius, double threshold, int autoAdjustExtents, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_visibility_within_pyramid(IntPtr model, PointTriple* pointCoords, PointTriple* direction,
        double horizontalAngle, double verticalAngle, long voxelLOD, double maxRadius, double threshold, int autoAdjustExtents,
        IntPtr* result, NativeError* error);

    // ---- Conversions ----

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_tessellate_voxel_model(IntPtr model, long voxelLOD, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_count_tessellation_triangles(IntPtr model, long voxelLOD, long* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_surface_mesh(IntPtr model, long voxelLOD, int isSmooth, int smoothingSteps, IntPtr* result,
        NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_cuboidize_voxel_model(IntPtr model, long voxelLOD, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_solidize_voxel_model(IntPtr model, long voxelLOD, IntPtr* result, NativeError* error);

    // ---- Travel (brix/travel/PathModel.h) ----

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_path_model_create(IntPtr environment, long voxelLOD, long agentDiameterOffset,
        long agentHeightOffset, int autoAdjustExtents, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern void brix_path_model_free(IntPtr pathModel);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_path_model_environment(IntPtr pathModel, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_path_model_traversable_voxels(IntPtr pathModel, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_path_model_voxel_lod(IntPtr pathModel, long* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_path_model_agent_diameter_offset(IntPtr pathModel, long* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_path_model_agent_height_offset(IntPtr pathModel, long* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_path_model_generate_sample_points(IntPtr pathModel, double spacing, long minDiameter,
        IntPtr* result, NativeError* error);

    // ---- Walking distances (brix/travel/DistanceField.h) ----

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_distance_field_create(IntPtr pathModel, double* sources, long sourceCount, double maxDistance,
        IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern void brix_distance_field_free(IntPtr distanceField);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_distance_field_distance(IntPtr distanceField, PointTriple* pointCoords, double* result,
        NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_distance_field_distances_at(IntPtr distanceField, double* points, long pointCount,
        double* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_distance_field_copy_distances(IntPtr distanceField, IntPtr box, double* result,
        long doubleCount, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_distance_field_farthest_distance(IntPtr distanceField, double* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_distance_field_farthest_voxel(IntPtr distanceField, IndexTriple* result3, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_distance_field_reachable_voxels(IntPtr distanceField, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_distance_field_reachable_within(IntPtr distanceField, double maxDistance, IntPtr* result,
        NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_distance_field_distances(IntPtr distanceField, IntPtr* result, NativeError* error);

    // ---- Shortest ways (brix/travel/Path.h) ----

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_path_create(IntPtr distanceField, PointTriple* pointCoords, IntPtr* result,
        NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern void brix_path_free(IntPtr path);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_path_length(IntPtr path, double* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_path_voxels(IntPtr path, IntPtr* result, NativeError* error);

    [DllImport(Library, CallingConvention = CallingConvention.Cdecl, ExactSpelling = true)]
    internal static extern int brix_path_points(IntPtr path, IntPtr* result, NativeError* error);
}
