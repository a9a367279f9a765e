#include "ColumnGrowth.h"

#include "../model/CombineStacks.h"
#include "../model/InstructionSet.h"

#include <tuple>

namespace brix {
namespace {

// How far each of the 16 x 16 columns of voxels still grows. The numbers are sliced by bits: plate b holds bit b of all of
// them, so that all are counted down at once, as a chain of full subtractors does.
class GrowthLeft
{
public:
    /// Columns grow by `count` voxels beyond their last filled one.
    explicit GrowthLeft(std::int64_t count) : most_(static_cast<std::uint64_t>(count - 1)), bits_(std::bit_width(most_)) {}

    /// The columns that grow into the next height.
    const Plate& Growing() const { return growing_; }

    void Stop(const Plate& columns) { growing_ = AndNot(growing_, columns); }

    void Start(const Plate& columns)
    {
        growing_ = growing_ | columns;
        for (std::size_t bit = 0; bit < bits_; ++bit) {
            Plate& plate = beyond_[bit];
            plate = (most_ >> bit & 1) != 0 ? plate | columns : AndNot(plate, columns);
        }
    }

    /// Whether none of some growing columns stops within 64 heights.
    bool IsLong(const Plate& columns) const
    {
        Plate isLong;
        for (std::size_t bit = BitsOfStack; bit < bits_; ++bit) isLong = isLong | beyond_[bit];
        return IsEmpty(AndNot(columns, isLong));
    }

    /// Some growing columns have grown by one height; those that may grow no more stop.
    void CountOne(const Plate& columns)
    {
        Plate borrow = columns;
        for (std::size_t bit = 0; bit < bits_ && !IsEmpty(borrow); ++bit) {
            const Plate before = beyond_[bit];
            beyond_[bit] = before ^ borrow;
            borrow = AndNot(borrow, before);
        }
        growing_ = AndNot(growing_, borrow);
    }

    /// All columns have grown by 1 to 64 heights, and none stops. Numbers of columns that do not grow are arbitrary.
    void CountAll(std::int64_t heights)
    {
        Plate borrow;
        for (std::size_t bit = 0; bit < bits_; ++bit) {
            const Plate before = beyond_[bit];
            const bool isOne = (static_cast<std::uint64_t>(heights) >> bit & 1) != 0;
            beyond_[bit] = isOne ? before ^ ~borrow : before ^ borrow;
            borrow = isOne ? ~before | borrow : AndNot(borrow, before);
        }
    }

private:
    static constexpr auto BitsOfStack = static_cast<std::size_t>(StackHeightBits);
    static constexpr std::size_t MostBits = 32; // more than the index space is high

    std::uint64_t most_;
    std::size_t bits_;
    Plate growing_;
    std::array<Plate, MostBits> beyond_{}; // the heights after the next one
};

// A stack's new layers, which come in either direction.
class ColumnStack
{
public:
    void Add(std::int64_t lowest, const Plate& plate)
    {
        starts_ |= HeightSet{1} << lowest;
        plates_[static_cast<std::size_t>(lowest)] = plate;
    }

