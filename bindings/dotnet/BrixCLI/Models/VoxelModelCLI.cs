using System;
using System.Collections.Generic;

namespace BrixCLI;

/// <summary>
/// A sparse model of filled voxels that holds all levels of detail from 0 to its finest one. It never changes: operations return
/// new models, each of which the host disposes of. A model does not depend on the frame, box or lists that it was made from.
/// </summary>
public sealed unsafe partial class VoxelModelCLI : EngineObject
{
    private AxesCLI? axesCLI_; // the model's own frame, wrapped when it is first asked for
    private IntPtr voxelModelPtr_ = IntPtr.Zero;

    /// <summary>A model without filled voxels.</summary>
    /// <param name="extentsCLI">the box that the model covers, at any level</param>
    /// <param name="finestLOD">its finest level, 0 to 5</param>
    /// <param name="voxelLimit">the most voxels that the box may have at the finest level</param>
    /// <exception cref="Exception">the box is null or disposed of; the level does not exist; there are more voxels than
    /// <paramref name="voxelLimit"/></exception>
    public VoxelModelCLI(ExtentsCLI extentsCLI, int finestLOD, double voxelLimit)
    {
        ValidateVoxelCount(extentsCLI, finestLOD, voxelLimit, nameof(extentsCLI));
        voxelModelPtr_ = Engine.Call<IntPtr>((result, error) =>
            NativeMethods.brix_model_create(extentsCLI.Pointer, finestLOD, result, error));
    }

    /// <summary>A model of the voxels in a box that triangles touch at the finest level.</summary>
    /// <param name="trianglesAsNineNumbers">nine numbers per triangle, in world units; what lies outside the box is left out,
    /// however far away it is or whatever is not finite</param>
    /// <param name="extentsCLI">the box that the model covers, at any level</param>
    /// <param name="finestLOD">its finest level, 0 to 5</param>
    /// <param name="voxelLimit">the most voxels that the box may have at the finest level</param>
    /// <exception cref="Exception">the box is null or disposed of; the level does not exist; there are more voxels than
    /// <paramref name="voxelLimit"/>; the number of numbers is not divisible by nine</exception>
    public VoxelModelCLI(List<double> trianglesAsNineNumbers, ExtentsCLI extentsCLI, int finestLOD, double voxelLimit)
    {
        ValidateVoxelCount(extentsCLI, finestLOD, voxelLimit, nameof(extentsCLI));
        voxelModelPtr_ = Voxelized(trianglesAsNineNumbers, extentsCLI, finestLOD);
    }

    /// <summary>A model of all voxels that triangles touch at the finest level, on the smallest box of level 0 that holds
    /// them.</summary>
    /// <param name="trianglesAsNineNumbers">nine numbers per triangle, in world units; none give a box around the origin</param>
    /// <param name="axesCLI">the frame</param>
    /// <param name="finestLOD">the model's finest level, 0 to 5</param>
    /// <param name="voxelLimit">the most voxels that the box may have at the finest level</param>
    /// <exception cref="Exception">the frame is null or disposed of; the number of numbers is not divisible by nine; a triangle
    /// leaves the index space or has a coordinate that is not finite; the level does not exist; there are more voxels than
    /// <paramref name="voxelLimit"/></exception>
    public VoxelModelCLI(List<double> trianglesAsNineNumbers, AxesCLI axesCLI, int finestLOD, double voxelLimit)
    {
        axesCLI.Required();
        voxelModelPtr_ = Voxelized(trianglesAsNineNumbers, axesCLI, finestLOD, voxelLimit);
    }

    /// <summary>The same in a frame at the world's origin that is not rotated.</summary>
    /// <param name="trianglesAsNineNumbers">nine numbers per triangle, in world units; none give a box around the origin</param>
    /// <param name="coarseVoxelWidth">the width of a voxel at level 0, in world units</param>
    /// <param name="verticalLOD">0 to 5: the level whose voxel width is the height of all voxels</param>
    /// <param name="finestLOD">the model's finest level, 0 to 5</param>
    /// <param name="voxelLimit">the most voxels that the box may have at the finest level</param>
    /// <exception cref="Exception">the width is not greater than 0; the vertical level does not exist; then as above</exception>
    public VoxelModelCLI(List<double> trianglesAsNineNumbers, double coarseVoxelWidth, int verticalLOD, int finestLOD,
        double voxelLimit)
    {
        if (!(coarseVoxelWidth > 0)) throw new Exception("The voxel width must be positive.");
        using var axes = new AxesCLI(coarseVoxelWidth, new List<double> { 0, 0, 0 }, 0, verticalLOD);
        voxelModelPtr_ = Voxelized(trianglesAsNineNumbers, axes, finestLOD, voxelLimit);
    }

    /// <summary>A model of all voxels that triangles touch at the finest level, on the smallest box of level 0 that holds them,
    /// in one step: time and memory follow the voxels touched, not the box, so that long and scattered shapes need no limit.
    /// Large triangles are taken whole; the constructors cut them first, which can differ in a few voxels at their
    /// rims.</summary> <param name="trianglesAsNineNumbers">nine numbers per triangle, in world units; none give a box around the
    /// origin</param> <param name="axesCLI">the frame</param>
    /// <param name="finestLOD">the model's finest level, 0 to 5</param>
    /// <exception cref="Exception">the frame is null or disposed of; the number of numbers is not divisible by nine; the level
    /// does not exist; a triangle leaves the index space or has a coordinate that is not finite</exception>
    public static VoxelModelCLI Voxelize(List<double> trianglesAsNineNumbers, AxesCLI axesCLI, int finestLOD)
    {
        axesCLI.Required();
        int count = TrianglesAsNineNumbersCLI.CountOf(trianglesAsNineNumbers);
        return new VoxelModelCLI(NumberLists.WithItems<IntPtr>(trianglesAsNineNumbers, (triangles, result, error) =>
            NativeMethods.brix_voxelize(axesCLI.Pointer, triangles, count, finestLOD, result, error)));
    }

