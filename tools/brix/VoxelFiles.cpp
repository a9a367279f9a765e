#include "VoxelFiles.h"

#include "OutputFile.h"
#include "Progress.h"
#include "Report.h"

#include <brix/storage/SavedModel.h>
#include <brix/storage/VoxelFiles.h>
#include <brix/triangles/Cuboidization.h>

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

struct Format
{
    const char* ending;
    const char* name;
    bool isArray; // whose size follows from the extents
    void (*write)(const VoxelModel<bool>& model, std::int64_t lod, std::ostream& stream);
};

constexpr std::array Formats{
    Format{".brix", "saved model", false,
           [](const VoxelModel<bool>& model, std::int64_t, std::ostream& stream) { SaveModel(model, stream); }},
    Format{".npy", "NumPy array", true, SaveNpy},
    Format{".nrrd", "NRRD volume", true, SaveNrrd},
    Format{".json", "cuboids in JSON", false, WriteCuboids},
};

const Format* FormatOfVoxels(const std::filesystem::path& filePath)
{
    const std::string ending = filePath.extension().string();
    const auto found =
        std::find_if(Formats.begin(), Formats.end(), [&](const Format& format) { return ending == format.ending; });
    return found == Formats.end() ? nullptr : &*found;
}

} // namespace

bool IsVoxelFile(const std::filesystem::path& filePath) { return FormatOfVoxels(filePath) != nullptr; }

void SaveVoxelFile(const VoxelModel<bool>& model, const LevelFile& output, const GridOptions& options)
{
    const Stopwatch watch;
    const Format& format = *FormatOfVoxels(output.filePath);
    const Extents& extents = model.ExtentsRef(output.lod);
    const Triple size = Plus(Minus(extents.UpperIndices(), extents.LowerIndices()), {1, 1, 1});
    const double bytes = static_cast<double>(size[0]) * static_cast<double>(size[1]) * static_cast<double>(size[2]);
    if (format.isArray && bytes > options.outputLimit * 1e9)
        throw std::runtime_error("The file would have " + BytesText(bytes) + " for " + Text(size, " x ") +
                                 " voxels; the limit is " + BytesText(options.outputLimit * 1e9) +
                                 ". A coarser level would be smaller; or raise --output-limit.");

    OutputFile file(output.filePath, format.isArray ? bytes : 0);
    try {
        format.write(model, output.lod, file.Stream());
    } catch (const std::runtime_error&) {
        if (!file.Stream()) throw file.Failure(); // it knows the system's reason
        throw;
    }
    file.Commit();
    ReportFile(output.filePath, {{"format", std::string(format.name)}, {"bytes", file.BytesWritten()}});
    const std::string level = format.ending == std::string(".brix") ? "all levels" : "level " + std::to_string(output.lod);
    PrintStep("write",
              output.filePath.string() + ": " + format.name + ", " + level + ", " + Text(size, " x ") + " voxels " + watch.Text(),
              {{"file", output.filePath.string()}, {"level", output.lod}, {"size", size}, {"seconds", watch.Seconds()}});
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
