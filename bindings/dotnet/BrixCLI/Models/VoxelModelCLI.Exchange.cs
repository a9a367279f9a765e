using System;
using System.Collections.Generic;
using System.IO;
using System.Runtime.ExceptionServices;
using System.Runtime.InteropServices;

namespace BrixCLI;

// Voxels and models from and to arrays and streams.
public sealed unsafe partial class VoxelModelCLI
{
    /// <summary>As for a list of triangles, of an indexed mesh, which is not copied.</summary>
    /// <param name="vertices">three numbers per vertex, in world units</param>
    /// <param name="indices">three indices per triangle, counted from 0</param>
    /// <param name="axesCLI">the frame</param>
    /// <param name="finestLOD">the model's finest level, 0 to 5</param>
    /// <exception cref="Exception">the frame is null or disposed of; an array is null, or its length not divisible by three; an
    /// index is negative or beyond the vertices; then as for triangles</exception>
    public static VoxelModelCLI Voxelize(double[] vertices, int[] indices, AxesCLI axesCLI, int finestLOD)
    {
        axesCLI.Required();
        var size = new MeshSize(Triples(vertices, "vertex coordinates"), Triples(indices, "vertex indices"));
        fixed (double* firstVertex = vertices)
        fixed (int* firstIndex = indices) return Voxelize(firstVertex, firstIndex, size, axesCLI, finestLOD);
    }

    /// <inheritdoc cref="Voxelize(double[], int[], AxesCLI, int)"/>
    public static VoxelModelCLI Voxelize(float[] vertices, int[] indices, AxesCLI axesCLI, int finestLOD)
    {
        axesCLI.Required();
        var size = new MeshSize(Triples(vertices, "vertex coordinates"), Triples(indices, "vertex indices"));
        fixed (float* firstVertex = vertices)
        fixed (int* firstIndex = indices) return Voxelize(firstVertex, firstIndex, size, axesCLI, finestLOD);
    }

    private readonly struct MeshSize(int vertices, int triangles)
    {
        internal readonly int Vertices = vertices, Triangles = triangles;
    }

    private static VoxelModelCLI Voxelize(double* vertices, int* indices, MeshSize size, AxesCLI axes, int finestLOD) =>
        new VoxelModelCLI((result, error) => NativeMethods.brix_voxelize_mesh(axes.Pointer, vertices, size.Vertices, indices,
            size.Triangles, finestLOD, result, error));

    private static VoxelModelCLI Voxelize(float* vertices, int* indices, MeshSize size, AxesCLI axes, int finestLOD) =>
        new VoxelModelCLI((result, error) => NativeMethods.brix_voxelize_float_mesh(axes.Pointer, vertices, size.Vertices,
            indices, size.Triangles, finestLOD, result, error));

    /// <summary>Bytes that no model on a box exceeds, whatever is filled. Real models stay far below.</summary>
    /// <param name="extentsCLI">the box</param>
    /// <param name="finestLOD">the model's finest level, 0 to 5</param>
    /// <exception cref="Exception">the box is null or disposed of; the level does not exist</exception>
    public static double MostBytes(ExtentsCLI extentsCLI, int finestLOD) => Engine.Call<double>((result, error) =>
        NativeMethods.brix_most_bytes_of_model(extentsCLI.Required(), finestLOD, result, error));

    /// <summary>Whether the voxels that hold points are filled, many at once.</summary>
    /// <param name="pointCoords">three numbers per point, in world units; points outside the model are not in filled
    /// voxels</param>
    /// <param name="voxelLOD">the level of the voxels, 0 to the finest one</param>
    /// <returns>an answer for each point, in their order</returns>
    /// <exception cref="Exception">the array is null; its length is not divisible by three; the level is negative; it is beyond
    /// the finest one</exception>
    public bool[] AreFilledAt(double[] pointCoords, int voxelLOD)
    {
        int count = Triples(pointCoords, "point coordinates");
        fixed (double* points = pointCoords) return AreFilledAt(points, count, voxelLOD);
    }

    /// <inheritdoc cref="AreFilledAt(double[], int)"/>
    public bool[] AreFilledAt(List<double> pointCoords, int voxelLOD)
    {
        if (pointCoords is null) throw new Exception("The list of point coordinates cannot be null.");
        int count = Triples(pointCoords.Count, "point coordinates");
        return NumberLists.Pinned<double, bool[]>(pointCoords, points => AreFilledAt(points, count, voxelLOD));
    }

