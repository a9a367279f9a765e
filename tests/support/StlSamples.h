// Contents of STL files, whole and damaged, and where they come from: folders, and devices that fail.
#pragma once

#include "Pieces.h"

#include <array>
#include <bit>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <random>
#include <stdexcept>
#include <streambuf>
#include <string>
#include <vector>

namespace brix::tests {

/// A folder that goes away with its test.
struct TemporaryFolder
{
    TemporaryFolder() { std::filesystem::create_directory(path); }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder() { std::filesystem::remove_all(path); }

    std::filesystem::path With(const std::string& content, const char* name = "file.stl") const
    {
        std::ofstream(path / name, std::ios::binary) << content;
        return path / name;
    }

    std::filesystem::path path = std::filesystem::temp_directory_path() / ("brix-stl-" + std::to_string(std::random_device{}()));
};

inline std::string LittleEndian(std::uint32_t word)
{
    std::string bytes;
    for (int i = 0; i < 4; ++i) bytes += static_cast<char>(word >> (8 * i) & 0xff);
    return bytes;
}

inline std::string BinaryFile(std::uint32_t announced, const std::vector<std::array<float, 12>>& records,
                              const std::string& after = "", char header = 'h', const std::string& attribute = "\xAB\xCD")
{
    std::string bytes = std::string(80, header) + LittleEndian(announced);
    for (const auto& record : records) {
        for (const float number : record) bytes += LittleEndian(std::bit_cast<std::uint32_t>(number));
        bytes += attribute;
    }
    return bytes + after;
}

/// A valid file with pieces put in, taken out and overwritten, and cut off.
inline std::string Damaged(std::string content, Random& random)
{
    using namespace std::literals;
    constexpr std::string_view pieces = "outer|OUTER |vertex|VERTEX |\n|\r\n| |\t\v\f|\0|1e|-|e400|nan|1.25|0"sv;
    const std::int64_t damages = random.Between(1, 6);
    for (std::int64_t i = 0; i < damages; ++i) {
        const auto at = static_cast<std::size_t>(random.Between(5, std::ssize(content)));
        const std::string piece = random.OneIn(500)   ? std::string(70'000, ' ')
                                  : random.OneIn(500) ? std::string(140'000, '5')
                                                      : std::string(OneOf(random, pieces));
        if (random.OneIn(20))
            content.resize(at);
        else if (random.OneIn(3))
            content.insert(at, piece);
        else if (random.OneIn(2))
            content.erase(at, static_cast<std::size_t>(random.Between(1, 20)));
        else
            content.replace(at, static_cast<std::size_t>(random.Between(1, 6)), piece);
    }
    return content;
}

/// A device that cannot go back. It gives some bytes, then ends, or fails.
class OneWayDevice : public std::streambuf
{
public:
    enum class After
    {
        Ends,
        Fails
    };

    OneWayDevice(std::string content, After after) : content_(std::move(content)), after_(after)
    {
        setg(&content_[0], &content_[0], &content_[0] + content_.size());
    }

protected:
    int_type underflow() override
    {
        if (after_ == After::Fails) throw std::runtime_error("The device does not answer.");
        return traits_type::eof();
    }

private:
    std::string content_;
    After after_;
};

} // namespace brix::tests
