using System;
using System.Collections.Generic;

namespace BrixCLI;

/// <summary>Models cut to size, taken apart and added up. Models that are passed in stay as they are.</summary>
public static unsafe class SpecialOperationsCLI
{
    /// <summary>The model on the box of its filled voxels at the finest level; an empty model on the voxel in its
    /// middle.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <exception cref="Exception">the model is null or disposed of</exception>
    public static VoxelModelCLI AutoCrop(VoxelModelCLI voxelModelCLI) =>
        new VoxelModelCLI((result, error) => NativeMethods.brix_auto_crop(voxelModelCLI.Required(), result, error));

    /// <summary>The regions of filled voxels that are connected through their faces at the finest level, each as a model of its
    /// own on the box of its filled voxels; they come in the order of their first voxels. An empty model has none.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <returns>new models, each of which the host disposes of</returns>
    /// <exception cref="Exception">the model is null or disposed of; there are more than 4294967295 regions to be
    /// told apart</exception>
    public static List<VoxelModelCLI> AutoSplit(VoxelModelCLI voxelModelCLI) => ModelLists.Take(Engine.Call<IntPtr>(
        (result, error) => NativeMethods.brix_auto_split(voxelModelCLI.Required(), result, error)));

    /// <summary>One model for each entry of <paramref name="levels"/>: filled where the weights of all models that are filled
    /// there add up to that entry or more. The results cover the extents of all models; an entry of 0 or below fills
    /// them.</summary>
    /// <param name="voxelModelsCLI">models of one frame, at least one</param>
    /// <param name="weights">a number for each model, in the same order</param>
    /// <param name="levels">the sums asked for, at least one, in any order</param>
    /// <param name="voxelLOD">0 to 5, the finest level of the results; a model that does not hold it is refined to it</param>
    /// <returns>new models in the order of the levels, each of which the host disposes of</returns>
    /// <exception cref="Exception">a list is null; a model in it is disposed of; there are no models; there is not one weight for
    /// each; there are no levels; a weight, or then a level, is NaN; the level of detail is negative; it is 6 or more; a model is
    /// null; the frames differ</exception>
    public static List<VoxelModelCLI> DensityMap(List<VoxelModelCLI> voxelModelsCLI, List<double> weights, List<double> levels,
        int voxelLOD)
    {
        IntPtr[] models = ModelLists.Pointers(voxelModelsCLI, nameof(voxelModelsCLI));
        double[] weightOfEach = Arguments.Required(weights, nameof(weights)).ToArray();
        double[] levelOfEach = Arguments.Required(levels, nameof(levels)).ToArray();
        IntPtr maps = Engine.Call<IntPtr>((result, error) => {
            fixed (IntPtr* items = models)
            fixed (double* weightItems = weightOfEach, levelItems = levelOfEach) {
                return NativeMethods.brix_density_map(items, voxelModelsCLI.Count, weightItems, weightOfEach.Length, levelItems,
                    levelOfEach.Length, voxelLOD, result, error);
            }
        });
        GC.KeepAlive(voxelModelsCLI);
        return ModelLists.Take(maps);
    }
}
