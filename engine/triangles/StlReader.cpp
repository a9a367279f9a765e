#include "StlReader.h"

#include "../frame/WatchedLoop.h"
#include "StlFormats.h"
#include "StlRecord.h"
#include "StlText.h"
#include "TextNumbers.h"

#include <fstream>
#include <locale>

namespace brix {
namespace {

constexpr std::size_t startOfRecords = stlHeaderSize + stlCountSize;

/// A file whose bytes have been counted before they are read.
struct SizedFile
{
    ByteReader& bytes;
    std::uint64_t size;
    const std::filesystem::path& name;
};

std::uint64_t AnnouncedIn(std::string_view start) { return LoadWord(start.data() + stlHeaderSize); }

// The count at bytes 80 to 83 of a text is above 100 million, as blanks and line breaks are the smallest that it can be made of.
bool HasTheSizeItAnnounces(std::string_view start, std::uint64_t size)
{
    return start.size() >= startOfRecords && size == startOfRecords + stlRecordSize * AnnouncedIn(start);
}

std::runtime_error NoStl(const SizedFile& file, const std::string& reason)
{
    return StlFailure("The file ", file.name, " is no STL file: " + reason);
}

// What has no triangles in it that anybody meant is refused, instead of read as triangles.
void RequireBinary(const SizedFile& file, std::string_view start)
{
    struct Signature
    {
        std::string_view bytes;
        const char* format;
    };
    constexpr Signature signatures[] = {{"PK\3\4", "a ZIP archive, as 3MF files are"},
                                        {"glTF", "a binary glTF file"},
                                        {"ply\n", "a PLY file"},
                                        {"ply\r", "a PLY file"},
                                        {"\x89PNG", "a PNG picture"},
                                        {"\x1f\x8b", "compressed with gzip"},
                                        {"\xff\xfe", "text in UTF-16, or something else"},
                                        {"\xfe\xff", "text in UTF-16, or something else"}};
    for (const Signature& signature : signatures)
        if (start.starts_with(signature.bytes)) throw NoStl(file, std::string("it is ") + signature.format + ".");
    if (LooksLikeText(start))
        throw NoStl(file, "its text begins with \"" + LineText(FirstWord(start), 40) + "\" instead of \"solid\".");
    if (start.size() < startOfRecords)
        throw NoStl(file, "it has " + std::to_string(file.size) + " bytes, and a binary one has 84 at least.");
}

std::string HeaderText(std::string_view header)
{
    while (!header.empty() && (header.back() == '\0' || IsWhiteSpace(header.back()))) header.remove_suffix(1);
    return LineText(header);
}

/// How many triangles of a binary file are to be read.
std::uint64_t TrianglesToRead(std::uint64_t announced, std::uint64_t bytes)
{
    const std::uint64_t held = bytes / stlRecordSize;
    if (announced >= held || announced == 0 || bytes % stlRecordSize == 0) return held;
    return announced;
}

void TellCount(StlIntake& intake, std::uint64_t announced, std::uint64_t read, std::uint64_t left)
{
    const auto told = [](std::uint64_t number, const char* what) {
        return std::to_string(number) + ' ' + what + (number == 1 ? "" : "s");
    };
    const std::string announcement = told(announced, "triangle") + (announced == 1 ? " is announced" : " are announced");
    if (read > announced)
        intake.Find(stlHeaderSize, StlEffect::Guessed,
                    [&] { return announcement + "; the file holds " + std::to_string(read) + ", which were read."; });
    if (read < announced)
        intake.Find(stlHeaderSize, StlEffect::Dropped,
                    [&] { return announcement + "; the file ends after " + std::to_string(read) + " whole ones."; });
    if (left > 0)
        intake.Find(startOfRecords + stlRecordSize * read, StlEffect::Dropped,
                    [&] { return told(left, "byte") + " after the last whole triangle were left."; });
    if (read == 0 && announced == 0 && left == 0)
        intake.Find(stlHeaderSize, StlEffect::None, [] { return std::string("the file announces no triangles."); });
}

/// Reads records as far as the file really has them. Returns how many those are.
std::uint64_t TakeRecords(ByteReader& bytes, std::uint64_t count, StlIntake& intake)
{
    constexpr std::uint64_t recordsAtOnce = 1000;
    WatchedLoop loop(static_cast<std::size_t>(count));
    std::uint64_t taken = 0;
    while (taken < count) {
        const std::uint64_t wanted = std::min(recordsAtOnce, count - taken);
        const std::uint64_t given = bytes.Ahead(static_cast<std::size_t>(wanted * stlRecordSize)).size() / stlRecordSize;
        const char* record = bytes.Take(static_cast<std::size_t>(given * stlRecordSize));
        for (std::uint64_t i = 0; i < given; ++i, record += stlRecordSize)
            intake.Take(ReadRecord(record, intake.Options().swapYZ), startOfRecords + (taken + i) * stlRecordSize);
        taken += given;
        if (given < wanted) break;
        loop.Step(static_cast<std::size_t>(given));
    }
    return taken;
}

void ReadBinary(const SizedFile& file, StlIntake& intake)
{
    StlReport& report = intake.result.report;
    const std::string_view start = file.bytes.Ahead(startOfRecords);
    const std::uint64_t announced = AnnouncedIn(start);
    report.header = HeaderText(start.substr(0, stlHeaderSize));
    report.announced = announced;
    file.bytes.Take(startOfRecords);

    const std::uint64_t bytes = file.size - startOfRecords;
    const std::uint64_t expected = TrianglesToRead(announced, bytes);
    intake.result.triangles.reserve(static_cast<std::size_t>(expected));
    const std::uint64_t taken = TakeRecords(file.bytes, expected, intake);
    if (taken < expected || file.bytes.HasFailed())
        intake.Find(startOfRecords + stlRecordSize * taken, StlEffect::Dropped,
                    [] { return std::string("the file cannot be read any further."); });
    report.bytesLeft = bytes - stlRecordSize * taken;
    TellCount(intake, announced, taken, taken < expected ? 0 : report.bytesLeft);
}

StlImport Read(const SizedFile& file, const StlReadOptions& options)
{
    const std::string_view start = file.bytes.Ahead(stlStartSize);
    if (start.empty()) throw NoStl(file, file.bytes.HasFailed() ? "nothing can be read from it." : "it is empty.");
    const bool isAscii = !HasTheSizeItAnnounces(start, file.size) && LooksLikeStlText(start);
    if (!isAscii && !HasTheSizeItAnnounces(start, file.size)) RequireBinary(file, start);

    StlIntake intake(options, file.name, isAscii ? StlVariant::Ascii : StlVariant::Binary);
    intake.result.report.bytes = file.size;
    if (isAscii)
        ReadStlText(file.bytes, intake);
    else
        ReadBinary(file, intake);
    intake.result.report.read = intake.result.triangles.size();
    if (options.countMesh) intake.result.report.mesh = CountMesh(intake.result.triangles);
    return std::move(intake.result);
}

StlImport ReadBytes(std::string_view file, bool hasFailed, const std::filesystem::path& name, const StlReadOptions& options)
{
    ByteReader bytes(file, hasFailed);
    return Read({bytes, file.size(), name}, options);
}

// The size decides on the variant: what does not tell it is held whole.
StlImport ReadWhole(std::istream& stream, const std::filesystem::path& name, const StlReadOptions& options)
{
    std::string content;
    constexpr std::size_t block = 1 << 16;
    do {
        content.resize(content.size() + block);
        stream.read(content.data() + content.size() - block, block);
        content.resize(content.size() - block + static_cast<std::size_t>(stream.gcount()));
        CheckWatch();
    } while (stream);
    return ReadBytes(content, stream.bad(), name, options);
}

/// What a stream still has, and 0 where it does not tell.
std::uint64_t SizeOfRest(std::istream& stream)
{
    const auto here = stream.tellg();
    if (here < 0) return stream.clear(), 0;
    stream.seekg(0, std::ios::end);
    const auto end = stream.tellg();
    stream.clear();
    stream.seekg(here);
    if (end <= here) return 0;
    return static_cast<std::uint64_t>(end - here);
}

StlImport ReadStream(std::istream& stream, const std::filesystem::path& name, const StlReadOptions& options)
{
    const std::uint64_t size = SizeOfRest(stream);
    if (size == 0) return ReadWhole(stream, name, options);
    ByteReader bytes(stream, size);
    return Read({bytes, size, name}, options);
}

} // namespace

bool StlReport::IsSound() const { return findingCount == 0 && degenerate == 0 && found > 0 && (!mesh || mesh->IsSolid()); }

StlImport ReadStl(const std::filesystem::path& filePath, const StlReadOptions& options)
{
    RequireNoNull(filePath);
    RequireNoDevice(filePath);
    std::ifstream file;
    file.imbue(std::locale::classic());
    file.open(filePath, std::ios::in | std::ios::binary);
    if (!file) throw StlFailure("Failed to open STL file ", filePath, ".");
    return ReadStream(file, filePath, options);
}

StlImport ReadStl(std::span<const std::uint8_t> file, const StlReadOptions& options)
{
    return ReadBytes({reinterpret_cast<const char*>(file.data()), file.size()}, false, options.name, options);
}

StlImport ReadStl(std::istream& stream, const StlReadOptions& options) { return ReadStream(stream, options.name, options); }

} // namespace brix
