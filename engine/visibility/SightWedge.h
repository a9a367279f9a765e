// Directions from a point, in doubles: unit vectors, the angles around them, and a quick test whether a box of offsets misses a
// region of directions. What is skipped because of it holds nothing; so its rounding never shows in a result.
#pragma once

#include "../frame/Triples.h"

#include <utility>
#include <vector>

namespace brix::sight {

using Vector = std::array<double, 3>;

/// The directions within an angle of an axis, all in doubles; a cosine below 0 makes it more than half of all directions.
struct SightCap
{
    Vector axis; // of length 1
    double cosine;
    double sine;
};

/// How far from a point a cap of a ball around it reaches, rounded outwards: towards lower and upper x, y and z, in base units.
/// The point is always part of it. `radius` 0 .. 2800000000
struct SightReach
{
    Triple towardsLower;
    Triple towardsUpper;
};
SightReach ReachOf(const SightCap& cap, std::int64_t radius);

/// A convex region of directions, or something larger, as planes through the point.
class SightWedge
{
public:
    /// On the inner side of all planes; of none, if there is no plane.
    explicit SightWedge(std::vector<Vector> normals) : normals_(std::move(normals)) {}

    /// The region that rays (in turn around it, none opposite to another) span.
    static SightWedge Around(const std::vector<Vector>& rays);

    /// A cap, or a little more. It must not be more than half of all directions.
    static SightWedge Around(const SightCap& cap);

    /// Whether no offset of the box lies in the wedge. It may be false where none does, by a hair.
    bool Misses(const Vector& lower, const Vector& upper) const;

private:
    std::vector<Vector> normals_; // pointing inwards, of length 1
};

} // namespace brix::sight