    Stack Made() const
    {
        StackBuilder builder;
        for (HeightSet starts = starts_; starts != 0; starts &= starts - 1) {
            const int z = std::countr_zero(starts);
            builder.Append(z, plates_[static_cast<std::size_t>(z)]);
        }
        Stack stack;
        builder.WriteTo(stack);
        return stack;
    }

private:
    HeightSet starts_ = 0;
    std::array<Plate, static_cast<std::size_t>(StackHeight)> plates_; // written where a layer starts
};

// Heights of a stack in which neither it nor the guide changes.
struct Stretch
{
    std::int64_t lower;
    std::int64_t end;
    const Plate* filled;
    const Plate* guide;
};

// Grows through a stretch; what grows is counted height by height, until nothing stops any more before its end.
template <Side towards> void GrowThrough(const Stretch& stretch, GrowthLeft& left, ColumnStack& result)
{
    left.Stop(*stretch.guide);
    std::int64_t heights = stretch.end - stretch.lower; // that are still to be grown through
    while (heights > 0) {
        const Plate grown = AndNot(left.Growing(), *stretch.filled);
        const bool isConstant = IsEmpty(grown) || left.IsLong(grown);
        const std::int64_t step = isConstant ? heights : 1;
        result.Add(towards == Side::Upper ? stretch.end - heights : stretch.lower + heights - step, grown | *stretch.filled);
        if (!isConstant)
            left.CountOne(grown);
        else if (!IsEmpty(grown))
            left.CountAll(step);
        heights -= step;
    }
    if (!IsEmpty(*stretch.filled)) left.Start(*stretch.filled);
}

template <Side towards> Stack GrownStack(const Stack& filled, const Stack& guide, GrowthLeft& left)
{
    std::array<Stretch, static_cast<std::size_t>(StackHeight)> stretches;
    std::size_t count = 0;
    ForEachCommonLayer(
        [&](std::int64_t z, std::int64_t end, const Plate& filledPlate, const Plate& guidePlate) {
            stretches[count++] = {z, end, &filledPlate, &guidePlate};
        },
        filled, guide);
    ColumnStack result;
    for (std::size_t i = 0; i < count; ++i)
        GrowThrough<towards>(stretches[towards == Side::Upper ? i : count - 1 - i], left, result);
    return result.Made();
}

// Sweeps over one column of stacks: `occupied` are those that hold something, from the first one on the way to the last.
template <Side towards>
void GrowColumn(LevelGrid& grid, const LevelGrid& guide, std::span<const Triple> occupied, std::int64_t count)
{
    constexpr std::int64_t step = towards == Side::Upper ? 1 : -1;
    const std::int64_t last = towards == Side::Upper ? grid.UpperStack()[2] : grid.LowerStack()[2];
    GrowthLeft left(count);
    for (std::size_t next = 0; next < occupied.size();) {
        for (Triple stack = occupied[next]; (last - stack[2]) * step >= 0; stack[2] += step) {
            const bool isOccupied = next < occupied.size() && occupied[next] == stack;
            next += isOccupied ? 1 : 0;
            Stack grown = GrownStack<towards>(grid.StackAt(stack), guide.StackAt(stack), left);
            const OffsetBox inExtents = grid.Inside(stack);
            if (!inExtents.IsWholeStack()) grown.FillOutsideBox(inExtents.lower, inExtents.upper, false);
            grid.Replace(stack, std::move(grown));
            CheckWatch(); // a column may be high
            if (IsEmpty(left.Growing())) break;
        }
    }
}

template <Side towards> void GrowAllColumns(LevelGrid& grid, const LevelGrid& guide, std::int64_t count)
{
    std::vector<Triple> occupied = grid.OccupiedStacks();
    const auto onTheWay = [](const Triple& stack) {
        return std::tuple(stack[1], stack[0], towards == Side::Upper ? stack[2] : -stack[2]);
    };
    WatchedSort(occupied.begin(), occupied.end(), [&](const Triple& a, const Triple& b) { return onTheWay(a) < onTheWay(b); });
    WatchedLoop loop(occupied.size());
    const auto isOtherColumn = [](const Triple& a, const Triple& b) { return a[0] != b[0] || a[1] != b[1]; };
    for (auto begin = occupied.begin(); begin != occupied.end();) {
        const auto between = std::adjacent_find(begin, occupied.end(), isOtherColumn);
        const auto end = between == occupied.end() ? between : std::next(between);
        GrowColumn<towards>(grid, guide, {begin, end}, count);
        loop.Step(static_cast<std::size_t>(end - begin));
        begin = end;
    }
}

} // namespace

void GrowAlongZ(LevelGrid& grid, const LevelGrid& guide, Side towards, std::int64_t count)
{
    if (count == 0) return;
    RunWith(FastestInstructionSet(), [&] {
        if (towards == Side::Upper)
            GrowAllColumns<Side::Upper>(grid, guide, count);
        else
            GrowAllColumns<Side::Lower>(grid, guide, count);
    });
}

} // namespace brix
