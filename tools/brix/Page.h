// A page of pictures: a title, sections of panels with their key or colour scale, and a scale bar.
//
//    Title
//    what it was made of
//    Section
//    Panel title, note      Panel title, note
//    +-----------------+    +-----------------+
//    |                 |    |                 |
//    +-----------------+    +-----------------+
//    [] key  [] key         ####::::....
//    |------| 5 m
#pragma once

#include "ColourScale.h"

#include <functional>
#include <optional>

namespace brix::tools {

struct Panel
{
    std::string title;
    std::string note;
    Raster raster;
    std::int64_t cellWidth;                         // pixels
    std::int64_t cellHeight;                        // pixels
    std::function<void(Canvas&, Spot corner)> draw; // on top of the raster, whose upper left corner is given; or none

    double Width() const { return static_cast<double>(raster.Width() * cellWidth); }
    double Height() const { return static_cast<double>(raster.Height() * cellHeight); }
};

struct KeyEntry
{
    Colour colour;
    std::string text;
};

struct LabelledScale
{
    ColourScale colours;
    std::string title;
};

struct Section
{
    std::string title;
    std::vector<Panel> panels; // at least one
    std::vector<KeyEntry> key;
    std::optional<LabelledScale> scale{};
};

struct Page
{
    std::string title;
    std::string subtitle;
    std::string unit;     // of lengths; empty when nobody knows
    double lengthOfPixel; // in that unit
    std::vector<Section> sections;
};

/// A number and its unit: "5 m", or "5".
std::string WithUnit(double length, const std::string& unit);

struct DrawnPage
{
    std::string content; // of the file
    std::int64_t width, height;
};
DrawnPage DrawPage(const Page& page, PictureFormat format);

} // namespace brix::tools