    private bool[] AreFilledAt(double* points, int count, int voxelLOD)
    {
        var filled = new bool[count];
        fixed (bool* results = filled) {
            byte* result = (byte*)results; // lambdas cannot hold fixed variables
            Engine.Call<int>((_, error) => NativeMethods.brix_are_filled_at(Pointer, points, count, voxelLOD, result, error));
        }
        return filled;
    }

    /// <summary>The voxels of a box, a byte each: 1 where they are filled, 0 where they are not or lie outside the model. X is
    /// fastest, then y, then z.</summary>
    /// <param name="boxCLI">the box, at a level that the model holds; it may reach beyond the model</param>
    /// <exception cref="Exception">the box is null or disposed of; it has more voxels than an array has items; it is of another
    /// frame; its level is beyond the finest one</exception>
    public byte[] CopyVoxels(ExtentsCLI boxCLI)
    {
        var voxels = new byte[ArrayLength(boxCLI)];
        fixed (byte* bytes = voxels) CopyVoxels(boxCLI, bytes, voxels.Length);
        return voxels;
    }

    /// <summary>The same as true and false.</summary>
    /// <inheritdoc cref="CopyVoxels(ExtentsCLI)"/>
    public bool[] CopyVoxelsAsBooleans(ExtentsCLI boxCLI)
    {
        var voxels = new bool[ArrayLength(boxCLI)];
        fixed (bool* booleans = voxels) CopyVoxels(boxCLI, (byte*)booleans, voxels.Length);
        return voxels;
    }

    /// <summary>The same into a part of an array, a volume that is larger than the box for example.</summary>
    /// <param name="boxCLI">the box, as above</param>
    /// <param name="voxels">the array; nothing is written between rows and layers</param>
    /// <param name="first">where the box's lowest voxel goes</param>
    /// <param name="strideY">from one row to the next</param>
    /// <param name="strideZ">from one layer to the next</param>
    /// <exception cref="Exception">as above; the array is null, or ends before the box's last voxel; a number is
    /// negative</exception>
    public void CopyVoxels(ExtentsCLI boxCLI, byte[] voxels, int first, int strideY, int strideZ)
    {
        boxCLI.Required();
        fixed (byte* bytes = &voxels[Place(voxels, first)]) {
            byte* start = bytes;
            Engine.Call<int>((_, error) => NativeMethods.brix_copy_voxels_strided(Pointer, boxCLI.Pointer, start,
                voxels.Length - first, strideY, strideZ, error));
        }
    }

    private static int Place(byte[] voxels, int first)
    {
        if (voxels is null) throw new Exception("The array of voxels cannot be null.");
        if (first < 0 || first >= voxels.Length) throw new Exception("The place of the first voxel must lie in the array.");
        return first;
    }

    private void CopyVoxels(ExtentsCLI box, byte* bytes, int count) => Engine.Call<int>((_, error) =>
        NativeMethods.brix_copy_voxels(Pointer, box.Pointer, bytes, count, error));

    // How long an array for the voxels of a box is.
    private static int ArrayLength(ExtentsCLI box)
    {
        box.Required();
        double count = box.VoxelCount();
        if (count > SizeLimits.MaxItems)
            throw new Exception("A box of " + count + " voxels exceeds the " + SizeLimits.MaxItems +
                " items that the .NET runtime allows in an array.");
        MemoryLimitCLI.RequireForLists(count);
        return (int)count;
    }

    /// <summary>A copy of the model in which the voxels of a box are written.</summary>
    /// <param name="boxCLI">the box, inside the model and at a level that it holds; all levels follow</param>
    /// <param name="voxels">a byte for each voxel of the box, x fastest, then y, then z: not 0 is filled</param>
    /// <exception cref="Exception">the box is null or disposed of; the array is null, or has another length than the box has
    /// voxels; the box is of another frame, at another level, or reaches beyond the model</exception>
    public VoxelModelCLI WriteVoxels(ExtentsCLI boxCLI, byte[] voxels)
    {
        boxCLI.Required();
        if (voxels is null) throw new Exception("The array of voxels cannot be null.");
        fixed (byte* bytes = voxels) return WriteVoxels(boxCLI, bytes, voxels.Length);
    }

    /// <inheritdoc cref="WriteVoxels(ExtentsCLI, byte[])"/>
    public VoxelModelCLI WriteVoxels(ExtentsCLI boxCLI, bool[] voxels)
    {
        boxCLI.Required();
        if (voxels is null) throw new Exception("The array of voxels cannot be null.");
        fixed (bool* booleans = voxels) return WriteVoxels(boxCLI, (byte*)booleans, voxels.Length);
    }

