// Queries and re-bounding against their voxel-by-voxel definitions, and every sentence that they raise.
#include "operations/BasicOperations.h"

#include "support/Messages.h"
#include "support/RandomCompanions.h"
#include "support/ReferenceOperations.h"

#include <gtest/gtest.h>

#include <limits>

namespace brix {
namespace {

using namespace tests;

constexpr std::int64_t Largest = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t Smallest = std::numeric_limits<std::int64_t>::min();

const Axes Frame(1, {0, 0, 0}, 0, 0);

ReferenceModel EmptyReference(const Triple& lower, const Triple& upper, std::int64_t lod)
{
    return ReferenceModel(Extents(Frame, lower, upper, lod), lod, lod);
}

// Runs one expression on the model and on the reference.
template <class Operation> void ExpectEqual(const RandomModel& model, const Operation& operation)
{
    EXPECT_EQ(Differences(operation(model.voxels), operation(model.reference)), "") << model;
}

RandomModel MakeCase(std::uint64_t seed)
{
    Random random(seed);
    ReferenceModel reference = MakeFirst(random);
    VoxelModel<bool> voxels = MakeModel(reference);
    return {seed, std::move(reference), std::move(voxels)};
}

TEST(Queries, EqualTheVoxelByVoxelDefinition)
{
    int fullModels = 0;
    for (std::uint64_t seed = 1; seed <= 300; ++seed) {
        const RandomModel model = MakeCase(seed);
        for (std::int64_t lod = 0; lod <= model.voxels.FinestLOD(); ++lod) {
            EXPECT_EQ(CountFilled(model.voxels, lod), CountFilled(model.reference, lod)) << model;
            EXPECT_EQ(IsEmpty(model.voxels, lod), IsEmpty(model.reference, lod)) << model;
            EXPECT_EQ(IsFull(model.voxels, lod), IsFull(model.reference, lod)) << model;
            fullModels += IsFull(model.voxels, lod);
        }
    }
    EXPECT_GT(fullModels, 20);
}

TEST(IsFull, NoticesEveryMissingVoxel)
{
    const ReferenceModel full = Invert(EmptyReference({-3, 14, 60}, {1, 17, 65}, 2));
    full.ForEachVoxel([&](const Triple& missing) {
        ReferenceModel holed = full;
        holed.Set(missing, false);
        EXPECT_FALSE(IsFull(MakeModel(holed), 2)) << "(" << missing[0] << ", " << missing[1] << ", " << missing[2] << ")";
    });
    EXPECT_TRUE(IsFull(MakeModel(full), 2));
}

TEST(Rebounding, EqualsTheVoxelByVoxelDefinition)
{
    for (std::uint64_t seed = 1; seed <= 160; ++seed) {
        const RandomModel model = MakeCase(seed);
        Random random(seed);
        Triple less{};
        Triple more{};
        const Extents& extents = model.reference.FinestExtentsRef();
        for (std::size_t i = 0; i < 3; ++i) {
            const std::int64_t size = extents.UpperIndices()[i] - extents.LowerIndices()[i];
            less[i] = random.OneIn(3) ? 0 : random.Between(0, size);
            more[i] = random.Between(0, size - less[i]);
        }
        ExpectEqual(model, [&](const auto& any) { return Crop(any, less[0], more[0], less[1], more[1], less[2], more[2]); });
        ExpectEqual(model, [&](const auto& any) { return Enlarge(any, less[0], more[1], less[2], more[0], less[1], more[2]); });
        ExpectEqual(model, [](const auto& any) { return AutoCrop(any); });
        EXPECT_EQ(Differences(AutoCrop(VoxelModel<bool>(model.voxels)), AutoCrop(model.voxels)), "") << model;
        const Extents other = MakeCompanionExtents(random, extents, AllPlacements[seed % 5]);
        ExpectEqual(model, [&](const auto& any) { return Resize(any, other); });
        EXPECT_EQ(Differences(Resize(VoxelModel<bool>(model.voxels), other), Resize(model.voxels, other)), "") << model;
        const Axes frame = RandomAxes(random);
        ExpectEqual(model, [&](const auto& any) { return Relocate(any, frame); });
        const std::int64_t lod = LevelNear(random, model.voxels.FinestLOD(), 2);
        ExpectEqual(model, [&](const auto& any) { return Refine(any, lod); });
        EXPECT_EQ(Changes(model.voxels, model.reference), "") << "the input has changed: " << model;
    }
}

TEST(BasicOperations, NameTheArgumentThatTheyReject)
{
    const VoxelModel<bool> model = MakeModel(EmptyReference({0, 0, 0}, {3, 3, 3}, 2));
    using Count6 = std::array<std::int64_t, 6>;
    const auto crop = [&](const Count6& n) { return MessageOf([&] { Crop(model, n[0], n[1], n[2], n[3], n[4], n[5]); }); };
    const auto enlarge = [&](const Count6& n) { return MessageOf([&] { Enlarge(model, n[0], n[1], n[2], n[3], n[4], n[5]); }); };
    constexpr std::array sides{"lower X", "upper X", "lower Y", "upper Y", "lower Z", "upper Z"};
    for (std::size_t i = 0; i < 6; ++i) {
        Count6 counts{};
        counts[i] = -static_cast<std::int64_t>(i) - 1;
        for (std::size_t later = i + 1; later < 6; ++later) counts[later] = Smallest;
        const std::string end =
            std::string(sides[i]) + " side cannot be negative. The value encountered was " + std::to_string(counts[i]) + ".";
        EXPECT_EQ(crop(counts), "The number of voxels to crop off the " + end);
        EXPECT_EQ(enlarge(counts), "The number of voxels to add to the " + end);
    }
    EXPECT_EQ(crop({2, 2, 0, 0, 0, 0}),
              "The upper extent in the X direction cannot be less than the lower extent. The lower extent encountered was 2. "
              "The upper extent encountered was 1.");
    EXPECT_EQ(crop({0, 0, 0, 0, 0, 4}),
              "The upper extent in the Z direction cannot be less than the lower extent. The lower extent encountered was 0. "
              "The upper extent encountered was -1.");
    EXPECT_EQ(enlarge({0, 0, 100001, 0, 0, 100001}),
              "The lower extent in the Y direction cannot be less than -100000. The value encountered was -100001.");
    EXPECT_EQ(enlarge({0, 0, 0, 0, 0, 9997}),
              "The upper extent in the Z direction must be less than 10000. The value encountered was 10000.");
    EXPECT_EQ(MessageOf([&] {
                  Resize(model, Extents(Axes(1, {0, 0, 0}, 90, 0), {0, 0, 0}, {3, 3, 3}, 2));
              }),
              "The axes of the new extents cannot differ from the axes of the voxel model to be resized.");
}

TEST(BasicOperations, RejectArgumentsOfAnySize)
{
    const VoxelModel<bool> model = MakeModel(EmptyReference({-2, -2, -2}, {1, 1, 1}, 5));
    const std::string inverted = "The upper extent in the X direction cannot be less than the lower extent. ";
    EXPECT_EQ(MessageOf([&] { Crop(model, Largest, 0, 0, 0, 0, 0); }).substr(0, 32), "The upper extent in the X direct");
    EXPECT_TRUE(MessageOf([&] { Crop(model, 0, 3999999999, 0, 0, 0, 0); }).starts_with("The upper extent in the X direction"));
    EXPECT_TRUE(MessageOf([&] { Crop(model, Largest, Largest, Largest, Largest, Largest, Largest); }).starts_with(inverted));
    EXPECT_TRUE(MessageOf([&] {
                    Enlarge(model, Largest, Largest, Largest, Largest, Largest, Largest);
                }).starts_with("The lower extent in the X direction cannot be less than -800000. "));
    EXPECT_TRUE(MessageOf([&] {
                    Enlarge(model, 0, 0, 0, 0, 0, Largest);
                }).starts_with("The upper extent in the Z direction must be less than 10000. "));
    EXPECT_THROW(Refine(model, Largest), std::domain_error);
    EXPECT_THROW(Refine(model, Smallest), std::domain_error);
}

TEST(BasicOperations, WorkAtTheLimitsOfTheIndexSpace)
{
    const Axes fineHeights(1, {0, 0, 0}, 0, 5);
    for (const std::int64_t sign : {-1, 1}) {
        const auto corner = [&](const Triple& limits,
                                std::int64_t size) { // the box of `size` voxels in a corner of the index space
            Triple lower = limits;
            Triple upper = limits;
            for (std::size_t i = 0; i < 3; ++i) {
                lower[i] = sign < 0 ? -limits[i] : limits[i] - size;
                upper[i] = lower[i] + size - 1;
            }
            return Extents(fineHeights, lower, upper, limits[0] == 800000 ? 5 : 0);
        };
        ReferenceModel reference = Invert(ReferenceModel(corner({25000, 25000, 320000}, 3), 0, 0));
        const VoxelModel<bool> model = MakeModel(reference);
        EXPECT_EQ(Differences(Refine(model, 5), Refine(reference, 5)), "");
        EXPECT_EQ(Differences(AutoCrop(model), reference), "");
        EXPECT_EQ(CountFilled(model, 0), 27);
        EXPECT_EQ(Differences(Resize(model, corner({800000, 800000, 320000}, 3)),
                              Resize(reference, corner({800000, 800000, 320000}, 3))),
                  "");
        EXPECT_EQ(MessageOf([&] { Enlarge(model, 0, 1, 0, 0, 1, 0); }),
                  sign < 0 ? "The lower extent in the Z direction cannot be less than -320000. The value encountered was -320001."
                           : "The upper extent in the X direction must be less than 25000. The value encountered was 25000.");
        EXPECT_EQ(MessageOf([&] {
                      Relocate(model, Axes(1, {0, 0, 0}, 0, 4));
                  }),
                  sign < 0 ? "The lower extent in the Z direction cannot be less than -160000. The value encountered was -320000."
                           : "The upper extent in the Z direction must be less than 160000. The value encountered was 319999.");
    }
}

} // namespace
} // namespace brix
