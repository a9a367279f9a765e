using System;
using System.Collections.Generic;

namespace BrixCLI;

/// <summary>The shortest way from a point back to the nearest source of a distance field. It never changes, and does not need the
/// field any more.</summary>
public sealed unsafe class PathCLI : EngineObject
{
    private IntPtr pathPtr_ = IntPtr.Zero;

    /// <summary>The way from a point.</summary>
    /// <param name="distanceFieldCLI">the distances from the sources</param>
    /// <param name="pointCoords">three world coordinates, in a voxel that the field reaches</param>
    /// <exception cref="Exception">the field is null or disposed of; there are fewer than three coordinates; the point cannot be
    /// reached</exception>
    public PathCLI(DistanceFieldCLI distanceFieldCLI, List<double> pointCoords)
    {
        distanceFieldCLI.Required();
        pathPtr_ = Engine.Call<PointTriple, IntPtr>(PointTriple.Of(pointCoords, nameof(pointCoords)),
            (point, result, error) => NativeMethods.brix_path_create(distanceFieldCLI.Pointer, point, result, error));
    }

    private protected override ref IntPtr Field => ref pathPtr_;

    private protected override void Free(IntPtr pointer) => NativeMethods.brix_path_free(pointer);

    /// <summary>The length of the way, in world units.</summary>
    public double Length() => Engine.Call<double>((result, error) => NativeMethods.brix_path_length(Pointer, result, error));

    /// <summary>The voxels that the way leads over.</summary>
    public VoxelModelCLI Voxels() =>
        new VoxelModelCLI((result, error) => NativeMethods.brix_path_voxels(Pointer, result, error));

    /// <summary>The way as a polyline from the point to the source: three world coordinates per corner.</summary>
    public List<double> Points() => NumberLists.Take(Engine.Call<IntPtr>(
        (result, error) => NativeMethods.brix_path_points(Pointer, result, error)));
}
