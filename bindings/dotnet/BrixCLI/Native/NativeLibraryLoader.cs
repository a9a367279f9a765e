using System;
using System.Collections.Generic;
using System.IO;
using System.Reflection;
using System.Runtime.InteropServices;
using System.Text;

namespace BrixCLI;

// Finds the native library on the first call, looks whether it is of the version that this assembly was made for, and makes the
// declarations in NativeMethods use it. Every failure is a System.Exception that lists what was tried.
internal static unsafe class NativeLibraryLoader
{
    private static readonly object Gate = new object();
    private static volatile bool isLoaded;

    internal static void EnsureLoaded()
    {
        if (!isLoaded) LoadOnce();
    }

    private static void LoadOnce()
    {
        lock (Gate) {
            if (isLoaded) return;
            if (IntPtr.Size != 8) {
                throw new Exception("BrixCLI needs a 64-bit process; this one is a 32-bit process (" + Architecture + ").");
            }
            SystemLibraries.Bind(Load(Candidates()));
            isLoaded = true;
        }
    }

    // The first of these libraries that can be loaded and has the right ABI version.
    internal static IntPtr Load(IEnumerable<string> candidates)
    {
        var attempts = new StringBuilder();
        Exception? last = null;
        foreach (string candidate in candidates) {
            try {
                return LoadChecked(candidate);
            } catch (Exception exception) {
                last = exception;
                attempts.Append("\n  ").Append(candidate).Append(": ").Append(exception.Message.Trim().Replace("\n", " "));
            }
        }
        throw new Exception("The native library " + FileName + " of BrixCLI " + OwnVersion + " cannot be loaded (" + Rid +
            ", process architecture " + Architecture + ", " + RuntimeInformation.OSDescription + "). Tried:" + attempts +
            "\nInstall the package with its native part for " + Rid + ", or put the library beside BrixCLI.dll.", last);
    }

    private static IntPtr LoadChecked(string path)
    {
        bool isFile = Path.IsPathRooted(path);
        if (isFile && !File.Exists(path)) throw new Exception("there is no such file");
        IntPtr library = isFile ? SystemLibraries.LoadFile(path) : SystemLibraries.LoadByName(path);
        try {
            var abiVersion = (delegate* unmanaged[Cdecl]<int>)SystemLibraries.Export(library, "brix_abi_version");
            if (abiVersion() == NativeMethods.AbiVersion) return library;
            var version = (delegate* unmanaged[Cdecl]<byte*>)SystemLibraries.Export(library, "brix_version_string");
            throw new Exception("its ABI version is " + abiVersion() + " (Brix " + Marshal.PtrToStringAnsi((IntPtr)version()) +
                "), but BrixCLI " + OwnVersion + " needs ABI version " + NativeMethods.AbiVersion);
        } catch {
            SystemLibraries.Free(library);
            throw;
        }
    }

    // Full paths, the best one first; the bare name at the end leaves the search to the system.
    private static IEnumerable<string> Candidates()
    {
        foreach (string root in Roots()) {
            yield return Path.Combine(root, FileName);
            yield return Path.Combine(root, "runtimes", Rid, "native", FileName);
            yield return Path.Combine(root, Architecture, FileName);
        }
#if BRIX_DEVELOPMENT_TREE
        foreach (string root in Roots()) {
            for (DirectoryInfo? folder = new DirectoryInfo(root); folder != null; folder = folder.Parent) {
                string path = Path.Combine(folder.FullName, "artifacts", "native", Rid, FileName);
                if (File.Exists(path)) yield return path;
            }
        }
#endif
        yield return FileName;
    }

    // The folder of this assembly, which in a plug-in is not that of the program; then the program's.
    private static IEnumerable<string> Roots()
    {
#pragma warning disable IL3000 // empty in a single-file program, which is asked about below
        string location = typeof(NativeLibraryLoader).Assembly.Location;
#pragma warning restore IL3000
        string own = location.Length > 0 ? Path.GetDirectoryName(location)! : "";
        string program = AppContext.BaseDirectory.TrimEnd(Path.DirectorySeparatorChar);
        if (own.Length > 0) yield return own;
        if (program != own) yield return program;
    }

    private static bool IsWindows => RuntimeInformation.IsOSPlatform(OSPlatform.Windows);

    private static bool IsMac => RuntimeInformation.IsOSPlatform(OSPlatform.OSX);

    private static string Name => "brix_c." + NativeMethods.AbiVersion;

    internal static string FileName => IsWindows ? Name + ".dll" : IsMac ? "lib" + Name + ".dylib" : "lib" + Name + ".so";

    internal static string Rid => (IsWindows ? "win-" : IsMac ? "osx-" : "linux-") + Architecture;

    private static string Architecture => RuntimeInformation.ProcessArchitecture.ToString().ToLowerInvariant();

    private static string OwnVersion =>
        typeof(NativeLibraryLoader).Assembly.GetCustomAttribute<AssemblyFileVersionAttribute>()?.Version ?? "";
}
