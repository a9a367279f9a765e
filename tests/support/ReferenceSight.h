// Visibility by its definition: the value of a voxel by recursion, in the same doubles; and random views to hold the engine to
// it.
#pragma once

#include "support/Random.h"
#include "support/RandomCompanions.h"
#include "support/ReferenceOperations.h"
#include "visibility/Visibility.h"

#include <cmath>
#include <limits>
#include <ostream>
#include <string>
#include <vector>

namespace brix::tests {

using Values = std::array<double, 3>;
inline constexpr std::int64_t Lowest64 = std::numeric_limits<std::int64_t>::min();
inline constexpr std::int64_t Highest64 = std::numeric_limits<std::int64_t>::max();
inline constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();
inline constexpr std::int64_t Unlimited = 2'800'000'000;

// Through memory, so that no compiler fuses a product with the sum that follows.
inline double Product(double a, double b)
{
    const volatile double product = a * b;
    return product;
}

inline double WeightedSum(const Values& a, const Values& b)
{
    return Product(a[0], b[0]) + Product(a[1], b[1]) + Product(a[2], b[2]);
}

inline std::string Show(const Triple& triple)
{
    return "(" + std::to_string(triple[0]) + ", " + std::to_string(triple[1]) + ", " + std::to_string(triple[2]) + ")";
}

// The definition: a voxel asks its upstream neighbours. `filled` is the level that sight passes.
class ReferenceSight
{
public:
    explicit ReferenceSight(const ReferenceModel& filled)
        : filled_(filled), size_(filled.AxesRef().VoxelSize(filled.VoxelLOD())), scale_(Scale(filled))
    {
        const Triple extent = Plus(Minus(filled.ExtentsRef().UpperIndices(), filled.ExtentsRef().LowerIndices()), {1, 1, 1});
        rows_ = extent[1];
        columns_ = extent[0];
        known_.resize(static_cast<std::size_t>(extent[0] * extent[1] * extent[2]), NotANumber);
    }
    virtual ~ReferenceSight() = default;

    double Value(const Triple& voxel)
    {
        if (!filled_.ExtentsRef().ContainsVoxel(voxel) || IsEye(voxel)) return 1;
        const Triple place = Minus(voxel, filled_.ExtentsRef().LowerIndices());
        double& known = known_[static_cast<std::size_t>((place[2] * rows_ + place[1]) * columns_ + place[0])];
        if (std::isnan(known)) known = filled_.Value(voxel) ? 0 : ValueOfEmpty(voxel);
        return known;
    }

    virtual bool IsConsidered(const Triple&) const { return true; }

    // What is marked at a threshold, on the extents of the level; NaN marks nothing.
    ReferenceModel Visible(double threshold)
    {
        const ReferenceModel result(filled_.ExtentsRef(), filled_.VoxelLOD(), filled_.VoxelLOD());
        return result.Where(
            [&](const Triple& voxel) { return IsConsidered(voxel) && (filled_.Value(voxel) ? 0 : Value(voxel)) >= threshold; });
    }

protected:
    virtual bool IsEye(const Triple&) const { return false; }
    virtual std::int64_t StepBack(std::size_t axis, const Triple& voxel) const = 0;
    virtual double Mix(const Triple& voxel, const Values& upstream) const = 0;

    const ReferenceModel& filled_;
    Triple size_;
    Values scale_;

private:
    static Values Scale(const ReferenceModel& model)
    {
        const auto horizontal = static_cast<double>(1 << model.VoxelLOD());
        return {horizontal, horizontal, static_cast<double>(1 << model.AxesRef().VerticalLOD())};
    }

    double ValueOfEmpty(const Triple& voxel)
    {
        Values upstream{1, 1, 1};
        for (std::size_t i = 0; i < 3; ++i) {
            Triple neighbour = voxel;
            neighbour[i] += StepBack(i, voxel);
            if (neighbour != voxel) upstream[i] = Value(neighbour);
        }
        if (upstream[0] == upstream[1] && upstream[1] == upstream[2]) return upstream[0];
        return std::min(1.0, Mix(voxel, upstream));
    }

