// Slices through one model on a page.
#pragma once

#include "OutputFiles.h"
#include "SlicePicture.h"

#include <filesystem>
#include <string>
#include <vector>

namespace brix::tools {

struct SlicePageOptions
{
    std::int64_t lod;
    std::int64_t scale = 0; // pixels for the shorter edge of a voxel; 0: for a readable size
    std::string unit{};
    bool isBare = false; // voxels alone, no text
};

struct NamedSlice
{
    SlicePosition position; // as the user gave it
    Slice slice;
};

/// Draws slices side by side and writes the picture, and says so. `title` names what is drawn.
/// Throws std::runtime_error when a slice is empty, and when the file cannot be written.
void SaveSlices(const std::filesystem::path& output, const VoxelModel<bool>& model, const std::vector<NamedSlice>& slices,
                const std::string& title, const SlicePageOptions& options);

/// Writes a page as a picture in the format of the file's ending, and says so.
void SavePage(const std::filesystem::path& output, const Page& page);

} // namespace brix::tools
