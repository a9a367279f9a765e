using System;
using System.Collections.Generic;

namespace BrixCLI;

/// <summary>A box of voxels of a frame at one level of detail; both bounds belong to it. It never changes.</summary>
public sealed unsafe class ExtentsCLI : EngineObject
{
    private AxesCLI? axesCLI_; // the box's own frame, wrapped when it is first asked for
    private IntPtr extentsPtr_ = IntPtr.Zero;

    /// <summary>A box.</summary>
    /// <param name="axesCLI">its frame; it may be disposed of afterwards</param>
    /// <param name="lowerCorner">three voxel indices, the lowest ones</param>
    /// <param name="upperCorner">three voxel indices, the highest ones</param>
    /// <param name="voxelLOD">the level that the indices belong to, 0 to 5</param>
    /// <exception cref="Exception">an argument is null, disposed of or too short; then an index below, or above, the index space;
    /// an upper index below its lower one; a level that does not exist</exception>
    public ExtentsCLI(AxesCLI axesCLI, List<int> lowerCorner, List<int> upperCorner, int voxelLOD)
        : this(axesCLI.Required(), new IndexBox {
            Lower = IndexTriple.Of(lowerCorner, nameof(lowerCorner)), Upper = IndexTriple.Of(upperCorner, nameof(upperCorner))
        }, voxelLOD) => GC.KeepAlive(axesCLI);

    internal ExtentsCLI(AxesCLI axesCLI, IndexBox bounds, int voxelLOD) : this(axesCLI.Pointer, bounds, voxelLOD) =>
        GC.KeepAlive(axesCLI);

    private ExtentsCLI(IntPtr axes, IndexBox bounds, int voxelLOD)
    {
        extentsPtr_ = Engine.Call<IndexBox, IntPtr>(bounds, (box, result, error) =>
            NativeMethods.brix_extents_create(axes, &box->Lower, &box->Upper, voxelLOD, result, error));
    }

    internal ExtentsCLI(IntPtr extents) => extentsPtr_ = extents;

    // The frame of the box; it belongs to the box.
    internal AxesCLI Frame => axesCLI_ ??=
        new AxesCLI(Engine.Call<IntPtr>((result, error) => NativeMethods.brix_extents_axes(Pointer, result, error)));

    internal IndexBox Bounds => new IndexBox {
        Lower = Engine.Call<IndexTriple>((result, error) => NativeMethods.brix_extents_lower_indices(Pointer, result, error)),
        Upper = Engine.Call<IndexTriple>((result, error) => NativeMethods.brix_extents_upper_indices(Pointer, result, error))
    };

    private protected override ref IntPtr Field => ref extentsPtr_;

    private protected override void Free(IntPtr pointer) => NativeMethods.brix_extents_free(pointer);

    /// <inheritdoc/>
    protected override void Dispose(bool disposing)
    {
        base.Dispose(disposing);
        if (disposing) axesCLI_?.Dispose(); // nobody else has seen it
    }

    /// <summary>The lowest index along each axis.</summary>
    /// <returns>three voxel indices</returns>
    public List<int> LowerIndices() => Bounds.Lower.ToList();

    /// <summary>The highest index along each axis; it still belongs to the box.</summary>
    /// <returns>three voxel indices</returns>
    public List<int> UpperIndices() => Bounds.Upper.ToList();

    /// <summary>The level of detail that the indices belong to.</summary>
    public int VoxelLOD() =>
        (int)Engine.Call<long>((result, error) => NativeMethods.brix_extents_voxel_lod(Pointer, result, error));

    /// <summary>Whether the box contains a voxel.</summary>
    /// <param name="voxelIndices">three voxel indices at the box's level</param>
    /// <exception cref="Exception">there are fewer than three indices</exception>
    public bool ContainsVoxel(List<int> voxelIndices) =>
        Engine.Call<IndexTriple, int>(IndexTriple.Of(voxelIndices, nameof(voxelIndices)), (indices, result, error) =>
            NativeMethods.brix_extents_contains_voxel(Pointer, indices, result, error)) != 0;

    /// <summary>The voxel of the box that is nearest to a voxel: the voxel itself when the box contains it.</summary>
    /// <param name="voxelIndices">three voxel indices at the box's level</param>
    /// <returns>three voxel indices</returns>
    /// <exception cref="Exception">there are fewer than three indices</exception>
    public List<int> ClosestVoxel(List<int> voxelIndices) =>
        Engine.Call<IndexTriple, IndexTriple>(IndexTriple.Of(voxelIndices, nameof(voxelIndices)), (indices, result, error) =>
            NativeMethods.brix_extents_closest_voxel(Pointer, indices, result, error)).ToList();

    /// <summary>The same region at another level: exact at a finer one, the smallest box that covers it at a coarser
    /// one.</summary>
    /// <param name="newLOD">0 to 5</param>
    /// <exception cref="Exception">the level does not exist</exception>
    public ExtentsCLI RescaledCopy(int newLOD) => new ExtentsCLI(
        Engine.Call<IntPtr>((result, error) => NativeMethods.brix_extents_rescaled_copy(Pointer, newLOD, result, error)));

    /// <summary>The number of voxels in the box; a double, as it can be larger than any integer type.</summary>
    public double VoxelCount() =>
        Engine.Call<double>((result, error) => NativeMethods.brix_extents_voxel_count(Pointer, result, error));
}
