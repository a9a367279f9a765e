#include "Sight.h"

#include "../frame/Product.h"
#include "../model/VoxelIterator.h"
#include "AxisCarrier.h"
#include "BoxSweep.h"
#include "ValueCarrier.h"

#include <cmath>

namespace brix::sight {
namespace {

/// Everything is visible, filled or not: what a threshold of 0 asks for.
struct EverythingCarrier
{
    void EnterRow() {}
    void EnterColumn(std::int64_t, const Triple&) {}
    void Pass(const StackView& view, std::int64_t, const Triple&, StackBuilder& seen)
    {
        seen.Append(view.Begin(), view.Inside());
    }
};

/// The proportions are those of the direction, everywhere.
struct DirectionWeights
{
    DirectionRule rule;

    void EnterColumn(const Triple&) {}
    const DirectionRule& AtHeights(const Triple&, std::int64_t) const { return rule; }
};

// Voxel counts per base unit differ along x and y from those along z; these factors make lengths along all axes comparable. They
// are powers of two, so products with them are exact.
std::array<double, 3> VoxelScale(const Axes& axes, std::int64_t lod)
{
    return {std::ldexp(1.0, static_cast<int>(lod)), std::ldexp(1.0, static_cast<int>(lod)),
            std::ldexp(1.0, static_cast<int>(axes.VerticalLOD()))};
}

DirectionRule RuleOf(const Triple& direction, const std::array<double, 3>& scale)
{
    std::array<double, 3> v{};
    for (std::size_t i = 0; i < 3; ++i) v[i] = std::abs(static_cast<double>(direction[i]) * scale[i]);
    const double length = std::sqrt(Product(v[0], v[0]) + Product(v[1], v[1]) + Product(v[2], v[2]));
    const double x = v[0] / length;
    const double y = v[1] / length;
    const double z = v[2] / length;
    return {x, y, z, 1 / (x + y + z)};
}

/// The proportions are those of each voxel's own offset from the point.
class PointWeights
{
public:
    PointWeights(const Axes& axes, const Triple& point, const Triple& eye, std::int64_t lod, const SweepOrder& order)
        : point_(point), eye_(eye), size_(axes.VoxelSize(lod)), scale_(VoxelScale(axes, lod)), order_(order)
    {}

    void EnterColumn(const Triple& corner)
    {
        for (std::int64_t y = 0; y < PlateWidth; ++y) {
            rule_.y[static_cast<std::size_t>(y)] = WeightAt(1, corner, y);
            for (std::int64_t x = 0; x < PlateWidth; ++x) {
                rule_.x[static_cast<std::size_t>((x + y) % PlateWidth * PlateWidth + y)] = WeightAt(0, corner, x);
            }
        }
    }

    const OffsetRule& AtHeights(const Triple& corner, std::int64_t height)
    {
        for (std::int64_t k = 0; k <= MaxPlates + 1; ++k) {
            rule_.z[static_cast<std::size_t>(k)] = WeightAt(2, corner, height + k - 1);
        }
        return rule_;
    }

private:
    // Of the voxel that a sweep meets as the `step`th along an axis of a stack. Points far away are rounded to doubles, within
    // 2^52 base units nothing is.
    double WeightAt(std::size_t axis, const Triple& corner, std::int64_t step) const
    {
        const std::int64_t index = corner[axis] + (order_[axis] == Side::Upper ? step : LastOffset[axis] - step);
        if (index == eye_[axis]) return 0;
        const std::int64_t centre = index * size_[axis] + size_[axis] / 2;
        return std::abs((static_cast<double>(centre) - static_cast<double>(point_[axis])) * scale_[axis]);
    }

