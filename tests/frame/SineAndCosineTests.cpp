#include "frame/SineAndCosine.h"

#include "support/Random.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <limits>

namespace brix {
namespace {

using tests::Random;

SineAndCosine At(double degrees) { return SineAndCosineOfDegrees(degrees); }

// Equal as bits: zeros have signs.
void ExpectSame(double actual, double expected, double degrees)
{
    EXPECT_EQ(std::bit_cast<std::uint64_t>(actual), std::bit_cast<std::uint64_t>(expected))
        << std::hexfloat << actual << " instead of " << expected << " at " << std::defaultfloat << degrees << " degrees";
}

// Whether a double is the nearest to a number that is known to about 2^-62 of itself.
bool IsNearest(double value, long double exact)
{
    const double unit = std::abs(std::nextafter(value, std::numeric_limits<double>::infinity()) - value);
    return std::abs(static_cast<long double>(value) - exact) <= static_cast<long double>(unit) * (0.5L + 0x1p-8L);
}

TEST(SineAndCosine, AreTheNearestDoubles)
{
    if (std::numeric_limits<long double>::digits < 64) GTEST_SKIP() << "long double is double";
    constexpr long double radiansPerDegree = 0.017453292519943295769236907684886127L;
    Random random(1);
    const auto check = [&](double degrees) {
        const auto [sine, cosine] = At(degrees);
        const bool isNear = IsNearest(sine, std::sin(static_cast<long double>(degrees) * radiansPerDegree)) &&
                            IsNearest(cosine, std::cos(static_cast<long double>(degrees) * radiansPerDegree));
        EXPECT_TRUE(isNear) << degrees << ": " << sine << ", " << cosine;
    };
    for (int i = -1800; i <= 1800; i += 7) check(i * 0.025);
    for (int i = 0; i < 2000; ++i) check(static_cast<double>(random.Between(-45'000'000, 45'000'000)) / 1e6);
    for (int i = 0; i < 300; ++i)
        check(std::ldexp(static_cast<double>(random.Bits() >> 11), static_cast<int>(random.Between(-900, -50))));
}

// Also of many turns, and near multiples of a quarter turn, where almost all digits cancel.
TEST(SineAndCosine, OfRadiansAreTheNearestDoubles)
{
    if (std::numeric_limits<long double>::digits < 64) GTEST_SKIP() << "long double is double";
    Random random(4);
    const auto check = [&](double radians) {
        const auto [sine, cosine] = SineAndCosineOfRadians(radians);
        const auto exact = static_cast<long double>(radians);
        EXPECT_TRUE(IsNearest(sine, std::sin(exact)) && IsNearest(cosine, std::cos(exact)))
            << radians << ": " << sine << ", " << cosine;
    };
    for (int i = -7200; i <= 7200; i += 11) check(i * 0.05 * 0.017453292519943295);
    for (int i = -400; i <= 400; ++i) check(i * 1.5707963267948966);
    for (int i = 0; i < 1500; ++i)
        check(std::ldexp(static_cast<double>(random.Bits() >> 11), static_cast<int>(random.Between(-120, 900))));
    ExpectSame(SineAndCosineOfRadians(0x1.921fb54442d18p+0).cosine, 0x1.1a62633145c07p-54, 90); // what pi / 2 lacks as a double
    ExpectSame(SineAndCosineOfRadians(6381956970095103.0 * 0x1p797).cosine, -0x1.14ae72e6ba22fp-61,
               0); // the worst double (Muller)
    ExpectSame(SineAndCosineOfRadians(-0.0).sine, -0.0, 0);
    EXPECT_TRUE(std::isnan(SineAndCosineOfRadians(std::numeric_limits<double>::infinity()).sine));
}

// Found with 200 bits: of 300,000 random angles, those whose sine or cosine lies nearest to halfway between two doubles.
TEST(SineAndCosine, AreRightWhereTwoDoublesAreAlmostEquallyNear)
{
    struct Fact
    {
        double degrees, sine, cosine;
    };
    for (const auto& [degrees, sine, cosine] : {
             Fact{0x1.16aec593fc37bp+5, 0x1.2476efaf2ef0bp-1, 0x1.a43f831c4308ap-1},
             Fact{0x1.56814f68fdabbp+4, 0x1.75be3ee6dad63p-2, 0x1.dcaddcf98f98ep-1},
             Fact{0x1.219e21aa5dc6ap+2, 0x1.432b7ae584a7cp-4, 0x1.fe676635da203p-1},
             Fact{0x1.629333f74f382p+2, 0x1.8b727a5227fcdp-4, 0x1.fd9bb76c8fec3p-1},
             Fact{0x1.6b3c97948b9dap+3, 0x1.93171df7753f7p-3, 0x1.f5fc258e53585p-1},
             Fact{0x1.c1d71da2a2941p+4, 0x1.e28d8c718ad68p-2, 0x1.c395f2344c8dfp-1},
             Fact{0x1.09df35842c4cdp+5, 0x1.189b418a28978p-1, 0x1.ac41c70cc25b1p-1},
             Fact{0x1.a3613e097e7d5p+4, 0x1.c44840fc0f126p-2, 0x1.cb5a17ef20002p-1},
         }) {
        ExpectSame(At(degrees).sine, sine, degrees);
        ExpectSame(At(degrees).cosine, cosine, degrees);
    }
}

TEST(SineAndCosine, AreExactWhereTheyAreRational)
{
    const double half = 0.5;
    const double sines[]{0.0, half, 1.0, half, 0.0, -half, -1.0, -half};
    const double angles[]{0, 30, 90, 150, 180, 210, 270, 330};
    for (std::size_t i = 0; i < 8; ++i) {
        for (const double turns : {0.0, 1.0, 1e12}) {
            const double degrees = angles[i] + 360 * turns;
            ExpectSame(At(degrees).sine, sines[i], degrees);
            ExpectSame(std::abs(At(degrees - 90).cosine), std::abs(sines[i]), degrees - 90);
        }
    }
    ExpectSame(At(-180).sine, -0.0, -180);
    ExpectSame(At(90).cosine, 0.0, 90);
    ExpectSame(At(-450).cosine, 0.0, -450);
}

// Angles on a fine binary grid: all differences are exact.
TEST(SineAndCosine, AreSymmetric)
{
    Random random(2);
    for (int i = 0; i < 1000; ++i) {
        const double degrees = static_cast<double>(random.Between(0, 360LL << 40)) * 0x1p-40;
        const auto [sine, cosine] = At(degrees);
        ExpectSame(At(-degrees).sine, -sine, -degrees);
        ExpectSame(At(-degrees).cosine, cosine, -degrees);
        ExpectSame(std::abs(At(180 - degrees).sine), std::abs(sine), 180 - degrees);
        ExpectSame(At(180 - degrees).cosine, -cosine, 180 - degrees);
        EXPECT_EQ(At(90 - degrees).sine, cosine);
        EXPECT_EQ(At(90 - degrees).cosine, sine);
        EXPECT_EQ(At(360 + degrees).sine, sine);
        EXPECT_EQ(At(360 + degrees).cosine, cosine);
    }
}

TEST(SineAndCosine, TakeAnyDouble)
{
    for (const double degrees : {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
                                 std::numeric_limits<double>::quiet_NaN()}) {
        EXPECT_TRUE(std::isnan(At(degrees).sine) && std::isnan(At(degrees).cosine));
    }
    ExpectSame(At(5e-324).sine, 0.0, 5e-324); // below half of the smallest double
    ExpectSame(At(-5e-324).sine, -0.0, -5e-324);
    ExpectSame(At(std::ldexp(143.0, -1074)).sine, 0x1p-1073, 143 * 5e-324);     // 2.4958
    ExpectSame(At(std::ldexp(144.0, -1074)).sine, 3 * 0x1p-1074, 144 * 5e-324); // 2.5133
    Random random(3);
    for (int i = 0; i < 1000; ++i) {
        const auto degrees = std::bit_cast<double>(random.Bits());
        if (!std::isfinite(degrees)) continue;
        const auto [sine, cosine] = At(degrees);
        EXPECT_NEAR(sine * sine + cosine * cosine, 1, 1e-15) << degrees;
    }
}

} // namespace
} // namespace brix
