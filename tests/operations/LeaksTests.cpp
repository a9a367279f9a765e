// Ways out and sealed fills against searches from voxel to voxel and from cube to cube.
#include "operations/BasicOperations.h"
#include "operations/FillOperations.h"
#include "operations/Leaks.h"
#include "operations/SolidOperations.h"
#include "support/Messages.h"
#include "support/RandomModels.h"
#include "support/ReferenceOperations.h"

#include <gtest/gtest.h>

#include <map>
#include <queue>
#include <set>

namespace brix {
namespace {

using namespace tests;

constexpr std::array<Triple, 6> Faces{{{-1, 0, 0}, {1, 0, 0}, {0, -1, 0}, {0, 1, 0}, {0, 0, -1}, {0, 0, 1}}};

// The places that can be reached from some of them, by steps to others that mayStand allows.
template <class MayStand> std::set<Triple> Reached(const std::vector<Triple>& seeds, const MayStand& mayStand)
{
    std::set<Triple> reached;
    std::queue<Triple> waiting;
    const auto enter = [&](const Triple& place) {
        if (mayStand(place) && reached.insert(place).second) waiting.push(place);
    };
    for (const Triple& seed : seeds) enter(seed);
    for (; !waiting.empty(); waiting.pop())
        for (const Triple& step : Faces) enter(Plus(waiting.front(), step));
    return reached;
}

Triple Cubed(std::int64_t number) { return {number, number, number}; }

// A cube stands for its lowest voxel.
bool IsCubeEmpty(const ReferenceModel& model, const Triple& cube, std::int64_t width)
{
    bool isEmpty = true;
    ForEachTriple(cube, Plus(cube, Cubed(width - 1)), [&](const Triple& voxel) { isEmpty &= !model.Value(voxel); });
    return isEmpty;
}

ReferenceModel PlainSealed(const ReferenceModel& model, std::int64_t gap)
{
    const Triple lower = Minus(model.ExtentsRef().LowerIndices(), Cubed(gap + 1)); // from there on, cubes stand outside
    const Triple upper = Plus(model.ExtentsRef().UpperIndices(), Cubed(1));
    const std::set<Triple> outside =
        Reached({lower}, [&](const Triple& cube) { return IsWithin(cube, lower, upper) && IsCubeEmpty(model, cube, gap + 1); });
    ReferenceModel sealed = model.Where([](const Triple&) { return true; });
    for (const Triple& cube : outside)
        ForEachTriple(cube, Plus(cube, Cubed(gap)), [&](const Triple& voxel) { sealed.Set(voxel, false); });
    return sealed;
}

// Caves whose narrowest passages have about the given width.
ReferenceModel Caves(std::uint64_t seed, std::int64_t width)
{
    Random random(seed);
    const std::int64_t lod = random.Between(0, 3);
    const Extents extents = RandomExtents(random, RandomAxes(random), lod);
    const auto share = static_cast<std::uint64_t>(random.Between(45, 75));
    return ReferenceModel(extents, lod, lod).Where([&](const Triple& voxel) {
        std::uint64_t cell = seed;
        for (const std::int64_t index : voxel) cell = cell * 1009 + static_cast<std::uint64_t>(FloorDivide(index, width));
        return Random(cell).Bits() % 100 < share;
    });
}

TEST(SealedFill, FillsWhatNoCubeFromOutsideCovers)
{
    for (const RandomModel& model : RandomModels(7100, Rounds(60))) {
        const auto gap = static_cast<int>(model.seed % 4);
        ASSERT_EQ(Differences(SealedFill(model.voxels, gap), PlainSealed(model.reference, gap)), "") << model << "gap " << gap;
    }
    for (std::uint64_t seed = 1; seed <= Rounds(40); ++seed) {
        const ReferenceModel caves = Caves(seed, 2 + static_cast<std::int64_t>(seed % 3));
        const auto gap = static_cast<int>(1 + seed % 4);
        ASSERT_EQ(Differences(SealedFill(MakeModel(caves), gap), PlainSealed(caves, gap)), "") << "seed " << seed;
    }
}

TEST(SealedFill, IsAClosure)
{
    for (std::uint64_t seed = 1; seed <= Rounds(40); ++seed) {
        const VoxelModel<bool> caves = MakeModel(Caves(seed, 3));
        const std::int64_t lod = caves.FinestLOD();
        EXPECT_EQ(Differences(SealedFill(caves, 0), FillEnclosedRegions(caves)), "");
        VoxelModel<bool> before = caves;
        for (const int gap : {0, 1, 2, 3, 7, 40}) {
            const VoxelModel<bool> sealed = SealedFill(caves, gap);
            EXPECT_TRUE(IsEmpty(Subtract(before, sealed, lod, false), lod)) << "seed " << seed << " gap " << gap;
            EXPECT_EQ(Differences(SealedFill(sealed, gap), sealed), "") << "seed " << seed << " gap " << gap;
            before = sealed;
        }
    }
    EXPECT_EQ(MessageOf<std::domain_error>([&] { (void)SealedFill(MakeModel(Caves(1, 1)), -1); }),
              "The width of gaps to be sealed cannot be negative. The value encountered was -1.");
}

// The number of steps from a voxel to the nearest face of the extents, or -1.
std::int64_t PlainStepsOut(const ReferenceModel& model, const Triple& start)
{
    std::map<Triple, std::int64_t> steps{{start, 0}};
    std::queue<Triple> waiting({start});
    for (; !waiting.empty(); waiting.pop()) {
        const Triple voxel = waiting.front();
        for (const Triple& step : Faces) {
            const Triple next = Plus(voxel, step);
            if (!model.ExtentsRef().ContainsVoxel(next)) return steps[voxel];
            if (!model.Value(next) && steps.emplace(next, steps[voxel] + 1).second) waiting.push(next);
        }
    }
    return -1;
}

bool Holds(const Triple& cube, std::int64_t width, const Triple& voxel)
{
    return IsWithin(voxel, cube, Plus(cube, Cubed(width - 1)));
}

bool PassesPlainly(const ReferenceModel& model, const std::vector<Triple>& way, std::int64_t width)
{
    const auto hasWayInside = [&](const Triple& cube) {
        return std::any_of(way.begin(), way.end(), [&](const Triple& voxel) { return Holds(cube, width, voxel); });
    };
    std::vector<Triple> seeds;
    ForEachTriple(Minus(way.front(), Cubed(width - 1)), way.front(), [&](const Triple& cube) { seeds.push_back(cube); });
    const std::set<Triple> cubes =
        Reached(seeds, [&](const Triple& cube) { return hasWayInside(cube) && IsCubeEmpty(model, cube, width); });
    return std::any_of(cubes.begin(), cubes.end(), [&](const Triple& cube) { return Holds(cube, width, way.back()); });
}

void ExpectWay(const ReferenceModel& model, const Triple& start, const Leak& leak)
{
    const std::vector<Triple>& way = leak.voxels;
    ASSERT_EQ(way.front(), start);
    const Extents& extents = model.ExtentsRef();
    EXPECT_FALSE(IsWithin(way.back(), Plus(extents.LowerIndices(), Cubed(1)), Minus(extents.UpperIndices(), Cubed(1))));
    for (const Triple& voxel : way) EXPECT_FALSE(model.Value(voxel));
    for (std::size_t i = 1; i < way.size(); ++i)
        EXPECT_NE(std::find(Faces.begin(), Faces.end(), Minus(way[i], way[i - 1])), Faces.end());
    const Axes& axes = model.AxesRef();
    const auto centre = [&](const Triple& voxel) { return axes.ToWorldCoordinates(axes.VoxelCenter(voxel, model.VoxelLOD())); };
    EXPECT_EQ(leak.points.front(), centre(way.front()));
    EXPECT_EQ(leak.points.back(), centre(way.back()));
    EXPECT_LE(leak.points.size(), way.size());
}

void ExpectGap(const ReferenceModel& model, const Leak& leak)
{
    if (!leak.gap) { // at the rim, where all beyond is empty
        EXPECT_TRUE(PassesPlainly(model, leak.voxels, 6));
        return;
    }
    const std::int64_t width = leak.gap->width;
    for (std::int64_t narrower = 1; narrower <= width; ++narrower) EXPECT_TRUE(PassesPlainly(model, leak.voxels, narrower));
    EXPECT_FALSE(PassesPlainly(model, leak.voxels, width + 1)) << width;
    const Axes& axes = model.AxesRef(); // a hair below the centre of an even cube lies its middle voxel
    Triple inside = axes.FromWorldCoordinates(leak.gap->centre);
    const Triple size = axes.VoxelSize(model.VoxelLOD());
    for (std::size_t i = 0; i < 3; ++i) inside[i] -= width % 2 == 0 ? size[i] / 2 : 0;
    const Triple cube = Minus(axes.ContainingVoxel(inside, model.VoxelLOD()), Cubed((width - 1) / 2));
    EXPECT_TRUE(IsCubeEmpty(model, cube, width));
    EXPECT_TRUE(std::any_of(leak.voxels.begin(), leak.voxels.end(), [&](const Triple& v) { return Holds(cube, width, v); }));
}

TEST(FindLeak, TellsAShortestWayAndItsNarrowestPlace)
{
    int leaks = 0;
    int wide = 0;
    for (std::uint64_t seed = 1; seed <= Rounds(120); ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        const ReferenceModel caves = Caves(seed, 1 + static_cast<std::int64_t>(seed % 4));
        const VoxelModel<bool> model = MakeModel(caves);
        const Extents& extents = caves.ExtentsRef();
        Random random(seed);
        Triple start{};
        for (std::size_t i = 0; i < 3; ++i) start[i] = random.Between(extents.LowerIndices()[i], extents.UpperIndices()[i]);
        if (caves.Value(start)) continue;
        const std::optional<Leak> leak = FindLeak(model, caves.AxesRef().VoxelCenter(start, caves.VoxelLOD()));
        const std::int64_t steps = PlainStepsOut(caves, start);
        ASSERT_EQ(leak.has_value(), steps >= 0);
        if (!leak) continue;
        ASSERT_EQ(std::ssize(leak->voxels), steps + 1);
        ExpectWay(caves, start, *leak);
        ExpectGap(caves, *leak);
        ++leaks;
        wide += leak->gap && leak->gap->width > 1 ? 1 : 0;
    }
    EXPECT_GT(leaks, 0);
    EXPECT_GT(wide, 0);
}

// A hall 40 voxels wide with walls of 2 and a door 3 wide and 5 high; and a hatch above, a voxel wide.
TEST(FindLeak, FindsTheDoorAndThenTheHatch)
{
    const Extents extents(Axes(1, {0, 0, 0}, 0, 0), {-10, -10, -10}, {53, 53, 33}, 0);
    const auto isWithin = [](const Triple& voxel, const Triple& lower, const Triple& upper) {
        return IsWithin(voxel, lower, upper);
    };
    const auto hall = [&](bool hasDoor) {
        return ReferenceModel(extents, 0, 0).Where([&](const Triple& v) {
            if (hasDoor && isWithin(v, {42, 20, 2}, {43, 22, 6})) return false;
            if (isWithin(v, {9, 9, 22}, {9, 9, 23})) return false;
            return isWithin(v, {0, 0, 0}, {43, 43, 23}) && !isWithin(v, {2, 2, 2}, {41, 41, 21});
        });
    };
    const auto gapFrom = [&](bool hasDoor, const Triple& voxel) {
        return FindLeak(MakeModel(hall(hasDoor)), extents.AxesRef().VoxelCenter(voxel, 0))->gap;
    };
    const std::optional<Gap> door = gapFrom(true, {38, 21, 4});
    EXPECT_EQ(door->width, 3);
    EXPECT_NEAR(door->centre[0], 42.5, 2.5);
    EXPECT_EQ(door->centre[1], 21.5);
    const std::optional<Gap> hatch = gapFrom(false, {38, 21, 4});
    EXPECT_EQ(hatch->width, 1);
    EXPECT_EQ(hatch->centre[0], 9.5);
    EXPECT_EQ(hatch->centre[1], 9.5);
    const VoxelModel<bool> whole = MakeModel(hall(true));
    EXPECT_LT(CountFilled(SealedFill(whole, 2), 0), 44 * 44 * 24 - 1000); // the door is as wide as the cube
    EXPECT_EQ(CountFilled(SealedFill(whole, 3), 0), 44 * 44 * 24);
    EXPECT_EQ(gapFrom(true, {50, 50, 30}), std::nullopt); // outside, where any cube goes
}

TEST(FindLeak, RefusesPointsThatAreNotInEmptySpace)
{
    const ReferenceModel solid =
        ReferenceModel(Extents(Axes(1, {0, 0, 0}, 0, 0), {0, 0, 0}, {4, 4, 4}, 0), 0, 0).Where([](const Triple& voxel) {
            return voxel != Triple{2, 2, 2};
        });
    const VoxelModel<bool> model = MakeModel(solid);
    const auto search = [&](const Triple& voxel) { return FindLeak(model, solid.AxesRef().VoxelCenter(voxel, 0)); };
    EXPECT_EQ(search({2, 2, 2}), std::nullopt);
    EXPECT_EQ(MessageOf<std::domain_error>([&] {
                  (void)search({5, 0, 0});
              }),
              "The point from which a leak is searched must lie inside the extents.");
    EXPECT_EQ(MessageOf<std::domain_error>([&] {
                  (void)search({4, 0, 0});
              }),
              "The point from which a leak is searched must lie in an empty voxel.");
}

} // namespace
} // namespace brix
