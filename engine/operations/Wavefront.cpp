#include "Wavefront.h"

#include "../model/InstructionSet.h"

#include <utility>

namespace brix {
namespace {

using Plate = VoxelPlate<bool>;

// What is kept of a step; 0 means that the wave did not come there.
constexpr std::int64_t CodeOfStep(std::int64_t step) { return 1 + step % 3; }

constexpr std::array<Triple, 6> Steps{{{-1, 0, 0}, {1, 0, 0}, {0, -1, 0}, {0, 1, 0}, {0, 0, -1}, {0, 0, 1}}};

Plate PlateOf(const Triple& offset) { return Box({offset[0], offset[1]}, {offset[0], offset[1]}); }

} // namespace

Wavefront::Wavefront(const VoxelModel<bool>& model) : grid_(model, model.ExtentsRef(model.FinestLOD())) {}

Wavefront::Place* Wavefront::PlaceAt(const Triple& stack)
{
    if (!IsWithin(stack, grid_.LowerStack(), grid_.UpperStack())) return nullptr;
    std::unique_ptr<Place>& place = places_[stack];
    if (place != nullptr) return place.get();

    place = std::make_unique<Place>();
    place->stack = stack;
    place->front.fill(None);
    const Triple corner = CornerOfStack(stack);
    const OffsetBox inside = grid_.Inside(stack);
    const Plate insidePlate = Box({inside.lower[0], inside.lower[1]}, {inside.upper[0], inside.upper[1]});
    const VoxelStack<bool>& content = grid_.StackAt(stack);
    for (std::int64_t z = inside.lower[2]; z <= inside.upper[2]; ++z)
        place->open[static_cast<std::size_t>(z)] = AndNot(insidePlate, content.LayerVoxelPlateRef(content.LayerID(z)));

    const Triple lowerFace = Minus(grid_.ExtentsRef().LowerIndices(), corner); // offsets, also of faces far from this stack
    const Triple upperFace = Minus(grid_.ExtentsRef().UpperIndices(), corner);
    place->rim = ~Box({lowerFace[0] + 1, lowerFace[1] + 1}, {upperFace[0] - 1, upperFace[1] - 1});
    place->lowestFace = lowerFace[2];
    place->highestFace = upperFace[2];
    return place.get();
}

Wavefront::Place* Wavefront::Neighbour(const Place& place, Place*& known, const Triple& step)
{
    if (known == nullptr) known = PlaceAt(Plus(place.stack, step));
    return known;
}

void Wavefront::Enter(Place* place, std::int64_t z, const Plate& voxels)
{
    if (place == nullptr) return;
    const auto height = static_cast<std::size_t>(z);
    const Plate entered = AndNot(voxels & place->open[height], place->lowBit[height] | place->highBit[height]);
    if (IsEmpty(entered)) return;
    std::int32_t& number = place->front[height];
    if (number == None) {
        number = static_cast<std::int32_t>(fronts_.size());
        fronts_.push_back({place, z, entered});
    } else {
        Plate& front = fronts_[static_cast<std::size_t>(number)].voxels;
        front = front | entered;
    }
}

// To all six sides of voxels: in their plate, in those beside it where they stand at its edge, and in those below and above.
void Wavefront::Spread(const Front& front)
{
    constexpr Plate nothing{};
    const auto& [place, z, voxels] = front;
    Enter(place, z,
          TowardsLowerX(voxels, nothing) | TowardsUpperX(voxels, nothing) | TowardsLowerY(voxels, nothing) |
              TowardsUpperY(voxels, nothing));
    const std::array<Plate, 4> beyond{TowardsUpperX(nothing, voxels), TowardsLowerX(nothing, voxels),
                                      TowardsUpperY(nothing, voxels), TowardsLowerY(nothing, voxels)};
    for (std::size_t i = 0; i < beyond.size(); ++i)
        if (!IsEmpty(beyond[i])) Enter(Neighbour(*place, place->beside[i], Steps[i]), z, beyond[i]);
    if (z > 0)
        Enter(place, z - 1, voxels);
    else
        Enter(Neighbour(*place, place->stacked[0], Steps[4]), StackHeight - 1, voxels);
    if (z < StackHeight - 1)
        Enter(place, z + 1, voxels);
    else
        Enter(Neighbour(*place, place->stacked[1], Steps[5]), 0, voxels);
}

// Notes the step of all voxels that it has come to. Whether some are at a face of the extents; then `exit` is the lowest of them.
bool Wavefront::Settle(std::int64_t step, Triple& exit)
{
    const std::int64_t code = CodeOfStep(step);
    bool isOut = false;
    for (const auto& [place, z, voxels] : fronts_) {
        const auto height = static_cast<std::size_t>(z);
        place->front[height] = None;
        if ((code & 1) != 0) place->lowBit[height] = place->lowBit[height] | voxels;
        if ((code & 2) != 0) place->highBit[height] = place->highBit[height] | voxels;
        const Plate atFace = z == place->lowestFace || z == place->highestFace ? voxels : voxels & place->rim;
        for (std::int64_t y = 0; y < PlateWidth && !IsEmpty(atFace); ++y) {
            const std::uint16_t row = atFace.Row(static_cast<std::size_t>(y));
            if (row == 0) continue;
            const Triple voxel = Plus(CornerOfStack(place->stack), {std::countr_zero(row), y, z});
            const auto order = [](const Triple& v) { return Triple{v[2], v[1], v[0]}; };
            if (!isOut || order(voxel) < order(exit)) exit = voxel;
            isOut = true;
            break;
        }
    }
    return isOut;
}

std::int64_t Wavefront::CodeOf(const Triple& voxel) const
{
    const auto found = places_.find(StackOfVoxel(voxel));
    if (found == places_.end() || found->second == nullptr) return 0;
    const Triple offset = Minus(voxel, CornerOfStack(found->first));
    const auto height = static_cast<std::size_t>(offset[2]);
    return (found->second->lowBit[height].Value({offset[0], offset[1]}) ? 1 : 0) +
           (found->second->highBit[height].Value({offset[0], offset[1]}) ? 2 : 0);
}

// Goes on in its direction as long as that leads back.
std::vector<Triple> Wavefront::WayBack(Triple voxel, std::int64_t steps) const
{
    std::vector<Triple> way{voxel};
    Triple direction = Steps[0];
    const auto leadsBack = [&](const Triple& step) { return CodeOf(Plus(voxel, step)) == CodeOfStep(steps - 1); };
    for (; steps > 0; --steps) {
        if (!leadsBack(direction)) direction = *std::find_if(Steps.begin(), Steps.end(), leadsBack);
        voxel = Plus(voxel, direction);
        way.push_back(voxel);
    }
    std::reverse(way.begin(), way.end());
    return way;
}

std::vector<Triple> Wavefront::WayOut(const Triple& start)
{
    const Triple stack = StackOfVoxel(start);
    const Triple offset = Minus(start, CornerOfStack(stack));
    Enter(PlaceAt(stack), offset[2], PlateOf(offset));
    Triple exit{};
    std::vector<Front> before;
    for (std::int64_t step = 0; !fronts_.empty(); ++step) {
        if (Settle(step, exit)) return WayBack(exit, step);
        before.clear();
        std::swap(before, fronts_);
        RunWith(FastestInstructionSet(), [&] {
            for (const Front& front : before) Spread(front);
        });
        CheckWatch();
    }
    return {};
}

} // namespace brix
