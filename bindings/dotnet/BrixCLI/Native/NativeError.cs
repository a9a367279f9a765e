using System;
using System.Runtime.InteropServices;
using System.Text;

namespace BrixCLI;

// brix_error of the C interface.
[StructLayout(LayoutKind.Sequential)]
internal unsafe struct NativeError
{
    private const int Cancelled = 7; // BRIX_CANCELLED

    private int status;
    private int isOwned;
    private long length;
    private byte* message;

    // The exception for a call that failed; frees the native text.
    internal static Exception Take(NativeError* error, int status)
    {
        string text = error->message == null ? "" : Encoding.UTF8.GetString(error->message, checked((int)error->length));
        NativeMethods.brix_error_clear(error);
        if (status == Cancelled) return WatchCLI.Stopped(text);
        return new Exception(text.Length > 0 ? text : "The voxel engine failed with status " + status + " and no message.");
    }
}
