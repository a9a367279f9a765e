// The flood goes from run to run. A run is a layer of a stack, with all that lies outside the extents taken for filled: a box of
// equal plates. What is reached at one height of a run is reached at all of them, so that a run has one plate of reached voxels.
#include "FillOperations.h"

#include "../model/CombineStacks.h"
#include "../model/InstructionSet.h"
#include "../model/PropagateLevel.h"
#include "../model/VoxelIterator.h"
#include "LevelGrid.h"
#include "PlateFlood.h"

#include <utility>

namespace brix {
namespace {

using Plate = VoxelPlate<bool>;
using Stack = VoxelStack<bool>;

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

class Flood
{
public:
    explicit Flood(const LevelGrid& grid);

    // Where the flood starts: in a voxel, or in all voxels on the faces of the extents.
    void EnterVoxel(const Triple& voxel);
    void EnterFaces();

    void Spread();

    // Calls visit(start, run) for the runs of a stack of the grid, lowest first.
    template <class Visit> void ForEachRun(const Triple& stack, const Visit& visit) const;

private:
    Run& RunAt(const StackRuns& stack, std::int64_t start)
    {
        return runs_[stack.firstRun + static_cast<std::size_t>(std::popcount(stack.starts & HeightsUpTo(start))) - 1];
    }
    std::size_t Number(const Triple& stack) const
    {
        const Triple offset = Minus(stack, lower_);
        return static_cast<std::size_t>(offset[0]) + static_cast<std::size_t>(offset[1]) * perRow_ +
               static_cast<std::size_t>(offset[2]) * perSlab_;
    }

    void AddStack(const Stack& obstacles, StackRuns& stack);
    void EnterRun(StackRuns& stack, std::int64_t start, const Plate& plate);
    void EnterRuns(std::size_t number, HeightSet heights, const Plate& plate);

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

    const LevelGrid& grid_;
    Triple lower_; // of a grid with one more stack on all sides, so that every stack has its neighbours
    std::size_t perRow_;
    std::size_t perSlab_;
    std::vector<StackRuns> stacks_;
    std::vector<Run> runs_;
    std::vector<std::size_t> waiting_; // stacks with entered runs
};

Flood::Flood(const LevelGrid& grid) : grid_(grid), lower_(Minus(grid.LowerStack(), {1, 1, 1}))
{
    const Triple size = Plus(Minus(grid.UpperStack(), grid.LowerStack()), {3, 3, 3});
    perRow_ = static_cast<std::size_t>(size[0]);
    perSlab_ = static_cast<std::size_t>(size[1]) * perRow_;
    stacks_.resize(static_cast<std::size_t>(size[2]) * perSlab_);
    ForEachTriple(grid.LowerStack(), grid.UpperStack(), [&](const Triple& stack) {
        const OffsetBox inExtents = grid.Inside(stack);
        if (inExtents.IsWholeStack()) return AddStack(grid.StackAt(stack), stacks_[Number(stack)]);
        Stack obstacles = grid.StackAt(stack);
        obstacles.FillOutsideBox(inExtents.lower, inExtents.upper, true);
        AddStack(obstacles, stacks_[Number(stack)]);
    });
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

void Flood::EnterVoxel(const Triple& voxel)
{
    const Triple stack = StackOfVoxel(voxel);
    const Triple offset = Minus(voxel, CornerOfStack(stack));
    const std::array<std::int64_t, 2> xy{offset[0], offset[1]};
    EnterRuns(Number(stack), HeightSet{1} << offset[2], Box(xy, xy));
}

void Flood::EnterFaces()
{
    const Extents& extents = grid_.ExtentsRef();
    ForEachTriple(grid_.LowerStack(), grid_.UpperStack(), [&](const Triple& stack) {
        const Triple corner = CornerOfStack(stack);
        const Triple lower = Minus(extents.LowerIndices(), corner); // offsets of the faces, also of those far from this stack
        const Triple upper = Minus(extents.UpperIndices(), corner);
        if (lower[0] >= 0 || lower[1] >= 0 || upper[0] < PlateWidth || upper[1] < PlateWidth)
            EnterRuns(Number(stack), HeightsFrom(0), ~Box({lower[0] + 1, lower[1] + 1}, {upper[0] - 1, upper[1] - 1}));
        if (lower[2] >= 0) EnterRuns(Number(stack), HeightSet{1} << lower[2], FilledPlate());
        if (upper[2] < StackHeight) EnterRuns(Number(stack), HeightSet{1} << upper[2], FilledPlate());
    });
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

// Enters the runs of a stack that have any of the heights, and lets the stack wait for its turn.
void Flood::EnterRuns(std::size_t number, HeightSet heights, const Plate& plate)
{
    StackRuns& stack = stacks_[number];
    const bool isWaiting = stack.entered != 0;
    HeightSet runs = stack.unsettled & (heights | stack.StartOf(LowestOf(heights)));
    for (; runs != 0; runs &= runs - 1) EnterRun(stack, LowestOf(runs), plate);
    if (!isWaiting && stack.entered != 0) waiting_.push_back(number);
}

void Flood::Spread()
{
    RunWith(FastestInstructionSet(), [&] {
        std::vector<std::size_t> turn;
        while (!waiting_.empty()) {
            turn.clear();
            std::swap(turn, waiting_);
            for (const std::size_t number : turn) SpreadInStack(number);
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
            EnterRuns(side == Side::Upper ? number + perSlab_ : number - perSlab_,
                      side == Side::Upper ? HeightsUpTo(0) : HeightsFrom(StackHeight - 1), reached);
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
        EnterRuns(number - 1, heights, TowardsUpperX(Plate{}, reached));
        EnterRuns(number + 1, heights, TowardsLowerX(Plate{}, reached));
        EnterRuns(number - perRow_, heights, TowardsUpperY(Plate{}, reached));
        EnterRuns(number + perRow_, heights, TowardsLowerY(Plate{}, reached));
    }
}

template <class Visit> void Flood::ForEachRun(const Triple& stack, const Visit& visit) const
{
    const StackRuns& runs = stacks_[Number(stack)];
    const Run* run = &runs_[runs.firstRun];
    for (HeightSet starts = runs.starts; starts != 0; starts &= starts - 1) visit(LowestOf(starts), *run++);
}

// The level's result, with every layer made of a run by a rule. The grid gives its stacks away.
template <class Rule> VoxelModel<bool> MakeResult(LevelGrid& grid, const Flood& flood, const Rule& rule)
{
    grid.RewriteAll([&](const Triple& stack, Stack& result) {
        StackBuilder builder;
        flood.ForEachRun(stack, [&](std::int64_t start, const Run& run) { builder.Append(start, rule(run)); });
        builder.WriteTo(result);
        const OffsetBox inExtents = grid.Inside(stack);
        if (!inExtents.IsWholeStack()) result.FillOutsideBox(inExtents.lower, inExtents.upper, false);
    });
    VoxelModel<bool> model = grid.TakeModel();
    PropagateLevel(model, model.FinestLOD());
    return model;
}

Plate FilledOrReached(const Run& run) { return ~run.open | run.reached; }
Plate NotReached(const Run& run) { return ~run.reached; }

// Floods the finest level of a model from where enter(flood) lets it in.
template <class Enter, class Rule>
VoxelModel<bool> FillByFlood(const VoxelModel<bool>& model, const Enter& enter, const Rule& rule)
{
    LevelGrid grid(model, model.ExtentsRef(model.FinestLOD()));
    Flood flood(grid);
    enter(flood);
    flood.Spread();
    return MakeResult(grid, flood, rule);
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
