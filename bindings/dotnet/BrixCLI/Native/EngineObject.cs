using System;
using System.ComponentModel;
using System.Runtime.CompilerServices;

namespace BrixCLI;

/// <summary>
/// What all wrappers of an engine object share: each owns one engine object alone and releases it in <see cref="Dispose()"/>.
/// There is no finalizer, so the memory of a wrapper that is never disposed stays in use until the process ends. Every use of a
/// disposed wrapper, as receiver or as argument, throws <see cref="Exception"/>; disposing it again does nothing. Nothing is
/// locked: one wrapper must not be used by two threads at once, different wrappers may.
/// </summary>
[EditorBrowsable(EditorBrowsableState.Never)]
public abstract class EngineObject : IDisposable
{
    private protected EngineObject() { }

    // The pointer field of the concrete class.
    private protected abstract ref IntPtr Field { get; }

    // Gives the engine object back.
    private protected abstract void Free(IntPtr pointer);

    /// <summary>Releases the engine object, once.</summary>
    public void Dispose()
    {
        Dispose(true);
        GC.SuppressFinalize(this);
    }

    /// <summary>Releases the engine object when <paramref name="disposing"/> is true.</summary>
    /// <param name="disposing">true when the host disposes the wrapper</param>
    protected virtual void Dispose(bool disposing)
    {
        IntPtr pointer = Field;
        if (!disposing || pointer == IntPtr.Zero) return;
        Field = IntPtr.Zero;
        Free(pointer);
    }

    // The engine object for a native call by a member of this wrapper.
    internal IntPtr Pointer => Field != IntPtr.Zero ? Field : throw Disposed();

    internal bool IsDisposed => Field == IntPtr.Zero;

    internal Exception Disposed() => new Exception("The " + GetType().Name + " has been disposed of and can no longer be used.");
}

internal static class EngineObjects
{
    // The engine object of an argument; throws System.Exception for null and for what was disposed of.
    internal static IntPtr Required(this EngineObject? wrapper, [CallerArgumentExpression(nameof(wrapper))] string parameter = "")
    {
        if (wrapper == null) throw Arguments.Null(parameter);
        if (!wrapper.IsDisposed) return wrapper.Pointer;
        throw new Exception("The " + wrapper.GetType().Name + " passed as " + parameter +
            " has been disposed of and can no longer be used.");
    }

    // The engine object of an argument that may be left out.
    internal static IntPtr Optional(this EngineObject? wrapper,
        [CallerArgumentExpression(nameof(wrapper))] string parameter = "") =>
        wrapper == null ? IntPtr.Zero : wrapper.Required(parameter);
}
