// Models to bytes and back, and the hash of their content.
#include "storage/SavedModel.h"

#include "model/ForEachStack.h"
#include "support/Messages.h"
#include "support/RandomModels.h"

#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>

namespace brix {
namespace {

using namespace tests;
using Bytes = std::vector<std::uint8_t>;

std::string Hex(std::span<const std::uint8_t> bytes)
{
    std::ostringstream text;
    for (const unsigned byte : bytes) text << std::hex << std::setw(2) << std::setfill('0') << byte;
    return text.str();
}

// The hash at the end is made to fit again.
Bytes Sealed(Bytes saved)
{
    Murmur3 hash;
    hash.Add({saved.data(), saved.size() - 16});
    const Hash128 seal = hash.Finish();
    std::copy(seal.begin(), seal.end(), saved.end() - 16);
    return saved;
}

std::string LoadingSays(const Bytes& saved)
{
    return MessageOf<std::runtime_error>([&] { LoadModel(saved); });
}

TEST(Murmur3, GivesThePublishedHashesInPartsOfAnySize)
{
    const std::string fox = "The quick brown fox jumps over the lazy dog";
    for (std::size_t size = 1; size <= fox.size(); ++size) {
        Murmur3 hash;
        for (std::size_t first = 0; first < fox.size(); first += size) {
            const std::string part = fox.substr(first, size);
            hash.Add({reinterpret_cast<const std::uint8_t*>(part.data()), part.size()});
        }
        EXPECT_EQ(Hex(hash.Finish()), "6c1b07bc7bbc4be347939ac4a93c437a") << size;
    }
    EXPECT_EQ(Hex(Murmur3().Finish()), std::string(32, '0'));
}

TEST(SavedModel, ComesBackAsItWas)
{
    for (const RandomModel& random : RandomModels(700, 150)) {
        VoxelModel<bool> model = random.voxels;
        if (random.seed % 5 == 0 && model.FinestLOD() > 0) // a level that does not follow from the others
            WriteLevel(model, ReferenceModel(model, 0).Where([](const Triple& voxel) { return (voxel[0] + voxel[1]) % 3 == 0; }));
        const Bytes saved = SaveModel(model);
        EXPECT_LE(saved.size(), model.AllocatedBytes() + sizeof(model)) << random;

        std::stringstream stream;
        SaveModel(model, stream);
        ASSERT_EQ(stream.str(), std::string(saved.begin(), saved.end())) << random;
        stream << "what follows";
        const VoxelModel<bool> fromStream = LoadModel(stream);
        EXPECT_EQ(std::string(std::istreambuf_iterator<char>(stream), {}), "what follows");

        const VoxelModel<bool> loaded = LoadModel(saved);
        for (std::int64_t lod = 0; lod <= model.FinestLOD(); ++lod) {
            ASSERT_EQ(Differences(ReferenceModel(loaded, lod), ReferenceModel(model, lod)), "") << random << ", level " << lod;
        }
        ASSERT_EQ(loaded.FinestLOD(), model.FinestLOD());
        ASSERT_TRUE(loaded.ExtentsRef(0) == model.ExtentsRef(0));
        EXPECT_LE(loaded.AllocatedBytes(), model.AllocatedBytes()) << random;
        ASSERT_EQ(SaveModel(loaded), saved) << random;
        ASSERT_EQ(SaveModel(fromStream), saved) << random;
        const Hash128 hash = ContentHash(loaded);
        ASSERT_EQ(Hex(hash), Hex(std::span(saved).last(16)));
    }
}

// Hosts may leave equal layers, places for stacks, empty chunks and voxels outside the extents behind.
TEST(SavedModel, HoldsTheContentAndNotHowItIsStored)
{
    for (const RandomModel& random : RandomModels(1, 60)) {
        VoxelModel<bool> other = random.voxels;
        for (std::int64_t lod = 0; lod <= other.FinestLOD(); ++lod) {
            ForEachStack(other, lod, [&](VoxelStore<bool>& store, const StackIndices& ij) {
                const OffsetBox inside = store.Inside(ij);
                VoxelStack<bool>& stack = store.VoxelStackRef(ij);
                stack.Decompress();
                if (inside.upper[2] < LastOffset[2]) stack.LayerVoxelPlateRef(LastOffset[2]).rows.fill(0xFFFF);
            });
        }
        ASSERT_EQ(SaveModel(other), SaveModel(random.voxels)) << random;
    }
}

TEST(SavedModel, HasAnotherHashForAnyOtherContent)
{
    const auto modelOf = [](double spacing, double rotation, std::int64_t verticalLOD, std::int64_t upperX,
                            std::int64_t finestLOD, std::int64_t filledX) {
        const Axes axes(spacing, {0, 0, 0}, rotation, verticalLOD);
        VoxelModel<bool> model(Extents(axes, {-3, 0, 0}, {upperX, 9, 9}, 1), finestLOD);
        if (filledX >= 0) MakeStack(model, {0, 0, 0}, 0).FillOutsideBox({0, 0, 0}, {filledX, -1, -1}, true);
        return ContentHash(model);
    };
    const std::vector<Hash128> hashes{modelOf(1, 0, 0, 9, 1, -1), modelOf(2, 0, 0, 9, 1, -1), modelOf(1, 5, 0, 9, 1, -1),
                                      modelOf(1, 0, 1, 9, 1, -1), modelOf(1, 0, 0, 8, 1, -1), modelOf(1, 0, 0, 9, 2, -1),
                                      modelOf(1, 0, 0, 9, 1, 2)};
    for (std::size_t i = 0; i < hashes.size(); ++i) EXPECT_EQ(std::count(hashes.begin(), hashes.end(), hashes[i]), 1) << i;
    EXPECT_EQ(modelOf(1, -0.0, 0, 9, 1, -1), hashes[0]) << "frames that are equal";
}

// The bytes that docs/format.md describes: a model of two levels in one chunk. At level 0 one voxel, at level 1 the four in it,
// of which two heights are filled.
TEST(SavedModel, IsWhatItsDescriptionSays)
{
    const Axes axes(2, {1, 0, 0}, 90, 0);
    VoxelModel<bool> model(Extents(axes, {-2, 0, 0}, {31, 15, 200}, 1), 1);
    VoxelStack<bool>& coarse = MakeStack(model, {0, 0, 1}, 0);
    coarse.LayerVoxelPlateRef(coarse.IsolateLevel(3, true, true)).rows[1] = 4;
    VoxelStack<bool>& fine = MakeStack(model, {0, 0, 1}, 1);
    fine.LayerVoxelPlateRef(fine.IsolateLevel(3, true, true)).rows[2] = 0x30;
    const Bytes saved = SaveModel(model);
    const std::string empty(64, '0');
    const std::string coarsePlate = "00000400" + std::string(56, '0');
    const std::string finePlate = "000000003000" + std::string(52, '0');
    EXPECT_EQ(Hex(std::span(saved).first(saved.size() - 16)), "42524958564f580a"
                                                              "01000000"
                                                              "01"
                                                              "00"
                                                              "0000"
                                                              "0000000000000040"
                                                              "000000000000f03f"
                                                              "0000000000000000"
                                                              "0000000000000000"
                                                              "0000000000805640"
                                                              "feffffff"
                                                              "00000000"
                                                              "00000000"
                                                              "1f000000"
                                                              "0f000000"
                                                              "c8000000"
                                                              "cf000000"
                                                              "0000"
                                                              "0000"
                                                              "0100"
                                                              "02"
                                                              "02"
                                                              "03"
                                                              "03"
                                                              "04" +
                                                                  empty + coarsePlate + empty +
                                                                  "03"
                                                                  "03"
                                                                  "04" +
                                                                  empty + finePlate + empty +
                                                                  "00"
                                                                  "00000000");
    EXPECT_EQ(Hex(std::span(saved).last(16)), "c3b44f11e66f533b4c38ba342c4744c5");
}

TEST(SavedModel, TellsWhatIsWrongWithBytes)
{
    const Bytes saved = SaveModel(RandomModels(712, 1).front().voxels);
    ASSERT_GT(saved.size(), 150U);
    for (std::size_t size = 0; size < saved.size(); ++size)
        ASSERT_EQ(LoadingSays(Bytes(saved.begin(), saved.begin() + static_cast<std::ptrdiff_t>(size))),
                  "The saved voxel model is cut off.");
    Bytes longer = saved;
    longer.push_back(0);
    EXPECT_EQ(LoadingSays(longer), "The saved voxel model is damaged.");

    const auto changed = [&](std::size_t place, std::uint8_t by) {
        Bytes bytes = saved;
        bytes[place] = static_cast<std::uint8_t>(bytes[place] ^ by);
        return bytes;
    };
    EXPECT_EQ(LoadingSays(changed(3, 1)), "The data is not a saved voxel model.");
    EXPECT_EQ(LoadingSays(changed(8, 6)), "The saved voxel model has version 7; this library reads version 1.");
    for (std::size_t place = 12; place < saved.size(); ++place) {
        const std::string says = LoadingSays(changed(place, static_cast<std::uint8_t>(1 << place % 8)));
        ASSERT_TRUE(says == "The saved voxel model is damaged." || says == "The saved voxel model is cut off.") << place << says;
    }
}

// The worst that bytes can do: full chunks far from each other, and full stacks that the extents cut, beside an empty one.
TEST(SavedModel, TakesNoMoreMemoryThanItsBytesJustify)
{
    const Axes axes(1, {0, 0, 0}, 0, 0);
    VoxelModel<bool> scattered(Extents(axes, {0, 0, 0}, {16 * 4 * 60 - 1, 16 * 4 * 5 - 1, 255}, 0), 0);
    ForEachTriple({0, 0, 0}, {59, 4, 0}, [&](const Triple& place) {
        scattered.ChunkRef({4 * place[0], 4 * place[1], 0}).VoxelStoreRef(0).MakeUniform(true);
    });
    VoxelModel<bool> cut(Extents(axes, {1, 0, 5}, {1, 511, 60}, 5), 5);
    ForEachStack(cut, 5, [](VoxelStore<bool>& store, const StackIndices& ij) {
        const OffsetBox inside = store.Inside(ij);
        VoxelStack<bool> full = VoxelStack<bool>::WhollyFilled();
        full.FillOutsideBox(inside.lower, inside.upper, false);
        if (ij[1] > 0) store.ValidStackRef(ij) = std::move(full);
    });
    for (const VoxelModel<bool>* const model : {&scattered, &cut}) {
        const Bytes saved = SaveModel(*model);
        EXPECT_LT(LoadModel(saved).AllocatedBytes(), 150 * saved.size());
    }
}

// What passes for a model, whatever was done to its bytes, is one that is saved as the same bytes.
TEST(SavedModel, TakesNothingButWhatItWrites)
{
    std::int64_t taken = 0;
    for (std::uint64_t seed = 1; seed <= 4000; ++seed) {
        Random random(seed);
        Bytes bytes = SaveModel(MakeRandomModel(seed % 40).voxels);
        for (std::int64_t change = random.Between(1, 3); change > 0; --change)
            bytes[static_cast<std::size_t>(
                random.Between(12, static_cast<std::int64_t>(std::min<std::size_t>(bytes.size() - 17, 400))))] =
                static_cast<std::uint8_t>(random.OneIn(2) ? random.Between(0, 3) : random.Between(0, 255));
        bytes = Sealed(bytes);
        try {
            const VoxelModel<bool> model = LoadModel(bytes);
            ++taken;
            ASSERT_EQ(SaveModel(model), bytes) << seed;
        } catch (const std::runtime_error&) {
        }
    }
    EXPECT_GT(taken, 100);
    EXPECT_LT(taken, 3900);
}

} // namespace
} // namespace brix
