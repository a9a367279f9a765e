using System;
using System.Collections.Generic;
using System.Globalization;
using System.IO;
using System.Linq;
using static BrixCLI.Tests.Scene;

namespace BrixCLI.Tests;

public class GeometryTests
{
    private static readonly List<double> TwoTriangles =
        [0, 0, 0, 4, 0, 0, 0, 3, 0, /* its normal is +z; the next one's is +x */ 1, 0, 0, 1, 2, 0, 1, 0, 5];

    [Fact]
    public void LevelsAreValidatedInOrder()
    {
        Assert.Equal(6, TypesCLI.numLODs);
        TypesCLI.ValidateLOD(0);
        TypesCLI.ValidateLOD(5);
        Assert.Equal("The level of detail (LOD) cannot be negative.", MessageOf(() => TypesCLI.ValidateLOD(-1)));
        Assert.Equal("The level of detail (LOD) must be less than 6.", MessageOf(() => TypesCLI.ValidateLOD(6)));
        Assert.Equal([3, 0, 2, 3], new[] { -1, 0, 2, 3 }.Select(lod => TypesCLI.ValidateLOD(lod, 3)));
        Assert.Equal("The level of detail (LOD) cannot be less than -1.", MessageOf(() => TypesCLI.ValidateLOD(-2, 3)));
        Assert.Equal("The level of detail (LOD) must be less than 6.", MessageOf(() => TypesCLI.ValidateLOD(6, 5)));
        Assert.Equal("The level of detail (LOD) must not exceed the finest level of detail available, which is 3.",
            MessageOf(() => TypesCLI.ValidateLOD(4, 3)));
    }

    [Fact]
    public void TriplesAreConverted()
    {
        Assert.Equal([1, -2, 0], TypesCLI.ToList([4294967297, -2, 1L << 40]));
        Assert.Equal([0.5, -1, double.NaN], TypesCLI.ToList([0.5, -1, double.NaN]));
        Assert.Equal([int.MinValue, 2L, 3], TypesCLI.ToArray(new List<int> { int.MinValue, 2, 3, 4 }));
        Assert.Equal([1.5, 2, 3], TypesCLI.ToArray(new List<double> { 1.5, 2, 3, 4 }));
        Assert.Throws<ArgumentOutOfRangeException>(() => TypesCLI.ToArray(new List<int> { 1, 2 }));
        Assert.Throws<ArgumentOutOfRangeException>(() => TypesCLI.ToArray(new List<double>()));
        Assert.Equal("The argument array must hold three numbers. The number of items encountered was 4.",
            MessageOf(() => TypesCLI.ToList(new long[4])));
    }

    [Fact]
    public void TrianglesAreFlattenedCornerByCorner()
    {
        double[][][] arrays = TrianglesAsNineNumbersCLI.ToArrays(TwoTriangles);
        Assert.Equal(2, arrays.Length);
        Assert.Equal([1, 2, 0], arrays[1][1]);
        Assert.Equal(TwoTriangles, TrianglesAsNineNumbersCLI.FromArrays(arrays));
        Assert.Equal("The number of triangle vertex coordinates must be divisible by nine.",
            MessageOf(() => TrianglesAsNineNumbersCLI.ToArrays(TwoTriangles[..17])));
        Assert.Equal("Each corner of a triangle must have three coordinates.",
            MessageOf(() => TrianglesAsNineNumbersCLI.FromArrays([[[1], [2], [3]]])));
        Assert.Equal("Each triangle must have three corners.", MessageOf(() => TrianglesAsNineNumbersCLI.FromArrays([[]])));
    }

    [Fact]
    public void NormalsIgnoreARemainder()
    {
        Assert.Equal([0, 0, 1, 1, 0, 0], TrianglesAsNineNumbersCLI.NormalsAsThreeNumbers(TwoTriangles));
        Assert.Equal([0, 0, 1], TrianglesAsNineNumbersCLI.NormalsAsThreeNumbers(TwoTriangles[..17]));
        Assert.Equal([0, 0, 0], TrianglesAsNineNumbersCLI.NormalsAsThreeNumbers([.. new double[9]]));
    }

