using System;
using System.Collections.Generic;
using System.Linq;
using static BrixCLI.Tests.Scene;

namespace BrixCLI.Tests;

/// <summary>An agent of one voxel on a floor of 20 by 10 with a wall across it, open at one end; z = 1 is where it
/// walks.</summary>
public sealed class TravelTests : IDisposable
{
    private static readonly Cells House = new Cells((0, 0, 0), (19, 9, 6), [])
        .Where(cell => cell.Z == 0 || (cell.X == 10 && cell.Y < 7));

    private readonly PathModelCLI pathModel;
    private readonly DistanceFieldCLI field;

    public TravelTests()
    {
        using VoxelModelCLI environment = Model(House);
        pathModel = new PathModelCLI(environment, 5, 1, 3, false);
        field = new DistanceFieldCLI(pathModel, [.. Centre((2, 2, 2)), .. Centre((500, 0, 0))], -1); // the first above the floor
    }

    public void Dispose()
    {
        field.Dispose();
        pathModel.Dispose();
    }

    [Fact]
    public void DistancesAreThoseOfTheShortestWay()
    {
        Assert.Equal(5, field.Distance(Centre((5, 6, 1))), 9);
        Assert.Equal(-1, field.Distance(Centre((10, 2, 1))));
        Assert.Equal(-1, field.Distance(Centre((99, 2, 1))));
        double round = field.Distance(Centre((18, 2, 1)));
        Assert.InRange(round, 18.5, 20.5); // 16 in a straight line, through the wall
        List<int> farthest = field.FarthestVoxel();
        Assert.Equal(field.FarthestDistance(), field.Distance(Centre(ToCell(farthest))));

        List<double> all = field.Distances();
        using VoxelModelCLI reachable = field.ReachableVoxels(), near = field.ReachableVoxels(3),
            anywhere = field.ReachableVoxels(-1);
        Assert.Equal(BasicOperationsCLI.CountFilled(reachable, 5), all.Count / 4);
        Assert.Equal(Read(reachable).ToString(), Read(anywhere).ToString());
        Assert.Equal(Read(near).Filled.Count, all.Chunk(4).Count(item => item[3] <= 3));
        Assert.All(all.Chunk(4), item => Assert.Equal(item[3], field.Distance([item[0], item[1], item[2]])));
        Assert.Equal(all.Chunk(4).Max(item => item[3]), field.FarthestDistance());
    }

    [Fact]
    public void WaysLeadBackToTheirSource()
    {
        using var path = new PathCLI(field, Centre((18, 2, 1)));
        Assert.Equal(field.Distance(Centre((18, 2, 1))), path.Length());
        double[][] points = [.. path.Points().Chunk(3)];
        Assert.Equal(Centre((18, 2, 1)), points.First());
        Assert.Equal(Centre((2, 2, 1)), points.Last());
        double length = points.Zip(points.Skip(1), (a, b) => Math.Sqrt(a.Zip(b, (p, q) => (p - q) * (p - q)).Sum())).Sum();
        Assert.Equal(path.Length(), length, 3);
        using VoxelModelCLI voxels = path.Voxels();
        Assert.Superset(new SortedSet<Cell> { (2, 2, 1), (18, 2, 1) }, Read(voxels).Filled);
        Assert.DoesNotContain(Read(voxels).Filled, House.Holds);
        Assert.NotEqual("", MessageOf(() => new PathCLI(field, Centre((10, 2, 1)))));
    }

    [Fact]
    public void LimitsAndSourcesAreChecked()
    {
        using var limited = new DistanceFieldCLI(pathModel, Centre((2, 2, 1)), 4.5);
        Assert.Equal(4, limited.Distance(Centre((6, 2, 1))), 9);
        Assert.Equal(-1, limited.Distance(Centre((7, 2, 1))));
        Assert.Contains("cannot be negative", MessageOf(() => new DistanceFieldCLI(pathModel, Centre((2, 2, 1)), -1.5)));
        Assert.Contains("cannot be negative", MessageOf(() => field.ReachableVoxels(-2)));
        Assert.Equal("The number of point coordinates must be divisible by three.",
            MessageOf(() => new DistanceFieldCLI(pathModel, [1, 2, 3, 4], -1)));
        Assert.NotEqual("", MessageOf(() => new DistanceFieldCLI(pathModel, [], -1)));
        Assert.NotEqual("", MessageOf(() => new DistanceFieldCLI(pathModel, Centre((500, 0, 0)), -1)));
    }

    [Fact]
    public void SamplePointsStandInTheMiddleOfTheirCells()
    {
        List<double> points = pathModel.GenerateSamplePoints(5, 1);
        Assert.All(points.Chunk(3), point => Assert.Equal(31.5, point[2]));
        Assert.Equal(8, points.Count / 3);
        Assert.Contains(points.Chunk(3), point => point.SequenceEqual(Centre((2, 2, 1))));
        Assert.Empty(pathModel.GenerateSamplePoints(5, 30));
        Assert.Equal("The minimum diameter used to generate sample points cannot be less than 1. The value encountered was 0.",
            MessageOf(() => pathModel.GenerateSamplePoints(5, 0)));
        Assert.Equal("The finest level of detail is too coarse to generate sample points with the specified spacing.",
            MessageOf(() => pathModel.GenerateSamplePoints(0.5, 1)));
    }
}
