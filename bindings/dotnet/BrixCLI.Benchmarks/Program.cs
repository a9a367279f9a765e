// What the way through BrixCLI costs. tools/dev/benchmark-boundary runs this beside EngineAlone.cpp, which does the same work
// with the same triangles. Prints one line per measurement: a name, then milliseconds or nanoseconds.
using System;
using System.Collections.Generic;
using System.Diagnostics;
using System.Globalization;
using BrixCLI;

int rounds = args.Length > 0 ? int.Parse(args[0], CultureInfo.InvariantCulture) : 5;
List<double> triangles = Surface(708); // 2 * 708 * 708, a little above a million
using var axes = new AxesCLI(1.0 / 26, [0, 0, 0], 0, 5);
for (int i = 0; i < rounds; ++i) {
    long start = Stopwatch.GetTimestamp();
    using var model = new VoxelModelCLI(triangles, axes, 5, double.PositiveInfinity);
    double voxelized = Milliseconds(start);
    List<double> surface = VoxelTessellationCLI.TessellateVoxelModel(model, 5, double.PositiveInfinity);
    double all = Milliseconds(start);
    Print("triangles-there", triangles.Count / 9);
    Print("triangles-back", surface.Count / 9);
    Print("voxelize", voxelized);
    Print("voxelize-and-tessellate", all);
}
using var small = new VoxelModelCLI(triangles.GetRange(0, 9), axes, 5, double.PositiveInfinity);
using var voxel = new VoxelIteratorCLI(small, [0.0, 0.0, 0.0], 5);
for (int i = 0; i < rounds; ++i) {
    Print("FinestLOD", NanosecondsOf(() => small.FinestLOD()));
    Print("IsFilled", NanosecondsOf(() => voxel.IsFilled()));
}

static double Milliseconds(long start) => Stopwatch.GetElapsedTime(start).TotalMilliseconds;

static double NanosecondsOf<T>(Func<T> call)
{
    const int calls = 2000000;
    long start = Stopwatch.GetTimestamp();
    for (int i = 0; i < calls; ++i) call();
    return Milliseconds(start) * 1e6 / calls;
}

static void Print(string name, double value) =>
    Console.WriteLine(name + " " + value.ToString("F3", CultureInfo.InvariantCulture));

// A gently bent sheet of one by one, two triangles per square.
static List<double> Surface(int squares)
{
    var numbers = new List<double>(18 * squares * squares);
    void Add(int i, int j)
    {
        double x = (double)i / squares, y = (double)j / squares;
        numbers.AddRange([x, y, 0.25 * x * x + 0.125 * y * (1 - y)]);
    }
    for (int i = 0; i < squares; ++i) {
        for (int j = 0; j < squares; ++j) {
            Add(i, j); Add(i + 1, j); Add(i, j + 1);
            Add(i + 1, j); Add(i + 1, j + 1); Add(i, j + 1);
        }
    }
    return numbers;
}
