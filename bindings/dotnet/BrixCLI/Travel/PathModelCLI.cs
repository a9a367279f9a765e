using System;
using System.Collections.Generic;

namespace BrixCLI;

/// <summary>The voxels in which an agent of a given diameter and height can stand. It never changes.</summary>
public sealed unsafe class PathModelCLI : EngineObject
{
    private IntPtr pathModelPtr_ = IntPtr.Zero;

    /// <summary>The space for an agent in an environment.</summary>
    /// <param name="environment">filled where there is solid matter; it may be disposed of afterwards</param>
    /// <param name="voxelLOD">the level to work at, 0 to the environment's finest one</param>
    /// <param name="agentDiameterOffset">the agent's diameter in voxels of that level, at least 1</param>
    /// <param name="agentHeightOffset">the agent's height in voxels, at least 1; 1 is for plans, environments of one
    /// layer</param>
    /// <param name="autoAdjustExtents">true: the agent can stand on top of the highest matter, and the result is bounded by its
    /// voxels; false: the extents stay</param>
    /// <exception cref="Exception">the environment is null or disposed of; the level is negative; it is beyond the environment's
    /// finest one; the diameter, or then the height, is less than 1; the height is 1 and the environment has more than one layer;
    /// there is no layer above the environment in the index space</exception>
    public PathModelCLI(VoxelModelCLI environment, int voxelLOD, long agentDiameterOffset, long agentHeightOffset,
        bool autoAdjustExtents)
    {
        pathModelPtr_ = Engine.Call<IntPtr>((result, error) => NativeMethods.brix_path_model_create(
            environment.Required(), voxelLOD, agentDiameterOffset, agentHeightOffset,
            Engine.Flag(autoAdjustExtents), result, error));
    }

    private protected override ref IntPtr Field => ref pathModelPtr_;

    private protected override void Free(IntPtr pointer) => NativeMethods.brix_path_model_free(pointer);

    /// <summary>The environment, as another model on the same voxels.</summary>
    public VoxelModelCLI Environment() =>
        new VoxelModelCLI((result, error) => NativeMethods.brix_path_model_environment(Pointer, result, error));

    /// <summary>Filled where the agent may stand, its lowest voxel there; its finest level is <see cref="VoxelLOD"/>.</summary>
    public VoxelModelCLI TraversableVoxels() =>
        new VoxelModelCLI((result, error) => NativeMethods.brix_path_model_traversable_voxels(Pointer, result, error));

    /// <summary>The level of detail that the path model works at.</summary>
    public int VoxelLOD() =>
        (int)Engine.Call<long>((result, error) => NativeMethods.brix_path_model_voxel_lod(Pointer, result, error));

    /// <summary>The agent's diameter in voxels.</summary>
    public long AgentDiameterOffset() =>
        Engine.Call<long>((result, error) => NativeMethods.brix_path_model_agent_diameter_offset(Pointer, result, error));

    /// <summary>The agent's height in voxels.</summary>
    public long AgentHeightOffset() =>
        Engine.Call<long>((result, error) => NativeMethods.brix_path_model_agent_height_offset(Pointer, result, error));

    /// <summary>Points spread over the voxels in which the agent can stand: one in every cell of a horizontal grid for every
    /// connected floor in it, at the voxel nearest to the middle of the cell.</summary>
    /// <param name="spacing">the width of the cells in world units</param>
    /// <param name="minDiameter">in voxels, at least 1: floors that are narrower get no points</param>
    /// <returns>three world coordinates per point, the centre of its voxel</returns>
    /// <exception cref="Exception">the diameter is less than 1; the spacing is less than the width of a voxel; there would be too
    /// many cells</exception>
    public List<double> GenerateSamplePoints(double spacing, long minDiameter) => NumberLists.Take(Engine.Call<IntPtr>(
        (result, error) => NativeMethods.brix_path_model_generate_sample_points(Pointer, spacing, minDiameter, result, error)));
}
