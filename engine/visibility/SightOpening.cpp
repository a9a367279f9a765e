#include "SightOpening.h"

#include "../frame/Product.h"
#include "../frame/SineAndCosine.h"

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

// The unit in which the offsets from a point to all centres have no more than OffsetBits. No centre that is asked for lies
// farther from the origin than the first term.
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
    const double length = std::sqrt(Product(x, x) + Product(y, y) + Product(z, z));
    return {x / length, y / length, z / length};
}

// A cone of more than 180 degrees is all but the cone of the remaining angle around the opposite direction.
double NarrowAngle(double degrees) { return degrees > 180 ? 360 - degrees : degrees; }

SineAndCosine OfHalf(double degrees) { return SineAndCosineOfDegrees(degrees / 2); }

double TangentOf(const SineAndCosine& angle) { return angle.sine / angle.cosine; }

// sin^2 of half an angle of up to 90 degrees. The two fractions that half an angle of whole degrees may have, 1/4 and 1/2, are
// exact.
double SquaredSineOfHalf(double degrees)
{
    const double sine = OfHalf(degrees).sine;
    return degrees == 90 ? 0.5 : sine * sine;
}

// cos^2 of half an angle times 2^64. The narrowest cone is one of 2^-32 either way: cos^2 is never 1.
std::uint64_t CosineFraction(double degrees)
{
    constexpr double scale = 18446744073709551616.0;
    if (degrees > 90) return static_cast<std::uint64_t>(SquaredSineOfHalf(180 - degrees) * scale);
    return 0 - std::max(std::uint64_t{1}, static_cast<std::uint64_t>(SquaredSineOfHalf(degrees) * scale));
}

SightCap CapOfCone(const Triple& direction, double degrees)
{
    const auto [sine, cosine] = OfHalf(degrees);
    return {Unit(direction), cosine, sine};
}

SightCap CapOfRegion(const Triple& direction, double degrees)
{
    const SightCap cap = CapOfCone(direction, NarrowAngle(degrees));
    return degrees > 180 ? SightCap{{-cap.axis[0], -cap.axis[1], -cap.axis[2]}, cap.cosine, cap.sine} : cap;
}

// The voxels of a plate that lie in a convex region: one run in a row, if any.
template <class IsIn> VoxelPlate<bool> PlateOfConvex(const std::array<Triple, 16>& offsets, const IsIn& isIn)
{
    return MakePlate([&](std::size_t y) {
        const auto isInAt = [&](std::int64_t x) {
            return isIn(Triple{offsets[static_cast<std::size_t>(x)][0], offsets[y][1], offsets[0][2]});
        };
        std::int64_t first = 0;
        std::int64_t last = 15;
        while (first <= last && !isInAt(first)) ++first;
        while (first <= last && !isInAt(last)) --last;
        return RowBits(first, last);
    });
}

} // namespace

SightOpening::SightOpening(const Axes& axes, const Triple& point, std::int64_t lod, const SightCap& cap, Kind kind,
                           SightWedge wedge)
    : point_(point),
      eye_(axes.ContainingVoxel(point, lod)),
      size_(axes.VoxelSize(lod)),
      unit_(UnitOfOffsets(point)),
      cap_(cap),
      kind_(kind),
      wedge_(std::move(wedge))
{}

std::int64_t SightOpening::Offset(std::size_t axis, std::int64_t index) const
{
    if (unit_ == 1) return Centre(axis, index) - point_[axis];
    return static_cast<std::int64_t>((WideInteger{Centre(axis, index)} - point_[axis]) / unit_);
}

bool SightOpening::MissesRegion(const Triple& lower, const Triple& upper) const
{
    const auto offset = [&](const Triple& voxel, std::size_t i) { return static_cast<double>(Offset(i, voxel[i])); };
    return wedge_.Misses({offset(lower, 0), offset(lower, 1), offset(lower, 2)},
                         {offset(upper, 0), offset(upper, 1), offset(upper, 2)});
}

bool SightOpening::LiesInRegion(const Triple& lower, const Triple& upper) const
{
    bool isIn = true;
    ForEachTriple({0, 0, 0}, {1, 1, 1}, [&](const Triple& at) {
        Triple offset{};
        for (std::size_t i = 0; i < 3; ++i) offset[i] = Offset(i, at[i] == 0 ? lower[i] : upper[i]);
        isIn = isIn && IsInRegion(offset);
    });
    return isIn;
}

bool SightOpening::HoldsAny(const Triple& lower, const Triple& upper) const
{
    if (IsWithin(eye_, lower, upper)) return true;
    return kind_ == Kind::Region ? !MissesRegion(lower, upper) : !LiesInRegion(lower, upper);
}

bool SightOpening::HoldsAll(const Triple& lower, const Triple& upper) const
{
    return kind_ == Kind::Region ? LiesInRegion(lower, upper) : MissesRegion(lower, upper);
}

VoxelPlate<bool> SightOpening::PlateAt(const Triple& corner) const
{
    const Triple upper = Plus(corner, {15, 15, 0});
    if (!HoldsAny(corner, upper)) return {};
    if (HoldsAll(corner, upper)) return FilledPlate();
    PlateOffsets offsets;
    for (std::size_t i = 0; i < 16; ++i) {
        const auto steps = static_cast<std::int64_t>(i);
        offsets[i] = {Offset(0, corner[0] + steps), Offset(1, corner[1] + steps), Offset(2, corner[2])};
    }
    const VoxelPlate<bool> region = RegionAt(offsets);
    const VoxelPlate<bool> plate = kind_ == Kind::Region ? region : ~region;
    if (!IsWithin(eye_, corner, upper)) return plate;
    const Triple eye = Minus(eye_, corner);
    return plate | Box({eye[0], eye[1]}, {eye[0], eye[1]});
}

