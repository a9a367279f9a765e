#include "SightLines.h"

#include <limits>

namespace brix {
namespace {

// Whether direction a lies further to that side than b. Both are less than half a turn apart; nothing is beyond no direction.
bool IsBeyond(const SightDirection& a, SightSide side, const SightDirection& b)
{
    const std::int64_t cross = std::int64_t{b.x} * a.y - std::int64_t{b.y} * a.x; // a to the left of b: positive
    return side == Left ? cross > 0 : cross < 0;
}

using Step = TraversableGraph::Direction;

// What depends only on the eighth of the circle in which a line from a bend runs, or on its diagonal.
struct Octant
{
    Step along, across; // back to the bend: along the main axis, and along the other one
    bool isNearerLeft;  // of two voxels beside each other across the main axis, whether the one farther from the axis is left
    std::array<Step, 2> besides; // the ways to the next voxels to both sides: from a diagonal towards the nearer axis
};

constexpr Octant MakeOctant(bool isLeftwards, bool isDownwards, std::size_t relation) // of |x| to |y|: greater, less, equal
{
    const Step alongX = isLeftwards ? TraversableGraph::East : TraversableGraph::West;
    const Step alongY = isDownwards ? TraversableGraph::North : TraversableGraph::South;
    const Step leftAlongX = isDownwards ? TraversableGraph::East : TraversableGraph::West;
    const Step leftAlongY = isLeftwards ? TraversableGraph::South : TraversableGraph::North;
    const bool isLeftAlongX = relation == 1 || (relation == 2 && leftAlongX == alongX);
    const bool isRightAlongX = relation == 1 || (relation == 2 && !isLeftAlongX);
    return {relation == 0 ? alongX : alongY,
            relation == 0 ? alongY : alongX,
            (isLeftwards == isDownwards) == (relation == 0),
            {isLeftAlongX ? leftAlongX : leftAlongY, TraversableGraph::Opposite(isRightAlongX ? leftAlongX : leftAlongY)}};
}

constexpr std::array<Octant, 12> Octants = [] {
    std::array<Octant, 12> octants{};
    for (std::size_t i = 0; i < octants.size(); ++i) octants[i] = MakeOctant((i & 1) != 0, (i & 2) != 0, i >> 2);
    return octants;
}();

// By a table: the front of a search runs in all directions at once, and no branch could be foreseen.
const Octant& OctantOf(const SightDirection& line)
{
    const std::int32_t x = std::abs(line.x);
    const std::int32_t y = std::abs(line.y);
    const std::size_t relation = static_cast<std::size_t>(x < y) + 2 * static_cast<std::size_t>(x == y);
    return Octants[4 * relation + 2 * static_cast<std::size_t>(line.y < 0) + static_cast<std::size_t>(line.x < 0)];
}

// One step on, in half voxels.
SightDirection Next(const SightDirection& direction, Step step)
{
    return {direction.x + 2 * ((step == TraversableGraph::East) - (step == TraversableGraph::West)),
            direction.y + 2 * ((step == TraversableGraph::North) - (step == TraversableGraph::South))};
}

bool IsMainlyX(const SightDirection& line) { return std::abs(line.x) >= std::abs(line.y); }

SightSide OtherSide(SightSide side) { return side == Left ? Right : Left; }

void Tighten(Sight& sight, SightSide side, const SightDirection& limit, bool isKnown)
{
    if (IsDirection(sight.limits[side]) && !IsBeyond(sight.limits[side], side, limit)) return;
    sight.limits[side] = limit;
    sight.isKnown[side] = isKnown;
}

// The corner of a square around a centre that lies farthest from a side.
SightDirection Corner(const SightDirection& centre, SightSide side)
{
    SightDirection corner{centre.x - 1, centre.y - 1};
    for (const SightDirection& other : {SightDirection{centre.x + 1, centre.y - 1}, SightDirection{centre.x - 1, centre.y + 1},
                                        SightDirection{centre.x + 1, centre.y + 1}}) {
        if (IsBeyond(corner, side, other)) corner = other;
    }
    return corner;
}

} // namespace

TravelLabels::TravelLabels(Index voxels)
    : distances(voxels, std::numeric_limits<double>::infinity()),
      bends(voxels, TraversableGraph::None),
      sights_(voxels, Uneven),
      known_{Sight{}, LevelSight()}
{}

void TravelLabels::SetLimitedSight(Index& number, const Sight& sight)
{
    if (!sight.isLevel || !HasLimits(sight)) {
        unused_.push_back(number);
        number = sight.isLevel ? Unlimited : Uneven;
        return;
    }
    if (number <= Unlimited && unused_.empty()) {
        number = static_cast<Index>(known_.size());
        known_.emplace_back();
    } else if (number <= Unlimited) {
        number = unused_.back();
        unused_.pop_back();
    }
    known_[number] = sight;
}

inline bool SightLines::IsInLevelSight(Index bend, Index voxel) const
{
    return labels_.bends[voxel] == bend && labels_.IsLevel(voxel);
}

inline SightDirection SightLines::DirectionOf(Index bend, Index voxel) const
{
    return {2 * (graph_.X(voxel) - graph_.X(bend)), 2 * (graph_.Y(voxel) - graph_.Y(bend))};
}

// Where the next voxel to a side is no level ground, it limits sight.
inline void SightLines::LimitBeside(Sight& sight, SightSide side, Index voxel, Index bend, Step beside) const
{
    const Index next = graph_.Beside(voxel, beside, graph_.Z(voxel));
    if (next != TraversableGraph::None && IsAtHeight(next, voxel)) return;
    Tighten(sight, side, Corner(Next(DirectionOf(bend, voxel), beside), side), next == TraversableGraph::None);
}

// What limits sight on a side behind two voxels, at least one of them in sight.
inline void SightLines::TakeLimits(Sight& sight, const Pair& pair, Index bend) const
{
    if (pair.seesLeft && pair.seesRight && labels_.IsLevelWithoutLimits(pair.left) && labels_.IsLevelWithoutLimits(pair.right))
        return;
    for (const SightSide side : {Left, Right}) {
        const bool seesSide = side == Left ? pair.seesLeft : pair.seesRight;
        const Index beside = side == Left ? pair.left : pair.right;
        const Sight& seen = labels_.SightOf(seesSide ? beside : (side == Left ? pair.right : pair.left));
        if (IsDirection(seen.limits[side])) Tighten(sight, side, seen.limits[side], seen.isKnown[side]);
        if (!seesSide && beside != TraversableGraph::None) Tighten(sight, side, DirectionOf(bend, beside), false);
    }
}

// A limit counts as far as the next voxels to both sides.
inline void SightLines::LimitBesides(Sight& sight, Index voxel, Index bend, const SightDirection& line) const
{
    const bool isOnPlain = graph_.IsOnPlain(voxel);
    if (isOnPlain && !HasLimits(sight)) return;
    const std::array<Step, 2> besides = OctantOf(line).besides;
    for (const SightSide side : {Left, Right}) {
        if (!isOnPlain) LimitBeside(sight, side, voxel, bend, besides[side]);
        if (!IsDirection(sight.limits[side]) || IsBeyond(Next(line, besides[side]), side, sight.limits[side])) continue;
        sight.limits[side] = {};
        sight.isKnown[side] = true;
    }
}

// The same where all voxels around are known to be there, also of a diagonal.
inline SightLines::Pair SightLines::PairOnPlain(Index bend, Index voxel, const SightDirection& line) const
{
    const Octant& octant = OctantOf(line);
    const auto [one, other] = ColumnBeforeOnPlain(voxel, line.x, line.y);
    const bool seesOne = IsInLevelSight(bend, one);
    const bool seesOther = IsInLevelSight(bend, other);
    return octant.isNearerLeft ? Pair{one, other, seesOne, seesOther} : Pair{other, one, seesOther, seesOne};
}

// The two voxels that the line passes between in the column before, or the one that it passes through: nobody where it runs along
// a diagonal. Mostly both are in sight, and soonest asked.
inline SightLines::Pair SightLines::PairBefore(Index bend, Index voxel, const SightDirection& line) const
{
    constexpr Pair nobody{TraversableGraph::None, TraversableGraph::None, false, false};
    if (graph_.IsOnPlain(voxel)) return PairOnPlain(bend, voxel, line);
    const Octant& octant = OctantOf(line);
    const std::int32_t z = graph_.Z(voxel);
    const Index one = graph_.Beside(voxel, octant.along, z);
    if (one == TraversableGraph::None || graph_.Z(one) != z || std::abs(line.x) == std::abs(line.y)) return nobody;
    const bool seesOne = IsInLevelSight(bend, one);
    if (line.x == 0 || line.y == 0) return {one, one, seesOne, seesOne};
    Index other = graph_.Beside(one, octant.across, z);
    if (other != TraversableGraph::None && graph_.Z(other) != z) other = TraversableGraph::None;
    const bool seesOther = other != TraversableGraph::None && IsInLevelSight(bend, other);
    return octant.isNearerLeft ? Pair{one, other, seesOne, seesOther} : Pair{other, one, seesOther, seesOne};
}

// What a voxel in sight knows of a line that passes it on a side, within a voxel.
inline SightLines::View SightLines::ViewBeside(const SightDirection& line, Index seen, SightSide side) const
{
    const Sight& sight = labels_.SightOf(seen);
    if (!IsBeyond(line, side, sight.limits[side])) return View::Clear;
    return sight.isKnown[side] ? View::Hidden : View::Unknown;
}

// What a pair of voxels knows of the line between them.
inline SightLines::View SightLines::ViewBetween(const SightDirection& line, const Pair& pair) const
{
    if (pair.seesLeft && pair.seesRight) return View::Clear;
    if (!pair.seesLeft && !pair.seesRight) return View::Unknown;
    return ViewBeside(line, pair.seesLeft ? pair.left : pair.right, pair.seesLeft ? Right : Left);
}

bool SightLines::Sees(Index bend, Index voxel, Sight& sight)
{
    if (IsAtHeight(bend, voxel)) {
        const SightDirection line = DirectionOf(bend, voxel);
        const Pair before = PairBefore(bend, voxel, line);
        const View view = ViewBetween(line, before);
        if (view == View::Clear) {
            sight = LevelSight();
            TakeLimits(sight, before, bend);
            LimitBesides(sight, voxel, bend, line);
            return true;
        }
        if (view == View::Hidden) CastShadow(bend, voxel, ShadowBehind(bend, before, line));
        if (view == View::Hidden || IsInShadow(bend, voxel, line, before)) return false;
        const View walked = LevelView(bend, voxel, sight);
        if (walked != View::Unknown) return walked == View::Clear;
    }
    sight = Sight{};
    const LineWalk walk(graph_, voxel, bend);
    return walk.Length() <= UnevenReach && IsStraightPiece(graph_, voxel, bend);
}

Sight SightLines::SightOfStep(Index bend, Index voxel)
{
    if (!IsAtHeight(bend, voxel)) return {};
    Sight sight = LevelSight();
    LimitBesides(sight, voxel, bend, DirectionOf(bend, voxel));
    return sight;
}

// Walks from the voxel towards the bend until it is known whether the rest of the line is free.
SightLines::View SightLines::LevelView(Index bend, Index voxel, Sight& sight)
{
    const SightDirection line = DirectionOf(bend, voxel);
    LineWalk walk(graph_, voxel, bend);
    if (walk.IsInLastColumn()) return View::Unknown; // one above the other
    sight = LevelSight();
    const std::array<Step, 2> besides = OctantOf(line).besides;
    std::int64_t steps = 0;
    bool isOnPlain = graph_.IsOnPlain(voxel);
    const auto isEitherKnown = [&](Index here, Index other) {
        return steps == 0 || IsInLevelSight(bend, here) || IsInLevelSight(bend, other);
    };
    for (;;) {
        const Index last = walk.Here();
        if (isOnPlain) {
            walk.AdvanceOverPlain(isEitherKnown);
        } else if (!walk.Advance()) {
            if (!walk.IsAtCorner()) CastShadow(bend, voxel, ShadowOf(Next(DirectionOf(bend, last), walk.Heading()), line));
            return View::Hidden;
        }
        const Index here = walk.Here();
        if (!isOnPlain && !IsAtHeight(here, bend)) return View::Unknown;
        if (walk.IsInLastColumn()) break;
        isOnPlain = graph_.IsOnPlain(here);
        if (walk.Steps() != steps) { // not a step across the main axis
            steps = walk.Steps();
            Index other = walk.OtherSide();
            if (!isOnPlain && other != TraversableGraph::None && !IsAtHeight(other, bend)) other = TraversableGraph::None;
            const Pair pair = PairAt(bend, line, here, other);
            const View view = ViewBetween(line, pair);
            if (view == View::Hidden) {
                CastShadow(bend, voxel, ShadowBehind(bend, pair, line));
                return view;
            }
            if (view == View::Clear) {
                TakeLimits(sight, pair, bend);
                break;
            }
            if (steps == 1) {
                const View known = ViewFromBeside(bend, voxel, line, sight);
                if (known == View::Hidden) return known;
                if (known == View::Clear) break;
            }
        }
        if (isOnPlain) continue;
        for (const SightSide side : {Left, Right}) LimitBeside(sight, side, here, bend, besides[side]);
    }
    LimitBesides(sight, voxel, bend, line);
    return View::Clear;
}

// What the next voxels to both sides know of the line.
SightLines::View SightLines::ViewFromBeside(Index bend, Index voxel, const SightDirection& line, Sight& sight) const
{
    const std::array<Step, 2> besides = OctantOf(line).besides;
    for (const SightSide side : {Left, Right}) {
        const Step beside = besides[side];
        const Index next = graph_.Beside(voxel, beside, graph_.Z(voxel));
        if (next == TraversableGraph::None || !IsInLevelSight(bend, next)) continue;
        if (OctantOf(Next(line, beside)).besides[OtherSide(side)] != TraversableGraph::Opposite(beside)) continue;
        const View view = ViewBeside(line, next, OtherSide(side));
        if (view == View::Clear) Tighten(sight, OtherSide(side), line, false); // nothing is known there
        if (view != View::Unknown) return view;
    }
    return View::Unknown;
}

// The two voxels beside a walked line, by side: `here` is in the walk, `other` on the other side of the line.
SightLines::Pair SightLines::PairAt(Index bend, const SightDirection& line, Index here, Index other) const
{
    const bool seesHere = IsInLevelSight(bend, here);
    if (other == here) return {here, here, seesHere, seesHere};
    const bool seesOther = other != TraversableGraph::None && IsInLevelSight(bend, other);
    if (IsBeyond(DirectionOf(bend, here), Left, line)) return {here, other, seesHere, seesOther};
    return {other, here, seesOther, seesHere};
}

// The shadow of a square without ground at the bend's height or one voxel off it.
SightLines::Shadow SightLines::ShadowOf(const SightDirection& square, const SightDirection& line)
{
    const bool isMainlyX = IsMainlyX(line);
    return {TraversableGraph::None,
            TraversableGraph::None,
            Corner(square, Left),
            Corner(square, Right),
            std::abs(isMainlyX ? square.x : square.y),
            isMainlyX};
}

// The shadow that hides one of two voxels, as the other one knows it.
SightLines::Shadow SightLines::ShadowBehind(Index bend, const Pair& pair, const SightDirection& line) const
{
    const Index seen = pair.seesLeft ? pair.left : pair.right;
    const Index hidden = pair.seesLeft ? pair.right : pair.left;
    const SightDirection& limit = labels_.SightOf(seen).limits[pair.seesLeft ? Right : Left];
    const SightDirection end = hidden == TraversableGraph::None ? line : DirectionOf(bend, hidden);
    const SightDirection at = DirectionOf(bend, seen);
    const bool isMainlyX = IsMainlyX(line);
    return {TraversableGraph::None,
            TraversableGraph::None,
            pair.seesLeft ? end : limit,
            pair.seesLeft ? limit : end,
            std::abs(isMainlyX ? at.x : at.y),
            isMainlyX};
}

void SightLines::CastShadow(Index bend, Index voxel, Shadow shadow)
{
    shadow.bend = bend;
    shadow.voxel = voxel;
    ShadowAt(voxel) = shadow;
}

// Whether the voxel is known to be hidden: from an earlier question, or because a voxel before it is and so is the line.
bool SightLines::IsInShadow(Index bend, Index voxel, const SightDirection& line, const Pair& before)
{
    const Shadow& own = ShadowAt(voxel);
    if (own.voxel == voxel && own.bend == bend) return true;
    const bool isMainlyX = IsMainlyX(line);
    const std::int32_t depth = std::abs(isMainlyX ? line.x : line.y);
    for (const Index other : {before.left, before.right}) {
        if (other == TraversableGraph::None) continue;
        const Shadow shadow = ShadowAt(other);
        if (shadow.voxel != other || shadow.bend != bend || shadow.isMainlyX != isMainlyX || depth <= shadow.depth) continue;
        if (!IsBeyond(line, Left, shadow.right) || !IsBeyond(line, Right, shadow.left)) continue;
        CastShadow(bend, voxel, shadow);
        return true;
    }
    return false;
}

} // namespace brix
