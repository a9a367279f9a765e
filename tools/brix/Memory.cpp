#include "Memory.h"

#include "Report.h"
#include "TriangleFiles.h"

#include <brix/model/VoxelModel.h>
#include <brix/triangles/Triangle.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <limits>
#include <set>

#include <sys/resource.h>
#include <unistd.h>

namespace brix::tools {
namespace {

constexpr double ProgramBytes = 16e6; // code, libraries, buffers
constexpr double NoLimit = std::numeric_limits<double>::infinity();

// A grid of chunks, as the estimates see it: all of its box, and those that hold something.
struct GridSize
{
    double voxel, height, chunks, stored;
    std::int64_t lod;

    // One stack at level 0, four at level 1, and so on.
    double StacksPerChunk() const { return static_cast<double>(((std::int64_t{4} << 2 * lod) - 1) / 3); }
    double StoredStacks() const { return stored * StacksPerChunk(); }

    double ChunkHeight() const { return 64 * height; }
    double ChunkWidth() const { return 16 * voxel * static_cast<double>(std::int64_t{1} << lod); }

    // A chunk, its place in the table, and a pointer for each stack; a chunk that is full needs no pointers.
    double StoredBytes() const { return StoredStacks() * 8 + stored * BytesPerChunk; }
    double UniformBytes() const { return chunks * BytesPerChunk; }

    // Every stack of the box holds one layer: a block of 48 bytes, and 16 of the allocator's.
    double FullBytes() const { return UniformBytes() + chunks * StacksPerChunk() * (8 + 64); }

    static constexpr double BytesPerChunk = sizeof(VoxelChunk<bool>) + 96;
};

// With none that is stored.
GridSize SizeOf(const Extents& extents, std::int64_t lod)
{
    const Axes& axes = extents.AxesRef();
    const Extents coarsest = extents.RescaledCopy(0);
    const Triple lower = ChunkOfVoxel(coarsest.LowerIndices(), 0);
    const Triple upper = ChunkOfVoxel(coarsest.UpperIndices(), 0);
    double count = 1;
    for (std::size_t axis = 0; axis < 3; ++axis) count *= static_cast<double>(upper[axis] - lower[axis] + 1);
    return {axes.WorldVoxelWidth(lod), axes.WorldVoxelHeight(), count, 0, lod};
}

GridSize SizeOf(const VoxelModel<bool>& model)
{
    GridSize size = SizeOf(model.ExtentsRef(0), model.FinestLOD());
    size.stored = static_cast<double>(model.StoredChunkCount());
    return size;
}

// The same box and surfaces in it with voxels of another size, wherever chunks begin.
GridSize Scaled(const GridSize& size, double factor)
{
    GridSize scaled = size;
    scaled.voxel *= factor;
    scaled.height *= factor;
    scaled.chunks = std::max(1.0, size.chunks / (factor * factor * factor));
    scaled.stored = std::clamp(size.stored / (factor * factor), 1.0, scaled.chunks);
    return scaled;
}

// The areas of a triangle as seen along x, y and z.
std::array<double, 3> ProjectedAreas(const WorldTriangle& triangle)
{
    std::array<double, 3> u{};
    std::array<double, 3> v{};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        u[axis] = triangle[1][axis] - triangle[0][axis];
        v[axis] = triangle[2][axis] - triangle[0][axis];
    }
    return {std::abs(u[1] * v[2] - u[2] * v[1]) / 2, std::abs(u[2] * v[0] - u[0] * v[2]) / 2,
            std::abs(u[0] * v[1] - u[1] * v[0]) / 2};
}

double LongestEdge(const WorldTriangle& triangle)
{
    double longest = 0;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const auto [least, greatest] = std::minmax({triangle[0][axis], triangle[1][axis], triangle[2][axis]});
        longest = std::max(longest, greatest - least);
    }
    return longest;
}

// The boxes of a grid that a triangle crosses: its area's, and those of its edges.
double BoxesCrossed(const WorldTriangle& triangle, double width, double height)
{
    const auto [x, y, z] = ProjectedAreas(triangle);
    const double edge = LongestEdge(triangle);
    return z / (width * width) + (x + y) / (width * height) + (edge > width ? 2 * edge / width + 1 : 0);
}

// The layers of the stacks that a triangle crosses at the finest level. A level or upright one leaves most heights of a stack
// alike; a slanted one makes a plate for each height that it passes within the stack's width.
double LayerBytes(const WorldTriangle& triangle, const GridSize& size)
{
    const double width = 16 * size.voxel;
    const double height = 64 * size.height;
    const auto [x, y, z] = ProjectedAreas(triangle);
    const double upright = std::hypot(x, y);
    const double passed = z < 1e-9 * upright ? 0 : std::min(64.0, width / size.height * upright / z);
    return BoxesCrossed(triangle, width, height) * (26 + 33 * (3 + passed));
}

