// A host of the package, as a user would write it. It does what bindings/c/tests/host.c does, and prints the same lines: whichever
// way the package reached this program, they have to be equal to those of the C program.
using System;
using System.Collections.Generic;
using BrixCLI;

public static class Program
{
    public static int Main()
    {
        try {
            Run();
            return 0;
        } catch (Exception exception) {
            Console.WriteLine(exception.GetType() + ": " + exception.Message);
            return 1;
        }
    }

    private static void Run()
    {
        using var axes = new AxesCLI(1.6, new List<double> { 0.25, -0.5, 0.125 }, 30.0, 4);
        using var shell = new VoxelModelCLI(Octahedron(), axes, 4, 1e9);
        Print("shell", shell);
        using VoxelModelCLI filled = FillOperationsCLI.FillEnclosedRegions(shell);
        Print("filled", filled);
        using VoxelModelCLI grown = SurfaceOperationsCLI.ExpandHorizontally(filled, 5, null, true);
        Print("grown", grown);
        using VoxelModelCLI reduced = SurfaceOperationsCLI.ReduceAlongZ(grown, 1, 2, null, true);
        Print("reduced", reduced);
        List<double> boxes = VoxelTessellationCLI.TessellateVoxelModel(reduced, 2, 1e9);
        Console.WriteLine("{0,-12} {1,8} triangles", "boxes", boxes.Count / 9);
        try {
            using VoxelModelCLI none = SurfaceOperationsCLI.ExpandAlongX(reduced, -1, 0, null, false);
        } catch (Exception exception) when (exception.GetType() == typeof(Exception)) {
            Console.WriteLine(exception.Message);
        }
    }

    // The eight faces of an octahedron of radius 3 around (4, 4, 4).
    private static List<double> Octahedron()
    {
        double[][] corners = { [1, 4, 4], [7, 4, 4], [4, 1, 4], [4, 7, 4], [4, 4, 1], [4, 4, 7] };
        var triangles = new List<double>();
        for (int i = 0; i < 8; ++i) {
            foreach (int corner in new[] { i & 1, 2 + (i >> 1 & 1), 4 + (i >> 2) }) triangles.AddRange(corners[corner]);
        }
        return triangles;
    }

    private static void Print(string name, VoxelModelCLI model)
    {
        int lod = model.FinestLOD();
        Console.WriteLine("{0,-12} {1,8} voxels  {2:x16}", name, BasicOperationsCLI.CountFilled(model, lod), Hash(model, lod));
    }

    // FNV-1a of all voxels, slice by slice from below.
    private static ulong Hash(VoxelModelCLI model, int lod)
    {
        using ExtentsCLI extents = model.Extents(lod);
        ulong hash = 14695981039346656037;
        for (int z = extents.LowerIndices()[2]; z <= extents.UpperIndices()[2]; ++z) {
            using var slice = new SliceIteratorCLI(model, 2, z, lod);
            foreach (bool[] row in slice.SliceBools(false, false)) {
                foreach (bool isFilled in row) hash = (hash ^ (isFilled ? 1u : 0u)) * 1099511628211;
            }
        }
        return hash;
    }
}