    std::int64_t rows_ = 0;
    std::int64_t columns_ = 0;
    std::vector<double> known_;
};

class ReferenceDirection : public ReferenceSight
{
public:
    ReferenceDirection(const ReferenceModel& filled, const Triple& direction) : ReferenceSight(filled), direction_(direction)
    {
        Values v{};
        for (std::size_t i = 0; i < 3; ++i) v[i] = std::abs(static_cast<double>(direction[i])) * scale_[i];
        const double length = std::sqrt(WeightedSum(v, v));
        for (std::size_t i = 0; i < 3; ++i) weights_[i] = v[i] / length;
        normaliser_ = 1 / (weights_[0] + weights_[1] + weights_[2]);
    }

private:
    std::int64_t StepBack(std::size_t axis, const Triple&) const override { return direction_[axis] < 0 ? 1 : -1; }
    double Mix(const Triple&, const Values& upstream) const override { return WeightedSum(upstream, weights_) * normaliser_; }

    Triple direction_;
    Values weights_{};
    double normaliser_;
};

inline Triple RandomVoxel(Random& random, const Extents& extents, std::int64_t margin)
{
    Triple voxel{};
    for (std::size_t i = 0; i < 3; ++i) {
        voxel[i] = random.Between(extents.LowerIndices()[i] - margin, extents.UpperIndices()[i] + margin);
    }
    return voxel;
}

// The value of some voxel, the double above it, and numbers on both sides of everything.
inline std::vector<double> SomeThresholds(Random& random, ReferenceSight& sight, const Extents& extents)
{
    const double value = sight.Value(RandomVoxel(random, extents, 0));
    constexpr std::array special{0.5, 1e-300, 0.0, -0.0, -2.0, 1.0000001, NotANumber};
    return {value, std::nextafter(value, 2), special[static_cast<std::size_t>(random.Between(0, 6))]};
}

// Components may be 0; their sizes are small, or need rounding, or lie at the limits.
inline Triple RandomDirection(Random& random)
{
    constexpr std::array extremes{Lowest64, Lowest64 + 1, Highest64, Highest64 / 3, std::int64_t{1} << 40};
    for (;;) {
        Triple direction{};
        const bool isExtreme = random.OneIn(8);
        const std::int64_t largest = random.OneIn(2) ? 9 : 999'999'999;
        for (std::int64_t& component : direction) {
            if (random.OneIn(3)) continue;
            component = isExtreme ? extremes[static_cast<std::size_t>(random.Between(0, 4))] : random.Between(-largest, largest);
        }
        if (direction != Triple{}) return direction;
    }
}

// What a view is held to, by definition: in long doubles, with a border that is wider than their errors and narrower than any gap
// between centres.
struct Opening
{
    enum Kind
    {
        None,
        Cone,
        Pyramid
    } kind = None;
    Triple direction{1, 0, 0};
    double angle = 0; // of the cone, or across the pyramid
    double verticalAngle = 0;

    using Reals = std::array<long double, 3>;

    static long double Dot(const Reals& a, const Reals& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }
    static Reals Unit(const Reals& a)
    {
        const long double length = std::sqrt(Dot(a, a));
        return {a[0] / length, a[1] / length, a[2] / length};
    }
    static Reals Across(const Reals& a, const Reals& b)
    {
        return Unit({a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]});
    }
    static Reals ToReals(const Triple& a)
    {
        return {static_cast<long double>(a[0]), static_cast<long double>(a[1]), static_cast<long double>(a[2])};
    }

