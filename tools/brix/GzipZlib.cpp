// Compression by zlib.
#include "Gzip.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <limits>
#include <new>
#include <ostream>

namespace brix::tools {
namespace {

class Deflater : public std::streambuf
{
public:
    explicit Deflater(std::ostream& to) : to_(to)
    {
        constexpr int GzipWindow = 15 + 16; // the largest window, with the header of gzip
        constexpr int MemoryLevel = 8;
        if (deflateInit2(&zip_, Z_DEFAULT_COMPRESSION, Z_DEFLATED, GzipWindow, MemoryLevel, Z_DEFAULT_STRATEGY) != Z_OK)
            throw std::bad_alloc();
    }
    ~Deflater() override { deflateEnd(&zip_); }

    Deflater(const Deflater&) = delete;
    Deflater& operator=(const Deflater&) = delete;

    void Finish() { Pass({}, 0, Z_FINISH); }

protected:
    std::streamsize xsputn(const char* bytes, std::streamsize count) override
    {
        for (std::streamsize first = 0; first < count;) {
            const std::streamsize part = std::min<std::streamsize>(count - first, std::numeric_limits<int>::max());
            if (!Pass(bytes + first, static_cast<uInt>(part), Z_NO_FLUSH)) return first;
            first += part;
        }
        return count;
    }
    int_type overflow(int_type byte) override
    {
        const char character = traits_type::to_char_type(byte);
        return Pass(&character, 1, Z_NO_FLUSH) ? traits_type::not_eof(byte) : traits_type::eof();
    }

private:
    // Whether the other stream took what came out.
    bool Pass(const char* bytes, uInt count, int flush)
    {
        zip_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes));
        zip_.avail_in = count;
        do {
            zip_.next_out = out_.data();
            zip_.avail_out = static_cast<uInt>(out_.size());
            deflate(&zip_, flush); // fails only for wrong calls
            to_.write(reinterpret_cast<const char*>(out_.data()), static_cast<std::streamsize>(out_.size() - zip_.avail_out));
        } while (zip_.avail_out == 0 && to_);
        return static_cast<bool>(to_);
    }

    std::ostream& to_;
    z_stream zip_{};
    std::array<Bytef, 1 << 16> out_{};
};

} // namespace

void RequireGzip() {}

void WriteGzipped(std::ostream& stream, const std::function<void(std::ostream&)>& write)
{
    Deflater deflater(stream);
    std::ostream compressed(&deflater);
    write(compressed);
    deflater.Finish();
}

} // namespace brix::tools
