using System;

namespace BrixCLI;

/// <summary>
/// Growth and shrinkage of the filled regions of a model, at its finest level; numbers of voxels count at that level. Models that
/// are passed in stay as they are. A guide may have another finest level than the model and any extents of the same frame.
/// </summary>
public static unsafe class SurfaceOperationsCLI
{
    /// <summary>Grows every filled region along X, first its lower faces and then its upper ones.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="lowerOffset">number of voxels towards smaller indices</param>
    /// <param name="upperOffset">number of voxels towards larger indices</param>
    /// <param name="guideVoxelsCLI">null, or a barrier of the same frame: never filled, never crossed; what the model held there
    /// stays</param>
    /// <param name="autoAdjustExtents">true: nothing is clipped, and the result is bounded by its filled voxels; false: the
    /// extents stay</param>
    /// <exception cref="Exception">a model is disposed of, or null where it is required; the lower number is negative; the upper
    /// one is; the result would leave the index space; the frames differ</exception>
    public static VoxelModelCLI ExpandAlongX(VoxelModelCLI voxelModelCLI, int lowerOffset, int upperOffset,
        VoxelModelCLI? guideVoxelsCLI = null, bool autoAdjustExtents = true) =>
        Apply(NativeMethods.brix_expand_along_x, voxelModelCLI, lowerOffset, upperOffset, guideVoxelsCLI, autoAdjustExtents);

    /// <summary>Grows every filled region along Y, first its lower faces and then its upper ones.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="lowerOffset">number of voxels towards smaller indices</param>
    /// <param name="upperOffset">number of voxels towards larger indices</param>
    /// <param name="guideVoxelsCLI">null, or a barrier of the same frame: never filled, never crossed; what the model held there
    /// stays</param>
    /// <param name="autoAdjustExtents">true: nothing is clipped, and the result is bounded by its filled voxels; false: the
    /// extents stay</param>
    /// <exception cref="Exception">a model is disposed of, or null where it is required; the lower number is negative; the upper
    /// one is; the result would leave the index space; the frames differ</exception>
    public static VoxelModelCLI ExpandAlongY(VoxelModelCLI voxelModelCLI, int lowerOffset, int upperOffset,
        VoxelModelCLI? guideVoxelsCLI = null, bool autoAdjustExtents = true) =>
        Apply(NativeMethods.brix_expand_along_y, voxelModelCLI, lowerOffset, upperOffset, guideVoxelsCLI, autoAdjustExtents);

    /// <summary>Grows every filled region along Z, first its lower faces and then its upper ones.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="lowerOffset">number of voxels towards smaller indices</param>
    /// <param name="upperOffset">number of voxels towards larger indices</param>
    /// <param name="guideVoxelsCLI">null, or a barrier of the same frame: never filled, never crossed; what the model held there
    /// stays</param>
    /// <param name="autoAdjustExtents">true: nothing is clipped, and the result is bounded by its filled voxels; false: the
    /// extents stay</param>
    /// <exception cref="Exception">a model is disposed of, or null where it is required; the lower number is negative; the upper
    /// one is; the result would leave the index space; the frames differ</exception>
    public static VoxelModelCLI ExpandAlongZ(VoxelModelCLI voxelModelCLI, int lowerOffset, int upperOffset,
        VoxelModelCLI? guideVoxelsCLI = null, bool autoAdjustExtents = true) =>
        Apply(NativeMethods.brix_expand_along_z, voxelModelCLI, lowerOffset, upperOffset, guideVoxelsCLI, autoAdjustExtents);

