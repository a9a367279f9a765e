using System;
using System.Collections.Generic;
using static BrixCLI.Tests.Scene;

namespace BrixCLI.Tests;

/// <summary>The engine's messages reach the host whole, and the first of several that apply.</summary>
public class MessageTests
{
    private static string Negative(string quantity, int value) =>
        quantity + " cannot be negative. The value encountered was " + value + ".";

    private static string Below(string quantity, int value) =>
        quantity + " cannot be less than 1. The value encountered was " + value + ".";

    private static string NotBelow6(string quantity) => quantity + " must be less than 6. The value encountered was 6.";

    private static string BeyondFinest(string quantity) => quantity +
        " must not exceed the finest level of detail in the voxel model. The value encountered was 6. " +
        "The finest level of detail in the voxel model is 5.";

    [Fact]
    public void EngineMessagesComeInTheOrderOfTheArguments()
    {
        using VoxelModelCLI m = Model((0, 0, 0), (3, 3, 3), (1, 1, 1));
        List<double> p = Centre((1, 1, 1));
        var table = new List<(string Message, Action Use)> {
            (Negative("The level of detail for voxel model operations", -1), () => BasicOperationsCLI.CountFilled(m, -1)),
            (BeyondFinest("The level of detail for voxel model operations"), () => BasicOperationsCLI.CountFilled(m, 6)),
            (NotBelow6("The level of detail for voxel model refinement"), () => BasicOperationsCLI.Refine(m, 6)),
            ("At least one voxel model is required for voxel model union.", () => SolidOperationsCLI.Union([], 6, true)),
            (NotBelow6("The level of detail for voxel model union"), () => SolidOperationsCLI.Union([m, null!], 6, true)),
            ("No voxel model to be merged can be null.", () => SolidOperationsCLI.Union([m, null!], 5, true)),
            ("At least one voxel model is required for voxel model intersect.", () => SolidOperationsCLI.Intersect([], 6, true)),
            (NotBelow6("The level of detail for voxel model intersect"), () => SolidOperationsCLI.Intersect([m], 6, true)),
            (NotBelow6("The level of detail for voxel model subtraction"), () => SolidOperationsCLI.Subtract(m, m, 6, true)),
            (Below("The approximate increase in the diameter of filled regions", 0), () =>
                SurfaceOperationsCLI.ExpandHorizontally(m, 0, m, true)),
            (Below("The approximate decrease in the diameter of filled regions", 0), () =>
                SurfaceOperationsCLI.ReduceHorizontally(m, 0, m, true)),
            (Below("The approximate diameter of the search area", -7), () =>
                ProximityOperationsCLI.NearestFilledHorizontally(m, p, -7)),
            (BeyondFinest("The level of detail for visibility computation"), () =>
                VisibilityOperationsCLI.VisibilityFromDirection(m, p, 6, 0)),
            (BeyondFinest("The level of detail for visibility computation"), () =>
                VisibilityOperationsCLI.VisibilityFromPoint(m, p, 6, -9, 0, true)),
            (BeyondFinest("The level of detail of the path model"), () => new PathModelCLI(m, 6, 0, 0, true)),
            (Below("The agent diameter used to construct a path model", 0), () => new PathModelCLI(m, 5, 0, -1, true)),
            (Below("The agent height used to construct a path model", -1), () => new PathModelCLI(m, 5, 1, -1, true)),
            ("If the agent height used to construct a path model is 1, then the environment must be 2D (1 voxel in height).",
                () => new PathModelCLI(m, 5, 1, 1, true))
        };
        Assert.All(table, row => Assert.Equal(row.Message, MessageOf(row.Use)));
    }

    private static readonly string[] Sides = ["lower X", "upper X", "lower Y", "upper Y", "lower Z", "upper Z"];

    // All numbers from one side on are wrong: the message is about that side.
    [Theory]
    [InlineData(0), InlineData(1), InlineData(2), InlineData(3), InlineData(4), InlineData(5)]
    public void EachSideHasItsMessage(int first)
    {
        using VoxelModelCLI m = Model((0, 0, 0), (3, 3, 3), (1, 1, 1));
        int Number(int side) => side >= first ? -1 - side : 0;
        Assert.Equal(Negative("The number of voxels to crop off the " + Sides[first] + " side", -1 - first),
            MessageOf(() => BasicOperationsCLI.Crop(m, Number(0), Number(1), Number(2), Number(3), Number(4), Number(5))));
        Assert.Equal(Negative("The number of voxels to add to the " + Sides[first] + " side", -1 - first),
            MessageOf(() => BasicOperationsCLI.Enlarge(m, Number(0), Number(1), Number(2), Number(3), Number(4), Number(5))));

        int axis = first / 2, lower = Number(2 * axis), upper = Number(2 * axis + 1);
        var grow = new[] { SurfaceOperationsCLI.ExpandAlongX, SurfaceOperationsCLI.ExpandAlongY,
            SurfaceOperationsCLI.ExpandAlongZ };
        var shrink = new[] { SurfaceOperationsCLI.ReduceAlongX, SurfaceOperationsCLI.ReduceAlongY,
            SurfaceOperationsCLI.ReduceAlongZ };
        var search = new[] { ProximityOperationsCLI.NearestFilledAlongX, ProximityOperationsCLI.NearestFilledAlongY,
            ProximityOperationsCLI.NearestFilledAlongZ };
        Assert.Equal(Negative("The number of voxels to be added to the " + Sides[first] + " side", -1 - first),
            MessageOf(() => grow[axis](m, lower, upper, null, true)));
        Assert.Equal(Negative("The number of voxels to be removed from the " + Sides[first] + " side", -1 - first),
            MessageOf(() => shrink[axis](m, lower, upper, null, true)));
        Assert.Equal(Negative("The number of voxels to search on the " + Sides[first] + " side", -1 - first),
            MessageOf(() => search[axis](m, [0, 0, 0], lower, upper)));

        string way = axis == 0 ? "horizontally" : "vertically";
        var byOne = new[] { SurfaceOperationsCLI.ExpandByOneVoxel, SurfaceOperationsCLI.ReduceByOneVoxel };
        Assert.All(byOne, change => Assert.Equal(Negative("The minimum required number of " + way + " adjacent voxels", -2),
            MessageOf(() => change(m, axis == 0 ? -2 : 0, -2, null, true))));
        Assert.All(byOne, change => Assert.Equal(
            "The minimum required number of horizontally and vertically adjacent voxels cannot both be zero.",
            MessageOf(() => change(m, 0, 0, null, true))));
    }

    [Fact]
    public void FramesMustAgree()
    {
        using VoxelModelCLI m = Model((0, 0, 0), (3, 3, 3), (1, 1, 1));
        using AxesCLI otherAxes = Axes(45);
        using VoxelModelCLI other = BasicOperationsCLI.Relocate(m, otherAxes);
        using ExtentsCLI otherExtents = other.Extents(5);
        const string merged = "The axes must be the same for all voxel models to be merged.";
        Assert.Equal(merged, MessageOf(() => SolidOperationsCLI.Union([m, other], 5, true)));
        Assert.Equal(merged, MessageOf(() => SurfaceOperationsCLI.ExpandAlongZ(m, 1, 1, other, true)));
        Assert.Equal("The axes of the new extents cannot differ from the axes of the voxel model to be resized.",
            MessageOf(() => BasicOperationsCLI.Resize(m, otherExtents)));
    }
}
