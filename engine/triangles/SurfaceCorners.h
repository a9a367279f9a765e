// The corners of voxels at which filled and empty ones may meet, 16 x 16 at a time, from the lowest height to the highest: the
// walk that surfaces are counted and made on.
#pragma once

#include "../frame/WatchedLoop.h"
#include "../model/ForEachStack.h"

#include <memory>
#include <span>
#include <vector>

namespace brix {

/// The corners at the lower sides of the voxels of a stack's place. Around them lie voxels of four stacks, which are numbered by
/// bits for x and y.
struct CornerPlates
{
    /// Stands below the corners of the lowest height of the stacks of a slab; the place is one in the grid of stacks.
    CornerPlates(const VoxelModel<bool>& model, std::int64_t lod, const std::array<std::int64_t, 2>& stackPlace,
                 std::int64_t chunkZ);

    /// Moves on to the corners of a height of the slab, 0 to 63, one after the other.
    void MoveTo(std::int64_t z);

    /// Whether the stacks around these corners are filled wholly, and so are the voxels right below them.
    bool IsAmidstFilled() const;

    /// Faces between voxel 0 around each corner and those on its upper side along x, y and z. Each face of the level is one of
    /// these, at its upper corner.
    VoxelPlate<bool> FacesAcross(std::size_t axis) const { return axis == 2 ? lower[0] ^ upper[0] : lower[0] ^ lower[axis + 1]; }

    /// Corners whose faces fall into several sheets: two filled and two empty voxels lie crosswise around one of its edges, or
    /// two voxels meet at the corner alone, both filled or both empty amidst six of the other kind.
    VoxelPlate<bool> Split() const;

    std::array<std::int64_t, 2> place;
    std::array<VoxelPlate<bool>, 4> lower{}; // the voxels that each corner sees below it, and above
    std::array<VoxelPlate<bool>, 4> upper{};
    VoxelPlate<bool> mixed{}; // corners with voxels of both kinds around them
    bool isAsBelow = false;   // whether all this is as it was one height below
    std::array<const VoxelStack<bool>*, 4> stacks{};
    std::array<const VoxelStack<bool>*, 4> stacksBelow{};
};

/// What a corner of voxels is numbered with by whoever walks.
struct CornerEntry
{
    std::uint32_t firstVertex;
    std::uint32_t shape;
};

struct CornerBlock : CornerPlates
{
    explicit CornerBlock(const CornerPlates& plates) : CornerPlates(plates) {}

    std::array<const CornerBlock*, 3> before{}; // along x, y and both, where there is one

    // Of even and odd heights. Row 0 and column 0 are the last ones of the blocks before. Only corners with faces are numbered.
    static constexpr std::size_t RowLength = PlateWidth + 1;
    using Entries = std::array<CornerEntry, RowLength * RowLength>;
    std::array<Entries, 2> entries;
};

/// Calls visit(x, y) for the bits of a plate. Four rows are looked through at once.
template <class Visit> void ForEachBit(const VoxelPlate<bool>& plate, const Visit& visit)
{
    for (std::size_t y = 0; y < plate.rows.size(); y += 4) {
        std::uint64_t word = 0;
        for (std::size_t i = 0; i < 4; ++i) word |= static_cast<std::uint64_t>(plate.rows[y + i]) << 16 * i;
        for (; word != 0; word &= word - 1) {
            const auto bit = static_cast<std::size_t>(std::countr_zero(word));
            visit(bit % 16, y + bit / 16);
        }
    }
}

/// Calls visit(plates) once for every place at which there may be faces between the voxels of a slab of stacks, or between those
/// and the ones of the slab below: beside stored stacks, but not amidst filled ones.
template <class Visit>
void ForEachCornerPlace(const VoxelModel<bool>& model, std::int64_t lod, std::int64_t chunkZ, const Visit& visit)
{
    const auto isStored = [](const VoxelStack<bool>* stack) { return !stack->IsUnallocated(); };
    const auto visitAround = [&](const VoxelStore<bool>& store, const StackIndices& ij, bool isBelow) {
        if (store.ValidStackRef(ij).IsUnallocated()) return;
        const Triple stack = StackOfVoxel(store.LowerIndices(ij));
        for (std::int64_t k = 0; k < 4; ++k) {
            const CornerPlates plates(model, lod, {stack[0] + 1 - (k & 1), stack[1] + 1 - (k >> 1)}, chunkZ);
            // A place is visited from the first stored stack around it.
            const auto& stacks = isBelow ? plates.stacksBelow : plates.stacks;
            if (std::any_of(stacks.begin(), stacks.begin() + k, isStored)) continue;
            if (isBelow && std::any_of(plates.stacks.begin(), plates.stacks.end(), isStored)) continue;
            if (!plates.IsAmidstFilled()) visit(plates);
        }
        CheckWatch();
    };
    for (const bool isBelow : {true, false}) {
        const std::int64_t slab = isBelow ? chunkZ - 1 : chunkZ;
        if (slab < model.LowerChunkIndices()[2] || slab > model.UpperChunkIndices()[2]) continue;
        ForEachStoredStackOfSlab(model, lod, slab,
                                 [&](const auto& store, const StackIndices& ij) { visitAround(store, ij, isBelow); });
    }
}

/// Calls visit(chunkZ) for all slabs with corners of the model's voxels, which are one more than those of its chunks.
template <class Visit> void ForEachCornerSlab(const VoxelModel<bool>& model, const Visit& visit)
{
    const std::int64_t lower = model.LowerChunkIndices()[2];
    const std::int64_t upper = model.UpperChunkIndices()[2];
    WatchedLoop loop(static_cast<std::size_t>(upper - lower + 2));
    for (std::int64_t chunkZ = lower; chunkZ <= upper + 1; ++chunkZ) {
        visit(chunkZ);
        loop.Step();
    }
}

class CornerWalk
{
public:
    CornerWalk(const VoxelModel<bool>& model, std::int64_t lod) : model_(model), lod_(lod) {}

    using Blocks = std::span<const std::unique_ptr<CornerBlock>>;

    /// Calls visit(blocks, z) for every height of corners with blocks of which some may have faces.
    template <class Visit> void ForEachHeight(const Visit& visit)
    {
        ForEachCornerSlab(model_, [&](std::int64_t chunkZ) {
            BeginSlab(chunkZ);
            for (std::int64_t z = 0; z < StackHeight && !blocks_.empty(); ++z) {
                for (const auto& block : blocks_) block->MoveTo(z);
                visit(Blocks(blocks_), chunkZ * StackHeight + z);
                CheckWatch();
            }
        });
    }

private:
    void BeginSlab(std::int64_t chunkZ);

    const VoxelModel<bool>& model_;
    std::int64_t lod_;
    std::vector<std::unique_ptr<CornerBlock>> blocks_; // by y, then by x
};

} // namespace brix
