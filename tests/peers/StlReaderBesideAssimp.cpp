// STL files as another reader takes them, assimp: on real files and on damaged ones. Where it reads other triangles, or none, the
// report has to say what was found; nothing may differ in silence.
#include "triangles/StlReader.h"

#include "support/StlSamples.h"

#include <assimp/Importer.hpp>
#include <assimp/scene.h>
#include <gtest/gtest.h>

#include <cmath>
#include <optional>
#include <sstream>

namespace brix {
namespace {

using tests::Random;
using Triangles = std::vector<WorldTriangle>;

/// What assimp reads, nothing where it gives up.
std::optional<Triangles> ReadByAssimp(const std::string& content)
{
    Assimp::Importer importer;
    const aiScene* const scene = importer.ReadFileFromMemory(content.data(), content.size(), 0, "stl");
    if (scene == nullptr) return {};
    Triangles triangles;
    for (unsigned m = 0; m < scene->mNumMeshes; ++m)
        for (unsigned f = 0; f < scene->mMeshes[m]->mNumFaces; ++f) {
            const aiFace& face = scene->mMeshes[m]->mFaces[f];
            if (face.mNumIndices != 3) return {};
            WorldTriangle& triangle = triangles.emplace_back();
            for (unsigned c = 0; c < 3; ++c) {
                const aiVector3D& vertex = scene->mMeshes[m]->mVertices[face.mIndices[c]];
                triangle[c] = {static_cast<double>(vertex.x), static_cast<double>(vertex.y), static_cast<double>(vertex.z)};
            }
        }
    return triangles;
}

/// Up to the rounding of its numbers.
bool AreAlike(const Triangles& a, const Triangles& b)
{
    if (a.size() != b.size()) return false;
    for (std::size_t i = 0; i < 9 * a.size(); ++i) {
        const double x = a[i / 9][i % 9 / 3][i % 3];
        const double y = b[i / 9][i % 9 / 3][i % 3];
        if (!(std::abs(x - y) <= 1e-5 * std::max(std::abs(x), std::abs(y)) + 1e-30)) return false;
    }
    return true;
}

StlImport ReadByBrix(const std::string& content)
{
    return ReadStl(std::span(reinterpret_cast<const std::uint8_t*>(content.data()), content.size()));
}

std::string Saved(const Triangles& triangles, StlVariant variant)
{
    std::ostringstream file;
    SaveTrianglesToSTL(file, triangles, variant, false);
    return file.str();
}

Triangles RandomTriangles(Random& random)
{
    Triangles triangles(static_cast<std::size_t>(random.Between(1, 5)));
    for (std::size_t i = 0; i < 9 * triangles.size(); ++i)
        triangles[i / 9][i % 9 / 3][i % 3] = static_cast<double>(random.Between(-9999, 9999)) / 64;
    return triangles;
}

TEST(StlBesideAssimp, IsReadAlikeFromRealFiles)
{
    std::size_t files = 0;
    std::error_code none;
    for (const auto& entry : std::filesystem::directory_iterator(BRIX_DATA, none)) {
        if (entry.path().extension() != ".stl") continue;
        ++files;
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string content{std::istreambuf_iterator<char>(file), {}};
        const std::optional<Triangles> theirs = ReadByAssimp(content);
        ASSERT_TRUE(theirs) << entry.path();
        EXPECT_TRUE(AreAlike(*theirs, ReadByBrix(content).triangles)) << entry.path();
    }
    if (files == 0) GTEST_SKIP() << "There are no STL files in " << BRIX_DATA << ".";
}

TEST(StlBesideAssimp, NeverDiffersInSilence)
{
    Random random(1);
    std::size_t alike = 0;
    std::size_t different = 0;
    std::size_t refused = 0;
    for (int round = 0; round < 3000; ++round) {
        const StlVariant variant = random.OneIn(2) ? StlVariant::Ascii : StlVariant::Binary;
        const std::string whole = Saved(RandomTriangles(random), variant);
        const std::string content = random.OneIn(5) ? whole : tests::Damaged(whole, random);
        try {
            const StlImport ours = ReadByBrix(content);
            const std::optional<Triangles> theirs = ReadByAssimp(content);
            const bool isAlike = theirs && AreAlike(*theirs, ours.triangles);
            ++(isAlike ? alike : theirs ? different : refused);
            EXPECT_TRUE(isAlike || content != whole) << content;
            EXPECT_TRUE(isAlike || !theirs || ours.report.findingCount > 0) << content;
        } catch (const std::runtime_error&) { // no STL file
        }
    }
    std::cout << alike << " alike, " << different << " different, " << refused << " refused by assimp\n";
    EXPECT_GT(alike, 600U);
}

} // namespace
} // namespace brix