    /// <summary>Takes voxels off every filled region along X, first off its lower faces and then off its upper ones.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="lowerOffset">number of voxels off the lower faces</param>
    /// <param name="upperOffset">number of voxels off the upper faces</param>
    /// <param name="guideVoxelsCLI">null, or voxels of the same frame that count as filled neighbours, also one voxel outside the
    /// extents, and are never in the result by themselves</param>
    /// <param name="autoAdjustExtents">true: the result is bounded by its filled voxels; false: the extents stay</param>
    /// <exception cref="Exception">a model is disposed of, or null where it is required; the lower number is negative; the upper
    /// one is; the result would leave the index space; the frames differ</exception>
    public static VoxelModelCLI ReduceAlongX(VoxelModelCLI voxelModelCLI, int lowerOffset, int upperOffset,
        VoxelModelCLI? guideVoxelsCLI = null, bool autoAdjustExtents = true) =>
        Apply(NativeMethods.brix_reduce_along_x, voxelModelCLI, lowerOffset, upperOffset, guideVoxelsCLI, autoAdjustExtents);

    /// <summary>Takes voxels off every filled region along Y, first off its lower faces and then off its upper ones.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="lowerOffset">number of voxels off the lower faces</param>
    /// <param name="upperOffset">number of voxels off the upper faces</param>
    /// <param name="guideVoxelsCLI">null, or voxels of the same frame that count as filled neighbours, also one voxel outside the
    /// extents, and are never in the result by themselves</param>
    /// <param name="autoAdjustExtents">true: the result is bounded by its filled voxels; false: the extents stay</param>
    /// <exception cref="Exception">a model is disposed of, or null where it is required; the lower number is negative; the upper
    /// one is; the result would leave the index space; the frames differ</exception>
    public static VoxelModelCLI ReduceAlongY(VoxelModelCLI voxelModelCLI, int lowerOffset, int upperOffset,
        VoxelModelCLI? guideVoxelsCLI = null, bool autoAdjustExtents = true) =>
        Apply(NativeMethods.brix_reduce_along_y, voxelModelCLI, lowerOffset, upperOffset, guideVoxelsCLI, autoAdjustExtents);

    /// <summary>Takes voxels off every filled region along Z, first off its lower faces and then off its upper ones.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="lowerOffset">number of voxels off the lower faces</param>
    /// <param name="upperOffset">number of voxels off the upper faces</param>
    /// <param name="guideVoxelsCLI">null, or voxels of the same frame that count as filled neighbours, also one voxel outside the
    /// extents, and are never in the result by themselves</param>
    /// <param name="autoAdjustExtents">true: the result is bounded by its filled voxels; false: the extents stay</param>
    /// <exception cref="Exception">a model is disposed of, or null where it is required; the lower number is negative; the upper
    /// one is; the result would leave the index space; the frames differ</exception>
    public static VoxelModelCLI ReduceAlongZ(VoxelModelCLI voxelModelCLI, int lowerOffset, int upperOffset,
        VoxelModelCLI? guideVoxelsCLI = null, bool autoAdjustExtents = true) =>
        Apply(NativeMethods.brix_reduce_along_z, voxelModelCLI, lowerOffset, upperOffset, guideVoxelsCLI, autoAdjustExtents);

    /// <summary>Fills each empty voxel that has enough filled neighbours.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="horizontalAdjacency">the least number among the four neighbours beside it; beyond 4, no voxel has
    /// enough</param>
    /// <param name="verticalAdjacency">the least number among the two below and above it; beyond 2, no voxel has enough</param>
    /// <param name="guideVoxelsCLI">null, or a barrier of the same frame: never filled, never crossed; what the model held there
    /// stays</param>
    /// <param name="autoAdjustExtents">true: nothing is clipped, and the result is bounded by its filled voxels; false: the
    /// extents stay</param>
    /// <exception cref="Exception">a model is disposed of, or null where it is required; the horizontal number is negative; the
    /// vertical one is; both are zero; the result would leave the index space; the frames differ</exception>
    public static VoxelModelCLI ExpandByOneVoxel(VoxelModelCLI voxelModelCLI, int horizontalAdjacency, int verticalAdjacency,
        VoxelModelCLI? guideVoxelsCLI = null, bool autoAdjustExtents = true) => Apply(NativeMethods.brix_expand_by_one_voxel,
            voxelModelCLI, horizontalAdjacency, verticalAdjacency, guideVoxelsCLI, autoAdjustExtents);

