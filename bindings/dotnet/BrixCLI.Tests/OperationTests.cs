using System;
using System.Collections.Generic;
using System.Linq;
using static BrixCLI.SurfaceOperationsCLI;
using static BrixCLI.Tests.Scene;

namespace BrixCLI.Tests;

public class OperationTests
{
    private static readonly Cell Low = (-3, -1, 0), High = (3, 4, 2);

    [Fact]
    public void QuestionsAreAnsweredAtTheFinestLevel()
    {
        // Two of the eight finest voxels, which a coarser level holds in one.
        using VoxelModelCLI part = Model((0, 0, 0), (1, 1, 0), (0, 0, 0), (1, 1, 0));
        using VoxelModelCLI full = Model((0, 0, 0), (1, 0, 0), (0, 0, 0), (1, 0, 0));
        using VoxelModelCLI empty = Model((0, 0, 0), (1, 0, 0));
        Assert.Equal([false, false, true], new[] { part, full, empty }.Select(BasicOperationsCLI.IsEmpty));
        Assert.Equal([false, true, false], new[] { part, full, empty }.Select(BasicOperationsCLI.IsFull));
        Assert.Equal([1L, 1, 2], new[] { 0, 4, 5 }.Select(lod => BasicOperationsCLI.CountFilled(part, lod)));
    }

    [Fact]
    public void BoundsMoveOnEachSideByItsOwnNumber()
    {
        Cells cells = Cells.Random(1, 0.5);
        using VoxelModelCLI model = Model(cells);
        Assert.Equal(cells.With((-2, 1, 0), (1, 1, 1)).ToString(), Take(BasicOperationsCLI.Crop(model, 1, 2, 2, 3, 0, 1)));
        Assert.Equal(cells.With((-4, -3, -3), (7, 9, 8)).ToString(), Take(BasicOperationsCLI.Enlarge(model, 1, 4, 2, 5, 3, 6)));
        using ExtentsCLI extents = Extents((-1, 0, 1), (9, 2, 1));
        Assert.Equal(cells.With((-1, 0, 1), (9, 2, 1)).ToString(), Take(BasicOperationsCLI.Resize(model, extents)));
        using VoxelModelCLI sparse = Model(Low, High, (0, 2, 1), (1, 4, 1));
        Assert.Equal("(0, 2, 1)..(1, 4, 1): (0, 2, 1) (1, 4, 1)", Take(SpecialOperationsCLI.AutoCrop(sparse)));
    }

    [Fact]
    public void ModelsMoveToOtherFramesAndLevels()
    {
        using VoxelModelCLI model = Model(Low, High, (0, 2, 1), (1, 4, 1));
        using var axes = new AxesCLI(32, [-5, 0, 0], 0, 5);
        using VoxelModelCLI relocated = BasicOperationsCLI.Relocate(model, axes);
        using var voxel = new VoxelIteratorCLI(relocated, [-3.5, 4.5, 1.5], 5);
        Assert.True(voxel.IsFilled());
        using VoxelModelCLI coarse = BasicOperationsCLI.Refine(model, 4);
        Assert.Equal(4, coarse.FinestLOD());
        Assert.Equal([(0, 1, 1), (0, 2, 1)], Read(coarse, 4).Filled);
    }

    [Theory]
    [InlineData(false), InlineData(true)]
    public void BooleanOperationsCombineVoxels(bool autoAdjust)
    {
        Cells a = Cells.Random(11, 0.5), b = Cells.Random(12, 0.5).With((-2, 0, 1), (5, 6, 2)), c = Cells.Random(13, 0.6);
        using VoxelModelCLI modelA = Model(a), modelB = Model(b), modelC = Model(c);
        string Expected(Cells first, Cells second, Func<Cell, bool> rule)
        {
            Cells box = a with { Upper = (5, 6, 2) };
            Cells result = (box with { Lower = Low }).Where(rule);
            return (autoAdjust ? result.Cropped() : result).ToString();
        }
        List<VoxelModelCLI> all = [modelA, modelB, modelC];
        Assert.Equal(Expected(a, b, cell => a.Holds(cell) || b.Holds(cell) || c.Holds(cell)),
            Take(SolidOperationsCLI.Union(all, 5, autoAdjust)));
        Assert.Equal(Expected(a, b, cell => a.Holds(cell) && b.Holds(cell) && c.Holds(cell)),
            Take(SolidOperationsCLI.Intersect(all, 5, autoAdjust)));
        Assert.Equal(Expected(a, b, cell => a.Holds(cell) && !b.Holds(cell)),
            Take(SolidOperationsCLI.Subtract(modelA, modelB, 5, autoAdjust)));
        Assert.Equal(a.Where(cell => !a.Holds(cell)).ToString(), Take(SolidOperationsCLI.Invert(modelA)));
        using VoxelModelCLI coarse = SolidOperationsCLI.Union(all, 3, autoAdjust);
        Assert.Equal(3, coarse.FinestLOD());
    }

