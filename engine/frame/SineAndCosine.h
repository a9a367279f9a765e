// Sine and cosine, the same on every machine.
#pragma once

namespace brix {

struct SineAndCosine
{
    double sine;
    double cosine;
};

/// Both are correctly rounded: the doubles nearest to the sine and the cosine of exactly this many degrees. So they are exact at
/// multiples of 90, and wherever else a sine or cosine of rational degrees is rational (0, +-1/2 and +-1); sine(-x) is -sine(x),
/// the zeros included, sine(180 - x) is sine(x), and sine(90 - x) is cosine(x), where those differences are exact. Infinite
/// angles and NaN give NaN. Cost: about 2 us; next to nothing at multiples of 90.
SineAndCosine SineAndCosineOfDegrees(double degrees);

/// The doubles nearest to the sine and the cosine of exactly this many radians. Infinite angles and NaN give NaN. Cost: as above,
/// more for angles of many turns.
SineAndCosine SineAndCosineOfRadians(double radians);

} // namespace brix
