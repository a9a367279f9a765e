// What the commands have in common: the two kinds of failure, numbers as text, and the time a step took.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace brix::tools {

/// The command line is wrong: the program ends with ExitUsage instead of ExitFailure.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

enum ExitCode
{
    ExitDone = 0,
    ExitFailure = 1,
    ExitUsage = 2
};

/// A number as text; of a floating-point number seven significant digits, as many as binary STL holds.
std::string Text(double number);
inline std::string Text(std::int64_t number) { return std::to_string(number); }

/// Three numbers with a separator, as in "17 x 13 x 6.8".
template <class Number> std::string Text(const std::array<Number, 3>& numbers, const std::string& separator)
{
    return Text(numbers[0]) + separator + Text(numbers[1]) + separator + Text(numbers[2]);
}

/// A number of bytes in a unit that leaves a readable number, as in "12.3 MB".
std::string BytesText(double bytes);

/// Seconds since the watch was made, as in "(0.012 s)".
class Stopwatch
{
public:
    std::string Text() const;

private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

/// Prints one line of a command's report to standard output: a step in a column of its own, then what it gave.
void PrintStep(const std::string& step, const std::string& result);

} // namespace brix::tools
