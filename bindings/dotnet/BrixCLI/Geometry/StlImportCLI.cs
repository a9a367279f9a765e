using System;
using System.Collections.Generic;
using System.IO;

namespace BrixCLI;

/// <summary>What <see cref="StlImportCLI.Number"/> tells of an STL file.</summary>
public enum StlNumberCLI
{
    /// <summary>1: no finding, no triangle without area; and a solid, when the surface was counted</summary>
    IsSound = 0,
    /// <summary>1: a binary file, 0: text</summary>
    IsBinary = 1,
    /// <summary>the size of the file</summary>
    Bytes = 2,
    /// <summary>triangles that a binary file announces; -1 for text</summary>
    Announced = 3,
    /// <summary>triangles that the file holds</summary>
    Found = 4,
    /// <summary>triangles in the list</summary>
    Read = 5,
    /// <summary>triangles left out, as corners are missing or cannot be read</summary>
    Incomplete = 6,
    /// <summary>triangles left out, as coordinates are infinite or not numbers</summary>
    NotFinite = 7,
    /// <summary>triangles without area</summary>
    Degenerate = 8,
    /// <summary>bytes of a binary file after its last whole triangle</summary>
    BytesLeft = 9,
    /// <summary>all findings, listed or not</summary>
    Findings = 10,
    /// <summary>findings that are listed</summary>
    FindingsListed = 11,
    /// <summary>findings for which something was guessed</summary>
    Guesses = 12,
    /// <summary>findings for which something was left out</summary>
    Drops = 13,
    /// <summary>all solids of a text file, listed or not</summary>
    Solids = 14,
    /// <summary>solids that are listed</summary>
    SolidsListed = 15,
    /// <summary>1: the surface was counted; if not, what follows is 0</summary>
    HasSurface = 16,
    /// <summary>vertices: corners that are exactly equal are one</summary>
    Vertices = 17,
    /// <summary>edges</summary>
    Edges = 18,
    /// <summary>edges of one triangle</summary>
    OpenEdges = 19,
    /// <summary>edges of more than two triangles</summary>
    CrowdedEdges = 20,
    /// <summary>edges of two triangles that face different ways</summary>
    ReversedEdges = 21,
    /// <summary>triangles with the vertices of an earlier one</summary>
    DuplicateTriangles = 22,
    /// <summary>parts that no edge connects</summary>
    Shells = 23,
    /// <summary>1: all edges have an even number of triangles</summary>
    IsClosed = 24
}

/// <summary>
/// An STL file as it was found: its triangles, what was left out or guessed, and what the triangles are as a surface. The size of
/// a file decides first whether it is binary; text may be laid out in any way; damaged and cut-off files are read as far as they
/// go. It never changes.
/// </summary>
public sealed unsafe class StlImportCLI : EngineObject
{
    private IntPtr stlPtr_ = IntPtr.Zero;

    /// <summary>Reads a file.</summary>
    /// <param name="filePath">see the remarks of <see cref="TrianglesAsNineNumbersCLI"/> on names beyond ASCII</param>
    /// <param name="swapYZ">true: the file has its Y axis up; its (X, Y, Z) becomes the world's (X, -Z, Y)</param>
    /// <param name="dropDegenerate">true: triangles without area are left out</param>
    /// <param name="countSurface">true: vertices, edges and shells are counted, too</param>
    /// <param name="mostListed">findings and solids that are listed; all are counted</param>
    /// <exception cref="Exception">the path has a character whose low byte is 0; <paramref name="mostListed"/> is negative; the
    /// file cannot be opened, or is no STL file; the message names it</exception>
    public StlImportCLI(string filePath, bool swapYZ, bool dropDegenerate = false, bool countSurface = true,
        int mostListed = 100)
    {
        byte[] path = TrianglesAsNineNumbersCLI.Narrowed(filePath);
        stlPtr_ = Engine.Call<IntPtr>((result, error) => {
            fixed (byte* bytes = path) {
                return NativeMethods.brix_read_stl(bytes, filePath.Length, Engine.Flag(swapYZ), Engine.Flag(dropDegenerate),
                    Engine.Flag(countSurface), mostListed, result, error);
            }
        });
    }

    /// <summary>The same from the bytes of a file, which messages name "data".</summary>
    /// <param name="file">all bytes of the file</param>
    /// <param name="swapYZ">as for a file</param>
    /// <param name="dropDegenerate">as for a file</param>
    /// <param name="countSurface">as for a file</param>
    /// <param name="mostListed">as for a file</param>
    /// <exception cref="Exception">the bytes are null, or no STL file; <paramref name="mostListed"/> is negative</exception>
    public StlImportCLI(byte[] file, bool swapYZ, bool dropDegenerate = false, bool countSurface = true, int mostListed = 100) =>
        stlPtr_ = Read(Arguments.Required(file, nameof(file)), file.Length, swapYZ, dropDegenerate, countSurface, mostListed);

