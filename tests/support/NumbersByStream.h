// Numbers as the standard streams read and write them in the "C" locale, beside the engine's own conversions. Tests and fuzzers
// compare the two.
#pragma once

#include "triangles/TextNumbers.h"

#include <vector>

namespace brix::tests {

/// What the first numbers of a line are, bit by bit, and whether reading went well until then.
using Reading = std::vector<std::pair<std::uint64_t, bool>>;

/// take(number) -> whether it went well
template <class Take> Reading ReadNumbers(const Take& take)
{
    Reading reading;
    do {
        double number = 7; // seen in the result when it is left alone
        const bool isNumber = take(number);
        reading.emplace_back(std::bit_cast<std::uint64_t>(number), isNumber);
    } while (reading.back().second && reading.size() < 4);
    return reading;
}

inline Reading ReadByStream(const std::string& line)
{
    std::istringstream stream(line);
    stream.imbue(std::locale::classic());
    return ReadNumbers([&](double& number) { return static_cast<bool>(stream >> number); });
}

inline Reading ReadByHand(std::string_view line)
{
    return ReadNumbers([&](double& number) { return TakeNumber(line, number); });
}

inline std::string WrittenByStream(double number)
{
    std::ostringstream stream;
    stream.imbue(std::locale::classic());
    stream << number;
    return stream.str();
}

inline std::string WrittenByHand(double number)
{
    std::array<char, maxNumberLength> text{};
    return {text.data(), WriteNumber(text.data(), number)};
}

} // namespace brix::tests
