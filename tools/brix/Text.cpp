#include "Text.h"

#include <cmath>
#include <iomanip>
#include <sstream>
#include <system_error>

namespace brix::tools {

std::string Text(double number)
{
    std::ostringstream text;
    text << std::setprecision(7) << number;
    return text.str();
}

std::string BytesText(double bytes)
{
    static constexpr std::array<const char*, 5> units{" bytes", " KB", " MB", " GB", " TB"};
    std::size_t unit = 0;
    for (; bytes >= 1000 && unit + 1 < units.size(); ++unit) bytes /= 1000;
    std::ostringstream text;
    text << std::setprecision(3) << bytes << units[unit];
    return text.str();
}

double RoundedUp(double number)
{
    if (!(number > 0) || !std::isfinite(number)) return number;
    const double unit = std::pow(10, std::floor(std::log10(number)) - 1);
    return std::ceil(number / unit - 1e-9) * unit;
}

namespace {

unsigned Byte(std::string_view text, std::size_t at) { return at < text.size() ? static_cast<unsigned char>(text[at]) : 0; }

// The number of bytes of the character that starts there and may be shown; 0 when it may not. Of UTF-8 it wants the shortest
// form, no surrogates, nothing beyond U+10FFFF; and no control characters: U+0000 to U+001F, U+007F to U+009F.
std::size_t ShownLength(std::string_view text, std::size_t at)
{
    const unsigned first = Byte(text, at);
    if (first < 0x80) return first >= 0x20 && first != 0x7f ? 1 : 0;
    const std::size_t length = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
    unsigned character = first & (0xffU >> (length + 1));
    for (std::size_t k = 1; k < length; ++k) {
        if ((Byte(text, at + k) & 0xc0) != 0x80) return 0;
        character = character << 6 | (Byte(text, at + k) & 0x3f);
    }
    static constexpr std::array<unsigned, 5> least{0, 0, 0xa0, 0x800, 0x10000};
    const bool isCharacter = character >= least[length] && character <= 0x10ffff && (character < 0xd800 || character > 0xdfff);
    return first >= 0xc2 && first <= 0xf4 && isCharacter ? length : 0;
}

} // namespace

std::string Printable(std::string_view text)
{
    std::string shown;
    for (std::size_t at = 0; at < text.size();) {
        if (const std::size_t length = ShownLength(text, at)) {
            shown += text.substr(at, length);
            at += length;
        } else {
            static constexpr std::string_view digits = "0123456789abcdef";
            const unsigned byte = Byte(text, at++);
            shown += {'\\', 'x', digits[byte >> 4], digits[byte & 15]};
        }
    }
    return shown;
}

std::string SystemReason(int error) { return std::generic_category().message(error); }

} // namespace brix::tools
