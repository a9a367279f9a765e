// Triangles of any doubles, voxelized into a small model, and a chain of operations chosen by the bytes: nothing but the engine's
// own errors may leave it, and every result must be well formed.
#include "model/CheckInvariants.h"
#include "operations/AutoSplit.h"
#include "operations/BasicOperations.h"
#include "operations/DensityMap.h"
#include "operations/FillOperations.h"
#include "operations/SolidOperations.h"
#include "operations/SurfaceOperations.h"
#include "travel/PathModel.h"
#include "triangles/Cuboidization.h"
#include "triangles/Solidization.h"
#include "triangles/Voxelization.h"
#include "triangles/Voxelize.h"
#include "visibility/Visibility.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

namespace {

using namespace brix;

// Reads numbers from the bytes; zeros when they are used up.
class Bytes
{
public:
    Bytes(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    template <class Number> Number Take()
    {
        Number number{};
        const std::size_t taken = std::min(sizeof number, size_);
        std::memcpy(&number, data_, taken);
        data_ += taken;
        size_ -= taken;
        return number;
    }
    int Small() { return static_cast<int>(Take<std::int8_t>()); }
    std::int64_t Below(std::int64_t count) { return Take<std::uint8_t>() % count; }
    bool IsEmpty() const { return size_ == 0; }

private:
    const std::uint8_t* data_;
    std::size_t size_;
};

void RequireWellFormed(const Voxels& model)
{
    const std::string reason = CheckInvariants(model, model.FinestLOD());
    if (reason.empty()) return;
    std::fprintf(stderr, "%s\n", reason.c_str());
    std::abort();
}

// Whole, where the triangles together are not too large for a fuzzer's memory.
void VoxelizeWhole(const Axes& axes, const std::vector<WorldTriangle>& triangles, std::int64_t finestLOD)
{
    try {
        const Extents extents = DetectTriangleExtents(axes, triangles);
        const Triple size = Minus(extents.UpperIndices(), extents.LowerIndices());
        if (IsWithin(size, {}, {500, 500, 2000})) RequireWellFormed(Voxelize(axes, triangles, finestLOD));
    } catch (const std::domain_error&) { // outside the index space
    }
}

Voxels MakeModel(Bytes& bytes)
{
    const Axes axes(bytes.Below(2) == 0 ? 1.0 : 40000.0, {0, 0, 0}, static_cast<double>(bytes.Small()), bytes.Below(6));
    const Triple lower{bytes.Below(40) - 20, bytes.Below(40) - 20, bytes.Below(140) - 70};
    const Triple upper = Plus(lower, {bytes.Below(6), bytes.Below(6), bytes.Below(70)});
    const Extents extents(axes, lower, upper, 0);
    Voxels model(extents, bytes.Below(4));
    std::vector<WorldTriangle> triangles;
    for (std::int64_t i = bytes.Below(8); i > 0; --i) {
        WorldTriangle triangle{};
        for (auto& corner : triangle) {
            for (double& coordinate : corner) coordinate = bytes.Below(4) == 0 ? bytes.Take<double>() : bytes.Small() * 0.25;
        }
        triangles.push_back(triangle);
    }
    VoxelizeWhole(axes, triangles, model.FinestLOD());
    TriangleModel filed(extents);
    filed.AddWorldTriangles(triangles);
    VoxelizeTriangleModel(model, filed);
    return model;
}

void RequireEqual(std::int64_t value, std::int64_t expected)
{
    if (value != expected) std::abort();
}

// The regions have the voxels of the model between them, as have the cuboids and the solid inside the rectangles.
void RequireSplit(const Voxels& model, const std::vector<Voxels>& regions)
{
    const std::int64_t lod = model.FinestLOD();
    const std::int64_t filled = CountFilled(model, lod);
    std::int64_t split = 0;
    for (const Voxels& region : regions) {
        RequireWellFormed(region);
        split += CountFilled(region, lod);
    }
    RequireEqual(split, filled);

    const auto volume = [](const Triple& size) { return size[0] * size[1] * size[2]; };
    std::int64_t inCuboids = 0;
    for (const VoxelCuboid& cuboid : CuboidizeVoxelModel(model, lod))
        inCuboids += volume(Plus(Minus(cuboid.upper, cuboid.lower), {1, 1, 1}));
    RequireEqual(inCuboids, filled);

    std::int64_t inSolid = 0; // what the upward rectangles have below them, less what the downward ones have
    for (const VoxelRectangle& rectangle : SolidizeVoxelModel(model, lod)) {
        if (rectangle.axis != Axis::Z) continue;
        const Triple size = Minus(rectangle.upper, rectangle.lower);
        inSolid += size[0] * size[1] * rectangle.lower[2] * (rectangle.side == Side::Upper ? 1 : -1);
    }
    RequireEqual(inSolid, filled);
}

Voxels Change(const Voxels& model, Bytes& bytes)
{
    const std::int64_t lod = model.FinestLOD();
    const bool flag = bytes.Below(2) == 1;
    const std::optional<Voxels> guide = bytes.Below(3) == 0 ? std::optional(Invert(model)) : std::nullopt;
    switch (bytes.Below(15)) {
    case 0:
        return ExpandAlongX(model, bytes.Small(), bytes.Small(), guide, flag);
    case 1:
        return ReduceAlongZ(model, bytes.Small(), bytes.Small(), guide, flag);
    case 2:
        return ExpandByOneVoxel(model, bytes.Small(), bytes.Small(), guide, flag);
    case 3:
        return ReduceHorizontally(model, bytes.Small(), guide, flag);
    case 4:
        return ExpandHorizontally(model, bytes.Small() % 20, guide, flag);
    case 5:
        return FillEnclosedRegions(model);
    case 6:
        return FillFromPoint(model, {bytes.Take<std::int32_t>(), bytes.Take<std::int32_t>(), bytes.Take<std::int32_t>()});
    case 7:
        return Subtract(model, AutoCrop(model), lod, flag);
    case 8:
        return PathModel(model, lod, bytes.Small(), bytes.Small(), flag).TraversableVoxels();
    case 9:
        return VisibilityFromDirection(model, {bytes.Take<std::int64_t>(), bytes.Small(), bytes.Small()}, lod,
                                       bytes.Small() / 64.0);
    case 10:
        return VisibilityWithinCone(model, {bytes.Take<std::int64_t>(), bytes.Small(), bytes.Small()},
                                    {bytes.Take<std::int64_t>(), bytes.Small(), bytes.Small()},
                                    bytes.Take<std::uint16_t>() / 128.0, lod, bytes.Take<std::int32_t>() % 400000,
                                    bytes.Small() / 64.0, false);
    case 11:
        return VisibilityWithinPyramid(model, {bytes.Take<std::int32_t>(), bytes.Small(), bytes.Small()},
                                       {bytes.Take<std::int64_t>(), bytes.Small(), bytes.Small()}, bytes.Small(), bytes.Small(),
                                       lod, bytes.Take<std::int32_t>() % 400000, bytes.Small() / 64.0, flag);
    case 12: {
        std::vector<Voxels> regions = AutoSplit(model);
        RequireSplit(model, regions);
        return regions.empty() ? model : std::move(regions.back());
    }
    case 13: {
        const Voxels other = AutoCrop(model);
        return DensityMap({&model, &other}, {bytes.Take<double>(), bytes.Small() / 8.0}, {bytes.Take<double>()}, bytes.Below(4))
            .front();
    }
    default:
        return VisibilityFromPoint(model, {bytes.Take<std::int64_t>(), bytes.Take<std::int32_t>(), bytes.Take<std::int32_t>()},
                                   lod, bytes.Take<std::int32_t>() % 400000, bytes.Small() / 64.0, false);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Bytes bytes(data, size);
    try {
        Voxels model = MakeModel(bytes);
        RequireWellFormed(model);
        for (int step = 0; step < 4 && !bytes.IsEmpty(); ++step) {
            model = Change(model, bytes);
            RequireWellFormed(model);
        }
    } catch (const std::domain_error&) { // the engine's own answer to arguments that make no sense
    }
    return 0;
}
