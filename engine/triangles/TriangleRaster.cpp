#include "TriangleRaster.h"

namespace brix {
namespace {

using Plate = VoxelPlate<bool>;
using Stack = VoxelStack<bool>;
using Row = std::uint16_t;

// A window is 16 columns wide in x and y and may have any number of heights.
constexpr std::int64_t WindowSide = 16;

// floor(value / divisor), exact where it lies within +-limit and otherwise at or beyond the limit on the same side. The estimate in
// doubles is off by less than one; the remainder, in integers, tells which way.
template <std::int64_t limit> std::int64_t FloorWithin(std::int64_t value, std::int64_t divisor, double reciprocal)
{
    constexpr auto bound = static_cast<double>(limit + 1);
    const double estimate = std::min(std::max(static_cast<double>(value) * reciprocal, -bound), bound);
    const std::int64_t quotient = static_cast<std::int64_t>(estimate + (bound + 1)) - (limit + 2); // truncates a positive number
    const std::int64_t remainder = value - quotient * divisor;
    return quotient - (remainder < 0 ? 1 : 0) + (remainder >= divisor ? 1 : 0);
}

// Bits lower..upper of a row, for lower in 0..16 and upper in -1..15.
Row Bits(std::int32_t lower, std::int32_t upper) { return static_cast<Row>((0xFFFFU << lower) & (0xFFFFU >> (15 - upper))); }

// By value: with the references of std::min and std::max the loops below are not turned into vector instructions.
double LesserOf(double a, double b) { return a < b ? a : b; }
double GreaterOf(double a, double b) { return a > b ? a : b; }

// The inner sides of a triangle's edges in one projection, moved outwards by a voxel. The voxels i of row j are on the inner side of
// an edge where perVoxel * i + perRow * j + base >= 0. All numbers are integers far below 2^53, so that doubles hold them exactly and
// four rows are worked on at once.
class EdgeRows
{
public:
    EdgeRows() = default;

    // Projects on the axes a (along rows) and b (across them). The edges turn about the triangle with the sign of its normal's
    // component across the projection; `isReversed` says that it turns the other way.
    EdgeRows(const LatticeTriangle& corners, std::size_t a, std::size_t b, bool isReversed, const Triple& size)
    {
        const std::int64_t sign = isReversed ? -1 : 1;
        for (std::size_t edge = 0; edge < 3; ++edge) {
            const Triple& from = corners[edge];
            const Triple& to = corners[(edge + 1) % 3];
            const std::int64_t normalA = (from[b] - to[b]) * sign;
            const std::int64_t normalB = (to[a] - from[a]) * sign;
            const std::int64_t reach =
                std::max<std::int64_t>(normalA, 0) * size[a] + std::max<std::int64_t>(normalB, 0) * size[b];
            Set(edge, static_cast<double>(normalA * size[a]), static_cast<double>(normalB * size[b]),
                static_cast<double>(reach - normalA * from[a] - normalB * from[b]));
        }
    }

    // rows[k] becomes the voxels 0..lastVoxel of row firstRow + k that are on the inner side of all edges, voxel 0 being voxel
    // firstVoxel of the projection. Writes `count` rows, rounded up to a multiple of four, at most 64.
    void Write(Row* rows, std::int64_t count, std::int64_t firstVoxel, std::int64_t firstRow, std::int64_t lastVoxel) const
    {
        Bounds bounds;
        const std::size_t padded = (static_cast<std::size_t>(count) + 3) & ~std::size_t{3};
        for (std::size_t k = 0; k < padded; ++k) {
            bounds.lower[k] = 0;
            bounds.upper[k] = static_cast<double>(lastVoxel);
        }
        for (std::size_t edge = 0; edge < 3; ++edge) {
            const double value = base_[edge] + perVoxel_[edge] * static_cast<double>(firstVoxel) +
                                 perRow_[edge] * static_cast<double>(firstRow);
            Narrow(edge, value, bounds, padded);
        }
        for (std::size_t k = 0; k < padded; ++k) {
            rows[k] = Bits(static_cast<std::int32_t>(LesserOf(bounds.lower[k], 16.0)),
                           static_cast<std::int32_t>(GreaterOf(bounds.upper[k], -1.0)));
        }
    }

private:
    struct Bounds
    {
        Bounds() {} // written before they are read
        std::array<double, Stack::Height> lower;
        std::array<double, Stack::Height> upper;
    };

