// Growth and shrinkage against their definitions, voxel by voxel and pass by pass; the laws that tie them together; every
// sentence that they raise.
#include "operations/SurfaceOperations.h"

#include "operations/BasicOperations.h"
#include "operations/SolidOperations.h"
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
    const auto offset = [&] { return static_cast<int>(random.OneIn(5) ? random.Between(0, 40) : random.Between(0, 5)); };
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

bool IsPartOf(const VoxelModel<bool>& part, const VoxelModel<bool>& whole)
{
    return IsEmpty(Subtract(part, whole, part.FinestLOD(), false), part.FinestLOD());
}

// A model that is larger than those that can be compared voxel by voxel in little time, and a smaller one inside it.
struct NestedModels
{
    VoxelModel<bool> inner;
    VoxelModel<bool> outer;
};

NestedModels MakeNested(Random& random)
{
    const std::int64_t lod = random.Between(1, 3);
    ReferenceModel scattered(Extents(Frame, {-24, -20, -30}, {25, 19, 69}, lod), lod, lod);
    for (int i = 0; i < 400; ++i) scattered.Set({random.Between(-24, 25), random.Between(-20, 19), random.Between(-30, 69)});
    const VoxelModel<bool> inner = ExpandByOneVoxel(MakeModel(scattered), 1, 0, std::nullopt, false);
    return {inner, ExpandAlongZ(ExpandHorizontally(inner, 6, std::nullopt, false), 3, 0, std::nullopt, false)};
}

TEST(SurfaceOperations, AreMonotonous)
{
    for (std::uint64_t seed = 1; seed <= 40; ++seed) {
        Random random(seed);
        const auto [inner, outer] = MakeNested(random);
        const Call call = RandomCall(random, seed % Names.size(), false);
        const VoxelModel<bool> innerResult = call.Run(inner, std::nullopt);
        EXPECT_TRUE(IsPartOf(innerResult, call.Run(outer, std::nullopt))) << "seed " << seed << ", " << call;
        EXPECT_TRUE(call.IsGrowth() ? IsPartOf(inner, innerResult) : IsPartOf(innerResult, inner))
            << "seed " << seed << ", " << call;
    }
}

TEST(SurfaceOperations, AlongAnAxisAddUp)
{
    for (std::uint64_t seed = 1; seed <= 36; ++seed) {
        Random random(seed);
        const VoxelModel<bool> model = MakeNested(random).outer;
        const std::size_t operation = seed % AlongEnd;
        const int most = operation % 2 == 0 ? 70 : 9; // what is left of a model shrinks fast
        const int lower = static_cast<int>(random.Between(0, most));
        const int upper = static_cast<int>(random.Between(0, most));
        VoxelModel<bool> stepped = model;
        for (int i = 0; i < lower; ++i) stepped = Call{operation, 1, 0, false}.Run(stepped, std::nullopt);
        for (int i = 0; i < upper; ++i) stepped = Call{operation, 0, 1, false}.Run(stepped, std::nullopt);
        const Call call{operation, lower, upper, false};
        EXPECT_EQ(Differences(call.Run(model, std::nullopt), stepped), "") << "seed " << seed << ", " << call;
        EXPECT_EQ(Differences(Call{operation, Largest, Largest, false}.Run(model, std::nullopt),
                              Call{operation, 100, 100, false}.Run(model, std::nullopt)),
                  "")
            << "seed " << seed << ", " << call;
    }
}

