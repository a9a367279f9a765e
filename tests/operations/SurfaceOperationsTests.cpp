// Growth and shrinkage against their definitions, voxel by voxel and pass by pass; every sentence that they raise.
#include "operations/SurfaceOperations.h"

#include "operations/BasicOperations.h"
#include "operations/SolidOperations.h"
#include "support/FailingAllocations.h"
#include "support/Messages.h"
#include "support/RandomCompanions.h"
#include "support/ReferenceOperations.h"

#include <gtest/gtest.h>

#include <limits>

namespace brix {
namespace {

using namespace tests;
using Guide = std::optional<VoxelModel<bool>>;

constexpr int Largest = std::numeric_limits<int>::max();
constexpr int Smallest = std::numeric_limits<int>::min();

const Axes Frame(1, {0, 0, 0}, 0, 0);

constexpr std::array<const char*, 10> Names{"ExpandAlongX",       "ReduceAlongX",      "ExpandAlongY",     "ReduceAlongY",
                                            "ExpandAlongZ",       "ReduceAlongZ",      "ExpandByOneVoxel", "ReduceByOneVoxel",
                                            "ExpandHorizontally", "ReduceHorizontally"};
constexpr std::size_t AlongEnd = 6;
constexpr std::size_t ByOneVoxel = 6;
constexpr std::size_t Horizontally = 8;

// An operation (even: growth, odd: shrinkage) and its arguments: offsets, numbers of neighbours, or a diameter.
struct Call
{
    std::size_t operation;
    int first;
    int second;
    bool autoAdjust;

    VoxelModel<bool> Run(const VoxelModel<bool>& model, const Guide& guide) const
    {
        constexpr std::array along{ExpandAlongX, ReduceAlongX, ExpandAlongY, ReduceAlongY, ExpandAlongZ, ReduceAlongZ};
        if (operation < AlongEnd) return along[operation](model, first, second, guide, autoAdjust);
        return RunCounting(model, guide);
    }

    ReferenceModel Run(const ReferenceModel& model, const ReferenceGuide& guide) const
    {
        const Axis axis = AllAxes[operation / 2 % 3];
        if (operation >= AlongEnd) return RunCounting(model, guide);
        return (IsGrowth() ? ExpandAlong : ReduceAlong)(axis, model, first, second, guide, autoAdjust);
    }

    template <class AnyModel> AnyModel RunCounting(const AnyModel& model, const std::optional<AnyModel>& guide) const
    {
        if (operation == ByOneVoxel) return ExpandByOneVoxel(model, first, second, guide, autoAdjust);
        if (operation == ByOneVoxel + 1) return ReduceByOneVoxel(model, first, second, guide, autoAdjust);
        if (operation == Horizontally) return ExpandHorizontally(model, first, guide, autoAdjust);
        return ReduceHorizontally(model, first, guide, autoAdjust);
    }

    bool IsGrowth() const { return operation % 2 == 0; }

    std::string Message(const VoxelModel<bool>& model, const Guide& guide = {}) const
    {
        return MessageOf([&] { Run(model, guide); });
    }

