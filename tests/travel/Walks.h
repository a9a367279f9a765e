// What walking means, written from the definitions and voxel by voxel: steps, what they reach, lines of sight and shortest ways in
// plans, where the shortest way bends at centres of voxels only.
#pragma once

#include "support/ReferenceModel.h"
#include "travel/PathModel.h"

#include <cmath>
#include <limits>
#include <map>
#include <set>
#include <string>

namespace brix::tests {

inline constexpr std::int64_t NoLimit = std::numeric_limits<std::int64_t>::max();

/// The ground that one can stand on.
struct Ground
{
    explicit Ground(const PathModel& path) : model(path.TraversableVoxels(), path.VoxelLOD())
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

    /// In a plan: whether the line between two centres crosses the inside of no blocked square, and passes no corner where blocked
    /// squares meet on both sides.
    bool Sees(const Triple& a, const Triple& b) const
    {
        const Triple lower = Lowest(a, b);
        const Triple upper = Highest(a, b);
        const auto side = [&](std::int64_t x, std::int64_t y) { // of a point in half voxels
            return (b[0] - a[0]) * (y - 2 * a[1]) - (b[1] - a[1]) * (x - 2 * a[0]);
        };
        for (std::int64_t y = lower[1]; y <= upper[1]; ++y) {
            for (std::int64_t x = lower[0]; x <= upper[0]; ++x) {
                const bool isFree = model.Value({x, y, a[2]});
                const std::array corners{side(2 * x - 1, 2 * y - 1), side(2 * x + 1, 2 * y - 1), side(2 * x - 1, 2 * y + 1),
                                         side(2 * x + 1, 2 * y + 1)};
                const auto [least, most] = std::minmax_element(corners.begin(), corners.end());
                if (!isFree && *least < 0 && *most > 0) return false;
                if (x == upper[0] || y == upper[1] || corners[3] != 0) continue;
                const bool rises = (b[0] > a[0]) == (b[1] > a[1]);
                const Triple one{rises ? x + 1 : x, y, a[2]};
                const Triple other{rises ? x : x + 1, y + 1, a[2]};
                if (!model.Value(one) && !model.Value(other)) return false;
            }
        }
        return true;
    }

    /// In a plan: the lengths of the shortest ways, in voxels; by a visibility graph of all voxels.
    std::map<Triple, double> ShortestWays(const Triple& from) const
    {
        std::map<Triple, double> settled;
        std::map<Triple, double> open{{from, 0}};
        while (!open.empty()) {
            const auto next = std::min_element(open.begin(), open.end(), [](auto& a, auto& b) { return a.second < b.second; });
            const auto [voxel, distance] = *next;
            settled.insert(*next);
            open.erase(next);
            for (const Triple& to : voxels) {
                if (settled.count(to) != 0) continue;
                const double length = distance + std::hypot(to[0] - voxel[0], to[1] - voxel[1]);
                const auto known = open.find(to);
                if ((known == open.end() || length < known->second) && Sees(voxel, to)) open[to] = length;
            }
        }
        return settled;
    }

    ReferenceModel model;
    std::vector<Triple> voxels;
};

/// A plan of one layer from a drawing: rows from the highest y down, parted by white space, # solid; its lower corner is voxel (0, 0, 0).
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

} // namespace brix::tests
