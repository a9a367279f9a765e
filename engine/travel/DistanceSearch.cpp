#include "DistanceSearch.h"

#include <cmath>
#include <limits>

namespace brix {
namespace {

// How far the ground may lie from a straight line, in voxels: every slope, cut into layers, keeps within one of them.
constexpr double Unevenness = 1.0;

// Bends up to so many voxels away are moved. Ways that are too long begin there; of 7 million voxels in plans full of random obstacles
// this left 1 more than 2 % too long, no limit 15, and no moving 1500.
constexpr std::int64_t Nearby = 3;

// What differs by rounding alone is not shorter.
constexpr double LeastGain = 1 - 1e-12;

} // namespace

DistanceSearch::DistanceSearch(const TraversableGraph& graph, double maxDistance, std::vector<double>& distances,
                               std::vector<Index>& bends)
    : graph_(graph),
      width_(static_cast<double>(VoxelSpacing(graph.ExtentsRef().VoxelLOD()))),
      height_(static_cast<double>(VoxelSpacing(graph.ExtentsRef().AxesRef().VerticalLOD()))),
      maxDistance_(maxDistance),
      distances_(distances),
      bends_(bends),
      sights_(graph.Size()),
      isExpanded_(graph.Size(), 0)
{
    distances_.assign(graph.Size(), std::numeric_limits<double>::infinity());
    bends_.assign(graph.Size(), TraversableGraph::None);
    const double longestStep = std::sqrt(2 * width_ * width_ + height_ * height_);
    buckets_.resize(static_cast<std::size_t>(longestStep / (width_ / 2)) + 3);
}

// A step is at least two buckets long, so that the order within a bucket matters little.
void DistanceSearch::Run(const std::vector<Index>& sources)
{
    for (const Index source : sources) Settle(source, 0, source, Sight{});
    std::size_t emptyInARow = 0;
    for (current_ = 0; emptyInARow < buckets_.size(); ++current_) {
        std::vector<Index>& bucket = buckets_[static_cast<std::size_t>(current_) % buckets_.size()];
        emptyInARow = bucket.empty() ? emptyInARow + 1 : 0;
        for (std::size_t i = 0; i < bucket.size(); ++i) {
            const Index voxel = bucket[i];
            if (isExpanded_[voxel] == 0) Expand(voxel);
        }
        bucket.clear();
    }
}

void DistanceSearch::Expand(Index voxel)
{
    isExpanded_[voxel] = 1;
    Straighten(voxel);
    graph_.ForEachStep(voxel, [&](Index to) {
        if (isExpanded_[to] == 0) Offer(voxel, to);
    });
}

// Moves a bend close by to one of the voxels around it where that makes the way shorter: the neighbours of a voxel need not know the
// best bend when the straight way from it passes between them.
void DistanceSearch::Straighten(Index voxel)
{
    const Index bend = bends_[voxel];
    if (bends_[bend] == bend) return;
    const Triple between = Minus(graph_.VoxelIndices(voxel), graph_.VoxelIndices(bend));
    if (std::max(std::abs(between[0]), std::abs(between[1])) > Nearby) return;
    graph_.ForEachStep(bend, [&](Index other) {
        if (bends_[other] == TraversableGraph::None || other == voxel) return;
        const double distance = distances_[other] + Length(other, voxel);
        if (!(distance < distances_[voxel] * LeastGain)) return;
        Sight sight;
        if (!Sees(other, voxel, sight)) return;
        distances_[voxel] = distance;
        bends_[voxel] = other;
        sights_[voxel] = sight;
    });
}

// The way by the neighbour's bend is never longer than the one by the neighbour.
void DistanceSearch::Offer(Index from, Index to)
{
    const Index bend = bends_[from];
    if (bends_[to] == bend) return;
    const double straight = distances_[bend] + Length(bend, to);
    if (!(straight < distances_[to])) return;
    Sight sight;
    if (Sees(bend, to, sight)) return Settle(to, straight, bend, sight);
    const double bent = distances_[from] + Length(from, to);
    if (!(bent < distances_[to])) return;
    sight = Sight{};
    Sees(from, to, sight); // beside each other
    Settle(to, bent, from, sight);
}

void DistanceSearch::Settle(Index voxel, double distance, Index bend, const Sight& sight)
{
    if (distance > maxDistance_) return;
    distances_[voxel] = distance;
    bends_[voxel] = bend;
    sights_[voxel] = sight;
    buckets_[Bucket(distance)].push_back(voxel);
}

// Rounding may place a distance before the bucket at work, never by more than that.
std::size_t DistanceSearch::Bucket(double distance) const
{
    const auto number = std::max(current_, static_cast<std::int64_t>(distance / (width_ / 2)));
    return static_cast<std::size_t>(number) % buckets_.size();
}

bool DistanceSearch::IsSeenFrom(Index bend, Index voxel) const { return bends_[voxel] == bend && sights_[voxel].isClear; }

// Walks from the voxel towards the bend until it is known whether the rest of the line is free.
bool DistanceSearch::Sees(Index bend, Index voxel, Sight& sight) const
{
    LineWalk walk(graph_, voxel, bend);
    const std::int64_t columns = walk.Length();
    if (columns == 0) return false; // one above the other
    const Direction line = DirectionOf(bend, voxel);
    sight.isClear = !graph_.IsAtRim(voxel);
    std::int64_t steps = 0;
    while (walk.Advance() && !walk.IsInLastColumn()) {
        sight.isClear = sight.isClear && !graph_.IsAtRim(walk.Here());
        if (walk.Steps() == steps) continue; // a step across the main axis
        steps = walk.Steps();
        const Pair pair = PairAt(walk, bend, line);
        const bool isBetween = pair.seesLeft && pair.seesRight;
        if (isBetween || pair.seesLeft || pair.seesRight) {
            const Sight& seen = sights_[pair.seesLeft ? pair.left : pair.right];
            const Turn turn = pair.seesLeft ? Right : Left; // the side of the line that is not in sight
            const bool isFree = isBetween || !IsBeyond(line, turn, seen.limits[turn].direction);
            if (!isFree && seen.limits[turn].isKnown) return false;
            if (isFree) {
                Inherit(sight, pair);
                if (steps == 1) sight.limits = {LimitOf(pair, bend, Left), LimitOf(pair, bend, Right)};
                break;
            }
        }
        if (steps == 1) sight.limits = {Limit{line, false}, Limit{line, false}};
        Narrow(sight, bend, pair.nearer != TraversableGraph::None ? pair.nearer : walk.Here(), columns - steps);
    }
    if (walk.Here() == TraversableGraph::None || (walk.IsInLastColumn() && !walk.IsAtEnd())) return false;
    const auto rise = static_cast<float>(static_cast<double>(graph_.VoxelIndices(voxel)[2] - graph_.VoxelIndices(bend)[2]) /
                                         static_cast<double>(columns));
    if (rise < sight.lowestRise || rise > sight.highestRise) return false;
    Narrow(sight, bend, voxel, columns);
    for (const Turn turn : {Left, Right}) LimitBeside(sight.limits[turn], bend, voxel, turn);
    return true;
}

DistanceSearch::Pair DistanceSearch::PairAt(const LineWalk& walk, Index bend, const Direction& line) const
{
    const Index here = walk.Here();
    const Index other = walk.OtherSide();
    const bool seesHere = IsSeenFrom(bend, here);
    if (other == here) return {here, here, here, seesHere, seesHere};
    const bool seesOther = other != TraversableGraph::None && IsSeenFrom(bend, other);
    const Index nearer = walk.IsOtherNearer() ? other : here;
    if (IsBeyond(DirectionOf(bend, here), Left, line)) return {nearer, here, other, seesHere, seesOther};
    return {nearer, other, here, seesOther, seesHere};
}

DistanceSearch::Direction DistanceSearch::DirectionOf(Index bend, Index voxel) const
{
    const Triple between = Minus(graph_.VoxelIndices(voxel), graph_.VoxelIndices(bend));
    return {static_cast<std::int32_t>(2 * between[0]), static_cast<std::int32_t>(2 * between[1])};
}

// Whether direction a lies further to that side than b. Both are less than half a turn apart; nothing is beyond no direction.
bool DistanceSearch::IsBeyond(const Direction& a, Turn turn, const Direction& b)
{
    const std::int64_t cross = std::int64_t{b.x} * a.y - std::int64_t{b.y} * a.x; // a to the left of b: positive
    return turn == Left ? cross > 0 : cross < 0;
}

void DistanceSearch::Inherit(Sight& sight, const Pair& pair) const
{
    const Index seen = pair.seesLeft ? pair.left : pair.right;
    const bool seesNearer = pair.nearer == pair.left ? pair.seesLeft : pair.seesRight;
    const Sight& from = sights_[seesNearer ? pair.nearer : seen];
    sight.lowestRise = std::max(sight.lowestRise, from.lowestRise);
    sight.highestRise = std::min(sight.highestRise, from.highestRise);
}

// What limits sight on a side behind two voxels, at least one of them in sight.
DistanceSearch::Limit DistanceSearch::LimitOf(const Pair& pair, Index bend, Turn turn) const
{
    const bool seesSide = turn == Left ? pair.seesLeft : pair.seesRight;
    const Index side = turn == Left ? pair.left : pair.right;
    if (seesSide) return sights_[side].limits[turn];
    const Limit limit = sights_[turn == Left ? pair.right : pair.left].limits[turn];
    if (side == TraversableGraph::None) return limit;
    const Direction towards = DirectionOf(bend, side);
    const bool isNearer = (limit.direction.x != 0 || limit.direction.y != 0) && !IsBeyond(limit.direction, turn, towards);
    return isNearer ? limit : Limit{towards, false};
}

// The way to the next voxel to a side of a line from the bend: across the main axis, from a diagonal towards the nearer axis.
TraversableGraph::Direction DistanceSearch::Beside(const Direction& line, Turn turn)
{
    const Direction side = turn == Left ? Direction{-line.y, line.x} : Direction{line.y, -line.x};
    const std::int32_t x = std::abs(line.x);
    const std::int32_t y = std::abs(line.y);
    const bool isAlongX = x < y || (x == y && (side.x < 0) == (line.x > 0));
    if (isAlongX) return side.x > 0 ? TraversableGraph::East : TraversableGraph::West;
    return side.y > 0 ? TraversableGraph::North : TraversableGraph::South;
}

// The corner of a square around a centre that lies farthest from a side.
DistanceSearch::Direction DistanceSearch::Corner(const Direction& centre, Turn turn)
{
    Direction corner{centre.x - 1, centre.y - 1};
    for (const Direction& other :
         {Direction{centre.x + 1, centre.y - 1}, Direction{centre.x - 1, centre.y + 1}, Direction{centre.x + 1, centre.y + 1}}) {
        if (IsBeyond(corner, turn, other)) corner = other;
    }
    return corner;
}

// The next voxel to that side ends what a limit tells. Where it is no ground it limits sight itself; at a rim nobody knows.
void DistanceSearch::LimitBeside(Limit& limit, Index bend, Index voxel, Turn turn) const
{
    const Direction line = DirectionOf(bend, voxel);
    const TraversableGraph::Direction beside = Beside(line, turn);
    const std::int32_t x = (beside == TraversableGraph::East) - (beside == TraversableGraph::West);
    const std::int32_t y = (beside == TraversableGraph::North) - (beside == TraversableGraph::South);
    const Direction centre{line.x + 2 * x, line.y + 2 * y};
    const bool isLimit = limit.direction.x != 0 || limit.direction.y != 0;
    const Index next = graph_.Beside(voxel, beside, static_cast<double>(graph_.VoxelIndices(voxel)[2]));
    if (next != TraversableGraph::None && !graph_.IsAtRim(next)) {
        if (isLimit && !IsBeyond(centre, turn, limit.direction)) limit = Limit{};
        return;
    }
    const Limit corner{Corner(centre, turn), next == TraversableGraph::None};
    if (!isLimit || IsBeyond(limit.direction, turn, corner.direction)) limit = corner;
}

void DistanceSearch::Narrow(Sight& sight, Index bend, Index voxel, std::int64_t columns) const
{
    const auto rise = static_cast<double>(graph_.VoxelIndices(voxel)[2] - graph_.VoxelIndices(bend)[2]);
    sight.lowestRise = std::max(sight.lowestRise, static_cast<float>((rise - Unevenness) / static_cast<double>(columns)));
    sight.highestRise = std::min(sight.highestRise, static_cast<float>((rise + Unevenness) / static_cast<double>(columns)));
}

double DistanceSearch::Length(Index a, Index b) const
{
    const Triple between = Minus(graph_.VoxelIndices(a), graph_.VoxelIndices(b));
    const double x = static_cast<double>(between[0]) * width_;
    const double y = static_cast<double>(between[1]) * width_;
    const double z = static_cast<double>(between[2]) * height_;
    return std::sqrt(x * x + y * y + z * z);
}

} // namespace brix
