// The flood goes from run to run. A run is a layer of a stack, with all that lies outside the extents taken for filled: a box of
// equal plates. What is reached at one height of a run is reached at all of them, so that a run has one plate of reached voxels.
#include "FillOperations.h"

#include "../model/CombineStacks.h"
#include "../model/ForEachStack.h"
#include "../model/InstructionSet.h"
#include "../model/VoxelIterator.h"
#include "EmptyRegions.h"
#include "Neighbourhood.h"
#include "PlateFlood.h"

#include <algorithm>
#include <map>
#include <optional>
#include <utility>
#include <vector>

namespace brix {
namespace {

// Sets of runs are sets of the heights at which these start.
constexpr std::int64_t LowestOf(HeightSet heights) { return std::countr_zero(heights); }
constexpr std::int64_t HighestOf(HeightSet heights) { return static_cast<std::int64_t>(std::bit_width(heights)) - 1; }

struct Run
{
    Plate open;    // what the flood may enter
    Plate reached; // what it has entered
};

// The runs of a stack. Those of a stack outside the grid are none at all.
struct StackRuns
{
    HeightSet starts = 0;
    HeightSet unsettled = 0; // runs with open voxels that are not reached
    HeightSet entered = 0;   // runs into which the flood came since it last spread in the stack
    std::size_t firstRun = 0;

    HeightSet StartOf(std::int64_t z) const { return std::bit_floor(starts & HeightsUpTo(z)); }
    std::int64_t EndOf(std::int64_t start) const
    {
        const HeightSet above = starts & ~HeightsUpTo(start);
        return above != 0 ? LowestOf(above) : StackHeight;
    }
};

// The sides of a stack or chunk, for tables.
constexpr std::size_t NumberOf(Axis axis, Side side)
{
    return 2 * static_cast<std::size_t>(axis) + (side == Side::Upper ? 1 : 0);
}

// What the flood can come to: a stack of a chunk that is neither empty nor full, by its number; a region of empty chunks, which
// it fills in one step; or nothing, outside the extents and in full chunks.
using Place = std::size_t;
constexpr Place FirstRegion = Place{1} << 63;
constexpr Place Nowhere = ~Place{0};

class Flood
{
public:
    explicit Flood(const VoxelModel<bool>& model);

    // Where the flood starts: in a voxel, or in all voxels on the faces of the extents.
    void EnterVoxel(const Triple& voxel);
    void EnterFaces();

    void Spread();

    // The finest level's result, in which every run becomes what rule(run) says.
    template <class Rule> VoxelModel<bool> MakeResult(const Rule& rule) const;

private:
    // A chunk that is neither empty nor full, and what lies beside it: the first stack of such a chunk, or another place.
    struct MixedChunk
    {
        Triple chunk;
        const VoxelStore<bool>* store;
        std::array<Place, 6> beside{Nowhere, Nowhere, Nowhere, Nowhere, Nowhere, Nowhere};
    };
    struct Contact // of a region with a mixed chunk: the chunk's side
    {
        std::size_t chunk;
        Axis axis;
        Side side;
    };

    Run& RunAt(const StackRuns& stack, std::int64_t start)
    {
        return runs_[stack.firstRun + static_cast<std::size_t>(std::popcount(stack.starts & HeightsUpTo(start))) - 1];
    }
    std::size_t StacksPerChunk() const { return std::size_t{1} << 2 * bits_; }
    StackIndices IndicesOf(std::size_t number) const
    {
        const std::size_t last = (std::size_t{1} << bits_) - 1;
        return {static_cast<std::int64_t>(number & last), static_cast<std::int64_t>(number >> bits_ & last)};
    }
    std::size_t NumberInChunk(const StackIndices& ij) const { return static_cast<std::size_t>(ij[1] << bits_ | ij[0]); }

    void FindChunks();
    void AddRuns();
    void FindNeighbours();
    void AddStack(const Stack& obstacles, StackRuns& stack);
    Place PlaceBeside(std::size_t number, Axis axis, Side side) const;

    void EnterRun(StackRuns& stack, std::int64_t start, const Plate& plate);
    void EnterRuns(Place place, HeightSet heights, const Plate& plate);
    void EnterFacesOf(const MixedChunk& chunk, std::size_t firstStack);
    void EnterRegion(std::size_t region);
    void LeaveRegion(std::size_t region);

