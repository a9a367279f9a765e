// What walking means, written from the definitions and voxel by voxel: steps, what they reach, straight pieces, and the shortest
// ways of them; and random ground to walk on.
#pragma once

#include "support/Random.h"
#include "support/ReferenceModel.h"
#include "travel/PathModel.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>
#include <string>

namespace brix::tests {

inline constexpr std::int64_t NoLimit = std::numeric_limits<std::int64_t>::max();

/// The ground that one can stand on.
struct Ground
{
    explicit Ground(const PathModel& path) : Ground(path.TraversableVoxels()) {}
    explicit Ground(const VoxelModel<bool>& traversable) : model(traversable, traversable.FinestLOD())
    {
        model.ForEachVoxel([&](const Triple& voxel) {
            if (model.Value(voxel)) voxels.push_back(voxel);
        });
    }

    bool IsInStep(const Triple& a, const Triple& b) const { return model.Value(b) && std::abs(a[2] - b[2]) <= 1; }

    /// A step to one of the eight columns around; a diagonal one by way of a column beside that is in step with both ends.
    bool IsStep(const Triple& a, const Triple& b) const
    {
        const std::int64_t x = std::abs(a[0] - b[0]);
        const std::int64_t y = std::abs(a[1] - b[1]);
        if (x > 1 || y > 1 || x + y == 0 || !IsInStep(a, b)) return false;
        if (x + y == 1) return true;
        for (std::int64_t z = a[2] - 1; z <= a[2] + 1; ++z) {
            for (const Triple& between : {Triple{a[0], b[1], z}, Triple{b[0], a[1], z}}) {
                if (IsInStep(a, between) && IsInStep(b, between)) return true;
            }
        }
        return false;
    }

    template <class Visit> void ForEachStep(const Triple& from, const Visit& visit) const
    {
        ForEachTriple(Plus(from, {-1, -1, -1}), Plus(from, {1, 1, 1}), [&](const Triple& to) {
            if (IsStep(from, to)) visit(to);
        });
    }

    /// What steps lead to without leaving isInside.
    template <class Inside> std::set<Triple> Reached(const Triple& from, const Inside& isInside) const
    {
        std::set<Triple> reached{from};
        for (std::vector<Triple> waiting{from}; !waiting.empty();) {
            const Triple voxel = waiting.back();
            waiting.pop_back();
            ForEachStep(voxel, [&](const Triple& to) {
                if (isInside(to) && reached.insert(to).second) waiting.push_back(to);
            });
        }
        return reached;
    }

    /// The squares whose inside the line between two centres crosses in plan, in this order.
    static std::vector<Triple> Squares(const Triple& a, const Triple& b)
    {
        const Triple line = Minus(b, a);
        std::vector<Triple> squares;
        const Triple lower = Lowest(a, b);
        const Triple upper = Highest(a, b);
        ForEachTriple({lower[0], lower[1], 0}, {upper[0], upper[1], 0}, [&](const Triple& square) {
            std::set<bool> sides; // of corners, in half voxels
            for (const Triple& corner : {Triple{-1, -1, 0}, Triple{1, -1, 0}, Triple{-1, 1, 0}, Triple{1, 1, 0}}) {
                const std::int64_t side =
                    line[0] * (2 * (square[1] - a[1]) + corner[1]) - line[1] * (2 * (square[0] - a[0]) + corner[0]);
                if (side != 0) sides.insert(side > 0);
            }
            if (sides.size() == 2) squares.push_back(square);
        });
        const auto along = [&](const Triple& square) { return square[0] * line[0] + square[1] * line[1]; };
        std::sort(squares.begin(), squares.end(), [&](const Triple& p, const Triple& q) { return along(p) < along(q); });
        return squares;
    }

