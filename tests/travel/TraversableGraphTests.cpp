// Steps and plains of the graph against their definitions.
#include "travel/TraversableGraph.h"

#include "Walks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>

namespace brix {
namespace {

using namespace tests;
using Graph = TraversableGraph;

Triple Beside(const Triple& voxel, Graph::Direction direction)
{
    return Plus(voxel, {(direction == Graph::East) - (direction == Graph::West),
                        (direction == Graph::North) - (direction == Graph::South), 0});
}

void ExpectPlainAround(const Graph& graph, Graph::Index voxel, const std::set<Triple>& steps, const std::string& what)
{
    const Triple at = graph.VoxelIndices(voxel);
    EXPECT_EQ(steps.size(), 8U) << what;
    EXPECT_TRUE(std::all_of(steps.begin(), steps.end(), [&](const Triple& to) { return to[2] == at[2]; })) << what;
    for (const auto x : {Graph::East, Graph::West}) {
        EXPECT_EQ(graph.VoxelIndices(x == Graph::East ? voxel + 1 : voxel - 1), Beside(at, x)) << what;
        for (const auto y : {Graph::North, Graph::South}) {
            const Triple diagonal = Beside(Beside(at, x), y);
            EXPECT_EQ(graph.VoxelIndices(graph.DiagonalOnPlain(voxel, x, y)), diagonal) << what;
            EXPECT_EQ(graph.VoxelIndices(graph.DiagonalOnPlain(voxel, y, x)), diagonal) << what;
        }
    }
}

TEST(TraversableGraph, StepsToAllThatIsInStepAndToNothingElseThanLevelGroundOnPlains)
{
    std::int64_t onPlains = 0;
    for (std::uint64_t seed = 1; seed <= 100; ++seed) {
        const std::string what = "seed " + std::to_string(seed);
        const RandomGround ground = MakeRandomGround(AllTerrains[seed % AllTerrains.size()], seed);
        const PathModel path(ground.environment, ground.environment.FinestLOD(), 1, ground.agentHeight,
                             ground.terrain != Terrain::Flat);
        const Ground reference(path);
        const Graph graph(path.TraversableVoxels());
        ASSERT_EQ(graph.Size(), reference.voxels.size()) << what;
        for (Graph::Index voxel = 0; voxel < graph.Size(); ++voxel) {
            std::set<Triple> steps;
            std::set<Triple> expected;
            graph.ForEachStep(voxel, [&](Graph::Index to) { steps.insert(graph.VoxelIndices(to)); });
            reference.ForEachStep(graph.VoxelIndices(voxel), [&](const Triple& to) { expected.insert(to); });
            EXPECT_EQ(steps, expected) << what;
            if (!graph.IsOnPlain(voxel)) continue;
            ++onPlains;
            ExpectPlainAround(graph, voxel, expected, what);
        }
    }
    EXPECT_GT(onPlains, 500);
}

} // namespace
} // namespace brix
