using System;
using System.IO;

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
        int vertexCount = Triples(vertices, "vertex coordinates");
        int triangleCount = Triples(indices, "vertex indices");
        fixed (double* vertex = vertices)
        fixed (int* index = indices) {
            double* firstVertex = vertex; // lambdas cannot hold fixed variables
            int* firstIndex = index;
            return new VoxelModelCLI((result, error) => NativeMethods.brix_voxelize_mesh(axesCLI.Pointer, firstVertex,
                vertexCount, firstIndex, triangleCount, finestLOD, result, error));
        }
    }

    /// <summary>Whether the voxels that hold points are filled, many at once.</summary>
    /// <param name="pointCoords">three numbers per point, in world units; points outside the model are not in filled
    /// voxels</param>
    /// <param name="voxelLOD">the level of the voxels, 0 to the finest one</param>
    /// <returns>an answer for each point, in their order</returns>
    /// <exception cref="Exception">the array is null; its length is not divisible by three; the level is negative; it is beyond
    /// the finest one</exception>
    public bool[] AreFilledAt(double[] pointCoords, int voxelLOD)
    {
        var filled = new bool[Triples(pointCoords, "point coordinates")];
        fixed (double* points = pointCoords)
        fixed (bool* results = filled) {
            double* first = points;
            byte* result = (byte*)results;
            Engine.Call<int>((_, error) =>
                NativeMethods.brix_are_filled_at(Pointer, first, filled.Length, voxelLOD, result, error));
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
        boxCLI.Required();
        double count = boxCLI.VoxelCount();
        if (count > SizeLimits.MaxItems)
            throw new Exception("A box of " + count + " voxels exceeds the " + SizeLimits.MaxItems +
                " items that the .NET runtime allows in an array.");
        MemoryLimitCLI.RequireForLists(count);
        var voxels = new byte[(int)count];
        fixed (byte* bytes = voxels) {
            byte* first = bytes;
            Engine.Call<int>((_, error) =>
                NativeMethods.brix_copy_voxels(Pointer, boxCLI.Pointer, first, voxels.Length, error));
        }
        return voxels;
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
        return FromBytes(voxels, (bytes, result, error) =>
            NativeMethods.brix_model_from_voxels(extentsCLI.Pointer, bytes, voxels.Length, finestLOD, result, error));
    }

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
        IntPtr saved = Engine.Call<IntPtr>((result, error) => NativeMethods.brix_save_model(Pointer, result, error));
        try {
            long size = Engine.Call<long>((result, error) => NativeMethods.brix_bytes_size(saved, result, error));
            var part = new byte[(int)Math.Min(size, 1 << 20)];
            for (long first = 0; first < size; first += part.Length) {
                int count = (int)Math.Min(part.Length, size - first);
                fixed (byte* bytes = part) {
                    byte* destination = bytes;
                    long start = first;
                    Engine.Call<int>((_, error) => NativeMethods.brix_bytes_copy(saved, start, count, destination, error));
                }
                Streamed("written to", () => stream.Write(part, 0, count));
            }
        } finally {
            NativeMethods.brix_bytes_free(saved);
        }
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
        using var saved = new MemoryStream();
        Streamed("read from", () => stream.CopyTo(saved));
        return Load(saved.GetBuffer(), (int)saved.Length);
    }

    private static VoxelModelCLI Load(byte[] buffer, int length) => FromBytes(buffer, (bytes, result, error) =>
        NativeMethods.brix_load_model(bytes, length, result, error));

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

    private static VoxelModelCLI FromBytes(byte[] array, NativeCall<byte, IntPtr> make)
    {
        byte nothing = 0; // there is an address for an empty array, too
        fixed (byte* bytes = array) return new VoxelModelCLI(Engine.CallAt(array.Length == 0 ? &nothing : bytes, make));
    }

    // What a stream throws becomes a System.Exception.
    private static void Streamed(string verb, Action use)
    {
        try {
            use();
        } catch (Exception exception) {
            throw new Exception("The voxel model cannot be " + verb + " the stream. " + exception.Message, exception);
        }
    }

    // How many threes an array has.
    private static int Triples(Array numbers, string name)
    {
        if (numbers is null) throw new Exception("The list of " + name + " cannot be null.");
        if (numbers.Length % 3 != 0) throw new Exception("The number of " + name + " must be divisible by three.");
        return numbers.Length / 3;
    }
}
