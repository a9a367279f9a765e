#include "FilledRuns.h"

#include "../frame/Require.h"
#include "CombineStacks.h"
#include "StackRows.h"

#include <span>

namespace brix {
namespace {

// A plate of the height at work that has filled voxels, and its first voxel along x.
struct PlacedPlate
{
    const VoxelPlate<bool>* plate;
    std::int64_t x;
};

// Joins the runs of one row of voxels that follow each other across plates.
class RowJoiner
{
public:
    RowJoiner(std::int64_t y, std::int64_t z, const std::function<void(const FilledRun&)>& visit)
        : run_{0, -1, y, z}, visit_(visit)
    {}

    void Add(unsigned row, std::int64_t x)
    {
        for (; row != 0; row &= row + (row & (0U - row))) {
            const int first = std::countr_zero(row);
            const std::int64_t lower = x + first;
            const std::int64_t upper = lower + std::countr_one(row >> first) - 1;
            if (HasRun() && lower == run_.upperX + 1) {
                run_.upperX = upper;
                continue;
            }
            Finish();
            run_.lowerX = lower;
            run_.upperX = upper;
        }
    }

    void Finish() const
    {
        if (HasRun()) visit_(run_);
    }

private:
    bool HasRun() const { return run_.upperX >= run_.lowerX; }

    FilledRun run_;
    const std::function<void(const FilledRun&)>& visit_;
};

// All runs of one height of a row of stacks.
void VisitRows(std::span<const PlacedPlate> plates, std::int64_t lowerY, std::int64_t z,
               const std::function<void(const FilledRun&)>& visit)
{
    if (plates.empty()) return;
    for (std::size_t y = 0; y < static_cast<std::size_t>(PlateWidth); ++y) {
        RowJoiner joiner(lowerY + static_cast<std::int64_t>(y), z, visit);
        for (const PlacedPlate& placed : plates) joiner.Add(placed.plate->rows[y], placed.x);
        joiner.Finish();
    }
}

void VisitSlab(const std::vector<PlacedStack>& stacks, std::int64_t lowerZ, const std::function<void(const FilledRun&)>& visit)
{
    std::vector<LayerCursor> layers;
    layers.reserve(stacks.size());
    for (const PlacedStack& placed : stacks) layers.emplace_back(*placed.stack);
    std::vector<PlacedPlate> plates;
    for (std::int64_t z = 0; z < StackHeight; ++z) {
        CheckWatch();
        for (std::size_t i = 0; i < stacks.size();) {
            const std::int64_t y = stacks[i].y;
            plates.clear();
            for (; i < stacks.size() && stacks[i].y == y; ++i) {
                layers[i].MoveTo(z);
                if (!IsEmpty(layers[i].PlateRef())) plates.push_back({&layers[i].PlateRef(), stacks[i].x * PlateWidth});
            }
            VisitRows(plates, y * PlateWidth, lowerZ + z, visit);
        }
    }
}

} // namespace

void ForEachFilledRun(const VoxelModel<bool>& model, std::int64_t lod, const std::function<void(const FilledRun&)>& visit)
{
    RequireLevelOf(model.FinestLOD(), "The level of detail for runs of voxels", lod);
    const std::int64_t lower = model.LowerChunkIndices()[2];
    const std::int64_t upper = model.UpperChunkIndices()[2];
    WatchedLoop loop(static_cast<std::size_t>(upper - lower + 1));
    for (std::int64_t z = lower; z <= upper; ++z) {
        VisitSlab(StacksOfSlab(model, lod, z), z * ChunkHeight, visit);
        loop.Step();
    }
}

} // namespace brix
