using System;
using System.Collections.Generic;
using System.Globalization;
using System.IO;
using System.Linq;
using System.Numerics;
using System.Text;
using static BrixCLI.Tests.Scene;

namespace BrixCLI.Tests;

public class ModelTests
{
    private const string Nine = "The number of triangle vertex coordinates must be divisible by nine.";

    private static string TooMany(string count, string limit) => "Total voxel count of " + count + " exceeds limit of " + limit +
        ". Verify that the voxel width is specified in the correct units, then increase the limit as needed.";

    [Fact]
    public void ModelsGiveTheirFrameBack()
    {
        using AxesCLI axes = Axes(30);
        using var model = new VoxelModelCLI(Triangles([(40, -1, 7)]), axes, 4, 1e9);
        using AxesCLI frame = model.Axes();
        model.Dispose();
        Assert.Equal((32, 30, 5), (frame.VoxelWidth(0), frame.VoxelRotation(), frame.VerticalLOD()));
        Assert.Equal(Origin, frame.VoxelOrigin());
        Assert.Equal("The VoxelModelCLI has been disposed of and can no longer be used.", MessageOf(() => model.Axes()));
    }

    [Fact]
    public void ConstructorsOnExtentsClipWhateverLiesOutside()
    {
        using ExtentsCLI extents = Extents((39, -2, 6), (41, 0, 9));
        List<double> triangles = Triangles([(40, -1, 7)]);
        foreach (double far in new[] { 1e3, 1e15, double.MaxValue, double.PositiveInfinity, double.NaN })
            triangles.AddRange([far, far, far, -far, far, 1e4, far, -far, far]);
        using var model = new VoxelModelCLI(triangles, extents, 5, 36);
        Assert.Contains((40, -1, 7), Read(model).Filled);
    }

    [Fact]
    public void VoxelizesInOneStepAndLooksUpManyVoxelsAtOnce()
    {
        using AxesCLI axes = Axes(30);
        List<double> triangles = Triangles([(40, -1, 7), (42, 3, 9)]);
        using var expected = new VoxelModelCLI(triangles, axes, 5, 1e9);
        using VoxelModelCLI model = VoxelModelCLI.Voxelize(triangles, axes, 5);
        Assert.Equal(Read(expected).Filled, Read(model).Filled);
        (int X, int Y, int Z) filled = Read(model).Filled.First();
        long[] places = [filled.X, filled.Y, filled.Z, long.MaxValue, 0, long.MinValue, filled.X, filled.Y, filled.Z + 1000];
        Assert.Equal([true, false, false], model.AreFilled(places, 5));
        Assert.Equal([true, false, false], model.AreFilled(places.ToList(), 5));
        Assert.Empty(model.AreFilled(new long[0], 5));

        Assert.Equal("The list of voxel indices cannot be null.", MessageOf(() => model.AreFilled((long[])null!, 5)));
        Assert.Equal("The number of voxel indices must be divisible by three.", MessageOf(() => model.AreFilled(new long[2], 5)));
        Assert.StartsWith("The level of detail for voxel model operations", MessageOf(() => model.AreFilled(places, 6)));
        Assert.Equal(Nine, MessageOf(() => VoxelModelCLI.Voxelize([1.0], axes, 5)));
        Assert.StartsWith("The finest level of detail", MessageOf(() => VoxelModelCLI.Voxelize(triangles, axes, 6)));
    }

