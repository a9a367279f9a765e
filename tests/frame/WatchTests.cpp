#include "support/RandomModels.h"

#include <brix.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <thread>

namespace brix::tests {
namespace {

using std::chrono::milliseconds;
using Model = VoxelModel<bool>;

Model RandomModel(std::uint64_t seed)
{
    Random random(seed);
    const Extents extents(Axes(1.6, {1, 2, 3}, 30, 4), {-90, -70, -30}, {140, 80, 60}, 4);
    return MakeModel(RandomContent(random, extents, 4, 4));
}

// Says stop when it is asked for the nth time, or never.
class Listener
{
public:
    explicit Listener(std::size_t stopAt = 0) : stopAt_(stopAt) {}

    std::function<bool(double)> Callback()
    {
        return [this](double share) {
            shares.push_back(share);
            return shares.size() != stopAt_;
        };
    }

    std::vector<double> shares;

private:
    std::size_t stopAt_;
};

TEST(Watch, SharesRiseThroughPartsAndOuterWatches)
{
    const Model model = RandomModel(1);
    Listener outer;
    Listener inner;
    {
        Watch watch(outer.Callback(), milliseconds(0));
        watch.BeginPart(0.25);
        Invert(model);
        EXPECT_LE(outer.shares.back(), 0.25);
        watch.BeginPart(1);
        Watch inside(inner.Callback(), milliseconds(0));
        ExpandHorizontally(model, 9, std::nullopt, true);
    }
    for (const std::vector<double>& shares : {outer.shares, inner.shares}) {
        EXPECT_TRUE(std::is_sorted(shares.begin(), shares.end()));
        EXPECT_GT(shares.back(), 0.5);
        EXPECT_LE(shares.back(), 1);
    }
    EXPECT_GE(outer.shares[outer.shares.size() - inner.shares.size()], 0.25);
    const std::size_t told = outer.shares.size();
    Invert(model);
    EXPECT_EQ(outer.shares.size(), told); // the watches are over
}

TEST(Watch, IsLeftByWhateverItsCallbackThrows)
{
    const Model model = RandomModel(2);
    const Watch outer([](double) { return true; }, milliseconds(0));
    {
        const Watch watch([](double) -> bool { throw std::out_of_range("door"); });
        EXPECT_THROW(Invert(model), std::out_of_range);
    }
    Listener stops(1);
    const Watch watch(stops.Callback(), milliseconds(0));
    EXPECT_THROW(Invert(model), Cancelled);
    EXPECT_NO_THROW(Invert(model)); // asked again, it says go on
}

TEST(Watch, DoesNotWatchItsCallbackNorOtherThreads)
{
    const Model model = RandomModel(3);
    int asked = 0;
    const Watch watch(
        [&](double) {
            ++asked;
            Invert(model);
            return true;
        },
        milliseconds(0));
    std::thread([&] { Invert(model); }).join();
    EXPECT_EQ(asked, 0);
    Invert(model);
    EXPECT_GT(asked, 0);
}

TEST(Watch, EndsInAnyOrder)
{
    Listener first;
    Listener second;
    auto outer = std::make_unique<Watch>(first.Callback(), milliseconds(0));
    auto inner = std::make_unique<Watch>(second.Callback(), milliseconds(0));
    outer = nullptr;
    Invert(RandomModel(4));
    EXPECT_TRUE(first.shares.empty());
    EXPECT_FALSE(second.shares.empty());
    inner = nullptr;
    EXPECT_FALSE(WatchedLoop::IsWatched());
}

TEST(Watch, PausesBetweenQuestions)
{
    Listener listener;
    const Watch watch(listener.Callback(), std::chrono::hours(1));
    Invert(RandomModel(5));
    EXPECT_EQ(listener.shares.size(), 1U);
}

// Changes where a model stands, and what reads and writes: undisturbed they give what they give unwatched; stopped at any place
// they leave their model as it was.
TEST(Watch, LeavesAModelWhole)
{
    const Model model = RandomModel(6);
    const Model other = RandomModel(7);
    const Extents& extents = model.ExtentsRef(4);
    std::vector<std::uint8_t> bytes(DenseSize(extents));
    CopyVoxels(other, extents, bytes);
    std::stringstream stream;
    SaveModel(other, stream);
    const std::string saved = stream.str();
    const std::filesystem::path file = std::filesystem::temp_directory_path() / "brix-watch.stl";
    std::vector<WorldTriangle> triangles;
    TessellateVoxelModel(triangles, other, 4);
    const std::vector<std::function<void(Model&)>> changes{
        [&](Model& changed) { UnionInPlace(changed, other); },
        [&](Model& changed) { IntersectInPlace(changed, other); },
        [&](Model& changed) { SubtractInPlace(changed, other); },
        [&](Model& changed) { WriteVoxels(changed, extents, bytes); },
        [&](Model& changed) { changed = LoadModel(*std::make_unique<std::istringstream>(saved)); },
        [&](Model& changed) {
            std::size_t runs = 0;
            ForEachFilledRun(changed, 4, [&](const FilledRun&) { ++runs; });
            if (runs % 2 == 0) changed = Invert(changed);
        },
        [&](Model& changed) {
            SaveTrianglesToAsciiSTL(file, triangles, false);
            changed = Voxelize(changed.AxesRef(), LoadTrianglesFromSTL(file, false), 4);
        },
        [&](Model& changed) {
            SaveTrianglesToBinarySTL(file, triangles, false);
            changed = Voxelize(changed.AxesRef(), LoadTrianglesFromSTL(file, false), 4);
        }};
    for (std::size_t i = 0; i < changes.size(); ++i) {
        SCOPED_TRACE(i);
        Model expected = model;
        changes[i](expected);
        Listener listener;
        Model undisturbed = model;
        {
            const Watch watch(listener.Callback(), milliseconds(0));
            changes[i](undisturbed);
        }
        EXPECT_EQ(ContentHash(undisturbed), ContentHash(expected));
        const std::size_t count = listener.shares.size();
        for (const std::size_t stopAt : {std::size_t{1}, count / 5 + 1, count / 2, count * 4 / 5}) {
            Model changed = model;
            Listener stops(stopAt);
            {
                const Watch watch(stops.Callback(), milliseconds(0));
                EXPECT_THROW(changes[i](changed), Cancelled);
            }
            EXPECT_EQ(ContentHash(changed), ContentHash(model));
        }
    }
    std::filesystem::remove(file);
}

TEST(Watch, SortsAsEver)
{
    Random random(8);
    std::vector<std::int64_t> numbers(1 << 17);
    for (std::int64_t& number : numbers) number = random.Between(-1000, 1000);
    std::vector<std::int64_t> sorted = numbers;
    std::sort(sorted.begin(), sorted.end());
    Listener listener;
    const Watch watch(listener.Callback(), milliseconds(0));
    WatchedSort(numbers.begin(), numbers.end(), std::less<>());
    EXPECT_EQ(numbers, sorted);
    EXPECT_FALSE(listener.shares.empty());
}

} // namespace
} // namespace brix::tests
