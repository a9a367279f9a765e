// Distances as colours: a scale that is evenly spaced to the eye, lightest near by, with contour lines, and its legend.
#pragma once

#include "SlicePicture.h"

namespace brix::tools {

class ColourScale
{
public:
    /// For values from 0 to `largest`; contours at 1, 2 or 5 times a power of ten, ten or fewer of them.
    explicit ColourScale(double largest);

    /// The colour of a value.
    Colour At(double value) const;

    double ContourStep() const { return step_; }

    /// The number of the contour band that a value lies in.
    std::int64_t Band(double value) const;

    /// A bar of that width with the values at its contours below it.
    Picture Legend(std::int64_t width) const;

private:
    double largest_;
    double step_;
};

/// A colour mixed from two: `share` (0..1) of the second.
Colour Mixed(Colour a, Colour b, double share);

/// Draws digits, '.' and 'm', each 3 x 5 squares of `scale` pixels, the upper left corner of the text at (x, y). Returns its width.
std::int64_t DrawText(Picture& picture, const std::string& text, std::int64_t x, std::int64_t y, std::int64_t scale,
                      Colour colour);

} // namespace brix::tools
