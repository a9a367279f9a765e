using System;
using System.Collections.Generic;
#if NET
using System.Runtime.InteropServices;
#endif

namespace BrixCLI;

internal unsafe delegate TResult PinnedUse<TItem, TResult>(TItem* items) where TItem : unmanaged;

// Large lists on their way across. On .NET 10 the engine reads and writes the memory of the list itself; where the runtime does
// not let anybody there, one bulk copy each way takes its place.
internal static unsafe class NumberLists
{
    // Calls `use` with the items of a list, pinned; null when there are none.
    internal static TResult Pinned<TItem, TResult>(List<TItem> list, PinnedUse<TItem, TResult> use) where TItem : unmanaged
    {
#if NET
        fixed (TItem* items = CollectionsMarshal.AsSpan(list)) return use(items);
#else
        fixed (TItem* items = Guarded(list.Count, list.ToArray)) return use(items);
#endif
    }

    // A list of `length` items that `fill` writes, all of them.
    internal static List<TItem> Filled<TItem>(int length, PinnedUse<TItem, int> fill) where TItem : unmanaged
    {
#if NET
        var list = Guarded(length, () => new List<TItem>(length));
        CollectionsMarshal.SetCount(list, length);
        Pinned(list, fill);
        return list;
#else
        TItem[] buffer = Guarded(length, () => new TItem[length]);
        fixed (TItem* items = buffer) fill(items);
        return Guarded(length, () => new List<TItem>(buffer));
#endif
    }

    // Runs a call on the numbers of a list.
    internal static TResult WithItems<TResult>(List<double> list, NativeCall<double, TResult> call)
        where TResult : unmanaged => Pinned<double, TResult>(list, items => Engine.CallAt(items, call));

    // The numbers of a native list, which is freed also when there is no room for them.
    // `requireCount` may refuse the number of items before there is a list.
    internal static List<double> Take(IntPtr list, Action<long>? requireCount = null)
    {
        try {
            ListSize size = SizeOf(list);
            requireCount?.Invoke(size.ItemCount);
            int length = SizeLimits.ListLength(size.ItemCount, size.Width);
            MemoryLimitCLI.RequireForLists((double)length * sizeof(double));
            return Filled<double>(length, items => Engine.Call<int>(
                (_, error) => NativeMethods.brix_list_copy(list, 0, size.ItemCount, items, error)));
        } finally {
            NativeMethods.brix_list_free(list);
        }
    }

    // The number of items of a native list, and some of them: nine numbers each.
    internal static long CountOf(IntPtr list) => SizeOf(list).ItemCount;

    internal static double[] Part(IntPtr list, long firstItem, int itemCount)
    {
        int length = SizeLimits.ListLength(itemCount, SizeOf(list).Width);
        double[] part = Guarded(length, () => new double[length]);
        fixed (double* numbers = part) {
            double* destination = numbers; // lambdas cannot hold fixed variables
            Engine.Call<int>((_, error) => NativeMethods.brix_list_copy(list, firstItem, itemCount, destination, error));
        }
        return part;
    }

    private struct ListSize
    {
        internal long ItemCount, Width;
    }

    private static ListSize SizeOf(IntPtr list) =>
        Engine.Call<ListSize>((size, error) => NativeMethods.brix_list_size(list, &size->ItemCount, &size->Width, error));

    // Runs an allocation; memory that is not there is reported as System.Exception, as every other failure.
    private static T Guarded<T>(int length, Func<T> allocate)
    {
        try {
            return allocate();
        } catch (OutOfMemoryException exception) {
            throw new Exception("There is not enough memory for a list of " + length + " numbers.", exception);
        }
    }
}
