#include "SightWedge.h"

#include "../frame/Product.h"

#include <cmath>

namespace brix::sight {
namespace {

double Dot(const Vector& a, const Vector& b) { return Product(a[0], b[0]) + Product(a[1], b[1]) + Product(a[2], b[2]); }

Vector Cross(const Vector& a, const Vector& b)
{
    return {Product(a[1], b[2]) - Product(a[2], b[1]), Product(a[2], b[0]) - Product(a[0], b[2]),
            Product(a[0], b[1]) - Product(a[1], b[0])};
}

Vector Scaled(const Vector& a, double factor) { return {a[0] * factor, a[1] * factor, a[2] * factor}; }

Vector Along(std::size_t axis)
{
    Vector unit{};
    unit[axis] = 1;
    return unit;
}

// What separates a convex region from a box, if anything does through the point: the region's own faces, the box's faces, or a
// plane along an edge of each. Candidates that cut the region fall out.
void AddIfOutside(std::vector<Vector>& normals, const std::vector<Vector>& rays, const Vector& candidate)
{
    const double length = std::sqrt(Dot(candidate, candidate));
    if (length < 1e-6) return; // an edge along an axis: the faces beside it say the same
    for (const double sign : {1.0, -1.0}) {
        const Vector normal = Scaled(candidate, sign / length);
        if (std::all_of(rays.begin(), rays.end(), [&](const Vector& ray) { return Dot(normal, ray) >= -1e-12; }))
            normals.push_back(normal);
    }
}

// The share of the radius that a cap reaches in a direction at this cosine from its axis.
double ShareReached(const SightCap& cap, double cosine)
{
    if (cosine >= cap.cosine) return 1;
    return std::max(0.0, Product(cosine, cap.cosine) + Product(std::sqrt(std::max(0.0, 1 - Product(cosine, cosine))), cap.sine));
}

} // namespace

SightReach ReachOf(const SightCap& cap, std::int64_t radius)
{
    const auto reach = [&](double cosine) {
        const double distance = (ShareReached(cap, cosine) + 1e-7) * static_cast<double>(radius);
        return std::min(radius, static_cast<std::int64_t>(distance) + 1);
    };
    const Vector& axis = cap.axis;
    return {{reach(-axis[0]), reach(-axis[1]), reach(-axis[2])}, {reach(axis[0]), reach(axis[1]), reach(axis[2])}};
}

SightWedge SightWedge::Around(const std::vector<Vector>& rays)
{
    std::vector<Vector> normals;
    for (std::size_t i = 0; i < rays.size(); ++i) {
        AddIfOutside(normals, rays, Cross(rays[i], rays[(i + 1) % rays.size()]));
        for (std::size_t axis = 0; axis < 3; ++axis) AddIfOutside(normals, rays, Cross(rays[i], Along(axis)));
    }
    for (std::size_t axis = 0; axis < 3; ++axis) AddIfOutside(normals, rays, Along(axis));
    return SightWedge(normals);
}

SightWedge SightWedge::Around(const SightCap& cap)
{
    if (cap.cosine < 0.25) return SightWedge({cap.axis});
    constexpr std::size_t rayCount = 12; // a turn of 30 degrees from one to the next
    const double cosine30 = std::sqrt(0.75);
    const std::array cosines{1.0, cosine30, 0.5, 0.0, -0.5, -cosine30, -1.0, -cosine30, -0.5, 0.0, 0.5, cosine30};
    const double cosine15 = std::sqrt((1 + cosine30) / 2);
    const double radius = cap.sine / cap.cosine / cosine15; // a polygon around a circle
    std::size_t least = 0;
    for (std::size_t i = 1; i < 3; ++i) {
        if (std::abs(cap.axis[i]) < std::abs(cap.axis[least])) least = i;
    }
    const Vector across = Cross(cap.axis, Along(least));
    const Vector u = Scaled(across, 1 / std::sqrt(Dot(across, across)));
    const Vector v = Cross(cap.axis, u);
    std::vector<Vector> rays;
    for (std::size_t i = 0; i < rayCount; ++i) {
        const double cosine = cosines[i];
        const double sine = cosines[(i + 9) % rayCount];
        Vector ray = cap.axis;
        for (std::size_t k = 0; k < 3; ++k) ray[k] += Product(radius * cosine, u[k]) + Product(radius * sine, v[k]);
        rays.push_back(Scaled(ray, 1 / std::sqrt(Dot(ray, ray))));
    }
    return Around(rays);
}

bool SightWedge::Misses(const Vector& lower, const Vector& upper) const
{
    double size = 0;
    for (std::size_t i = 0; i < 3; ++i) size += std::max(std::abs(lower[i]), std::abs(upper[i]));
    return std::any_of(normals_.begin(), normals_.end(), [&](const Vector& normal) {
        double highest = 0;
        for (std::size_t i = 0; i < 3; ++i) highest += Product(normal[i], normal[i] > 0 ? upper[i] : lower[i]);
        return highest < -1e-8 * size;
    });
}

} // namespace brix::sight
