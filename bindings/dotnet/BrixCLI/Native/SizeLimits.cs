using System;

namespace BrixCLI;

// The limits that keep a result from filling the host's memory. Counts and limits appear in messages in the default text form of
// a double in the culture of the calling thread; .NET Framework writes at most 15 digits there, later runtimes as many as it
// takes. Each limit is strict: a count equal to it passes, and a limit that is not a number never rejects.
internal static class SizeLimits
{
    // int.MaxValue / 9, the triangles that a list's count can express.
    internal const int MaxTriangles = 238609294;

    // int.MaxValue / 6 boxes and int.MaxValue / 12 rectangles, likewise.
    internal const int MaxCuboids = 357913941, MaxRectangles = 178956970;

    // The most items that the runtime allows in an array, and so in a list; a little below int.MaxValue.
    internal const int MaxItems = 0x7FFFFFC7;

    internal static void RequireVoxels(double count, double limit)
    {
        if (count > limit) {
            throw new Exception("Total voxel count of " + count + " exceeds limit of " + limit +
                ". Verify that the voxel width is specified in the correct units, then increase the limit as needed.");
        }
    }

    internal static void RequireTriangles(double count, double limit) =>
        Require("triangle", count, limit, MaxTriangles, "displaying");

    internal static void RequireCuboids(double count, double limit) => Require("cuboid", count, limit, MaxCuboids, "converting");

    internal static void RequireRectangles(double count, double limit) =>
        Require("rectangle", count, limit, MaxRectangles, "converting");

    // A kind of result against the host's limit, then against what a list can hold at all.
    internal static void Require(string kind, double count, double limit, int absoluteLimit, string remedy)
    {
        string total = "Total " + kind + " count of " + count;
        if (count > limit) {
            throw new Exception(total + " exceeds limit of " + limit + ". Consider " + remedy +
                " the voxels at a coarser level of detail.");
        }
        if (count > absoluteLimit) throw new Exception(total + " exceeds absolute limit of " + absoluteLimit + ".");
    }

    // The length of a list of so many items of a width; throws System.Exception when no list can be as long.
    internal static int ListLength(long itemCount, long width)
    {
        if (itemCount <= MaxItems / width) return (int)(itemCount * width);
        throw new Exception("A list of " + itemCount + " times " + width + " numbers exceeds the " + MaxItems +
            " items that the .NET runtime allows in a list.");
    }
}
