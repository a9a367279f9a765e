// Visibility against its definition: the value of a voxel by recursion, in the same doubles; and what scenes must look like.
#include "visibility/Visibility.h"

#include "model/CheckInvariants.h"
#include "operations/BasicOperations.h"
#include "operations/SolidOperations.h"
#include "support/Messages.h"
#include "support/RandomCompanions.h"
#include "support/ReferenceOperations.h"
#include "visibility/Sight.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>

namespace brix {
namespace {

using namespace tests;
using Values = std::array<double, 3>;

constexpr std::int64_t Lowest64 = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t Highest64 = std::numeric_limits<std::int64_t>::max();
constexpr double NotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr std::int64_t Unlimited = 2'800'000'000;

const Axes Frame(40000, {0, 0, 0}, 0, 0); // world units are base units

// Through memory, so that no compiler fuses a product with the sum that follows.
double Product(double a, double b)
{
    const volatile double product = a * b;
    return product;
}

double WeightedSum(const Values& a, const Values& b) { return Product(a[0], b[0]) + Product(a[1], b[1]) + Product(a[2], b[2]); }

std::string Show(const Triple& triple)
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

Triple RandomVoxel(Random& random, const Extents& extents, std::int64_t margin)
{
    Triple voxel{};
    for (std::size_t i = 0; i < 3; ++i) {
        voxel[i] = random.Between(extents.LowerIndices()[i] - margin, extents.UpperIndices()[i] + margin);
    }
    return voxel;
}

// The value of some voxel, the double above it, and numbers on both sides of everything.
std::vector<double> SomeThresholds(Random& random, ReferenceSight& sight, const Extents& extents)
{
    const double value = sight.Value(RandomVoxel(random, extents, 0));
    constexpr std::array special{0.5, 1e-300, 0.0, -0.0, -2.0, 1.0000001, NotANumber};
    return {value, std::nextafter(value, 2), special[static_cast<std::size_t>(random.Between(0, 6))]};
}

// Components may be 0; their sizes are small, or need rounding, or lie at the limits.
Triple RandomDirection(Random& random)
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

TEST(VisibilityFromDirection, EqualsTheDefinitionInTheSameDoubles)
{
    for (std::uint64_t seed = 1; seed <= 200; ++seed) {
        Random random(seed);
        const ReferenceModel reference = MakeFirst(random);
        const VoxelModel<bool> model = MakeModel(reference);
        const std::int64_t lod = random.Between(0, reference.FinestLOD());
        const ReferenceModel filled(model, lod);
        const Triple direction = RandomDirection(random);
        ReferenceDirection sight(filled, direction);
        for (const double threshold : SomeThresholds(random, sight, filled.ExtentsRef())) {
            EXPECT_EQ(Differences(VisibilityFromDirection(model, direction, lod, threshold), sight.Visible(threshold)), "")
                << "seed " << seed << ", direction " << Show(direction) << ", level " << lod << ", threshold " << threshold;
        }
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

std::ostream& operator<<(std::ostream& out, const PointCase& view)
{
    return out << "point " << Show(view.point) << ", radius " << view.maxRadius << ", autoAdjust " << view.autoAdjust << ", kind "
               << view.opening.kind << " along " << Show(view.opening.direction) << ", angles " << view.opening.angle << ", "
               << view.opening.verticalAngle;
}

// Many have centres on their border.
Opening RandomOpening(Random& random)
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
Triple RandomPoint(Random& random, const Extents& extents)
{
    const Triple voxel = RandomVoxel(random, extents, random.OneIn(3) ? 9 : 0);
    const std::int64_t lod = extents.VoxelLOD();
    switch (random.Between(0, 3)) {
    case 0:
        return extents.AxesRef().VoxelCenter(voxel, lod);
    case 1:
        return extents.AxesRef().VoxelCorner(voxel, lod);
    default: {
        Triple point = extents.AxesRef().VoxelCorner(voxel, lod);
        for (std::size_t i = 0; i < 3; ++i) point[i] += random.Between(0, extents.AxesRef().VoxelSize(lod)[i] - 1);
        return point;
    }
    }
}

PointCase RandomPointCase(Random& random, const Extents& extents)
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
Extents WorkingExtents(const Extents& extents, const PointCase& view)
{
    const auto voxelOf = [&](std::int64_t distance) {
        return extents.AxesRef().ContainingVoxel(Plus(view.point, {distance, distance, distance}), extents.VoxelLOD());
    };
    if (view.maxRadius < Unlimited)
        return Extents(extents.AxesRef(), voxelOf(-view.maxRadius), voxelOf(view.maxRadius), extents.VoxelLOD());
    return Extents(extents.AxesRef(), Lowest(extents.LowerIndices(), voxelOf(0)), Highest(extents.UpperIndices(), voxelOf(0)),
                   extents.VoxelLOD());
}

TEST(VisibilityFromPoint, EqualsTheDefinitionInTheSameDoubles)
{
    for (std::uint64_t seed = 1; seed <= 500; ++seed) {
        Random random(seed);
        const ReferenceModel reference = MakeFirst(random);
        const VoxelModel<bool> model = MakeModel(reference);
        const std::int64_t lod = random.Between(0, reference.FinestLOD());
        const PointCase view = RandomPointCase(random, model.ExtentsRef(lod));
        const ReferenceModel filled = view.autoAdjust
                                          ? Resize(reference, WorkingExtents(model.ExtentsRef(lod), view)).AtLevel(lod)
                                          : ReferenceModel(model, lod);
        ReferencePoint sight(filled, view);
        for (const double threshold : SomeThresholds(random, sight, filled.ExtentsRef())) {
            const ReferenceModel expected = sight.Visible(threshold);
            EXPECT_EQ(Differences(view.See(model, lod, threshold), view.autoAdjust ? AutoCrop(expected) : expected), "")
                << "seed " << seed << ", " << view << ", level " << lod << ", threshold " << threshold;
        }
    }
}

// Rooms of different heights with doors, windows and furniture, several stacks long along every axis.
ReferenceModel MakeRooms(const Extents& extents)
{
    const ReferenceModel empty(extents, extents.VoxelLOD(), extents.VoxelLOD());
    return empty.Where([](const Triple& voxel) {
        const auto [x, y, z] = voxel;
        const bool isWall = FloorDivide(x, 23) * 23 == x || FloorDivide(y, 31) * 31 == y || FloorDivide(z, 37) * 37 == z;
        const bool isDoor = (x + 2 * y) % 29 < 6 && z > -60 && z % 37 > 0 && z % 37 < 20;
        const bool isSolid = x > 20 && x < 60 && y < 0 && z < -20;
        return (isWall && !isDoor) || isSolid || (x * 7 + y * 5 + z * 3) % 401 == 0;
    });
}

TEST(Visibility, EqualsTheDefinitionInRooms)
{
    const Extents extents(Frame, {-20, -40, -70}, {65, 20, 40}, 3);
    const ReferenceModel rooms = MakeRooms(extents);
    const VoxelModel<bool> model = MakeModel(rooms);
    for (const Triple& direction : {Triple{2, 3, -4}, {-5, 1, 1}, {0, -3, 2}}) {
        ReferenceDirection sight(rooms, direction);
        EXPECT_EQ(Differences(VisibilityFromDirection(model, direction, 3, 0.25), sight.Visible(0.25)), "") << Show(direction);
    }
    Random random(7);
    for (const std::int64_t maxRadius : {std::int64_t{300'000}, Unlimited}) {
        PointCase view{{50'000, -31'000, 401'000}, maxRadius, false};
        ReferencePoint sight(rooms, view);
        for (int i = 0; i < 7; ++i) {
            EXPECT_EQ(Differences(view.See(model, 3, 0.25), sight.Visible(0.25)), "") << view;
            view.opening = RandomOpening(random);
            sight.LookThrough(view.opening);
        }
    }
}

// Mixes of values near 1 can round up beyond it, and what is carried on then shows in the last bit.
TEST(VisibilityFromDirection, NeverCarriesMoreThanFullSight)
{
    const Extents extents(Frame, {0, 0, 0}, {29, 29, 29}, 2);
    const ReferenceModel filled = ReferenceModel(extents, 2, 2).Where([](const Triple& voxel) {
        return voxel == Triple{1, 1, 1};
    });
    const VoxelModel<bool> model = MakeModel(filled);
    for (std::uint64_t seed = 1; seed <= 40; ++seed) {
        Random random(seed);
        const Triple direction{random.Between(1, 99), random.Between(1, 99), random.Between(1, 99)};
        EXPECT_EQ(Differences(VisibilityFromDirection(model, direction, 2, 1), ReferenceDirection(filled, direction).Visible(1)),
                  "")
            << Show(direction);
    }
}

// Another scene in which left is right, or x is y: what is seen must be the same.
enum class Turn
{
    MirrorX,
    MirrorY,
    MirrorZ,
    SwapXY
};

// Of voxel indices (centre -1/2) or of points and directions (centre 0).
Triple Turned(Triple triple, Turn turn, std::int64_t twiceTheCentre)
{
    if (turn == Turn::SwapXY) return {triple[1], triple[0], triple[2]};
    std::int64_t& component = triple[static_cast<std::size_t>(turn)];
    component = twiceTheCentre - component;
    return triple;
}

ReferenceModel Turned(const ReferenceModel& model, Turn turn)
{
    const Triple a = Turned(model.ExtentsRef().LowerIndices(), turn, -1);
    const Triple b = Turned(model.ExtentsRef().UpperIndices(), turn, -1);
    const Extents extents(model.AxesRef(), Lowest(a, b), Highest(a, b), model.VoxelLOD());
    return model.Where(extents, [&](const Triple& voxel) { return model.Value(Turned(voxel, turn, -1)); });
}

TEST(Visibility, OfATurnedSceneIsTurned)
{
    for (std::uint64_t seed = 1; seed <= 60; ++seed) {
        Random random(seed);
        const RandomModel scene = MakeRandomModel(seed);
        const std::int64_t lod = scene.reference.FinestLOD();
        const auto turn = static_cast<Turn>(seed % 4);
        const VoxelModel<bool> turned = MakeModel(Turned(scene.reference, turn));
        const auto expectTurned = [&](const VoxelModel<bool>& ofTurned, const VoxelModel<bool>& ofScene) {
            EXPECT_EQ(Differences(ReferenceModel(ofTurned, lod), Turned(ReferenceModel(ofScene, lod), turn)), "") << scene;
        };
        const Triple direction{random.Between(1, 5), random.Between(-5, -1), random.Between(1, 5)};
        expectTurned(VisibilityFromDirection(turned, Turned(direction, turn, 0), lod, 0.4),
                     VisibilityFromDirection(scene.voxels, direction, lod, 0.4));
        // A border between voxels would belong to another voxel once it is mirrored.
        const Triple point = Plus(RandomPoint(random, scene.reference.ExtentsRef()), {1, 1, 1});
        PointCase view{point, Unlimited, false, seed % 8 < 3 ? Opening{} : RandomOpening(random)};
        const VoxelModel<bool> seen = view.See(scene.voxels, lod, 0.4);
        view.point = Turned(point, turn, 0);
        Opening& opening = view.opening;
        opening.direction = Turned(opening.direction, turn, 0);
        const bool isVertical = opening.direction[0] == 0 && opening.direction[1] == 0; // up is Y then, which becomes X
        if (turn == Turn::SwapXY && isVertical && opening.kind == Opening::Pyramid)
            std::swap(opening.angle, opening.verticalAngle);
        expectTurned(view.See(turned, lod, 0.4), seen);
    }
}

TEST(VisibilityWithin, APyramidLiesBetweenTheConesThatTouchItsSidesAndEdges)
{
    const VoxelModel<bool> model = MakeModel(ReferenceModel(Extents(Frame, {-12, -12, -3}, {11, 11, 2}, 2), 2, 2));
    const auto left = [](const VoxelModel<bool>& a, const VoxelModel<bool>& b) {
        return CountFilled(Subtract(a, b, 2, false), 2);
    };
    for (std::uint64_t seed = 1; seed <= 20; ++seed) {
        Random random(seed);
        const double angle = seed == 1 ? 90 : static_cast<double>(random.Between(1, 179));
        const double outer = 2 * std::atan(std::sqrt(2) * std::tan(angle * std::acos(-1) / 360)) * 180 / std::acos(-1);
        PointCase view{{5000, 5000, 20'000}, Unlimited, false, {Opening::Pyramid, RandomDirection(random), angle, angle}};
        const VoxelModel<bool> pyramid = view.See(model, 2, 1);
        view.opening.kind = Opening::Cone;
        EXPECT_EQ(left(view.See(model, 2, 1), pyramid), 0) << view;
        view.opening.angle = outer + 1e-9;
        EXPECT_EQ(left(pyramid, view.See(model, 2, 1)), 0) << view;
    }
}

// From far away, the model lies in one direction.
TEST(VisibilityWithin, LooksFromAnywhereInAnyDirection)
{
    const VoxelModel<bool> model = MakeModel(ReferenceModel(Extents(Frame, {-20, -20, -20}, {19, 19, 19}, 2), 2, 2));
    constexpr std::int64_t all = 40 * 40 * 40;
    for (const std::int64_t far : {Highest64, Lowest64, std::int64_t{1} << 40}) {
        const std::int64_t away = far < 0 ? Lowest64 : Highest64;
        const std::int64_t towards = far < 0 ? Highest64 : Lowest64;
        for (const auto& [direction, count] : {std::pair{towards, all}, {away, std::int64_t{0}}}) {
            const PointCase cone{{far, far, far}, Unlimited, false, {Opening::Cone, {direction, direction, direction}, 1e-2}};
            const PointCase wide{{far, far, far}, Highest64, false, {Opening::Cone, {direction, direction, direction}, 350}};
            const PointCase pyramid{{0, far, 0}, Unlimited, false, {Opening::Pyramid, {0, direction, 0}, 1e-2, 179}};
            EXPECT_EQ(CountFilled(cone.See(model, 2, 0.5), 2), count) << cone;
            EXPECT_EQ(CountFilled(wide.See(model, 2, 0.5), 2), count) << wide;
            EXPECT_EQ(CountFilled(pyramid.See(model, 2, 0.5), 2), count) << pyramid;
        }
    }
    // As narrow as angles can be: the axis. Almost everything: all but the axis behind.
    const Triple centre{5000, 5000, 20'000};
    const double narrow = std::numeric_limits<double>::denorm_min();
    for (const auto& [angle, count] : {std::pair{narrow, 20}, {std::nextafter(360.0, 0), all - 20}}) {
        const PointCase cone{centre, Unlimited, false, {Opening::Cone, {1, 0, 0}, angle}};
        EXPECT_EQ(CountFilled(cone.See(model, 2, 1), 2), count) << cone;
    }
    const PointCase slit{centre, Unlimited, false, {Opening::Pyramid, {0, -1, 0}, std::nextafter(180.0, 0), narrow}};
    EXPECT_EQ(CountFilled(slit.See(model, 2, 1), 2), 40 * 21);
}

TEST(VisibilityFromPoint, DoesNotPassClosedWalls)
{
    const Extents extents(Frame, {-40, -40, -70}, {39, 39, 69}, 4);
    const ReferenceModel shell = ReferenceModel(extents, 4, 4).Where([](const Triple& voxel) {
        const std::int64_t distance = std::max({std::abs(voxel[0]), std::abs(voxel[1]), std::abs(voxel[2])});
        return distance == 19;
    });
    const auto isInside = [](const Triple& voxel) {
        return std::max({std::abs(voxel[0]), std::abs(voxel[1]), std::abs(voxel[2])}) < 19;
    };
    const VoxelModel<bool> model = MakeModel(shell);
    for (const Triple& point : {Triple{0, 0, 0}, {1251, 2499, 39'999}, {-44'444, 31'250, -700'001}}) {
        EXPECT_EQ(Differences(VisibilityFromPoint(model, point, 4, Unlimited, 1e-12, false), shell.Where(isInside)), "")
            << Show(point);
    }
    const ReferenceModel fromOutside(VisibilityFromPoint(model, {-90'001, 3, 5}, 4, Unlimited, 1e-12, false), 4);
    EXPECT_EQ(fromOutside.Where([&](const Triple& voxel) { return fromOutside.Value(voxel) && isInside(voxel); }).CountFilled(),
              0);
    EXPECT_GT(fromOutside.CountFilled(), 100'000);
}

// Here (5m + 2)^2 = (4m + 1)^2 + (3m + 2)^2 - 1: the voxel whose centre is 3m + 2 beyond the point along x, and 4m + 1 along y, lies
// just outside the radius 5m + 2. As doubles, the squares are equal.
TEST(VisibilityFromPoint, MeasuresLargeRadiiExactly)
{
    constexpr std::int64_t m = 500'000'000;
    const VoxelModel<bool> model = MakeModel(ReferenceModel(Extents(Frame, {0, 0, 0}, {1, 0, 0}, 0), 0, 0));
    const Triple centre = model.AxesRef().VoxelCenter({1, 0, 0}, 0);
    const Triple point = Minus(centre, {3 * m + 2, 4 * m + 1, 0});
    for (const auto& [radius, count] : {std::pair{5 * m + 2, 1}, {5 * m + 3, 2}, {2 * m, 0}}) {
        EXPECT_EQ(CountFilled(VisibilityFromPoint(model, point, 0, radius, 0.5, false), 0), count) << radius;
    }
}

TEST(VisibilityFromPoint, StaysInTheIndexSpace)
{
    const Extents extents(Frame, {24'990, 0, 0}, {24'999, 9, 9}, 0);
    const VoxelModel<bool> model = MakeModel(ReferenceModel(extents, 0, 0));
    const auto visible = [&](const Triple& point, std::int64_t maxRadius) {
        return VisibilityFromPoint(model, point, 0, maxRadius, 0.5, true);
    };
    const Triple corner{999'980'000, 20'000, 20'000}; // the centre of voxel (24999, 0, 0)
    EXPECT_EQ(
        Differences(ReferenceModel(visible(corner, 40'000), 0),
                    ReferenceModel(Extents(Frame, {24'998, -1, -1}, {24'999, 1, 1}, 0), 0, 0).Where([](const Triple& voxel) {
                        return (24'999 - voxel[0]) + std::abs(voxel[1]) + std::abs(voxel[2]) <= 1;
                    })),
        "");
    EXPECT_EQ(CountFilled(visible({Highest64, 0, 0}, Unlimited - 1), 0), 0);
    EXPECT_EQ(CountFilled(visible({Lowest64, Lowest64, Highest64}, 0), 0), 0);
    EXPECT_EQ(MessageOf([&] {
                  visible({1'000'000'000, 0, 0}, Unlimited);
              }),
              "The upper extent in the X direction must be less than 25000. The value encountered was 25000.");
}

// Portable code and the fastest code that this processor runs.
TEST(Visibility, IsTheSameForAllInstructionSets)
{
    const VoxelModel<bool> model = MakeModel(MakeRooms(Extents(Frame, {-20, -40, -70}, {75, 35, 90}, 3)));
    const Extents& extents = model.ExtentsRef(3);
    const auto compare = [&](const auto& mark) {
        VoxelModel<bool> portable(extents, 3);
        VoxelModel<bool> fastest(extents, 3);
        mark(portable, InstructionSet::Portable);
        mark(fastest, FastestInstructionSet());
        EXPECT_EQ(Differences(fastest, portable), "");
        EXPECT_GT(CountFilled(portable, 3), 1000);
    };
    compare([&](VoxelModel<bool>& result, InstructionSet set) {
        sight::MarkFromDirection(result, model, {3, -1, -2}, 3, 0.3, set);
    });
    compare([&](VoxelModel<bool>& result, InstructionSet set) {
        const sight::PointOfView view{{12'000, 34'000, 56'000}, 0.3, extents.LowerIndices(), extents.UpperIndices()};
        sight::MarkFromPoint(result, model, view, 3, set);
    });
}

TEST(Visibility, RefusesArgumentsInOrder)
{
    const VoxelModel<bool> model = MakeModel(ReferenceModel(Extents(Frame, {0, 0, 0}, {1, 1, 1}, 2), 2, 2));
    const std::string level = "The level of detail for visibility computation ";
    const std::string negative = level + "cannot be negative. The value encountered was -1.";
    const std::string beyond = level +
                               "must not exceed the finest level of detail in the voxel model. The value encountered was 3. The "
                               "finest level of detail in the voxel model is 2.";
    const auto fromDirection = [&](const Triple& direction, std::int64_t lod) {
        return MessageOf([&] { VisibilityFromDirection(model, direction, lod, 0.5); });
    };
    EXPECT_EQ(fromDirection({0, 0, 0}, -1), "The direction for visibility computation cannot be [0, 0, 0].");
    EXPECT_EQ(fromDirection({0, 0, 1}, -1), negative);
    EXPECT_EQ(fromDirection({0, 0, 1}, 3), beyond);
    EXPECT_EQ(fromDirection({0, 0, Lowest64}, 2), "(nothing was thrown)");

    const auto fromPoint = [&](std::int64_t lod, std::int64_t maxRadius) {
        return MessageOf([&] { VisibilityFromPoint(model, {0, 0, 0}, lod, maxRadius, 0.5, false); });
    };
    EXPECT_EQ(fromPoint(-1, -1), negative);
    EXPECT_EQ(fromPoint(3, -1), beyond);
    EXPECT_EQ(fromPoint(2, -1),
              "The maximum radius for visibility computation cannot be negative. The value encountered was -1.");
    EXPECT_EQ(fromPoint(2, Highest64), "(nothing was thrown)");

    const auto withinCone = [&](const Triple& direction, double angle, std::int64_t lod, std::int64_t maxRadius) {
        return MessageOf([&] { VisibilityWithinCone(model, {0, 0, 0}, direction, angle, lod, maxRadius, 0.5, false); });
    };
    const std::string cone = "The angle of the cone for visibility computation ";
    EXPECT_EQ(withinCone({0, 0, 0}, 0, -1, -1), "The direction for visibility computation cannot be [0, 0, 0].");
    EXPECT_EQ(withinCone({0, 0, 1}, 0, -1, -1), cone + "must be greater than 0. The value encountered was 0.");
    EXPECT_EQ(withinCone({0, 0, 1}, -NotANumber, -1, -1), cone + "must be greater than 0. The value encountered was NaN.");
    EXPECT_EQ(withinCone({0, 0, 1}, 360.5, -1, -1), cone + "cannot be greater than 360. The value encountered was 360.5.");
    EXPECT_EQ(withinCone({0, 0, 1}, 360, -1, -1), negative);
    EXPECT_EQ(withinCone({0, 0, 1}, 360, 2, -1), fromPoint(2, -1));

    const auto withinPyramid = [&](const Triple& direction, double horizontal, double vertical, std::int64_t lod) {
        return MessageOf([&] {
            VisibilityWithinPyramid(model, {0, 0, 0}, direction, horizontal, vertical, lod, -1, 0.5, false);
        });
    };
    const std::string angle = " angle of the pyramid for visibility computation must be ";
    EXPECT_EQ(withinPyramid({0, 0, 0}, 0, 0, 3), "The direction for visibility computation cannot be [0, 0, 0].");
    EXPECT_EQ(withinPyramid({0, 0, 1}, -1e300, 0, 3),
              "The horizontal" + angle + "greater than 0. The value encountered was -1e+300.");
    EXPECT_EQ(withinPyramid({0, 0, 1}, 180, 0, 3), "The horizontal" + angle + "less than 180. The value encountered was 180.");
    EXPECT_EQ(withinPyramid({0, 0, 1}, 90, 0, 3), "The vertical" + angle + "greater than 0. The value encountered was 0.");
    EXPECT_EQ(withinPyramid({0, 0, 1}, 90, 1 / 0.0, 3), "The vertical" + angle + "less than 180. The value encountered was inf.");
    EXPECT_EQ(withinPyramid({0, 0, 1}, 90, 90, 3), beyond);
    EXPECT_EQ(withinPyramid({0, 0, 1}, 90, 90, 2), fromPoint(2, -1));
}

} // namespace
} // namespace brix
