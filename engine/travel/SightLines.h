// Which voxels a bend of a way sees: whether a straight piece leads to them (LineWalk.h).
//
// On level ground this is the question of a plan, the layer of the bend's height, and most of the answer is known from the voxels
// in the column before:
//
//     . . . . . . . .   A line from the bend (b) to a voxel (v) is free when the two voxels are in sight that it passes between
//     . . . . # . . .   in the column before (1, 2), as the strip between their lines is narrower than a square: nothing stands
//     b - - _ # 2 . .   in it that meets neither of them. Where only one of them is in sight, it knows the corner of the obstacle
//     . . . . - 1 v .   that hides the other, and the line passes it or not. Else the line is walked back, column by column.
//
// Over uneven ground the whole line is walked.
#pragma once

#include "LineWalk.h"

namespace brix {

/// A direction in plan from a bend, in half voxels; none: (0, 0).
struct SightDirection
{
    std::int32_t x = 0;
    std::int32_t y = 0;
};

enum SightSide : std::size_t
{
    Left, // counter-clockwise
    Right
};

/// What is known of the sight of a bend around a voxel that it sees. Where the line is level: lines from the bend to either side
/// of the voxel are free as far as the limit of that side, but at most as far as the centre of the next voxel there; beyond a
/// limit that is known they meet an obstacle.
struct Sight
{
    std::array<SightDirection, 2> limits{};
    std::array<bool, 2> isKnown{true, true};
    bool isLevel = false; // all voxels that the line crosses are of the same height
};

/// Along a level line, without limits.
inline Sight LevelSight()
{
    Sight sight;
    sight.isLevel = true;
    return sight;
}

inline bool IsDirection(const SightDirection& direction) { return direction.x != 0 || direction.y != 0; }
inline bool HasLimits(const Sight& sight) { return IsDirection(sight.limits[Left]) || IsDirection(sight.limits[Right]); }

/// What the search knows of the voxels. Most of those in level sight have no limits, and need no room for them.
class TravelLabels
{
public:
    using Index = TraversableGraph::Index;

    explicit TravelLabels(Index voxels);

    void SetSight(Index voxel, const Sight& sight)
    {
        Index& number = sights_[voxel];
        if (number <= Unlimited && (!sight.isLevel || !HasLimits(sight)))
            number = sight.isLevel ? Unlimited : Uneven;
        else
            SetLimitedSight(number, sight);
    }
    bool IsLevel(Index voxel) const { return sights_[voxel] != Uneven; }
    bool IsLevelWithoutLimits(Index voxel) const { return sights_[voxel] == Unlimited; }
    const Sight& SightOf(Index voxel) const { return known_[sights_[voxel]]; }

    std::vector<double> distances; // in base units; infinite where nothing is known
    std::vector<Index> bends;      // None where nothing is known

private:
    static constexpr Index Uneven = 0;
    static constexpr Index Unlimited = 1;

    void SetLimitedSight(Index& number, const Sight& sight);

    std::vector<Index> sights_; // numbers in known_
    std::vector<Sight> known_;
    std::vector<Index> unused_; // numbers
};

class SightLines
{
public:
    using Index = TraversableGraph::Index;

    /// Both must outlive it. Labels change meanwhile: what they tell of sight must be true whenever a question is asked.
    SightLines(const TraversableGraph& graph, const TravelLabels& labels) : graph_(graph), labels_(labels), shadows_(ShadowCount)
    {}

    /// Whether it is plain that a bend sees a voxel: over level ground without limits, in the midst of such ground.
    bool SeesOverPlain(Index bend, Index voxel) const
    {
        if (!graph_.IsOnPlain(voxel) || !IsAtHeight(bend, voxel)) return false;
        const auto [one, other] = ColumnBeforeOnPlain(voxel, graph_.X(voxel) - graph_.X(bend), graph_.Y(voxel) - graph_.Y(bend));
        return labels_.bends[one] == bend && labels_.bends[other] == bend && labels_.IsLevelWithoutLimits(one) &&
               labels_.IsLevelWithoutLimits(other);
    }

