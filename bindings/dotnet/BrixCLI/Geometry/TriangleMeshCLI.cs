using System;
using System.Collections.Generic;

namespace BrixCLI;

/// <summary>A triangle mesh: vertices in world units, and three vertex indices per triangle. It never changes.</summary>
public sealed unsafe class TriangleMeshCLI : EngineObject
{
    private IntPtr triangleMeshPtr_ = IntPtr.Zero;

    /// <summary>A mesh of triangles; corners that are exactly equal become one vertex, in order of first use.</summary>
    /// <param name="trianglesAsNineNumbers">nine numbers per triangle, in world units</param>
    /// <exception cref="Exception">the number of numbers is not divisible by nine</exception>
    public TriangleMeshCLI(List<double> trianglesAsNineNumbers)
    {
        int count = TrianglesAsNineNumbersCLI.CountOf(trianglesAsNineNumbers);
        triangleMeshPtr_ = NumberLists.WithItems<IntPtr>(trianglesAsNineNumbers, (triangles, result, error) =>
            NativeMethods.brix_mesh_from_triangles(triangles, count, result, error));
    }

    /// <summary>A mesh of these vertices and triangles; equal vertices stay as they are given.</summary>
    /// <param name="vertices">three doubles per vertex, in world units</param>
    /// <param name="indices">three vertex indices per triangle, from 0 on</param>
    /// <exception cref="Exception">a list is null; the number of indices, or of coordinates, is not divisible by three; an index
    /// is negative or not less than the number of vertices</exception>
    public TriangleMeshCLI(List<double> vertices, List<int> indices)
    {
        int vertexCount = Arguments.Required(vertices, nameof(vertices)).Count / 3;
        int triangleCount = Arguments.Required(indices, nameof(indices)).Count / 3;
        Arguments.RequireDivisible(indices.Count, 3, Arguments.IndicesOfThree);
        Arguments.RequireDivisible(vertices.Count, 3, Arguments.VerticesOfThree);
        triangleMeshPtr_ = NumberLists.WithItems<IntPtr>(vertices, (coords, result, error) => NumberLists.Pinned<int, int>(
            indices, items => NativeMethods.brix_mesh_create(coords, vertexCount, items, triangleCount, result, error)));
    }

    internal TriangleMeshCLI(IntPtr triangleMesh) => triangleMeshPtr_ = triangleMesh;

    private protected override ref IntPtr Field => ref triangleMeshPtr_;

    private protected override void Free(IntPtr pointer) => NativeMethods.brix_mesh_free(pointer);

    /// <summary>The vertices.</summary>
    /// <returns>three doubles per vertex, in world units</returns>
    /// <exception cref="Exception">no list can hold them, or there is not enough memory</exception>
    public List<double> Vertices()
    {
        long count = Size().Vertices;
        return NumberLists.Filled<double>(SizeLimits.ListLength(count, 3), items => Engine.Call<int>(
            (_, error) => NativeMethods.brix_mesh_copy_vertices(Pointer, 0, count, items, error)));
    }

    /// <summary>The triangles as indices into the vertices.</summary>
    /// <returns>three integers per triangle</returns>
    /// <exception cref="Exception">no list can hold them, or there is not enough memory</exception>
    public List<int> Indices()
    {
        long count = Size().Triangles;
        return NumberLists.Filled<int>(SizeLimits.ListLength(count, 3), items => Engine.Call<int>(
            (_, error) => NativeMethods.brix_mesh_copy_indices(Pointer, 0, count, items, error)));
    }

    /// <summary>A direction outwards for each vertex of a smooth surface mesh, of length 1.</summary>
    /// <returns>three floats per vertex; none for any other mesh</returns>
    /// <exception cref="Exception">no list can hold them, or there is not enough memory</exception>
    public List<float> Normals()
    {
        long count = Engine.Call<long>((result, error) => NativeMethods.brix_mesh_normal_count(Pointer, result, error));
        return NumberLists.Filled<float>(SizeLimits.ListLength(count, 3), items => Engine.Call<int>(
            (_, error) => NativeMethods.brix_mesh_copy_normals(Pointer, 0, count, items, error)));
    }

    /// <summary>The triangles with their corners' coordinates.</summary>
    /// <returns>nine doubles per triangle, in world units</returns>
    /// <exception cref="Exception">no list can hold them, or there is not enough memory</exception>
    public List<double> TrianglesAsNineNumbers()
    {
        long count = Size().Triangles;
        return NumberLists.Filled<double>(SizeLimits.ListLength(count, 9), items => Engine.Call<int>(
            (_, error) => NativeMethods.brix_mesh_copy_triangles(Pointer, 0, count, items, error)));
    }

    private struct Counts
    {
        internal long Vertices, Triangles;
    }

    private Counts Size() => Engine.Call<Counts>((size, error) =>
        NativeMethods.brix_mesh_size(Pointer, &size->Vertices, &size->Triangles, error));
}
