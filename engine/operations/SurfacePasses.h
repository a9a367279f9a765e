// What all growth and shrinkage operations share: the working level, its margins, the guide, repeated passes, and the way back to
// a model. Growth and shrinkage are duals; each names its five plate rules and is otherwise the same.
#pragma once

#include "Guide.h"
#include "NeighbourhoodPass.h"

#include <optional>

namespace brix {

/// Growth (dilation). Grown regions never enter the guide, and keep what the source had there. The rules that a pass applies to
/// every plate are lambdas, so that they are inlined into it.
struct Growth
{
    // A lower face moves when voxels look for filled ones above them.
    static constexpr Side SeenSideOfLower = Side::Upper;
    static constexpr Side SeenSideOfUpper = Side::Lower;

    static constexpr auto Restrain = [](const VoxelPlate<bool>& plate, const VoxelPlate<bool>& guide) {
        return AndNot(plate, guide);
    };
    static constexpr auto Along = [](const VoxelPlate<bool>& here, const VoxelPlate<bool>& seen) { return here | seen; };
    template <class... Least> static VoxelPlate<bool> Where(const Least&... arguments) { return GrowWhere(arguments...); }
    static VoxelPlate<bool> Finish(const VoxelPlate<bool>& plate, const VoxelPlate<bool>& source, const VoxelPlate<bool>& guide)
    {
        return plate | (source & guide);
    }
};

/// Shrinkage (erosion). Guide voxels, also those just outside the model, count as filled neighbours and are taken out again at
/// the end.
struct Shrinkage
{
    // A lower face moves when voxels look for empty ones below them.
    static constexpr Side SeenSideOfLower = Side::Lower;
    static constexpr Side SeenSideOfUpper = Side::Upper;

    static constexpr auto Restrain = [](const VoxelPlate<bool>& plate, const VoxelPlate<bool>& guide) { return plate | guide; };
    static constexpr auto Along = [](const VoxelPlate<bool>& here, const VoxelPlate<bool>& seen) { return here & seen; };
    template <class... Least> static VoxelPlate<bool> Where(const Least&... arguments) { return ShrinkWhere(arguments...); }
    static VoxelPlate<bool> Finish(const VoxelPlate<bool>& plate, const VoxelPlate<bool>& source, const VoxelPlate<bool>&)
    {
        return plate & source;
    }
};

/// Voxels added on the lower and upper sides of a model's extents.
struct Margins
{
    Triple lower{};
    Triple upper{};
};

/// The voxels of a guide at a level and inside extents. Throws std::domain_error when the frames differ.
VoxelModel<bool> GuideInside(const VoxelModel<bool>& guide, const Extents& extents);

/// A model on its way through passes of one kind, Growth or Shrinkage.
template <class Change> class SurfacePasses
{
public:
    /// Works on the model's finest level, on its extents with `margins`. The source must outlive the passes.
    SurfacePasses(const VoxelModel<bool>& source, Guide guide, const Margins& margins);

    /// Moves the faces that look to the lower side along an axis by `lower` voxels, then those that look to the upper side by
    /// `upper`.
    void Along(Axis axis, std::int64_t lower, std::int64_t upper);

    /// One pass that changes the voxels with enough neighbours. Returns whether there were any.
    bool Beside(std::int64_t least);
    bool Around(const LeastNeighbours& least);

    /// The result on the source's extents, or on the bounding box of its filled voxels.
    VoxelModel<bool> Finish(bool autoCrop);

private:
    auto Guided() const { return Restraint{guide_ ? &*guide_ : nullptr, Change::Restrain}; }

    void AlongGuide(Axis axis, Side seenSide, std::int64_t count);
    bool Look(Axis axis, std::int64_t towardsLower, std::int64_t towardsUpper);

    const VoxelModel<bool>& source_;
    LevelGrid grid_;
    std::optional<VoxelModel<bool>> guideVoxels_;
    std::optional<LevelGrid> guide_; // looks at guideVoxels_
};

extern template class SurfacePasses<Growth>;
extern template class SurfacePasses<Shrinkage>;

} // namespace brix
