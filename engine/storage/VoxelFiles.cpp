#include "VoxelFiles.h"

#include "../frame/WatchedLoop.h"
#include "../model/VoxelArrays.h"

#include <charconv>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace brix {
namespace {

void Write(std::ostream& stream, const void* bytes, std::size_t count)
{
    stream.write(static_cast<const char*>(bytes), static_cast<std::streamsize>(count));
    if (!stream) throw std::runtime_error("Failed to write the voxels.");
}

// Layers of the height of a chunk, as a whole model may be larger than memory.
void WriteBytes(const VoxelModel<bool>& model, const Extents& extents, std::ostream& stream)
{
    const auto [lowerX, lowerY, lowerZ] = extents.LowerIndices();
    const auto [upperX, upperY, upperZ] = extents.UpperIndices();
    std::vector<std::uint8_t> bytes;
    WatchedLoop loop(static_cast<std::size_t>((upperZ - lowerZ) / ChunkHeight + 1));
    for (std::int64_t z = lowerZ; z <= upperZ; z += ChunkHeight) {
        const Extents box(extents.AxesRef(), {lowerX, lowerY, z}, {upperX, upperY, std::min(z + ChunkHeight - 1, upperZ)},
                          extents.VoxelLOD());
        bytes.resize(DenseSize(box));
        CopyVoxels(model, box, bytes);
        Write(stream, bytes.data(), bytes.size());
        loop.Step();
    }
}

std::array<std::int64_t, 3> SizeOf(const Extents& extents)
{
    return Plus(Minus(extents.UpperIndices(), extents.LowerIndices()), {1, 1, 1});
}

std::string Text(double number)
{
    std::array<char, 32> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

std::string Vector(const std::array<double, 3>& vector)
{
    return '(' + Text(vector[0]) + ',' + Text(vector[1]) + ',' + Text(vector[2]) + ')';
}

} // namespace

void SaveNpy(const VoxelModel<bool>& model, std::int64_t lod, std::ostream& stream)
{
    const Extents& extents = model.ExtentsRef(lod);
    const auto [x, y, z] = SizeOf(extents);
    std::string header = "{'descr': '|u1', 'fortran_order': False, 'shape': (" + std::to_string(z) + ", " + std::to_string(y) +
                         ", " + std::to_string(x) + "), }";
    constexpr std::size_t Preamble = 10;
    constexpr std::size_t Alignment = 64; // of the first voxel in the file
    header.resize((Preamble + header.size() + 1 + Alignment - 1) / Alignment * Alignment - Preamble - 1, ' ');
    header += '\n';
    const std::string preamble{
        '\x93', 'N', 'U', 'M', 'P', 'Y', 1, 0, static_cast<char>(header.size()), static_cast<char>(header.size() >> 8)};
    Write(stream, preamble.data(), preamble.size());
    Write(stream, header.data(), header.size());
    WriteBytes(model, extents, stream);
}

void SaveNrrd(const VoxelModel<bool>& model, std::int64_t lod, std::ostream& stream)
{
    const Extents& extents = model.ExtentsRef(lod);
    const Axes& axes = model.AxesRef();
    const Triple first = axes.VoxelCenter(extents.LowerIndices(), lod);
    const std::array<double, 3> origin = axes.ToWorldCoordinates(first);
    std::string directions;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        Triple next = first;
        next[axis] += axes.VoxelSize(lod)[axis];
        const std::array<double, 3> there = axes.ToWorldCoordinates(next);
        directions += ' ' + Vector({there[0] - origin[0], there[1] - origin[1], there[2] - origin[2]});
    }
    const auto [x, y, z] = SizeOf(extents);
    const std::string header =
        "NRRD0004\ntype: uint8\ndimension: 3\nspace: right-anterior-superior\nsizes: " + std::to_string(x) + ' ' +
        std::to_string(y) + ' ' + std::to_string(z) + "\nspace directions:" + directions +
        "\nkinds: domain domain domain\nencoding: raw\nspace origin: " + Vector(origin) + "\n\n";
    Write(stream, header.data(), header.size());
    WriteBytes(model, extents, stream);
}

} // namespace brix
