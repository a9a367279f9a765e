#include "PathModel.h"

#include "../frame/Require.h"
#include "../operations/BasicOperations.h"
#include "../operations/RebuildModel.h"
#include "../operations/SolidOperations.h"
#include "../operations/SurfaceOperations.h"

#include <limits>
#include <utility>

namespace brix {
namespace {

// Growth beyond the largest model changes nothing more.
int ToOffset(std::int64_t voxels) { return static_cast<int>(std::min<std::int64_t>(voxels, std::numeric_limits<int>::max())); }

Voxels ExpandedHorizontally(const Voxels& voxels, std::int64_t diameter)
{
    return ExpandHorizontally(voxels, ToOffset(diameter), std::nullopt, false);
}

Voxels ExpandedAlongZ(const Voxels& voxels, std::int64_t lowerOffset, std::int64_t upperOffset)
{
    return ExpandAlongZ(voxels, ToOffset(lowerOffset), ToOffset(upperOffset), std::nullopt, false);
}

std::int64_t LayerCount(const Voxels& voxels)
{
    const Extents& extents = voxels.ExtentsRef(0);
    return extents.UpperIndices()[2] - extents.LowerIndices()[2] + 1;
}

void RequireAgent(const Voxels& environment, std::int64_t voxelLOD, std::int64_t diameter, std::int64_t height)
{
    RequireLevelOf(environment.FinestLOD(), "The level of detail of the path model", voxelLOD);
    RequireAtLeast("The agent diameter used to construct a path model", 1, diameter);
    RequireAtLeast("The agent height used to construct a path model", 1, height);
    Require(height > 1 || LayerCount(environment) == 1,
            "If the agent height used to construct a path model is 1, then the environment must be 2D (1 voxel in height).");
}

// Standing places are the unblocked voxels above blocked ones. Obstacles are blocked voxels that are blocked above, too (walls,
// and steps of more than one voxel) and air that has no ground within two voxels below (drops); the agent's footprint stays clear
// of both.
Voxels StandingPlaces(const Voxels& solid, std::int64_t diameter, std::int64_t height)
{
    const std::int64_t lod = solid.FinestLOD();
    WatchedLoop loop(6);
    const auto step = [&](Voxels made) {
        loop.Step();
        return made;
    };
    const Voxels blocked = step(ExpandedAlongZ(solid, height - 1, 0));
    const Voxels standing = step(Subtract(ExpandedAlongZ(blocked, 0, 1), blocked, lod, false));
    const Voxels air = step(Invert(ExpandedAlongZ(solid, 0, 2)));
    const Voxels walls = step(ReduceAlongZ(blocked, 0, 1, std::nullopt, false));
    const Voxels obstacles = step(ExpandedHorizontally(Union({&walls, &air}, lod, false), diameter));
    return Subtract(standing, obstacles, lod, false);
}

Voxels Traversable(const Voxels& environment, std::int64_t voxelLOD, std::int64_t diameter, std::int64_t height, bool autoAdjust)
{
    RequireAgent(environment, voxelLOD, diameter, height);
    Voxels solid = CopyOneLevel(environment, environment.ExtentsRef(voxelLOD), voxelLOD);
    solid.MakeLevels(OtherLevels::WhenAskedFor); // and so with all that comes of it: only the last result needs its other levels
    if (autoAdjust) solid = Enlarge(solid, 0, 0, 0, 0, 0, 1);
    Voxels traversable = height == 1 ? Invert(ExpandedHorizontally(solid, diameter)) : StandingPlaces(solid, diameter, height);
    if (autoAdjust) traversable = AutoCrop(std::move(traversable));
    traversable.MakeLevels(environment.WhenLevelsAreMade());
    return traversable;
}

} // namespace

PathModel::PathModel(const VoxelModel<bool>& environment, std::int64_t voxelLOD, std::int64_t agentDiameterOffset,
                     std::int64_t agentHeightOffset, bool autoAdjustExtents)
    : environment_(&environment),
      traversable_(Traversable(environment, voxelLOD, agentDiameterOffset, agentHeightOffset, autoAdjustExtents)),
      agentDiameterOffset_(agentDiameterOffset),
      agentHeightOffset_(agentHeightOffset)
{}

} // namespace brix
