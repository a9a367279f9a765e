#include "DistanceField.h"

#include "../frame/Require.h"
#include "../model/VoxelPainter.h"
#include "DistanceSearch.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace brix {
namespace {

using Index = TraversableGraph::Index;

// The traversable voxel that a source stands for, or None.
Index Ground(const TraversableGraph& graph, const Triple& source, std::int64_t agentHeight)
{
    const Extents& extents = graph.ExtentsRef();
    Triple voxel = extents.AxesRef().ContainingVoxel(source, extents.VoxelLOD());
    const std::int64_t lowest = std::max(extents.LowerIndices()[2], voxel[2] - std::min(agentHeight, MaxCoordinate));
    for (voxel[2] = std::min(voxel[2], extents.UpperIndices()[2]); voxel[2] >= lowest; --voxel[2]) {
        const Index ground = graph.Find(voxel);
        if (ground != TraversableGraph::None) return ground;
    }
    return TraversableGraph::None;
}

std::vector<Index> Grounds(const TraversableGraph& graph, const std::vector<Triple>& sources, std::int64_t agentHeight)
{
    Require(!sources.empty(), "At least one source point is required to construct a distance field.");
    std::vector<Index> grounds;
    for (const Triple& source : sources) {
        const Index ground = Ground(graph, source, agentHeight);
        if (ground != TraversableGraph::None) grounds.push_back(ground);
    }
    Require(!grounds.empty(),
            "None of the source points used to construct a distance field is on a traversable voxel, or above one "
            "within the height of the agent.");
    return grounds;
}

} // namespace

DistanceField::DistanceField(const PathModel& pathModel, const std::vector<std::array<std::int64_t, 3>>& sources,
                             std::int64_t maxDistance)
    : graph_(pathModel.TraversableVoxels())
{
    const std::vector<Index> grounds = Grounds(graph_, sources, pathModel.AgentHeightOffset());
    RequireNotNegative("The maximum distance used to construct a distance field", maxDistance);
    TravelLabels labels = DistanceSearch(graph_).Run(grounds, static_cast<double>(maxDistance));
    distances_ = std::move(labels.distances);
    bends_ = std::move(labels.bends);
    farthest_ = *std::min_element(grounds.begin(), grounds.end());
    CutAt(maxDistance);
}

// A limit cuts distances as they are told.
void DistanceField::CutAt(std::int64_t maxDistance)
{
    std::int64_t farthest = Rounded(farthest_);
    for (Index voxel = 0; voxel < graph_.Size(); ++voxel) {
        if (voxel % (1 << 20) == 0) CheckWatch();
        if (!IsReached(voxel)) continue;
        const std::int64_t distance = Rounded(voxel);
        if (distance > maxDistance) {
            bends_[voxel] = TraversableGraph::None;
        } else if (distance > farthest) {
            farthest_ = voxel;
            farthest = distance;
        }
    }
}

DistanceField::Index DistanceField::FindReached(const Triple& point) const
{
    const Index voxel = graph_.Find(AxesRef().ContainingVoxel(point, VoxelLOD()));
    return voxel != TraversableGraph::None && IsReached(voxel) ? voxel : TraversableGraph::None;
}

std::int64_t DistanceField::Distance(const std::array<std::int64_t, 3>& point) const
{
    const Index voxel = FindReached(point);
    return voxel == TraversableGraph::None ? -1 : Rounded(voxel);
}

VoxelModel<bool> DistanceField::ReachableVoxels() const { return ReachableVoxels(std::numeric_limits<std::int64_t>::max()); }

VoxelModel<bool> DistanceField::ReachableVoxels(std::int64_t maxDistance) const
{
    RequireNotNegative("The maximum distance of reachable voxels", maxDistance);
    VoxelPainter painter(ExtentsRef());
    ForEachReachable([&](const Triple& voxel, std::int64_t distance) {
        if (distance <= maxDistance) painter.Fill(voxel);
    });
    return painter.Take();
}

} // namespace brix
