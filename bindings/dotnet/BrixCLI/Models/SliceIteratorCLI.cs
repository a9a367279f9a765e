using System;
using System.Collections.Generic;

namespace BrixCLI;

/// <summary>
/// A slice through a model, one voxel thick, perpendicular to an axis. It never changes; <see cref="Advance"/> returns another
/// one.
/// </summary>
/// <remarks>
/// Like a voxel iterator, it works on after the model's wrapper was disposed of and keeps the memory of the voxels until then.
/// </remarks>
public sealed unsafe class SliceIteratorCLI : EngineObject
{
    private IntPtr voxelIterPtr_ = IntPtr.Zero;
    private readonly int dimIndex_;

    /// <summary>A slice.</summary>
    /// <param name="voxelModelCLI">the model</param>
    /// <param name="dimIndex">the axis that the slice is perpendicular to: 0 for X, 1 for Y, 2 for Z</param>
    /// <param name="sliceIndex">the voxel index along that axis; outside the model's extents, the iterator is not valid</param>
    /// <param name="voxelLOD">the level that the index belongs to, 0 to the model's finest one</param>
    /// <exception cref="Exception">the model is null or disposed of; there is no such axis; the level is negative; it is beyond
    /// the model's finest one</exception>
    public SliceIteratorCLI(VoxelModelCLI voxelModelCLI, int dimIndex, int sliceIndex, int voxelLOD)
    {
        voxelModelCLI.Required();
        if (dimIndex < 0 || dimIndex > 2) {
            throw new Exception("The dimension index of a slice must be 0, 1 or 2. The value encountered was " + dimIndex + ".");
        }
        dimIndex_ = dimIndex;
        using ExtentsCLI extents = voxelModelCLI.Extents(voxelLOD);
        voxelIterPtr_ = VoxelIterators.Create(voxelModelCLI, extents.Bounds.Lower.With(dimIndex, sliceIndex), voxelLOD);
    }

    private SliceIteratorCLI(IntPtr voxelIterator, int dimIndex)
    {
        voxelIterPtr_ = voxelIterator;
        dimIndex_ = dimIndex;
    }

    private protected override ref IntPtr Field => ref voxelIterPtr_;

    private protected override void Free(IntPtr pointer) => NativeMethods.brix_iterator_free(pointer);

    /// <summary>Throws when the slice lies outside the model's extents, as do all members but VoxelLOD and IsValid.</summary>
    /// <exception cref="Exception">the iterator is not valid</exception>
    public void Validate()
    {
        if (IsValid()) return;
        throw new Exception("Attempt to operate on a slice iterator that points outside the voxel model extents.");
    }

    /// <summary>The level of detail of the slice, also when the iterator is not valid.</summary>
    public int VoxelLOD() => VoxelIterators.VoxelLOD(this);

    /// <summary>Whether the slice lies inside the model's extents.</summary>
    public bool IsValid() => VoxelIterators.IsValid(this);

    /// <summary>The lowest index of the slice along each axis.</summary>
    /// <returns>three voxel indices</returns>
    /// <exception cref="Exception">the iterator is not valid</exception>
    public List<int> LowerIndices() => Bounds().Lower.ToList();

    /// <summary>The highest index of the slice along each axis.</summary>
    /// <returns>three voxel indices</returns>
    /// <exception cref="Exception">the iterator is not valid</exception>
    public List<int> UpperIndices() => Bounds().Upper.ToList();

    /// <summary>Another slice, so many voxels further along the axis; outside the model's extents, it is not valid.</summary>
    /// <param name="offset">number of voxels</param>
    /// <exception cref="Exception">this iterator is not valid</exception>
    public SliceIteratorCLI Advance(int offset)
    {
        Validate();
        return new SliceIteratorCLI(VoxelIterators.Advance(this, default(IndexTriple).With(dimIndex_, offset)), dimIndex_);
    }