    [Fact]
    public void MovesVoxelsAndModelsThroughArraysAndStreams()
    {
        using VoxelModelCLI model = Model((38, -4, 0), (44, 3, 9), (40, -1, 7), (42, 3, 9));
        using ExtentsCLI box = Extents((39, -2, 6), (46, 3, 8));
        byte[] voxels = model.CopyVoxels(box);
        Assert.Equal(8 * 6 * 3, voxels.Length);
        Assert.Equal([1 * 48 + 1 * 8 + 1], Enumerable.Range(0, voxels.Length).Where(i => voxels[i] == 1));
        using (VoxelModelCLI copy = VoxelModelCLI.FromVoxels(box, voxels, 5)) Assert.Equal([(40, -1, 7)], Read(copy).Filled);
        List<double> points = [.. Centre((42, 3, 9)), .. Centre((42, 3, 8))];
        Assert.Equal([true, false], model.AreFilledAt(points, 5));
        Assert.Equal([true, false], model.AreFilledAt(points.ToArray(), 5));
        Assert.Equal(voxels.Select(voxel => voxel == 1), model.CopyVoxelsAsBooleans(box));
        using (VoxelModelCLI copy = VoxelModelCLI.FromVoxels(box, model.CopyVoxelsAsBooleans(box), 5))
            Assert.Equal([(40, -1, 7)], Read(copy).Filled);

        using ExtentsCLI inside = Extents((39, -2, 6), (44, 3, 8));
        byte[] content = [.. Enumerable.Range(0, 6 * 6 * 3).Select(i => (byte)(i == 4 ? 9 : 0))];
        using (VoxelModelCLI written = model.WriteVoxels(inside, content))
            Assert.Equal([(43, -2, 6), (42, 3, 9)], Read(written).Filled);
        using (VoxelModelCLI written = model.WriteVoxels(inside, [.. content.Select(voxel => voxel != 0)]))
            Assert.Equal([(43, -2, 6), (42, 3, 9)], Read(written).Filled);
        byte[] volume = Enumerable.Repeat((byte)7, 1000).ToArray();
        model.CopyVoxels(box, volume, 10, 20, 200);
        byte[] gaps = [.. volume.Where((_, i) => (i - 10) % 200 % 20 >= 8)];
        Assert.Equal(voxels, Enumerable.Range(0, voxels.Length).Select(i => volume[10 + i % 8 + i / 8 % 6 * 20 + i / 48 * 200]));
        Assert.All(gaps, gap => Assert.Equal(7, gap));
        volume[10 + 4] = 9;
        using (VoxelModelCLI written = model.WriteVoxels(inside, volume, 10, 20, 200))
            Assert.Equal([(43, -2, 6), (40, -1, 7), (42, 3, 9)], Read(written).Filled);
        Assert.Equal("The bytes of a box of voxels must hold its last voxel.",
            MessageOf(() => model.CopyVoxels(box, volume, 900, 20, 200)));

        var runs = new List<(int, int, int, int)>();
        model.ForEachFilledRun(5, (lowerX, upperX, y, z) => runs.Add((lowerX, upperX, y, z)));
        Assert.Equal([(40, 40, -1, 7), (42, 42, 3, 9)], runs);
        Assert.Equal("door", MessageOf(() => model.ForEachFilledRun(5, (_, _, _, _) => throw new Exception("door"))));
        Assert.True(VoxelModelCLI.MostBytes(box, 5) > model.Save().Length);

        byte[] saved = model.Save();
        using var stream = new MemoryStream();
        model.Save(stream);
        Assert.Equal(saved, stream.ToArray());
        stream.Position = 0;
        using (VoxelModelCLI loaded = VoxelModelCLI.Load(stream)) {
            Assert.Equal(Read(model).ToString(), Read(loaded).ToString());
            Assert.Equal(model.ContentHash(), loaded.ContentHash());
        }
        using (VoxelModelCLI loaded = VoxelModelCLI.Load(saved)) Assert.Equal(saved[^16..], loaded.ContentHash());

        ExtentsCLI whole = model.Extents(5);
        byte[] array = model.CopyVoxels(whole);
        var npy = new MemoryStream();
        model.SaveNpy(npy, 5);
        Assert.Equal(array, npy.ToArray()[^array.Length..]);
        Assert.Equal("NUMPY"u8.ToArray(), npy.ToArray()[1..6]);
        var packed = new MemoryStream();
        model.SaveNpy(packed, 5, true);
        Assert.Equal(array.Sum(voxel => voxel), packed.ToArray()[128..].Sum(bits => BitOperations.PopCount(bits)));
        var nrrd = new MemoryStream();
        model.SaveNrrd(nrrd, 5);
        Assert.Equal(array, nrrd.ToArray()[^array.Length..]);
        Assert.StartsWith("NRRD0004\ntype: uint8\n", Encoding.ASCII.GetString(nrrd.ToArray()));
        Assert.Equal("The stream cannot be null.", MessageOf(() => model.SaveNpy(null!, 5)));
        Assert.Equal("The stream cannot be null.", MessageOf(() => model.SaveNrrd(null!, 5)));
        Assert.NotEqual("", MessageOf(() => model.SaveNrrd(nrrd, 6)));

        Assert.Equal("The saved voxel model is cut off.", MessageOf(() => VoxelModelCLI.Load([])));
        Assert.Equal("The saved voxel model is cut off.", MessageOf(() => VoxelModelCLI.Load(new MemoryStream())));
        saved[60] ^= 1;
        Assert.Equal("The saved voxel model is damaged.", MessageOf(() => VoxelModelCLI.Load(saved)));
        Assert.Equal("There must be as many bytes as the box has voxels.",
            MessageOf(() => VoxelModelCLI.FromVoxels(box, [1], 5)));
        Assert.Equal("The array of voxels cannot be null.", MessageOf(() => VoxelModelCLI.FromVoxels(box, (byte[])null!, 5)));
        Assert.Equal("The stream cannot be null.", MessageOf(() => model.Save(null!)));
        var closed = new MemoryStream();
        closed.Dispose();
        Assert.StartsWith("The voxel model cannot be written to the stream. ", MessageOf(() => model.Save(closed)));
        Assert.StartsWith("The voxel model cannot be read from the stream. ", MessageOf(() => VoxelModelCLI.Load(closed)));
    }

