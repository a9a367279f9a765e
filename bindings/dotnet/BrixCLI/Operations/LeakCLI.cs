using System.Collections.Generic;

namespace BrixCLI;

/// <summary>A way out of a model through empty voxels, and the place where it is narrowest. Found by
/// <see cref="FillOperationsCLI.FindLeak"/>; there is nothing to dispose of.</summary>
public sealed class LeakCLI
{
    internal LeakCLI(List<double> points, double[] gap)
    {
        Points = points;
        GapWidth = (int)gap[3];
        GapCentre = GapWidth == 0 ? [] : [gap[0], gap[1], gap[2]];
    }

    /// <summary>The way from the point to a face of the extents: three world coordinates for the centre of each of its voxels,
    /// one beside the other.</summary>
    public List<double> Points { get; }

    /// <summary>Three world coordinates of the narrowest place, from where no wider cube can go on; empty when a cube of 32
    /// voxels goes the whole way.</summary>
    public List<double> GapCentre { get; }

    /// <summary>The edge of the largest cube that goes the way, in voxels: <see cref="FillOperationsCLI.SealedFill"/> with this
    /// gap closes it. 0 when there is no narrowest place.</summary>
    public int GapWidth { get; }
}
