using System;
using System.Collections.Generic;

namespace BrixCLI;

/// <summary>
/// Filling of empty space by what it is connected to: voxels of the finest level that share a face are connected, and nothing
/// leaves the extents. The results have the extents and levels of the model that is passed in, which stays as it is.
/// </summary>
public static unsafe class FillOperationsCLI
{
    /// <summary>The model with all empty regions filled that reach a face of its extents.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <exception cref="Exception">the model is null or disposed of</exception>
    public static VoxelModelCLI FillExposedRegions(VoxelModelCLI voxelModelCLI) => new VoxelModelCLI((result, error) =>
        NativeMethods.brix_fill_exposed_regions(voxelModelCLI.Required(), result, error));

    /// <summary>The model with all other empty regions, its cavities, filled.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <exception cref="Exception">the model is null or disposed of</exception>
    public static VoxelModelCLI FillEnclosedRegions(VoxelModelCLI voxelModelCLI) => new VoxelModelCLI((result, error) =>
        NativeMethods.brix_fill_enclosed_regions(voxelModelCLI.Required(), result, error));

    /// <summary>The model with the empty region filled that holds a point; a copy where the point's voxel is filled or
    /// outside.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="pointCoords">three world coordinates</param>
    /// <exception cref="Exception">the model is null or disposed of; there are fewer than three coordinates</exception>
    public static VoxelModelCLI FillFromPoint(VoxelModelCLI voxelModelCLI, List<double> pointCoords)
    {
        voxelModelCLI.Required();
        return new VoxelModelCLI(Engine.Call<PointTriple, IntPtr>(PointTriple.Of(pointCoords, nameof(pointCoords)),
            (point, result, error) => NativeMethods.brix_fill_from_point(voxelModelCLI.Pointer, point, result, error)));
    }

    /// <summary>The model with all that is filled which no cube of <c>gap + 1</c> voxels can cover that comes from outside the
    /// extents and moves through empty voxels: the inside of a shell whose gaps are at most <c>gap</c> voxels wide.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="gap">the widest gap that counts as closed, in voxels of the finest level; with 0 it is
    /// <see cref="FillEnclosedRegions"/></param>
    /// <exception cref="Exception">the model is null or disposed of; the gap is negative; extents longer by the gap would leave
    /// the index space</exception>
    public static VoxelModelCLI SealedFill(VoxelModelCLI voxelModelCLI, int gap) => new VoxelModelCLI((result, error) =>
        NativeMethods.brix_sealed_fill(voxelModelCLI.Required(), gap, result, error));

    /// <summary>Why a cavity is not filled: a shortest way from a point through empty voxels of the finest level to a face of the
    /// extents, or null when the point is enclosed.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="pointCoords">three world coordinates, in an empty voxel</param>
    /// <exception cref="Exception">the model is null or disposed of; there are fewer than three coordinates; the point lies
    /// outside the extents or in a filled voxel</exception>
    public static LeakCLI? FindLeak(VoxelModelCLI voxelModelCLI, List<double> pointCoords)
    {
        voxelModelCLI.Required();
        double[] gap = new double[4];
        fixed (double* numbers = gap) {
            double* destination = numbers; // lambdas cannot hold fixed variables
            List<double> points = NumberLists.Take(Engine.Call<PointTriple, IntPtr>(
                PointTriple.Of(pointCoords, nameof(pointCoords)), (point, result, error) =>
                    NativeMethods.brix_find_leak(voxelModelCLI.Pointer, point, destination, result, error)));
            return points.Count == 0 ? null : new LeakCLI(points, gap);
        }
    }
}
