// The voxels that one whole triangle touches, of whatever size, row by row along x. The conditions are those of TriangleRaster.h;
// each is linear in the voxel's indices, so that those of a row which meet all of them are one run:
//
//   edges of yz     which rows a height has          first edge of xy  ......########
//   edges of xz     bounds that hold for a height    other edges       ##########....
//   edges of xy                                      plane             ...######.....
//   and plane       bounds of each row               the row's run     ......###.....
//
// A row that the edges of yz leave is a square in which the triangle's projection has a point, so that the row has a voxel: the
// work is proportional to the rows that are touched.
#pragma once

#include "../frame/Triples.h"
#include "TrianglePieces.h"

#include <cstdlib>
#include <numeric>

namespace brix {

__extension__ typedef __int128 WideNumber;

/// floor(numerator / denominator), both positive and the quotient below 2^32: a double gets it right but for one.
inline std::int64_t QuotientOf(std::int64_t numerator, std::int64_t denominator) { return numerator / denominator; }
inline std::int64_t QuotientOf(WideNumber numerator, WideNumber denominator)
{
    const auto estimate = static_cast<std::int64_t>(static_cast<double>(numerator) / static_cast<double>(denominator));
    const WideNumber rest = numerator - estimate * denominator;
    return estimate - (rest < 0 ? 1 : 0) + (rest >= denominator ? 1 : 0);
}

/// Numbers first..last, none when last is the lower one.
struct VoxelRun
{
    std::int64_t first, last;

    bool IsEmpty() const { return last < first; }

    /// Keeps the numbers i where value(i) >= 0, of a linear function that is `atFirst` at the first one and grows by `step`.
    template <class Number> void KeepWhereNotNegative(Number atFirst, Number step)
    {
        if (IsEmpty() || (atFirst >= 0 && step >= 0)) return;
        const Number atLast = atFirst + step * (last - first);
        if (atFirst < 0 && atLast < 0)
            last = first - 1;
        else if (atFirst < 0)
            first = last - QuotientOf(atLast, step);
        else if (atLast < 0)
            last = first + QuotientOf(atFirst, -step);
    }
};

/// What a triangle with corners within +-MaxPackedCoordinate asks of voxels, or of larger cells of the lattice. Voxels
/// are counted from the lower corner of the triangle's box.
class TriangleRows
{
public:
    /// `size`  of a voxel in base units, at most that of a chunk
    TriangleRows(const LatticeTriangle& triangle, const Triple& size);

    /// Calls visit(y, z, run of x) for each row of the box lower..upper (inclusive) in which there are voxels that the closed
    /// triangle touches; z outermost. Cost: proportional to those rows and to the heights of the box.
    template <class Visit> void ForEachRow(const Triple& lower, const Triple& upper, const Visit& visit) const
    {
        const Triple first = Minus(Highest(lower, lower_), lower_);
        const Triple last = Minus(Lowest(upper, upper_), lower_);
        if (isNarrow_)
            Walk(first, last, PlaneOf<std::int64_t>(), visit);
        else
            Walk(first, last, plane_, visit);
    }

private:
    // The inner side of an edge in a projection, moved outwards by a voxel: perFirst * i + perSecond * j + base >= 0, in units
    // (see TriangleConditions.h). The index space is 2 * 10^9 base units wide, so that the product of two distances in it is
    // below 4.1 * 10^18, and the difference of two such products fits 64 bits.
    struct Edge
    {
        std::int64_t At(std::int64_t i, std::int64_t j) const { return perFirst * i + perSecond * j + base; }

        std::int64_t perFirst, perSecond, base;
    };
    using Edges = std::array<Edge, 3>;

    // The triangle's plane passes the voxel p where 0 <= highest + step * p <= thickness.
    template <class Number> struct Plane
    {
        Number At(std::int64_t x, std::int64_t y, std::int64_t z) const
        {
            return highest + step[0] * x + step[1] * y + step[2] * z;
        }

        std::array<Number, 3> step;
        Number highest, thickness;
    };

