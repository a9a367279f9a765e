using System;

namespace BrixCLI;

internal unsafe delegate int NativeCall<TResult>(TResult* result, NativeError* error) where TResult : unmanaged;

internal unsafe delegate int NativeCall<TInput, TResult>(TInput* input, TResult* result, NativeError* error)
    where TInput : unmanaged where TResult : unmanaged;

// The one way into the native library. A call is written as a lambda that reads its wrappers' pointers (EngineObject) and hands
// them over; the delegate holds these wrappers, so that keeping it alive keeps them alive until the engine has returned.
internal static unsafe class Engine
{
    // Runs a call and returns what it wrote to its result; its failure becomes a System.Exception.
    internal static TResult Call<TResult>(NativeCall<TResult> call) where TResult : unmanaged
    {
        NativeLibraryLoader.EnsureLoaded();
        TResult result = default;
        NativeError error = default;
        int status = call(&result, &error);
        GC.KeepAlive(call);
        return status == 0 ? result : throw NativeError.Take(&error, status);
    }

    // The same with an argument that is handed over by address, such as three numbers.
    internal static TResult Call<TInput, TResult>(TInput input, NativeCall<TInput, TResult> call)
        where TInput : unmanaged where TResult : unmanaged => CallAt(&input, call);

    // The same with an argument that stays where it is, such as the items of a pinned list.
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

    // Whether the answer of a call is yes.
    internal static bool Ask(NativeCall<int> call) => Call(call) != 0;

    // A boolean as the C interface wants it.
    internal static int Flag(bool value) => value ? 1 : 0;
}
