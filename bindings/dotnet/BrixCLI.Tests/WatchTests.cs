using System;
using System.Collections.Generic;
using System.Linq;
using System.Threading;
using static BrixCLI.Tests.Scene;

namespace BrixCLI.Tests;

public sealed class WatchTests : IDisposable
{
    private readonly VoxelModelCLI model_ = Model((0, 0, 0), (300, 300, 100), (1, 1, 1), (250, 1, 1), (40, 250, 90));

    public void Dispose() => model_.Dispose();

    // Progress<T> tells its listeners on other threads.
    private sealed class Listener(Action<double> report) : IProgress<double>
    {
        public void Report(double value) => report(value);
    }

    private VoxelModelCLI Grow() => SurfaceOperationsCLI.ExpandHorizontally(model_, 101);

    [Fact]
    public void TellsSharesThatRise()
    {
        var shares = new List<double>();
        using (new WatchCLI(new Listener(shares.Add))) Grow().Dispose();
        Assert.NotEmpty(shares);
        Assert.Equal(shares.OrderBy(share => share), shares);
        Assert.InRange(shares[0], 0, 1);
        Assert.InRange(shares[^1], 0, 1);
        int told = shares.Count;
        Grow().Dispose();
        Assert.Equal(told, shares.Count);
    }

    [Fact]
    public void EndsAnOperationByItsTokenOrByWhatProgressThrows()
    {
        using var source = new CancellationTokenSource();
        using var outer = new WatchCLI();
        using (new WatchCLI(new Listener(_ => source.Cancel()), source.Token)) {
            var thrown = Assert.Throws<OperationCanceledException>(Grow);
            Assert.Equal("The operation was cancelled.", thrown.Message);
            Assert.Equal(source.Token, thrown.CancellationToken);
        }
        using (new WatchCLI(new Listener(_ => throw new InvalidOperationException("door"))))
            Assert.Equal("door", Assert.Throws<InvalidOperationException>(Grow).Message);
        using (new WatchCLI(null, source.Token)) {
            using var inner = new WatchCLI();
            Assert.Throws<OperationCanceledException>(Grow); // by the outer one
        }
        Grow().Dispose();
    }

    [Fact]
    public void IsDisposedOnItsThread()
    {
        WatchCLI watch = null!;
        var other = new Thread(() => watch = new WatchCLI());
        other.Start();
        other.Join();
        Assert.Equal("A watch has to be ended on the thread on which it was begun.", MessageOf(watch.Dispose));
        watch.Dispose(); // once is enough
    }
}
