// Furniture of closed boxes, in metres. Each piece stands on its place, which is the middle of its footprint.
#pragma once

#include "Boxes.h"

namespace brix::scenes {

/// A table top on four legs, `length` along x before turning.
void AddTable(Triangles& scene, const Place& place, double length, double width, double height = 0.75);

/// A chair whose sitter looks towards larger y before turning.
void AddChair(Triangles& scene, const Place& place);

/// A table with `chairsPerSide` chairs at each of its long sides.
void AddDiningSet(Triangles& scene, const Place& place, double length, double width, int chairsPerSide);

/// A bed of 1.6 x 2.0 m, its head towards larger y before turning.
void AddBed(Triangles& scene, const Place& place);

/// Open shelves 2 m high and 0.35 m deep, `length` along x, their back towards larger y before turning.
void AddShelves(Triangles& scene, const Place& place, double length);

/// A closed cupboard or worktop.
void AddCupboard(Triangles& scene, const Place& place, double length, double depth, double height);

} // namespace brix::scenes