    [Fact]
    public void VoxelizesTheArraysOfAMesh()
    {
        using AxesCLI axes = Axes(30);
        List<double> triangles = Triangles([(40, -1, 7), (42, 3, 9)]);
        using VoxelModelCLI expected = VoxelModelCLI.Voxelize(triangles, axes, 5);
        double[] vertices = [.. triangles];
        float[] floats = [.. triangles.Select(number => (float)number)];
        int[] indices = [0, 1, 2, 3, 4, 5];
        using VoxelModelCLI model = VoxelModelCLI.Voxelize(vertices, indices, axes, 5);
        Assert.Equal(expected.ContentHash(), model.ContentHash());
        using VoxelModelCLI rounded = VoxelModelCLI.Voxelize([.. floats.Select(number => (double)number)], axes, 5);
        using VoxelModelCLI ofFloats = VoxelModelCLI.Voxelize(floats, indices, axes, 5);
        Assert.Equal(rounded.ContentHash(), ofFloats.ContentHash());
        Assert.StartsWith("No triangle vertex index can be negative.",
            MessageOf(() => VoxelModelCLI.Voxelize(new double[3], new[] { 0, 0, -1 }, axes, 5)));
        Assert.Equal("The number of vertex indices must be divisible by three.",
            MessageOf(() => VoxelModelCLI.Voxelize(new float[3], new[] { 0 }, axes, 5)));
    }

#if BRIX_HAS_SPANS
    [Fact]
    public void TakesSpansAsArrays()
    {
        using AxesCLI axes = Axes(30);
        double[] vertices = [.. Triangles([(40, -1, 7), (42, 3, 9)])];
        float[] floats = [.. vertices.Select(number => (float)number)];
        int[] indices = [0, 1, 2, 3, 4, 5];
        Range second = 9..18; // of the triangles, with the corners of the first
        using VoxelModelCLI model = VoxelModelCLI.Voxelize(vertices[second], indices[..3], axes, 5);
        using VoxelModelCLI ofFloats = VoxelModelCLI.Voxelize(floats[second], indices[..3], axes, 5);
        void ExpectSame(VoxelModelCLI expected, VoxelModelCLI actual)
        {
            using (actual) Assert.Equal(expected.ContentHash(), actual.ContentHash());
        }
        ExpectSame(model, VoxelModelCLI.Voxelize(vertices.AsSpan(second), indices.AsSpan(0, 3), axes, 5));
        ExpectSame(ofFloats, VoxelModelCLI.Voxelize(floats.AsSpan(second), indices.AsSpan(0, 3), axes, 5));
        Assert.Equal(model.AreFilledAt(vertices, 5), model.AreFilledAt(vertices.AsSpan(), 5));
        long[] places = [.. Read(model).Filled.SelectMany(cell => new long[] { cell.X, cell.Y, cell.Z }), 0, 0, 0];
        Assert.Equal(model.AreFilled(places, 5), model.AreFilled(places.AsSpan(), 5));

        using ExtentsCLI box = model.Extents(5);
        byte[] voxels = model.CopyVoxels(box), framed = new byte[voxels.Length + 2];
        model.CopyVoxels(box, framed.AsSpan(1, voxels.Length));
        Assert.Equal([0, .. voxels, 0], framed);
        foreach (int length in new[] { 0, framed.Length }) {
            Assert.Equal("There must be as many bytes as the box has voxels.",
                MessageOf(() => model.CopyVoxels(box, framed.AsSpan(0, length))));
        }
        ExpectSame(model, VoxelModelCLI.FromVoxels(box, framed.AsSpan(1, voxels.Length), 5));
        Array.Reverse(framed);
        using VoxelModelCLI reversed = model.WriteVoxels(box, framed[1..^1]);
        ExpectSame(reversed, model.WriteVoxels(box, framed.AsSpan(1, voxels.Length)));
        Assert.NotEqual(model.ContentHash(), reversed.ContentHash());
        byte[] saved = [7, .. model.Save()];
        ExpectSame(model, VoxelModelCLI.Load(saved.AsSpan(1)));
        Assert.Equal("The saved voxel model is cut off.", MessageOf(() => VoxelModelCLI.Load(saved.AsSpan(1, 20))));
    }
#endif

