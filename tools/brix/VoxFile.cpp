#include "VoxFile.h"

#include <brix/model/VoxelArrays.h>

#include <algorithm>
#include <array>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace brix::tools {
namespace {

constexpr std::int64_t MostAlong = 256; // indices are bytes

std::string Number(std::int64_t number)
{
    const auto bits = static_cast<std::uint32_t>(number);
    return {static_cast<char>(bits), static_cast<char>(bits >> 8), static_cast<char>(bits >> 16), static_cast<char>(bits >> 24)};
}

std::string String(const std::string& text) { return Number(std::ssize(text)) + text; }

const std::string NoAttributes = Number(0);

std::string Chunk(const char* name, const std::string& content)
{
    return name + Number(std::ssize(content)) + Number(0) + content;
}

std::string Transform(std::int64_t node, std::int64_t child, const std::string& frame)
{
    return Chunk("nTRN", Number(node) + NoAttributes + Number(child) + Number(-1) + Number(-1) + Number(1) + frame);
}

struct Part
{
    Triple lower, size;
    std::int64_t filled = 0;
};

Triple UpperOf(const Part& part) { return Minus(Plus(part.lower, part.size), {1, 1, 1}); }

// A byte for each of its voxels.
std::vector<std::uint8_t> VoxelsOf(const VoxelModel<bool>& model, std::int64_t lod, const Part& part)
{
    const Extents box(model.AxesRef(), part.lower, UpperOf(part), lod);
    std::vector<std::uint8_t> voxels(DenseSize(box));
    CopyVoxels(model, box, voxels);
    return voxels;
}

std::vector<Part> FilledParts(const VoxelModel<bool>& model, std::int64_t lod)
{
    const Triple lower = model.ExtentsRef(lod).LowerIndices();
    const Triple upper = model.ExtentsRef(lod).UpperIndices();
    std::vector<Part> parts;
    for (std::int64_t z = lower[2]; z <= upper[2]; z += MostAlong)
        for (std::int64_t y = lower[1]; y <= upper[1]; y += MostAlong)
            for (std::int64_t x = lower[0]; x <= upper[0]; x += MostAlong) {
                Part part{{x, y, z}, {}};
                for (std::size_t axis = 0; axis < 3; ++axis)
                    part.size[axis] = std::min(MostAlong, upper[axis] - part.lower[axis] + 1);
                const std::vector<std::uint8_t> voxels = VoxelsOf(model, lod, part);
                part.filled = std::count(voxels.begin(), voxels.end(), std::uint8_t{1});
                if (part.filled > 0) parts.push_back(part);
            }
    if (parts.empty()) parts.push_back({lower, {1, 1, 1}});
    return parts;
}

// A scene: transform 0 of the group 1 of transforms, each of the shape that follows it. Places are those of a model's middle.
std::string SceneOf(const std::vector<Part>& parts, const Extents& extents)
{
    const Triple lower = extents.LowerIndices();
    const Triple upper = extents.UpperIndices();
    const Triple centre{(lower[0] + upper[0] + 1) >> 1, (lower[1] + upper[1] + 1) >> 1, lower[2]};
    std::string group = Number(1) + NoAttributes + Number(std::ssize(parts));
    for (std::int64_t i = 0; i < std::ssize(parts); ++i) group += Number(2 + 2 * i);
    std::string scene = Transform(0, 1, NoAttributes) + Chunk("nGRP", group);
    std::int64_t node = 2;
    std::int64_t index = 0;
    for (const Part& part : parts) {
        const Triple place = Plus(Minus(part.lower, centre), {part.size[0] / 2, part.size[1] / 2, part.size[2] / 2});
        const std::string text = std::to_string(place[0]) + ' ' + std::to_string(place[1]) + ' ' + std::to_string(place[2]);
        scene += Transform(node, node + 1, Number(1) + String("_t") + String(text));
        scene += Chunk("nSHP", Number(node + 1) + NoAttributes + Number(1) + Number(index++) + NoAttributes);
        node += 2;
    }
    return scene;
}

constexpr std::int64_t ChunkHead = 12;
constexpr std::int64_t BytesAroundVoxels = 2 * ChunkHead + 12 + 4; // SIZE, and XYZI with its count

void WritePart(const VoxelModel<bool>& model, std::int64_t lod, const Part& part, std::ostream& stream)
{
    stream << Chunk("SIZE", Number(part.size[0]) + Number(part.size[1]) + Number(part.size[2]));
    stream << "XYZI" << Number(4 + 4 * part.filled) << Number(0) << Number(part.filled);
    const std::vector<std::uint8_t> voxels = VoxelsOf(model, lod, part);
    auto voxel = voxels.begin();
    for (std::int64_t z = 0; z < part.size[2]; ++z)
        for (std::int64_t y = 0; y < part.size[1]; ++y)
            for (std::int64_t x = 0; x < part.size[0]; ++x)
                if (*voxel++ != 0)
                    stream << static_cast<char>(x) << static_cast<char>(y) << static_cast<char>(z) << '\1'; // a colour
}

} // namespace

void WriteVox(const VoxelModel<bool>& model, std::int64_t lod, std::ostream& stream)
{
    const std::vector<Part> parts = FilledParts(model, lod);
    const std::string scene = SceneOf(parts, model.ExtentsRef(lod));
    std::int64_t bytes = std::ssize(scene);
    for (const Part& part : parts) bytes += BytesAroundVoxels + 4 * part.filled;
    if (bytes > 0x7fff'ffff)
        throw std::runtime_error("A .vox file has room for about 500 million voxels: choose a coarser level.");
    stream << "VOX " << Number(150) << "MAIN" << Number(0) << Number(bytes);
    for (const Part& part : parts) WritePart(model, lod, part, stream);
    stream << scene;
}

} // namespace brix::tools
