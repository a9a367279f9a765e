using System;

namespace BrixCLI;

/// <summary>The closed surface of filled voxels as a mesh that slicers and solvers accept: oriented outwards, with exactly two
/// triangles at every edge.</summary>
public static unsafe class VoxelSurfaceMeshCLI
{
    /// <summary>The faces between filled and empty voxels of a level, two triangles each. What lies beyond the extents is
    /// empty.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="voxelLOD">0 to the model's finest level</param>
    /// <returns>a mesh that encloses just the volume of the voxels; voxels that touch at an edge or a corner alone share no
    /// vertices there</returns>
    /// <exception cref="Exception">the model is null or disposed of; the level is negative; it is beyond the model's finest one;
    /// there is not enough memory</exception>
    public static TriangleMeshCLI Blocky(VoxelModelCLI voxelModelCLI, int voxelLOD) => Make(voxelModelCLI, voxelLOD, 0, 0);

    /// <summary>The same faces with vertices moved towards their neighbours, each at most half a voxel from where it was: surface
    /// nets.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="voxelLOD">0 to the model's finest level</param>
    /// <param name="smoothingSteps">0 to 1000; each makes it smoother</param>
    /// <returns>a mesh with normals</returns>
    /// <exception cref="Exception">the model is null or disposed of; the level is negative; it is beyond the model's finest one;
    /// the number of steps is not allowed; there is not enough memory</exception>
    public static TriangleMeshCLI Smooth(VoxelModelCLI voxelModelCLI, int voxelLOD, int smoothingSteps) =>
        Make(voxelModelCLI, voxelLOD, 1, smoothingSteps);

    private static TriangleMeshCLI Make(VoxelModelCLI model, int voxelLOD, int isSmooth, int smoothingSteps) =>
        new TriangleMeshCLI(Engine.Call<IntPtr>((result, error) => NativeMethods.brix_surface_mesh(
            model.Required("voxelModelCLI"), voxelLOD, isSmooth, smoothingSteps, result, error)));
}