    void Set(std::size_t edge, double perVoxel, double perRow, double base)
    {
        perVoxel_[edge] = perVoxel;
        perRow_[edge] = perRow;
        base_[edge] = base;
        divisor_[edge] = std::abs(perVoxel);
        reciprocal_[edge] = 1.0 / divisor_[edge];
        lowerFactor_[edge] = perVoxel > 0 ? -1.0 : 0.0;
        upperFactor_[edge] = perVoxel > 0 ? 0.0 : 1.0;
        upperOffset_[edge] = perVoxel > 0 ? 15.0 : 0.0;
        if (perVoxel != 0) return;
        base_[edge] +=
            0.5; // all of a row or nothing: 0.5 and more becomes an upper bound beyond the row, -0.5 and less one before it
        reciprocal_[edge] = 64.0;
    }

    // Narrows the bounds of `count` rows, the first of which has `value` at its voxel 0: i >= -value / divisor or i <= value /
    // divisor. The quotient is rounded by way of a sum whose last bit is one; the remainder then makes it a floor.
    void Narrow(std::size_t edge, double value, Bounds& bounds, std::size_t count) const
    {
        constexpr double lastBitIsOne = 6755399441055744.0; // 1.5 * 2^52
        const double perRow = perRow_[edge];
        const double divisor = divisor_[edge];
        const double reciprocal = reciprocal_[edge];
        const double lowerFactor = lowerFactor_[edge];
        const double upperFactor = upperFactor_[edge];
        const double upperOffset = upperOffset_[edge];
        for (std::size_t k = 0; k < count; ++k) {
            const double ofRow = value + perRow * static_cast<double>(static_cast<std::int32_t>(k));
            const double estimate = LesserOf(GreaterOf(ofRow * reciprocal, -17.0), 17.0);
            const double rounded = (estimate + lastBitIsOne) - lastBitIsOne;
            const double remainder = ofRow - rounded * divisor;
            const double bound = rounded - (remainder < 0 ? 1.0 : 0.0) + (remainder >= divisor ? 1.0 : 0.0);
            bounds.lower[k] = GreaterOf(bounds.lower[k], bound * lowerFactor);
            bounds.upper[k] = LesserOf(bounds.upper[k], bound * upperFactor + upperOffset);
        }
    }

    std::array<double, 3> perVoxel_;
    std::array<double, 3> perRow_;
    std::array<double, 3> base_;
    std::array<double, 3> divisor_;
    std::array<double, 3> reciprocal_;
    std::array<double, 3> lowerFactor_; // a lower bound is -bound, or 0 where the edge bounds rows above
    std::array<double, 3> upperFactor_; // an upper bound is bound, or 15 where the edge bounds rows below
    std::array<double, 3> upperOffset_;
};

// The triangle's plane. A voxel at index p touches it when normal * p reaches both: highest >= 0 and lowest <= 0, the values of the
// plane's equation at the voxel's corners farthest above and below.
class PlaneRows
{
public:
    PlaneRows() = default;

    PlaneRows(const LatticeTriangle& corners, const Triple& normal, const Triple& size)
    {
        for (std::size_t i = 0; i < 3; ++i) {
            step_[i] = normal[i] * size[i];
            highest_ += std::max<std::int64_t>(step_[i], 0) - normal[i] * corners[0][i];
            lowest_ += std::min<std::int64_t>(step_[i], 0) - normal[i] * corners[0][i];
        }
        divisor_ = std::abs(step_[0]);
        reciprocal_ = 1.0 / static_cast<double>(divisor_);
    }

