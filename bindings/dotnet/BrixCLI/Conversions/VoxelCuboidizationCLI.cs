using System;
using System.Collections.Generic;

namespace BrixCLI;

/// <summary>Filled voxels as boxes, for hosts that handle solids better than triangles.</summary>
public static unsafe class VoxelCuboidizationCLI
{
    /// <summary>Disjoint boxes that cover the filled voxels of a level exactly, merged along X, then Y, then Z wherever the
    /// voxels allow it.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="voxelLOD">0 to the model's finest level</param>
    /// <param name="cuboidLimit">the most boxes that the host wants; NaN allows any number</param>
    /// <returns>six numbers per box, in world units: the lower corner, then the size along the X, Y and Z of the model's
    /// frame</returns>
    /// <exception cref="Exception">the model is null or disposed of; the level is negative; it is beyond the model's finest one;
    /// there are more boxes than <paramref name="cuboidLimit"/>; there are more than 357913941, or than a list can hold; there is
    /// not enough memory</exception>
    public static List<double> CuboidizeVoxelModel(VoxelModelCLI voxelModelCLI, int voxelLOD, double cuboidLimit)
    {
        IntPtr cuboids = Engine.Call<IntPtr>((result, error) => NativeMethods.brix_cuboidize_voxel_model(
            voxelModelCLI.Required(), voxelLOD, result, error));
        return NumberLists.Take(cuboids, count => SizeLimits.RequireCuboids(count, cuboidLimit));
    }
}