    bool Holds(const Triple& offset) const
    {
        constexpr long double halfDegree = 3.14159265358979323846L / 360;
        if (kind == None || offset == Triple{}) return true;
        const Reals to = Unit(ToReals(offset));
        const Reals forward = Unit(ToReals(direction));
        if (kind == Cone) return Dot(to, forward) >= std::cos(static_cast<long double>(angle) * halfDegree) - 1e-15L;
        const Reals right = Across(forward, direction[0] == 0 && direction[1] == 0 ? Reals{0, 1, 0} : Reals{0, 0, 1});
        const auto isBetween = [&](const Reals& side, double degrees) {
            const long double half = static_cast<long double>(degrees) * halfDegree;
            return std::abs(Dot(to, side)) * std::cos(half) <= Dot(to, forward) * std::sin(half) + 1e-12L;
        };
        return isBetween(right, angle) && isBetween(Across(right, forward), verticalAngle);
    }
};

struct PointCase
{
    Triple point;
    std::int64_t maxRadius;
    bool autoAdjust;
    Opening opening{};

    VoxelModel<bool> See(const VoxelModel<bool>& model, std::int64_t lod, double threshold) const
    {
        const auto& [kind, direction, angle, verticalAngle] = opening;
        if (kind == Opening::Cone)
            return VisibilityWithinCone(model, point, direction, angle, lod, maxRadius, threshold, autoAdjust);
        if (kind == Opening::Pyramid)
            return VisibilityWithinPyramid(model, point, direction, angle, verticalAngle, lod, maxRadius, threshold, autoAdjust);
        return VisibilityFromPoint(model, point, lod, maxRadius, threshold, autoAdjust);
    }
};

inline std::ostream& operator<<(std::ostream& out, const PointCase& view)
{
    return out << "point " << Show(view.point) << ", radius " << view.maxRadius << ", autoAdjust " << view.autoAdjust << ", kind "
               << view.opening.kind << " along " << Show(view.opening.direction) << ", angles " << view.opening.angle << ", "
               << view.opening.verticalAngle;
}

