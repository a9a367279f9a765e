using System;
using System.Collections.Generic;
using System.Runtime.InteropServices;
using static BrixCLI.Tests.Scene;

namespace BrixCLI.Tests;

// Alone: other tests use memory, too.
[CollectionDefinition(nameof(LifetimeTests), DisableParallelization = true)]
[Collection(nameof(LifetimeTests))]
public class LifetimeTests
{
    [Fact]
    public void DisposedAndMissingObjectsAreNamed()
    {
        VoxelModelCLI model = Model((0, 0, 0), (3, 3, 3), (1, 1, 1));
        AxesCLI axes = Axes();
        using VoxelModelCLI good = Model((0, 0, 0), (1, 1, 1));
        foreach (IDisposable wrapper in new IDisposable[] { model, axes, model, axes }) wrapper.Dispose();
        foreach ((string message, Action use) in new (string, Action)[] {
            ("The VoxelModelCLI has been disposed of and can no longer be used.", () => model.FinestLOD()),
            ("The AxesCLI has been disposed of and can no longer be used.", () => axes.VoxelHeight()),
            ("The VoxelModelCLI passed as guideVoxelsCLI has been disposed of and can no longer be used.",
                () => SurfaceOperationsCLI.ExpandHorizontally(good, 1, model, true)),
            ("The VoxelModelCLI passed as voxelModelsCLI[1] has been disposed of and can no longer be used.",
                () => SolidOperationsCLI.Union([good, model], 5, true)),
            ("The AxesCLI passed as newAxes has been disposed of and can no longer be used.",
                () => BasicOperationsCLI.Relocate(good, axes)),
            ("The argument voxelModel1CLI cannot be null.", () => SolidOperationsCLI.Subtract(good, null!, 5, true)),
            ("The argument pointCoords cannot be null.", () => FillOperationsCLI.FillFromPoint(good, null!))
        }) {
            Assert.Equal(message, MessageOf(use));
        }
    }

    // A million wrappers of all kinds, and memory stays where it was.
    [Fact]
    public void DisposedWrappersLeaveNothingBehind()
    {
        Cells cells = Cells.Random(3, 0.3);
        using VoxelModelCLI model = Model(cells);
        using AxesCLI axes = Axes();
        List<double> triangle = Triangles([(0, 0, 0)]);
        int wrappers = 0;
        void Round(int number)
        {
            using var ownAxes = Axes();
            using var ownExtents = new ExtentsCLI(axes, [0, 0, 0], [1, 1, 1], 5);
            using ExtentsCLI rescaled = ownExtents.RescaledCopy(4);
            using var empty = new VoxelModelCLI(ownExtents, 5, 1e9);
            using var voxel = new VoxelIteratorCLI(model, [0, 0, 0], 5);
            using VoxelIteratorCLI next = voxel.Advance(1, 0, 0);
            using ExtentsCLI voxelExtents = voxel.VoxelExtents();
            using var slice = new SliceIteratorCLI(model, 2, 0, 5);
            using ExtentsCLI sliceExtents = slice.SliceExtents();
            using var mesh = new TriangleMeshCLI(triangle);
            wrappers += 13; // among them what the extents of a voxel and a slice need on their way
            if (number % 50 != 0) return;
            using VoxelModelCLI sliced = slice.SliceVoxels();
            using var voxelized = new VoxelModelCLI(triangle, axes, 5, 1e9);
            using VoxelModelCLI grown = SurfaceOperationsCLI.ExpandAlongX(voxelized, 1, 1, null, true);
            using VoxelModelCLI united = SolidOperationsCLI.Union([voxelized, grown], 5, true);
            using var path = new PathModelCLI(grown, 5, 1, 2, true);
            using var field = new DistanceFieldCLI(path, Centre((0, 0, 1)), -1);
            using var way = new PathCLI(field, Centre((0, 0, 1)));
            foreach (VoxelModelCLI region in SpecialOperationsCLI.AutoSplit(grown)) region.Dispose();
            using VoxelModelCLI traversable = path.TraversableVoxels();
            VoxelTessellationCLI.TessellateVoxelModel(grown, 5, 1e9);
            slice.SliceBools(true, false);
            Assert.Throws<Exception>(() => new VoxelModelCLI(triangle, axes, 5, 0));
            Assert.Throws<Exception>(() => VoxelTessellationCLI.TessellateVoxelModel(grown, 5, 0));
            wrappers += 6;
        }
        // The runtime compiles for a while; a leak would show in every stretch: 32 bytes per round are 640 kB.
        bool isFlat = false;
        while (wrappers < 1000000 || (!isFlat && wrappers < 5000000)) {
            long before = NativeBytes();
            for (int i = 0; i < 20000; ++i) Round(i);
            isFlat = Math.Abs(NativeBytes() - before) < 64 << 10;
        }
        Assert.True(isFlat, "memory grows with each 260000 wrappers");
    }

    // What the native heap has given out; where the C library does not tell, a share of the whole process has to do.
    private static long NativeBytes()
    {
        GC.Collect();
        GC.WaitForPendingFinalizers();
        GC.Collect();
        try {
            return (long)(mallinfo2().InUse + mallinfo2().Mapped);
        } catch (Exception exception) when (exception is DllNotFoundException or EntryPointNotFoundException) {
            return Environment.WorkingSet / 16;
        }
    }

    [StructLayout(LayoutKind.Sequential)]
    private struct HeapState
    {
        internal nuint Arena, FreeChunks, FastChunks, MappedChunks, Mapped, Unused, FastBytes, InUse, Free, Top;
    }

    [DllImport("libc.so.6", ExactSpelling = true)]
    private static extern HeapState mallinfo2();
}
