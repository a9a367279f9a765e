// Numbers as colours: a scale that is evenly spaced to the eye, with contours at round numbers. Lightness alone tells the order,
// so it reads in black and white and to people who see red and green alike.
#pragma once

#include "Canvas.h"

#include <string>
#include <vector>

namespace brix::tools {

/// 1, 2 or 5 times a power of ten, the smallest that is not below a positive number.
double RoundStep(double least);

/// Which end of the scale is light.
enum class Light
{
    Low,
    High
};

class ColourScale
{
public:
    /// For values from `least` to `largest`; ten contours or fewer.
    ColourScale(double least, double largest, Light light);

    Colour At(double value) const;

    double Least() const { return least_; }
    double Largest() const { return largest_; }
    double ContourStep() const { return step_; }

    /// The multiples of the step that lie on the scale.
    std::vector<double> Contours() const;

    /// The number of the contour band that a value lies in.
    std::int64_t Band(double value) const;

private:
    double least_;
    double largest_;
    double step_;
    Light light_;
};

/// A colour mixed from two: `share` (0..1) of the second.
Colour Mixed(Colour a, Colour b, double share);

} // namespace brix::tools
