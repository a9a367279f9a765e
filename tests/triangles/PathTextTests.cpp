#include "triangles/PathText.h"

#include "support/Random.h"

#include <gtest/gtest.h>

#include <array>
#include <utility>

#ifndef _WIN32 // where a path is any string of bytes
namespace brix {
namespace {

// What stands for the pieces of a name, whatever their neighbours are.
constexpr std::array<std::pair<std::string_view, std::string_view>, 14> Pieces{{
    {"/b \"x\\", "/b \"x\\"},
    {"\u00e9\u0100\u20ac", "\u00e9\u0100\u20ac"},
    {"\U0001F3E0\U0010FFFF", "\U0001F3E0\U0010FFFF"},
    {"\x1b[31m", "\\x1b[31m"},
    {"\n\x7f", "\\x0a\\x7f"},
    {"\xc2\x9b", "\\x9b"},                                      // the same as escape and [, in one character
    {"\xe2\x80\xae", "\\u202e"},                                // turns the direction of what follows
    {"\x80", "\ufffd"},                                         // goes on with nothing
    {"\xe9t\xe9.", "\ufffdt\ufffd."},                           // Latin-1
    {"\xe2\x82Z", "\ufffd\ufffdZ"},                             // cut off
    {"\xc0\xaf", "\ufffd\ufffd"},                               // too long for '/'
    {"\xe0\x9f\xbf", "\ufffd\ufffd\ufffd"},                     // too long
    {"\xed\xa0\x80", "\ufffd\ufffd\ufffd"},                     // half of a surrogate pair
    {"\xf4\x90\x80\x80\xff", "\ufffd\ufffd\ufffd\ufffd\ufffd"}, // beyond Unicode
}};

TEST(PathText, IsUtf8WithoutControlCharactersWhateverTheBytesOfThePath)
{
    for (std::uint64_t seed = 0; seed < 500; ++seed) {
        tests::Random random(seed);
        std::string bytes;
        std::string expected;
        for (std::int64_t i = random.Between(0, 8); i > 0; --i) {
            const auto& piece = Pieces[static_cast<std::size_t>(random.Between(0, Pieces.size() - 1))];
            bytes += piece.first;
            expected += piece.second;
        }
        ASSERT_EQ(PathText(bytes), expected) << "seed " << seed;
    }
    EXPECT_EQ(PathText(std::string("a\0b", 3)), "a\\x00b");
    EXPECT_EQ(PathText("cut \xf0\x9f\x8f"), "cut \ufffd\ufffd\ufffd");
}

} // namespace
} // namespace brix
#endif
