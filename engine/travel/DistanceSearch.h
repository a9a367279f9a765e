// The search behind a distance field: labels are corrected until no voxel offers its neighbours a shorter way.
//
// Voxels wait in buckets of half a voxel's width and are expanded in that order, as in Dijkstra's algorithm. A straight piece may
// end nearer than the ground that it passes over (a line over a kerb is shorter than the way up and down), so a voxel may be
// improved after its turn, and is expanded again; the ways that bend there shorten with it. What is more than a margin below the
// bucket at work stays as it is: a search that stops early knows then which of its labels are those of a search without end.
#pragma once

#include "SightLines.h"

#include <cmath>

namespace brix {

class DistanceSearch
{
public:
    using Index = TraversableGraph::Index;

    explicit DistanceSearch(const TraversableGraph& graph);

    /// To be called once. What is within `maxDistance` of the sources, as rounded numbers tell it, has its final label; others
    /// have any. Source voxels have themselves as bends.
    TravelLabels Run(const std::vector<Index>& sources, double maxDistance);

private:
    // The voxels whose ways bend last at the same voxel, as a list; sources, which never improve, have none.
    struct Family
    {
        Index first = TraversableGraph::None; // child
        Index next = TraversableGraph::None;  // sibling
        Index previous = TraversableGraph::None;
    };

    void Expand(Index voxel);
    void Straighten(Index voxel);
    void TryBend(Index bend, Index voxel);
    void Offer(Index from, Index to, Index bend);
    bool Settle(Index voxel, double distance, Index bend, const Sight& sight);
    void ShortenChildren(Index voxel);
    void Adopt(Index bend, Index child);
    void Release(Index child);

    // Rounding, or an improvement after the voxel's turn, may place a distance before the bucket at work.
    void Wait(Index voxel)
    {
        isExpanded_[voxel] = 0;
        BucketAt(std::max(current_, static_cast<std::int64_t>(labels_.distances[voxel] * bucketsPerUnit_))).push_back(voxel);
    }

    void SetLabel(Index voxel, double distance, Index bend, const Sight& sight);
    bool IsReached(Index voxel) const { return labels_.bends[voxel] != TraversableGraph::None; }
    bool IsSource(Index voxel) const { return labels_.bends[voxel] == voxel; }
    std::vector<Index>& BucketAt(std::int64_t number)
    {
        return buckets_[static_cast<std::size_t>(number) & (buckets_.size() - 1)];
    }
    double Front() const { return static_cast<double>(current_) * bucketWidth_; }

    // What differs by rounding alone is not shorter.
    bool IsShorter(double distance, Index voxel) const { return distance < labels_.distances[voxel] * (1 - 1e-12); }

    double Length(Index a, Index b) const
    {
        const double x = graph_.X(a) - graph_.X(b);
        const double y = graph_.Y(a) - graph_.Y(b);
        const double z = graph_.Z(a) - graph_.Z(b);
        return std::sqrt((x * x + y * y) * squareWidth_ + z * z * squareHeight_);
    }

    const TraversableGraph& graph_;
    double squareWidth_, squareHeight_; // of a voxel
    double bucketWidth_;
    double bucketsPerUnit_;
    double margin_;
    TravelLabels labels_;
    SightLines sightLines_;
    std::vector<Family> families_; // none as long as all ways bend at sources
    std::vector<std::uint8_t> isExpanded_;
    std::vector<std::vector<Index>> buckets_; // a ring, a power of two long: no step is longer than the ring
    std::int64_t current_ = 0;                // number of the bucket at work, counted without the ring
};

} // namespace brix
