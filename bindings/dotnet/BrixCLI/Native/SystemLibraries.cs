using System;
using System.Reflection;
using System.Runtime.InteropServices;
#if !NET
using System.ComponentModel;
using System.Linq;
#endif

namespace BrixCLI;

#if NET
// Loading of shared libraries, as the runtime offers it.
internal static class SystemLibraries
{
    private static IntPtr bound;

    internal static IntPtr LoadFile(string path) => NativeLibrary.Load(path);

    internal static IntPtr LoadByName(string name) => NativeLibrary.Load(name, typeof(SystemLibraries).Assembly, null);

    internal static IntPtr Export(IntPtr library, string name) => NativeLibrary.GetExport(library, name);

    internal static void Free(IntPtr library) => NativeLibrary.Free(library);

    // From now on the declarations of this assembly use a library.
    internal static void Bind(IntPtr library)
    {
        bound = library;
        NativeLibrary.SetDllImportResolver(typeof(SystemLibraries).Assembly,
            (name, _, _) => name == NativeMethods.Library ? bound : IntPtr.Zero);
    }
}
#else
// Loading of shared libraries where the runtime's own class for it is not known when this assembly is compiled. It is found by
// reflection on .NET Core 3 and later. On .NET Framework the system loads the library by its full path, and the declarations of
// this assembly find it by its name among the loaded ones; on Mono, the loader of the system does the same.
internal static class SystemLibraries
{
    private static readonly Type? Runtime =
        Type.GetType("System.Runtime.InteropServices.NativeLibrary, System.Runtime.InteropServices", throwOnError: false);

    private static readonly bool IsWindows = RuntimeInformation.IsOSPlatform(OSPlatform.Windows);

    private static IntPtr bound;

    internal static IntPtr LoadFile(string path) =>
        Runtime != null ? Member<Func<string, IntPtr>>("Load")(path) : IsWindows ? LoadOnWindows(path) : LoadOnUnix(path);

    internal static IntPtr LoadByName(string name) => Runtime == null
        ? LoadFile(name)
        : Member<Func<string, Assembly, DllImportSearchPath?, IntPtr>>("Load")(name, typeof(SystemLibraries).Assembly, null);

    internal static IntPtr Export(IntPtr library, string name)
    {
        if (Runtime != null) return Member<Func<IntPtr, string, IntPtr>>("GetExport")(library, name);
        IntPtr export = IsWindows ? GetProcAddress(library, name) : dlsym(library, name);
        return export != IntPtr.Zero ? export : throw new Exception("it has no function " + name);
    }

    internal static void Free(IntPtr library)
    {
        if (Runtime != null) Member<Action<IntPtr>>("Free")(library);
        else if (IsWindows) FreeLibrary(library);
        else dlclose(library);
    }

    // From now on the declarations of this assembly use a library.
    internal static void Bind(IntPtr library)
    {
        bound = library;
        if (Runtime == null) return;
        MethodInfo setter = Runtime.GetMethod("SetDllImportResolver")!;
        setter.Invoke(null, new object[] { typeof(SystemLibraries).Assembly,
            Delegate.CreateDelegate(setter.GetParameters()[1].ParameterType, typeof(SystemLibraries), nameof(Resolve)) });
    }

    private static IntPtr Resolve(string name, Assembly assembly, DllImportSearchPath? searchPath) =>
        name == NativeMethods.Library ? bound : IntPtr.Zero;

    private static TDelegate Member<TDelegate>(string name) where TDelegate : Delegate
    {
        Type[] parameters = typeof(TDelegate).GetMethod("Invoke")!.GetParameters().Select(item => item.ParameterType).ToArray();
        return (TDelegate)Delegate.CreateDelegate(typeof(TDelegate), Runtime!.GetMethod(name, parameters)!);
    }

    private static IntPtr LoadOnWindows(string path)
    {
        const uint searchBesideTheLibrary = 8; // LOAD_WITH_ALTERED_SEARCH_PATH, which wants a full path
        IntPtr library = LoadLibraryExW(path, IntPtr.Zero, System.IO.Path.IsPathRooted(path) ? searchBesideTheLibrary : 0);
        return library != IntPtr.Zero ? library : throw new Win32Exception();
    }

    private static IntPtr LoadOnUnix(string path)
    {
        const int now = 2; // RTLD_NOW
        IntPtr library = dlopen(path, now);
        return library != IntPtr.Zero ? library : throw new Exception(Marshal.PtrToStringAnsi(dlerror()));
    }

    [DllImport("kernel32.dll", CharSet = CharSet.Unicode, SetLastError = true, ExactSpelling = true)]
    private static extern IntPtr LoadLibraryExW(string path, IntPtr reserved, uint flags);

    [DllImport("kernel32.dll", CharSet = CharSet.Ansi, SetLastError = true, ExactSpelling = true)]
    private static extern IntPtr GetProcAddress(IntPtr library, string name);

    [DllImport("kernel32.dll", ExactSpelling = true)]
    private static extern int FreeLibrary(IntPtr library);

    [DllImport("libdl.so.2", ExactSpelling = true)]
    private static extern IntPtr dlopen(string path, int flags);

    [DllImport("libdl.so.2", ExactSpelling = true)]
    private static extern IntPtr dlsym(IntPtr library, string name);

    [DllImport("libdl.so.2", ExactSpelling = true)]
    private static extern int dlclose(IntPtr library);

    [DllImport("libdl.so.2", ExactSpelling = true)]
    private static extern IntPtr dlerror();
}
#endif
