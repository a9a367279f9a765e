// Argument checks, and the only place where the sentences of argument errors are built. Each check throws std::domain_error; the
// caller passes the phrase that names the quantity, so that a search for a message finds the operation that raises it.
#pragma once

#include "Lattice.h"

#include <string_view>

namespace brix {

[[noreturn]] void ThrowNegative(std::string_view quantity, std::int64_t value);
[[noreturn]] void ThrowBelow(std::string_view quantity, std::int64_t least, std::int64_t value);
[[noreturn]] void ThrowNotLess(std::string_view quantity, std::int64_t limit, std::int64_t value);
[[noreturn]] void ThrowBeyondFinest(std::string_view quantity, std::int64_t finestLOD, std::int64_t value);

/// quantity " cannot be negative. The value encountered was " value "."
inline void RequireNotNegative(std::string_view quantity, std::int64_t value)
{
    if (value < 0) ThrowNegative(quantity, value);
}

/// quantity " cannot be less than " least ". The value encountered was " value "."
inline void RequireAtLeast(std::string_view quantity, std::int64_t least, std::int64_t value)
{
    if (value < least) ThrowBelow(quantity, least, value);
}

/// quantity " must be less than " limit ". The value encountered was " value "."
inline void RequireLessThan(std::string_view quantity, std::int64_t limit, std::int64_t value)
{
    if (value >= limit) ThrowNotLess(quantity, limit, value);
}

/// The same sentences for numbers that need not be whole. NaN fails each check.
/// quantity " must be greater than " limit ". The value encountered was " value "."
void RequireNumberAbove(std::string_view quantity, std::int64_t limit, double value);
/// quantity " cannot be less than " least ". The value encountered was " value "."
void RequireNumberAtLeast(std::string_view quantity, std::int64_t least, double value);
/// quantity " must be less than " limit ". The value encountered was " value "."
void RequireNumberBelow(std::string_view quantity, std::int64_t limit, double value);
/// quantity " cannot be greater than " limit ". The value encountered was " value "."
void RequireNumberAtMost(std::string_view quantity, std::int64_t limit, double value);

/// A level of detail that exists at all: not negative, then less than LevelCount.
inline void RequireLevel(std::string_view quantity, std::int64_t value)
{
    RequireNotNegative(quantity, value);
    RequireLessThan(quantity, LevelCount, value);
}

/// A level of detail that a model holds: not negative, then not beyond the model's finest level.
inline void RequireLevelOf(std::int64_t finestLOD, std::string_view quantity, std::int64_t value)
{
    RequireNotNegative(quantity, value);
    if (value > finestLOD) ThrowBeyondFinest(quantity, finestLOD, value);
}

/// Throws std::domain_error with the sentence when the condition does not hold.
void Require(bool condition, const char* sentence);

} // namespace brix