    friend std::ostream& operator<<(std::ostream& output, const Call& call)
    {
        return output << Names[call.operation] << "(" << call.first << ", " << call.second << "), autoAdjust " << call.autoAdjust;
    }
};

// Arguments are mostly small; some pass the 16 and 64 voxels that one look can reach.
Call RandomCall(Random& random, std::size_t operation, bool autoAdjust)
{
    const auto offset = [&] { return static_cast<int>(random.OneIn(5) ? random.Between(0, 70) : random.Between(0, 5)); };
    if (operation < AlongEnd) return {operation, offset(), offset(), autoAdjust};
    if (operation >= Horizontally) return {operation, std::max(offset(), 1), 0, autoAdjust};
    const int horizontal = static_cast<int>(random.Between(0, 5));
    return {operation, horizontal, static_cast<int>(random.Between(horizontal == 0 ? 1 : 0, 3)), autoAdjust};
}

TEST(SurfaceOperations, EqualTheVoxelByVoxelDefinition)
{
    std::uint64_t seed = 0;
    for (std::size_t guideKind = 0; guideKind <= AllPlacements.size(); ++guideKind) { // the last kind: no guide
        for (const bool autoAdjust : {false, true}) {
            for (std::size_t repetition = 0; repetition < 5 * Names.size(); ++repetition) {
                Random random(++seed);
                const ReferenceModel reference = MakeFirst(random);
                const VoxelModel<bool> model = MakeModel(reference);
                const bool isGuided = guideKind < AllPlacements.size();
                ReferenceGuide referenceGuide;
                if (isGuided) referenceGuide = MakeCompanion(random, reference, AllPlacements[guideKind]);
                const Guide guide = isGuided ? Guide(MakeModel(*referenceGuide)) : std::nullopt;
                const Call call = RandomCall(random, repetition % Names.size(), autoAdjust);
                EXPECT_EQ(Differences(call.Run(model, guide), call.Run(reference, referenceGuide)), "")
                    << "seed " << seed << ", " << call << ", guide: " << (isGuided ? NameOf(AllPlacements[guideKind]) : "none");
                EXPECT_EQ(Changes(model, reference), "") << "the model has changed, seed " << seed << ", " << call;
                EXPECT_EQ(isGuided ? Changes(*guide, *referenceGuide) : "", "") << "the guide has changed, seed " << seed;
            }
        }
    }
}

// Over several stacks, past guides anywhere on the way.
TEST(SurfaceOperations, ReachFarAlongZ)
{
    const Extents tall(Frame, {-2, -2, -150}, {2, 2, 250}, 1);
    for (std::uint64_t seed = 1; seed <= Rounds(80); ++seed) {
        Random random(seed);
        ReferenceModel reference(tall, 1, 1);
        ReferenceModel barrier(tall, 1, 1);
        const auto scatter = [&](ReferenceModel& model, std::int64_t most) {
            for (std::int64_t left = random.Between(0, most); left > 0; --left)
                model.Set({random.Between(-2, 2), random.Between(-2, 2), random.Between(-150, 250)});
        };
        scatter(reference, 60);
        scatter(barrier, 40);
        const std::size_t alongZ = AlongEnd - 2 + seed % 2;
        const Call call{alongZ, static_cast<int>(random.Between(0, 300)), static_cast<int>(random.Between(0, 300)),
                        random.OneIn(2)};
        EXPECT_EQ(Differences(call.Run(MakeModel(reference), MakeModel(barrier)), call.Run(reference, barrier)), "")
            << "seed " << seed << ", " << call;
    }
}

VoxelModel<bool> ModelOf(const std::vector<Triple>& filled)
{
    ReferenceModel reference(Extents(Frame, {-9, -9, -9}, {9, 9, 9}, 1), 1, 1);
    for (const Triple& voxel : filled) reference.Set(voxel);
    return MakeModel(reference);
}

// A voxel becomes an octagon: as wide and as high as the steps reach, its corners cut off by lines at 45 degrees.
TEST(HorizontalOperations, GrowAVoxelToAnOctagon)
{
    for (int diameter = 1; diameter <= 50; ++diameter) {
        ReferenceModel octagon(Extents(Frame, {-30, -30, 0}, {30, 30, 0}, 1), 1, 1);
        octagon.Set({0, 0, 0});
        const VoxelModel<bool> dot = MakeModel(octagon);
        const int reach = (diameter - 1) / 2;
        const int corners = diameter < 4 ? 0 : std::max(1, (diameter - 3) / 4);
        octagon = octagon.Where([&](const Triple& voxel) {
            const std::int64_t x = std::abs(voxel[0]);
            const std::int64_t y = std::abs(voxel[1]);
            return x <= reach && y <= reach && x + y <= reach + corners;
        });
        EXPECT_EQ(Differences(ExpandHorizontally(dot, diameter, std::nullopt, false), octagon), "") << "diameter " << diameter;
    }
}

TEST(SurfaceOperations, NameTheArgumentThatTheyReject)
{
    const VoxelModel<bool> model = ModelOf({{0, 0, 0}});
    const Guide stranger = MakeModel(ReferenceModel(Extents(Axes(1, {0, 0, 0}, 1, 0), {0, 0, 0}, {3, 3, 3}, 1), 1, 1));
    for (std::size_t operation = 0; operation < AlongEnd; ++operation) {
        const std::string verb = operation % 2 == 0 ? "added to" : "removed from";
        const std::string axis(1, "XYZ"[operation / 2]);
        const auto sentence = [&](const std::string& side, int value) {
            return "The number of voxels to be " + verb + " the " + side + " " + axis +
                   " side cannot be negative. The value encountered was " + std::to_string(value) + ".";
        };
        EXPECT_EQ((Call{operation, -1, -2, true}.Message(model, stranger)), sentence("lower", -1));
        EXPECT_EQ((Call{operation, 0, -2, true}.Message(model, stranger)), sentence("upper", -2));
        EXPECT_EQ((Call{operation, Smallest, Largest, false}.Message(model)), sentence("lower", Smallest));
    }
    for (const std::size_t operation : {ByOneVoxel, ByOneVoxel + 1}) {
        EXPECT_EQ(
            (Call{operation, -1, -2, false}.Message(model, stranger)),
            "The minimum required number of horizontally adjacent voxels cannot be negative. The value encountered was -1.");
        EXPECT_EQ((Call{operation, 0, -2, false}.Message(model, stranger)),
                  "The minimum required number of vertically adjacent voxels cannot be negative. The value encountered was -2.");
        EXPECT_EQ((Call{operation, 0, 0, true}.Message(model, stranger)),
                  "The minimum required number of horizontally and vertically adjacent voxels cannot both be zero.");
    }
    EXPECT_EQ((Call{Horizontally, 0, 0, true}.Message(model, stranger)),
              "The approximate increase in the diameter of filled regions cannot be less than 1. The value encountered was 0.");
    EXPECT_EQ((Call{Horizontally + 1, Smallest, 0, true}.Message(model, stranger)),
              "The approximate decrease in the diameter of filled regions cannot be less than 1. "
              "The value encountered was -2147483648.");
    for (std::size_t operation = 0; operation < Names.size(); ++operation) {
        EXPECT_EQ((Call{operation, 1, 0, true}.Message(model, stranger)),
                  "The axes must be the same for all voxel models to be merged.")
            << Names[operation];
    }
}

TEST(SurfaceOperations, TakeArgumentsOfAnySize)
{
    const VoxelModel<bool> model = ModelOf({{0, 0, 0}, {5, -7, 8}});
    const Guide guide = ModelOf({{-3, 0, 0}, {0, 2, 0}, {5, -7, 6}});
    for (const Guide& anyGuide : {Guide(), guide}) {
        const ReferenceModel reference(model, 1);
        const ReferenceGuide referenceGuide = anyGuide ? ReferenceGuide(ReferenceModel(*anyGuide, 1)) : std::nullopt;
        for (std::size_t operation = 0; operation < Names.size(); ++operation) {
            const bool isByOne = operation == ByOneVoxel || operation == ByOneVoxel + 1;
            const Call huge{operation, Largest, Largest, false};
            const Call enough{operation, isByOne ? 9 : 60, isByOne ? 9 : 60, false}; // nothing changes after 60 passes here
            EXPECT_EQ(Differences(huge.Run(model, anyGuide), enough.Run(reference, referenceGuide)), "") << huge;
        }
        EXPECT_EQ((Call{0, Largest, Largest, true}.Message(model, anyGuide)),
                  "The lower extent in the X direction cannot be less than -50000. The value encountered was -2147483656.");
        EXPECT_EQ((Call{2, 0, Largest, true}.Message(model, anyGuide)),
                  "The upper extent in the Y direction must be less than 50000. The value encountered was 2147483656.");
        EXPECT_EQ((Call{4, 0, Largest, true}.Message(model, anyGuide)),
                  "The upper extent in the Z direction must be less than 10000. The value encountered was 2147483656.");
        EXPECT_EQ((Call{Horizontally, Largest, 0, true}.Message(model, anyGuide)),
                  "The lower extent in the X direction cannot be less than -50000. The value encountered was -1073741832.");
    }
}

TEST(SurfaceOperations, WorkAtTheLimitsOfTheIndexSpace)
{
    for (const bool isUpper : {false, true}) {
        const Triple lower = isUpper ? Triple{799980, 799998, 9997} : Triple{-800000, -800000, -10000};
        ReferenceModel reference(Extents(Frame, lower, Plus(lower, {19, 1, 2}), 5), 5, 5);
        reference.Set(Plus(lower, {9, 1, 1}));
        reference.Set(Plus(lower, {isUpper ? 19 : 0, isUpper ? 1 : 0, isUpper ? 2 : 0}));
        const VoxelModel<bool> model = MakeModel(reference);
        for (std::size_t operation = 0; operation < Names.size(); ++operation) {
            const Call call{operation, 1, operation < AlongEnd ? 3 : 0, false};
            EXPECT_EQ(Differences(call.Run(model, std::nullopt), call.Run(reference, std::nullopt)), "") << call;
            if (!call.IsGrowth()) {
                EXPECT_NE((Call{operation, 1, 0, false}.Message(model, model)), "(nothing was thrown)")
                    << "no room for the margin";
            }
        }
        EXPECT_EQ((Call{ByOneVoxel, 1, 0, true}.Message(model)),
                  isUpper
                      ? "The upper extent in the X direction must be less than 800000. The value encountered was 800000."
                      : "The lower extent in the X direction cannot be less than -800000. The value encountered was -800001.");
    }
}

// A room whose walls the guide holds. Passes go where the last one left something, not to what lay beside that before.
TEST(SurfaceOperations, TouchNothingBehindTheGuide)
{
    const Axes axes(1, {0, 0, 0}, 0, 0);
    const ReferenceModel room = ReferenceModel(Extents(axes, {-60, -60, 0}, {60, 60, 2}, 0), 0, 0).Where([](const Triple& voxel) {
        return std::max(std::abs(voxel[0]), std::abs(voxel[1])) == 60;
    });
    const VoxelModel<bool> source = Invert(VoxelModel<bool>(Extents(axes, {0, 0, 0}, {0, 0, 2}, 0), 0));
    const std::optional<VoxelModel<bool>> guide = MakeModel(room);
    const std::int64_t before = AllocationCount();
    const VoxelModel<bool> grown = ExpandHorizontally(source, 9000, guide, true);
    EXPECT_LT(AllocationCount() - before, 20000);
    EXPECT_EQ(CountFilled(grown, 0), 119 * 119 * 3);
}

} // namespace
} // namespace brix
