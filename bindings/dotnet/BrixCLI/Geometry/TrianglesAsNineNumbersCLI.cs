using System;
using System.Collections.Generic;
using System.IO;

namespace BrixCLI;

/// <summary>
/// Triangle lists as flat lists of nine doubles per triangle: item 9 t + 3 c + k is coordinate k (x, y, z) of corner c of
/// triangle t, in world units; and STL files, ASCII and binary, that hold such lists.
/// </summary>
/// <remarks>
/// Of each UTF-16 code unit of a file path only the low byte reaches the system. Names in plain ASCII are therefore safe
/// everywhere. On Windows, so are other Latin-1 names where the code page is 1252. On Linux, where file names are UTF-8, a name
/// such as "é.stl" becomes the single byte E9 and does not find the file "é.stl"; and characters beyond Latin-1 are replaced by
/// other characters everywhere. A path with a character whose low byte is 0, such as U+0100, is refused, as it would end there.
/// Copy or rename such files, or open them in a folder with a plain name.
/// </remarks>
public static unsafe class TrianglesAsNineNumbersCLI
{
    /// <summary>Triangles as a flat list.</summary>
    /// <param name="triangles">per triangle three corners, per corner three coordinates</param>
    /// <returns>nine numbers per triangle</returns>
    /// <exception cref="Exception">something is null or does not have three corners or coordinates; no list can be as
    /// long</exception>
    public static List<double> FromArrays(double[][][] triangles)
    {
        Arguments.Required(triangles, nameof(triangles));
        var list = new List<double>(SizeLimits.ListLength(triangles.Length, 9));
        foreach (double[][] triangle in triangles) {
            if (triangle?.Length != 3) throw new Exception("Each triangle must have three corners.");
            foreach (double[] corner in triangle) {
                if (corner?.Length != 3) throw new Exception("Each corner of a triangle must have three coordinates.");
                list.AddRange(corner);
            }
        }
        return list;
    }

    /// <summary>A flat list as triangles.</summary>
    /// <param name="trianglesAsNineNumbers">nine numbers per triangle</param>
    /// <returns>per triangle three corners, per corner three coordinates</returns>
    /// <exception cref="Exception">the number of numbers is not divisible by nine</exception>
    public static double[][][] ToArrays(List<double> trianglesAsNineNumbers)
    {
        var triangles = new double[CountOf(trianglesAsNineNumbers)][][];
        for (int t = 0; t < triangles.Length; ++t) {
            triangles[t] = new double[3][];
            for (int c = 0; c < 3; ++c) triangles[t][c] = trianglesAsNineNumbers.GetRange(9 * t + 3 * c, 3).ToArray();
        }
        return triangles;
    }

    /// <summary>The unit normal of each triangle by the right-hand rule; 0, 0, 0 for a triangle without area.</summary>
    /// <param name="trianglesAsNineNumbers">nine numbers per triangle; up to eight more at the end are ignored</param>
    /// <returns>three numbers per triangle</returns>
    /// <exception cref="Exception">the list is null; there is not enough memory</exception>
    public static List<double> NormalsAsThreeNumbers(List<double> trianglesAsNineNumbers)
    {
        int count = Arguments.Required(trianglesAsNineNumbers, nameof(trianglesAsNineNumbers)).Count / 9;
        return NumberLists.Filled<double>(3 * count, normals => NumberLists.WithItems<int>(trianglesAsNineNumbers,
            (triangles, _, error) => NativeMethods.brix_triangle_normals(triangles, count, normals, error)));
    }

    /// <summary>Reads the triangles of an STL file, in the order of the file.</summary>
    /// <param name="filePath">see the remarks of this class on names beyond ASCII</param>
    /// <param name="swapYZ">true: the file has its Y axis up; its (X, Y, Z) becomes the world's (X, -Z, Y)</param>
    /// <returns>nine numbers per triangle</returns>
    /// <exception cref="Exception">the path has a character whose low byte is 0; the file cannot be opened or read, or is no STL
    /// file; the message names it. Or no list can hold its triangles.</exception>
    public static List<double> ImportFromSTL(string filePath, bool swapYZ)
    {
        byte[] path = Narrowed(filePath);
        return NumberLists.Take(Engine.Call<IntPtr>((result, error) => {
            fixed (byte* bytes = path) {
                return NativeMethods.brix_load_stl(bytes, filePath.Length, Engine.Flag(swapYZ), result, error);
            }
        }));
    }

