// Every function of brix_c.h with each of its pointers NULL in turn. The list of functions is made from the header when the build
// is configured (bindings/c/tests/CMakeLists.txt), so that none can be left out:
//     BRIX_FUNCTION(brix_axes_voxel_height, "const brix_axes* axes, double* result, brix_error* error")
//     BRIX_FREE(brix_axes_free)
#include "Objects.h"

#include <gtest/gtest.h>

#include <array>
#include <filesystem>
#include <limits>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using brix::tests::Free;

// An object of each type, or a place for a result of it.
using Objects = std::tuple<brix_axes*, brix_extents*, brix_model*, brix_models*, brix_iterator*, brix_list*, brix_mesh*,
                           brix_rows*, brix_path_model*, brix_distance_field*, brix_path*, brix_bytes*, brix_stl*, brix_watch*>;

class NullArguments : public ::testing::Test
{
protected:
    // A floor, and somebody on it.
    NullArguments()
    {
        const double floor[9] = {0, 0, 0, 3, 0, 0, 0, 3, 0};
        brix_error* const error = nullptr;
        auto& [axes, extents, model, models, iterator, list, mesh, rows, pathModel, field, path, bytes, stl, watch] = objects_;
        EXPECT_EQ(brix_axes_create(1, numbers_.data(), 0, 1, &axes, error), BRIX_OK);
        EXPECT_EQ(brix_detect_triangle_extents(axes, floor, 1, &extents, error), BRIX_OK);
        EXPECT_EQ(brix_model_from_triangles(floor, 1, extents, 1, &model, error), BRIX_OK);
        EXPECT_EQ(brix_auto_split(model, &models, error), BRIX_OK);
        EXPECT_EQ(brix_iterator_at_point(model, numbers_.data(), 1, &iterator, error), BRIX_OK);
        EXPECT_EQ(brix_tessellate_voxel_model(model, 1, &list, error), BRIX_OK);
        EXPECT_EQ(brix_surface_mesh(model, 1, 1, 0, &mesh, error), BRIX_OK);
        EXPECT_EQ(brix_rows_at_slice(model, 2, 0, 1, 0, 0, &rows, error), BRIX_OK);
        EXPECT_EQ(brix_path_model_create(model, 1, 1, 2, 1, &pathModel, error), BRIX_OK);
        EXPECT_EQ(brix_distance_field_create(pathModel, point_.data(), 1, 1e3, &field, error), BRIX_OK);
        EXPECT_EQ(brix_path_create(field, point_.data(), &path, error), BRIX_OK);
        EXPECT_EQ(brix_save_model(model, &bytes, error), BRIX_OK);
        const std::string_view file = "solid s\nodd\nendsolid s\nsolid t\nodd\n";
        EXPECT_EQ(
            brix_read_stl_bytes(reinterpret_cast<const std::uint8_t*>(file.data()), std::ssize(file), 0, 0, 1, 9, &stl, error),
            BRIX_OK);
        watch = nullptr; // a new one for each call, which ends it
    }

    ~NullArguments() override
    {
        std::apply([](auto*... objects) { (Free()(objects), ...); }, objects_);
        std::filesystem::remove(path_);
    }

    template <class... Parameters>
    void Check(const char* name, std::int32_t (*function)(Parameters...), std::string_view parameters);

private:
    struct Call
    {
        std::string_view null;   // the parameter that is NULL, if one is
        std::int64_t number = 1; // for every number that is no count
        bool writesError = true; // false: the error object is NULL
    };

    template <class... Parameters>
    std::int32_t Status(std::int32_t (*function)(Parameters...), const std::vector<std::string_view>& names, const Call& call)
    {
        Objects results{};
        brix_error error{};
        const std::int32_t status = [&]<std::size_t... i>(std::index_sequence<i...>)
        {
            return function(Argument<Parameters>(names[i], call, results, error)...);
        }
        (std::index_sequence_for<Parameters...>{});
        const std::string_view message = error.message == nullptr ? "" : error.message;
        const bool isNull = status == BRIX_NULL_ARGUMENT && call.null != "error";
        EXPECT_EQ(error.status, call.null == "error" ? BRIX_OK : status);
        EXPECT_EQ(message == "A required argument is a null pointer.", isNull);
        EXPECT_TRUE(status == BRIX_OK || results == Objects{});
        brix_error_clear(&error);
        std::apply([](auto*... objects) { (Free()(objects), ...); }, results);
        return status;
    }

    template <class Parameter> Parameter Argument(std::string_view name, const Call& call, Objects& results, brix_error& error)
    {
        const bool isCount = name.ends_with("_count");
        if constexpr (std::is_pointer_v<Parameter>)
            return name == call.null ? nullptr : Given(Parameter{}, results, error);
        else if (name == "path_length")
            return static_cast<Parameter>(path_.size());
        else
            return static_cast<Parameter>(isCount ? 1 : call.number);
    }