    // A wall of cells around (1, 1, 1) and an open corner.
    [Fact]
    public void FillsFollowTheirRegions()
    {
        var box = new Cells((0, 0, 0), (4, 2, 2), []);
        Cells shell = box.Where(cell => cell.X <= 2 && cell != (1, 1, 1));
        using VoxelModelCLI model = Model(shell);
        Assert.Equal(box.Where(cell => cell.X <= 2).ToString(), Take(FillOperationsCLI.FillEnclosedRegions(model)));
        Assert.Equal(box.Where(cell => cell != (1, 1, 1)).ToString(), Take(FillOperationsCLI.FillExposedRegions(model)));
        Assert.Equal(box.Where(cell => cell.X <= 2).ToString(), Take(FillOperationsCLI.FillFromPoint(model, Centre((1, 1, 1)))));
        Assert.Equal(box.Where(cell => cell != (1, 1, 1)).ToString(),
            Take(FillOperationsCLI.FillFromPoint(model, Centre((3, 2, 0)))));
    }

    // The same wall with a hole towards the open corner.
    [Fact]
    public void LeaksAreFoundAndSealed()
    {
        var box = new Cells((0, 0, 0), (4, 2, 2), []);
        using VoxelModelCLI model = Model(box.Where(cell => cell.X <= 2 && cell != (1, 1, 1) && cell != (2, 1, 1)));
        LeakCLI? leak = FillOperationsCLI.FindLeak(model, Centre((1, 1, 1)));
        Assert.Equal(new[] { (1, 1, 1), (2, 1, 1), (3, 1, 1) }.SelectMany(cell => Centre(cell)).Take(9), leak!.Points.Take(9));
        Assert.Equal(1, leak.GapWidth);
        Assert.Equal(3, leak.GapCentre.Count);
        Assert.Equal(box.Where(cell => cell.X <= 2).ToString(), Take(FillOperationsCLI.SealedFill(model, 1)));
        using VoxelModelCLI closed = Model(box.Where(cell => cell.X <= 2 && cell != (1, 1, 1)));
        Assert.Null(FillOperationsCLI.FindLeak(closed, Centre((1, 1, 1))));
    }

    private delegate VoxelModelCLI Change(VoxelModelCLI model, VoxelModelCLI? guide, bool autoAdjust);

    private static Func<Cell, bool> Box(Cell lower, Cell upper) => cell => cell.X >= lower.X && cell.X <= upper.X &&
        cell.Y >= lower.Y && cell.Y <= upper.Y && cell.Z >= lower.Z && cell.Z <= upper.Z;

