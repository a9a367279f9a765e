#include "Storeys.h"

#include "Report.h"

#include <brix/operations/BasicOperations.h>
#include <brix/operations/SurfaceOperations.h>

#include <cmath>

namespace brix::tools {
namespace {

VoxelModel<bool> Between(const VoxelModel<bool>& voxels, const Band& band)
{
    const Extents& extents = voxels.ExtentsRef(voxels.FinestLOD());
    const Triple lower{extents.LowerIndices()[0], extents.LowerIndices()[1], band.lower};
    const Triple upper{extents.UpperIndices()[0], extents.UpperIndices()[1], band.upper};
    return Resize(voxels, Extents(extents.AxesRef(), lower, upper, voxels.FinestLOD()));
}

} // namespace

void AddStoreyOptions(CLI::App& command, StoreyOptions& options, const std::string& startText, bool isStartRequired)
{
    AddGridOptions(command, options.grid);
    command.add_option("-o,--output", options.output, "PNG file to write")->required()->type_name("OUT.png");
    command.add_option("--floor", options.floors, "Height of a storey's floor, in the units of the file; repeatable")
        ->required()
        ->allow_extra_args(false)
        ->type_name("Z");
    command.add_option("--from", options.start, startText)->required(isStartRequired)->expected(3)->type_name("X Y Z");
    command.add_option("--diameter", options.person.diameter, "Width of the person")->capture_default_str()->type_name("LENGTH");
    command.add_option("--height", options.person.height, "Height of the person")->capture_default_str()->type_name("LENGTH");
    command.add_option("--scale", options.scale, "Pixels for the edge of a voxel")
        ->check(CLI::Range(1, 64))
        ->capture_default_str();
}

std::int64_t ToVoxels(double length, double voxel, const char* what)
{
    const double voxels = std::ceil(length / voxel - 1e-9);
    if (!(voxels >= 1) || voxels > 1e6)
        throw UsageError(std::string("The ") + what + " of the person must be a positive length of at most a million voxels.");
    return static_cast<std::int64_t>(voxels);
}

Storey StoreyAbove(const Axes& axes, double floor, double height)
{
    const auto layerAt = [&](double z) { return axes.ContainingVoxel(axes.FromWorldCoordinates({0, 0, z}), 0)[2]; };
    const std::int64_t base = layerAt(floor);
    return {base, base - 1, layerAt(floor + height * 0.7), layerAt(floor + height * 1.5)};
}

VoxelModel<bool> SeenInLayer(const VoxelModel<bool>& voxels, const Band& band, std::int64_t layer)
{
    const VoxelModel<bool> downToLayer = Between(Between(voxels, band), {layer, band.upper});
    return ExpandAlongZ(downToLayer, static_cast<int>(band.upper - layer), 0, std::nullopt, false);
}

} // namespace brix::tools
