#include "Places.h"

#include "Report.h"

#include <brix/operations/ProximityOperations.h>

#include <optional>
#include <stdexcept>

namespace brix::tools {
namespace {

bool IsFilled(const Voxels& model, const Triple& voxelIndices)
{
    const ConstVoxelIterator voxel = model.FindVoxel(voxelIndices, model.FinestLOD());
    return voxel.IsValid() && voxel.Value();
}

// The voxel of a point, or the one on it when the point lies just below a surface.
Triple OutOfTheFloor(const Voxels& solid, const Triple& point)
{
    const Triple voxel = solid.AxesRef().ContainingVoxel(point, solid.FinestLOD());
    const Triple above = Plus(voxel, {0, 0, 1});
    return IsFilled(solid, voxel) && !IsFilled(solid, above) ? above : voxel;
}

std::string NearestPlace(const Voxels& traversable, const Triple& voxel)
{
    const Axes& axes = traversable.AxesRef();
    for (const std::int64_t rise : {0, -1, 1, -2, 2}) {
        const Triple point = axes.VoxelCenter(Plus(voxel, {0, 0, rise}), traversable.FinestLOD());
        const ConstVoxelIterator nearest = NearestFilledHorizontally(traversable, point, 1000);
        if (!nearest.IsValid()) continue;
        return " The nearest place at about that height is " +
               Text(axes.ToWorldCoordinates(axes.VoxelCenter(nearest.VoxelIndices(), traversable.FinestLOD())), " ") + ".";
    }
    return " There is no floor at that height.";
}

} // namespace

Triple StandingVoxel(const Voxels& solid, const Voxels& traversable, const std::array<double, 3>& point, std::int64_t height)
{
    const Triple given = OutOfTheFloor(solid, solid.AxesRef().FromWorldCoordinates(point));
    Triple voxel = given;
    for (; given[2] - voxel[2] <= height && !IsFilled(solid, voxel); --voxel[2])
        if (IsFilled(traversable, voxel)) return voxel;
    throw std::runtime_error("Nobody can stand at the point that --from gives." + NearestPlace(traversable, given));
}

Triple EyePoint(const Voxels& solid, const std::array<double, 3>& point)
{
    const Axes& axes = solid.AxesRef();
    Triple eye = axes.FromWorldCoordinates(point);
    const Triple voxel = OutOfTheFloor(solid, eye);
    eye[2] = std::max(eye[2], axes.VoxelCorner(voxel, solid.FinestLOD())[2]);
    return eye;
}

} // namespace brix::tools