    // What becomes of a voxel and of a cube, without a guide and with one that stands above them on each axis.
    private static readonly (Change Run, Func<Cell, bool> Alone, Func<Cell, bool> Guided)[] Growth = [
        ((m, g, a) => ExpandAlongX(m, 1, 2, g, a), Box((-1, 0, 0), (2, 0, 0)), Box((-1, 0, 0), (0, 0, 0))),
        ((m, g, a) => ExpandAlongY(m, 1, 2, g, a), Box((0, -1, 0), (0, 2, 0)), Box((0, -1, 0), (0, 0, 0))),
        ((m, g, a) => ExpandAlongZ(m, 1, 2, g, a), Box((0, 0, -1), (0, 0, 2)), Box((0, 0, -1), (0, 0, 0))),
        ((m, g, a) => ExpandByOneVoxel(m, 1, 0, g, a), c => c.Z == 0 && Math.Abs(c.X) + Math.Abs(c.Y) < 2,
            c => c is (0, 0, 0) or (-1, 0, 0) or (0, -1, 0)),
        ((m, g, a) => ExpandByOneVoxel(m, 0, 1, g, a), Box((0, 0, -1), (0, 0, 1)), Box((0, 0, -1), (0, 0, 0))),
        ((m, g, a) => ExpandHorizontally(m, 4, g, a), Box((-1, -1, 0), (1, 1, 0)), Box((-1, -1, 0), (0, 0, 0)))
    ], Shrinkage = [
        ((m, g, a) => ReduceAlongX(m, 1, 2, g, a), Box((-2, -3, -3), (1, 3, 3)), Box((-2, -3, -3), (3, 3, 3))),
        ((m, g, a) => ReduceAlongY(m, 1, 2, g, a), Box((-3, -2, -3), (3, 1, 3)), Box((-3, -2, -3), (3, 3, 3))),
        ((m, g, a) => ReduceAlongZ(m, 1, 2, g, a), Box((-3, -3, -2), (3, 3, 1)), Box((-3, -3, -2), (3, 3, 3))),
        ((m, g, a) => ReduceByOneVoxel(m, 1, 0, g, a), Box((-2, -2, -3), (2, 2, 3)), Box((-2, -2, -3), (3, 3, 3))),
        ((m, g, a) => ReduceByOneVoxel(m, 0, 1, g, a), Box((-3, -3, -2), (3, 3, 2)), Box((-3, -3, -2), (3, 3, 3))),
        ((m, g, a) => ReduceHorizontally(m, 3, g, a), Box((-2, -2, -3), (2, 2, 3)), Box((-2, -2, -3), (3, 3, 3)))
    ];

    [Theory]
    [InlineData(false), InlineData(true)]
    public void GrowthAndShrinkageTakeTheirNumbersGuideAndFlag(bool autoAdjust)
    {
        var room = new Cells((-4, -4, -4), (4, 4, 4), []);
        Check(Growth, room.Where(Box((0, 0, 0), (0, 0, 0))), room.Where(cell => cell is (1, 0, 0) or (0, 1, 0) or (0, 0, 1)));
        Check(Shrinkage, room.Where(Box((-3, -3, -3), (3, 3, 3))), room.Where(cell => cell.X == 4 || cell.Y == 4 || cell.Z == 4));

        void Check((Change Run, Func<Cell, bool> Alone, Func<Cell, bool> Guided)[] changes, Cells cells, Cells guide)
        {
            using VoxelModelCLI model = Model(cells), guideModel = Model(guide);
            string Expected(Cells result) => (autoAdjust ? result.Cropped() : result).ToString();
            Assert.All(changes, change => {
                Assert.Equal(Expected(room.Where(change.Alone)), Take(change.Run(model, null, autoAdjust)));
                Assert.Equal(Expected(room.Where(change.Guided)), Take(change.Run(model, guideModel, autoAdjust)));
            });
        }
    }

    [Fact]
    public void GuidesAndFlagsHaveDefaults()
    {
        using VoxelModelCLI voxel = Model((0, 0, 0), (9, 9, 9), (0, 5, 5)); // without a guide, and nothing is clipped
        Assert.Equal("(-1, 5, 5)..(1, 5, 5): (-1, 5, 5) (0, 5, 5) (1, 5, 5)", Take(ExpandAlongX(voxel, 1, 1)));
    }

    [Fact]
    public void MessagesOfTheEngineReachTheHostWhole()
    {
        using VoxelModelCLI model = Model((0, 0, 0), (3, 3, 3), (1, 1, 1));
        Assert.Equal("The number of voxels to be added to the lower X side cannot be negative. The value encountered was -2.",
            MessageOf(() => ExpandAlongX(model, -2, -3, null, true)));
        Assert.Equal("At least one voxel model is required for voxel model union.",
            MessageOf(() => SolidOperationsCLI.Union([], 6, true)));
        Assert.Equal("No voxel model to be merged can be null.",
            MessageOf(() => SolidOperationsCLI.Union([model, null!], 5, true)));
    }

