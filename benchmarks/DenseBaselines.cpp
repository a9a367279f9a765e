#include "DenseBaselines.h"

#include "model/ForEachStack.h"
#include "model/InstructionSet.h"
#include "model/PropagateLevel.h"

namespace brix::benchmarks {
namespace {

using Word = std::uint64_t;

std::size_t Number(std::int64_t value) { return static_cast<std::size_t>(value); }

// The baseline gets the instructions that the engine gets.
template <class Work> void RunFast(const Work& work) { RunWith(FastestInstructionSet(), work); }

// Where a row of a plate lies: in a quarter of a word.
struct PlateRow
{
    std::int64_t y, z, word;
    int shift;
};

// Calls visit(height, row of the plate, place) for every row of every plate of a stack inside the box.
template <class Visit>
void ForEachPlateRow(const VoxelStore<bool>& store, const StackIndices& ij, const DenseWords& box, Visit visit)
{
    const Triple corner = Minus(store.LowerIndices(ij), box.lower);
    const Triple lower = store.LowerOffset(ij);
    const Triple upper = store.UpperOffset(ij);
    for (std::int64_t z = lower[2]; z <= upper[2]; ++z) {
        for (std::int64_t y = lower[1]; y <= upper[1]; ++y)
            visit(z, Number(y), PlateRow{corner[1] + y, corner[2] + z, corner[0] / 64, static_cast<int>(corner[0] % 64)});
    }
}

template <class Combine> DenseWords CombineDensely(const DenseWords& a, const DenseWords& b, const Combine& combine)
{
    DenseWords result = a;
    RunFast([&] {
        Word* const words = result.words.data();
        const Word* const others = b.words.data();
        for (std::size_t i = 0, count = result.words.size(); i < count; ++i) words[i] = combine(words[i], others[i]);
    });
    return result;
}

struct Grow
{
    Word operator()(Word here, Word seen) const { return here | seen; }
};
struct Shrink
{
    Word operator()(Word here, Word seen) const { return here & seen; }
};

// Moves the faces of one row by `step` (1..63) towards larger x, in place: bits move up and carry into the next word.
template <class Change> void StepUpAlongX(Word* row, std::int64_t count, std::int64_t step, const Change& change)
{
    for (std::int64_t i = count - 1; i > 0; --i) row[i] = change(row[i], row[i] << step | row[i - 1] >> (64 - step));
    row[0] = change(row[0], row[0] << step);
}

template <class Change> void StepDownAlongX(Word* row, std::int64_t count, std::int64_t step, const Change& change)
{
    for (std::int64_t i = 0; i + 1 < count; ++i) row[i] = change(row[i], row[i] >> step | row[i + 1] << (64 - step));
    row[count - 1] = change(row[count - 1], row[count - 1] >> step);
}

// Rows that lie `stride` words apart; outside of them all is empty.
struct Lines
{
    Word* first;
    std::int64_t count;
    std::int64_t stride;
    std::int64_t words;