// Many have centres on their border.
inline Opening RandomOpening(Random& random)
{
    constexpr std::array angles{1e-4, 20.0, 60.0, 90.0, 120.0, 170.0, 180.0, 181.0, 240.0, 270.0, 359.0, 360.0};
    const auto angle = [&](std::int64_t last) {
        return random.OneIn(3) ? static_cast<double>(random.Between(1, 179'999)) / 1000
                               : angles[static_cast<std::size_t>(random.Between(0, last))];
    };
    return random.OneIn(2) ? Opening{Opening::Cone, RandomDirection(random), angle(11), 0}
                           : Opening{Opening::Pyramid, RandomDirection(random), angle(5), angle(5)};
}

class ReferencePoint : public ReferenceSight
{
public:
    ReferencePoint(const ReferenceModel& filled, const PointCase& view)
        : ReferenceSight(filled),
          point_(view.point),
          eye_(filled.AxesRef().ContainingVoxel(view.point, filled.VoxelLOD())),
          maxRadius_(view.maxRadius),
          opening_(view.opening)
    {}

    bool IsConsidered(const Triple& voxel) const override { return IsWithinRadius(voxel) && IsWithinOpening(voxel); }

    // The values do not depend on it.
    void LookThrough(const Opening& opening) { opening_ = opening; }

private:
    bool IsWithinOpening(const Triple& voxel) const
    {
        if (opening_.kind == Opening::None || voxel == eye_) return true;
        return opening_.Holds({Centre(0, voxel) - point_[0], Centre(1, voxel) - point_[1], Centre(2, voxel) - point_[2]});
    }

    bool IsWithinRadius(const Triple& voxel) const
    {
        if (maxRadius_ >= Unlimited) return true;
        const auto limit = static_cast<std::uint64_t>(maxRadius_) * static_cast<std::uint64_t>(maxRadius_);
        std::uint64_t square = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            const double far = std::abs(static_cast<double>(Centre(i, voxel)) - static_cast<double>(point_[i]));
            if (far > 3e9) return false;
            const auto offset = static_cast<std::uint64_t>(std::abs(Centre(i, voxel) - point_[i]));
            if (offset > static_cast<std::uint64_t>(maxRadius_)) return false;
            square += offset * offset;
            if (square > limit) return false;
        }
        return true;
    }

    std::int64_t Centre(std::size_t axis, const Triple& voxel) const { return voxel[axis] * size_[axis] + size_[axis] / 2; }
    bool IsEye(const Triple& voxel) const override { return voxel == eye_; }
    std::int64_t StepBack(std::size_t axis, const Triple& voxel) const override
    {
        return voxel[axis] == eye_[axis] ? 0 : voxel[axis] > eye_[axis] ? -1 : 1;
    }
    double Mix(const Triple& voxel, const Values& upstream) const override
    {
        Values weights{};
        for (std::size_t i = 0; i < 3; ++i) {
            if (StepBack(i, voxel) == 0) continue;
            weights[i] = std::abs(static_cast<double>(Centre(i, voxel)) - static_cast<double>(point_[i])) * scale_[i];
        }
        return WeightedSum(weights, upstream) / (weights[0] + weights[1] + weights[2]);
    }

    Triple point_;
    Triple eye_;
    std::int64_t maxRadius_;
    Opening opening_;
};

// In or beside the extents: at a voxel's centre, at its corner, or anywhere in it; sometimes far away.
inline Triple RandomPoint(Random& random, const Extents& extents)
{
    const Triple voxel = RandomVoxel(random, extents, random.OneIn(3) ? 9 : 0);
    const std::int64_t lod = extents.VoxelLOD();
    const std::int64_t kind = random.Between(0, 3);
    if (kind == 0) return extents.AxesRef().VoxelCenter(voxel, lod);
    Triple point = extents.AxesRef().VoxelCorner(voxel, lod);
    for (std::size_t i = 0; i < 3 && kind > 1; ++i) point[i] += random.Between(0, extents.AxesRef().VoxelSize(lod)[i] - 1);
    return point;
}

inline PointCase RandomPointCase(Random& random, const Extents& extents)
{
    constexpr std::array distances{std::int64_t{1} << 33, std::int64_t{1} << 52, Highest64, Lowest64};
    PointCase result{RandomPoint(random, extents), Unlimited, random.OneIn(3)};
    if (random.OneIn(2)) {
        result.opening = RandomOpening(random);
    } else if (random.OneIn(4)) {
        result.autoAdjust = false;
        for (std::int64_t& coordinate : result.point) {
            if (random.OneIn(2)) coordinate = distances[static_cast<std::size_t>(random.Between(0, 3))];
        }
    }
    if (random.OneIn(3)) return result;
    // As far as some voxel's centre, or a little less.
    const Triple centre = extents.AxesRef().VoxelCenter(RandomVoxel(random, extents, 0), extents.VoxelLOD());
    double square = 0;
    for (std::size_t i = 0; i < 3; ++i)
        square += std::pow(static_cast<double>(centre[i]) - static_cast<double>(result.point[i]), 2);
    result.maxRadius = static_cast<std::int64_t>(std::min(std::sqrt(square), 2.7e9)) + random.Between(-1, 1);
    if (random.OneIn(10)) result.maxRadius = random.OneIn(2) ? 0 : Unlimited - 1;
    result.maxRadius = std::max<std::int64_t>(result.maxRadius, 0);
    // The box of the sphere becomes a dense oracle.
    if (result.maxRadius > 12 * VoxelSpacing(extents.VoxelLOD()) || result.maxRadius > 60 * extents.AxesRef().VoxelSize(0)[2]) {
        result.autoAdjust = false;
    }
    return result;
}

// The extents that autoAdjustExtents works on.
inline Extents WorkingExtents(const Extents& extents, const PointCase& view)
{
    const auto voxelOf = [&](std::int64_t distance) {
        return extents.AxesRef().ContainingVoxel(Plus(view.point, {distance, distance, distance}), extents.VoxelLOD());
    };
    if (view.maxRadius < Unlimited)
        return Extents(extents.AxesRef(), voxelOf(-view.maxRadius), voxelOf(view.maxRadius), extents.VoxelLOD());
    return Extents(extents.AxesRef(), Lowest(extents.LowerIndices(), voxelOf(0)), Highest(extents.UpperIndices(), voxelOf(0)),
                   extents.VoxelLOD());
}

} // namespace brix::tests
