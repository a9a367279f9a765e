#include "Require.h"

#include <charconv>
#include <cmath>
#include <stdexcept>
#include <string>

namespace brix {
namespace {

[[noreturn]] void Throw(std::string_view quantity, const std::string& rule, const std::string& value,
                        const std::string& addition = ".")
{
    throw std::domain_error(std::string(quantity) + rule + ". The value encountered was " + value + addition);
}

[[noreturn]] void Throw(std::string_view quantity, const std::string& rule, std::int64_t value, const std::string& addition = ".")
{
    Throw(quantity, rule, std::to_string(value), addition);
}

// The shortest digits that name the double, whatever the locale.
std::string ToText(double value)
{
    if (std::isnan(value)) return "NaN";
    std::array<char, 32> digits;
    return {digits.data(), std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr};
}

} // namespace

void ThrowNegative(std::string_view quantity, std::int64_t value) { Throw(quantity, " cannot be negative", value); }

void ThrowBelow(std::string_view quantity, std::int64_t least, std::int64_t value)
{
    Throw(quantity, " cannot be less than " + std::to_string(least), value);
}

void ThrowNotLess(std::string_view quantity, std::int64_t limit, std::int64_t value)
{
    Throw(quantity, " must be less than " + std::to_string(limit), value);
}

void ThrowBeyondFinest(std::string_view quantity, std::int64_t finestLOD, std::int64_t value)
{
    Throw(quantity, " must not exceed the finest level of detail in the voxel model", value,
          ". The finest level of detail in the voxel model is " + std::to_string(finestLOD) + ".");
}

void RequireNumberAbove(std::string_view quantity, std::int64_t limit, double value)
{
    if (!(value > static_cast<double>(limit))) Throw(quantity, " must be greater than " + std::to_string(limit), ToText(value));
}

void RequireNumberAtLeast(std::string_view quantity, std::int64_t least, double value)
{
    if (!(value >= static_cast<double>(least))) Throw(quantity, " cannot be less than " + std::to_string(least), ToText(value));
}

void RequireNumberBelow(std::string_view quantity, std::int64_t limit, double value)
{
    if (!(value < static_cast<double>(limit))) Throw(quantity, " must be less than " + std::to_string(limit), ToText(value));
}

void RequireNumberAtMost(std::string_view quantity, std::int64_t limit, double value)
{
    if (!(value <= static_cast<double>(limit)))
        Throw(quantity, " cannot be greater than " + std::to_string(limit), ToText(value));
}

void Require(bool condition, const char* sentence)
{
    if (!condition) throw std::domain_error(sentence);
}

} // namespace brix
