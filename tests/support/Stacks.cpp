#include "Stacks.h"

#include <vector>

namespace brix::tests {

Heights HeightsOf(const VoxelStack<bool>& stack)
{
    Heights heights;
    for (std::int32_t layer = 0; layer < stack.LayerCount(); ++layer) {
        for (std::int64_t z = stack.LowerOffset(layer); z <= stack.UpperOffset(layer); ++z) {
            heights[static_cast<std::size_t>(z)] = stack.LayerVoxelPlateRef(layer);
        }
    }
    return heights;
}

VoxelStack<bool> MakeStack(const Heights& heights)
{
    std::vector<VoxelPlate<bool>> plates{heights[0]};
    std::vector<std::uint8_t> offsets{0};
    for (std::uint8_t z = 1; z < 64; ++z) {
        if (heights[z] == plates.back()) continue;
        plates.push_back(heights[z]);
        offsets.push_back(z);
    }
    VoxelStack<bool> stack;
    stack.Assign(plates, offsets);
    return stack;
}

Heights RandomHeights(Random& random)
{
    const std::int64_t longest = random.OneIn(3) ? 1 : random.OneIn(2) ? 10 : 64;
    Heights heights;
    for (std::int64_t z = 0, end = 0; z < 64; z = end) {
        end = std::min<std::int64_t>(z + random.Between(1, longest), 64);
        VoxelPlate<bool> plate;
        if (random.OneIn(3))
            plate = Box({random.Between(0, 12), random.Between(0, 12)}, {random.Between(0, 20), random.Between(0, 20)});
        if (random.OneIn(3)) plate = FilledPlate();
        if (random.OneIn(3)) plate = MakePlate([&](std::size_t) { return random.Bits(); });
        std::fill(heights.begin() + z, heights.begin() + end, plate);
    }
    return heights;
}

std::string LayerFault(const VoxelStack<bool>& stack)
{
    const auto offsets = stack.LayerOffsets();
    if (offsets.size() != static_cast<std::size_t>(stack.LayerCount()) || stack.Plates().size() != offsets.size()) {
        return "the numbers of layers, plates and offsets differ";
    }
    if (offsets.front() != 0 || offsets.back() > 63) return "the layers do not reach from 0 to 63";
    for (std::size_t i = 1; i < offsets.size(); ++i) {
        if (offsets[i] <= offsets[i - 1]) return "layer " + std::to_string(i) + " does not start above the one below";
    }
    for (std::int64_t z = 0; z < 64; ++z) {
        const std::int32_t layer = stack.LayerID(z);
        if (stack.LowerOffset(layer) > z || stack.UpperOffset(layer) < z) return "the wrong layer holds " + std::to_string(z);
    }
    return {};
}

std::string CanonicalFault(const VoxelStack<bool>& stack)
{
    if (const std::string fault = LayerFault(stack); !fault.empty()) return fault;
    const auto plates = stack.Plates();
    for (std::size_t i = 1; i < plates.size(); ++i) {
        if (plates[i] == plates[i - 1]) return "layers " + std::to_string(i - 1) + " and " + std::to_string(i) + " are equal";
    }
    const bool isEmpty = plates.size() == 1 && IsEmpty(plates[0]);
    if (stack.IsUnallocated() != isEmpty) return isEmpty ? "an empty stack owns memory" : "a stack with voxels owns no memory";
    if (stack.AllocatedBytes() > (isEmpty ? 0 : 34 * plates.size() + 32)) return "the stack keeps spare memory";
    return {};
}

} // namespace brix::tests