    internal VoxelModelCLI(IntPtr voxelModel) => voxelModelPtr_ = voxelModel;

    // The result of an operation.
    internal VoxelModelCLI(NativeCall<IntPtr> operation) : this(Engine.Call(operation)) { }

    // The frame of the model; it belongs to the model.
    internal AxesCLI Frame =>
        axesCLI_ ??= new AxesCLI(Engine.Call<IntPtr>((result, error) => NativeMethods.brix_model_axes(Pointer, result, error)));

    private protected override ref IntPtr Field => ref voxelModelPtr_;

    private protected override void Free(IntPtr pointer) => NativeMethods.brix_model_free(pointer);

    /// <inheritdoc/>
    protected override void Dispose(bool disposing)
    {
        base.Dispose(disposing);
        if (disposing) axesCLI_?.Dispose(); // nobody else has seen it
    }

    /// <summary>Throws when a box has more voxels at a level than a limit allows.</summary>
    /// <param name="extents">the box, at any level</param>
    /// <param name="finestLOD">the level at which its voxels are counted, 0 to 5</param>
    /// <param name="voxelLimit">the most voxels that it may have; NaN allows any number</param>
    /// <exception cref="Exception">the box is null or disposed of; the level does not exist; there are more voxels</exception>
    public static void ValidateVoxelCount(ExtentsCLI extents, int finestLOD, double voxelLimit) =>
        ValidateVoxelCount(extents, finestLOD, voxelLimit, nameof(extents));

    private static void ValidateVoxelCount(ExtentsCLI extents, int finestLOD, double voxelLimit, string parameter)
    {
        extents.Required(parameter);
        using ExtentsCLI rescaled = extents.RescaledCopy(finestLOD);
        SizeLimits.RequireVoxels(rescaled.VoxelCount(), voxelLimit);
    }

    /// <summary>The box that the model covers, at a level.</summary>
    /// <param name="voxelLOD">0 to the finest level</param>
    /// <exception cref="Exception">the level is negative; it is beyond the finest one</exception>
    public ExtentsCLI Extents(int voxelLOD) => new ExtentsCLI(
        Engine.Call<IntPtr>((result, error) => NativeMethods.brix_model_extents(Pointer, voxelLOD, result, error)));

    /// <summary>The frame of the model, which tells where its voxels are and how large; yours to dispose of.</summary>
    public AxesCLI Axes() =>
        new AxesCLI(Engine.Call<IntPtr>((result, error) => NativeMethods.brix_model_axes(Pointer, result, error)));

    /// <summary>The model's finest level of detail, 0 to 5.</summary>
    public int FinestLOD() =>
        (int)Engine.Call<long>((result, error) => NativeMethods.brix_model_finest_lod(Pointer, result, error));

    /// <summary>Whether voxels are filled, many at once: much faster than a <see cref="VoxelIteratorCLI"/> for each.</summary>
    /// <param name="voxelIndices">three indices for each voxel; voxels outside the model are not filled</param>
    /// <param name="voxelLOD">their level, 0 to the finest one</param>
    /// <returns>an answer for each voxel, in their order</returns>
    /// <exception cref="Exception">the indices are null; their number is not divisible by three; the level is negative; it is
    /// beyond the finest one</exception>
    public bool[] AreFilled(long[] voxelIndices, int voxelLOD)
    {
        int count = Triples(voxelIndices, "voxel indices");
        fixed (long* indices = voxelIndices) return AreFilled(indices, count, voxelLOD);
    }

    /// <inheritdoc cref="AreFilled(long[], int)"/>
    public bool[] AreFilled(List<long> voxelIndices, int voxelLOD)
    {
        if (voxelIndices is null) throw new Exception("The list of voxel indices cannot be null.");
        int count = Triples(voxelIndices.Count, "voxel indices");
        return NumberLists.Pinned<long, bool[]>(voxelIndices, indices => AreFilled(indices, count, voxelLOD));
    }

    private bool[] AreFilled(long* indices, int count, int voxelLOD)
    {
        var filled = new bool[count];
        fixed (bool* results = filled) {
            byte* result = (byte*)results; // lambdas cannot hold fixed variables
            Engine.Call<int>((_, error) => NativeMethods.brix_are_filled(Pointer, indices, count, voxelLOD, result, error));
        }
        return filled;
    }

    private static IntPtr Voxelized(List<double> trianglesAsNineNumbers, AxesCLI axes, int finestLOD, double voxelLimit)
    {
        int count = TrianglesAsNineNumbersCLI.CountOf(trianglesAsNineNumbers);
        using var extents = new ExtentsCLI(NumberLists.WithItems<IntPtr>(trianglesAsNineNumbers, (triangles, result, error) =>
            NativeMethods.brix_detect_triangle_extents(axes.Pointer, triangles, count, result, error)));
        ValidateVoxelCount(extents, finestLOD, voxelLimit);
        return Voxelized(trianglesAsNineNumbers, extents, finestLOD);
    }

    private static IntPtr Voxelized(List<double> trianglesAsNineNumbers, ExtentsCLI extents, int finestLOD)
    {
        int count = TrianglesAsNineNumbersCLI.CountOf(trianglesAsNineNumbers);
        return NumberLists.WithItems<IntPtr>(trianglesAsNineNumbers, (triangles, result, error) =>
            NativeMethods.brix_model_from_triangles(triangles, count, extents.Pointer, finestLOD, result, error));
    }
}
