#include "ConversionBaselines.h"

#include <map>
#include <tuple>

namespace brix::benchmarks {
namespace {

using Label = std::uint32_t;

Label RootOf(std::vector<Label>& parents, Label label)
{
    while (parents[label] != label) {
        parents[label] = parents[parents[label]];
        label = parents[label];
    }
    return label;
}

// Calls visit(x, y, z) for every voxel, counted from the lower corner: z, y, x.
template <class Visit> void ForEachVoxel(const DenseWords& voxels, const Visit& visit)
{
    for (std::int64_t row = 0; row < voxels.RowCount(); ++row) {
        const std::uint64_t* words = voxels.words.data() + row * voxels.wordsPerRow;
        for (std::int64_t i = 0; i < voxels.wordsPerRow; ++i) {
            for (std::uint64_t word = words[i]; word != 0; word &= word - 1) {
                visit(64 * i + std::countr_zero(word), row % voxels.size[1], row / voxels.size[1]);
            }
        }
    }
}

struct Run
{
    std::int64_t lower, end; // end exclusive

    bool operator==(const Run&) const = default;
};

// Runs that are equal in consecutive rows, merged. emit(run, lower row, end row).
class RowMerger
{
public:
    template <class Emit> void AddRow(std::int64_t row, const std::vector<Run>& runs, const Emit& emit)
    {
        next_.clear();
        auto open = open_.begin();
        for (const Run& run : runs) {
            for (; open != open_.end() && open->first.lower < run.lower; ++open) emit(open->first, open->second, row);
            if (open != open_.end() && open->first == run)
                next_.push_back(*open++);
            else
                next_.push_back({run, row});
        }
        for (; open != open_.end(); ++open) emit(open->first, open->second, row);
        open_.swap(next_);
    }

private:
    std::vector<std::pair<Run, std::int64_t>> open_; // with their lower rows
    std::vector<std::pair<Run, std::int64_t>> next_;
};

void ReadRuns(const DenseWords& voxels, std::int64_t y, std::int64_t z, std::vector<Run>& runs)
{
    runs.clear();
    const std::uint64_t* words = voxels.Row(y, z);
    for (std::int64_t i = 0; i < voxels.wordsPerRow; ++i) {
        for (std::uint64_t word = words[i]; word != 0;) {
            const int first = std::countr_zero(word);
            const int end = first + std::countr_one(word >> first);
            if (first == 0 && !runs.empty() && runs.back().end == 64 * i)
                runs.back().end = 64 * i + end;
            else
                runs.push_back({64 * i + first, 64 * i + end});
            word = end == 64 ? 0 : word >> end << end;
        }
    }
}

// The faces of one plane of one side.
class Plane
{
public:
    Plane(const DenseWords& voxels, std::size_t axis, Side side) : voxels_(voxels), axis_(axis), side_(side) {}

    void AddRectangles(std::int64_t level, std::vector<VoxelRectangle>& rectangles)
    {
        const std::size_t first = axis_ == 0 ? 1 : 0;
        const std::size_t second = axis_ == 2 ? 1 : 2;
        const std::int64_t plane = level + (side_ == Side::Upper ? 1 : 0);
        RowMerger merger;
        const auto emit = [&](const Run& run, std::int64_t lowerRow, std::int64_t endRow) {
            VoxelRectangle rectangle{static_cast<Axis>(axis_), side_, {}, {}};
            const auto set = [&](std::size_t axis, std::int64_t lower, std::int64_t upper) {
                rectangle.lower[axis] = voxels_.lower[axis] + lower;
                rectangle.upper[axis] = voxels_.lower[axis] + upper;
            };
            set(axis_, plane, plane);
            set(first, run.lower, run.end);
            set(second, lowerRow, endRow);
            rectangles.push_back(rectangle);
        };
        for (std::int64_t row = 0; row <= voxels_.size[second]; ++row) {
            runs_.clear();
            for (std::int64_t cell = 0; row < voxels_.size[second] && cell < voxels_.size[first]; ++cell) {
                Triple voxel{};
                voxel[axis_] = level;
                voxel[first] = cell;
                voxel[second] = row;
                if (!IsFace(voxel)) continue;
                if (!runs_.empty() && runs_.back().end == cell)
                    ++runs_.back().end;
                else
                    runs_.push_back({cell, cell + 1});
            }
            merger.AddRow(row, runs_, emit);
        }
    }

private:
    bool IsFace(Triple voxel) const
    {
        if (!voxels_.IsSet(voxel)) return false;
        voxel[axis_] += side_ == Side::Upper ? 1 : -1;
        return voxel[axis_] < 0 || voxel[axis_] >= voxels_.size[axis_] || !voxels_.IsSet(voxel);
    }

