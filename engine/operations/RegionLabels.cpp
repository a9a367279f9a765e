#include "RegionLabels.h"

#include "../frame/Require.h"
#include "../model/ChunkPart.h"
#include "../model/ForEachStack.h"
#include "../model/InstructionSet.h"

#include <limits>

namespace brix {
namespace {

// The number of the run of a row that holds bit x.
constexpr std::size_t RunOf(unsigned row, int x)
{
    return static_cast<std::size_t>(std::popcount(RunStarts(row) & ((2U << x) - 1))) - 1;
}

constexpr std::size_t LabelsBetweenChecks = 1 << 20;

constexpr std::size_t RunCount(unsigned row) { return static_cast<std::size_t>(std::popcount(RunStarts(row))); }

} // namespace

RegionLabels::RegionLabels(const VoxelModel<bool>& model, const LevelGrid& grid)
    : grid_(grid), lod_(model.FinestLOD()), runs_(model.LowerChunkIndices(), model.UpperChunkIndices())
{
    RunWith(FastestInstructionSet(), [&] {
        WatchedLoop loop(model.StoredChunkCount());
        model.ForEachChunk([&](const Triple& chunkIndices, const VoxelChunk<bool>& chunk) {
            loop.Step();
            const VoxelStore<bool>& store = chunk.VoxelStoreRef(lod_);
            if (IsUniformlyFull(store, ChunkPart(store))) return AddFullChunk(chunkIndices);
            ForEachStackOfStore(store, [&](const VoxelStore<bool>&, const StackIndices& ij) {
                if (!store.VoxelStackRef(ij).IsUnallocated()) AddStack(StackOfVoxel(store.LowerIndices(ij)));
            });
        });
        NumberRegions();
    });
}

RegionLabels::StackRuns& RegionLabels::MakeRunsOf(const Triple& stack)
{
    const auto make = [&] { return std::make_unique<RunsOfChunk>(std::size_t{1} << 2 * lod_); };
    return runs_.FindOrMake(ChunkOf(stack), make)[NumberInChunk(stack)];
}

// In stack order, the lower neighbours of a stack are labelled already.
void RegionLabels::AddStack(const Triple& stack)
{
    CheckWatch(); // its runs may be thousands
    const std::size_t first = labels_.size();
    for (const Plate& plate : grid_.StackAt(stack).Plates()) AddPlate(plate);
    MakeRunsOf(stack) = {first, labels_.size() - first};

    const auto plates = grid_.StackAt(stack).Plates();
    const Region* below = labels_.data() + first;
    for (std::size_t layer = 1; layer < plates.size(); ++layer) {
        const Region* const here = below + brix::RunCount(plates[layer - 1]);
        JoinPlates(plates[layer - 1], below, plates[layer], here);
        below = here;
    }
    for (const Axis axis : AllAxes) JoinWithLower(stack, axis);
}

// All stacks have the same runs, of one label; joined with others are those at the chunk's lower faces, or one of them where the
// other chunk is full, too.
void RegionLabels::AddFullChunk(const Triple& chunk)
{
    const StackRuns runs{labels_.size(), static_cast<std::size_t>(PlateWidth)};
    labels_.resize(runs.first + runs.count, MakeLabel());
    runs_.FindOrMake(chunk, [&] { return std::make_unique<RunsOfChunk>(1, runs); });

    const Triple first{chunk[0] << lod_, chunk[1] << lod_, chunk[2]};
    const std::int64_t last = (std::int64_t{1} << lod_) - 1;
    for (const Axis axis : AllAxes) {
        Triple lower = chunk;
        --lower[static_cast<std::size_t>(axis)];
        const RunsOfChunk* const other = runs_.Find(lower);
        if (other == nullptr) continue;
        Triple lastOfFace = other->size() == 1 ? Triple{} : Triple{last, last, 0};
        lastOfFace[static_cast<std::size_t>(axis)] = 0;
        ForEachTriple({}, lastOfFace, [&](const Triple& stack) { JoinWithLower(Plus(first, stack), axis); });
    }
}

// Joins a stack's runs with those of its lower neighbour along an axis.
void RegionLabels::JoinWithLower(const Triple& stack, Axis axis)
{
    if (axis == Axis::Z) return JoinBelow(stack);
    if (axis == Axis::Y) {
        return JoinBeside(stack, Minus(stack, {0, 1, 0}),
                          [&](const Plate& a, const Region* ofA, const Plate& b, const Region* ofB) {
                              if ((a.rows.back() & b.rows.front()) == 0) return;
                              JoinRows(a.rows.back(), ofA + brix::RunCount(a) - RunCount(a.rows.back()), b.rows.front(), ofB);
                          });
    }
    JoinBeside(stack, Minus(stack, {1, 0, 0}), [&](const Plate& a, const Region* ofA, const Plate& b, const Region* ofB) {
        for (std::size_t y = 0; y < PlateWidth; ++y) {
            ofA += RunCount(a.rows[y]);
            if ((a.rows[y] >> (PlateWidth - 1) & b.rows[y] & 1) != 0) Unite(ofA[-1], *ofB);
            ofB += RunCount(b.rows[y]);
        }
    });
}

// Labels the runs of a plate; a run that touches one of the row before takes that label.
void RegionLabels::AddPlate(const Plate& plate)
{
    unsigned before = 0;
    std::size_t labelsBefore = labels_.size();
    for (const unsigned row : plate.rows) {
        const std::size_t labelsHere = labels_.size();
        for (unsigned runs = row; runs != 0; runs = WithoutLowestRun(runs)) {
            unsigned touched = (runs ^ WithoutLowestRun(runs)) & before;
            const Region label = touched != 0 ? labels_[labelsBefore + RunOf(before, std::countr_zero(touched))] : MakeLabel();
            for (touched = WithoutLowestRun(touched); touched != 0; touched = WithoutLowestRun(touched)) {
                Unite(label, labels_[labelsBefore + RunOf(before, std::countr_zero(touched))]);
            }
            labels_.push_back(label);
        }
        before = row;
        labelsBefore = labelsHere;
    }
}

// The top layer of the stack below and the bottom layer of this one.
void RegionLabels::JoinBelow(const Triple& stack)
{
    const Triple below = Minus(stack, {0, 0, 1});
    if (grid_.StackAt(below).IsUnallocated()) return;
    const std::span<const Region> regions = RegionsOf(below);
    const Plate& top = grid_.StackAt(below).Plates().back();
    JoinPlates(top, regions.data() + regions.size() - brix::RunCount(top), grid_.StackAt(stack).Plates().front(),
               RegionsOf(stack).data());
}

// Calls join(plate, its labels, plate, its labels) for all plates of two stacks, the other first, that share heights.
template <class Join> void RegionLabels::JoinBeside(const Triple& stack, const Triple& other, const Join& join)
{
    const Stack& a = grid_.StackAt(other);
    const Stack& b = grid_.StackAt(stack);
    if (a.IsUnallocated()) return;
    const Region* labelsA = RegionsOf(other).data();
    const Region* labelsB = RegionsOf(stack).data();
    for (std::int32_t layerA = 0, layerB = 0; layerA < a.LayerCount() && layerB < b.LayerCount();) {
        const Plate& plateA = a.LayerVoxelPlateRef(layerA);
        const Plate& plateB = b.LayerVoxelPlateRef(layerB);
        join(plateA, labelsA, plateB, labelsB);
        const std::int64_t endA = a.UpperOffset(layerA);
        const std::int64_t endB = b.UpperOffset(layerB);
        if (endA <= endB) {
            labelsA += brix::RunCount(plateA);
            ++layerA;
        }
        if (endB <= endA) {
            labelsB += brix::RunCount(plateB);
            ++layerB;
        }
    }
}

void RegionLabels::JoinRows(unsigned rowA, const Region* labelsA, unsigned rowB, const Region* labelsB)
{
    for (unsigned shared = rowA & rowB; shared != 0; shared = WithoutLowestRun(shared)) {
        const int x = std::countr_zero(shared);
        Unite(labelsA[RunOf(rowA, x)], labelsB[RunOf(rowB, x)]);
    }
}

void RegionLabels::JoinPlates(const Plate& a, const Region* labelsA, const Plate& b, const Region* labelsB)
{
    for (std::size_t y = 0; y < PlateWidth; ++y) {
        JoinRows(a.rows[y], labelsA, b.rows[y], labelsB);
        labelsA += RunCount(a.rows[y]);
        labelsB += RunCount(b.rows[y]);
    }
}

// The lowest label of a region was given to its first voxel, so that regions come in the order of their roots. A label's parent
// is lower than the label, and has its region already.
void RegionLabels::NumberRegions()
{
    Region count = 0;
    for (Region label = 0; label < parents_.size(); ++label) {
        if (label % LabelsBetweenChecks == 0) CheckWatch();
        parents_[label] = parents_[label] == label ? count++ : parents_[parents_[label]];
    }
    for (std::size_t i = 0; i < labels_.size(); ++i) {
        if (i % LabelsBetweenChecks == 0) CheckWatch();
        labels_[i] = parents_[labels_[i]];
    }
    regionCount_ = count;
}

RegionLabels::Region RegionLabels::MakeLabel()
{
    Require(parents_.size() < std::numeric_limits<Region>::max(), "The voxel model has too many regions to be split.");
    parents_.push_back(static_cast<Region>(parents_.size()));
    return parents_.back();
}

// Halves the path on the way.
RegionLabels::Region RegionLabels::RootOf(Region label)
{
    while (parents_[label] != label) {
        parents_[label] = parents_[parents_[label]];
        label = parents_[label];
    }
    return label;
}

void RegionLabels::Unite(Region a, Region b)
{
    if (a == b) return;
    const Region rootA = RootOf(a);
    const Region rootB = RootOf(b);
    parents_[std::max(rootA, rootB)] = std::min(rootA, rootB);
}

} // namespace brix