    [Theory]
    [InlineData(true, false), InlineData(true, true), InlineData(false, false), InlineData(false, true)]
    public void StlFilesKeepTrianglesAndSwapAxes(bool isBinary, bool swapYZ)
    {
        string path = Path.GetTempFileName();
        TrianglesAsNineNumbersCLI.ExportToSTL(TwoTriangles, path, isBinary, swapYZ);
        Assert.Equal(!isBinary, File.ReadAllText(path).StartsWith("solid", StringComparison.Ordinal));
        Assert.Equal(TwoTriangles, TrianglesAsNineNumbersCLI.ImportFromSTL(path, swapYZ));
        // (x, y, z) is stored as (x, z, -y): the other flag on reading shows which one was used on writing.
        List<double> other = TrianglesAsNineNumbersCLI.ImportFromSTL(path, !swapYZ);
        Assert.Equal(swapYZ ? [1, 0, -2] : [1, -0.0, 2], other[12..15]);

        byte[] bytes = File.ReadAllBytes(path);
        using var stream = new MemoryStream();
        TrianglesAsNineNumbersCLI.ExportToSTL(TwoTriangles, stream, isBinary, swapYZ);
        Assert.Equal(bytes, stream.ToArray());
        Assert.Equal(TwoTriangles, TrianglesAsNineNumbersCLI.ImportFromSTL(bytes, swapYZ));
        stream.Position = 0;
        Assert.Equal(TwoTriangles, TrianglesAsNineNumbersCLI.ImportFromSTL(stream, swapYZ));
        Assert.EndsWith("in STL file \"data\".", MessageOf(() => TrianglesAsNineNumbersCLI.ImportFromSTL(
            isBinary ? bytes[..^1] : bytes[..^100], swapYZ)));
        File.Delete(path);
    }

    [Fact]
    public void StlFilesComeWithAReport()
    {
        using var stream = new MemoryStream();
        TrianglesAsNineNumbersCLI.ExportToSTL(TwoTriangles, stream, true, false);
        byte[] whole = stream.ToArray();
        "solid of them"u8.CopyTo(whole); // binary all the same
        using var import = new StlImportCLI(whole, false);
        Assert.Equal(TwoTriangles, import.Triangles());
        Assert.Equal("solid of them", import.Header());
        Assert.Equal([0L, 1, 184, 2, 2, 2], new[] { StlNumberCLI.IsSound, StlNumberCLI.IsBinary, StlNumberCLI.Bytes,
            StlNumberCLI.Announced, StlNumberCLI.Found, StlNumberCLI.Read }.Select(import.Number));
        Assert.Equal([], import.Findings());
        Assert.Equal(6, import.Number(StlNumberCLI.OpenEdges));
        Assert.Equal(2, import.Number(StlNumberCLI.Shells));
        List<double> bounds = import.Bounds();
        for (int i = 0; i < 6; ++i) {
            IEnumerable<double> along = TwoTriangles.Where((_, index) => index % 3 == i % 3);
            Assert.Equal(i < 3 ? along.Min() : along.Max(), bounds[i]);
        }

        string path = Path.GetTempFileName();
        File.WriteAllText(path, "SOLID caf\u00e9\r\nFACET NORMAL 0 0 1 OUTER LOOP\rvertex 0 0 0\rvertex 1,5 0 0\r" +
            "vertex 0 1 0\rENDLOOP\nendfacet facet normal 1 0 0 outer loop\n");
        using var text = new StlImportCLI(path, true, dropDegenerate: true, countSurface: false, mostListed: 2);
        Assert.Equal([0, 0, 0, 1.5, 0, 0, 0, -0.0, 1], text.Triangles());
        Assert.Equal(["caf\u00e9"], text.SolidNames());
        Assert.Equal([3, 1, 1, -1, 0], new[] { StlNumberCLI.Findings, StlNumberCLI.Guesses, StlNumberCLI.Drops,
            StlNumberCLI.Announced, StlNumberCLI.HasSurface }.Select(import => text.Number(import)));
        Assert.Equal(["Line 4 of \"" + path + "\": \"1,5\" was read as a number with a decimal comma.",
            "Line 8 of \"" + path + "\": the file ends within a loop; its triangle was left out."], text.Findings());
        Assert.Equal(0, text.SignedVolume());
        Assert.Equal("", text.UnitGuess() + text.UnitReason());
        File.Delete(path);

        var rest = new MemoryStream(whole) { Position = 184 };
        Assert.Equal("The file \"data\" is no STL file: it is empty.", MessageOf(() => new StlImportCLI(rest, false)));
        Assert.Equal("The file \"data\" is no STL file: it is empty.", MessageOf(() => new StlImportCLI(new byte[0], false)));
        Assert.Equal("There is no number of an STL file with the number 25.", MessageOf(() => import.Number((StlNumberCLI)25)));
    }

