using System;
using System.Collections.Generic;
using System.Linq;
using static BrixCLI.Tests.Scene;

namespace BrixCLI.Tests;

/// <summary>Models to boxes, rectangles and other models.</summary>
public class ConversionTests
{
    // Two voxels along x, three along y, four along z, and one that touches them at an edge only.
    private static readonly Cell[] Block = [.. from x in Enumerable.Range(2, 2) from y in Enumerable.Range(1, 3)
        from z in Enumerable.Range(0, 4) select (x, y, z)];

    private static VoxelModelCLI BlockAndMore() => Model((0, 0, 0), (9, 9, 9), [.. Block, (4, 4, 0)]);

    [Fact]
    public void CuboidsHaveTheirCornerAndSizeInTheWorld()
    {
        using VoxelModelCLI model = BlockAndMore();
        Assert.Equal([12, 21, 30, 2, 3, 4, 14, 24, 30, 1, 1, 1],
            VoxelCuboidizationCLI.CuboidizeVoxelModel(model, 5, 2).Select(number => Math.Round(number, 9)));
        Assert.Equal([10, 20, 30, 16, 16, 4],
            VoxelCuboidizationCLI.CuboidizeVoxelModel(model, 1, double.NaN).Select(number => Math.Round(number, 6)));
        Assert.Equal("Total cuboid count of 2 exceeds limit of 1.5. Consider converting the voxels at a coarser level of detail.",
            MessageOf(() => VoxelCuboidizationCLI.CuboidizeVoxelModel(model, 5, 1.5)));
        Assert.Equal("The level of detail for voxel cuboidization cannot be negative. The value encountered was -1.",
            MessageOf(() => VoxelCuboidizationCLI.CuboidizeVoxelModel(model, -1, 5)));
        Assert.Equal("Total cuboid count of 357913942 exceeds absolute limit of 357913941.",
            MessageOf(() => SizeLimits.RequireCuboids(357913942, double.NaN)));
        SizeLimits.RequireCuboids(357913941, 357913941);
    }

    [Fact]
    public void RectanglesHaveTheirCornersInTheWorld()
    {
        using VoxelModelCLI model = BlockAndMore();
        List<double> rectangles = VoxelSolidizationCLI.SolidizeVoxelModel(model, 5, 12);
        Assert.Equal(12 * 12, rectangles.Count);
        Assert.Equivalent(new[] { "12 21 30", "12 21 34", "12 24 30", "12 24 34" },
            rectangles[..12].Chunk(3).Select(corner => string.Join(" ", corner.Select(number => Math.Round(number, 9)))));
        Assert.Equal("Total rectangle count of 12 exceeds limit of 11. " +
            "Consider converting the voxels at a coarser level of detail.",
            MessageOf(() => VoxelSolidizationCLI.SolidizeVoxelModel(model, 5, 11)));
        Assert.Equal("The level of detail for voxel solidization cannot be negative. The value encountered was -1.",
            MessageOf(() => VoxelSolidizationCLI.SolidizeVoxelModel(model, -1, 5)));
        Assert.Equal("Total rectangle count of 178956971 exceeds absolute limit of 178956970.",
            MessageOf(() => SizeLimits.RequireRectangles(178956971, double.NaN)));
        SizeLimits.RequireRectangles(178956970, 178956970);
    }

    [Fact]
    public void SurfaceMeshesAreClosed()
    {
        using VoxelModelCLI model = Model((0, 0, 0), (3, 3, 3), (1, 1, 1), (2, 1, 1));
        using TriangleMeshCLI blocky = VoxelSurfaceMeshCLI.Blocky(model, 5);
        using TriangleMeshCLI smooth = VoxelSurfaceMeshCLI.Smooth(model, 5, 3);
        Assert.Equal(3 * 12, blocky.Vertices().Count);
        Assert.Equal(3 * 20, blocky.Indices().Count);
        Assert.Empty(blocky.Normals());
        Assert.Equal(blocky.Indices(), smooth.Indices());
        Assert.All(smooth.Normals().Chunk(3), normal => Assert.Equal(1, normal.Sum(part => part * part), 5));
        var edges = blocky.Indices().Chunk(3).SelectMany(t => new[] { (t[0], t[1]), (t[1], t[2]), (t[2], t[0]) }).ToHashSet();
        Assert.Equal(60, edges.Count);
        Assert.All(edges, edge => Assert.Contains((edge.Item2, edge.Item1), edges));
        Assert.Contains("between 0 and 1000", MessageOf(() => VoxelSurfaceMeshCLI.Smooth(model, 5, 1001)));
    }