    // A system that promises any memory, and takes it back by ending processes, is not asked.
    private sealed class HonestMemoryFactAttribute : FactAttribute
    {
        public HonestMemoryFactAttribute()
        {
            const string setting = "/proc/sys/vm/overcommit_memory";
            if (!File.Exists(setting) || File.ReadAllText(setting)[0] == '1') Skip = "This system promises any memory.";
        }
    }

    [HonestMemoryFact]
    public void MemoryThatIsNotThereIsReportedWithWhatWasAskedFor()
    {
        using AxesCLI axes = Axes();
        using var extents = new ExtentsCLI(axes, [-25000, -25000, -320000], [24999, 24999, 319999], 0);
        using var everything = new VoxelModelCLI(extents, 5, double.NaN); // takes memory for what it holds, which is nothing
        Assert.Equal("There is not enough memory for the inverted voxel model.",
            MessageOf(() => SolidOperationsCLI.Invert(everything)));
    }

    [Fact]
    public void ConstructorsVoxelizeInTheFrameTheyAreGiven()
    {
        List<double> triangle = Triangles([(40, -1, 7)]);
        using AxesCLI axes = Axes();
        using ExtentsCLI extents = Extents((39, -2, 6), (41, 0, 9));
        using var empty = new VoxelModelCLI(extents, 4, 16);
        Assert.Equal("(19, -1, 6)..(20, 0, 9): ", Read(empty, 4).ToString());
        using var inExtents = new VoxelModelCLI(triangle, extents, 5, 36);
        Assert.Equal("(39, -2, 6)..(41, 0, 9): (40, -1, 7)", Read(inExtents).ToString());
        using var inAxes = new VoxelModelCLI(triangle, axes, 5, 1e9);
        Assert.Equal("(1, -1, 7)..(1, -1, 7): (1, -1, 7)", Read(inAxes, 0).ToString());
        Assert.Equal([(40, -1, 7)], Read(inAxes).Filled);
        using var inWidth = new VoxelModelCLI(triangle, 64.0, 4, 3, 1e9); // from the world's origin: 8 wide, 4 high
        Assert.Equal([(6, 2, 9)], Read(inWidth, 3).Filled);
        using var nothing = new VoxelModelCLI([], axes, 0, 1e9);
        using ExtentsCLI around = nothing.Extents(0);
        Assert.Equal([-25, -25, -40], around.LowerIndices());
        Assert.True(BasicOperationsCLI.IsEmpty(nothing));
        Assert.Equal([4, 5, 3, 0], new[] { empty, inExtents, inWidth, nothing }.Select(model => model.FinestLOD()));
    }