    /// Whether a bend sees a voxel, and if so what is known of the sight. It may miss what it sees: over uneven ground at
    /// distances of more than UnevenReach columns, and behind an obstacle that level ground ends at.
    bool Sees(Index bend, Index voxel, Sight& sight);

    /// What is known of the sight of a bend around a voxel that a step leads to from it.
    Sight SightOfStep(Index bend, Index voxel);

    /// Lines over uneven ground are walked to the end. To leave out the longer ones bounds the cost, and adds nothing worth
    /// mentioning to a way, which may go straight on after a bend: half a voxel aside in 64 are 0.003 %.
    static constexpr std::int64_t UnevenReach = 64;

private:
    enum class View
    {
        Clear,
        Hidden,
        Unknown
    };
    // The two voxels of the bend's height that a line passes between, or None, and those of them in level sight of the bend.
    struct Pair
    {
        Index left, right;
        bool seesLeft, seesRight;
    };

    // Why a voxel is hidden from a bend: level lines of the bend between two directions end at an obstacle before they have come
    // that far along the main axis. This hides more of the voxels behind, and needs no walk to be told again.
    struct Shadow
    {
        Index voxel = TraversableGraph::None;
        Index bend = TraversableGraph::None;
        SightDirection right, left; // which do not belong to it
        std::int32_t depth = 0;     // in half voxels
        bool isMainlyX = false;
    };
    static constexpr std::size_t ShadowCount = 1 << 14; // the latest ones, as the front of the search moves on

    Pair PairBefore(Index bend, Index voxel, const SightDirection& line) const;
    // The two voxels around a voxel on a plain that a line of this direction comes from, the one along its main axis first.
    std::array<Index, 2> ColumnBeforeOnPlain(Index voxel, std::int32_t x, std::int32_t y) const
    {
        const Index alongX = x > 0 ? voxel - 1 : voxel + 1;
        const Index alongY = graph_.LowestBeside(voxel, y > 0 ? TraversableGraph::South : TraversableGraph::North);
        const Index diagonal = alongY + alongX - voxel;
        const std::int32_t rest = std::abs(x) - std::abs(y);
        const Index one = rest > 0 ? alongX : rest < 0 ? alongY : diagonal;
        return {one, x == 0 || y == 0 ? one : diagonal};
    }

    Pair PairOnPlain(Index bend, Index voxel, const SightDirection& line) const;
    View LevelView(Index bend, Index voxel, Sight& sight);
    View ViewBetween(const SightDirection& line, const Pair& pair) const;
    View ViewBeside(const SightDirection& line, Index seen, SightSide side) const;
    View ViewFromBeside(Index bend, Index voxel, const SightDirection& line, Sight& sight) const;
    Pair PairAt(Index bend, const SightDirection& line, Index here, Index other) const;
    bool IsInLevelSight(Index bend, Index voxel) const;
    bool IsAtHeight(Index voxel, Index other) const { return graph_.Z(voxel) == graph_.Z(other); }
    SightDirection DirectionOf(Index bend, Index voxel) const;
    static Shadow ShadowOf(const SightDirection& square, const SightDirection& line);
    Shadow ShadowBehind(Index bend, const Pair& pair, const SightDirection& line) const;
    Shadow& ShadowAt(Index voxel) { return shadows_[voxel * 2654435761U >> 18]; } // multiplied by 2^32 / 1.618...
    void CastShadow(Index bend, Index voxel, Shadow shadow);
    bool IsInShadow(Index bend, Index voxel, const SightDirection& line, const Pair& before);
    void LimitBesides(Sight& sight, Index voxel, Index bend, const SightDirection& line) const;
    void TakeLimits(Sight& sight, const Pair& pair, Index bend) const;
    void LimitBeside(Sight& sight, SightSide side, Index voxel, Index bend, TraversableGraph::Direction beside) const;

    const TraversableGraph& graph_;
    const TravelLabels& labels_;
    std::vector<Shadow> shadows_;
};

} // namespace brix
