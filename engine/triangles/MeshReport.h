// What a list of triangles is as a surface: where it is open, where more than two triangles meet, which way it turns.
#pragma once

#include "Triangle.h"

#include <span>
#include <string>

namespace brix {

/// Corners that are exactly equal (0 and -0 are) make one vertex. Edges join two vertices; a triangle with fewer than three
/// vertices has none, and is left out of the counts of edges and shells.
struct MeshReport
{
    std::array<double, 3> lower{}; // of all corners, in the units of the triangles; 0 without triangles
    std::array<double, 3> upper{};
    std::uint64_t vertices = 0;
    std::uint64_t edges = 0;
    std::uint64_t openEdges = 0;          // with one triangle
    std::uint64_t crowdedEdges = 0;       // with more than two triangles
    std::uint64_t reversedEdges = 0;      // with two triangles that both run through it the same way: one is inside out
    std::uint64_t duplicateTriangles = 0; // with the three vertices of an earlier one, whichever way they turn
    std::uint64_t shells = 0;             // parts that no edge connects
    bool isClosed = false;                // there are edges, and all have an even number of triangles
    double signedVolume = 0;              // enclosed by a closed surface: positive where triangles face outwards

    /// Whether it bounds a solid: closed, each edge with two triangles that face the same way, none twice, a volume above 0.
    [[nodiscard]] bool IsSolid() const;
};

/// Counts over the triangles. Where coordinates are not finite, neither bounds nor volume mean anything.
/// Throws std::length_error when there are more than 715827882 triangles.
/// Cost: linear in time (edges that many triangles share are sorted) and in memory.
/// Source: vertices by a hash table; half-edges in buckets of their lower vertex, by a counting sort; shells by union-find
/// (Tarjan, "Efficiency of a good but not linear set union algorithm", 1975); volume as the sum of prisms.
[[nodiscard]] MeshReport CountMesh(std::span<const WorldTriangle> triangles);

/// The unit in which somebody may have measured, and why that is thought.
struct UnitGuess
{
    std::string unit; // "m" or "mm"; empty: no guess
    std::string reason;
};

/// A guess from the longest side of the bounds, in the unit that is asked for. Files of triangles do not name their unit.
[[nodiscard]] UnitGuess GuessUnit(double longestSide);

} // namespace brix
