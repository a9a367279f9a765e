#include "SightOpening.h"

#include <bit>
#include <cmath>
#include <utility>

namespace brix::sight {
namespace {

constexpr int DirectionBits = 29;
constexpr int OffsetBits = 31;

std::uint64_t Magnitude(std::int64_t value)
{
    return value < 0 ? 0 - static_cast<std::uint64_t>(value) : static_cast<std::uint64_t>(value);
}

std::uint64_t LargestMagnitude(const Triple& triple)
{
    return std::max({Magnitude(triple[0]), Magnitude(triple[1]), Magnitude(triple[2])});
}

// How many bits to drop, for so many to remain.
int ExcessBits(std::uint64_t value, int bits) { return std::max(0, static_cast<int>(std::bit_width(value)) - bits); }

// Divided by a power of two where components are long, rounded to the nearest; the same for both signs.
Triple Rounded(const Triple& direction)
{
    const int excess = ExcessBits(LargestMagnitude(direction), DirectionBits);
    const std::uint64_t half = (std::uint64_t{1} << excess) / 2;
    Triple rounded{};
    for (std::size_t i = 0; i < 3; ++i) {
        const auto magnitude = static_cast<std::int64_t>((Magnitude(direction[i]) + half) >> excess);
        rounded[i] = direction[i] < 0 ? -magnitude : magnitude;
    }
    return rounded;
}

// The unit in which the offsets from a point to all centres have no more than OffsetBits. No centre that is asked for lies farther
// from the origin than the first term.
std::int64_t UnitOfOffsets(const Triple& point)
{
    const std::uint64_t farthest = 1'100'000'000 + LargestMagnitude(point);
    return std::int64_t{1} << ExcessBits(farthest, OffsetBits);
}

Vector Unit(const Triple& direction)
{
    const auto x = static_cast<double>(direction[0]);
    const auto y = static_cast<double>(direction[1]);
    const auto z = static_cast<double>(direction[2]);
    const double length = std::sqrt(x * x + y * y + z * z);
    return {x / length, y / length, z / length};
}

// A cone of more than 180 degrees is all but the cone of the remaining angle around the opposite direction.
double NarrowAngle(double degrees) { return degrees > 180 ? 360 - degrees : degrees; }

/// Sine and cosine of half an angle of 0 .. 180 degrees.
struct HalfAngle
{
    double sine, cosine;

