// How a command tells what it does: lines on standard output for people, or one JSON object for programs; and the two kinds of
// failure. There is one report in the process, as there is one standard output.
#pragma once

#include "Text.h"

#include <array>
#include <chrono>
#include <concepts>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace CLI {
class App;
}

namespace brix::tools {

/// The command line is wrong: the program ends with ExitUsage instead of ExitFailure.
class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

/// A file that was to be checked cannot be read: the program ends with the same code.
class UnreadableInput : public UsageError
{
public:
    using UsageError::UsageError;
};

enum ExitCode
{
    ExitDone = 0,
    ExitFailure = 1,
    ExitUsage = 2
};

/// What a program that reads the report may want to know: names and values, in the order in which they are told.
struct Fact
{
    Fact(bool isTrue) : value(isTrue) {}
    template <std::integral Number> Fact(Number number) : value(static_cast<std::int64_t>(number)) {}
    template <class Value>
    requires(!std::integral<Value>) Fact(const Value& given) : value(given) {}

    std::variant<bool, std::int64_t, double, std::string, std::array<std::int64_t, 3>, std::array<double, 3>> value;
};
using Facts = std::vector<std::pair<const char*, Fact>>;

/// Adds --quiet, --verbose and --json to a command.
void AddReportOptions(CLI::App& command);

/// Tells a step that is done: a line with the step's name in a column of its own, then what it gave; and its facts.
void PrintStep(const std::string& step, const std::string& result, const Facts& facts = {});

/// The same for what only people who look closely want: the line is printed with --verbose only.
void PrintDetail(const std::string& step, const std::string& result, const Facts& facts = {});

/// Tells where a box lies: the steps lower, upper and size.
void PrintBounds(const std::array<double, 3>& lower, const std::array<double, 3>& upper);

/// Tells on standard error what may not have been meant.
void Warn(const std::string& sentence);

/// Tells a file that was written, with its size.
void ReportFile(const std::filesystem::path& filePath, const Facts& facts = {});

/// From here on, the report goes to standard error: standard output belongs to a file that is written there.
void GiveStandardOutputAway();

/// Whether progress is worth showing.
bool IsQuiet();

/// What the program ends with when nothing fails: ExitDone, unless a command has something else to say.
void EndWith(ExitCode code);
ExitCode EndsWith();

/// Ends the report of a command. With an empty `error` it is one that did what it was told.
void FinishReport(const std::string& command, ExitCode code, const std::string& error);

/// Seconds since the watch was made.
class Stopwatch
{
public:
    double Seconds() const;
    std::string Text() const; // as in "(0.012 s)"

private:
    std::chrono::steady_clock::time_point start_ = std::chrono::steady_clock::now();
};

} // namespace brix::tools
