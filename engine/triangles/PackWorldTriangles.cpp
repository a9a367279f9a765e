#include "PackWorldTriangles.h"

#include "Lanes.h"

#include <cstring>

namespace brix {
namespace {

// Twelve numbers, the coordinates of four corners x y z x y z x y z x y z, fill three vectors of four.
constexpr std::size_t PatternSize = 12;
constexpr std::size_t BatchSize = 24 * PatternSize;

// How a coordinate is made from its distance to the origin and those of its neighbours:
//
//   u = 0 * (z before) + cos * x + sin * y      v = -sin * x + cos * y + 0 * z      w = 0 * y + 1 * z + 0 * (x after)
struct Pattern
{
    explicit Pattern(const Axes::Conversion& by)
    {
        for (std::size_t i = 0; i < PatternSize; i += 3) {
            for (std::size_t axis = 0; axis < 3; ++axis) origin[i + axis] = by.origin[axis];
            before[i + 1] = -by.sin;
            own[i] = own[i + 1] = by.cos;
            own[i + 2] = 1;
            after[i] = by.sin;
        }
    }

    std::array<double, PatternSize> origin;
    std::array<double, PatternSize> before{};
    std::array<double, PatternSize> own;
    std::array<double, PatternSize> after{};
};

static_assert(sizeof(WorldTriangle) == 9 * sizeof(double) && sizeof(PackedTriangle) == 9 * sizeof(std::int32_t));

void Load(DoubleQuad& quad, const double* from) { std::memcpy(&quad, from, sizeof quad); }

// trunc(units) - TruncationBiasUnits within +-MaxPackedCoordinate, in which range `units` is positive. The sum with a power of
// two has no room for a fraction.
void TruncateBiased(const DoubleQuad& units, Quad& coords)
{
    constexpr double bias = static_cast<double>(Axes::TruncationBiasUnits);
    constexpr double lastBitIsOne = 4503599627370496.0; // 2^52
    const DoubleQuad most = DoubleQuad{} + (bias + MaxPackedCoordinate);
    const DoubleQuad least = DoubleQuad{} + (bias - MaxPackedCoordinate);
    const DoubleQuad atLeast = units > least ? units : least; // NaN is not greater
    const DoubleQuad within = atLeast < most ? atLeast : most;
    const DoubleQuad rounded = (within + lastBitIsOne) - lastBitIsOne;
    const DoubleQuad truncated = rounded > within ? rounded - (bias + 1) : rounded - bias;
    coords = __builtin_convertvector(truncated, Quad);
}

void Subtract(const Pattern& pattern, const double* worldCoords, double* distances)
{
    for (std::size_t k = 0; k < PatternSize; k += 4) {
        DoubleQuad coords, origin;
        Load(coords, &worldCoords[k]);
        Load(origin, &pattern.origin[k]);
        const DoubleQuad distance = coords - origin;
        std::memcpy(&distances[k], &distance, sizeof distance);
    }
}

void Convert(const Pattern& pattern, const Axes::Conversion& by, const double* distances, std::int32_t* packed)
{
    for (std::size_t k = 0; k < PatternSize; k += 4) {
        DoubleQuad before, own, after, fromBefore, fromOwn, fromAfter;
        Load(before, &distances[k] - 1);
        Load(own, &distances[k]);
        Load(after, &distances[k] + 1);
        Load(fromBefore, &pattern.before[k]);
        Load(fromOwn, &pattern.own[k]);
        Load(fromAfter, &pattern.after[k]);
        const DoubleQuad rotated = fromBefore * before + fromOwn * own + fromAfter * after;
        Quad coords;
        TruncateBiased((rotated + by.bias) * by.unitsPerWorld, coords);
        std::memcpy(&packed[k], &coords, sizeof coords);
    }
}

// `count` coordinates, a multiple of PatternSize.
void Pack(const Axes::Conversion& by, const double* worldCoords, std::size_t count, std::int32_t* packed)
{
    const Pattern pattern(by);
    std::array<double, 1 + BatchSize + 1> padded{}; // the first and the last coordinate have neighbours, too
    double* const distances = &padded[1];
    for (std::size_t first = 0; first < count; first += BatchSize) {
        const std::size_t size = std::min(BatchSize, count - first);
        for (std::size_t i = 0; i < size; i += PatternSize) Subtract(pattern, &worldCoords[first + i], &distances[i]);
        for (std::size_t i = 0; i < size; i += PatternSize) Convert(pattern, by, &distances[i], &packed[first + i]);
    }
}

} // namespace

void PackWorldTriangles(const Axes& axes, std::span<const WorldTriangle> triangles, std::span<PackedTriangle> packed,
                        InstructionSet instructionSet)
{
    const Axes::Conversion by = axes.WorldConversion();
    const std::size_t inFours = triangles.size() / 4 * 4;
    if (inFours > 0)
        RunWith(instructionSet,
                [&] { Pack(by, triangles.front().front().data(), inFours * packed.front().size(), packed.front().data()); });
    if (inFours == triangles.size()) return;

    std::array<WorldTriangle, 4> rest{};
    std::array<PackedTriangle, 4> packedRest;
    std::copy(triangles.begin() + static_cast<std::ptrdiff_t>(inFours), triangles.end(), rest.begin());
    Pack(by, rest.front().front().data(), rest.size() * packedRest.front().size(), packedRest.front().data());
    std::copy_n(packedRest.begin(), triangles.size() - inFours, packed.begin() + static_cast<std::ptrdiff_t>(inFours));
}

} // namespace brix
