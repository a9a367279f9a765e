// Numbers as text, exactly as the standard streams read and write doubles in the "C" locale, without their cost. Short decimals,
// which are nearly all that files hold, take one correctly rounded operation; every other number takes the library's way.
#pragma once

#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <locale>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>

namespace brix {

/// The powers of ten that a double holds exactly.
inline constexpr std::array<double, 23> exactPowersOfTen{1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                                         1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};

/// White space of the "C" locale: tab, line feed, vertical tab, form feed, carriage return and space.
constexpr bool IsWhiteSpace(char character) { return character == ' ' || (character >= '\t' && character <= '\r'); }

constexpr bool IsDigit(char character) { return character >= '0' && character <= '9'; }

/// Removes leading white space from `text`, then the characters up to the next white space, and returns these.
inline std::string_view TakeToken(std::string_view& text)
{
    std::size_t first = 0;
    while (first < text.size() && IsWhiteSpace(text[first])) ++first;
    std::size_t end = first;
    while (end < text.size() && !IsWhiteSpace(text[end])) ++end;
    const std::string_view token = text.substr(first, end - first);
    text.remove_prefix(end);
    return token;
}

/// A number's characters, [sign] digits [. digits] [e [sign] digits], read as far as they go and summed up in passing.
struct Decimal
{
    std::string_view text;       // as it stands in the file
    std::uint64_t mantissa = 0;  // all digits as one integer; wraps after 19 of them
    std::int64_t exponent = 0;   // of ten, to be applied to `mantissa`; held when it becomes absurd
    std::int64_t digitCount = 0; // before the exponent
    bool isNegative = false;
    bool lacksExponentDigits = false;
};

/// Takes the longest start of `text` that can belong to a number, after white space.
inline Decimal TakeDecimal(std::string_view& text)
{
    const char* at = text.data();
    const char* const end = at + text.size();
    while (at != end && IsWhiteSpace(*at)) ++at;

    Decimal decimal;
    const char* const first = at;
    const auto takeDigits = [&] {
        const char* const firstDigit = at;
        for (; at != end && IsDigit(*at); ++at) decimal.mantissa = decimal.mantissa * 10 + static_cast<std::uint64_t>(*at - '0');
        return at - firstDigit;
    };
    const auto takeSign = [&] {
        const bool isMinus = at != end && *at == '-';
        if (at != end && (*at == '-' || *at == '+')) ++at;
        return isMinus;
    };

    decimal.isNegative = takeSign();
    decimal.digitCount = takeDigits();
    if (at != end && *at == '.') {
        ++at;
        decimal.exponent = -takeDigits();
        decimal.digitCount -= decimal.exponent;
    }
    if (decimal.digitCount > 0 && at != end && (*at == 'e' || *at == 'E')) {
        ++at;
        const bool isNegative = takeSign();
        decimal.lacksExponentDigits = at == end || !IsDigit(*at);
        std::int64_t exponent = 0;
        for (; at != end && IsDigit(*at); ++at)
            if (exponent < 1'000'000) exponent = exponent * 10 + (*at - '0');
        decimal.exponent += isNegative ? -exponent : exponent;
    }
    decimal.text = {first, static_cast<std::size_t>(at - first)};
    text.remove_prefix(static_cast<std::size_t>(at - text.data()));
    return decimal;
}

/// The value of a well-formed decimal of any length. Returns false, and the largest double, when no double is large enough.
inline bool ConvertLongDecimal(std::string_view text, double& number)
{
    // from_chars knows no plus sign, and gives up on exponents so large that only a longer text could make up for them.
    const char* const first = text.data() + (text.front() == '+' ? 1 : 0);
    const char* const end = text.data() + text.size();
    if (text.size() < 1000 && std::from_chars(first, end, number).ec == std::errc{}) return true;

    std::istringstream stream{std::string(text)}; // numbers that vanish or overflow get the stream's own values
    stream.imbue(std::locale::classic());
    return static_cast<bool>(stream >> number);
}

/// Takes one number from the start of `text`, as `stream >> number` would. Returns false where the stream would fail; `number` is
/// then what the stream leaves: unchanged at the end of the text, 0 for what is no number, the largest double for what exceeds
/// it.
inline bool TakeNumber(std::string_view& text, double& number)
{
    const Decimal decimal = TakeDecimal(text);
    if (decimal.digitCount == 0 || decimal.lacksExponentDigits) {
        if (!decimal.text.empty() || !text.empty()) number = 0;
        return false;
    }
    // Integer and power are doubles without error, so one operation gives the nearest double to the decimal.
    const bool isShort = decimal.digitCount <= 19 && decimal.mantissa <= std::uint64_t{1} << 53;
    if (!isShort || decimal.exponent < -22 || decimal.exponent > 22) return ConvertLongDecimal(decimal.text, number);
    const auto mantissa = static_cast<double>(decimal.mantissa);
    const double value = decimal.exponent < 0 ? mantissa / exactPowersOfTen[static_cast<std::size_t>(-decimal.exponent)]
                                              : mantissa * exactPowersOfTen[static_cast<std::size_t>(decimal.exponent)];
    number = decimal.isNegative ? -value : value;
    return true;
}

/// The most characters that WriteNumber writes, as in -1.23457e-308.
inline constexpr std::size_t maxNumberLength = 13;

/// Writes a number of six digits, digits x 10^(exponent - 5) with `exponent` from -4 to 5, without trailing zeros.
inline char* WriteSixDigits(char* to, std::uint32_t digits, int exponent)
{
    std::array<char, 6> text{};
    for (std::size_t i = text.size(); i-- > 0; digits /= 10) text[i] = static_cast<char>('0' + digits % 10);
    int length = 6;
    while (length > 1 && text[static_cast<std::size_t>(length - 1)] == '0') --length;

    int written = 0;
    const auto writeDigitsUntil = [&](int end) {
        for (; written < end; ++written) *to++ = written < length ? text[static_cast<std::size_t>(written)] : '0';
    };
    if (exponent < 0) *to++ = '0';
    writeDigitsUntil(exponent + 1);
    if (written < length) *to++ = '.';
    for (int zeros = -1; zeros > exponent; --zeros) *to++ = '0';
    writeDigitsUntil(length);
    return to;
}

/// Writes `number` at `to`, as `stream << number` would: six significant digits. Returns the end of the text.
inline char* WriteNumber(char* to, double number)
{
    if (std::signbit(number)) *to++ = '-';
    const double magnitude = std::abs(number);
    if (magnitude == 0) {
        *to++ = '0';
        return to;
    }
    if (magnitude >= 1e-4 && magnitude < 999999) {
        // log10(2) is 1233 / 4096 nearly: the decimal exponent, or one less.
        const int binaryExponent = static_cast<int>(std::bit_cast<std::uint64_t>(magnitude) >> 52) - 1023;
        int exponent = (binaryExponent * 1233) >> 12;
        double scaled = magnitude * exactPowersOfTen[static_cast<std::size_t>(5 - exponent)];
        if (scaled >= 1e6) scaled = magnitude * exactPowersOfTen[static_cast<std::size_t>(5 - ++exponent)];

        // The product is off by less than 1e-9, which decides nothing unless it lies that near to a half.
        const auto whole = static_cast<std::uint32_t>(scaled);
        const double fraction = scaled - whole;
        const std::uint32_t digits = whole + (fraction > 0.5 ? 1 : 0);
        if (std::abs(fraction - 0.5) > 1e-9)
            return digits < 1'000'000 ? WriteSixDigits(to, digits, exponent) : WriteSixDigits(to, 100'000, exponent + 1);
    }
    return std::to_chars(to, to + (maxNumberLength - 1), magnitude, std::chars_format::general, 6).ptr;
}

} // namespace brix