SightCone::SightCone(const Axes& axes, const Triple& point, std::int64_t lod, const Triple& direction, double degrees)
    : SightOpening(axes, point, lod, CapOfCone(direction, degrees), degrees > 180 ? Kind::AllButTheRegion : Kind::Region,
                   SightWedge::Around(CapOfRegion(direction, degrees))),
      direction_(Rounded(direction))
{
    if (degrees > 180) direction_ = Minus({0, 0, 0}, direction_);
    std::uint64_t square = 0;
    for (const std::int64_t v : direction_) square += static_cast<std::uint64_t>(v * v);
    factor_ = WideUnsigned{CosineFraction(NarrowAngle(degrees))} * square;
}

// What a wide cone leaves out has no border of its own.
inline bool SightCone::Holds(const Triple& offset) const
{
    std::int64_t along = 0;
    std::uint64_t square = 0;
    for (std::size_t i = 0; i < 3; ++i) {
        along += offset[i] * direction_[i];
        square += static_cast<std::uint64_t>(offset[i] * offset[i]);
    }
    if (along < 0) return false;
    const WideUnsigned squaredAlong = WideUnsigned{static_cast<std::uint64_t>(along)} * static_cast<std::uint64_t>(along);
    const WideUnsigned below = WideUnsigned{square} * static_cast<std::uint64_t>(factor_);
    const WideUnsigned limit = square * (factor_ >> 64) + (below >> 64);
    const bool hasNoBorder = OpeningKind() == Kind::AllButTheRegion || static_cast<std::uint64_t>(below) != 0;
    return hasNoBorder ? squaredAlong > limit : squaredAlong >= limit;
}

bool SightCone::IsInRegion(const Triple& offset) const { return Holds(offset); }

VoxelPlate<bool> SightCone::RegionAt(const PlateOffsets& offsets) const
{
    return PlateOfConvex(offsets, [&](const Triple& offset) { return Holds(offset); });
}

/// A camera: unit vectors forward, to the right (or left) and up (or down), and its half angles.
struct SightPyramid::Shape
{
    Vector forward, right, up;
    SineAndCosine horizontal, vertical;

    Shape(const Triple& direction, double horizontalDegrees, double verticalDegrees)
        : forward(Unit(direction)), right{1, 0, 0}, horizontal(OfHalf(horizontalDegrees)), vertical(OfHalf(verticalDegrees))
    {
        if (direction[0] != 0 || direction[1] != 0) {
            const Vector level = Unit({direction[0], direction[1], 0});
            right = {level[1], -level[0], 0};
        }
        up = {right[1] * forward[2], -right[0] * forward[2], Product(right[0], forward[1]) - Product(right[1], forward[0])};
    }

    // d * f sin >= |d * r| cos is two half-spaces with these normals; the same for up.
    std::array<Vector, 4> SideNormals() const
    {
        std::array<Vector, 4> sides;
        for (std::size_t i = 0; i < 3; ++i) {
            sides[0][i] = Product(forward[i], horizontal.sine) - Product(right[i], horizontal.cosine);
            sides[1][i] = Product(forward[i], horizontal.sine) + Product(right[i], horizontal.cosine);
            sides[2][i] = Product(forward[i], vertical.sine) - Product(up[i], vertical.cosine);
            sides[3][i] = Product(forward[i], vertical.sine) + Product(up[i], vertical.cosine);
        }
        return sides;
    }

    SightCap Cap() const
    {
        const double across = TangentOf(horizontal), upwards = TangentOf(vertical);
        const double tangent = std::sqrt(Product(across, across) + Product(upwards, upwards));
        const double cosine = 1 / std::sqrt(1 + Product(tangent, tangent));
        return {forward, cosine, tangent * cosine};
    }

    SightWedge Wedge() const
    {
        const std::array<Vector, 4> sides = SideNormals();
        const double cosine = Cap().cosine;
        if (cosine < 0.125) return SightWedge({sides.begin(), sides.end()});
        std::vector<Vector> rays;
        for (const auto& [h, v] : {std::pair{1, 1}, {1, -1}, {-1, -1}, {-1, 1}}) {
            Vector ray;
            for (std::size_t i = 0; i < 3; ++i)
                ray[i] = cosine *
                         (forward[i] + Product(h * TangentOf(horizontal), right[i]) + Product(v * TangentOf(vertical), up[i]));
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
    : SightOpening(axes, point, lod, shape.Cap(), Kind::Region, shape.Wedge()), sides_()
{
    const auto normals = shape.SideNormals();
    for (std::size_t side = 0; side < 4; ++side) {
        for (std::size_t i = 0; i < 3; ++i) sides_[side][i] = static_cast<std::int64_t>(normals[side][i] * 0x1p61);
    }
}

inline bool SightPyramid::Holds(const Triple& offset) const
{
    const WideInteger tolerance = WideInteger{std::abs(offset[0]) + std::abs(offset[1]) + std::abs(offset[2])} << (61 - 40);
    for (const Triple& side : sides_) {
        const WideInteger inwards =
            WideInteger{side[0]} * offset[0] + WideInteger{side[1]} * offset[1] + WideInteger{side[2]} * offset[2];
        if (inwards < -tolerance) return false;
    }
    return true;
}

bool SightPyramid::IsInRegion(const Triple& offset) const { return Holds(offset); }

VoxelPlate<bool> SightPyramid::RegionAt(const PlateOffsets& offsets) const
{
    return PlateOfConvex(offsets, [&](const Triple& offset) { return Holds(offset); });
}

} // namespace brix::sight
