using System;
using System.Collections.Generic;

namespace BrixCLI;

/// <summary>Levels of detail, and triples of numbers in the forms that .NET lists and the engine give them.</summary>
public static class TypesCLI
{
    /// <summary>The number of levels of detail: 0 (coarsest) to 5 (finest).</summary>
    public static readonly int numLODs = 6;

    /// <summary>Accepts a level of detail that exists.</summary>
    /// <param name="lod">a level of detail, 0 to 5</param>
    /// <exception cref="Exception">the level is negative; it is 6 or more</exception>
    public static void ValidateLOD(int lod)
    {
        if (lod < 0) throw new Exception("The level of detail (LOD) cannot be negative.");
        RequireExisting(lod);
    }

    /// <summary>Accepts a level of detail that a model holds, or -1 for the finest one.</summary>
    /// <param name="lod">a level of detail, 0 to <paramref name="finestLOD"/>, or -1</param>
    /// <param name="finestLOD">the finest level of the model</param>
    /// <returns>the level to use</returns>
    /// <exception cref="Exception">the level is less than -1; it is 6 or more; it is beyond the finest one</exception>
    public static int ValidateLOD(int lod, int finestLOD)
    {
        if (lod < -1) throw new Exception("The level of detail (LOD) cannot be less than -1.");
        RequireExisting(lod);
        if (lod > finestLOD) {
            throw new Exception("The level of detail (LOD) must not exceed the finest level of detail available, which is " +
                finestLOD + ".");
        }
        return lod >= 0 ? lod : finestLOD;
    }

    private static void RequireExisting(int lod)
    {
        if (lod >= numLODs) throw new Exception("The level of detail (LOD) must be less than " + numLODs + ".");
    }

    /// <summary>Three 64-bit integers as a list of three.</summary>
    /// <param name="array">three integers; of each, the lower 32 bits are kept</param>
    /// <exception cref="Exception">there are not exactly three integers</exception>
    public static List<int> ToList(long[] array)
    {
        RequireThree(array);
        return new IndexTriple { X = array[0], Y = array[1], Z = array[2] }.ToList();
    }

    /// <summary>Three doubles as a list of three.</summary>
    /// <param name="array">three doubles</param>
    /// <exception cref="Exception">there are not exactly three doubles</exception>
    public static List<double> ToList(double[] array)
    {
        RequireThree(array);
        return new List<double>(array);
    }

    /// <summary>The first three items of a list; those after them are ignored.</summary>
    /// <param name="list">at least three integers</param>
    /// <exception cref="ArgumentOutOfRangeException">the list is shorter: its own index exception, here and only here</exception>
    /// <exception cref="Exception">the list is null</exception>
    public static long[] ToArray(List<int> list)
    {
        Arguments.Required(list, nameof(list));
        return new long[] { list[0], list[1], list[2] };
    }

    /// <summary>The first three items of a list; those after them are ignored.</summary>
    /// <param name="list">at least three doubles</param>
    /// <exception cref="ArgumentOutOfRangeException">the list is shorter: its own index exception, here and only here</exception>
    /// <exception cref="Exception">the list is null</exception>
    public static double[] ToArray(List<double> list)
    {
        Arguments.Required(list, nameof(list));
        return new[] { list[0], list[1], list[2] };
    }

    private static void RequireThree<T>(T[] array)
    {
        if (Arguments.Required(array, nameof(array)).Length == 3) return;
        throw Arguments.NotThree(nameof(array), array.Length);
    }
}
