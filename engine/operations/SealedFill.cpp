#include "../frame/Require.h"
#include "BasicOperations.h"
#include "FillOperations.h"
#include "SurfaceOperations.h"

namespace brix {

// A cube stands for its lowest voxel. Where it would hold a filled one, the model grown by `gap` voxels downwards along each axis
// is filled. What a flood of those places leaves is, shrunk by as much, what no cube covers.
VoxelModel<bool> SealedFill(const VoxelModel<bool>& voxelModel, int gap)
{
    RequireNotNegative("The width of gaps to be sealed", gap);
    if (gap == 0) return FillEnclosedRegions(voxelModel);

    const OtherLevels whenLevelsAreMade = voxelModel.WhenLevelsAreMade();
    VoxelModel<bool> places = Enlarge(voxelModel, gap, 0, gap, 0, gap, 0);
    places.MakeLevels(OtherLevels::WhenAskedFor); // and so with all that comes of it: only the last result needs its other levels
    for (const auto& expand : {ExpandAlongX, ExpandAlongY, ExpandAlongZ}) places = expand(places, gap, 0, {}, false);
    places = FillEnclosedRegions(places);
    for (const auto& reduce : {ReduceAlongX, ReduceAlongY, ReduceAlongZ}) places = reduce(places, gap, 0, {}, false);
    VoxelModel<bool> result = Resize(std::move(places), voxelModel.ExtentsRef(voxelModel.FinestLOD()));
    result.MakeLevels(whenLevelsAreMade);
    return result;
}

} // namespace brix
