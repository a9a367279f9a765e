// Nearest-voxel searches against a look at every voxel.
#include "operations/BasicOperations.h"
#include "operations/ProximityOperations.h"
#include "operations/SolidOperations.h"
#include "operations/SurfaceOperations.h"
#include "support/Messages.h"
#include "support/RandomModels.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>

namespace brix {
namespace {

using namespace tests;

constexpr std::int64_t Lowest64 = std::numeric_limits<std::int64_t>::min();
constexpr std::int64_t Highest64 = std::numeric_limits<std::int64_t>::max();

using Search = ConstVoxelIterator (*)(const VoxelModel<bool>&, const Triple&, long long, long long);
constexpr std::array<Search, 3> Searches{NearestFilledAlongX, NearestFilledAlongY, NearestFilledAlongZ};

std::optional<Triple> Place(const ConstVoxelIterator& found)
{
    return found.IsValid() ? std::optional(found.VoxelIndices()) : std::nullopt;
}

// The best filled voxel of a line: of those within the offsets the one with the nearest centre, then the lower one; but the
// point's own voxel before all others.
std::optional<Triple> PlainNearestAlong(const ReferenceModel& model, std::size_t axis, const Triple& point,
                                        std::int64_t lowerOffset, std::int64_t upperOffset)
{
    const Triple own = model.AxesRef().ContainingVoxel(point, model.VoxelLOD());
    if (model.Value(own)) return own;
    std::optional<Triple> nearest;
    std::int64_t leastDistance = Highest64;
    Triple voxel = own;
    for (voxel[axis] = own[axis] - lowerOffset; voxel[axis] <= own[axis] + upperOffset; ++voxel[axis]) {
        const std::int64_t distance = std::abs(model.AxesRef().VoxelCenter(voxel, model.VoxelLOD())[axis] - point[axis]);
        if (!model.Value(voxel) || distance >= leastDistance) continue;
        leastDistance = distance;
        nearest = voxel;
    }
    return nearest;
}

// A point of base units in or near a model, often on a border or in the middle of a voxel, where distances are equal.
Triple RandomPoint(Random& random, const ReferenceModel& model)
{
    const Triple size = model.AxesRef().VoxelSize(model.VoxelLOD());
    Triple point{};
    for (std::size_t i = 0; i < 3; ++i) {
        const std::int64_t margin = random.OneIn(4) ? 3 : 0;
        const std::int64_t voxel =
            random.Between(model.ExtentsRef().LowerIndices()[i] - margin, model.ExtentsRef().UpperIndices()[i] + margin);
        const std::array<std::int64_t, 4> offsets{0, size[i] / 2, size[i] - 1, random.Between(0, size[i] - 1)};
        point[i] = voxel * size[i] + offsets[static_cast<std::size_t>(random.Between(0, 3))];
    }
    return point;
}

TEST(NearestFilledAlong, FindsWhatALookAtEveryVoxelFinds)
{
    std::int64_t found = 0;
    for (const RandomModel& model : RandomModels(3000, 300)) {
        Random random(model.seed);
        for (int i = 0; i < 30; ++i) {
            const Triple point = RandomPoint(random, model.reference);
            for (std::size_t axis = 0; axis < 3; ++axis) {
                const std::int64_t lower = random.Between(0, random.OneIn(2) ? 3 : 80);
                const std::int64_t upper = random.Between(0, random.OneIn(2) ? 3 : 80);
                const ConstVoxelIterator nearest = Searches[axis](model.voxels, point, lower, upper);
                ASSERT_EQ(Place(nearest), PlainNearestAlong(model.reference, axis, point, lower, upper))
                    << model << ", axis " << axis << ", point " << point[0] << " " << point[1] << " " << point[2] << ", offsets "
                    << lower << " " << upper;
                ASSERT_EQ(&nearest.VoxelModelRef(), &model.voxels);
                ASSERT_EQ(nearest.VoxelLOD(), model.voxels.FinestLOD());
                found += nearest.IsValid();
            }
        }
    }
    EXPECT_GT(found, 5000) << "of 27000 searches";
}

// The definition in whole models: grow the point's voxel, cut it out of the source, scan what is left.
std::optional<Triple> PlainNearestHorizontally(const VoxelModel<bool>& model, const Triple& point, int diameter)
{
    const std::int64_t lod = model.FinestLOD();
    const Triple own = model.AxesRef().ContainingVoxel(point, lod);
    const Extents& bounds = model.ExtentsRef(lod);
    if (!bounds.ContainsVoxel(own)) return std::nullopt;
    const std::int64_t reach = (diameter - 1) / 2;
    ReferenceModel seed(Extents(model.AxesRef(), Minus(own, {reach, reach, 0}), Plus(own, {reach, reach, 0}), lod), lod, lod);
    seed.Set(own);
    const VoxelModel<bool> disc = Resize(ExpandHorizontally(MakeModel(seed), diameter, std::nullopt, false), bounds);
    const ReferenceModel area(Intersect({&disc, &model}, lod, false), lod);
    if (area.Value(own)) return own;

    std::optional<Triple> nearest;
    std::int64_t leastSquare = Highest64;
    area.ForEachVoxel([&](const Triple& voxel) { // y and x ascending; all filled ones are at one height
        if (!area.Value(voxel)) return;
        const Triple distance = Minus(model.AxesRef().VoxelCenter(voxel, lod), point);
        const std::int64_t square = distance[0] * distance[0] + distance[1] * distance[1];
        if (square >= leastSquare) return;
        leastSquare = square;
        nearest = voxel;
    });
    return nearest;
}

TEST(NearestFilledHorizontally, FindsWhatAScanOfTheGrownVoxelFinds)
{
    std::int64_t found = 0;
    for (const RandomModel& model : RandomModels(4000, 150)) {
        Random random(model.seed);
        for (int i = 0; i < 8; ++i) {
            const Triple point = RandomPoint(random, model.reference);
            const auto diameter = static_cast<int>(random.Between(1, random.OneIn(2) ? 8 : 70));
            const std::optional<Triple> nearest = Place(NearestFilledHorizontally(model.voxels, point, diameter));
            ASSERT_EQ(nearest, PlainNearestHorizontally(model.voxels, point, diameter))
                << model << ", point " << point[0] << " " << point[1] << " " << point[2] << ", diameter " << diameter;
            found += nearest.has_value();
        }
    }
    EXPECT_GT(found, 300) << "of 1200 searches";
}

// Points and sizes at the limits of their types, and a model in a corner of the index space, where the disc leaves it.
TEST(NearestFilled, AcceptsAnyNumbers)
{
    const Axes axes(1, {0, 0, 0}, 0, 0);
    for (const Triple& corner : {Triple{-25000, -25000, -10000}, Triple{24990, 24990, 9990}, Triple{-5, -5, -5}}) {
        ReferenceModel reference(Extents(axes, corner, Plus(corner, {9, 9, 9}), 0), 0, 0);
        const Triple filled = Plus(corner, {3, 6, 9});
        reference.Set(filled);
        const VoxelModel<bool> model = MakeModel(reference);
        for (const std::int64_t x : {Lowest64, axes.VoxelCenter(filled, 0)[0], Highest64}) {
            for (const std::int64_t y : {Lowest64, axes.VoxelCenter(corner, 0)[1], Highest64}) {
                for (const std::int64_t z : {Lowest64, axes.VoxelCenter(filled, 0)[2], Highest64}) {
                    const auto isExtreme = [](std::int64_t value) { return value == Lowest64 || value == Highest64; };
                    const auto isFound = [&](const ConstVoxelIterator& found) { return Place(found) == filled; };
                    for (const long long size :
                         {1LL, 20LL, 1LL << 31, 1LL << 32, 1LL << 62, std::numeric_limits<long long>::max()}) {
                        const bool isInside = !isExtreme(x) && !isExtreme(y) && !isExtreme(z);
                        EXPECT_EQ(isFound(NearestFilledHorizontally(model, {x, y, z}, size)), isInside && size > 1) << size;
                        const bool reaches = size >= 1LL << 62 || (size > 1 && !isExtreme(y));
                        EXPECT_EQ(isFound(NearestFilledAlongY(model, {x, y, z}, size, size)),
                                  !isExtreme(x) && !isExtreme(z) && reaches)
                            << size;
                        EXPECT_FALSE(NearestFilledAlongX(model, {x, y, z}, size, size).IsValid()) << "beside the line";
                        EXPECT_FALSE(NearestFilledAlongZ(model, {x, y, z}, size, size).IsValid());
                    }
                }
            }
        }
    }
}

TEST(NearestFilled, RejectsNegativeOffsetsAndDiametersBelowOne)
{
    const VoxelModel<bool> model(Extents(Axes(1, {0, 0, 0}, 0, 0), {0, 0, 0}, {3, 3, 3}, 2), 2);
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const auto message = [&](long long lower, long long upper) {
            return MessageOf([&] { Searches[axis](model, {0, 0, 0}, lower, upper); });
        };
        const auto sentence = [&](const char* side, const char* value) {
            return std::string("The number of voxels to search on the ") + side + " " + "XYZ"[axis] +
                   " side cannot be negative. The value encountered was " + value + ".";
        };
        EXPECT_EQ(message(-1, Lowest64), sentence("lower", "-1"));
        EXPECT_EQ(message(0, Lowest64), sentence("upper", "-9223372036854775808"));
        EXPECT_EQ(message(0, 0), "(nothing was thrown)");
    }
    const auto message = [&](long long diameter) {
        return MessageOf([&] { NearestFilledHorizontally(model, {Lowest64, 0, 0}, diameter); });
    };
    EXPECT_EQ(message(0), "The approximate diameter of the search area cannot be less than 1. The value encountered was 0.");
    EXPECT_EQ(message(-7), "The approximate diameter of the search area cannot be less than 1. The value encountered was -7.");
    EXPECT_EQ(message(1), "(nothing was thrown)");
}

} // namespace
} // namespace brix