    [Fact]
    public void NearestSearchesLookAlongTheirOwnLine()
    {
        // Voxels at different distances below and above (0, 0, 0) on each axis.
        using VoxelModelCLI model = Model((-9, -9, -9), (9, 9, 9), (-4, 0, 0), (5, 0, 0), (0, -3, 0), (0, 6, 0), (0, 0, -2),
            (0, 0, 7));
        List<double> point = Centre((0, 0, 0));
        var searches = new (Func<VoxelModelCLI, List<double>, long, long, VoxelIteratorCLI> Search, Cell Lower, Cell Upper)[] {
            (ProximityOperationsCLI.NearestFilledAlongX, (-4, 0, 0), (5, 0, 0)),
            (ProximityOperationsCLI.NearestFilledAlongY, (0, -3, 0), (0, 6, 0)),
            (ProximityOperationsCLI.NearestFilledAlongZ, (0, 0, -2), (0, 0, 7))
        };
        foreach ((var search, Cell lower, Cell upper) in searches) {
            long below = -(lower.X + lower.Y + lower.Z), above = upper.X + upper.Y + upper.Z;
            using VoxelIteratorCLI nearest = search(model, point, 9, 9), onlyUpper = search(model, point, below - 1, above);
            using VoxelIteratorCLI neither = search(model, point, below - 1, above - 1);
            Assert.Equal(Indices(lower), nearest.VoxelIndices());
            Assert.Equal(Indices(upper), onlyUpper.VoxelIndices());
            Assert.False(neither.IsValid());
        }
        using VoxelIteratorCLI inDisc = ProximityOperationsCLI.NearestFilledHorizontally(model, point, 9);
        using VoxelIteratorCLI inSmallDisc = ProximityOperationsCLI.NearestFilledHorizontally(model, point, 5);
        Assert.Equal([0, -3, 0], inDisc.VoxelIndices());
        Assert.False(inSmallDisc.IsValid());
    }

    [Fact]
    public void DirectionsAreTurnedIntoTheFrame()
    {
        // A row along the lattice's x, which is the world's y; the third voxel is filled and shades those behind it.
        using AxesCLI axes = Axes(90);
        using var extents = new ExtentsCLI(axes, [0, 0, 0], [5, 0, 0], 5);
        using var model = new VoxelModelCLI([9.5, 22.5, 30.5, 9.4, 22.5, 30.5, 9.5, 22.4, 30.5], extents, 5, 100);
        Assert.Equal("(0, 0, 0)..(5, 0, 0): (2, 0, 0)", Read(model).ToString());
        Assert.Equal([0, 1], Visible([0, 3, 0], 0.5).Select(cell => cell.X));
        Assert.Equal([3, 4, 5], Visible([0, -1e-3, 0], 0.5).Select(cell => cell.X));
        Assert.Equal([0, 1, 3, 4, 5], Visible([0, 0, -2], 0.5).Select(cell => cell.X));
        // Half along the row, half down: behind the obstacle half of the light comes from above.
        Assert.Equal([0, 1, 3, 4, 5], Visible([0, 1, -1], 0.5).Select(cell => cell.X));
        Assert.Equal([0, 1, 4, 5], Visible([0, 1, -1], 0.6).Select(cell => cell.X));
        Assert.Equal("The direction for visibility computation cannot be [0, 0, 0].", MessageOf(() => Visible([0, 0, 0], 0.5)));

        IEnumerable<Cell> Visible(List<double> direction, double threshold)
        {
            using VoxelModelCLI visible = VisibilityOperationsCLI.VisibilityFromDirection(model, direction, 5, threshold);
            return Read(visible).Filled;
        }
    }

