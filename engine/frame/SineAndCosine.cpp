#include "SineAndCosine.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

// Degrees are reduced to 0..45 without error, radians with as many digits of pi as that takes, and the series are summed in fixed
// point. What comes out is off by less than a bound. When all that lies within the bound rounds to one double, that double is
// right; otherwise more digits decide (after Ziv, "Fast evaluation of elementary mathematical functions with correctly rounded
// last bit", 1991). That ends: a double is a rational number of degrees, whose sine is 0, +-1/2, +-1 or irrational (Niven), and
// so never halfway between two doubles; the sine of a rational number of radians is transcendental, but for 0 (Lindemann).
namespace brix {
namespace {

/// A number from 0 to less than 2^32: a whole part, and digits of 32 bits behind the point. Operations cut off what has no room.
class Fixed
{
public:
    Fixed(std::size_t digits, std::uint32_t whole) : words_(1 + digits) { words_[0] = whole; }

    /// A multiple of 2^-64 that is less than 1.
    static Fixed Fraction(std::size_t digits, std::uint64_t times2To64)
    {
        Fixed fraction(digits, 0);
        fraction.words_[1] = static_cast<std::uint32_t>(times2To64 >> 32);
        fraction.words_[2] = static_cast<std::uint32_t>(times2To64);
        return fraction;
    }

    std::size_t Digits() const { return words_.size() - 1; }

    bool IsZero() const
    {
        for (const std::uint32_t word : words_) {
            if (word != 0) return false;
        }
        return true;
    }

    Fixed& operator+=(const Fixed& other)
    {
        std::uint64_t sum = 0;
        for (std::size_t i = words_.size(); i-- > 0; sum >>= 32) {
            sum += std::uint64_t{words_[i]} + other.words_[i];
            words_[i] = static_cast<std::uint32_t>(sum);
        }
        return *this;
    }

    /// `other` is not larger.
    Fixed& operator-=(const Fixed& other)
    {
        std::int64_t difference = 0;
        for (std::size_t i = words_.size(); i-- > 0; difference >>= 32) {
            difference += std::int64_t{words_[i]} - other.words_[i];
            words_[i] = static_cast<std::uint32_t>(difference);
        }
        return *this;
    }

    Fixed& operator/=(std::uint32_t divisor)
    {
        std::uint64_t rest = 0;
        for (std::uint32_t& word : words_) {
            rest = rest << 32 | word;
            word = static_cast<std::uint32_t>(rest / divisor);
            rest %= divisor;
        }
        return *this;
    }

    // By rows, the last digit of `a` first; where a row ends, its carry finds a word that nothing was added to. Products that lie
    // behind the last digit are left out: less than 2^32 units of it for each of a's words.
    friend Fixed operator*(const Fixed& a, const Fixed& b)
    {
        const std::size_t digits = a.Digits();
        Fixed product(digits, 0);
        for (std::size_t i = digits + 1; i-- > 0;) {
            std::uint64_t carry = 0;
            for (std::size_t k = digits - i + 1; k-- > 0; carry >>= 32) {
                carry += std::uint64_t{a.words_[i]} * b.words_[k] + product.words_[i + k];
                product.words_[i + k] = static_cast<std::uint32_t>(carry);
            }
            if (i > 0) product.words_[i - 1] = static_cast<std::uint32_t>(carry);
        }
        return product;
    }

    friend bool operator>=(const Fixed& a, const Fixed& b) { return a.words_ >= b.words_; }

    /// With fewer digits.
    Fixed WithDigits(std::size_t digits) const
    {
        Fixed cut = *this;
        cut.words_.resize(1 + digits);
        return cut;
    }

    /// Times 2^exponent.
    Fixed Scaled(int exponent) const
    {
        Fixed scaled = *this;
        for (; exponent > 0; --exponent) scaled += scaled;
        for (; exponent <= -31 && !scaled.IsZero(); exponent += 31) scaled /= 1u << 31;
        if (exponent < 0) scaled /= 1u << -std::max(exponent, -31);
        return scaled;
    }