    /// <summary>Writes triangles, with their unit normals, to an STL file; a file that exists is replaced.</summary>
    /// <param name="trianglesAsNineNumbers">nine numbers per triangle</param>
    /// <param name="filePath">see the remarks of this class on names beyond ASCII</param>
    /// <param name="useBinaryFormat">true: binary, numbers are rounded to 32-bit floats; false: text of six digits</param>
    /// <param name="swapYZ">true: the file gets its Y axis up; the world's (x, y, z) becomes (x, z, -y)</param>
    /// <exception cref="Exception">the number of numbers is not divisible by nine, or the path has a character whose
    /// low byte is 0, in which cases no file is touched; then the file cannot be opened, written or closed</exception>
    public static void ExportToSTL(List<double> trianglesAsNineNumbers, string filePath, bool useBinaryFormat, bool swapYZ)
    {
        int count = CountOf(trianglesAsNineNumbers);
        byte[] path = Narrowed(filePath);
        NumberLists.WithItems<int>(trianglesAsNineNumbers, (triangles, _, error) => {
            fixed (byte* bytes = path) {
                return NativeMethods.brix_save_stl(triangles, count, bytes, filePath.Length, Engine.Flag(useBinaryFormat),
                    Engine.Flag(swapYZ), error);
            }
        });
    }

    /// <summary>The same from the bytes of a file, for names that the path cannot hold, and for what is no file. Messages name
    /// it "data".</summary>
    /// <param name="file">all bytes of the file</param>
    /// <param name="swapYZ">as for a file</param>
    /// <returns>nine numbers per triangle</returns>
    /// <exception cref="Exception">the bytes are null, or no STL file; no list can hold its triangles</exception>
    public static List<double> ImportFromSTL(byte[] file, bool swapYZ) =>
        ImportFromSTL(Arguments.Required(file, nameof(file)), file.Length, swapYZ);

    /// <summary>The same from the rest of a stream, which stays open.</summary>
    /// <param name="stream">what is left of it is the file</param>
    /// <param name="swapYZ">as for a file</param>
    /// <returns>nine numbers per triangle</returns>
    /// <exception cref="Exception">the stream is null; it fails, which is the inner exception; what it holds is no STL file; no
    /// list can hold its triangles</exception>
    public static List<double> ImportFromSTL(Stream stream, bool swapYZ)
    {
        using MemoryStream file = NativeBytes.ReadFrom(Arguments.Required(stream, nameof(stream)), "The STL file");
        return ImportFromSTL(file.GetBuffer(), (int)file.Length, swapYZ);
    }

    private static List<double> ImportFromSTL(byte[] buffer, int length, bool swapYZ)
    {
        byte nothing = 0; // there is an address for an empty array, too
        fixed (byte* bytes = buffer) {
            return NumberLists.Take(Engine.CallAt<byte, IntPtr>(length == 0 ? &nothing : bytes, (file, result, error) =>
                NativeMethods.brix_load_stl_bytes(file, length, Engine.Flag(swapYZ), result, error)));
        }
    }

    /// <summary>The same to a stream, which stays open.</summary>
    /// <param name="trianglesAsNineNumbers">nine numbers per triangle</param>
    /// <param name="stream">a stream that can be written to; for the bytes themselves, a <see cref="MemoryStream"/></param>
    /// <param name="useBinaryFormat">as for a file</param>
    /// <param name="swapYZ">as for a file</param>
    /// <exception cref="Exception">the number of numbers is not divisible by nine; the stream is null; it fails, which is the
    /// inner exception</exception>
    public static void ExportToSTL(List<double> trianglesAsNineNumbers, Stream stream, bool useBinaryFormat, bool swapYZ)
    {
        int count = CountOf(trianglesAsNineNumbers);
        Arguments.Required(stream, nameof(stream));
        NativeBytes.WriteTo(stream, "The STL file", NumberLists.WithItems<IntPtr>(trianglesAsNineNumbers,
            (triangles, result, error) => NativeMethods.brix_save_stl_bytes(triangles, count, Engine.Flag(useBinaryFormat),
                Engine.Flag(swapYZ), result, error)));
    }

    // The number of triangles of a flat list.
    internal static int CountOf(List<double>? trianglesAsNineNumbers)
    {
        int count = Arguments.Required(trianglesAsNineNumbers, nameof(trianglesAsNineNumbers)).Count;
        Arguments.RequireDivisible(count, 9, Arguments.TrianglesOfNine);
        return count / 9;
    }

    // The system would take the path up to this character, and read or replace another file.
    private static Exception PathEnds(char unit, int index) => new Exception("The file path cannot hold the character U+" +
        ((int)unit).ToString("X4") + ", the one at index " + index +
        ": only the low byte of each character reaches the system, and 0 ends a path.");

    // The low bytes of the code units; one more byte, so that there is an address also for an empty path.
    internal static byte[] Narrowed(string filePath)
    {
        var bytes = new byte[Arguments.Required(filePath, nameof(filePath)).Length + 1];
        for (int i = 0; i < filePath.Length; ++i) {
            bytes[i] = unchecked((byte)filePath[i]);
            if (bytes[i] == 0) throw PathEnds(filePath[i], i);
        }
        return bytes;
    }
}