    Edges EdgesAcross(std::size_t first, std::size_t second, const LatticeTriangle& corners) const;
    void MakePlane(const LatticeTriangle& corners);

    template <class Number> Plane<Number> PlaneOf() const
    {
        return {{static_cast<Number>(plane_.step[0]), static_cast<Number>(plane_.step[1]), static_cast<Number>(plane_.step[2])},
                static_cast<Number>(plane_.highest),
                static_cast<Number>(plane_.thickness)};
    }

    template <class Number, class Visit>
    void Walk(const Triple& first, const Triple& last, const Plane<Number>& plane, const Visit& visit) const
    {
        for (std::int64_t z = first[2]; z <= last[2]; ++z) {
            VoxelRun columns{first[0], last[0]};
            for (const Edge& edge : xz_) columns.KeepWhereNotNegative(edge.At(columns.first, z), edge.perFirst);
            VoxelRun rows{first[1], last[1]};
            for (const Edge& edge : zy_) rows.KeepWhereNotNegative(edge.At(z, rows.first), edge.perSecond);
            KeepReached(rows, columns, z, plane);
            const bool areWhole = AreWhole(rows, columns, z, plane);
            for (std::int64_t y = rows.first; y <= rows.last; ++y) {
                const VoxelRun run = areWhole ? columns : RunOf(y, columns, z, plane);
                if (run.IsEmpty()) continue;
                visit(y + lower_[1], z + lower_[2], VoxelRun{run.first + lower_[0], run.last + lower_[0]});
            }
        }
    }

    template <class Number>
    VoxelRun RunOf(std::int64_t y, const VoxelRun& columns, std::int64_t z, const Plane<Number>& plane) const
    {
        VoxelRun run = columns;
        for (const Edge& edge : xy_) run.KeepWhereNotNegative(edge.At(run.first, y), edge.perFirst);
        run.KeepWhereNotNegative(plane.At(run.first, y, z), plane.step[0]);
        run.KeepWhereNotNegative(plane.thickness - plane.At(run.first, y, z), -plane.step[0]);
        return run;
    }

    // Whether all of these voxels are touched, as they mostly are within a wall or floor: a linear number is least in a corner.
    template <class Number>
    bool AreWhole(const VoxelRun& rows, const VoxelRun& columns, std::int64_t z, const Plane<Number>& plane) const
    {
        if (rows.IsEmpty()) return false;
        const auto isInside = [&](std::int64_t x, std::int64_t y) {
            const Number number = plane.At(x, y, z);
            return number >= 0 && number <= plane.thickness &&
                   std::all_of(xy_.begin(), xy_.end(), [&](const Edge& edge) { return edge.At(x, y) >= 0; });
        };
        return isInside(columns.first, rows.first) && isInside(columns.last, rows.last) && isInside(columns.last, rows.first) &&
               isInside(columns.first, rows.last);
    }

    // Drops rows that have no voxel in these columns, which only happens where the box cuts the triangle: each condition is asked
    // for the column that meets it best.
    template <class Number>
    void KeepReached(VoxelRun& rows, const VoxelRun& columns, std::int64_t z, const Plane<Number>& plane) const
    {
        if (columns.IsEmpty()) rows.last = rows.first - 1;
        const auto best = [&](bool isUpper) { return isUpper ? columns.last : columns.first; };
        for (const Edge& edge : xy_) rows.KeepWhereNotNegative(edge.At(best(edge.perFirst > 0), rows.first), edge.perSecond);
        rows.KeepWhereNotNegative(plane.At(best(plane.step[0] > 0), rows.first, z), plane.step[1]);
        rows.KeepWhereNotNegative(plane.thickness - plane.At(best(plane.step[0] < 0), rows.first, z), -plane.step[1]);
    }

    Triple size_;
    std::int64_t unit_;
    Triple lower_, upper_; // the triangle's box in voxels
    Edges xy_, xz_, zy_;
    Plane<WideNumber> plane_;
    bool isNarrow_; // 64 bits hold all numbers of the plane in the box
};

} // namespace brix
