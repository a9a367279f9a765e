// Canvas drawn by Cairo.
#include "Canvas.h"

#include "Text.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>
#include <cairo.h>

#include <algorithm>
#include <cmath>
#include <numbers>
#include <stdexcept>

namespace brix::tools {
namespace {

constexpr double MaxEdge = 32000; // of what the library can draw on

cairo_status_t Append(void* content, const unsigned char* bytes, unsigned int count)
{
    static_cast<std::string*>(content)->append(reinterpret_cast<const char*>(bytes), count);
    return CAIRO_STATUS_SUCCESS;
}

void SetColour(cairo_t* context, Colour colour)
{
    cairo_set_source_rgb(context, colour.red / 255.0, colour.green / 255.0, colour.blue / 255.0);
}

// Hinting depends on a machine's settings; without it letters keep their shape everywhere.
void SetFont(cairo_t* context, const TextStyle& style)
{
    cairo_select_font_face(context, "DejaVu Sans", CAIRO_FONT_SLANT_NORMAL,
                           style.isBold ? CAIRO_FONT_WEIGHT_BOLD : CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_font_size(context, style.size);
    cairo_font_options_t* const options = cairo_font_options_create();
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    cairo_set_font_options(context, options);
    cairo_font_options_destroy(options);
}

std::string OnlyAscii(std::string text)
{
    for (char& character : text)
        if (character < ' ' || character > '~') character = '?';
    return text;
}

// Text as the library takes it: what is no UTF-8 would end all drawing.
struct MeasuredText
{
    std::string text;
    double width;
};

MeasuredText Measure(const std::string& text, const TextStyle& style)
{
    cairo_surface_t* const surface = cairo_image_surface_create(CAIRO_FORMAT_A8, 1, 1);
    cairo_t* const context = cairo_create(surface);
    SetFont(context, style);
    cairo_text_extents_t extents{};
    cairo_text_extents(context, text.c_str(), &extents);
    const bool isText = cairo_status(context) == CAIRO_STATUS_SUCCESS;
    cairo_destroy(context);
    cairo_surface_destroy(surface);
    return isText ? MeasuredText{text, extents.x_advance} : Measure(OnlyAscii(text), style);
}

std::string EscapedForXml(const std::string& text)
{
    std::string escaped;
    for (const char character : text) {
        if (character == '&')
            escaped += "&amp;";
        else if (character == '<')
            escaped += "&lt;";
        else if (static_cast<unsigned char>(character) >= ' ')
            escaped += character;
    }
    return escaped;
}

void AddDescription(std::string& svg, const std::vector<std::string>& texts)
{
    std::string description = "\n<desc>";
    for (const std::string& text : texts) description += EscapedForXml(text) + "\n";
    const std::size_t root = svg.find("<svg");
    svg.insert(svg.find('>', root) + 1, description + "</desc>");
}

} // namespace

void RequireCanvas() {}

double TextWidth(const std::string& text, const TextStyle& style) { return Measure(text, style).width; }

struct Canvas::Cairo
{
    cairo_surface_t* surface;
    cairo_t* context;
};

void Canvas::Delete::operator()(Cairo* cairo) const
{
    cairo_destroy(cairo->context);
    cairo_surface_destroy(cairo->surface);
    delete cairo;
}

Canvas::Canvas(PictureFormat format, double width, double height) : format_(format)
{
    if (width > MaxEdge || height > MaxEdge || width * height > MaxPixels)
        throw std::runtime_error("The picture would be " + tools::Text(width) + " x " + tools::Text(height) +
                                 " pixels. Choose a lower scale or a coarser level.");
    cairo_surface_t* surface = nullptr;
    if (format == PictureFormat::SVG) {
        surface = cairo_svg_surface_create_for_stream(Append, &content_, width, height);
        cairo_svg_surface_set_document_unit(surface, CAIRO_SVG_UNIT_PX);
    } else if (format == PictureFormat::PDF) {
        surface = cairo_pdf_surface_create_for_stream(Append, &content_, width, height);
        // The same input gives the same file at any time.
        cairo_pdf_surface_set_metadata(surface, CAIRO_PDF_METADATA_CREATE_DATE, "2000-01-01T00:00:00Z");
    } else {
        surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, static_cast<int>(width), static_cast<int>(height));
    }
    cairo_.reset(new Cairo{surface, cairo_create(surface)});
    Fill(0, 0, width, height, White);
}

void Canvas::Fill(double x, double y, double width, double height, Colour colour)
{
    SetColour(cairo_->context, colour);
    cairo_rectangle(cairo_->context, x, y, width, height);
    cairo_fill(cairo_->context);
}

// Enlarged here and not by the library, so that no viewer of an SVG or PDF file smooths the cells.
void Canvas::Image(const Raster& raster, double x, double y, std::int64_t cellWidth, std::int64_t cellHeight)
{
    const auto width = static_cast<int>(raster.Width() * cellWidth);
    const auto height = static_cast<int>(raster.Height() * cellHeight);
    cairo_surface_t* const image = cairo_image_surface_create(CAIRO_FORMAT_RGB24, width, height);
    const int stride = cairo_image_surface_get_stride(image);
    unsigned char* const data = cairo_image_surface_get_data(image);
    for (int row = 0; row < height && data != nullptr; ++row) {
        auto* const pixels = reinterpret_cast<std::uint32_t*>(data + static_cast<std::ptrdiff_t>(row) * stride);
        for (int column = 0; column < width; ++column) {
            const Colour colour = raster.At(column / cellWidth, row / cellHeight);
            pixels[column] = static_cast<std::uint32_t>(colour.red << 16 | colour.green << 8 | colour.blue);
        }
    }
    cairo_surface_mark_dirty(image);
    cairo_set_source_surface(cairo_->context, image, x, y);
    cairo_pattern_set_filter(cairo_get_source(cairo_->context), CAIRO_FILTER_NEAREST);
    cairo_paint(cairo_->context);
    cairo_surface_destroy(image);
}

void Canvas::Line(const std::vector<Spot>& points, double width, Colour colour)
{
    SetColour(cairo_->context, colour);
    cairo_set_line_width(cairo_->context, width);
    cairo_set_line_join(cairo_->context, CAIRO_LINE_JOIN_ROUND);
    cairo_set_line_cap(cairo_->context, CAIRO_LINE_CAP_ROUND);
    for (const Spot& point : points) cairo_line_to(cairo_->context, point.x, point.y);
    cairo_stroke(cairo_->context);
}

void Canvas::Disc(Spot centre, double radius, Colour colour)
{
    SetColour(cairo_->context, colour);
    cairo_new_path(cairo_->context);
    cairo_arc(cairo_->context, centre.x, centre.y, radius, 0, 2 * std::numbers::pi);
    cairo_fill(cairo_->context);
}

void Canvas::Text(const std::string& text, double x, double y, const TextStyle& style)
{
    const MeasuredText measured = Measure(text, style);
    const double shift = style.align == Align::Left ? 0 : style.align == Align::Right ? 1 : 0.5;
    SetFont(cairo_->context, style);
    SetColour(cairo_->context, style.colour);
    cairo_move_to(cairo_->context, x - shift * measured.width, y);
    cairo_show_text(cairo_->context, measured.text.c_str());
    texts_.push_back(measured.text);
}

void Canvas::Clip(double x, double y, double width, double height)
{
    cairo_save(cairo_->context);
    cairo_rectangle(cairo_->context, x, y, width, height);
    cairo_clip(cairo_->context);
}

void Canvas::Unclip() { cairo_restore(cairo_->context); }

std::string Canvas::Finish()
{
    cairo_status_t status = cairo_status(cairo_->context);
    if (format_ == PictureFormat::PNG && status == CAIRO_STATUS_SUCCESS)
        status = cairo_surface_write_to_png_stream(cairo_->surface, Append, &content_);
    cairo_surface_finish(cairo_->surface);
    if (status == CAIRO_STATUS_SUCCESS) status = cairo_surface_status(cairo_->surface);
    if (status != CAIRO_STATUS_SUCCESS)
        throw std::runtime_error(std::string("Failed to draw the picture: ") + cairo_status_to_string(status) + ".");
    if (format_ == PictureFormat::SVG) AddDescription(content_, texts_);
    return std::move(content_);
}

// A surface of opacities is written as grey.
std::string GreyPicture(std::int64_t width, std::int64_t height, const std::vector<std::uint8_t>& pixels)
{
    if (static_cast<double>(std::max(width, height)) > MaxEdge)
        throw std::runtime_error("The picture would be " + std::to_string(width) + " x " + std::to_string(height) +
                                 " pixels. Choose a coarser level.");
    cairo_surface_t* const surface =
        cairo_image_surface_create(CAIRO_FORMAT_A8, static_cast<int>(width), static_cast<int>(height));
    const std::ptrdiff_t stride = cairo_image_surface_get_stride(surface);
    unsigned char* const data = cairo_image_surface_get_data(surface);
    for (std::ptrdiff_t row = 0; row < height && data != nullptr; ++row)
        std::copy_n(pixels.begin() + row * width, width, data + row * stride);
    cairo_surface_mark_dirty(surface);
    std::string content;
    cairo_status_t status = cairo_surface_status(surface);
    if (status == CAIRO_STATUS_SUCCESS) status = cairo_surface_write_to_png_stream(surface, Append, &content);
    cairo_surface_destroy(surface);
    if (status != CAIRO_STATUS_SUCCESS)
        throw std::runtime_error(std::string("Failed to draw the picture: ") + cairo_status_to_string(status) + ".");
    return content;
}

} // namespace brix::tools
