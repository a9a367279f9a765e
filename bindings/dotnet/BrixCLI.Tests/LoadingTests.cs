using System;
using System.Diagnostics;
using System.IO;
using static BrixCLI.Tests.Scene;

namespace BrixCLI.Tests;

public class LoadingTests
{
    private static readonly string Own = AppContext.BaseDirectory;

    [Fact]
    public void EachPlaceIsTriedInTurnAndSaysWhyItFailed()
    {
        string folder = CopyOfTheHost(Directory.CreateTempSubdirectory().FullName);
        (int code, string output) = Run(folder);
        Assert.Equal(1, code);
        Assert.StartsWith("System.Exception: The native library " + NativeLibraryLoader.FileName + " of BrixCLI " +
            Metadata("BrixVersion"), output);
        foreach (string place in new[] { "", Path.Combine("runtimes", NativeLibraryLoader.Rid, "native"),
            NativeLibraryLoader.Rid.Split('-')[1] }) {
            string path = Path.Combine(folder, place, NativeLibraryLoader.FileName);
            Assert.Contains("\n  " + path + ": there is no such file", output);
            Directory.CreateDirectory(Path.GetDirectoryName(path)!);
            File.WriteAllText(path, "this is no library");
        }
        (code, output) = Run(folder);
        Assert.Equal(1, code);
        Assert.DoesNotContain("there is no such file", output);
        // With the library in any one of the places, the call succeeds: the others do not stand in its way.
        File.Copy(Path.Combine(Own, "runtimes", NativeLibraryLoader.Rid, "native", NativeLibraryLoader.FileName),
            Path.Combine(folder, NativeLibraryLoader.Rid.Split('-')[1], NativeLibraryLoader.FileName), true);
        Assert.Equal((0, "width 0.5"), Run(folder));
        Directory.Delete(folder, true);
    }

    [FactWithOtherAbiLibrary]
    public void AnotherAbiVersionIsRefused()
    {
        string folder = CopyOfTheHost(Directory.CreateTempSubdirectory().FullName);
        string path = Path.Combine(folder, NativeLibraryLoader.FileName);
        File.Copy(Metadata("BrixOtherAbiLibrary"), path);
        (int code, string output) = Run(folder);
        Assert.Equal(1, code);
        Assert.Contains("\n  " + path + ": its ABI version is 999 (Brix 9.8.7), but BrixCLI " + Metadata("BrixVersion") +
            ".0 needs ABI version 1\n", output);
        Directory.Delete(folder, true);
    }

    private sealed class FactWithOtherAbiLibraryAttribute : FactAttribute
    {
        public FactWithOtherAbiLibraryAttribute()
        {
            if (Metadata("BrixOtherAbiLibrary").Length == 0) Skip = "The library of another ABI version is built by CMake only.";
        }
    }

    private static string CopyOfTheHost(string folder)
    {
        string program = typeof(Program).Assembly.GetName().Name!;
        foreach (string file in new[] { program + ".dll", program + ".runtimeconfig.json", "BrixCLI.dll" }) {
            File.Copy(Path.Combine(Own, file), Path.Combine(folder, file));
        }
        return folder;
    }

    private static (int Code, string Output) Run(string folder)
    {
        string program = Path.Combine(folder, typeof(Program).Assembly.GetName().Name + ".dll");
        var start = new ProcessStartInfo(Environment.ProcessPath!, ["exec", program]) { RedirectStandardOutput = true };
        using Process process = Process.Start(start)!;
        string output = process.StandardOutput.ReadToEnd().Trim();
        process.WaitForExit();
        return (process.ExitCode, output);
    }
}
