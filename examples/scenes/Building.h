// A furnished building as a building model would hold it: a soup of closed boxes with rooms, doors, windows and real stairs.
//
//        north rooms          14 m x 10 m inside a terrace 1.5 m wide; storeys of 3 m
//   +-----------+-----------+
//   |           |           |     the hall runs through the house from the entrance in the west wall;
//   +--door-----+-----door--+     the stairs climb along its north side towards the east
//   D hall   [stairs >>>]   |
//   +----door----+---door---+
//   |            D          |
//   +------------+----------+
//        south rooms          a ledge, too narrow to stand on, runs along the south wall at every upper floor
#pragma once

#include <brix/triangles/Triangle.h>

#include <vector>

namespace brix::scenes {

struct BuildingOptions
{
    int storeys = 2; // at least one
    bool furnished = true;
};

/// The building in metres, Z up, its south-west outer corner at the origin and the ground floor at height 0.
/// Every 12 triangles in a row are one closed box with outward normals. Clear room height 2.75 m; doors 0.9 to 1 m wide and 2.1 m
/// high; stairs 1.2 m wide with rises of 176 mm, goings of 280 mm and at least 2.1 m of headroom.
std::vector<WorldTriangle> MakeBuilding(const BuildingOptions& options = {});

} // namespace brix::scenes