    explicit HalfAngle(double degrees)
    {
        const double square = SquaredSineOfHalf(degrees > 90 ? 180 - degrees : degrees);
        sine = std::sqrt(square);
        cosine = std::sqrt(1 - square);
        if (degrees > 90) std::swap(sine, cosine);
    }
    double Tangent() const { return sine / cosine; }
};

// cos^2 times 2^64. The narrowest cone is one of 2^-32 either way: cos^2 is never 1.
std::uint64_t CosineFraction(double degrees)
{
    constexpr double scale = 18446744073709551616.0;
    if (degrees > 90) return static_cast<std::uint64_t>(SquaredSineOfHalf(180 - degrees) * scale);
    return 0 - std::max(std::uint64_t{1}, static_cast<std::uint64_t>(SquaredSineOfHalf(degrees) * scale));
}

SightCap CapOfCone(const Triple& direction, double degrees)
{
    const HalfAngle half(NarrowAngle(degrees));
    return {Unit(direction), degrees > 180 ? -half.cosine : half.cosine, half.sine};
}

bool IsEachCorner(const Triple& lower, const Triple& upper, const auto& is)
{
    bool isEach = true;
    ForEachTriple({0, 0, 0}, {1, 1, 1}, [&](const Triple& at) {
        Triple corner = lower;
        for (std::size_t i = 0; i < 3; ++i) corner[i] = at[i] == 0 ? lower[i] : upper[i];
        isEach = isEach && is(corner);
    });
    return isEach;
}

// A row of a convex region: one run, if anything.
template <class IsIn> std::uint16_t RowOfConvex(const IsIn& isIn)
{
    std::int64_t first = 0;
    std::int64_t last = 15;
    while (first <= last && !isIn(static_cast<std::size_t>(first))) ++first;
    while (first <= last && !isIn(static_cast<std::size_t>(last))) --last;
    return RowBits(first, last);
}

} // namespace

bool SightOpening::HoldsAny(const Triple& lower, const Triple& upper) const
{
    if (IsWithin(eye_, lower, upper)) return true;
    return !wedge_.Misses(OffsetTo(lower), OffsetTo(upper)) && !IsAllOutside(lower, upper);
}

bool SightOpening::HoldsAll(const Triple& lower, const Triple& upper) const { return IsAllInside(lower, upper); }

VoxelPlate<bool> SightOpening::PlateAt(const Triple& corner) const
{
    const Triple upper = Plus(corner, {15, 15, 0});
    if (!HoldsAny(corner, upper)) return {};
    if (IsAllInside(corner, upper)) return FilledPlate();
    const VoxelPlate<bool> plate = InsideAt(corner);
    if (!IsWithin(eye_, corner, upper)) return plate;
    const Triple eye = Minus(eye_, corner);
    return plate | Box({eye[0], eye[1]}, {eye[0], eye[1]});
}

SightCone::SightCone(const Axes& axes, const Triple& point, std::int64_t lod, const Triple& direction, double degrees)
    : SightOpening(axes, point, lod, CapOfCone(direction, degrees),
                   degrees > 180 ? SightWedge({}) : SightWedge::Around(CapOfCone(direction, degrees))),
      isInverted_(degrees > 180),
      direction_(Rounded(direction)),
      unit_(UnitOfOffsets(point))
{
    if (isInverted_) direction_ = Minus({0, 0, 0}, direction_);
    std::uint64_t square = 0;
    for (const std::int64_t v : direction_) square += static_cast<std::uint64_t>(v * v);
    factor_ = Wide{CosineFraction(NarrowAngle(degrees))} * square;
}

std::int64_t SightCone::Offset(std::size_t axis, std::int64_t index) const
{
    if (unit_ == 1) return Centre(axis, index) - point_[axis];
    __extension__ typedef __int128 SignedWide;
    return static_cast<std::int64_t>((SignedWide{Centre(axis, index)} - point_[axis]) / unit_);
}

// What a wide cone leaves out has no border of its own.
inline bool SightCone::IsInCap(const Measures& measures) const
{
    if (measures.product < 0) return false;
    const auto product = static_cast<std::uint64_t>(measures.product);
    const Wide squaredProduct = Wide{product} * product;
    const Wide below = Wide{measures.square} * static_cast<std::uint64_t>(factor_);
    const Wide limit = measures.square * (factor_ >> 64) + (below >> 64);
    if (isInverted_ || static_cast<std::uint64_t>(below) != 0) return squaredProduct > limit;
    return squaredProduct >= limit;
}

SightCone::Measures SightCone::MeasuresOf(const Triple& voxel) const
{
    Measures measures{0, 0};
    for (std::size_t i = 0; i < 3; ++i) {
        const std::int64_t offset = Offset(i, voxel[i]);
        measures.product += offset * direction_[i];
        measures.square += static_cast<std::uint64_t>(offset * offset);
    }
    return measures;
}

bool SightCone::IsAllInside(const Triple& lower, const Triple& upper) const
{
    return IsEachCorner(lower, upper, [&](const Triple& corner) {
        const Measures measures = MeasuresOf(corner);
        return isInverted_ ? measures.product <= 0 : IsInCap(measures);
    });
}

bool SightCone::IsAllOutside(const Triple& lower, const Triple& upper) const
{
    return isInverted_ && IsEachCorner(lower, upper, [&](const Triple& corner) { return IsInCap(MeasuresOf(corner)); });
}

VoxelPlate<bool> SightCone::InsideAt(const Triple& corner) const
{
    const std::int64_t z = Offset(2, corner[2]);
    std::array<Measures, 16> columns;
    for (std::size_t i = 0; i < 16; ++i) {
        const std::int64_t x = Offset(0, corner[0] + static_cast<std::int64_t>(i));
        columns[i] = {x * direction_[0] + z * direction_[2],
                      static_cast<std::uint64_t>(x * x) + static_cast<std::uint64_t>(z * z)};
    }
    const VoxelPlate<bool> inCap = MakePlate([&](std::size_t row) {
        const std::int64_t y = Offset(1, corner[1] + static_cast<std::int64_t>(row));
        const Measures ofRow{y * direction_[1], static_cast<std::uint64_t>(y * y)};
        return RowOfConvex([&](std::size_t x) {
            return IsInCap({columns[x].product + ofRow.product, columns[x].square + ofRow.square});
        });
    });
    return isInverted_ ? ~inCap : inCap;
}

/// A camera: unit vectors forward, to the right (or left) and up (or down), and its half angles.
struct SightPyramid::Shape
{
    Vector forward, right, up;
    HalfAngle horizontal, vertical;

