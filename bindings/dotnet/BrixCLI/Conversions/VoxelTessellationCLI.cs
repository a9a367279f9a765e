using System;
using System.Collections.Generic;

namespace BrixCLI;

/// <summary>Filled voxels as triangles, for display or for a file.</summary>
public static unsafe class VoxelTessellationCLI
{
    /// <summary>The surface triangles of boxes that cover the filled voxels of a level exactly; counter-clockwise seen from
    /// outside. Neighbouring boxes are not merged everywhere, and faces between them are kept.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="voxelLOD">0 to the model's finest level</param>
    /// <param name="triangleLimit">the most triangles that the host wants; NaN allows any number</param>
    /// <returns>nine numbers per triangle, in world units; see <see cref="TrianglesAsNineNumbersCLI"/></returns>
    /// <exception cref="Exception">the model is null or disposed of; the level is negative; it is beyond the model's finest one;
    /// there are more triangles than <paramref name="triangleLimit"/>; there are more than 238609294, or than a list can hold;
    /// there is not enough memory</exception>
    public static List<double> TessellateVoxelModel(VoxelModelCLI voxelModelCLI, int voxelLOD, double triangleLimit)
    {
        IntPtr triangles = Engine.Call<IntPtr>((result, error) => NativeMethods.brix_tessellate_voxel_model(
            voxelModelCLI.Required(), voxelLOD, result, error));
        return NumberLists.Take(triangles, count => SizeLimits.RequireTriangles(count, triangleLimit));
    }
}
