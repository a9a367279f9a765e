using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Reflection;
using System.Runtime.InteropServices;
using System.Text.RegularExpressions;
using System.Xml.Linq;

namespace BrixCLI.Tests;

public class InterfaceTests
{
    private const BindingFlags Declared = BindingFlags.Public | BindingFlags.NonPublic | BindingFlags.Static |
        BindingFlags.Instance | BindingFlags.DeclaredOnly;

    // PublicApi.txt is what hosts are compiled against; change it with the library, on purpose.
    [Fact]
    public void PublicMembersAreTheListedOnes()
    {
        using var reader = new StreamReader(typeof(InterfaceTests).Assembly.GetManifestResourceStream("PublicApi.txt")!);
        string[] listed = reader.ReadToEnd().Split('\n', StringSplitOptions.RemoveEmptyEntries);
        string[] actual = typeof(AxesCLI).Assembly.GetExportedTypes().OrderBy(type => type.Name, StringComparer.Ordinal)
            .SelectMany(Lines).ToArray();
        Assert.True(listed.SequenceEqual(actual), "PublicApi.txt should read:\n" + string.Join("\n", actual));
    }

    // What editors show of the package is about what hosts can use.
    [Fact]
    public void DocumentationIsOfPublicMembersOnly()
    {
        string[] documented = XDocument.Load(Path.ChangeExtension(typeof(AxesCLI).Assembly.Location, ".xml"))
            .Descendants("member").Select(member => member.Attribute("name")!.Value).ToArray();
        var visible = typeof(AxesCLI).Assembly.GetExportedTypes().SelectMany(type => type.GetMembers(Declared)
            .Where(member => member is FieldInfo { IsPublic: true } or PropertyInfo or MethodBase { IsPublic: true }
                or MethodBase { IsFamily: true })
            .Select(member => type.FullName + "." + member.Name.Replace(".ctor", "#ctor")).Append(type.FullName!)).ToHashSet();
        Assert.True(documented.Length > 100);
        Assert.Equal([], documented.Where(name => !visible.Contains(name[2..].Split('(')[0])));
    }

    private static IEnumerable<string> Lines(Type type) => type.GetMembers(Declared)
        .Where(member => member is FieldInfo { IsPublic: true } or ConstructorInfo { IsPublic: true } ||
            member is MethodInfo method && (method.IsPublic || method.IsFamily))
        .Where(member => member is not MethodBase method // the same for spans, which .NET Standard does not have
            || !method.GetParameters().Any(item => item.ParameterType.IsByRefLike))
        .Select(member => member switch {
            FieldInfo field => type.Name + "." + field.Name + ": " + Name(field.FieldType),
            MethodBase method => (method.IsStatic ? "static " : "") + type.Name + "." + method.Name + "(" +
                string.Join(", ", method.GetParameters().Select(Declaration)) + ")" +
                (method is MethodInfo info ? ": " + Name(info.ReturnType) : ""),
            _ => ""
        }).OrderBy(line => line, StringComparer.Ordinal);

    private static string Declaration(ParameterInfo item) => Name(item.ParameterType) + " " + item.Name +
        (item.HasDefaultValue ? " = " + (item.DefaultValue ?? "null") : "");

    private static string Name(Type type) => type.IsGenericType
        ? type.Name[..type.Name.IndexOf('`')] + "<" + string.Join(", ", type.GetGenericArguments().Select(Name)) + ">"
        : type.Name;

    [Theory]
    [InlineData(typeof(AxesCLI), "axesPtr_"), InlineData(typeof(ExtentsCLI), "extentsPtr_")]
    [InlineData(typeof(VoxelModelCLI), "voxelModelPtr_")]
    [InlineData(typeof(VoxelIteratorCLI), "voxelIterPtr_"), InlineData(typeof(SliceIteratorCLI), "voxelIterPtr_")]
    [InlineData(typeof(TriangleMeshCLI), "triangleMeshPtr_"), InlineData(typeof(PathModelCLI), "pathModelPtr_")]
    [InlineData(typeof(DistanceFieldCLI), "distanceFieldPtr_"), InlineData(typeof(PathCLI), "pathPtr_"),
     InlineData(typeof(StlImportCLI), "stlPtr_")]
    public void EachWrapperOwnsOnePointer(Type type, string field)
    {
        Assert.Equal([field], type.GetFields(Declared).Where(item => item.FieldType == typeof(IntPtr)).Select(item => item.Name));
        Assert.Null(type.GetMethod("Finalize", Declared));
    }

    // The declarations have the functions of the header in its order, and parameters of the same size and kind.
    [Fact]
    public void DeclarationsFollowTheHeader()
    {
        string header = File.ReadAllText(Scene.Metadata("BrixHeader"));
        var functions = Regex.Matches(header, @"^BRIX_C_API ([\w ]+?\*?) ?(brix_\w+)\(([^;]*)\);", RegexOptions.Multiline)
            .Select(match => Kind(match.Groups[1].Value) + " " + match.Groups[2].Value + "(" + string.Join(", ",
                match.Groups[3].Value == "void" ? []
                    : match.Groups[3].Value.Split(',').Select(item => Kind(Regex.Replace(item, @"\w+\s*$", "")))) + ")");
        var declarations = typeof(NativeMethods).GetMethods(Declared).OrderBy(method => method.MetadataToken)
            .Select(method => Kind(method.ReturnType) + " " + method.Name + "(" +
                string.Join(", ", method.GetParameters().Select(item => Kind(item.ParameterType))) + ")");
        Assert.Equal(functions, declarations);
        Assert.Contains("#define BRIX_ABI_VERSION " + NativeMethods.AbiVersion + "\n", header);
    }

    private static string Kind(string cType)
    {
        string type = Regex.Replace(cType, @"\bconst\b|\s", "");
        string item = type.TrimEnd('*');
        if (type is "void*" or "brix_watch_callback" or "brix_run_visitor") return "handle";
        if (Regex.IsMatch(item, "^brix_") && item != "brix_error") type = type[..^1].Replace(item, "handle");
        return type.Replace("brix_error", "NativeError").Replace("uint8_t", "byte").Replace("char", "byte")
            .Replace("int32_t", "int").Replace("int64_t", "long");
    }

    private static string Kind(Type type) => type.IsPointer ? Kind(type.GetElementType()!) + "*" : type.Name switch {
        "Int32" => "int", "Int64" or "IndexTriple" => "long", "Double" or "PointTriple" => "double", "Byte" => "byte",
        "Single" => "float", "UInt32" => "uint",
        "IntPtr" => "handle", "Void" => "void", _ => type.Name
    };

    [Fact]
    public void VersionsAgree()
    {
        Assembly assembly = typeof(AxesCLI).Assembly;
        string version = Scene.Metadata("BrixVersion");
        NativeLibraryLoader.EnsureLoaded();
        unsafe {
            Assert.Equal(version, Marshal.PtrToStringAnsi((IntPtr)NativeMethods.brix_version_string()));
        }
        Assert.Equal(version + ".0", assembly.GetCustomAttribute<AssemblyFileVersionAttribute>()!.Version);
        Assert.Equal(version.Split('.')[0] + ".0.0.0", assembly.GetName().Version!.ToString());
        Assert.NotEmpty(assembly.GetName().GetPublicKeyToken()!);
        Assert.DoesNotContain(assembly.GetReferencedAssemblies(),
            item => !item.Name!.StartsWith("System") && item.Name != "netstandard");
    }
}
