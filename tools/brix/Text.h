// Numbers and names as text for people.
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace brix::tools {

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

/// A number rounded up to two significant digits, as a person would choose it.
double RoundedUp(double number);

/// Text that is safe to send to a terminal: control characters, and bytes that are no UTF-8, are spelt \x1b.
std::string Printable(std::string_view text);

/// A file's name in quotation marks, as it stands; Printable takes care of it where it is shown.
inline std::string Quoted(const std::filesystem::path& filePath) { return '"' + filePath.string() + '"'; }

/// The system's reason for the failure of its last call, or of the one with this number: "No such file or directory".
std::string SystemReason(int error);

} // namespace brix::tools
