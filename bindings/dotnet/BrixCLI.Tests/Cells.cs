// The reference of the tests: a box of cells as a plain set.
global using Cell = (int X, int Y, int Z);

using System;
using System.Collections.Generic;
using System.Linq;

namespace BrixCLI.Tests;

public sealed record Cells(Cell Lower, Cell Upper, SortedSet<Cell> Filled)
{
    /// <summary>Random cells in a box that has another size along each axis and lies across zero.</summary>
    public static Cells Random(int seed, double density)
    {
        var random = new Random(seed);
        var box = new Cells((-3, -1, 0), (3, 4, 2), []);
        return box with { Filled = [.. box.All().Where(_ => random.NextDouble() < density)] };
    }

    public IEnumerable<Cell> All() =>
        from x in Enumerable.Range(Lower.X, Upper.X - Lower.X + 1)
        from y in Enumerable.Range(Lower.Y, Upper.Y - Lower.Y + 1)
        from z in Enumerable.Range(Lower.Z, Upper.Z - Lower.Z + 1)
        select (x, y, z);

    public bool Holds(Cell cell) => Filled.Contains(cell);

    public Cells With(Cell lower, Cell upper) =>
        new(lower, upper, [.. (this with { Lower = lower, Upper = upper }).All().Where(Holds)]);

    public Cells Cropped() => Filled.Count == 0 ? throw new InvalidOperationException("nothing is left to test") : With(
        (Filled.Min(c => c.X), Filled.Min(c => c.Y), Filled.Min(c => c.Z)),
        (Filled.Max(c => c.X), Filled.Max(c => c.Y), Filled.Max(c => c.Z)));

    /// <summary>The cells of the box for which a rule holds.</summary>
    public Cells Where(Func<Cell, bool> rule) => this with { Filled = [.. All().Where(rule)] };

    public override string ToString() => $"{Lower}..{Upper}: {string.Join(" ", Filled)}";
}
