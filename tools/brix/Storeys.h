// What the commands that draw plans storey by storey have in common: the person, and layers of voxels seen from above.
#pragma once

#include <brix/model/VoxelModel.h>

#include <CLI/CLI.hpp>

namespace brix::tools {

struct PersonOptions
{
    double diameter = 0.5; // in the file's units
    double height = 1.8;
};

void AddPersonOptions(CLI::App& command, PersonOptions& person);

/// A length of the person in whole voxels, rounded up. Throws UsageError for one that is not positive, or is more than a million.
std::int64_t ToVoxels(double length, double voxel, const char* what);

/// Heights of voxels, inclusive.
struct Band
{
    std::int64_t lower;
    std::int64_t upper;
};

/// The heights that a storey is drawn from.
struct Storey
{
    std::int64_t base;  // of the floor's voxels
    std::int64_t layer; // that is drawn, one below
    std::int64_t cut;   // through walls and windows
    std::int64_t top;   // below the next storey
};

/// The storey above a floor, for a person of a height, both in world units.
Storey StoreyAbove(const Axes& axes, double floor, double height);

/// All voxels of a band of heights, seen in a layer below it.
VoxelModel<bool> SeenInLayer(const VoxelModel<bool>& voxels, const Band& band, std::int64_t layer);

} // namespace brix::tools
