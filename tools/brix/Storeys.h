// What the commands that draw plans storey by storey have in common: their options, and layers of voxels seen
// from above.
#pragma once

#include "Grid.h"

#include <brix/model/VoxelModel.h>

#include <CLI/CLI.hpp>

#include <filesystem>
#include <string>
#include <vector>

namespace brix::tools {

struct PersonOptions
{
    double diameter = 0.5; // in the file's units
    double height = 1.8;
};

/// What every command that draws storeys is told.
struct StoreyOptions
{
    GridOptions grid;
    PersonOptions person;
    std::filesystem::path output;
    std::vector<double> floors;
    std::vector<double> start; // x, y, z in the units of the file, or none
    std::int64_t scale = 4;
};

/// Adds them; `startText` says what the point is for.
void AddStoreyOptions(CLI::App& command, StoreyOptions& options, const std::string& startText, bool isStartRequired);

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
