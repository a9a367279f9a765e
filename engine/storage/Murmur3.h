// MurmurHash3 in its form x64_128 with the seed 0 (Appleby, 2011): 128 bits of any bytes, the same on every platform. It tells
// contents apart that differ by chance; it does not withstand somebody who wants two of them to have one hash.
#pragma once

#include "../frame/Compiler.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

namespace brix {

/// 128 bits, the first half first, each half with its lowest byte first: as they are written to a file.
using Hash128 = std::array<std::uint8_t, 16>;

class Murmur3
{
public:
    void Add(std::span<const std::uint8_t> bytes)
    {
        if (bytes.empty()) return;
        length_ += bytes.size();
        if (waiting_ > 0) {
            const std::size_t taken = std::min(bytes.size(), block_.size() - waiting_);
            std::memcpy(block_.data() + waiting_, bytes.data(), taken);
            waiting_ += taken;
            bytes = bytes.subspan(taken);
            if (waiting_ < block_.size()) return;
            AddBlock(block_.data());
        }
        for (; bytes.size() >= block_.size(); bytes = bytes.subspan(block_.size())) AddBlock(bytes.data());
        if (!bytes.empty()) std::memcpy(block_.data(), bytes.data(), bytes.size());
        waiting_ = bytes.size();
    }

    /// The hash of all bytes so far.
    Hash128 Finish() const
    {
        std::array<std::uint8_t, 16> tail{};
        std::memcpy(tail.data(), block_.data(), waiting_);
        std::uint64_t a = a_ ^ MixedA(WordAt(tail.data())) ^ length_;
        std::uint64_t b = b_ ^ MixedB(WordAt(tail.data() + 8)) ^ length_;
        a += b;
        b += a;
        a = Scattered(a);
        b = Scattered(b);
        a += b;
        b += a;
        Hash128 hash;
        for (std::size_t i = 0; i < 8; ++i) {
            hash[i] = static_cast<std::uint8_t>(a >> 8 * i);
            hash[8 + i] = static_cast<std::uint8_t>(b >> 8 * i);
        }
        return hash;
    }

private:
    static constexpr std::uint64_t FactorA = 0x87C37B91114253D5;
    static constexpr std::uint64_t FactorB = 0x4CF5AD432745937F;

    static std::uint64_t MixedA(std::uint64_t word) { return std::rotl(word * FactorA, 31) * FactorB; }
    static std::uint64_t MixedB(std::uint64_t word) { return std::rotl(word * FactorB, 33) * FactorA; }

    // Every bit of the result depends on every bit of the word.
    static std::uint64_t Scattered(std::uint64_t word)
    {
        word = (word ^ word >> 33) * 0xFF51AFD7ED558CCD;
        word = (word ^ word >> 33) * 0xC4CEB9FE1A85EC53;
        return word ^ word >> 33;
    }

    static std::uint64_t WordAt(const std::uint8_t* bytes)
    {
        static_assert(std::endian::native == std::endian::little);
        std::uint64_t word;
        std::memcpy(&word, bytes, sizeof word);
        return word;
    }

    void AddBlock(const std::uint8_t* block)
    {
        a_ = (std::rotl(a_ ^ MixedA(WordAt(block)), 27) + b_) * 5 + 0x52DCE729;
        b_ = (std::rotl(b_ ^ MixedB(WordAt(block + 8)), 31) + a_) * 5 + 0x38495AB5;
    }

    std::uint64_t a_ = 0;
    std::uint64_t b_ = 0;
    std::uint64_t length_ = 0;
    std::array<std::uint8_t, 16> block_{};
    std::size_t waiting_ = 0; // bytes of a block that is not full
};

} // namespace brix
