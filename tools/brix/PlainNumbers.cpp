#include "PlainNumbers.h"

#include <CLI/CLI.hpp>

#include <charconv>
#include <cmath>

namespace brix::tools {
namespace {

bool TakesNumbers(const CLI::Option& option)
{
    const std::string type = option.get_type_name();
    return option.get_items_expected_max() > 0 && !type.empty() && type.find_first_of(".=|{") == std::string::npos &&
           type.find("TEXT") == std::string::npos && type.find("STEP") == std::string::npos && type != "UNIT";
}

bool IsWhole(const std::string& text)
{
    return text.find_first_not_of("0123456789", text[0] == '-' ? 1 : 0) == std::string::npos;
}

template <class Number> bool IsReadAs(const std::string& text, Number& number)
{
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && stop == end;
}

// Empty for a number that means what it says.
std::string WhyNotPlain(const std::string& text)
{
    double number = 0;
    std::int64_t whole = 0;
    std::uint64_t unsignedWhole = 0;
    const bool isNumber = !text.empty() && IsReadAs(text, number) && std::isfinite(number);
    if (!isNumber) return '"' + text + "\" is not a finite number.";
    if (IsWhole(text) && !IsReadAs(text, whole) && !IsReadAs(text, unsignedWhole)) return '"' + text + "\" does not fit 64 bits.";
    return "";
}

} // namespace

void RequirePlainNumbers(CLI::App& command)
{
    for (CLI::Option* const option : command.get_options())
        if (TakesNumbers(*option)) option->check(CLI::Validator([](std::string& text) { return WhyNotPlain(text); }, ""));
}

} // namespace brix::tools
