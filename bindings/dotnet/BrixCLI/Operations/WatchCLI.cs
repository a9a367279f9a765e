using System;
using System.Runtime.ExceptionServices;
using System.Runtime.InteropServices;
using System.Threading;

namespace BrixCLI;

/// <summary>
/// Progress and cancellation of all that this thread asks of the engine, as long as it lives:
/// <code>
/// using (new WatchCLI(new Progress&lt;double&gt;(share => bar.Value = share), source.Token))
///     grown = SurfaceOperationsCLI.ExpandHorizontally(model, 33);
/// </code>
/// An operation that is cancelled throws <see cref="OperationCanceledException"/>, the one exception of this library that is not
/// <see cref="Exception"/> itself; its arguments are as they were and it has no result. One watch is meant for one operation.
/// Watches nest: the outer ones are told, and asked, as well. A watch must be disposed on the thread that made it: there may be
/// no await between.
/// </summary>
public sealed unsafe class WatchCLI : IDisposable
{
    private static readonly NativeMethods.WatchCallback Callback = Ask; // the engine holds no reference to it
    private static readonly IntPtr CallbackPointer = Marshal.GetFunctionPointerForDelegate(Callback);

    [ThreadStatic] private static WatchCLI? innermost_;

    private readonly IProgress<double>? progress_;
    private readonly CancellationToken cancellationToken_;
    private readonly WatchCLI? outer_;
    private GCHandle self_;
    private IntPtr watch_;
    private ExceptionDispatchInfo? failure_;
    private bool hasStopped_;

    /// <summary>Begins to watch the operations of this thread.</summary>
    /// <param name="progress">is told the share that is done, from 0 to 1, which never falls, at most about a hundred times a
    /// second; may be null. What it throws leaves the operation.</param>
    /// <param name="cancellationToken">ends the operation within a few hundredths of a second, and the time that it takes to
    /// give memory back</param>
    public WatchCLI(IProgress<double>? progress = null, CancellationToken cancellationToken = default)
    {
        progress_ = progress;
        cancellationToken_ = cancellationToken;
        self_ = GCHandle.Alloc(this);
        IntPtr context = GCHandle.ToIntPtr(self_);
        watch_ = Engine.Call<IntPtr>(
            (result, error) => NativeMethods.brix_watch_begin(CallbackPointer, context, 0.01, result, error));
        outer_ = innermost_;
        innermost_ = this;
    }

    /// <summary>Ends the watch; once. Throws <see cref="Exception"/> on another thread than the one that made it, where it then
    /// goes on without effect.</summary>
    public void Dispose()
    {
        IntPtr watch = watch_;
        if (watch == IntPtr.Zero) return;
        watch_ = IntPtr.Zero;
        Engine.Call<int>((_, error) => NativeMethods.brix_watch_end(watch, error));
        self_.Free();
        if (innermost_ == this) innermost_ = outer_;
    }

    // Called by the engine, through which no exception can go.
    private static int Ask(IntPtr context, double share)
    {
        var watch = (WatchCLI)GCHandle.FromIntPtr(context).Target!;
        return watch.watch_ == IntPtr.Zero || watch.GoesOn(share) ? 0 : 1;
    }

    private bool GoesOn(double share)
    {
        try {
            progress_?.Report(share);
            hasStopped_ = cancellationToken_.IsCancellationRequested;
        } catch (Exception exception) {
            failure_ = ExceptionDispatchInfo.Capture(exception);
        }
        return failure_ == null && !hasStopped_;
    }

    // What an operation throws that a watch of this thread has stopped.
    internal static Exception Stopped(string message)
    {
        for (WatchCLI? watch = innermost_; watch != null; watch = watch.outer_) {
            ExceptionDispatchInfo? failure = watch.failure_;
            watch.failure_ = null;
            failure?.Throw();
            if (watch.hasStopped_) return new OperationCanceledException(message, watch.cancellationToken_);
        }
        return new OperationCanceledException(message);
    }
}