    /// The voxels that a straight piece leads over, both ends included; none where there is no such piece.
    std::vector<Triple> StraightPiece(const Triple& a, const Triple& b) const
    {
        const std::size_t axis = std::abs(b[0] - a[0]) >= std::abs(b[1] - a[1]) ? 0 : 1;
        const std::int64_t length = std::abs(b[axis] - a[axis]);
        std::vector<Triple> walked;
        for (const Triple& square : Squares(a, b)) {
            const std::int64_t height = a[2] * length + (b[2] - a[2]) * std::abs(square[axis] - a[axis]); // times the length
            const auto offLine = [&](std::int64_t z) { return std::abs(z * length - height); };
            std::int64_t nearest = std::numeric_limits<std::int64_t>::max();
            const std::int64_t z = walked.empty() ? a[2] : walked.back()[2];
            for (const std::int64_t candidate : {z - 1, z, z + 1}) {
                const Triple voxel{square[0], square[1], candidate};
                if (!walked.empty() && !IsStep(walked.back(), voxel)) continue;
                if (nearest == std::numeric_limits<std::int64_t>::max() || offLine(candidate) < offLine(nearest))
                    nearest = candidate;
            }
            if (walked.empty()) nearest = a[2];
            if (nearest == std::numeric_limits<std::int64_t>::max() || offLine(nearest) > length) return {};
            walked.push_back({square[0], square[1], nearest});
        }
        return !walked.empty() && walked.back() == b ? walked : std::vector<Triple>{};
    }

    double Length(const Triple& a, const Triple& b) const
    {
        const Triple size = model.AxesRef().VoxelSize(model.VoxelLOD());
        return std::hypot((a[0] - b[0]) * size[0], (a[1] - b[1]) * size[1], (a[2] - b[2]) * size[2]);
    }

    /// The lengths in base units of the shortest ways of straight pieces, voxel by voxel of `voxels`, infinite where there is
    /// none: by a visibility graph of all voxels.
    std::vector<double> ShortestWays(const Triple& from) const
    {
        std::vector<double> lengths(voxels.size(), std::numeric_limits<double>::infinity());
        std::vector<bool> isSettled(voxels.size(), false);
        for (std::size_t i = 0; i < voxels.size(); ++i) {
            if (voxels[i] == from) lengths[i] = 0;
        }
        for (std::size_t round = 0; round < voxels.size(); ++round) {
            std::size_t next = voxels.size();
            for (std::size_t i = 0; i < voxels.size(); ++i) {
                if (!isSettled[i] && (next == voxels.size() || lengths[i] < lengths[next])) next = i;
            }
            if (std::isinf(lengths[next])) break;
            isSettled[next] = true;
            for (std::size_t i = 0; i < voxels.size(); ++i) {
                const double length = lengths[next] + Length(voxels[next], voxels[i]);
                if (length < lengths[i] && !StraightPiece(voxels[next], voxels[i]).empty()) lengths[i] = length;
            }
        }
        return lengths;
    }

