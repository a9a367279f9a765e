#include "SliceStack.h"

#include "Canvas.h"
#include "Progress.h"
#include "System.h"
#include "Text.h"

#include <brix/model/VoxelArrays.h>

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <span>
#include <stdexcept>

namespace brix::tools {
namespace {

namespace fs = std::filesystem;

constexpr std::int64_t MostLayers = 100'000;

std::runtime_error CannotWrite(const fs::path& name, int error)
{
    return std::runtime_error("Failed to write the folder " + Quoted(name) + ": " + SystemReason(error) + ".");
}

fs::path WithoutSlash(const fs::path& folder) { return (folder / ".").lexically_normal().parent_path(); }

// Beside its place until it is complete; nothing is left of it when it is not.
class UnfinishedFolder
{
public:
    explicit UnfinishedFolder(const fs::path& target) : target_(WithoutSlash(target))
    {
        temporary_ = target_.parent_path() / (".brix-" + std::to_string(ProcessNumber()) + "-stack.part");
        std::error_code error;
        if (!fs::create_directory(temporary_, error)) throw CannotWrite(target_, error ? error.value() : EEXIST);
    }
    ~UnfinishedFolder()
    {
        std::error_code error;
        if (!temporary_.empty()) fs::remove_all(temporary_, error);
    }

    UnfinishedFolder(const UnfinishedFolder&) = delete;
    UnfinishedFolder& operator=(const UnfinishedFolder&) = delete;

    void Write(const std::string& name, const std::string& content) const
    {
        std::ofstream file(temporary_ / name, std::ios::binary);
        errno = 0;
        if (!file.write(content.data(), std::ssize(content)) || !file.flush()) throw CannotWrite(target_, errno ? errno : EIO);
    }

    // Takes the place of an empty folder, too.
    void Commit()
    {
        std::error_code error;
        fs::rename(temporary_, target_, error);
        if (error) throw CannotWrite(target_, error.value());
        temporary_.clear();
    }

private:
    fs::path target_;
    fs::path temporary_;
};

std::string NameOf(std::int64_t layer, std::int64_t layerCount)
{
    const std::size_t digits = std::max<std::size_t>(4, std::to_string(layerCount - 1).size());
    const std::string number = std::to_string(layer);
    return "layer-" + std::string(digits - number.size(), '0') + number + ".png";
}

// Rows from the uppermost down, 1 as 255.
std::vector<std::uint8_t> Picture(std::span<const std::uint8_t> layer, std::size_t width)
{
    std::vector<std::uint8_t> picture;
    picture.reserve(layer.size());
    for (std::size_t row = layer.size(); row > 0; row -= width)
        for (const std::uint8_t voxel : layer.subspan(row - width, width)) picture.push_back(voxel != 0 ? 255 : 0);
    return picture;
}

} // namespace

bool IsFolderName(const fs::path& filePath) { return !filePath.has_filename() && filePath.has_parent_path(); }

void RequireStackFolder(const fs::path& folder)
{
    RequireCanvas();
    const fs::path target = WithoutSlash(folder);
    std::error_code error;
    if (const fs::file_status status = fs::symlink_status(target, error); fs::exists(status)) {
        if (!fs::is_directory(status)) throw CannotWrite(folder, ENOTDIR);
        if (!fs::is_empty(target, error)) throw CannotWrite(folder, error ? error.value() : ENOTEMPTY);
    }
    if (const int reason = FolderError(target.has_parent_path() ? target.parent_path() : fs::path(".")))
        throw CannotWrite(folder, reason);
}

std::int64_t SaveSliceStack(const VoxelModel<bool>& model, const LevelFile& output)
{
    RequireStackFolder(output.filePath);
    const Extents& extents = model.ExtentsRef(output.lod);
    const auto [lowerX, lowerY, lowerZ] = extents.LowerIndices();
    const auto [upperX, upperY, upperZ] = extents.UpperIndices();
    const std::int64_t width = upperX - lowerX + 1;
    const std::int64_t height = upperY - lowerY + 1;
    const std::int64_t layerCount = upperZ - lowerZ + 1;
    if (layerCount > MostLayers)
        throw std::runtime_error("There would be " + std::to_string(layerCount) + " pictures; " + std::to_string(MostLayers) +
                                 " are the most. Choose a coarser level.");
    Progress progress("writing " + output.filePath.string());
    UnfinishedFolder folder(output.filePath);
    std::vector<std::uint8_t> voxels;
    std::int64_t bytes = 0;
    for (std::int64_t z = lowerZ; z <= upperZ; z += ChunkHeight) {
        const std::int64_t last = std::min(z + ChunkHeight - 1, upperZ);
        const Extents box(extents.AxesRef(), {lowerX, lowerY, z}, {upperX, upperY, last}, output.lod);
        voxels.resize(DenseSize(box));
        CopyVoxels(model, box, voxels);
        const auto layerBytes = static_cast<std::size_t>(width * height);
        for (std::int64_t layer = z; layer <= last; ++layer) {
            const auto first = static_cast<std::size_t>(layer - z) * layerBytes;
            const std::string picture = GreyPicture(
                width, height, Picture(std::span(voxels).subspan(first, layerBytes), static_cast<std::size_t>(width)));
            folder.Write(NameOf(layer - lowerZ, layerCount), picture);
            bytes += std::ssize(picture);
            CheckWatch();
            progress.Update(static_cast<double>(layer - lowerZ + 1), static_cast<double>(layerCount));
        }
    }
    folder.Commit();
    return bytes;
}

} // namespace brix::tools