    // Whether any voxel of the box lower..upper can touch the plane.
    bool Reaches(const Triple& lower, const Triple& upper) const
    {
        std::int64_t most = highest_;
        std::int64_t least = lowest_;
        for (std::size_t i = 0; i < 3; ++i) {
            most += step_[i] * (step_[i] > 0 ? upper[i] : lower[i]);
            least += step_[i] * (step_[i] > 0 ? lower[i] : upper[i]);
        }
        return most >= 0 && least <= 0;
    }

    // The voxels of a row that touch the plane, voxel 0 being `voxel`; `candidates` are some adjacent voxels of the row.
    Row Keep(Row candidates, const Triple& voxel) const
    {
        const std::int64_t value = step_[0] * voxel[0] + step_[1] * voxel[1] + step_[2] * voxel[2];
        const std::int64_t atFirst = value + step_[0] * std::countr_zero(candidates);
        const std::int64_t atLast = value + step_[0] * (std::bit_width(candidates) - 1);
        if (std::min(atFirst, atLast) + highest_ >= 0 && std::max(atFirst, atLast) + lowest_ <= 0) return candidates;
        return candidates & RowAt(value);
    }

private:
    // In the direction in which the normal grows, the first voxel is the one that reaches the plane from below.
    Row RowAt(std::int64_t value) const
    {
        if (step_[0] == 0) return value + highest_ >= 0 && value + lowest_ <= 0 ? Row{0xFFFF} : Row{0};
        const bool isGrowing = step_[0] > 0;
        const std::int64_t untilLower = isGrowing ? value + highest_ : -(value + lowest_);
        const std::int64_t untilUpper = isGrowing ? -(value + lowest_) : value + highest_;
        const std::int64_t lower = -FloorWithin<17>(untilLower, divisor_, reciprocal_);
        const std::int64_t upper = FloorWithin<17>(untilUpper, divisor_, reciprocal_);
        return Bits(static_cast<std::int32_t>(std::clamp<std::int64_t>(lower, 0, 16)),
                    static_cast<std::int32_t>(std::clamp<std::int64_t>(upper, -1, 15)));
    }

    Triple step_{};
    std::int64_t highest_ = 0;
    std::int64_t lowest_ = 0;
    std::int64_t divisor_;
    double reciprocal_;
};

Triple Normal(const LatticeTriangle& corners)
{
    const Triple e0 = Minus(corners[1], corners[0]);
    const Triple e1 = Minus(corners[2], corners[0]);
    return {e0[1] * e1[2] - e0[2] * e1[1], e0[2] * e1[0] - e0[0] * e1[2], e0[0] * e1[1] - e0[1] * e1[0]};
}

} // namespace

// What a triangle asks of a voxel. Where its box is one voxel thick along an axis, the conditions that involve that axis hold for all
// voxels of the box and are left out; many triangles of a fine mesh are small enough for that.
struct TriangleRaster::Conditions
{
    // Corners in base units from the lower corner of the box of voxels lowerVoxel..upperVoxel, which is not clipped yet.
    Conditions(const LatticeTriangle& corners, const Triple& lowerVoxel_, const Triple& upperVoxel, const Triple& size)
        : lowerVoxel(lowerVoxel_)
    {
        const bool spansX = lowerVoxel[0] < upperVoxel[0];
        const bool spansY = lowerVoxel[1] < upperVoxel[1];
        const bool spansZ = lowerVoxel[2] < upperVoxel[2];
        hasXY = spansX && spansY;
        hasYZ = spansY && spansZ;
        hasXZ = spansX && spansZ;
        hasPlane = hasXY && hasYZ;
        const Triple normal = Normal(corners);
        if (hasXY) xy = EdgeRows(corners, 0, 1, normal[2] < 0, size);
        if (hasYZ) yz = EdgeRows(corners, 1, 2, normal[0] < 0, size);
        if (hasXZ) xz = EdgeRows(corners, 0, 2, normal[1] >= 0, size); // z, x is the cyclic order
        if (hasPlane) plane = PlaneRows(corners, normal, size);
    }

