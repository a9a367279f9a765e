// A stream buffer that keeps what is written to it as bytes.
#pragma once

#include <cstdint>
#include <streambuf>
#include <utility>
#include <vector>

namespace brix::capi {

class ByteCollector : public std::streambuf
{
public:
    explicit ByteCollector(std::size_t expected = 0) { bytes_.reserve(expected); }

    std::vector<std::uint8_t> Take() { return std::move(bytes_); }

protected:
    std::streamsize xsputn(const char* bytes, std::streamsize count) override
    {
        bytes_.insert(bytes_.end(), bytes, bytes + count);
        return count;
    }
    int_type overflow(int_type byte) override
    {
        bytes_.push_back(static_cast<std::uint8_t>(traits_type::to_char_type(byte)));
        return byte;
    }

private:
    std::vector<std::uint8_t> bytes_;
};

} // namespace brix::capi
