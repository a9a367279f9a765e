#include "VoxelFiles.h"

#include "Gzip.h"
#include "Memory.h"
#include "OutputFile.h"
#include "Progress.h"
#include "Report.h"
#include "SliceStack.h"
#include "VdbFile.h"
#include "VoxFile.h"

#include <brix/storage/SavedModel.h>
#include <brix/storage/VoxelFiles.h>
#include <brix/triangles/Cuboidization.h>

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <cerrno>
#include <fstream>

namespace brix::tools {
namespace {

// A frame as the JSON file holds it, and inclusive voxel indices of boxes that do not overlap, one line each.
void WriteCuboids(const VoxelModel<bool>& model, std::int64_t lod, std::ostream& stream)
{
    const Axes& axes = model.AxesRef();
    const nlohmann::ordered_json frame{{"origin", axes.WorldVoxelOrigin()},
                                       {"rotation", axes.WorldVoxelRotation()},
                                       {"voxelWidth", axes.WorldVoxelWidth(lod)},
                                       {"voxelHeight", axes.WorldVoxelHeight()}};
    stream << "{\"frame\": " << frame.dump() << ",\n\"level\": " << lod << ",\n\"cuboids\": [";
    const char* separator = "\n";
    for (const VoxelCuboid& cuboid : CuboidizeVoxelModel(model, lod)) {
        stream << separator << '[' << Text(cuboid.lower, ", ") << ", " << Text(cuboid.upper, ", ") << ']';
        separator = ",\n";
    }
    stream << "\n]}\n";
}

void WriteNpy(const Voxels& model, std::int64_t lod, std::ostream& stream, const GridOptions& options)
{
    SaveNpy(model, lod, stream, options.packBits ? NpyVoxels::PackedBits : NpyVoxels::Bytes);
}

void WriteNrrd(const Voxels& model, std::int64_t lod, std::ostream& stream, const GridOptions& options)
{
    if (!options.gzip) return SaveNrrd(model, lod, stream);
    stream << NrrdHeader(model, lod, "gzip");
    WriteGzipped(stream, [&](std::ostream& compressed) { WriteVoxelBytes(model, lod, compressed); });
}

double VoxelCount(const Triple& size)
{
    return static_cast<double>(size[0]) * static_cast<double>(size[1]) * static_cast<double>(size[2]);
}

// A byte for each voxel of a layer of chunks.
double BytesOfLayer(const Voxels& model, std::int64_t lod)
{
    const Extents& extents = model.ExtentsRef(lod);
    Triple size = Plus(Minus(extents.UpperIndices(), extents.LowerIndices()), {1, 1, 1});
    size[2] = std::min(size[2], ChunkHeight);
    return VoxelCount(size);
}

double Nothing(const Voxels&, std::int64_t) { return 0; }

struct Format
{
    const char* ending;
    const char* name;
    bool isArray; // whose size follows from the extents
    void (*write)(const Voxels& model, std::int64_t lod, std::ostream& stream, const GridOptions& options);
    double (*bytesBeside)(const Voxels& model, std::int64_t lod);
};

constexpr std::array Formats{
    Format{".brix", "saved model", false,
           [](const Voxels& model, std::int64_t, std::ostream& stream, const GridOptions&) { SaveModel(model, stream); },
           Nothing},
    Format{".npy", "NumPy array", true, WriteNpy, BytesOfLayer},
    Format{".nrrd", "NRRD volume", true, WriteNrrd, BytesOfLayer},
    Format{".vdb", "OpenVDB fog volume", false,
           [](const Voxels& model, std::int64_t lod, std::ostream& stream, const GridOptions& options) {
               WriteVdb(model, lod, stream, options.swapYZ);
           },
           BytesToWriteVdb},
    Format{".vox", "MagicaVoxel scene", false,
           [](const Voxels& model, std::int64_t lod, std::ostream& stream, const GridOptions&) { WriteVox(model, lod, stream); },
           [](const Voxels&, std::int64_t) { return BytesToWriteVox; }},
    Format{
        ".json", "cuboids in JSON", false,
        [](const Voxels& model, std::int64_t lod, std::ostream& stream, const GridOptions&) { WriteCuboids(model, lod, stream); },
        Nothing},
};

const Format* FormatOfVoxels(const std::filesystem::path& filePath)
{
    const std::string ending = filePath.extension().string();
    const auto found =
        std::find_if(Formats.begin(), Formats.end(), [&](const Format& format) { return ending == format.ending; });
    return found == Formats.end() ? nullptr : &*found;
}

// Of an array, before compression: what its readers have to hold.
void RequireArraySize(double bytes, const Triple& size, const GridOptions& options)
{
    if (bytes > options.outputLimit * 1e9)
        throw std::runtime_error("The file would have " + BytesText(bytes) + " for " + Text(size, " x ") +
                                 " voxels; the limit is " + BytesText(options.outputLimit * 1e9) +
                                 ". A coarser level would be smaller; or raise --output-limit.");
}

void PrintWritten(const LevelFile& output, const std::string& what, const Triple& size, const Stopwatch& watch)
{
    PrintStep("write", output.filePath.string() + ": " + what + ", " + Text(size, " x ") + " voxels " + watch.Text(),
              {{"file", output.filePath.string()}, {"level", output.lod}, {"size", size}, {"seconds", watch.Seconds()}});
}

void SaveFolder(const Voxels& model, const LevelFile& output, const Triple& size, const GridOptions& options)
{
    const Stopwatch watch;
    const double pictureBytes = 3 * VoxelCount({size[0], size[1], 1});
    RequireMemoryToWrite(BytesOfLayer(model, output.lod) + pictureBytes, model, options);
    const std::int64_t bytes = SaveSliceStack(model, output);
    ReportFile(output.filePath, {{"format", std::string("pictures")}, {"bytes", bytes}});
    PrintWritten(output, std::to_string(size[2]) + " pictures, level " + std::to_string(output.lod), size, watch);
}

} // namespace

bool IsVoxelFile(const std::filesystem::path& filePath) { return IsFolderName(filePath) || FormatOfVoxels(filePath) != nullptr; }

void AddVoxelFileOptions(CLI::App& command, GridOptions& options)
{
    const auto compress = [&options](std::int64_t) {
        RequireGzip();
        options.gzip = true;
    };
    command.add_flag_function("--gzip", compress, "Compress .nrrd files");
    command.add_flag("--pack-bits", options.packBits,
                     "Write .npy files with eight voxels in a byte, as numpy.unpackbits takes them");
}

void RequireVoxelFormat(const std::filesystem::path& filePath)
{
    if (IsFolderName(filePath)) return RequireStackFolder(filePath);
    if (filePath.extension() == ".vdb") RequireVdb();
}

void SaveVoxelFile(const Voxels& model, const LevelFile& output, const GridOptions& options)
{
    const Stopwatch watch;
    const Extents& extents = model.ExtentsRef(output.lod);
    const Triple size = Plus(Minus(extents.UpperIndices(), extents.LowerIndices()), {1, 1, 1});
    const bool isFolder = IsFolderName(output.filePath);
    const bool isPacked = options.packBits && output.filePath.extension() == ".npy";
    const double bytes = isPacked ? VoxelCount({(size[0] + 7) / 8, size[1], size[2]}) : VoxelCount(size);
    if (isFolder || FormatOfVoxels(output.filePath)->isArray) RequireArraySize(bytes, size, options);
    if (isFolder) return SaveFolder(model, output, size, options);
    const Format& format = *FormatOfVoxels(output.filePath);
    RequireMemoryToWrite(format.bytesBeside(model, output.lod), model, options);

    OutputFile file(output.filePath, format.isArray ? bytes : 0);
    try {
        format.write(model, output.lod, file.Stream(), options);
    } catch (const std::runtime_error&) {
        if (!file.Stream()) throw file.Failure(); // it knows the system's reason
        throw;
    }
    file.Commit();
    ReportFile(output.filePath, {{"format", std::string(format.name)}, {"bytes", file.BytesWritten()}});
    const std::string level = format.ending == std::string(".brix") ? "all levels" : "level " + std::to_string(output.lod);
    PrintWritten(output, std::string(format.name) + ", " + level, size, watch);
}

VoxelModel<bool> LoadVoxelFile(const std::filesystem::path& filePath)
{
    const Progress progress("reading " + filePath.string());
    std::ifstream file(filePath, std::ios::binary);
    if (!file) throw std::runtime_error("Failed to open the file " + Quoted(filePath) + ": " + SystemReason(errno) + ".");
    try {
        return LoadModel(file);
    } catch (const std::runtime_error& error) {
        throw std::runtime_error("Failed to read the file " + Quoted(filePath) + ": " + error.what());
    }
}

} // namespace brix::tools
