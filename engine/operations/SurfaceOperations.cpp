#include "SurfaceOperations.h"

#include "../frame/Require.h"
#include "SurfacePasses.h"

namespace brix {
namespace {

constexpr Margins MarginsAlong(Axis axis, std::int64_t lower, std::int64_t upper)
{
    Margins margins;
    margins.lower[static_cast<std::size_t>(axis)] = lower;
    margins.upper[static_cast<std::size_t>(axis)] = upper;
    return margins;
}

// The same margin on both sides, along x and y and along z.
constexpr Margins MarginsAround(std::int64_t horizontal, std::int64_t vertical)
{
    return {{horizontal, horizontal, vertical}, {horizontal, horizontal, vertical}};
}

template <class Change>
VoxelModel<bool> ChangeAlong(SurfacePasses<Change> passes, Axis axis, int lowerOffset, int upperOffset, bool autoCrop)
{
    passes.Along(axis, lowerOffset, upperOffset);
    return passes.Finish(autoCrop);
}

VoxelModel<bool> ExpandAlong(Axis axis, std::string_view lowerName, std::string_view upperName, const VoxelModel<bool>& source,
                             int lowerOffset, int upperOffset, Guide guide, bool autoAdjust)
{
    RequireNotNegative(lowerName, lowerOffset);
    RequireNotNegative(upperName, upperOffset);
    const Margins margins = autoAdjust ? MarginsAlong(axis, lowerOffset, upperOffset) : Margins{};
    return ChangeAlong(SurfacePasses<Growth>(source, guide, margins), axis, lowerOffset, upperOffset, autoAdjust);
}

VoxelModel<bool> ReduceAlong(Axis axis, std::string_view lowerName, std::string_view upperName, const VoxelModel<bool>& source,
                             int lowerOffset, int upperOffset, Guide guide, bool autoAdjust)
{
    RequireNotNegative(lowerName, lowerOffset);
    RequireNotNegative(upperName, upperOffset);
    const Margins margins = guide ? MarginsAlong(axis, 1, 1) : Margins{};
    return ChangeAlong(SurfacePasses<Shrinkage>(source, guide, margins), axis, lowerOffset, upperOffset, autoAdjust);
}

void RequireAdjacency(int horizontal, int vertical)
{
    RequireNotNegative("The minimum required number of horizontally adjacent voxels", horizontal);
    RequireNotNegative("The minimum required number of vertically adjacent voxels", vertical);
    Require(horizontal > 0 || vertical > 0,
            "The minimum required number of horizontally and vertically adjacent voxels cannot both be zero.");
}

// The passes that make a disc of a diameter, each given by the number of neighbours it asks for: a 1 grows by one voxel on all
// four sides, a 2 fills the corners that are left between. Calls pass(neighbours) until that says false.
template <class PassOf> void ForEachDiscPass(std::int64_t diameter, const PassOf& pass)
{
    const auto passAll = [&](std::initializer_list<std::int64_t> steps) { return std::all_of(steps.begin(), steps.end(), pass); };
    if (diameter == 2) passAll({2});
    if (diameter == 3) passAll({1});
    if (diameter == 4) passAll({1, 2});
    if (diameter < 5) return;
    if ((diameter - 5) % 4 <= 1 && !passAll({1})) return;
    if (diameter >= 7 && !passAll({1, 1})) return;
    for (std::int64_t group = 0; diameter >= 11 && group < (diameter - 7) / 4; ++group) {
        if (!passAll({2, 1, 1})) return;
    }
    if (diameter % 2 == 1)
        passAll({2, 1});
    else
        passAll({1, 2});
}

// When no voxel has one neighbour that would change it, none has two: then all further passes would do nothing.
template <class Change> VoxelModel<bool> ChangeHorizontally(SurfacePasses<Change> passes, int diameter, bool autoCrop)
{
    WatchedLoop loop(static_cast<std::size_t>(diameter) * 3 / 4 + 1); // about as many passes
    ForEachDiscPass(diameter, [&](std::int64_t least) {
        const bool hasChanged = passes.Beside(least);
        loop.Step();
        return hasChanged || least > 1;
    });
    return passes.Finish(autoCrop);
}

} // namespace

VoxelModel<bool> ExpandAlongX(const VoxelModel<bool>& voxelModel, int lowerOffset, int upperOffset, Guide guideVoxels,
                              bool autoAdjustExtents)
{
    return ExpandAlong(Axis::X, "The number of voxels to be added to the lower X side",
                       "The number of voxels to be added to the upper X side", voxelModel, lowerOffset, upperOffset, guideVoxels,
                       autoAdjustExtents);
}

VoxelModel<bool> ExpandAlongY(const VoxelModel<bool>& voxelModel, int lowerOffset, int upperOffset, Guide guideVoxels,
                              bool autoAdjustExtents)
{
    return ExpandAlong(Axis::Y, "The number of voxels to be added to the lower Y side",
                       "The number of voxels to be added to the upper Y side", voxelModel, lowerOffset, upperOffset, guideVoxels,
                       autoAdjustExtents);
}

VoxelModel<bool> ExpandAlongZ(const VoxelModel<bool>& voxelModel, int lowerOffset, int upperOffset, Guide guideVoxels,
                              bool autoAdjustExtents)
{
    return ExpandAlong(Axis::Z, "The number of voxels to be added to the lower Z side",
                       "The number of voxels to be added to the upper Z side", voxelModel, lowerOffset, upperOffset, guideVoxels,
                       autoAdjustExtents);
}

VoxelModel<bool> ReduceAlongX(const VoxelModel<bool>& voxelModel, int lowerOffset, int upperOffset, Guide guideVoxels,
                              bool autoAdjustExtents)
{
    return ReduceAlong(Axis::X, "The number of voxels to be removed from the lower X side",
                       "The number of voxels to be removed from the upper X side", voxelModel, lowerOffset, upperOffset,
                       guideVoxels, autoAdjustExtents);
}

VoxelModel<bool> ReduceAlongY(const VoxelModel<bool>& voxelModel, int lowerOffset, int upperOffset, Guide guideVoxels,
                              bool autoAdjustExtents)
{
    return ReduceAlong(Axis::Y, "The number of voxels to be removed from the lower Y side",
                       "The number of voxels to be removed from the upper Y side", voxelModel, lowerOffset, upperOffset,
                       guideVoxels, autoAdjustExtents);
}

VoxelModel<bool> ReduceAlongZ(const VoxelModel<bool>& voxelModel, int lowerOffset, int upperOffset, Guide guideVoxels,
                              bool autoAdjustExtents)
{
    return ReduceAlong(Axis::Z, "The number of voxels to be removed from the lower Z side",
                       "The number of voxels to be removed from the upper Z side", voxelModel, lowerOffset, upperOffset,
                       guideVoxels, autoAdjustExtents);
}

VoxelModel<bool> ExpandByOneVoxel(const VoxelModel<bool>& voxelModel, int horizontalAdjacency, int verticalAdjacency,
                                  Guide guideVoxels, bool autoAdjustExtents)
{
    RequireAdjacency(horizontalAdjacency, verticalAdjacency);
    SurfacePasses<Growth> passes(voxelModel, guideVoxels, autoAdjustExtents ? MarginsAround(1, 1) : Margins{});
    passes.Around({horizontalAdjacency, verticalAdjacency});
    return passes.Finish(autoAdjustExtents);
}

VoxelModel<bool> ReduceByOneVoxel(const VoxelModel<bool>& voxelModel, int horizontalAdjacency, int verticalAdjacency,
                                  Guide guideVoxels, bool autoAdjustExtents)
{
    RequireAdjacency(horizontalAdjacency, verticalAdjacency);
    SurfacePasses<Shrinkage> passes(voxelModel, guideVoxels, guideVoxels ? MarginsAround(1, 1) : Margins{});
    passes.Around({horizontalAdjacency, verticalAdjacency});
    return passes.Finish(autoAdjustExtents);
}

VoxelModel<bool> ExpandHorizontally(const VoxelModel<bool>& voxelModel, int diameterOffset, Guide guideVoxels,
                                    bool autoAdjustExtents)
{
    RequireAtLeast("The approximate increase in the diameter of filled regions", 1, diameterOffset);
    const Margins margins = autoAdjustExtents ? MarginsAround((diameterOffset - 1) / 2, 0) : Margins{};
    return ChangeHorizontally(SurfacePasses<Growth>(voxelModel, guideVoxels, margins), diameterOffset, autoAdjustExtents);
}

VoxelModel<bool> ReduceHorizontally(const VoxelModel<bool>& voxelModel, int diameterOffset, Guide guideVoxels,
                                    bool autoAdjustExtents)
{
    RequireAtLeast("The approximate decrease in the diameter of filled regions", 1, diameterOffset);
    const Margins margins = guideVoxels ? MarginsAround(1, 0) : Margins{};
    return ChangeHorizontally(SurfacePasses<Shrinkage>(voxelModel, guideVoxels, margins), diameterOffset, autoAdjustExtents);
}

} // namespace brix
