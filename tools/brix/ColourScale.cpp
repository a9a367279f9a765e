#include "ColourScale.h"

#include "Report.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace brix::tools {
namespace {

// Yellow, green, blue, violet: lightness falls evenly, so that the order survives a black and white print.
constexpr std::array<Colour, 9> Stops{{{253, 231, 37},
                                       {173, 220, 48},
                                       {94, 201, 98},
                                       {40, 174, 128},
                                       {33, 145, 140},
                                       {44, 114, 142},
                                       {59, 82, 139},
                                       {71, 45, 123},
                                       {68, 1, 84}}};

// Rows of three squares from the top; bit 2 is the left one.
struct Glyph
{
    char character;
    std::array<unsigned, 5> rows;
};
constexpr std::array<Glyph, 12> Glyphs{{{'0', {7, 5, 5, 5, 7}},
                                        {'1', {2, 6, 2, 2, 7}},
                                        {'2', {7, 1, 7, 4, 7}},
                                        {'3', {7, 1, 7, 1, 7}},
                                        {'4', {5, 5, 7, 1, 1}},
                                        {'5', {7, 4, 7, 1, 7}},
                                        {'6', {7, 4, 7, 5, 7}},
                                        {'7', {7, 1, 1, 1, 1}},
                                        {'8', {7, 5, 7, 5, 7}},
                                        {'9', {7, 5, 7, 1, 7}},
                                        {'.', {0, 0, 0, 0, 2}},
                                        {'m', {0, 0, 7, 7, 5}}}};

double RoundStep(double least)
{
    const double power = std::pow(10, std::floor(std::log10(least)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * power >= least) return factor * power;
    }
    return 10 * power;
}

} // namespace

Colour Mixed(Colour a, Colour b, double share)
{
    const auto mix = [&](std::uint8_t from, std::uint8_t to) {
        return static_cast<std::uint8_t>(std::lround(from + (to - from) * share));
    };
    return {mix(a.red, b.red), mix(a.green, b.green), mix(a.blue, b.blue)};
}

std::int64_t DrawText(Picture& picture, const std::string& text, std::int64_t x, std::int64_t y, std::int64_t scale,
                      Colour colour)
{
    std::int64_t left = x;
    for (const char character : text) {
        const auto glyph = std::find_if(Glyphs.begin(), Glyphs.end(), [&](const Glyph& g) { return g.character == character; });
        for (std::int64_t square = 0; square < 15 && glyph != Glyphs.end(); ++square) {
            if ((glyph->rows[static_cast<std::size_t>(square / 3)] >> (2 - square % 3) & 1U) != 0)
                picture.Fill(left + square % 3 * scale, y + square / 3 * scale, scale, scale, colour);
        }
        left += 4 * scale;
    }
    return left - x - scale;
}

ColourScale::ColourScale(double largest) : largest_(std::max(largest, 1e-9)), step_(RoundStep(largest_ / 10)) {}

Colour ColourScale::At(double value) const
{
    const double position = std::clamp(value / largest_, 0.0, 1.0) * static_cast<double>(Stops.size() - 1);
    const auto stop = std::min(static_cast<std::size_t>(position), Stops.size() - 2);
    return Mixed(Stops[stop], Stops[stop + 1], position - static_cast<double>(stop));
}

std::int64_t ColourScale::Band(double value) const { return static_cast<std::int64_t>(value / step_); }

Picture ColourScale::Legend(std::int64_t width) const
{
    constexpr std::int64_t scale = 3;
    constexpr std::int64_t bar = 20;
    constexpr std::int64_t margin = 24; // for half a number beside the bar
    Picture legend(width, bar + 10 + 5 * scale, White);
    const std::int64_t length = width - 2 * margin;
    const auto valueAt = [&](std::int64_t x) { return largest_ * static_cast<double>(x) / static_cast<double>(length); };
    for (std::int64_t x = 0; x < length; ++x) legend.Fill(margin + x, 0, 1, bar, At(valueAt(x)));
    for (std::int64_t i = 0; static_cast<double>(i) * step_ <= largest_; ++i) {
        const double value = static_cast<double>(i) * step_;
        const std::int64_t x = margin + std::min(length - 1, std::lround(value / largest_ * static_cast<double>(length)));
        const std::string text = Text(value) + "m";
        const auto textWidth = static_cast<std::int64_t>(4 * text.size() - 1) * scale;
        legend.Fill(x, 0, 1, bar + 5, Ink);
        DrawText(legend, text, std::clamp(x - textWidth / 2, std::int64_t{0}, width - textWidth), bar + 8, scale, Ink);
    }
    return legend;
}

} // namespace brix::tools