    /// <summary>The same from the rest of a stream, which stays open.</summary>
    /// <param name="stream">what is left of it is the file</param>
    /// <param name="swapYZ">as for a file</param>
    /// <param name="dropDegenerate">as for a file</param>
    /// <param name="countSurface">as for a file</param>
    /// <param name="mostListed">as for a file</param>
    /// <exception cref="Exception">the stream is null; it fails, which is the inner exception; what it holds is no STL file;
    /// <paramref name="mostListed"/> is negative</exception>
    public StlImportCLI(Stream stream, bool swapYZ, bool dropDegenerate = false, bool countSurface = true, int mostListed = 100)
    {
        using MemoryStream file = NativeBytes.ReadFrom(Arguments.Required(stream, nameof(stream)), "The STL file");
        stlPtr_ = Read(file.GetBuffer(), (int)file.Length, swapYZ, dropDegenerate, countSurface, mostListed);
    }

    private static IntPtr Read(byte[] buffer, int length, bool swapYZ, bool dropDegenerate, bool countSurface, int mostListed)
    {
        byte nothing = 0; // there is an address for an empty array, too
        fixed (byte* bytes = buffer) {
            return Engine.CallAt<byte, IntPtr>(length == 0 ? &nothing : bytes, (file, result, error) =>
                NativeMethods.brix_read_stl_bytes(file, length, Engine.Flag(swapYZ), Engine.Flag(dropDegenerate),
                    Engine.Flag(countSurface), mostListed, result, error));
        }
    }

    private protected override ref IntPtr Field => ref stlPtr_;

    private protected override void Free(IntPtr pointer) => NativeMethods.brix_stl_free(pointer);

    /// <summary>The triangles in the order of the file; all coordinates are finite.</summary>
    /// <returns>nine numbers per triangle</returns>
    /// <exception cref="Exception">no list can hold them</exception>
    public List<double> Triangles() => NumberLists.Take(Engine.Call<IntPtr>(
        (result, error) => NativeMethods.brix_stl_triangles(Pointer, result, error)));

    /// <summary>A number of the report.</summary>
    /// <param name="number">which one</param>
    /// <exception cref="Exception">there is no such number</exception>
    public long Number(StlNumberCLI number)
    {
        if (number > StlNumberCLI.IsClosed)
            throw new Exception("There is no number of an STL file with the number " + (int)number + ".");
        return Item((int)number, 0);
    }

    /// <summary>Whether there is nothing to say against the file, and its triangles bound a solid, when they were
    /// looked at.</summary>
    public bool IsSound() => Number(StlNumberCLI.IsSound) != 0;

    /// <summary>What a binary file says at its start.</summary>
    public string Header() => Text(0, 0);

    /// <summary>The findings that are listed: one sentence each, with the line or byte.</summary>
    public List<string> Findings() => Texts(StlNumberCLI.FindingsListed, 3);

    /// <summary>The names of the solids that are listed.</summary>
    public List<string> SolidNames() => Texts(StlNumberCLI.SolidsListed, 4);

    /// <summary>The unit in which somebody may have measured, guessed from the size: "m", "mm", or nothing.</summary>
    public string UnitGuess() => Text(1, 0);

    /// <summary>Why that is thought.</summary>
    public string UnitReason() => Text(2, 0);

    /// <summary>The lower corner and the upper corner of all triangles; 0 when the surface was not counted.</summary>
    /// <returns>six numbers</returns>
    public List<double> Bounds() => NumberLists.Filled<double>(6, numbers => {
        Engine.Call<double>((volume, error) =>
            NativeMethods.brix_stl_bounds(Pointer, numbers, numbers + 3, volume, error));
        return 0;
    });

    /// <summary>The volume that a closed surface encloses: above 0 where triangles face outwards.</summary>
    public double SignedVolume()
    {
        double* corners = stackalloc double[6];
        return Engine.Call<double>((volume, error) =>
            NativeMethods.brix_stl_bounds(Pointer, corners, corners + 3, volume, error));
    }

    private long Item(int number, long index) => Engine.Call<long>(
        (result, error) => NativeMethods.brix_stl_number_of(Pointer, number, index, result, error));

    private string Text(int text, long index) => NativeBytes.TakeText(Engine.Call<IntPtr>(
        (result, error) => NativeMethods.brix_stl_text_of(Pointer, text, index, result, error)));

    private List<string> Texts(StlNumberCLI count, int text)
    {
        var texts = new List<string>();
        for (long i = 0, end = Number(count); i < end; ++i) texts.Add(Text(text, i));
        return texts;
    }
}