    const double* Given(const double*, Objects&, brix_error&) { return numbers_.data(); }
    const std::int64_t* Given(const std::int64_t*, Objects&, brix_error&) { return indices_.data(); }
    const std::int32_t* Given(const std::int32_t*, Objects&, brix_error&) { return corners_.data(); }
    const std::uint8_t* Given(const std::uint8_t*, Objects&, brix_error&) { return bytesOut_.data(); }
    const char* Given(const char*, Objects&, brix_error&) { return path_.data(); }
    double* Given(double*, Objects&, brix_error&) { return numbersOut_.data(); }
    float* Given(float*, Objects&, brix_error&) { return floatsOut_.data(); }
    std::int64_t* Given(std::int64_t*, Objects&, brix_error&) { return indicesOut_.data(); }
    std::int32_t* Given(std::int32_t*, Objects&, brix_error&) { return flagsOut_.data(); }
    std::uint8_t* Given(std::uint8_t*, Objects&, brix_error&) { return bytesOut_.data(); }
    std::uint32_t* Given(std::uint32_t*, Objects&, brix_error&) { return labelsOut_.data(); }
    brix_error* Given(brix_error*, Objects&, brix_error& error) { return &error; }
    void* Given(void*, Objects&, brix_error&) { return this; }
    const float* Given(const float*, Objects&, brix_error&) { return floats_.data(); }
    brix_run_visitor Given(brix_run_visitor, Objects&, brix_error&)
    {
        return [](void*, const std::int64_t*, std::int64_t) { return 0; };
    }
    brix_watch_callback Given(brix_watch_callback, Objects&, brix_error&)
    {
        return [](void*, double) { return 0; };
    }
    brix_watch* Given(brix_watch*, Objects&, brix_error&)
    {
        brix_watch* watch = nullptr;
        EXPECT_EQ(brix_watch_begin([](void*, double) { return 0; }, nullptr, 0, &watch, nullptr), BRIX_OK);
        return watch;
    }
    const brix_model* const* Given(const brix_model* const*, Objects&, brix_error&) { return &std::get<brix_model*>(objects_); }
    template <class Object> const Object* Given(const Object*, Objects&, brix_error&) { return std::get<Object*>(objects_); }
    template <class Object> Object** Given(Object**, Objects& results, brix_error&) { return &std::get<Object*>(results); }

    Objects objects_{};
    std::array<double, 16> numbers_{};
    std::array<float, 16> floats_{};
    std::array<double, 3> point_{0.5, 0.5, 0.75};
    std::array<std::int64_t, 3> indices_{};
    std::array<std::int32_t, 3> corners_{};
    std::string path_ = (std::filesystem::temp_directory_path() / "brix-null-arguments.stl").string();
    std::array<double, 64> numbersOut_{};
    std::array<float, 16> floatsOut_{};
    std::array<std::int64_t, 3> indicesOut_{};
    std::array<std::int32_t, 64> flagsOut_{};
    std::array<std::uint8_t, 256> bytesOut_{};
    std::array<std::uint32_t, 64> labelsOut_{};
};

// "const double* coords, int64_t voxel_lod" gives coords, voxel_lod.
std::vector<std::string_view> NamesOf(std::string_view parameters)
{
    std::vector<std::string_view> names;
    for (std::size_t comma = 0; comma != std::string_view::npos;
         parameters.remove_prefix(std::min(comma, parameters.size() - 1) + 1)) {
        comma = parameters.find(',');
        const std::string_view parameter = parameters.substr(0, comma);
        names.push_back(parameter.substr(parameter.find_last_of(" *") + 1));
    }
    return names;
}

template <class... Parameters>
void NullArguments::Check(const char* name, std::int32_t (*function)(Parameters...), std::string_view parameters)
{
    SCOPED_TRACE(name);
    brix_set_memory_limit(std::numeric_limits<double>::infinity(), nullptr); // which is one of the functions
    const std::vector<std::string_view> names = NamesOf(parameters);
    ASSERT_EQ(names.size(), sizeof...(Parameters));
    const std::int32_t status = Status(function, names, {});
    EXPECT_NE(status, BRIX_NULL_ARGUMENT);
    const std::array<bool, sizeof...(Parameters)> isPointer{std::is_pointer_v<Parameters>...};
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (!isPointer[i]) continue;
        const bool isOptional = names[i] == "error" || names[i] == "guide" || names[i] == "context";
        EXPECT_EQ(Status(function, names, {names[i]}), isOptional ? status : BRIX_NULL_ARGUMENT) << names[i];
        if (isOptional) continue;
        EXPECT_EQ(Status(function, names, {names[i], -7}), BRIX_NULL_ARGUMENT) << names[i] << " is looked at after numbers";
    }
}

TEST_F(NullArguments, AreRefusedByEveryFunctionBeforeItsWork)
{
    int count = 0;
#define BRIX_FUNCTION(name, parameters) Check(#name, name, parameters), ++count;
#define BRIX_FREE(name) name(nullptr);
#include "Functions.inc"
    EXPECT_GT(count, 90);
    brix_error_clear(nullptr);
}

} // namespace
