// Voxels and models as bytes in the caller's memory.
#include "ByteCollector.h"
#include "Objects.h"

#include <brix/frame/Require.h>
#include <brix/storage/VoxelFiles.h>

#include <algorithm>
#include <ostream>

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

// Throws when the last voxel of a box would lie beyond the bytes.
ByteStrides StridesOf(const brix_extents* box, std::int64_t byteCount, std::int64_t strideY, std::int64_t strideZ)
{
    RequireNotNegative("The distance of rows in bytes", strideY);
    RequireNotNegative("The distance of layers in bytes", strideZ);
    const Triple last = Minus(box->extents.UpperIndices(), box->extents.LowerIndices());
    // Extents are less than 2^32 wide, so that nothing overflows once the strides are held to the bytes.
    const bool isFar = (last[1] > 0 && strideY > byteCount / last[1]) || (last[2] > 0 && strideZ > byteCount / last[2]);
    Require(!isFar && last[0] + last[1] * strideY + last[2] * strideZ < byteCount,
            "The bytes of a box of voxels must hold its last voxel.");
    return {static_cast<std::ptrdiff_t>(strideY), static_cast<std::ptrdiff_t>(strideZ)};
}

// A copy of a model in which write(copy) has written voxels.
template <class Write>
std::int32_t Written(const brix_model* model, const brix_extents* box, const std::uint8_t* bytes, brix_model** result,
                     brix_error* error, const Write& write)
{
    return Guarded(error, {model, box, bytes, result}, "the written voxel model", [&] {
        Voxels copy = VoxelsOf(model);
        write(copy);
        MakeModel(result, std::move(copy));
    });
}

constexpr std::size_t HeaderBytes = 1000; // at most, of an array in a file

// A file in memory whose voxels take `share` bytes each. While it is made there are besides a byte for each voxel of a layer of
// chunks, the texts that its header is put together of, and lists of the stacks in a row.
template <class Save>
std::int32_t SaveArray(const brix_model* model, std::int64_t lod, double share, const char* asked, brix_bytes** result,
                       brix_error* error, const Save& save)
{
    const auto size = [&] {
        const Extents& extents = VoxelsOf(model).ExtentsRef(lod);
        return Plus(Minus(extents.UpperIndices(), extents.LowerIndices()), {1, 1, 1});
    };
    const auto bytesOfLayers = [&](std::int64_t most) {
        const auto [x, y, z] = size();
        return static_cast<double>(x + 7) * static_cast<double>(y) * static_cast<double>(std::min(z, most));
    };
    const auto fileBytes = [&] { return share * bytesOfLayers(std::numeric_limits<std::int64_t>::max()) + HeaderBytes; };
    const auto workBytes = [&] {
        const auto stacksInRow = static_cast<double>(size()[0] / PlateWidth + 2);
        return bytesOfLayers(ChunkHeight) + 3 * HeaderBytes + 6 * sizeof(void*) * stacksInRow;
    };
    return Guarded(
        error, {model, result}, asked, [&] { return fileBytes() + workBytes(); },
        [&] {
            ByteCollector bytes(static_cast<std::size_t>(fileBytes()));
            std::ostream stream(&bytes);
            stream.exceptions(std::ios::badbit); // so that memory that runs out is told as such
            save(VoxelsOf(model), stream);
            Make(result, bytes.Take());
        });
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

std::int32_t brix_write_voxels(const brix_model* model, const brix_extents* box, const std::uint8_t* bytes,
                               std::int64_t byte_count, brix_model** result, brix_error* error)
{
    return Written(model, box, bytes, result, error,
                   [&](Voxels& copy) { WriteVoxels(copy, box->extents, BytesAt(bytes, byte_count)); });
}

std::int32_t brix_copy_voxels_strided(const brix_model* model, const brix_extents* box, std::uint8_t* bytes,
                                      std::int64_t byte_count, std::int64_t stride_y, std::int64_t stride_z, brix_error* error)
{
    return Guarded(error, {model, box, bytes},
                   [&] { CopyVoxels(VoxelsOf(model), box->extents, bytes, StridesOf(box, byte_count, stride_y, stride_z)); });
}

std::int32_t brix_write_voxels_strided(const brix_model* model, const brix_extents* box, const std::uint8_t* bytes,
                                       std::int64_t byte_count, std::int64_t stride_y, std::int64_t stride_z, brix_model** result,
                                       brix_error* error)
{
    return Written(model, box, bytes, result, error,
                   [&](Voxels& copy) { WriteVoxels(copy, box->extents, bytes, StridesOf(box, byte_count, stride_y, stride_z)); });
}

std::int32_t brix_for_each_filled_run(const brix_model* model, std::int64_t voxel_lod, brix_run_visitor visit, void* context,
                                      brix_error* error)
{
    return Guarded(error, {model}, [&] {
        if (visit == nullptr) throw NullArgument();
        struct Ended
        {};
        constexpr std::size_t mostAtOnce = 1000;
        std::vector<FilledRun> runs;
        runs.reserve(mostAtOnce);
        const auto passOn = [&] {
            const auto count = std::ssize(runs);
            if (count > 0 && visit(context, &runs.front().lowerX, count) != 0) throw Ended();
            runs.clear();
        };
        static_assert(sizeof(FilledRun) == 4 * sizeof(std::int64_t));
        try {
            ForEachFilledRun(VoxelsOf(model), voxel_lod, [&](const FilledRun& run) {
                runs.push_back(run);
                if (runs.size() == mostAtOnce) passOn();
            });
            passOn();
        } catch (const Ended&) {
        }
    });
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

std::int32_t brix_save_npy(const brix_model* model, std::int64_t voxel_lod, std::int32_t pack_bits, brix_bytes** result,
                           brix_error* error)
{
    const NpyVoxels voxels = pack_bits != 0 ? NpyVoxels::PackedBits : NpyVoxels::Bytes;
    return SaveArray(model, voxel_lod, pack_bits != 0 ? 0.125 : 1, "the NumPy array", result, error,
                     [&](const VoxelModel<bool>& from, std::ostream& to) { SaveNpy(from, voxel_lod, to, voxels); });
}

std::int32_t brix_save_nrrd(const brix_model* model, std::int64_t voxel_lod, brix_bytes** result, brix_error* error)
{
    return SaveArray(model, voxel_lod, 1, "the NRRD volume", result, error,
                     [&](const VoxelModel<bool>& from, std::ostream& to) { SaveNrrd(from, voxel_lod, to); });
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
