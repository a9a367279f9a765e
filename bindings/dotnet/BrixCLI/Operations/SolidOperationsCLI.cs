using System;
using System.Collections.Generic;

namespace BrixCLI;

/// <summary>Boolean combinations of models of one frame. Models that are passed in stay as they are.</summary>
public static unsafe class SolidOperationsCLI
{
    /// <summary>Filled where any model is filled at a level, which becomes the finest level of the result.</summary>
    /// <param name="voxelModelsCLI">models of one frame, at least one</param>
    /// <param name="voxelLOD">0 to 5; a model that does not hold the level is refined to it</param>
    /// <param name="autoAdjustExtents">true: the result is bounded by its filled voxels; false: by the extents of all
    /// models</param>
    /// <exception cref="Exception">the list is null; a model in it is disposed of; the list is empty; the level is negative; it
    /// is 6 or more; a model is null; the frames differ</exception>
    public static VoxelModelCLI Union(List<VoxelModelCLI> voxelModelsCLI, int voxelLOD, bool autoAdjustExtents) =>
        Combine(NativeMethods.brix_union, voxelModelsCLI, voxelLOD, autoAdjustExtents);

    /// <summary>Filled where every model is filled at a level, which becomes the finest level of the result.</summary>
    /// <param name="voxelModelsCLI">models of one frame, at least one</param>
    /// <param name="voxelLOD">0 to 5; a model that does not hold the level is refined to it</param>
    /// <param name="autoAdjustExtents">true: the result is bounded by its filled voxels; false: by the extents of all
    /// models</param>
    /// <exception cref="Exception">the list is null; a model in it is disposed of; the list is empty; the level is negative; it
    /// is 6 or more; a model is null; the frames differ</exception>
    public static VoxelModelCLI Intersect(List<VoxelModelCLI> voxelModelsCLI, int voxelLOD, bool autoAdjustExtents) =>
        Combine(NativeMethods.brix_intersect, voxelModelsCLI, voxelLOD, autoAdjustExtents);

    /// <summary>Filled where the first model is filled and the second is not.</summary>
    /// <param name="voxelModel0CLI">the model</param>
    /// <param name="voxelModel1CLI">what is taken away from it</param>
    /// <param name="voxelLOD">0 to 5: the level at which the two are compared; a model that does not hold it is refined to
    /// it</param>
    /// <param name="autoAdjustExtents">true: the result is bounded by its filled voxels; false: by the extents of both
    /// models</param>
    /// <exception cref="Exception">a model is null or disposed of; the level is negative; it is 6 or more; the frames
    /// differ</exception>
    public static VoxelModelCLI Subtract(VoxelModelCLI voxelModel0CLI, VoxelModelCLI voxelModel1CLI, int voxelLOD,
        bool autoAdjustExtents) => new VoxelModelCLI((result, error) => NativeMethods.brix_subtract(
            voxelModel0CLI.Required(), voxelModel1CLI.Required(), voxelLOD, Engine.Flag(autoAdjustExtents), result, error));

    /// <summary>Filled inside the model's extents exactly where the model is empty, at its finest level.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <exception cref="Exception">the model is null or disposed of</exception>
    public static VoxelModelCLI Invert(VoxelModelCLI voxelModelCLI) =>
        new VoxelModelCLI((result, error) => NativeMethods.brix_invert(voxelModelCLI.Required(), result, error));

    private delegate int NativeCombination(IntPtr* models, long modelCount, long voxelLOD, int autoAdjustExtents, IntPtr* result,
        NativeError* error);

    private static VoxelModelCLI Combine(NativeCombination combination, List<VoxelModelCLI> voxelModelsCLI, int voxelLOD,
        bool autoAdjustExtents)
    {
        IntPtr[] models = ModelLists.Pointers(voxelModelsCLI, nameof(voxelModelsCLI));
        return new VoxelModelCLI((result, error) => {
            fixed (IntPtr* items = models) {
                return combination(items, voxelModelsCLI.Count, voxelLOD, Engine.Flag(autoAdjustExtents), result, error);
            }
        });
    }
}
