using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Reflection;
using static BrixCLI.Tests.Scene;

namespace BrixCLI.Tests;

/// <summary>
/// Every public member of every class with each hostile value in each argument, and in each pair of arguments: it gives a result
/// or throws System.Exception, and the process lives on.
/// </summary>
public class HostileTests
{
    private static readonly VoxelModelCLI Model = Scene.Model((0, 0, 0), (3, 3, 3), (1, 1, 1), (2, 1, 1));
    private static readonly VoxelModelCLI DisposedModel = Disposed(Scene.Model((0, 0, 0), (0, 0, 0)));
    private static readonly AxesCLI GoodAxes = Axes();
    private static readonly AxesCLI DisposedAxes = Disposed(Axes());
    private static readonly ExtentsCLI GoodExtents = Extents((0, 0, 0), (2, 2, 2));
    private static readonly ExtentsCLI DisposedExtents = Disposed(Extents((0, 0, 0), (2, 2, 2)));
    private static readonly PathModelCLI GoodPathModel = new(Model, 5, 1, 2, true);
    private static readonly PathModelCLI DisposedPathModel = Disposed(new PathModelCLI(Model, 5, 1, 2, true));
    private static readonly DistanceFieldCLI GoodField = new(GoodPathModel, Centre((1, 1, 2)), -1);
    private static readonly DistanceFieldCLI DisposedField = Disposed(new DistanceFieldCLI(GoodPathModel, Centre((1, 1, 2)), -1));

    /// <summary>Values of each type; the first one is good.</summary>
    private static readonly Dictionary<Type, object?[]> Values = new() {
        [typeof(int)] = [1, 0, 5, 6, -1, int.MinValue, int.MaxValue],
        [typeof(long)] = [1L, 0L, 7L, -1L, long.MinValue, long.MaxValue],
        [typeof(double)] = [1000.0, 0.0, -1.0, double.Epsilon, 1e308, double.NaN, double.PositiveInfinity,
            double.NegativeInfinity],
        [typeof(bool)] = [false, true],
        [typeof(string)] = [Path.Combine(Path.GetTempPath(), "brix-hostile.stl"), null, "", "\0", "/", new string('x', 70000),
            "\ud800"],
        [typeof(long[])] = [new long[3], null, new long[2], new[] { long.MinValue, long.MaxValue, 0 }],
        [typeof(int[])] = [new int[3], null, new int[2], new[] { int.MinValue, int.MaxValue, 0 }],
        [typeof(byte[])] = [new byte[27], null, new byte[0], new byte[200]],
        [typeof(bool[])] = [new bool[27], null, new bool[0], new bool[200]],
        [typeof(float[])] = [new float[3], null, new float[4]],
        [typeof(Action<int, int, int, int>)] = [(Action<int, int, int, int>)((_, _, _, _) => { }), null],
        [typeof(Stream)] = [new MemoryStream(), null],
        [typeof(double[])] = [new double[3], null, new double[4]],
        [typeof(double[][][])] = [new[] { new[] { new double[3], new double[3], new double[3] } }, null,
            new double[][][] { null! },
            new[] { new double[][] { null!, null!, null! } }],
        [typeof(List<int>)] = [new List<int> { 1, 1, 1 }, null, new List<int>(), new List<int> { 0, 0 },
            new List<int> { int.MinValue, int.MaxValue, 0 }, new List<int> { int.MaxValue, int.MaxValue, int.MaxValue }],
        [typeof(List<long>)] = [new List<long> { 1, 1, 1 }, null, new List<long>(), new List<long> { 1, long.MinValue }],
        [typeof(List<double>)] = [Triangles([(1, 1, 1)]), null, new List<double>(), new List<double> { 1, 2 },
            Enumerable.Repeat(double.NaN, 9).ToList(), Enumerable.Repeat(double.PositiveInfinity, 18).ToList(),
            Enumerable.Repeat(1e308, 9).ToList(), new List<double> { 0, 0, 0 }, Enumerable.Repeat(-1e19, 10).ToList()],
        [typeof(StlImportCLI)] = [new StlImportCLI(new byte[84], false), Disposed(new StlImportCLI(new byte[84], false))],
        [typeof(StlNumberCLI)] = [StlNumberCLI.Read, (StlNumberCLI)(-1), (StlNumberCLI)25, (StlNumberCLI)int.MaxValue],
        [typeof(AxesCLI)] = [GoodAxes, null, DisposedAxes,
            .. from spacing in new[] { 0, double.NaN, 1e-300, double.PositiveInfinity }
            select new AxesCLI(spacing, Origin, double.NegativeInfinity, 5)],
        [typeof(ExtentsCLI)] = [GoodExtents, null, DisposedExtents],
        [typeof(VoxelModelCLI)] = [Model, null, DisposedModel],
        [typeof(PathModelCLI)] = [GoodPathModel, null, DisposedPathModel],
        [typeof(DistanceFieldCLI)] = [GoodField, null, DisposedField],
        [typeof(List<VoxelModelCLI>)] = [new List<VoxelModelCLI> { Model, Model }, null, new List<VoxelModelCLI>(),
            new List<VoxelModelCLI> { null! }, new List<VoxelModelCLI> { Model, DisposedModel }]
    };

