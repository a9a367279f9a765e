#include "SurfacePasses.h"

#include "../frame/Require.h"
#include "../model/PropagateLevel.h"
#include "BasicOperations.h"
#include "ColumnGrowth.h"
#include "RebuildModel.h"

#include <bit>
#include <type_traits>
#include <utility>

namespace brix {

VoxelModel<bool> GuideInside(const VoxelModel<bool>& guide, const Extents& extents)
{
    Require(guide.AxesRef() == extents.AxesRef(), "The axes must be the same for all voxel models to be merged.");
    const std::int64_t lod = extents.VoxelLOD();
    return guide.FinestLOD() < lod ? RebuildModel(guide, extents, lod) : CopyOneLevel(guide, extents, lod);
}

template <class Change>
SurfacePasses<Change>::SurfacePasses(const VoxelModel<bool>& source, Guide guide, const Margins& margins)
    : source_(source), grid_(source, MovedExtents(source, Minus({}, margins.lower), margins.upper))
{
    if (!guide) return;
    guideVoxels_ = GuideInside(*guide, grid_.ExtentsRef());
    guide_.emplace(*guideVoxels_, grid_.ExtentsRef());
    const auto withGuide = [&](const Triple& stack, const auto& combine) {
        combine(grid_.StackAt(stack), guide_->StackAt(stack));
    };
    Pass(grid_, {{&grid_}, {&*guide_}}, withGuide, Change::Restrain, Unrestrained);
}

// Growth along z is one sweep. Otherwise, with a guide the steps double as well (the occluded fill of Kogge and Stone): a voxel
// that looks `step` voxels far sees past no guide voxel, which is to say, none of the `step` voxels from itself on is one. Those
// for which one is are the guide grown by step - 1 voxels. After `moved` voxels the next step may be moved + 1.
template <class Change> void SurfacePasses<Change>::AlongGuide(Axis axis, Side seenSide, std::int64_t count)
{
    if constexpr (std::is_same_v<Change, Growth>) {
        if (axis == Axis::Z) return GrowAlongZ(grid_, *guide_, seenSide == Side::Lower ? Side::Upper : Side::Lower, count);
    }
    LevelGrid barrier(*guideVoxels_, grid_.ExtentsRef());
    std::int64_t barrierStep = 1;
    std::int64_t moved = 0;
    auto passes = static_cast<int>(std::bit_width(static_cast<std::uint64_t>(count)));
    WatchedLoop loop(static_cast<std::size_t>(passes));
    for (; passes-- > 0; loop.Step()) {
        const std::int64_t step = (count >> passes) - moved; // moved is half of what it will be, rounded down
        while (barrierStep < step) {
            const std::int64_t farther = std::min(barrierStep, step - barrierStep);
            PassAlong(barrier, {axis, seenSide, farther}, Growth::Along, Unrestrained);
            barrierStep += farther;
        }
        if (!PassAlong(grid_, {axis, seenSide, step}, Change::Along, Restraint{&barrier, Change::Restrain})) return;
        moved += step;
    }
}

// One pass that looks so far to both sides, or to the one whose distance is not 0. Returns whether anything has changed.
template <class Change> bool SurfacePasses<Change>::Look(Axis axis, std::int64_t towardsLower, std::int64_t towardsUpper)
{
    const bool isNear = towardsLower <= StackSizeAlong(axis) && towardsUpper <= StackSizeAlong(axis);
    if (isNear && towardsLower > 0 && towardsUpper > 0)
        return PassBothWays(grid_, axis, towardsLower, towardsUpper, Change::Along, Unrestrained);
    const bool isLower = towardsLower > 0 && PassAlong(grid_, {axis, Side::Lower, towardsLower}, Change::Along, Unrestrained);
    const bool isUpper = towardsUpper > 0 && PassAlong(grid_, {axis, Side::Upper, towardsUpper}, Change::Along, Unrestrained);
    return isLower || isUpper;
}

// Without a guide the steps double: after passes that looked 1, 2, 4 .. voxels far, every voxel knows all voxels that near, so
// that the next pass may look one voxel farther than the sum so far without leaving a gap. Both sides go together: they do not
// depend on each other.
template <class Change> void SurfacePasses<Change>::Along(Axis axis, std::int64_t lower, std::int64_t upper)
{
    constexpr bool areSidesCrossed = Change::SeenSideOfLower == Side::Upper;
    if (guide_) {
        AlongGuide(axis, Change::SeenSideOfLower, lower);
        AlongGuide(axis, Change::SeenSideOfUpper, upper);
        return;
    }
    std::int64_t toSeeLower = areSidesCrossed ? upper : lower;
    std::int64_t toSeeUpper = areSidesCrossed ? lower : upper;
    WatchedLoop loop(static_cast<std::size_t>(std::bit_width(static_cast<std::uint64_t>(std::max(toSeeLower, toSeeUpper)))));
    for (std::int64_t farthest = 1; toSeeLower > 0 || toSeeUpper > 0; farthest *= 2, loop.Step()) {
        const std::int64_t towardsLower = std::min(toSeeLower, farthest);
        const std::int64_t towardsUpper = std::min(toSeeUpper, farthest);
        if (!Look(axis, towardsLower, towardsUpper)) return; // all further passes would do nothing
        toSeeLower -= towardsLower;
        toSeeUpper -= towardsUpper;
    }
}

template <class Change> bool SurfacePasses<Change>::Beside(std::int64_t least)
{
    const auto rule = [least](const VoxelPlate<bool>& here, const HorizontalNeighbours& beside) {
        return Change::Where(here, beside, least);
    };
    return PassBeside(grid_, rule, Guided());
}

template <class Change> bool SurfacePasses<Change>::Around(const LeastNeighbours& least)
{
    const auto rule = [least](const VoxelPlate<bool>& here, const HorizontalNeighbours& beside, const VoxelPlate<bool>& below,
                              const VoxelPlate<bool>& above) { return Change::Where(here, beside, below, above, least); };
    return PassAround(grid_, rule, Guided());
}

template <class Change> VoxelModel<bool> SurfacePasses<Change>::Finish(bool autoCrop)
{
    if (guide_) {
        const LevelGrid source(source_, grid_.ExtentsRef());
        const auto withSource = [&](const Triple& stack, const auto& combine) {
            combine(grid_.StackAt(stack), source.StackAt(stack), guide_->StackAt(stack));
        };
        const auto finish = [](const auto&... plates) { return Change::Finish(plates...); };
        Pass(grid_, {{&grid_}, {&source}, {&*guide_}}, withSource, finish, Unrestrained);
    }
    VoxelModel<bool> result = grid_.TakeModel();
    return autoCrop ? AutoCrop(std::move(result))
                    : PropagatedOnExtents(std::move(result), source_.ExtentsRef(source_.FinestLOD()));
}

template class SurfacePasses<Growth>;
template class SurfacePasses<Shrinkage>;

} // namespace brix
