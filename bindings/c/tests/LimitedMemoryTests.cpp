// Requests that no machine has the memory for, in a process that may take a gigabyte: it says what was asked for, and goes on.
#include "brix_c.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>

#if defined(__linux__) && !defined(BRIX_SANITIZED) // the sanitizer's shadow alone is larger than any limit
#include <sys/resource.h>

namespace {

using Indices = std::array<std::int64_t, 3>;

brix_axes* frame = nullptr;

brix_model* OneVoxel(const Indices& voxel)
{
    brix_extents* extents = nullptr;
    brix_model* model = nullptr;
    EXPECT_EQ(brix_extents_create(frame, voxel.data(), voxel.data(), 0, &extents, nullptr), BRIX_OK);
    EXPECT_EQ(brix_model_create(extents, 5, &model, nullptr), BRIX_OK);
    brix_extents_free(extents);
    return model;
}

// Runs call(&result, &error) in little memory, writes the message, and exits with the status.
template <class Call> [[noreturn]] void RunInLittleMemory(const Call& call)
{
    const rlimit limit{1 << 30, 1 << 30};
    setrlimit(RLIMIT_AS, &limit);
    brix_model* result = nullptr;
    brix_error error{};
    const std::int32_t status = call(&result, &error);
    std::fprintf(stderr, "%.*s\n", static_cast<int>(error.length), error.message);
    brix_error_clear(&error);
    brix_model_free(OneVoxel({1, 2, 3}));
    std::_Exit(result == nullptr ? status : -1);
}

TEST(LimitedMemory, IsReportedWithWhatWasAskedFor)
{
    const double origin[3] = {0, 0, 0};
    EXPECT_EQ(brix_axes_create(1, origin, 0, 0, &frame, nullptr), BRIX_OK);
    const Indices lower{-25000, -25000, -10000};
    const Indices upper{24999, 24999, 9999};
    const std::array<brix_model*, 2> farApart{OneVoxel(lower), OneVoxel(upper)};
    const std::array<const brix_model*, 2> models{farApart[0], farApart[1]};
    brix_extents* everything = nullptr;
    EXPECT_EQ(brix_extents_create(frame, lower.data(), upper.data(), 0, &everything, nullptr), BRIX_OK);
    const auto outOfMemory = ::testing::ExitedWithCode(BRIX_OUT_OF_MEMORY);
    brix_model* whole = nullptr;
    EXPECT_EQ(brix_model_create(everything, 5, &whole, nullptr), BRIX_OK);
    brix_model* both = nullptr;
    EXPECT_EQ(brix_union(models.data(), 2, 5, 0, &both, nullptr), BRIX_OK); // takes the memory of two voxels, wherever they are

    EXPECT_EXIT(RunInLittleMemory([&](auto** result, auto* error) { return brix_invert(whole, result, error); }), outOfMemory,
                "^There is not enough memory for .*\\.\n$");
    EXPECT_EXIT(RunInLittleMemory([&](auto** result, auto* error) {
                    return brix_visibility_from_point(farApart[0], origin, 5, 10000, 0.5, 1, result, error);
                }),
                outOfMemory, "^There is not enough memory for .*\\.\n$");
    brix_extents_free(everything);
    brix_model_free(whole);
    brix_model_free(both);
    for (brix_model* model : farApart) brix_model_free(model);
    brix_axes_free(frame);
}

} // namespace
#endif