    [Fact]
    public void PathsAreNarrowedAndMessagesNameThem()
    {
        string folder = Directory.CreateTempSubdirectory().FullName;
        TrianglesAsNineNumbersCLI.ExportToSTL(TwoTriangles, Path.Combine(folder, "\u0141.stl"), true, false); // 0x41 is A
        Assert.Equal([Path.Combine(folder, "A.stl")], Directory.GetFiles(folder));
        // A low byte of 0 would end the path at "A", where another file is.
        foreach (char unit in "\0\u0100\uff00") {
            string cut = Path.Combine(folder, "A.stl" + unit + "b.stl");
            string refusal = "The file path cannot hold the character U+" + ((int)unit).ToString("X4") + ", the one at index " +
                cut.IndexOf(unit) + ": only the low byte of each character reaches the system, and 0 ends a path.";
            Assert.Equal(refusal, MessageOf(() => TrianglesAsNineNumbersCLI.ImportFromSTL(cut, false)));
            Assert.Equal(refusal, MessageOf(() => TrianglesAsNineNumbersCLI.ExportToSTL([], cut, true, false)));
        }
        string missing = Path.Combine(folder, "missing.stl");
        Assert.Contains(missing, MessageOf(() => TrianglesAsNineNumbersCLI.ImportFromSTL(missing, false)));
        Assert.Equal("The number of triangle vertex coordinates must be divisible by nine.",
            MessageOf(() => TrianglesAsNineNumbersCLI.ExportToSTL([.. new double[10]], missing, true, false)));
        Assert.False(File.Exists(missing));
        Directory.Delete(folder, true);
    }

    [Fact]
    public void AxesConvertBetweenWorldAndVoxels()
    {
        using var axes = new AxesCLI(32, Origin, 90, 4); // lattice x is world y; voxels are 2 high
        Assert.Equal([32, 8, 1], new[] { 0, 2, 5 }.Select(axes.VoxelWidth));
        Assert.Equal(2, axes.VoxelHeight());
        Assert.Equal(Origin, axes.VoxelOrigin());
        Assert.Equal(90, axes.VoxelRotation());
        Assert.Equal(4, axes.VerticalLOD());
        Assert.Equal([5, -3, 1], axes.ContainingVoxel([12.5, 25.5, 33], 5));
        Assert.Equal([2, -2, 1], axes.ContainingVoxel([12.5, 25.5, 33], 4));
        AssertNear([12, 25, 34], axes.VoxelCorner([5, -2, 2], 5));
        AssertNear([11.5, 25.5, 35], axes.VoxelCenter([5, -2, 2], 5));
        AssertNear([13, 23, 35], axes.VoxelCenter([1, -2, 2], 4));
        Assert.Equal(-2.5, axes.ValidateDistance(-2.5));
        Assert.Equal(4611686018427387904.0 / 40000 * 32, axes.ValidateDistance(-1), 1e3);
    }

    private static void AssertNear(double[] expected, List<double> actual)
    {
        Assert.Equal(3, actual.Count);
        for (int i = 0; i < 3; ++i) Assert.Equal(expected[i], actual[i], 1e-6);
    }

