using System;

namespace BrixCLI;

internal unsafe delegate int NativeCall<TResult>(TResult* result, NativeError* error) where TResult : unmanaged;

internal unsafe delegate int NativeCall<TInput, TResult>(TInput* input, TResult* result, NativeError* error)
    where TInput : unmanaged where TResult : unmanaged;

/// <summary>
/// The one way into the native library. A call is written as a lambda that reads its wrappers' pointers (<see
/// cref="EngineObject"/>) and hands them over; the delegate holds these wrappers, so that keeping it alive keeps them alive until
/// the engine has returned.
/// </summary>
internal static unsafe class Engine
{
    /// <summary>Runs a call and returns what it wrote to its result; its failure becomes a System.Exception.</summary>
    internal static TResult Call<TResult>(NativeCall<TResult> call) where TResult : unmanaged
    {
        NativeLibraryLoader.EnsureLoaded();
        TResult result = default;
        NativeError error = default;
        int status = call(&result, &error);
        GC.KeepAlive(call);
        return status == 0 ? result : throw NativeError.Take(&error, status);
    }

    /// <summary>The same with an argument that is handed over by address, such as three numbers.</summary>
    internal static TResult Call<TInput, TResult>(TInput input, NativeCall<TInput, TResult> call)
        where TInput : unmanaged where TResult : unmanaged => CallAt(&input, call);

    /// <summary>The same with an argument that stays where it is, such as the items of a pinned list.</summary>
    internal static TResult CallAt<TInput, TResult>(TInput* input, NativeCall<TInput, TResult> call)
        where TInput : unmanaged where TResult : unmanaged
    {
        NativeLibraryLoader.EnsureLoaded();
        TResult result = default;
        NativeError error = default;
        int status = call(input, &result, &error);
        GC.KeepAlive(call);
        return status == 0 ? result : throw NativeError.Take(&error, status);
    }

    /// <summary>Whether the answer of a call is yes.</summary>
    internal static bool Ask(NativeCall<int> call) => Call(call) != 0;

    /// <summary>A boolean as the C interface wants it.</summary>
    internal static int Flag(bool value) => value ? 1 : 0;
}
