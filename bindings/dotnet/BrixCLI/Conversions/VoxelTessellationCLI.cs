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
        return NumberLists.Take(Tessellated(voxelModelCLI, voxelLOD), count => SizeLimits.RequireTriangles(count, triangleLimit));
    }

    /// <summary>How many triangles <see cref="TessellateVoxelModel"/> would make, without making them.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="voxelLOD">0 to the model's finest level</param>
    /// <exception cref="Exception">the model is null or disposed of; the level is negative; it is beyond the model's finest one
    /// </exception>
    public static long CountTriangles(VoxelModelCLI voxelModelCLI, int voxelLOD) => Engine.Call<long>((result, error) =>
        NativeMethods.brix_count_tessellation_triangles(voxelModelCLI.Required(), voxelLOD, result, error));

    /// <summary>The triangles of <see cref="TessellateVoxelModel"/> part by part, for results that no list can hold. The
    /// engine's part of the work is done when the first part is asked for; it takes 24 bytes for every twelve triangles
    /// meanwhile.</summary>
    /// <param name="voxelModelCLI">the model, which must not be disposed of before the last part</param>
    /// <param name="voxelLOD">0 to the model's finest level</param>
    /// <param name="trianglesPerPart">how many triangles a part has, but for the last one</param>
    /// <returns>arrays of nine numbers per triangle, in world units</returns>
    /// <exception cref="Exception">the model is null or disposed of; the level is negative; it is beyond the model's finest one;
    /// a part would have no triangles, or more numbers than an array can hold</exception>
    public static IEnumerable<double[]> TessellateInParts(VoxelModelCLI voxelModelCLI, int voxelLOD, int trianglesPerPart)
    {
        CountTriangles(voxelModelCLI, voxelLOD); // whose checks are these
        if (trianglesPerPart < 1 || trianglesPerPart > SizeLimits.MaxItems / 9)
            throw new Exception("A part must have between 1 and " + SizeLimits.MaxItems / 9 +
                " triangles. The value encountered was " + trianglesPerPart + ".");
        return Parts(voxelModelCLI, voxelLOD, trianglesPerPart);
    }

    private static IEnumerable<double[]> Parts(VoxelModelCLI model, int voxelLOD, int trianglesPerPart)
    {
        IntPtr triangles = Tessellated(model, voxelLOD);
        try {
            long count = NumberLists.CountOf(triangles);
            for (long first = 0; first < count; first += trianglesPerPart)
                yield return NumberLists.Part(triangles, first, (int)Math.Min(trianglesPerPart, count - first));
        } finally {
            NativeMethods.brix_list_free(triangles);
        }
    }

    private static IntPtr Tessellated(VoxelModelCLI model, int voxelLOD) => Engine.Call<IntPtr>((result, error) =>
        NativeMethods.brix_tessellate_voxel_model(model.Required(), voxelLOD, result, error));
}
