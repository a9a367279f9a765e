// The bytes of a file from start to end, block by block. A reader sees them in place; memory holds a block, or as many bytes as a
// reader asks for at once, as far as the file really has them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <istream>
#include <memory>
#include <string_view>

namespace brix {

class ByteReader
{
public:
    /// A line without its line break. The last line of a file may lack that, and may be empty.
    struct Line
    {
        std::string_view text;
        bool hasLineBreak;
    };

    /// Reads from where `stream` stands. `expectedSize`, the file's size in bytes or 0, is a hint for those who reserve memory.
    explicit ByteReader(std::istream& stream, std::uintmax_t expectedSize = 0) : stream_(&stream), expectedSize_(expectedSize) {}

    /// Reads a file that is in memory, as far as the device gave it.
    explicit ByteReader(std::string_view file, bool hasFailed = false) : expectedSize_(file.size()), hasFailed_(hasFailed)
    {
        if (!file.empty()) begin_ = file.data();
        end_ = begin_ + file.size();
    }

    std::uintmax_t ExpectedSize() const { return expectedSize_; }

    /// Whether reading stopped at a fault of the device instead of the file's end.
    bool HasFailed() const { return hasFailed_ || (stream_ != nullptr && stream_->bad()); }

    /// Whether the file has `count` more bytes; they are then in memory, for Peek and Take.
    bool Holds(std::size_t count)
    {
        while (Available() < count && Refill(count)) {
        }
        return Available() >= count;
    }

    std::string_view Peek(std::size_t count) const { return {begin_, count}; }

    /// The next `count` bytes, or as many of them as the file has.
    std::string_view Ahead(std::size_t count)
    {
        Holds(count);
        return Peek(std::min(count, Available()));
    }

    /// How many bytes were taken.
    std::size_t Taken() const { return taken_; }

    const char* Take(std::size_t count)
    {
        taken_ += count;
        begin_ += count;
        return begin_ - count;
    }

    Line TakeLine()
    {
        std::size_t searched = 0;
        do {
            if (const void* found = std::memchr(begin_ + searched, '\n', Available() - searched)) {
                const auto length = static_cast<std::size_t>(static_cast<const char*>(found) - begin_);
                return {{Take(length + 1), length}, true};
            }
            searched = Available();
        } while (Holds(searched + 1));
        return {{Take(searched), searched}, false};
    }

private:
    static constexpr std::size_t blockSize = 1 << 16;

    std::size_t Available() const { return static_cast<std::size_t>(end_ - begin_); }

    /// Reads on, into a block with room for `count` bytes in all. False: the file has come to its end.
    bool Refill(std::size_t count)
    {
        if (stream_ == nullptr) return false;
        const std::size_t kept = Available();
        if (count > blockLength_) {
            blockLength_ = std::max({count, 2 * blockLength_, blockSize}); // doubled: a long line is copied a few times only
            auto longer = std::make_unique_for_overwrite<char[]>(blockLength_);
            std::memcpy(longer.get(), begin_, kept);
            block_ = std::move(longer);
        } else {
            std::memmove(block_.get(), begin_, kept);
        }
        stream_->read(block_.get() + kept, static_cast<std::streamsize>(blockLength_ - kept));
        begin_ = block_.get();
        end_ = begin_ + kept + stream_->gcount();
        return stream_->gcount() > 0;
    }

    std::istream* stream_ = nullptr;
    std::uintmax_t expectedSize_ = 0;
    bool hasFailed_ = false;
    std::unique_ptr<char[]> block_;
    std::size_t blockLength_ = 0;
    std::size_t taken_ = 0;
    const char* begin_ = "";
    const char* end_ = begin_;
};

} // namespace brix