    Triple lowerVoxel;
    bool hasXY;
    bool hasYZ;
    bool hasXZ;
    bool hasPlane;
    EdgeRows xy; // rows along x, by y
    EdgeRows yz; // rows along y, by z
    EdgeRows xz; // rows along x, by z
    PlaneRows plane;
};

// The plates of the up to four stacks that a window lies in.
class TriangleRaster::Window
{
public:
    Window(VoxelStore<bool>& store, const Triple& lower)
        : store_(store),
          stack_{lower[0] / WindowSide, lower[1] / WindowSide},
          shift_(lower[0] % WindowSide),
          firstY_(lower[1] % WindowSide)
    {}

    // Fills voxels of row y of the window, at height z of the chunk.
    void Fill(std::int64_t y, std::int64_t z, Row row)
    {
        const std::uint32_t bits = std::uint32_t{row} << shift_;
        const std::int64_t upperY = (firstY_ + y) / WindowSide;
        FillStack(0, upperY, (firstY_ + y) % WindowSide, z, static_cast<Row>(bits));
        FillStack(1, upperY, (firstY_ + y) % WindowSide, z, static_cast<Row>(bits >> WindowSide));
    }

private:
    void FillStack(std::int64_t upperX, std::int64_t upperY, std::int64_t y, std::int64_t z, Row row)
    {
        if (row == 0) return;
        Plate*& plates = plates_[static_cast<std::size_t>(2 * upperY + upperX)];
        if (plates == nullptr) plates = WritablePlates({stack_[0] + upperX, stack_[1] + upperY});
        plates[z].rows[static_cast<std::size_t>(y)] |= row;
    }

    Plate* WritablePlates(const StackIndices& ij)
    {
        Stack& stack = store_.VoxelStackRef(ij);
        if (!stack.IsFullyDecompressed()) stack.Decompress();
        return &stack.LayerVoxelPlateRef(0);
    }

