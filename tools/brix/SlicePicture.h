// Slices of voxel models as pictures: plans (slices across z) seen from above with y up, sections (across x or y) with z up.
#pragma once

#include <brix/model/VoxelModel.h>

#include <cstdint>
#include <filesystem>
#include <vector>

namespace brix::tools {

struct Colour
{
    std::uint8_t red, green, blue;
};

inline constexpr Colour White{255, 255, 255};
inline constexpr Colour Paper{240, 238, 230};
inline constexpr Colour Ink{45, 55, 72};

/// A rectangle of pixels; x runs to the right, y downward.
class Picture
{
public:
    Picture(std::int64_t width, std::int64_t height, Colour background);

    std::int64_t Width() const { return width_; }
    std::int64_t Height() const { return height_; }

    /// Paints a rectangle, which must lie inside.
    void Fill(std::int64_t x, std::int64_t y, std::int64_t width, std::int64_t height, Colour colour);

    /// Copies a picture into this one, where it must fit.
    void Place(const Picture& picture, std::int64_t x, std::int64_t y);

    /// Throws std::runtime_error when the file cannot be written.
    void SavePng(const std::filesystem::path& filePath) const;

private:
    std::uint8_t* Pixel(std::int64_t x, std::int64_t y);

    std::int64_t width_;
    std::int64_t height_;
    std::vector<std::uint8_t> pixels_; // red, green, blue; rows from the top
};

/// Voxels of one meaning and the colour that shows it. Where several are filled, the last one in the list is seen.
struct VoxelCategory
{
    const VoxelModel<bool>& voxels;
    Colour colour;
};

/// All voxels of a level with one index along an axis.
struct Slice
{
    Axis axis;
    std::int64_t index;
};

/// Draws the filled voxels of a slice over the common bounds of all categories, which share one frame. `scale` is the number of
/// pixels for the shorter of a voxel's width and height. Throws std::runtime_error when the picture would be unreasonably large.
Picture DrawSlice(const std::vector<VoxelCategory>& categories, std::int64_t lod, const Slice& slice, std::int64_t scale);

/// A scale at which the largest slice of a level is about this many pixels wide or high; at least 1.
std::int64_t ScaleForSize(const Extents& extents, std::int64_t pixels);

/// Pictures in a row, with a margin between and around them.
Picture SideBySide(const std::vector<Picture>& pictures, std::int64_t margin);

} // namespace brix::tools