    /// <summary>The voxels of the slice: for axis X rows of ascending z along y, for Y of ascending z along x, for Z of ascending
    /// y along x.</summary>
    /// <param name="startAtUpperRow">true: the row of the highest index comes first</param>
    /// <param name="startAtUpperColumn">true: each row starts with its highest index</param>
    /// <returns>an array per row; true where the voxel is filled</returns>
    /// <exception cref="Exception">the iterator is not valid; there is not enough memory</exception>
    public bool[][] SliceBools(bool startAtUpperRow, bool startAtUpperColumn)
    {
        List<List<bool>> rows = SliceData(startAtUpperRow, startAtUpperColumn);
        var bools = new bool[rows.Count][];
        for (int i = 0; i < bools.Length; ++i) bools[i] = rows[i].ToArray();
        return bools;
    }

    /// <summary>The same as lists.</summary>
    /// <param name="startAtUpperRow">true: the row of the highest index comes first</param>
    /// <param name="startAtUpperColumn">true: each row starts with its highest index</param>
    /// <returns>a list per row; true where the voxel is filled</returns>
    /// <exception cref="Exception">the iterator is not valid; there is not enough memory</exception>
    public List<List<bool>> SliceData(bool startAtUpperRow, bool startAtUpperColumn)
    {
        Validate();
        long sliceIndex = VoxelIterators.Indices(this).Component(dimIndex_);
        using VoxelModelCLI model = VoxelIterators.Model(this);
        IntPtr rows = Engine.Call<IntPtr>((result, error) => NativeMethods.brix_rows_at_slice(model.Pointer, dimIndex_,
            sliceIndex, VoxelLOD(), Engine.Flag(startAtUpperRow), Engine.Flag(startAtUpperColumn), result, error));
        try {
            return ToLists(rows);
        } finally {
            NativeMethods.brix_rows_free(rows);
        }
    }

    /// <summary>The box of the slice.</summary>
    /// <exception cref="Exception">the iterator is not valid</exception>
    public ExtentsCLI SliceExtents()
    {
        using ExtentsCLI extents = ModelExtents();
        return new ExtentsCLI(extents.Frame, SliceOf(extents), VoxelLOD());
    }

    /// <summary>A model of the slice alone.</summary>
    /// <exception cref="Exception">the iterator is not valid</exception>
    public VoxelModelCLI SliceVoxels()
    {
        using ExtentsCLI extents = SliceExtents();
        using VoxelModelCLI model = VoxelIterators.Model(this);
        return BasicOperationsCLI.Resize(model, extents);
    }

    private IndexBox Bounds()
    {
        using ExtentsCLI extents = ModelExtents();
        return SliceOf(extents);
    }

    private ExtentsCLI ModelExtents()
    {
        Validate();
        using VoxelModelCLI model = VoxelIterators.Model(this);
        return model.Extents(VoxelLOD());
    }

    private IndexBox SliceOf(ExtentsCLI extents)
    {
        long sliceIndex = VoxelIterators.Indices(this).Component(dimIndex_);
        IndexBox bounds = extents.Bounds;
        return new IndexBox { Lower = bounds.Lower.With(dimIndex_, sliceIndex),
            Upper = bounds.Upper.With(dimIndex_, sliceIndex) };
    }

    private struct RowCounts
    {
        internal long Rows, Length;
    }

    private static List<List<bool>> ToLists(IntPtr rows)
    {
        RowCounts size = Engine.Call<RowCounts>((counts, error) =>
            NativeMethods.brix_rows_size(rows, &counts->Rows, &counts->Length, error));
        int rowCount = SizeLimits.ListLength(size.Rows, 1);
        int length = SizeLimits.ListLength(size.Length, 1);
        MemoryLimitCLI.RequireForLists(2.0 * rowCount * (length + 64.0)); // SliceBools has arrays beside the lists
        var lists = new List<List<bool>>(rowCount);
        for (long row = 0; row < size.Rows; ++row) {
            // The engine writes a byte of 0 or 1 per voxel, which is what the runtime keeps for a bool.
            lists.Add(NumberLists.Filled<bool>(length, items => Engine.Call<int>(
                (_, error) => NativeMethods.brix_rows_copy(rows, row, 1, (byte*)items, error))));
        }
        return lists;
    }
}
