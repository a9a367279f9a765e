// Voxels and models as bytes in the caller's memory.
#include "Objects.h"

#include <algorithm>

using namespace brix;
using namespace brix::capi;

namespace {

std::size_t ByteCountOf(const void* bytes, std::int64_t count)
{
    RequireItems(bytes, count, 1, "bytes");
    return static_cast<std::size_t>(count);
}

std::span<const std::uint8_t> BytesAt(const std::uint8_t* bytes, std::int64_t count)
{
    return {bytes, ByteCountOf(bytes, count)};
}

} // namespace

std::int32_t brix_copy_voxels(const brix_model* model, const brix_extents* box, std::uint8_t* bytes, std::int64_t byte_count,
                              brix_error* error)
{
    return Guarded(error, {model, box, bytes}, [&] {
        CopyVoxels(VoxelsOf(model), box->extents, {bytes, ByteCountOf(bytes, byte_count)});
    });
}

std::int32_t brix_model_from_voxels(const brix_extents* extents, const std::uint8_t* bytes, std::int64_t byte_count,
                                    std::int64_t finest_lod, brix_model** result, brix_error* error)
{
    return Guarded(error, {extents, bytes, result}, "the voxel model of the bytes",
                   [&] { MakeModel(result, ModelFromVoxels(extents->extents, BytesAt(bytes, byte_count), finest_lod)); });
}

std::int32_t brix_save_model(const brix_model* model, brix_bytes** result, brix_error* error)
{
    return Guarded(error, {model, result}, "the saved voxel model", [&] { Make(result, SaveModel(VoxelsOf(model))); });
}

std::int32_t brix_load_model(const std::uint8_t* bytes, std::int64_t byte_count, brix_model** result, brix_error* error)
{
    return Guarded(error, {bytes, result}, "the saved voxel model",
                   [&] { MakeModel(result, LoadModel(BytesAt(bytes, byte_count))); });
}

std::int32_t brix_content_hash(const brix_model* model, std::uint8_t* result_16, brix_error* error)
{
    return Guarded(error, {model, result_16}, [&] {
        const Hash128 hash = ContentHash(VoxelsOf(model));
        std::copy(hash.begin(), hash.end(), result_16);
    });
}

void brix_bytes_free(brix_bytes* bytes) { delete bytes; }

std::int32_t brix_bytes_size(const brix_bytes* bytes, std::int64_t* result, brix_error* error)
{
    return Guarded(error, {bytes, result}, [&] { *result = std::ssize(bytes->bytes); });
}

std::int32_t brix_bytes_copy(const brix_bytes* bytes, std::int64_t first_byte, std::int64_t byte_count, std::uint8_t* destination,
                             brix_error* error)
{
    return Guarded(error, {bytes, destination}, [&] {
        RequirePart(first_byte, byte_count, std::ssize(bytes->bytes), destination);
        std::copy_n(bytes->bytes.begin() + first_byte, byte_count, destination);
    });
}
