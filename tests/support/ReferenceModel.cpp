#include "ReferenceModel.h"

#include "Picture.h"
#include "model/CheckInvariants.h"
#include "model/ForEachStack.h"
#include "model/PropagateLevel.h"

#include <map>
#include <sstream>

namespace brix::tests {
namespace {

std::ostream& operator<<(std::ostream& output, const Triple& triple)
{
    return output << "(" << triple[0] << ", " << triple[1] << ", " << triple[2] << ")";
}

// The stack that holds a voxel, and a voxel's place in it.
Triple StackOf(const Triple& voxel) { return {FloorDivide(voxel[0], 16), FloorDivide(voxel[1], 16), FloorDivide(voxel[2], 64)}; }
Triple CornerOf(const Triple& stack) { return {16 * stack[0], 16 * stack[1], 64 * stack[2]}; }

// The plate of a stack at a voxel's height.
VoxelPlate<bool> PlateAt(const ReferenceModel& model, const Triple& stack, std::int64_t z)
{
    const Triple corner = CornerOf(stack);
    VoxelPlate<bool> plate;
    ForEachTriple({0, 0, 0}, {15, 15, 0}, [&](const Triple& offset) {
        if (!model.Value({corner[0] + offset[0], corner[1] + offset[1], z})) return;
        std::uint16_t& row = plate.rows[static_cast<std::size_t>(offset[1])];
        row = static_cast<std::uint16_t>(row | 1U << offset[0]);
    });
    return plate;
}

std::string BoundsDifference(const Extents& actual, const Extents& expected)
{
    if (actual.LowerIndices() == expected.LowerIndices() && actual.UpperIndices() == expected.UpperIndices()) return {};
    std::ostringstream reason;
    reason << "bounds at level " << actual.VoxelLOD() << " are " << actual.LowerIndices() << " to " << actual.UpperIndices()
           << ", expected " << expected.LowerIndices() << " to " << expected.UpperIndices();
    return reason.str();
}

} // namespace

ReferenceModel::ReferenceModel(const Extents& extents, std::int64_t finestLOD, std::int64_t lod)
    : finestExtents_(extents.RescaledCopy(finestLOD)),
      extents_(finestExtents_.RescaledCopy(lod)),
      size_(Plus(Minus(extents_.UpperIndices(), extents_.LowerIndices()), {1, 1, 1})),
      filled_(static_cast<std::size_t>(size_[0] * size_[1] * size_[2]))
{}

ReferenceModel::ReferenceModel(const VoxelModel<bool>& model, std::int64_t lod)
    : ReferenceModel(model.ExtentsRef(model.FinestLOD()), model.FinestLOD(), lod)
{
    ForEachStoredStack(model, lod, [&](const VoxelStore<bool>& store, const StackIndices& ij) {
        const VoxelStack<bool>& stack = store.VoxelStackRef(ij);
        ForEachTriple(store.LowerOffset(ij), store.UpperOffset(ij), [&](const Triple& offset) {
            const VoxelPlate<bool>& plate = stack.LayerVoxelPlateRef(stack.LayerID(offset[2]));
            if (plate.Value({offset[0], offset[1]})) Set(Plus(store.LowerIndices(ij), offset));
        });
    });
}

std::int64_t ReferenceModel::CountFilled() const { return std::count(filled_.begin(), filled_.end(), std::uint8_t{1}); }

// A voxel is filled when any of the four finer ones at its height is.
ReferenceModel ReferenceModel::Coarser() const
{
    ReferenceModel coarser(finestExtents_, FinestLOD(), VoxelLOD() - 1);
    ForEachVoxel([&](const Triple& voxel) {
        if (Value(voxel)) coarser.Set({FloorDivide(voxel[0], 2), FloorDivide(voxel[1], 2), voxel[2]});
    });
    return coarser;
}

// Where the lowest layer of a stack ends: the first height, counted in the stack, whose plate is not that of the bottom.
std::int64_t ReferenceModel::LowestLayerEnd(const Triple& stack) const
{
    const std::int64_t bottom = 64 * stack[2];
    const VoxelPlate<bool> lowest = PlateAt(*this, stack, bottom);
    std::int64_t end = 1;
    while (end < 64 && PlateAt(*this, stack, bottom + end) == lowest) ++end;
    return end;
}

// Every layer of a stack but the lowest is doubled; the lowest goes to each of the four finer stacks as it stands.
ReferenceModel ReferenceModel::Finer() const
{
    std::map<Triple, std::int64_t> lowestLayerEnds;
    ReferenceModel finer(finestExtents_, FinestLOD(), VoxelLOD() + 1);
    return finer.Fill([&](const Triple& voxel) {
        const Triple doubled{FloorDivide(voxel[0], 2), FloorDivide(voxel[1], 2), voxel[2]};
        const Triple stack = StackOf(doubled);
        const auto [entry, isNew] = lowestLayerEnds.try_emplace(stack, 0);
        if (isNew) entry->second = LowestLayerEnd(stack);
        if (voxel[2] - 64 * stack[2] >= entry->second) return Value(doubled);
        return Value(Plus(CornerOf(stack), Minus(voxel, CornerOf(StackOf(voxel)))));
    });
}

ReferenceModel ReferenceModel::AtLevel(std::int64_t lod) const
{
    if (lod == VoxelLOD()) return *this;
    return lod < VoxelLOD() ? Coarser().AtLevel(lod) : Finer().AtLevel(lod);
}

std::vector<ReferenceModel> ReferenceModel::AllLevels() const
{
    std::vector<ReferenceModel> levels(static_cast<std::size_t>(FinestLOD() + 1), *this);
    for (std::int64_t lod = VoxelLOD(); lod > 0; --lod)
        levels[static_cast<std::size_t>(lod - 1)] = levels[static_cast<std::size_t>(lod)].Coarser();
    for (std::int64_t lod = VoxelLOD(); lod < FinestLOD(); ++lod)
        levels[static_cast<std::size_t>(lod + 1)] = levels[static_cast<std::size_t>(lod)].Finer();
    return levels;
}

void WriteLevel(VoxelModel<bool>& model, const ReferenceModel& reference)
{
    ForEachStack(model, reference.VoxelLOD(), [&](VoxelStore<bool>& store, const StackIndices& ij) {
        const Triple corner = store.LowerIndices(ij);
        VoxelStack<bool>& stack = store.VoxelStackRef(ij);
        stack = VoxelStack<bool>();
        for (std::int64_t z = store.LowerOffset(ij)[2]; z <= store.UpperOffset(ij)[2]; ++z) {
            const VoxelPlate<bool> plate = PlateAt(reference, StackOf(corner), corner[2] + z);
            if (!IsEmpty(plate)) stack.LayerVoxelPlateRef(stack.IsolateLevel(z, true, true)) = plate;
        }
        stack.Compress();
    });
}

std::array<std::int64_t, 8> OrderOf(const Triple& voxel, std::int64_t lod)
{
    const Triple chunk = ChunkOfVoxel(voxel, lod);
    return {chunk[2], chunk[1], chunk[0], FloorDivide(voxel[1], 16), FloorDivide(voxel[0], 16), voxel[2], voxel[1], voxel[0]};
}

VoxelModel<bool> MakeModel(const ReferenceModel& reference)
{
    // One in two makes other levels when they are asked for.
    const auto otherLevels = reference.ExtentsRef().UpperIndices()[0] % 2 == 0 ? OtherLevels::AtOnce : OtherLevels::WhenAskedFor;
    VoxelModel<bool> model(reference.FinestExtentsRef(), reference.FinestLOD(), otherLevels);
    WriteLevel(model, reference);
    model.FinishLevels(reference.VoxelLOD()); // as operations leave it
    return model;
}

std::string Differences(const ReferenceModel& actual, const ReferenceModel& expected)
{
    if (const std::string reason = BoundsDifference(actual.ExtentsRef(), expected.ExtentsRef()); !reason.empty()) return reason;
    std::int64_t count = 0;
    Triple first{};
    expected.ForEachVoxel([&](const Triple& voxel) {
        if (actual.Value(voxel) != expected.Value(voxel) && count++ == 0) first = voxel;
    });
    if (count == 0) return {};
    const Triple stack = StackOf(first);
    std::ostringstream reason;
    reason << count << " voxels of level " << expected.VoxelLOD() << " differ, the first is " << first << "; the plate from "
           << CornerOf(stack) << " at height " << first[2] << ":\n"
           << Draw("actual", PlateAt(actual, stack, first[2]), "expected", PlateAt(expected, stack, first[2]));
    return reason.str();
}

std::string Differences(const VoxelModel<bool>& model, const ReferenceModel& expected)
{
    if (!(model.AxesRef() == expected.AxesRef())) return "the frames differ";
    if (model.FinestLOD() != expected.FinestLOD()) {
        return "the finest level is " + std::to_string(model.FinestLOD()) + ", expected " + std::to_string(expected.FinestLOD());
    }
    for (const ReferenceModel& level : expected.AllLevels()) {
        const std::string reason = Differences(ReferenceModel(model, level.VoxelLOD()), level);
        if (!reason.empty()) return reason;
    }
    return CheckInvariants(model, expected.VoxelLOD());
}

} // namespace brix::tests
