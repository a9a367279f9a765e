using System;
using System.Collections.Generic;

namespace BrixCLI;

/// <summary>
/// Searches for the filled voxel nearest to a point, at the model's finest level. Each returns an iterator, to be disposed of,
/// which is not valid when nothing was found.
/// </summary>
public static unsafe class ProximityOperationsCLI
{
    /// <summary>Searches the line of voxels along X that goes through the point's voxel: that one first, then outwards, the lower
    /// one of two that are equally near.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="pointCoords">three world coordinates</param>
    /// <param name="lowerOffset">how many voxels below the point's voxel are searched</param>
    /// <param name="upperOffset">how many voxels above it are searched</param>
    /// <exception cref="Exception">the model is null or disposed of; there are fewer than three coordinates; the lower number is
    /// negative; the upper one is</exception>
    public static VoxelIteratorCLI NearestFilledAlongX(VoxelModelCLI voxelModelCLI, List<double> pointCoords, long lowerOffset,
        long upperOffset) =>
        Along(NativeMethods.brix_nearest_filled_along_x, voxelModelCLI, pointCoords, lowerOffset, upperOffset);

    /// <summary>Searches the line of voxels along Y that goes through the point's voxel: that one first, then outwards, the lower
    /// one of two that are equally near.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="pointCoords">three world coordinates</param>
    /// <param name="lowerOffset">how many voxels below the point's voxel are searched</param>
    /// <param name="upperOffset">how many voxels above it are searched</param>
    /// <exception cref="Exception">the model is null or disposed of; there are fewer than three coordinates; the lower number is
    /// negative; the upper one is</exception>
    public static VoxelIteratorCLI NearestFilledAlongY(VoxelModelCLI voxelModelCLI, List<double> pointCoords, long lowerOffset,
        long upperOffset) =>
        Along(NativeMethods.brix_nearest_filled_along_y, voxelModelCLI, pointCoords, lowerOffset, upperOffset);

    /// <summary>Searches the line of voxels along Z that goes through the point's voxel: that one first, then outwards, the lower
    /// one of two that are equally near.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="pointCoords">three world coordinates</param>
    /// <param name="lowerOffset">how many voxels below the point's voxel are searched</param>
    /// <param name="upperOffset">how many voxels above it are searched</param>
    /// <exception cref="Exception">the model is null or disposed of; there are fewer than three coordinates; the lower number is
    /// negative; the upper one is</exception>
    public static VoxelIteratorCLI NearestFilledAlongZ(VoxelModelCLI voxelModelCLI, List<double> pointCoords, long lowerOffset,
        long upperOffset) =>
        Along(NativeMethods.brix_nearest_filled_along_z, voxelModelCLI, pointCoords, lowerOffset, upperOffset);

    /// <summary>Searches the layer of the point's voxel inside a disc, whose outline is an octagon: the nearest centre, and of
    /// several the first by y and then by x.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="pointCoords">three world coordinates; outside the extents nothing is found</param>
    /// <param name="diameterOffset">the approximate diameter of the disc in voxels, at least 1</param>
    /// <exception cref="Exception">the model is null or disposed of; there are fewer than three coordinates; the diameter is less
    /// than 1</exception>
    public static VoxelIteratorCLI NearestFilledHorizontally(VoxelModelCLI voxelModelCLI, List<double> pointCoords,
        long diameterOffset) => At(voxelModelCLI, pointCoords, (point, result, error) =>
            NativeMethods.brix_nearest_filled_horizontally(voxelModelCLI.Pointer, point, diameterOffset, result, error));

    private delegate int NativeSearch(IntPtr model, PointTriple* pointCoords, long lowerOffset, long upperOffset, IntPtr* result,
        NativeError* error);

    private static VoxelIteratorCLI Along(NativeSearch search, VoxelModelCLI voxelModelCLI, List<double> pointCoords,
        long lowerOffset, long upperOffset) => At(voxelModelCLI, pointCoords, (point, result, error) =>
            search(voxelModelCLI.Pointer, point, lowerOffset, upperOffset, result, error));

    private static VoxelIteratorCLI At(VoxelModelCLI voxelModelCLI, List<double> pointCoords,
        NativeCall<PointTriple, IntPtr> search)
    {
        voxelModelCLI.Required();
        return new VoxelIteratorCLI(Engine.Call(PointTriple.Of(pointCoords, nameof(pointCoords)), search));
    }
}
