// What a triangle asks of the voxels of its box (see TriangleRaster.h), for eight rows of voxels at once. Voxels are counted from
// the lower corner of the box, and corners are base units from there.
//
// Numbers are kept small by a unit, the common divisor of a voxel's sizes (1250 base units or a multiple). What a condition asks,
//
//     normal * size * voxel + rest >= 0     is the same as     normal * (size / unit) * voxel + floor(rest / unit) >= 0,
//
// because all but the rest is a multiple of the unit.
#pragma once

#include "PackedTriangles.h"

#include <cmath>

namespace brix {

struct VoxelSizes
{
    Quad inUnits; // the sizes of a voxel
    std::int32_t unit;
    double perUnit;
};

/// The corners of a triangle with x, y and z apart, one corner or edge per lane. A box is less than 2^19 base units wide.
struct Corners
{
    Corners(const Quad& a, const Quad& b, const Quad& c)
    {
        const Quad xyOfAB = __builtin_shufflevector(a, b, 0, 4, 1, 5);
        const Quad zOfAB = __builtin_shufflevector(a, b, 2, 6, 3, 7);
        from[0] = __builtin_shufflevector(xyOfAB, c, 0, 1, 4, 5);
        from[1] = __builtin_shufflevector(xyOfAB, c, 2, 3, 5, 5);
        from[2] = __builtin_shufflevector(zOfAB, c, 0, 1, 6, 6);
        for (std::size_t i = 0; i < 3; ++i) along[i] = __builtin_shufflevector(from[i], from[i], 1, 2, 0, 3) - from[i];
    }

    // Component of the normal across the axes a and b: below 2^39, so that a double holds it exactly.
    double NormalAcross(std::size_t a, std::size_t b) const
    {
        const DoubleQuad alongA = __builtin_convertvector(along[a], DoubleQuad);
        const DoubleQuad alongB = __builtin_convertvector(along[b], DoubleQuad);
        return alongA[0] * alongB[1] - alongB[0] * alongA[1];
    }

    std::array<Quad, 3> from;
    std::array<Quad, 3> along; // the edge from each corner to the next
};

/// The inner sides of a triangle's edges in one projection, moved outwards by a voxel; an edge per lane. Voxel (i, j) of the
/// projection touches the inner side of an edge where perFirst * i + perSecond * j + base >= 0, in units. Products of two lengths
/// of the box are below 2^38, so that doubles hold them exactly, and below 2^28 in units, so that 32 bits hold the sum.
struct Edges
{
    Edges() = default;

    // The edges turn about the triangle with the sign of its normal's component across the projection, or the other way.
    Edges(const Corners& corners, std::size_t first, std::size_t second, bool isReversed, const VoxelSizes& sizes)
    {
        constexpr std::int32_t bias = 1 << 30; // makes truncation a floor
        const std::int32_t turn = 1 - 2 * static_cast<std::int32_t>(isReversed);
        perFirst = corners.along[second] * (-turn * sizes.inUnits[static_cast<int>(first)]);
        perSecond = corners.along[first] * (turn * sizes.inUnits[static_cast<int>(second)]);
        const DoubleQuad distance =
            __builtin_convertvector(corners.along[first], DoubleQuad) *
                __builtin_convertvector(corners.from[second], DoubleQuad) -
            __builtin_convertvector(corners.along[second], DoubleQuad) * __builtin_convertvector(corners.from[first], DoubleQuad);
        const DoubleQuad quotient = (0.5 - distance * static_cast<double>(turn)) * sizes.perUnit;
        base = __builtin_convertvector(quotient + static_cast<double>(bias), Quad) - bias;
        base += (perFirst & (perFirst > 0)) + (perSecond & (perSecond > 0));
    }

