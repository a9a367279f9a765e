#include "ColourScale.h"

#include <algorithm>
#include <cmath>

namespace brix::tools {
namespace {

// Yellow, green, blue, violet: lightness falls evenly.
constexpr std::array<Colour, 9> Stops{{{253, 231, 37},
                                       {173, 220, 48},
                                       {94, 201, 98},
                                       {40, 174, 128},
                                       {33, 145, 140},
                                       {44, 114, 142},
                                       {59, 82, 139},
                                       {71, 45, 123},
                                       {68, 1, 84}}};

} // namespace

double RoundStep(double least)
{
    const double power = std::pow(10, std::floor(std::log10(least)));
    for (const double factor : {1.0, 2.0, 5.0})
        if (factor * power >= least * (1 - 1e-9)) return factor * power;
    return 10 * power;
}

Colour Mixed(Colour a, Colour b, double share)
{
    const auto mix = [&](std::uint8_t from, std::uint8_t to) {
        return static_cast<std::uint8_t>(std::lround(from + (to - from) * share));
    };
    return {mix(a.red, b.red), mix(a.green, b.green), mix(a.blue, b.blue)};
}

ColourScale::ColourScale(double least, double largest, Light light)
    : least_(least), largest_(std::max(largest, least + 1e-9)), step_(RoundStep((largest_ - least_) / 10)), light_(light)
{}

Colour ColourScale::At(double value) const
{
    const double share = std::clamp((value - least_) / (largest_ - least_), 0.0, 1.0);
    const double position = (light_ == Light::Low ? share : 1 - share) * static_cast<double>(Stops.size() - 1);
    const auto stop = std::min(static_cast<std::size_t>(position), Stops.size() - 2);
    return Mixed(Stops[stop], Stops[stop + 1], position - static_cast<double>(stop));
}

std::vector<double> ColourScale::Contours() const
{
    std::vector<double> contours;
    for (double i = std::ceil(least_ / step_ - 1e-9); i * step_ <= largest_ + 1e-9 * step_; ++i) contours.push_back(i * step_);
    return contours;
}

std::int64_t ColourScale::Band(double value) const { return static_cast<std::int64_t>(std::floor(value / step_)); }

} // namespace brix::tools
