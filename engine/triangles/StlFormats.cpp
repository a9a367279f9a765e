#include "StlFormats.h"

#include "../frame/WatchedLoop.h"
#include "PathText.h"
#include "StlRecord.h"
#include "TextNumbers.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>
#include <limits>
#include <memory>
#include <string>
#include <utility>

namespace brix {

namespace {

constexpr std::uint64_t maxBinaryTriangleCount = std::numeric_limits<std::uint32_t>::max();

using Point = std::array<double, 3>;

char* StoreWord(char* to, std::uint32_t word)
{
    word = LittleEndian(word);
    std::memcpy(to, &word, sizeof word);
    return to + sizeof word;
}

// Doubles beyond the floats become infinite. The language leaves them undefined in general, but not with IEEE 754 floats, whose
// infinities stand at the ends of their range.
static_assert(std::numeric_limits<float>::is_iec559 && std::numeric_limits<double>::is_iec559);

char* StoreFloat(char* to, double number) { return StoreWord(to, std::bit_cast<std::uint32_t>(static_cast<float>(number))); }
char* StorePoint(char* to, const Point& p) { return StoreFloat(StoreFloat(StoreFloat(to, p[0]), p[1]), p[2]); }

/// Collects what is written, so that the stream is called once per block. Throws when the stream takes no more.
class BlockWriter
{
public:
    static constexpr std::size_t maxItemSize = 512;

    /// `fileOffset`: how many bytes the file has already.
    BlockWriter(std::ostream& stream, const std::filesystem::path& filePath, std::size_t itemCount, std::size_t fileOffset = 0)
        : stream_(stream),
          filePath_(filePath),
          loop_(itemCount),
          lineCount_(1 + linesPerItem * std::min(itemCount, largestItemCount))
    {
        StartBlock(fileOffset);
    }

    /// Appends what `write` writes at the place given to it; `write` returns the end of that, at most maxItemSize further on.
    template <class Write> void Append(Write write)
    {
        if (static_cast<std::size_t>(block_[lineCount_ - 1].bytes.end() - end_) < maxItemSize) PassOn();
        end_ = write(end_);
        ++items_;
    }

    /// Passes on what is left, as far as the operating system.
    void Finish()
    {
        PassOn();
        if (!stream_.flush()) throw Failure();
    }

private:
    struct alignas(64) CacheLine
    {
        std::array<char, 64> bytes;
    };
    static constexpr std::size_t linesPerItem = maxItemSize / sizeof(CacheLine);
    static constexpr std::size_t largestItemCount =
        8192; // 4 MiB: the fewer system calls, the better, as long as a cache holds it

    // The system copies whole cache lines fastest when a byte has the same place in its line here and in the file.
    void StartBlock(std::size_t fileOffset)
    {
        fileOffset_ = fileOffset;
        begin_ = end_ = block_[0].bytes.data() + fileOffset % sizeof(CacheLine);
    }

    void PassOn()
    {
        if (!stream_.write(begin_, end_ - begin_)) throw Failure();
        StartBlock(fileOffset_ + static_cast<std::size_t>(end_ - begin_));
        loop_.Step(std::exchange(items_, 0));
    }

    std::runtime_error Failure() const { return StlFailure("Failed to write triangle to STL file ", filePath_, "."); }

