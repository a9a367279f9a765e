using System;
using System.Collections.Generic;

namespace BrixCLI;

/// <summary>
/// One voxel of a model at one level of detail, to read. It never changes; <see cref="Advance"/> returns another one.
/// </summary>
/// <remarks>
/// An iterator keeps the voxels of its model alive: it works on after the model's wrapper was disposed of, and the memory of the
/// voxels is released when the wrapper and all iterators of the model are disposed of.
/// </remarks>
public sealed unsafe class VoxelIteratorCLI : EngineObject
{
    private IntPtr voxelIterPtr_ = IntPtr.Zero;

    /// <summary>The voxel that holds a world point.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="coords">three world coordinates; outside the model's extents, the iterator is not valid</param>
    /// <param name="voxelLOD">0 to the model's finest level</param>
    /// <exception cref="Exception">the model is null or disposed of; there are fewer than three coordinates; the level is
    /// negative; it is beyond the model's finest one</exception>
    public VoxelIteratorCLI(VoxelModelCLI voxelModelCLI, List<double> coords, int voxelLOD)
    {
        voxelModelCLI.Required();
        voxelIterPtr_ = Engine.Call<PointTriple, IntPtr>(PointTriple.Of(coords, nameof(coords)), (point, result, error) =>
            NativeMethods.brix_iterator_at_point(voxelModelCLI.Pointer, point, voxelLOD, result, error));
    }

    /// <summary>The voxel with these indices.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="voxelIndices">three voxel indices; outside the model's extents, the iterator is not valid</param>
    /// <param name="voxelLOD">the level that the indices belong to, 0 to the model's finest one</param>
    /// <exception cref="Exception">the model is null or disposed of; there are fewer than three indices; the level is negative;
    /// it is beyond the model's finest one</exception>
    public VoxelIteratorCLI(VoxelModelCLI voxelModelCLI, List<int> voxelIndices, int voxelLOD)
    {
        voxelModelCLI.Required();
        voxelIterPtr_ = VoxelIterators.Create(voxelModelCLI, IndexTriple.Of(voxelIndices, nameof(voxelIndices)), voxelLOD);
    }

    internal VoxelIteratorCLI(IntPtr voxelIterator) => voxelIterPtr_ = voxelIterator;

    private protected override ref IntPtr Field => ref voxelIterPtr_;

    private protected override void Free(IntPtr pointer) => NativeMethods.brix_iterator_free(pointer);

    /// <summary>The voxel's indices.</summary>
    /// <returns>three voxel indices at the iterator's level</returns>
    /// <exception cref="Exception">the iterator is not valid</exception>
    public List<int> VoxelIndices() => VoxelIterators.Indices(this).ToList();

    /// <summary>The level of detail of the voxel, also when the iterator is not valid.</summary>
    public int VoxelLOD() => VoxelIterators.VoxelLOD(this);

    /// <summary>Whether the voxel lies inside the model's extents.</summary>
    public bool IsValid() => VoxelIterators.IsValid(this);

    /// <summary>Whether the voxel is filled.</summary>
    /// <exception cref="Exception">the iterator is not valid</exception>
    public bool IsFilled() =>
        Engine.Ask((result, error) => NativeMethods.brix_iterator_is_filled(Pointer, result, error));

    /// <summary>Another voxel, so many voxels away; outside the model's extents, the new iterator is not valid.</summary>
    /// <param name="xOffset">number of voxels along x</param>
    /// <param name="yOffset">number of voxels along y</param>
    /// <param name="zOffset">number of voxels along z</param>
    /// <exception cref="Exception">this iterator is not valid</exception>
    public VoxelIteratorCLI Advance(int xOffset, int yOffset, int zOffset) =>
        new VoxelIteratorCLI(VoxelIterators.Advance(this, new IndexTriple { X = xOffset, Y = yOffset, Z = zOffset }));

    /// <summary>The centre of the voxel.</summary>
    /// <returns>three world coordinates</returns>
    /// <exception cref="Exception">the iterator is not valid</exception>
    public List<double> VoxelCenter() =>
        Engine.Call<PointTriple>((result, error) => NativeMethods.brix_iterator_voxel_center(Pointer, result, error)).ToList();

    /// <summary>The box of this voxel alone.</summary>
    /// <exception cref="Exception">the iterator is not valid</exception>
    public ExtentsCLI VoxelExtents()
    {
        IndexTriple indices = VoxelIterators.Indices(this);
        using VoxelModelCLI model = VoxelIterators.Model(this);
        return new ExtentsCLI(model.Frame, new IndexBox { Lower = indices, Upper = indices }, VoxelLOD());
    }
}

// What voxel and slice iterators share: calls on the engine's iterator that a wrapper owns.
internal static unsafe class VoxelIterators
{
    internal static IntPtr Create(VoxelModelCLI model, IndexTriple voxelIndices, int voxelLOD) =>
        Engine.Call<IndexTriple, IntPtr>(voxelIndices, (indices, result, error) =>
            NativeMethods.brix_iterator_create(model.Pointer, indices, voxelLOD, result, error));

    internal static IndexTriple Indices(EngineObject iterator) =>
        Engine.Call<IndexTriple>((result, error) => NativeMethods.brix_iterator_voxel_indices(iterator.Pointer, result, error));

    internal static int VoxelLOD(EngineObject iterator) =>
        (int)Engine.Call<long>((result, error) => NativeMethods.brix_iterator_voxel_lod(iterator.Pointer, result, error));

    internal static bool IsValid(EngineObject iterator) =>
        Engine.Ask((result, error) => NativeMethods.brix_iterator_is_valid(iterator.Pointer, result, error));

    internal static IntPtr Advance(EngineObject iterator, IndexTriple offsets) =>
        Engine.Call<IndexTriple, IntPtr>(offsets, (steps, result, error) =>
            NativeMethods.brix_iterator_advance(iterator.Pointer, steps, result, error));

    // Another wrapper of the model's voxels, for the caller to dispose of.
    internal static VoxelModelCLI Model(EngineObject iterator) =>
        new VoxelModelCLI((result, error) => NativeMethods.brix_iterator_model(iterator.Pointer, result, error));
}
