// The host's memory limit holds for everything of the C interface that can take much: what is estimated is never below what is
// taken, nor far above it; and what is too much is refused before the work, but after wrong arguments.
#include "Works.h"

#include "support/FailingAllocations.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

namespace brix::tests {
namespace {

constexpr double NoLimit = std::numeric_limits<double>::infinity();

class MemoryLimit : public ::testing::Test
{
protected:
    ~MemoryLimit() override { Set(NoLimit); }

    static void Set(double bytes) { EXPECT_EQ(brix_set_memory_limit(bytes, nullptr), BRIX_OK); }
};

std::int64_t PeakOf(const Work& work, const Operands& operands, std::int32_t& status)
{
    const PeakOfBytes peak;
    status = work.run(operands, nullptr);
    return peak.Bytes();
}

void CheckLimits(const Operands& operands, double mostTimes)
{
    for (const Work& work : Works) {
        std::int32_t status = 0;
        brix_set_memory_limit(NoLimit, nullptr);
        const auto taken = static_cast<double>(PeakOf(work, operands, status));
        if (status != BRIX_OK) continue;
        brix_set_memory_limit(taken - 1, nullptr);
        const std::int64_t little = PeakOf(work, operands, status);
        EXPECT_EQ(status, BRIX_OUT_OF_MEMORY) << work.name << ", " << operands.name << " takes " << taken;
        EXPECT_LE(little, 100000) << work.name << ", " << operands.name;
        if (taken < 200000) continue; // faces, and tables of chunks, outweigh what little there is
        brix_set_memory_limit(mostTimes * taken, nullptr);
        PeakOf(work, operands, status);
        EXPECT_EQ(status, BRIX_OK) << work.name << ", " << operands.name << " takes only " << taken;
    }
    brix_set_memory_limit(NoLimit, nullptr);
}

TEST_F(MemoryLimit, IsNeverBelowWhatIsTaken)
{
    for (std::uint64_t seed = 1; seed <= Rounds(40); ++seed) {
        Random random(seed);
        const Axes axes = RandomAxes(random);
        const std::int64_t lod = random.Between(0, 5);
        CheckLimits(MakeOperands(seed, lod, RandomExtents(random, axes, lod), "small"), 1000);
    }
    for (std::uint64_t seed = 1; seed <= Rounds(5); ++seed) {
        Random random(seed);
        CheckLimits(MakeOperands(seed, 4, Extents(Axes(1.6, {1, 2, 3}, 30, 4), {-90, -70, -30}, {120, 80, 100}, 4), "large"), 50);
    }
}

// The message of a call that fails.
std::string MessageOf(const std::function<std::int32_t(brix_error*)>& call)
{
    brix_error error{};
    EXPECT_NE(call(&error), BRIX_OK);
    std::string message(error.message == nullptr ? "" : error.message);
    brix_error_clear(&error);
    return message;
}

#define BRIX_WRONG(Object, function, ...)                                                                                        \
    [&](brix_error* error) {                                                                                                     \
        Object* result = nullptr;                                                                                                \
        return function(__VA_ARGS__, &result, error);                                                                            \
    }

TEST_F(MemoryLimit, WrongArgumentsAreToldFirst)
{
    const Operands o = MakeOperands(8, 3, Extents(Axes(1.6, {}, 0, 4), {0, 0, 0}, {20, 20, 20}, 3), "cube");
    const Operands elsewhere = MakeOperands(8, 3, Extents(Axes(1.7, {}, 0, 4), {0, 0, 0}, {20, 20, 20}, 3), "other");
    const std::array<const brix_model*, 2> two{o.model.get(), elsewhere.model.get()};
    const std::array<const brix_model*, 2> missing{o.model.get(), nullptr};
    const std::array east{1.0, 0.0, 0.0};
    const std::array<double, 3> none{};
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    const std::int64_t far = 1 << 30;
    const std::vector<std::function<std::int32_t(brix_error*)>> calls{
        BRIX_WRONG(brix_model, brix_union, o.Both().data(), 0, 7, 0),
        BRIX_WRONG(brix_model, brix_union, o.Both().data(), 2, 6, 0),
        BRIX_WRONG(brix_model, brix_union, two.data(), 2, 3, 0),
        BRIX_WRONG(brix_model, brix_intersect, missing.data(), 2, 3, 0),
        BRIX_WRONG(brix_model, brix_subtract, o.model.get(), elsewhere.model.get(), -1, 0),
        BRIX_WRONG(brix_models, brix_density_map, o.Both().data(), 2, &nan, 1, &nan, 0, 3),
        BRIX_WRONG(brix_models, brix_density_map, o.Both().data(), 2, east.data(), 2, &nan, 1, 3),
        BRIX_WRONG(brix_model, brix_crop, o.model.get(), 0, 21, 0, 0, 0, 0),
        BRIX_WRONG(brix_model, brix_enlarge, o.model.get(), 0, far, 0, 0, 0, -1),
        BRIX_WRONG(brix_model, brix_enlarge, o.model.get(), 0, far, 0, 0, 0, 0),
        BRIX_WRONG(brix_model, brix_resize, o.model.get(), elsewhere.extents.get()),
        BRIX_WRONG(brix_model, brix_refine, o.model.get(), 6),
        BRIX_WRONG(brix_model, brix_expand_along_x, o.model.get(), 1, -1, nullptr, 1),
        BRIX_WRONG(brix_model, brix_expand_along_x, o.model.get(), 1, far, nullptr, 1),
        BRIX_WRONG(brix_model, brix_expand_by_one_voxel, o.model.get(), 1, -1, nullptr, 1),
        BRIX_WRONG(brix_model, brix_reduce_horizontally, o.model.get(), 0, nullptr, 1),
        BRIX_WRONG(brix_model, brix_reduce_along_z, o.model.get(), 1, 1, elsewhere.model.get(), 1),
        BRIX_WRONG(brix_model, brix_visibility_from_direction, o.model.get(), none.data(), 9, 0.5),
        BRIX_WRONG(brix_model, brix_visibility_from_point, o.model.get(), o.point.data(), 4, 1, 0.5, 1),
        BRIX_WRONG(brix_model, brix_visibility_from_point, o.model.get(), o.point.data(), 3, -1, 0.5, 1),
        BRIX_WRONG(brix_model, brix_visibility_within_cone, o.model.get(), o.point.data(), east.data(), 400, 3, 1, 0.5, 1),
        BRIX_WRONG(brix_model, brix_visibility_within_pyramid, o.model.get(), o.point.data(), east.data(), 90, nan, 3, 1, 0.5, 1),
        BRIX_WRONG(brix_list, brix_tessellate_voxel_model, o.model.get(), 4),
        BRIX_WRONG(brix_list, brix_cuboidize_voxel_model, o.model.get(), -1),
        BRIX_WRONG(brix_list, brix_solidize_voxel_model, o.model.get(), 7),
        BRIX_WRONG(brix_rows, brix_rows_at_slice, o.model.get(), 3, 0, 3, 0, 0),
        BRIX_WRONG(brix_rows, brix_rows_at_slice, o.model.get(), 2, 0, 4, 0, 0),
        BRIX_WRONG(brix_model, brix_model_from_triangles, o.triangles.data(), -1, o.extents.get(), 3),
        BRIX_WRONG(brix_model, brix_voxelize, o.axes.get(), o.triangles.data(), 1, 6),
        BRIX_WRONG(brix_model, brix_voxelize_mesh, o.axes.get(), o.triangles.data(), 2, o.corners.data(), 1, 3),
        BRIX_WRONG(brix_model, brix_voxelize_mesh, o.axes.get(), &nan, -1, o.corners.data(), 1, 3),
        BRIX_WRONG(brix_model, brix_voxelize_float_mesh, o.axes.get(), o.floats.data(), 3, o.corners.data(), 1, 6),
        BRIX_WRONG(brix_path_model, brix_path_model_create, o.model.get(), 3, 1, 1, 1),
        BRIX_WRONG(brix_path_model, brix_path_model_create, o.model.get(), 4, 1, 2, 1),
        BRIX_WRONG(brix_list, brix_path_model_generate_sample_points, o.pathModel.get(), 1e-5, 1),
        BRIX_WRONG(brix_list, brix_path_model_generate_sample_points, o.pathModel.get(), 1, 0),
        [&](brix_error* error) { return brix_set_memory_limit(nan, error); }};
    for (const auto& call : calls) {
        Set(NoLimit);
        const std::string message = MessageOf(call);
        Set(0);
        EXPECT_EQ(MessageOf(call), message);
        EXPECT_EQ(message.find("memory would"), std::string::npos) << message;
    }
}

} // namespace
} // namespace brix::tests
