// What stands behind the handles of the C interface, and the helpers that every function of it uses.
#pragma once

#include "brix_c.h"

#include <brix.h>

#include <cstring>
#include <filesystem>
#include <initializer_list>
#include <limits>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

// Models do not change once they have a handle, so handles, iterators and path models share them.
using SharedVoxels = std::shared_ptr<const brix::Voxels>;

struct brix_axes
{
    brix::Axes axes;
};

struct brix_extents
{
    brix::Extents extents;
};

struct brix_model
{
    SharedVoxels voxels;
};

struct brix_iterator
{
    SharedVoxels voxels; // keeps alive what the iterator points into
    brix::ConstVoxelIterator iterator;
};

struct brix_mesh
{
    std::variant<brix::TriangleMesh, brix::FaceMesh> mesh; // given, or made of voxels
};

struct brix_models
{
    std::vector<SharedVoxels> voxels;
};

struct brix_bytes
{
    std::vector<std::uint8_t> bytes;
};

struct brix_stl
{
    std::shared_ptr<const brix::StlImport> import; // lists of its triangles share it
};

struct brix_path_model
{
    SharedVoxels environment; // keeps alive what the path model refers to
    brix::PathModel pathModel;
};

namespace brix::capi {

/// A required pointer is null.
struct NullArgument : std::invalid_argument
{
    NullArgument() : std::invalid_argument("A required argument is a null pointer.") {}
};

/// What a call asks for would take more memory than the host's limit.
class BeyondMemoryLimit : public std::exception
{
public:
    BeyondMemoryLimit(const char* asked, double bytes, double limit);
    const char* what() const noexcept override { return sentence_.c_str(); }

private:
    std::string sentence_;
};

/// The limit that brix_set_memory_limit set.
double MemoryLimit() noexcept;

/// Describes the exception being handled in `error`, which may be null, and returns its status. `asked`: as below. Never throws.
std::int32_t ReportException(brix_error* error, const char* asked) noexcept;

inline void RequireGiven(const void* pointer)
{
    if (pointer == nullptr) throw NullArgument();
}

/// Throws BeyondMemoryLimit when estimate(), in bytes, is more than the limit. Without a limit nothing is estimated. An
/// estimate that throws std::domain_error was asked about arguments that the work refuses: it is left to the work to say so, in
/// its order.
template <class Estimate> void RequireMemory(const char* asked, const Estimate& estimate)
{
    const double limit = MemoryLimit();
    if (limit == std::numeric_limits<double>::infinity()) return;
    double bytes = 0;
    try {
        bytes = estimate();
    } catch (const std::domain_error&) {
        return;
    }
    if (bytes > limit) throw BeyondMemoryLimit(asked, bytes, limit);
}

/// Runs `work`; the only place where exceptions end.
/// `needed`  every pointer that may not be null, results among them: they are judged here, before any work and in this order, so
///           that no expression in `work` depends on which of its operands is evaluated first
/// `asked`   what the work makes, for the sentence that tells that there is no memory for it
/// `estimate`  the bytes that the work takes at most, for RequireMemory; works that take as much as they are given have none
template <class Estimate, class Work>
std::int32_t Guarded(brix_error* error, std::initializer_list<const void*> needed, const char* asked, const Estimate& estimate,
                     const Work& work) noexcept
{
    try {
        for (const void* pointer : needed) RequireGiven(pointer);
        RequireMemory(asked, estimate);
        work();
        return BRIX_OK;
    } catch (...) {
        return ReportException(error, asked);
    }
}

template <class Work>
std::int32_t Guarded(brix_error* error, std::initializer_list<const void*> needed, const char* asked, const Work& work) noexcept
{
    return Guarded(
        error, needed, asked, [] { return 0.0; }, work);
}

template <class Work>
std::int32_t Guarded(brix_error* error, std::initializer_list<const void*> needed, const Work& work) noexcept
{
    return Guarded(error, needed, "the result", work);
}

inline const VoxelModel<bool>& VoxelsOf(const brix_model* model) { return *model->voxels; }

/// Models on which an operation is tried before it is estimated, so that wrong arguments are told as ever: without any content,
/// on the same extents, or on one voxel of them for operations whose work follows the extents.
inline VoxelModel<bool> EmptyLike(const VoxelModel<bool>& voxels)
{
    return VoxelModel<bool>(voxels.ExtentsRef(voxels.FinestLOD()), voxels.FinestLOD());
}
inline VoxelModel<bool> OneVoxelLike(const VoxelModel<bool>& voxels)
{
    const Extents& extents = voxels.ExtentsRef(voxels.FinestLOD());
    return VoxelModel<bool>(Extents(extents.AxesRef(), extents.LowerIndices(), extents.LowerIndices(), extents.VoxelLOD()),
                            voxels.FinestLOD());
}

/// Three numbers from or to the caller's memory.
template <class Number> std::array<Number, 3> ThreeOf(const Number* numbers) { return {numbers[0], numbers[1], numbers[2]}; }

template <class Number> void CopyThree(const std::array<Number, 3>& numbers, Number* result)
{
    std::copy(numbers.begin(), numbers.end(), result);
}

inline Triple BaseUnits(const brix_model* model, const double* worldCoords)
{
    return VoxelsOf(model).AxesRef().FromWorldCoordinates(ThreeOf(worldCoords));
}

/// A new object for the caller, made of its members.
template <class Object, class... Members> void Make(Object** result, Members&&... members)
{
    *result = new Object{std::forward<Members>(members)...};
}

inline SharedVoxels Share(VoxelModel<bool>&& voxels) { return std::make_shared<const Voxels>(std::move(voxels)); }

inline void MakeModel(brix_model** result, VoxelModel<bool>&& voxels) { Make(result, Share(std::move(voxels))); }

/// `count` items of `width` numbers each, called by their plural name in messages, in the caller's memory; no pointer is needed
/// for none. Throws when there cannot be so many.
void RequireItems(const void* numbers, std::int64_t count, std::int64_t width, std::string_view name);

/// Triangles in the caller's memory.
std::span<const WorldTriangle> TrianglesAt(const double* triangles, std::int64_t count);

/// The path of so many bytes in the caller's memory.
std::filesystem::path PathAt(const char* path, std::int64_t length);

/// Checks that `count` items from `first` on lie within 0 .. size - 1, and that there is a place for them.
void RequirePart(std::int64_t first, std::int64_t count, std::int64_t size, const void* destination);

} // namespace brix::capi

