#include "SurfacePasses.h"

#include "../frame/Require.h"
#include "../model/PropagateLevel.h"
#include "BasicOperations.h"
#include "RebuildModel.h"

#include <utility>

namespace brix {

VoxelModel<bool> GuideInside(const VoxelModel<bool>& guide, const Extents& extents)
{
    Require(guide.AxesRef() == extents.AxesRef(), "The axes must be the same for all voxel models to be merged.");
    const std::int64_t lod = extents.VoxelLOD();
    return guide.FinestLOD() < lod ? RebuildModel(guide, extents, lod) : CopyOneLevel(guide, extents, lod);
}

template <class Change>
SurfacePasses<Change>::SurfacePasses(const VoxelModel<bool>& source, const std::optional<VoxelModel<bool>>& guide,
                                     const Margins& margins)
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

// With a guide a pass looks one voxel far, as the guide may stop growth at each of them.
template <class Change> void SurfacePasses<Change>::StepByStep(Axis axis, Side seenSide, std::int64_t count)
{
    for (std::int64_t moved = 0; moved < count; ++moved) {
        if (!PassAlong(grid_, {axis, seenSide, 1}, Change::Along, Guided())) return; // all further passes would do nothing
    }
}

// One pass that looks so far to both sides, or to the one whose distance is not 0. Returns whether anything has changed.
template <class Change> bool SurfacePasses<Change>::Look(Axis axis, std::int64_t towardsLower, std::int64_t towardsUpper)
{
    const bool isNear = towardsLower <= StackSizeAlong(axis) && towardsUpper <= StackSizeAlong(axis);
    if (isNear && towardsLower > 0 && towardsUpper > 0)
        return PassBothWays(grid_, axis, towardsLower, towardsUpper, Change::Along, Guided());
    const bool isLower = towardsLower > 0 && PassAlong(grid_, {axis, Side::Lower, towardsLower}, Change::Along, Guided());
    const bool isUpper = towardsUpper > 0 && PassAlong(grid_, {axis, Side::Upper, towardsUpper}, Change::Along, Guided());
    return isLower || isUpper;
}

// Without a guide the steps double: after passes that looked 1, 2, 4 .. voxels far, every voxel knows all voxels that near, so
// that the next pass may look one voxel farther than the sum so far without leaving a gap. Both sides go together: they do not
// depend on each other.
template <class Change> void SurfacePasses<Change>::Along(Axis axis, std::int64_t lower, std::int64_t upper)
{
    constexpr bool areSidesCrossed = Change::SeenSideOfLower == Side::Upper;
    if (guide_) {
        StepByStep(axis, Change::SeenSideOfLower, lower);
        StepByStep(axis, Change::SeenSideOfUpper, upper);
        return;
    }
    std::int64_t toSeeLower = areSidesCrossed ? upper : lower;
    std::int64_t toSeeUpper = areSidesCrossed ? lower : upper;
    for (std::int64_t farthest = 1; toSeeLower > 0 || toSeeUpper > 0; farthest *= 2) {
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
