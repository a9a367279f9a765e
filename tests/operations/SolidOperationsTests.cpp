// Boolean combinations against their voxel-by-voxel definitions, the laws that tie them together, and every sentence that they
// raise.
#include "operations/SolidOperations.h"

#include "operations/BasicOperations.h"
#include "support/Messages.h"
#include "support/RandomCompanions.h"
#include "support/ReferenceOperations.h"

#include <gtest/gtest.h>

#include <limits>

namespace brix {
namespace {

using namespace tests;
using Models = std::vector<const VoxelModel<bool>*>;
using References = std::vector<const ReferenceModel*>;

// Models of one frame: a first one and companions.
struct Scene
{
    std::vector<ReferenceModel> references;
    std::vector<VoxelModel<bool>> models;
    std::int64_t lod; // near the first one's finest level
    bool autoCrop;
    std::string description;
};

template <class AnyModel> std::vector<const AnyModel*> PointersTo(const std::vector<AnyModel>& models)
{
    std::vector<const AnyModel*> pointers;
    for (const AnyModel& model : models) pointers.push_back(&model);
    return pointers;
}

Scene MakeScene(std::uint64_t seed, const std::vector<Placement>& placements)
{
    Random random(seed);
    Scene scene{{MakeFirst(random)}, {}, 0, random.OneIn(2), "seed " + std::to_string(seed)};
    for (const Placement placement : placements) {
        scene.references.push_back(MakeCompanion(random, scene.references.front(), placement));
        scene.description += std::string(", ") + NameOf(placement);
    }
    for (const ReferenceModel& reference : scene.references) scene.models.push_back(MakeModel(reference));
    scene.lod = LevelNear(random, scene.references.front().FinestLOD(), random.OneIn(3) ? 2 : 1);
    scene.description += ", lod " + std::to_string(scene.lod) + (scene.autoCrop ? ", cropped" : "");
    return scene;
}

TEST(UnionAndIntersect, EqualTheVoxelByVoxelDefinition)
{
    for (std::uint64_t seed = 1; seed <= 200; ++seed) {
        std::vector placements{AllPlacements[seed % 5], AllPlacements[seed / 5 % 5]};
        placements.resize(seed % 3); // models alone, pairs, and three of them
        const Scene scene = MakeScene(seed, placements);
        const auto models = PointersTo(scene.models);
        const auto references = PointersTo(scene.references);
        EXPECT_EQ(Differences(Union(models, scene.lod, scene.autoCrop), Union(references, scene.lod, scene.autoCrop)), "")
            << scene.description;
        EXPECT_EQ(Differences(Intersect(models, scene.lod, scene.autoCrop), Intersect(references, scene.lod, scene.autoCrop)), "")
            << scene.description;
        for (std::size_t i = 0; i < models.size(); ++i) EXPECT_EQ(Changes(*models[i], *references[i]), "") << "input " << i;
    }
}

TEST(SubtractAndInvert, EqualTheVoxelByVoxelDefinition)
{
    for (std::uint64_t seed = 1; seed <= 200; ++seed) {
        const Scene scene = MakeScene(seed, {AllPlacements[seed % 5]});
        const auto run = [&](const auto& models) { return Subtract(models[0], models[1], scene.lod, scene.autoCrop); };
        EXPECT_EQ(Differences(run(scene.models), run(scene.references)), "") << scene.description;
        EXPECT_EQ(Differences(Invert(scene.models[0]), Invert(scene.references[0])), "") << scene.description;
        for (std::size_t i = 0; i < 2; ++i) EXPECT_EQ(Changes(scene.models[i], scene.references[i]), "") << "input " << i;
    }
}

TEST(SolidOperations, ObeyTheLawsOfSets)
{
    for (std::uint64_t seed = 1; seed <= 150; ++seed) {
        Random random(seed);
        const ReferenceModel first = MakeFirst(random);
        const std::int64_t lod = first.FinestLOD();
        const auto companion = [&] {
            return Resize(MakeModel(MakeCompanion(random, first, Placement::SameExtents)), first.FinestExtentsRef());
        };
        const VoxelModel<bool> a = Resize(MakeModel(first), first.FinestExtentsRef());
        const VoxelModel<bool> b = companion();
        const VoxelModel<bool> c = companion();
        const auto unite = [&](const auto&... models) { return Union(Models{&models...}, lod, false); };
        const auto meet = [&](const auto&... models) { return Intersect(Models{&models...}, lod, false); };
        const auto without = [&](const auto& model, const auto& other) { return Subtract(model, other, lod, false); };

        EXPECT_EQ(Differences(Invert(Invert(a)), a), "") << "seed " << seed;
        EXPECT_EQ(Differences(Invert(unite(a, b, c)), meet(Invert(a), Invert(b), Invert(c))), "") << "seed " << seed;
        EXPECT_EQ(Differences(Invert(meet(a, b)), unite(Invert(a), Invert(b))), "") << "seed " << seed;
        EXPECT_EQ(Differences(without(a, b), meet(a, Invert(b))), "") << "seed " << seed;
        EXPECT_EQ(Differences(without(without(a, b), c), without(a, unite(b, c))), "") << "seed " << seed;
        EXPECT_EQ(Differences(unite(a, b), unite(unite(b, a, b), b)), "") << "seed " << seed;
        EXPECT_EQ(Differences(meet(unite(a, c), unite(b, c)), unite(meet(a, b), c)), "") << "seed " << seed;
        EXPECT_EQ(CountFilled(unite(a, b), lod) + CountFilled(meet(a, b), lod), CountFilled(a, lod) + CountFilled(b, lod));
        EXPECT_TRUE(IsEmpty(without(a, a), lod) && IsFull(unite(a, Invert(a)), lod)) << "seed " << seed;
    }
}

const Axes Frame(1, {0, 0, 0}, 0, 0);

VoxelModel<bool> FullModel(const Axes& axes, const Triple& lower, const Triple& upper, std::int64_t lod)
{
    return MakeModel(Invert(ReferenceModel(Extents(axes, lower, upper, lod), lod, lod)));
}

TEST(SolidOperations, HaveTheExtentsOfAllModelsOrOfTheirVoxels)
{
    const VoxelModel<bool> a = FullModel(Frame, {0, 0, 0}, {3, 3, 3}, 2);
    const VoxelModel<bool> b = FullModel(Frame, {-5, 1, 2}, {-5, 9, 2}, 3); // at level 2: -3, 0..4, 2
    const auto bounds = [](const VoxelModel<bool>& model) {
        const Extents& extents = model.ExtentsRef(model.FinestLOD());
        return std::array{extents.LowerIndices(), extents.UpperIndices()};
    };
    const std::array<Triple, 2> both{{{-3, 0, 0}, {3, 4, 3}}};
    EXPECT_EQ(bounds(Union(Models{&a, &b}, 2, false)), both);
    EXPECT_EQ(bounds(Intersect(Models{&a, &b}, 2, false)), both);
    EXPECT_EQ(bounds(Subtract(a, b, 2, false)), both);
    EXPECT_EQ(bounds(Subtract(b, a, 2, false)), (std::array<Triple, 2>{{{-6, 0, 0}, {7, 9, 3}}})) << "keeps its finest level";
    EXPECT_EQ(bounds(Subtract(a, b, 3, false)), (std::array<Triple, 2>{{{-5, 0, 0}, {7, 9, 3}}})) << "is refined";
    EXPECT_EQ(bounds(Subtract(a, a, 2, true)), (std::array<Triple, 2>{{{2, 2, 2}, {2, 2, 2}}}));
}

TEST(SolidOperations, NameTheArgumentThatTheyReject)
{
    const VoxelModel<bool> model = FullModel(Frame, {0, 0, 0}, {3, 3, 3}, 2);
    const VoxelModel<bool> other = FullModel(Axes(1, {0, 0, 0}, 0, 1), {0, 0, 0}, {3, 3, 3}, 2);
    const auto unite = [](const Models& models, std::int64_t lod) { return MessageOf([&] { Union(models, lod, false); }); };
    const auto meet = [](const Models& models, std::int64_t lod) { return MessageOf([&] { Intersect(models, lod, true); }); };
    const auto subtract = [&](const VoxelModel<bool>& subtrahend, std::int64_t lod) {
        return MessageOf([&] { Subtract(model, subtrahend, lod, false); });
    };
    EXPECT_EQ(unite({}, -1), "At least one voxel model is required for voxel model union.");
    EXPECT_EQ(meet({}, 6), "At least one voxel model is required for voxel model intersect.");
    EXPECT_EQ(unite({&model, &other}, -1),
              "The level of detail for voxel model union cannot be negative. The value encountered was -1.");
    EXPECT_EQ(unite({nullptr, &other}, 6),
              "The level of detail for voxel model union must be less than 6. The value encountered was 6.");
    EXPECT_EQ(meet({&model, &other}, -7),
              "The level of detail for voxel model intersect cannot be negative. The value encountered was -7.");
    EXPECT_EQ(meet({nullptr}, 6),
              "The level of detail for voxel model intersect must be less than 6. The value encountered was 6.");
    EXPECT_EQ(subtract(other, -1),
              "The level of detail for voxel model subtraction cannot be negative. The value encountered was -1.");
    EXPECT_EQ(subtract(other, 6),
              "The level of detail for voxel model subtraction must be less than 6. The value encountered was 6.");

    const std::string axes = "The axes must be the same for all voxel models to be merged.";
    EXPECT_EQ(unite({&model, &model, &other}, 0), axes);
    EXPECT_EQ(meet({&model, &model, &other}, 5), axes);
    EXPECT_EQ(subtract(other, 1), axes);
    for (const Models& models : {Models{nullptr}, Models{nullptr, &model}, Models{&model, nullptr, &other}}) {
        EXPECT_EQ(unite(models, 2), "No voxel model to be merged can be null.");
        EXPECT_EQ(meet(models, 2), "No voxel model to be merged can be null.");
    }
}

TEST(SolidOperations, WorkAtTheLimitsOfTheIndexSpace)
{
    const VoxelModel<bool> lower = FullModel(Frame, {-25000, -25000, -10000}, {-24999, -25000, -9998}, 0);
    const VoxelModel<bool> upper = FullModel(Frame, {799998, 799999, 9998}, {799999, 799999, 9999}, 5);
    for (const VoxelModel<bool>* model : {&lower, &upper}) {
        const ReferenceModel reference(*model, model->FinestLOD());
        for (std::int64_t lod = 0; lod < LevelCount; ++lod) {
            EXPECT_EQ(Differences(Union(Models{model, model}, lod, true), Union(References{&reference, &reference}, lod, true)),
                      "");
            EXPECT_EQ(Differences(Intersect(Models{model, model}, lod, false),
                                  Intersect(References{&reference, &reference}, lod, false)),
                      "");
            EXPECT_EQ(Differences(Subtract(*model, *model, lod, false), Subtract(reference, reference, lod, false)), "");
        }
        EXPECT_TRUE(IsEmpty(Invert(*model), model->FinestLOD()));
    }
}

} // namespace
} // namespace brix
