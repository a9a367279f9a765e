// Boolean combinations against their voxel-by-voxel definitions, and every sentence that they raise.
#include "operations/SolidOperations.h"

#include "operations/BasicOperations.h"
#include "support/Messages.h"
#include "support/RandomCompanions.h"
#include "support/ReferenceOperations.h"

#include <gtest/gtest.h>

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

// The changed model may hold all of its levels, or those that are still to follow from one.
TEST(SolidOperations, GiveTheSameInPlace)
{
    for (std::uint64_t seed = 1; seed <= 150; ++seed) {
        Scene scene = MakeScene(seed, {AllPlacements[seed % 5]});
        const std::int64_t lod = scene.references[0].FinestLOD();
        const auto references = PointersTo(scene.references);
        const auto changed = [&](const auto& change) {
            VoxelModel<bool> model = scene.models[0];
            if (seed % 2 == 0) model.MakeLevels(OtherLevels::WhenAskedFor);
            model = Refine(model, lod); // all levels agree with the finest one
            change(model, scene.models[1]);
            return model;
        };
        EXPECT_EQ(Differences(changed(UnionInPlace), Union(references, lod, false)), "") << scene.description;
        EXPECT_EQ(Differences(changed(IntersectInPlace), Intersect(references, lod, false)), "") << scene.description;
        EXPECT_EQ(Differences(changed(SubtractInPlace), Subtract(scene.references[0], scene.references[1], lod, false)), "")
            << scene.description;
        EXPECT_EQ(Changes(scene.models[1], scene.references[1]), "");

        VoxelModel<bool>& model = scene.models[0];
        UnionInPlace(model, model);
        EXPECT_EQ(Differences(model, Union(References{references[0]}, lod, false)), "");
        SubtractInPlace(model, model);
        EXPECT_EQ(model.StoredChunkCount(), 0U);
    }
}

const Axes Frame(1, {0, 0, 0}, 0, 0);

VoxelModel<bool> FullModel(const Axes& axes, const Triple& lower, const Triple& upper, std::int64_t lod)
{
    return MakeModel(Invert(ReferenceModel(Extents(axes, lower, upper, lod), lod, lod)));
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
    EXPECT_TRUE(unite({nullptr, &other}, 6).starts_with("The level of detail for voxel model union must"));
    EXPECT_TRUE(meet({nullptr, &other}, -7).starts_with("The level of detail for voxel model intersect cannot"));
    EXPECT_TRUE(subtract(other, -1).starts_with("The level of detail for voxel model subtraction cannot"));

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