    [Fact]
    public void AxesValidateLevelsBeforeTheirLists()
    {
        using AxesCLI axes = Axes();
        foreach ((int lod, string message) in new[] {
            (-1, "The level of detail (LOD) cannot be negative."), (6, "The level of detail (LOD) must be less than 6.")
        }) {
            Assert.Equal(message, MessageOf(() => axes.VoxelWidth(lod)));
            Assert.Equal(message, MessageOf(() => axes.ContainingVoxel([], lod)));
            Assert.Equal(message, MessageOf(() => axes.VoxelCorner([], lod)));
            Assert.Equal(message, MessageOf(() => axes.VoxelCenter([], lod)));
        }
        Assert.Equal("The argument coords must hold three numbers. The number of items encountered was 2.",
            MessageOf(() => axes.ContainingVoxel([1, 2], 0)));
        Assert.Contains("The value encountered was 6.", MessageOf(() => new AxesCLI(1, Origin, 0, 6)));
        Assert.Contains("negative", MessageOf(() => new AxesCLI(1, Origin, 0, -1)));
    }

    [Fact]
    public void ExtentsTellTheirBoundsAndClamp()
    {
        using ExtentsCLI extents = Extents((-4, 2, 1), (3, 9, 5), 3);
        Assert.Equal([-4, 2, 1], extents.LowerIndices());
        Assert.Equal([3, 9, 5], extents.UpperIndices());
        Assert.Equal(3, extents.VoxelLOD());
        Assert.Equal(8 * 8 * 5, extents.VoxelCount());
        Assert.True(extents.ContainsVoxel([3, 2, 5]));
        Assert.False(extents.ContainsVoxel([3, 1, 5]));
        Assert.Equal([0, 5, 3], extents.ClosestVoxel([0, 5, 3]));
        Assert.Equal([3, 5, 3], extents.ClosestVoxel([7, 5, 3]));
        Assert.Equal([-4, 9, 1], extents.ClosestVoxel([-9, 10, -1]));
        using ExtentsCLI coarse = extents.RescaledCopy(2);
        Assert.Equal([-2, 1, 1], coarse.LowerIndices());
        Assert.Equal([1, 4, 5], coarse.UpperIndices());
        Assert.Equal(2, coarse.VoxelLOD());
        using AxesCLI axes = Axes();
        Assert.Contains("upper", MessageOf(() => new ExtentsCLI(axes, [0, 0, 1], [0, 0, 0], 5)));
        Assert.Contains("6", MessageOf(() => extents.RescaledCopy(6)));
    }

    [Fact]
    public void MeshesMergeEqualCorners()
    {
        List<double> square = [0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 0, 0, 1, 1, 0, 0, 1, 0];
        using var mesh = new TriangleMeshCLI(square);
        Assert.Equal([0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0], mesh.Vertices());
        Assert.Equal([0, 1, 2, 0, 2, 3], mesh.Indices());
        Assert.Equal(square, mesh.TrianglesAsNineNumbers());
        using var same = new TriangleMeshCLI(mesh.Vertices(), mesh.Indices());
        Assert.Equal(square, same.TrianglesAsNineNumbers());
        using var none = new TriangleMeshCLI([]);
        Assert.Empty(none.Indices());
        Assert.Equal("The number of triangle vertex indices must be divisible by three.",
            MessageOf(() => new TriangleMeshCLI([1, 2], [0, 1])));
        Assert.Equal("The number of vertex coordinates must be divisible by three.",
            MessageOf(() => new TriangleMeshCLI([1, 2], [])));
        Assert.Equal("The number of triangle vertex coordinates must be divisible by nine.",
            MessageOf(() => new TriangleMeshCLI(square[..10])));
        Assert.Equal("No triangle vertex index can be negative. A value of -1 was encountered.",
            MessageOf(() => new TriangleMeshCLI([1, 2, 3], [0, 0, -1])));
    }
}
