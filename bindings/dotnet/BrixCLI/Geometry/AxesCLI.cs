using System;
using System.Collections.Generic;

namespace BrixCLI;

/// <summary>
/// The frame that all models of a scene share: where voxels stand in the world, how wide they are at each level of detail (half
/// the width with each finer level), and how high they are at all levels. It never changes.
/// </summary>
public sealed unsafe class AxesCLI : EngineObject
{
    private IntPtr axesPtr_ = IntPtr.Zero;

    /// <summary>A frame.</summary>
    /// <param name="voxelSpacing0">width of a voxel at level 0 in world units; not checked</param>
    /// <param name="voxelOrigin">three world coordinates, of a corner that voxels of all levels share</param>
    /// <param name="voxelRotation">rotation of the voxels about the world's Z in degrees, counter-clockwise</param>
    /// <param name="verticalLOD">0 to 5: the level whose voxel width is the height of all voxels</param>
    /// <exception cref="Exception">the origin has fewer than three items; the vertical level is negative; it is 6 or
    /// more</exception>
    public AxesCLI(double voxelSpacing0, List<double> voxelOrigin, double voxelRotation, int verticalLOD)
    {
        axesPtr_ = Engine.Call<PointTriple, IntPtr>(PointTriple.Of(voxelOrigin, nameof(voxelOrigin)), (origin, result, error) =>
            NativeMethods.brix_axes_create(voxelSpacing0, origin, voxelRotation, verticalLOD, result, error));
    }

    internal AxesCLI(IntPtr axes) => axesPtr_ = axes;

    private protected override ref IntPtr Field => ref axesPtr_;

    private protected override void Free(IntPtr pointer) => NativeMethods.brix_axes_free(pointer);

    /// <summary>The width of a voxel at a level, in world units.</summary>
    /// <param name="voxelLOD">0 to 5</param>
    /// <exception cref="Exception">the level is negative; it is 6 or more</exception>
    public double VoxelWidth(int voxelLOD)
    {
        TypesCLI.ValidateLOD(voxelLOD);
        return Engine.Call<double>((result, error) => NativeMethods.brix_axes_voxel_width(Pointer, voxelLOD, result, error));
    }

    /// <summary>The height of a voxel, the same at all levels, in world units.</summary>
    public double VoxelHeight() =>
        Engine.Call<double>((result, error) => NativeMethods.brix_axes_voxel_height(Pointer, result, error));

    /// <summary>The origin: three world coordinates, as given.</summary>
    public List<double> VoxelOrigin() =>
        Engine.Call<PointTriple>((result, error) => NativeMethods.brix_axes_voxel_origin(Pointer, result, error)).ToList();

    /// <summary>The rotation in degrees, as given.</summary>
    public double VoxelRotation() =>
        Engine.Call<double>((result, error) => NativeMethods.brix_axes_voxel_rotation(Pointer, result, error));

    /// <summary>The level whose voxel width is the height of all voxels.</summary>
    public int VerticalLOD() =>
        (int)Engine.Call<long>((result, error) => NativeMethods.brix_axes_vertical_lod(Pointer, result, error));

    /// <summary>The voxel that holds a world point; on a face between two voxels, the upper one.</summary>
    /// <param name="coords">three world coordinates; those far beyond the index space, and NaN, are held at its borders</param>
    /// <param name="voxelLOD">0 to 5</param>
    /// <returns>three voxel indices at that level</returns>
    /// <exception cref="Exception">the level is negative; it is 6 or more; there are fewer than three coordinates</exception>
    public List<int> ContainingVoxel(List<double> coords, int voxelLOD)
    {
        TypesCLI.ValidateLOD(voxelLOD);
        return Engine.Call<PointTriple, IndexTriple>(PointTriple.Of(coords, nameof(coords)), (point, result, error) =>
            NativeMethods.brix_axes_containing_voxel(Pointer, point, voxelLOD, result, error)).ToList();
    }

    /// <summary>The lower corner of a voxel.</summary>
    /// <param name="voxelIndices">three voxel indices at <paramref name="voxelLOD"/></param>
    /// <param name="voxelLOD">0 to 5</param>
    /// <returns>three world coordinates</returns>
    /// <exception cref="Exception">the level is negative; it is 6 or more; there are fewer than three indices</exception>
    public List<double> VoxelCorner(List<int> voxelIndices, int voxelLOD)
    {
        TypesCLI.ValidateLOD(voxelLOD);
        return Engine.Call<IndexTriple, PointTriple>(IndexTriple.Of(voxelIndices, nameof(voxelIndices)),
            (indices, result, error) => NativeMethods.brix_axes_voxel_corner(Pointer, indices, voxelLOD, result, error)).ToList();
    }

    /// <summary>The centre of a voxel.</summary>
    /// <param name="voxelIndices">three voxel indices at <paramref name="voxelLOD"/></param>
    /// <param name="voxelLOD">0 to 5</param>
    /// <returns>three world coordinates</returns>
    /// <exception cref="Exception">the level is negative; it is 6 or more; there are fewer than three indices</exception>
    public List<double> VoxelCenter(List<int> voxelIndices, int voxelLOD)
    {
        TypesCLI.ValidateLOD(voxelLOD);
        return Engine.Call<IndexTriple, PointTriple>(IndexTriple.Of(voxelIndices, nameof(voxelIndices)),
            (indices, result, error) => NativeMethods.brix_axes_voxel_center(Pointer, indices, voxelLOD, result, error)).ToList();
    }

    /// <summary>A world distance in which exactly -1 means "no limit" as one that limits nothing.</summary>
    /// <param name="distance">world units, or -1</param>
    /// <returns>for -1 the world distance of half the largest 64-bit number of base units, of which a voxel of level 0 is 40000
    /// wide; any other distance as it is, negative ones and NaN too</returns>
    public double ValidateDistance(double distance) =>
        Engine.Call<double>((result, error) => NativeMethods.brix_axes_validate_distance(Pointer, distance, result, error));
}