    Triple point_;
    Triple eye_;
    Triple size_;
    std::array<double, 3> scale_;
    SweepOrder order_;
    OffsetRule rule_;
};

struct Range
{
    std::int64_t lower, upper;
    Side side;
};

// The parts of lower..upper that are swept towards larger and towards smaller indices. Both begin at the eye, if it is there: no
// voxel is nearer along this axis than those of its own slice, so that each part finds out about the slice by itself.
std::vector<Range> RangesFrom(std::int64_t eye, std::int64_t lower, std::int64_t upper)
{
    std::vector<Range> ranges;
    if (upper > eye || lower == eye) ranges.push_back({std::max(lower, eye), upper, Side::Upper});
    if (lower < eye) ranges.push_back({lower, std::min(upper, eye), Side::Lower});
    return ranges;
}

// Takes off the far side of a box what is not needed along an axis; halving finds how far the needed part goes.
void CutFarSide(BoxSweep& sweep, std::size_t axis)
{
    const bool isUpper = sweep.order[axis] == Side::Upper;
    const std::int64_t first = isUpper ? sweep.lower[axis] : sweep.upper[axis];
    std::int64_t needed = 0;
    std::int64_t notNeeded = sweep.upper[axis] - sweep.lower[axis] + 1;
    while (notNeeded - needed > 1) {
        const std::int64_t steps = needed + (notNeeded - needed) / 2;
        Triple lower = sweep.lower;
        Triple upper = sweep.upper;
        (isUpper ? lower : upper)[axis] = isUpper ? first + steps : first - steps;
        (sweep.IsNeeded(lower, upper) ? needed : notNeeded) = steps;
    }
    (isUpper ? sweep.upper : sweep.lower)[axis] = isUpper ? first + needed : first - needed;
}

// The octants around the eye, without those in which nothing may be marked.
std::vector<BoxSweep> OctantsFrom(const Triple& eye, const PointOfView& view)
{
    std::vector<BoxSweep> octants;
    for (const Range& x : RangesFrom(eye[0], view.lower[0], view.upper[0])) {
        for (const Range& y : RangesFrom(eye[1], view.lower[1], view.upper[1])) {
            for (const Range& z : RangesFrom(eye[2], view.lower[2], view.upper[2])) {
                BoxSweep octant{
                    {x.lower, y.lower, z.lower}, {x.upper, y.upper, z.upper}, {x.side, y.side, z.side}, view.mask, eye};
                if (!octant.IsNeeded(octant.lower, octant.upper)) continue;
                for (std::size_t axis = 0; axis < 3; ++axis) CutFarSide(octant, axis);
                octants.push_back(octant);
            }
        }
    }
    return octants;
}

// Empties the voxel again if the source has it filled.
void UnmarkIfFilled(VoxelModel<bool>& result, const VoxelModel<bool>& model, const Triple& voxel, std::int64_t lod)
{
    const ConstVoxelIterator source = model.FindVoxel(voxel, lod);
    if (!source.IsValid() || !source.Value()) return;
    const StackIterator iterator(result, voxel, lod);
    VoxelStack<bool>& stack = iterator.VoxelStackRef();
    const Triple offset = Minus(voxel, iterator.LowerIndices());
    VoxelPlate<bool>& plate = stack.LayerVoxelPlateRef(stack.IsolateLevel(offset[2], true, true));
    plate = AndNot(plate, Box({offset[0], offset[1]}, {offset[0], offset[1]}));
    stack.Compress();
}

// Thresholds above 1 mark nothing, nor does one that is not a number.
bool MarksNothing(double threshold) { return !(threshold <= 1); }

} // namespace

void MarkFromDirection(VoxelModel<bool>& result, const VoxelModel<bool>& model, const Triple& direction, std::int64_t lod,
                       double threshold, InstructionSet instructionSet)
{
    if (MarksNothing(threshold)) return;
    const auto side = [&](std::size_t i) { return direction[i] < 0 ? Side::Lower : Side::Upper; };
    const Extents& extents = model.ExtentsRef(lod);
    const BoxSweep sweep{extents.LowerIndices(), extents.UpperIndices(), {side(0), side(1), side(2)}};
    const Triple count = sweep.StackCount();
    if (threshold <= 0) return SweepBox(result, model, lod, sweep, EverythingCarrier());
    if (direction[1] == 0 && direction[2] == 0) return SweepBox(result, model, lod, sweep, AxisCarrier<Axis::X>(count));
    if (direction[0] == 0 && direction[2] == 0) return SweepBox(result, model, lod, sweep, AxisCarrier<Axis::Y>(count));
    if (direction[0] == 0 && direction[1] == 0) return SweepBox(result, model, lod, sweep, AxisCarrier<Axis::Z>(count));

    const DirectionWeights weights{RuleOf(direction, VoxelScale(model.AxesRef(), lod))};
    SweepBox(result, model, lod, sweep, ValueCarrier(weights, count, threshold, instructionSet));
}

void MarkFromPoint(VoxelModel<bool>& result, const VoxelModel<bool>& model, const PointOfView& view, std::int64_t lod,
                   InstructionSet instructionSet)
{
    if (MarksNothing(view.threshold) || Lowest(view.lower, view.upper) != view.lower) return;
    const Triple eye = model.AxesRef().ContainingVoxel(view.point, lod);
    const std::vector<BoxSweep> octants = OctantsFrom(eye, view);
    WatchedLoop loop(octants.size());
    for (const BoxSweep& octant : octants) {
        loop.Step();
        if (view.threshold <= 0) {
            SweepBox(result, model, lod, octant, EverythingCarrier());
            continue;
        }
        const PointWeights weights(model.AxesRef(), view.point, eye, lod, octant.order);
        SweepBox(result, model, lod, octant, ValueCarrier(weights, octant.StackCount(), view.threshold, instructionSet));
    }
    if (view.threshold > 0) UnmarkIfFilled(result, model, eye, lod);
}

} // namespace brix::sight
