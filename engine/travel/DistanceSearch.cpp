#include "DistanceSearch.h"

#include <bit>
#include <cmath>
#include <utility>

namespace brix {
namespace {

// Bends up to so many voxels away are moved. Ways that are too long begin there.
constexpr std::int64_t Nearby = 3;

double Square(std::int64_t number) { return static_cast<double>(number) * static_cast<double>(number); }

} // namespace

DistanceSearch::DistanceSearch(const TraversableGraph& graph)
    : graph_(graph),
      squareWidth_(Square(VoxelSpacing(graph.ExtentsRef().VoxelLOD()))),
      squareHeight_(Square(VoxelSpacing(graph.ExtentsRef().AxesRef().VerticalLOD()))),
      bucketWidth_(std::sqrt(squareWidth_) / 2),
      bucketsPerUnit_(1 / bucketWidth_),
      margin_(2 * std::sqrt(2 * squareWidth_ + squareHeight_)),
      labels_(graph.Size()),
      sightLines_(graph, labels_),
      isExpanded_(graph.Size(), 0),
      buckets_(std::bit_ceil(static_cast<std::size_t>(margin_ / 2 / bucketWidth_) + 3))
{}

// After the margin above the limit nothing within it changes any more: Settle() sees to that.
TravelLabels DistanceSearch::Run(const std::vector<Index>& sources, double maxDistance)
{
    for (const Index source : sources) {
        SetLabel(source, 0, source, {});
        Wait(source);
    }
    WatchedLoop loop(graph_.Size());
    std::size_t emptyInARow = 0;
    for (current_ = 0; emptyInARow < buckets_.size() && Front() <= maxDistance + 1 + margin_; ++current_) {
        std::vector<Index>& bucket = BucketAt(current_);
        emptyInARow = bucket.empty() ? emptyInARow + 1 : 0;
        for (std::size_t i = 0; i < bucket.size(); ++i) {
            const Index voxel = bucket[i];
            if (isExpanded_[voxel] != 0) continue;
            Expand(voxel);
            loop.Step();
        }
        bucket.clear();
    }
    return std::move(labels_);
}

void DistanceSearch::SetLabel(Index voxel, double distance, Index bend, const Sight& sight)
{
    labels_.distances[voxel] = distance;
    labels_.bends[voxel] = bend;
    labels_.SetSight(voxel, sight);
}

void DistanceSearch::Expand(Index voxel)
{
    Straighten(voxel);
    isExpanded_[voxel] = 1;
    const Index bend = labels_.bends[voxel];
    graph_.ForEachStep(voxel, [&](Index to) {
        if (labels_.bends[to] != bend) Offer(voxel, to, bend);
    });
}

// Moves a bend close by to one of the voxels around it where that makes the way shorter: the neighbours of a voxel need not know
// the best bend when the straight way from it passes between them.
void DistanceSearch::Straighten(Index voxel)
{
    const Index bend = labels_.bends[voxel];
    if (IsSource(bend)) return;
    if (std::max(std::abs(graph_.X(voxel) - graph_.X(bend)), std::abs(graph_.Y(voxel) - graph_.Y(bend))) <= Nearby)
        graph_.ForEachStep(bend, [&](Index other) { TryBend(other, voxel); });
    if (labels_.IsLevel(voxel) && labels_.IsLevel(bend)) return;
    TryBend(labels_.bends[bend], voxel);
    graph_.ForEachStep(voxel, [&](Index other) {
        const Index b = labels_.bends[other];
        if (b == TraversableGraph::None) return;
        TryBend(b, voxel);
        TryBend(labels_.bends[b], voxel);
    });
}

void DistanceSearch::TryBend(Index bend, Index voxel)
{
    if (!IsReached(bend) || bend == voxel || bend == labels_.bends[voxel]) return;
    const double distance = labels_.distances[bend] + Length(bend, voxel);
    if (!IsShorter(distance, voxel)) return;
    Sight sight;
    if (sightLines_.Sees(bend, voxel, sight)) Settle(voxel, distance, bend, sight);
}

// The way by the neighbour's bend is never longer than the one by the neighbour.
void DistanceSearch::Offer(Index from, Index to, Index bend)
{
    const double straight = labels_.distances[bend] + Length(bend, to);
    if (!IsShorter(straight, to)) return;
    Sight sight = LevelSight();
    const bool isPlain = labels_.IsLevelWithoutLimits(from) && sightLines_.SeesOverPlain(bend, to);
    if ((isPlain || sightLines_.Sees(bend, to, sight)) && Settle(to, straight, bend, sight)) return;
    const double bent = labels_.distances[from] + Length(from, to);
    if (!IsShorter(bent, to)) return;
    Settle(to, bent, from, sightLines_.SightOfStep(from, to));
}

// Returns whether the voxel has the distance now.
bool DistanceSearch::Settle(Index voxel, double distance, Index bend, const Sight& sight)
{
    if (distance < Front() - margin_) return false;
    const bool isNew = !IsReached(voxel);
    if (!isNew) Release(voxel);
    SetLabel(voxel, distance, bend, sight);
    if (!IsSource(bend)) Adopt(bend, voxel);
    Wait(voxel);
    if (!isNew) ShortenChildren(voxel);
    return true;
}

// Carries a shorter distance on to all whose ways bend at a voxel.
void DistanceSearch::ShortenChildren(Index voxel)
{
    if (families_.empty() || families_[voxel].first == TraversableGraph::None) return;
    std::vector<Index> waiting{voxel};
    while (!waiting.empty()) {
        const Index bend = waiting.back();
        waiting.pop_back();
        for (Index child = families_[bend].first; child != TraversableGraph::None; child = families_[child].next) {
            labels_.distances[child] = labels_.distances[bend] + Length(bend, child);
            Wait(child);
            waiting.push_back(child);
        }
    }
}

void DistanceSearch::Adopt(Index bend, Index child)
{
    if (families_.empty()) families_.resize(graph_.Size()); // open floor does without
    const Index next = families_[bend].first;
    families_[child].next = next;
    families_[child].previous = bend;
    families_[bend].first = child;
    if (next != TraversableGraph::None) families_[next].previous = child;
}

void DistanceSearch::Release(Index child)
{
    if (families_.empty()) return;
    const auto [first, next, previous] = families_[child];
    if (previous == TraversableGraph::None) return;
    const bool isFirst = families_[previous].first == child;
    (isFirst ? families_[previous].first : families_[previous].next) = next;
    if (next != TraversableGraph::None) families_[next].previous = previous;
    families_[child] = {first, TraversableGraph::None, TraversableGraph::None};
}

} // namespace brix