// Triangles longer than half a chunk are put by, and listed in the chunks that they cross.
double ListedBytes(const WorldTriangle& triangle, const GridSize& size)
{
    const double width = size.ChunkWidth();
    if (LongestEdge(triangle) <= width / 2) return 0;
    return 2 * sizeof(LatticeTriangle) + 128 * (1 + BoxesCrossed(triangle, width, size.ChunkHeight()));
}

// The chunks that triangles touch: counted for those that are smaller than a chunk, and estimated from their size for others.
double ChunksTouched(const std::vector<WorldTriangle>& triangles, const GridSize& size)
{
    const std::array<double, 3> chunk{size.ChunkWidth(), size.ChunkWidth(), size.ChunkHeight()};
    std::set<std::array<double, 3>> small;
    std::array<double, 3> last{};
    double large = 0;
    for (const WorldTriangle& triangle : triangles) {
        std::array<double, 3> lower{};
        std::array<double, 3> upper{};
        bool isSmall = true;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            const auto [least, greatest] = std::minmax({triangle[0][axis], triangle[1][axis], triangle[2][axis]});
            lower[axis] = std::floor(least / chunk[axis]);
            upper[axis] = std::floor(greatest / chunk[axis]);
            isSmall = isSmall && upper[axis] - lower[axis] <= 1;
        }
        if (!isSmall) {
            large += 2 * BoxesCrossed(triangle, size.ChunkWidth(), size.ChunkHeight()) + 8;
        } else if (lower != upper || lower != last) {
            for (const double x : {lower[0], upper[0]}) {
                for (const double y : {lower[1], upper[1]}) {
                    for (const double z : {lower[2], upper[2]}) small.insert({x, y, z});
                }
            }
            last = lower;
        }
    }
    return std::min(size.chunks, static_cast<double>(small.size()) + large);
}

// While the finest level is filled: the pointers to its stacks once more, and plates for all heights of those written to lately.
double FillingBytes(const GridSize& size)
{
    const double stacks = size.stored * static_cast<double>(std::int64_t{1} << 2 * size.lod);
    return stacks * 16 + std::min(stacks, 20480.0) * 2138;
}

struct Estimate
{
    double model;  // when it is made
    double making; // beside it
};

Estimate EstimateModel(const std::vector<WorldTriangle>& triangles, const GridSize& size)
{
    double layers = 0;
    double making = static_cast<double>(sizeof(WorldTriangle) * triangles.size()) + FillingBytes(size);
    for (const WorldTriangle& triangle : triangles) {
        layers += LayerBytes(triangle, size);
        making += ListedBytes(triangle, size);
    }
    // The coarser levels of upright walls halve with each level, those of floors quarter. No stack has more than 64 layers.
    return {size.StoredBytes() + std::min(2 * layers, size.StoredStacks() * 2138), making};
}

// What a step takes beside the program, with the model that it gets and the one that it makes. Passes have pointers for the
// stacks of chunks that are full, too, and views and agents look at the whole box.
double StepBytes(const std::string& step, double model, const GridSize& size)
{
    if (step == "walkable" || step == "travel") return 4 * model + 5 * size.FullBytes();
    if (step.starts_with("visible-")) return 2 * model + 2.5 * size.FullBytes();
    if (step == "refine") return 6 * model;
    if (step == "invert" || step.starts_with("fill-")) return 4 * model + 3 * size.UniformBytes();
    return 4 * model + 3 * size.StoredBytes();
}

// The step that takes most, or the making of the model.
std::pair<double, std::string> MostBytes(const std::vector<WorldTriangle>& triangles, const GridSize& size,
                                         const std::vector<std::string>& steps)
{
    const Estimate estimate = EstimateModel(triangles, size);
    std::pair<double, std::string> most{estimate.model + estimate.making, "voxelize"};
    for (const std::string& step : steps) most = std::max(most, {StepBytes(step, estimate.model, size), step});
    most.first += ProgramBytes;
    return most;
}

std::runtime_error TooMuch(const std::string& what, double bytes, double limit, double fittingVoxel, const GridOptions& options)
{
    const double edge = RoundedUp(fittingVoxel);
    const std::string advice =
        options.width ? "--width " + Text(edge * static_cast<double>(std::int64_t{1} << options.lod)) : "--voxel " + Text(edge);
    return std::runtime_error("The step " + what + " would need about " + BytesText(bytes) + " of memory; the limit is " +
                              BytesText(limit) + ". It would fit with " + advice +
                              " (or fewer --voxels); or raise --memory-limit.");
}

