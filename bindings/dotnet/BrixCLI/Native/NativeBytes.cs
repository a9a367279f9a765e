using System;
using System.IO;
using System.Text;

namespace BrixCLI;

// Bytes between the engine and streams.
internal static unsafe class NativeBytes
{
    // Writes native bytes to a stream, in parts, and frees them. `what` they are begins the message of a failure.
    internal static void WriteTo(Stream stream, string what, IntPtr native)
    {
        try {
            long size = Engine.Call<long>((result, error) => NativeMethods.brix_bytes_size(native, result, error));
            var part = new byte[(int)Math.Min(size, 1 << 20)];
            for (long first = 0; first < size; first += part.Length) {
                int count = (int)Math.Min(part.Length, size - first);
                fixed (byte* bytes = part) {
                    byte* destination = bytes; // lambdas cannot hold fixed variables
                    long start = first;
                    Engine.Call<int>((_, error) => NativeMethods.brix_bytes_copy(native, start, count, destination, error));
                }
                Use(what + " cannot be written to the stream. ", () => stream.Write(part, 0, count));
            }
        } finally {
            NativeMethods.brix_bytes_free(native);
        }
    }

    // Native bytes that are text, which are freed.
    internal static string TakeText(IntPtr native)
    {
        using var text = new MemoryStream();
        WriteTo(text, "The text", native);
        return Encoding.UTF8.GetString(text.GetBuffer(), 0, (int)text.Length);
    }

    // The rest of a stream.
    internal static MemoryStream ReadFrom(Stream stream, string what)
    {
        var bytes = new MemoryStream();
        Use(what + " cannot be read from the stream. ", () => stream.CopyTo(bytes));
        return bytes;
    }

    // What a stream throws becomes a System.Exception.
    private static void Use(string failure, Action use)
    {
        try {
            use();
        } catch (Exception exception) {
            throw new Exception(failure + exception.Message, exception);
        }
    }
}
