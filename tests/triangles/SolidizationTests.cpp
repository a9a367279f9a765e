// The rectangles of a model's surface against their definition, face by face, and the laws of closed surfaces.
#include "triangles/Solidization.h"

#include "operations/SolidOperations.h"
#include "support/RandomModels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <tuple>

namespace brix {

std::ostream& operator<<(std::ostream& output, const VoxelRectangle& rectangle)
{
    output << (rectangle.side == Side::Upper ? "+" : "-") << "xyz"[static_cast<std::size_t>(rectangle.axis)] << " ";
    for (std::size_t i = 0; i < 3; ++i) output << rectangle.lower[i] << ".." << rectangle.upper[i] << " ";
    return output;
}

namespace {

using namespace tests;
using Rectangles = std::vector<VoxelRectangle>;

const Axes PlainAxes(40000, {0, 0, 0}, 0, 0);

Triple Unit(std::size_t axis, std::int64_t length = 1)
{
    Triple step{};
    step[axis] = length;
    return step;
}

// The faces of a model to one side: those of the voxels for which IsFace holds.
struct Faces
{
    const ReferenceModel& model;
    std::size_t axis;
    Side side;
    std::size_t first = axis == 0 ? 1 : 0;  // rows go along this axis,
    std::size_t second = axis == 2 ? 1 : 2; // and follow each other along this one

    bool IsFace(const Triple& voxel) const
    {
        return model.Value(voxel) && !model.Value(Plus(voxel, Unit(axis, side == Side::Upper ? 1 : -1)));
    }

    // Whether there is a run of just so many faces from a voxel on.
    bool HasRun(const Triple& voxel, std::int64_t length) const
    {
        if (IsFace(Minus(voxel, Unit(first))) || IsFace(Plus(voxel, Unit(first, length)))) return false;
        for (std::int64_t i = 0; i < length; ++i) {
            if (!IsFace(Plus(voxel, Unit(first, i)))) return false;
        }
        return true;
    }

    void AddRectangles(Rectangles& rectangles) const
    {
        const std::size_t start = rectangles.size();
        model.ForEachVoxel([&](const Triple& voxel) {
            if (!IsFace(voxel) || IsFace(Minus(voxel, Unit(first)))) return;
            std::int64_t length = 1;
            while (IsFace(Plus(voxel, Unit(first, length)))) ++length;
            if (HasRun(Minus(voxel, Unit(second)), length)) return;
            std::int64_t rows = 1;
            while (HasRun(Plus(voxel, Unit(second, rows)), length)) ++rows;
            const Triple lower = Plus(voxel, Unit(axis, side == Side::Upper ? 1 : 0));
            const Triple upper = Plus(lower, Plus(Unit(first, length), Unit(second, rows)));
            rectangles.push_back({static_cast<Axis>(axis), side, lower, upper});
        });
        std::sort(rectangles.begin() + static_cast<std::ptrdiff_t>(start), rectangles.end(), [&](const auto& a, const auto& b) {
            const auto order = [&](const auto& r) { return std::tuple(r.lower[axis], r.lower[2], r.lower[1], r.lower[0]); };
            return order(a) < order(b);
        });
    }
};

Rectangles RectanglesOf(const ReferenceModel& model)
{
    Rectangles rectangles;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        for (const Side side : {Side::Lower, Side::Upper}) Faces{model, axis, side}.AddRectangles(rectangles);
    }
    return rectangles;
}

TEST(Solidization, MergesTheFacesOfEachPlaneAndSide)
{
    for (const RandomModel& random : RandomModels(1700, 150)) {
        for (const ReferenceModel& level : random.reference.AllLevels()) {
            ASSERT_EQ(SolidizeVoxelModel(random.voxels, level.VoxelLOD()), RectanglesOf(level)) << random;
        }
    }
}

std::array<double, 3> Difference(const std::array<double, 3>& a, const std::array<double, 3>& b)
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

double Dot(const std::array<double, 3>& a, const std::array<double, 3>& b) { return a[0] * b[0] + a[1] * b[1] + a[2] * b[2]; }

std::array<double, 3> Cross(const std::array<double, 3>& a, const std::array<double, 3>& b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

// In world units, so that frames of all kinds are tested: by Gauss, a third of the sum of the flows of (x, y, z) through the
// surface is the volume inside it, if all corners turn the right way.
TEST(Solidization, EnclosesTheFilledVoxelsWithOutwardCorners)
{
    for (const RandomModel& random : RandomModels(1900, 100)) {
        const std::int64_t lod = random.voxels.FinestLOD();
        const Axes& axes = random.voxels.AxesRef();
        const std::array<double, 3> origin =
            axes.ToWorldCoordinates(axes.VoxelCorner(random.reference.ExtentsRef().LowerIndices(), lod));
        const double width = axes.WorldVoxelWidth(lod);
        const double height = axes.WorldVoxelHeight();
        double volume = 0;
        double size = 0;
        double area = 0;
        for (const VoxelRectangle& rectangle : SolidizeVoxelModel(random.voxels, lod)) {
            const auto corners = ToWorldRectangle(rectangle, axes, lod);
            const auto normal = Cross(Difference(corners[1], corners[0]), Difference(corners[3], corners[0]));
            const double flow = Dot(normal, Difference(corners[2], origin)) / 3;
            volume += flow;
            size += std::abs(flow);
            area += std::sqrt(Dot(normal, normal));
            EXPECT_NEAR(Dot(Difference(corners[2], corners[1]), Difference(corners[1], corners[0])), 0, 1e-9 * std::abs(size));
        }
        double faces = 0;
        random.reference.ForEachVoxel([&](const Triple& voxel) {
            for (std::size_t axis = 0; axis < 3; ++axis) {
                for (const Side side : {Side::Lower, Side::Upper}) {
                    if (Faces{random.reference, axis, side}.IsFace(voxel)) faces += width * (axis == 2 ? width : height);
                }
            }
        });
        const double expected = static_cast<double>(random.reference.CountFilled()) * width * width * height;
        EXPECT_NEAR(volume, expected, 1e-9 * size) << random;
        EXPECT_NEAR(area, faces, 1e-9 * faces) << random;
    }
}

TEST(Solidization, MakesSixRectanglesOfAThousandMillionVoxels)
{
    const Extents extents(PlainAxes, {-500, -123, -400}, {499, 876, 599}, 5);
    const Triple low{-500, -123, -400};
    const Triple high{500, 877, 600};
    const Rectangles expected{{Axis::X, Side::Lower, low, {-500, 877, 600}}, {Axis::X, Side::Upper, {500, -123, -400}, high},
                              {Axis::Y, Side::Lower, low, {500, -123, 600}}, {Axis::Y, Side::Upper, {-500, 877, -400}, high},
                              {Axis::Z, Side::Lower, low, {500, 877, -400}}, {Axis::Z, Side::Upper, {-500, -123, 600}, high}};
    EXPECT_EQ(SolidizeVoxelModel(Invert(VoxelModel<bool>(extents, 5)), 5), expected);
}

} // namespace
} // namespace brix
