using System;
using System.Collections.Generic;

namespace BrixCLI;

/// <summary>
/// Which empty voxels can be seen along a direction or from a point. Each voxel gets a value from 0 (dark) to 1 (fully seen),
/// carried from voxel to voxel, so that oblique sight lines get soft shadows; beyond the extents, everything is 1.
/// </summary>
public static unsafe class VisibilityOperationsCLI
{
    /// <summary>The voxels of a level that are seen along a direction; the level becomes the finest one of the result.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="direction">three numbers, a world vector of any length: where sight lines travel, (0, 0, -1) looks down. It
    /// is turned into the model's frame and rounded to about nine digits.</param>
    /// <param name="voxelLOD">0 to the model's finest level</param>
    /// <param name="threshold">the least value that counts as visible; 0 and below mark every voxel, above 1 and NaN mark
    /// none</param>
    /// <exception cref="Exception">the model is null or disposed of; the direction has fewer than three numbers; it is zero or
    /// not finite; the level is negative; it is beyond the model's finest one</exception>
    public static VoxelModelCLI VisibilityFromDirection(VoxelModelCLI voxelModelCLI, List<double> direction, int voxelLOD,
        double threshold)
    {
        voxelModelCLI.Required();
        return new VoxelModelCLI(Engine.Call<PointTriple, IntPtr>(PointTriple.Of(direction, nameof(direction)),
            (vector, result, error) => NativeMethods.brix_visibility_from_direction(voxelModelCLI.Pointer, vector, voxelLOD,
                threshold, result, error)));
    }

    /// <summary>The voxels of a level that are seen from a point; the level becomes the finest one of the result.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="pointCoords">three world coordinates, anywhere</param>
    /// <param name="voxelLOD">0 to the model's finest level</param>
    /// <param name="maxRadius">world units: voxels whose centre is farther away are never marked; for no limit, what <see
    /// cref="AxesCLI.ValidateDistance"/> returns for -1</param>
    /// <param name="threshold">the least value that counts as visible; 0 and below mark every voxel within the radius</param>
    /// <param name="autoAdjustExtents">true: the surroundings of the point within the radius are looked at, and the result is
    /// bounded by what is visible; false: the extents stay</param>
    /// <exception cref="Exception">the model is null or disposed of; there are fewer than three coordinates; the level is
    /// negative; it is beyond the model's finest one; the radius is negative; the point is outside the index space, the
    /// extents are adjusted, and there is no limit. With a limit, nothing is visible from such a point: the result is an empty
    /// model of one voxel.</exception>
    public static VoxelModelCLI VisibilityFromPoint(VoxelModelCLI voxelModelCLI, List<double> pointCoords, int voxelLOD,
        double maxRadius, double threshold, bool autoAdjustExtents)
    {
        voxelModelCLI.Required();
        return new VoxelModelCLI(Engine.Call<PointTriple, IntPtr>(PointTriple.Of(pointCoords, nameof(pointCoords)),
            (point, result, error) => NativeMethods.brix_visibility_from_point(voxelModelCLI.Pointer, point, voxelLOD, maxRadius,
                threshold, Engine.Flag(autoAdjustExtents), result, error)));
    }

    /// <summary>What is seen from a point within a cone around a direction: the voxels of <see cref="VisibilityFromPoint"/> whose
    /// centre lies in the cone, and the point's own.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="pointCoords">three world coordinates, anywhere: the apex</param>
    /// <param name="direction">three numbers, a world vector of any length: the axis</param>
    /// <param name="angle">the full opening angle in degrees, greater than 0 and at most 360</param>
    /// <param name="voxelLOD">0 to the model's finest level</param>
    /// <param name="maxRadius">world units: voxels whose centre is farther away are never marked; for no limit, what <see
    /// cref="AxesCLI.ValidateDistance"/> returns for -1</param>
    /// <param name="threshold">the least value that counts as visible; 0 and below mark every voxel in view</param>
    /// <param name="autoAdjustExtents">true: the surroundings of the point that are in view are looked at, and the result is
    /// bounded by what is visible; false: the extents stay</param>
    /// <exception cref="Exception">the model is null or disposed of; there are fewer than three coordinates or numbers; the
    /// direction is zero or not finite; the angle is out of its range; then as for <see cref="VisibilityFromPoint"/></exception>
    public static VoxelModelCLI VisibilityWithinCone(VoxelModelCLI voxelModelCLI, List<double> pointCoords,
        List<double> direction, double angle, int voxelLOD, double maxRadius, double threshold, bool autoAdjustExtents)
    {
        voxelModelCLI.Required();
        return new VoxelModelCLI(Engine.Call<Ray, IntPtr>(RayOf(pointCoords, direction), (ray, result, error) =>
            NativeMethods.brix_visibility_within_cone(voxelModelCLI.Pointer, &ray->Point, &ray->Direction, angle, voxelLOD,
                maxRadius, threshold, Engine.Flag(autoAdjustExtents), result, error)));
    }

    /// <summary>What a camera at a point sees: the voxels of <see cref="VisibilityFromPoint"/> whose centre lies in its view, and
    /// the point's own. The camera is held upright.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="pointCoords">three world coordinates, anywhere: the camera</param>
    /// <param name="direction">three numbers, a world vector of any length: where it looks</param>
    /// <param name="horizontalAngle">the full angle of its view from left to right in degrees, between 0 and 180</param>
    /// <param name="verticalAngle">the full angle from bottom to top, likewise</param>
    /// <param name="voxelLOD">0 to the model's finest level</param>
    /// <param name="maxRadius">world units: voxels whose centre is farther away are never marked; for no limit, what <see
    /// cref="AxesCLI.ValidateDistance"/> returns for -1</param>
    /// <param name="threshold">the least value that counts as visible; 0 and below mark every voxel in view</param>
    /// <param name="autoAdjustExtents">true: the surroundings of the point that are in view are looked at, and the result is
    /// bounded by what is visible; false: the extents stay</param>
    /// <exception cref="Exception">the model is null or disposed of; there are fewer than three coordinates or numbers; the
    /// direction is zero or not finite; the horizontal angle, then the vertical one, is out of its range; then as for <see
    /// cref="VisibilityFromPoint"/></exception>
    public static VoxelModelCLI VisibilityWithinPyramid(VoxelModelCLI voxelModelCLI, List<double> pointCoords,
        List<double> direction, double horizontalAngle, double verticalAngle, int voxelLOD, double maxRadius, double threshold,
        bool autoAdjustExtents)
    {
        voxelModelCLI.Required();
        return new VoxelModelCLI(Engine.Call<Ray, IntPtr>(RayOf(pointCoords, direction), (ray, result, error) =>
            NativeMethods.brix_visibility_within_pyramid(voxelModelCLI.Pointer, &ray->Point, &ray->Direction, horizontalAngle,
                verticalAngle, voxelLOD, maxRadius, threshold, Engine.Flag(autoAdjustExtents), result, error)));
    }

    private static Ray RayOf(List<double> pointCoords, List<double> direction) => new Ray {
        Point = PointTriple.Of(pointCoords, nameof(pointCoords)),
        Direction = PointTriple.Of(direction, nameof(direction)),
    };
}
