#include "triangles/TextNumbers.h"

#include "support/NumbersByStream.h"
#include "support/Pieces.h"

#include <gtest/gtest.h>

#include <limits>

namespace brix {
namespace {

using namespace tests;

/// Digits, mostly; or anything that is, or looks like, part of a number.
std::string RandomNumberText(Random& random)
{
    constexpr const char* pieces =
        "e|E|e+|e-|-|+|.|0|00000|1| |\r|\t \v\f|,|x|0x1p3|inf|nan|e308|e-324|e99999999|9007199254740993|"
        "179769313486231580793|e22|d|\xA0|_|0000000001";
    std::string text;
    const auto addDigits = [&](std::int64_t most) {
        for (std::int64_t i = random.Between(0, most); i > 0; --i) text += static_cast<char>('0' + random.Between(0, 9));
    };
    if (random.OneIn(2)) { // a plain decimal
        if (random.OneIn(2)) text += '-';
        addDigits(random.OneIn(4) ? 25 : 6);
        text += '.';
        addDigits(random.OneIn(4) ? 25 : 6);
        if (random.OneIn(3)) text += "e" + std::to_string(random.Between(-330, 330));
        return text + ' ';
    }
    for (std::int64_t i = random.Between(1, 6); i > 0; --i) {
        if (random.OneIn(3))
            addDigits(6);
        else
            text += OneOf(random, pieces);
    }
    return text;
}

TEST(TakeNumber, TakesWhatTheStreamTakes)
{
    Random random(1);
    for (int i = 0; i < 100'000; ++i) {
        std::string line;
        for (int part = 0; part < 3; ++part) line += RandomNumberText(random);
        if (random.OneIn(50)) line.insert(0, 1, '\0');
        ASSERT_EQ(ReadByHand(line), ReadByStream(line)) << '"' << line << '"';
    }
}

TEST(TakeNumber, TakesNumbersOfAnyLength)
{
    const std::string zeros(5000, '0');
    for (const std::string& line :
         {zeros + "1.5 2", "0." + zeros + "25 2", "1" + zeros + " 2", "-1" + zeros + " 2", "0." + zeros + "1e5001 2",
          "1" + zeros + "e-5000 2", "1e" + zeros + "3 2", "1e-" + zeros + "3 2", "1e1" + zeros, "-1e-1" + zeros + " 2"})
        EXPECT_EQ(ReadByHand(line), ReadByStream(line)) << line.substr(0, 5) << "... of " << line.size() << " characters";
}

TEST(WriteNumber, WritesWhatTheStreamWrites)
{
    Random random(2);
    for (int i = 0; i < 100'000; ++i) {
        const double anything = std::bit_cast<double>(random.Bits());
        const double digits = static_cast<double>(random.Between(-9'999'999, 9'999'999));
        const double decimal = digits / exactPowersOfTen[static_cast<std::size_t>(random.Between(0, 12))];
        for (const double number : {anything, digits, decimal, std::nextafter(decimal, 0), digits / 1024, digits * anything})
            ASSERT_EQ(WrittenByHand(number), WrittenByStream(number));
    }
}

TEST(WriteNumber, WritesWhatTheStreamWritesAtTheEdges)
{
    using Limits = std::numeric_limits<double>;
    std::vector<double> numbers{0, Limits::max(), Limits::min(), Limits::denorm_min(), Limits::infinity(), Limits::quiet_NaN()};
    for (double power = 1e-8; power < 1e9; power *= 10)
        for (const double digits : {1.0, 1.5, 9.99999, 9.999994999, 9.999995, 9.999995001, 1.000005, 1.2345650, 1.234575})
            for (const double direction : {0.0, 1e300})
                numbers.insert(numbers.end(), {digits * power, std::nextafter(digits * power, direction)});
    for (const double number : numbers)
        for (const double signedNumber : {number, -number}) EXPECT_EQ(WrittenByHand(signedNumber), WrittenByStream(signedNumber));
}

} // namespace
} // namespace brix