    const DenseWords& voxels_;
    std::size_t axis_;
    Side side_;
    std::vector<Run> runs_;
};

} // namespace

std::vector<std::int64_t> RegionSizesDensely(const DenseWords& voxels)
{
    const std::int64_t stepY = voxels.size[0];
    const std::int64_t stepZ = voxels.size[0] * voxels.size[1];
    std::vector<Label> labels(static_cast<std::size_t>(stepZ * voxels.size[2])); // 0 where nothing is filled
    std::vector<Label> parents{0};
    ForEachVoxel(voxels, [&](std::int64_t x, std::int64_t y, std::int64_t z) {
        const std::int64_t place = z * stepZ + y * stepY + x;
        Label& label = labels[static_cast<std::size_t>(place)];
        const auto join = [&](bool isInside, std::int64_t step) {
            const Label other = isInside ? labels[static_cast<std::size_t>(place - step)] : 0;
            if (other == 0 || other == label) return;
            const Label root = RootOf(parents, other);
            if (label != 0) {
                const Label mine = RootOf(parents, label);
                parents[std::max(mine, root)] = std::min(mine, root);
            }
            label = root;
        };
        join(x > 0, 1);
        join(y > 0, stepY);
        join(z > 0, stepZ);
        if (label != 0) return;
        label = static_cast<Label>(parents.size());
        parents.push_back(label);
    });
    std::vector<std::int64_t> counts(parents.size());
    ForEachVoxel(voxels, [&](std::int64_t x, std::int64_t y, std::int64_t z) {
        ++counts[RootOf(parents, labels[static_cast<std::size_t>(z * stepZ + y * stepY + x)])];
    });
    std::erase(counts, 0);
    return counts;
}

std::vector<VoxelCuboid> CuboidizeDensely(const DenseWords& voxels)
{
    std::vector<VoxelCuboid> cuboids;
    using Rectangle = std::array<std::int64_t, 4>;       // lower and end along x, lower and end along y
    std::map<Rectangle, std::int64_t> open;              // with their lower heights
    std::vector<std::pair<Rectangle, std::int64_t>> now; // of the height at work
    std::vector<Run> runs;
    for (std::int64_t z = 0; z <= voxels.size[2]; ++z) {
        now.clear();
        RowMerger merger;
        for (std::int64_t y = 0; y <= voxels.size[1] && z < voxels.size[2]; ++y) {
            runs.clear();
            if (y < voxels.size[1]) ReadRuns(voxels, y, z, runs);
            merger.AddRow(y, runs, [&](const Run& run, std::int64_t lowerY, std::int64_t endY) {
                const Rectangle rectangle{run.lower, run.end, lowerY, endY};
                const auto found = open.find(rectangle);
                now.push_back({rectangle, found == open.end() ? z : found->second});
                if (found != open.end()) open.erase(found);
            });
        }
        for (const auto& [rectangle, lowerZ] : open) {
            const auto [lowerX, endX, lowerY, endY] = rectangle;
            cuboids.push_back({Plus(voxels.lower, {lowerX, lowerY, lowerZ}), Plus(voxels.lower, {endX - 1, endY - 1, z - 1})});
        }
        open = std::map<Rectangle, std::int64_t>(now.begin(), now.end());
    }
    const auto order = [](const VoxelCuboid& cuboid) { return std::tuple(cuboid.lower[2], cuboid.lower[1], cuboid.lower[0]); };
    std::sort(cuboids.begin(), cuboids.end(), [&](const auto& a, const auto& b) { return order(a) < order(b); });
    return cuboids;
}

std::vector<VoxelRectangle> SolidizeDensely(const DenseWords& voxels)
{
    std::vector<VoxelRectangle> rectangles;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        for (const Side side : {Side::Lower, Side::Upper}) {
            Plane plane(voxels, axis, side);
            for (std::int64_t level = 0; level < voxels.size[axis]; ++level) {
                const auto first = std::ssize(rectangles);
                plane.AddRectangles(level, rectangles);
                std::sort(rectangles.begin() + first, rectangles.end(), [](const auto& a, const auto& b) {
                    return std::tuple(a.lower[2], a.lower[1], a.lower[0]) < std::tuple(b.lower[2], b.lower[1], b.lower[0]);
                });
            }
        }
    }
    return rectangles;
}

} // namespace brix::benchmarks