    /// <summary>The same from a part of an array, a volume that is larger than the box for example.</summary>
    /// <param name="boxCLI">the box, as above</param>
    /// <param name="voxels">the array; what lies between rows and layers is not read</param>
    /// <param name="first">where the box's lowest voxel is</param>
    /// <param name="strideY">from one row to the next</param>
    /// <param name="strideZ">from one layer to the next</param>
    /// <exception cref="Exception">as above; the array is null, or ends before the box's last voxel; a number is
    /// negative</exception>
    public VoxelModelCLI WriteVoxels(ExtentsCLI boxCLI, byte[] voxels, int first, int strideY, int strideZ)
    {
        boxCLI.Required();
        fixed (byte* bytes = &voxels[Place(voxels, first)]) {
            return FromBytes(bytes, (start, result, error) => NativeMethods.brix_write_voxels_strided(Pointer, boxCLI.Pointer,
                start, voxels.Length - first, strideY, strideZ, result, error));
        }
    }

    private VoxelModelCLI WriteVoxels(ExtentsCLI box, byte* voxels, int count) => FromBytes(voxels, (bytes, result, error) =>
        NativeMethods.brix_write_voxels(Pointer, box.Pointer, bytes, count, result, error));

    /// <summary>Visits the runs of filled voxels along x at a level, in lattice order: z outermost, then y, then x.</summary>
    /// <param name="voxelLOD">0 to the finest level</param>
    /// <param name="visit">gets the first and the last index along x, then y and z. What it throws ends the visit.</param>
    /// <exception cref="Exception">the visitor is null; the level is negative; it is beyond the finest one</exception>
    public void ForEachFilledRun(int voxelLOD, Action<int, int, int, int> visit)
    {
        if (visit is null) throw new Exception("The visitor of runs cannot be null.");
        ExceptionDispatchInfo? failure = null;
        NativeMethods.RunVisitor visitor = (_, runs, count) => {
            try {
                for (long i = 0; i < count; ++i, runs += 4) visit((int)runs[0], (int)runs[1], (int)runs[2], (int)runs[3]);
                return 0;
            } catch (Exception exception) { // none can go through the engine
                failure = ExceptionDispatchInfo.Capture(exception);
                return 1;
            }
        };
        IntPtr pointer = Marshal.GetFunctionPointerForDelegate(visitor);
        Engine.Call<int>((_, error) => NativeMethods.brix_for_each_filled_run(Pointer, voxelLOD, pointer, IntPtr.Zero, error));
        GC.KeepAlive(visitor);
        failure?.Throw();
    }

    /// <summary>A model on a box, filled where a byte is not 0; all its levels follow from that of the box.</summary>
    /// <param name="extentsCLI">the box</param>
    /// <param name="voxels">a byte for each voxel of the box at its level, x fastest, then y, then z</param>
    /// <param name="finestLOD">the model's finest level, from the box's level to 5</param>
    /// <exception cref="Exception">the box is null or disposed of; the array is null, or has another length than the box has
    /// voxels; the level does not exist, or is below that of the box</exception>
    public static VoxelModelCLI FromVoxels(ExtentsCLI extentsCLI, byte[] voxels, int finestLOD)
    {
        extentsCLI.Required();
        if (voxels is null) throw new Exception("The array of voxels cannot be null.");
        fixed (byte* bytes = voxels) return FromVoxels(extentsCLI, bytes, voxels.Length, finestLOD);
    }

    /// <inheritdoc cref="FromVoxels(ExtentsCLI, byte[], int)"/>
    public static VoxelModelCLI FromVoxels(ExtentsCLI extentsCLI, bool[] voxels, int finestLOD)
    {
        extentsCLI.Required();
        if (voxels is null) throw new Exception("The array of voxels cannot be null.");
        fixed (bool* booleans = voxels) return FromVoxels(extentsCLI, (byte*)booleans, voxels.Length, finestLOD);
    }

    private static VoxelModelCLI FromVoxels(ExtentsCLI box, byte* voxels, int count, int finestLOD) => FromBytes(voxels,
        (bytes, result, error) => NativeMethods.brix_model_from_voxels(box.Pointer, bytes, count, finestLOD, result, error));

    /// <summary>The model as bytes, for a file, a database or another process. Equal models give equal bytes, on every
    /// platform.</summary>
    /// <exception cref="Exception">the bytes do not fit an array: use <see cref="Save(Stream)"/></exception>
    public byte[] Save()
    {
        using var stream = new MemoryStream();
        Save(stream);
        return stream.ToArray();
    }

