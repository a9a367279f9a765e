// A sheet to draw on with pixels, lines and text, saved as PNG, SVG or PDF. Lengths are pixels of the PNG, points of the PDF; x
// runs to the right, y downward.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace brix::tools {

struct Colour
{
    std::uint8_t red, green, blue;
};

inline constexpr Colour White{255, 255, 255};
inline constexpr Colour Paper{246, 245, 241};
inline constexpr Colour Ink{38, 46, 60};
inline constexpr Colour Muted{98, 106, 120};

/// Cells of one colour each; row 0 is the uppermost.
class Raster
{
public:
    Raster(std::int64_t width, std::int64_t height, Colour background);

    std::int64_t Width() const { return width_; }
    std::int64_t Height() const { return height_; }

    /// The cell must lie inside.
    void Set(std::int64_t column, std::int64_t row, Colour colour)
    {
        cells_[static_cast<std::size_t>(row * width_ + column)] = colour;
    }
    Colour At(std::int64_t column, std::int64_t row) const { return cells_[static_cast<std::size_t>(row * width_ + column)]; }

private:
    std::int64_t width_;
    std::int64_t height_;
    std::vector<Colour> cells_;
};

inline constexpr double MaxPixels = 200e6; // of a raster or a sheet

/// Throws std::runtime_error where this build has no library to draw with.
void RequireCanvas();

enum class PictureFormat
{
    PNG,
    SVG,
    PDF
};

/// The format that a file's name stands for: PNG without an ending. Throws UsageError for the ending of another format, and as
/// RequireCanvas.
PictureFormat FormatOf(const std::filesystem::path& filePath);

enum class Align
{
    Left,
    Centre,
    Right
};

struct TextStyle
{
    double size = 14;
    bool isBold = false;
    Colour colour = Ink;
    Align align = Align::Left;
};

/// The width of a text in one line.
double TextWidth(const std::string& text, const TextStyle& style);

struct Spot
{
    double x, y;
};

class Canvas
{
public:
    /// Throws std::runtime_error when the sheet would be unreasonably large.
    Canvas(PictureFormat format, double width, double height);

    void Fill(double x, double y, double width, double height, Colour colour);

    /// Every cell becomes a sharp rectangle of whole pixels.
    void Image(const Raster& raster, double x, double y, std::int64_t cellWidth, std::int64_t cellHeight);

    void Line(const std::vector<Spot>& points, double width, Colour colour);
    void Disc(Spot centre, double radius, Colour colour);

    /// `y` is the line that letters stand on.
    void Text(const std::string& text, double x, double y, const TextStyle& style);

    /// What is drawn from here on stays within a rectangle, until Unclip.
    void Clip(double x, double y, double width, double height);
    void Unclip();

    /// The file's content. An SVG file names all its texts in its description, as letters are drawn as shapes.
    /// Throws std::runtime_error when something could not be drawn.
    std::string Finish();

private:
    struct Cairo;
    struct Delete
    {
        void operator()(Cairo* cairo) const;
    };

    PictureFormat format_;
    std::string content_;
    std::vector<std::string> texts_;
    std::unique_ptr<Cairo, Delete> cairo_;
};

/// A PNG file of grey pixels, eight bits each, rows from the uppermost down. Throws std::runtime_error when an edge is longer
/// than 32,000 pixels.
std::string GreyPicture(std::int64_t width, std::int64_t height, const std::vector<std::uint8_t>& pixels);

/// Writes a file. Throws std::runtime_error when that fails.
void SavePicture(const std::filesystem::path& filePath, const std::string& content);

} // namespace brix::tools