double ControlGroupLimit()
{
    double bytes = 0;
    return std::ifstream("/sys/fs/cgroup/memory.max") >> bytes ? bytes : NoLimit;
}

double AddressSpaceLimit()
{
    rlimit limit{};
    getrlimit(RLIMIT_AS, &limit);
    return limit.rlim_cur == RLIM_INFINITY ? NoLimit : static_cast<double>(limit.rlim_cur);
}

} // namespace

double MemoryLimit(const GridOptions& options)
{
    // Asked once, before HoldMemoryLimit changes it.
    static const double granted = AddressSpaceLimit();
    const auto machine = static_cast<double>(sysconf(_SC_PHYS_PAGES)) * static_cast<double>(sysconf(_SC_PAGE_SIZE));
    const double wanted = options.memoryLimit ? *options.memoryLimit * 1e9 : std::min(machine, ControlGroupLimit()) / 2;
    return std::min(wanted, granted);
}

// The sanitizers reserve far more addresses than they use.
void HoldMemoryLimit([[maybe_unused]] const GridOptions& options)
{
#ifndef __SANITIZE_ADDRESS__
    constexpr double Reserved = 64e6; // addresses of libraries and stack, of which little is used
    rlimit limit{};
    getrlimit(RLIMIT_AS, &limit);
    const double wanted = MemoryLimit(options) + Reserved;
    if (wanted < 1e18 && (limit.rlim_cur == RLIM_INFINITY || wanted < static_cast<double>(limit.rlim_cur)))
        limit.rlim_cur = static_cast<rlim_t>(wanted);
    setrlimit(RLIMIT_AS, &limit);
#endif
}

void RequireMemoryForModel(const Input& input, const Extents& extents, const GridOptions& options,
                           const std::vector<std::string>& steps)
{
    const double limit = MemoryLimit(options);
    GridSize size = SizeOf(extents, options.lod);
    size.stored = ChunksTouched(input.triangles, size);
    const auto [bytes, step] = MostBytes(input.triangles, size, steps);
    PrintDetail("estimate", BytesText(bytes) + " of memory at most, in the step " + step + "; the limit is " + BytesText(limit),
                {{"bytes", bytes}, {"mostIn", step}, {"limit", limit}});
    if (bytes <= limit) return;
    double factor = 1.1; // and some room, as chunks come whole
    while (factor < 1e6 && MostBytes(input.triangles, Scaled(size, factor), steps).first > 0.7 * limit) factor *= 1.1;
    throw TooMuch(step, bytes, limit, size.voxel * factor, options);
}

void RequireMemoryForStep(const std::string& step, const VoxelModel<bool>& model, const GridOptions& options)
{
    const GridSize size = SizeOf(model);
    const double bytes = ProgramBytes + StepBytes(step, static_cast<double>(model.AllocatedBytes()), size);
    const double limit = MemoryLimit(options);
    if (bytes > limit) throw TooMuch(step, bytes, limit, size.voxel * std::sqrt(bytes / limit), options);
}

void RequireSpaceForTriangles(double triangleCount, double bytesBeside, bool ascii, const VoxelModel<bool>& model,
                              const GridOptions& options)
{
    const double voxel = model.AxesRef().WorldVoxelWidth(model.FinestLOD());
    const double memory = ProgramBytes + static_cast<double>(model.AllocatedBytes()) +
                          triangleCount * (sizeof(WorldTriangle) + bytesBeside) +
                          FillingBytes(SizeOf(model)); // given back, but in pieces between what stayed
    PrintDetail("estimate", BytesText(memory) + " of memory for " + Text(triangleCount) + " triangles",
                {{"bytes", memory}, {"triangles", triangleCount}});
    if (const double limit = MemoryLimit(options); memory > limit)
        throw TooMuch("write", memory, limit, voxel * std::sqrt(memory / limit), options);

    const double file = StlBytes(triangleCount, ascii);
    const double limit = options.outputLimit * 1e9;
    if (file > limit)
        throw std::runtime_error("The file would have " + BytesText(file) + " for " + Text(triangleCount) +
                                 " triangles; the limit is " + BytesText(limit) + ". About --voxel " +
                                 Text(RoundedUp(voxel * std::sqrt(file / limit))) +
                                 " would fit, or a coarser level of the model; or raise --output-limit.");
}

} // namespace brix::tools
