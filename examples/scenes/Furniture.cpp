// Furniture of closed boxes.
#include "Furniture.h"

namespace brix::scenes {
namespace {

void AddLegs(Triangles& scene, const Place& place, double length, double width, double thickness, double height)
{
    const double x = length / 2 - thickness;
    const double y = width / 2 - thickness;
    for (const double left : {-length / 2, x})
        for (const double front : {-width / 2, y})
            AddBox(scene, MovedTo(place, {{left, front, 0}, {left + thickness, front + thickness, height}}));
}

void AddPlate(Triangles& scene, const Place& place, double length, double width, double bottom, double top)
{
    AddBox(scene, MovedTo(place, {{-length / 2, -width / 2, bottom}, {length / 2, width / 2, top}}));
}

// A place next to another one, given in the first one's directions.
Place Beside(const Place& place, double x, double y, int quarterTurns)
{
    const Box point = MovedTo(place, {{x, y, 0}, {x, y, 0}});
    return {point.lower[0], point.lower[1], place.z, place.quarterTurns + quarterTurns};
}

} // namespace

void AddTable(Triangles& scene, const Place& place, double length, double width, double height)
{
    const double top = 0.05;
    AddLegs(scene, place, length, width, 0.07, height - top);
    AddPlate(scene, place, length, width, height - top, height);
}

void AddChair(Triangles& scene, const Place& place)
{
    const double side = 0.45;
    AddLegs(scene, place, side, side, 0.04, 0.41);
    AddPlate(scene, place, side, side, 0.41, 0.45);
    AddBox(scene, MovedTo(place, {{-side / 2, -side / 2, 0.45}, {side / 2, -side / 2 + 0.04, 0.9}}));
}

void AddDiningSet(Triangles& scene, const Place& place, double length, double width, int chairsPerSide)
{
    AddTable(scene, place, length, width);
    const double spacing = length / chairsPerSide;
    for (int chair = 0; chair < chairsPerSide; ++chair) {
        const double x = (chair + 0.5) * spacing - length / 2;
        AddChair(scene, Beside(place, x, -width / 2 - 0.25, 0));
        AddChair(scene, Beside(place, x, width / 2 + 0.25, 2));
    }
}

void AddBed(Triangles& scene, const Place& place)
{
    const double width = 1.6;
    const double length = 2.0;
    AddLegs(scene, place, width, length, 0.08, 0.2);
    AddPlate(scene, place, width, length, 0.2, 0.35);
    AddPlate(scene, place, width - 0.1, length - 0.1, 0.35, 0.55);
    AddBox(scene, MovedTo(place, {{-width / 2, length / 2 - 0.06, 0.35}, {width / 2, length / 2, 1.0}}));
}

void AddShelves(Triangles& scene, const Place& place, double length)
{
    const double height = 2.0;
    const double depth = 0.35;
    const double board = 0.03;
    AddBox(scene, MovedTo(place, {{-length / 2, -depth / 2, 0}, {-length / 2 + board, depth / 2, height}}));
    AddBox(scene, MovedTo(place, {{length / 2 - board, -depth / 2, 0}, {length / 2, depth / 2, height}}));
    AddBox(scene, MovedTo(place, {{-length / 2 + board, depth / 2 - board, 0}, {length / 2 - board, depth / 2, height}}));
    for (const double z : {0.1, 0.5, 0.9, 1.3, 1.7})
        AddBox(scene, MovedTo(place, {{-length / 2 + board, -depth / 2, z}, {length / 2 - board, depth / 2 - board, z + board}}));
}

void AddCupboard(Triangles& scene, const Place& place, double length, double depth, double height)
{
    AddPlate(scene, place, length, depth, 0, height);
}

} // namespace brix::scenes
