// Boxes and what is made of them.
#include "Boxes.h"

#include <algorithm>
#include <cstddef>

namespace brix::scenes {
namespace {

// Corner k has bit 0 of k along x, bit 1 along y and bit 2 along z; two triangles per face, counter-clockwise seen from outside.
constexpr std::array<std::array<std::size_t, 3>, 12> BoxTriangles{{{0, 2, 3},
                                                                   {0, 3, 1},
                                                                   {4, 5, 7},
                                                                   {4, 7, 6}, // below, above
                                                                   {0, 1, 5},
                                                                   {0, 5, 4},
                                                                   {2, 6, 7},
                                                                   {2, 7, 3}, // y: front, back
                                                                   {0, 4, 6},
                                                                   {0, 6, 2},
                                                                   {1, 3, 7},
                                                                   {1, 7, 5}}}; // x: left, right

std::array<double, 3> Corner(const Box& box, std::size_t k)
{
    return {(k & 1) ? box.upper[0] : box.lower[0], (k & 2) ? box.upper[1] : box.lower[1], (k & 4) ? box.upper[2] : box.lower[2]};
}

// The part of a wall between two positions along it and two heights above its foot.
void AddWallPart(Triangles& scene, const Wall& wall, double from, double to, double low, double high)
{
    if (to <= from || high <= low) return;
    if (wall.along == Along::X)
        AddBox(scene, {{from, wall.near, wall.foot + low}, {to, wall.far, wall.foot + high}});
    else
        AddBox(scene, {{wall.near, from, wall.foot + low}, {wall.far, to, wall.foot + high}});
}

} // namespace

void AddBox(Triangles& scene, const Box& box)
{
    for (const auto& corners : BoxTriangles)
        scene.push_back({Corner(box, corners[0]), Corner(box, corners[1]), Corner(box, corners[2])});
}

Box MovedTo(const Place& place, const Box& box)
{
    Box moved = box;
    for (int turn = 0; turn < place.quarterTurns; ++turn)
        moved = {{-moved.upper[1], moved.lower[0], moved.lower[2]}, {-moved.lower[1], moved.upper[0], moved.upper[2]}};
    const std::array<double, 3> offset{place.x, place.y, place.z};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        moved.lower[axis] += offset[axis];
        moved.upper[axis] += offset[axis];
    }
    return moved;
}

void AddSlabWithHole(Triangles& scene, const Box& slab, const Box& hole)
{
    const auto [x0, y0, z0] = slab.lower;
    const auto [x1, y1, z1] = slab.upper;
    AddBox(scene, {{x0, y0, z0}, {x1, hole.lower[1], z1}});
    AddBox(scene, {{x0, hole.lower[1], z0}, {hole.lower[0], hole.upper[1], z1}});
    AddBox(scene, {{hole.upper[0], hole.lower[1], z0}, {x1, hole.upper[1], z1}});
    AddBox(scene, {{x0, hole.upper[1], z0}, {x1, y1, z1}});
}

void AddWall(Triangles& scene, const Wall& wall, const std::vector<Opening>& openings)
{
    double pierFrom = wall.from;
    for (const Opening& opening : openings) {
        AddWallPart(scene, wall, pierFrom, opening.from, 0, wall.height);
        AddWallPart(scene, wall, opening.from, opening.to, 0, opening.sill);
        AddWallPart(scene, wall, opening.from, opening.to, opening.head, wall.height);
        pierFrom = opening.to;
    }
    AddWallPart(scene, wall, pierFrom, wall.to, 0, wall.height);
}

void AddFlight(Triangles& scene, const Flight& flight)
{
    const double thickness = 0.25; // more than a rise, so that neighbouring treads overlap
    for (int tread = 1; tread < flight.risers; ++tread) {
        const double x = flight.from + (tread - 1) * flight.going;
        const double top = flight.foot + tread * flight.Rise();
        const double bottom = std::max(flight.foot, top - thickness);
        AddBox(scene, {{x, flight.near, bottom}, {x + flight.going, flight.far, top}});
    }
}

} // namespace brix::scenes