    std::ostream& stream_;
    const std::filesystem::path& filePath_;
    WatchedLoop loop_;
    std::size_t items_ = 0; // in the block
    std::size_t lineCount_;
    std::unique_ptr<CacheLine[]> block_ = std::make_unique_for_overwrite<CacheLine[]>(lineCount_);
    std::size_t fileOffset_ = 0;
    char* begin_ = nullptr;
    char* end_ = nullptr;
};

char* WriteText(char* to, std::string_view text)
{
    std::memcpy(to, text.data(), text.size());
    return to + text.size();
}

char* WriteLine(char* to, std::string_view start, const Point& point)
{
    to = WriteText(to, start);
    for (const double coordinate : point) {
        *to++ = ' ';
        to = WriteNumber(to, coordinate);
    }
    *to++ = '\n';
    return to;
}

char* WriteFacet(char* to, const WorldTriangle& triangle, bool swapYZ)
{
    to = WriteLine(to, "    facet normal", ToFileAxes(WorldTriangleNormal(triangle), swapYZ));
    to = WriteText(to, "        outer loop\n");
    for (const Point& corner : triangle) to = WriteLine(to, "            vertex", ToFileAxes(corner, swapYZ));
    return WriteText(to, "        endloop\n    endfacet\n");
}
static_assert(120 + 12 * (maxNumberLength + 1) <= BlockWriter::maxItemSize); // words and line breaks, then the numbers

char* WriteRecord(char* to, const WorldTriangle& triangle, bool swapYZ)
{
    to = StorePoint(to, ToFileAxes(WorldTriangleNormal(triangle), swapYZ));
    for (const Point& corner : triangle) to = StorePoint(to, ToFileAxes(corner, swapYZ));
    *to++ = 0;
    *to++ = 0;
    return to;
}

/// Three numbers; once one has failed, it and the others stay what `stream >> x >> y >> z` makes of zeros.
Point TakePoint(std::string_view text)
{
    Point point{};
    for (double& coordinate : point)
        if (!TakeNumber(text, coordinate)) break;
    return point;
}

std::runtime_error IncompleteTriangle(const std::filesystem::path& filePath)
{
    return StlFailure("Incomplete triangle encountered in STL file ", filePath, ".");
}

WorldTriangle TakeCorners(ByteReader& file, const std::filesystem::path& filePath, bool swapYZ)
{
    WorldTriangle triangle{};
    for (Point& corner : triangle) {
        auto [text, hasLineBreak] = file.TakeLine();
        if (!hasLineBreak) throw IncompleteTriangle(filePath);
        const std::string_view token = TakeToken(text);
        if (token != "vertex" && token != "VERTEX")
            throw StlFailure("Unexpected token encountered in STL file ", filePath, ". A vertex entry was expected.");
        corner = FromFileAxes(TakePoint(text), swapYZ);
    }
    return triangle;
}

} // namespace

std::runtime_error StlFailure(std::string_view sentenceStart, const std::filesystem::path& filePath, std::string_view sentenceEnd)
{
    return std::runtime_error(std::string(sentenceStart) + '"' + PathText(filePath) + '"' + std::string(sentenceEnd));
}

void RequireNoNull(const std::filesystem::path& filePath)
{
    if (filePath.native().find(std::filesystem::path::value_type{0}) != std::filesystem::path::string_type::npos)
        throw StlFailure("Failed to open STL file ", filePath, ", as a file path cannot hold a null character.");
}

void RequireNoDevice(const std::filesystem::path& filePath)
{
    std::error_code error;
    if (std::filesystem::is_character_file(filePath, error))
        throw StlFailure("Failed to open STL file ", filePath, ", as it is a device, which may never end.");
}

bool IsAsciiStl(ByteReader& file, const std::filesystem::path& filePath)
{
    if (!file.Holds(5))
        throw StlFailure("Failed to read first 5 bytes of STL file ", filePath, " to check whether it is an ASCII file.");
    return file.Peek(5) == "solid" || file.Peek(5) == "SOLID";
}

std::vector<WorldTriangle> ReadAsciiTriangles(ByteReader& file, const std::filesystem::path& filePath, bool swapYZ)
{
    std::vector<WorldTriangle> triangles;
    constexpr std::size_t bytesPerStep = 1 << 16;
    WatchedLoop loop(static_cast<std::size_t>(file.ExpectedSize() / bytesPerStep + 1));
    std::size_t nextStep = bytesPerStep;
    for (bool hasMoreLines = true; hasMoreLines;) {
        for (; file.Taken() >= nextStep; nextStep += bytesPerStep) loop.Step();
        auto [text, hasLineBreak] = file.TakeLine();
        const std::string_view token = TakeToken(text);
        if (token == "outer" || token == "OUTER") triangles.push_back(TakeCorners(file, filePath, swapYZ));
        hasMoreLines = hasLineBreak;
    }
    if (file.HasFailed()) throw IncompleteTriangle(filePath);
    return triangles;
}

std::vector<WorldTriangle> ReadBinaryTriangles(ByteReader& file, const std::filesystem::path& filePath, bool swapYZ)
{
    if (!file.Holds(stlHeaderSize)) throw StlFailure("Failed to read header of binary STL file ", filePath, ".");
    file.Take(stlHeaderSize);
    if (!file.Holds(stlCountSize)) throw StlFailure("Failed to read triangle count of binary STL file ", filePath, ".");
    const std::size_t triangleCount = LoadWord(file.Take(stlCountSize));

    // The count is not to be trusted with memory: the list grows with what has been read.
    std::vector<WorldTriangle> triangles;
    triangles.reserve(static_cast<std::size_t>(std::min<std::uintmax_t>(triangleCount, file.ExpectedSize() / stlRecordSize)));
    constexpr std::size_t recordsAtOnce = 1000;
    WatchedLoop loop(triangleCount);
    while (triangles.size() < triangleCount) {
        const std::size_t count = std::min(recordsAtOnce, triangleCount - triangles.size());
        if (!file.Holds(count * stlRecordSize)) throw StlFailure("Failed to read triangle in STL file ", filePath, ".");
        const char* record = file.Take(count * stlRecordSize);
        for (std::size_t i = 0; i < count; ++i, record += stlRecordSize) triangles.push_back(ReadRecord(record, swapYZ));
        loop.Step(count);
    }
    return triangles;
}

void RequireBinaryTriangleCount(std::uint64_t triangleCount)
{
    if (triangleCount <= maxBinaryTriangleCount) return;
    throw std::runtime_error("The maximum number of triangles that can be saved to a binary STL file is " +
                             std::to_string(maxBinaryTriangleCount) + ". The number encountered was " +
                             std::to_string(triangleCount) + ".");
}

void WriteAsciiTriangles(std::ostream& file, const std::filesystem::path& filePath, std::span<const WorldTriangle> triangles,
                         bool swapYZ)
{
    BlockWriter writer(file, filePath, triangles.size() + 2);
    writer.Append([](char* to) { return WriteText(to, "solid Exported-by-BRIX\n"); });
    for (const WorldTriangle& triangle : triangles) writer.Append([&](char* to) { return WriteFacet(to, triangle, swapYZ); });
    writer.Append([](char* to) { return WriteText(to, "endsolid Exported-by-BRIX\n"); });
    writer.Finish();
}

void WriteBinaryTriangles(std::ostream& file, const std::filesystem::path& filePath, std::span<const WorldTriangle> triangles,
                          bool swapYZ)
{
    const std::array<char, stlHeaderSize> header{};
    if (!file.write(header.data(), header.size()).flush())
        throw StlFailure("Failed to write header to binary STL file ", filePath, ".");

    std::array<char, 4> count{};
    StoreWord(count.data(), static_cast<std::uint32_t>(triangles.size()));
    if (!file.write(count.data(), count.size()).flush())
        throw StlFailure("Failed to write triangle count to binary STL file ", filePath, ".");

    BlockWriter writer(file, filePath, triangles.size(), header.size() + count.size());
    for (const WorldTriangle& triangle : triangles) writer.Append([&](char* to) { return WriteRecord(to, triangle, swapYZ); });
    writer.Finish();
}

} // namespace brix