/// A result of items of `width` doubles each that is written to the caller's memory on demand.
struct brix_list
{
    brix_list() = default;
    brix_list(const brix_list&) = delete;
    brix_list& operator=(const brix_list&) = delete;
    virtual ~brix_list() = default;

    virtual std::int64_t Size() const = 0;
    virtual std::int64_t Width() const = 0;
    virtual void Copy(std::int64_t firstItem, std::int64_t itemCount, double* destination) const = 0;
};

namespace brix::capi {

/// A list of engine items that convert(item) makes doubles of, an array (of arrays) of them, when they are copied.
template <class Item, class Convert> class ItemList : public brix_list
{
public:
    ItemList(std::vector<Item>&& items, const Convert& convert) : items_(std::move(items)), convert_(convert) {}

    std::int64_t Size() const override { return static_cast<std::int64_t>(items_.size()); }
    std::int64_t Width() const override { return width; }

    void Copy(std::int64_t firstItem, std::int64_t itemCount, double* destination) const override
    {
        WatchedLoop loop(static_cast<std::size_t>(itemCount));
        for (std::int64_t i = firstItem; i < firstItem + itemCount; ++i, destination += width) {
            loop.Step();
            const Numbers numbers = convert_(items_[static_cast<std::size_t>(i)]);
            std::memcpy(destination, &numbers, sizeof numbers);
        }
    }

private:
    using Numbers = std::decay_t<std::invoke_result_t<Convert, const Item&>>;
    static constexpr std::int64_t width = sizeof(Numbers) / sizeof(double);

    std::vector<Item> items_;
    Convert convert_;
};

template <class Item, class Convert> void MakeList(brix_list** result, std::vector<Item>&& items, const Convert& convert)
{
    *result = new ItemList<Item, Convert>(std::move(items), convert);
}

// Points in base units become world points.
inline void MakePointList(brix_list** result, std::vector<Triple>&& points, const Axes& axes)
{
    MakeList(result, std::move(points), [axes](const Triple& point) { return axes.ToWorldCoordinates(point); });
}

} // namespace brix::capi