    Quad perFirst;
    Quad perSecond;
    Quad base;
};

/// Of a projection two voxels wide: bit i + 2 * j tells whether voxel (i, j) is outside.
inline std::uint32_t OutsideOfFour(const Edges& edges)
{
    constexpr Quad isSecondOfFirst{0, -1, 0, -1};
    constexpr Quad isSecondOfSecond{0, 0, -1, -1};
    const auto atFour = [&](int edge) {
        return (Quad{} + edges.base[edge]) + ((Quad{} + edges.perFirst[edge]) & isSecondOfFirst) +
               ((Quad{} + edges.perSecond[edge]) & isSecondOfSecond);
    };
    const Quad bits = ((atFour(0) | atFour(1) | atFour(2)) < 0) & Quad{1, 2, 4, 8};
    return static_cast<std::uint32_t>(bits[0] | bits[1] | bits[2] | bits[3]);
}

/// Columns are swept in groups, which may go beyond the last one.
inline constexpr std::int32_t GroupSize = 2;
constexpr std::int32_t Groups(std::int32_t columns) { return (columns + GroupSize - 1) / GroupSize; }

template <int lane> void Broadcast(const Quad& quad, Lanes& lanes)
{
    lanes = reinterpret_cast<Lanes>(__builtin_shufflevector(quad, quad, lane, lane, lane, lane, lane, lane, lane, lane));
}

/// An edge at eight rows, the lanes counting along the second axis of its projection.
struct EdgeLanes
{
    template <int edge> void Set(const Edges& edges, const Quad& start)
    {
        Lanes perSecond;
        Broadcast<edge>(edges.perSecond, perSecond);
        Broadcast<edge>(edges.perFirst, step);
        Broadcast<edge>(start, value);
        value += LaneNumbers * perSecond;
    }

    Lanes value; // the highest bit is set where the voxel is outside
    Lanes step;
};

/// The three edges of a projection at eight rows.
class ProjectionLanes
{
public:
    ProjectionLanes() = default;

    ProjectionLanes(const Edges& edges, std::int32_t first, std::int32_t second)
    {
        const Quad start = edges.base + edges.perFirst * first + edges.perSecond * second;
        a_.Set<0>(edges, start);
        b_.Set<1>(edges, start);
        c_.Set<2>(edges, start);
    }

    /// All bits of a lane: whether its voxel is outside.
    void Outside(Lanes& outside) const
    {
        outside = reinterpret_cast<Lanes>(reinterpret_cast<SignedLanes>(a_.value | b_.value | c_.value) >> 31);
    }

    void ToNext()
    {
        a_.value += a_.step;
        b_.value += b_.step;
        c_.value += c_.step;
    }

    /// Tests whole rows of voxels, from the last voxel back to the first. The lanes are at the last voxel before the call and one
    /// step before the first afterwards. Every step shifts the sign of the numbers into a row, so that bit i is voxel i:
    ///
    ///     voxel     0  1  2  3                       rows   after voxel 3   ...#    # outside
    ///     outside   #  .  .  #     2 groups = 4             after voxel 2   ..#.
    ///                                                       after voxel 0   #..#  = bits 0 and 3
    void OutsideUpToHere(std::int32_t groups, Lanes& rows)
    {
        rows = Lanes{};
        for (std::int32_t group = 0; group < groups; ++group) {
            for (std::int32_t i = 0; i < GroupSize; ++i) {
                rows = rows + rows + ((a_.value | b_.value | c_.value) >> 31);
                a_.value -= a_.step;
                b_.value -= b_.step;
                c_.value -= c_.step;
            }
        }
    }

private:
    EdgeLanes a_, b_, c_;
};

/// floor(value / divisor) for a quotient below 2^52: the estimate is off by one at most.
inline std::int64_t FloorOfQuotient(std::int64_t value, std::int64_t divisor, double reciprocal)
{
    const auto estimate = static_cast<std::int64_t>(static_cast<double>(value) * reciprocal);
    const std::int64_t rest = value - estimate * divisor;
    return estimate - (rest < 0 ? 1 : 0) + (rest >= divisor ? 1 : 0);
}

/// The triangle's plane. The voxel at p touches it where 0 <= step * p + highest <= thickness, in units: `highest` belongs to the
/// voxel's corner farthest along the normal, and `highest - thickness` to the opposite one, rounded up.
///
/// A component of the normal is below 2^39, so that 64 bits hold everything. At the corners of voxels of the box, the product of
/// the normal and the distance from the triangle is a determinant of three vectors in the box, which is at most twice the box's
/// volume.
struct Plane
{
    Plane() = default;