    ReferenceModel model;
    std::vector<Triple> voxels;
};

/// A plan of one layer from a drawing: rows from the highest y down, parted by white space, # solid; its lower corner is voxel
/// (0, 0, 0).
inline ReferenceModel DrawnPlan(const Axes& axes, const std::string& drawing)
{
    std::vector<std::string> rows{""};
    for (const char character : drawing) {
        if (character != ' ')
            rows.back() += character;
        else if (!rows.back().empty())
            rows.emplace_back();
    }
    const auto width = static_cast<std::int64_t>(rows.front().size());
    const auto height = static_cast<std::int64_t>(rows.size());
    ReferenceModel plan(Extents(axes, {0, 0, 0}, {width - 1, height - 1, 0}, 0), 0, 0);
    return plan.Where([&](const Triple& v) {
        return rows[static_cast<std::size_t>(height - 1 - v[1])][static_cast<std::size_t>(v[0])] == '#';
    });
}

/// Ground to walk on: solid matter up to a height above every square, and one kind of obstacle.
enum class Terrain
{
    Flat,    // a plan of one layer with obstacles, noise or blocks
    Flights, // flights of stairs between storeys, with or without walls beside them
    Slopes,  // planes that rise by up to a voxel a square, cut into layers
    Hills,   // waves and noise, with a roof over part of them that one can stand on
    Kerbs    // floors with islands and pits one or two voxels high
};

inline constexpr std::array AllTerrains{Terrain::Flat, Terrain::Flights, Terrain::Slopes, Terrain::Hills, Terrain::Kerbs};

struct RandomGround
{
    Terrain terrain;
    std::uint64_t seed;
    VoxelModel<bool> environment;
    std::int64_t agentHeight;
};

namespace detail {

inline std::int64_t HeightOf(Terrain terrain, Random random, const Triple& v) // the same random numbers for every square
{
    const std::int64_t a = random.Between(-8, 8);
    const std::int64_t b = random.Between(-8, 8);
    const std::int64_t c = random.Between(3, 9);
    const bool hasWalls = random.OneIn(2);
    Random noise(random.Bits() ^ static_cast<std::uint64_t>(100 * v[1] + v[0] + 1000000));
    switch (terrain) {
    case Terrain::Slopes:
        return 9 + FloorDivide(a * v[0] + b * v[1] + c, 8);
    case Terrain::Hills:
        return 8 + static_cast<std::int64_t>(std::floor(3 * std::sin(0.1 * static_cast<double>(a * v[0] + b * v[1])))) +
               (c > 6 ? noise.Between(0, 1) : 0);
    case Terrain::Kerbs:
        return 3 + (noise.OneIn(c) ? noise.Between(-1, 2) : 0);
    case Terrain::Flights: { // a floor, a flight along x with treads of one to three squares, the storey above it
        const std::int64_t tread = 1 + c % 3;
        const bool isFlight = std::abs(v[1] + 1) <= 1 + c % 2;
        const bool isWall = hasWalls && std::abs(v[1] + 1) == 2 + c % 2 && 0 <= v[0] && v[0] < 5 * tread;
        return isWall             ? 16
               : isFlight         ? 2 + std::clamp<std::int64_t>(FloorDivide(v[0], tread) + 1, 0, 5)
               : v[0] < 5 * tread ? 2
                                  : 7;
    }
    default:
        return 0;
    }
}

} // namespace detail

/// Random in all else, also in the frame, the level and so the shape of voxels: up to 32 times as high as wide, or as wide as
/// high.
inline RandomGround MakeRandomGround(Terrain terrain, std::uint64_t seed)
{
    Random random(seed);
    const bool isPlan = terrain == Terrain::Flat;
    const std::int64_t lod = random.OneIn(2) ? 0 : random.Between(0, 5);
    const Axes axes(1, {0.3, 0, 0}, random.OneIn(2) ? 0 : 30, random.OneIn(2) ? lod : random.Between(0, 5));
    const Triple lower{random.Between(-8, 0), random.Between(-8, -2), 0};
    const Triple size{random.Between(3, 14), random.Between(3, 14), isPlan ? 0 : 20};
    const Extents extents(axes, lower, Plus(lower, size), lod);
    const std::int64_t roof = random.Between(12, 16);
    const std::int64_t share = random.Between(0, 40); // of obstacles, in percent
    const std::int64_t block = random.OneIn(2) ? 1 : random.Between(2, 5);
    ReferenceModel solid = ReferenceModel(extents, lod, lod).Where([&](const Triple& v) {
        if (!IsWithin(v, lower, Plus(lower, size))) return isPlan;
        const bool isRoof = terrain == Terrain::Hills && v[2] == roof && v[0] % 5 != 0;
        return !isPlan && (v[2] <= detail::HeightOf(terrain, Random(seed), v) || isRoof);
    });
    for (std::int64_t i = share * size[0] * size[1] / (100 * block * block); isPlan && i > 0; --i) {
        const Triple corner = Plus(lower, {random.Between(0, size[0]), random.Between(0, size[1]), 0});
        ForEachTriple(corner, Plus(corner, {block - 1, block - 1, 0}), [&](const Triple& v) { solid.Set(v); });
    }
    return {terrain, seed, MakeModel(solid), isPlan ? 1 : random.Between(2, 4)};
}

} // namespace brix::tests
