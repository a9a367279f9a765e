// What the generated scenes are made of: closed boxes, and what a builder makes of boxes. All lengths are metres, Z is up.
// A box is 12 triangles whose normals point outward. Boxes touch and overlap as the parts of a building model do.
#pragma once

#include <brix/triangles/Triangle.h>

#include <vector>

namespace brix::scenes {

using Triangles = std::vector<WorldTriangle>;

struct Box
{
    std::array<double, 3> lower;
    std::array<double, 3> upper;
};

void AddBox(Triangles& scene, const Box& box);

/// A place in the plan that a piece of furniture is set on, turned counter-clockwise by quarter turns.
struct Place
{
    double x, y, z;
    int quarterTurns = 0;
};

/// A box given around the origin, moved to a place.
Box MovedTo(const Place& place, const Box& box);

/// A slab with a rectangular hole through it; only x and y of `hole` count, and it lies inside the slab.
void AddSlabWithHole(Triangles& scene, const Box& slab, const Box& hole);

enum class Along
{
    X,
    Y
};

/// An opening in a wall: from where to where along the wall (in the plan's coordinates), and heights above the wall's foot.
struct Opening
{
    double from, to;
    double sill, head;
};

/// A door of 2.1 m, and a window between sill and lintel.
constexpr Opening Door(double from, double width) { return {from, from + width, 0.0, 2.1}; }
constexpr Opening Window(double from, double width) { return {from, from + width, 0.9, 2.1}; }

struct Wall
{
    Along along;
    double from, to;  // along the wall
    double near, far; // across it
    double foot, height;
};

/// `openings`  in rising order along the wall, apart from each other
void AddWall(Triangles& scene, const Wall& wall, const std::vector<Opening>& openings = {});

/// A straight flight that climbs towards larger x. The last riser leads to the upper floor, so there is a tread fewer than
/// risers.
struct Flight
{
    double from;      // x of the first riser
    double near, far; // y of both sides
    double foot, height;
    int risers = 17;
    double going = 0.28;

    double Rise() const { return height / risers; }
    double To() const { return from + (risers - 1) * going; }
};

/// Treads as overlapping plates, so that the space below an upper flight stays free.
void AddFlight(Triangles& scene, const Flight& flight);

} // namespace brix::scenes