    /// <summary>Writes the model to a stream.</summary>
    /// <param name="stream">a stream that can be written to; it stays open</param>
    /// <exception cref="Exception">the stream is null; it fails, which is the inner exception</exception>
    public void Save(Stream stream)
    {
        if (stream is null) throw new Exception("The stream cannot be null.");
        NativeBytes.WriteTo(stream, "The voxel model",
            Engine.Call<IntPtr>((result, error) => NativeMethods.brix_save_model(Pointer, result, error)));
    }

    /// <summary>The model that was saved.</summary>
    /// <param name="saved">what <see cref="Save()"/> gave</param>
    /// <exception cref="Exception">the array is null; the bytes are not a saved model, cut off or damaged</exception>
    public static VoxelModelCLI Load(byte[] saved)
    {
        if (saved is null) throw new Exception("The array of bytes cannot be null.");
        return Load(saved, saved.Length);
    }

    /// <summary>The model that was saved, from the rest of a stream.</summary>
    /// <param name="stream">a stream that ends with the model; it stays open</param>
    /// <exception cref="Exception">the stream is null; it fails, which is the inner exception; what it holds is not a saved
    /// model, cut off or damaged</exception>
    public static VoxelModelCLI Load(Stream stream)
    {
        if (stream is null) throw new Exception("The stream cannot be null.");
        using MemoryStream saved = NativeBytes.ReadFrom(stream, "The voxel model");
        return Load(saved.GetBuffer(), (int)saved.Length);
    }

    private static VoxelModelCLI Load(byte[] buffer, int length)
    {
        fixed (byte* bytes = buffer) return Load(bytes, length);
    }

    private static VoxelModelCLI Load(byte* saved, int length) => FromBytes(saved, (bytes, result, error) =>
        NativeMethods.brix_load_model(bytes, length, result, error));

    /// <summary>Writes the voxels of a level as an array that numpy.load reads: bytes with the shape (z, y, x), 1 where one is
    /// filled, counted from the lower corner of the extents; or packed, eight voxels along x in a byte, as numpy.unpackbits takes
    /// them along the axis 2. The file is held in memory while it is written.</summary>
    /// <param name="stream">a stream that can be written to; it stays open</param>
    /// <param name="voxelLOD">the level</param>
    /// <param name="packBits">whether eight voxels share a byte</param>
    /// <exception cref="Exception">the stream is null; the level does not exist; memory runs out; the stream fails, which is the
    /// inner exception</exception>
    public void SaveNpy(Stream stream, int voxelLOD, bool packBits = false)
    {
        if (stream is null) throw new Exception("The stream cannot be null.");
        NativeBytes.WriteTo(stream, "The NumPy array", Engine.Call<IntPtr>((result, error) =>
            NativeMethods.brix_save_npy(Pointer, voxelLOD, Engine.Flag(packBits), result, error)));
    }

    /// <summary>Writes the voxels of a level as a volume in the format NRRD, uncompressed, with its place in the world, which
    /// viewers of volumes read.</summary>
    /// <inheritdoc cref="SaveNpy"/>
    public void SaveNrrd(Stream stream, int voxelLOD)
    {
        if (stream is null) throw new Exception("The stream cannot be null.");
        NativeBytes.WriteTo(stream, "The NRRD volume", Engine.Call<IntPtr>((result, error) =>
            NativeMethods.brix_save_nrrd(Pointer, voxelLOD, result, error)));
    }

    /// <summary>128 bits of the model's content, frame, box, levels and voxels: the same for equal models, on every platform, and
    /// different for others.</summary>
    /// <returns>16 bytes</returns>
    public byte[] ContentHash()
    {
        var hash = new byte[16];
        fixed (byte* bytes = hash) {
            byte* first = bytes;
            Engine.Call<int>((_, error) => NativeMethods.brix_content_hash(Pointer, first, error));
        }
        return hash;
    }

    // There is an address for no bytes, too.
    private static VoxelModelCLI FromBytes(byte* bytes, NativeCall<byte, IntPtr> make)
    {
        byte nothing = 0;
        return new VoxelModelCLI(Engine.CallAt(bytes == null ? &nothing : bytes, make));
    }

    // How many threes there are.
    private static int Triples(Array numbers, string name) =>
        numbers is null ? throw new Exception("The list of " + name + " cannot be null.") : Triples(numbers.Length, name);

    private static int Triples(int length, string name) => length % 3 == 0
        ? length / 3
        : throw new Exception("The number of " + name + " must be divisible by three.");
}
