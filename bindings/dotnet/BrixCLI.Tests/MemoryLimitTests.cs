using System;
using System.Collections.Generic;
using System.Linq;
using static BrixCLI.Tests.Scene;

namespace BrixCLI.Tests;

// Alone: the limit is that of the whole process.
[CollectionDefinition(nameof(MemoryLimitTests), DisableParallelization = true)]
[Collection(nameof(MemoryLimitTests))]
public sealed class MemoryLimitTests : IDisposable
{
    private readonly VoxelModelCLI model_ = Model((0, 0, 0), (9, 9, 9), (1, 1, 1), (2, 1, 1));
    private readonly AxesCLI axes_ = Axes();
    private readonly List<double> triangles_ = Triangles([(1, 1, 1)]);

    public void Dispose()
    {
        MemoryLimitCLI.Bytes = double.PositiveInfinity;
        model_.Dispose();
        axes_.Dispose();
    }

    private static void Drop(object result) => (result as IDisposable)?.Dispose();

    [Fact]
    public void IsANumberOfBytes()
    {
        Assert.Equal(double.PositiveInfinity, MemoryLimitCLI.Bytes);
        MemoryLimitCLI.Bytes = 5e9;
        foreach ((double bytes, string text) in new[] { (-1, "-1"), (double.NaN, "NaN"), (double.NegativeInfinity, "-inf") }) {
            Assert.Equal("The memory limit cannot be less than 0. The value encountered was " + text + ".",
                MessageOf(() => MemoryLimitCLI.Bytes = bytes));
        }
        Assert.Equal(5e9, MemoryLimitCLI.Bytes);
    }

    [Fact]
    public void RefusesWhatTakesMoreBeforeTheWork()
    {
        using var pathModel = new PathModelCLI(model_, 5, 1, 2, true);
        using var field = new DistanceFieldCLI(pathModel, Centre((1, 1, 2)), -1);
        using var slice = new SliceIteratorCLI(model_, 2, 0, 5);
        var works = new (string Asked, Func<object> Run)[] {
            ("the expanded voxel model", () => SurfaceOperationsCLI.ExpandAlongX(model_, 1, 1)),
            ("the expanded voxel model", () => SurfaceOperationsCLI.ExpandHorizontally(model_, 3, model_, false)),
            ("the reduced voxel model", () => SurfaceOperationsCLI.ReduceByOneVoxel(model_, 1, 1)),
            ("the refined voxel model", () => BasicOperationsCLI.Refine(model_, 5)),
            ("the enlarged voxel model", () => BasicOperationsCLI.Enlarge(model_, 1, 1, 1, 1, 1, 1)),
            ("the union of the voxel models", () => SolidOperationsCLI.Union([model_, model_], 5, true)),
            ("the inverted voxel model", () => SolidOperationsCLI.Invert(model_)),
            ("the filled voxel model", () => FillOperationsCLI.FillExposedRegions(model_)),
            ("the regions of the voxel model", () => SpecialOperationsCLI.AutoSplit(model_)),
            ("the density map of the voxel models", () => SpecialOperationsCLI.DensityMap([model_], [1], [1], 5)),
            ("what is visible from the point",
                () => VisibilityOperationsCLI.VisibilityFromPoint(model_, Centre((5, 5, 5)), 5, 10, 0.5, true)),
            ("the triangles of the voxel model", () => VoxelTessellationCLI.TessellateVoxelModel(model_, 5, 1e9)),
            ("the boxes of the voxel model", () => VoxelCuboidizationCLI.CuboidizeVoxelModel(model_, 5, 1e9)),
            ("the surface mesh of the voxel model", () => VoxelSurfaceMeshCLI.Smooth(model_, 5, 2)),
            ("the rectangles of the voxel model", () => VoxelSolidizationCLI.SolidizeVoxelModel(model_, 5, 1e9)),
            ("the voxel model of the triangles", () => new VoxelModelCLI(triangles_, axes_, 5, 1e9)),
            ("the voxel model of the triangles", () => VoxelModelCLI.Voxelize(triangles_, axes_, 5)),
            ("the path model", () => new PathModelCLI(model_, 5, 1, 2, true)),
            ("the sample points", () => pathModel.GenerateSamplePoints(4, 1)),
            ("the distance field", () => new DistanceFieldCLI(pathModel, Centre((1, 1, 2)), -1)),
            ("the reachable voxels", () => field.ReachableVoxels()),
            ("the list of distances", () => field.Distances()),
            ("the rows of the slice", () => slice.SliceData(false, false)),
        };
        foreach ((string asked, Func<object> run) in works) {
            MemoryLimitCLI.Bytes = 10;
            Assert.Matches("^About [0-9.e+]+ (bytes|KB|MB) of memory would be needed for " + asked +
                "; the limit is 10 bytes\\.$", MessageOf(() => run()));
            MemoryLimitCLI.Bytes = 1e9;
            Drop(run());
        }
    }

    [Fact]
    public void CountsTheListsOfResults()
    {
        using VoxelModelCLI many = Model(Cells.Random(3, 0.3));
        double bytes = 8.0 * VoxelTessellationCLI.TessellateVoxelModel(many, 5, 1e9).Count;
        MemoryLimitCLI.Bytes = bytes - 1;
        Assert.Contains(" for the lists of the result; the limit is ",
            MessageOf(() => VoxelTessellationCLI.TessellateVoxelModel(many, 5, 1e9)));
        MemoryLimitCLI.Bytes = bytes;
        Assert.Equal(bytes, 8.0 * VoxelTessellationCLI.TessellateVoxelModel(many, 5, 1e9).Count);
    }

    [Fact]
    public void WrongArgumentsAndOtherLimitsAreToldFirst()
    {
        using var pathModel = new PathModelCLI(model_, 5, 1, 2, true);
        foreach (Action wrong in new Action[] {
            () => SolidOperationsCLI.Union([], 5, true), () => SolidOperationsCLI.Union([model_, null!], 5, true),
            () => SolidOperationsCLI.Intersect([model_], 7, true), () => SurfaceOperationsCLI.ExpandAlongX(model_, -1, 0),
            () => BasicOperationsCLI.Crop(model_, 99, 0, 0, 0, 0, 0), () => BasicOperationsCLI.Refine(null!, 5),
            () => new VoxelModelCLI(triangles_, axes_, 5, 1), () => SpecialOperationsCLI.DensityMap([model_], [], [1], 5)
        }) {
            MemoryLimitCLI.Bytes = double.PositiveInfinity;
            string message = MessageOf(wrong);
            MemoryLimitCLI.Bytes = 0;
            Assert.Equal(message, MessageOf(wrong));
        }
    }
}