    // The runs of the stack at work that have grown, and those of them that have not yet spread upwards and downwards.
    struct Growth
    {
        HeightSet grown = 0;
        HeightSet notAbove = 0;
        HeightSet notBelow = 0;
    };
    void SpreadInStack(std::size_t number);
    template <Side side> void SpreadStacked(std::size_t number, Growth& growth, HeightSet& pending);
    void SettleRun(StackRuns& stack, std::int64_t start, Growth& growth);
    void SpreadAside(std::size_t number, HeightSet grown);

    template <class Rule>
    void WriteStack(VoxelStore<bool>& to, const StackIndices& ij, std::size_t number, const Rule& rule) const;

    const VoxelModel<bool>& model_;
    const Extents& extents_;
    std::int64_t bits_; // a chunk has 2^bits stacks along x and y
    std::vector<MixedChunk> mixed_;
    std::vector<Triple> full_;
    std::optional<EmptyRegions> regions_;
    std::vector<std::vector<Contact>> contacts_; // by region
    std::vector<bool> isReached_;                // by region
    std::vector<StackRuns> stacks_;              // of mixed chunks: all those of the first, row by row, and so on
    std::vector<Run> runs_;
    std::vector<std::size_t> waiting_; // stacks with entered runs
    std::vector<std::size_t> left_;    // regions that the flood has entered and not left
};

Flood::Flood(const VoxelModel<bool>& model)
    : model_(model), extents_(model.ExtentsRef(model.FinestLOD())), bits_(model.FinestLOD())
{
    FindChunks();
    AddRuns();
    FindNeighbours();
}

void Flood::FindChunks()
{
    std::vector<Triple> occupied;
    model_.ForEachChunk([&](const Triple& chunk, const VoxelChunk<bool>& stored) {
        const VoxelStore<bool>& store = stored.VoxelStoreRef(bits_);
        if (store.IsUnallocated()) return;
        occupied.push_back(chunk);
        if (store.IsUniformlyFull())
            full_.push_back(chunk);
        else
            mixed_.push_back({chunk, &store});
    });
    regions_.emplace(model_.LowerChunkIndices(), model_.UpperChunkIndices(), occupied);
    contacts_.resize(regions_->Count());
    isReached_.resize(regions_->Count());
}

void Flood::AddRuns()
{
    stacks_.resize(mixed_.size() * StacksPerChunk());
    WatchedLoop loop(mixed_.size());
    for (std::size_t i = 0; i < mixed_.size(); ++i) {
        loop.Step();
        ForEachStackOfStore(*mixed_[i].store, [&](const VoxelStore<bool>& store, const StackIndices& ij) {
            StackRuns& runs = stacks_[i * StacksPerChunk() + NumberInChunk(ij)];
            const OffsetBox inExtents = store.Inside(ij);
            if (inExtents.IsWholeStack()) return AddStack(store.ValidStackRef(ij), runs);
            Stack obstacles = store.ValidStackRef(ij);
            obstacles.FillOutsideBox(inExtents.lower, inExtents.upper, true);
            AddStack(obstacles, runs);
        });
    }
}

void Flood::AddStack(const Stack& obstacles, StackRuns& stack)
{
    const auto plates = obstacles.Plates();
    const auto offsets = obstacles.LayerOffsets();
    stack.firstRun = runs_.size();
    for (std::size_t layer = 0; layer < plates.size(); ++layer) {
        const HeightSet start = HeightSet{1} << offsets[layer];
        stack.starts |= start;
        if (!IsFull(plates[layer])) stack.unsettled |= start;
        runs_.push_back({~plates[layer], Plate{}});
    }
}

void Flood::FindNeighbours()
{
    std::map<Triple, std::size_t> numbers;
    for (std::size_t i = 0; i < mixed_.size(); ++i) numbers.emplace(mixed_[i].chunk, i);
    for (std::size_t i = 0; i < mixed_.size(); ++i) {
        for (const Axis axis : {Axis::X, Axis::Y, Axis::Z}) {
            for (const Side side : {Side::Lower, Side::Upper}) {
                Place& place = mixed_[i].beside[NumberOf(axis, side)];
                const Triple beside = NeighbourOf(mixed_[i].chunk, axis, side);
                if (const auto found = numbers.find(beside); found != numbers.end()) {
                    place = found->second * StacksPerChunk();
                } else if (const std::size_t region = regions_->RegionOf(beside); region != EmptyRegions::None) {
                    place = FirstRegion + region;
                    contacts_[region].push_back({i, axis, side});
                }
            }
        }
    }
}

// What lies beside a stack of a mixed chunk.
Place Flood::PlaceBeside(std::size_t number, Axis axis, Side side) const
{
    const std::size_t inChunk = number & (StacksPerChunk() - 1);
    const auto beyond = [&](std::size_t numberThere) {
        const Place place = mixed_[number >> 2 * bits_].beside[NumberOf(axis, side)];
        return place < FirstRegion ? place + numberThere : place;
    };
    if (axis == Axis::Z) return beyond(inChunk);
    const std::size_t step = axis == Axis::X ? 1 : std::size_t{1} << bits_;
    const std::size_t last = ((std::size_t{1} << bits_) - 1) * step;
    if (side == Side::Lower) return (inChunk & last) == 0 ? beyond(inChunk | last) : number - step;
    return (inChunk & last) == last ? beyond(inChunk & ~last) : number + step;
}

void Flood::EnterVoxel(const Triple& voxel)
{
    const Triple chunk = ChunkOfVoxel(voxel, bits_);
    const auto isHere = [&](const MixedChunk& mixed) { return mixed.chunk == chunk; };
    const auto mixed = std::find_if(mixed_.begin(), mixed_.end(), isHere);
    if (mixed == mixed_.end()) return EnterRegion(regions_->RegionOf(chunk));
    const StackIndices ij = mixed->store->ContainingStack(voxel);
    const Triple offset = Minus(voxel, mixed->store->LowerIndices(ij));
    const std::array<std::int64_t, 2> xy{offset[0], offset[1]};
    EnterRuns(static_cast<std::size_t>(mixed - mixed_.begin()) * StacksPerChunk() + NumberInChunk(ij), HeightSet{1} << offset[2],
              Box(xy, xy));
}

void Flood::EnterFaces()
{
    regions_->ForEachBox([&](std::size_t region, const Triple& lower, const Triple& upper) {
        bool isAtFace = false;
        for (std::size_t i = 0; i < 3; ++i)
            isAtFace |= lower[i] == model_.LowerChunkIndices()[i] || upper[i] == model_.UpperChunkIndices()[i];
        if (isAtFace) EnterRegion(region);
    });
    for (std::size_t i = 0; i < mixed_.size(); ++i) EnterFacesOf(mixed_[i], i * StacksPerChunk());
}

void Flood::EnterFacesOf(const MixedChunk& chunk, std::size_t firstStack)
{
    ForEachStackOfStore(*chunk.store, [&](const VoxelStore<bool>& store, const StackIndices& ij) {
        const std::size_t number = firstStack + NumberInChunk(ij);
        const Triple corner = store.LowerIndices(ij);
        const Triple lower = Minus(extents_.LowerIndices(), corner); // offsets of the faces, also of those far from this stack
        const Triple upper = Minus(extents_.UpperIndices(), corner);
        if (lower[0] >= 0 || lower[1] >= 0 || upper[0] < PlateWidth || upper[1] < PlateWidth)
            EnterRuns(number, HeightsFrom(0), ~Box({lower[0] + 1, lower[1] + 1}, {upper[0] - 1, upper[1] - 1}));
        if (lower[2] >= 0) EnterRuns(number, HeightSet{1} << lower[2], FilledPlate());
        if (upper[2] < StackHeight) EnterRuns(number, HeightSet{1} << upper[2], FilledPlate());
    });
}

void Flood::EnterRegion(std::size_t region)
{
    if (isReached_[region]) return;
    isReached_[region] = true;
    left_.push_back(region);
}

// Into all stacks of mixed chunks that face a region.
void Flood::LeaveRegion(std::size_t region)
{
    for (const auto& [chunk, axis, side] : contacts_[region]) {
        const std::size_t along = static_cast<std::size_t>(axis);
        Triple lower{};
        Triple upper = LastOffset;
        (side == Side::Lower ? upper : lower)[along] = (side == Side::Lower ? lower : upper)[along];
        const Plate plate = Box({lower[0], lower[1]}, {upper[0], upper[1]});
        for (std::size_t number = chunk * StacksPerChunk(); number < (chunk + 1) * StacksPerChunk(); ++number) {
            if (PlaceBeside(number, axis, side) >= FirstRegion)
                EnterRuns(number, HeightsFrom(lower[2]) & HeightsUpTo(upper[2]), plate);
        }
    }
}

// Enters the open voxels of a plate in one run.
void Flood::EnterRun(StackRuns& stack, std::int64_t start, const Plate& plate)
{
    Run& run = RunAt(stack, start);
    const Plate reached = run.reached | (plate & run.open);
    if (reached == run.reached) return;
    run.reached = reached;
    stack.entered |= HeightSet{1} << start;
}

// Enters the runs of a stack that have any of the heights, and lets the stack wait for its turn. Empty chunks are entered whole.
void Flood::EnterRuns(Place place, HeightSet heights, const Plate& plate)
{
    if (place >= FirstRegion) {
        if (place != Nowhere && !IsEmpty(plate)) EnterRegion(place - FirstRegion);
        return;
    }
    StackRuns& stack = stacks_[place];
    const bool isWaiting = stack.entered != 0;
    HeightSet runs = stack.unsettled & (heights | stack.StartOf(LowestOf(heights)));
    for (; runs != 0; runs &= runs - 1) EnterRun(stack, LowestOf(runs), plate);
    if (!isWaiting && stack.entered != 0) waiting_.push_back(place);
}

void Flood::Spread()
{
    RunWith(FastestInstructionSet(), [&] {
        std::vector<std::size_t> turn;
        WatchedLoop loop(stacks_.size()); // most are come to once
        while (!waiting_.empty() || !left_.empty()) {
            turn.clear();
            std::swap(turn, left_);
            for (const std::size_t region : turn) {
                LeaveRegion(region);
                CheckWatch();
            }
            turn.clear();
            std::swap(turn, waiting_);
            for (const std::size_t number : turn) {
                SpreadInStack(number);
                loop.Step();
            }
        }
    });
}

// Up and down the stack until nothing grows, then to the four stacks beside it.
void Flood::SpreadInStack(std::size_t number)
{
    Growth growth;
    while ((stacks_[number].entered | growth.notAbove | growth.notBelow) != 0) {
        SpreadStacked<Side::Upper>(number, growth, growth.notAbove);
        SpreadStacked<Side::Lower>(number, growth, growth.notBelow);
    }
    SpreadAside(number, growth.grown);
}

// Takes the runs that were entered, and those that have not yet spread to this side, in the order in which they stand.
template <Side side> void Flood::SpreadStacked(std::size_t number, Growth& growth, HeightSet& pending)
{
    StackRuns& stack = stacks_[number];
    const auto next = [](HeightSet heights) { return side == Side::Upper ? LowestOf(heights) : HighestOf(heights); };
    const auto beyond = [](std::int64_t z) { return side == Side::Upper ? ~HeightsUpTo(z) : HeightsUpTo(z) >> 1; };
    for (HeightSet runs = stack.entered | pending; runs != 0;) {
        const std::int64_t start = next(runs);
        if ((stack.entered >> start & 1) != 0) SettleRun(stack, start, growth);
        pending &= ~(HeightSet{1} << start);
        const Plate& reached = RunAt(stack, start).reached;
        if (const HeightSet others = stack.starts & beyond(start); others == 0)
            EnterRuns(PlaceBeside(number, Axis::Z, side), side == Side::Upper ? HeightsUpTo(0) : HeightsFrom(StackHeight - 1),
                      reached);
        else if (const std::int64_t neighbour = next(others); (stack.unsettled >> neighbour & 1) != 0)
            EnterRun(stack, neighbour, reached);
        runs = (stack.entered | pending) & beyond(start);
    }
}

// Spreads inside a run that was entered.
void Flood::SettleRun(StackRuns& stack, std::int64_t start, Growth& growth)
{
    const HeightSet bit = HeightSet{1} << start;
    Run& run = RunAt(stack, start);
    run.reached = SpreadInPlate(run.reached, run.open);
    if (run.reached == run.open) stack.unsettled &= ~bit;
    stack.entered &= ~bit;
    growth.grown |= bit;
    growth.notAbove |= bit;
    growth.notBelow |= bit;
}

// Through the columns and rows that face the stacks beside this one.
void Flood::SpreadAside(std::size_t number, HeightSet grown)
{
    for (; grown != 0; grown &= grown - 1) {
        const std::int64_t start = LowestOf(grown);
        const HeightSet heights = HeightsFrom(start) & HeightsUpTo(stacks_[number].EndOf(start) - 1);
        const Plate reached = RunAt(stacks_[number], start).reached;
        EnterRuns(PlaceBeside(number, Axis::X, Side::Lower), heights, TowardsUpperX(Plate{}, reached));
        EnterRuns(PlaceBeside(number, Axis::X, Side::Upper), heights, TowardsLowerX(Plate{}, reached));
        EnterRuns(PlaceBeside(number, Axis::Y, Side::Lower), heights, TowardsUpperY(Plate{}, reached));
        EnterRuns(PlaceBeside(number, Axis::Y, Side::Upper), heights, TowardsLowerY(Plate{}, reached));
    }
}

template <class Rule>
void Flood::WriteStack(VoxelStore<bool>& to, const StackIndices& ij, std::size_t number, const Rule& rule) const
{
    const StackRuns& runs = stacks_[number];
    const Run* run = &runs_[runs.firstRun];
    StackBuilder builder;
    for (HeightSet starts = runs.starts; starts != 0; starts &= starts - 1) builder.Append(LowestOf(starts), rule(*run++));
    Stack& result = to.ValidStackRef(ij);
    builder.WriteTo(result);
    const OffsetBox inExtents = to.Inside(ij);
    if (!inExtents.IsWholeStack()) result.FillOutsideBox(inExtents.lower, inExtents.upper, false);
}

template <class Rule> VoxelModel<bool> Flood::MakeResult(const Rule& rule) const
{
    VoxelModel<bool> result(extents_, bits_);
    WatchedLoop loop(mixed_.size());
    const auto storeOf = [&](const Triple& chunk) -> VoxelStore<bool>& { return result.ChunkRef(chunk).VoxelStoreRef(bits_); };
    for (std::size_t i = 0; i < mixed_.size(); ++i) {
        ForEachStackOfStore(storeOf(mixed_[i].chunk), [&](VoxelStore<bool>& to, const StackIndices& ij) {
            WriteStack(to, ij, i * StacksPerChunk() + NumberInChunk(ij), rule);
        });
        loop.Step();
    }
    for (const Triple& chunk : full_) storeOf(chunk).MakeUniform(true);
    regions_->ForEachBox([&](std::size_t region, const Triple& lower, const Triple& upper) {
        const Run run{FilledPlate(), isReached_[region] ? FilledPlate() : Plate{}};
        if (IsFull(rule(run)))
            ForEachTriple(lower, upper, [&](const Triple& chunk) {
                storeOf(chunk).MakeUniform(true);
                CheckWatch();
            });
    });
    result.FinishLevels(bits_);
    return result;
}

Plate FilledOrReached(const Run& run) { return ~run.open | run.reached; }
Plate NotReached(const Run& run) { return ~run.reached; }

// Floods the finest level of a model from where enter(flood) lets it in.
template <class Enter, class Rule>
VoxelModel<bool> FillByFlood(const VoxelModel<bool>& model, const Enter& enter, const Rule& rule)
{
    Flood flood(model);
    enter(flood);
    flood.Spread();
    return flood.MakeResult(rule);
}

} // namespace

VoxelModel<bool> FillFromPoint(const VoxelModel<bool>& voxelModel, const std::array<std::int64_t, 3>& pointCoords)
{
    const Triple voxel = voxelModel.AxesRef().ContainingVoxel(pointCoords, voxelModel.FinestLOD());
    const ConstVoxelIterator start = voxelModel.FindVoxel(voxel, voxelModel.FinestLOD());
    if (!start.IsValid() || start.Value()) return voxelModel;
    return FillByFlood(
        voxelModel, [&](Flood& flood) { flood.EnterVoxel(voxel); }, FilledOrReached);
}

VoxelModel<bool> FillExposedRegions(const VoxelModel<bool>& voxelModel)
{
    return FillByFlood(
        voxelModel, [](Flood& flood) { flood.EnterFaces(); }, FilledOrReached);
}

VoxelModel<bool> FillEnclosedRegions(const VoxelModel<bool>& voxelModel)
{
    return FillByFlood(
        voxelModel, [](Flood& flood) { flood.EnterFaces(); }, NotReached);
}

} // namespace brix
