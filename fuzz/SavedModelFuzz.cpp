// Bytes that claim to be a saved model: as they come, and with a hash that fits. What is taken for a model is one that is saved
// as the same bytes.
#include "storage/SavedModel.h"

#include <cstdlib>
#include <stdexcept>

namespace {

void Load(std::span<const std::uint8_t> bytes)
{
    try {
        const brix::VoxelModel<bool> model = brix::LoadModel(bytes);
        const std::vector<std::uint8_t> saved = brix::SaveModel(model);
        if (!std::equal(saved.begin(), saved.end(), bytes.begin(), bytes.end())) std::abort();
    } catch (const std::runtime_error&) {
    }
}

// The start of a model of level `finest` and of extents that a few bytes tell, so that the fuzzer need not find it.
std::vector<std::uint8_t> Header(std::uint8_t seed)
{
    const std::int64_t upper = seed / 8 * 9;
    const brix::Extents extents(brix::Axes(1, {0, 0, 0}, 0, 0), {-5, 0, -70}, {upper, upper / 2, upper}, 2);
    std::vector<std::uint8_t> saved = brix::SaveModel(brix::VoxelModel<bool>(extents, 2 + seed % 3));
    saved.resize(saved.size() - 20);
    return saved;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Load({data, size});
    if (size == 0) return 0;
    std::vector<std::uint8_t> bytes = Header(data[0]);
    bytes.insert(bytes.end(), data + 1, data + size);
    bytes.insert(bytes.end(), 4, 0);
    brix::Murmur3 hash;
    hash.Add(bytes);
    const brix::Hash128 seal = hash.Finish();
    bytes.insert(bytes.end(), seal.begin(), seal.end());
    Load(bytes);
    return 0;
}