    [Fact]
    public void VoxelsAreCountedAtTheFinestLevelBeforeAnythingElse()
    {
        using AxesCLI axes = Axes();
        using ExtentsCLI extents = Extents((0, 0, 0), (2, 1, 0)); // 6 voxels at level 5, 2 at level 4
        foreach (double allowed in new[] { 6, 6.5, double.NaN, double.PositiveInfinity }) {
            VoxelModelCLI.ValidateVoxelCount(extents, 5, allowed);
            new VoxelModelCLI(extents, 5, allowed).Dispose();
        }
        VoxelModelCLI.ValidateVoxelCount(extents, 4, 2);
        Assert.Equal(TooMany("2", "1"), MessageOf(() => VoxelModelCLI.ValidateVoxelCount(extents, 4, 1)));
        Assert.Equal(TooMany("6", "5"), MessageOf(() => new VoxelModelCLI(extents, 5, 5)));
        Assert.Equal(TooMany("6", "-1"), MessageOf(() => new VoxelModelCLI([1], extents, 5, -1)));
        Assert.Equal(Nine, MessageOf(() => new VoxelModelCLI([1], extents, 5, 6)));
        Assert.Equal(Nine, MessageOf(() => new VoxelModelCLI([1], axes, 5, -1)));
        Assert.Equal(TooMany("1024", "1023"), MessageOf(() => new VoxelModelCLI(Triangles([(0, 0, 0)]), axes, 5, 1023)));
        foreach (double width in new[] { 0, -1, double.NaN }) {
            Assert.Equal("The voxel width must be positive.", MessageOf(() => new VoxelModelCLI([1], width, 9, 9, -1)));
        }
        Assert.Contains("less than 6", MessageOf(() => new VoxelModelCLI([1], 1, 6, 9, -1)));
        Assert.Equal(Nine, MessageOf(() => new VoxelModelCLI([1], 1, 5, 9, -1)));
    }

    [Fact]
    public void NumbersInMessagesFollowTheCulture()
    {
        CultureInfo culture = CultureInfo.CurrentCulture;
        CultureInfo.CurrentCulture = new CultureInfo("de-DE");
        try {
            Assert.Equal(TooMany("1,5E+20", "0,5"), MessageOf(() => SizeLimits.RequireVoxels(1.5e20, 0.5)));
        } finally {
            CultureInfo.CurrentCulture = culture;
        }
    }

    [Fact]
    public void TriangleLimitsAreStrictAndInOrder()
    {
        SizeLimits.RequireTriangles(238609294, 238609294);
        SizeLimits.RequireTriangles(7, double.NaN);
        Assert.Equal("Total triangle count of 238609295 exceeds absolute limit of 238609294.",
            MessageOf(() => SizeLimits.RequireTriangles(238609295, 238609295)));
        Assert.Equal("Total triangle count of 238609295 exceeds limit of 5. " +
            "Consider displaying the voxels at a coarser level of detail.",
            MessageOf(() => SizeLimits.RequireTriangles(238609295, 5)));
        // The largest array is a little shorter than the largest count of a list.
        Assert.Equal(2147483583, SizeLimits.ListLength(238609287, 9));
        Assert.Equal("A list of 238609288 times 9 numbers exceeds the 2147483591 items that the .NET runtime allows in a list.",
            MessageOf(() => SizeLimits.ListLength(238609288, 9)));
    }

    [Fact]
    public void VoxelIteratorsReadOneVoxel()
    {
        VoxelModelCLI model = Model((-1, 0, 2), (3, 2, 4), (2, 1, 3));
        using var byIndices = new VoxelIteratorCLI(model, [2, 1, 3], 5);
        using var byPoint = new VoxelIteratorCLI(model, Centre((2, 1, 3)), 5);
        using var coarse = new VoxelIteratorCLI(model, Centre((2, 1, 3)), 4);
        model.Dispose(); // the iterators keep what they need
        foreach (VoxelIteratorCLI voxel in new[] { byIndices, byPoint }) {
            Assert.Equal([2, 1, 3], voxel.VoxelIndices());
            Assert.Equal((5, true, true), (voxel.VoxelLOD(), voxel.IsValid(), voxel.IsFilled()));
            Assert.Equal(Centre((2, 1, 3)), voxel.VoxelCenter());
        }
        Assert.Equal([1, 0, 3], coarse.VoxelIndices());
        Assert.Equal(4, coarse.VoxelLOD());

        using VoxelIteratorCLI next = byIndices.Advance(-3, 1, -1);
        Assert.Equal([-1, 2, 2], next.VoxelIndices());
        Assert.False(next.IsFilled());
        Assert.Equal([2, 1, 3], byIndices.VoxelIndices());
        using ExtentsCLI extents = coarse.VoxelExtents();
        Assert.Equal([1, 0, 3], extents.LowerIndices());
        Assert.Equal([1, 0, 3], extents.UpperIndices());
        Assert.Equal(4, extents.VoxelLOD());

        using VoxelIteratorCLI outside = byIndices.Advance(2, 0, 0);
        Assert.Equal((5, false), (outside.VoxelLOD(), outside.IsValid()));
        foreach (Action use in new Action[] {
            () => outside.VoxelIndices(), () => outside.IsFilled(), () => outside.VoxelCenter(), () => outside.VoxelExtents(),
            () => outside.Advance(-2, 0, 0)
        }) {
            Assert.Equal("Attempt to operate on a voxel iterator that points outside the voxel model extents.", MessageOf(use));
        }
    }

