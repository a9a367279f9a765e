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

std::array<std::int64_t, 3> SizeOf(const Extents& extents)
{
    return Plus(Minus(extents.UpperIndices(), extents.LowerIndices()), {1, 1, 1});
}

// Layers of the height of a chunk, as a whole model may be larger than memory. `change` makes of their bytes what is written.
template <class Change>
void WriteLayers(const VoxelModel<bool>& model, const Extents& extents, std::ostream& stream, const Change& change)
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
        change(bytes);
        Write(stream, bytes.data(), bytes.size());
        loop.Step();
    }
}

void WriteBytes(const VoxelModel<bool>& model, const Extents& extents, std::ostream& stream)
{
    WriteLayers(model, extents, stream, [](const std::vector<std::uint8_t>&) {});
}

std::size_t PackedRow(std::size_t width) { return (width + 7) / 8; }

// Rows of bytes that are 0 or 1 become rows of bits, in place: 1, 0, 0, 0, 0, 0, 1, 1, 1 become 10000011 10000000.
void PackRows(std::vector<std::uint8_t>& bytes, std::size_t width)
{
    std::size_t packed = 0;
    for (std::size_t row = 0; row < bytes.size(); row += width)
        for (std::size_t x = 0; x < width; x += 8) {
            unsigned bits = 0;
            for (std::size_t i = 0; i < std::min<std::size_t>(8, width - x); ++i) bits |= bytes[row + x + i] * 128U >> i;
            bytes[packed++] = static_cast<std::uint8_t>(bits);
        }
    bytes.resize(packed);
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

void SaveNpy(const VoxelModel<bool>& model, std::int64_t lod, std::ostream& stream, NpyVoxels voxels)
{
    const Extents& extents = model.ExtentsRef(lod);
    const std::array<std::int64_t, 3> size = SizeOf(extents);
    const auto width = static_cast<std::size_t>(size[0]);
    const std::size_t row = voxels == NpyVoxels::Bytes ? width : PackedRow(width);
    std::string header = "{'descr': '|u1', 'fortran_order': False, 'shape': (" + std::to_string(size[2]) + ", " +
                         std::to_string(size[1]) + ", " + std::to_string(row) + "), }";
    constexpr std::size_t Preamble = 10;
    constexpr std::size_t Alignment = 64; // of the first voxel in the file
    header.resize((Preamble + header.size() + 1 + Alignment - 1) / Alignment * Alignment - Preamble - 1, ' ');
    header += '\n';
    const std::string preamble{
        '\x93', 'N', 'U', 'M', 'P', 'Y', 1, 0, static_cast<char>(header.size()), static_cast<char>(header.size() >> 8)};
    Write(stream, preamble.data(), preamble.size());
    Write(stream, header.data(), header.size());
    if (voxels == NpyVoxels::Bytes) return WriteBytes(model, extents, stream);
    WriteLayers(model, extents, stream, [&](std::vector<std::uint8_t>& bytes) { PackRows(bytes, width); });
}

std::string NrrdHeader(const VoxelModel<bool>& model, std::int64_t lod, const std::string& encoding)
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
    return "NRRD0004\ntype: uint8\ndimension: 3\nspace: right-anterior-superior\nsizes: " + std::to_string(x) + ' ' +
           std::to_string(y) + ' ' + std::to_string(z) + "\nspace directions:" + directions +
           "\nkinds: domain domain domain\nencoding: " + encoding + "\nspace origin: " + Vector(origin) + "\n\n";
}

void WriteVoxelBytes(const VoxelModel<bool>& model, std::int64_t lod, std::ostream& stream)
{
    WriteBytes(model, model.ExtentsRef(lod), stream);
}

void SaveNrrd(const VoxelModel<bool>& model, std::int64_t lod, std::ostream& stream)
{
    const std::string header = NrrdHeader(model, lod, "raw");
    Write(stream, header.data(), header.size());
    WriteVoxelBytes(model, lod, stream);
}

} // namespace brix