    private static T Disposed<T>(T wrapper) where T : IDisposable
    {
        wrapper.Dispose();
        return wrapper;
    }

    public static IEnumerable<object[]> Classes() =>
        typeof(AxesCLI).Assembly.GetExportedTypes().Where(type => !(type.IsAbstract && !type.IsSealed))
            .Where(type => type != typeof(MemoryLimitCLI)) // its limit would hold for all tests: MemoryLimitTests try its values
            .Where(type => type != typeof(LeakCLI)) // it only holds what was found
            .Where(type => type != typeof(WatchCLI)) // it would go on watching this thread: WatchTests
            .Select(type => new object[] { type });

    [Theory]
    [MemberData(nameof(Classes))]
    public void NoArgumentCrashesTheProcess(Type type)
    {
        foreach (ConstructorInfo constructor in type.GetConstructors()) Attack(constructor, arguments =>
            constructor.Invoke(arguments));
        object?[] receivers = type.IsAbstract ? [null] : Values.TryGetValue(type, out object?[]? values)
            ? [.. values.Where(item => item != null)] : [Create(type), Disposed(Create(type))];
        foreach (object? receiver in receivers) {
            foreach (MethodInfo method in type.GetMethods().Where(item => item.DeclaringType == type)
                .Where(item => item.GetParameters().All(parameter => !parameter.ParameterType.IsByRefLike))) { // as arrays
                Attack(method, arguments => method.Invoke(receiver, arguments));
            }
        }
    }

    private static IDisposable Create(Type type)
    {
        if (type == typeof(PathCLI)) return new PathCLI(GoodField, Centre((1, 1, 2)));
        ConstructorInfo constructor = type.GetConstructors().OrderBy(item => item.GetParameters().Length).First();
        return (IDisposable)constructor.Invoke(constructor.GetParameters().Select(item => Values[item.ParameterType][0])
            .ToArray());
    }

    private static void Attack(MethodBase method, Func<object?[], object?> call)
    {
        object?[][] choices = method.GetParameters().Select(item => Values[item.ParameterType]).ToArray();
        for (int i = 0; i < choices.Length; ++i) {
            for (int j = i; j < choices.Length; ++j) {
                foreach (object? first in choices[i]) {
                    foreach (object? second in choices[j]) {
                        object?[] arguments = choices.Select(values => values[0]).ToArray();
                        arguments[i] = first;
                        arguments[j] = second;
                        Try(method, () => call(arguments));
                    }
                }
            }
        }
        if (choices.Length == 0) Try(method, () => call([]));
    }

    private static void Try(MethodBase method, Func<object?> call)
    {
        try {
            object? result = call();
            if (result is IDisposable wrapper && !ReferenceEquals(result, Model)) wrapper.Dispose();
            if (result is IEnumerable<double[]> parts) Assert.All(parts.Take(3), part => Assert.Equal(0, part.Length % 9));
        } catch (TargetInvocationException exception) {
            Exception thrown = exception.InnerException!;
            bool isListsOwn = method.DeclaringType == typeof(TypesCLI) && thrown is ArgumentOutOfRangeException;
            Assert.True(thrown.GetType() == typeof(Exception) || isListsOwn, method + " threw " + thrown);
            Assert.NotEmpty(thrown.Message);
        }
    }
}
