// What the commands that draw plans storey by storey have in common: options, storeys, and layers of voxels seen from above.
#pragma once

#include "Grid.h"
#include "SlicePicture.h"

#include <brix/model/VoxelModel.h>

#include <CLI/CLI.hpp>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace brix::tools {

inline constexpr Colour Things{116, 121, 134};
inline constexpr Colour NoWay{222, 218, 208};

/// What every command that draws storeys is told. A person's lengths are those of an adult when they are not given.
struct StoreyOptions
{
    GridOptions grid;
    std::optional<double> diameter, height; // in the units of the file
    std::filesystem::path output;
    std::vector<double> floors;
    std::vector<double> start; // x, y, z in the units of the file, or none
    std::int64_t scale = 0;    // 0: for a readable size
    std::string unit;

    double Diameter() const;
    double Height() const;
};

/// Adds them; `startText` says what the point is for.
void AddStoreyOptions(CLI::App& command, StoreyOptions& options, const std::string& startText, bool isStartRequired);

/// Looks at the files of the options, and reads the input. Throws as FilePlan and ReadInput do.
Input ReadStoreyInput(const StoreyOptions& options);

/// A person in voxels.
struct Body
{
    std::int64_t diameter, height;
};

/// Lengths rounded up. Throws UsageError for one that is not positive, or is more than a million voxels.
Body BodyOf(const StoreyOptions& options, const Axes& axes);

/// "a person 0.5 m wide and 1.8 m high".
std::string Describe(const StoreyOptions& options);

/// What the triangles enclose is solid, too, the inside of walls; and there is room for a person on the highest matter.
VoxelModel<bool> SolidWithHeadroom(const VoxelModel<bool>& voxels, const Body& body);

/// Heights of voxels, inclusive.
struct Band
{
    std::int64_t lower;
    std::int64_t upper;
};

/// The heights that a storey is drawn from. Terrain is one storey without walls and things.
struct Storey
{
    std::int64_t base;  // of the floor's voxels, or of the person on them
    std::int64_t layer; // that is drawn, one below
    std::int64_t cut;   // through walls and windows
    std::int64_t top;   // below the next storey
    std::string title;
    std::string note;
    bool isTerrain = false;
};

/// The storeys of the floors that the options give, or those that are found: heights at which much can be walked on, and a
/// person's height apart. Where more than a quarter lies elsewhere it is terrain.
/// Throws std::runtime_error when nothing can be walked on, in all or above one of the given floors.
std::vector<Storey> StoreysOf(const VoxelModel<bool>& walkable, const Body& body, const StoreyOptions& options);

/// All voxels of a band of heights, seen in a layer below it.
VoxelModel<bool> SeenInLayer(const VoxelModel<bool>& voxels, const Band& band, std::int64_t layer);

/// What is solid on a storey: the floor, things that are lower than the cut, and walls.
Raster DrawBackground(const VoxelModel<bool>& solid, const Storey& storey, const Box& box);

/// The parts of the page that the options describe.
Page MakePage(const std::string& title, const Axes& axes, const StoreyOptions& options, std::int64_t scale);

} // namespace brix::tools
