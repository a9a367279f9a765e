// The table of docs/model.md, with the figures that this build finds.
#include "model/PropagateLevel.h"
#include "model/VoxelModel.h"
#include "support/Picture.h"

#include <fstream>
#include <gtest/gtest.h>
#include <map>

namespace brix::tests {
namespace {

// The last cell of each row of a table, by its first.
std::map<std::string, std::string> DocumentedTable(const std::string& document, const std::string& name)
{
    std::ifstream file(BRIX_SOURCE "/docs/" + document);
    std::map<std::string, std::string> cells;
    bool isInside = false;
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with("<!--")) isInside = line == "<!-- table " + name + " -->";
        const auto trimmed = [&](std::size_t from, std::size_t to) {
            from = line.find_first_not_of(' ', from);
            return line.substr(from, line.find_last_not_of(' ', to - 1) + 1 - from);
        };
        if (isInside && line.starts_with("| "))
            cells[trimmed(1, line.find('|', 1))] = trimmed(line.rfind('|', line.size() - 2) + 1, line.size() - 1);
    }
    return cells;
}

std::size_t BytesOf(int layers)
{
    VoxelStack<bool> stack;
    for (int z = 0; z + 1 < layers; ++z)
        stack.LayerVoxelPlateRef(stack.IsolateLevel(z, true, true)) = Picture(z % 2 == 0 ? "#" : ".#");
    if (layers == 1) stack.LayerVoxelPlateRef(0) = Picture("#");
    stack.Compress();
    EXPECT_EQ(stack.LayerCount(), layers);
    return stack.AllocatedBytes();
}

// Of a model of one chunk without a filled voxel, with stacks or without.
std::size_t BytesOfChunk(std::int64_t finestLOD, const Triple& upper, std::int64_t lod, bool hasStacks)
{
    VoxelModel<bool> model(Extents(Axes(1, {0, 0, 0}, 0, 0), {0, 0, 0}, upper, lod), finestLOD);
    VoxelChunk<bool>& chunk = model.ChunkRef({0, 0, 0});
    for (std::int64_t level = 0; hasStacks && level <= finestLOD; ++level) chunk.VoxelStoreRef(level).VoxelStackRef({0, 0});
    return model.AllocatedBytes();
}

TEST(Memory, IsAsTheDocumentSays)
{
    if (sizeof(void*) != 8) GTEST_SKIP() << "the table is of 64-bit pointers";
    const std::map<std::string, std::size_t> found{
        {"an empty or full stack: a pointer in its store", sizeof(VoxelStack<bool>)},
        {"a stack of one layer", BytesOf(1)},
        {"a stack of two layers", BytesOf(2)},
        {"a stack of 64 layers", BytesOf(64)},
        {"a store without its stacks, which are 8 for each that is touched", sizeof(VoxelStore<bool>)},
        {"a chunk, with its stores", sizeof(VoxelChunk<bool>)},
        {"an empty or full chunk with levels 0 to 5, and its place in the table", BytesOfChunk(5, {15, 15, 63}, 0, false)},
        {"the same with all its stacks: 512 x 512 x 64 voxels of level 5", BytesOfChunk(5, {15, 15, 63}, 0, true)},
        {"the same with levels 0 to 3 only", BytesOfChunk(3, {15, 15, 63}, 0, true)},
        {"the same in a model that is a single voxel of level 5", BytesOfChunk(5, {0, 0, 0}, 5, true)}};
    auto documented = DocumentedTable("model.md", "memory");
    for (const auto& [what, bytes] : found) EXPECT_EQ(documented[what], std::to_string(bytes)) << what;
    EXPECT_EQ(documented.size(), found.size() + 1) << "a row without a figure of its own";
}

} // namespace
} // namespace brix::tests
