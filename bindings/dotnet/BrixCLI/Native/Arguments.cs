using System;
using System.Collections.Generic;
using System.Runtime.InteropServices;

namespace BrixCLI;

// Three voxel indices or numbers of voxels, as the C interface reads and writes them.
[StructLayout(LayoutKind.Sequential)]
internal struct IndexTriple
{
    internal long X, Y, Z;

    internal static IndexTriple Of(List<int>? list, string parameter)
    {
        Arguments.RequireThree(list, parameter);
        return new IndexTriple { X = list![0], Y = list[1], Z = list[2] };
    }

    internal readonly List<int> ToList() => new List<int>(3) { unchecked((int)X), unchecked((int)Y), unchecked((int)Z) };

    internal readonly IndexTriple With(int dimIndex, long value) => dimIndex switch
    {
        0 => new IndexTriple { X = value, Y = Y, Z = Z },
        1 => new IndexTriple { X = X, Y = value, Z = Z },
        _ => new IndexTriple { X = X, Y = Y, Z = value },
    };

    internal readonly long Component(int dimIndex) => dimIndex switch { 0 => X, 1 => Y, _ => Z };
}

// The inclusive bounds of a box of voxels.
[StructLayout(LayoutKind.Sequential)]
internal struct IndexBox
{
    internal IndexTriple Lower, Upper;
}

// A world point or vector.
[StructLayout(LayoutKind.Sequential)]
internal struct PointTriple
{
    internal double X, Y, Z;

    internal static PointTriple Of(List<double>? list, string parameter)
    {
        Arguments.RequireThree(list, parameter);
        return new PointTriple { X = list![0], Y = list[1], Z = list[2] };
    }

    internal readonly List<double> ToList() => new List<double>(3) { X, Y, Z };
}

// A world point and a direction from it.
[StructLayout(LayoutKind.Sequential)]
internal struct Ray
{
    internal PointTriple Point, Direction;
}

// The class library's own checks, and the only place where their sentences are built.
internal static class Arguments
{
    internal static Exception Null(string parameter) => new Exception("The argument " + parameter + " cannot be null.");

    internal static T Required<T>(T? value, string parameter) where T : class => value ?? throw Null(parameter);

    internal static void RequireThree<T>(List<T>? list, string parameter)
    {
        if (list == null) throw Null(parameter);
        if (list.Count < 3) throw NotThree(parameter, list.Count);
    }

    internal static Exception NotThree(string parameter, int count) => new Exception("The argument " + parameter +
        " must hold three numbers. The number of items encountered was " + count + ".");

    internal static void RequireDivisible(int count, int divisor, string sentence)
    {
        if (count % divisor != 0) throw new Exception(sentence);
    }

    internal const string TrianglesOfNine = "The number of triangle vertex coordinates must be divisible by nine.";
    internal const string IndicesOfThree = "The number of triangle vertex indices must be divisible by three.";
    internal const string PointsOfThree = "The number of point coordinates must be divisible by three.";
    internal const string VerticesOfThree = "The number of vertex coordinates must be divisible by three.";
}
