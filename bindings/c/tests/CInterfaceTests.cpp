// The C interface over the engine: what it adds (handles, statuses, parts of results, world units) and that each function reaches
// the engine's function of its name with its arguments in order.
#include "Objects.h"

#include "model/FilledRuns.h"
#include "model/ModelSize.h"
#include "model/VoxelArrays.h"
#include "operations/AutoSplit.h"
#include "operations/BasicOperations.h"
#include "operations/DensityMap.h"
#include "operations/FillOperations.h"
#include "operations/LabelRegions.h"
#include "operations/ProximityOperations.h"
#include "operations/SliceRows.h"
#include "operations/SolidOperations.h"
#include "operations/SurfaceOperations.h"
#include "storage/SavedModel.h"
#include "storage/VoxelFiles.h"
#include "support/FailingAllocations.h"
#include "support/Messages.h"
#include "travel/Path.h"
#include "triangles/Cuboidization.h"
#include "triangles/Solidization.h"
#include "triangles/StlReader.h"
#include "triangles/SurfaceMesh.h"
#include "triangles/Tessellation.h"
#include "triangles/TriangleMesh.h"
#include "triangles/Voxelization.h"
#include "triangles/Voxelize.h"
#include "visibility/Visibility.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <sstream>

namespace brix {
namespace {

using namespace tests;

constexpr std::int64_t most = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t least = std::numeric_limits<std::int64_t>::min();
constexpr double nan = std::numeric_limits<double>::quiet_NaN();

struct Failure
{
    std::int32_t status = BRIX_OK;
    std::string message;
};

// What function(arguments ..., error) says.
template <class... Parameters, class... Arguments>
Failure FailureOf(std::int32_t (*function)(Parameters...), const Arguments&... arguments)
{
    brix_error error{};
    Failure failure;
    failure.status = function(arguments..., &error);
    failure.message.assign(error.message == nullptr ? "" : error.message, static_cast<std::size_t>(error.length));
    EXPECT_EQ(error.status, failure.status);
    brix_error_clear(&error);
    EXPECT_EQ(error.message, nullptr);
    return failure;
}

// The object or number that function(arguments ..., result, error) gives.
template <class Result, class... Parameters, class... Arguments>
auto Get(std::int32_t (*function)(Parameters...), const Arguments&... arguments)
{
    Result result{};
    const Failure failure = FailureOf(function, arguments..., &result);
    EXPECT_EQ(failure.status, BRIX_OK) << failure.message;
    if constexpr (std::is_pointer_v<Result>)
        return Owned<std::remove_pointer_t<Result>>(result);
    else
        return result;
}

std::string TextOf(const Owned<brix_bytes>& bytes)
{
    std::string text(static_cast<std::size_t>(Get<std::int64_t>(brix_bytes_size, bytes.get())), '\0');
    auto* const to = reinterpret_cast<std::uint8_t*>(text.data());
    EXPECT_EQ(brix_bytes_copy(bytes.get(), 0, std::ssize(text), to, nullptr), BRIX_OK);
    return text;
}

template <class Number, class... Parameters, class... Arguments>
std::array<Number, 3> GetThree(std::int32_t (*function)(Parameters...), const Arguments&... arguments)
{
    std::array<Number, 3> result{};
    const Failure failure = FailureOf(function, arguments..., result.data());
    EXPECT_EQ(failure.status, BRIX_OK) << failure.message;
    return result;
}

// All items of a list, which must be so wide.
template <std::size_t width> std::vector<std::array<double, width>> ItemsOf(const Owned<brix_list>& list)
{
    std::int64_t size = 0;
    std::int64_t itsWidth = 0;
    EXPECT_EQ(brix_list_size(list.get(), &size, &itsWidth, nullptr), BRIX_OK);
    if (itsWidth != width) throw std::logic_error("items of another width");
    std::vector<std::array<double, width>> items(static_cast<std::size_t>(size));
    if (size > 0) {
        EXPECT_EQ(brix_list_copy(list.get(), 0, size, items.front().data(), nullptr), BRIX_OK);
    }
    return items;
}

template <class Item, class Map> auto Mapped(const std::vector<Item>& items, const Map& map)
{
    std::vector<decltype(map(items.front()))> mapped;
    for (const Item& item : items) mapped.push_back(map(item));
    return mapped;
}

// A tetrahedron's shell in a frame that is turned, moved and flat, in both languages.
class CInterface : public ::testing::Test
{
protected:
    std::vector<WorldTriangle> triangles_ = [] {
        const std::array<std::array<double, 3>, 4> p{{{3, 1, 2}, {9, 2, 1}, {4, 8, 2}, {5, 3, 7}}};
        return std::vector<WorldTriangle>{{p[0], p[2], p[1]}, {p[0], p[1], p[3]}, {p[1], p[2], p[3]}, {p[2], p[0], p[3]}};
    }();
    std::array<double, 3> origin_{1, -2, 0.5};
    Axes axes_{1.5, origin_, 30, 2};
    std::int64_t count_ = static_cast<std::int64_t>(triangles_.size());
    const double* coords_ = triangles_.front().front().data();

