#include "VoxelArrays.h"

#include "../frame/Require.h"
#include "ChangeWhole.h"
#include "CombineStacks.h"
#include "ForEachStack.h"
#include "InstructionSet.h"

#include <cstring>
#include <vector>

namespace brix {
namespace {

constexpr auto RowBytes = static_cast<std::size_t>(PlateWidth);
constexpr std::uint64_t LowestBits = 0x0101010101010101; // of eight bytes
constexpr std::uint64_t HighestBits = 0x8080808080808080;

typedef std::uint16_t RowLanes __attribute__((vector_size(32)));
typedef std::uint8_t ByteLanes __attribute__((vector_size(16)));

// Byte i becomes bit i of a row of a plate.
void ExpandRow(std::uint16_t row, std::uint8_t* bytes)
{
    constexpr RowLanes bitOfLane{1, 2, 4, 8, 16, 32, 64, 128, 256, 512, 1024, 2048, 4096, 8192, 16384, 32768};
    const auto isFilled = reinterpret_cast<RowLanes>((bitOfLane & row) != 0);
    const ByteLanes lanes = __builtin_convertvector(isFilled & 1, ByteLanes);
    std::memcpy(bytes, &lanes, sizeof lanes);
}

// Bit i of a row becomes whether byte i is not 0. In eight bytes, adding 127 to the low seven bits carries to the highest one
// where there is any; the product then moves bit 0 of byte i to bit 56 + i, and no two of them meet:
//
//   byte      7        6        5 ..          times 0x0102040810204080
//   bits   .......a .......b .......c  ->     abc.....|............
std::uint16_t CollectRow(const std::uint8_t* bytes)
{
    unsigned row = 0;
    for (unsigned half = 0; half < 2; ++half) {
        std::uint64_t eight;
        std::memcpy(&eight, bytes + 8 * half, sizeof eight);
        const std::uint64_t isFilled = (((eight & ~HighestBits) + ~HighestBits) | eight) >> 7 & LowestBits;
        row |= static_cast<unsigned>(isFilled * 0x0102040810204080 >> 56) << 8 * half;
    }
    return static_cast<std::uint16_t>(row);
}

// The part of a box in one stack of a level's grid: offsets inside the stack.
OffsetBox PartIn(const Extents& box, const Triple& stack) { return PartInside(box, CornerOfStack(stack)); }

// Calls visit(first stack, last stack) for the rows of stacks along x that a box touches.
template <class Visit> void ForEachRowOfStacks(const Extents& box, const Visit& visit)
{
    const Triple lower = StackOfVoxel(box.LowerIndices());
    const Triple upper = StackOfVoxel(box.UpperIndices());
    WatchedLoop loop(static_cast<std::size_t>((upper[1] - lower[1] + 1) * (upper[2] - lower[2] + 1)));
    ForEachTriple({lower[0], lower[1], lower[2]}, {lower[0], upper[1], upper[2]}, [&](const Triple& first) {
        visit(first, upper[0]);
        loop.Step();
    });
}

// Where the voxel of a box lies in memory.
template <class Byte> Byte* PlaceOf(const Triple& voxel, const Extents& box, Byte* bytes, const ByteStrides& strides)
{
    const Triple offset = Minus(voxel, box.LowerIndices());
    return bytes + offset[0] + strides.y * offset[1] + strides.z * offset[2];
}

// One row of voxels of a box, by the rows of the plates that it crosses. Plates at its ends may stand out.
void WriteRow(const std::vector<const Plate*>& plates, std::size_t y, std::int64_t firstX, std::int64_t length,
              std::uint8_t* bytes)
{
    std::array<std::uint8_t, RowBytes> whole;
    const std::int64_t before = firstX & LastOffset[0];
    std::int64_t written = 0;
    for (const Plate* const plate : plates) {
        const std::int64_t skipped = written == 0 ? before : 0;
        const std::int64_t count = std::min(PlateWidth - skipped, length - written);
        if (count == PlateWidth) {
            ExpandRow(plate->rows[y], bytes + written);
        } else {
            ExpandRow(plate->rows[y], whole.data());
            std::memcpy(bytes + written, whole.data() + skipped, static_cast<std::size_t>(count));
        }
        written += count;
    }
}

void CopyRowOfStacks(const VoxelModel<bool>& model, const Extents& box, const Triple& first, std::int64_t lastX,
                     std::uint8_t* bytes, const ByteStrides& strides)
{
    std::vector<const Stack*> stacks;
    for (Triple stack = first; stack[0] <= lastX; ++stack[0]) stacks.push_back(&FindStack(model, stack, box.VoxelLOD()));
    const OffsetBox part = PartIn(box, first);
    const std::int64_t length = box.UpperIndices()[0] - box.LowerIndices()[0] + 1;
    std::vector<const Plate*> plates(stacks.size());
    for (std::int64_t z = part.lower[2]; z <= part.upper[2]; ++z) {
        CheckWatch(); // a row may be long
        for (std::size_t i = 0; i < stacks.size(); ++i) plates[i] = &stacks[i]->LayerVoxelPlateRef(stacks[i]->LayerID(z));
        for (std::int64_t y = part.lower[1]; y <= part.upper[1]; ++y) {
            const Triple voxel{box.LowerIndices()[0], first[1] * PlateWidth + y, first[2] * StackHeight + z};
            WriteRow(plates, static_cast<std::size_t>(y), voxel[0], length, PlaceOf(voxel, box, bytes, strides));
        }
    }
}

// The plate of the bytes at `bytes`, those of the part's lower corner, outside of which it is empty.
Plate PlateOf(const OffsetBox& part, const std::uint8_t* bytes, std::ptrdiff_t strideY)
{
    Plate plate;
    const auto width = static_cast<std::size_t>(part.upper[0] - part.lower[0] + 1);
    for (std::int64_t y = part.lower[1]; y <= part.upper[1]; ++y, bytes += strideY) {
        std::array<std::uint8_t, RowBytes> padded{};
        if (width < RowBytes) std::memcpy(padded.data(), bytes, width);
        plate.rows[static_cast<std::size_t>(y)] =
            static_cast<std::uint16_t>(CollectRow(width < RowBytes ? padded.data() : bytes) << part.lower[0]);
    }
    return plate;
}

// What a stack becomes when a part of it is written. `bytes` are those of the part's lower corner.
Stack WrittenStack(const Stack& before, const OffsetBox& part, const std::uint8_t* bytes, const ByteStrides& strides)
{
    const Plate inside = Box({part.lower[0], part.lower[1]}, {part.upper[0], part.upper[1]});
    StackBuilder builder;
    LayerCursor layers(before);
    for (std::int64_t z = 0; z < StackHeight; ++z) {
        if (z > 0) layers.MoveTo(z);
        const bool isWritten = part.lower[2] <= z && z <= part.upper[2];
        builder.AppendMade(z, [&] {
            if (!isWritten) return layers.PlateRef();
            return AndNot(layers.PlateRef(), inside) | PlateOf(part, bytes + strides.z * (z - part.lower[2]), strides.y);
        });
    }
    Stack written;
    builder.WriteTo(written);
    return written;
}

void RequireBox(const VoxelModel<bool>& model, const Extents& box)
{
    Require(box.AxesRef() == model.AxesRef(), "The axes of a box of voxels must be those of the voxel model.");
    RequireLevelOf(model.FinestLOD(), "The level of detail for a box of voxels", box.VoxelLOD());
}

void RequireSize(const Extents& box, std::size_t size)
{
    Require(size == DenseSize(box), "There must be as many bytes as the box has voxels.");
}

// Gives the chunks that were written.
std::vector<Triple> WriteStacks(VoxelModel<bool>& model, const Extents& box, const std::uint8_t* bytes,
                                const ByteStrides& strides)
{
    const std::int64_t lod = box.VoxelLOD();
    std::vector<Triple> chunks;
    ForEachRowOfStacks(box, [&](Triple stack, std::int64_t lastX) {
        for (; stack[0] <= lastX; ++stack[0]) {
            CheckWatch();
            const OffsetBox part = PartIn(box, stack);
            const Triple corner = Plus(CornerOfStack(stack), part.lower);
            const Stack& before = FindStack(model, stack, lod);
            Stack written = WrittenStack(before, part, PlaceOf(corner, box, bytes, strides), strides);
            const Triple chunk = ChunkOfVoxel(corner, lod);
            if (written.IsUnallocated() && model.FindChunk(chunk) == nullptr) continue;
            MakeStack(model, stack, lod) = std::move(written);
            if (chunks.empty() || chunks.back() != chunk) chunks.push_back(chunk);
        }
    });
    std::sort(chunks.begin(), chunks.end());
    chunks.erase(std::unique(chunks.begin(), chunks.end()), chunks.end());
    return chunks;
}

} // namespace

ByteStrides DenseStrides(const Extents& box)
{
    const Triple size = Plus(Minus(box.UpperIndices(), box.LowerIndices()), {1, 1, 1});
    return {static_cast<std::ptrdiff_t>(size[0]), static_cast<std::ptrdiff_t>(size[0] * size[1])};
}

std::size_t DenseSize(const Extents& box)
{
    const std::int64_t height = box.UpperIndices()[2] - box.LowerIndices()[2] + 1;
    return static_cast<std::size_t>(DenseStrides(box).z) * static_cast<std::size_t>(height);
}

void CopyVoxels(const VoxelModel<bool>& model, const Extents& box, std::uint8_t* bytes, const ByteStrides& strides)
{
    RequireBox(model, box);
    ForEachRowOfStacks(box, [&](const Triple& first, std::int64_t lastX) {
        RunWith(FastestInstructionSet(), [&] { CopyRowOfStacks(model, box, first, lastX, bytes, strides); });
    });
}

void CopyVoxels(const VoxelModel<bool>& model, const Extents& box, std::span<std::uint8_t> bytes)
{
    RequireBox(model, box);
    RequireSize(box, bytes.size());
    CopyVoxels(model, box, bytes.data(), DenseStrides(box));
}

void WriteVoxels(VoxelModel<bool>& model, const Extents& box, const std::uint8_t* bytes, const ByteStrides& strides)
{
    RequireBox(model, box);
    const Extents& extents = model.ExtentsRef(box.VoxelLOD());
    Require(extents.ContainsVoxel(box.LowerIndices()) && extents.ContainsVoxel(box.UpperIndices()),
            "The box of voxels to be written must lie inside the extents of the voxel model.");
    ChangeWhole(model, [&](VoxelModel<bool>& changed) {
        changed.FinishLevels(box.VoxelLOD(), WriteStacks(changed, box, bytes, strides));
    });
}

void WriteVoxels(VoxelModel<bool>& model, const Extents& box, std::span<const std::uint8_t> bytes)
{
    RequireBox(model, box);
    RequireSize(box, bytes.size());
    WriteVoxels(model, box, bytes.data(), DenseStrides(box));
}

VoxelModel<bool> ModelFromVoxels(const Extents& extents, const std::uint8_t* bytes, const ByteStrides& strides,
                                 std::int64_t finestLOD)
{
    VoxelModel<bool> model(extents, finestLOD);
    WriteVoxels(model, extents, bytes, strides);
    return model;
}

VoxelModel<bool> ModelFromVoxels(const Extents& extents, std::span<const std::uint8_t> bytes, std::int64_t finestLOD)
{
    VoxelModel<bool> model(extents, finestLOD);
    WriteVoxels(model, extents, bytes);
    return model;
}

} // namespace brix