    Plane(const Corners& corners, const Triple& normal, const VoxelSizes& sizes) : highest(0), thickness(0)
    {
        std::int64_t distance = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            step[i] = normal[i] * sizes.inUnits[static_cast<int>(i)];
            distance += normal[i] * corners.from[i][0];
            highest += std::max<std::int64_t>(step[i], 0);
            thickness += std::abs(step[i]);
        }
        const std::int64_t offset = FloorOfQuotient(-distance, sizes.unit, sizes.perUnit);
        highest += offset;
        if (offset * sizes.unit != -distance) --thickness;
    }

    std::int64_t At(const Triple& voxel) const { return highest + step[0] * voxel[0] + step[1] * voxel[1] + step[2] * voxel[2]; }

    /// Whether any voxel of lower..upper may touch it.
    bool Reaches(const Triple& lower, const Triple& upper) const
    {
        std::int64_t most = highest;
        std::int64_t least = highest;
        for (std::size_t i = 0; i < 3; ++i) {
            most += step[i] * (step[i] > 0 ? upper[i] : lower[i]);
            least += step[i] * (step[i] > 0 ? lower[i] : upper[i]);
        }
        return most >= 0 && least <= thickness;
    }

    Triple step;
    std::int64_t highest;
    std::int64_t thickness;
};

/// The plane's number at eight rows along y, for boxes in which it fits 32 bits. It is kept less 2^31: read as a signed number,
/// one below 0 is then greater than the thickness less 2^31, as is one above the thickness.
class PlaneLanes
{
public:
    /// So many voxels a box may have. Twice its volume in units times the other two sizes must stay below 2^31.
    static std::int64_t MostVoxels(const VoxelSizes& sizes)
    {
        const Quad& size = sizes.inUnits;
        return ((std::int64_t{1} << 30) - 1) / (std::int64_t{size[0]} * size[1] * size[2] * sizes.unit * sizes.unit);
    }

    PlaneLanes() = default;

    PlaneLanes(const Plane& plane, const Triple& voxel)
        : value_(LaneNumbers * Low(plane.step[1]) + (Low(plane.At(voxel)) ^ SignBit)),
          columnStep_(Lanes{} + Low(plane.step[0])),
          heightStep_(Lanes{} + Low(plane.step[2])),
          limit_(reinterpret_cast<SignedLanes>(Lanes{} + (Low(plane.thickness) ^ SignBit)))
    {}

    void ToNextHeight() { value_ += heightStep_; }

    /// Bit i of each lane: whether voxel i is beside the plane, of so many groups of voxels along x that end here.
    void BesideUpToHere(std::int32_t groups, Lanes& rows) const
    {
        Lanes value = value_;
        rows = Lanes{};
        for (std::int32_t group = 0; group < groups; ++group) {
            for (std::int32_t i = 0; i < GroupSize; ++i) {
                rows = rows + rows - reinterpret_cast<Lanes>(reinterpret_cast<SignedLanes>(value) > limit_);
                value -= columnStep_;
            }
        }
    }

private:
    static constexpr std::uint32_t SignBit = std::uint32_t{1} << 31;
    static std::uint32_t Low(std::int64_t number) { return static_cast<std::uint32_t>(number); }

    Lanes value_;
    Lanes columnStep_;
    Lanes heightStep_;
    SignedLanes limit_;
};

/// The same in 64 bits for larger boxes, four rows in each of two vectors.
class WidePlaneLanes
{
public:
    WidePlaneLanes() = default;

    WidePlaneLanes(const Plane& plane, const Triple& voxel)
        : lower_(WideQuad{0, 1, 2, 3} * plane.step[1] + plane.At(voxel)),
          upper_(lower_ + 4 * plane.step[1]),
          columnStep_(plane.step[0]),
          heightStep_(plane.step[2]),
          limit_(plane.thickness)
    {}