    [Fact]
    public void PointsSeeAsFarAsTheirRadius()
    {
        using VoxelModelCLI model = Model((0, 0, 0), (9, 0, 0), (7, 0, 0));
        using AxesCLI axes = Axes();
        Assert.Equal("(0, 0, 0)..(9, 0, 0): (0, 0, 0) (1, 0, 0) (2, 0, 0) (3, 0, 0) (4, 0, 0) (5, 0, 0) (6, 0, 0)",
            Take(VisibilityOperationsCLI.VisibilityFromPoint(model, Centre((3, 0, 0)), 5, axes.ValidateDistance(-1), 0.5,
                false)));
        Assert.Equal("(0, 0, 0)..(9, 0, 0): (2, 0, 0) (3, 0, 0) (4, 0, 0)",
            Take(VisibilityOperationsCLI.VisibilityFromPoint(model, Centre((3, 0, 0)), 5, 1.2, 0.5, false)));
        Assert.Equal("(2, -1, -1)..(4, 1, 1)",
            Take(VisibilityOperationsCLI.VisibilityFromPoint(model, Centre((3, 0, 0)), 5, 1.2, 0.5, true)).Split(':')[0]);
        Assert.EndsWith(": ", Take(VisibilityOperationsCLI.VisibilityFromPoint(model, Centre((3, 0, 0)), 5, 9, 1.5, false)));
        Assert.Equal("(799999, -800000, 319999)..(799999, -800000, 319999): ",
            Take(VisibilityOperationsCLI.VisibilityFromPoint(model, [1e12, -1e300, 1e9], 5, 9, 0.5, true)));
        using VoxelModelCLI coarse = VisibilityOperationsCLI.VisibilityFromPoint(model, Centre((3, 0, 0)), 4, 9, 0.5, false);
        Assert.Equal(4, coarse.FinestLOD());
    }

    [Fact]
    public void TessellationBoundsItsResult()
    {
        using VoxelModelCLI model = Model((0, 0, 0), (7, 7, 7), (2, 3, 4), (6, 1, 1));
        List<double> triangles = VoxelTessellationCLI.TessellateVoxelModel(model, 5, 24);
        Assert.Equal(24 * 9, triangles.Count);
        static double[] Least(List<double> numbers) =>
            [.. Enumerable.Range(0, 3).Select(dim => Math.Round(numbers.Where((_, i) => i % 3 == dim).Min(), 6))];
        Assert.Equal([12, 21, 31], Least(triangles));
        Assert.Equal([10, 20, 31], Least(VoxelTessellationCLI.TessellateVoxelModel(model, 0, double.NaN)));
        Assert.Equal("Total triangle count of 24 exceeds limit of 23.9. " +
            "Consider displaying the voxels at a coarser level of detail.",
            MessageOf(() => VoxelTessellationCLI.TessellateVoxelModel(model, 5, 23.9)));

        Assert.Equal(24, VoxelTessellationCLI.CountTriangles(model, 5));
        double[][] parts = [.. VoxelTessellationCLI.TessellateInParts(model, 5, 7)];
        Assert.Equal([63, 63, 63, 27], parts.Select(part => part.Length));
        Assert.Equal(triangles, parts.SelectMany(part => part));
        Assert.StartsWith("The level of detail for voxel tessellation",
            MessageOf(() => VoxelTessellationCLI.TessellateInParts(model, 6, 7)));
        Assert.StartsWith("A part must have between 1 and ",
            MessageOf(() => VoxelTessellationCLI.TessellateInParts(model, 5, 0)));
    }

    [Fact]
    public void AgentsStandWhereTheyFit()
    {
        // A floor with a roof over a part of it: two voxels of room there.
        var box = new Cells((0, 0, 0), (9, 7, 5), []);
        Cells house = box.Where(cell => cell.Z == 0 || (cell.Z == 3 && cell.X > 4));
        using VoxelModelCLI environment = Model(house);
        using var small = new PathModelCLI(environment, 5, 1, 2, false);
        using var tall = new PathModelCLI(environment, 5, 2, 3, false);
        Assert.Equal((5, 1L, 2L), (small.VoxelLOD(), small.AgentDiameterOffset(), small.AgentHeightOffset()));
        Assert.Equal((5, 2L, 3L), (tall.VoxelLOD(), tall.AgentDiameterOffset(), tall.AgentHeightOffset()));
        Assert.Equal(house.ToString(), Take(small.Environment()));
        Assert.Equal(box.Where(cell => cell.Z == 1 || (cell.Z == 4 && cell.X > 4)).ToString(), Take(small.TraversableVoxels()));
        Assert.DoesNotContain(Read(tall.TraversableVoxels()).Filled, cell => cell.X > 4 && cell.Z == 1);
        using var coarse = new PathModelCLI(environment, 4, 1, 2, true);
        using VoxelModelCLI traversable = coarse.TraversableVoxels();
        Assert.Equal((4, 4), (coarse.VoxelLOD(), traversable.FinestLOD()));
        Assert.Equal("(0, 0, 1)..(4, 3, 4)", Read(traversable, 4).ToString().Split(':')[0]);
    }
}
