// Arrays of voxels in files of other programs' formats.
#include "storage/VoxelFiles.h"

#include "support/Messages.h"
#include "support/RandomModels.h"

#include <gtest/gtest.h>

#include <regex>
#include <sstream>

namespace brix {
namespace {

using namespace tests;

template <class Save> std::string Saved(const VoxelModel<bool>& model, std::int64_t lod, const Save& save)
{
    std::ostringstream stream;
    save(model, lod, stream);
    return stream.str();
}

std::string SavedNpy(const VoxelModel<bool>& model, std::int64_t lod, NpyVoxels voxels)
{
    return Saved(model, lod, [&](const auto& from, std::int64_t level, auto& to) { SaveNpy(from, level, to, voxels); });
}

// As numpy.unpackbits takes them.
std::string Unpacked(const std::string& rows, std::size_t width)
{
    std::string bytes;
    for (std::size_t row = 0; row < rows.size(); row += (width + 7) / 8)
        for (std::size_t x = 0; x < width; ++x) bytes += static_cast<char>(rows[row + x / 8] >> (7 - x % 8) & 1);
    return bytes;
}

std::string PlainBytes(const ReferenceModel& level)
{
    std::string bytes;
    level.ForEachVoxel([&](const Triple& voxel) { bytes += static_cast<char>(level.Value(voxel)); });
    return bytes;
}

Triple SizeOf(const Extents& extents) { return Plus(Minus(extents.UpperIndices(), extents.LowerIndices()), {1, 1, 1}); }

TEST(VoxelFiles, HoldEveryVoxelOfALevelBehindTheirHeader)
{
    for (const RandomModel& model : RandomModels(9300, Rounds(60))) {
        for (std::int64_t lod = 0; lod <= model.voxels.FinestLOD(); ++lod) {
            const ReferenceModel level = model.reference.AtLevel(lod);
            const auto [x, y, z] = SizeOf(model.voxels.ExtentsRef(lod));
            const std::string bytes = PlainBytes(level);

            const std::string npy = SavedNpy(model.voxels, lod, NpyVoxels::Bytes);
            ASSERT_EQ(npy.substr(0, 8), std::string("\x93NUMPY\x01\x00", 8));
            const std::size_t header = static_cast<std::uint8_t>(npy[8]) + 256U * static_cast<std::uint8_t>(npy[9]);
            ASSERT_EQ((10 + header) % 64, 0U);
            ASSERT_EQ(npy[9 + header], '\n');
            const std::string shape = "(" + std::to_string(z) + ", " + std::to_string(y) + ", " + std::to_string(x) + ")";
            ASSERT_NE(npy.substr(10, header).find("'shape': " + shape), std::string::npos) << model;
            ASSERT_EQ(npy.substr(10 + header), bytes) << model << " level " << lod;

            const std::string packed = SavedNpy(model.voxels, lod, NpyVoxels::PackedBits);
            const std::size_t start = packed.find('\n') + 1;
            ASSERT_EQ(packed.substr(start).size(), static_cast<std::size_t>((x + 7) / 8 * y * z)) << model;
            ASSERT_EQ(Unpacked(packed.substr(start), static_cast<std::size_t>(x)), bytes) << model << " level " << lod;
            ASSERT_NE(packed.substr(0, start).find(", " + std::to_string((x + 7) / 8) + ")"), std::string::npos);

            const std::string nrrd = Saved(model.voxels, lod, SaveNrrd);
            const std::size_t end = nrrd.find("\n\n");
            const std::string sizes = std::to_string(x) + ' ' + std::to_string(y) + ' ' + std::to_string(z);
            ASSERT_NE(nrrd.substr(0, end).find("\nsizes: " + sizes + "\n"), std::string::npos) << model;
            ASSERT_EQ(nrrd.substr(0, end + 2), NrrdHeader(model.voxels, lod, "raw"));
            ASSERT_EQ(nrrd.substr(end + 2), bytes) << model << " level " << lod;
        }
    }
}

// Three vectors and the first voxel's centre, as the header tells them.
TEST(VoxelFiles, TellWhereAVolumeLies)
{
    const Axes axes(3, {10, 20, 30}, 30, 1);
    const Extents extents(axes, {-2, 5, 7}, {4, 9, 8}, 1);
    const std::string nrrd = Saved(VoxelModel<bool>(extents, 1), 1, SaveNrrd);
    const std::regex number("-?[0-9.]+(e-?[0-9]+)?");
    const std::string places = nrrd.substr(nrrd.find("space directions:"), nrrd.find("\n\n") - nrrd.find("space directions:"));
    std::vector<double> numbers;
    for (std::sregex_iterator found(places.begin(), places.end(), number), end; found != end; ++found)
        numbers.push_back(std::stod(found->str()));
    ASSERT_EQ(numbers.size(), 12U);
    const auto worldOf = [&](const Triple& voxel) { return axes.ToWorldCoordinates(axes.VoxelCenter(voxel, 1)); };
    for (const Triple& steps : {Triple{0, 0, 0}, Triple{6, 4, 1}, Triple{6, 0, 0}}) {
        const std::array<double, 3> expected = worldOf(Plus(extents.LowerIndices(), steps));
        for (std::size_t i = 0; i < 3; ++i) {
            double coordinate = numbers[9 + i];
            for (std::size_t axis = 0; axis < 3; ++axis) coordinate += static_cast<double>(steps[axis]) * numbers[3 * axis + i];
            EXPECT_NEAR(coordinate, expected[i], 1e-9);
        }
    }
}

TEST(VoxelFiles, RefuseLevelsThatThereAreNotAndStreamsThatFail)
{
    const RandomModel model = MakeRandomModel(9300);
    std::ostringstream stream;
    EXPECT_THROW(SaveNpy(model.voxels, model.voxels.FinestLOD() + 1, stream), std::domain_error);
    stream.setstate(std::ios::badbit);
    EXPECT_EQ(MessageOf<std::runtime_error>([&] { SaveNrrd(model.voxels, 0, stream); }), "Failed to write the voxels.");
}

} // namespace
} // namespace brix
