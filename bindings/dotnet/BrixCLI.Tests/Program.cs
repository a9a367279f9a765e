using System;

namespace BrixCLI.Tests;

/// <summary>A host that calls the engine once, for tests that need a process of their own.</summary>
internal static class Program
{
    private static int Main()
    {
        try {
            using var axes = new AxesCLI(1, [0, 0, 0], 0, 0);
            Console.WriteLine("width " + axes.VoxelWidth(1));
            return 0;
        } catch (Exception exception) {
            Console.WriteLine(exception.GetType().FullName + ": " + exception.Message);
            return 1;
        }
    }
}