// With filled voxels all around the extents, what is empty outside counts for shrinkage as it does for growth.
TEST(SurfaceOperations, ShrinkTheBackgroundAsTheyGrowTheForeground)
{
    for (std::uint64_t seed = 1; seed <= 60; ++seed) {
        Random random(seed);
        const VoxelModel<bool> model = MakeNested(random).inner;
        const VoxelModel<bool> outside =
            Invert(Enlarge(Invert(Subtract(model, model, model.FinestLOD(), false)), 1, 1, 1, 1, 1, 1));
        const Call grow = RandomCall(random, 2 * (seed % 5), false);
        const bool isAlong = grow.operation < AlongEnd;
        const Call shrink{grow.operation + 1, isAlong ? grow.second : grow.first, isAlong ? grow.first : grow.second, false};
        // The upper faces of the background are the lower faces of the foreground, so the sides of the passes come in another
        // order.
        EXPECT_EQ(Differences(Invert(grow.Run(model, std::nullopt)), shrink.Run(Invert(model), outside)), "")
            << "seed " << seed << ", " << grow;
    }
}

TEST(HorizontalOperations, AreSequencesOfPassesByOneVoxel)
{
    EXPECT_EQ(DiscSteps(11), (std::vector{1, 1, 2, 1, 1, 2, 1}));
    EXPECT_EQ(DiscSteps(12), (std::vector{1, 1, 2, 1, 1, 1, 2}));
    for (int diameter = 1; diameter <= 24; ++diameter) {
        Random random(static_cast<std::uint64_t>(diameter));
        const VoxelModel<bool> model = MakeNested(random).outer;
        const Guide guide = random.OneIn(2) ? Guide(MakeNested(random).inner) : std::nullopt;
        const std::vector<int> steps = DiscSteps(diameter);
        VoxelModel<bool> grown = ExpandHorizontally(model, 1, guide, false);
        VoxelModel<bool> shrunk = model;
        for (const int least : steps) {
            grown = ExpandByOneVoxel(grown, least, 0, guide, false);
            shrunk = ReduceByOneVoxel(shrunk, least, 0, guide, false);
        }
        EXPECT_EQ(Differences(ExpandHorizontally(model, diameter, guide, false), grown), "") << "diameter " << diameter;
        EXPECT_EQ(Differences(ReduceHorizontally(model, diameter, guide, false), shrunk), "") << "diameter " << diameter;
    }
}

// One height of a model around the origin, drawn from (-3, -3) to (3, 3).
std::string Drawn(const VoxelModel<bool>& model)
{
    const ReferenceModel reference(model, model.FinestLOD());
    std::string drawing;
    ForEachTriple({-3, -3, 0}, {3, 3, 0}, [&](const Triple& voxel) {
        drawing += reference.Value(voxel) ? '#' : '.';
        if (voxel[0] == 3 && voxel[1] < 3) drawing += ' ';
    });
    return drawing;
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

TEST(SurfaceOperations, GrowAsDrawn)
{
    const VoxelModel<bool> dot = ModelOf({{0, 0, 0}});
    const VoxelModel<bool> corner = ModelOf({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}});
    EXPECT_EQ(Drawn(ExpandByOneVoxel(corner, 2, 0, std::nullopt, false)),
              "....... ....... ....... ...##.. ...##.. ....... .......");
    EXPECT_EQ(Drawn(ExpandAlongX(dot, 2, 3, std::nullopt, false)), "....... ....... ....... .###### ....... ....... .......");
    EXPECT_EQ(Drawn(ExpandAlongX(dot, 2, 3, ModelOf({{-1, 0, 0}, {3, 0, 0}}), false)),
              "....... ....... ....... ...###. ....... ....... .......")
        << "a barrier is not crossed";
    EXPECT_EQ(Drawn(ExpandAlongY(dot, 1, 0, ModelOf({{0, 0, 0}}), true)), Drawn(dot))
        << "what a barrier holds stays and is still";
    EXPECT_EQ(Drawn(ReduceByOneVoxel(corner, 1, 0, ModelOf({{2, 0, 0}, {0, -1, 0}, {-1, 0, 0}, {1, -1, 0}, {1, 1, 0}}), false)),
              "....... ....... ....... ...##.. ....... ....... .......")
        << "guide voxels keep their neighbours";
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

} // namespace
} // namespace brix
