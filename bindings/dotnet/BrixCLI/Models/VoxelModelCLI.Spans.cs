#if NET // .NET Standard has no spans without a package
using System;

namespace BrixCLI;

// What takes arrays, of memory of any kind.
public sealed unsafe partial class VoxelModelCLI
{
    /// <inheritdoc cref="Voxelize(double[], int[], AxesCLI, int)"/>
    public static VoxelModelCLI Voxelize(ReadOnlySpan<double> vertices, ReadOnlySpan<int> indices, AxesCLI axesCLI, int finestLOD)
    {
        axesCLI.Required();
        var size = new MeshSize(Triples(vertices.Length, "vertex coordinates"), Triples(indices.Length, "vertex indices"));
        fixed (double* firstVertex = vertices)
        fixed (int* firstIndex = indices) return Voxelize(firstVertex, firstIndex, size, axesCLI, finestLOD);
    }

    /// <inheritdoc cref="Voxelize(double[], int[], AxesCLI, int)"/>
    public static VoxelModelCLI Voxelize(ReadOnlySpan<float> vertices, ReadOnlySpan<int> indices, AxesCLI axesCLI, int finestLOD)
    {
        axesCLI.Required();
        var size = new MeshSize(Triples(vertices.Length, "vertex coordinates"), Triples(indices.Length, "vertex indices"));
        fixed (float* firstVertex = vertices)
        fixed (int* firstIndex = indices) return Voxelize(firstVertex, firstIndex, size, axesCLI, finestLOD);
    }

    /// <inheritdoc cref="AreFilledAt(double[], int)"/>
    public bool[] AreFilledAt(ReadOnlySpan<double> pointCoords, int voxelLOD)
    {
        int count = Triples(pointCoords.Length, "point coordinates");
        fixed (double* points = pointCoords) return AreFilledAt(points, count, voxelLOD);
    }

    /// <inheritdoc cref="AreFilled(long[], int)"/>
    public bool[] AreFilled(ReadOnlySpan<long> voxelIndices, int voxelLOD)
    {
        int count = Triples(voxelIndices.Length, "voxel indices");
        fixed (long* indices = voxelIndices) return AreFilled(indices, count, voxelLOD);
    }

    /// <summary>The same into memory that is there.</summary>
    /// <param name="boxCLI">the box, as above</param>
    /// <param name="voxels">a byte for each voxel of the box</param>
    /// <exception cref="Exception">as above; there are not as many bytes as the box has voxels</exception>
    public void CopyVoxels(ExtentsCLI boxCLI, Span<byte> voxels)
    {
        boxCLI.Required();
        byte nothing = 0; // there is an address for no bytes, too
        fixed (byte* bytes = voxels) CopyVoxels(boxCLI, bytes == null ? &nothing : bytes, voxels.Length);
    }

    /// <inheritdoc cref="WriteVoxels(ExtentsCLI, byte[])"/>
    public VoxelModelCLI WriteVoxels(ExtentsCLI boxCLI, ReadOnlySpan<byte> voxels)
    {
        boxCLI.Required();
        fixed (byte* bytes = voxels) return WriteVoxels(boxCLI, bytes, voxels.Length);
    }

    /// <inheritdoc cref="FromVoxels(ExtentsCLI, byte[], int)"/>
    public static VoxelModelCLI FromVoxels(ExtentsCLI extentsCLI, ReadOnlySpan<byte> voxels, int finestLOD)
    {
        extentsCLI.Required();
        fixed (byte* bytes = voxels) return FromVoxels(extentsCLI, bytes, voxels.Length, finestLOD);
    }

    /// <inheritdoc cref="Load(byte[])"/>
    public static VoxelModelCLI Load(ReadOnlySpan<byte> saved)
    {
        fixed (byte* bytes = saved) return Load(bytes, saved.Length);
    }
}
#endif
