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
}
