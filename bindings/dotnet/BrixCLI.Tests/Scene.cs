using System;
using System.Collections.Generic;
using System.Linq;
using System.Reflection;

namespace BrixCLI.Tests;

/// <summary>A frame whose voxels at level 5 are unit cubes, away from the world's origin, and models made of cells in
/// it.</summary>
internal static class Scene
{
    internal static readonly List<double> Origin = [10, 20, 30];

    internal static AxesCLI Axes(double rotation = 0) => new(32, Origin, rotation, 5);

    internal static List<int> Indices(Cell cell) => [cell.X, cell.Y, cell.Z];

    internal static Cell ToCell(List<int> list) => (list[0], list[1], list[2]);

    /// <summary>The world point at the centre of a cell, for no rotation.</summary>
    internal static List<double> Centre(Cell cell) =>
        [Origin[0] + cell.X + 0.5, Origin[1] + cell.Y + 0.5, Origin[2] + cell.Z + 0.5];

    internal static ExtentsCLI Extents(Cell lower, Cell upper, int lod = 5)
    {
        using AxesCLI axes = Axes();
        return new ExtentsCLI(axes, Indices(lower), Indices(upper), lod);
    }

    /// <summary>A small triangle inside each cell.</summary>
    internal static List<double> Triangles(IEnumerable<Cell> cells) => cells.SelectMany(cell => {
        List<double> c = Centre(cell);
        return new[] { c[0], c[1], c[2], c[0] + 0.2, c[1], c[2], c[0], c[1] + 0.2, c[2] + 0.2 };
    }).ToList();

    internal static VoxelModelCLI Model(Cells cells)
    {
        using ExtentsCLI extents = Extents(cells.Lower, cells.Upper);
        return new VoxelModelCLI(Triangles(cells.Filled), extents, 5, double.NaN);
    }

    internal static VoxelModelCLI Model(Cell lower, Cell upper, params Cell[] filled) =>
        Model(new Cells(lower, upper, [.. filled]));

    /// <summary>What a model holds at a level, voxel by voxel.</summary>
    internal static Cells Read(VoxelModelCLI model, int lod = 5)
    {
        using ExtentsCLI extents = model.Extents(lod);
        var box = new Cells(ToCell(extents.LowerIndices()), ToCell(extents.UpperIndices()), []);
        return box.Where(cell => {
            using var voxel = new VoxelIteratorCLI(model, Indices(cell), lod);
            return voxel.IsFilled();
        });
    }

    /// <summary>The same of a result, which is disposed of.</summary>
    internal static string Take(VoxelModelCLI model, int lod = 5)
    {
        using (model) return Read(model, lod).ToString();
    }

    /// <summary>The text of the exception that an action throws, which must be exactly a System.Exception.</summary>
    internal static string MessageOf(Action action) => Assert.Throws<Exception>(action).Message;

    internal static string Metadata(string key) => typeof(Scene).Assembly.GetCustomAttributes<AssemblyMetadataAttribute>()
        .Single(item => item.Key == key).Value ?? "";
}
