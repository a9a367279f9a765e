#include "ProximityOperations.h"

#include "../frame/Require.h"

#include <cstdlib>
#include <limits>
#include <optional>
#include <string>

namespace brix {
namespace {

// Beyond every distance between a voxel of a model and the voxel of any 64-bit point, and small enough to be added to both.
constexpr std::int64_t FarAway = std::int64_t{1} << 60;

// The voxels of a stack on the line along an axis through one of its voxels; bit i is the voxel with offset i on that axis.
template <Axis axis> std::uint64_t LineOfStack(const VoxelStack<bool>& stack, const Triple& offset)
{
    if constexpr (axis == Axis::Z) {
        std::uint64_t line = 0;
        for (std::int32_t layer = 0; layer < stack.LayerCount(); ++layer) {
            if (stack.LayerVoxelPlateRef(layer).Value({offset[0], offset[1]}))
                line |= HeightsFrom(stack.LowerOffset(layer)) & HeightsUpTo(stack.UpperOffset(layer));
        }
        return line;
    } else {
        const VoxelPlate<bool>& plate = stack.LayerVoxelPlateRef(stack.LayerID(offset[2]));
        return axis == Axis::X ? plate.Row(static_cast<std::size_t>(offset[1]))
                               : plate.Column(static_cast<std::size_t>(offset[0]));
    }
}

// The first filled voxel from `voxel` on along an axis towards one side, and not beyond index `limit`; as its index on that axis.
template <Axis axis, Side side>
std::optional<std::int64_t> FirstFilled(const VoxelModel<bool>& model, Triple voxel, std::int64_t limit)
{
    constexpr auto along = static_cast<std::size_t>(axis);
    const auto isBeyond = [limit](std::int64_t index) { return side == Side::Lower ? index < limit : index > limit; };
    while (!isBeyond(voxel[along])) {
        const ConstStackIterator stack(model, voxel, model.FinestLOD());
        if (!stack.IsValid()) break;
        const Triple offset = Minus(voxel, stack.LowerIndices());
        const std::int64_t origin = stack.LowerIndices()[along];
        std::uint64_t line = LineOfStack<axis>(stack.StackToRead(), offset);
        line &= side == Side::Lower ? HeightsUpTo(offset[along]) : HeightsFrom(offset[along]);
        if (line != 0) {
            const std::int64_t first =
                origin + (side == Side::Lower ? static_cast<std::int64_t>(std::bit_width(line)) - 1 : std::countr_zero(line));
            return isBeyond(first) ? std::nullopt : std::optional(first);
        }
        voxel[along] = side == Side::Lower ? origin - 1 : origin + StackSizeAlong(axis);
    }
    return std::nullopt;
}

// Of the filled voxels with the indices lower..upper on the line along an axis through `voxel`: the index of the one whose centre
// is nearest to a coordinate, the lower one of two. The coordinate lies in `voxel`, unless this is the first or the last of the
// line.
template <Axis axis>
std::optional<std::int64_t> NearestOnLine(const VoxelModel<bool>& model, const Triple& voxel, std::int64_t coordinate,
                                          std::int64_t lower, std::int64_t upper)
{
    constexpr auto along = static_cast<std::size_t>(axis);
    Triple voxelBelow = voxel;
    --voxelBelow[along];
    const auto below = FirstFilled<axis, Side::Lower>(model, voxelBelow, lower);
    const auto above = FirstFilled<axis, Side::Upper>(model, voxel, upper);
    if (!below || !above) return below ? below : above;
    const std::int64_t size = model.AxesRef().VoxelSize(model.FinestLOD())[along];
    const std::int64_t distanceBelow = coordinate - (*below * size + size / 2);
    const std::int64_t distanceAbove = *above * size + size / 2 - coordinate;
    return distanceBelow <= distanceAbove ? below : above;
}

template <Axis axis>
ConstVoxelIterator NearestFilledAlong(const VoxelModel<bool>& model, const Triple& point, std::int64_t lowerOffset,
                                      std::int64_t upperOffset)
{
    constexpr auto along = static_cast<std::size_t>(axis);
    const std::string letter(1, "XYZ"[along]);
    RequireNotNegative("The number of voxels to search on the lower " + letter + " side", lowerOffset);
    RequireNotNegative("The number of voxels to search on the upper " + letter + " side", upperOffset);

    const std::int64_t lod = model.FinestLOD();
    const Extents& extents = model.ExtentsRef(lod);
    Triple voxel = model.AxesRef().ContainingVoxel(point, lod);
    const std::int64_t lower = std::max(voxel[along] - std::min(lowerOffset, FarAway), extents.LowerIndices()[along]);
    const std::int64_t upper = std::min(voxel[along] + std::min(upperOffset, FarAway), extents.UpperIndices()[along]);
    if (lower > upper) return ConstVoxelIterator(model, lod);

    // From a point outside the extents the search starts in the first voxel that it meets, and finds nothing on the other side.
    voxel[along] = std::clamp(voxel[along], lower, upper);
    const ConstVoxelIterator start = model.FindVoxel(voxel, lod);
    if (!start.IsValid() || start.Value()) return start;
    const auto nearest = NearestOnLine<axis>(model, voxel, point[along], lower, upper);
    if (!nearest) return ConstVoxelIterator(model, lod);
    voxel[along] = *nearest;
    return model.FindVoxel(voxel, lod);
}

// The voxels (dx, dy) from a centre with |dx| <= reach, |dy| <= reach and |dx| + |dy| <= sum: what ExpandHorizontally makes of a
// single voxel. Each of its plain steps adds one to both bounds. Each step into concave corners adds one to the sum; there is
// such a step from diameter 4 on and one more from 11, 15, 19, ... on. (The one for diameter 2 finds no corner to fill.)
struct Octagon
{
    explicit Octagon(std::int64_t diameter) : reach((diameter - 1) / 2), sum(reach + (diameter < 4 ? 0 : 1 + (diameter - 7) / 4))
    {}