    void ToNextHeight()
    {
        lower_ += heightStep_;
        upper_ += heightStep_;
    }

    void BesideUpToHere(std::int32_t groups, Lanes& rows) const
    {
        Quad lower, upper;
        BesideUpToHere(lower_, groups, lower);
        BesideUpToHere(upper_, groups, upper);
        rows = reinterpret_cast<Lanes>(__builtin_shufflevector(lower, upper, 0, 1, 2, 3, 4, 5, 6, 7));
    }

private:
    void BesideUpToHere(const WideQuad& here, std::int32_t groups, Quad& rows) const
    {
        WideQuad value = here;
        WideQuad wideRows{};
        for (std::int32_t i = 0; i < groups * GroupSize; ++i) {
            wideRows = wideRows + wideRows - ((value < std::int64_t{0}) | (value > limit_));
            value -= columnStep_;
        }
        rows = __builtin_convertvector(wideRows, Quad);
    }

    WideQuad lower_, upper_;
    std::int64_t columnStep_, heightStep_, limit_;
};

/// The axes along which a triangle's box is more than one voxel thick.
enum class ThickAlong
{
    XY,
    XZ,
    YZ,
    XYZ
};

/// What a triangle asks whose box is thick along these axes.
template <ThickAlong thick> struct Conditions
{
    static constexpr bool HasXY = thick == ThickAlong::XY || thick == ThickAlong::XYZ;
    static constexpr bool HasXZ = thick == ThickAlong::XZ || thick == ThickAlong::XYZ;
    static constexpr bool HasYZ = thick == ThickAlong::YZ || thick == ThickAlong::XYZ;
    static constexpr bool HasPlane = thick == ThickAlong::XYZ;

    Conditions(const Corners& corners, const VoxelSizes& sizes)
    {
        std::array<double, 3> normal;
        if constexpr (HasXY) {
            normal[2] = corners.NormalAcross(0, 1);
            xy = Edges(corners, 0, 1, normal[2] < 0, sizes);
        }
        if constexpr (HasXZ) {
            normal[1] = corners.NormalAcross(2, 0);
            xz = Edges(corners, 0, 2, normal[1] >= 0, sizes); // z, x is the order in which edges turn with the normal
        }
        if constexpr (HasYZ) {
            normal[0] = corners.NormalAcross(1, 2);
            zy = Edges(corners, 2, 1, normal[0] >= 0, sizes);
        }
        if constexpr (HasPlane) {
            plane = Plane(corners,
                          {static_cast<std::int64_t>(normal[0]), static_cast<std::int64_t>(normal[1]),
                           static_cast<std::int64_t>(normal[2])},
                          sizes);
        }
    }

    /// Of a box that is two voxels wide where it is thick: bit x + 2 * y + 4 * z tells whether a voxel is touched.
    std::uint32_t TouchedOfEight() const
    {
        std::uint32_t outside = 0;
        if constexpr (HasXY) outside |= OutsideOfFour(xy) * 0x11;
        if constexpr (HasXZ) {
            const std::uint32_t ofRows = OutsideOfFour(xz); // x + 2 * z
            outside |= (ofRows & 3) * 5 | (ofRows >> 2) * 0x50;
        }
        if constexpr (HasYZ) {
            const std::uint32_t ofRows = OutsideOfFour(zy); // z + 2 * y
            outside |= (ofRows & 1) * 3 | (ofRows >> 1 & 1) * 0x30 | (ofRows >> 2 & 1) * 0xC | (ofRows >> 3) * 0xC0;
        }
        if constexpr (HasPlane) {
            for (std::uint32_t voxel = 0; voxel < 8; ++voxel) {
                const std::int64_t number = plane.At({voxel & 1, voxel >> 1 & 1, voxel >> 2});
                outside |= std::uint32_t{number < 0 || number > plane.thickness} << voxel;
            }
        }
        return ~outside;
    }

    Edges xy; // columns along x, lanes along y
    Edges xz; // columns along x, lanes along z
    Edges zy; // steps along z, lanes along y
    Plane plane;
};

} // namespace brix
