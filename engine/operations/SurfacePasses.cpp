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
    Pass(grid_, withGuide, RestrainPlate(), Restraint<RestrainPlate>{nullptr, {}});
}

// Without a guide, what reaches one voxel in one pass reaches two more in the next and four more in the third: a pass may look as far
// as the faces have moved so far, and one more.
template <class Change> void SurfacePasses<Change>::Along(Axis axis, Side side, std::int64_t count)
{
    const Side seenSide = side == Side::Lower ? Change::SeenSideOfLower : Change::SeenSideOfUpper;
    const std::int64_t farthest = guide_ ? 1 : axis == Axis::Z ? VoxelStack<bool>::Height : VoxelStack<bool>::Side;
    for (std::int64_t moved = 0; moved < count;) {
        const std::int64_t distance = std::min({moved + 1, count - moved, farthest});
        if (!PassAlong(grid_, {axis, seenSide, distance}, Change::Along, Guided())) return; // all further passes would do nothing
        moved += distance;
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
        Pass(grid_, withSource, Change::Finish, Restraint<RestrainPlate>{nullptr, {}});
    }
    VoxelModel<bool> result = grid_.TakeModel();
    return autoCrop ? AutoCrop(std::move(result)) : Resize(std::move(result), source_.ExtentsRef(source_.FinestLOD()));
}

template class SurfacePasses<Growth>;
template class SurfacePasses<Shrinkage>;

} // namespace brix