    Word* Row(std::int64_t i) const { return first + i * stride; }
};

template <class Change> void StepLine(const Lines& lines, std::int64_t here, std::int64_t seen, const Change& change)
{
    Word* const row = lines.Row(here);
    if (seen < 0 || seen >= lines.count) {
        for (std::int64_t i = 0; i < lines.words; ++i) row[i] = change(row[i], Word{0});
        return;
    }
    const Word* const other = lines.Row(seen);
    for (std::int64_t i = 0; i < lines.words; ++i) row[i] = change(row[i], other[i]);
}

// Calls step(distance) with doubling distances whose sum is n: reach 1, 3, 7 .. n, each step seeing what the last one reached.
template <class Step> void ForEachDoubling(std::int64_t n, const Step& step)
{
    for (std::int64_t reached = 0; reached < n;) {
        const std::int64_t distance = std::min({reached + 1, n - reached, std::int64_t{63}});
        step(distance);
        reached += distance;
    }
}

template <class Change> void MoveAlongX(DenseWords& voxels, std::int64_t n, const Change& change)
{
    for (std::int64_t row = 0; row < voxels.RowCount(); ++row) {
        Word* const words = voxels.Row(row, 0);
        ForEachDoubling(n, [&](std::int64_t step) { StepUpAlongX(words, voxels.wordsPerRow, step, change); });
        ForEachDoubling(n, [&](std::int64_t step) { StepDownAlongX(words, voxels.wordsPerRow, step, change); });
        for (std::int64_t i = 0; i < voxels.wordsPerRow; ++i) words[i] &= voxels.inside[Number(i)];
    }
}

template <class Change> void MoveLines(const Lines& lines, std::int64_t n, const Change& change)
{
    ForEachDoubling(n, [&](std::int64_t step) {
        for (std::int64_t i = lines.count - 1; i >= 0; --i) StepLine(lines, i, i - step, change);
    });
    ForEachDoubling(n, [&](std::int64_t step) {
        for (std::int64_t i = 0; i < lines.count; ++i) StepLine(lines, i, i + step, change);
    });
}

template <class Change> DenseWords MoveDensely(const DenseWords& voxels, Axis axis, std::int64_t n, const Change& change)
{
    DenseWords result = voxels;
    const std::int64_t slice = result.size[1] * result.wordsPerRow;
    RunFast([&] {
        if (axis == Axis::X) MoveAlongX(result, n, change);
        for (std::int64_t z = 0; axis == Axis::Y && z < result.size[2]; ++z)
            MoveLines({result.Row(0, z), result.size[1], result.wordsPerRow, result.wordsPerRow}, n, change);
        for (std::int64_t y = 0; axis == Axis::Z && y < result.size[1]; ++y)
            MoveLines({result.Row(y, 0), result.size[2], slice, result.wordsPerRow}, n, change);
    });
    return result;
}

// One row and those beside, below and above it; a row that is missing is all zeros.
struct SixNeighbours
{
    const Word* here;
    const Word* lowerY;
    const Word* upperY;
    const Word* lowerZ;
    const Word* upperZ;
};

// Writes rule(here, x-, x+, y-, y+, z-, z+) for every word of a row.
template <class Rule> void ApplyToRow(Word* to, const SixNeighbours& rows, const std::vector<Word>& inside, const Rule& rule)
{
    const auto count = std::ssize(inside);
    const Word* const here = rows.here;
    const auto apply = [&](std::int64_t i, Word before, Word after) {
        to[i] = rule(here[i], here[i] << 1 | before >> 63, here[i] >> 1 | after << 63, rows.lowerY[i], rows.upperY[i],
                     rows.lowerZ[i], rows.upperZ[i]) &
                inside[Number(i)];
    };
    apply(0, 0, count > 1 ? here[1] : 0);
    for (std::int64_t i = 1; i + 1 < count; ++i) apply(i, here[i - 1], here[i + 1]);
    if (count > 1) apply(count - 1, here[count - 2], 0);
}

template <class Rule> DenseWords ApplyByOne(const DenseWords& voxels, const Rule& rule)
{
    DenseWords result = voxels;
    const std::vector<Word> none(Number(voxels.wordsPerRow));
    RunFast([&] {
        const auto rowOrNone = [&](std::int64_t y, std::int64_t z) {
            return y >= 0 && z >= 0 && y < voxels.size[1] && z < voxels.size[2] ? voxels.Row(y, z) : none.data();
        };
        for (std::int64_t z = 0; z < voxels.size[2]; ++z) {
            for (std::int64_t y = 0; y < voxels.size[1]; ++y) {
                ApplyToRow(result.Row(y, z),
                           {voxels.Row(y, z), rowOrNone(y - 1, z), rowOrNone(y + 1, z), rowOrNone(y, z - 1), rowOrNone(y, z + 1)},
                           voxels.inside, rule);
            }
        }
    });
    return result;
}

Word AnyOfFour(Word a, Word b, Word c, Word d) { return a | b | c | d; }
Word TwoOfFour(Word a, Word b, Word c, Word d) { return (a & b) | (c & d) | ((a | b) & (c | d)); }

// One pass over a layer, from one buffer to another.
template <class AtLeast>
void PassOverLayer(Word* to, const Word* from, const DenseWords& box, const Word* none, const AtLeast& atLeast)
{
    const std::int64_t stride = box.wordsPerRow;
    for (std::int64_t y = 0; y < box.size[1]; ++y) {
        const Word* const row = from + y * stride;
        ApplyToRow(to + y * stride, {row, y > 0 ? row - stride : none, y + 1 < box.size[1] ? row + stride : none, none, none},
                   box.inside, [&](Word here, Word lowerX, Word upperX, Word lowerY, Word upperY, Word, Word) {
                       return here | atLeast(lowerX, upperX, lowerY, upperY);
                   });
    }
}

// The seeds spread along x through the passable voxels of one row, in both directions. Returns whether any was added.
//     passable .#######.##   seeds .....#...#.   ->   .#######.##
bool SpreadAlongX(Word* reached, const Word* passable, std::int64_t count)
{
    bool changed = false;
    const auto spread = [&](std::int64_t i, Word entering, auto shift) {
        Word reach = (reached[i] | entering) & passable[i];
        Word through = passable[i];
        for (int step = 1; reach != 0 && step < 64; step *= 2) {
            reach |= through & shift(reach, step);
            through &= shift(through, step);
        }
        changed = changed || reach != reached[i];
        reached[i] = reach;
    };
    for (std::int64_t i = 0; i < count; ++i)
        spread(i, i > 0 ? reached[i - 1] >> 63 : 0, [](Word word, int step) { return word << step; });
    for (std::int64_t i = count - 1; i >= 0; --i)
        spread(i, i + 1 < count ? reached[i + 1] << 63 : 0, [](Word word, int step) { return word >> step; });
    return changed;
}

// Takes over what the row beside or below has reached. Returns whether that was anything new.
bool TakeOver(Word* reached, const Word* other, const Word* passable, std::int64_t count)
{
    Word added = 0;
    for (std::int64_t i = 0; i < count; ++i) {
        const Word entering = other[i] & passable[i] & ~reached[i];
        reached[i] |= entering;
        added |= entering;
    }
    return added != 0;
}

// One sweep over all rows, upwards (direction 1) or downwards (-1) in y and z.
bool Sweep(DenseWords& reached, const DenseWords& passable, std::int64_t direction)
{
    bool changed = false;
    const auto at = [&](std::int64_t i, std::size_t axis) { return direction > 0 ? i : reached.size[axis] - 1 - i; };
    for (std::int64_t k = 0; k < reached.size[2]; ++k) {
        for (std::int64_t j = 0; j < reached.size[1]; ++j) {
            const std::int64_t y = at(j, 1);
            const std::int64_t z = at(k, 2);
            Word* const row = reached.Row(y, z);
            bool entered = false;
            if (j > 0) entered |= TakeOver(row, reached.Row(y - direction, z), passable.Row(y, z), reached.wordsPerRow);
            if (k > 0) entered |= TakeOver(row, reached.Row(y, z - direction), passable.Row(y, z), reached.wordsPerRow);
            if (entered) SpreadAlongX(row, passable.Row(y, z), reached.wordsPerRow);
            changed |= entered;
        }
    }
    return changed;
}

// The empty voxels on the six faces, spread along their rows.
DenseWords ExposedSeeds(const DenseWords& passable)
{
    DenseWords reached = passable;
    const std::vector<Word>& inside = passable.inside;
    std::vector<Word> ends(inside.size());
    ends.front() = inside.front() & ~(inside.front() - 1);
    ends.back() |= std::bit_floor(inside.back());
    for (std::int64_t z = 0; z < passable.size[2]; ++z) {
        for (std::int64_t y = 0; y < passable.size[1]; ++y) {
            if (y == 0 || z == 0 || y == passable.size[1] - 1 || z == passable.size[2] - 1) continue;
            Word* const row = reached.Row(y, z);
            for (std::int64_t i = 0; i < passable.wordsPerRow; ++i) row[i] &= ends[Number(i)];
            SpreadAlongX(row, passable.Row(y, z), passable.wordsPerRow);
        }
    }
    return reached;
}

DenseWords ReachedFromFaces(const DenseWords& passable)
{
    DenseWords reached = ExposedSeeds(passable);
    for (bool isChanged = true; isChanged;) {
        isChanged = Sweep(reached, passable, 1);
        isChanged = Sweep(reached, passable, -1) || isChanged;
    }
    return reached;
}

} // namespace

DenseWords::DenseWords(const Extents& extents)
    : lower(extents.LowerIndices()), size(Plus(Minus(extents.UpperIndices(), extents.LowerIndices()), {1, 1, 1})), wordsPerRow(0)
{
    const std::int64_t firstBit = lower[0] - FloorDivide(lower[0], 64) * 64;
    const std::int64_t lastBit = firstBit + size[0] - 1;
    lower[0] -= firstBit;
    wordsPerRow = lastBit / 64 + 1;
    size[0] = 64 * wordsPerRow;
    inside.assign(Number(wordsPerRow), ~Word{0});
    inside.front() &= ~Word{0} << firstBit;
    inside.back() &= ~Word{0} >> (63 - lastBit % 64);
    words.resize(Number(RowCount() * wordsPerRow));
}

DenseWords::DenseWords(const VoxelModel<bool>& model) : DenseWords(model.ExtentsRef(model.FinestLOD()))
{
    ForEachStoredStack(model, model.FinestLOD(), [&](const VoxelStore<bool>& store, const StackIndices& ij) {
        const VoxelStack<bool>& stack = store.VoxelStackRef(ij);
        ForEachPlateRow(store, ij, *this, [&](std::int64_t height, std::size_t row, const PlateRow& place) {
            const Word bits = stack.LayerVoxelPlateRef(stack.LayerID(height)).rows[row];
            Row(place.y, place.z)[place.word] |= bits << place.shift;
        });
    });
}

VoxelModel<bool> ModelOf(const DenseWords& voxels, const Extents& extents, std::int64_t finestLOD)
{
    VoxelModel<bool> model(extents, finestLOD);
    ForEachStack(model, finestLOD, [&](VoxelStore<bool>& store, const StackIndices& ij) {
        VoxelStack<bool>& stack = store.VoxelStackRef(ij);
        stack.Decompress();
        ForEachPlateRow(store, ij, voxels, [&](std::int64_t height, std::size_t row, const PlateRow& place) {
            stack.LayerVoxelPlateRef(static_cast<std::int32_t>(height)).rows[row] =
                static_cast<std::uint16_t>(voxels.Row(place.y, place.z)[place.word] >> place.shift);
        });
        stack.Compress();
    });
    PropagateLevel(model, finestLOD);
    return model;
}

std::int64_t CountDensely(const DenseWords& voxels)
{
    std::int64_t count = 0;
    RunFast([&] {
        for (const Word word : voxels.words) count += std::popcount(word);
    });
    return count;
}

DenseWords GrowDensely(const DenseWords& voxels, Axis axis, std::int64_t n) { return MoveDensely(voxels, axis, n, Grow{}); }
DenseWords ShrinkDensely(const DenseWords& voxels, Axis axis, std::int64_t n) { return MoveDensely(voxels, axis, n, Shrink{}); }

DenseWords GrowByOneDensely(const DenseWords& voxels, Vertical vertical)
{
    const Word anyHeight = vertical == Vertical::Ignored ? ~Word{0} : 0;
    return ApplyByOne(voxels, [=](Word here, Word lowerX, Word upperX, Word lowerY, Word upperY, Word lowerZ, Word upperZ) {
        return here | (AnyOfFour(lowerX, upperX, lowerY, upperY) & (lowerZ | upperZ | anyHeight));
    });
}

DenseWords ShrinkByOneDensely(const DenseWords& voxels, Vertical vertical)
{
    const Word noHeight = vertical == Vertical::Ignored ? 0 : ~Word{0};
    return ApplyByOne(voxels, [=](Word here, Word lowerX, Word upperX, Word lowerY, Word upperY, Word lowerZ, Word upperZ) {
        return here & ((lowerX & upperX & lowerY & upperY) | (lowerZ & upperZ & noHeight));
    });
}

DenseWords GrowHorizontallyDensely(const DenseWords& voxels, std::span<const int> leastOfPasses)
{
    DenseWords result = voxels;
    const std::vector<Word> none(Number(voxels.wordsPerRow));
    std::vector<Word> other(Number(voxels.size[1] * voxels.wordsPerRow));
    RunFast([&] {
        for (std::int64_t z = 0; z < voxels.size[2]; ++z) {
            Word* const layer = result.Row(0, z);
            Word* from = layer;
            Word* to = other.data();
            for (const int least : leastOfPasses) {
                if (least == 1)
                    PassOverLayer(to, from, voxels, none.data(), AnyOfFour);
                else
                    PassOverLayer(to, from, voxels, none.data(), TwoOfFour);
                std::swap(from, to);
            }
            if (from != layer) std::copy(other.begin(), other.end(), layer);
        }
    });
    return result;
}

std::span<const int> DiscPasses(int diameter)
{
    static constexpr std::array disc3{1};
    static constexpr std::array disc16{1, 1, 2, 1, 1, 2, 1, 1, 1, 2};
    if (diameter == 3) return disc3;
    return disc16;
}

DenseWords UniteDensely(const DenseWords& a, const DenseWords& b)
{
    return CombineDensely(a, b, [](Word first, Word second) { return first | second; });
}

DenseWords IntersectDensely(const DenseWords& a, const DenseWords& b)
{
    return CombineDensely(a, b, [](Word first, Word second) { return first & second; });
}

DenseWords SubtractDensely(const DenseWords& a, const DenseWords& b)
{
    return CombineDensely(a, b, [](Word first, Word second) { return first & ~second; });
}

DenseWords InvertDensely(const DenseWords& voxels)
{
    DenseWords result = voxels;
    RunFast([&] {
        Word* word = result.words.data();
        for (std::int64_t row = 0; row < result.RowCount(); ++row, word += result.wordsPerRow) {
            for (std::int64_t i = 0; i < result.wordsPerRow; ++i) word[i] = ~word[i] & result.inside[Number(i)];
        }
    });
    return result;
}

DenseWords FillExposedDensely(const DenseWords& voxels) { return UniteDensely(voxels, ReachedFromFaces(InvertDensely(voxels))); }
DenseWords FillEnclosedDensely(const DenseWords& voxels) { return InvertDensely(ReachedFromFaces(InvertDensely(voxels))); }

} // namespace brix::benchmarks
