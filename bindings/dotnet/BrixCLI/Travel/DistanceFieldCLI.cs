using System;
using System.Collections.Generic;

namespace BrixCLI;

/// <summary>
/// Walking distances over the voxels of a path model, from the nearest of a set of points: lengths of the shortest ways in space,
/// in world units. It never changes, and does not need the path model any more.
/// </summary>
public sealed unsafe class DistanceFieldCLI : EngineObject
{
    private IntPtr distanceFieldPtr_ = IntPtr.Zero;

    /// <summary>The distances from the nearest of a set of points.</summary>
    /// <param name="pathModelCLI">what can be walked on</param>
    /// <param name="sources">three world coordinates per point. A point above the floor, by up to the agent's height, stands for
    /// the voxel below it; one without a floor is left out</param>
    /// <param name="maxDistance">world units: what is farther counts as unreachable. -1 for no limit</param>
    /// <exception cref="Exception">the path model is null or disposed of; the number of coordinates is not divisible by three;
    /// there is no point; none stands on a floor; the distance is negative</exception>
    public DistanceFieldCLI(PathModelCLI pathModelCLI, List<double> sources, double maxDistance)
    {
        pathModelCLI.Required();
        Arguments.RequireDivisible(Arguments.Required(sources, nameof(sources)).Count, 3, Arguments.PointsOfThree);
        double limit = Unlimited(pathModelCLI, maxDistance);
        distanceFieldPtr_ = NumberLists.WithItems<IntPtr>(sources, (points, result, error) =>
            NativeMethods.brix_distance_field_create(pathModelCLI.Pointer, points, sources.Count / 3, limit, result, error));
    }

    private protected override ref IntPtr Field => ref distanceFieldPtr_;

    private protected override void Free(IntPtr pointer) => NativeMethods.brix_distance_field_free(pointer);

    /// <summary>The walking distance of a point.</summary>
    /// <param name="pointCoords">three world coordinates, in a voxel that the agent can stand in</param>
    /// <returns>world units; exactly -1 where the voxel cannot be reached</returns>
    /// <exception cref="Exception">there are fewer than three coordinates</exception>
    public double Distance(List<double> pointCoords) => Engine.Call<PointTriple, double>(
        PointTriple.Of(pointCoords, nameof(pointCoords)),
        (point, result, error) => NativeMethods.brix_distance_field_distance(Pointer, point, result, error));

    /// <summary>The largest distance, in world units.</summary>
    public double FarthestDistance() =>
        Engine.Call<double>((result, error) => NativeMethods.brix_distance_field_farthest_distance(Pointer, result, error));

    /// <summary>The voxel that has the largest distance: three voxel indices at the level of the path model.</summary>
    public List<int> FarthestVoxel() => Engine.Call<IndexTriple>(
        (result, error) => NativeMethods.brix_distance_field_farthest_voxel(Pointer, result, error)).ToList();

    /// <summary>Filled where the agent can get to.</summary>
    public VoxelModelCLI ReachableVoxels() =>
        new VoxelModelCLI((result, error) => NativeMethods.brix_distance_field_reachable_voxels(Pointer, result, error));

    /// <summary>Filled where the agent can get to within a distance.</summary>
    /// <param name="maxDistance">world units; -1 for no limit</param>
    /// <exception cref="Exception">the distance is negative</exception>
    public VoxelModelCLI ReachableVoxels(double maxDistance) => maxDistance == -1.0 ? ReachableVoxels() :
        new VoxelModelCLI((result, error) =>
            NativeMethods.brix_distance_field_reachable_within(Pointer, maxDistance, result, error));

    /// <summary>What a colour map needs: every voxel that can be reached, with its distance.</summary>
    /// <returns>four numbers per voxel, in world units: its centre, then its distance</returns>
    /// <exception cref="Exception">there are more than a list can hold; there is not enough memory</exception>
    public List<double> Distances() => NumberLists.Take(Engine.Call<IntPtr>(
        (result, error) => NativeMethods.brix_distance_field_distances(Pointer, result, error)));

    private static double Unlimited(PathModelCLI pathModelCLI, double distance)
    {
        using VoxelModelCLI environment = pathModelCLI.Environment();
        return environment.Frame.ValidateDistance(distance);
    }
}
