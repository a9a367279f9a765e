#include "SlicePicture.h"

#include <brix/model/VoxelIterator.h>

#include <png.h>

#include <algorithm>
#include <fstream>
#include <stdexcept>
#include <string>

namespace brix::tools {
namespace {

constexpr std::int64_t MaxPixels = 200'000'000;

std::size_t Number(Axis axis) { return static_cast<std::size_t>(axis); }

// The axes that run to the right and upward in the picture of a slice.
struct View
{
    Axis right, up;
};

View ViewOf(Axis sliced)
{
    if (sliced == Axis::X) return {Axis::Y, Axis::Z};
    if (sliced == Axis::Y) return {Axis::X, Axis::Z};
    return {Axis::X, Axis::Y};
}

struct Bounds
{
    Triple lower, upper;

    std::int64_t Size(Axis axis) const { return upper[Number(axis)] - lower[Number(axis)] + 1; }
};

Bounds CommonBounds(const std::vector<VoxelCategory>& categories, std::int64_t lod)
{
    const Extents& first = categories.front().voxels.ExtentsRef(lod);
    Bounds bounds{first.LowerIndices(), first.UpperIndices()};
    for (const VoxelCategory& category : categories) {
        const Extents& extents = category.voxels.ExtentsRef(lod);
        bounds.lower = Lowest(bounds.lower, extents.LowerIndices());
        bounds.upper = Highest(bounds.upper, extents.UpperIndices());
    }
    return bounds;
}

// A voxel's size in units of the shorter of its edges; these are powers of two apart.
Triple Proportions(const Axes& axes, std::int64_t lod)
{
    const Triple size = axes.VoxelSize(lod);
    const std::int64_t shortest = std::min(size[0], size[2]);
    return {size[0] / shortest, size[1] / shortest, size[2] / shortest};
}

std::vector<char> EncodePng(const std::vector<std::uint8_t>& pixels, std::int64_t width, std::int64_t height)
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.format = PNG_FORMAT_RGB;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::vector<char> png(size);
    if (!png_image_write_to_memory(&image, png.data(), &size, 0, pixels.data(), 0, nullptr))
        throw std::runtime_error(std::string("Failed to encode the picture: ") + image.message + ".");
    png.resize(size);
    return png;
}

} // namespace

Picture::Picture(std::int64_t width, std::int64_t height, Colour background) : width_(width), height_(height)
{
    if (width > MaxPixels / std::max<std::int64_t>(height, 1))
        throw std::runtime_error("The picture would be " + std::to_string(width) + " x " + std::to_string(height) +
                                 " pixels. Choose a lower scale or a coarser level.");
    pixels_.resize(static_cast<std::size_t>(3 * width * height));
    Fill(0, 0, width, height, background);
}

std::uint8_t* Picture::Pixel(std::int64_t x, std::int64_t y) { return pixels_.data() + 3 * (y * width_ + x); }

void Picture::Fill(std::int64_t x, std::int64_t y, std::int64_t width, std::int64_t height, Colour colour)
{
    for (std::int64_t row = y; row < y + height; ++row) {
        std::uint8_t* pixel = Pixel(x, row);
        for (std::int64_t column = 0; column < width; ++column) {
            *pixel++ = colour.red;
            *pixel++ = colour.green;
            *pixel++ = colour.blue;
        }
    }
}

void Picture::Place(const Picture& picture, std::int64_t x, std::int64_t y)
{
    for (std::int64_t row = 0; row < picture.height_; ++row)
        std::copy_n(picture.pixels_.data() + 3 * row * picture.width_, 3 * picture.width_, Pixel(x, y + row));
}

// The file is written here and not by libpng, which removes the file when it fails: even one that is a device.
void Picture::SavePng(const std::filesystem::path& filePath) const
{
    const std::vector<char> png = EncodePng(pixels_, width_, height_);
    std::ofstream file(filePath, std::ios::binary);
    if (!file.write(png.data(), static_cast<std::streamsize>(png.size())).flush())
        throw std::runtime_error("Failed to write the picture \"" + filePath.string() + "\".");
}

Picture DrawSlice(const std::vector<VoxelCategory>& categories, std::int64_t lod, const Slice& slice, std::int64_t scale)
{
    const auto [right, up] = ViewOf(slice.axis);
    const Bounds bounds = CommonBounds(categories, lod);
    const Triple proportions = Proportions(categories.front().voxels.AxesRef(), lod);
    const std::int64_t pixelsRight = proportions[Number(right)] * scale;
    const std::int64_t pixelsUp = proportions[Number(up)] * scale;

    Picture picture(bounds.Size(right) * pixelsRight, bounds.Size(up) * pixelsUp, Paper);
    for (const VoxelCategory& category : categories)
        for (std::int64_t row = 0; row < bounds.Size(up); ++row)
            for (std::int64_t column = 0; column < bounds.Size(right); ++column) {
                Triple voxelIndices = bounds.lower;
                voxelIndices[Number(slice.axis)] = slice.index;
                voxelIndices[Number(right)] += column;
                voxelIndices[Number(up)] += row;
                const ConstVoxelIterator voxel = category.voxels.FindVoxel(voxelIndices, lod);
                if (voxel.IsValid() && voxel.Value())
                    picture.Fill(column * pixelsRight, (bounds.Size(up) - 1 - row) * pixelsUp, pixelsRight, pixelsUp,
                                 category.colour);
            }
    return picture;
}

std::int64_t ScaleForSize(const Extents& extents, std::int64_t pixels)
{
    const Triple proportions = Proportions(extents.AxesRef(), extents.VoxelLOD());
    const Bounds bounds{extents.LowerIndices(), extents.UpperIndices()};
    std::int64_t longest = 1;
    for (const Axis axis : AllAxes) longest = std::max(longest, bounds.Size(axis) * proportions[Number(axis)]);
    return std::max<std::int64_t>(1, pixels / longest);
}

Picture SideBySide(const std::vector<Picture>& pictures, std::int64_t margin)
{
    std::int64_t width = margin;
    std::int64_t height = 0;
    for (const Picture& picture : pictures) {
        width += picture.Width() + margin;
        height = std::max(height, picture.Height());
    }
    Picture row(width, height + 2 * margin, White);
    std::int64_t x = margin;
    for (const Picture& picture : pictures) {
        row.Place(picture, x, margin + height - picture.Height()); // on a common ground line
        x += picture.Width() + margin;
    }
    return row;
}

} // namespace brix::tools
