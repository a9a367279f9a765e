// The plan of the furnished building.
#include "Building.h"

#include "Furniture.h"

namespace brix::scenes {
namespace {

constexpr double Length = 14; // along x, between the outer faces
constexpr double Depth = 10;  // along y
constexpr double StoreyHeight = 3;
constexpr double SlabThickness = 0.25;
constexpr double RoomHeight = StoreyHeight - SlabThickness;
constexpr double OuterWall = 0.3;
constexpr double InsideX[2] = {OuterWall, Length - OuterWall};
constexpr double InsideY[2] = {OuterWall, Depth - OuterWall};
constexpr double HallSouth = 3.9; // faces of the hall
constexpr double HallNorth = 6.5;
constexpr double InnerWall = 0.15;

Flight StairsFrom(double floor)
{
    return {.from = 5, .near = HallNorth - 1.2, .far = HallNorth, .foot = floor, .height = StoreyHeight};
}

Box StairWell()
{
    const Flight stairs = StairsFrom(0);
    return {{stairs.from, stairs.near, 0}, {stairs.To(), stairs.far, 0}};
}

void AddOuterWalls(Triangles& scene, double floor, bool groundFloor)
{
    const std::vector<Opening> longSide{Window(1.2, 1.5), Window(4.4, 1.5), Window(8.6, 1.5), Window(11.4, 1.5)};
    const Opening entrance = groundFloor ? Door(4.1, 1.0) : Window(4.1, 1.0);
    AddWall(scene, {Along::X, 0, Length, 0, OuterWall, floor, RoomHeight}, longSide);
    AddWall(scene, {Along::X, 0, Length, InsideY[1], Depth, floor, RoomHeight}, longSide);
    AddWall(scene, {Along::Y, InsideY[0], InsideY[1], 0, OuterWall, floor, RoomHeight},
            {Window(1.2, 1.5), entrance, Window(7.4, 1.5)});
    AddWall(scene, {Along::Y, InsideY[0], InsideY[1], InsideX[1], Length, floor, RoomHeight},
            {Window(1.2, 1.5), Window(4.7, 1.0), Window(7.4, 1.5)});
}

void AddInnerWalls(Triangles& scene, double floor)
{
    AddWall(scene, {Along::X, InsideX[0], InsideX[1], HallSouth - InnerWall, HallSouth, floor, RoomHeight},
            {Door(3.0, 0.9), Door(10.8, 0.9)});
    AddWall(scene, {Along::X, InsideX[0], InsideX[1], HallNorth, HallNorth + InnerWall, floor, RoomHeight},
            {Door(2.6, 0.9), Door(11.0, 0.9)});
    AddWall(scene, {Along::Y, InsideY[0], HallSouth - InnerWall, 8.0, 8.0 + InnerWall, floor, RoomHeight}, {Door(2.6, 0.9)});
    AddWall(scene, {Along::Y, HallNorth + InnerWall, InsideY[1], 6.9, 6.9 + InnerWall, floor, RoomHeight});
}

// The well is open to the storey below. Its western end is where the next flight starts, and is closed on the highest floor.
void AddRailing(Triangles& scene, double floor, bool highestFloor)
{
    const double thickness = 0.05;
    const double height = 1.0;
    const auto [west, south, below] = StairWell().lower;
    const auto [east, north, above] = StairWell().upper;
    AddBox(scene, {{west, south - thickness, floor}, {east, south, floor + height}});
    if (highestFloor) AddBox(scene, {{west - thickness, south - thickness, floor}, {west, north, floor + height}});
}

void AddUpperFloor(Triangles& scene, double floor, bool highestFloor)
{
    AddSlabWithHole(scene, {{0, 0, floor - SlabThickness}, {Length, Depth, floor}}, StairWell());
    AddRailing(scene, floor, highestFloor);
    AddBox(scene, {{0, -0.25, floor - 0.15}, {Length, 0, floor}}); // the ledge
}

void AddGroundSlab(Triangles& scene)
{
    const double terrace = 1.5;
    AddBox(scene, {{-terrace, -terrace, -0.3}, {Length + terrace, Depth + terrace, 0}});
}

void AddRoof(Triangles& scene, double top)
{
    const double parapet = 0.2;
    const double height = 0.5;
    AddBox(scene, {{0, 0, top - SlabThickness}, {Length, Depth, top}});
    AddWall(scene, {Along::X, 0, Length, 0, parapet, top, height});
    AddWall(scene, {Along::X, 0, Length, Depth - parapet, Depth, top, height});
    AddWall(scene, {Along::Y, parapet, Depth - parapet, 0, parapet, top, height});
    AddWall(scene, {Along::Y, parapet, Depth - parapet, Length - parapet, Length, top, height});
}

void FurnishGroundFloor(Triangles& scene, double floor)
{
    AddDiningSet(scene, {2.6, 1.7, floor}, 2.0, 0.9, 3); // south-west: dining and living
    AddShelves(scene, {5.6, 3.575, floor}, 1.5);
    AddTable(scene, {6.0, 1.4, floor}, 1.1, 0.6, 0.45);
    AddChair(scene, {7.2, 1.4, floor, 1});
    AddCupboard(scene, {10.6, 0.6, floor}, 4.0, 0.6, 0.9); // south-east: kitchen
    AddDiningSet(scene, {12.3, 2.3, floor, 1}, 1.0, 0.8, 1);
    AddDiningSet(scene, {4.6, 8.3, floor}, 2.4, 1.0, 3); // north-west: meeting room
    AddTable(scene, {1.3, 9.25, floor}, 1.6, 0.8);
    AddChair(scene, {1.3, 8.6, floor});
    AddBed(scene, {9.0, 8.65, floor}); // north-east: guest room
    AddShelves(scene, {13.475, 8.2, floor, 3}, 1.6);
}

void FurnishUpperFloor(Triangles& scene, double floor)
{
    AddBed(scene, {1.4, 1.35, floor, 2}); // south-west
    AddShelves(scene, {5.8, 3.575, floor}, 1.8);
    AddTable(scene, {5.6, 0.75, floor}, 1.6, 0.8);
    AddChair(scene, {5.6, 1.4, floor, 2});
    AddBed(scene, {12.6, 1.7, floor, 3}); // south-east
    AddShelves(scene, {9.6, 3.575, floor}, 1.6);
    AddBed(scene, {5.6, 8.65, floor}); // north-west
    AddTable(scene, {1.4, 9.25, floor}, 1.6, 0.8);
    AddChair(scene, {1.4, 8.6, floor});
    AddDiningSet(scene, {9.6, 8.2, floor}, 2.4, 1.0, 3); // north-east: workroom
    AddShelves(scene, {13.475, 8.2, floor, 3}, 1.6);
}

} // namespace

std::vector<WorldTriangle> MakeBuilding(const BuildingOptions& options)
{
    const int storeys = options.storeys < 1 ? 1 : options.storeys;
    Triangles scene;
    AddGroundSlab(scene);
    for (int storey = 0; storey < storeys; ++storey) {
        const double floor = storey * StoreyHeight;
        const bool highestFloor = storey == storeys - 1;
        if (storey > 0) AddUpperFloor(scene, floor, highestFloor);
        AddOuterWalls(scene, floor, storey == 0);
        AddInnerWalls(scene, floor);
        if (!highestFloor) AddFlight(scene, StairsFrom(floor));
        if (options.furnished) storey == 0 ? FurnishGroundFloor(scene, floor) : FurnishUpperFloor(scene, floor);
    }
    AddRoof(scene, storeys * StoreyHeight);
    return scene;
}

} // namespace brix::scenes
