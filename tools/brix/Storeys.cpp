#include "Storeys.h"

#include "FilePlan.h"
#include "Report.h"
#include "Units.h"

#include <brix/operations/BasicOperations.h>
#include <brix/operations/FillOperations.h>
#include <brix/operations/SurfaceOperations.h>

#include <algorithm>
#include <cmath>
#include <map>

namespace brix::tools {
namespace {

constexpr double LeastShare = 0.1; // of the largest storey, for a height to be one

Voxels Between(const Voxels& voxels, const Band& band)
{
    const Extents& extents = voxels.ExtentsRef(voxels.FinestLOD());
    const Triple lower{extents.LowerIndices()[0], extents.LowerIndices()[1], band.lower};
    const Triple upper{extents.UpperIndices()[0], extents.UpperIndices()[1], band.upper};
    return Resize(voxels, Extents(extents.AxesRef(), lower, upper, voxels.FinestLOD()));
}

std::int64_t ToVoxels(double length, double voxel, const char* what)
{
    const double voxels = std::ceil(length / voxel - 1e-9);
    if (!(voxels >= 1) || voxels > 1e6)
        throw UsageError(std::string("The ") + what + " of the person must be a positive length of at most a million voxels.");
    return static_cast<std::int64_t>(voxels);
}

std::int64_t LayerAt(const Axes& axes, double z) { return axes.ContainingVoxel(axes.FromWorldCoordinates({0, 0, z}), 0)[2]; }

double BottomOf(const Axes& axes, std::int64_t layer)
{
    return axes.ToWorldCoordinates({0, 0, layer * VoxelSpacing(axes.VerticalLOD())})[2];
}

// Numbers of voxels by height.
using Profile = std::map<std::int64_t, std::int64_t>;

Profile ProfileOf(const Voxels& walkable)
{
    Profile profile;
    const Extents& extents = walkable.ExtentsRef(walkable.FinestLOD());
    for (std::int64_t z = extents.LowerIndices()[2]; z <= extents.UpperIndices()[2]; ++z) {
        const std::int64_t count = CountFilled(Between(walkable, {z, z}), walkable.FinestLOD());
        if (count > 0) profile[z] = count;
    }
    return profile;
}

// What lies at a height, or a step above or below it.
std::int64_t Near(const Profile& profile, std::int64_t z)
{
    std::int64_t count = 0;
    for (auto layer = profile.lower_bound(z - 1); layer != profile.end() && layer->first <= z + 1; ++layer)
        count += layer->second;
    return count;
}

// Peaks of the profile, the highest first, each a person's height from the others.
std::vector<std::int64_t> FindFloors(Profile profile, std::int64_t height)
{
    std::vector<std::int64_t> floors;
    for (std::int64_t largest = 0; !profile.empty();) {
        const auto peak =
            std::max_element(profile.begin(), profile.end(), [](const auto& a, const auto& b) { return a.second < b.second; });
        const std::int64_t z = peak->first;
        const std::int64_t size = Near(profile, z);
        largest = std::max(largest, size);
        if (static_cast<double>(size) < LeastShare * static_cast<double>(largest)) break;
        floors.push_back(z);
        profile.erase(profile.lower_bound(z - height), profile.upper_bound(z + height));
    }
    std::sort(floors.begin(), floors.end());
    return floors;
}

bool IsTerrain(const Profile& profile, const std::vector<std::int64_t>& floors)
{
    std::int64_t all = 0;
    std::int64_t near = 0;
    for (const auto& [z, count] : profile) all += count;
    for (const std::int64_t floor : floors) near += Near(profile, floor);
    return 4 * near < 3 * all;
}

Storey StoreyAt(std::int64_t base, const Body& body)
{
    return {base, base - 1, base + body.height * 7 / 10, base + body.height * 3 / 2, "", ""};
}

std::string AreaText(const Axes& axes, std::int64_t lod, std::int64_t count, const std::string& unit)
{
    const double area = static_cast<double>(count) * axes.WorldVoxelWidth(lod) * axes.WorldVoxelWidth(lod);
    const double digit = std::pow(10, std::floor(std::log10(area)) - 1); // two digits
    return unit.empty() ? "" : ", " + Text(std::round(area / digit) * digit) + " " + unit + "²";
}

std::vector<Storey> GivenStoreys(const Profile& profile, const Axes& axes, const Body& body, const StoreyOptions& options)
{
    std::vector<Storey> storeys;
    for (const double floor : options.floors) {
        Storey storey = StoreyAt(LayerAt(axes, floor), body);
        const auto lowest = profile.lower_bound(storey.layer);
        if (lowest == profile.end() || lowest->first > storey.top)
            throw std::runtime_error("Nothing can be walked on at the floor of height " + Text(floor) +
                                     ", so there is nothing to draw. Without --floor, storeys are found where they are.");
        storey.title = "Floor at " + WithUnit(floor, options.unit);
        storeys.push_back(storey);
    }
    return storeys;
}

Storey Terrain(const Profile& profile)
{
    const std::int64_t lowest = profile.begin()->first;
    const std::int64_t highest = profile.rbegin()->first;
    return {lowest, lowest - 1, highest + 1, highest, "Terrain", "", true};
}

} // namespace

Input ReadStoreyInput(const StoreyOptions& options)
{
    RequireGrid(options.grid);
    for (const auto& [length, what] : {std::pair(options.Diameter(), "diameter"), std::pair(options.Height(), "height")})
        if (!(length > 0)) ToVoxels(0, 1, what); // which says so
    FilePlan files;
    files.Read(options.grid.input);
    files.Write(options.output);
    return ReadInput(options.grid);
}

double StoreyOptions::Diameter() const { return diameter.value_or(FromMetres(0.5, unit)); }
double StoreyOptions::Height() const { return height.value_or(FromMetres(1.8, unit)); }

void AddStoreyOptions(CLI::App& command, StoreyOptions& options, const std::string& startText, bool isStartRequired)
{
    AddGridOptions(command, options.grid);
    command.add_option("-o,--output", options.output, "Picture to write; its ending, .png, .svg or .pdf, is its format")
        ->required()
        ->type_name("OUT.png");
    command.add_option("--floor", options.floors, "Height of a storey's floor, in the units of the file; repeatable [all found]")
        ->allow_extra_args(false)
        ->type_name("Z");
    command.add_option("--from", options.start, startText + "; on the floor, above it, or inside the floor's own voxel")
        ->required(isStartRequired)
        ->expected(3)
        ->type_name("X Y Z");
    command.add_option("--diameter", options.diameter, "Width of the person [0.5 metres]")->type_name("LENGTH");
    command.add_option("--height", options.height, "Height of the person [1.8 metres]")->type_name("LENGTH");
    command.add_option("--scale", options.scale, "Pixels for the shorter edge of a voxel [for about 600 pixels across]")
        ->check(CLI::Range(1, 64));
    AddUnitOption(command, options.unit);
}

Body BodyOf(const StoreyOptions& options, const Axes& axes)
{
    return {ToVoxels(options.Diameter(), axes.WorldVoxelWidth(options.grid.lod), "diameter"),
            ToVoxels(options.Height(), axes.WorldVoxelHeight(), "height")};
}

std::string Describe(const StoreyOptions& options)
{
    return "a person " + LengthText(options.Diameter(), options.Diameter() / 10, options.unit) + " wide and " +
           LengthText(options.Height(), options.Height() / 10, options.unit) + " high";
}

Voxels SolidWithHeadroom(const Voxels& voxels, const Body& body)
{
    const std::int64_t lod = voxels.FinestLOD();
    const Extents extents = voxels.ExtentsRef(lod);
    Triple upper = extents.UpperIndices();
    upper[2] = std::min(upper[2] + body.height + 1, MaxVerticalExtent(extents.AxesRef().VerticalLOD()) - 1);
    return Resize(FillEnclosedRegions(voxels), Extents(extents.AxesRef(), extents.LowerIndices(), upper, lod));
}

std::vector<Storey> StoreysOf(const Voxels& walkable, const Body& body, const StoreyOptions& options)
{
    const Profile profile = ProfileOf(walkable);
    if (profile.empty())
        throw std::runtime_error("Nobody can stand anywhere: no floor has room for " + Describe(options) +
                                 ". Are these the units of the file? --unit, --diameter and --height change them.");
    const Axes& axes = walkable.AxesRef();
    if (!options.floors.empty()) return GivenStoreys(profile, axes, body, options);
    const std::vector<std::int64_t> floors = FindFloors(profile, body.height);
    if (IsTerrain(profile, floors)) return {Terrain(profile)};
    std::vector<Storey> storeys;
    for (std::size_t i = 0; i < floors.size(); ++i) {
        Storey& storey = storeys.emplace_back(StoreyAt(floors[i], body));
        if (i + 1 < floors.size()) storey.top = std::min(storey.top, floors[i + 1] - 2);
        storey.title = "Storey " + std::to_string(i + 1);
        const double height = BottomOf(axes, floors[i]) - axes.WorldVoxelHeight() / 2; // the middle of the floor's voxel
        storey.note = "floor near " + LengthText(height, axes.WorldVoxelHeight(), options.unit) +
                      AreaText(axes, walkable.FinestLOD(), Near(profile, floors[i]), options.unit);
    }
    return storeys;
}

Voxels SeenInLayer(const Voxels& voxels, const Band& band, std::int64_t layer)
{
    const Voxels downToLayer = Between(Between(voxels, band), {layer, band.upper});
    return ExpandAlongZ(downToLayer, static_cast<int>(band.upper - layer), 0, std::nullopt, false);
}

Raster DrawBackground(const Voxels& solid, const Storey& storey, const Box& box)
{
    const std::int64_t lod = solid.FinestLOD();
    const Slice slice{Axis::Z, storey.layer};
    const Voxels floor = SeenInLayer(solid, {storey.layer, storey.isTerrain ? storey.top : storey.layer}, storey.layer);
    if (storey.isTerrain) return DrawSlice({{floor, NoWay}}, lod, slice, box);
    const Voxels things = SeenInLayer(solid, {storey.base + 1, storey.cut}, storey.layer);
    const Voxels walls = SeenInLayer(solid, {storey.cut, storey.cut}, storey.layer);
    return DrawSlice({{floor, NoWay}, {things, Things}, {walls, Ink}}, lod, slice, box);
}

Page MakePage(const std::string& title, const Axes& axes, const StoreyOptions& options, std::int64_t scale)
{
    const std::int64_t lod = options.grid.lod;
    const std::string subtitle = options.grid.input.filename().string() + ", for " + Describe(options) + "; voxels " +
                                 WithUnit(axes.WorldVoxelWidth(lod), options.unit) + " wide, " +
                                 WithUnit(axes.WorldVoxelHeight(), options.unit) + " high";
    return {title, subtitle, options.unit, LengthOfPixel(axes, lod, scale), {}};
}

} // namespace brix::tools