    std::int64_t HalfWidth(std::int64_t dy) const { return std::min(reach, sum - std::abs(dy)); }

    std::int64_t reach;
    std::int64_t sum;
};

} // namespace

ConstVoxelIterator NearestFilledAlongX(const VoxelModel<bool>& voxelModel, const std::array<std::int64_t, 3>& point,
                                       long long lowerOffset, long long upperOffset)
{
    return NearestFilledAlong<Axis::X>(voxelModel, point, lowerOffset, upperOffset);
}

ConstVoxelIterator NearestFilledAlongY(const VoxelModel<bool>& voxelModel, const std::array<std::int64_t, 3>& point,
                                       long long lowerOffset, long long upperOffset)
{
    return NearestFilledAlong<Axis::Y>(voxelModel, point, lowerOffset, upperOffset);
}

ConstVoxelIterator NearestFilledAlongZ(const VoxelModel<bool>& voxelModel, const std::array<std::int64_t, 3>& point,
                                       long long lowerOffset, long long upperOffset)
{
    return NearestFilledAlong<Axis::Z>(voxelModel, point, lowerOffset, upperOffset);
}

ConstVoxelIterator NearestFilledHorizontally(const VoxelModel<bool>& voxelModel, const std::array<std::int64_t, 3>& point,
                                             long long diameterOffset)
{
    RequireAtLeast("The approximate diameter of the search area", 1, diameterOffset);
    const std::int64_t lod = voxelModel.FinestLOD();
    const Triple voxel = voxelModel.AxesRef().ContainingVoxel(point, lod);
    const ConstVoxelIterator start = voxelModel.FindVoxel(voxel, lod);
    if (!start.IsValid() || start.Value()) return start;

    // Inside a model no difference of coordinates exceeds 2e9, so the sum of two squares fits.
    const Extents& extents = voxelModel.ExtentsRef(lod);
    const std::int64_t size = VoxelSpacing(lod);
    const auto squareTo = [&](std::size_t axis, std::int64_t index) {
        const std::int64_t distance = index * size + size / 2 - point[axis];
        return distance * distance;
    };
    const Octagon area(diameterOffset);
    const std::int64_t firstY = std::max(voxel[1] - std::min(area.reach, FarAway), extents.LowerIndices()[1]);
    const std::int64_t lastY = std::min(voxel[1] + std::min(area.reach, FarAway), extents.UpperIndices()[1]);
    std::int64_t leastSquare = std::numeric_limits<std::int64_t>::max();
    Triple nearest{};
    for (std::int64_t y = firstY; y <= lastY; ++y) {
        if (squareTo(1, y) >= leastSquare) continue;
        const std::int64_t halfWidth = std::min(area.HalfWidth(y - voxel[1]), FarAway);
        const std::int64_t lowerX = std::max(voxel[0] - halfWidth, extents.LowerIndices()[0]);
        const std::int64_t upperX = std::min(voxel[0] + halfWidth, extents.UpperIndices()[0]);
        CheckWatch();
        const auto x = NearestOnLine<Axis::X>(voxelModel, {voxel[0], y, voxel[2]}, point[0], lowerX, upperX);
        if (!x || squareTo(0, *x) + squareTo(1, y) >= leastSquare) continue;
        leastSquare = squareTo(0, *x) + squareTo(1, y);
        nearest = {*x, y, voxel[2]};
    }
    if (leastSquare == std::numeric_limits<std::int64_t>::max()) return ConstVoxelIterator(voxelModel, lod);
    return voxelModel.FindVoxel(nearest, lod);
}

} // namespace brix
