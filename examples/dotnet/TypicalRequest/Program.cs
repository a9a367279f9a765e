// The request that most hosts make: triangles become voxels, the voxels grow, and the result becomes triangles again.
// examples/cpp/TypicalRequest.cpp does the same with the engine alone and prints the same.
//
//   dotnet run -- grown.stl              a table that the sample makes itself
//   dotnet run -- grown.stl house.stl    the triangles of an STL file, in metres
using System;
using System.Collections.Generic;
using System.Globalization;
using BrixCLI;

const int finestLOD = 4;          // voxels of 1.6 m at level 0, of 0.1 m at level 4
const double voxelLimit = 1e12;   // the host's own limits: what it can wait for,
const double triangleLimit = 1e7; // and what it can show

if (args.Length is not (1 or 2)) {
    Console.Error.WriteLine("usage: TypicalRequest OUT.stl [IN.stl]");
    return 2;
}
try {
    Run(args[0], args.Length == 2 ? args[1] : null);
    return 0;
} catch (Exception exception) { // every failure of the library is a System.Exception with a sentence for the user
    Console.Error.WriteLine(exception.Message);
    return 1;
}

static void Run(string output, string? input)
{
    List<double> triangles = input == null ? Table() : TrianglesAsNineNumbersCLI.ImportFromSTL(input, false);
    Console.WriteLine("triangles: " + triangles.Count / 9);

    using var axes = new AxesCLI(1.6, [0.03, 0.03, 0.03], 0, finestLOD);
    using var model = new VoxelModelCLI(triangles, axes, finestLOD, voxelLimit);
    for (int lod = 0; lod <= model.FinestLOD(); ++lod) {
        Console.WriteLine("level " + lod + ", voxels of " + axes.VoxelWidth(lod).ToString("F3", CultureInfo.InvariantCulture) +
            ": " + BasicOperationsCLI.CountFilled(model, lod));
    }

    // In steps, so that the host can show how far it is; each result is disposed of when the next one is there.
    VoxelModelCLI grown = SpecialOperationsCLI.AutoCrop(model);
    try {
        for (int step = 1; step <= 3; ++step) {
            VoxelModelCLI next = SurfaceOperationsCLI.ExpandHorizontally(grown, 3, null, true);
            grown.Dispose();
            grown = next;
            Console.WriteLine("grown, step " + step + " of 3: " + BasicOperationsCLI.CountFilled(grown, finestLOD));
        }
        List<double> surface = VoxelTessellationCLI.TessellateVoxelModel(grown, finestLOD, triangleLimit);
        TrianglesAsNineNumbersCLI.ExportToSTL(surface, output, true, false);
        Console.WriteLine("triangles written: " + surface.Count / 9);
    } finally {
        grown.Dispose();
    }
}

// A table top on three legs and a wider one, twelve triangles each.
static List<double> Table()
{
    var triangles = new List<double>();
    AddBox(triangles, 0, 0, 0.7, 2, 1, 0.8);
    AddBox(triangles, 0, 0, 0, 0.1, 0.1, 0.7);
    AddBox(triangles, 1.9, 0, 0, 2, 0.1, 0.7);
    AddBox(triangles, 0, 0.9, 0, 0.1, 1, 0.7);
    AddBox(triangles, 1.7, 0.9, 0, 2, 1, 0.7);
    return triangles;
}

static void AddBox(List<double> triangles, double x0, double y0, double z0, double x1, double y1, double z1)
{
    // Corner c has the upper x, y or z where bit 0, 1 or 2 of c is set.
    int[] corners = [0, 2, 1, 1, 2, 3, 4, 5, 6, 5, 7, 6, 0, 1, 4, 1, 5, 4, 2, 6, 3, 3, 6, 7, 0, 4, 2, 2, 4, 6, 1, 3, 5, 3, 7, 5];
    foreach (int c in corners) {
        triangles.Add((c & 1) == 0 ? x0 : x1);
        triangles.Add((c & 2) == 0 ? y0 : y1);
        triangles.Add((c & 4) == 0 ? z0 : z1);
    }
}