    [Fact]
    public void SplittingGivesARegionForEachModel()
    {
        using VoxelModelCLI model = BlockAndMore();
        using VoxelModelCLI empty = Model((0, 0, 0), (3, 3, 3));
        Assert.Equal([new Cells((2, 1, 0), (3, 3, 3), [.. Block]).ToString(), "(4, 4, 0)..(4, 4, 0): (4, 4, 0)"],
            SpecialOperationsCLI.AutoSplit(model).Select(region => Take(region)));
        Assert.Empty(SpecialOperationsCLI.AutoSplit(empty));
    }

    [Fact]
    public void DensitiesAddUpTheWeights()
    {
        Cells a = Cells.Random(31, 0.5), b = Cells.Random(32, 0.5).With((-2, 0, 1), (5, 6, 2)), c = Cells.Random(33, 0.6);
        using VoxelModelCLI modelA = Model(a), modelB = Model(b), modelC = Model(c);
        double[] weights = [1, -0.5, 0.25];
        double[] levels = [1.25, 0.5, 1, 0];
        Cells box = new((-3, -1, 0), (5, 6, 2), []);
        double Sum(Cell cell) => (a.Holds(cell) ? weights[0] : 0) + (b.Holds(cell) ? weights[1] : 0)
            + (c.Holds(cell) ? weights[2] : 0);
        List<VoxelModelCLI> maps = SpecialOperationsCLI.DensityMap([modelA, modelB, modelC], [.. weights], [.. levels], 5);
        Assert.Equal(levels.Select(level => box.Where(cell => level <= 0 || Sum(cell) >= level).ToString()),
            maps.Select(map => Take(map)));
        using VoxelModelCLI coarse = SpecialOperationsCLI.DensityMap([modelA], [1], [1], 3).Single();
        Assert.Equal(3, coarse.FinestLOD());
    }

    [Fact]
    public void ViewsAreNarrowedInTheWorld()
    {
        // An empty room in a frame that is turned by 90 degrees: the world's y is the lattice's x.
        using AxesCLI axes = Axes(90);
        using var extents = new ExtentsCLI(axes, [-8, -8, -8], [8, 8, 8], 5);
        using var model = new VoxelModelCLI(extents, 5, double.NaN);
        List<double> eye = axes.VoxelCenter([0, 0, 0], 5), ahead = [0, 3, 0];
        double far = axes.ValidateDistance(-1);
        Cells box = new((-8, -8, -8), (8, 8, 8), []);
        using VoxelModelCLI cone = VisibilityOperationsCLI.VisibilityWithinCone(model, eye, ahead, 60, 5, far, 0.5, false);
        Assert.Equal(box.Where(p => p == (0, 0, 0) || (p.X > 0 && 3.0000001 * p.X * p.X >= 9 * (p.Y * p.Y + p.Z * p.Z)))
            .ToString(),
            Read(cone).ToString());
        using VoxelModelCLI view = VisibilityOperationsCLI.VisibilityWithinPyramid(model, eye, ahead, 90, 60, 5, far, 0.5, false);
        Assert.Equal(box.Where(p => p == (0, 0, 0) || (p.X > 0 && Math.Abs(p.Y) <= p.X && 3 * p.Z * p.Z <= p.X * p.X)).ToString(),
            Read(view).ToString());
        using VoxelModelCLI near = VisibilityOperationsCLI.VisibilityWithinCone(model, eye, ahead, 60, 4, 3, 0.5, true);
        Assert.Equal(4, near.FinestLOD());
        using VoxelModelCLI nearView = VisibilityOperationsCLI.VisibilityWithinPyramid(model, eye, ahead, 60, 60, 4, 3, 0.5,
            true);
        Assert.Equal(4, nearView.FinestLOD());
        Assert.Equal("The direction for visibility computation cannot be [0, 0, 0].", MessageOf(() =>
            VisibilityOperationsCLI.VisibilityWithinCone(model, eye, [0, 0, 0], 60, 5, 1, 0.5, false)));
    }
}
