// The generated town.
#include "City.h"

#include "Boxes.h"
#include "Building.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <iterator>

namespace brix::scenes {
namespace {

constexpr double LotSize = 36;
constexpr double StoreyHeight = 3;

// The splitmix64 generator (Steele, Lea and Flood, 2014). The distributions of the standard library differ between libraries.
class Random
{
public:
    explicit Random(std::uint64_t seed) : state_(seed) {}

    std::uint64_t Next()
    {
        std::uint64_t value = state_ += 0x9e3779b97f4a7c15;
        value = (value ^ (value >> 30)) * 0xbf58476d1ce4e5b9;
        value = (value ^ (value >> 27)) * 0x94d049bb133111eb;
        return value ^ (value >> 31);
    }

    /// A number of 0 to 1, one of 1024 steps.
    double Fraction() { return static_cast<double>(Next() >> 54) / 1024; }
    int Integer(int lowest, int highest)
    {
        return lowest + static_cast<int>(Next() % static_cast<std::uint64_t>(highest - lowest + 1));
    }

private:
    std::uint64_t state_;
};

double Snapped(double coordinate) { return std::floor(coordinate * 1024 + 0.5) / 1024; }

// A turn about Z by up to 45 degrees either way. Cosine and sine come from the half angle's tangent, as library sines are not the
// same everywhere.
struct Turn
{
    double cosine, sine;
};

Turn RandomTurn(Random& random)
{
    const double tangent = (random.Fraction() - 0.5) * 0.8;
    const double scale = 1 + tangent * tangent;
    return {(1 - tangent * tangent) / scale, 2 * tangent / scale};
}

// Turns a building about the middle of its footprint and sets it on a place of the town.
void Settle(Triangles& building, const Turn& turn, double middleX, double middleY, double placeX, double placeY)
{
    for (WorldTriangle& triangle : building)
        for (auto& corner : triangle) {
            const double x = corner[0] - middleX;
            const double y = corner[1] - middleY;
            corner = {Snapped(placeX + turn.cosine * x - turn.sine * y), Snapped(placeY + turn.sine * x + turn.cosine * y),
                      Snapped(corner[2])};
        }
}

std::vector<Opening> Windows(double length, int count)
{
    std::vector<Opening> windows;
    const double bay = length / count;
    for (int window = 0; window < count; ++window) windows.push_back(Window(window * bay + 0.25 * bay, 0.5 * bay));
    return windows;
}

// A block of flats: slabs, walls with a window per bay, and columns along the middle.
Triangles MakeBlock(int baysX, int baysY, int storeys)
{
    const double length = baysX * 3.0;
    const double depth = baysY * 3.0;
    const double wall = 0.3;
    const double slab = 0.25;
    Triangles block;
    for (int storey = 0; storey < storeys; ++storey) {
        const double floor = storey * StoreyHeight;
        const double height = StoreyHeight - slab;
        AddBox(block, {{0, 0, floor - slab}, {length, depth, floor}});
        AddWall(block, {Along::X, 0, length, 0, wall, floor, height}, Windows(length, baysX));
        AddWall(block, {Along::X, 0, length, depth - wall, depth, floor, height}, Windows(length, baysX));
        AddWall(block, {Along::Y, wall, depth - wall, 0, wall, floor, height}, Windows(depth, baysY));
        AddWall(block, {Along::Y, wall, depth - wall, length - wall, length, floor, height}, Windows(depth, baysY));
        for (int bay = 1; bay < baysX; ++bay)
            AddBox(block, {{bay * 3.0 - 0.2, depth / 2 - 0.2, floor}, {bay * 3.0 + 0.2, depth / 2 + 0.2, floor + height}});
    }
    AddBox(block, {{0, 0, storeys * StoreyHeight - slab}, {length, depth, storeys * StoreyHeight}});
    return block;
}

Triangles MakeLot(Random& random, double placeX, double placeY)
{
    const bool isHouse = random.Integer(0, 4) == 0;
    const int baysX = random.Integer(3, 7);
    const int baysY = random.Integer(3, 5);
    const int storeys = isHouse ? random.Integer(1, 3) : random.Integer(2, 9);
    Triangles building = isHouse ? MakeBuilding({.storeys = storeys}) : MakeBlock(baysX, baysY, storeys);
    const Turn turn = RandomTurn(random);
    Settle(building, turn, isHouse ? 7 : baysX * 1.5, isHouse ? 5 : baysY * 1.5, placeX, placeY);
    return building;
}

// Lots along a square spiral around the middle, so that any number of them makes a compact town.
std::array<int, 2> SpiralLot(int number)
{
    int x = 0, y = 0, stepX = 1, stepY = 0;
    for (int side = 1, made = 0;; ++side)
        for (int half = 0; half < 2; ++half) {
            for (int step = 0; step < side; ++step, ++made) {
                if (made == number) return {x, y};
                x += stepX;
                y += stepY;
            }
            const int turned = stepX;
            stepX = -stepY;
            stepY = turned;
        }
}

// Hills between -2 m and 0: heights at the corners of a lattice of 20 m, bilinear between them.
double LatticeHeight(std::uint64_t seed, std::int64_t column, std::int64_t row)
{
    return -2 *
           Random(seed ^ (static_cast<std::uint64_t>(column) << 32) ^ static_cast<std::uint64_t>(row & 0xffffffff)).Fraction();
}

double GroundHeight(std::uint64_t seed, double x, double y)
{
    const double hill = 20;
    const double column = std::floor(x / hill);
    const double row = std::floor(y / hill);
    const double alongX = x / hill - column;
    const double alongY = y / hill - row;
    const auto height = [&](int right, int back) {
        return LatticeHeight(seed, static_cast<std::int64_t>(column) + right, static_cast<std::int64_t>(row) + back);
    };
    return (height(0, 0) * (1 - alongX) + height(1, 0) * alongX) * (1 - alongY) +
           (height(0, 1) * (1 - alongX) + height(1, 1) * alongX) * alongY;
}

void AddGround(Triangles& scene, std::uint64_t seed, double halfSize, std::int64_t triangles)
{
    const double cellCount = static_cast<double>(std::max<std::int64_t>(triangles, 2)) / 2;
    const std::int64_t cells = std::llround(std::sqrt(cellCount));
    const auto corner = [&](std::int64_t column, std::int64_t row) -> std::array<double, 3> {
        const double x = Snapped(halfSize * static_cast<double>(2 * column - cells) / static_cast<double>(cells));
        const double y = Snapped(halfSize * static_cast<double>(2 * row - cells) / static_cast<double>(cells));
        return {x, y, Snapped(GroundHeight(seed, x, y))};
    };
    for (std::int64_t row = 0; row < cells; ++row)
        for (std::int64_t column = 0; column < cells; ++column) {
            scene.push_back({corner(column, row), corner(column + 1, row), corner(column + 1, row + 1)});
            scene.push_back({corner(column, row), corner(column + 1, row + 1), corner(column, row + 1)});
        }
}

} // namespace

std::vector<WorldTriangle> MakeCity(const CityOptions& options)
{
    Random random(options.seed);
    Triangles scene;
    int farthest = 0;
    for (int lot = 0; scene.empty() || static_cast<std::int64_t>(scene.size()) < options.triangles / 2; ++lot) {
        const auto [column, row] = SpiralLot(lot);
        farthest = std::max({farthest, std::abs(column), std::abs(row)});
        const Triangles building = MakeLot(random, column * LotSize, row * LotSize);
        scene.insert(scene.end(), building.begin(), building.end());
    }
    AddGround(scene, options.seed, (farthest + 0.5) * LotSize, options.triangles - static_cast<std::int64_t>(scene.size()));
    return scene;
}

} // namespace brix::scenes