    VoxelStore<bool>& store_;
    StackIndices stack_;
    std::int64_t shift_;
    std::int64_t firstY_;
    std::array<Plate*, 4> plates_{};
};

TriangleRaster::TriangleRaster(VoxelStore<bool>& store, const Triple& voxelSize) : store_(store), size_(voxelSize)
{
    const Triple corner = store.LowerIndices();
    const std::int64_t width = Stack::Side * store.StacksPerRow();
    const Triple voxels{width, width, Stack::Height};
    for (std::size_t i = 0; i < 3; ++i) {
        origin_[i] = corner[i] * size_[i];
        end_[i] = origin_[i] + voxels[i] * size_[i];
        reciprocalSize_[i] = 1.0 / static_cast<double>(size_[i]);
    }
    lowerInExtents_ = Highest(Minus(store.ExtentsRef().LowerIndices(), corner), {0, 0, 0});
    upperInExtents_ = Lowest(Minus(store.ExtentsRef().UpperIndices(), corner), Minus(voxels, {1, 1, 1}));
}

void TriangleRaster::Fill(const std::vector<LatticeTriangle>& triangles, InstructionSet instructionSet)
{
    RunWith(instructionSet, [&] {
        for (const LatticeTriangle& triangle : triangles) Fill(triangle);
    });
}

// Triangles are filed in pieces already. Whatever else was put into a chunk is cut and dropped here, because beyond the span of a
// piece and the neighbourhood of its chunk the numbers of the test would exceed 64 bits.
void TriangleRaster::Fill(const LatticeTriangle& triangle)
{
    const TriangleBox box(triangle);
    if (box.Span() <= MaxPieceSpan && TouchesChunk(box)) FillPiece(triangle, box);
    else FillInPieces(triangle);
}

[[gnu::noinline]] void TriangleRaster::FillInPieces(const LatticeTriangle& triangle)
{
    ForEachPiece(
        triangle, [&](const TriangleBox& box) { return TouchesChunk(box); },
        [&](const LatticeTriangle& piece, const TriangleBox& box) { FillPiece(piece, box); });
}

bool TriangleRaster::TouchesChunk(const TriangleBox& box) const
{
    return box.lower[0] <= end_[0] && box.upper[0] >= origin_[0] && box.lower[1] <= end_[1] && box.upper[1] >= origin_[1] &&
           box.lower[2] <= end_[2] && box.upper[2] >= origin_[2];
}

// A piece lies within half a chunk of its chunk, which is at most 512 voxels wide.
Triple TriangleRaster::VoxelOf(const Triple& coords) const
{
    Triple voxel{};
    for (std::size_t i = 0; i < 3; ++i) voxel[i] = FloorWithin<1024>(coords[i], size_[i], reciprocalSize_[i]);
    return voxel;
}

void TriangleRaster::FillPiece(const LatticeTriangle& piece, const TriangleBox& box)
{
    const Triple lowerVoxel = VoxelOf(Minus(box.lower, origin_));
    const Triple upperVoxel = VoxelOf(Minus(box.upper, origin_));
    const Triple lower = Highest(lowerVoxel, lowerInExtents_);
    const Triple upper = Lowest(upperVoxel, upperInExtents_);
    if (lower[0] > upper[0] || lower[1] > upper[1] || lower[2] > upper[2]) return;

    const Triple corner = Plus(origin_, {lowerVoxel[0] * size_[0], lowerVoxel[1] * size_[1], lowerVoxel[2] * size_[2]});
    const Conditions conditions({Minus(piece[0], corner), Minus(piece[1], corner), Minus(piece[2], corner)}, lowerVoxel,
                                upperVoxel, size_);
    for (std::int64_t y = lower[1]; y <= upper[1]; y += WindowSide) {
        for (std::int64_t x = lower[0]; x <= upper[0]; x += WindowSide) {
            FillWindow(conditions, {x, y, lower[2]}, Lowest(upper, {x + WindowSide - 1, y + WindowSide - 1, upper[2]}));
        }
    }
}

// Voxels lower..upper of the chunk, at most WindowSide of them along x and y.
void TriangleRaster::FillWindow(const Conditions& conditions, const Triple& lower, const Triple& upper)
{
    const Triple first = Minus(lower, conditions.lowerVoxel);
    const Triple last = Minus(upper, lower);
    if (conditions.hasPlane && !conditions.plane.Reaches(first, Plus(first, last))) return;

    const Row allX = Bits(0, static_cast<std::int32_t>(last[0]));
    const Row allY = Bits(0, static_cast<std::int32_t>(last[1]));
    std::array<Row, WindowSide> rowsOfXY;
    std::array<Row, Stack::Height> rowsOfXZ;
    std::array<Row, Stack::Height> rowsOfYZ;
    rowsOfXY.fill(allX);
    if (conditions.hasXY) conditions.xy.Write(rowsOfXY.data(), last[1] + 1, first[0], first[1], last[0]);
    if (conditions.hasXZ) conditions.xz.Write(rowsOfXZ.data(), last[2] + 1, first[0], first[2], last[0]);
    if (conditions.hasYZ) conditions.yz.Write(rowsOfYZ.data(), last[2] + 1, first[1], first[2], last[1]);

    Window window(store_, lower);
    for (std::int64_t z = 0; z <= last[2]; ++z) {
        const Row columns = conditions.hasXZ ? rowsOfXZ[static_cast<std::size_t>(z)] : allX;
        if (columns == 0) continue;
        Row ys = conditions.hasYZ ? rowsOfYZ[static_cast<std::size_t>(z)] : allY;
        for (; ys != 0; ys &= static_cast<Row>(ys - 1)) {
            const auto y = std::countr_zero(ys);
            Row row = rowsOfXY[static_cast<std::size_t>(y)] & columns;
            if (row == 0) continue;
            if (conditions.hasPlane) row = conditions.plane.Keep(row, Plus(first, {0, y, z}));
            window.Fill(y, lower[2] + z, row);
        }
    }
}

} // namespace brix