    /// <summary>Empties each filled voxel that has enough empty neighbours.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="horizontalAdjacency">the least number among the four neighbours beside it; beyond 4, no voxel has
    /// enough</param>
    /// <param name="verticalAdjacency">the least number among the two below and above it; beyond 2, no voxel has enough</param>
    /// <param name="guideVoxelsCLI">null, or voxels of the same frame that count as filled neighbours, also one voxel outside the
    /// extents, and are never in the result by themselves</param>
    /// <param name="autoAdjustExtents">true: the result is bounded by its filled voxels; false: the extents stay</param>
    /// <exception cref="Exception">a model is disposed of, or null where it is required; the horizontal number is negative; the
    /// vertical one is; both are zero; the result would leave the index space; the frames differ</exception>
    public static VoxelModelCLI ReduceByOneVoxel(VoxelModelCLI voxelModelCLI, int horizontalAdjacency, int verticalAdjacency,
        VoxelModelCLI? guideVoxelsCLI = null, bool autoAdjustExtents = true) => Apply(NativeMethods.brix_reduce_by_one_voxel,
            voxelModelCLI, horizontalAdjacency, verticalAdjacency, guideVoxelsCLI, autoAdjustExtents);

    /// <summary>Grows every filled region in its own layer, as if by a disc; its outline is an octagon.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="diameterOffset">the approximate increase of a region's diameter in voxels, at least 1</param>
    /// <param name="guideVoxelsCLI">null, or a barrier of the same frame: never filled, never crossed; what the model held there
    /// stays</param>
    /// <param name="autoAdjustExtents">true: nothing is clipped, and the result is bounded by its filled voxels; false: the
    /// extents stay</param>
    /// <exception cref="Exception">a model is disposed of, or null where it is required; the diameter is less than 1; the result
    /// would leave the index space; the frames differ</exception>
    public static VoxelModelCLI ExpandHorizontally(VoxelModelCLI voxelModelCLI, int diameterOffset,
        VoxelModelCLI? guideVoxelsCLI = null, bool autoAdjustExtents = true) => new VoxelModelCLI((result, error) =>
            NativeMethods.brix_expand_horizontally(voxelModelCLI.Required(), diameterOffset,
                guideVoxelsCLI.Optional(), Engine.Flag(autoAdjustExtents), result, error));

    /// <summary>Shrinks every filled region in its own layer, as if by a disc; its outline is an octagon.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="diameterOffset">the approximate decrease of a region's diameter in voxels, at least 1</param>
    /// <param name="guideVoxelsCLI">null, or voxels of the same frame that count as filled neighbours, also one voxel outside the
    /// extents, and are never in the result by themselves</param>
    /// <param name="autoAdjustExtents">true: the result is bounded by its filled voxels; false: the extents stay</param>
    /// <exception cref="Exception">a model is disposed of, or null where it is required; the diameter is less than 1; the result
    /// would leave the index space; the frames differ</exception>
    public static VoxelModelCLI ReduceHorizontally(VoxelModelCLI voxelModelCLI, int diameterOffset,
        VoxelModelCLI? guideVoxelsCLI = null, bool autoAdjustExtents = true) => new VoxelModelCLI((result, error) =>
            NativeMethods.brix_reduce_horizontally(voxelModelCLI.Required(), diameterOffset,
                guideVoxelsCLI.Optional(), Engine.Flag(autoAdjustExtents), result, error));

    private delegate int NativeChange(IntPtr model, int first, int second, IntPtr guide, int autoAdjustExtents, IntPtr* result,
        NativeError* error);

    // What the operations with two numbers share.
    private static VoxelModelCLI Apply(NativeChange change, VoxelModelCLI voxelModelCLI, int first, int second,
        VoxelModelCLI? guideVoxelsCLI, bool autoAdjustExtents) => new VoxelModelCLI((result, error) => change(
            voxelModelCLI.Required(), first, second,
            guideVoxelsCLI.Optional(), Engine.Flag(autoAdjustExtents), result, error));
}