    /// floor(this * 2^exponent) of a number less than 2, for exponents up to 62.
    std::uint64_t WholePartTimes2To(int exponent) const
    {
        if (exponent <= 0) return exponent == 0 ? words_[0] : 0;
        const std::uint64_t fraction = std::uint64_t{words_[1]} << 32 | words_[2];
        return std::uint64_t{words_[0]} << exponent | fraction >> (64 - exponent);
    }

    /// More than what the functions below are off by: they make less than 2^32 errors, each of less than 2^32 units of the last
    /// digit.
    Fixed Bound() const
    {
        Fixed bound(Digits(), 0);
        bound.words_[Digits() - 2] = 1;
        return bound;
    }

private:
    std::vector<std::uint32_t> words_; // the largest first
};

// 1 / n - 1 / 3n^3 + 1 / 5n^5 - ..
Fixed ArcTangentOfReciprocal(std::size_t digits, std::uint32_t n)
{
    Fixed power(digits, 1);
    power /= n;
    Fixed sum = power;
    for (std::uint32_t k = 3; !power.IsZero(); k += 2) {
        power /= n * n;
        Fixed term = power;
        term /= k;
        k % 4 == 3 ? sum -= term : sum += term;
    }
    return sum;
}

// pi = 16 arctan(1/5) - 4 arctan(1/239) (Machin).
Fixed RadiansPerDegree(std::size_t digits)
{
    Fixed pi = ArcTangentOfReciprocal(digits, 5).Scaled(4);
    pi -= ArcTangentOfReciprocal(digits, 239).Scaled(2);
    return pi /= 180;
}

// 1 - square / (first + 1)(first + 2) + square^2 / (first + 1)(first + 2)(first + 3)(first + 4) - ..: the cosine of a root of the
// square for 0, its sine divided by the root for 1. The square is less than 1.
Fixed Series(const Fixed& square, std::uint32_t first)
{
    Fixed sum(square.Digits(), 1);
    Fixed term = sum;
    for (std::uint32_t k = first + 2; !term.IsZero(); k += 2) {
        term = term * square;
        term /= (k - 1) * k;
        (k - first) % 4 == 2 ? sum -= term : sum += term;
    }
    return sum;
}

// The double nearest to number * 2^exponent, where the number is 2^-8 to 1.
double Nearest(const Fixed& number, int exponent)
{
    const int width = static_cast<int>(std::bit_width(number.WholePartTimes2To(61))) - 61;
    const int bits = std::min(53 - width, 1074 + exponent); // behind the point; the smallest double is 2^-1074
    return std::ldexp(static_cast<double>((number.WholePartTimes2To(bits + 1) + 1) / 2), exponent - bits);
}

// The same as double, if it is certain.
bool IsCertain(const Fixed& number, int exponent, double& nearest)
{
    Fixed lower = number, upper = number;
    lower -= number.Bound();
    upper += number.Bound();
    nearest = Nearest(lower, exponent);
    return nearest == Nearest(upper, exponent);
}

// An angle of more than 0, up to 45 degrees: radians * 2^exponent. So it keeps its digits however small it is.
struct ScaledAngle
{
    Fixed radians;
    int exponent;
};

// Both functions of the angle that angleWith(digits) gives with so many digits.
template <class AngleWith> SineAndCosine OfFirstOctant(const AngleWith& angleWith)
{
    for (std::size_t digits = 4;; digits *= 2) {
        const ScaledAngle scaled = angleWith(digits);
        const Fixed angle = scaled.radians.Scaled(scaled.exponent);
        const Fixed square = angle * angle;
        SineAndCosine result;
        if (IsCertain(scaled.radians * Series(square, 1), scaled.exponent, result.sine) &&
            IsCertain(Series(square, 0), 0, result.cosine))
            return result;
    }
}

// A positive double as a multiple of 2^-64 from 1/2 to 1, and an exponent.
std::uint64_t FractionOf(double number, int& exponent)
{
    return static_cast<std::uint64_t>(std::ldexp(std::frexp(number, &exponent), 64));
}

// Of more than 0, up to 45.
SineAndCosine OfFirstOctantInDegrees(double degrees)
{
    int exponent = 0;
    const std::uint64_t fraction = FractionOf(degrees, exponent);
    return OfFirstOctant([&](std::size_t digits) {
        return ScaledAngle{Fixed::Fraction(digits, fraction) * RadiansPerDegree(digits), exponent};
    });
}

// Radians modulo a quarter of a turn, and how many quarters they hold modulo 4. What lies beyond an eighth is told from the next
// quarter back.
struct ReducedRadians
{
    ScaledAngle angle;
    unsigned quarters;
    bool isFromNext;
};

// Doubling the fraction of the number step by step, with a quarter taken off whenever there is one. Every step doubles the error,
// so that there are as many more bits as steps; and some more words, as what is left of a double may be as little as 2^-62
// (Muller, "Elementary Functions", on worst cases of range reduction).
ReducedRadians Reduced(double radians, std::size_t digits)
{
    int exponent = 0;
    const std::uint64_t fraction = FractionOf(radians, exponent);
    const std::size_t more = digits + 6 + static_cast<std::size_t>(std::max(exponent, 0)) / 32;
    if (exponent < 0) return {{Fixed::Fraction(digits, fraction), exponent}, 0, false}; // less than 1/2
    Fixed quarter = RadiansPerDegree(more);
    quarter = quarter * Fixed(more, 90);
    Fixed rest = Fixed::Fraction(more, fraction);
    unsigned quarters = 0;
    for (int step = 0; step < exponent; ++step) {
        rest += rest;
        quarters *= 2;
        for (; rest >= quarter; ++quarters) rest -= quarter;
    }
    Fixed other = quarter;
    other -= rest;
    const bool isFromNext = rest >= other;
    if (isFromNext) rest = other;
    int shift = 0;
    for (; rest.WholePartTimes2To(1) == 0 && shift < 96; ++shift) rest += rest;
    return {{rest.WithDigits(digits), -shift}, quarters % 4, isFromNext};
}

// Of 0 to 90; 90 - x has no rounding error from 45 on.
SineAndCosine OfFirstQuadrant(double degrees)
{
    if (degrees == 0) return {0, 1};
    if (degrees <= 45) return OfFirstOctantInDegrees(degrees);
    const auto [cosine, sine] = degrees == 90 ? SineAndCosine{0, 1} : OfFirstOctantInDegrees(90 - degrees);
    return {sine, cosine};
}

} // namespace

SineAndCosine SineAndCosineOfDegrees(double degrees)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    if (!std::isfinite(degrees)) return {nan, nan};
    const double turned = std::fmod(std::abs(degrees), 360); // exact, as is each difference below
    const double half = turned > 180 ? 360 - turned : turned;
    auto [sine, cosine] = OfFirstQuadrant(half > 90 ? 180 - half : half);
    if (half > 90) cosine = -cosine;
    return {std::copysign(sine, (turned > 180) == (degrees < 0) ? 1.0 : -1.0), cosine};
}

SineAndCosine SineAndCosineOfRadians(double radians)
{
    constexpr double nan = std::numeric_limits<double>::quiet_NaN();
    if (!std::isfinite(radians)) return {nan, nan};
    if (radians == 0) return {radians, 1};
    const ReducedRadians turned = Reduced(std::abs(radians), 4); // the same quarter with any number of digits
    const auto [sine, cosine] = OfFirstOctant([&](std::size_t digits) { return Reduced(std::abs(radians), digits).angle; });
    const SineAndCosine inQuarter = turned.isFromNext ? SineAndCosine{cosine, sine} : SineAndCosine{sine, cosine};
    const auto [y, x] = turned.quarters % 2 == 0 ? inQuarter : SineAndCosine{inQuarter.cosine, inQuarter.sine};
    const bool isLower = turned.quarters >= 2;
    const bool isLeft = turned.quarters == 1 || turned.quarters == 2;
    return {isLower != (radians < 0) ? -y : y, isLeft ? -x : x};
}

} // namespace brix
