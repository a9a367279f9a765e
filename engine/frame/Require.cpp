#include "Require.h"

#include <stdexcept>
#include <string>

namespace brix {
namespace {

[[noreturn]] void Throw(std::string_view quantity, std::string_view rule, std::int64_t value, const std::string& addition = ".")
{
    throw std::domain_error(std::string(quantity).append(rule) + ". The value encountered was " + std::to_string(value) +
                            addition);
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

void Require(bool condition, const char* sentence)
{
    if (!condition) throw std::domain_error(sentence);
}

} // namespace brix
