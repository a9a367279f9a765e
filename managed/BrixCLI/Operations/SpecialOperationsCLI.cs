using System;

namespace BrixCLI;

/// <summary>Operations that do not belong to another family.</summary>
public static unsafe class SpecialOperationsCLI
{
    /// <summary>The model on the box of its filled voxels at the finest level; an empty model on the voxel in its
    /// middle.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <exception cref="Exception">the model is null or disposed of</exception>
    public static VoxelModelCLI AutoCrop(VoxelModelCLI voxelModelCLI) =>
        new VoxelModelCLI((result, error) => NativeMethods.brix_auto_crop(voxelModelCLI.Required(), result, error));
}
