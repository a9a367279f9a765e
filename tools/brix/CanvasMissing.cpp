// Canvas where there is no library to draw with.
#include "Canvas.h"

#include <stdexcept>

namespace brix::tools {

void RequireCanvas()
{
    throw std::runtime_error(
        "This brix draws no pictures, as it was made without the library Cairo; the commands info, voxelize, "
        "run and scene do not need it.");
}

double TextWidth(const std::string&, const TextStyle&) { return 0; }

struct Canvas::Cairo
{};

void Canvas::Delete::operator()(Cairo* cairo) const { delete cairo; }

// No canvas comes to be, so that the rest is never called.
Canvas::Canvas(PictureFormat format, double, double) : format_(format) { RequireCanvas(); }

void Canvas::Fill(double, double, double, double, Colour) {}
void Canvas::Image(const Raster&, double, double, std::int64_t, std::int64_t) {}
void Canvas::Line(const std::vector<Spot>&, double, Colour) {}
void Canvas::Disc(Spot, double, Colour) {}
void Canvas::Text(const std::string&, double, double, const TextStyle&) {}
void Canvas::Clip(double, double, double, double) {}
void Canvas::Unclip() {}
std::string Canvas::Finish() { return {}; }

std::string GreyPicture(std::int64_t, std::int64_t, const std::vector<std::uint8_t>&)
{
    RequireCanvas();
    return {};
}

} // namespace brix::tools
