// What the program and its part for OpenVDB say to each other, in C, as in SceneModule.h.
#pragma once

#include <cstddef>
#include <cstdint>

extern "C" {

/// A block of 8 x 8 x 8 voxels at a place that is a multiple of 8: bit 8 y + z of filled[x]. A full one is stored as a tile.
struct BrixVdbBlock
{
    std::int32_t x, y, z;
    std::uint64_t filled[8];
};

typedef void BrixAddBlock(void* grid, const BrixVdbBlock* block);

/// Calls add(grid, block) for every block that holds something, in any order; 0 ends the work.
typedef int (*BrixGiveBlocks)(void* context, BrixAddBlock* add, void* grid);

/// Gets parts of the file; 0 ends the work.
typedef int (*BrixTakeBytes)(void* context, const char* bytes, std::size_t count);

/// Writes a file with one grid. `toWorld` holds the world place of the voxel 0 0 0, and the steps to its neighbours along x, y
/// and z. Returns 0, or 1 with the reason as text. "brix_write_vdb"
typedef int BrixWriteVdb(const double* toWorld, BrixGiveBlocks give, BrixTakeBytes take, void* context, char* reason,
                         std::size_t reasonSize);
BrixWriteVdb brix_write_vdb;
}
