#include "Path.h"

#include "../frame/Require.h"
#include "../model/VoxelPainter.h"
#include "LineWalk.h"

namespace brix {
namespace {

using Index = TraversableGraph::Index;

Triple Cross(const Triple& a, const Triple& b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

// Whether the middle one of three voxels may be left out. No way turns back on itself.
bool IsStraight(const Triple& a, const Triple& b, const Triple& c) { return Cross(Minus(b, a), Minus(c, b)) == Triple{}; }

// The search has walked every straight piece, or concluded for level ground that it can be walked.
void AddVoxels(const TraversableGraph& graph, Index from, Index to, std::vector<Triple>& voxels)
{
    LineWalk walk(graph, from, to);
    while (!walk.IsAtEnd()) {
        Require(walk.Advance(), "The way breaks off: the distance field is broken.");
        voxels.push_back(graph.VoxelIndices(walk.Here()));
    }
}

std::vector<Triple> ToPoints(const Axes& axes, std::int64_t lod, const std::vector<Triple>& bends)
{
    std::vector<Triple> points;
    for (std::size_t i = 0; i < bends.size(); ++i) {
        const bool isEnd = i == 0 || i + 1 == bends.size();
        if (isEnd || !IsStraight(bends[i - 1], bends[i], bends[i + 1])) points.push_back(axes.VoxelCenter(bends[i], lod));
    }
    return points;
}

VoxelModel<bool> ToModel(const DistanceField& field, const std::vector<Triple>& voxels)
{
    Triple lower = voxels.front();
    Triple upper = lower;
    for (const Triple& voxel : voxels) {
        lower = Lowest(lower, voxel);
        upper = Highest(upper, voxel);
    }
    VoxelPainter painter(Extents(field.AxesRef(), lower, upper, field.VoxelLOD()));
    for (const Triple& voxel : voxels) painter.Fill(voxel);
    return painter.Take();
}

} // namespace

Path::Way Path::FindWay(const DistanceField& distanceField, const Triple& point)
{
    const TraversableGraph& graph = distanceField.graph_;
    Index voxel = distanceField.FindReached(point);
    Require(voxel != TraversableGraph::None,
            "The point used to construct a path cannot be reached from the sources of the distance field.");
    Way way{distanceField.Rounded(voxel), {graph.VoxelIndices(voxel)}, {graph.VoxelIndices(voxel)}};
    while (distanceField.bends_[voxel] != voxel) {
        const Index bend = distanceField.bends_[voxel];
        AddVoxels(graph, voxel, bend, way.voxels);
        way.bends.push_back(graph.VoxelIndices(bend));
        voxel = bend;
    }
    return way;
}

Path::Path(const DistanceField& distanceField, const std::array<std::int64_t, 3>& point)
    : Path(distanceField, FindWay(distanceField, point))
{}

Path::Path(const DistanceField& distanceField, const Way& way)
    : length_(way.length),
      points_(ToPoints(distanceField.AxesRef(), distanceField.VoxelLOD(), way.bends)),
      voxels_(ToModel(distanceField, way.voxels))
{}

} // namespace brix