    // Rows and columns of a slice, for each axis it can be perpendicular to.
    [Theory]
    [InlineData(0), InlineData(1), InlineData(2)]
    public void SlicesShowTheirRows(int dimIndex)
    {
        Cells cells = Cells.Random(5, 0.4);
        VoxelModelCLI model = Model(cells);
        using var slice = new SliceIteratorCLI(model, dimIndex, 1, 5);
        model.Dispose();
        int rowDim = dimIndex == 2 ? 1 : 2;
        int columnDim = dimIndex == 0 ? 1 : 0;
        int At(Cell cell, int dim) => dim == 0 ? cell.X : dim == 1 ? cell.Y : cell.Z;
        Cell lower = cells.Lower, upper = cells.Upper;
        foreach ((bool fromUpperRow, bool fromUpperColumn) in new[] { (false, false), (true, false), (false, true),
            (true, true) }) {
            var rows = cells.All().Where(cell => At(cell, dimIndex) == 1).GroupBy(cell => At(cell, rowDim))
                .OrderBy(row => fromUpperRow ? -row.Key : row.Key)
                .Select(row => row.OrderBy(cell => fromUpperColumn ? -At(cell, columnDim) : At(cell, columnDim))
                    .Select(cells.Holds));
            Assert.Equal(rows, slice.SliceBools(fromUpperRow, fromUpperColumn));
            Assert.Equal(rows, slice.SliceData(fromUpperRow, fromUpperColumn));
        }
        Cell Fixed(Cell cell) => dimIndex == 0 ? cell with { X = 1 } : dimIndex == 1 ? cell with { Y = 1 } : cell with { Z = 1 };
        Assert.Equal(Indices(Fixed(lower)), slice.LowerIndices());
        Assert.Equal(Indices(Fixed(upper)), slice.UpperIndices());
        using ExtentsCLI extents = slice.SliceExtents();
        Assert.Equal(Indices(Fixed(upper)), extents.UpperIndices());
        Assert.Equal(5, extents.VoxelLOD());
        Assert.Equal(cells.With(Fixed(lower), Fixed(upper)).ToString(), Take(slice.SliceVoxels()));
        using SliceIteratorCLI next = slice.Advance(1);
        Assert.Equal(2, next.LowerIndices()[dimIndex]);
        Assert.Equal(1, slice.LowerIndices()[dimIndex]);
    }

    [Fact]
    public void SlicesOutsideTheModelSaySo()
    {
        using VoxelModelCLI model = Model((0, 0, 0), (2, 2, 2));
        using var last = new SliceIteratorCLI(model, 1, 1, 4);
        last.Validate();
        using SliceIteratorCLI outside = last.Advance(1);
        Assert.Equal((4, false), (outside.VoxelLOD(), outside.IsValid()));
        foreach (Action use in new Action[] {
            outside.Validate, () => outside.LowerIndices(), () => outside.UpperIndices(), () => outside.Advance(-1),
            () => outside.SliceBools(false, false), () => outside.SliceData(false, false), () => outside.SliceExtents(),
            () => outside.SliceVoxels()
        }) {
            Assert.Equal("Attempt to operate on a slice iterator that points outside the voxel model extents.", MessageOf(use));
        }
        foreach (int dimIndex in new[] { -1, 3 }) {
            Assert.Equal("The dimension index of a slice must be 0, 1 or 2. The value encountered was " + dimIndex + ".",
                MessageOf(() => new SliceIteratorCLI(model, dimIndex, 0, 9)));
        }
        Assert.Contains("level of detail", MessageOf(() => new SliceIteratorCLI(model, 0, 0, 9)));
    }
}
