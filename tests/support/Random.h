// Random numbers for tests: the same on every platform, from a seed that failures print.
#pragma once

#include <cstdint>

namespace brix::tests {

/// SplitMix64 (Steele, Lea and Flood, "Fast Splittable Pseudorandom Number Generators", 2014).
class Random
{
public:
    explicit Random(std::uint64_t seed) : state_(seed) {}

    std::uint64_t Bits()
    {
        state_ += 0x9E3779B97F4A7C15ULL;
        std::uint64_t bits = state_;
        bits = (bits ^ (bits >> 30)) * 0xBF58476D1CE4E5B9ULL;
        bits = (bits ^ (bits >> 27)) * 0x94D049BB133111EBULL;
        return bits ^ (bits >> 31);
    }

    /// A number of lower..upper, both inclusive.
    std::int64_t Between(std::int64_t lower, std::int64_t upper)
    {
        return lower + static_cast<std::int64_t>(Bits() % static_cast<std::uint64_t>(upper - lower + 1));
    }

    bool OneIn(std::int64_t count) { return Between(1, count) == 1; }

private:
    std::uint64_t state_;
};

/// How many random cases a slow property is tried on: fewer where sanitizers make each one slower by ten times.
constexpr std::uint64_t Rounds(std::uint64_t count)
{
#ifdef BRIX_SANITIZED
    return (count + 7) / 8;
#else
    return count;
#endif
}

} // namespace brix::tests