    Owned<brix_axes> cAxes_ = Get<brix_axes*>(brix_axes_create, 1.5, origin_.data(), 30.0, 2);
    Owned<brix_extents> cExtents_ = Get<brix_extents*>(brix_detect_triangle_extents, cAxes_.get(), coords_, count_);
    Owned<brix_model> cModel_ = Get<brix_model*>(brix_model_from_triangles, coords_, count_, cExtents_.get(), 3);
    Owned<brix_model> cOther_ = Get<brix_model*>(brix_expand_along_x, cModel_.get(), 0, 2, nullptr, 0);
    Voxels model_ = [this] {
        const Extents extents = DetectTriangleExtents(axes_, triangles_);
        TriangleModel filed(extents);
        filed.AddWorldTriangles(triangles_);
        Voxels voxels(extents, 3);
        VoxelizeTriangleModel(voxels, filed);
        return voxels;
    }();
    std::optional<Voxels> other_ = ExpandAlongX(model_, 0, 2, std::nullopt, false);
    std::array<double, 3> inside_{5, 3.5, 3};
    Triple insideUnits_ = axes_.FromWorldCoordinates(inside_);
};

// Same extents, finest level and slices at the finest level.
void ExpectSame(const Voxels& expected, const brix_model* actual, const char* name)
{
    const std::int64_t lod = expected.FinestLOD();
    ASSERT_EQ(Get<std::int64_t>(brix_model_finest_lod, actual), lod) << name;
    const auto extents = Get<brix_extents*>(brix_model_extents, actual, lod);
    const Triple lower = GetThree<std::int64_t>(brix_extents_lower_indices, extents.get());
    const Triple upper = GetThree<std::int64_t>(brix_extents_upper_indices, extents.get());
    ASSERT_EQ(lower, expected.ExtentsRef(lod).LowerIndices()) << name;
    ASSERT_EQ(upper, expected.ExtentsRef(lod).UpperIndices()) << name;
    for (std::int64_t z = lower[2]; z <= upper[2]; ++z) {
        const auto rows = Get<brix_rows*>(brix_rows_at_slice, actual, 2, z, lod, 0, 0);
        std::vector<std::uint8_t> row(static_cast<std::size_t>(upper[0] - lower[0] + 1));
        std::int64_t index = 0;
        for (const std::vector<bool>& expectedRow : RowsAtSliceZIndex(expected, z, lod, false, false)) {
            ASSERT_EQ(brix_rows_copy(rows.get(), index++, 1, row.data(), nullptr), BRIX_OK);
            ASSERT_EQ(std::vector<bool>(row.begin(), row.end()), expectedRow) << name << " at z " << z;
        }
    }
}

TEST_F(CInterface, ConvertsManyPointsAndVoxelsAsOne)
{
    const std::vector<std::array<double, 3>> points{{3, 1, 2}, {-9.25, 2, -1e3}, {4e300, 8, nan}};
    std::vector<Triple> voxels(points.size());
    std::vector<std::array<double, 3>> centres(points.size());
    ASSERT_EQ(
        brix_axes_containing_voxels(cAxes_.get(), points.front().data(), std::ssize(points), 3, voxels.front().data(), nullptr),
        BRIX_OK);
    ASSERT_EQ(
        brix_axes_voxel_centers(cAxes_.get(), voxels.front().data(), std::ssize(voxels), 3, centres.front().data(), nullptr),
        BRIX_OK);
    for (std::size_t i = 0; i < points.size(); ++i) {
        EXPECT_EQ(voxels[i], GetThree<std::int64_t>(brix_axes_containing_voxel, cAxes_.get(), points[i].data(), 3)) << i;
        EXPECT_EQ(centres[i], GetThree<double>(brix_axes_voxel_center, cAxes_.get(), voxels[i].data(), 3)) << i;
    }
    EXPECT_EQ(brix_axes_containing_voxels(cAxes_.get(), nullptr, 0, 3, nullptr, nullptr), BRIX_OK);
}

TEST_F(CInterface, ReachesTheOperationOfEachName)
{
    const auto expect = [&](const char* name, const Voxels& expected, auto function, const auto&... arguments) {
        ExpectSame(expected, Get<brix_model*>(function, cModel_.get(), arguments...).get(), name);
    };
    ExpectSame(model_, cModel_.get(), "from triangles");
    expect("crop", Crop(model_, 1, 2, 3, 1, 2, 0), brix_crop, 1, 2, 3, 1, 2, 0);
    expect("enlarge", Enlarge(model_, 1, 2, 3, 4, 5, 6), brix_enlarge, 1, 2, 3, 4, 5, 6);
    expect("auto-crop", AutoCrop(model_), brix_auto_crop);
    expect("relocate", Relocate(model_, Axes(2, {0, 0, 0}, 0, 1)), brix_relocate,
           Get<brix_axes*>(brix_axes_create, 2.0, std::array<double, 3>{}.data(), 0.0, 1).get());
    const Extents box(axes_, {2, 1, 3}, {4, 5, 6}, 1);
    expect("resize", Resize(model_, box), brix_resize,
           Get<brix_extents*>(brix_extents_create, cAxes_.get(), Triple{2, 1, 3}.data(), Triple{4, 5, 6}.data(), 1).get());
    expect("refine", Refine(model_, 4), brix_refine, 4);
    expect("invert", Invert(model_), brix_invert);
    expect("subtract", Subtract(model_, *other_, 3, false), brix_subtract, cOther_.get(), 3, 0);

    const std::array<const brix_model*, 2> both{cModel_.get(), cOther_.get()};
    ExpectSame(Union({&model_, &*other_}, 3, true), Get<brix_model*>(brix_union, both.data(), 2, 3, 1).get(), "union");
    ExpectSame(Intersect({&model_, &*other_}, 2, true), Get<brix_model*>(brix_intersect, both.data(), 2, 2, 1).get(),
               "intersect");

    const std::optional<Voxels> none;
    const auto* guide = cOther_.get();
    const brix_model* noGuide = nullptr;
    expect("expand x", ExpandAlongX(model_, 1, 3, none, true), brix_expand_along_x, 1, 3, noGuide, 1);
    expect("expand y", ExpandAlongY(model_, 1, 3, other_, false), brix_expand_along_y, 1, 3, guide, 0);
    expect("expand z", ExpandAlongZ(model_, 1, 3, none, true), brix_expand_along_z, 1, 3, noGuide, 1);
    expect("expand by one", ExpandByOneVoxel(model_, 1, 2, none, true), brix_expand_by_one_voxel, 1, 2, noGuide, 1);
    expect("expand disc", ExpandHorizontally(model_, 4, other_, false), brix_expand_horizontally, 4, guide, 0);
    const auto ofOther = [&](const char* name, const Voxels& expected, auto function, const auto&... arguments) {
        ExpectSame(expected, Get<brix_model*>(function, cOther_.get(), arguments...).get(), name);
    };
    ofOther("reduce x", ReduceAlongX(*other_, 1, 0, none, false), brix_reduce_along_x, 1, 0, noGuide, 0);
    ofOther("reduce y", ReduceAlongY(*other_, 0, 1, none, true), brix_reduce_along_y, 0, 1, noGuide, 1);
    ofOther("reduce z", ReduceAlongZ(*other_, 1, 0, model_, false), brix_reduce_along_z, 1, 0, cModel_.get(), 0);
    ofOther("reduce by one", ReduceByOneVoxel(*other_, 2, 1, none, false), brix_reduce_by_one_voxel, 2, 1, noGuide, 0);
    ofOther("reduce disc", ReduceHorizontally(*other_, 2, none, true), brix_reduce_horizontally, 2, noGuide, 1);

    expect("fill from point", FillFromPoint(model_, insideUnits_), brix_fill_from_point, inside_.data());
    expect("fill exposed", FillExposedRegions(model_), brix_fill_exposed_regions);
    expect("fill enclosed", FillEnclosedRegions(model_), brix_fill_enclosed_regions);
    expect("sealed fill", SealedFill(model_, 2), brix_sealed_fill, 2);
    expect("seen from a point", VisibilityFromPoint(model_, {0, 0, 0}, 2, axes_.FromWorldDistance(6), 0.3, true),
           brix_visibility_from_point, origin_.data(), 2, 6.0, 0.3, 1);
    EXPECT_EQ(Get<std::int64_t>(brix_count_filled, cModel_.get(), 2), CountFilled(model_, 2));
    EXPECT_EQ(Get<std::int32_t>(brix_is_empty, cModel_.get(), 2), 0);
    EXPECT_EQ(Get<std::int32_t>(brix_is_full, cModel_.get(), 2), 0);
}

TEST_F(CInterface, TurnsDirectionsIntoTheFrameWhateverTheirLengthAndItsOrigin)
{
    constexpr double length = 2800000000.0;
    const double sin = std::sin(30 * 0.017453292519943295);
    const double cos = std::cos(30 * 0.017453292519943295);
    struct Case
    {
        std::array<double, 3> world;
        Triple units;
    };
    const Case cases[] = {
        {{0, 0, -1e-300}, {0, 0, -2800000000}},
        {{cos * 1e300, sin * 1e300, 0}, {2800000000, 0, 0}},
        {{-sin * 7, cos * 7, 0}, {0, 2800000000, 0}},
        {{1, 2, -2}, {std::llround(length * (cos + 2 * sin) / 3), std::llround(length * (2 * cos - sin) / 3), -1866666667}},
    };
    for (const Case& c : cases) {
        ExpectSame(VisibilityFromDirection(model_, c.units, 3, 0.4),
                   Get<brix_model*>(brix_visibility_from_direction, cModel_.get(), c.world.data(), 3, 0.4).get(), "direction");
    }
    const std::string zero = MessageOf([&] { VisibilityFromDirection(model_, {0, 0, 0}, 3, 0.4); });
    for (const std::array<double, 3>& direction : {std::array<double, 3>{0, 0, 0}, {nan, 0, 1}, {0, HUGE_VAL, 0}}) {
        brix_model* result = nullptr;
        const Failure failure = FailureOf(brix_visibility_from_direction, cModel_.get(), direction.data(), 3, 0.4, &result);
        EXPECT_EQ(failure.message, zero);
        EXPECT_EQ(result, nullptr);
    }
}

TEST_F(CInterface, FindsSingleVoxelsAndKeepsTheirModelAlive)
{
    const auto same = [](const ConstVoxelIterator& expected, const Owned<brix_iterator>& actual) {
        ASSERT_EQ(Get<std::int32_t>(brix_iterator_is_valid, actual.get()) != 0, expected.IsValid());
        if (!expected.IsValid()) return;
        EXPECT_EQ(GetThree<std::int64_t>(brix_iterator_voxel_indices, actual.get()), expected.VoxelIndices());
        EXPECT_EQ(Get<std::int32_t>(brix_iterator_is_filled, actual.get()) != 0, expected.Value());
        EXPECT_EQ(Get<std::int64_t>(brix_iterator_voxel_lod, actual.get()), expected.VoxelLOD());
    };
    const auto nearest = [&](auto function, const auto&... arguments) {
        return Get<brix_iterator*>(function, cModel_.get(), inside_.data(), arguments...);
    };
    same(NearestFilledAlongX(model_, insideUnits_, 40, 1), nearest(brix_nearest_filled_along_x, 40, 1));
    same(NearestFilledAlongX(model_, insideUnits_, 1, 40), nearest(brix_nearest_filled_along_x, 1, 40));
    same(NearestFilledAlongY(model_, insideUnits_, 1, 40), nearest(brix_nearest_filled_along_y, 1, 40));
    same(NearestFilledAlongZ(model_, insideUnits_, 40, 1), nearest(brix_nearest_filled_along_z, 40, 1));
    same(NearestFilledHorizontally(model_, insideUnits_, 30), nearest(brix_nearest_filled_horizontally, 30));
    same(std::as_const(model_).FindVoxel({5, 6, 7}, 3),
         Get<brix_iterator*>(brix_iterator_create, cModel_.get(), Triple{5, 6, 7}.data(), 3));

    auto voxel = Get<brix_iterator*>(brix_iterator_at_point, cModel_.get(), inside_.data(), 1);
    cModel_.reset();
    const Triple indices = axes_.ContainingVoxel(insideUnits_, 1);
    EXPECT_EQ(GetThree<std::int64_t>(brix_iterator_voxel_indices, voxel.get()), indices);
    EXPECT_EQ(GetThree<double>(brix_iterator_voxel_center, voxel.get()), axes_.ToWorldCoordinates(axes_.VoxelCenter(indices, 1)));
    ExpectSame(model_, Get<brix_model*>(brix_iterator_model, voxel.get()).get(), "of an iterator");

    voxel = Get<brix_iterator*>(brix_iterator_advance, voxel.get(), Triple{1, -1, 2}.data());
    EXPECT_EQ(GetThree<std::int64_t>(brix_iterator_voxel_indices, voxel.get()), Plus(indices, {1, -1, 2}));
    const auto outside = Get<brix_iterator*>(brix_iterator_advance, voxel.get(), Triple{most, least, 0}.data());
    std::int32_t value = 7;
    const Failure failure = FailureOf(brix_iterator_is_filled, outside.get(), &value);
    EXPECT_EQ(failure.status, BRIX_OUT_OF_RANGE);
    EXPECT_EQ(failure.message, "Attempt to operate on a voxel iterator that points outside the voxel model extents.");
    EXPECT_EQ(value, 7);
}

TEST_F(CInterface, VoxelizesInOneStepAndLooksUpManyVoxelsAtOnce)
{
    const auto model = Get<brix_model*>(brix_voxelize, cAxes_.get(), coords_, count_, 3);
    const Voxels expected = Voxelize(axes_, triangles_, 3);
    ExpectSame(expected, model.get(), "brix_voxelize");

    std::vector<Triple> places{{1 << 30, 0, 0}};
    const Extents& extents = expected.ExtentsRef(3);
    ForEachTriple(extents.LowerIndices(), extents.UpperIndices(), [&](const Triple& voxel) { places.push_back(voxel); });
    std::vector<std::uint8_t> filled(places.size(), 2);
    const auto count = static_cast<std::int64_t>(places.size());
    ASSERT_EQ(brix_are_filled(model.get(), places.front().data(), count, 3, filled.data(), nullptr), BRIX_OK);
    for (std::size_t i = 0; i < places.size(); ++i)
        ASSERT_EQ(filled[i], i > 0 && expected.FindVoxel(places[i], 3).Value() ? 1 : 0);
    EXPECT_EQ(brix_are_filled(model.get(), nullptr, 0, 3, nullptr, nullptr), BRIX_OK);
    for (const std::int64_t wrong : {std::int64_t{-1}, std::numeric_limits<std::int64_t>::max()}) {
        EXPECT_EQ(FailureOf(brix_are_filled, model.get(), places.front().data(), wrong, 3, filled.data()).status,
                  BRIX_INVALID_ARGUMENT);
    }
}

TEST_F(CInterface, MovesVoxelsAndModelsThroughMemory)
{
    const auto extents = Get<brix_extents*>(brix_model_extents, cModel_.get(), 2);
    std::vector<std::uint8_t> expected(DenseSize(model_.ExtentsRef(2)));
    CopyVoxels(model_, model_.ExtentsRef(2), expected);
    std::vector<std::uint8_t> bytes(expected.size(), 7);
    const std::int64_t size = std::ssize(bytes);
    ASSERT_EQ(brix_copy_voxels(cModel_.get(), extents.get(), bytes.data(), size, nullptr), BRIX_OK);
    EXPECT_EQ(bytes, expected);
    EXPECT_EQ(FailureOf(brix_copy_voxels, cModel_.get(), extents.get(), bytes.data(), size - 1).status, BRIX_INVALID_ARGUMENT);
    EXPECT_EQ(FailureOf(brix_copy_voxels, cModel_.get(), extents.get(), bytes.data(), std::int64_t{-1}).status,
              BRIX_INVALID_ARGUMENT);
    const auto made = Get<brix_model*>(brix_model_from_voxels, extents.get(), bytes.data(), size, 3);
    ExpectSame(ModelFromVoxels(model_.ExtentsRef(2), expected, 3), made.get(), "brix_model_from_voxels");
    for (std::size_t i = 0; i < bytes.size(); i += 3) bytes[i] ^= 1;
    const auto written = Get<brix_model*>(brix_write_voxels, cModel_.get(), extents.get(), bytes.data(), size);
    Voxels changed = model_;
    WriteVoxels(changed, changed.ExtentsRef(2), bytes);
    ExpectSame(changed, written.get(), "brix_write_voxels");

    const auto [strideY, strideZ] = DenseStrides(model_.ExtentsRef(2));
    const std::int64_t wideZ = strideZ + 3 * strideY; // three rows more in each layer
    const Triple last = Minus(model_.ExtentsRef(2).UpperIndices(), model_.ExtentsRef(2).LowerIndices());
    const std::int64_t wideSize = last[0] + last[1] * strideY + last[2] * wideZ + 1;
    std::vector<std::uint8_t> wide(static_cast<std::size_t>(wideSize), 7);
    const auto copyWide = [&](std::int64_t count, std::int64_t y, std::int64_t z) {
        return brix_copy_voxels_strided(written.get(), extents.get(), wide.data(), count, y, z, nullptr);
    };
    ASSERT_EQ(copyWide(wideSize, strideY, wideZ), BRIX_OK);
    const auto rewritten = Get<brix_model*>(brix_write_voxels_strided, cModel_.get(), extents.get(), wide.data(), wideSize,
                                            std::int64_t{strideY}, wideZ);
    ExpectSame(changed, rewritten.get(), "brix_write_voxels_strided");
    EXPECT_EQ(std::count(wide.begin(), wide.end(), 7), wideSize - size);
    constexpr std::int64_t huge = std::numeric_limits<std::int64_t>::max();
    EXPECT_EQ(copyWide(wideSize - 1, strideY, wideZ), BRIX_INVALID_ARGUMENT);
    EXPECT_EQ(copyWide(wideSize, huge, huge), BRIX_INVALID_ARGUMENT);
    EXPECT_EQ(copyWide(huge, strideY, -1), BRIX_INVALID_ARGUMENT);

    using Numbers = std::vector<std::int64_t>;
    Numbers runs;
    const auto addRuns = [](void* context, const std::int64_t* numbers, std::int64_t count) {
        static_cast<Numbers*>(context)->insert(static_cast<Numbers*>(context)->end(), numbers, numbers + 4 * count);
        return std::int32_t{count < 1000};
    };
    Numbers expectedRuns;
    ForEachFilledRun(model_, 2, [&](const FilledRun& run) {
        expectedRuns.insert(expectedRuns.end(), {run.lowerX, run.upperX, run.y, run.z});
    });
    ASSERT_EQ(brix_for_each_filled_run(cModel_.get(), 2, addRuns, &runs, nullptr), BRIX_OK);
    expectedRuns.resize(std::min<std::size_t>(expectedRuns.size(), 4000));
    EXPECT_EQ(runs, expectedRuns);
    EXPECT_EQ((Get<double>(brix_most_bytes_of_model, extents.get(), 3)), MostBytesOfModel(model_.ExtentsRef(2), 3));
    std::vector<WorldTriangle> tessellated;
    TessellateVoxelModel(tessellated, model_, 2);
    EXPECT_EQ((Get<std::int64_t>(brix_count_tessellation_triangles, cModel_.get(), 2)), std::ssize(tessellated));

    const auto stl = Get<brix_bytes*>(brix_save_stl_bytes, tessellated.front().front().data(), std::ssize(tessellated), 1, 0);
    std::vector<std::uint8_t> file(static_cast<std::size_t>(Get<std::int64_t>(brix_bytes_size, stl.get())));
    ASSERT_EQ(brix_bytes_copy(stl.get(), 0, std::ssize(file), file.data(), nullptr), BRIX_OK);
    std::stringstream stream;
    SaveTrianglesToSTL(stream, tessellated, StlVariant::Binary, false);
    EXPECT_EQ(std::string(file.begin(), file.end()), stream.str());
    const std::vector<WorldTriangle> read = LoadTrianglesFromSTL(stream, false);
    EXPECT_EQ(read, LoadTrianglesFromSTL(file, false));
    const auto list = Get<brix_list*>(brix_load_stl_bytes, file.data(), std::ssize(file), 0);
    std::vector<WorldTriangle> copied(read.size());
    ASSERT_EQ(brix_list_copy(list.get(), 0, std::ssize(read), copied.front().front().data(), nullptr), BRIX_OK);
    EXPECT_EQ(copied, read);

    const auto saved = Get<brix_bytes*>(brix_save_model, cModel_.get());
    const auto savedSize = Get<std::int64_t>(brix_bytes_size, saved.get());
    bytes.assign(static_cast<std::size_t>(savedSize), 0);
    ASSERT_EQ(brix_bytes_copy(saved.get(), 0, 10, bytes.data(), nullptr), BRIX_OK);
    ASSERT_EQ(brix_bytes_copy(saved.get(), 10, savedSize - 10, bytes.data() + 10, nullptr), BRIX_OK);
    EXPECT_EQ(bytes, SaveModel(model_));
    EXPECT_EQ(FailureOf(brix_bytes_copy, saved.get(), 10, savedSize - 9, bytes.data()).status, BRIX_INVALID_ARGUMENT);
    ExpectSame(model_, Get<brix_model*>(brix_load_model, bytes.data(), savedSize).get(), "brix_load_model");
    std::array<std::uint8_t, 16> hash{};
    ASSERT_EQ(brix_content_hash(cModel_.get(), hash.data(), nullptr), BRIX_OK);
    EXPECT_TRUE(std::equal(hash.begin(), hash.end(), bytes.end() - 16));
    for (const bool isPacked : {false, true}) {
        std::ostringstream npy;
        SaveNpy(model_, 2, npy, isPacked ? NpyVoxels::PackedBits : NpyVoxels::Bytes);
        EXPECT_EQ(TextOf(Get<brix_bytes*>(brix_save_npy, cModel_.get(), 2, isPacked)), npy.str());
    }
    std::ostringstream nrrd;
    SaveNrrd(model_, 2, nrrd);
    EXPECT_EQ(TextOf(Get<brix_bytes*>(brix_save_nrrd, cModel_.get(), 2)), nrrd.str());
    bytes.back() ^= 1;
    brix_model* damaged = nullptr;
    EXPECT_EQ(FailureOf(brix_load_model, bytes.data(), savedSize, &damaged).status, BRIX_FILE_FAILURE);

    const TriangleMesh mesh(triangles_);
    std::vector<std::int32_t> corners;
    for (const auto& triangle : mesh.IndexedTrianglesRef()) {
        for (const std::int64_t corner : triangle) corners.push_back(static_cast<std::int32_t>(corner));
    }
    const auto fromMesh = Get<brix_model*>(brix_voxelize_mesh, cAxes_.get(), mesh.VerticesRef().front().data(),
                                           std::ssize(mesh.VerticesRef()), corners.data(), count_, 3);
    ExpectSame(Voxelize(axes_, triangles_, 3), fromMesh.get(), "brix_voxelize_mesh");
    std::vector<std::array<float, 3>> floats;
    for (const auto& [x, y, z] : mesh.VerticesRef())
        floats.push_back({static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)});
    std::vector<std::array<std::uint32_t, 3>> indices(corners.size() / 3);
    std::memcpy(indices.data(), corners.data(), corners.size() * sizeof(std::int32_t));
    const auto fromFloats = Get<brix_model*>(brix_voxelize_float_mesh, cAxes_.get(), floats.front().data(), std::ssize(floats),
                                             corners.data(), count_, 3);
    ExpectSame(Voxelize(axes_, std::span<const std::array<float, 3>>(floats), indices, 3), fromFloats.get(), "of floats");
    std::array<std::uint8_t, 2> filled{7, 7};
    const std::array<double, 6> points{triangles_[0][0][0], triangles_[0][0][1], triangles_[0][0][2], 1e6, 0, 0};
    ASSERT_EQ(brix_are_filled_at(fromMesh.get(), points.data(), 2, 3, filled.data(), nullptr), BRIX_OK);
    EXPECT_EQ(filled[0], 1);
    EXPECT_EQ(filled[1], 0);
}

TEST_F(CInterface, CopiesResultsWholeOrInParts)
{
    std::vector<WorldTriangle> expected;
    TessellateVoxelModel(expected, model_, 2);
    const auto list = Get<brix_list*>(brix_tessellate_voxel_model, cModel_.get(), 2);
    std::int64_t size = 0;
    std::int64_t width = 0;
    ASSERT_EQ(brix_list_size(list.get(), &size, &width, nullptr), BRIX_OK);
    ASSERT_EQ(size, static_cast<std::int64_t>(expected.size()));
    ASSERT_EQ(width, 9);
    std::vector<WorldTriangle> pieces(expected.size());
    for (std::int64_t first = 0, count = 1; first < size; first += count, count = std::min(2 * count + 1, size - first)) {
        double* place = pieces[static_cast<std::size_t>(first)].front().data();
        ASSERT_EQ(brix_list_copy(list.get(), first, count, place, nullptr), BRIX_OK);
    }
    EXPECT_EQ(pieces, expected);

    for (const auto& part :
         {std::pair<std::int64_t, std::int64_t>{-1, 1}, {0, -1}, {0, size + 1}, {size + 1, 0}, {1, most}, {least, least}}) {
        double* const place = pieces.front().front().data();
        const Failure failure = FailureOf(brix_list_copy, list.get(), part.first, part.second, place);
        EXPECT_EQ(failure.message, "The part to be copied must lie within the result. The part from " +
                                       std::to_string(part.first) + " on, " + std::to_string(part.second) +
                                       " long, was requested of " + std::to_string(size) + ".");
    }
}

TEST_F(CInterface, ReadsMeshesFromListsAndTriangles)
{
    const auto mesh = Get<brix_mesh*>(brix_mesh_from_triangles, coords_, count_);
    std::int64_t vertices = 0;
    std::int64_t triangles = 0;
    ASSERT_EQ(brix_mesh_size(mesh.get(), &vertices, &triangles, nullptr), BRIX_OK);
    ASSERT_EQ(vertices, 4);
    ASSERT_EQ(triangles, 4);
    std::vector<double> points(12);
    std::vector<std::int32_t> indices(12);
    ASSERT_EQ(brix_mesh_copy_vertices(mesh.get(), 0, 4, points.data(), nullptr), BRIX_OK);
    ASSERT_EQ(brix_mesh_copy_indices(mesh.get(), 0, 4, indices.data(), nullptr), BRIX_OK);

    const auto again = Get<brix_mesh*>(brix_mesh_create, points.data(), 4, indices.data(), 4);
    std::vector<WorldTriangle> expanded(2);
    ASSERT_EQ(brix_mesh_copy_triangles(again.get(), 1, 2, expanded.front().front().data(), nullptr), BRIX_OK);
    EXPECT_EQ(expanded, std::vector(triangles_.begin() + 1, triangles_.begin() + 3));

    indices[4] = 4;
    brix_mesh* result = nullptr;
    const auto create = [&](std::int64_t vertexCount, std::int64_t triangleCount) {
        return FailureOf(brix_mesh_create, points.data(), vertexCount, indices.data(), triangleCount, &result).status;
    };
    EXPECT_EQ(create(4, 4), BRIX_INVALID_ARGUMENT);
    EXPECT_EQ(create(-1, 4), BRIX_INVALID_ARGUMENT);
    EXPECT_EQ(create(4, least), BRIX_INVALID_ARGUMENT);
    EXPECT_EQ(create(most, 4), BRIX_INVALID_ARGUMENT);
}

TEST_F(CInterface, ReachesSurfaceMeshes)
{
    for (const int smooth : {0, 1}) {
        const FaceMesh expected = SurfaceMesh(model_, 2, {smooth != 0 ? SurfaceStyle::Smooth : SurfaceStyle::Blocky, 2 * smooth});
        const auto mesh = Get<brix_mesh*>(brix_surface_mesh, cModel_.get(), 2, smooth, 2 * smooth);
        std::int64_t vertexCount = 0;
        std::int64_t triangleCount = 0;
        ASSERT_EQ(brix_mesh_size(mesh.get(), &vertexCount, &triangleCount, nullptr), BRIX_OK);
        ASSERT_EQ(vertexCount, std::ssize(expected.vertices));
        ASSERT_EQ(triangleCount, 2 * std::ssize(expected.faces));
        ASSERT_EQ((Get<std::int64_t>(brix_mesh_normal_count, mesh.get())), std::ssize(expected.normals));
        std::vector<std::array<double, 3>> vertices(expected.vertices.size());
        std::vector<std::array<float, 3>> normals(expected.normals.size());
        std::vector<std::array<std::int32_t, 3>> triangles(2 * expected.faces.size());
        ASSERT_EQ(brix_mesh_copy_vertices(mesh.get(), 0, vertexCount, vertices.front().data(), nullptr), BRIX_OK);
        ASSERT_EQ(brix_mesh_copy_indices(mesh.get(), 0, triangleCount, triangles.front().data(), nullptr), BRIX_OK);
        EXPECT_EQ(brix_mesh_copy_normals(mesh.get(), 0, std::ssize(normals), smooth ? normals.front().data() : nullptr, nullptr),
                  BRIX_OK);
        EXPECT_EQ(brix_mesh_copy_normals(mesh.get(), 0, vertexCount + 1, &normals.emplace_back()[0], nullptr),
                  BRIX_INVALID_ARGUMENT);
        normals.pop_back();
        EXPECT_EQ(vertices, expected.vertices);
        EXPECT_EQ(normals, expected.normals);
        for (std::size_t i = 0; i < triangles.size(); ++i) {
            const auto [a, b, c] = TriangleOf(expected, i);
            ASSERT_EQ((std::array<std::int64_t, 3>{a, b, c}),
                      (std::array<std::int64_t, 3>{triangles[i][0], triangles[i][1], triangles[i][2]}));
        }
    }
    brix_mesh* none = nullptr;
    EXPECT_EQ(FailureOf(brix_surface_mesh, cModel_.get(), 0, 1, -1, &none).message,
              "The number of smoothing steps must lie between 0 and 1000. The value encountered was -1.");
}

TEST_F(CInterface, ReachesSplittingDensitiesConversionsAndNarrowedViews)
{
    EXPECT_EQ(ItemsOf<6>(Get<brix_list*>(brix_cuboidize_voxel_model, cModel_.get(), 2)),
              Mapped(CuboidizeVoxelModel(model_, 2), [&](const VoxelCuboid& cuboid) { return ToWorldCuboid(cuboid, axes_, 2); }));
    EXPECT_EQ(ItemsOf<12>(Get<brix_list*>(brix_solidize_voxel_model, cModel_.get(), 1)),
              Mapped(SolidizeVoxelModel(model_, 1), [&](const VoxelRectangle& rectangle) {
                  const auto [a, b, c, d] = ToWorldRectangle(rectangle, axes_, 1);
                  return std::array{a[0], a[1], a[2], b[0], b[1], b[2], c[0], c[1], c[2], d[0], d[1], d[2]};
              }));

    const auto expectModels = [&](const std::vector<Voxels>& expected, const Owned<brix_models>& actual, const char* name) {
        ASSERT_EQ(Get<std::int64_t>(brix_models_size, actual.get()), static_cast<std::int64_t>(expected.size())) << name;
        for (std::size_t i = 0; i < expected.size(); ++i) {
            ExpectSame(expected[i], Get<brix_model*>(brix_models_get, actual.get(), static_cast<std::int64_t>(i)).get(), name);
        }
    };
    const auto inverted = Get<brix_model*>(brix_invert, cModel_.get());
    expectModels(AutoSplit(Invert(model_)), Get<brix_models*>(brix_auto_split, inverted.get()), "split");
    const Extents& whole = model_.ExtentsRef(3);
    std::vector<std::uint32_t> labels(DenseSize(whole)), found(labels.size(), 9);
    const auto regions = static_cast<std::int64_t>(LabelRegions(Invert(model_), whole, labels));
    const auto box3 = Get<brix_extents*>(brix_model_extents, inverted.get(), 3);
    EXPECT_EQ(Get<std::int64_t>(brix_label_regions, inverted.get(), box3.get(), found.data(), std::ssize(found)), regions);
    EXPECT_EQ(found, labels);
    const std::array<const brix_model*, 2> both{cModel_.get(), cOther_.get()};
    const std::array<double, 2> weights{0.25, 1};
    const std::array<double, 3> levels{1.25, 0.5, 0.25};
    expectModels(DensityMap({&model_, &*other_}, {0.25, 1}, {1.25, 0.5, 0.25}, 2),
                 Get<brix_models*>(brix_density_map, both.data(), 2, weights.data(), 2, levels.data(), 3, 2), "densities");

    const std::array<double, 3> down{0, 0, -1};
    const std::int64_t radius = axes_.FromWorldDistance(6);
    ExpectSame(
        VisibilityWithinCone(model_, insideUnits_, {0, 0, -1}, 70, 3, radius, 0.3, true),
        Get<brix_model*>(brix_visibility_within_cone, cModel_.get(), inside_.data(), down.data(), 70.0, 3, 6.0, 0.3, 1).get(),
        "cone");
    ExpectSame(
        VisibilityWithinPyramid(model_, insideUnits_, {0, 0, -1}, 70, 40, 3, radius, 0.3, false),
        Get<brix_model*>(brix_visibility_within_pyramid, cModel_.get(), inside_.data(), down.data(), 70.0, 40.0, 3, 6.0, 0.3, 0)
            .get(),
        "pyramid");
}

TEST_F(CInterface, MeasuresWaysInWorldUnits)
{
    const PathModel walkable(model_, 3, 1, 4, true);
    const auto cWalkable = Get<brix_path_model*>(brix_path_model_create, cModel_.get(), 3, 1, 4, 1);
    ExpectSame(walkable.TraversableVoxels(), Get<brix_model*>(brix_path_model_traversable_voxels, cWalkable.get()).get(),
               "floor");
    const auto toWorld = [&](const Triple& point) { return axes_.ToWorldCoordinates(point); };
    const auto toUnits = [&](const std::array<double, 3>& point) { return axes_.FromWorldCoordinates(point); };
    const auto samples = ItemsOf<3>(Get<brix_list*>(brix_path_model_generate_sample_points, cWalkable.get(), 0.75, 1));
    EXPECT_EQ(samples, Mapped(walkable.GenerateSamplePoints(axes_.FromWorldDistance(0.75), 1), toWorld));

    const std::vector<std::array<double, 3>> sources{samples.at(samples.size() / 2), {500, 500, 500}};
    const double* coords = sources.front().data();
    const DistanceField field(walkable, Mapped(sources, toUnits), axes_.FromWorldDistance(3));
    const auto cField = Get<brix_distance_field*>(brix_distance_field_create, cWalkable.get(), coords, 2, 3.0);
    std::vector<std::array<double, 4>> distances;
    field.ForEachReachable([&](const Triple& voxel, std::int64_t distance) {
        const auto [x, y, z] = toWorld(axes_.VoxelCenter(voxel, 3));
        distances.push_back({x, y, z, axes_.ToWorldDistance(distance)});
    });
    EXPECT_GT(distances.size(), 100U);
    EXPECT_EQ(ItemsOf<4>(Get<brix_list*>(brix_distance_field_distances, cField.get())), distances);
    const double farthest = axes_.ToWorldDistance(field.FarthestDistance());
    EXPECT_EQ(Get<double>(brix_distance_field_farthest_distance, cField.get()), farthest);
    EXPECT_EQ(GetThree<std::int64_t>(brix_distance_field_farthest_voxel, cField.get()), field.FarthestVoxel());
    ExpectSame(field.ReachableVoxels(), Get<brix_model*>(brix_distance_field_reachable_voxels, cField.get()).get(), "reachable");
    ExpectSame(field.ReachableVoxels(axes_.FromWorldDistance(1.5)),
               Get<brix_model*>(brix_distance_field_reachable_within, cField.get(), 1.5).get(), "within");

    const std::array<double, 3> target = toWorld(axes_.VoxelCenter(field.FarthestVoxel(), 3));
    EXPECT_EQ(Get<double>(brix_distance_field_distance, cField.get(), target.data()), farthest);
    EXPECT_EQ(Get<double>(brix_distance_field_distance, cField.get(), coords + 3), -1.0);

    // Many at once: at the points and in their box, of which the model takes a part.
    std::vector<double> expected, centres, found(distances.size(), -2), inBox;
    for (const auto& [x, y, z, distance] : distances) centres.insert(centres.end(), {x, y, z}), expected.push_back(distance);
    EXPECT_EQ(brix_distance_field_distances_at(cField.get(), centres.data(), std::ssize(found), found.data(), nullptr), BRIX_OK);
    EXPECT_EQ(found, expected);
    const Extents box = Enlarge(field.ReachableVoxels(), 2, 0, 1, 0, 0, 1).ExtentsRef(3);
    ForEachTriple(box.LowerIndices(), box.UpperIndices(), [&](const Triple& voxel) {
        const std::int64_t distance = field.Distance(axes_.VoxelCenter(voxel, 3));
        inBox.push_back(distance < 0 ? -1.0 : axes_.ToWorldDistance(distance));
    });
    const auto cBox =
        Get<brix_extents*>(brix_extents_create, cAxes_.get(), box.LowerIndices().data(), box.UpperIndices().data(), 3);
    found.assign(inBox.size(), -2);
    EXPECT_EQ(brix_distance_field_copy_distances(cField.get(), cBox.get(), found.data(), std::ssize(found), nullptr), BRIX_OK);
    EXPECT_EQ(found, inBox);
    const auto cCoarse = Get<brix_extents*>(brix_extents_rescaled_copy, cBox.get(), 2);
    const auto refusal = [&](const Owned<brix_extents>& place, std::int64_t count) {
        return FailureOf(brix_distance_field_copy_distances, cField.get(), place.get(), found.data(), count).message;
    };
    EXPECT_EQ(refusal(cCoarse, 1), "The level of a box of voxels must be that of the distance field.");
    EXPECT_EQ(refusal(cBox, std::ssize(found) - 1), "There must be as many distances as the box has voxels.");

    const Path way(field, toUnits(target));
    const auto cWay = Get<brix_path*>(brix_path_create, cField.get(), target.data());
    EXPECT_EQ(Get<double>(brix_path_length, cWay.get()), farthest);
    ExpectSame(way.Voxels(), Get<brix_model*>(brix_path_voxels, cWay.get()).get(), "way");
    EXPECT_EQ(ItemsOf<3>(Get<brix_list*>(brix_path_points, cWay.get())), Mapped(way.Points(), toWorld));

    const auto refuse = [&](const double* points, std::int64_t count, double limit) {
        brix_distance_field* none = nullptr;
        return FailureOf(brix_distance_field_create, cWalkable.get(), points, count, limit, &none).status;
    };
    EXPECT_EQ(refuse(coords, 2, -0.5), BRIX_INVALID_ARGUMENT);
    EXPECT_EQ(refuse(coords + 3, 1, 5), BRIX_INVALID_ARGUMENT);
    EXPECT_EQ(refuse(nullptr, 0, 5), BRIX_INVALID_ARGUMENT);
    EXPECT_EQ(refuse(nullptr, 1, 5), BRIX_NULL_ARGUMENT);
    EXPECT_EQ(refuse(coords, least, 5), BRIX_INVALID_ARGUMENT);
}

TEST_F(CInterface, RefusesNullModelsInListsAndCountsThatCannotBe)
{
    brix_model* model = nullptr;
    const brix_model* missing = nullptr;
    brix_rows* rows = nullptr;
    EXPECT_EQ(FailureOf(brix_union, &missing, 1, 0, 0, &model).status, BRIX_INVALID_ARGUMENT);
    for (const std::int64_t count : {std::int64_t{-1}, most})
        EXPECT_EQ(FailureOf(brix_model_from_triangles, coords_, count, cExtents_.get(), 0, &model).status, BRIX_INVALID_ARGUMENT);
    EXPECT_EQ(FailureOf(brix_rows_at_slice, cModel_.get(), 3, 0, 0, 0, 0, &rows).status, BRIX_INVALID_ARGUMENT);
}

TEST_F(CInterface, ReadsStlFilesWithTheirReport)
{
    std::stringstream tetrahedron;
    SaveTrianglesToSTL(tetrahedron, triangles_, StlVariant::Binary, false);
    const std::string loop = "outer loop\nvertex 0 0 0\nvertex 1,5 0 0\nvertex 0 1 1e999\nendloop\n";
    const std::string flat = "outer loop\nvertex 0 0 0\nvertex 1 0 0\nvertex 2,5 0 0\nendloop\n";
    for (const std::string& file : {tetrahedron.str(), tetrahedron.str().substr(0, 250) + "x",
                                    "solid a\n" + loop + flat + "outer loop\nendsolid\nsolid b\n"}) {
        const auto* const bytes = reinterpret_cast<const std::uint8_t*>(file.data());
        const StlImport import = ReadStl(std::span(bytes, file.size()), {.countMesh = true, .mostListed = 4});
        const StlReport& r = import.report;
        const auto stl = Get<brix_stl*>(brix_read_stl_bytes, bytes, std::ssize(file), 0, 0, 1, 4);
        const std::vector<std::uint64_t> expected{r.IsSound(),
                                                  r.variant == StlVariant::Binary,
                                                  r.bytes,
                                                  r.announced.value_or(std::uint64_t(-1)),
                                                  r.found,
                                                  r.read,
                                                  r.incomplete,
                                                  r.notFinite,
                                                  r.degenerate,
                                                  r.bytesLeft,
                                                  r.findingCount,
                                                  r.findings.size(),
                                                  r.guesses,
                                                  r.drops,
                                                  r.solidCount,
                                                  r.solids.size(),
                                                  1,
                                                  r.mesh->vertices,
                                                  r.mesh->edges,
                                                  r.mesh->openEdges,
                                                  r.mesh->crowdedEdges,
                                                  r.mesh->reversedEdges,
                                                  r.mesh->duplicateTriangles,
                                                  r.mesh->shells,
                                                  r.mesh->isClosed};
        const auto number = [&](std::int32_t which, std::int64_t index) {
            return static_cast<std::uint64_t>(Get<std::int64_t>(brix_stl_number_of, stl.get(), which, index));
        };
        const auto text = [&](std::int32_t which, std::int64_t index) {
            return TextOf(Get<brix_bytes*>(brix_stl_text_of, stl.get(), which, index));
        };
        for (std::size_t i = 0; i < expected.size(); ++i)
            EXPECT_EQ(number(static_cast<std::int32_t>(i), -9), expected[i]) << i << file;
        for (std::int64_t i = 0; i < std::ssize(r.findings); ++i) {
            const StlFinding& finding = r.findings[static_cast<std::size_t>(i)];
            EXPECT_EQ(number(BRIX_STL_FINDING_PLACE, i), finding.place);
            EXPECT_EQ(number(BRIX_STL_FINDING_EFFECT, i), static_cast<std::uint64_t>(finding.effect));
            EXPECT_EQ(text(BRIX_STL_FINDING_SENTENCE, i), finding.sentence);
        }
        for (std::int64_t i = 0; i < std::ssize(r.solids); ++i) {
            EXPECT_EQ(number(BRIX_STL_SOLID_TRIANGLES, i), r.solids[static_cast<std::size_t>(i)].triangles);
            EXPECT_EQ(text(BRIX_STL_SOLID_NAME, i), r.solids[static_cast<std::size_t>(i)].name);
        }
        EXPECT_EQ(text(BRIX_STL_HEADER, 0), r.header);
        EXPECT_EQ(text(BRIX_STL_UNIT_REASON, 0).substr(0, 3), "Its");
        EXPECT_EQ(text(BRIX_STL_UNIT, 0), "");

        std::array<double, 3> lower, upper;
        double volume = 0;
        ASSERT_EQ(brix_stl_bounds(stl.get(), lower.data(), upper.data(), &volume, nullptr), BRIX_OK);
        EXPECT_EQ(std::tie(lower, upper, volume), std::tie(r.mesh->lower, r.mesh->upper, r.mesh->signedVolume));

        const auto list = Get<brix_list*>(brix_stl_triangles, stl.get());
        EXPECT_EQ(ItemsOf<9>(list), Mapped(import.triangles, [](const WorldTriangle& triangle) {
                      return std::bit_cast<std::array<double, 9>>(triangle);
                  }));

        brix_bytes* none = nullptr;
        EXPECT_EQ(FailureOf(brix_stl_text_of, stl.get(), BRIX_STL_SOLID_NAME, std::int64_t{7}, &none).message,
                  "The index of a listed solid must lie between 0 and " + std::to_string(std::ssize(r.solids) - 1) +
                      ". The value encountered was 7.");
        EXPECT_EQ(FailureOf(brix_stl_text_of, stl.get(), 5, std::int64_t{0}, &none).message,
                  "There is no text of an STL file with the number 5.");
    }
    brix_stl* none = nullptr;
    const std::string path = "no such folder/no such file.stl";
    EXPECT_EQ(FailureOf(brix_read_stl, path.data(), std::ssize(path), 0, 0, 0, std::int64_t{1}, &none).message,
              "Failed to open STL file \"" + path + "\".");
    EXPECT_EQ(FailureOf(brix_read_stl_bytes, nullptr, std::int64_t{0}, 0, 0, 0, std::int64_t{-1}, &none).message,
              "The number of findings to be listed cannot be negative. The value encountered was -1.");
}

TEST_F(CInterface, ReportsExhaustedMemoryAndLosesNothing)
{
    const std::int64_t alive = LiveAllocations();
    std::int64_t failures = 0;
    const auto expand =
        +[](std::int64_t n, const brix_model* model, const brix_model* guide, brix_model** result, brix_error* error) {
            const FailingAllocations armed(n);
            return brix_expand_horizontally(model, 3, guide, 1, result, error);
        };
    for (std::int64_t n = 1;; ++n) {
        brix_model* result = nullptr;
        const Failure failure = FailureOf(expand, n, cModel_.get(), cOther_.get(), &result);
        if (failure.status == BRIX_OK) {
            brix_model_free(result);
            break;
        }
        ASSERT_EQ(failure.status, BRIX_OUT_OF_MEMORY);
        ASSERT_TRUE(failure.message == "There is not enough memory for the expanded voxel model." ||
                    failure.message.starts_with("There is not enough memory for a voxel model of "))
            << failure.message;
        ASSERT_EQ(result, nullptr);
        ++failures;
    }
    EXPECT_GT(failures, 10);
    EXPECT_EQ(LiveAllocations(), alive);
}

TEST(CInterfaceFiles, NameTheFileThatCannotBeRead)
{
    brix_list* list = nullptr;
    const std::string path = "no such folder/no such file.stl";
    const Failure failure = FailureOf(brix_load_stl, path.data(), static_cast<std::int64_t>(path.size()), 0, &list);
    EXPECT_EQ(failure.status, BRIX_FILE_FAILURE);
    EXPECT_EQ(failure.message, "Failed to open STL file \"" + path + "\".");
    EXPECT_EQ(brix_abi_version(), BRIX_ABI_VERSION);
}

TEST(CInterfaceFiles, ShowPathsAsUtf8AndDoNotCutThem)
{
    const std::string path("no such folder/\xe9\0b.stl", 22);
    const Failure failure = FailureOf(brix_save_stl, nullptr, 0, path.data(), static_cast<std::int64_t>(path.size()), 1, 0);
    EXPECT_EQ(failure.status, BRIX_FILE_FAILURE);
    EXPECT_EQ(failure.message,
              "Failed to open STL file \"no such folder/\ufffd\\x00b.stl\", as a file path cannot hold a null character.");
}

} // namespace
} // namespace brix
