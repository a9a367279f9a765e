#include "PathText.h"

#include <array>
#include <cstdio>
#include <string_view>

namespace brix {
namespace {

constexpr char32_t Replacement = 0xFFFD;

// Takes a character off a text of UTF-16 units; a surrogate without its partner is no character.
[[maybe_unused]] char32_t TakeCharacter(std::wstring_view& text)
{
    const auto isIn = [](char32_t unit, char32_t first) { return unit >= first && unit < first + 0x400; };
    const auto first = static_cast<char32_t>(text[0]);
    const auto second = static_cast<char32_t>(text.size() > 1 ? text[1] : 0);
    const bool isPair = isIn(first, 0xD800) && isIn(second, 0xDC00);
    text.remove_prefix(isPair ? 2 : 1);
    if (isPair) return 0x10000 + ((first - 0xD800) << 10) + (second - 0xDC00);
    return isIn(first, 0xD800) || isIn(first, 0xDC00) ? Replacement : first;
}

// Takes a character off a text of bytes that should be UTF-8. Of a sequence that is cut off, too long or beyond Unicode, the
// first byte is taken.
[[maybe_unused]] char32_t TakeCharacter(std::string_view& text)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(0);
    const std::size_t length = first < 0x80 ? 1 : first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : first < 0xF5 ? 4 : 0;
    char32_t character = length < 2 ? first : first & (0x7FU >> length);
    bool isValid = length >= 1 && length <= text.size();
    for (std::size_t i = 1; isValid && i < length; ++i) {
        isValid = (byte(i) & 0xC0) == 0x80;
        character = character << 6 | (byte(i) & 0x3FU);
    }
    constexpr std::array<char32_t, 5> least{0, 0, 0x80, 0x800, 0x10000};
    isValid = isValid && character >= least[length] && character <= 0x10FFFF && (character < 0xD800 || character > 0xDFFF);
    text.remove_prefix(isValid ? length : 1);
    return isValid ? character : Replacement;
}

// Controls, and what breaks lines or turns the direction of text.
bool IsControl(char32_t character)
{
    return character < 0x20 || (character >= 0x7F && character < 0xA0) || character == 0x200E || character == 0x200F ||
           (character >= 0x2028 && character <= 0x202E) || (character >= 0x2066 && character <= 0x2069);
}

void Append(std::string& text, char32_t character)
{
    const auto put = [&](char32_t byte) { text.push_back(static_cast<char>(static_cast<unsigned char>(byte))); };
    if (IsControl(character)) {
        std::array<char, 16> escape;
        std::snprintf(escape.data(), escape.size(), character < 0x100 ? "\\x%02x" : "\\u%04x", static_cast<unsigned>(character));
        text += escape.data();
    } else if (character < 0x80) {
        put(character);
    } else if (character < 0x800) {
        put(0xC0 | character >> 6), put(0x80 | (character & 0x3F));
    } else if (character < 0x10000) {
        put(0xE0 | character >> 12), put(0x80 | (character >> 6 & 0x3F)), put(0x80 | (character & 0x3F));
    } else {
        put(0xF0 | character >> 18), put(0x80 | (character >> 12 & 0x3F)), put(0x80 | (character >> 6 & 0x3F));
        put(0x80 | (character & 0x3F));
    }
}

} // namespace

std::string PathText(const std::filesystem::path& path)
{
    std::string text;
    using Text = std::basic_string_view<std::filesystem::path::value_type>;
    for (Text rest(path.native()); !rest.empty();) Append(text, TakeCharacter(rest));
    return text;
}

std::string LineText(std::string_view bytes, std::size_t most)
{
    std::string text;
    for (std::string_view rest = bytes.substr(0, most); !rest.empty();) Append(text, TakeCharacter(rest));
    return bytes.size() > most ? text + "..." : text;
}

} // namespace brix
