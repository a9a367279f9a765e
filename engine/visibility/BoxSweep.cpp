#include "BoxSweep.h"

namespace brix::sight {
namespace {

// The layers of a stack as they lie in the model.
void TurnBack(StackBuilder& layers, const StackBuilder& seen, const SweepOrder& order)
{
    StackBuilder upright;
    if (order[2] == Side::Lower)
        TurnOver(upright, seen.Plates(), seen.LayerOffsets());
    else
        upright = seen;
    const auto plates = upright.Plates();
    for (std::size_t layer = 0; layer < plates.size(); ++layer) {
        layers.Append(upright.LayerOffsets()[layer], Turned(plates[layer], order));
    }
}

// The part of a stack that the mask allows, height by height.
void CutToMask(VoxelStack<bool>& stack, const SightMask& mask, const Triple& corner)
{
    StackBuilder layers;
    for (std::int32_t layer = 0; layer < stack.LayerCount(); ++layer) {
        const VoxelPlate<bool>& plate = stack.LayerVoxelPlateRef(layer);
        for (std::int64_t z = stack.LowerOffset(layer); z <= stack.UpperOffset(layer); ++z) {
            layers.Append(z, IsEmpty(plate) ? plate : plate & mask.PlateAt(Plus(corner, {0, 0, z})));
        }
    }
    layers.WriteTo(stack);
}

} // namespace

void MarkVisible(VoxelModel<bool>& result, std::int64_t lod, const BoxSweep& sweep, const Triple& corner,
                 const StackBuilder& seen)
{
    StackBuilder layers;
    TurnBack(layers, seen, sweep.order);
    VoxelStack<bool> visible;
    layers.WriteTo(visible);
    if (visible.IsUnallocated()) return;
    if (sweep.mask != nullptr &&
        !sweep.mask->HoldsAll(Highest(sweep.lower, corner), Lowest(sweep.upper, Plus(corner, LastOffset))))
        CutToMask(visible, *sweep.mask, corner);

    VoxelStack<bool>& stack = MakeStack(result, StackOfVoxel(corner), lod);
    if (stack.IsUnallocated())
        stack = std::move(visible);
    else
        CombineStacks(
            stack, [](const VoxelPlate<bool>& a, const VoxelPlate<bool>& b) { return a | b; }, stack, visible);
}

} // namespace brix::sight
