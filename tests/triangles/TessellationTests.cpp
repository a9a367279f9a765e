// The emitted boxes against the filled voxels that they must cover.
#include "triangles/Tessellation.h"

#include "support/Messages.h"
#include "support/Picture.h"
#include "support/RandomModels.h"

#include <gtest/gtest.h>

#include <limits>

namespace brix {
namespace {

using namespace tests;

const Axes PlainAxes(40000, {0, 0, 0}, 0, 0);

struct VoxelBox
{
    Triple lower; // inclusive
    Triple upper; // exclusive
    bool operator==(const VoxelBox&) const = default;
};

std::ostream& operator<<(std::ostream& output, const VoxelBox& box)
{
    for (const auto& [lower, upper] : {std::pair(box.lower, box.upper)}) {
        output << "(" << lower[0] << ", " << lower[1] << ", " << lower[2] << ")..(" << upper[0] << ", " << upper[1] << ", "
               << upper[2] << ")";
    }
    return output;
}

// The twelve triangles of a box in the order of faces: lower z, x and y, then upper z, x and y.
std::vector<WorldTriangle> TrianglesOf(const VoxelBox& box, const Axes& axes, std::int64_t lod)
{
    const Triple low = axes.VoxelCorner(box.lower, lod);
    const Triple high = axes.VoxelCorner(box.upper, lod);
    const auto at = [&](std::int64_t x, std::int64_t y, std::int64_t z) {
        return axes.ToWorldCoordinates({x ? high[0] : low[0], y ? high[1] : low[1], z ? high[2] : low[2]});
    };
    return {{at(0, 0, 0), at(0, 1, 0), at(1, 0, 0)}, {at(1, 0, 0), at(0, 1, 0), at(1, 1, 0)},
            {at(0, 0, 0), at(0, 0, 1), at(0, 1, 0)}, {at(0, 1, 0), at(0, 0, 1), at(0, 1, 1)},
            {at(0, 0, 0), at(1, 0, 0), at(0, 0, 1)}, {at(0, 0, 1), at(1, 0, 0), at(1, 0, 1)},
            {at(0, 0, 1), at(1, 0, 1), at(0, 1, 1)}, {at(0, 1, 1), at(1, 0, 1), at(1, 1, 1)},
            {at(1, 0, 0), at(1, 1, 0), at(1, 0, 1)}, {at(1, 0, 1), at(1, 1, 0), at(1, 1, 1)},
            {at(0, 1, 0), at(0, 1, 1), at(1, 1, 0)}, {at(1, 1, 0), at(0, 1, 1), at(1, 1, 1)}};
}

// The voxel whose corner is nearest to a world point.
Triple NearestVoxel(const std::array<double, 3>& world, const Axes& axes, std::int64_t lod)
{
    const Triple half = axes.VoxelCenter({0, 0, 0}, lod);
    return axes.ContainingVoxel(Plus(axes.FromWorldCoordinates(world), half), lod);
}

// The boxes of a model, each of which must have exactly its twelve triangles.
std::vector<VoxelBox> Boxes(const VoxelModel<bool>& model, std::int64_t lod)
{
    std::vector<WorldTriangle> triangles;
    TessellateVoxelModel(triangles, model, lod);
    EXPECT_EQ(triangles.size() % 12, 0U);
    std::vector<VoxelBox> boxes;
    for (auto first = triangles.begin(); first != triangles.end(); first += 12) {
        boxes.push_back({NearestVoxel(first[0][0], model.AxesRef(), lod), NearestVoxel(first[11][2], model.AxesRef(), lod)});
        EXPECT_EQ(std::vector<WorldTriangle>(first, first + 12), TrianglesOf(boxes.back(), model.AxesRef(), lod));
    }
    return boxes;
}

TEST(Tessellation, CoversEveryFilledVoxelExactlyOnceInOrder)
{
    for (const RandomModel& random : RandomModels(1, 100)) {
        for (const ReferenceModel& level : random.reference.AllLevels()) {
            ReferenceModel covered = level.Where([](const Triple&) { return false; });
            const std::vector<VoxelBox> boxes = Boxes(random.voxels, level.VoxelLOD());
            std::int64_t volume = 0;
            for (std::size_t i = 0; i < boxes.size(); ++i) {
                const Triple last = Minus(boxes[i].upper, {1, 1, 1});
                ForEachTriple(boxes[i].lower, last, [&](const Triple& voxel) {
                    covered.Set(voxel);
                    ++volume;
                });
                if (i > 0) {
                    ASSERT_LT(OrderOf(boxes[i - 1].lower, level.VoxelLOD()), OrderOf(boxes[i].lower, level.VoxelLOD())) << random;
                }
            }
            ASSERT_EQ(volume, level.CountFilled()) << "boxes overlap or leave the extents; " << random;
            ASSERT_EQ(Differences(covered, level), "") << random;
        }
    }
}

// The boxes of one stack with the same plate from height 3 to 5.
std::vector<VoxelBox> BoxesOfPlate(std::string_view drawing)
{
    ReferenceModel reference(Extents(PlainAxes, {0, 0, 0}, {15, 15, 63}, 0), 0, 0);
    const VoxelPlate<bool> plate = Picture(drawing);
    return Boxes(MakeModel(reference.Where([&](const Triple& voxel) {
                     return plate.Value({voxel[0], voxel[1]}) && 3 <= voxel[2] && voxel[2] <= 5;
                 })),
                 0);
}

TEST(Tessellation, MergesLayersThenRowsThenColumns)
{
    using Expected = std::vector<VoxelBox>;
    EXPECT_EQ(BoxesOfPlate("................ ##.#"), (Expected{{{0, 1, 3}, {2, 2, 6}}, {{3, 1, 3}, {4, 2, 6}}}));
    EXPECT_EQ(BoxesOfPlate("................ ................ ................ .##..#.......... .##..#.......... .###"),
              (Expected{{{1, 3, 3}, {3, 5, 6}}, {{5, 3, 3}, {6, 5, 6}}, {{1, 5, 3}, {4, 6, 6}}}))
        << "rows with another mask are a band of their own, even where they lie beside filled voxels";
    EXPECT_EQ(BoxesOfPlate("################ ..............## ..............##"),
              (Expected{{{0, 0, 3}, {16, 1, 6}}, {{14, 1, 3}, {16, 3, 6}}}));
    EXPECT_EQ(BoxesOfPlate(""), Expected{});

    ReferenceModel full(Extents(PlainAxes, {-16, 0, 0}, {15, 15, 63}, 0), 0, 0);
    EXPECT_EQ(Boxes(MakeModel(full.Where([](const Triple& voxel) { return voxel[0] >= 0; })), 0),
              (Expected{{{0, 0, 0}, {16, 16, 64}}}));
    EXPECT_EQ(Boxes(MakeModel(full.Where([](const Triple& voxel) {
                        return voxel == Triple{-1, 2, 3} || voxel == Triple{0, 2, 3};
                    })),
                    0),
              (Expected{{{-1, 2, 3}, {0, 3, 4}}, {{0, 2, 3}, {1, 3, 4}}}))
        << "neighbours in two stacks stay two boxes";
}

TEST(Tessellation, EmitsTheFacesOfASingleVoxelInOrderAndFacingOutwards)
{
    for (const Axes& axes : {Axes(1, {5, 6, 7}, 0, 2), Axes(0.5, {-3, 10, 0}, 30, 5)}) {
        ReferenceModel reference(Extents(axes, {-3, 7, -2}, {-3, 7, -2}, 1), 1, 1);
        std::vector<WorldTriangle> triangles;
        TessellateVoxelModel(triangles, MakeModel(reference.Where([](const Triple&) { return true; })), 1);
        ASSERT_EQ(triangles, TrianglesOf({{-3, 7, -2}, {-2, 8, -1}}, axes, 1));

        const std::array<double, 3> center = axes.ToWorldCoordinates(axes.VoxelCenter({-3, 7, -2}, 1));
        for (const WorldTriangle& triangle : triangles) {
            const std::array<double, 3> normal = WorldTriangleNormal(triangle);
            double outwards = 0;
            for (std::size_t i = 0; i < 3; ++i) outwards += normal[i] * (triangle[0][i] - center[i]);
            EXPECT_GT(outwards, 0);
        }
    }
}

TEST(Tessellation, AppendsToTheListOrLeavesItAlone)
{
    const VoxelModel<bool> empty(Extents(PlainAxes, {0, 0, 0}, {3, 3, 3}, 0), 2);
    const WorldTriangle present{{{1, 2, 3}, {4, 5, 6}, {7, 8, 9}}};
    std::vector<WorldTriangle> triangles{present};
    EXPECT_THROW(TessellateVoxelModel(triangles, empty, 3), std::domain_error);
    TessellateVoxelModel(triangles, empty, 2);
    EXPECT_EQ(triangles, std::vector<WorldTriangle>{present});
    ReferenceModel one(Extents(PlainAxes, {0, 0, 0}, {0, 0, 0}, 0), 0, 0);
    one.Set({0, 0, 0});
    TessellateVoxelModel(triangles, MakeModel(one), 0);
    EXPECT_EQ(triangles.size(), 13U);
    EXPECT_EQ(triangles.front(), present);
}

} // namespace
} // namespace brix
