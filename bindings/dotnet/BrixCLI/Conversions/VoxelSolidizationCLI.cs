using System;
using System.Collections.Generic;

namespace BrixCLI;

/// <summary>The surface of filled voxels as rectangles, for hosts that build solids of faces.</summary>
public static unsafe class VoxelSolidizationCLI
{
    /// <summary>Disjoint rectangles that cover the faces between filled and empty voxels of a level exactly, merged within each
    /// plane; faces to different sides are never merged. What lies beyond the extents is empty.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="voxelLOD">0 to the model's finest level</param>
    /// <param name="rectangleLimit">the most rectangles that the host wants; NaN allows any number</param>
    /// <returns>twelve numbers per rectangle, in world units: its four corners, counter-clockwise seen from outside</returns>
    /// <exception cref="Exception">the model is null or disposed of; the level is negative; it is beyond the model's finest one;
    /// there are more rectangles than <paramref name="rectangleLimit"/>; there are more than 178956970, or than a list can hold;
    /// there is not enough memory</exception>
    public static List<double> SolidizeVoxelModel(VoxelModelCLI voxelModelCLI, int voxelLOD, double rectangleLimit)
    {
        IntPtr rectangles = Engine.Call<IntPtr>((result, error) => NativeMethods.brix_solidize_voxel_model(
            voxelModelCLI.Required(), voxelLOD, result, error));
        return NumberLists.Take(rectangles, count => SizeLimits.RequireRectangles(count, rectangleLimit));
    }
}
