// Voxelization against the plainest exact test there is: every voxel of a model against every triangle by separating axes.
#include "triangles/Voxelization.h"

#include "model/CheckInvariants.h"
#include "model/ForEachStack.h"
#include "model/VoxelIterator.h"
#include "support/ExactOverlap.h"
#include "support/Random.h"
#include "support/ReferenceOperations.h"
#include "triangles/TriangleRaster.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

namespace brix {
namespace {

using tests::Overlap;
using tests::Random;

bool TouchesAny(const std::vector<LatticeTriangle>& triangles, const Axes& axes, const Triple& voxel, std::int64_t lod)
{
    const Triple lower = axes.VoxelCorner(voxel, lod);
    const Triple upper = Plus(lower, axes.VoxelSize(lod));
    return std::any_of(triangles.begin(), triangles.end(), [&](const auto& triangle) { return Overlap(triangle, lower, upper); });
}

struct Case
{
    std::uint64_t seed;
    Extents extents;
    std::int64_t finestLOD;
    std::vector<LatticeTriangle> triangles;
};

// A corner near the extents: anywhere, or on faces, edges and corners of voxels, where closed boxes touch, or just beside them.
Triple RandomCorner(Random& random, const Extents& extents, std::int64_t lod, std::int64_t reach)
{
    const Axes& axes = extents.AxesRef();
    const Triple size = axes.VoxelSize(lod);
    const Triple lower = axes.VoxelCorner(extents.LowerIndices(), extents.VoxelLOD());
    const Triple upper = axes.VoxelCorner(Plus(extents.UpperIndices(), {1, 1, 1}), extents.VoxelLOD());
    Triple corner{};
    for (std::size_t i = 0; i < 3; ++i) {
        corner[i] = random.Between(lower[i] - reach, upper[i] + reach);
        if (random.OneIn(2))
            corner[i] = FloorDivide(corner[i], size[i]) * size[i] + (random.OneIn(2) ? random.Between(-1, 1) : 0);
    }
    return corner;
}

// A few base units wide, about a corner where eight voxels meet: which of them it misses is a matter of one unit.
LatticeTriangle TinyTriangle(Random& random, const Extents& extents, std::int64_t lod)
{
    const Triple size = extents.AxesRef().VoxelSize(lod);
    const Triple about = RandomCorner(random, extents, lod, 0);
    LatticeTriangle triangle{};
    for (Triple& corner : triangle) {
        for (std::size_t i = 0; i < 3; ++i) corner[i] = FloorDivide(about[i], size[i]) * size[i] + random.Between(-4, 4);
    }
    return triangle;
}

LatticeTriangle RandomTriangle(Random& random, const Extents& extents, std::int64_t lod)
{
    if (random.OneIn(3)) return TinyTriangle(random, extents, lod);
    const Triple size = extents.AxesRef().VoxelSize(lod);
    const std::array<std::int64_t, 3> reaches{size[0], 10 * size[0], 400000};
    const std::int64_t spread = reaches[static_cast<std::size_t>(random.Between(0, 2))];
    LatticeTriangle triangle{};
    triangle[0] = RandomCorner(random, extents, lod, size[0]);
    for (std::size_t corner = 1; corner < 3; ++corner) {
        triangle[corner] = triangle[0];
        for (std::size_t i = 0; i < 3; ++i) {
            if (random.OneIn(5)) continue; // stays in a plane of the lattice, or on a line or point
            triangle[corner][i] +=
                random.OneIn(3) ? random.Between(-spread / size[i], spread / size[i]) * size[i] : random.Between(-spread, spread);
        }
    }
    if (random.OneIn(8)) triangle[2] = triangle[1];
    return triangle;
}

Case RandomCase(std::uint64_t seed)
{
    Random random(seed);
    const Axes axes(random.OneIn(2) ? 40000.0 : 1.0, {0, 0, 0}, 0, random.Between(0, 5));
    const std::int64_t finestLOD = random.Between(0, 5);
    const std::int64_t extentsLOD = random.Between(0, 5);
    Triple lower{random.Between(-20, 20) << extentsLOD, random.Between(-20, 20) << extentsLOD, random.Between(-70, 70)};
    Triple upper = Plus(lower, {random.Between(0, 3 << extentsLOD), random.Between(0, 3 << extentsLOD), random.Between(0, 70)});
    Case result{seed, Extents(axes, lower, upper, extentsLOD), finestLOD, {}};
    for (std::int64_t i = random.Between(1, 4); i > 0; --i) {
        result.triangles.push_back(RandomTriangle(random, result.extents, finestLOD));
    }
    return result;
}

// The pieces that a model files are what counts as the triangle where it was cut on its way into the chunks.
std::vector<LatticeTriangle> FiledPieces(const TriangleModel& model)
{
    std::vector<LatticeTriangle> pieces;
    ForEachTriple(model.LowerChunkIndices(), model.UpperChunkIndices(), [&](const Triple& chunk) {
        const auto& filed = model.ChunkRef(chunk).Triangles();
        pieces.insert(pieces.end(), filed.begin(), filed.end());
    });
    std::sort(pieces.begin(), pieces.end());
    pieces.erase(std::unique(pieces.begin(), pieces.end()), pieces.end());
    return pieces;
}

void ExpectExactVoxels(const VoxelModel<bool>& model, const std::vector<LatticeTriangle>& triangles, std::uint64_t seed)
{
    const std::int64_t lod = model.FinestLOD();
    const Extents& extents = model.ExtentsRef(lod);
    std::int64_t differences = 0;
    ForEachTriple(extents.LowerIndices(), extents.UpperIndices(), [&](const Triple& voxel) {
        if (model.FindVoxel(voxel, lod).Value() != TouchesAny(triangles, model.AxesRef(), voxel, lod)) ++differences;
    });
    EXPECT_EQ(differences, 0) << "seed " << seed;
    EXPECT_EQ(CheckInvariants(model, lod), "") << "seed " << seed;
}

TEST(Voxelization, EqualsTheExactOverlapOfEveryVoxelWithEveryTriangle)
{
    for (std::uint64_t seed = 1; seed <= 250; ++seed) {
        const Case random = RandomCase(seed);
        TriangleModel triangles(random.extents);
        for (const LatticeTriangle& triangle : random.triangles) triangles.AddTriangle(triangle);
        VoxelModel<bool> model(random.extents, random.finestLOD);
        VoxelizeTriangleModel(model, triangles);
        ExpectExactVoxels(model, FiledPieces(triangles), seed);
    }
}

// Fills the chunks of a model with the code for one instruction set.
void Rasterize(VoxelModel<bool>& model, const TriangleModel& triangles, InstructionSet instructionSet)
{
    const std::int64_t lod = model.FinestLOD();
    ForEachTriple(model.LowerChunkIndices(), model.UpperChunkIndices(), [&](const Triple& chunk) {
        VoxelStore<bool>& store = model.ChunkRef(chunk).VoxelStoreRef(lod);
        TriangleRaster(store, model.AxesRef().VoxelSize(lod)).Fill(triangles.ChunkRef(chunk), instructionSet);
        ForEachStackOfStore(store,
                            [](VoxelStore<bool>& written, const StackIndices& ij) { written.VoxelStackRef(ij).Compress(); });
    });
}

bool HoldSameVoxels(const VoxelModel<bool>& a, const VoxelModel<bool>& b)
{
    const std::int64_t lod = a.FinestLOD();
    return tests::Differences(tests::ReferenceModel(a, lod), tests::ReferenceModel(b, lod)).empty();
}

TEST(TriangleRaster, FillsTheSameWithEveryInstructionSet)
{
    for (std::uint64_t seed = 1; seed <= 400; ++seed) {
        const Case random = RandomCase(seed);
        TriangleModel triangles(random.extents);
        for (const LatticeTriangle& triangle : random.triangles) triangles.AddTriangle(triangle);
        VoxelModel<bool> expected(random.extents, random.finestLOD);
        VoxelModel<bool> portable(random.extents, random.finestLOD);
        VoxelizeTriangleModel(expected, triangles);
        Rasterize(portable, triangles, InstructionSet::Portable);
        EXPECT_TRUE(HoldSameVoxels(portable, expected)) << "seed " << seed;
    }
}

TEST(TriangleRaster, CutsWhatWasPutIntoAChunkUncut)
{
    std::int64_t hits = 0;
    for (std::uint64_t seed = 1; seed <= 300; ++seed) {
        Random random(seed);
        const Case box = RandomCase(seed);
        const std::int64_t reach = random.OneIn(2) ? 2000000 : 500000000;
        LatticeTriangle triangle{};
        for (Triple& corner : triangle)
            corner = RandomCorner(random, box.extents, box.finestLOD, random.OneIn(3) ? 20000 : reach);
        TriangleModel cut(box.extents);
        TriangleModel uncut(box.extents);
        cut.AddTriangle(triangle);
        ForEachTriple(uncut.LowerChunkIndices(), uncut.UpperChunkIndices(),
                      [&](const Triple& chunk) { uncut.ChunkRef(chunk).AddTriangle(triangle); });
        VoxelModel<bool> expected(box.extents, box.finestLOD);
        VoxelModel<bool> model(box.extents, box.finestLOD);
        VoxelizeTriangleModel(expected, cut);
        VoxelizeTriangleModel(model, uncut);
        EXPECT_TRUE(HoldSameVoxels(model, expected)) << "seed " << seed;
        if (!HoldSameVoxels(model, VoxelModel<bool>(box.extents, box.finestLOD))) ++hits;
    }
    EXPECT_GT(hits, 30);
}

TEST(Voxelization, FillsAWholeLayerWhereATriangleReachesFarBeyondTheLattice)
{
    const Extents extents(Axes(40000, {0, 0, 0}, 0, 5), {-20, -20, -3}, {20, 20, 3}, 0);
    for (const std::int64_t far : {std::int64_t{1} << 31, std::int64_t{1} << 34, MaxCoordinate}) {
        TriangleModel triangles(extents);
        triangles.AddTriangle({{{-far, -far, 100}, {far, -far, 100}, {0, far, 100}}});
        VoxelModel<bool> model(extents, 0);
        VoxelizeTriangleModel(model, triangles);
        ForEachTriple(extents.LowerIndices(), extents.UpperIndices(),
                      [&](const Triple& voxel) { ASSERT_EQ(model.FindVoxel(voxel, 0).Value(), voxel[2] == 0) << far; });
    }
}

} // namespace
} // namespace brix
