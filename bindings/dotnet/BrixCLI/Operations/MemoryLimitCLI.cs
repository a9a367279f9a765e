using System;

namespace BrixCLI;

/// <summary>The host's limit of memory, one for the whole process.</summary>
public static unsafe class MemoryLimitCLI
{
    /// <summary>The most bytes that one operation may take beside its arguments, its result included;
    /// <see cref="double.PositiveInfinity"/> at first. What would take more is refused before the work begins, with a sentence
    /// that names the estimate and the limit. Wrong arguments are told first. Lists of results count, too: those of triangles,
    /// boxes and rectangles are judged once their length is known, after the limit of the call. Estimates are rather too high
    /// than too low, often several times.</summary>
    /// <exception cref="Exception">the limit that is set is negative or not a number</exception>
    public static double Bytes
    {
        get => Engine.Call<double>((result, error) => NativeMethods.brix_get_memory_limit(result, error));
        set => Engine.Call<int>((_, error) => NativeMethods.brix_set_memory_limit(value, error));
    }

    // Throws System.Exception when lists of so many bytes, which are still to be made, are more than the limit.
    internal static void RequireForLists(double bytes) =>
        Engine.Call<int>((_, error) => NativeMethods.brix_require_memory_for_lists(bytes, error));
}
