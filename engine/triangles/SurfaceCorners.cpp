#include "SurfaceCorners.h"

#include <algorithm>

namespace brix {
namespace {

using Plate = VoxelPlate<bool>;

std::array<Plate, 4> SeenFromCorners(const std::array<const Plate*, 4>& plates)
{
    const Plate before = TowardsLowerX(*plates[1], *plates[0]);
    const Plate here = TowardsLowerX(*plates[3], *plates[2]);
    return {TowardsLowerY(here, before), TowardsLowerY(*plates[3], *plates[1]), here, *plates[3]};
}

bool IsBefore(const CornerBlock& block, const std::array<std::int64_t, 2>& place)
{
    return std::pair(block.place[1], block.place[0]) < std::pair(place[1], place[0]);
}

const CornerBlock* Find(CornerWalk::Blocks blocks, const std::array<std::int64_t, 2>& place)
{
    const auto found = std::lower_bound(blocks.begin(), blocks.end(), place,
                                        [](const auto& block, const auto& wanted) { return IsBefore(*block, wanted); });
    return found != blocks.end() && (*found)->place == place ? found->get() : nullptr;
}

} // namespace

CornerPlates::CornerPlates(const VoxelModel<bool>& model, std::int64_t lod, const std::array<std::int64_t, 2>& stackPlace,
                           std::int64_t chunkZ)
    : place(stackPlace)
{
    std::array<const Plate*, 4> tops{};
    for (std::size_t k = 0; k < 4; ++k) {
        const std::int64_t x = place[0] - (k % 2 == 0 ? 1 : 0);
        const std::int64_t y = place[1] - (k / 2 == 0 ? 1 : 0);
        stacks[k] = &FindStack(model, {x, y, chunkZ}, lod);
        stacksBelow[k] = &FindStack(model, {x, y, chunkZ - 1}, lod);
        tops[k] = &stacksBelow[k]->Plates().back();
    }
    upper = SeenFromCorners(tops);
}

bool CornerPlates::IsAmidstFilled() const
{
    const auto isSolid = [](const VoxelStack<bool>* stack) { return stack->IsWhollyFilled(); };
    return std::all_of(stacks.begin(), stacks.end(), isSolid) && std::all_of(upper.begin(), upper.end(), IsFull);
}

void CornerPlates::MoveTo(std::int64_t z)
{
    HeightSet starts = 0;
    for (const VoxelStack<bool>* const stack : stacks) starts |= stack->LayerStarts();
    const bool changes = (starts >> z & 1) != 0;
    isAsBelow = !changes && lower == upper;
    if (isAsBelow) return;
    lower = upper;
    if (changes) {
        std::array<const Plate*, 4> plates{};
        for (std::size_t k = 0; k < 4; ++k) plates[k] = &stacks[k]->LayerVoxelPlateRef(stacks[k]->LayerID(z));
        upper = SeenFromCorners(plates);
    }
    const auto& [a, b, c, d] = lower;
    const auto& [e, f, g, h] = upper;
    mixed = MapRows([](auto& out, const auto& first, const auto&... others) { out = ((first ^ others) | ...); }, a, b, c, d, e, f,
                    g, h);
}

Plate CornerPlates::Split() const
{
    const auto& [a, b, c, d] = lower;
    const auto& [e, f, g, h] = upper;
    // Of four around an edge: the first is as its opposite, and the two between them are both otherwise.
    const auto isCrossing = [](const Plate& first, const Plate& second, const Plate& opposite, const Plate& last) {
        return AndNot((first ^ second) & (first ^ last), first ^ opposite);
    };
    const auto meet = [](const Plate& first, const Plate& opposite, const std::array<const Plate*, 6>& others) {
        Plate alone = ~(first ^ opposite);
        for (const Plate* const other : others) alone = alone & (first ^ *other);
        return alone;
    };
    return isCrossing(a, b, d, c) | isCrossing(e, f, h, g) | isCrossing(a, b, f, e) | isCrossing(c, d, h, g) |
           isCrossing(a, c, g, e) | isCrossing(b, d, h, f) | meet(a, h, {&b, &c, &d, &e, &f, &g}) |
           meet(b, g, {&a, &c, &d, &e, &f, &h}) | meet(c, f, {&a, &b, &d, &e, &g, &h}) | meet(d, e, {&a, &b, &c, &f, &g, &h});
}

void CornerWalk::BeginSlab(std::int64_t chunkZ)
{
    std::vector<std::unique_ptr<CornerBlock>> blocks;
    ForEachCornerPlace(model_, lod_, chunkZ,
                       [&](const CornerPlates& plates) { blocks.push_back(std::make_unique<CornerBlock>(plates)); });
    WatchedSort(blocks.begin(), blocks.end(), [](const auto& a, const auto& b) { return IsBefore(*a, b->place); });
    for (auto& block : blocks) {
        const auto [x, y] = block->place;
        if (const CornerBlock* const below = Find(blocks_, block->place)) block->entries[1] = below->entries[1];
        block->before = {Find(blocks, {x - 1, y}), Find(blocks, {x, y - 1}), Find(blocks, {x - 1, y - 1})};
        CheckWatch();
    }
    blocks_.swap(blocks);
}

} // namespace brix
