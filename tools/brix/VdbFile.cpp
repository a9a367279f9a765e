#include "VdbFile.h"

#include "LoadedModule.h"

#include "Modules/VdbModule.h"

#include <algorithm>
#include <array>
#include <exception>
#include <new>
#include <ostream>
#include <set>
#include <stdexcept>
#include <string>

namespace brix::tools {
namespace {

constexpr std::int64_t Block = 8; // of a grid, along each axis

BrixWriteVdb* FindWriter() { return FindInModule<BrixWriteVdb>("brix-openvdb.so", "brix_write_vdb"); }

// Eight heights of a plate's quarter.
BrixVdbBlock BlockOf(const VoxelStack<bool>& stack, const Triple& corner, const Triple& offset)
{
    BrixVdbBlock block{};
    for (std::size_t axis = 0; axis < 3; ++axis)
        (axis == 0 ? block.x : axis == 1 ? block.y : block.z) = static_cast<std::int32_t>(corner[axis] + offset[axis]);
    for (std::int64_t z = 0; z < Block; ++z) {
        const VoxelPlate<bool>& plate = stack.LayerVoxelPlateRef(stack.LayerID(offset[2] + z));
        for (std::int64_t y = 0; y < Block; ++y) {
            const unsigned row = unsigned{plate.rows[static_cast<std::size_t>(offset[1] + y)]} >> offset[0];
            for (unsigned x = 0; x < Block; ++x) block.filled[x] |= std::uint64_t{row >> x & 1} << (Block * y + z);
        }
    }
    return block;
}

bool IsEmpty(const BrixVdbBlock& block)
{
    return std::all_of(std::begin(block.filled), std::end(block.filled), [](std::uint64_t word) { return word == 0; });
}

bool IsFull(const BrixVdbBlock& block)
{
    return std::all_of(std::begin(block.filled), std::end(block.filled), [](std::uint64_t word) { return ~word == 0; });
}

template <class Visit> void ForEachBlockOfStack(const VoxelStack<bool>& stack, const Triple& corner, const Visit& visit)
{
    Triple offset{};
    for (offset[2] = 0; offset[2] < StackHeight; offset[2] += Block)
        for (offset[1] = 0; offset[1] < PlateWidth; offset[1] += Block)
            for (offset[0] = 0; offset[0] < PlateWidth; offset[0] += Block)
                if (const BrixVdbBlock block = BlockOf(stack, corner, offset); !IsEmpty(block)) visit(block);
}

template <class Visit> void ForEachBlock(const VoxelModel<bool>& model, std::int64_t lod, const Visit& visit)
{
    model.ForEachChunk([&](const Triple&, const VoxelChunk<bool>& chunk) {
        const VoxelStore<bool>& store = chunk.VoxelStoreRef(lod);
        for (std::int64_t j = store.LowerStack()[1]; j <= store.UpperStack()[1]; ++j)
            for (std::int64_t i = store.LowerStack()[0]; i <= store.UpperStack()[0]; ++i)
                if (const VoxelStack<bool>& stack = store.ValidStackRef({i, j}); !stack.IsUnallocated())
                    ForEachBlockOfStack(stack, store.LowerIndices({i, j}), visit);
    });
}

// The world place of voxel 0 0 0, and the steps along x, y and z.
std::array<double, 12> WorldOf(const Axes& axes, std::int64_t lod, bool hasYUp)
{
    const Triple first = axes.VoxelCenter({0, 0, 0}, lod);
    const std::array<double, 3> origin = axes.ToWorldCoordinates(first);
    std::array<double, 12> numbers;
    for (std::size_t row = 0; row < 4; ++row) {
        Triple place = first;
        if (row > 0) place[row - 1] += axes.VoxelSize(lod)[row - 1];
        std::array<double, 3> point = axes.ToWorldCoordinates(place);
        for (std::size_t i = 0; i < 3 && row > 0; ++i) point[i] -= origin[i];
        if (hasYUp) point = {point[0], point[2], -point[1]};
        std::copy(point.begin(), point.end(), numbers.begin() + static_cast<std::ptrdiff_t>(3 * row));
    }
    return numbers;
}

// What the library calls back with; exceptions must not pass through it.
struct Work
{
    const VoxelModel<bool>& model;
    std::int64_t lod;
    std::ostream& stream;
    std::exception_ptr failure{};
};

template <class Do> int Guarded(void* context, const Do& work)
{
    Work& given = *static_cast<Work*>(context);
    try {
        work(given);
        return 1;
    } catch (...) {
        given.failure = std::current_exception();
        return 0;
    }
}

int GiveBlocks(void* context, BrixAddBlock* add, void* grid)
{
    return Guarded(context, [&](const Work& work) {
        ForEachBlock(work.model, work.lod, [&](const BrixVdbBlock& block) { add(grid, &block); });
    });
}

int TakeBytes(void* context, const char* bytes, std::size_t count)
{
    return Guarded(context, [&](const Work& work) {
        if (!work.stream.write(bytes, static_cast<std::streamsize>(count)))
            throw std::runtime_error("Failed to write the voxels.");
    });
}

} // namespace

void RequireVdb()
{
    if (FindWriter() == nullptr)
        throw std::runtime_error(
            "This brix writes no .vdb files: it was made without the library OpenVDB (Debian: libopenvdb-dev, "
            "before brix is built).");
}

double BytesToWriteVdb(const VoxelModel<bool>& model, std::int64_t lod)
{
    constexpr double BytesOfCutBlock = 2048 + 450; // its floats, itself, and its part of the file as it grows
    constexpr double BytesOfNode = 40e3;           // of 16 x 16 x 16 blocks
    constexpr double BytesOfLibrary = 40e6;
    constexpr std::int64_t NodeWidth = 128;
    double cut = 0;
    std::set<Triple> nodes;
    Triple last{};
    ForEachBlock(model, lod, [&](const BrixVdbBlock& block) {
        if (!IsFull(block)) ++cut;
        const Triple node{block.x / NodeWidth, block.y / NodeWidth, block.z / NodeWidth};
        if (nodes.empty() || node != last) nodes.insert(last = node);
    });
    return BytesOfLibrary + cut * BytesOfCutBlock + static_cast<double>(nodes.size()) * BytesOfNode;
}

void WriteVdb(const VoxelModel<bool>& model, std::int64_t lod, std::ostream& stream, bool hasYUp)
{
    RequireVdb();
    const std::array<double, 12> world = WorldOf(model.AxesRef(), lod, hasYUp);
    Work work{model, lod, stream};
    std::array<char, 1000> reason{};
    const int status = FindWriter()(world.data(), GiveBlocks, TakeBytes, &work, reason.data(), reason.size());
    if (work.failure) std::rethrow_exception(work.failure);
    const std::string text = reason.data();
    if (status != 0 && text.find("bad_alloc") != std::string::npos) throw std::bad_alloc();
    if (status != 0) throw std::runtime_error("OpenVDB failed to write the voxels: " + text + ".");
}

} // namespace brix::tools