    Shape(const Triple& direction, double horizontalDegrees, double verticalDegrees)
        : forward(Unit(direction)), right{1, 0, 0}, horizontal(horizontalDegrees), vertical(verticalDegrees)
    {
        if (direction[0] != 0 || direction[1] != 0) {
            const Vector level = Unit({direction[0], direction[1], 0});
            right = {level[1], -level[0], 0};
        }
        up = {right[1] * forward[2], -right[0] * forward[2], right[0] * forward[1] - right[1] * forward[0]};
    }

    // d * f sin >= |d * r| cos is two half-spaces with these normals; the same for up.
    Sides SideNormals() const
    {
        Sides sides;
        for (std::size_t i = 0; i < 3; ++i) {
            sides[0][i] = forward[i] * horizontal.sine - right[i] * horizontal.cosine;
            sides[1][i] = forward[i] * horizontal.sine + right[i] * horizontal.cosine;
            sides[2][i] = forward[i] * vertical.sine - up[i] * vertical.cosine;
            sides[3][i] = forward[i] * vertical.sine + up[i] * vertical.cosine;
        }
        return sides;
    }

    SightCap Cap() const
    {
        const double tangent = std::sqrt(horizontal.Tangent() * horizontal.Tangent() + vertical.Tangent() * vertical.Tangent());
        const double cosine = 1 / std::sqrt(1 + tangent * tangent);
        return {forward, cosine, tangent * cosine};
    }

    SightWedge Wedge() const
    {
        const Sides sides = SideNormals();
        const double cosine = Cap().cosine;
        if (cosine < 0.125) return SightWedge({sides.begin(), sides.end()});
        std::vector<Vector> rays;
        for (const auto& [h, v] : {std::pair{1, 1}, {1, -1}, {-1, -1}, {-1, 1}}) {
            Vector ray;
            for (std::size_t i = 0; i < 3; ++i)
                ray[i] = cosine * (forward[i] + h * horizontal.Tangent() * right[i] + v * vertical.Tangent() * up[i]);
            rays.push_back(ray);
        }
        return SightWedge::Around(rays);
    }
};

SightPyramid::SightPyramid(const Axes& axes, const Triple& point, std::int64_t lod, const Triple& direction,
                           double horizontalDegrees, double verticalDegrees)
    : SightPyramid(axes, point, lod, Shape(direction, horizontalDegrees, verticalDegrees))
{}

SightPyramid::SightPyramid(const Axes& axes, const Triple& point, std::int64_t lod, const Shape& shape)
    : SightOpening(axes, point, lod, shape.Cap(), shape.Wedge()), sides_(shape.SideNormals())
{}

inline bool SightPyramid::Holds(const Vector& offset) const
{
    constexpr double tolerance = 0x1p-40;
    const double least = -tolerance * (std::abs(offset[0]) + std::abs(offset[1]) + std::abs(offset[2]));
    bool holds = true;
    for (const Vector& side : sides_) holds &= side[0] * offset[0] + side[1] * offset[1] + side[2] * offset[2] >= least;
    return holds;
}

bool SightPyramid::IsAllInside(const Triple& lower, const Triple& upper) const
{
    return IsEachCorner(lower, upper, [&](const Triple& corner) { return Holds(OffsetTo(corner)); });
}

VoxelPlate<bool> SightPyramid::InsideAt(const Triple& corner) const
{
    std::array<Vector, 16> diagonal;
    for (std::int64_t i = 0; i < 16; ++i) diagonal[static_cast<std::size_t>(i)] = OffsetTo(Plus(corner, {i, i, 0}));
    return MakePlate([&](std::size_t y) {
        return RowOfConvex([&](std::size_t x) { return Holds({diagonal[x][0], diagonal[y][1], diagonal[x][2]}); });
    });
}

} // namespace brix::sight
