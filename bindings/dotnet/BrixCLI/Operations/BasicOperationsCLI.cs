using System;

namespace BrixCLI;

/// <summary>
/// Questions about a whole model, and models with other bounds, another place or another finest level. Models that are passed in
/// stay as they are; each model that comes back is a new one.
/// </summary>
public static unsafe class BasicOperationsCLI
{
    /// <summary>Whether no voxel is filled.</summary>
    /// <param name="voxelModelCLI">the model, judged at its finest level</param>
    /// <exception cref="Exception">the model is null or disposed of</exception>
    public static bool IsEmpty(VoxelModelCLI voxelModelCLI) => Engine.Ask((result, error) =>
        NativeMethods.brix_is_empty(voxelModelCLI.Required(), voxelModelCLI.FinestLOD(), result, error));

    /// <summary>Whether every voxel inside the extents is filled.</summary>
    /// <param name="voxelModelCLI">the model, judged at its finest level</param>
    /// <exception cref="Exception">the model is null or disposed of</exception>
    public static bool IsFull(VoxelModelCLI voxelModelCLI) => Engine.Ask((result, error) =>
        NativeMethods.brix_is_full(voxelModelCLI.Required(), voxelModelCLI.FinestLOD(), result, error));

    /// <summary>The number of filled voxels at a level.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="voxelLOD">0 to the model's finest level</param>
    /// <exception cref="Exception">the model is null or disposed of; the level is negative; it is beyond the model's finest
    /// one</exception>
    public static long CountFilled(VoxelModelCLI voxelModelCLI, int voxelLOD) => Engine.Call<long>((result, error) =>
        NativeMethods.brix_count_filled(voxelModelCLI.Required(), voxelLOD, result, error));

    /// <summary>The model with each side of its extents moved inwards by a number of voxels of the finest level.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="lowerXDepth">number of voxels, at the lower X side</param>
    /// <param name="upperXDepth">number of voxels, at the upper X side</param>
    /// <param name="lowerYDepth">number of voxels, at the lower Y side</param>
    /// <param name="upperYDepth">number of voxels, at the upper Y side</param>
    /// <param name="lowerZDepth">number of voxels, at the lower Z side</param>
    /// <param name="upperZDepth">number of voxels, at the upper Z side</param>
    /// <exception cref="Exception">the model is null or disposed of; the first number that is negative, in this order; the bounds
    /// cross</exception>
    public static VoxelModelCLI Crop(VoxelModelCLI voxelModelCLI, long lowerXDepth, long upperXDepth, long lowerYDepth,
        long upperYDepth, long lowerZDepth, long upperZDepth) =>
        new VoxelModelCLI((result, error) => NativeMethods.brix_crop(voxelModelCLI.Required(), lowerXDepth, upperXDepth,
            lowerYDepth, upperYDepth, lowerZDepth, upperZDepth, result, error));

    /// <summary>The model with each side of its extents moved outwards by a number of voxels of the finest level.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="lowerXPadding">number of voxels, at the lower X side</param>
    /// <param name="upperXPadding">number of voxels, at the upper X side</param>
    /// <param name="lowerYPadding">number of voxels, at the lower Y side</param>
    /// <param name="upperYPadding">number of voxels, at the upper Y side</param>
    /// <param name="lowerZPadding">number of voxels, at the lower Z side</param>
    /// <param name="upperZPadding">number of voxels, at the upper Z side</param>
    /// <exception cref="Exception">the model is null or disposed of; the first number that is negative, in this order; the bounds
    /// leave the index space</exception>
    public static VoxelModelCLI Enlarge(VoxelModelCLI voxelModelCLI, long lowerXPadding, long upperXPadding, long lowerYPadding,
        long upperYPadding, long lowerZPadding, long upperZPadding) =>
        new VoxelModelCLI((result, error) => NativeMethods.brix_enlarge(voxelModelCLI.Required(), lowerXPadding, upperXPadding,
            lowerYPadding, upperYPadding, lowerZPadding, upperZPadding, result, error));

    /// <summary>The model with the same voxel indices in another frame, so that it moves in the world.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="newAxes">the frame</param>
    /// <exception cref="Exception">an argument is null or disposed of; the indices leave the index space of the frame</exception>
    public static VoxelModelCLI Relocate(VoxelModelCLI voxelModelCLI, AxesCLI newAxes) =>
        new VoxelModelCLI((result, error) => NativeMethods.brix_relocate(voxelModelCLI.Required(),
            newAxes.Required(), result, error));

    /// <summary>The model on other extents; voxels outside them are dropped.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="newExtents">the extents, at any level of the same frame</param>
    /// <exception cref="Exception">an argument is null or disposed of; the frames differ</exception>
    public static VoxelModelCLI Resize(VoxelModelCLI voxelModelCLI, ExtentsCLI newExtents) =>
        new VoxelModelCLI((result, error) => NativeMethods.brix_resize(voxelModelCLI.Required(),
            newExtents.Required(), result, error));

    /// <summary>The model with another finest level. A voxel of a new finer level is filled when the one that holds it
    /// is.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="newFinestLOD">0 to 5</param>
    /// <exception cref="Exception">the model is null or disposed of; the level is negative; it is 6 or more</exception>
    public static VoxelModelCLI Refine(VoxelModelCLI voxelModelCLI, int newFinestLOD) =>
        new VoxelModelCLI((result, error) => NativeMethods.brix_refine(voxelModelCLI.Required(),
            newFinestLOD, result, error));
}
