#include "PropagateLevel.h"

#include "../frame/Require.h"
#include "CombineStacks.h"
#include "ForEachStack.h"
#include "PropagateStores.h"

#include <algorithm>
#include <utility>

namespace brix {
namespace {

// The layers of a stack at half its resolution, equal neighbours merged. Four of them are the quarters of a coarser stack, which
// has a layer wherever one of the four has.
class JoinedStack
{
public:
    explicit JoinedStack(const Stack& stack)
    {
        const auto plates = stack.Plates();
        const auto offsets = stack.LayerOffsets();
        std::size_t last = 0; // the layer that was kept last
        const auto add = [&](std::size_t layer, QuarterPlate quarter) {
            const bool isOther = quarter != quarters_[last];
            last += isOther ? 1 : 0;
            quarters_[last] = quarter;
            starts_ |= HeightSet{isOther} << offsets[layer];
        };
        const std::size_t count = plates.size();
        quarters_[0] = JoinPairs(plates[0]);
        for (std::size_t layer = 1; layer < count; layer += 2) {
            const std::size_t next = std::min(layer + 1, count - 1); // the last one twice where they are not even
            const auto [first, second] = JoinPairs(plates[layer], plates[next]);
            add(layer, first);
            add(next, second);
        }
    }

    /// The heights above 0 at which layers start.
    HeightSet Starts() const { return starts_; }

    /// The quarter at height z. Must be asked for at all layers' starts, from below.
    QuarterPlate At(std::int64_t z)
    {
        at_ += starts_ >> z & 1;
        return quarters_[at_];
    }

private:
    HeightSet starts_ = 0;
    std::size_t at_ = 0;
    std::array<QuarterPlate, static_cast<std::size_t>(StackHeight)> quarters_; // as many as there are layers
};

void BuildCoarserStack(Stack& coarse, const Store& fine, const StackIndices& ij)
{
    const StackIndices child{2 * ij[0], 2 * ij[1]};
    const std::array children{&fine.VoxelStackRef(child), &fine.VoxelStackRef({child[0] + 1, child[1]}),
                              &fine.VoxelStackRef({child[0], child[1] + 1}), &fine.VoxelStackRef({child[0] + 1, child[1] + 1})};
    if (std::all_of(children.begin(), children.end(), [](const Stack* stack) { return stack->IsUnallocated(); })) {
        coarse = Stack();
        return;
    }
    std::array joined{JoinedStack(*children[0]), JoinedStack(*children[1]), JoinedStack(*children[2]), JoinedStack(*children[3])};
    const HeightSet starts = 1 | joined[0].Starts() | joined[1].Starts() | joined[2].Starts() | joined[3].Starts();
    coarse.Assign(starts, [&](std::int64_t z) {
        return FromQuarters({joined[0].At(z), joined[1].At(z), joined[2].At(z), joined[3].At(z)});
    });
}

void BuildFinerStack(Store& fine, const StackIndices& ij, const Stack& coarse, bool upperX, bool upperY)
{
    if (coarse.IsUnallocated()) {
        fine.VoxelStackRef(ij) = Stack();
        return;
    }
    StackBuilder builder;
    for (std::int32_t layer = 0; layer < coarse.LayerCount(); ++layer) {
        const VoxelPlate<bool>& plate = coarse.LayerVoxelPlateRef(layer);
        builder.Append(coarse.LowerOffset(layer), layer == 0 ? plate : DoubleResolution(plate, upperX, upperY));
    }
    Stack stack; // replaces the old one when it is complete: running out of memory leaves nothing outside the extents
    builder.WriteTo(stack);
    stack.FillOutsideBox(fine.LowerOffset(ij), fine.UpperOffset(ij), false);
    fine.VoxelStackRef(ij) = std::move(stack);
}

// Makes a store that has no stacks, and to whose stacks nobody has references, what a uniform one next to it makes it. The lowest
// layer of a full stack that is cut sideways becomes something else at a finer level.
bool TakeUniform(Store& store, const Store& from)
{
    if (!store.IsUniform() || !from.IsUniform()) return false;
    const bool isFiner = store.StacksPerRow() > from.StacksPerRow();
    if (from.IsUniformlyFull() && isFiner && from.IsCutSideways()) return false;
    store.MakeUniform(from.IsUniformlyFull());
    return true;
}

} // namespace

void PropagateStores(std::span<Store> stores, std::int64_t lod, InstructionSet instructionSet)
{
    const auto build = [&] {
        for (auto coarser = static_cast<std::size_t>(lod); coarser-- > 0;) {
            const Store& fine = stores[coarser + 1];
            Store& coarse = stores[coarser];
            if (TakeUniform(coarse, fine)) continue;
            ForEachStackOfStore(coarse,
                                [&](Store&, const StackIndices& ij) { BuildCoarserStack(coarse.VoxelStackRef(ij), fine, ij); });
        }
        for (auto finer = static_cast<std::size_t>(lod + 1); finer < stores.size(); ++finer) {
            const Store& coarse = stores[finer - 1];
            Store& fine = stores[finer];
            if (TakeUniform(fine, coarse)) continue;
            ForEachStackOfStore(fine, [&](Store&, const StackIndices& ij) {
                BuildFinerStack(fine, ij, coarse.VoxelStackRef({ij[0] / 2, ij[1] / 2}), ij[0] % 2 == 1, ij[1] % 2 == 1);
            });
        }
    };
    RunWith(instructionSet, build);
}

void PropagateLevel(VoxelModel<bool>& model, std::int64_t lod)
{
    RequireLevelOf(model.FinestLOD(), "The level of detail for voxel model operations", lod);
    model.ForEachChunk([&](const Triple&, VoxelChunk<bool>& chunk) { chunk.MakeLevelsFollow(lod); });
}

} // namespace brix
